#include "plugins/prometheus/prometheus_sink.h"

#include <microhttpd.h>
#include <unistd.h>

#include <cstring>
#include <utility>

#include "plugins/prometheus/metrics_text.h"

namespace prometheus {
namespace {
constexpr auto kStale = std::chrono::seconds(10);
constexpr unsigned kMostClients = 32, kPatience = 10;  // s for one that asks nothing, or takes no answer

MHD_Result Send(MHD_Connection* connection, unsigned code, const std::string& page, const char* kind) {
    MHD_Response* const response =
        MHD_create_response_from_buffer(page.size(), const_cast<char*>(page.data()), MHD_RESPMEM_MUST_COPY);
    if (response == nullptr) return MHD_NO;
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, kind);
    if (code == MHD_HTTP_METHOD_NOT_ALLOWED) MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
    const MHD_Result queued = MHD_queue_response(connection, code, response);
    MHD_destroy_response(response);
    return queued;
}

MHD_Result Answer(void* sink, MHD_Connection* connection, const char* path, const char* method, const char*, const char*,
                  size_t* size, void** state) {
    constexpr char kPlain[] = "text/plain; charset=utf-8";
    // The first call has the headers only; what is uploaded is read and forgotten.
    if (*state == nullptr) return *state = sink, MHD_YES;
    if (*size != 0) return *size = 0, MHD_YES;
    if (std::strcmp(method, MHD_HTTP_METHOD_GET) != 0 && std::strcmp(method, MHD_HTTP_METHOD_HEAD) != 0)
        return Send(connection, MHD_HTTP_METHOD_NOT_ALLOWED, "Only GET and HEAD.\n", kPlain);
    if (std::strcmp(path, "/metrics") == 0)
        return Send(connection, MHD_HTTP_OK, static_cast<const Sink*>(sink)->Page(), "text/plain; version=0.0.4; charset=utf-8");
    if (std::strcmp(path, "/") == 0)
        return Send(connection, MHD_HTTP_OK, "<!doctype html><title>OrvikHost</title><a href=\"/metrics\">Metrics</a>\n",
                    "text/html; charset=utf-8");
    return Send(connection, MHD_HTTP_NOT_FOUND, "Metrics are at /metrics.\n", kPlain);
}
}  // namespace

void Sink::Connect() {
    const int listener = m_address.Listen();
    m_server = MHD_start_daemon(MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_POLL, 0, nullptr, nullptr, Answer, this,
                                MHD_OPTION_LISTEN_SOCKET, listener, MHD_OPTION_CONNECTION_LIMIT, kMostClients,
                                MHD_OPTION_CONNECTION_TIMEOUT, kPatience, MHD_OPTION_END);
    if (m_server != nullptr) return;
    close(listener);
    throw CSinkFailure("the system has no thread for another server");
}

void Sink::Tell(const CSinkStatus& status) {
    auto copy = std::make_shared<const CSinkStatus>(status);
    const std::lock_guard lock(m_lock);
    m_status = std::move(copy);
    m_told = Clock::now();
}

void Sink::Disconnect() {
    if (MHD_Daemon* const server = std::exchange(m_server, nullptr)) MHD_stop_daemon(server);  // and closes its socket
}

std::string Sink::Page() const {
    std::shared_ptr<const CSinkStatus> status;
    bool fresh;
    {
        const std::lock_guard lock(m_lock);
        status = m_status;
        fresh = m_told != Clock::time_point() && Clock::now() - m_told < kStale;
    }
    return MetricsText(*status, fresh && !status->ended);
}

int Sink::Port() const {
    const MHD_DaemonInfo* const info = m_server == nullptr ? nullptr : MHD_get_daemon_info(m_server, MHD_DAEMON_INFO_BIND_PORT);
    return info == nullptr ? 0 : info->port;
}

}  // namespace prometheus
