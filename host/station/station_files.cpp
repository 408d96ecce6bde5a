#include "host/station/station_files.h"

#include "host/measurement/csv_sink.h"
#include "host/measurement/recording_plan.h"
#include "host/measurement/replaceable_file.h"
#include "host/session/database_file.h"
#include "host/words/texts.h"
#include "record/recording_reader.h"

namespace {
void CheckRecording(const StationLogger& logger, bool held) {
    RequireWritable(logger.record.path);
    CPropertyDB description = logger.description;
    if (!held) return CheckEarlier(logger.record, false, description);
    if (logger.record.rotateEvery != 0 || logger.record.rotateSize != 0) return;
    CRecordingReader reader;
    if (reader.Open(logger.record.path) == ERROR_SUCCESS) RequireSameLogger(logger.record.path, reader.Facts(), description);
}

void CheckCsv(const StationLogger& logger) {
    if (logger.plan.csvFile.empty()) return;
    RequireWritable(logger.plan.csvFile);
    CPropertyDB description = logger.description;
    RequireOwnCsv(logger.plan.csvFile, description);
}
}  // namespace

std::vector<std::string> FindFileMistakes(const Station& station, const std::function<bool(const std::string& path)>& held) {
    std::vector<std::string> mistakes;
    for (const auto& logger : station.loggers) {
        const auto step = [&](auto check) {
            try {
                check();
            } catch (const Failure& failure) {
                mistakes.push_back(Say(Text::StationMistake, {ToUtf8(logger->key), failure.sentence}));
            }
        };
        step([&] { CheckRecording(*logger, held(logger->record.path)); });
        step([&] { CheckCsv(*logger); });
    }
    return mistakes;
}
