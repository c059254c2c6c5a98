// Inserting observations into the last step of a history.
//
// Likelihoods are worked out so: an element that is held true counts, for every transition into a
// mode that holds, the chance 1/2 (of the sensor's two values) or 1/3 (of the command's three),
// since neither shares a component with the tap. Into shut leads `stays` alone; into stuck
// `sticks`, `jams` and `remains`.
#include <cmath>

#include "reasoning/diagnoser_fixture.h"

using diagnoser_fixture::count;
using diagnoser_fixture::MovingTap;

namespace {

constexpr bool observing = true;
constexpr bool searching = false;
constexpr char const* modes = "m=shut m=open m=stuck";

class DiagnoserObservations : public MovingTap {
protected:
    DiagnoserObservations() { addSensor(); }
    // Up to step 1, open by command.
    void open() {
        start(1);
        command(0, "go");
        takes(opens, 1);
        label(1, "!out=lo out=hi");
    }
    TrajectoryMap insert(std::string const& literals, int t, double rank, bool filter) {
        errors.take();
        return diagnoser.observationResults(observed(literals), history(), t, rank, filter);
    }
    // The only outcome.
    static Trajectory const& only(TrajectoryMap const& outcomes) {
        EXPECT_EQ(outcomes.size(), 1u);
        return *outcomes.begin()->second;
    }
    static std::set<std::string> ids(std::vector<Atom*> const& atoms) {
        std::set<std::string> found;
        for (Atom const* atom : atoms)
            found.insert(atom->getId());
        return found;
    }
};

// ---- The observed state ----

TEST_F(DiagnoserObservations, TheHistoryItselfStaysAsItWas) {
    open();
    state(1)->observations = {model.atom("m=stuck")};
    TrajectoryMap const outcomes = insert("out=lo", 1, 0.0, searching);
    ASSERT_EQ(outcomes.size(), 1u);
    EXPECT_EQ(labels("out=lo out=hi", *history(), 1), "ft");
    EXPECT_EQ(labels(modes, *history(), 1), "ftf");
    EXPECT_EQ(locks("out=lo out=hi m=shut m=open m=stuck", *history(), 1), "22222");
    EXPECT_FALSE(state(1)->observed);
    EXPECT_EQ(state(1)->obsProb, 1.0);
    EXPECT_EQ(ids(state(1)->observations), (std::set<std::string>{"c.m=stuck"}));
    EXPECT_EQ(history()->getCurrentTime(), 1);
    EXPECT_NE(outcomes.begin()->second->getState(1), state(1));
}

TEST_F(DiagnoserObservations, TheStateCountsAsObservedAndForgetsEarlierObservations) {
    start(1);
    state(1)->observations = {model.atom("m=stuck")};
    TrajectoryMap const outcomes = insert("out=lo", 1, 0.0, observing);
    EXPECT_TRUE(only(outcomes).getState(1)->observed);
    EXPECT_TRUE(only(outcomes).getState(1)->observations.empty());
}

TEST_F(DiagnoserObservations, WhatWasSeenHoldsForGood) {
    start(1);
    TrajectoryMap const outcomes = insert("out=lo", 1, 0.0, observing);
    EXPECT_EQ(labels("out=lo out=hi", only(outcomes), 1), "tf");
    EXPECT_EQ(locks("out=lo out=hi", only(outcomes), 1), "34");
}

TEST_F(DiagnoserObservations, WhatWasDeniedIsHeldAloneAndNoted) {
    start(1);
    TrajectoryMap const outcomes = insert("!out=hi", 1, 0.0, observing);
    EXPECT_EQ(labels("out=lo out=hi", only(outcomes), 1), "tf");
    EXPECT_EQ(locks("out=lo out=hi", only(outcomes), 1), "24");
    EXPECT_EQ(ids(only(outcomes).getState(1)->observations), (std::set<std::string>{"d.out=hi"}));
}

TEST_F(DiagnoserObservations, EveryObservationIsInserted) {
    start(1);
    TrajectoryMap const outcomes = insert("out=lo !m=open !m=stuck", 1, 0.0, observing);
    EXPECT_EQ(locks("out=lo out=hi m=shut m=open m=stuck", only(outcomes), 1), "34244");
    EXPECT_EQ(ids(only(outcomes).getState(1)->observations),
              (std::set<std::string>{"c.m=open", "c.m=stuck"}));
}

TEST_F(DiagnoserObservations, WhatFollowsIsHeldForTheSearchAndWhatIsRuledOutIsNoted) {
    open();
    TrajectoryMap const outcomes = insert("out=lo", 1, 0.0, searching);
    EXPECT_EQ(labels(modes, only(outcomes), 1), "tff");
    EXPECT_EQ(locks(modes, only(outcomes), 1), "011");
    EXPECT_EQ(ids(only(outcomes).getState(1)->observations),
              (std::set<std::string>{"d.out=hi", "c.m=open"}));
}

TEST_F(DiagnoserObservations, AComponentThatTheStepDoesNotHoldIsPulledForward) {
    start(2);
    forget("d", 2);
    TrajectoryMap const outcomes = insert("out=lo", 2, 0.0, observing);
    EXPECT_EQ(locks("out=lo out=hi", only(outcomes), 2), "34");
    EXPECT_EQ(state(2)->getElt("d.out=lo"), nullptr);
}

// ---- What may be changed ----

TEST_F(DiagnoserObservations, WhileObservingAModeThatATransitionReachedIsNotChanged) {
    open();
    EXPECT_TRUE(insert("out=lo", 1, 0.0, observing).empty());
    state(1)->setPrevTrans(elt("m=open", 1), nullptr);
    EXPECT_EQ(insert("out=lo", 1, 0.0, observing).size(), 1u);
}

TEST_F(DiagnoserObservations, FailuresAreAssumedWithinTheRank) {
    open();
    history()->rank = 3.0;
    EXPECT_EQ(insert("out=lo", 1, 3.9, searching).size(), 1u);
    EXPECT_EQ(insert("out=lo", 1, 4.0, searching).size(), 2u);
}

TEST_F(DiagnoserObservations, WhatCannotBeHasNoOutcome) {
    start(1);
    static_cast<CommandVar*>(elt("cmd=go", 1)->getStateVar())->forbidden = true;
    EXPECT_TRUE(insert("cmd=go", 1, 0.0, observing).empty());
    EXPECT_EQ(count(errors.take(), "results from observations computed : 0"), 1);
}

// ---- The history of an outcome ----

TEST_F(DiagnoserObservations, ItEndsAtTheStepOfTheObservations) {
    start(3);
    label(1, "?m=stuck");
    TrajectoryMap const outcomes = insert("out=lo", 2, 0.0, observing);
    EXPECT_EQ(only(outcomes).getCurrentTime(), 2);
    EXPECT_EQ(only(outcomes).stepCount, 2);
    EXPECT_EQ(only(outcomes).states.size(), 3u);
    EXPECT_EQ(labels(modes, only(outcomes), 1), "tfu");
    EXPECT_EQ(history()->getCurrentTime(), 3);
}

TEST_F(DiagnoserObservations, ItsRankCountsTheFailuresOfThatStepOnceMore) {
    start(1);
    takes(sticks, 1);
    TrajectoryMap const outcomes = insert("out=lo", 1, 0.0, observing);
    EXPECT_EQ(history()->rank, 1.0);
    EXPECT_EQ(only(outcomes).rank, 2.0);
}

TEST_F(DiagnoserObservations, TheLikelihoodOfAnOnlyOutcomeIsOne) {
    start(1);
    takes(stays, 1);
    state(0)->proba = 0.5;
    TrajectoryMap const outcomes = insert("out=lo", 1, 0.0, observing);
    EXPECT_EQ(outcomes.begin()->first, 1.0);
    EXPECT_EQ(only(outcomes).getState(1)->obsProb, 1.0);
    EXPECT_EQ(only(outcomes).getState(1)->prevTransProb, 0.7);
    EXPECT_EQ(only(outcomes).getState(1)->proba, 1.0 * 0.7 * 0.5);
}

TEST_F(DiagnoserObservations, LikelihoodsAreNormalisedAndOrderTheOutcomes) {
    open();
    TrajectoryMap const outcomes = insert("out=lo", 1, 1.0, searching);
    ASSERT_EQ(outcomes.size(), 2u);
    double const shut = (1.0 / 2) * (1.0 / 3);  // sensor, command
    double const stuck = (3.0 / 2) * (3.0 / 3);
    Trajectory const& first = *outcomes.begin()->second;
    Trajectory const& second = *outcomes.rbegin()->second;
    EXPECT_EQ(labels(modes, first, 1), "fft");
    EXPECT_EQ(labels(modes, second, 1), "tff");
    EXPECT_DOUBLE_EQ(outcomes.begin()->first, stuck / (shut + stuck));
    EXPECT_DOUBLE_EQ(outcomes.rbegin()->first, shut / (shut + stuck));
    EXPECT_EQ(first.getState(1)->obsProb, outcomes.begin()->first);
    EXPECT_EQ(second.getState(1)->obsProb, outcomes.rbegin()->first);
    // opens is recorded as yet.
    EXPECT_DOUBLE_EQ(first.getState(1)->proba, stuck / (shut + stuck) * 0.8);
    EXPECT_DOUBLE_EQ(second.getState(1)->proba, shut / (shut + stuck) * 0.8);
}

TEST_F(DiagnoserObservations, LikelihoodsWithoutASumAreNotNumbers) {
    start(1);
    takes(stays, 1);
    // No clause links shut to the effect of stays but through its own atom, so nothing speaks for
    // the observation.
    TrajectoryMap const outcomes = insert("m=shut", 1, 0.0, observing);
    EXPECT_TRUE(std::isnan(outcomes.begin()->first));
    EXPECT_TRUE(std::isnan(only(outcomes).getState(1)->obsProb));
    EXPECT_TRUE(std::isnan(only(outcomes).getState(1)->proba));
}

// ---- The rest ----

TEST_F(DiagnoserObservations, TheInsertionAndItsOutcomesAreTold) {
    open();
    insert("out=lo", 1, 1.0, searching);
    std::string const text = errors.take();
    EXPECT_EQ(text.find("inserting observations at time_step : 1\n"), 0u);
    EXPECT_EQ(count(text, "results from observations computed : 2\n"), 1);
}

TEST_F(DiagnoserObservations, LocksOfComponentsPulledForwardAreNotKeptAfterwards) {
    start(1);
    static_cast<CommandVar*>(elt("cmd=go", 1)->getStateVar())->forbidden = true;
    for (char const* literals : {"out=lo", "cmd=go"}) {  // the second one is refused
        diagnoser.keepLocks = true;
        insert(literals, 1, 0.0, observing);
        EXPECT_FALSE(diagnoser.keepLocks) << literals;
    }
}

TEST_F(DiagnoserObservations, SettingAnObservationOfAStateEndsWithItDenied) {
    start(1);
    label(1, "?m=shut ?m=open m=stuck");
    Diagnoser::setObservation(model.atom("m=open"), state(1));
    EXPECT_EQ(labels(modes, *history(), 1), "fff");
    EXPECT_EQ(labels("out=lo", *history(), 1), "t");
    EXPECT_EQ(locks(modes, *history(), 1), "222");
}

}  // namespace
