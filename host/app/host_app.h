// The reference host as the module sees it: where traces go, whether they are wanted, and which device families there are.
// The user-interface thread, but for Trace and IsCommTraceEnabled, which ports ask for on their threads.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "afx/app.h"
#include "afx/file.h"
#include "frame/app_link.h"
#include "host/app/plugin_library.h"

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
    int IsCommTraceEnabled() override { return m_traces; }

    PluginLibrary& Plugins() { return m_plugins; }

private:
    PluginLibrary m_plugins;
    std::mutex m_traceLock;
    std::unique_ptr<CFile> m_trace;  // these two under the lock
    bool m_traceComplete = true;
    std::atomic<bool> m_traces = false;
};
