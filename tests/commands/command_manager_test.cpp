#include "commands/command_manager.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <string>
#include <tuple>

#include "commands/group_commands.h"
#include "tests/support/raises.h"
#include "tests/support/time_limit.h"

namespace {
// Tells what becomes of it: "+a" done again, "-a" undone, "!a" destroyed, "~a" deleted.
class Step : public CDoCommand {
public:
    Step(std::string& log, std::string name, int answer = 1) : m_log(&log), m_name(std::move(name)), m_answer(answer) {}
    ~Step() override { Tell('~'); }
    void Destroy() override {
        Tell('!');
        CDoCommand::Destroy();
    }
    int OnUndo() override { return Tell('-'), m_answer; }
    int OnRedo() override { return Tell('+'), m_answer; }

private:
    void Tell(char what) { *m_log += what + m_name; }
    std::string* m_log;
    std::string m_name;
    int m_answer;
};

class CommandManager : public testing::Test {
protected:
    Step* Do(const std::string& name, int answer = 1) {
        auto* const step = new Step(log, name, answer);
        EXPECT_TRUE(manager.DoCommand(step));
        return step;
    }
    // Begin and end markers for "(" and ")", steps for letters; digits 0 to 9 are the answers of the steps before them.
    void DoAll(const std::string& script) {
        for (size_t i = 0; i < script.size(); ++i) {
            if (script[i] == '(')
                manager.BeginGroup();
            else if (script[i] == ')')
                manager.EndGroup();
            else if (i + 1 < script.size() && isdigit(script[i + 1]))
                Do(std::string(1, script[i]), script[i + 1] - '0'), ++i;
            else
                Do(std::string(1, script[i]));
        }
    }
    // The answer and what happened, as "1 -b-a".
    std::string Undo() {
        log.clear();
        const int answer = manager.UndoLastCommand();
        return std::to_string(answer) + ' ' + log;
    }
    std::string Redo() {
        log.clear();
        const int answer = manager.RedoLastUndoneCommand();
        return std::to_string(answer) + ' ' + log;
    }

    // What a walk through an empty history comes to: "<" an undo, ">" a redo, the rest as DoAll has it. Answers, what happened,
    // and what can be done in the end.
    std::string Walk(const std::string& walk) {
        manager.RemoveAll();
        std::string all;
        for (size_t i = 0; i < walk.size();) {
            if (walk[i] == '<' || walk[i] == '>') {
                all += (walk[i++] == '<' ? Undo() : Redo()) + '|';
                continue;
            }
            const size_t end = std::min(walk.find_first_of("<>", i), walk.size());
            log.clear();
            DoAll(walk.substr(i, end - i));
            if (!log.empty()) all += log + '|';
            i = end;
        }
        return all + (manager.CanUndo() ? "undo" : "") + (manager.CanRedo() ? "redo" : "");
    }

