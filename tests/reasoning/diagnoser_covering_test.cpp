// The covering search: rank by rank, back through the steps, until histories explain what was seen.
//
// The tap shows lo when it is shut or stuck, hi when it is open. Commands are held as given, so
// that `stays` explains a step without a command only, `opens` and `jams` one with the command to
// go.
#include "fixtures/the_run.h"
#include "reasoning/diagnoser_fixture.h"

using diagnoser_fixture::count;
using diagnoser_fixture::ForkedTap;
using diagnoser_fixture::MovingTap;

namespace {

constexpr char const* shown = "******* Showing conflicts *******\n";
constexpr char const* otherRank = "too high rank found: ";

// A search for what explains that lo is shown, and what it left behind.
class Covering : public MovingTap {
protected:
    Covering() {
        addSensor();
        addPulse();
    }
    // Shut all the time, up to that step.
    void rest(int last) {
        start(last);
        for (int t = 1; t <= last; ++t)
            takes(stays, t);
    }
    // Believed open after a command.
    void obey(int last) {
        start(last);
        command(0, "go");
        takes(opens, 1);
        for (int t = 2; t <= last; ++t)
            takes(keeps, t);
        for (int t = 1; t <= last; ++t)
            label(t, "!out=lo out=hi");
    }
    // The results, the likeliest first.
    std::string cover(double fromRank, double toRank) {
        model.trace.take();
        errors.take();
        results = diagnoser.coverTrack3(std::move(model.history), fromRank, toRank,
                                        observed("out=lo"), reached);
        trace = errors.take();
        std::string text;
        for (auto const& entry : results)
            text += "[" + moves(*entry.second) + "]";
        return text;
    }
    Trajectory const& first() const { return *results.begin()->second; }
    Trajectory const& last() const { return *results.rbegin()->second; }

