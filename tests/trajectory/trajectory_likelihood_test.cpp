// The probability of a history under the rule `likelihood`: a pump, off or on, and a tank beside
// it.
//
// The pump stays off or starts with 0.5 each, stays on with 0.25, dies with 0.125; the tank stays
// low with 0.75.
#include <iostream>

#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::printed;
using trajectory_fixture::PumpAndTank;
using trajectory_fixture::Unit;

namespace {

class LikelihoodTest : public testing::Test, protected PumpAndTank {
protected:
    explicit LikelihoodTest(bool likelihood = true) { rules.likelihood = likelihood; }

    // A step in which the pump takes the transition; the tank has no elements there.
    State* take(Transition* transition) {
        int const t = path.currentTime + 1;
        printed([&] {
            path.addState(t, std::make_unique<State>(book));
            path.addComp(&pump.comp, path.getState(t), t, false, false);
        });
        State* state = path.getState(t);
        for (auto const& entry : state->elts)
            entry.second->setLabel(labelFalse);
        TrajEl* element = state->getElt(transition->postMode->getId());
        element->setLabel(labelTrue);
        element->prevTrans = transition;
        return state;
    }

    Rules rules;
    TrajectoryBook book{std::cout, std::cerr, rules};
    Trajectory path{book, &atoms};
};

class ClassicTest : public LikelihoodTest {
protected:
    ClassicTest() : LikelihoodTest(false) {}
};

// The start weighs 0.5 * 0.75, the idle transitions of off and low. The tank stays low at step 1,
// whether its state tells it or not.
TEST_F(LikelihoodTest, AComponentOutOfTheStateGoesOnIdle) {
    State* state = take(start);
    path.computeStateProb(1);
    EXPECT_EQ(state->prevTransProb, 0.5 * 0.75);
    EXPECT_EQ(state->proba, 0.5 * 0.75 * 0.375);
    printed([&] { path.addComp(&tank.comp, state, 1, true, false); });
    path.computeStateProb(1);
    EXPECT_EQ(state->proba, 0.5 * 0.75 * 0.375);
}

TEST_F(ClassicTest, AComponentOutOfTheStateCountsAsCertain) {
    State* state = take(start);
    path.computeStateProb(1);
    EXPECT_EQ(state->prevTransProb, 0.5);
    printed([&] { path.addComp(&tank.comp, state, 1, true, false); });
    path.computeStateProb(1);
    EXPECT_EQ(state->prevTransProb, 0.5 * 0.75);
}

// Recorded in a second element, as one with an effect on two atoms is.
TEST_F(LikelihoodTest, ATransitionCountsOnce) {
    State* state = take(start);
    state->setPrevTrans(pump.id("mode=dead"), start);
    path.computeStateProb(1);
    EXPECT_EQ(state->prevTransProb, 0.5 * 0.75);
}

// Seven steps, of which the window keeps 3 to 7. At step 5 the pump died instead of staying on: the
// newest state must tell, 0.125 against 0.25.
TEST_F(LikelihoodTest, AStateIsWeighedUpToTheNewest) {
    take(start);
    for (int t = 2; t <= 7; ++t)
        take(stayOn);
    ASSERT_EQ(path.firstTime, 3);
    path.getState(3)->proba = 1.0;
    path.updateStatesProb();
    double const step = 0.25 * 0.75;
    EXPECT_EQ(path.getLastState()->proba, step * step * step * step);
    path.getState(5)->setPrevTrans(pump.id("mode=on"), die);
    path.updateStatesProb();
    EXPECT_EQ(path.getLastState()->proba, step * step * step * step / 2.0);
}

TEST_F(ClassicTest, AStateIsWeighedUpToTheNumberOfStates) {
    take(start);
    for (int t = 2; t <= 7; ++t)
        take(stayOn);
    path.getState(3)->proba = 1.0;
    path.getLastState()->proba = 0.5;
    path.updateStatesProb();
    path.getState(5)->setPrevTrans(pump.id("mode=on"), die);
    path.updateStatesProb();
    EXPECT_EQ(path.getLastState()->proba, 0.5) << "the newest state keeps what it had";
}

TEST_F(LikelihoodTest, TheFirstStateOfTheWindowKeepsItsProbability) {
    take(start);
    path.getState(0)->proba = 0.5;
    path.updateStatesProb();
    EXPECT_EQ(path.getState(0)->proba, 0.5);
    EXPECT_EQ(path.getState(1)->proba, 0.5 * 0.5 * 0.75);
}

TEST_F(LikelihoodTest, AHistoryWeighsWhatItStandsFor) {
    path.getState(0)->proba = 0.25;
    path.represented = 3.0;
    path.failureSteps[7] = {1, 2};
    EXPECT_EQ(path.weight(), 0.75);
    Trajectory const copy(&path, 1);
    EXPECT_EQ(copy.weight(), 0.75);
    EXPECT_EQ(copy.failureSteps, path.failureSteps);
    path.scaleProbas(2.0);
    EXPECT_EQ(path.weight(), 1.5);
}

TEST_F(LikelihoodTest, AHistoryHoldsAnUnknownModeAsLongAsAStateDoes) {
    EXPECT_FALSE(path.holdsUnknown());
    State* state = take(start);
    state->setUnknown();
    EXPECT_TRUE(path.holdsUnknown());
    state->unknown = false;
    EXPECT_FALSE(path.holdsUnknown());
}

}  // namespace
