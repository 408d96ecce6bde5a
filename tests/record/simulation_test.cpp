// A day of measurement in about a second, in as many worlds as there are seeds: nothing wrong, nothing lost that was promised,
// every hole with its cause, times in order. $ORVIK_SEEDS says how many (200), $ORVIK_SEED the first one (1).
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/record/simulated_world.h"
#include "tests/support/time_limit.h"

namespace {
using simulated::Faults;
using simulated::World;

class Dice {
public:
    explicit Dice(unsigned seed) : m_random(seed) {}
    double Real(double from, double to) { return std::uniform_real_distribution<double>(from, to)(m_random); }
    int Whole(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }
    bool Once(int in) { return Whole(in) == 0; }

private:
    std::mt19937 m_random;
};

std::vector<World::Span> Spans(Dice& dice, double seconds, int most, double longest) {
    std::vector<World::Span> spans;
    for (int i = dice.Whole(most + 1); i > 0; --i) {
        const double from = dice.Real(0, seconds);
        spans.push_back({from, from + (dice.Once(2) ? dice.Real(0, 30) : dice.Real(0, longest))});
    }
    return spans;
}

// Each seed a world: mostly sound lines with some troubles, as worlds are, and now and then one with all of them.
World::Plan Draw(unsigned seed) {
    Dice dice(seed * 2654435761u);
    World::Plan plan;
    plan.interval = dice.Once(4) ? dice.Real(0.2, 5) : dice.Real(5, 120);
    plan.seconds = std::min(86'400.0, plan.interval * 2000);
    const bool bad = dice.Once(5);
    const auto chance = [&](double most) { return bad || dice.Once(3) ? dice.Real(0, most) : 0.0; };
    Faults& faults = plan.faults;
    faults.late = dice.Once(6) ? dice.Real(0.8, 2.5) : dice.Real(0.001, 0.5);
    faults.spread = chance(1.5);
    faults.oneByOne = dice.Once(2);
    faults.lateChance = chance(0.02);
    faults.lateBy = dice.Real(0.5, 4);
    faults.silent = chance(0.05);
    faults.noise = chance(0.1);
    faults.damaged = chance(0.1);
    faults.split = chance(0.1);
    faults.pause = dice.Real(0, 1.5);
    faults.foreign = chance(0.1);
    faults.refused = chance(0.05);
    faults.exception = static_cast<BYTE>(1 + dice.Whole(11));
    faults.unplugged = chance(0.002);
    if (dice.Once(6)) faults.only = static_cast<WORD>(100 * (1 + dice.Whole(3)));
    plan.silent = Spans(dice, plan.seconds, 3, plan.seconds / 10);
    plan.unplugged = Spans(dice, plan.seconds, 3, plan.seconds / 10);
    plan.full = Spans(dice, plan.seconds, dice.Once(2) ? 2 : 0, plan.seconds / 20);
    for (int i = dice.Whole(4); i > 0; --i) plan.steps.push_back({dice.Real(0, plan.seconds), dice.Real(-7200, 7200)});
    for (int i = dice.Once(2) ? dice.Whole(6) : 0; i > 0; --i) plan.kills.push_back(dice.Real(0, plan.seconds));
    std::sort(plan.kills.begin(), plan.kills.end());
    plan.powerCuts = dice.Once(3) ? dice.Real(0, 1) : 0;
    plan.failedWrites = chance(0.001);
    if (dice.Once(3)) plan.every = {1, 1 + static_cast<DWORD>(dice.Whole(4)), 1 + static_cast<DWORD>(dice.Whole(20))};
    return plan;
}

unsigned Setting(const char* name, unsigned standard) {
    const char* const text = std::getenv(name);
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : standard;
}
}  // namespace

TEST(Simulation, NothingWrongNothingLostEveryHoleWithItsCause) {
    const unsigned first = Setting("ORVIK_SEED", 1), count = Setting("ORVIK_SEEDS", 200);
    LimitTest(60 + 2 * count);
    size_t rows = 0;
    unsigned __int64 cells = 0;
    for (unsigned seed = first; seed < first + count; ++seed) {
        World world(Draw(seed), seed);
        const std::vector<std::string> wrong = world.Run();
        for (const std::string& what : wrong)
            ADD_FAILURE() << "seed " << seed << ": " << what << " (ORVIK_SEED=" << seed << " ORVIK_SEEDS=1)";
        rows += world.RowsKept();
        cells += world.CellsGood();
        if (testing::Test::HasFailure()) return;
    }
    std::printf("%u seeds: %zu rows, %llu cells\n", count, rows, static_cast<unsigned long long>(cells));
    EXPECT_GT(rows, count * 100ull);
}
