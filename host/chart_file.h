// A chart as a picture file. A Failure says what is wrong.
#pragma once

#include <string>

#include "host/chart_model.h"

// The name must end in ".png", ".svg" or ".pdf".
void RequirePictureName(const std::string& path);
// Replaces what is there, as a whole.
void WriteChart(ChartModel& model, const std::string& path, SIZE size);
