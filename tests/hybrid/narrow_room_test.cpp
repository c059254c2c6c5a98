// The rule `narrow` on the reference room: true days drawn by seed, with a thermostat that
// switches, are followed with every true value inside the bounds; and the temperature, which is not
// measured, is known far better than by the classic rule.
#include <numeric>
#include <random>

#include "continuous/bridge.h"
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

// The room as its model says it is: gains and disturbance anew at each step, a little inside of
// their ranges, and a sensor that is off by at most *noise*.
class TrueRoom {
public:
    TrueRoom(unsigned seed, double noise) : random(seed), noise(noise) { look(x); }

    void step() {
        double const before = x;
        x += between(0.9501, 1.0499) * rate;
        look(before);
        if (stuck)
            return;
        if (heats && x >= 17.0)
            heats = false;
        else if (!heats && x < 10.0)
            heats = true;
    }
    double measure() { return rate + between(-noise, noise); }

    double x = 4.0, difference = 0.0, rate = 0.0;
    bool heats = true;  // it is cold at the start
    bool stuck = false;

private:
    double between(double lo, double hi) {
        return std::uniform_real_distribution<double>(lo, hi)(random);
    }
    // The rate answers to the step before, and to the mode in which it ended.
    void look(double before) {
        difference = (heats ? 20.0 : 4.0) - before;
        rate = 0.05 * difference + between(0.0001, 0.2999);
    }

    std::mt19937 random;
    double noise;
};

// A run of the room by rules of choice, with the bound search on.
class RuledRoom {
public:
    RuledRoom(RunSettings const& settings, double firstMeasure) : given(settings) {
        TextFile const measures(std::to_string(firstMeasure) + "\n");
        measIn = std::fopen(measures.path.c_str(), "r");
        streamsOf([] { tavro_initialize(theRun(), 1, 0.01, "", 0); });
        std::fclose(measIn);
        measIn = nullptr;
        initDispAll(theRun().hybNT->rt.get(), 250.0);
    }

    // Whether a candidate agrees.
    bool cycle(double time, double measure, int threshold = 1) {
        theRun().engine.meas[0] = measure;
        streamsOf([&] { tavro_doCycle(theRun(), detection(threshold), 0.0, time, nominal); });
        return nominal;
    }

    // The candidate with the true modes; null when none is followed.
    static s_runtime* candidateOf(TrueRoom const& truth) {
        for (auto const& entry : theRun().tracked_trajs)
            if (thermostatOf(entry.second.get()) == (truth.heats ? "on" : "off") &&
                holds(entry.second->rt.get(), "room.x", truth.x))
                return entry.second->rt.get();
        return nullptr;
    }
    static bool holds(s_runtime const* rt, char const* name, double value) {
        s_Objet const& bounds = valueOf(rt, name);
        return sn_infOf(bounds) - 1e-9 <= value && value <= sn_supOf(bounds) + 1e-9;
    }

private:
    WithSettings given;
    ReferenceModel model;
    bool nominal = false;
};

RunSettings narrowWith(double noise) {
    RunSettings settings;
    settings.rules.narrow = true;
    settings.noise[""] = noise;
    return settings;
}

class NarrowRoom : public testing::TestWithParam<double> {};

TEST_P(NarrowRoom, TheTruthIsAlwaysInside) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        TrueRoom truth(seed, GetParam());
        RuledRoom run(narrowWith(GetParam()), truth.measure());
        for (int k = 1; k <= 120; ++k) {
            truth.step();
            ASSERT_TRUE(run.cycle(k, truth.measure())) << "seed " << seed << " at " << k;
            s_runtime const* rt = run.candidateOf(truth);
            ASSERT_NE(rt, nullptr) << "seed " << seed << " at " << k;
            EXPECT_TRUE(run.holds(rt, "room.xd", truth.rate)) << "seed " << seed << " at " << k;
            EXPECT_TRUE(run.holds(rt, "room.xdq", truth.difference))
                << "seed " << seed << " at " << k;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Noise, NarrowRoom, testing::Values(0.0, 0.02));

// The widths of the temperature in the true candidate, step by step.
std::vector<double> widths(RunSettings const& settings, unsigned seed, int steps) {
    TrueRoom truth(seed, 0.0);
    RuledRoom run(settings, truth.measure());
    std::vector<double> result;
    for (int k = 1; k <= steps; ++k) {
        truth.step();
        run.cycle(k, truth.measure());
        s_runtime const* rt = run.candidateOf(truth);
        s_Objet const value = rt != nullptr ? valueOf(rt, "room.x") : *objMax;
        result.push_back(sn_supOf(value) - sn_infOf(value));
    }
    return result;
}

double sum(std::vector<double> const& values) {
    return std::accumulate(values.begin(), values.end(), 0.0);
}

// From 4 to 17 degrees there is no change of mode, and a narrower bound stays one. A change of mode
// widens the prediction by what the step before would give, which is not the same in both.
TEST(NarrowRoom, TheTemperatureIsKnownBetterThanByTheClassicRule) {
    constexpr int steps = 200, firstSwitch = 16;
    double narrowSum = 0.0, classicSum = 0.0;
    for (unsigned seed = 1; seed <= 10; ++seed) {
        std::vector<double> const narrow = widths(narrowWith(0.0), seed, steps);
        std::vector<double> const classic = widths(RunSettings{}, seed, steps);
        for (std::size_t k = 0; k < firstSwitch; ++k)
            EXPECT_LE(narrow[k], classic[k] + 1e-9) << "seed " << seed << " at " << k + 1;
        narrowSum += sum(narrow);
        classicSum += sum(classic);
    }
    EXPECT_LT(narrowSum, 0.75 * classicSum);
}

// The thermostat sticks where it ought to switch off. Answers the steps until no candidate agrees.
int detectionDelay(RunSettings const& settings, unsigned seed) {
    TrueRoom truth(seed, 0.0);
    truth.stuck = true;
    RuledRoom run(settings, truth.measure());
    int hot = 0;
    for (int k = 1; k <= 60; ++k) {
        truth.step();
        if (hot == 0 && truth.x >= 17.0)
            hot = k;
        if (!run.cycle(k, truth.measure()))
            return k - hot;
    }
    return 60;
}

TEST(NarrowRoom, AStuckThermostatIsFoundEarlier) {
    double narrow = 0.0, classic = 0.0;
    for (unsigned seed = 1; seed <= 30; ++seed) {
        int const a = detectionDelay(narrowWith(0.0), seed);
        int const b = detectionDelay(RunSettings{}, seed);
        EXPECT_LE(a, b) << "seed " << seed;
        narrow += a;
        classic += b;
    }
    EXPECT_LT(narrow, 0.9 * classic);
}

// In an unknown mode of the thermostat the heater or the air from outside may drive the room, or
// neither, or, as far as the rule can tell, both: [0, 20] + [0, 4] - 4.
TEST(UnknownThermostat, MayHeatOrNot) {
    RunSettings settings;
    settings.rules.unknown = true;
    RuledRoom run(settings, 0.9);
    s_runtime* rt = theRun().hybNT->rt.get();
    s_Variable* difference = variable(rt, "room.xdq");
    for (int const index : {0, 1, 2, 3, 4})
        setRTCondVal(rt, index, index == 4);
    sn_updateVariable(rt, difference);
    expectBounds(difference->new_, -4, 20);
    setRTCondVal(rt, 4, false);
    setRTCondVal(rt, 1, true);
    sn_updateVariable(rt, difference);
    expectBounds(difference->new_, 16, 16);
}

}  // namespace
