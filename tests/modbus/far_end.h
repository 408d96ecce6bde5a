// The far end of a pseudo-terminal, with what plays the logger there on a thread of its own.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <modbus.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "plugins/modbus/modbus_frame.h"

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
        if (m_fd >= 0) close(m_fd);
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
            while (!m_stopping && m_fd >= 0) {
                pollfd waiting = {m_fd, POLLIN, 0};
                if (poll(&waiting, 1, 20) <= 0 || !(waiting.revents & POLLIN)) continue;
                BYTE block[256];
                const ssize_t got = read(m_fd, block, sizeof block);
                const std::vector<BYTE> reply = got > 0 ? answer(block, static_cast<size_t>(got)) : std::vector<BYTE>();
                if (!reply.empty() && write(m_fd, reply.data(), reply.size()) < 0) return;
            }
        });
    }

    // Each whole request is handed to `answer`; what it gives goes back as it stands. A result of "" keeps silent.
    void Serve(std::function<std::vector<BYTE>(const modbus::Request&, int number)> answer) {
        ServeBytes([this, answer = std::move(answer), received = std::vector<BYTE>(), number = 0](const BYTE* bytes,
                                                                                                  size_t size) mutable {
            received.insert(received.end(), bytes, bytes + size);
            modbus::Request request;
            size_t used = 0;
            if (!modbus::FindRequest(received, request, used)) return std::vector<BYTE>();
            received.clear();
            const std::vector<BYTE> reply = answer(request, ++number);
            if (reply.empty() && m_pullAfter == number) close(std::exchange(m_fd, -1));
            return reply;
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
