// COrvikConnection: states, subscribers, threads.
#include "comm/orvik_connection.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
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

TEST_F(ConnectionTest, NamesItsEightStates) {
    const char* const names[] = {"Initial", "Connecting", "Connected", "Disconnected", "Working", "Ready", "Closing",
                                 "Closed",  "",           ""};
    for (int i = 0; i < 10; ++i) EXPECT_STREQ(names[i], connection.StateName(static_cast<COrvikConnection::EState>(i)));
    EXPECT_STREQ("", connection.StateName(static_cast<COrvikConnection::EState>(-1)));
}

TEST_F(ConnectionTest, ANullDescriptionKeepsTheFormerText) {
    connection.StateTransition(COrvikConnection::Connecting, "dialling", TRUE);
    EXPECT_STREQ("dialling", connection.GetStateDescription());
    EXPECT_TRUE(connection.ShowWaitIcon());
    connection.StateTransition(COrvikConnection::Connected, nullptr, FALSE);
    EXPECT_STREQ("dialling", connection.GetStateDescription());
    EXPECT_FALSE(connection.ShowWaitIcon());
    connection.StateTransition(COrvikConnection::Connected, "", FALSE);
    EXPECT_STREQ("", connection.GetStateDescription());
}

TEST_F(ConnectionTest, StampsEachTransitionToTheMillisecond) {
    const CVXTTime before = CVXTTime::Now();
    connection.StateTransition(COrvikConnection::Ready, nullptr, FALSE);
    const CVXTTime after = CVXTTime::Now();
    const __int64 stamp = connection.m_tmStateChanged.GetBinaryTime();
    EXPECT_LE(before.GetBinaryTime(), stamp);
    EXPECT_GE(after.GetBinaryTime(), stamp);
    EXPECT_EQ(0, stamp % 1000);
}

TEST_F(ConnectionTest, TellsTheLastSubscriberFirst) {
    for (Subscriber* subscriber : {&a, &b, &c}) connection.AddStateChangedDelegate(subscriber->Delegate());
    connection.StateTransition(COrvikConnection::Connected, nullptr, FALSE);
    EXPECT_EQ((Log{"c2", "b2", "a2"}), log);
    EXPECT_EQ(::GetCurrentThreadId(), a.thread);
}

TEST_F(ConnectionTest, EveryTransitionNotifiesTheSameStateIncluded) {
    connection.AddStateChangedDelegate(a.Delegate());
    connection.StateTransition(COrvikConnection::Closed, nullptr, FALSE);
    connection.StateTransition(COrvikConnection::Closed, nullptr, FALSE);
    connection.StateTransition(COrvikConnection::Initial, nullptr, FALSE);
    EXPECT_EQ((Log{"a7", "a7", "a0"}), log);
}

TEST_F(ConnectionTest, SubscribesOnceAndRemovesOnlyWhatIsListed) {
    connection.AddStateChangedDelegate(a.Delegate());
    connection.AddStateChangedDelegate(b.Delegate());
    connection.AddStateChangedDelegate(a.Delegate());
    connection.RemoveStateChangedDelegate(c.Delegate());
    connection.StateTransition(COrvikConnection::Ready, nullptr, FALSE);
    EXPECT_EQ((Log{"b5", "a5"}), log);
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

struct Worker {
    Connection& connection;
    std::function<void(Connection&)> work;
    static DWORD WINAPI Entry(LPVOID self) {
        auto* const worker = static_cast<Worker*>(self);
        worker->work(worker->connection);
        return 0;
    }
    void Run() {
        const Awaiting end("the worker to end");
        const HANDLE thread = ::CreateThread(nullptr, 0, Entry, this, 0, nullptr);
        ::WaitForSingleObject(thread, INFINITE);
        ::CloseHandle(thread);
    }
};

TEST_F(ConnectionTest, AWorkersTransitionIsToldOnTheMainThread) {
    connection.AddStateChangedDelegate(a.Delegate());
    Worker{connection,
           [](Connection& its) {
               its.StateTransition(COrvikConnection::Connecting, "one", TRUE);
               its.StateTransition(COrvikConnection::Connected, "two", FALSE);
               its.StateTransition(COrvikConnection::Working, nullptr, TRUE);
           }}
        .Run();
    EXPECT_TRUE(log.empty()) << "nobody is told before the main thread handles its messages";
    EXPECT_EQ(COrvikConnection::Working, connection.m_eState);
    EXPECT_TRUE(PumpUntil([&] { return log.size() == 3; }));
    EXPECT_EQ((Log{"a1", "a2", "a4"}), log) << "every state, in order";
    EXPECT_EQ(::GetCurrentThreadId(), a.thread);
    EXPECT_STREQ("two", connection.GetStateDescription());
}

TEST_F(ConnectionTest, AWorkerMayDescribeWhileOthersRead) {
    volatile bool done = false;
    struct Shared {
        Connection& connection;
        HANDLE start;
    } shared{connection, ::CreateEventA(nullptr, TRUE, FALSE, nullptr)};
    const HANDLE thread = ::CreateThread(
        nullptr, 0,
        [](LPVOID parameter) -> DWORD {
            auto* const its = static_cast<Shared*>(parameter);
            ::WaitForSingleObject(its->start, INFINITE);
            for (int i = 0; i < 300; ++i)
                its->connection.StateTransition(COrvikConnection::Working, i % 2 ? "odd" : "even and longer", TRUE);
            return 0;
        },
        &shared, 0, nullptr);
    ::SetEvent(shared.start);
    const Awaiting end("the worker to end");
    while (!done) {
        const CString text = connection.GetStateDescription();
        EXPECT_TRUE(text.IsEmpty() || text == "odd" || text == "even and longer");
        done = ::WaitForSingleObject(thread, 0) == WAIT_OBJECT_0;
    }
    ::CloseHandle(thread);
    ::CloseHandle(shared.start);
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
