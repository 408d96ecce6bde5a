// Window classes: their registration and look-up.
#include <cstring>
#include <map>

#include "platform/posix/window/window_class_internal.h"

namespace orvik::detail {
namespace {
struct Registry {
    std::vector<std::shared_ptr<WindowClass>> classes;
    std::map<std::string, ATOM> atoms;  // a name keeps its atom when its class goes
};

std::string LowerCase(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    return text;
}

ATOM AtomOf(Registry& registry, const std::string& name) {
    const auto [at, fresh] = registry.atoms.try_emplace(LowerCase(name), static_cast<ATOM>(0));
    if (fresh && registry.atoms.size() < 0x4000) at->second = static_cast<ATOM>(0xC000u + registry.atoms.size() - 1);
    return at->second;
}

Registry& TheRegistry() {
    static Registry* registry = [] {
        auto* made = new Registry;
        for (const SystemClass& each : SystemClasses()) {
            auto system = std::make_shared<WindowClass>();
            system->name = each.name;
            system->info = {};
            system->info.cbSize = sizeof(WNDCLASSEXA);
            system->info.style = each.style | CS_GLOBALCLASS;
            system->info.lpfnWndProc = each.procedure;
            system->info.cbWndExtra = each.extra;
            system->info.lpszClassName = system->name.c_str();
            system->atom = each.atom != 0 ? each.atom : AtomOf(*made, system->name);
            system->system = true;
            made->classes.push_back(std::move(system));
        }
        return made;
    }();
    return *registry;
}

bool Matches(const WindowClass& known, LPCSTR name) {
    if (IS_INTRESOURCE(name)) return known.atom == static_cast<ATOM>(reinterpret_cast<ULONG_PTR>(name));
    return LowerCase(known.name) == LowerCase(name);
}
}  // namespace

std::shared_ptr<WindowClass> FindClass(HINSTANCE instance, LPCSTR name) {
    if (name == nullptr) return nullptr;
    std::shared_ptr<WindowClass> global;
    for (const auto& known : TheRegistry().classes) {
        if (!Matches(*known, name)) continue;
        if (known->info.hInstance == instance) return known;
        if (known->info.style & CS_GLOBALCLASS) global = known;
    }
    return global;
}
}  // namespace orvik::detail

using namespace orvik::detail;

ATOM RegisterClassExA(const WNDCLASSEXA* given) {
    DWORD error = ERROR_INVALID_PARAMETER;
    if (given != nullptr && given->cbSize == sizeof(WNDCLASSEXA) && given->lpfnWndProc != nullptr &&
        !IS_INTRESOURCE(given->lpszClassName) && *given->lpszClassName != 0 && std::strlen(given->lpszClassName) <= 255 &&
        given->cbWndExtra >= 0 && given->cbWndExtra <= 65536) {
        auto made = std::make_shared<WindowClass>();
        made->name = given->lpszClassName;
        made->info = *given;
        made->info.lpszClassName = made->name.c_str();
        made->info.lpszMenuName = nullptr;  // menus are made by programs, not read from resources
        const std::lock_guard kernel(KernelLock());
        Registry& registry = TheRegistry();
        const std::shared_ptr<WindowClass> known = FindClass(given->hInstance, given->lpszClassName);
        error = known && known->info.hInstance == given->hInstance ? ERROR_CLASS_ALREADY_EXISTS : ERROR_SUCCESS;
        if (error == ERROR_SUCCESS) {
            made->atom = AtomOf(registry, made->name);
            if (made->atom == 0) error = ERROR_NOT_ENOUGH_MEMORY;
        }
        if (error == ERROR_SUCCESS) {
            registry.classes.push_back(made);
            return made->atom;
        }
    }
    SetLastError(error);
    return 0;
}

ATOM RegisterClassA(const WNDCLASSA* given) {
    if (given == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const WNDCLASSEXA extended{sizeof(WNDCLASSEXA),  given->style,        given->lpfnWndProc,   given->cbClsExtra,
                               given->cbWndExtra,    given->hInstance,    given->hIcon,         given->hCursor,
                               given->hbrBackground, given->lpszMenuName, given->lpszClassName, nullptr};
    return RegisterClassExA(&extended);
}

BOOL UnregisterClassA(LPCSTR name, HINSTANCE instance) {
    const std::lock_guard kernel(KernelLock());
    auto& classes = TheRegistry().classes;
    for (auto at = classes.begin(); name != nullptr && at != classes.end(); ++at) {
        if ((*at)->info.hInstance != instance || (*at)->system || !Matches(**at, name)) continue;
        if ((*at)->windows != 0) return Finish(ERROR_CLASS_HAS_WINDOWS);
        classes.erase(at);
        return TRUE;
    }
    return Finish(ERROR_CLASS_DOES_NOT_EXIST);
}

BOOL GetClassInfoExA(HINSTANCE instance, LPCSTR name, WNDCLASSEXA* out) {
    if (out == nullptr || name == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    const std::lock_guard kernel(KernelLock());
    const std::shared_ptr<WindowClass> found = FindClass(instance, name);
    if (!found) return Finish(ERROR_CLASS_DOES_NOT_EXIST);
    *out = found->info;
    return TRUE;
}

BOOL GetClassInfoA(HINSTANCE instance, LPCSTR name, LPWNDCLASSA out) {
    WNDCLASSEXA info;
    if (out == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    if (!GetClassInfoExA(instance, name, &info)) return FALSE;
    *out = {info.style, info.lpfnWndProc, info.cbClsExtra,    info.cbWndExtra,   info.hInstance,
            info.hIcon, info.hCursor,     info.hbrBackground, info.lpszMenuName, info.lpszClassName};
    return TRUE;
}

namespace {
// Reads the class's number into `value`, or writes it there and gives what was there; false for an unknown index.
bool Exchange(WNDCLASSEXA& info, int index, LONG_PTR& value, bool write) {
    const auto pointer = [&]<class T>(T& field) {
        const auto before = reinterpret_cast<LONG_PTR>(field);
        if (write) field = reinterpret_cast<T>(value);
        value = before;
        return true;
    };
    switch (index) {
        case GCLP_HBRBACKGROUND:
            return pointer(info.hbrBackground);
        case GCLP_HCURSOR:
            return pointer(info.hCursor);
        case GCLP_HICON:
            return pointer(info.hIcon);
        case GCLP_HMODULE:
            return pointer(info.hInstance);
        case GCLP_WNDPROC:
            return pointer(info.lpfnWndProc);
        case GCL_CBWNDEXTRA:
            value = info.cbWndExtra;
            return !write;
        case GCL_STYLE: {
            const LONG_PTR before = info.style;
            if (write) info.style = static_cast<UINT>(value);
            value = before;
            return true;
        }
        default:
            return false;
    }
}

ULONG_PTR ClassNumber(HWND handle, int index, LONG_PTR value, bool write) {
    const std::lock_guard kernel(KernelLock());
    const Window* window = FindWindowOf(handle);
    if (window != nullptr && Exchange(window->windowClass->info, index, value, write)) return static_cast<ULONG_PTR>(value);
    SetLastError(window == nullptr ? ERROR_INVALID_WINDOW_HANDLE : ERROR_INVALID_INDEX);
    return 0;
}
}  // namespace

ULONG_PTR GetClassLongPtrA(HWND window, int index) { return ClassNumber(window, index, 0, false); }
ULONG_PTR SetClassLongPtrA(HWND window, int index, LONG_PTR value) { return ClassNumber(window, index, value, true); }
