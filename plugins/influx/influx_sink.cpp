#include "plugins/influx/influx_sink.h"

#include <curl/curl.h>

#include <utility>

#include "plugins/influx/influx_lines.h"

namespace influx {
namespace {
constexpr size_t kBody = 1'000'000;  // bytes of a request
constexpr size_t kAnswer = 4096;     // of one that are kept
constexpr long kConnectTimeout = 10, kStalled = 30;  // s

size_t KeepAnswer(char* data, size_t, size_t size, void* answer) {
    auto& kept = *static_cast<std::string*>(answer);
    kept.append(data, std::min(size, kAnswer - std::min(kAnswer, kept.size())));
    return size;
}
// What the server says of a refusal: its first line, not too long.
std::string FirstLine(const std::string& answer) {
    constexpr size_t kMost = 300;
    return answer.substr(0, std::min(kMost, answer.find_first_of("\r\n")));
}
}  // namespace

// A connection that is kept from one request to the next.
struct Sink::Http {
    explicit Http(Sink& sink) : curl(curl_easy_init()), settings(sink.m_settings) {
        if (curl == nullptr) throw CSinkFailure("the system has no memory for a connection");
        Set(CURLOPT_NOSIGNAL, 1L);
        Set(CURLOPT_CONNECTTIMEOUT, kConnectTimeout);
        Set(CURLOPT_LOW_SPEED_LIMIT, 1L);
        Set(CURLOPT_LOW_SPEED_TIME, kStalled);
        Set(CURLOPT_USERAGENT, "OrvikHost");
        Set(CURLOPT_WRITEFUNCTION, KeepAnswer);
        Set(CURLOPT_WRITEDATA, &answer);
        Set(CURLOPT_NOPROGRESS, 0L);
        Set(CURLOPT_XFERINFOFUNCTION, &Http::Stopped);
        Set(CURLOPT_XFERINFODATA, &sink.m_aborted);
        Set(CURLOPT_PROTOCOLS_STR, "http,https");
        if (!settings.user.empty()) {
            Set(CURLOPT_USERNAME, settings.user.c_str());
            Set(CURLOPT_PASSWORD, settings.password.c_str());
        }
        if (!settings.caFile.empty()) Set(CURLOPT_CAINFO, settings.caFile.c_str());
        Header("Content-Type: text/plain; charset=utf-8");
        Header("Expect:");  // no question before each body
        if (!settings.token.empty()) Header("Authorization: Token " + settings.token);
        Set(CURLOPT_HTTPHEADER, headers);
    }
    ~Http() {
        curl_easy_cleanup(curl);
        curl_slist_free_all(headers);
    }
    Http(const Http&) = delete;
    Http& operator=(const Http&) = delete;

    // The status of the answer.
    long Ask(const std::string& path) {
        answer.clear();
        const std::string url = settings.address + path;
        Set(CURLOPT_URL, url.c_str());
        const CURLcode code = curl_easy_perform(curl);
        if (code != CURLE_OK) throw CSinkFailure(settings.address + ": " + curl_easy_strerror(code));
        long status = 0;
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        return status;
    }
    // Any 2xx, and nothing else, says that all was taken.
    void Require(long status) const {
        if (status / 100 == 2) return;
        const std::string why = FirstLine(answer);
        throw CSinkFailure(settings.address + " answers " + std::to_string(status) + (why.empty() ? "" : ": " + why));
    }
    template <class Value>
    void Set(CURLoption option, Value value) {
        if (curl_easy_setopt(curl, option, value) != CURLE_OK) throw CSinkFailure("a setting of the connection is not understood");
    }
    void Header(const std::string& line) { headers = curl_slist_append(headers, line.c_str()); }
    static int Stopped(void* aborted, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
        return static_cast<std::atomic<bool>*>(aborted)->load() ? 1 : 0;
    }

    CURL* const curl;
    const Settings& settings;
    curl_slist* headers = nullptr;
    std::string answer;
};

Sink::Sink(Settings settings) : m_settings(std::move(settings)) { curl_global_init(CURL_GLOBAL_DEFAULT); }
Sink::~Sink() = default;

void Sink::Connect() {
    auto http = std::make_unique<Http>(*this);
    if (!m_settings.ping.empty()) {
        http->Set(CURLOPT_HTTPGET, 1L);
        http->Require(http->Ask(m_settings.ping));
    }
    m_http = std::move(http);
}

void Sink::Disconnect() { m_http.reset(); }

void Sink::Post(const std::string& body) {
    if (body.empty()) return;
    m_http->Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    m_http->Set(CURLOPT_POSTFIELDS, body.data());
    m_http->Require(m_http->Ask(m_settings.path));
}

void Sink::Deliver(const CSinkBatch& batch) {
    std::string body;
    const auto post = [&] {
        Post(body);
        body.clear();
    };
    for (const CSinkPart& part : batch.parts) {
        for (size_t row = 0; row < part.times.size();) {
            row = AppendReadings(body, part, m_settings.measurement, row, kBody);
            if (body.size() >= kBody) post();
        }
        AppendNotes(body, part, m_settings.measurement);
        if (body.size() >= kBody) post();
    }
    post();
}

}  // namespace influx
