// COrvikConnection: states, subscribers, threads.
#include "comm/orvik_connection.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/comm/pump.h"

namespace {
class Connection : public COrvikConnection {
public:
    using COrvikConnection::m_bReserved;
    using COrvikConnection::m_eState;
    using COrvikConnection::m_tmStateChanged;
    using COrvikConnection::OnTriggerstatechangedevent;
    using COrvikConnection::StateName;
    using COrvikConnection::StateTransition;
};

// A subscriber that writes down what it is told, and may do something then.
struct Subscriber {
    Subscriber(std::string subscriberName, std::vector<std::string>& subscribersLog)
        : name(std::move(subscriberName)), log(subscribersLog) {}
    void OnState(COrvikConnection* connection, COrvikConnection::EState state) {
        thread = ::GetCurrentThreadId();
        log.push_back(name + std::to_string(state));
        if (then) then(connection);
    }
    COrvikConnection::StateChangedDelegate Delegate() {
        return COrvikConnection::StateChangedDelegate::from_method<Subscriber, &Subscriber::OnState>(this);
    }
    std::string name;
    std::vector<std::string>& log;
    std::function<void(COrvikConnection*)> then;
    DWORD thread = 0;
};

using Log = std::vector<std::string>;

class ConnectionTest : public testing::Test {
protected:
    Log log;
    Subscriber a{"a", log}, b{"b", log}, c{"c", log};
    Connection connection;
};

TEST_F(ConnectionTest, HasItsStateDescriptionAndTime) {
    const char* const names[] = {"Initial", "Connecting", "Connected", "Disconnected", "Working", "Ready", "Closing",
                                 "Closed",  "",           ""};
    for (int i = 0; i < 10; ++i) EXPECT_STREQ(names[i], connection.StateName(static_cast<COrvikConnection::EState>(i)));
    EXPECT_STREQ("", connection.StateName(static_cast<COrvikConnection::EState>(-1)));
    connection.StateTransition(COrvikConnection::Connecting, "dialling", TRUE);
    EXPECT_STREQ("dialling", connection.GetStateDescription());
    EXPECT_TRUE(connection.ShowWaitIcon());
    connection.StateTransition(COrvikConnection::Connected, nullptr, FALSE);
    EXPECT_STREQ("dialling", connection.GetStateDescription());
    EXPECT_FALSE(connection.ShowWaitIcon());
    connection.StateTransition(COrvikConnection::Connected, "", FALSE);
    EXPECT_STREQ("", connection.GetStateDescription());
    const CVXTTime before = CVXTTime::Now();
    connection.StateTransition(COrvikConnection::Ready, nullptr, FALSE);
    const CVXTTime after = CVXTTime::Now();
    const __int64 stamp = connection.m_tmStateChanged.GetBinaryTime();
    EXPECT_LE(before.GetBinaryTime(), stamp);
    EXPECT_GE(after.GetBinaryTime(), stamp);
    EXPECT_EQ(0, stamp % 1000);
}

TEST_F(ConnectionTest, TellsEveryTransitionToTheLastSubscriberFirst) {
    for (Subscriber* subscriber : {&a, &b, &c}) connection.AddStateChangedDelegate(subscriber->Delegate());
    connection.StateTransition(COrvikConnection::Connected, nullptr, FALSE);
    EXPECT_EQ((Log{"c2", "b2", "a2"}), log);
    EXPECT_EQ(::GetCurrentThreadId(), a.thread);
    connection.AddStateChangedDelegate(c.Delegate());  // who is there already is not told twice
    connection.RemoveStateChangedDelegate(c.Delegate());
    connection.RemoveStateChangedDelegate(c.Delegate());
    log.clear();
    for (const auto state : {COrvikConnection::Closed, COrvikConnection::Closed, COrvikConnection::Initial})
        connection.StateTransition(state, nullptr, FALSE);
    EXPECT_EQ((Log{"b7", "a7", "b7", "a7", "b0", "a0"}), log);
    log.clear();
    connection.RemoveStateChangedDelegate(a.Delegate());
    connection.StateTransition(COrvikConnection::Ready, nullptr, FALSE);
    EXPECT_EQ((Log{"b5"}), log);
}

TEST_F(ConnectionTest, SubscribersMayLeaveWhileTheyAreTold) {
    for (Subscriber* subscriber : {&a, &b, &c}) connection.AddStateChangedDelegate(subscriber->Delegate());
    c.then = [this](COrvikConnection* told) { told->RemoveStateChangedDelegate(c.Delegate()); };
    b.then = [this](COrvikConnection* told) { told->RemoveStateChangedDelegate(a.Delegate()); };
    connection.StateTransition(COrvikConnection::Working, nullptr, FALSE);
    EXPECT_EQ((Log{"c4", "b4"}), log) << "who was removed before its turn is not told";
    log.clear();
    connection.StateTransition(COrvikConnection::Ready, nullptr, FALSE);
    EXPECT_EQ((Log{"b5"}), log);
}

TEST_F(ConnectionTest, SubscribersMayJoinAndChangeTheStateWhileTheyAreTold) {
    connection.AddStateChangedDelegate(a.Delegate());
    connection.AddStateChangedDelegate(b.Delegate());
    b.then = [this](COrvikConnection* told) {
        told->AddStateChangedDelegate(c.Delegate());
        if (b.then) {
            b.then = nullptr;
            connection.StateTransition(COrvikConnection::Connected, nullptr, FALSE);
        }
    };
    connection.StateTransition(COrvikConnection::Connecting, nullptr, FALSE);
    EXPECT_EQ((Log{"b1", "c2", "b2", "a2", "a1"}), log);
}

TEST(ConnectionLife, ASubscriberMayDropTheLastReference) {
    Log log;
    Subscriber a("a", log), b("b", log);
    auto* const connection = new Connection;
    connection->AddRef();
    connection->AddStateChangedDelegate(a.Delegate());
    connection->AddStateChangedDelegate(b.Delegate());
    b.then = [](COrvikConnection* told) { told->Release(); };
    connection->StateTransition(COrvikConnection::Closed, nullptr, FALSE);
    EXPECT_EQ((Log{"b7"}), log);
}

TEST_F(ConnectionTest, AWorkersTransitionIsToldOnTheMainThread) {
    connection.AddStateChangedDelegate(a.Delegate());
    std::thread([this] {
        connection.StateTransition(COrvikConnection::Connecting, "one", TRUE);
        connection.StateTransition(COrvikConnection::Connected, "two", FALSE);
        connection.StateTransition(COrvikConnection::Working, nullptr, TRUE);
    }).join();
    EXPECT_TRUE(log.empty()) << "nobody is told before the main thread handles its messages";
    EXPECT_EQ(COrvikConnection::Working, connection.m_eState);
    EXPECT_TRUE(PumpUntil([&] { return log.size() == 3; }));
    EXPECT_EQ((Log{"a1", "a2", "a4"}), log) << "every state, in order";
    EXPECT_EQ(::GetCurrentThreadId(), a.thread);
    EXPECT_STREQ("two", connection.GetStateDescription());
}

TEST_F(ConnectionTest, AWorkerMayDescribeWhileOthersRead) {
    std::atomic<bool> done = false;
    std::thread worker([&] {
        for (int i = 0; i < 300; ++i)
            connection.StateTransition(COrvikConnection::Working, i % 2 ? "odd" : "even and longer", TRUE);
        done = true;
    });
    const Awaiting end("the worker to end");
    while (!done) {
        const CString text = connection.GetStateDescription();
        EXPECT_TRUE(text.IsEmpty() || text == "odd" || text == "even and longer");
    }
    worker.join();
    PumpOnce();
}

TEST(ConnectionMessages, AreRegisteredUnderTheirNames) {
    EXPECT_EQ(COrvikConnection::TriggerStateChangedEvent, ::RegisterWindowMessageA("TriggerStateChanged"));
    EXPECT_EQ(ORVIKCONNECTION_STATE_CHANGED, ::RegisterWindowMessageA("ORVIKCONNECTION_STATE_CHANGED"));
}

TEST(Delegate, IsTwoWordsComparedByBoth) {
    struct View {
        int Add(int left, int right) { return base + left + right; }
        int Multiply(int left, int right) { return base + left * right; }
        int base;
    } one{100}, two{200};
    using Sum = delegate<int, int, int>;
    static_assert(sizeof(Sum) == 2 * sizeof(void*));
    const Sum add = Sum::from_method<View, &View::Add>(&one);
    EXPECT_EQ(105, add(2, 3));
    EXPECT_EQ(106, (Sum::from_method<View, &View::Multiply>(&one)(2, 3)));
    EXPECT_TRUE(add == (Sum::from_method<View, &View::Add>(&one)));
    EXPECT_FALSE(add == (Sum::from_method<View, &View::Add>(&two)));
    EXPECT_FALSE(add == (Sum::from_method<View, &View::Multiply>(&one)));
}
}  // namespace
