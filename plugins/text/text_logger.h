// A logger that prints lines: the connection that the host sees, its port, and the reading of all channels. Line and clock may be
// others' (a transport); its port then stays closed.
#pragma once

#include <memory>
#include <vector>

#include "comm/line_connection.h"
#include "comm/serial_orvik.h"
#include "host/logger_family.h"
#include "plugins/text/text_description.h"
#include "plugins/text/text_reader.h"

namespace text {

class Logger : public ILogger {
public:
    // Without a transport: on the port that Connect names.
    explicit Logger(Description description, std::unique_ptr<ITransport> transport = nullptr);
    ~Logger() override;

    COrvikConnection& Connection() override { return *m_connection; }
    CSerialOrvik& Port() override { return m_port; }
    void Connect(const char* port, DWORD timeout) override;
    void ReadSample(CDoubleArray& values) override;
    Written Write(int channel, const char* number) override;
    void Select(const CByteArray& due) override;
    void Watch(IReadingWatch* watch) override;
    bool Follow() override { return m_reader.Follow(); }
    void Disconnect() override;
    void Abort() override { m_transport->Abort(); }

private:
    // A failure that lasts keeps the sentence with the line it began with: it is one gap, not one for each line.
    struct Lasting {
        Sentence why = Sentence::None;
        std::string text;
        const char* Keep(Sentence now, const std::string& said);
    };
    void Tell(size_t channel, int code, const char* text);

    const Description m_description;
    CSerialOrvik m_port;
    CLineConnection* const m_connection;  // one reference held
    const std::unique_ptr<ITransport> m_transport;
    Reader m_reader;
    IReadingWatch* m_watch = nullptr;
    std::vector<BYTE> m_due;
    std::vector<Lasting> m_lasting;  // by channel
    Lasting m_whole;                 // of readings of which nothing came
};

}  // namespace text
