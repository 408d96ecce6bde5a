#include "plugins/text/text_logger.h"

#include <limits>

#include "comm/comm_exception.h"

namespace text {

Logger::Logger(Description description, std::unique_ptr<ITransport> transport)
    : m_description(std::move(description)),
      m_connection(new CLineConnection),
      m_transport(transport ? std::move(transport) : OrvikMakeTransport(m_port, *m_connection)),
      m_reader(m_description, *m_transport),
      m_due(m_description.channels.size(), 1),
      m_lasting(m_description.channels.size()) {
    m_connection->AddRef();
}

Logger::~Logger() {
    Disconnect();
    m_connection->Release();
}

void Logger::Connect(const char* port, DWORD timeout) {
    m_connection->Enter(COrvikConnection::Connecting, port);
    try {
        m_transport->Open(port, m_description.line, m_transport->Now() + std::chrono::milliseconds(timeout));
    } catch (CCommException*) {
        m_connection->Enter(COrvikConnection::Disconnected);
        throw;
    }
    m_reader.Opened(port, timeout);
    m_connection->Enter(COrvikConnection::Connected);
}

void Logger::Select(const CByteArray& due) {
    for (size_t i = 0; i < m_due.size(); ++i) m_due[i] = due.GetAt(static_cast<INT_PTR>(i));
}

Written Logger::Write(int, const char*) {
    OrvikThrowCommException(CCommException::AccessDenied, Say(Sentence::NoWriting, {}).c_str());
}

void Logger::Watch(IReadingWatch* watch) {
    m_watch = watch;
    m_reader.Watch(watch);
}

void Logger::ReadSample(CDoubleArray& values) {
    values.SetSize(static_cast<INT_PTR>(m_due.size()));
    for (INT_PTR i = 0; i < values.GetSize(); ++i) values.SetAt(i, std::numeric_limits<double>::quiet_NaN());
    m_connection->Enter(COrvikConnection::Working);
    std::vector<Outcome> outcomes;
    Failure failure;
    try {
        failure = m_reader.Read(m_due, outcomes);
    } catch (CCommException*) {
        m_connection->Enter(COrvikConnection::Disconnected);
        throw;
    }
    m_connection->Enter(COrvikConnection::Connected);
    if (failure.code != 0) {
        const char* const text = m_whole.Keep(failure.why, failure.text);
        for (size_t i = 0; i < m_due.size(); ++i) Tell(i, failure.code, text);
        OrvikThrowCommException(failure.code, text);
    }
    m_whole = {};
    for (size_t i = 0; i < outcomes.size(); ++i) {
        if (m_due[i] == 0) continue;
        const char* const text = m_lasting[i].Keep(outcomes[i].why, outcomes[i].text);
        if (!outcomes[i].IsValue()) {
            Tell(i, CCommException::IllegalResponse, text);
        } else if (!outcomes[i].noValue) {
            values.SetAt(static_cast<INT_PTR>(i), outcomes[i].value);
        }
    }
}

const char* Logger::Lasting::Keep(Sentence now, const std::string& said) {
    if (now != why) text = said;
    why = now;
    return text.empty() ? nullptr : text.c_str();
}

void Logger::Tell(size_t channel, int code, const char* text) {
    if (m_watch != nullptr && m_due[channel] != 0) m_watch->OnChannelFailed(static_cast<int>(channel), code, text);
}

void Logger::Disconnect() {
    if (!m_transport->IsOpen()) return;
    m_connection->Enter(COrvikConnection::Closing);
    m_transport->Close();
    m_connection->Enter(COrvikConnection::Closed);
}

}  // namespace text
