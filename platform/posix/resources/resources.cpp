#include "platform/posix/resources/resources.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include "platform/posix/files/path_internal.h"
#include "platform/posix/kernel/errors.h"
#include "platform/posix/regional/locale_data_internal.h"
#include "platform/posix/resources/embedded_dialogs_internal.h"
#include "platform/posix/resources/images_internal.h"
#include "platform/posix/text/letters_internal.h"
#include "platform/posix/text/text_internal.h"
#include "res/embedded.h"

using namespace orvik::detail;

namespace {

enum Type : WORD { kCursor = 1, kIcon = 3, kDialog = 5, kString = 6, kGroupCursor = 12, kGroupIcon = 14 };
constexpr LANGID kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), kSwedish = MAKELANGID(LANG_SWEDISH, SUBLANG_SWEDISH);
constexpr unsigned kTextsInBlock = 16;

void Put(std::vector<unsigned char>& out, uint32_t value, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i) out.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

std::u16string Wide(const char* utf8) {
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8, -1, nullptr, 0);
    std::u16string out(static_cast<size_t>(std::max(length, 1)), u'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8, -1, out.data(), length);
    out.pop_back();
    return out;
}

}  // namespace

// A resource in the form that the resource compiler gives it: text blocks of sixteen, group directories, single images.
struct HRSRC__ {
    std::vector<unsigned char> bytes;
};

// A live cursor or icon.
struct HICON__ {
    IconImage image;
    bool shared = false;
};

namespace {

class Resources {
public:
    static const Resources& Get() {
        static const Resources all;
        return all;
    }

    const HRSRC__* Find(WORD type, WORD id, LANGID language) const {
        const auto found = m_entries.find({type, id, language});
        return found == m_entries.end() ? nullptr : &found->second;
    }
    bool HasType(WORD type) const {
        const auto first = m_entries.lower_bound({type, 0, 0});
        return first != m_entries.end() && std::get<0>(first->first) == type;
    }
    const std::string* Text(UINT id, LANGID language) const {
        const auto found = m_texts.find({id, language});
        return found == m_texts.end() ? nullptr : &found->second;
    }

private:
    using Key = std::tuple<WORD, WORD, LANGID>;

    Resources() {
        std::map<std::pair<WORD, LANGID>, std::vector<std::u16string>> blocks;
        for (const EmbeddedText& text : EmbeddedTexts())
            for (const LANGID language : {kEnglish, kSwedish}) {
                const std::u16string wide = Wide(language == kSwedish ? text.swedish : text.english);
                m_texts[{text.id, language}] = HouseFromUtf16(wide);
                auto& block = blocks[{static_cast<WORD>(text.id / kTextsInBlock + 1), language}];
                block.resize(kTextsInBlock);
                block[text.id % kTextsInBlock] = wide;
            }
        for (const auto& [key, block] : blocks) {
            auto& bytes = m_entries[{kString, key.first, key.second}].bytes;
            for (const std::u16string& text : block) {
                Put(bytes, static_cast<uint32_t>(text.size()), 2);
                for (const char16_t c : text) Put(bytes, c, 2);
            }
        }
        for (const EmbeddedImage& image : EmbeddedImages()) AddImage(image);
        for (EmbeddedDialog dialog : EmbeddedDialogs()) {
            m_entries[{kDialog, dialog.id, kEnglish}].bytes = std::move(dialog.english);
            m_entries[{kDialog, dialog.id, kSwedish}].bytes = std::move(dialog.swedish);
        }
    }