    const Awaiting m_walk{"an undo or a redo to end"};
    std::string log;
    COrvikCommandManager manager;
};

TEST_F(CommandManager, WalksBackAndForth) {
    using Row = std::tuple<const char*, const char*, const char*>;
    for (const auto& [what, walk, expected] :
         {Row{"nothing done", "<>", "1 |1 |"},
          Row{"one by one, beyond both ends", "ab7><<<>>>", "1 |7 -b|1 -a|1 |1 +a|7 +b|1 |undo"},
          Row{"commands that show nothing are passed over", "a0b2c0d0e<<<>>", "1 -e|2 -d-c-b|1 -a|2 +a+b|1 +c+d+e|undo"},
          Row{"and none is left behind them", "a0b2f0<>>", "2 -f-b|2 +b|1 +f|undo"},
          Row{"a new command ends the undone ones first", "abc<<d<<", "1 -c|1 -b|!c~c!b~b|1 -d|1 -a|redo"},
          Row{"all undone ones", "ad<<e<", "1 -d|1 -a|!a~a!d~d|1 -e|redo"},
          Row{"a group is one step", "x(ab)y<<<>>>", "1 -y|1 -b-a|1 -x|1 +x|1 +a+b|1 +y|undo"},
          Row{"it is undone before its begin", "(ab)<", "1 -b-a|redo"},
          Row{"and done at its end", "(ab)<><", "1 -b-a|1 +a+b|1 -b-a|redo"},
          Row{"a new command ends it with its markers", "(ab)<c<", "1 -b-a|!a~a!b~b|1 -c|redo"},
          Row{"what its commands answer does not matter", "x(a0b5c0)<>()<<", "1 -c-b-a|1 +a+b+c|1 |1 -c-b-a|undoredo"},
          Row{"groups hold groups", "x(a(b(c)d)e)<<>>", "1 -e-d-c-b-a|1 -x|1 +x|1 +a+b+c+d+e|undo"},
          Row{"an unfinished one goes back one by one and forth as a whole", "x(ab<<<<>>", "1 -b|1 -a|-2 |1 -x|1 +x|1 +a+b|undo"},
          Row{"an end without a begin goes back as a whole and is told forth", "a)b<<>>>", "1 -b|1 -a|1 +a|-2 |1 +b|undo"}}) {
        EXPECT_EQ(Walk(walk), expected) << what;
    }
}

TEST_F(CommandManager, TheHundredthCommandDropsTheOldest) {
    for (int i = 1; i <= 99; ++i) Do(std::to_string(i));
    EXPECT_EQ(manager.GetCount(), 99);
    EXPECT_EQ(log, "");
    Do("100");
    EXPECT_EQ(log, "!1~1");
    EXPECT_EQ(manager.GetCount(), 99);
    manager.BeginGroup();  // a marker counts
    EXPECT_EQ(log, "!1~1!2~2");
    EXPECT_EQ(manager.GetCount(), 99);
    EXPECT_EQ(Undo(), "-2 ");
    for (int i = 100; i >= 3; --i) EXPECT_EQ(Undo(), "1 -" + std::to_string(i));
    EXPECT_FALSE(manager.CanUndo());
}

TEST_F(CommandManager, AFailedCommandIsDeletedAndChangesNothing) {
    DoAll("ab");
    Undo();
    auto* const failed = new Step(log, "f");
    failed->Fail();
    log.clear();
    EXPECT_FALSE(manager.DoCommand(failed));
    EXPECT_EQ(log, "~f");
    EXPECT_TRUE(manager.CanRedo());
    EXPECT_EQ(Redo(), "1 +b");
}

TEST_F(CommandManager, ACopyOfAFailedCommandHasFailed) {
    Step step(log, "a");
    EXPECT_FALSE(Step(step).HasFailed());
    step.Fail();
    EXPECT_TRUE(Step(step).HasFailed());
}

TEST_F(CommandManager, RefusesNoCommand) {
    EXPECT_TRUE(Raises<CInvalidArgException>([&] { manager.DoCommand(nullptr); }));
}

TEST_F(CommandManager, AGroupWhoseBeginningWasCutOffEndsAtTheBoundary) {
    manager.BeginGroup();
    for (int i = 1; i <= 120; ++i) Do("s");
    manager.EndGroup();
    log.clear();
    EXPECT_EQ(manager.UndoLastCommand(), 1);
    EXPECT_EQ(log.size(), 2u * 98);
    EXPECT_FALSE(manager.CanUndo());
    EXPECT_EQ(Undo(), "1 ");
    EXPECT_TRUE(manager.CanRedo());
}

TEST_F(CommandManager, AMarkerOutsideAHistoryDoesNothing) {
    EXPECT_EQ(CUndoGroupCommand().Undo(), 1);
    EXPECT_EQ(CUndoGroupCommand().Redo(), -2);
    EXPECT_EQ(CRedoGroupCommand().Redo(), 1);
    EXPECT_EQ(CRedoGroupCommand().Undo(), -2);
}

TEST_F(CommandManager, RemoveAllEndsEveryCommandFromTheOldest) {
    DoAll("a(bc");
    Undo();
    log.clear();
    manager.RemoveAll();
    EXPECT_EQ(log, "!a~a!b~b!c~c");
    EXPECT_FALSE(manager.CanUndo());
    EXPECT_FALSE(manager.CanRedo());
    Do("d");
    EXPECT_EQ(Undo(), "1 -d");
}

TEST_F(CommandManager, ACommandMayLeaveByItself) {
    Do("a");
    Step* const b = Do("b");
    Step* const c = Do("c");
    b->Destroy();
    EXPECT_EQ(manager.GetCount(), 2);
    c->Destroy();  // the last one: a is the last one now
    EXPECT_EQ(Undo(), "1 -a");
    EXPECT_FALSE(manager.CanUndo());
    (new Step(log, "z"))->Destroy();  // in no history
}

}  // namespace
