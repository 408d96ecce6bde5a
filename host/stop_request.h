// The user's wish to stop (Ctrl+C, or the system asking the program to end), seen by long work while this object lives.
#pragma once

#include "host/logger_family.h"

class StopRequest {
public:
    // With a logger, the wish also ends the exchange under way. One object at a time.
    explicit StopRequest(ILogger* logger = nullptr);
    ~StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;
    static bool Asked();
};
