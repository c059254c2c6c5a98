// The waterworks against its truth, drawn by seed.
#include "fixtures/the_run.h"
#include "works_fixture.h"

using namespace works_fixture;

namespace {

class Works : public testing::TestWithParam<unsigned> {};

// Inputs that change at every step, through all the delays and ranges of delays: from a level
// of 2.6 the valve does not open before step 17.
TEST_P(Works, AHealthyPlantIsNeverReported) {
    TrueWorks truth(GetParam(), false, 2.6);
    WorksRun run(0, 2.6);
    for (int k = 1; k <= 15; ++k) {
        truth.step();
        ASSERT_TRUE(run.step(truth)) << "at " << k << run.told;
        ASSERT_TRUE(isTracked(truth)) << "at " << k;
    }
}

// The valve opens and shuts by itself, at levels that are known less and less well: candidates
// split at both thresholds, and one of them always is the plant. A change of mode forgets how the
// inputs changed before it, so they are steady here.
TEST_P(Works, AHealthyPlantIsTrackedThroughItsSplits) {
    TrueWorks truth(GetParam(), true, 5.06);
    WorksRun run(0, 5.06);
    std::size_t most = 0;
    for (int k = 1; k <= 60; ++k) {
        truth.step();
        ASSERT_TRUE(run.step(truth)) << "at " << k << run.told;
        ASSERT_TRUE(isTracked(truth)) << "at " << k;
        most = std::max(most, theRun().tracked_trajs.size());
    }
    EXPECT_GT(most, 1u);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Works, testing::Range(1u, 13u));

// The gate fails at step 7. The near meter shows it at step 8: the main follows the gate at once,
// and the meter the main a step later. So step 8 brings the diagnosis, at every level.
class FailingGate : public testing::TestWithParam<std::tuple<int, unsigned>> {};

TEST_P(FailingGate, IsFoundAndNothingElseIsLeft) {
    auto const [level, seed] = GetParam();
    TrueWorks truth(seed, true, 5.06);
    truth.failureOfGate1 = 7;
    WorksRun run(level, 5.06);
    for (int k = 1; k <= 7; ++k) {
        truth.step();
        ASSERT_TRUE(run.step(truth)) << "at " << k << run.told;
    }
    truth.step();
    EXPECT_FALSE(run.step(truth));
    EXPECT_NE(run.diagnosis().find("{i5,1,((gate1.mode=open))}"), std::string::npos) << run.told;
    for (int k = 9; k <= 14; ++k) {
        truth.step();
        ASSERT_TRUE(run.step(truth)) << "at " << k << run.told;
    }
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    EXPECT_TRUE(holds(*theRun().tracked_trajs.begin()->second, "gate1.mode=failed"));
    EXPECT_TRUE(covers(*theRun().tracked_trajs.begin()->second, truth));
}

INSTANTIATE_TEST_SUITE_P(LevelsAndSeeds, FailingGate,
                         testing::Combine(testing::Values(1, 2, 3), testing::Range(1u, 5u)));

}  // namespace
