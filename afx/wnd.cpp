#include "afx/wnd.h"

#include "afx/exception.h"
#include "afx/module.h"
#include "afx/wnd_class.h"

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

IMPLEMENT_DYNCREATE(CWnd, CCmdTarget)

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
END_MESSAGE_MAP()

const CWnd CWnd::wndTop(HWND_TOP);
const CWnd CWnd::wndBottom(HWND_BOTTOM);
const CWnd CWnd::wndTopMost(HWND_TOPMOST);
const CWnd CWnd::wndNoTopMost(HWND_NOTOPMOST);

namespace {
// Which object has which window. Windows of several threads meet here, so it has a lock; the objects themselves stay with their
// threads.
class WindowMap {
public:
    CWnd* Find(HWND window) {
        const std::lock_guard lock(m_lock);
        const auto found = m_objects.find(window);
        return found != m_objects.end() ? found->second : nullptr;
    }
    void Set(HWND window, CWnd* object) {
        const std::lock_guard lock(m_lock);
        m_objects[window] = object;
    }
    void Remove(HWND window) {
        const std::lock_guard lock(m_lock);
        m_objects.erase(window);
    }

private:
    std::mutex m_lock;
    std::unordered_map<HWND, CWnd*> m_objects;
};

WindowMap& Windows() {
    // Never destroyed: windows may outlive the static objects of this module.
    static WindowMap& s_map = *new WindowMap;
    return s_map;
}

// The object whose window is being made on this thread, until the first message names the window.
constinit thread_local CWnd* t_creatingWindow = nullptr;
// The message at hand on this thread.
constinit thread_local MSG t_current{};

LRESULT CALLBACK AfxWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

struct ClassNames {
    std::mutex lock;
    std::set<std::string> names;
};
ClassNames& RegisteredClasses() {
    static ClassNames& s_names = *new ClassNames;
    return s_names;
}
}  // namespace

// What the window procedure may touch of a CWnd.
struct CWndAccess {
    static LRESULT Call(CWnd& object, UINT message, WPARAM wParam, LPARAM lParam) {
        const HWND window = object.m_hWnd;
        LRESULT result = 0;
        const MSG outer = std::exchange(t_current, MSG{window, message, wParam, lParam, 0, {}});
        try {
            result = object.WindowProc(message, wParam, lParam);
        } catch (CException* failure) {
            failure->ReportError();
            failure->Delete();
        }
        t_current = outer;
        // The object may be gone by now, unless it is still the window's.
        if (message == WM_NCDESTROY && Windows().Find(window) == &object) {
            object.Forget();
            object.PostNcDestroy();
        }
        return result;
    }
    static void Begin(CWnd& object, HWND window) {
        object.m_hWnd = window;
        Windows().Set(window, &object);
    }
};

namespace {
LRESULT CALLBACK AfxWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    CWnd* object = Windows().Find(window);
    if (object == nullptr && t_creatingWindow != nullptr) {
        object = std::exchange(t_creatingWindow, nullptr);
        CWndAccess::Begin(*object, window);
    }
    if (object == nullptr) return ::DefWindowProcA(window, message, wParam, lParam);
    return CWndAccess::Call(*object, message, wParam, lParam);
}
}  // namespace

CWnd::~CWnd() {
    if (m_hWnd == nullptr || m_temporary) return;
    const HWND window = m_hWnd;
    CWnd::DestroyWindow();
    // A window of another thread stays; it has no object from now on.
    if (m_hWnd != nullptr && Windows().Find(window) == this) Forget();
}

// Ends the tie between object and window, on both sides.
void CWnd::Forget() {
    Windows().Remove(m_hWnd);
    m_hWnd = nullptr;
    m_pfnSuper = nullptr;
}

CWnd* CWnd::FromHandlePermanent(HWND hWnd) { return hWnd != nullptr ? Windows().Find(hWnd) : nullptr; }

CWnd* CWnd::FromHandle(HWND hWnd) {
    if (hWnd == nullptr) return nullptr;
    if (CWnd* permanent = FromHandlePermanent(hWnd)) return permanent;
    thread_local std::unordered_map<HWND, std::unique_ptr<CWnd>> t_temporary;
    std::unique_ptr<CWnd>& object = t_temporary[hWnd];
    if (object == nullptr) {
        object = std::make_unique<CWnd>();
        object->m_hWnd = hWnd;
        object->m_temporary = true;
    }
    return object.get();
}

void CWnd::Subclass(HWND window) {
    const auto current = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC));
    if (current == &AfxWndProc) return;
    m_pfnSuper = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&AfxWndProc)));
}

const MSG* CWnd::GetCurrentMessage() { return &t_current; }

LRESULT CWnd::Default() { return DefWindowProc(t_current.message, t_current.wParam, t_current.lParam); }

BOOL CWnd::Attach(HWND hWndNew) {
    if (hWndNew == nullptr || m_hWnd != nullptr || FromHandlePermanent(hWndNew) != nullptr) return FALSE;
    CWndAccess::Begin(*this, hWndNew);
    Subclass(hWndNew);
    return TRUE;
}

HWND CWnd::Detach() {
    const HWND window = m_hWnd;
    if (window == nullptr) return nullptr;
    if (m_pfnSuper != nullptr) SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuper));
    Forget();
    return window;
}

BOOL CWnd::PreCreateWindow(CREATESTRUCTA& cs) {
    if (cs.lpszClass == nullptr) cs.lpszClass = AfxRegisterWndClass(0);
    return TRUE;
}