    void AddImage(const EmbeddedImage& image) {
        const auto entries = ReadIconFile({image.first, image.end}, image.cursor);
        if (entries.empty()) return;
        auto& group = m_entries[{image.cursor ? kGroupCursor : kGroupIcon, static_cast<WORD>(image.id), 0}].bytes;
        Put(group, 0, 2), Put(group, image.cursor ? 2 : 1, 2), Put(group, static_cast<uint32_t>(entries.size()), 2);
        for (const IconEntry& entry : entries) {
            std::vector<unsigned char> bytes;
            if (image.cursor) Put(bytes, entry.hotX, 2), Put(bytes, entry.hotY, 2);
            bytes.insert(bytes.end(), entry.image.begin(), entry.image.end());
            if (image.cursor) {
                Put(group, static_cast<uint32_t>(entry.width), 2), Put(group, static_cast<uint32_t>(entry.height) * 2, 2);
                Put(group, 1, 2), Put(group, 32, 2);
            } else {
                Put(group, static_cast<uint32_t>(entry.width) & 0xFF, 1),
                    Put(group, static_cast<uint32_t>(entry.height) & 0xFF, 1);
                Put(group, 0, 2), Put(group, 1, 2), Put(group, 32, 2);
            }
            Put(group, static_cast<uint32_t>(bytes.size()), 4), Put(group, ++m_images, 2);
            m_entries[{image.cursor ? kCursor : kIcon, static_cast<WORD>(m_images), 0}].bytes = std::move(bytes);
        }
    }

    std::map<Key, HRSRC__> m_entries;
    std::map<std::pair<UINT, LANGID>, std::string> m_texts;
    WORD m_images = 0;
};

// Live handles. Shared objects stay to the end of the process.
struct Handles {
    std::mutex lock;
    std::map<HICON, std::unique_ptr<HICON__>> live;
    std::map<std::pair<WORD, WORD>, HICON> shared;  // group type (0 for the system's cursors) and id

