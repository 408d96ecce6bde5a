#include "host/app/plugin_library.h"

#include <set>

#include "frame/plugin_stamp.h"
#include "host/words/console.h"
#include "host/words/texts.h"

namespace {
std::string Environment(const char* name) {
    char text[4096];
    const DWORD length = GetEnvironmentVariableA(name, text, sizeof text);
    return length > 0 && length < sizeof text ? std::string(text, length) : std::string();
}

std::string ProgramFolder() {
    char path[4096];
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    const std::string name(path, length < sizeof path ? length : 0);
    return name.substr(0, name.find_last_of("/\\"));
}

// The path without detours.
std::string Whole(const std::string& path) {
    char text[4096];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof text, text, nullptr);
    return length > 0 && length < sizeof text ? std::string(text, length) : path;
}

// The files of a folder, in the order of their names.
std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> files;
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((folder + "/*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return files;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) files.push_back(folder + '/' + found.cFileName);
    } while (FindNextFileA(search, &found));
    FindClose(search);
    std::sort(files.begin(), files.end());
    return files;
}
}  // namespace

PluginLibrary::~PluginLibrary() {
    for (const auto& [stamp, module] : m_loaded) FreeLibrary(module);
}

std::vector<std::string> PluginLibrary::Folders() {
    const std::string program = ProgramFolder();
    std::vector<std::string> folders = {Whole(program + "/plugins"), Whole(program + "/" ORVIK_PLUGIN_FOLDER)};
    const std::string chosen = Environment("ORVIK_PLUGINS");
    if (!chosen.empty()) folders.insert(folders.begin(), Whole(chosen));
    return folders;
}

ILoggerFamily* PluginLibrary::Find(const std::string& family) {
    return FamilyOf<ILoggerFamily>(family, ORVIK_PLUGIN_FAMILY_NAME);
}

ISinkFamily* PluginLibrary::FindSink(const std::string& family) {
    return FamilyOf<ISinkFamily>(ORVIK_SINK_STAMP + family, ORVIK_PLUGIN_SINK_FAMILY_NAME);
}

template <class Family>
Family* PluginLibrary::FamilyOf(const std::string& stamp, const char* entry) {
    const HMODULE module = FindStamped(stamp);
    if (module == nullptr) return nullptr;
    const auto give = reinterpret_cast<Family* (*)()>(reinterpret_cast<void*>(GetProcAddress(module, entry)));
    Family* const family = give == nullptr ? nullptr : give();
    if (family != nullptr) return family;
    char path[4096] = "";
    GetModuleFileNameA(module, path, sizeof path);
    throw Failure{kWrongUse, Say(Text::PluginBroken, {ToUtf8(path), Reason(ERROR_PROC_NOT_FOUND)})};
}

HMODULE PluginLibrary::FindStamped(const std::string& stamp) {
    const auto known = m_loaded.find(stamp);
    if (known != m_loaded.end()) return known->second;
    std::string otherVersion;
    for (const std::string& folder : Folders()) {
        for (const std::string& path : FilesIn(folder)) {
            CString name, version;
            const EPluginFit fit = OrvikCheckPlugin(path.c_str(), name, version);
            if ((fit != PF_FITS && fit != PF_OTHER_VERSION) || stamp != static_cast<const char*>(name)) continue;
            if (fit == PF_FITS) {
                const HMODULE module = LoadLibraryA(path.c_str());
                const DWORD error = GetLastError();
                if (module == nullptr) throw Failure{kWrongUse, Say(Text::PluginBroken, {ToUtf8(path), Reason(error)})};
                return m_loaded[stamp] = module;
            }
            // A fitting one may still be found; if not, this is what the user has to know.
            otherVersion =
                Say(Text::PluginOtherVersion, {ToUtf8(path), ToUtf8(static_cast<const char*>(version)), ORVIK_MODULE_VERSION});
        }
    }
    if (!otherVersion.empty()) throw Failure{kWrongUse, otherVersion};
    return nullptr;
}

namespace {
bool IsSink(const std::string& stamp) { return stamp.starts_with(ORVIK_SINK_STAMP); }

std::set<std::string> StampsThatFit() {
    std::set<std::string> stamps;
    for (const std::string& folder : PluginLibrary::Folders()) {
        for (const std::string& path : FilesIn(folder)) {
            CString name, version;
            if (OrvikCheckPlugin(path.c_str(), name, version) == PF_FITS) stamps.insert(static_cast<const char*>(name));
        }
    }
    return stamps;
}
}  // namespace

std::vector<std::string> PluginLibrary::Families() {
    std::set<std::string> stamps = StampsThatFit();
    std::erase_if(stamps, IsSink);
    return {stamps.begin(), stamps.end()};
}

std::vector<std::string> PluginLibrary::SinkFamilies() {
    std::vector<std::string> families;
    for (const std::string& stamp : StampsThatFit()) {
        if (IsSink(stamp)) families.push_back(stamp.substr(sizeof ORVIK_SINK_STAMP - 1));
    }
    return families;
}
