// The reference host as the module sees it: where traces go, whether they are wanted, and which device families there are.
// The user-interface thread only.
#pragma once

#include <memory>
#include <string>

#include "afx/app.h"
#include "afx/file.h"
#include "frame/app_link.h"
#include "host/plugin_library.h"

class CHostApp : public CWinApp, public IOrvikApp {
public:
    // Starts the module in its documented order and links it to this object; the destructor ends it in the reverse order.
    CHostApp();
    ~CHostApp() override;

    // From now on every line of the communication trace goes into this file, which is made anew. A Failure if it cannot be.
    void StartTrace(const std::string& path);
    // Also tells whether all of the trace could be written.
    bool StopTrace();

    // The line as it stands: it is finished text, and the per-cent signs that a device sends are its data.
    void Trace(const char* text, ...) override;
    IDeviceFamily* FindDeviceFamily(const char* name) override;
    // Over the window that is in use.
    int DoMessageBox(LPCSTR prompt, UINT type, UINT help) override;
    int IsCommTraceEnabled() override { return m_trace != nullptr; }

    PluginLibrary& Plugins() { return m_plugins; }

private:
    PluginLibrary m_plugins;
    std::unique_ptr<CFile> m_trace;
    bool m_traceComplete = true;
};
