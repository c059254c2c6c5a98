// The first cycles of simulation and of detection, worked out by hand for the reference room:
//   xd(k) = 0.05 (20 - x(k-1)) + [0, 0.3]         the heater is on from time 0
//   x(k)  = x(k-1) + rate(k-1) [0.95, 1.05]       the rate measured, or predicted when simulating
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

s_runtime* nominalRuntime() {
    return theRun().hybNT->rt.get();
}

std::vector<double> const steadyMeasures = {0.95, 0.9, 0.85, 0.8, 0.75};

TEST(Simulation, FirstCyclesFollowThePredictedRate) {
    RoomRun run(0.95);
    run.cycle(simulation(0), 1.0, 0.0);
    // 4 + 0.95 * [0.95, 1.05], and 0.05 * 16 + [0, 0.3]
    expectBounds(valueOf(nominalRuntime(), "room.x"), 4.9025, 4.9975);
    expectBounds(valueOf(nominalRuntime(), "room.xd"), 0.8, 1.1);
    expectBounds(valueOf(nominalRuntime(), "room.xdq"), 16.0, 16.0);
    run.cycle(simulation(0), 2.0, 0.0);
    // [4.9025 + 0.8 * 0.95, 4.9975 + 1.1 * 1.05], 0.05 * (20 - [4.9025, 4.9975]) + [0, 0.3]
    expectBounds(valueOf(nominalRuntime(), "room.x"), 5.6625, 6.1525);
    expectBounds(valueOf(nominalRuntime(), "room.xd"), 0.750125, 1.054875);
    run.cycle(simulation(0), 3.0, 0.0);
    // [5.6625 + 0.750125 * 0.95, 6.1525 + 1.054875 * 1.05], 0.05 * (20 - [5.6625, 6.1525]) + ...
    expectBounds(valueOf(nominalRuntime(), "room.x"), 6.37511875, 7.26011875);
    expectBounds(valueOf(nominalRuntime(), "room.xd"), 0.692375, 1.016875);
}

TEST(Detection, FirstCyclesFollowTheMeasuredRate) {
    RoomRun run(0.95);
    run.cycle(detection(1), 1.0, 0.9);
    EXPECT_TRUE(run.nominal);
    expectBounds(valueOf(nominalRuntime(), "room.x"), 4.9025, 4.9975);
    expectBounds(valueOf(nominalRuntime(), "room.xd"), 0.8, 1.1);
    run.cycle(detection(1), 2.0, 0.85);
    // [4.9025 + 0.9 * 0.95, 4.9975 + 0.9 * 1.05], 0.05 * (20 - [4.9025, 4.9975]) + [0, 0.3]
    expectBounds(valueOf(nominalRuntime(), "room.x"), 5.7575, 5.9425);
    expectBounds(valueOf(nominalRuntime(), "room.xd"), 0.750125, 1.054875);
    EXPECT_TRUE(run.nominal);
}

// The bound search may narrow the rate's causes: within the plain bounds, and around the measure.
TEST(Detection, TheBoundSearchNarrowsTheRateAndLeavesTheTemperature) {
    RoomRun run(steadyMeasures[0], 1);
    double inf = 4.0, sup = 4.0;
    for (std::size_t k = 1; k < steadyMeasures.size(); ++k) {
        double const rateInf = 0.05 * (20.0 - sup), rateSup = 0.05 * (20.0 - inf) + 0.3;
        inf += steadyMeasures[k - 1] * 0.95;
        sup += steadyMeasures[k - 1] * 1.05;
        run.cycle(detection(1), static_cast<double>(k), steadyMeasures[k]);
        EXPECT_TRUE(run.nominal);
        expectBounds(valueOf(nominalRuntime(), "room.x"), inf, sup);
        s_Objet const& rate = valueOf(nominalRuntime(), "room.xd");
        EXPECT_GE(sn_infOf(rate), rateInf - 1e-9);
        EXPECT_LE(sn_supOf(rate), rateSup + 1e-9);
        EXPECT_LE(sn_infOf(rate), steadyMeasures[k]);
        EXPECT_GE(sn_supOf(rate), steadyMeasures[k]);
        // 0.3 of uncertainty stay whatever is known of the difference.
        EXPECT_GE(sn_supOf(rate) - sn_infOf(rate), 0.3 - 1e-9);
    }
}

