#include "frame/plugin_stamp.h"

#include <cstring>
#include <string_view>
#include <vector>

namespace {
// Kept apart from its first byte, so that a program holding this code is not taken for a plug-in itself.
constexpr std::string_view kMagicTail = "OrvikPlugin\x01\n";
constexpr char kMagicHead = '\x7F';

constexpr DWORD kBlock = 1 << 16;

class File {
public:
    explicit File(const char* path)
        : m_handle(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    ~File() {
        if (IsOpen()) CloseHandle(m_handle);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    bool Read(char* out, DWORD size, DWORD& got) { return ReadFile(m_handle, out, size, &got, nullptr) != FALSE; }

private:
    HANDLE m_handle;
};

bool IsText(const char* field, size_t size) { return field[0] != 0 && std::memchr(field, 0, size) != nullptr; }
}  // namespace

EPluginFit OrvikCheckPlugin(const char* path, CString& family, CString& version) {
    File file(path);
    if (!file.IsOpen()) return PF_UNREADABLE;
    // Block by block, keeping as much of the last block as a stamp that straddles the border may need.
    constexpr size_t kStamp = sizeof(OrvikPluginStamp);
    std::vector<char> window(kStamp - 1 + kBlock);
    size_t held = 0;
    OrvikPluginStamp stamp = {};
    int found = 0;
    for (;;) {
        DWORD got = 0;
        if (!file.Read(window.data() + held, kBlock, got)) return PF_UNREADABLE;
        if (got == 0) break;
        held += got;
        size_t at = 0;
        for (; at + kStamp <= held; ++at) {
            const auto* head = static_cast<const char*>(std::memchr(window.data() + at, kMagicHead, held - kStamp - at + 1));
            if (head == nullptr) {
                at = held - kStamp + 1;
                break;
            }
            at = static_cast<size_t>(head - window.data());
            OrvikPluginStamp candidate;
            std::memcpy(&candidate, head, kStamp);
            if (std::string_view(candidate.magic + 1, kMagicTail.size()) != kMagicTail) continue;
            if (!IsText(candidate.family, sizeof candidate.family) ||
                !IsText(candidate.moduleVersion, sizeof candidate.moduleVersion))
                continue;
            stamp = candidate;
            ++found;
        }
        std::memmove(window.data(), window.data() + at, held - at);
        held -= at;
    }
    if (found != 1) return PF_NO_PLUGIN;
    family = stamp.family;
    version = stamp.moduleVersion;
    return std::strcmp(stamp.moduleVersion, ORVIK_MODULE_VERSION) == 0 ? PF_FITS : PF_OTHER_VERSION;
}
