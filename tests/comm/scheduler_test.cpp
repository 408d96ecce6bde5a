#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>

#include "comm/sheduler_internal.h"
#include "comm/task.h"
#include "tests/comm/pump.h"

namespace {
CVXTTime At(__int64 milliseconds) {
    CVXTTime time;
    time.SetBinaryTime(milliseconds * 1'000);
    return time;
}

// Writes its name into the log whenever it runs, then does what it is told to.
class Task : public CVXTTask {
public:
    Task(std::string& log, char name) : m_log(&log), m_name(name) {}
    BOOL OnShedule() override {
        *m_log += m_name;
        return work();
    }
    std::function<BOOL()> work = [] { return TRUE; };
    __int64 Due() const { return m_tmShedule.GetBinaryTime(); }

private:
    std::string* m_log;
    char m_name;
};

// A scheduler of its own, with a clock that stands where it is put.
class Scheduler : public testing::Test {
protected:
    void Add(Task& task, __int64 due) {
        task.RaiseShedule(At(due));
        EXPECT_TRUE(scheduler.Register(&task));
    }
    BOOL Pass() { return scheduler.Pass(At(now)); }
    // What ran in so many passes.
    std::string Passes(int count) {
        log.clear();
        while (count-- > 0) Pass();
        return log;
    }

    CVXTSheduler scheduler;
    __int64 now = 1'000;
    std::string log;
    Task a{log, 'a'}, b{log, 'b'}, c{log, 'c'};
};

TEST_F(Scheduler, RunsATaskOnceWhenItsTimeHasCome) {
    EXPECT_FALSE(Pass());
    Add(a, 1'001);
    EXPECT_FALSE(Pass());
    EXPECT_EQ(log, "");
    now = 1'001;
    EXPECT_TRUE(Pass());
    EXPECT_FALSE(a.GetSheduleState());
    now = 5'000;
    EXPECT_FALSE(Pass());
    EXPECT_EQ(log, "a");
    a.RaiseShedule(At(4'000));
    EXPECT_EQ(Passes(3), "a");
}

TEST_F(Scheduler, RunsOneTaskAPassInTurn) {
    for (Task* task : {&a, &b, &c}) {
        Add(*task, 0);
        task->work = [=] {
            task->RaiseShedule(At(0));
            return TRUE;
        };
    }
    EXPECT_EQ(Passes(1), "a");
    EXPECT_EQ(Passes(4), "bcab");
    b.work = [] { return TRUE; };
    EXPECT_EQ(Passes(7), "cabcaca");
}

TEST_F(Scheduler, RegistersATaskOnceUntilItWithdraws) {
    Add(a, 0);
    EXPECT_FALSE(scheduler.Register(&a));
    EXPECT_EQ(scheduler.GetSize(), 1);
    a.work = [] { return FALSE; };
    Add(b, 0);
    EXPECT_EQ(Passes(1), "a");
    EXPECT_FALSE(scheduler.IsRegistered(&a));
    EXPECT_EQ(scheduler.GetSize(), 2);
    a.RaiseShedule(At(0));
    EXPECT_EQ(Passes(3), "b");
    EXPECT_EQ(scheduler.GetSize(), 1);
}

TEST_F(Scheduler, AWithdrawnEntryDoesNotCostTheNextOneItsTurn) {
    Add(a, 0);
    Add(b, 0);
    Add(c, 0);
    scheduler.Withdraw(&a);
    scheduler.Withdraw(&b);
    EXPECT_EQ(Passes(1), "c");
    EXPECT_EQ(scheduler.GetSize(), 1);
}

TEST_F(Scheduler, EntriesGoOnlyWhenNoTaskIsRunning) {
    a.work = [&] {
        scheduler.Withdraw(&a);
        scheduler.Withdraw(&b);
        EXPECT_TRUE(Pass());  // from within: c runs, nothing goes
        EXPECT_EQ(scheduler.GetSize(), 3);
        EXPECT_TRUE(Pass());  // withdrawn entries are not idle ones
        return TRUE;
    };
    Add(a, 0);
    Add(b, 0);
    Add(c, 0);
    EXPECT_EQ(Passes(1), "ac");
    EXPECT_EQ(scheduler.GetSize(), 3);
    EXPECT_FALSE(Pass());
    EXPECT_EQ(scheduler.GetSize(), 1);
}

TEST_F(Scheduler, ATaskThatRunsIsSkippedAndMayStartAnew) {
    a.work = [&] {
        a.RaiseShedule(At(0));
        Pass();
        Pass();
        return TRUE;
    };
    Add(a, 0);
    Add(b, 0);
    EXPECT_EQ(Passes(1), "ab");
    a.work = [] { return TRUE; };
    EXPECT_EQ(Passes(3), "a");
    scheduler.Withdraw(&b);
    a.RaiseShedule(At(0));
    a.work = [&] {
        scheduler.Withdraw(&a);
        a.RaiseShedule(At(0));
        EXPECT_TRUE(scheduler.Register(&a));
        a.work = [] { return TRUE; };
        return FALSE;
    };
    EXPECT_EQ(Passes(1), "a");
    EXPECT_TRUE(scheduler.IsRegistered(&a));
    EXPECT_EQ(Passes(3), "a");
    EXPECT_EQ(scheduler.GetSize(), 1);
}

TEST_F(Scheduler, ATaskThatThrowsIsNotRunAgainUntilItIsStartedAnew) {
    a.work = []() -> BOOL { throw std::runtime_error("failed"); };
    Add(a, 0);
    Add(b, 0);
    EXPECT_THROW(Pass(), std::runtime_error);
    a.RaiseShedule(At(0));
    EXPECT_EQ(Passes(4), "b");
    scheduler.Withdraw(&a);
    Pass();
    EXPECT_EQ(scheduler.GetSize(), 1);
    a.work = [] { return TRUE; };
    Add(a, 0);
    EXPECT_EQ(Passes(2), "a");
}

// The scheduler of the process, its clock and its timer.
class ProcessScheduler : public testing::Test {
protected:
    void SetUp() override {
        while (!CVXTSheduler::Process().IsEmpty()) CVXTSheduler::Process().Pass(At(0));
    }
    std::string log;
};

TEST_F(ProcessScheduler, StartRegistersAndMovesTheDueTime) {
    Task task(log, 'a');
    EXPECT_TRUE(task.GetSheduleState());
    EXPECT_FALSE(task.IsRunning());
    EXPECT_TRUE(task.Start(3'600'000));
    EXPECT_TRUE(task.IsRunning());
    EXPECT_FALSE(OrvikShedule());
    EXPECT_FALSE(task.Start(0));
    EXPECT_TRUE(OrvikShedule());
    EXPECT_EQ(log, "a");
    EXPECT_FALSE(task.Start(At(0)));
    EXPECT_TRUE(task.GetSheduleState());
    task.Stop();
    EXPECT_FALSE(task.IsRunning());
    EXPECT_TRUE(task.GetSheduleState());
    EXPECT_FALSE(OrvikShedule());
    EXPECT_EQ(log, "a");
}

TEST_F(ProcessScheduler, DueTimesCountFromNowAndCanBePolledOnce) {
    Task task(log, 'a');
    EXPECT_EQ(task.Due() % 1'000'000, 0);
    const CVXTTime before = CVXTTime::Now();
    task.RaiseShedule(4'294'967'295u);
    const CVXTTime after = CVXTTime::Now();
    EXPECT_GE(task.Due(), before.GetBinaryTime() + 4'294'967'295'000);
    EXPECT_LE(task.Due(), after.GetBinaryTime() + 4'294'967'295'000);
    EXPECT_EQ(task.Due() % 1'000, 0);
    task.RaiseShedule(3'600'000);
    EXPECT_FALSE(task.GetShedule());
    EXPECT_TRUE(task.GetSheduleState());
    task.RaiseShedule(0);
    EXPECT_TRUE(task.GetShedule());
    EXPECT_FALSE(task.GetShedule());
    EXPECT_FALSE(task.GetSheduleState());
    EXPECT_EQ(log, "");
}

TEST_F(ProcessScheduler, ACopyIsArmedLikeItsSourceAndNotRegistered) {
    Task task(log, 'a');
    task.Start(At(1));
    const Task copy(task);
    EXPECT_EQ(copy.Due(), 1'000);
    EXPECT_FALSE(copy.IsRunning());
    Task other(log, 'b');
    other.Start(At(2));
    other = Task(log, 'c');
    EXPECT_TRUE(other.IsRunning());
}

TEST_F(ProcessScheduler, ATaskThatDiesIsWithdrawn) {
    auto task = std::make_unique<Task>(log, 'a');
    task->work = [&] {
        task.reset();
        return TRUE;
    };
    task->Start(0);
    EXPECT_TRUE(OrvikShedule());
    std::make_unique<Task>(log, 'b')->Start(0);
    EXPECT_FALSE(OrvikShedule());
    EXPECT_EQ(log, "a");
    EXPECT_TRUE(CVXTSheduler::Process().IsEmpty());
}

TEST_F(ProcessScheduler, TheThreadsTimerDrivesIt) {
    Task task(log, 'a');
    task.work = [&] {
        task.RaiseShedule(0);
        return TRUE;
    };
    OrvikShedule();  // as the host does once
    task.Start(0);
    EXPECT_TRUE(PumpUntil([&] { return log == "aaa"; })) << log;
}

// A pass ends its own timer and starts one, so a throw leaves none, and passes in passes leave no more than one.
TEST_F(ProcessScheduler, HoldsOneTimerWhichRestsAfterAThrow) {
    Task nesting(log, 'a'), throwing(log, 'b');
    nesting.work = [] {
        OrvikShedule();
        OrvikShedule();
        return FALSE;
    };
    nesting.Start(0);
    OrvikShedule();
    throwing.work = []() -> BOOL { throw std::runtime_error("failed"); };
    throwing.Start(0);
    EXPECT_THROW(OrvikShedule(), std::runtime_error);
    EXPECT_EQ(log, "ab");
    EXPECT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, 450, QS_TIMER), static_cast<DWORD>(WAIT_TIMEOUT));
    throwing.Stop();
    Task next(log, 'c');
    OrvikShedule();
    next.Start(0);
    EXPECT_TRUE(PumpUntil([&] { return log == "abc"; })) << log;
}
}  // namespace