BOOL CWnd::CreateEx(DWORD dwExStyle, LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle, int x, int y, int nWidth,
                    int nHeight, HWND hWndParent, HMENU nIDorHMenu, LPVOID lpParam) {
    if (m_hWnd != nullptr) return FALSE;
    CREATESTRUCTA cs = {};
    cs.dwExStyle = dwExStyle;
    cs.lpszClass = lpszClassName;
    cs.lpszName = lpszWindowName;
    cs.style = static_cast<LONG>(dwStyle);
    cs.x = x;
    cs.y = y;
    cs.cx = nWidth;
    cs.cy = nHeight;
    cs.hwndParent = hWndParent;
    cs.hMenu = nIDorHMenu;
    cs.hInstance = AfxGetInstanceHandle();
    cs.lpCreateParams = lpParam;
    if (!PreCreateWindow(cs)) {
        PostNcDestroy();
        return FALSE;
    }
    CWnd* const outer = std::exchange(t_creatingWindow, this);
    const HWND window = ::CreateWindowExA(cs.dwExStyle, cs.lpszClass, cs.lpszName, static_cast<DWORD>(cs.style), cs.x, cs.y,
                                          cs.cx, cs.cy, cs.hwndParent, cs.hMenu, cs.hInstance, cs.lpCreateParams);
    // Still waiting: the window's class has a procedure of its own, or there was not even a first message.
    const bool waiting = std::exchange(t_creatingWindow, outer) == this;
    if (window == nullptr) {
        if (waiting) PostNcDestroy();
        return FALSE;
    }
    if (waiting) {
        CWndAccess::Begin(*this, window);
        Subclass(window);
    }
    return TRUE;
}

BOOL CWnd::CreateEx(DWORD dwExStyle, LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle, const RECT& rect,
                    CWnd* pParentWnd, UINT nID, LPVOID lpParam) {
    return CreateEx(dwExStyle, lpszClassName, lpszWindowName, dwStyle, rect.left, rect.top, rect.right - rect.left,
                    rect.bottom - rect.top, pParentWnd != nullptr ? pParentWnd->m_hWnd : nullptr,
                    reinterpret_cast<HMENU>(static_cast<UINT_PTR>(nID)), lpParam);
}

BOOL CWnd::DestroyWindow() { return m_hWnd != nullptr && ::DestroyWindow(m_hWnd); }

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) { return ::SendMessageA(m_hWnd, message, wParam, lParam); }

BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    // The system would take a null window for the calling thread itself.
    if (m_hWnd == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    return ::PostMessageA(m_hWnd, message, wParam, lParam);
}

UINT_PTR CWnd::SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer) {
    return m_hWnd != nullptr ? ::SetTimer(m_hWnd, nIDEvent, nElapse, lpfnTimer) : 0;
}
BOOL CWnd::KillTimer(UINT_PTR nIDEvent) { return m_hWnd != nullptr && ::KillTimer(m_hWnd, nIDEvent); }

void CWnd::SetWindowText(LPCSTR lpszString) { ::SetWindowTextA(m_hWnd, lpszString); }

void CWnd::GetWindowText(CString& rString) const {
    const int length = ::GetWindowTextLengthA(m_hWnd);
    const int got = ::GetWindowTextA(m_hWnd, rString.GetBuffer(length), length + 1);
    rString.ReleaseBuffer(got);
}

BOOL CWnd::EnableWindow(BOOL bEnable) { return ::EnableWindow(m_hWnd, bEnable); }
BOOL CWnd::IsWindowEnabled() const { return ::IsWindowEnabled(m_hWnd); }

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    return OnWndMsg(message, wParam, lParam, &result) ? result : DefWindowProc(message, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (m_pfnSuper != nullptr) return ::CallWindowProcA(m_pfnSuper, m_hWnd, message, wParam, lParam);
    return ::DefWindowProcA(m_hWnd, message, wParam, lParam);
}

void CWnd::PostNcDestroy() {}

LPCSTR AfxRegisterWndClass(UINT nClassStyle, HCURSOR hCursor, HBRUSH hbrBackground, HICON hIcon) {
    const HINSTANCE instance = AfxGetInstanceHandle();
    CString name;
    name.Format("Afx:%p:%x:%p:%p:%p", static_cast<void*>(instance), nClassStyle, static_cast<void*>(hCursor),
                static_cast<void*>(hbrBackground), static_cast<void*>(hIcon));
    ClassNames& classes = RegisteredClasses();
    const std::lock_guard lock(classes.lock);
    const auto [entry, isNew] = classes.names.insert(name.GetString());
    WNDCLASSA windowClass = {};
    if (!isNew && GetClassInfoA(instance, name, &windowClass)) return entry->c_str();
    windowClass = {};
    windowClass.style = nClassStyle;
    windowClass.lpfnWndProc = &AfxWndProc;
    windowClass.hInstance = instance;
    windowClass.hIcon = hIcon;
    windowClass.hCursor = hCursor;
    windowClass.hbrBackground = hbrBackground;
    windowClass.lpszClassName = name;
    if (RegisterClassA(&windowClass) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
        classes.names.erase(entry);
        AfxThrowResourceException();
    }
    return entry->c_str();
}

void orvik::detail::UnregisterWndClasses() {
    ClassNames& classes = RegisteredClasses();
    const std::lock_guard lock(classes.lock);
    const HINSTANCE instance = AfxGetInstanceHandle();
    for (const std::string& name : classes.names) UnregisterClassA(name.c_str(), instance);
}
