// The version resource of a PE or ELF file, through everything that reads it.
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/fuzz_support.h"
#include "ui/version_info.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A file in memory; its name stays the same.
    static const int file = memfd_create("version", 0);
    static const std::string name = "/proc/self/fd/" + std::to_string(file);
    FUZZ_REQUIRE(ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size));

    const CVersionInfo info(name.c_str());
    for (const char* text : {info.GetFileDescription(), info.GetFileVersion(), info.GetInternalName(), info.GetLegalCopyright(),
                             info.GetLegalTrademarks(), info.GetOriginalFilename(), info.GetPrivateBuild(), info.GetProductName(),
                             info.GetProductVersion(), info.GetSpecialBuild()})
        FUZZ_REQUIRE(std::string(text).size() < 65536);
    if (!info.IsValid()) return 0;
    DWORD ms = 0, ls = 0;
    info.GetFileVersion(&ms, &ls);
    info.GetProductVersion(&ms, &ls);
    const int all = info.GetFileFlag(static_cast<CVersionInfo::EFileFlag>(0xFFFFFFFF));
    FUZZ_REQUIRE(all == 0 || info.GetFileFlag(CVersionInfo::flagDebug) == 1);
    info.GetFileOS(), info.GetFileType(), info.GetSubType();
    return 0;
}
