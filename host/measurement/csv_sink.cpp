#include "host/measurement/csv_sink.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "afx/exception.h"
#include "host/measurement/download.h"
#include "host/session/database_file.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "record/recording_types.h"

void RequireOwnCsv(const std::string& path, CPropertyDB& description) {
    CFile file;
    if (!FileExists(path) || FileSize(path) == 0) return;
    CPropertyDB facts;
    DescribeSession(description, {}, facts);
    const Session session(facts, std::string());
    std::string heading;
    MakeCsvWriter(session, ChannelsNamed(session, {}), {})->Heading(heading);
    std::string begin(heading.size(), ' ');
    if (!file.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone) ||
        file.Read(begin.data(), static_cast<UINT>(begin.size())) != begin.size() || begin != heading)
        throw Failure{kFileFailed, Say(Text::NotOwnCsv, {ToUtf8(path)})};
}

CsvSink::CsvSink(std::string path, bool append, CPropertyDB& facts)
    : m_path(std::move(path)),
      m_append(append),
      m_session(facts, std::string()),
      m_lines(MakeCsvWriter(m_session, ChannelsNamed(m_session, {}), {})) {}

bool CsvSink::Write(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) {
    if (m_path.empty()) return true;
    if (!m_whole) return false;
    if (!m_begun) {
        m_begun = true;
        const UINT keep = m_append ? CFile::modeNoTruncate : 0u;
        if (m_path != "-")
            m_whole = m_file.Open(m_path.c_str(), CFile::modeCreate | keep | CFile::modeWrite | CFile::shareDenyWrite) != 0;
        const bool goesOn = m_whole && m_path != "-" && m_append && m_file.SeekToEnd() > 0;
        if (!goesOn) m_lines->Heading(m_text);
    }
    // The mark of a stretch without readings is none itself.
    if (!flags.empty() && std::all_of(flags.begin(), flags.end(), [](BYTE flag) { return flag == RF_MISSING; })) return m_whole;
    m_lines->Row(m_text, time, values.data());
    m_whole = m_whole && Put();
    return m_whole;
}

bool CsvSink::Put() {
    const std::string text = std::exchange(m_text, {});
    if (m_path == "-") return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    try {
        m_file.Write(text.data(), static_cast<UINT>(text.size()));
        return true;
    } catch (CFileException* failure) {
        failure->Delete();
        return false;
    }
}

bool CsvSink::Close() {
    if (m_file.m_hFile != CFile::hFileNull) {
        try {
            m_file.Close();
        } catch (CFileException* failure) {
            failure->Delete();
            m_whole = false;
        }
    }
    return m_whole;
}