    HICON Add(IconImage image, bool keep) {
        auto object = std::make_unique<HICON__>();
        object->image = std::move(image);
        object->shared = keep;
        const HICON handle = object.get();
        live[handle] = std::move(object);
        return handle;
    }
};
Handles& TheHandles() {
    static Handles handles;
    return handles;
}

thread_local LANGID t_language = 0;  // 0: the user's

LANGID LanguageInForce() {
    const LANGID language = t_language ? t_language : GetUserDefaultUILanguage();
    return PRIMARYLANGID(language) == LANG_SWEDISH ? kSwedish : kEnglish;
}

link_map* MapOf(const void* address) {
    Dl_info info;
    void* map = nullptr;
    return dladdr1(address, &info, &map, RTLD_DL_LINKMAP) ? static_cast<link_map*>(map) : nullptr;
}
HMODULE ThisModule() {
    // Once: the linker's answer takes microseconds, and every loaded text asks.
    static const int here = 0;
    static const auto module = reinterpret_cast<HMODULE>(MapOf(&here));
    return module;
}

template <class T>
T Refuse(DWORD code) {
    SetLastError(code);
    return T{};
}

template <class Id>
WORD Number(Id id) {
    return IS_INTRESOURCE(id) ? static_cast<WORD>(reinterpret_cast<ULONG_PTR>(id)) : 0;
}

const HRSRC__* FindById(HMODULE module, WORD type, WORD id, LANGID language) {
    if (!module) module = GetModuleHandleA(nullptr);
    const Resources& all = Resources::Get();
    if (module != ThisModule() || !all.HasType(type)) return Refuse<const HRSRC__*>(ERROR_RESOURCE_TYPE_NOT_FOUND);
    const HRSRC__* found = nullptr;
    if (PRIMARYLANGID(language) != LANG_NEUTRAL) {
        found = all.Find(type, id, language);
    } else {
        found = all.Find(type, id, LanguageInForce());
        if (!found) found = all.Find(type, id, 0);
    }
    return found ? found : Refuse<const HRSRC__*>(ERROR_RESOURCE_NAME_NOT_FOUND);
}

HRSRC AsHandle(const HRSRC__* resource) { return const_cast<HRSRC>(resource); }

// Decodes the group's entry nearest to the wanted size; false, with the last error set, when there is none.
bool LoadGroup(HMODULE module, WORD id, bool cursor, int width, IconImage& image) {
    const HRSRC__* group = FindById(module, cursor ? kGroupCursor : kGroupIcon, id, 0);
    if (!group) return false;
    const auto& bytes = group->bytes;
    const auto word = [&bytes](size_t at) { return static_cast<WORD>(bytes[at] | bytes[at + 1] << 8); };
    size_t best = 0;
    int distance = INT32_MAX;
    for (size_t i = 0; i < word(4); ++i) {
        const size_t at = 6 + i * 14;
        const int side = cursor ? word(at) : bytes[at] ? bytes[at] : 256;
        if (std::abs(side - width) < distance) distance = std::abs(side - width), best = at;
    }
    const HRSRC__* single = FindById(module, cursor ? kCursor : kIcon, word(best + 12), 0);
    const size_t header = cursor ? 4 : 0;
    if (!single || single->bytes.size() < header) return Refuse<bool>(ERROR_INVALID_DATA);
    auto decoded = DecodeIconBitmap(std::span(single->bytes).subspan(header));
    if (!decoded) return Refuse<bool>(ERROR_INVALID_DATA);
    image = std::move(*decoded);
    image.icon = !cursor;
    image.hotX = cursor ? single->bytes[0] | single->bytes[1] << 8 : image.width / 2;
    image.hotY = cursor ? single->bytes[2] | single->bytes[3] << 8 : image.height / 2;
    return true;
}

HICON LoadShared(HMODULE module, WORD id, bool cursor) {
    Handles& handles = TheHandles();
    const std::lock_guard guard(handles.lock);
    const auto key = std::pair<WORD, WORD>(cursor ? kGroupCursor : kGroupIcon, id);
    IconImage image;
    // The search comes first, so that another module's id never finds this one's object.
    if (!LoadGroup(module, id, cursor, 32, image)) return nullptr;
    HICON& handle = handles.shared[key];
    if (!handle) handle = handles.Add(std::move(image), true);
    return handle;
}

HICON SystemCursor(WORD id) {
    static constexpr WORD kKnown[] = {32512, 32513, 32514, 32515, 32516, 32642, 32643,
                                      32644, 32645, 32646, 32648, 32649, 32650, 32651};
    if (std::find(std::begin(kKnown), std::end(kKnown), id) == std::end(kKnown))
        return Refuse<HICON>(ERROR_RESOURCE_NAME_NOT_FOUND);
    Handles& handles = TheHandles();
    const std::lock_guard guard(handles.lock);
    HICON& handle = handles.shared[{WORD{0}, id}];
    if (!handle) {
        IconImage image;
        image.width = image.height = 32;
        const bool corner = id == 32512 || id == 32650 || id == 32651;  // arrows point with their tip
        image.hotX = image.hotY = corner ? 0 : 16;
        image.systemId = id;
        handle = handles.Add(std::move(image), true);
    }
    return handle;
}

HANDLE LoadImageById(HINSTANCE module, WORD id, UINT type, int width, int height, UINT flags) {
    if (type != IMAGE_ICON && type != IMAGE_CURSOR) return Refuse<HANDLE>(ERROR_INVALID_PARAMETER);
    if (!module && type == IMAGE_CURSOR) return SystemCursor(id);
    if (flags & LR_SHARED) return LoadShared(module, id, type == IMAGE_CURSOR);
    IconImage image;
    const int wanted = std::max(width, height);
    if (!LoadGroup(module, id, type == IMAGE_CURSOR, wanted > 0 ? wanted : 32, image)) return nullptr;
    Handles& handles = TheHandles();
    const std::lock_guard guard(handles.lock);
    return handles.Add(std::move(image), false);
}

BOOL Destroy(HICON icon) {
    Handles& handles = TheHandles();
    const std::lock_guard guard(handles.lock);
    const auto found = handles.live.find(icon);
    if (found == handles.live.end()) return Refuse<BOOL>(1402);  // invalid cursor handle
    if (!found->second->shared) handles.live.erase(found);
    return TRUE;
}

}  // namespace

namespace orvik::detail {
const IconImage* ImageOf(HICON icon) {
    Handles& handles = TheHandles();
    const std::lock_guard guard(handles.lock);
    const auto found = handles.live.find(icon);
    return found == handles.live.end() ? nullptr : &found->second->image;
}
}  // namespace orvik::detail

