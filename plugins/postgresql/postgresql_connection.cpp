#include "plugins/postgresql/postgresql_connection.h"

#include <poll.h>

#include <algorithm>
#include <chrono>

#include "record/sink.h"

namespace postgresql {
namespace {
using Clock = std::chrono::steady_clock;
constexpr auto kConnectFor = std::chrono::seconds(20), kSilentFor = std::chrono::seconds(60);
constexpr int kSlice = 100;  // ms, so that Abort is soon seen

// The first line of what the server says; more would be a page.
std::string FirstLine(const char* said) {
    std::string text = said != nullptr ? said : "";
    text.resize(std::min(text.size(), text.find('\n')));
    for (const char* begin : {"FATAL:  ", "ERROR:  "}) {
        if (text.starts_with(begin)) text.erase(0, 8);
    }
    return text.empty() ? "the server went away" : text;
}
}  // namespace

void Connection::Fail(const char* said) const {
    if (m_aborted) throw CSinkFailure("it was broken off");
    throw CSinkFailure(FirstLine(said));
}

Connection::Options Connection::OptionsOf(const std::string& address) {
    char* complaint = nullptr;
    Options options(PQconninfoParse(address.c_str(), &complaint), &PQconninfoFree);
    std::string why = FirstLine(complaint);
    PQfreemem(complaint);
    // What is quoted there may be a password.
    for (const char* const quoted : {": \"", " after \""}) why.resize(std::min(why.size(), why.find(quoted)));
    if (options == nullptr) throw CSinkFailure("sAddress: " + why);
    return options;
}

void Connection::Check(const std::string& address) { OptionsOf(address); }

void Connection::Open(const std::string& address, const std::string& password) {
    Close();
    const Options given = OptionsOf(address);
    std::vector<const char*> words, values;
    const auto add = [&](const char* word, const char* value) {
        words.push_back(word);
        values.push_back(value);
    };
    add("fallback_application_name", "orvikhost");
    // What the system itself does not end: a network that is gone is noticed in half a minute. What the address says goes before these.
    add("keepalives_idle", "10");
    add("keepalives_interval", "5");
    add("keepalives_count", "3");
    for (const PQconninfoOption* one = given.get(); one->keyword != nullptr; ++one) {
        const bool replaced = !password.empty() && std::string_view(one->keyword) == "password";
        if (one->val != nullptr && !replaced) add(one->keyword, one->val);
    }
    if (!password.empty()) add("password", password.c_str());
    add("client_encoding", "UTF8");
    add(nullptr, nullptr);
    m_connection = PQconnectStartParams(words.data(), values.data(), 0);
    if (m_connection == nullptr) throw std::bad_alloc();
    const auto end = Clock::now() + kConnectFor;
    for (PostgresPollingStatusType state = PGRES_POLLING_WRITING; state != PGRES_POLLING_OK; state = PQconnectPoll(m_connection)) {
        if (state == PGRES_POLLING_FAILED || m_aborted) Fail(PQerrorMessage(m_connection));
        if (Clock::now() > end) throw CSinkFailure("the server does not answer");
        const int socket = PQsocket(m_connection);
        const short events = state == PGRES_POLLING_READING ? POLLIN : POLLOUT;
        pollfd waited{socket, events, 0};
        while (poll(&waited, 1, kSlice) == 0) {
            if (m_aborted) Fail(nullptr);
            if (Clock::now() > end) throw CSinkFailure("the server does not answer");
        }
    }
    PQsetnonblocking(m_connection, 1);
    // Notices ("already exists") are no news.
    PQsetNoticeProcessor(
        m_connection, [](void*, const char*) {}, nullptr);
}

void Connection::Close() {
    PQfinish(m_connection);
    m_connection = nullptr;
}

// Some bytes came or went, or the connection is broken: libpq says which.
void Connection::Wait(bool sends) {
    const auto end = Clock::now() + kSilentFor;
    pollfd waited{PQsocket(m_connection), static_cast<short>(POLLIN | (sends ? POLLOUT : 0)), 0};
    while (poll(&waited, 1, kSlice) <= 0) {
        if (m_aborted) Fail(nullptr);
        if (Clock::now() > end) throw CSinkFailure("the server does not answer");
    }
    if (m_aborted) Fail(nullptr);
    if ((waited.revents & (POLLIN | POLLERR | POLLHUP)) != 0 && !PQconsumeInput(m_connection)) Fail(PQerrorMessage(m_connection));
}

void Connection::Flush() {
    for (int left; (left = PQflush(m_connection)) != 0;) {
        if (left < 0) Fail(PQerrorMessage(m_connection));
        Wait(true);
    }
}

// The last result of what was sent; the first failure among them is what is told.
Result Connection::Take() {
    Result last, failed;
    for (;;) {
        while (PQisBusy(m_connection)) Wait(false);
        Result next(PQgetResult(m_connection));
        if (next == nullptr) break;
        const ExecStatusType status = PQresultStatus(next.get());
        if (status == PGRES_COPY_IN) return next;
        if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK && failed == nullptr) failed = std::move(next);
        else last = std::move(next);
        if (PQstatus(m_connection) != CONNECTION_OK) break;
    }
    if (failed != nullptr) {
        const char* const said = PQresultErrorField(failed.get(), PG_DIAG_MESSAGE_PRIMARY);
        Fail(said != nullptr ? said : PQresultErrorMessage(failed.get()));
    }
    if (last == nullptr) Fail(PQerrorMessage(m_connection));
    return last;
}

Result Connection::Run(const std::string& statement, const std::vector<std::string>& parameters) {
    std::vector<const char*> values;
    for (const std::string& each : parameters) values.push_back(each.c_str());
    const int sent = parameters.empty() ? PQsendQuery(m_connection, statement.c_str())
                                        : PQsendQueryParams(m_connection, statement.c_str(), static_cast<int>(values.size()), nullptr,
                                                            values.data(), nullptr, nullptr, 0);
    if (!sent) Fail(PQerrorMessage(m_connection));
    Flush();
    return Take();
}

void Connection::Copy(const std::string& statement, const std::string& bytes) {
    if (PQresultStatus(Run(statement).get()) != PGRES_COPY_IN) throw CSinkFailure("the server takes no copy");
    constexpr size_t kPiece = 256 * 1024;
    for (size_t at = 0; at < bytes.size();) {
        const size_t size = std::min(kPiece, bytes.size() - at);
        const int put = PQputCopyData(m_connection, bytes.data() + at, static_cast<int>(size));
        if (put < 0) Fail(PQerrorMessage(m_connection));
        if (put > 0) at += size;
        Flush();
    }
    for (int put; (put = PQputCopyEnd(m_connection, nullptr)) != 1;) {
        if (put < 0) Fail(PQerrorMessage(m_connection));
        Wait(true);
    }
    Flush();
    Take();
}

void Column::Add(const std::string& value) {
    m_text += m_text.size() > 1 ? ",\"" : "\"";
    for (const char letter : value) {
        if (letter == '"' || letter == '\\') m_text += '\\';
        m_text += letter;
    }
    m_text += '"';
}

std::string Connection::Name(const std::string& name) {
    char* const quoted = PQescapeIdentifier(m_connection, name.data(), name.size());
    if (quoted == nullptr) Fail(PQerrorMessage(m_connection));
    std::string text = quoted;
    PQfreemem(quoted);
    return text;
}

}  // namespace postgresql
