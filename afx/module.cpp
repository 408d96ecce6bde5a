#include "afx/module.h"

#include "afx/class_list.h"
#include "afx/string.h"
#include "afx/wnd_class.h"

#include <vector>

IMPLEMENT_DYNAMIC(CDynLinkLibrary, CObject)

namespace {
using orvik::detail::ClassListLock;
constinit CDynLinkLibrary* g_firstLibrary = nullptr;

constinit thread_local AFX_MODULE_STATE* t_moduleState = nullptr;

bool Holds(HMODULE module, LPCSTR name, LPCSTR type) { return FindResourceA(module, name, type) != nullptr; }

std::vector<HMODULE> LinkedModules() {
    std::vector<HMODULE> ordinary, system;
    const ClassListLock lock;
    for (const CDynLinkLibrary* walk = g_firstLibrary; walk != nullptr; walk = walk->m_pNextDLL)
        if (walk->m_hResource != nullptr) (walk->m_bSystem ? system : ordinary).push_back(walk->m_hResource);
    ordinary.insert(ordinary.end(), system.begin(), system.end());
    return ordinary;
}

// Resources are named by number here.
LPCSTR Narrow(LPCWSTR id) { return reinterpret_cast<LPCSTR>(id); }
}  // namespace

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem)
    : m_hModule(state.hModule), m_hResource(state.hResource), m_bSystem(bSystem) {
    const ClassListLock lock;
    m_pNextDLL = g_firstLibrary;
    g_firstLibrary = this;
}

CDynLinkLibrary::~CDynLinkLibrary() {
    const ClassListLock lock;
    for (CDynLinkLibrary** link = &g_firstLibrary; *link != nullptr; link = &(*link)->m_pNextDLL) {
        if (*link != this) continue;
        *link = m_pNextDLL;
        return;
    }
}

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule) {
    if (state.bInitialized) return TRUE;
    state.bInitialized = TRUE;
    state.hModule = hModule;
    state.hResource = hModule;
    return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL) {
    if (!state.bInitialized) return;
    std::vector<CDynLinkLibrary*> own;
    {
        const ClassListLock lock;
        for (CDynLinkLibrary* walk = g_firstLibrary; walk != nullptr; walk = walk->m_pNextDLL)
            if (walk->m_hModule == state.hModule) own.push_back(walk);
    }
    for (CDynLinkLibrary* library : own) delete library;
    orvik::detail::UnregisterWndClasses();
    state.bInitialized = FALSE;
}

AFX_MODULE_STATE* AfxGetAppModuleState() {
    static AFX_MODULE_STATE s_state = [] {
        AFX_MODULE_STATE state;
        state.m_hCurrentInstanceHandle = GetModuleHandleA(nullptr);
        state.m_hCurrentResourceHandle = state.m_hCurrentInstanceHandle;
        return state;
    }();
    return &s_state;
}

AFX_MODULE_STATE* AfxGetModuleState() { return t_moduleState != nullptr ? t_moduleState : AfxGetAppModuleState(); }

AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* pNewState) {
    AFX_MODULE_STATE* previous = AfxGetModuleState();
    t_moduleState = pNewState;
    return previous;
}

HINSTANCE AfxGetInstanceHandle() { return AfxGetModuleState()->m_hCurrentInstanceHandle; }
HINSTANCE AfxGetResourceHandle() { return AfxGetModuleState()->m_hCurrentResourceHandle; }
void AfxSetResourceHandle(HINSTANCE hInstResource) { AfxGetModuleState()->m_hCurrentResourceHandle = hInstResource; }

HINSTANCE AfxFindResourceHandle(LPCSTR lpszName, LPCSTR lpszType) {
    const HINSTANCE current = AfxGetResourceHandle();
    if (Holds(current, lpszName, lpszType)) return current;
    for (const HMODULE module : LinkedModules())
        if (Holds(module, lpszName, lpszType)) return module;
    return current;
}

HINSTANCE AfxFindResourceHandle(LPCWSTR lpszName, LPCWSTR lpszType) {
    return AfxFindResourceHandle(Narrow(lpszName), Narrow(lpszType));
}
HINSTANCE AfxFindResourceHandle(UINT nID, LPCSTR lpszType) { return AfxFindResourceHandle(MAKEINTRESOURCEA(nID), lpszType); }
HINSTANCE AfxFindResourceHandle(UINT nID, LPCWSTR lpszType) {
    return AfxFindResourceHandle(MAKEINTRESOURCEA(nID), Narrow(lpszType));
}

int AfxLoadString(UINT nID, LPSTR lpszBuf, UINT nMaxBuf) {
    if (lpszBuf == nullptr || nMaxBuf == 0) return 0;
    const int size = static_cast<int>(nMaxBuf < 0x7FFFFFFF ? nMaxBuf : 0x7FFFFFFF);
    lpszBuf[0] = 0;
    int length = LoadStringA(AfxGetResourceHandle(), nID, lpszBuf, size);
    if (length > 0) return length;
    for (const HMODULE module : LinkedModules()) {
        length = LoadStringA(module, nID, lpszBuf, size);
        if (length > 0) return length;
    }
    lpszBuf[0] = 0;
    return 0;
}

BOOL CString::LoadString(UINT id) {
    constexpr int kMostOfCharacter = 3;  // bytes, where a character has several
    for (int room = 256;; room *= 4) {
        char* buffer = GetBuffer(room);
        const int length = AfxLoadString(id, buffer, static_cast<UINT>(room) + 1);
        ReleaseBuffer(length);
        // A text that fills the buffer, but for a part of a character, may have been cut. A string resource holds at most 65,535
        // characters.
        if (length < room - kMostOfCharacter || room > 4 * 65536) break;
    }
    FreeExtra();
    return !IsEmpty();
}
