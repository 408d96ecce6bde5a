#include "plugins/text/text_simulator.h"

#include <gtest/gtest.h>

#include <cmath>

#include "plugins/text/text_logger.h"
#include "tests/text/described.h"
#include "tests/text/scripted_line.h"

namespace {
// One of each kind, two channels each; the second one's value comes from a number scaled by 0.1.
const std::string kScaled = "; Channels.2.rScale=0.1";
const std::string kDescriptions[] = {
    "Channels.1.nField=1; Channels.2.nField=3" + kScaled,
    "Channels.1.nField=2; Channels.2.nField=3; nFields=5; sStart=$WIMWV; sChecksum=xor; sSeparator=comma" + kScaled,
    "Channels.1.nField=1; Channels.2.nField=2; sDecimal=,; sSeparator=semicolon; sChecksum=crc16; sEnd=\\r" + kScaled,
    "sFields=columns; Channels.1.nColumn=3; Channels.1.nWidth=8; Channels.2.nColumn=11; Channels.2.nWidth=9; sChecksum=sum" +
        kScaled,
    "sFields=keys; Channels.1.sKey=T; Channels.1.sSuffix=C; Channels.2.sKey=RH" + kScaled,
    "sFields=json; Channels.1.sKey=air.t; Channels.2.sKey=probes[1]" + kScaled,
    "sFields=regex; sPattern=^T (?<t>[-+]?\\d+\\.\\d) C,.*RH (?<h>\\S+)$; Channels.1.sCapture=t; Channels.2.sCapture=h" + kScaled,
    "sAsk=MEAS?\\r\\n; Channels.1.nField=1; Channels.1.sPrefix=+; Channels.2.nField=2" + kScaled,
    "nLines=2; sFirst=A; sFields=keys; Channels.1.sKey=A; Channels.2.sKey=B; Channels.2.nLine=2" + kScaled,
    "nSkip=2; Channels.1.nField=1; Channels.2.nField=2" + kScaled};

// Readings of the simulated logger by the real one.
class Pair {
public:
    explicit Pair(const std::string& description, const char* fault = nullptr, int percent = 0)
        : m_simulator(Described(description)),
          m_line(new ScriptedLine),
          m_logger(Described(description), std::unique_ptr<ITransport>(m_line)) {
        if (fault != nullptr) known = m_simulator.SetFault(fault, percent);
        CByteArray out;
        double time = 0.1;
        for (int i = 0; i < 60; ++i) {
            const DWORD next = m_simulator.Speak(out);
            if (next == INFINITE) break;
            m_line->Come(time, Bytes(out));
            time += next / 1000.0;
        }
        m_line->onSend = [this](std::string_view asked) {
            CByteArray reply;
            // In two pieces.
            m_simulator.Receive(reinterpret_cast<const BYTE*>(asked.data()), 2, reply);
            EXPECT_EQ(reply.GetSize(), 0);
            m_simulator.Receive(reinterpret_cast<const BYTE*>(asked.data()) + 2, asked.size() - 2, reply);
            m_line->Come(m_line->Seconds() + 0.1, Bytes(reply));
        };
        m_logger.Connect("COM1", 1000);
    }

    // How many of twenty readings came, each of them one that the simulated logger said.
    int Read() {
        int good = 0;
        unsigned from = 0;
        for (int i = 0; i < 20; ++i) {
            CDoubleArray values;
            if (FailureOf([&] { m_logger.ReadSample(values); }).code != 0 || std::isnan(values[0])) continue;
            unsigned reading = from;
            while (reading < from + 60 && !IsOf(values, reading)) ++reading;
            EXPECT_LT(reading, from + 60) << values[0] << " " << values[1];
            from = reading + 1;
            ++good;
        }
        return good;
    }
    bool known = true;

private:
    static std::string Bytes(const CByteArray& bytes) {
        return {reinterpret_cast<const char*>(bytes.GetData()), static_cast<size_t>(bytes.GetSize())};
    }
    static bool IsOf(const CDoubleArray& values, unsigned reading) {
        return std::abs(values[0] - text::Simulator::ValueOf(0, reading)) < 0.051 &&
               !(std::abs(values[1] - text::Simulator::ValueOf(1, reading)) > 0.0051);  // or it is missing
    }

    text::Simulator m_simulator;
    ScriptedLine* const m_line;
    text::Logger m_logger;
};

std::string Refused(const std::string& description) {
    return RefusalOf([&] { const text::Simulator simulator(Described(description)); });
}
}  // namespace

TEST(TextSimulator, SpeaksAsDescribed) {
    for (const std::string& description : kDescriptions) {
        ASSERT_EQ(Refused(description), "") << description;
        EXPECT_EQ(Pair(description).Read(), 20) << description;
    }
}

TEST(TextSimulator, FaultsNeverGiveAValue) {
    for (const std::string& description : kDescriptions) {
        for (const char* fault : {"checksum", "garbage", "novalue", "half", "endless"}) {
            SCOPED_TRACE(description + " with " + fault);
            Pair pair(description, fault, 100);
            const bool checked = description.find("sChecksum") != std::string::npos;
            EXPECT_EQ(pair.known, checked || fault != std::string("checksum"));
            if (!pair.known) continue;
            // By chance, anything may have numbers where nothing but two separators tells a line.
            const bool plain = description.find("Channels.1.nField=1") != std::string::npos && !checked;
            if (plain && fault == std::string("garbage")) continue;
            EXPECT_EQ(pair.Read(), 0);
            EXPECT_GT(Pair(description, fault, 30).Read(), 0);
        }
    }
    EXPECT_FALSE(Pair(kDescriptions[0], "crc", 10).known);
}

TEST(TextSimulator, SaysWhatItCannotMakeUp) {
    EXPECT_NE(Refused("sFields=regex; sPattern=(?<t>[a-z]+); Channels.1.sCapture=t"), "");
    EXPECT_NE(Refused("sFields=columns; Channels.1.nColumn=1; Channels.1.nWidth=1; Channels.2.nColumn=1; Channels.2.nWidth=5"),
              "");
}
