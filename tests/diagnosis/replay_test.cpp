// Replaying a diagnosed candidate: from its fault on, on the measures that its own histories keep.
#include "continuous/bridge.h"
#include "continuous/model_parts.h"
#include "diagnosis/fault_run.h"
#include "fixtures/the_run.h"

using namespace diagnosis_fixture;

namespace {

// Rates of a room that warms up: after five of them it is still below 10 degrees.
constexpr double rates[] = {0.95, 0.94, 0.89, 0.85, 0.80, 0.77};
constexpr int now = 5;
constexpr int threshold = 3;
// What stands in the display rows before a replay.
constexpr double untouched = -77.0;

// The room at time 5. Its history: step 0; step 1, below 10 degrees; step 2, the thermostat is on.
class Warming : public testing::Test {
protected:
    Warming() : run(rates[0]) {
        for (int t = 1; t <= now; ++t)
            run.cycle(detection(threshold), t, rates[t]);
        for (int i = 0; i < rt()->extra.size(); ++i)
            rt()->extra.set(i, untouched);
    }
    static hybTrajectory* candidate() { return theRun().tracked_trajs.begin()->second.get(); }
    static s_runtime* rt() { return candidate()->rt.get(); }
    static Trajectory* traj() { return candidate()->traj.get(); }

    // The history becomes that of a diagnosis: at these steps the thermostat failed.
    static void failedAt(std::vector<int> const& steps) {
        traj()->transByTime.emplace();
        for (int const step : steps)
            traj()->transByTime->insert({step, thePlant().active_trans[3]});
    }
    // The steps of the history come at these times.
    static void happenedAt(std::vector<double> const& times) {
        traj()->timeCorr.clear();
        for (std::size_t step = 0; step < times.size(); ++step)
            traj()->timeCorr.emplace_back(static_cast<int>(step), times[step]);
    }
    Streams verify() {
        return streamsOf([&] { allUnknown = verifyAndUpdateTrajs(theRun(), now, threshold); });
    }
    // The times whose display row was written.
    static std::vector<int> rewritten() {
        std::vector<int> times;
        for (int t = 1; 4 * t <= rt()->extra.size(); ++t)
            if (rt()->extra[4 * (t - 1)] != untouched)
                times.push_back(t);
        return times;
    }

