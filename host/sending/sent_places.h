// Up to where a sink has everything, kept in a file over the end of the program: one place for each logger, by its key. Losing it
// costs nothing but sending again.
#pragma once

#include <map>
#include <string>

#include "host/sending/recording_queue.h"

class SentPlaces {
public:
    // False where there is none, or one that cannot be read.
    bool Load(const std::string& path);
    // As a whole or not at all. A Win32 code.
    DWORD Store(const std::string& path) const;

    std::map<std::string, SentPlace> places;
};
