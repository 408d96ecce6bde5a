// version: what a program or library says of itself in its version resource.
#include "host/command_line/commands.h"
#include "host/session/database_file.h"
#include "host/words/arguments.h"
#include "host/words/texts.h"
#include "ui/version_info.h"

namespace {
std::string Numbers(DWORD ms, DWORD ls) {
    return std::to_string(HIWORD(ms)) + '.' + std::to_string(LOWORD(ms)) + '.' + std::to_string(HIWORD(ls)) + '.' +
           std::to_string(LOWORD(ls));
}
void Line(const char* name, const std::string& text) {
    if (!text.empty()) Print(std::string(name) + ": " + text);
}
}  // namespace

ExitCode RunVersion(CHostApp&, const Words& words) {
    const Arguments arguments(words, {}, {}, 1);
    const std::string& path = arguments.At(0, "FILE");
    if (!FileExists(path)) throw Failure{kFileFailed, Say(Text::FileNotFound, {ToUtf8(path)})};
    const CVersionInfo info(path.c_str());
    if (!info.IsValid()) throw Failure{kFileFailed, Say(Text::NoVersion, {ToUtf8(path)})};
    DWORD ms = 0, ls = 0;
    info.GetFileVersion(&ms, &ls);
    Line("FileVersion", Numbers(ms, ls));
    info.GetProductVersion(&ms, &ls);
    Line("ProductVersion", Numbers(ms, ls));
    Line("FileDescription", ToUtf8(info.GetFileDescription()));
    Line("ProductName", ToUtf8(info.GetProductName()));
    Line("InternalName", ToUtf8(info.GetInternalName()));
    Line("OriginalFilename", ToUtf8(info.GetOriginalFilename()));
    Line("LegalCopyright", ToUtf8(info.GetLegalCopyright()));
    Line("LegalTrademarks", ToUtf8(info.GetLegalTrademarks()));
    Line("PrivateBuild", ToUtf8(info.GetPrivateBuild()));
    Line("SpecialBuild", ToUtf8(info.GetSpecialBuild()));
    return kDone;
}
