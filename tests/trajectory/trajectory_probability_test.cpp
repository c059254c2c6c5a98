// Times, probabilities and covers of a history.
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::printed;
using trajectory_fixture::PumpAndTank;
using trajectory_fixture::PumpHistory;

namespace {

class ProbabilityTest : public testing::Test, protected PumpHistory {
protected:
    // Puts the elements of a component into the state of a step.
    void extend(Comp& comp, int t) {
        printed([&] { path.addComp(&comp, path.getState(t), t, false, false); });
    }
    TrajEl* off(int t) const { return path.getState(t)->getElt(pump.id("mode=off")); }
    TrajEl* low(int t) const { return path.getState(t)->getElt(tank.id("mode=low")); }
};

// ---- The time table ----

TEST_F(ProbabilityTest, TimesAreEnteredForTheCurrentStep) {
    addEmpty(2);
    path.setTimeCorr(21.5);
    EXPECT_EQ(path.timeCorr,
              (std::vector<std::pair<int, double>>{{0, 0.0}, {1, 10.0}, {2, 20.0}, {2, 21.5}}));
}

TEST_F(ProbabilityTest, TheFirstEntryAnswers) {
    addEmpty(2);
    path.setTimeCorr(21.5);
    EXPECT_EQ(path.getTimeCorr(0), 0.0);
    EXPECT_EQ(path.getTimeCorr(2), 20.0);
    EXPECT_EQ(path.getDiscTimeCorr(21.5), 2);
    EXPECT_EQ(path.getDiscTimeCorr(10.0), 1);
    path.timeCorr.emplace_back(7, 10.0);
    EXPECT_EQ(path.getDiscTimeCorr(10.0), 1);
}

TEST_F(ProbabilityTest, WhatIsNotInTheTableAnswersNines) {
    addEmpty(2);
    EXPECT_EQ(path.getTimeCorr(3), 9999.0);
    EXPECT_EQ(path.getTimeCorr(-1), 9999.0);
    EXPECT_EQ(path.getDiscTimeCorr(10.0000001), 9999) << "times are compared exactly";
    EXPECT_EQ(Trajectory(theRun().scheduler.book).getTimeCorr(0), 9999.0);
    EXPECT_EQ(Trajectory(theRun().scheduler.book).getDiscTimeCorr(0.0), 9999);
}

TEST_F(ProbabilityTest, AnEmptyHistoryCanBeGivenATime) {
    Trajectory path{theRun().scheduler.book};
    path.setTimeCorr(3.0);
    EXPECT_EQ(path.getTimeCorr(0), 3.0);
}

// ---- Transitions into a state ----

TEST_F(ProbabilityTest, TheTransitionsOfAStateInTheOrderOfItsElements) {
    std::vector<Transition*> expected;
    for (auto const& entry : path.getState(0)->elts)
        if (entry.second->prevTrans != nullptr)
            expected.push_back(entry.second->prevTrans);
    ASSERT_EQ(expected.size(), 2u);
    EXPECT_EQ(path.getStateTransitions(0), expected);
    addEmpty();
    EXPECT_TRUE(path.getStateTransitions(1).empty());
}

TEST_F(ProbabilityTest, ATransitionOfTwoElementsIsListedTwice) {
    addEmpty();
    extend(pump.comp, 1);
    path.getState(1)->setPrevTrans(pump.id("mode=off"), start);
    path.getState(1)->setPrevTrans(pump.id("mode=on"), start);
    EXPECT_EQ(path.getStateTransitions(1), (std::vector<Transition*>{start, start}));
}

TEST_F(ProbabilityTest, TheProductOfTheTransitionsOfAStep) {
    path.getState(0)->prevTransProb = 0.0;
    path.computePrevTransSetProb(0);
    EXPECT_EQ(path.getState(0)->prevTransProb, 0.375) << "0.5 * 0.75";
}

// ---- Probability of a state ----

// 0.5 of the observations, 0.25 of the tank's transition, 0.375 of the state before.
TEST_F(ProbabilityTest, AStateIsAsProbableAsItsObservationsItsTransitionsAndItsPast) {
    addEmpty();
    extend(tank.comp, 1);
    State* state = path.getState(1);
    state->setPrevTrans(tank.id("mode=high"), fill);
    state->obsProb = 0.5;
    path.computeStateProb(1);
    EXPECT_EQ(state->prevTransProb, 0.25);
    EXPECT_EQ(state->proba, 0.046875);
}

TEST_F(ProbabilityTest, TheFirstStateKeepsItsProbability) {
    path.getState(0)->prevTransProb = 0.0;
    path.getState(0)->obsProb = 0.5;
    path.computeStateProb(0);
    EXPECT_EQ(path.getState(0)->proba, 0.375);
    EXPECT_EQ(path.getState(0)->prevTransProb, 0.0) << "nothing at all is done";
}

TEST_F(ProbabilityTest, WithoutItsPastAStateKeepsItsProbability) {
    addEmpty(5);
    State* first = path.getState(1);
    first->proba = 0.625;
    first->prevTransProb = 0.0;
    path.computeStateProb(1);
    EXPECT_EQ(first->proba, 0.625);
    EXPECT_EQ(first->prevTransProb, 0.375) << "the idle transitions of both components";
    EXPECT_EQ(path.getState(0), nullptr) << "reading does not create a state";
}

TEST_F(ProbabilityTest, ProbabilitiesAreUpdatedFromTheFirstLockedStateOn) {
    addEmpty(3);
    for (int t = 0; t <= 3; ++t) {
        path.getState(t)->locked = t == 2;
        path.getState(t)->proba = 0.5;
        path.getState(t)->obsProb = 0.5;
    }
    path.updateStatesProb();
    EXPECT_EQ(path.getState(0)->proba, 0.5);
    EXPECT_EQ(path.getState(1)->proba, 0.5) << "before the first locked one";
    EXPECT_EQ(path.getState(2)->proba, 0.25);
    EXPECT_EQ(path.getState(3)->proba, 0.125);
}

TEST_F(ProbabilityTest, WithoutALockedStateNothingIsUpdated) {
    addEmpty(2);
    for (int t = 0; t <= 2; ++t) {
        path.getState(t)->locked = false;
        path.getState(t)->proba = 0.5;
        path.getState(t)->obsProb = 0.5;
    }
    path.updateStatesProb();
    EXPECT_EQ(path.getState(1)->proba, 0.5);
    EXPECT_EQ(path.getState(2)->proba, 0.5);
}

// The window is 2 to 6: five states, so that step 4 is the last one updated.
TEST_F(ProbabilityTest, TheUpdateEndsBelowTheNumberOfStates) {
    addEmpty(6);
    ASSERT_EQ(path.firstTime, 2);
    for (int t = 2; t <= 6; ++t) {
        path.getState(t)->proba = 0.5;
        path.getState(t)->obsProb = 0.5;
    }
    path.updateStatesProb();
    EXPECT_EQ(path.getState(2)->proba, 0.5) << "its past has left the window";
    EXPECT_EQ(path.getState(3)->proba, 0.25);
    EXPECT_EQ(path.getState(4)->proba, 0.125);
    EXPECT_EQ(path.getState(5)->proba, 0.5);
    EXPECT_EQ(path.getState(6)->proba, 0.5);
}

// ---- Covers ----

// What the pump's start takes: 0.5, times 0.25 for the tank's transition that is there already.
TEST_F(ProbabilityTest, ATransitionCoversItsShareOfAState) {
    addEmpty();
    extend(tank.comp, 1);
    State* state = path.getState(1);
    state->postProbs = {{start->id, 0.5}, {fill->id, 0.25}};
    state->setPrevTrans(tank.id("mode=high"), fill);
    state->cover = 0.0625;
    path.updateCover(state, start);
    EXPECT_EQ(state->cover, 0.1875);
    path.updateCover(state, start);
    EXPECT_EQ(state->cover, 0.3125);
    path.updateCover(state, die);
    EXPECT_EQ(state->cover, 0.3125) << "a transition without an entry takes nothing";
}

// Elements of the tank at step 1, of the pump at step 2.
class FarCoverTest : public ProbabilityTest {
protected:
    FarCoverTest() {
        addEmpty(3);
        extend(tank.comp, 1);
        extend(pump.comp, 2);
        to = path.getState(2);
        to->postProbs = {{start->id, 0.5}, {fill->id, 0.25}, {die->id, 0.125}};
    }
    State* from = path.getState(0);
    State* to;
};

TEST_F(FarCoverTest, OnlyTransitionsThatArriveAtTheStepCount) {
    off(0)->nextTrans = {{start->id, start}};
    low(0)->nextTrans = {{fill->id, fill}};
    path.updateCover(from, to, 0, 2, die);
    EXPECT_EQ(to->cover, 0.0625) << "0.125 of the transition, 0.5 of the pump's start";
    EXPECT_EQ(from->cover, 0.0);
    path.updateCover(from, to, 0, 1, die);
    EXPECT_EQ(to->cover, 0.09375) << "and 0.125 * 0.25, the tank arriving at step 1";
    path.updateCover(from, to, 0, 3, die);
    EXPECT_EQ(to->cover, 0.21875) << "and 0.125: nothing arrives at step 3";
}

TEST_F(FarCoverTest, ATransitionOfTwoElementsCountsOnce) {
    off(0)->nextTrans = {{start->id, start}};
    from->getElt(pump.id("mode=on"))->nextTrans = {{start->id, start}};
    path.updateCover(from, to, 0, 2, die);
    EXPECT_EQ(to->cover, 0.0625);
}

TEST_F(FarCoverTest, TheTransitionItselfMayBeWithoutAnEntry) {
    off(0)->nextTrans = {{start->id, start}};
    path.updateCover(from, to, 0, 2, stayHigh);
    EXPECT_EQ(to->cover, 0.0);
    off(0)->nextTrans = {{stayOff->id, stayOff}};
    path.updateCover(from, to, 0, 2, die);
    EXPECT_EQ(to->cover, 0.0) << "neither has the one that arrives";
}

// fill has the id 6, start the id 2.
TEST_F(FarCoverTest, TheWalkFillsTheTablesWithNulls) {
    off(0)->nextTrans = {{start->id, start}};
    low(0)->nextTrans = {{fill->id, fill}};
    path.updateCover(from, to, 0, 2, die);
    EXPECT_EQ(off(0)->nextTrans, (TrajEl::Transitions{{0, nullptr}, {1, nullptr}, {2, start}}));
    EXPECT_EQ(low(0)->nextTrans, (TrajEl::Transitions{{0, nullptr},
                                                      {1, nullptr},
                                                      {2, nullptr},
                                                      {3, nullptr},
                                                      {4, nullptr},
                                                      {5, nullptr},
                                                      {6, fill}}));
    EXPECT_TRUE(from->getElt(pump.id("mode=on"))->nextTrans.empty()) << "an empty one stays empty";
    path.updateCover(from, to, 0, 2, die);
    EXPECT_EQ(to->cover, 0.125) << "nulls count nothing: twice 0.0625";
    EXPECT_EQ(TrajEl(off(0)).nextTrans, (TrajEl::Transitions{{2, start}})) << "nor are they copied";
    off(0)->addToNextTrans(stayOff);
    EXPECT_EQ(off(0)->nextTrans, (TrajEl::Transitions{{0, stayOff}, {1, nullptr}}));
}

TEST_F(FarCoverTest, ATransitionOfIdZeroNeedsNoFilling) {
    off(0)->nextTrans = {{stayOff->id, stayOff}};
    path.updateCover(from, to, 0, 2, die);
    EXPECT_EQ(off(0)->nextTrans, (TrajEl::Transitions{{0, stayOff}}));
}

}  // namespace
