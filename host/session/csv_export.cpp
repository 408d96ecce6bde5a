#include "host/session/csv_export.h"

#include "host/words/console.h"
#include "host/words/texts.h"
#include "platform/file_replacement.h"

bool StoreCsv(const std::string& path, const Session& session, const CsvForm& form, TimeRange range, WorkProgress* progress) {
    constexpr size_t kBlock = 1 << 20;
    constexpr unsigned kRows = 4096;  // between two looks at the progress
    const auto check = [&](DWORD error) {
        if (error != ERROR_SUCCESS) throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), Reason(error)})};
    };
    orvik::detail::FileReplacement replacement;
    check(replacement.Begin(path));
    std::string text;
    const auto write = [&] {
        DWORD written = 0;
        if (!WriteFile(replacement.File(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr))
            check(GetLastError());
        if (written != text.size()) check(ERROR_DISK_FULL);
        text.clear();
    };
    const std::unique_ptr<ReadingWriter> writer = MakeCsvWriter(session, ChannelsNamed(session, {}), form);
    writer->Heading(text);
    const std::unique_ptr<ReadingSource> readings = ReadingsOf(session, range);
    bool whole = true;
    for (unsigned __int64 row = 0; readings->Next(); ++row) {
        if (progress != nullptr && row % kRows == 0 && !progress->At(row, session.Count())) throw WorkStopped{};
        whole = whole && !readings->Damage();
        writer->Row(text, readings->Time(), readings->Values());
        if (text.size() >= kBlock) write();
    }
    write();
    check(replacement.Commit());
    return whole && !readings->Damage();
}
