// The waterworks by the rule `narrow`: true runs of it are followed with every hidden value inside
// the bounds, through delays, ranges of delays and changes of mode, by exact sensors and by others.
#include "fixtures/the_run.h"
#include "works_fixture.h"

using namespace works_fixture;

namespace {

RunSettings narrowWith(double noise) {
    RunSettings settings;
    settings.rules.narrow = true;
    settings.noise[""] = noise;
    return settings;
}

class NarrowWorks : public testing::TestWithParam<double> {
protected:
    void follow(unsigned seed, bool steadyInputs, double level, int steps) {
        TrueWorks truth(seed, steadyInputs, level);
        truth.noise = GetParam();
        WithSettings const given(narrowWith(GetParam()));
        WorksRun run(0, level);
        for (int k = 1; k <= steps; ++k) {
            truth.step();
            ASSERT_TRUE(run.step(truth)) << "seed " << seed << " at " << k << run.told;
            ASSERT_TRUE(isTracked(truth)) << "seed " << seed << " at " << k;
        }
    }
};

// The gate fails at step 7, and the near meter shows it at 8: its diagnosis goes back to before the
// failure, and what is left has the truth inside from there on.
TEST_P(NarrowWorks, ADiagnosisLeavesTheTruthInside) {
    for (int level : {1, 2, 3})
        for (unsigned seed = 1; seed <= 20; ++seed) {
            TrueWorks truth(seed, true, 5.06);
            truth.noise = GetParam();
            truth.failureOfGate1 = 7;
            WithSettings const given(narrowWith(GetParam()));
            WorksRun run(level, 5.06);
            for (int k = 1; k <= 15; ++k) {
                truth.step();
                ASSERT_EQ(run.step(truth), k != 8) << "seed " << seed << " at " << k << run.told;
            }
            ASSERT_TRUE(isTracked(truth)) << "seed " << seed;
        }
}

// Until the valve first opens.
TEST_P(NarrowWorks, TheTruthIsInsideWithInputsThatChange) {
    for (unsigned seed = 1; seed <= 300 && !HasFatalFailure(); ++seed)
        follow(seed, false, 2.6, 15);
}

// A change of mode keeps the past, so the inputs may change here, too.
TEST_P(NarrowWorks, TheTruthIsInsideThroughChangesOfMode) {
    for (unsigned seed = 1; seed <= 60 && !HasFatalFailure(); ++seed)
        follow(seed, seed % 2 == 0, 5.06, 100);
}

INSTANTIATE_TEST_SUITE_P(Noise, NarrowWorks, testing::Values(0.0, 0.02));

}  // namespace
