// The older insertion of observations and the older covering search, which nothing calls: what they
// do otherwise than those in use.
#include "fixtures/the_run.h"
#include "reasoning/diagnoser_fixture.h"

using diagnoser_fixture::count;
using diagnoser_fixture::ForkedTap;
using diagnoser_fixture::MovingTap;

namespace {

constexpr char const* modes = "m=shut m=open m=stuck";

// ---- Observations ----

class DiagnoserOlderObservations : public MovingTap {
protected:
    DiagnoserOlderObservations() { addSensor(); }
    TrajectoryMap insert(std::vector<std::string> const& names, int t, double rank) {
        std::vector<Atom*> atoms;
        for (std::string const& name : names)
            atoms.push_back(model.atom(name));
        model.trace.take();
        errors.take();
        return diagnoser.observationResults(atoms, std::move(model.history), t, rank, false);
    }
    static Trajectory const& only(TrajectoryMap const& outcomes) {
        EXPECT_EQ(outcomes.size(), 1u);
        return *outcomes.begin()->second;
    }
    // The sensor is observable and held at step 1; step 2 does not hold it.
    void heldSensorAtStepOne() {
        start(2);
        elt("out=lo", 1)->getStateVar()->type = typeObservable;
        elt("out=lo", 1)->lock = LOCK_TRUE_PERM;
        elt("out=hi", 1)->lock = LOCK_FALSE_PERM;
        forget("d", 2);
    }
};

TEST_F(DiagnoserOlderObservations, EveryAtomCountsAsSeen) {
    start(1);
    state(1)->observations = {model.atom("m=stuck")};
    TrajectoryMap const outcomes = insert({"out=lo", "m=shut"}, 1, 0.0);
    EXPECT_EQ(locks("out=lo out=hi m=shut m=open m=stuck", only(outcomes), 1), "34344");
    EXPECT_TRUE(only(outcomes).getState(1)->observed);
    EXPECT_TRUE(only(outcomes).getState(1)->observations.empty());
}

TEST_F(DiagnoserOlderObservations, WhatFollowsIsHeldAndWhatIsRuledOutIsNoted) {
    start(1);
    takes(opens, 1);
    label(1, "!out=lo out=hi");
    TrajectoryMap const outcomes = insert({"out=lo"}, 1, 0.0);
    EXPECT_EQ(labels(modes, only(outcomes), 1), "tff");
    EXPECT_EQ(locks(modes, only(outcomes), 1), "011");
    EXPECT_EQ(only(outcomes).getState(1)->observations.size(), 2u);  // hi, open
}

TEST_F(DiagnoserOlderObservations, LikelihoodsAreNotNormalisedAndTheProbabilityIsTheKey) {
    start(1);
    takes(opens, 1);
    label(1, "!out=lo out=hi");
    state(0)->proba = 0.5;
    TrajectoryMap const outcomes = insert({"out=lo"}, 1, 1.0);
    ASSERT_EQ(outcomes.size(), 2u);
    // Held are the sensor (chance 1/2) and the command (1/3), for each of the 3 moves into stuck
    // and of the 1 into shut; opens is recorded as yet.
    double const stuck = (3.0 / 2) * (3.0 / 3);
    double const shut = (1.0 / 2) * (1.0 / 3);
    Trajectory const& first = *outcomes.begin()->second;
    EXPECT_EQ(labels(modes, first, 1), "fft");
    EXPECT_DOUBLE_EQ(first.getState(1)->obsProb, stuck);
    EXPECT_DOUBLE_EQ(outcomes.begin()->first, stuck * 0.8 * 0.5);
    EXPECT_DOUBLE_EQ(outcomes.rbegin()->second->getState(1)->obsProb, shut);
    EXPECT_DOUBLE_EQ(outcomes.rbegin()->first, shut * 0.8 * 0.5);
    EXPECT_EQ(first.getState(1)->proba, outcomes.begin()->first);
}

TEST_F(DiagnoserOlderObservations, ObservableElementsPulledForwardKeepTheirLocks) {
    heldSensorAtStepOne();
    TrajectoryMap const outcomes = insert({"m=shut"}, 2, 0.0);
    EXPECT_EQ(locks("out=lo out=hi", only(outcomes), 2), "34");
    EXPECT_FALSE(diagnoser.keepLocks);
}

TEST_F(DiagnoserOlderObservations, WithTheFormInUseTheyDoNot) {
    heldSensorAtStepOne();
    TrajectoryMap const outcomes =
        diagnoser.observationResults(observed("m=shut"), history(), 2, 0.0, false);
    EXPECT_EQ(locks("out=lo out=hi", only(outcomes), 2), "22");
}

TEST_F(DiagnoserOlderObservations, LocksAreNotKeptAfterARefusal) {
    start(1);
    static_cast<CommandVar*>(elt("cmd=go", 1)->getStateVar())->forbidden = true;
    EXPECT_TRUE(insert({"cmd=go"}, 1, 0.0).empty());
    EXPECT_FALSE(diagnoser.keepLocks);
    EXPECT_EQ(count(errors.take(), "itms_tmp size: 0\n"), 1);
}

TEST_F(DiagnoserOlderObservations, TheOutcomesAreTold) {
    start(1);
    takes(stays, 1);
    state(1)->cover = 0.25;
    insert({"out=lo"}, 1, 0.0);
    std::string const text = errors.take();
    EXPECT_EQ(text.find("inserting observations at time_step (deprecated version): 1\n"), 0u);
    std::size_t at = 0;
    // The likelihood is (1/2) (1/3), the probability that of stays of it.
    for (char const* part : {"itms_tmp size: 1\n", "posterior proba on obs : 0.166667\n",
                             "proba : 0.116667\n", "cover : 0.25\n"}) {
        at = text.find(part, at);
        ASSERT_NE(at, std::string::npos) << part << " in " << text;
    }
    EXPECT_EQ(count(model.trace.take(), "proba : 0.116667\ncover : 0.25\n"), 1);
}

TEST_F(DiagnoserOlderObservations, TheHistoryGivenAwayIsDestroyed) {
    start(1);
    unsigned const others =
        theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del - 1;
    insert({"out=lo"}, 1, 0.0).clear();
    EXPECT_EQ(theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del, others);
}

// ---- Covering ----

class DiagnoserOlderCovering : public MovingTap {
protected:
    DiagnoserOlderCovering() {
        addSensor();
        addPulse();
    }
    void rest(int last) {
        start(last);
        for (int t = 1; t <= last; ++t)
            takes(stays, t);
    }
    void obey() {
        start(1);
        command(0, "go");
        takes(opens, 1);
        label(1, "!out=lo out=hi");
    }
    // The results, the likeliest first.
    std::string cover(double fromRank, double toRank) {
        model.trace.take();
        errors.take();
        results = diagnoser.coverTrack2(std::move(model.history), fromRank, toRank,
                                        observed("out=lo"), reached);
        trace = errors.take();
        std::string text;
        for (auto const& entry : results)
            text += "[" + moves(*entry.second) + "]";
        return text;
    }
    Trajectory const& first() const { return *results.begin()->second; }

