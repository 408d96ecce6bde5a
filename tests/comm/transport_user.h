// One logger's way to its line, and what it is told.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "comm/line_connection.h"
#include "comm/serial_orvik.h"
#include "comm/transport.h"
#include "tests/support/comm_failure.h"
#include "tests/support/time_limit.h"

class TransportUser {
public:
    static constexpr ITransport::Duration kSoon = std::chrono::seconds(5);

    class Connection : public CLineConnection {
    public:
        EState State() const { return m_eState; }
    };

    TransportUser() { connection->AddRef(); }
    ~TransportUser() {
        line.reset();
        connection->Release();
    }
    TransportUser(const TransportUser&) = delete;
    TransportUser& operator=(const TransportUser&) = delete;

    void Open(const std::string& address, const CLineSettings& settings = {}, ITransport::Duration within = kSoon) {
        line->Open(address.c_str(), settings, line->Now() + within);
    }
    void Send(std::string_view text) {
        line->Send({reinterpret_cast<const BYTE*>(text.data()), text.size()}, line->Now() + kSoon);
    }
    // What comes next, in one piece; empty when nothing came.
    std::string Receive(ITransport::Duration within = kSoon) {
        std::vector<BYTE> received;
        line->Receive(received, line->Now() + within);
        return {received.begin(), received.end()};
    }
    CommFailure FailureOfReceive() {
        return FailureOf([this] { Receive(); });
    }
    // A failure with the sentence of res/strings.def about the address, or with that of its code.
    static CommFailure Told(int code, UINT text, const std::string& address) {
        CString picture, sentence;
        picture.LoadString(text);
        sentence.Format(picture, address.substr(address.find("://") + 3).c_str());
        return {code, sentence.GetString()};
    }
    static CommFailure Standard(int code) {
        return FailureOf([code] { OrvikThrowCommException(code, nullptr); });
    }

    CSerialOrvik port;
    Connection* const connection = new Connection;
    std::unique_ptr<ITransport> line = OrvikMakeTransport(port, *connection);
};