TEST(Detection, TheDisplayRowsAreThoseOfTheCycles) {
    RoomRun run(0.95);
    run.cycle(detection(1), 1.0, 0.9);
    run.cycle(detection(1), 2.0, 0.85);
    // Two displays, xd and x, a lower and an upper bound each.
    double const rows[] = {0.8, 1.1, 4.9025, 4.9975, 0.750125, 1.054875, 5.7575, 5.9425};
    for (int i = 0; i < 8; ++i)
        EXPECT_NEAR(nominalRuntime()->extra[i], rows[i], 1e-9) << i;
    EXPECT_EQ(nominalRuntime()->extra[8], 0.0);
}

TEST(Detection, ACandidateIsRebuiltInEveryCycle) {
    RoomRun run(0.95);
    hybTrajectory const* before = theRun().hybNT;
    s_runtime const* runtime = nominalRuntime();
    run.cycle(detection(1), 1.0, 0.9);
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    EXPECT_EQ(theRun().hybNT, theRun().tracked_trajs.begin()->second.get());
    EXPECT_NE(theRun().hybNT, before);
    EXPECT_EQ(nominalRuntime(), runtime);  // with its own runtime
    EXPECT_EQ(theRun().engine.rt_num, 1);
    EXPECT_EQ(theRun().tracked_trajs.begin()->first, 0.0);  // minus the identity 0
    EXPECT_TRUE(theRun().engine.nrt.empty());
    EXPECT_TRUE(theRun().ntrajs.empty());
    EXPECT_TRUE(theRun().misbtrajs.empty());
}

// 0.7 lies below [0.8, 1.1] of cycle 1 and below [0.75, ...] of cycle 2.
TEST(Detection, AMisbehaviourIsToldWhenItReachesTheThreshold) {
    for (int threshold : {1, 2, 3}) {
        RoomRun run(0.95);
        for (int k = 1; k <= 3; ++k) {
            std::string const told = run.cycle(detection(threshold), k, k == 1 ? 0.7 : 0.6).err;
            bool const misbehaves = k >= threshold;
            EXPECT_EQ(told, misbehaves ? "all trajs misbehave !\n" : "") << threshold << " " << k;
            EXPECT_EQ(run.nominal, !misbehaves);
            ASSERT_EQ(theRun().tracked_trajs.size(), 1u);  // it goes on being tracked
        }
        EXPECT_EQ(isMisb(nominalRuntime()), true);
        EXPECT_EQ(nominalRuntime()->meslowmisb[0], 1);
        EXPECT_EQ(nominalRuntime()->meshighmisb[0], 0);
    }
}

// While an alarm counts, the measure is not trusted: the temperature follows the prediction.
TEST(Detection, AnAlarmOpensTheLoop) {
    RoomRun run(0.95);
    run.cycle(detection(3), 1.0, 0.7);
    run.cycle(detection(3), 2.0, 0.9);
    // x(1) + xd(1) * [0.95, 1.05] with the predicted xd(1) = [0.8, 1.1]
    expectBounds(valueOf(nominalRuntime(), "room.x"), 4.9025 + 0.8 * 0.95, 4.9975 + 1.1 * 1.05);
    EXPECT_TRUE(run.nominal);
    // The second measure was inside and closed it again.
    run.cycle(detection(3), 3.0, 0.8);
    expectBounds(valueOf(nominalRuntime(), "room.x"), 5.6625 + 0.9 * 0.95, 6.1525 + 0.9 * 1.05);
}

TEST(Detection, MisbehavingCandidatesHaveTheirRankAsKey) {
    RoomRun run(0.95);
    theRun().hybNT->traj->rank = 2.0;
    run.cycle(detection(1), 1.0, 0.1);
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    EXPECT_EQ(theRun().tracked_trajs.begin()->first, 2.0);
}

