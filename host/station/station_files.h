// Whether what stands where the files of a station are to be lets them be recorded into. User-interface thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/station/station_file.h"

// Every mistake, one sentence for each with its logger. `held` knows the recordings that are rightly being recorded into: these
// are only looked at. Nothing is changed.
std::vector<std::string> FindFileMistakes(const Station& station, const std::function<bool(const std::string& path)>& held);
