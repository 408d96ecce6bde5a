#include "host/gui/view_document.h"

#include "host/database_file.h"
#include "host/gui/chart_scene.h"

void ViewDocument::Open(const std::string& path) {
    auto db = std::make_unique<CPropertyDB>();
    LoadDatabase(path, *db);
    auto session = std::make_unique<Session>(*db, path, 0);
    Take(std::move(db), std::move(session), path);
    m_readings = m_session->Count();
}

void ViewDocument::Begin(CPropertyDB& description, const std::string& port) {
    Take(std::make_unique<CPropertyDB>(), std::make_unique<Session>(description, port), {});
}

void ViewDocument::Take(std::unique_ptr<CPropertyDB> db, std::unique_ptr<Session> session, const std::string& path) {
    ViewState state = ChartScene::StateOf(*session, *db);
    m_db = std::move(db);
    m_session = std::move(session);
    m_path = path;
    m_readings = 0;
    m_saved = state;
    m_history.Begin(std::move(state));
}

void ViewDocument::Save(const std::string& path) {
    RequireWritable(path);
    if (m_readings != m_session->Count()) m_session->Store(*m_db);
    ChartScene::Store(State(), *m_session, *m_db);
    StoreDatabase(path, *m_db);
    m_path = path;
    m_saved = State();
    m_readings = m_session->Count();
}

std::string ViewDocument::Title() const {
    if (m_session == nullptr) return {};
    if (m_path.empty()) return m_session->Logger();
    const size_t slash = m_path.find_last_of("/\\");
    return slash == std::string::npos ? m_path : m_path.substr(slash + 1);
}
