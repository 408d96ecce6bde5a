// Others' implementations on the far end: servers of libmodbus are read as they read themselves, and written to; mbpoll reads the
// simulator.
#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <modbus.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <bit>
#include <cmath>
#include <cstdio>
#include <functional>
#include <mutex>
#include <thread>

#include "plugins/modbus/modbus_logger.h"
#include "plugins/modbus/modbus_simulator.h"
#include "propdb/property_db.h"

namespace {
// The far end of a pseudo-terminal, with what plays the logger there on a thread of its own.
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
        Stop();
        close(m_fd);
    }
    void Stop() {
        m_stopping = true;
        if (m_thread.joinable()) m_thread.join();
    }
    const char* Name() const { return m_name.c_str(); }

    // As libmodbus serves these registers and coils, whose contents stay the caller's.
    void ServeLibmodbus(int slave, modbus_mapping_t* map) {
        m_thread = std::thread([this, slave, map] {
            modbus_t* context = modbus_new_rtu(m_name.c_str(), 19200, 'N', 8, 1);
            modbus_set_slave(context, slave);
            modbus_set_socket(context, m_fd);
            modbus_set_indication_timeout(context, 0, 50'000);
            while (!m_stopping) {
                uint8_t query[MODBUS_RTU_MAX_ADU_LENGTH];
                const int length = modbus_receive(context, query);
                if (length > 0) modbus_reply(context, query, length, map);
            }
            modbus_free(context);
        });
    }

    // Whatever comes is handed to `answer`, piece by piece; what it gives goes back.
    void ServeBytes(std::function<std::vector<BYTE>(const BYTE*, size_t)> answer) {
        m_thread = std::thread([this, answer = std::move(answer)]() mutable {
            while (!m_stopping) {
                pollfd waiting = {m_fd, POLLIN, 0};
                if (poll(&waiting, 1, 20) <= 0 || !(waiting.revents & POLLIN)) continue;
                BYTE block[256];
                const ssize_t got = read(m_fd, block, sizeof block);
                const std::vector<BYTE> reply = got > 0 ? answer(block, static_cast<size_t>(got)) : std::vector<BYTE>();
                if (!reply.empty() && write(m_fd, reply.data(), reply.size()) < 0) return;
            }
        });
    }

private:
    int m_fd = -1;
    std::string m_name;
    std::thread m_thread;
    std::atomic<bool> m_stopping = false;
};

// A description of channels in the order in which they are added.
class Device {
public:
    explicit Device(unsigned slave) { m_db.SetValue("nSlave", slave); }
    void Add(unsigned slave, unsigned function, unsigned first, const char* type, const char* order) {
        m_db.BeginUsingFmt("Channels.%05u", m_count++);
        m_db.SetValue("nSlave", slave);
        m_db.SetValue("nFunction", function);
        m_db.SetValue("nRegister", first);
        m_db.SetValue("sType", type);
        m_db.SetValue("sOrder", order);
        m_db.EndUsing();
    }
    CPropertyDB& Database() { return m_db; }
    modbus::Description Description() { return modbus::ReadDescription(m_db); }

private:
    CPropertyDB m_db;
    unsigned m_count = 0;
};

// All kinds of registers and coils of libmodbus, and what its own getters make of them.
class Libmodbus {
public:
    Libmodbus() : map(modbus_mapping_new(kCount, kCount, kCount, kCount)) {
        for (int i = 0; i < kCount; ++i) {
            map->tab_bits[i] = i % 3 == 1;
            map->tab_input_bits[i] = i % 5 < 2;
            // Floats of both signs and of moderate size, in whatever order they are read.
            map->tab_registers[i] = static_cast<uint16_t>(0x4142 + 0x0101 * (i % 7) + (i % 4 == 0 ? 0x8080 : 0));
            map->tab_input_registers[i] = static_cast<uint16_t>(i * 7919);
        }
    }
    ~Libmodbus() { modbus_mapping_free(map); }

