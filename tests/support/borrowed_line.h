// A line that somebody else has, too: it stays open with its owner.
#pragma once

#include "comm/transport.h"

class BorrowedLine : public ITransport {
public:
    explicit BorrowedLine(ITransport& line) : m_line(line) {}
    void Open(const char* address, const CLineSettings& line, TimePoint until) override { m_line.Open(address, line, until); }
    void Close() override {}
    bool IsOpen() const override { return m_line.IsOpen(); }
    bool IsShared() const override { return true; }
    TimePoint Now() override { return m_line.Now(); }
    void Send(std::span<const BYTE> bytes, TimePoint until) override { m_line.Send(bytes, until); }
    bool Receive(std::vector<BYTE>& received, TimePoint until) override { return m_line.Receive(received, until); }
    void Abort() override {}

private:
    ITransport& m_line;
};
