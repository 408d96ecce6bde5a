// The user's wish to stop (Ctrl+C, or the system asking the program to end). Long work makes such an object and looks at Asked
// now and then. From the first one on, the wish no longer ends the process at once, so that what the work has gathered is stored
// whole, however often the user asks.
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