    RoomRun run;
    bool allUnknown = false;
};

// ---- Past values ----

TEST_F(Warming, PastMeasuresAreThoseThatWereRead) {
    for (int t = 0; t <= now; ++t) {
        double value = 0.0;
        tavro_diagGetMeasures(rt(), t, now, &value);
        EXPECT_EQ(value, rates[t]) << t;
    }
}

TEST_F(Warming, BothTimesOfAPastMeasureAreTruncated) {
    double value = 0.0;
    tavro_diagGetMeasures(rt(), 2.9, 5.1, &value);
    EXPECT_EQ(value, rates[2]);
    tavro_diagGetMeasures(rt(), 4.9, 5.0, &value);
    EXPECT_EQ(value, rates[4]);
}

TEST_F(Warming, AMeasureOfTheFutureIsThePresentOne) {
    double value = 0.0;
    tavro_diagGetMeasures(rt(), 8.0, now, &value);
    EXPECT_EQ(value, rates[now]);
}

// Two inputs; the newest past value of each stands first.
TEST(PastInputs, AreTheirOldOnesNewestFirst) {
    s_runtime rt;
    for (double const base : {10.0, 20.0}) {
        s_Variable* input = mkVariable(rt, "in" + std::to_string(base), 3);
        input->old = makeReal(base);
        for (int i = 0; i < 3; ++i)
            input->histo.set(i, makeReal(base + 1 + i));
        rt.input.push_back(input);
    }
    double values[2];
    tavro_diagGetInputs(&rt, 7.0, 7.0, values);
    EXPECT_EQ(values[0], 10.0);
    EXPECT_EQ(values[1], 20.0);
    tavro_diagGetInputs(&rt, 6.0, 7.0, values);
    EXPECT_EQ(values[0], 11.0);
    tavro_diagGetInputs(&rt, 4.0, 7.0, values);
    EXPECT_EQ(values[0], 13.0);
    EXPECT_EQ(values[1], 23.0);
}

// ---- Which candidates are replayed, and from where ----

TEST_F(Warming, ACandidateWithoutAFaultStaysAsItIsUnderItsRank) {
    s_runtime const* same = rt();
    traj()->rank = 4.0;
    verify();
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    EXPECT_EQ(rt(), same);
    EXPECT_EQ(theRun().tracked_trajs.begin()->first, 4.0);
    EXPECT_EQ(rewritten(), std::vector<int>{});
}

TEST_F(Warming, AFaultAtTheStartAloneIsNotReplayed) {
    s_runtime const* same = rt();
    failedAt({0});
    verify();
    EXPECT_EQ(rt(), same);
    EXPECT_EQ(rewritten(), std::vector<int>{});
}

// The rows from the fault on are written again: that of the fault itself with the bounds before it.
TEST_F(Warming, TheReplayBeginsAtTheTimeOfTheFault) {
    failedAt({2});
    happenedAt({0.0, 0.0, 3.0});
    verify();
    EXPECT_EQ(rewritten(), (std::vector<int>{3, 4, 5}));
}

TEST_F(Warming, TheFirstFaultAfterTheStartCounts) {
    failedAt({0, 1, 2});
    happenedAt({0.0, 2.0, 4.0});
    verify();
    EXPECT_EQ(rewritten(), (std::vector<int>{2, 3, 4, 5}));
}

TEST_F(Warming, AFaultOfThePresentIsFollowedByNoStep) {
    failedAt({2});
    happenedAt({0.0, 0.0, 5.0});
    verify();
    EXPECT_EQ(rewritten(), std::vector<int>{5});
    // The next cycle must not take the failure for a new change of mode.
    EXPECT_TRUE(rt()->bridgeTrans.empty());
    EXPECT_TRUE(rt()->bridgeConds.empty());
}

// At half a second a row, the times 4 and 5 after the fault at 3 are the rows 8 and 10, and its own
// is row 6: a replay goes by seconds, and what is between stays.
TEST_F(Warming, AReplayStepsByOneWhateverThePeriod) {
    rt()->Ts = 0.5;
    failedAt({2});
    happenedAt({0.0, 0.0, 3.0});
    verify();
    EXPECT_EQ(rewritten(), (std::vector<int>{6, 8, 10}));
}

// The last step reads the present value; room.m is a parameter of 10.
TEST_F(Warming, TheInputsAreReadBackAsWell) {
    rt()->input = {variable(rt(), "room.m")};
    theRun().engine.inps.assign(1, -5.0);
    failedAt({2});
    happenedAt({0.0, 0.0, 3.0});
    verify();
    EXPECT_EQ(theRun().engine.inps[0], 10.0);
    theRun().engine.inps.clear();
}

// Time 0 has no row, and the bounds of the start stand in the file already.
TEST_F(Warming, AFaultAtTimeZeroWritesNoRowBeforeTheFirst) {
    failedAt({2});
    verify();
    EXPECT_EQ(rewritten(), (std::vector<int>{1, 2, 3, 4, 5}));
}

TEST_F(Warming, AFaultWithoutATimeIsReplayedByNoStep) {
    failedAt({2});
    happenedAt({0.0, 0.0});
    verify();
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    EXPECT_EQ(rewritten(), std::vector<int>{});
    EXPECT_EQ(sn_infOf(variable(rt(), "room.xd")->mes), rates[now]);
}

// ---- What a replay does ----

TEST_F(Warming, TheMeasuresAreReadAgainInTheirOrder) {
    failedAt({2});
    verify();
    s_Variable const* rate = variable(rt(), "room.xd");
    EXPECT_EQ(sn_infOf(rate->mes), rates[now]);
    for (int back = 1; back <= now; ++back)
        EXPECT_EQ(sn_infOf(rate->mesHisto[back - 1]), rates[now - back]) << back;
}

// The measured rates, by a gain within 5 % of 1, add up again from the fault on, whatever the
// thermostat does. The fault at time 0 came then or a step before: from there one step of the first
// rate has led away from 4 degrees, at most.
TEST_F(Warming, TheTemperatureFollowsTheMeasuredRates) {
    failedAt({2});
    verify();
    double sum = 0.0;
    for (int t = 0; t < now; ++t)
        sum += rates[t];
    expectBounds(valueOf(rt(), "room.x"), 4.0 + 0.95 * sum, 4.0 + 1.05 * (rates[0] + sum));
}

TEST_F(Warming, NoDiscreteStepIsTaken) {
    failedAt({2});
    std::size_t const states = traj()->states.size();
    verify();
    EXPECT_EQ(traj()->getCurrentTime(), 2);
    EXPECT_EQ(traj()->states.size(), states);
    EXPECT_EQ(traj()->timeCorr.size(), 3u);
    EXPECT_EQ(thermostatOf(candidate()), "on");
}

TEST_F(Warming, TheReplayedCandidateIsACopyUnderItsRank) {
    failedAt({2});
    traj()->rank = 1.0;
    int const identities = theRun().engine.rt_num;
    verify();
    EXPECT_EQ(theRun().tracked_trajs.begin()->first, 1.0);
    EXPECT_GE(rt()->num, identities);
    EXPECT_TRUE(traj()->transByTime.has_value());
}

TEST_F(Warming, NothingStaysOnTheBridgeAndNoAlarm) {
    failedAt({2});
    for (auto const& v : rt()->dico)
        v->lowalarm = v->highalarm = v->meslowmisb = v->meshighmisb = v->mesmisb = 1;
    verify();
    EXPECT_TRUE(rt()->bridgeEvents.empty());
    EXPECT_TRUE(rt()->bridgeConds.empty());
    EXPECT_TRUE(rt()->bridgeTrans.empty());
    for (auto const& v : rt()->dico)
        EXPECT_EQ(v->lowalarm + v->highalarm + v->meslowmisb + v->meshighmisb + v->mesmisb, 0);
}

// ---- Whether all are unknown ----

TEST_F(Warming, OneKnownCandidateIsEnoughForNotAllUnknown) {
    auto other = std::make_unique<hybTrajectory>(candidate(), traj()->getCurrentTime() + 1);
    other->traj->setUnknown();
    theRun().tracked_trajs.emplace(0.0, std::move(other));
    verify();
    EXPECT_FALSE(allUnknown);
    ASSERT_EQ(theRun().tracked_trajs.size(), 2u);
    for (auto const& entry : theRun().tracked_trajs)
        entry.second->traj->setUnknown();
    verify();
    EXPECT_TRUE(allUnknown);
    EXPECT_EQ(theRun().tracked_trajs.size(), 2u);
}

// ---- One step of a replay ----

class ReplayStep : public Warming {
protected:
    ReplayStep() { candidates = std::move(theRun().tracked_trajs); }
    static constexpr double nextRate = 0.73;