LANGID GetUserDefaultUILanguage() {
    static const LANGID language = [] {
        for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
            if (const char* value = std::getenv(variable); value && *value) return static_cast<LANGID>(LocaleByName(value).lcid);
        return kEnglish;
    }();
    return language;
}
LANGID GetThreadUILanguage() { return t_language ? t_language : GetUserDefaultUILanguage(); }
LANGID SetThreadUILanguage(LANGID language) {
    t_language = language;
    return GetThreadUILanguage();
}
LCID GetThreadLocale() { return MAKELCID(GetThreadUILanguage(), SORT_DEFAULT); }
BOOL SetThreadLocale(LCID locale) {
    t_language = locale == LOCALE_USER_DEFAULT || locale == LOCALE_SYSTEM_DEFAULT ? LANGID{0} : LANGIDFROMLCID(locale);
    return TRUE;
}

HMODULE GetModuleHandleA(LPCSTR name) {
    if (name) {
        std::string base(name);
        if (const size_t dot = base.rfind('.'); dot != std::string::npos) base.resize(dot);
        if (strcasecmp(base.c_str(), "OrvikShared") == 0) return ThisModule();
    }
    // A reference would keep the library from unloading; the map stays valid without one for as long as the library is loaded.
    void* library = dlopen(name ? SystemPath(name).c_str() : nullptr, RTLD_LAZY | RTLD_NOLOAD);
    if (!library) return Refuse<HMODULE>(ERROR_MOD_NOT_FOUND);
    dlclose(library);
    return static_cast<HMODULE>(library);
}

HRSRC FindResourceA(HMODULE module, LPCSTR id, LPCSTR type) { return AsHandle(FindById(module, Number(type), Number(id), 0)); }
HRSRC FindResourceExW(HMODULE module, LPCWSTR type, LPCWSTR id, WORD language) {
    return AsHandle(FindById(module, Number(type), Number(id), language));
}
HGLOBAL LoadResource(HMODULE, HRSRC resource) {
    return resource ? static_cast<HGLOBAL>(resource->bytes.data()) : Refuse<HGLOBAL>(ERROR_INVALID_HANDLE);
}
LPVOID LockResource(HGLOBAL resource) { return resource; }
DWORD SizeofResource(HMODULE, HRSRC resource) {
    return resource ? static_cast<DWORD>(resource->bytes.size()) : Refuse<DWORD>(ERROR_INVALID_HANDLE);
}

int LoadStringA(HINSTANCE module, UINT id, LPSTR out, int size) {
    if (!out || size <= 0) return 0;
    *out = 0;
    if (!FindById(module, kString, static_cast<WORD>((id & 0xFFFF) / kTextsInBlock + 1), 0)) return 0;
    const std::string* text = Resources::Get().Text(id & 0xFFFF, LanguageInForce());
    if (!text) return Refuse<int>(ERROR_RESOURCE_NAME_NOT_FOUND);
    return static_cast<int>(CopyLetters(*text, out, static_cast<size_t>(size)));
}

HCURSOR LoadCursorA(HINSTANCE module, LPCSTR id) {
    return module ? LoadShared(module, Number(id), true) : SystemCursor(Number(id));
}
HCURSOR LoadCursorW(HINSTANCE module, LPCWSTR id) {
    return module ? LoadShared(module, Number(id), true) : SystemCursor(Number(id));
}
HICON LoadIconA(HINSTANCE module, LPCSTR id) { return LoadShared(module, Number(id), false); }
HANDLE LoadImageA(HINSTANCE module, LPCSTR id, UINT type, int width, int height, UINT flags) {
    return LoadImageById(module, Number(id), type, width, height, flags);
}
BOOL DestroyCursor(HCURSOR cursor) { return Destroy(cursor); }
BOOL DestroyIcon(HICON icon) { return Destroy(icon); }

BOOL GetIconInfo(HICON icon, ICONINFO* info) {
    const IconImage* image = ImageOf(icon);
    if (!image || !info) return Refuse<BOOL>(1402);
    *info = {image->icon, static_cast<DWORD>(image->hotX), static_cast<DWORD>(image->hotY), nullptr, nullptr};
    return TRUE;
}
