// A serial port as a transport, that of the user who opens it. While it waits it handles its thread's messages, which is how the
// port tells that the line is lost.
#pragma once

#include "comm/line_transport_internal.h"

namespace orvik::detail {

class SerialTransport : public LineTransport {
public:
    void Open(const char* port, const CLineSettings& line, TimePoint until) override;
    void SetUp(const CLineSettings& line, TimePoint until) override;
    void Close() override;
    bool IsShared() const override { return true; }
    bool IsOpen() const override { return m_opener != nullptr && m_opener->port.IsOpen(); }
    bool IsLost() const override { return m_opener != nullptr && m_opener->connection.LineLost(); }
    const LineUser* Opener() const override { return m_opener; }
    void Send(std::span<const BYTE> bytes, TimePoint until) override;
    bool Receive(std::vector<BYTE>& received, TimePoint until) override;

private:
    bool ReadAvailable(std::vector<BYTE>& received);
    void PumpMessages(TimePoint until);
    void CheckLine();

    LineUser* m_opener = nullptr;
};

}  // namespace orvik::detail