    hybTrajectory& first() { return *candidates.begin()->second; }
    hybTrajectory& addCopy() {
        auto copy = std::make_unique<hybTrajectory>(&first(), first().traj->getCurrentTime() + 1);
        hybTrajectory& added = *copy;
        candidates.emplace(0.0, std::move(copy));
        return added;
    }
    Streams step() {
        theRun().engine.meas[0] = nextRate;
        return streamsOf(
            [&] { EXPECT_EQ(tavro_checkCycle(theRun(), candidates, now + 1, threshold), 1); });
    }

    HybMap candidates;
};

TEST_F(ReplayStep, ReadsTheMeasureAndWritesTheRow) {
    step();
    ASSERT_EQ(candidates.size(), 1u);
    s_Variable const* rate = variable(first().rt.get(), "room.xd");
    EXPECT_EQ(sn_infOf(rate->mes), nextRate);
    EXPECT_EQ(sn_infOf(rate->mesHisto[0]), rates[now]);
    EXPECT_EQ(first().rt->extra[4 * now], sn_infOf(rate->old));
    EXPECT_EQ(first().rt->extra[4 * now + 1], sn_supOf(rate->old));
}

TEST_F(ReplayStep, ForgetsEveryAlarm) {
    for (auto const& v : first().rt->dico)
        v->lowalarm = v->highalarm = v->meslowmisb = v->meshighmisb = v->mesmisb = 1;
    step();
    for (auto const& v : first().rt->dico)
        EXPECT_EQ(v->lowalarm + v->highalarm + v->meslowmisb + v->meshighmisb + v->mesmisb, 0);
}

TEST_F(ReplayStep, MergesEqualCandidatesWhateverTheRunAskedFor) {
    addCopy();
    step();
    EXPECT_EQ(candidates.size(), 1u);
}

TEST_F(ReplayStep, TheOlderRuntimeTakesInTheYoungerOne) {
    int const oldest = first().rt->num;
    candidates.emplace(
        5.0, std::make_unique<hybTrajectory>(&first(), first().traj->getCurrentTime() + 1));
    ASSERT_NE(first().rt->num, oldest) << "the copy stands in front by its key";
    step();
    ASSERT_EQ(candidates.size(), 1u);
    EXPECT_EQ(first().rt->num, oldest);
}

TEST_F(ReplayStep, LeavesCandidatesOfOtherHistoriesApart) {
    TrajEl* on = addCopy().traj->getLastState()->getElt("thermostat.mode=on");
    ASSERT_NE(on, nullptr);
    on->setLabel("false");
    step();
    EXPECT_EQ(candidates.size(), 2u);
}

// From 9 to 9.6 degrees, at a rate of 0.77: 10 lies between 9.73 and 10.41. So there are two
// pieces, each with the history of the one, under its probability.
TEST_F(ReplayStep, FollowsEveryPieceOfASplit) {
    s_runtime* rt = first().rt.get();
    variable(rt, "room.x")->old = makeRange(9.0, 9.6, 1, 1);
    first().traj->proba = 0.5;
    step();
    ASSERT_EQ(candidates.size(), 2u);
    for (auto const& entry : candidates) {
        EXPECT_EQ(entry.first, 0.5);
        EXPECT_EQ(entry.second->traj->getCurrentTime(), 2);
        EXPECT_TRUE(entry.second->rt->bridgeEvents.empty());
    }
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

// Without a known mode of the room no influence acts.
TEST_F(ReplayStep, TellsAModelInWhichNothingHolds) {
    for (std::size_t i = 0; i < first().rt->condi.size(); ++i)
        setRTCondVal(first().rt.get(), static_cast<int>(i), false);
    EXPECT_NE(step().err.find("Invalid model !\n"), std::string::npos);
    EXPECT_EQ(candidates.size(), 1u);
}

TEST_F(ReplayStep, EndsWithTheRowOfEachCandidateAndAnEmptyBridge) {
    s_runtime* rt = first().rt.get();
    rt->dinfval = {1.5, 2.5};
    rt->bridgeTrans = {thePlant().active_trans[3]};
    addBridgeCond(theAtom("thermostat.mode=off"), true, rt);
    tavroDiagDiscreteCycle(9.0, candidates);
    EXPECT_EQ(rt->extra[4 * 8], 1.5);
    EXPECT_EQ(rt->extra[4 * 8 + 2], 2.5);
    EXPECT_TRUE(rt->bridgeTrans.empty());
    EXPECT_TRUE(rt->bridgeConds.empty());
    EXPECT_EQ(thermostatOf(&first()), "on");
}

}  // namespace
