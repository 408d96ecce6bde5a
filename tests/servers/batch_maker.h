// A recording's part of a batch, made by hand: what every sink has to bring over; and what a sink fails with.
#pragma once

#include <cmath>
#include <limits>
#include <string>

#include "record/sink.h"

// What a call of a sink fails with; empty where it does not.
std::string FailureOf(auto work) {
    try {
        work();
    } catch (const CSinkFailure& failure) {
        return failure.what();
    }
    return {};
}

struct MadeBatch {
    static constexpr __int64 kFirst = 1'700'000'000'123'456, kStep = 250'001;

    CSinkSource source{"Plant", "inlet", kFirst, "Meter", "Modbus", "COM5", {{"1", "Flow", "l/s"}, {"2", "Resistance", "k\u03A9"}}};
    CSinkBatch batch;

    // Readings from..to, of the values n + 0.1 and -n. With their oddities: one value missing, one that the logger has not, an infinity.
    MadeBatch(int from, int to) {
        CSinkPart& part = batch.parts.emplace_back();
        part.source = &source;
        for (int n = from; n < to; ++n) {
            part.times.push_back(kFirst + n * kStep);
            part.values.insert(part.values.end(), {n + 0.1, static_cast<double>(-n)});
            part.flags.insert(part.flags.end(), {RF_GOOD, RF_GOOD});
        }
        const auto set = [&](int n, double value, BYTE flag) {
            if (n < from || n >= to) return;
            part.values[static_cast<size_t>(n - from) * 2 + 1] = value;
            part.flags[static_cast<size_t>(n - from) * 2 + 1] = flag;
        };
        set(3, std::nan(""), RF_MISSING);
        set(4, std::nan(""), RF_NO_VALUE);
        set(5, std::numeric_limits<double>::infinity(), RF_GOOD);
        set(6, std::nan(""), RF_NOT_DUE);
    }
    CSinkPart& Part() { return batch.parts.back(); }
    void AddNotes() {
        Part().gaps.push_back({7, kFirst + 3 * kStep, kFirst + 3 * kStep, 1, 3, 8, {1}, "no answer; \"none\" 'at all'"});
        Part().events.push_back({kFirst, RE_CONNECTED, 0, "COM5"});
        Part().commented = true;
        Part().comments = {{kFirst + kStep, 2.5, "2", "4 k\u03A9 \\ it's\nhot"}};
    }
};
