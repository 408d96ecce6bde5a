// The master on a real pseudo-terminal, against a far end that misbehaves.
#include <filesystem>

#include "plugins/modbus/modbus_logger.h"
#include "tests/modbus/far_end.h"
#include "tests/support/comm_failure.h"

namespace {

modbus::Description OneRegister() {
    modbus::Description description;
    description.slaves[0].address = 7;
    description.line.baud = 115200;
    description.channels.emplace_back().type = modbus::ValueType::Uint16;
    return description;
}

std::vector<BYTE> Good(const modbus::Request& request) {
    if (request.count == 0) return modbus::EncodeException(request, modbus::kIllegalValue);
    return modbus::EncodeReply(request, std::vector<WORD>{4711});
}

constexpr DWORD kTimeout = 300;

// The code of a reading's failure, or 0: then the value is right.
int Outcome(modbus::Logger& logger) {
    CDoubleArray values;
    const int code = FailureOf([&] { logger.ReadSample(values); }).code;
    EXPECT_TRUE(code != 0 || values.GetAt(0) == 4711);
    return code;
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
    EXPECT_EQ(Outcome(logger), 0);
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
    std::atomic<bool> silent = true;
    FarEnd far;
    far.Serve([&](const modbus::Request& request, int) { return silent ? std::vector<BYTE>() : Good(request); });
    modbus::Logger logger(OneRegister());
    EXPECT_EQ(Outcome(logger), 6);  // not open
    logger.Connect(far.Name(), kTimeout);
    EXPECT_EQ(Outcome(logger), 8);
    silent = false;
    EXPECT_EQ(Outcome(logger), 0);  // and well again
    logger.Abort();
    EXPECT_EQ(Outcome(logger), 9);
    logger.Disconnect();
    EXPECT_EQ(Outcome(logger), 6);
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
            logger.Connect(far.Name(), cycle == 0 ? 60'000 : 100);  // the failure does not wait for this
            ASSERT_EQ(Outcome(logger), 0) << cycle;
            int code = 0;
            while ((code = Outcome(logger)) == 0) continue;
            ASSERT_EQ(code, 7) << cycle;
            EXPECT_FALSE(logger.Connection().IsConnected());
            logger.Disconnect();
            EXPECT_EQ(Outcome(logger), 6);
        }
        EXPECT_NE(FailureOf([&] { logger.Connect(name.c_str(), 100); }).code, 0) << "the port has gone";
        if (cycle == 1) files = openFiles();
    }
    EXPECT_EQ(openFiles(), files);
}
