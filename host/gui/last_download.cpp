#include "host/gui/last_download.h"

#include <charconv>
#include <string_view>

#include "host/gui/user_folder.h"

namespace {
constexpr char kFile[] = "last-download";
constexpr std::string_view kLogger = "logger=", kPort = "port=", kCount = "count=", kInterval = "interval=";

bool Read(std::string_view text, unsigned& value) {
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}
}  // namespace

LastDownload LastDownload::Kept() {
    LastDownload kept;
    bool count = false, interval = false;
    for (const std::string& line : KeptLines(kFile)) {
        const std::string_view text = line;
        if (text.starts_with(kLogger)) kept.logger = text.substr(kLogger.size());
        if (text.starts_with(kPort)) kept.port = text.substr(kPort.size());
        if (text.starts_with(kCount)) count = Read(text.substr(kCount.size()), kept.count);
        if (text.starts_with(kInterval)) interval = Read(text.substr(kInterval.size()), kept.interval);
    }
    return count && interval ? kept : LastDownload{};
}

void LastDownload::Keep() const {
    const auto line = [](std::string_view key, const std::string& value) { return std::string(key) + value; };
    KeepLines(kFile, {line(kLogger, logger), line(kPort, port), line(kCount, std::to_string(count)),
                      line(kInterval, std::to_string(interval))});
}
