// What the transports of this floor have in common: several users on one thread, who take turns. One thread.
#pragma once

#include "comm/abort_signal_internal.h"
#include "comm/line_connection.h"
#include "comm/serial_orvik.h"
#include "comm/transport.h"

namespace orvik::detail {

// Whoever talks over a line: where its trace goes, who is told of its states, and what ends its exchange.
struct LineUser {
    CSerialOrvik& port;
    CLineConnection& connection;
    AbortSignal abort;
    bool open = false;
};

class LineTransport : public ITransport {
public:
    // Whose calls the next ones are. The user outlives them.
    void Use(LineUser& user) { m_user = &user; }

    // Changes an open line. 7 if it cannot be set up so.
    virtual void SetUp(const CLineSettings& line, TimePoint until) = 0;
    // The far end has vanished, and only a new Open can help.
    virtual bool IsLost() const = 0;
    // The far end has closed the line while it was idle for so long, as many do. Nothing was asked, so nothing is lost by
    // opening it anew.
    virtual bool WasClosedWhileIdle(Duration) { return false; }
    // Who must stay for the line to stay open: a port is its opener's own. Null: anybody.
    virtual const LineUser* Opener() const { return nullptr; }

    TimePoint Now() override { return std::chrono::steady_clock::now(); }
    void Abort() override { m_user->abort.Raise(); }

protected:
    LineUser* m_user = nullptr;
};

}  // namespace orvik::detail
