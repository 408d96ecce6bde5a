#include "host/gui/view_document.h"

#include "host/gui/chart_scene.h"
#include "host/session/csv_file.h"
#include "host/session/database_file.h"
#include "host/session/recording_files.h"

void ViewDocument::Open(const std::string& path, WorkProgress& progress) {
    SessionFile file = OpenSession(path, &progress);
    Take(std::move(file.db), std::move(file.session), file.path);
    m_kept = Extent();
    m_note = file.note;
    m_grows = m_session->Recorded() != nullptr && IsRecordedInto(m_path);
}

void ViewDocument::ReadFrom(SessionFile file) {
    m_db = std::move(file.db);
    m_session = std::move(file.session);
    m_grows = m_session->Recorded() != nullptr;
    if (file.path == m_path) m_kept = Extent();
}

bool ViewDocument::Update() {
    if (m_session == nullptr || m_session->Recorded() == nullptr || !m_session->Recorded()->Update()) return false;
    if (m_session->Recorded()->Path() == m_path) m_kept = Extent();
    return true;
}

std::unique_ptr<CPropertyDB> ViewDocument::Facts() {
    ChartScene::Store(State(), *m_session, *m_db);
    return FactsBesideReadings(*m_db);
}

unsigned __int64 ViewDocument::Extent() const {
    const RecordedSeries* const recorded = m_session->Recorded();
    return recorded != nullptr && m_session->Count() > 0 ? recorded->End() : m_session->Count();
}

void ViewDocument::Import(const std::string& path) {
    auto db = std::make_unique<CPropertyDB>();
    LoadCsv(path, *db);
    // The text does not say whose readings it has; its file's name does in most cases.
    const std::string name = path.substr(path.find_last_of("/\\") + 1);
    db->SetValue("Session.sLogger", name.substr(0, name.find_last_of('.')).c_str());
    auto session = std::make_unique<Session>(*db, path, 0);
    Take(std::move(db), std::move(session), {});
    MarkUnsaved();
}

void ViewDocument::Begin(CPropertyDB& description, const std::string& port) {
    Take(std::make_unique<CPropertyDB>(), std::make_unique<Session>(description, port), {});
}

void ViewDocument::Take(std::unique_ptr<CPropertyDB> db, std::unique_ptr<Session> session, const std::string& path) {
    ViewState state = ChartScene::StateOf(*session, *db);
    m_db = std::move(db);
    m_session = std::move(session);
    m_notes = {};
    if (m_session->Recorded() == nullptr) m_notes.Load(*m_db, ChannelKeys(*m_db));
    m_path = path;
    m_kept = 0;
    m_grows = false;
    m_note.clear();
    m_saved = state;
    m_history.Begin(std::move(state));
}

unsigned __int64 ViewDocument::SizeAs(const std::string& path) const {
    if (m_session == nullptr) return 0;
    const unsigned __int64 numbers = m_session->Count() * (m_session->Channels().size() + 1);
    constexpr unsigned __int64 kBinary = 8, kText = 18;
    return numbers * (IsXmlName(path) ? kText : kBinary);
}

// Readings may come while the file is written: it then holds those that were there before.
void ViewDocument::Save(const std::string& path, WorkProgress& progress) {
    RequireSavable(path, *m_session);
    const ViewState state = State();
    const unsigned __int64 extent = Extent();
    if (m_session->Recorded() == nullptr && m_kept != extent) m_session->Store(*m_db);
    ChartScene::Store(state, *m_session, *m_db);
    SaveSession(path, *m_session, *m_db, &progress, SizeAs(path));
    m_path = path;
    m_saved = state;
    m_kept = extent;
    m_note.clear();
}

std::string ViewDocument::Title() const {
    if (m_session == nullptr) return {};
    if (m_path.empty()) return m_session->Logger();
    const size_t slash = m_path.find_last_of("/\\");
    return slash == std::string::npos ? m_path : m_path.substr(slash + 1);
}
