// The main job: read a logger at even times and record what it said, whatever happens to the line meanwhile.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/app/host_app.h"
#include "host/measurement/measurement.h"
#include "host/measurement/recording_writer.h"
#include "host/session/session.h"
#include "host/words/console.h"

// So many readings are never made: a download that goes on until it is stopped.
constexpr DWORD kForEver = 0xFFFFFFFF;
constexpr DWORD kMostReadings = 100'000'000;  // of one that is asked for
constexpr DWORD kWeek = 7 * 86'400'000;       // ms, the longest interval

struct DownloadPlan {
    std::string port;
    DWORD count = 10;       // readings, made or missed
    DWORD interval = 1000;  // ms from the start of one reading to the start of the next
    bool shifts = false;    // see MeasurementPlan
    __int64 duration = 0;   // us; instead of a count, if it is not 0
    DWORD timeout = 1000;   // ms for every single answer
    __int64 giveUp = 0;     // us without any value after which it ends; 0: never
    std::string traceFile;  // empty: no trace
    bool traceHex = false;
    std::string csvFile;  // readings as lines too; "-": to standard output; empty: none

    bool csvAppend = false;  // behind what the file holds

    // For the logger of this description, whose channels' intervals have to be multiples of this one's: else a Failure.
    MeasurementPlan Measure(CPropertyDB& description) const;
};

struct DownloadResult {
    Measurement::Ended end = Measurement::Ended::AsPlanned;
    std::optional<Failure> failure;  // what ended it, or kept something from being written
    unsigned __int64 made = 0, missing = 0;
    std::vector<GapKeeper::Count> causes;
    std::vector<RecordingWriter::File> files;
    bool csvWhole = true;
    std::string advice;  // a sentence on answers that come later than the time-out or readings longer than the interval; or empty
};

// What is known of a session before its first reading: where it comes from, its channels, and the logger's description.
void DescribeSession(CPropertyDB& description, const std::string& port, CPropertyDB& facts);

// Reads into `record`. A description that cannot be used, or a family without a plug-in, is thrown: then there is no recording.
DownloadResult Download(CHostApp& app, CPropertyDB& description, const DownloadPlan& plan, const RecordingWriter::Plan& record);

// "3 x Receive timeout (Flow, Level), 1 x not read in time", by the names of the description's channels.
std::string CausesText(const std::vector<GapKeeper::Count>& causes, CPropertyDB& description);
// The sentence for a line that was lost, and is tried again. House texts.
std::string LineLostSentence(const std::string& port, const std::string& text);
// The sentence for a port that could not be opened, by the code and text of the failure: the most telling one first.
std::string WhyNotOpened(const std::string& port, LONG code, const std::string& text);
// The proposal for a logger that answers later than the time-out allows; empty when it does not do so again and again.
std::string LateAdvice(DWORD lateAnswers, DWORD latest, DWORD timeout);
// The same for readings that take longer than the interval.
std::string SlowAdvice(DWORD slowReadings, DWORD longest, DWORD interval);
