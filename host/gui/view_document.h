// A session with its view: what the window shows, stores and opens. User-interface thread.
#pragma once

#include <memory>
#include <string>

#include "host/app/work_progress.h"
#include "host/gui/view_history.h"
#include "host/session/session_file.h"

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
    // From now on the session is the one of this file, which has the same channels; the view stays as it is. It is the document's
    // own file, or a recording that somebody records into.
    void ReadFrom(SessionFile file);
    // Takes in what has come into the recording that the readings are in; false where nothing has, and without one.
    bool Update();
    // More may come: somebody records into it, as far as is known.
    bool Grows() const { return m_grows && m_session->Recorded() != nullptr && m_session->Recorded()->MayGrow(); }
    // Nobody does any more.
    void GrowsNoMore() { m_grows = false; }
    // What Save would store besides the readings.
    std::unique_ptr<CPropertyDB> Facts();

    // It is nowhere that its user knows of: Save asks where to.
    void MarkUnsaved() { m_path.clear(), m_kept = kNothing; }

    bool HasSession() const { return m_session != nullptr; }
    Session* GetSession() { return m_session.get(); }
    CPropertyDB& Database() { return *m_db; }
    // Why readings are missing; those of a session.
    const RecordedNotes& Notes() const { return m_session->Recorded() != nullptr ? m_session->Recorded()->Notes() : m_notes; }
    const std::string& Path() const { return m_path; }
    ViewHistory& History() { return m_history; }
    const ViewState& State() const { return m_history.State(); }
    // Something that Save would keep.
    bool IsModified() const { return m_session != nullptr && (m_kept != Extent() || State() != m_saved); }
    // What the user should know of the file that was opened: one sentence in UTF-8, or nothing.
    const std::string& Note() const { return m_note; }
    std::string Title() const;  // house text: the file's name, or the logger's

private:
    static constexpr unsigned __int64 kNothing = static_cast<unsigned __int64>(-1);
    // Of what has been read, to tell whether more has come: bytes of a recording, else readings.
    unsigned __int64 Extent() const;
    void Take(std::unique_ptr<CPropertyDB> db, std::unique_ptr<Session> session, const std::string& path);

    std::unique_ptr<CPropertyDB> m_db = std::make_unique<CPropertyDB>();
    std::unique_ptr<Session> m_session;
    RecordedNotes m_notes;  // of readings that are in memory
    std::string m_path, m_note;
    ViewHistory m_history;
    ViewState m_saved;
    unsigned __int64 m_kept = 0;  // the extent that is in the file
    bool m_grows = false;
};