    TrajectoryMap results;
    std::string trace;
    double reached = 99.0;
};

class DiagnoserCovering : public Covering {};

// ---- Rounds ----

TEST_F(DiagnoserCovering, WithoutARankToTryNothingIsDone) {
    rest(1);
    unsigned const others =
        theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del - 1;
    theRun().scheduler.transitions_checked = 7;
    theRun().scheduler.trajectories_checked = 7;
    EXPECT_EQ(cover(3.0, 2.0), "");
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(reached, 2.0);
    EXPECT_EQ(count(trace, "Rank : "), 0);
    EXPECT_EQ(count(trace, "inserting observations"), 0);
    EXPECT_EQ(theRun().scheduler.transitions_checked, 0u);
    EXPECT_EQ(theRun().scheduler.trajectories_checked, 0u);
    EXPECT_EQ(theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del, others);
}

TEST_F(DiagnoserCovering, AHistoryWithoutAConflictIsAResultOfItsRank) {
    rest(1);
    EXPECT_EQ(cover(0.0, 5.0), "[]");
    EXPECT_EQ(reached, 0.0);
    EXPECT_EQ(first().rank, 0.0);
    EXPECT_DOUBLE_EQ(results.begin()->first, 0.7);
    EXPECT_EQ(count(trace, "Rank : "), 1);
}

TEST_F(DiagnoserCovering, TheRankIsRaisedByOneUntilThereAreResults) {
    obey(1);
    EXPECT_EQ(cover(0.0, 5.0), "[1:jams][1:sticks]");
    EXPECT_EQ(reached, 1.0);
    EXPECT_EQ(first().rank, 1.0);
    EXPECT_EQ(last().rank, 1.0);
    EXPECT_EQ(count(trace, "Rank : "), 2);
    EXPECT_EQ(count(trace, "Rank : 0/5 ("), 1);
    EXPECT_EQ(count(trace, "Rank : 1/5 ("), 1);
}

TEST_F(DiagnoserCovering, TheHighestRankIsTriedAsWell) {
    obey(1);
    EXPECT_EQ(cover(0.0, 1.0), "[1:jams][1:sticks]");
}

TEST_F(DiagnoserCovering, BelowTheRankOfEveryExplanationThereIsNoResult) {
    obey(1);
    EXPECT_EQ(cover(-2.0, 0.0), "");
    EXPECT_EQ(reached, 0.0);
    EXPECT_EQ(count(trace, "Rank : "), 3);
    EXPECT_EQ(count(trace, otherRank), 0);
}

TEST_F(DiagnoserCovering, TheResultsShareTheirProbability) {
    obey(1);
    cover(0.0, 5.0);
    ASSERT_EQ(results.size(), 2u);
    // The tap is stuck, into which 3 moves lead, and the pulse beats by 1. So the sensor, of 2
    // values, has the likelihood 3/2 + 1/2; the command, of 3 and in the component of the pulse,
    // 3/3; the mode, of 3 and held by now, 1/3 by the pulse alone.
    double const likelihood = (3.0 / 2 + 1.0 / 2) * (3.0 / 3) * (1.0 / 3);
    EXPECT_DOUBLE_EQ(results.begin()->first, likelihood * 0.3);
    EXPECT_DOUBLE_EQ(results.rbegin()->first, likelihood * 0.1);
    EXPECT_DOUBLE_EQ(first().proba, 0.3 / (0.3 + 0.1));
    EXPECT_DOUBLE_EQ(last().proba, 0.1 / (0.3 + 0.1));
}

TEST_F(DiagnoserCovering, AnOnlyResultHasProbabilityOne) {
    rest(2);
    cover(0.0, 0.0);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(first().proba, 1.0);
}

TEST_F(DiagnoserCovering, TheProbabilitiesOfAResultAreRenewedFromItsStart) {
    rest(2);
    state(1)->proba = 0.5;
    cover(0.0, 0.0);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_DOUBLE_EQ(results.begin()->first, 0.7 * 0.7);
    EXPECT_EQ(first().getLastState()->proba, results.begin()->first);
}

// ---- Ranks that do not match ----

TEST_F(DiagnoserCovering, AHistoryOfALowerRankEndsTheSearch) {
    rest(1);
    EXPECT_EQ(cover(1.0, 5.0), "");
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(reached, 0.0);
    EXPECT_EQ(count(trace, "too high rank found: 0\n"), 1);
    EXPECT_EQ(count(trace, "Rank : "), 1);
    EXPECT_TRUE(theRun().scheduler.redux_diag.empty());
}

// Opened by itself, or so it is believed, and no command was given: the likelier outcome, stuck, is
// a failure, and the other one, shut, is not.
TEST_F(DiagnoserCovering, TheResultsFoundBeforeThatStay) {
    Transition* drips = move("drips", "m=shut", "m=open", 0.8);
    start(1);
    takes(drips, 1);
    label(1, "!out=lo out=hi");
    EXPECT_EQ(cover(1.0, 5.0), "[1:sticks]");
    EXPECT_EQ(count(trace, "too high rank found: 0\n"), 1);
    EXPECT_EQ(count(trace, "Rank : "), 1);
    EXPECT_EQ(reached, 0.0);
    EXPECT_EQ(first().proba, 1.0);
    EXPECT_TRUE(theRun().scheduler.redux_diag.empty());
}

TEST_F(DiagnoserCovering, TheSuccessorsBehindItAreLost) {
    move("pops", "m=shut cmd=go", "m=stuck", 0.4);  // likelier than the failures
    obey(1);
    unsigned const others =
        theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del - 1;
    EXPECT_EQ(cover(1.0, 5.0), "");
    EXPECT_EQ(count(trace, "too high rank found: 0\n"), 1);
    EXPECT_EQ(theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del, others);
}

TEST_F(DiagnoserCovering, OfTheSuccessorsThoseBeforeItAreResults) {
    move("pops", "m=shut cmd=go", "m=stuck", 0.2);  // between jams and sticks
    obey(1);
    EXPECT_EQ(cover(1.0, 5.0), "[1:jams]");
    EXPECT_EQ(count(trace, "too high rank found: 0\n"), 1);
    EXPECT_EQ(reached, 0.0);
}

// ---- Steps ----

TEST_F(DiagnoserCovering, StepsWithoutAConflictAreFollowedBackToTheFirstMove) {
    rest(3);
    EXPECT_EQ(cover(0.0, 0.0), "[]");
    EXPECT_EQ(count(trace, shown), 3);
    EXPECT_EQ(count(trace, "Time : "), 1);
}

TEST_F(DiagnoserCovering, OrToTheFirstMoveOfTheWindow) {
    rest(3);
    history()->takeState(0);
    history()->firstTime = 1;
    EXPECT_EQ(cover(0.0, 0.0), "[]");
    EXPECT_EQ(count(trace, shown), 2);
}

TEST_F(DiagnoserCovering, AConflictOfAnEarlierStepIsExplainedThere) {
    rest(3);
    state(2)->setPrevTrans(elt("m=shut", 2), nullptr);
    state(2)->setPrevTrans(elt("m=open", 2), keeps);  // open, it is said, and it is not
    elt("m=shut", 1)->nextTrans.clear();
    elt("cmd=none", 1)->nextTrans.clear();
    EXPECT_EQ(cover(0.0, 0.0), "[2:stays]");
    // Steps 3 and 2; the successor's effects and guards of step 2 and its guards of step 3. The
    // successor is then followed from step 2 again, since it counts its steps from the last one.
    EXPECT_EQ(count(trace, shown), 2 + 3 + 2);
}

// The tap was stuck at step 1 already. That `sticks` brought it there is not found: it was
// expanded for step 2, where it leads nowhere, and is not expanded twice in one search.
TEST_F(DiagnoserCovering, SuccessorsAreFollowedBackToTheFirstMove) {
    obey(2);
    EXPECT_EQ(cover(0.0, 5.0), "[1:jams 2:remains]");
    EXPECT_EQ(reached, 1.0);
    EXPECT_EQ(first().rank, 1.0);
    EXPECT_EQ(labels("m=shut m=open m=stuck", first(), 1), "fft");
    EXPECT_EQ(labels("m=shut m=open m=stuck", first(), 2), "fft");
    EXPECT_EQ(labels("out=lo out=hi", first(), 1), "tf");
    EXPECT_EQ(first().proba, 1.0);
}

TEST_F(DiagnoserCovering, WhatWasExpandedIsForgottenAfterTheSearch) {
    obey(1);
    theRun().scheduler.redux_diag.insert(sticks);  // as an older search left it
    EXPECT_EQ(cover(0.0, 5.0), "[1:jams]");
    EXPECT_TRUE(theRun().scheduler.redux_diag.empty());
}

class DiagnoserFork : public ForkedTap, public testing::WithParamInterface<char const*> {};

INSTANTIATE_TEST_SUITE_P(EitherLikely, DiagnoserFork, testing::Values("q", "r"));

TEST_P(DiagnoserFork, TheLikeliestHistoryIsFollowedFirst) {
    start(GetParam());
    double reached = 99.0;
    TrajectoryMap const results =
        diagnoser.coverTrack3(std::move(model.history), 0.0, 1.0, observed("out=lo"), reached);
    expectFound(results, std::string(GetParam()) == "q" ? "tf" : "ft");
}

// ---- The rest ----

TEST_F(DiagnoserCovering, TheHistoryGivenAwayIsDestroyed) {
    obey(1);
    unsigned const others =
        theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del - 1;
    cover(0.0, 5.0);
    results.clear();
    EXPECT_EQ(theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del, others);
}

TEST_F(DiagnoserCovering, TheCoverIsReported) {
    rest(1);
    theRun().scheduler.states_cover[0] = 0.5;
    theRun().scheduler.states_cover[1] = 0.25;
    theRun().scheduler.traj_cover = 0.25;
    cover(0.0, 0.0);
    EXPECT_EQ(theRun().scheduler.traj_cover, (0.25 + 0.5 + 0.25) / 2);
}

TEST_F(DiagnoserCovering, TheSearchIsToldInItsOrder) {
    rest(1);
    cover(0.0, 5.0);
    std::size_t at = 0;
    for (char const* part : {"Rank : 0/5 (", ")\n", "inserting observations at time_step : 1\n",
                             "results from observations computed : 1\n", "[getConflicts()] --> ",
                             "Time : ", "res's size : 1\n", "cover_track execution time : "}) {
        std::size_t const found = trace.find(part, at);
        ASSERT_NE(found, std::string::npos) << part << " in " << trace;
        at = found;
    }
    EXPECT_EQ(trace.find("Rank : "), 0u);
    EXPECT_EQ(count(model.trace.take(), ">>>>>>>>>>> viewing Trajectory (0)<<<<<<<<<<<\n"), 1);
}

TEST_F(DiagnoserCovering, TheCandidatesOfAllRoundsAreCounted) {
    obey(1);
    theRun().scheduler.transitions_checked = 7;
    cover(0.0, 5.0);
    EXPECT_EQ(theRun().scheduler.transitions_checked, 2u);  // sticks and jams, in the second round
}

}  // namespace
