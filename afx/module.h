// Modules of a program: the shared libraries that extend it, where their resources are searched, and the state they share.
// The list of linked libraries may be read on any thread; it changes when libraries load and unload, on the thread that does
// that. An extension module calls AfxInitExtensionModule when it is attached and AfxTermExtensionModule when it is detached;
// between them it makes one or more CDynLinkLibrary objects with `new`, which the framework owns and deletes at the end.
#pragma once

#include "afx/object.h"

class CWinApp;

// What an extension module keeps for the framework: one static object, zero at first.
struct AFX_EXTENSION_MODULE {
    BOOL bInitialized;
    HMODULE hModule;
    HMODULE hResource;
};

// A library whose resources and classes are searched. The newest is searched first; those with the system flag come after all
// others.
class ORVIK_API CDynLinkLibrary : public CObject {
    DECLARE_DYNAMIC(CDynLinkLibrary)

public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem = FALSE);
    ~CDynLinkLibrary() override;

    HMODULE m_hModule;
    HMODULE m_hResource;
    BOOL m_bSystem;
    CDynLinkLibrary* m_pNextDLL;
};

// What the modules of one program share.
struct ORVIK_API AFX_MODULE_STATE {
    CWinApp* m_pCurrentWinApp = nullptr;
    HINSTANCE m_hCurrentInstanceHandle = nullptr;
    HINSTANCE m_hCurrentResourceHandle = nullptr;
    LPCSTR m_lpszCurrentAppName = nullptr;
    // One value of the application's own that every module sees; the framework only keeps it.
    void* m_pApplicationSetting = nullptr;
};

// Always TRUE. A second call for the same record changes nothing.
ORVIK_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);
// Deletes the module's CDynLinkLibrary objects, and takes back the window classes that AfxRegisterWndClass made. A record that
// was never initialised is left alone.
ORVIK_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll = FALSE);

// The state of the calling thread's current module, which is the application's unless it was set otherwise; and the
// application's.
ORVIK_API AFX_MODULE_STATE* AfxGetModuleState();
ORVIK_API AFX_MODULE_STATE* AfxGetAppModuleState();
// Returns the previous one; null stands for the application's.
ORVIK_API AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* pNewState);

ORVIK_API HINSTANCE AfxGetInstanceHandle();
ORVIK_API HINSTANCE AfxGetResourceHandle();
ORVIK_API void AfxSetResourceHandle(HINSTANCE hInstResource);

// The module that holds the resource: the resource handle's, then the linked libraries, those with the system flag last. When
// none does, the resource handle, so that the load that follows fails with the system's own error.
ORVIK_API HINSTANCE AfxFindResourceHandle(LPCSTR lpszName, LPCSTR lpszType);
ORVIK_API HINSTANCE AfxFindResourceHandle(LPCWSTR lpszName, LPCWSTR lpszType);
ORVIK_API HINSTANCE AfxFindResourceHandle(UINT nID, LPCSTR lpszType);
ORVIK_API HINSTANCE AfxFindResourceHandle(UINT nID, LPCWSTR lpszType);

// A string resource from the same modules, cut to nMaxBuf - 1 characters: its length, 0 when there is none.
ORVIK_API int AfxLoadString(UINT nID, LPSTR lpszBuf, UINT nMaxBuf = 256);
