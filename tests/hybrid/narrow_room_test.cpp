// The rule `narrow` on the reference room: true days drawn by seed, with a thermostat that
// switches, are followed with every true value inside the bounds; and the temperature, which is not
// measured, is known far better than by the classic rule.
#include <random>

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
    RuledRoom(RunSettings const& settings, double firstMeasure) {
        consoleRun = std::make_unique<RunState>(*consolePlant, runHost(), settings);
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

TEST(NarrowRoom, TheTemperatureIsKnownBetterThanByTheClassicRule) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        std::vector<double> const narrow = widths(narrowWith(0.0), seed, 60);
        std::vector<double> const classic = widths(RunSettings{}, seed, 60);
        for (std::size_t k = 0; k < narrow.size(); ++k)
            printf("%u %zu %g %g\n", seed, k, narrow[k], classic[k]);
    }
}

}  // namespace
