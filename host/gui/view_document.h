// A session with its view: what the window shows, stores and opens. User-interface thread.
#pragma once

#include <memory>
#include <string>

#include "host/app/work_progress.h"
#include "host/gui/view_history.h"
#include "host/session/session.h"

class ViewDocument {
public:
    // Each is a Failure that says why, and leaves the document as it was.
    // WorkStopped as well, when the progress does not want it any more.
    void Open(const std::string& path, WorkProgress& progress);
    // Readings as text, which are nowhere as a session then.
    void Import(const std::string& path);
    // Where it came from, or elsewhere; readings, tags and the view.
    void Save(const std::string& path, WorkProgress& progress);
    // About how many bytes a save would write.
    unsigned __int64 SizeAs(const std::string& path) const;
    // A new session, for a download, without a file.
    void Begin(CPropertyDB& description, const std::string& port);

    // It is nowhere that its user knows of: Save asks where to.
    void MarkUnsaved() { m_path.clear(), m_readings = static_cast<size_t>(-1); }

    bool HasSession() const { return m_session != nullptr; }
    Session* GetSession() { return m_session.get(); }
    CPropertyDB& Database() { return *m_db; }
    const std::string& Path() const { return m_path; }
    ViewHistory& History() { return m_history; }
    const ViewState& State() const { return m_history.State(); }
    // Something that Save would keep.
    bool IsModified() const { return m_session != nullptr && (m_readings != m_session->Count() || State() != m_saved); }
    // What the user should know of the file that was opened: one sentence in UTF-8, or nothing.
    const std::string& Note() const { return m_note; }
    std::string Title() const;  // house text: the file's name, or the logger's

private:
    void Take(std::unique_ptr<CPropertyDB> db, std::unique_ptr<Session> session, const std::string& path);

    std::unique_ptr<CPropertyDB> m_db = std::make_unique<CPropertyDB>();
    std::unique_ptr<Session> m_session;
    std::string m_path, m_note;
    ViewHistory m_history;
    ViewState m_saved;
    size_t m_readings = 0;  // that are in the file
};