    // Every type and order that it has getters for, at every place.
    Device Channels(unsigned slave) {
        Device device(slave);
        expected.clear();
        const auto add = [&](unsigned function, unsigned first, const char* type, const char* order, double value) {
            device.Add(slave, function, first, type, order);
            expected.push_back(value);
        };
        const struct {
            const char* name;
            float (*get)(const uint16_t*);
        } orders[] = {{"ABCD", modbus_get_float_abcd},
                      {"BADC", modbus_get_float_badc},
                      {"CDAB", modbus_get_float_cdab},
                      {"DCBA", modbus_get_float_dcba}};
        for (int i = 0; i + 4 <= kCount; ++i) {
            const auto at = static_cast<unsigned>(i);
            add(1, at, "bool", "high", map->tab_bits[i]);
            add(2, at, "bool", "high", map->tab_input_bits[i]);
            for (const auto& [function, table] : {std::pair(3u, map->tab_registers), std::pair(4u, map->tab_input_registers)}) {
                add(function, at, "uint16", "high", table[i]);
                add(function, at, "int16", "high", static_cast<int16_t>(table[i]));
                add(function, at, "int32", "high", MODBUS_GET_INT32_FROM_INT16(table, i));
                add(function, at, "int64", "high", static_cast<double>(MODBUS_GET_INT64_FROM_INT16(table, i)));
                for (const auto& order : orders) {
                    const float value = order.get(table + i);
                    add(function, at, "uint32", order.name, std::bit_cast<uint32_t>(value));
                    if (function == 3) add(function, at, "float32", order.name, value);
                }
            }
        }
        return device;
    }
    void Check(modbus::Logger& logger) const {
        CDoubleArray values;
        logger.ReadSample(values);
        ASSERT_EQ(static_cast<size_t>(values.GetSize()), expected.size());
        for (size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(values.GetAt(static_cast<INT_PTR>(i)), expected[i]) << i;
    }

    static constexpr int kCount = 60;
    modbus_mapping_t* const map;
    std::vector<double> expected;
};

// A program with its output to read; it is to end when its input does.
class Program {
public:
    explicit Program(std::vector<std::string> words) {
        int in[2], out[2];
        EXPECT_EQ(pipe2(in, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(out, O_CLOEXEC), 0);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], 0);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        EXPECT_EQ(posix_spawnp(&m_process, arguments[0], &actions, nullptr, arguments.data(), environ), 0)
            << words[0] << " is missing; tools/install-packages native";
        posix_spawn_file_actions_destroy(&actions);
        close(in[0]);
        close(out[1]);
        m_in = in[1];
        m_out = fdopen(out[0], "r");
    }
    ~Program() {
        close(m_in);
        fclose(m_out);
        if (m_process > 0) waitpid(m_process, nullptr, 0);
    }
    // False at its end.
    bool Line(std::string& line) {
        line.clear();
        for (int letter; (letter = fgetc(m_out)) != EOF;) {
            if (letter == '\n') return true;
            line += static_cast<char>(letter);
        }
        return !line.empty();
    }

private:
    pid_t m_process = -1;
    int m_in = -1;
    FILE* m_out = nullptr;
};

// What mbpoll understands, against the answer that it was given; a call and a connection for each poll.
void PollAndCompare(std::vector<std::string> words, const std::function<modbus::Answer()>& given) {
    const struct {
        const char* kind;
        modbus::ValueType type;
        bool bigEndian;
        BYTE function;
    } rows[] = {{"0", modbus::ValueType::Bool, false, 1},         {"1", modbus::ValueType::Bool, false, 2},
                {"3", modbus::ValueType::Uint16, false, 4},       {"4", modbus::ValueType::Uint16, false, 3},
                {"4:int", modbus::ValueType::Int32, true, 3},     {"4:int", modbus::ValueType::Int32, false, 3},
                {"4:float", modbus::ValueType::Float32, true, 3}, {"3:float", modbus::ValueType::Float32, false, 4}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.kind << row.bigEndian);
        const int first = std::string(row.kind).size() == 1 ? 1 : row.type == modbus::ValueType::Int32 ? 11 : 21;
        std::vector<std::string> call = {"mbpoll", "-1", "-a", "7", "-t", row.kind, "-r", std::to_string(first), "-c", "3"};
        if (row.bigEndian) call.push_back("-B");
        call.insert(call.end(), words.begin(), words.end());
        Program poll(call);
        int seen = 0;
        for (std::string line; poll.Line(line);) {
            int reference = 0;
            char text[64] = "";
            if (std::sscanf(line.c_str(), "[%d]: %63s", &reference, text) != 2) continue;
            modbus::Channel channel;
            channel.function = row.function;
            channel.type = row.type;
            channel.order = row.bigEndian ? modbus::kHighFirst : modbus::kSwapWords;
            const auto offset = static_cast<WORD>(reference - first);
            const modbus::Answer answer = given();
            ASSERT_EQ(answer.exception, 0);
            ASSERT_EQ(answer.function, row.function);
            const double value = Decode(channel, answer.data.data(), offset);
            EXPECT_NEAR(std::stod(text), value, std::abs(value) * 1e-5) << line;
            ++seen;
        }
        EXPECT_EQ(seen, 3);
    }
}