    TrajectoryMap results;
    std::string trace;
    double reached = 99.0;
};

TEST_F(DiagnoserOlderCovering, TheRankIsRaisedUntilThereAreResults) {
    obey();
    EXPECT_EQ(cover(0.0, 5.0), "[1:jams][1:sticks]");
    EXPECT_EQ(reached, 1.0);
    EXPECT_EQ(count(trace, "Rank : "), 2);
    EXPECT_EQ(count(trace, "Rank : 0("), 1);
    EXPECT_EQ(count(trace, "Rank : 1("), 1);
    EXPECT_DOUBLE_EQ(first().proba, 0.3 / (0.3 + 0.1));
    EXPECT_DOUBLE_EQ(results.rbegin()->second->proba, 0.1 / (0.3 + 0.1));
}

TEST_F(DiagnoserOlderCovering, WithoutARankToTryNothingIsDone) {
    rest(1);
    unsigned const others =
        theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del - 1;
    EXPECT_EQ(cover(3.0, 2.0), "");
    EXPECT_EQ(reached, 2.0);
    EXPECT_EQ(count(trace, "Rank : "), 0);
    EXPECT_EQ(theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del, others);
}

TEST_F(DiagnoserOlderCovering, RanksAreNotMatched) {
    rest(1);
    EXPECT_EQ(cover(1.0, 5.0), "[]");
    EXPECT_EQ(reached, 1.0);
    EXPECT_EQ(count(trace, "too high rank"), 0);
}

TEST_F(DiagnoserOlderCovering, ResultsAreReleasedFromTheSearch) {
    obey();
    cover(0.0, 5.0);
    ASSERT_EQ(results.size(), 2u);
    for (auto const& entry : results) {
        EXPECT_EQ(entry.second->rank, 0.0);
        EXPECT_EQ(entry.second->getState(1)->failCount, 0.0);
        EXPECT_FALSE(entry.second->getState(1)->locked);
        EXPECT_EQ(locks("m=shut m=open m=stuck out=lo", *entry.second, 1), "2223");
    }
}

TEST_F(DiagnoserOlderCovering, ProbabilitiesAreNotRenewed) {
    rest(2);
    state(1)->proba = 0.5;  // renewed it would be 0.7
    cover(0.0, 0.0);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_DOUBLE_EQ(results.begin()->first, 0.7 * 0.5);
    EXPECT_EQ(first().proba, 1.0);
}

TEST_F(DiagnoserOlderCovering, ItGoesBackToStepOneWhereverTheWindowStarts) {
    rest(3);
    history()->takeState(0);
    history()->firstTime = 1;
    state(1)->setPrevTrans(elt("m=shut", 1), nullptr);
    EXPECT_EQ(cover(0.0, 0.0), "[]");
    EXPECT_EQ(count(trace, "******* Showing conflicts *******\n"), 3);
}

TEST_F(DiagnoserOlderCovering, AHistoryWithoutThatStepIsGivenUpWithoutAWord) {
    rest(3);
    for (int const t : {0, 1})
        history()->takeState(t);
    history()->firstTime = 2;
    EXPECT_EQ(cover(0.0, 0.0), "");
    EXPECT_EQ(count(trace, "step 1"), 0);
}

TEST_F(DiagnoserOlderCovering, WhatWasExpandedStaysSo) {
    obey();
    cover(0.0, 5.0);
    EXPECT_EQ(theRun().scheduler.redux_diag, std::set<Transition const*>{sticks});
}

TEST_F(DiagnoserOlderCovering, SuccessorsAreComparedAndTold) {
    obey();
    cover(1.0, 1.0);
    // Of stuck, jams and sticks; of shut, none.
    EXPECT_EQ(count(trace, "result size from immediate succs : 2\n"), 1);
    EXPECT_EQ(count(trace, "result size from immediate succs : 0\n"), 1);
    std::string const text = model.trace.take();
    EXPECT_EQ(count(text, "Trajectories comparison :\n"), 2);
    EXPECT_EQ(count(text, "comparing traj 1 and 2\n"), 1);
}

TEST_F(DiagnoserOlderCovering, TheCountersAndTheCoverAreTold) {
    obey();
    theRun().scheduler.transitions_checked = 7;
    theRun().scheduler.states_cover[0] = 0.5;
    theRun().scheduler.traj_cover = 0.25;
    cover(0.0, 5.0);
    EXPECT_EQ(theRun().scheduler.traj_cover, 0.75);
    for (char const* part :
         {"transitions checked : 2\n", "trajectories created : ", "trajectories destroyed : ",
          "states created : ", "states deleted : ", "elts created : ", "elts deleted : ",
          "res's size : 2\n", "trajectories cover : 0.75\n", "cover_track execution time : "})
        EXPECT_EQ(count(trace, part), 1) << part;
}

class DiagnoserOlderFork : public ForkedTap, public testing::WithParamInterface<char const*> {};

INSTANTIATE_TEST_SUITE_P(EitherLikely, DiagnoserOlderFork, testing::Values("q", "r"));

TEST_P(DiagnoserOlderFork, TheLastOutcomeIsFollowedFirst) {
    start(GetParam());
    double reached = 99.0;
    TrajectoryMap const results =
        diagnoser.coverTrack2(std::move(model.history), 0.0, 1.0, observed("out=lo"), reached);
    expectFound(results, std::string(GetParam()) == "q" ? "ft" : "tf");
}

}  // namespace
