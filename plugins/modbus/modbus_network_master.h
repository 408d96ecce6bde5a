// The master of a Modbus TCP connection. Transaction numbers tell whose an answer is, however late it comes; one request is under
// way at a time. A frame whose lengths contradict each other, or that does not go on, leaves no place to go on from: the
// connection is closed, and the reading fails with code 3. Answers count once what has come ends with a whole frame: bytes that a
// device left out would be made up from the next one.
#pragma once

#include "plugins/modbus/modbus_master.h"

namespace modbus {

class NetworkMaster final : public Master {
public:
    using Master::Master;
    void Configure(const char* address, const CLineSettings& line, DWORD timeout) override;

private:
    // A request that may still be answered.
    struct Open {
        WORD transaction;
        Question question;
        Request request;
        TimePoint sent;
    };

    void Begin() override;
    End Exchange(const Request& request, Question question) override;
    bool Receive(TimePoint until) override;
    void Take(WORD transaction, Answer answer);
    [[noreturn]] void Break();

    std::vector<Open> m_open;  // in the order of sending
    std::vector<BYTE> m_received;
    std::vector<std::pair<WORD, Answer>> m_pending;  // whole ones before it, by their transactions
};

}  // namespace modbus
