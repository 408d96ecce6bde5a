// The master on a real pseudo-terminal, against a far end that misbehaves.
#include <filesystem>

#include "comm/comm_exception.h"
#include "plugins/modbus/modbus_logger.h"
#include "tests/modbus/far_end.h"

namespace {

modbus::Description OneRegister() {
    modbus::Description description;
    description.slaves[0].address = 7;
    description.line.baud = 115200;
    description.channels.emplace_back().type = modbus::ValueType::Uint16;
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

// At 50 bits a second a character lasts 200 ms, so an answer is no more broken off after 150 than the line is silent.
TEST(ModbusLine, ASlowLineMayPauseBetweenCharacters) {
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

TEST(ModbusLine, AConnectionOutlivesItsLogger) {
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

TEST(ModbusLine, FailuresHaveTheirCodes) {
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

TEST(ModbusLine, APulledPlugIsAHardwareErrorAtOnce) {
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
TEST(ModbusLine, ALineIsOpenedAgainAndAgain) {
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
