// The master against an independent Modbus implementation on the far end of a pseudo-terminal, and against a line that
// misbehaves.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <modbus.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <bit>
#include <filesystem>
#include <functional>
#include <thread>

#include "comm/comm_exception.h"
#include "plugins/modbus/modbus_logger.h"
#include "propdb/property_db.h"

namespace {

// The far end of a line, with what plays the logger there on a thread of its own.
class FarEnd {
public:
    FarEnd() {
        m_fd = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        grantpt(m_fd);
        unlockpt(m_fd);
        termios raw;
        tcgetattr(m_fd, &raw);
        cfmakeraw(&raw);
        tcsetattr(m_fd, TCSANOW, &raw);
        m_name = ptsname(m_fd);
    }
    ~FarEnd() {
        m_stopping = true;
        if (m_thread.joinable()) m_thread.join();
        if (m_fd >= 0) close(m_fd);
    }
    const char* Name() const { return m_name.c_str(); }

    // Registers as libmodbus serves them: all of both kinds from 0, taken from the caller's arrays.
    void ServeLibmodbus(int slave, std::vector<WORD> holding, std::vector<WORD> input) {
        m_thread = std::thread([this, slave, holding, input] {
            modbus_t* context = modbus_new_rtu(m_name.c_str(), 19200, 'N', 8, 1);
            modbus_set_slave(context, slave);
            modbus_set_socket(context, m_fd);
            modbus_set_indication_timeout(context, 0, 50'000);
            modbus_mapping_t* map = modbus_mapping_new(0, 0, static_cast<int>(holding.size()), static_cast<int>(input.size()));
            std::copy(holding.begin(), holding.end(), map->tab_registers);
            std::copy(input.begin(), input.end(), map->tab_input_registers);
            while (!m_stopping) {
                uint8_t query[MODBUS_RTU_MAX_ADU_LENGTH];
                const int length = modbus_receive(context, query);
                if (length > 0) modbus_reply(context, query, length, map);
            }
            modbus_mapping_free(map);
            modbus_free(context);
        });
    }

    // Each whole request is handed to `answer`; what it gives goes back as it stands. A result of "" keeps silent.
    void Serve(std::function<std::vector<BYTE>(const modbus::Request&, int number)> answer) {
        m_thread = std::thread([this, answer = std::move(answer)] {
            std::vector<BYTE> received;
            for (int number = 1; !m_stopping;) {
                pollfd waiting = {m_fd, POLLIN, 0};
                if (poll(&waiting, 1, 20) <= 0 || !(waiting.revents & POLLIN)) continue;
                BYTE block[256];
                const ssize_t got = read(m_fd, block, sizeof block);
                if (got <= 0) continue;
                received.insert(received.end(), block, block + got);
                modbus::Request request;
                size_t used = 0;
                if (!modbus::FindRequest(received, request, used)) continue;
                received.clear();
                const std::vector<BYTE> reply = answer(request, number++);
                if (reply.empty() && m_pullAfter == number - 1) {
                    close(std::exchange(m_fd, -1));
                    return;
                }
                if (!reply.empty() && write(m_fd, reply.data(), reply.size()) < 0) return;
            }
        });
    }
    // From within `answer`: a piece of the answer ahead of the rest.
    void Send(const std::vector<BYTE>& bytes) {
        EXPECT_EQ(write(m_fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    void PullAfter(int number) { m_pullAfter = number; }

private:
    int m_fd = -1;
    int m_pullAfter = -1;
    std::string m_name;
    std::thread m_thread;
    std::atomic<bool> m_stopping = false;
};

modbus::Channel Channel(BYTE function, WORD first, modbus::ValueType type, modbus::ByteOrder order = modbus::kHighFirst) {
    modbus::Channel channel;
    channel.function = function;
    channel.first = first;
    channel.type = type;
    channel.order = order;
    return channel;
}

modbus::Description OneRegister() {
    modbus::Description description;
    description.slaves[0].address = 7;
    description.line.baud = 115200;
    description.channels = {Channel(3, 0, modbus::ValueType::Uint16)};
    return description;
}

std::vector<BYTE> Good(const modbus::Request& request, WORD value = 4711) {
    if (request.count == 0) return modbus::EncodeException(request, modbus::kIllegalValue);
    return modbus::EncodeReply(request, std::vector<WORD>{value});
}

constexpr DWORD kTimeout = 300;
constexpr int kAttempts = 3;  // of a request, where a description says nothing

// The code of the failure, or 0 and the first value.
int Outcome(modbus::Logger& logger, double* value = nullptr) {
    try {
        CDoubleArray values;
        logger.ReadSample(values);
        if (value != nullptr) *value = values.GetAt(0);
        return 0;
    } catch (CCommException* failure) {
        const int code = failure->m_nError;
        failure->Delete();
        return code;
    }
}
}  // namespace

TEST(ModbusPeer, EveryTypeAndOrderArrivesExactly) {
    using enum modbus::ValueType;
    const float real = -1234.56789f;
    const auto bits = std::bit_cast<DWORD>(real);
    FarEnd far;
    far.ServeLibmodbus(17, {0x8001, 0x1234, 0x5678, 0xFFFF, 0xFFFE, HIWORD(bits), LOWORD(bits), LOWORD(bits), HIWORD(bits)},
                       {60000, 1});
    modbus::Description description;
    description.slaves[0].address = 17;
    description.line.baud = 19200;
    description.channels = {
        Channel(3, 0, Int16),  Channel(3, 1, Uint32),  Channel(3, 1, Uint32, modbus::kLowFirst),
        Channel(3, 3, Int32),  Channel(3, 5, Float32), Channel(3, 7, Float32, modbus::kLowFirst),
        Channel(4, 0, Uint16),
    };
    modbus::Logger logger(description);
    logger.Connect(far.Name(), 2000);
    for (int round = 0; round < 3; ++round) {
        CDoubleArray values;
        logger.ReadSample(values);
        const double expected[] = {-32767, 0x12345678, 0x56781234, -2, real, real, 60000};
        ASSERT_EQ(values.GetSize(), 7);
        for (int i = 0; i < 7; ++i) EXPECT_EQ(values.GetAt(i), expected[i]) << i;
    }
    EXPECT_TRUE(logger.Connection().IsConnected());
}

// At 50 bits a second a character lasts 200 ms, so an answer is no more broken off after 150 than the line is silent.
TEST(ModbusPeer, ASlowLineMayPauseBetweenCharacters) {
    FarEnd far;
    far.Serve([&](const modbus::Request& request, int) {
        const std::vector<BYTE> reply = Good(request);
        far.Send({reply.begin(), reply.begin() + 3});
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        return std::vector<BYTE>(reply.begin() + 3, reply.end());
    });
    modbus::Description description = OneRegister();
    description.line.baud = 50;
    modbus::Logger logger(description);
    logger.Connect(far.Name(), kTimeout);
    double value = 0;
    EXPECT_EQ(Outcome(logger, &value), 0);
    EXPECT_EQ(value, 4711);
}

TEST(ModbusPeer, AConnectionOutlivesItsLogger) {
    FarEnd far;
    auto logger = std::make_unique<modbus::Logger>(OneRegister());
    logger->Connect(far.Name(), kTimeout);
    COrvikConnection& connection = logger->Connection();
    connection.AddRef();
    logger.reset();
    EXPECT_FALSE(connection.IsConnected());
    connection.OnSerialCommEvent(static_cast<CSerial::EEvent>(0x0800), static_cast<CSerial::EError>(0x0400));
    connection.Release();
}

TEST(ModbusPeer, FailuresHaveTheirCodes) {
    std::atomic<int> asked = 0;
    std::atomic<int> mode = 0;
    FarEnd far;
    far.Serve([&](const modbus::Request& request, int) {
        ++asked;
        std::vector<BYTE> reply = Good(request);
        if (mode == 0) reply.clear();
        if (mode == 1) reply.back() ^= 1;
        if (mode == 2) reply = modbus::EncodeException(request, modbus::kBusy);
        return reply;
    });
    modbus::Logger logger(OneRegister());
    EXPECT_EQ(Outcome(logger), 6);  // not open
    logger.Connect(far.Name(), kTimeout);
    EXPECT_EQ(Outcome(logger), 8);  // silent; a line that was just opened is probed first
    EXPECT_EQ(asked, 1 + kAttempts);
    mode = 1;
    EXPECT_EQ(Outcome(logger), 3);  // never a good CRC
    mode = 2;
    asked = 0;
    EXPECT_EQ(Outcome(logger), 4);  // busy for ever: asked a bounded number of times
    // The first answer could be to one from before, and so could that to the first probe, since the one then came damaged.
    EXPECT_EQ(asked, 1 + 2 + kAttempts);
    mode = 3;
    EXPECT_EQ(Outcome(logger), 0);  // and well again
    logger.Abort();
    EXPECT_EQ(Outcome(logger), 9);
    logger.Disconnect();
    EXPECT_EQ(Outcome(logger), 6);
}

TEST(ModbusPeer, APulledPlugIsAHardwareErrorAtOnce) {
    FarEnd far;
    far.PullAfter(3);
    far.Serve([](const modbus::Request& request, int number) {
        return number == 1   ? modbus::EncodeException(request, modbus::kIllegalValue)
               : number == 2 ? Good(request)
                             : std::vector<BYTE>();
    });
    modbus::Logger logger(OneRegister());
    logger.Connect(far.Name(), 60'000);  // the failure must not wait for this
    EXPECT_EQ(Outcome(logger), 0);
    EXPECT_EQ(Outcome(logger), 7);
    EXPECT_FALSE(logger.Connection().IsConnected());
}

// The port comes and goes under one name; what is left of a former line, its farewell too, counts for nothing on the next.
TEST(ModbusPeer, ALineIsOpenedAgainAndAgain) {
    modbus::Logger logger(OneRegister());
    const auto openFiles = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    std::ptrdiff_t files = 0;
    for (int cycle = 0; cycle < 10; ++cycle) {
        std::string name;
        {
            FarEnd far;
            name = far.Name();
            far.PullAfter(4);
            far.Serve(
                [](const modbus::Request& request, int number) { return number < 4 ? Good(request) : std::vector<BYTE>(); });
            logger.Connect(far.Name(), 100);
            ASSERT_EQ(Outcome(logger), 0) << cycle;
            int code = 0;
            while ((code = Outcome(logger)) == 0) continue;
            ASSERT_EQ(code, 7) << cycle;
            logger.Disconnect();
            EXPECT_EQ(Outcome(logger), 6);
        }
        try {
            logger.Connect(name.c_str(), 100);
            ADD_FAILURE() << "the port has gone";
        } catch (CCommException* failure) {
            failure->Delete();
        }
        if (cycle == 1) files = openFiles();
    }
    EXPECT_EQ(openFiles(), files);
}
