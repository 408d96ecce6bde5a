// A simulated logger on the network: a server whose connections all reach the one logger, several at once.
// Serve runs on the thread that calls it, with a thread for each connection; Stop may be called by any.
#pragma once

#include <list>
#include <string>

#include "comm/line_address.h"
#include "host/logger/simulated_logger.h"
#include "platform/socket.h"

class SimulatedServer {
public:
    // Listens. A Failure if the address is none to listen at. The logger outlives it.
    SimulatedServer(SimulatedLogger& logger, const std::string& address);
    ~SimulatedServer();

    // The address that reaches it from this machine, with the port that the system has chosen.
    std::string Address() const;
    // Answers until Stop, or until the fault has pulled the plug.
    void Serve();
    void Stop() { SetEvent(m_stop); }

private:
    class Connection;
    void Say(const LineFaults::Fate& said);
    void TakeNewcomers();

    SimulatedLogger& m_logger;
    CLineAddress m_address;
    SocketListener m_listener;
    const HANDLE m_stop = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    std::list<Connection> m_connections;
};