TEST(Detection, AnInvalidModelIsToldAndGoesOn) {
    RoomRun run(0.95);
    // Neither heating nor not, neither open nor closed: no influence is active.
    for (auto const& condition : nominalRuntime()->condPool)
        if (condition->kind == COND_ATOM)
            condition->val = 0;
    EXPECT_EQ(run.cycle(detection(5), 1.0, 0.9).err, "Invalid model !\n");
    EXPECT_EQ(theRun().tracked_trajs.size(), 1u);
}

TEST(Detection, WithoutACandidateThereIsNothingToDo) {
    RoomRun run(0.95);
    clearMultiTrajs(theRun());
    EXPECT_EQ(run.cycle(detection(1), 1.0, 0.9).err, "all trajs misbehave !\n");
    EXPECT_EQ(theRun().hybNT, nullptr);
    EXPECT_FALSE(run.nominal);
}

// ---- The reset of a simulation ----

RunOptions resetting(double period) {
    RunOptions options = simulation(0);
    options.mode = RUN_RESET;
    options.period = period;
    return options;
}

// The countdown of `simul` starts at the period minus one cycle and goes down one a cycle.
TEST(Reset, TheMeasureTakesThePredictionsPlaceOnceAtThePeriod) {
    RoomRun run(0.95);
    RunOptions const options = resetting(2.0);
    run.cycle(options, 1.0, 0.5, 1.0);
    expectBounds(valueOf(nominalRuntime(), "room.xd"), 0.8, 1.1);
    run.cycle(options, 2.0, 0.6, 0.0);
    EXPECT_EQ(valueOf(nominalRuntime(), "room.xd").type, OBJ_REAL);
    expectBounds(valueOf(nominalRuntime(), "room.xd"), 0.6, 0.6);
    expectBounds(valueOf(nominalRuntime(), "room.x"), 5.6625, 6.1525);
    run.cycle(options, 3.0, 0.7, -1.0);
    // From the measure of cycle 2; the measure of cycle 3 resets nothing.
    expectBounds(valueOf(nominalRuntime(), "room.x"), 5.6625 + 0.6 * 0.95, 6.1525 + 0.6 * 1.05);
    expectBounds(valueOf(nominalRuntime(), "room.xd"), 0.692375, 1.016875);
    run.cycle(options, 4.0, 0.7, -2.0);
    EXPECT_EQ(valueOf(nominalRuntime(), "room.xd").type, OBJ_RANGE);
}

TEST(Reset, ACountdownThatMissesZeroResetsNothing) {
    RoomRun run(0.95);
    for (double countdown : {1.5, 0.5, -0.5, 1e-300}) {
        run.cycle(resetting(2.5), 1.0, 0.6, countdown);
        EXPECT_EQ(valueOf(nominalRuntime(), "room.xd").type, OBJ_RANGE) << countdown;
    }
}

TEST(Reset, WithoutAPeriodACountdownOfZeroResetsNothing) {
    RoomRun run(0.95);
    run.cycle(resetting(0.0), 1.0, 0.6, 0.0);
    EXPECT_EQ(valueOf(nominalRuntime(), "room.xd").type, OBJ_RANGE);
}

TEST(Reset, OfSeveralCandidatesTheFirstAloneIsReset) {
    RoomRun run(0.95);
    theRun().tracked_trajs.emplace(0.5, std::make_unique<hybTrajectory>(theRun().hybNT, 3));
    run.cycle(resetting(1.0), 1.0, 0.6, 0.0);
    ASSERT_EQ(theRun().tracked_trajs.size(), 2u);
    std::vector<int> kinds;
    for (auto const& entry : theRun().tracked_trajs)
        kinds.push_back(valueOf(entry.second->rt.get(), "room.xd").type);
    EXPECT_EQ(kinds, (std::vector<int>{OBJ_REAL, OBJ_RANGE}));
}

}  // namespace
