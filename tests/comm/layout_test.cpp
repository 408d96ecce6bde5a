// The order of members and of virtual operations, which modules built apart rely on.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "comm/orvik_connection.h"
#include "comm/serial_device.h"
#include "comm/serial_orvik.h"

namespace {
template <class Object, class... Member>
std::vector<ptrdiff_t> Offsets(const Object& object, const Member&... members) {
    const auto* const start = reinterpret_cast<const char*>(&object);
    return {reinterpret_cast<const char*>(&members) - start...};
}

constexpr ptrdiff_t kWord = sizeof(void*);
using List = std::vector<ptrdiff_t>;

struct Port : CSerialOrvik {
    static List OfCSerial(const Port& p) {
        return Offsets(p, p.m_lLastError, p.m_hFile, p.m_eEvent, p.m_dwEventMask, p.m_hevtOverlapped);
    }
    static List Added(const Port& p) {
        return Offsets(p, p.m_fStopping, p.m_hThread, p.m_hevtOverlappedWorkerThread, p.m_hwndDest, p.m_nComMsg, p.m_lParam,
                       p.m_bTraceEnabled, p.m_bTraceHex, p.m_wndCom, p.m_strPort, p.m_nTraceDirection, p.m_strTrace);
    }
};

struct Connection : COrvikConnection {
    static List Members(const Connection& c) {
        return Offsets(c, c.m_eState, c.m_strStateDescription, c.m_bShowWaitIcon, c.m_arrStateChangedDelegates,
                       c.m_tmStateChanged, c.m_bReserved, c.m_nUnused);
    }
    static_assert(sizeof(m_eState) == 4 && sizeof(m_bShowWaitIcon) == 4);
};

TEST(Layout, MembersStandInTheirOrder) {
    const Port port;
    const List base = Port::OfCSerial(port);
    EXPECT_EQ((kWord == 8 ? List{8, 16, 24, 28, 32} : List{4, 8, 12, 16, 20}), base);
    const List added = Port::Added(port);
    EXPECT_TRUE(std::is_sorted(added.begin(), added.end()));
    EXPECT_GT(added.front(), base.back());
    const Connection connection;
    const List members = Connection::Members(connection);
    EXPECT_TRUE(std::is_sorted(members.begin(), members.end()));
}
}  // namespace