Device Polled() {
    Device device(7);
    for (unsigned i = 0; i < 6; ++i) {
        for (unsigned function = 1; function <= 4; ++function)
            device.Add(7, function, i, function > 2 ? "uint16" : "bool", "high");
        device.Add(7, 3, 10 + 2 * i, "int32", "high");
        device.Add(7, 3, 22 + 2 * i, "int32", "high");
        device.Add(7, 4, 20 + 2 * i, "float32", "low");
    }
    return device;
}
}  // namespace

TEST(ModbusPeer, LibmodbusOverANetwork) {
    Libmodbus peer;
    Device device = peer.Channels(17);
    modbus_t* const context = modbus_new_tcp("127.0.0.1", 0);
    int listening = modbus_tcp_listen(context, 1);
    ASSERT_GE(listening, 0);
    sockaddr_in name{};
    socklen_t size = sizeof name;
    getsockname(listening, reinterpret_cast<sockaddr*>(&name), &size);
    const std::string address = "tcp://127.0.0.1:" + std::to_string(ntohs(name.sin_port));
    std::thread server([&] {
        modbus_tcp_accept(context, &listening);
        uint8_t query[MODBUS_TCP_MAX_ADU_LENGTH];
        for (int length; (length = modbus_receive(context, query)) != -1;) {
            if (length > 0) modbus_reply(context, query, length, peer.map);
        }
    });
    {
        modbus::Logger logger(device.Description());
        logger.Connect(address.c_str(), 2000);
        for (int round = 0; round < 3; ++round) peer.Check(logger);
    }
    server.join();
    close(listening);
    modbus_close(context);
    modbus_free(context);
}

// What libmodbus then holds, by its own getters.
TEST(ModbusPeer, LibmodbusIsWrittenTo) {
    Libmodbus peer;
    FarEnd far;
    far.ServeLibmodbus(17, peer.map);
    Device device(17);
    device.Add(17, 1, 3, "bool", "high");
    device.Add(17, 1, 4, "bool", "high");
    device.Add(17, 3, 10, "int16", "high");
    device.Add(17, 3, 12, "float32", "CDAB");
    device.Add(17, 3, 20, "int64", "high");
    for (const char* number : {"0", "1", "2", "3", "4"})
        device.Database().SetValue((std::string("Channels.0000") + number + ".bWritable").c_str(), 1u);
    device.Database().SetValue("Channels.00001.nWrite", 15u);
    modbus::Logger logger(device.Description());
    logger.Connect(far.Name(), 2000);
    const char* const numbers[] = {"1", "0", "-12345", "21.5", "-9007199254740993"};
    for (int i = 0; i < 5; ++i) EXPECT_STREQ(logger.Write(i, numbers[i]).held, numbers[i]) << i;
    far.Stop();
    EXPECT_EQ(peer.map->tab_bits[3], 1);
    EXPECT_EQ(peer.map->tab_bits[4], 0);
    EXPECT_EQ(static_cast<int16_t>(peer.map->tab_registers[10]), -12345);
    EXPECT_EQ(modbus_get_float_cdab(peer.map->tab_registers + 12), 21.5f);
    EXPECT_EQ(MODBUS_GET_INT64_FROM_INT16(peer.map->tab_registers, 20), -9'007'199'254'740'993);
}

TEST(ModbusPeer, MbpollReadsTheSimulatorOverASerialLine) {
    Device device = Polled();
    FarEnd far;
    modbus::Simulator simulator(device.Description());
    simulator.SetLine(far.Name());
    std::mutex guard;
    std::vector<BYTE> last;  // answer that it gave
    far.ServeBytes([&](const BYTE* bytes, size_t size) {
        const std::lock_guard lock(guard);
        CByteArray reply;
        simulator.Receive(bytes, size, reply);
        const std::vector<BYTE> said(reply.GetData(), reply.GetData() + reply.GetSize());
        if (!said.empty()) last = said;
        return said;
    });
    PollAndCompare({"-m", "rtu", "-b", "19200", "-P", "none", far.Name()}, [&] {
        const std::lock_guard lock(guard);
        size_t begin = 0, end = 0;
        return modbus::FindAnswer(last, begin, end).value_or(modbus::Answer{});
    });
}
