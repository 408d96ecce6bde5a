#include "host/app/host_app.h"

#include "frame/app_stock.h"
#include "frame/module.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "time/locale_cache.h"

CHostApp::CHostApp() {
    OrvikShared_InitModule();
    Connect2Application(this);
    LoadAppStock();
    NlsToolsRegister();
}

CHostApp::~CHostApp() {
    StopTrace();
    FreeAppStock();
    NlsToolsUnregister();
    Connect2Application(nullptr);
}

void CHostApp::StartTrace(const std::string& path) {
    StopTrace();
    m_traceComplete = true;  // nobody else writes now
    auto file = std::make_unique<CFile>();
    CFileException failure;
    if (!file->Open(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite, &failure)) {
        throw Failure{kFileFailed, Say(Text::TraceNotMade, {ToUtf8(path), Reason(static_cast<DWORD>(failure.m_lOsError))})};
    }
    const std::lock_guard lock(m_traceLock);
    m_trace = std::move(file);
    m_traces = true;
}

bool CHostApp::StopTrace() {
    m_traces = false;
    const std::lock_guard lock(m_traceLock);
    if (m_trace != nullptr) {
        try {
            m_trace->Close();
        } catch (CFileException* failure) {
            m_traceComplete = false;
            failure->Delete();
        }
        m_trace.reset();
    }
    return m_traceComplete;
}

void CHostApp::Trace(const char* text, ...) {
    const std::lock_guard lock(m_traceLock);
    if (m_trace == nullptr) return;
    try {
        const std::string line = ToUtf8(text);
        m_trace->Write(line.data(), static_cast<UINT>(line.size()));
        m_trace->Write("\n", 1);
    } catch (CFileException* failure) {
        // A full disk must not end the reading of a logger; StopTrace tells.
        m_traceComplete = false;
        failure->Delete();
    }
}

IDeviceFamily* CHostApp::FindDeviceFamily(const char* name) {
    try {
        return m_plugins.Find(name);
    } catch (const Failure& failure) {
        PrintError(failure.sentence);
        return nullptr;
    }
}

int CHostApp::DoMessageBox(LPCSTR prompt, UINT type, UINT) {
    return ::MessageBoxA(::GetActiveWindow(), prompt, "OrvikHost", type);
}
