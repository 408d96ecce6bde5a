// The process, its modules and what they carry.
#include "platform/windows/door_text_internal.h"

#include <cstring>
#include <mutex>
#include <set>

using namespace orvik::detail;

HRSRC WINAPI OrvikFindResourceA(HMODULE module, LPCSTR name, LPCSTR type) {
    return HouseIsUtf8() ? FindResourceW(module, WideArgument(name), WideArgument(type)) : FindResourceA(module, name, type);
}

HCURSOR WINAPI OrvikLoadCursorA(HINSTANCE module, LPCSTR name) {
    return HouseIsUtf8() ? LoadCursorW(module, WideArgument(name)) : LoadCursorA(module, name);
}

HANDLE WINAPI OrvikLoadImageA(HINSTANCE module, LPCSTR name, UINT type, int width, int height, UINT flags) {
    return HouseIsUtf8() ? LoadImageW(module, WideArgument(name), type, width, height, flags)
                         : LoadImageA(module, name, type, width, height, flags);
}

int WINAPI OrvikLoadStringA(HINSTANCE module, UINT id, LPSTR out, int size) {
    if (!HouseIsUtf8()) return LoadStringA(module, id, out, size);
    const wchar_t* text = nullptr;
    const int length = LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0);  // where it lies, instead of a copy
    return length > 0 ? PutCut({text, static_cast<size_t>(length)}, out, size) : 0;
}

HMODULE WINAPI OrvikLoadLibraryA(LPCSTR name) { return HouseIsUtf8() ? LoadLibraryW(WideArgument(name)) : LoadLibraryA(name); }

HMODULE WINAPI OrvikGetModuleHandleA(LPCSTR name) {
    return HouseIsUtf8() ? GetModuleHandleW(WideArgument(name)) : GetModuleHandleA(name);
}

DWORD WINAPI OrvikGetModuleFileNameA(HMODULE module, LPSTR out, DWORD size) {
    if (!HouseIsUtf8()) return GetModuleFileNameA(module, out, size);
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) return 0;
        if (length < path.size()) {
            path.resize(length);
            break;
        }
        path.resize(2 * path.size());
    }
    if (NarrowLength(path) < size) return static_cast<DWORD>(PutCut(path, out, static_cast<int>(size)));
    PutCut(path, out, static_cast<int>(size));
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return size;
}

DWORD WINAPI OrvikGetEnvironmentVariableA(LPCSTR name, LPSTR out, DWORD size) {
    if (!HouseIsUtf8()) return GetEnvironmentVariableA(name, out, size);
    const WideArgument wide(name);
    SetLastError(ERROR_SUCCESS);
    const std::wstring value = WholePath([&](LPWSTR buffer, DWORD room) { return GetEnvironmentVariableW(wide, buffer, room); });
    if (value.empty() && size > 0) *out = 0;
    return PutPath(value, out, size);
}

BOOL WINAPI OrvikSetEnvironmentVariableA(LPCSTR name, LPCSTR value) {
    return HouseIsUtf8() ? SetEnvironmentVariableW(WideArgument(name), WideArgument(value))
                         : SetEnvironmentVariableA(name, value);
}

DWORD WINAPI OrvikGetFileVersionInfoSizeA(LPCSTR name, LPDWORD handle) {
    return HouseIsUtf8() ? GetFileVersionInfoSizeW(WideArgument(name), handle) : GetFileVersionInfoSizeA(name, handle);
}

BOOL WINAPI OrvikGetFileVersionInfoA(LPCSTR name, DWORD handle, DWORD size, LPVOID out) {
    return HouseIsUtf8() ? GetFileVersionInfoW(WideArgument(name), handle, size, out)
                         : GetFileVersionInfoA(name, handle, size, out);
}

BOOL WINAPI OrvikVerQueryValueA(LPCVOID block, LPCSTR path, LPVOID* value, PUINT length) {
    if (!HouseIsUtf8()) return VerQueryValueA(block, path, value, length);
    const WideArgument wide(path);
    if (!VerQueryValueW(block, wide, value, length)) return FALSE;
    if (_wcsnicmp(wide, L"\\StringFileInfo\\", 16) != 0 || *length == 0) return TRUE;
    // The record has its texts in UTF-16, and no room of its own for others.
    static std::mutex s_lock;
    static std::set<std::string>& s_texts = *new std::set<std::string>;
    const auto* const text = static_cast<const wchar_t*>(*value);
    const std::lock_guard lock(s_lock);
    const std::string& kept = *s_texts.insert(NarrowText({text, wcsnlen(text, *length)})).first;
    *value = const_cast<char*>(kept.c_str());
    *length = static_cast<UINT>(kept.size() + 1);
    return TRUE;
}
