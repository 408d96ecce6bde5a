// Makes recordings for tests: recording_maker FILE READINGS CHANNELS [gap FIRST COUNT]... [ended] [next NAME] [more].
// Reading n is made n seconds after the first; channel k has (n + k) / 8, and no value where n is a multiple of 50 and k is 1.
// A gap leaves out readings FIRST to FIRST + COUNT - 1, with a row that marks its begin. With "more" the recording stays open,
// and grows by a reading for every line of the standard input: "end" ends it.
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "record/recorder.h"

namespace {
constexpr __int64 kBegin = 1'780'000'000'000'000;
__int64 TimeOf(unsigned n) { return kBegin + static_cast<__int64>(n) * 1'000'000; }

void Require(DWORD error) {
    if (error == ERROR_SUCCESS) return;
    std::fprintf(stderr, "error %u\n", static_cast<unsigned>(error));
    std::exit(1);
}

void AddReading(CRecorder& recorder, unsigned n) {
    std::vector<double> values;
    std::vector<BYTE> flags(recorder.ChannelCount(), RF_GOOD);
    for (unsigned k = 0; k < recorder.ChannelCount(); ++k) values.push_back((n + k) / 8.0);
    if (recorder.ChannelCount() > 1 && n % 50 == 0) values[1] = std::numeric_limits<double>::quiet_NaN(), flags[1] = RF_NO_VALUE;
    Require(recorder.AddReading(TimeOf(n), values.data(), flags.data()));
}

void AddGap(CRecorder& recorder, unsigned first, unsigned count, DWORD number) {
    const std::vector<double> values(recorder.ChannelCount(), std::numeric_limits<double>::quiet_NaN());
    const std::vector<BYTE> flags(recorder.ChannelCount(), RF_MISSING);
    Require(recorder.AddReading(TimeOf(first), values.data(), flags.data()));
    CRecordedGap gap;
    gap.number = number, gap.from = gap.until = TimeOf(first), gap.missed = 1, gap.attempts = 3, gap.cause = 8;
    gap.text = "no answer; none";
    Require(recorder.AddGap(gap));
    gap.until = TimeOf(first + count - 1), gap.missed = count, gap.attempts = 3 * count;
    Require(recorder.AddGap(gap));
}
}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) return 1;
    const auto count = static_cast<unsigned>(std::atoi(argv[2])), channels = static_cast<unsigned>(std::atoi(argv[3]));
    std::map<unsigned, unsigned> gaps;
    std::string next;
    bool ended = false, more = false;
    for (int i = 4; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "gap") gaps[static_cast<unsigned>(std::atoi(argv[i + 1]))] = static_cast<unsigned>(std::atoi(argv[i + 2])), i += 2;
        if (word == "next") next = argv[++i];
        ended |= word == "ended";
        more |= word == "more";
    }
    CPropertyDB facts;
    facts.SetValue("Session.sFamily", "Modbus");
    facts.SetValue("Session.sLogger", "Inlet");
    facts.SetValue("Session.sPort", "COM1");
    for (unsigned k = 0; k < channels; ++k) {
        const std::string at = "Channels.c" + std::to_string(k);
        facts.SetValue((at + ".sName").c_str(), ("Channel " + std::to_string(k)).c_str());
        facts.SetValue((at + ".sUnit").c_str(), k % 2 == 0 ? "\xB0" "C" : "%");
    }
    facts.SetValue("Logger.sFamily", "Modbus");
    CRecorder recorder;
    Require(recorder.Create(argv[1], facts));
    Require(recorder.AddEvent({TimeOf(0), RE_STARTED, 0, "1.0"}));
    DWORD number = 0;
    unsigned n = 0;
    while (n < count) {
        const auto gap = gaps.find(n);
        if (gap != gaps.end()) {
            AddGap(recorder, n, gap->second, ++number);
            n += gap->second;
        } else {
            AddReading(recorder, n++);
        }
    }
    for (std::string line; more && std::getline(std::cin, line) && line != "end"; ended = true) {
        AddReading(recorder, n++);
        std::puts("made");
        std::fflush(stdout);
    }
    if (!next.empty()) Require(recorder.AddEvent({TimeOf(n), RE_CONTINUED, 0, next}));
    if (ended) Require(recorder.AddEvent({TimeOf(n), RE_ENDED, 0, ""}));
    Require(recorder.Close());
    return 0;
}
