// An undo history with a limit of 100 commands: recording (execute, cut off what was undone, append, drop the oldest) and walking
// back and forth, beside the same written by hand on a std::deque.
#include <deque>
#include <memory>

#include "bench/bench_support.h"
#include "commands/command_manager.h"

namespace {

constexpr int kLimit = 100;
int g_model = 0;        // what the commands change
int64_t g_deleted = 0;  // commands

// Two kinds, used in turn, so that the calls stay virtual.
template <int kind>
struct Set : CDoCommand {
    int before, after;
    Set(int from, int to) : before(from), after(to) {}
    ~Set() override { ++g_deleted; }
    int OnUndo() override { return g_model = before, 1; }
    int OnRedo() override { return g_model = after, 1; }
};

CDoCommand* NewCommand(int from, int to) {
    if (from & 1) return new Set<1>(from, to);
    return new Set<0>(from, to);
}

struct Ours {
    static constexpr int kKept = kLimit - 1;
    COrvikCommandManager manager;
    void Push(int from, int to) {
        CDoCommand* const command = NewCommand(from, to);
        command->Redo();
        manager.DoCommand(command);
    }
    void Undo() { manager.UndoLastCommand(); }
    void Redo() { manager.RedoLastUndoneCommand(); }
};

struct Deque {
    static constexpr int kKept = kLimit;
    std::deque<std::unique_ptr<CDoCommand>> commands;
    size_t place = 0;
    void Push(int from, int to) {
        std::unique_ptr<CDoCommand> command(NewCommand(from, to));
        command->Redo();
        while (commands.size() > place) commands.pop_back();
        commands.push_back(std::move(command));
        if (commands.size() > kLimit) commands.pop_front();
        place = commands.size();
    }
    void Undo() { commands[--place]->Undo(); }
    void Redo() { commands[place++]->Redo(); }
};

template <class History>
void Push(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    for (auto _ : state) {
        History history;
        g_deleted = 0;
        for (int i = 0; i < count; ++i) history.Push(i, i + 1);
        BENCH_REQUIRE(g_model == count && g_deleted == std::max(0, count - History::kKept));
    }
    bench::PerItem(state, count);
}

template <class History>
void Walk(benchmark::State& state) {
    constexpr int kPushed = 1000, kSteps = History::kKept;
    History history;
    for (int i = 0; i < kPushed; ++i) history.Push(i, i + 1);
    for (auto _ : state) {
        for (int i = 0; i < kSteps; ++i) history.Undo();
        BENCH_REQUIRE(g_model == kPushed - kSteps);
        for (int i = 0; i < kSteps; ++i) history.Redo();
        BENCH_REQUIRE(g_model == kPushed);
    }
    bench::PerItem(state, 2 * kSteps);
}

BENCHMARK(Push<Ours>)->Name("undo/push/ours")->Arg(90)->Arg(10'000)->Arg(1'000'000);
BENCHMARK(Push<Deque>)->Name("undo/push/std_deque")->Arg(90)->Arg(10'000)->Arg(1'000'000);
BENCHMARK(Walk<Ours>)->Name("undo/step/ours");
BENCHMARK(Walk<Deque>)->Name("undo/step/std_deque");

}  // namespace

BENCHMARK_MAIN();
