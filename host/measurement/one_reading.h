// One reading of a logger, which is kept nowhere: to see what it says, and whether it says anything.
#pragma once

#include <string>
#include <vector>

#include "host/logger_family.h"
#include "host/measurement/measurement.h"
#include "host/session/session.h"

struct OneReading {
    __int64 time = 0;
    std::vector<double> values;
    std::vector<CRecordedGap> gaps;
    std::string failure;  // the last one, in UTF-8
    bool whole = true;    // nothing is missing

    // Why a channel has no value, in UTF-8; empty if it has.
    std::string WhyNot(size_t channel) const;
    // The time, then a line a channel: its name, its value, its unit; the reason where there is no value. UTF-8.
    std::string Lines(const Session& session) const;
};

// Opens the plan's port, reads once, and closes it; the plan's count and interval do not matter. On the thread of the logger,
// whose messages are handled meanwhile. A Failure if nothing at all was read. `session` has the channels of the description.
OneReading ReadOnce(ILogger& logger, const Session& session, MeasurementPlan plan);
