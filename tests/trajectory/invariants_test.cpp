// What is told of elements, states and histories whose invariants do not hold.
#include "fixtures/the_run.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::emptyState;
using trajectory_fixture::printed;
using trajectory_fixture::PumpHistory;

namespace {

class StateInvariants : public testing::Test, protected PumpHistory {
protected:
    State* state() const { return path.getState(0); }
    TrajEl* off() const { return state()->getElt(pump.id("mode=off")); }
    TrajEl* on() const { return state()->getElt(pump.id("mode=on")); }
};

TEST_F(StateInvariants, Hold) {
    EXPECT_EQ(off()->brokenInvariant(), nullptr);
    EXPECT_EQ(state()->brokenInvariant(), nullptr);
    EXPECT_EQ(emptyState()->brokenInvariant(), nullptr);
}

TEST_F(StateInvariants, ALabelIsOneOfThreeOrNone) {
    off()->label = "";
    EXPECT_EQ(state()->brokenInvariant(), nullptr);
    off()->label = "maybe";
    EXPECT_STREQ(state()->brokenInvariant(), "the label is none of the three");
}

TEST_F(StateInvariants, ALockIsOneOfFive) {
    for (int const lock : {-1, 5}) {
        off()->lock = lock;
        EXPECT_STREQ(off()->brokenInvariant(), "the lock is none of the five") << lock;
    }
}

TEST_F(StateInvariants, ATransitionStandsUnderItsId) {
    off()->nextTrans = {{0, stayOff}, {1, nullptr}, {2, start}};
    EXPECT_EQ(off()->brokenInvariant(), nullptr) << "a null says nothing";
    off()->nextTrans[1] = start;
    EXPECT_STREQ(off()->brokenInvariant(), "a transition stands under the id of another");
    off()->nextTrans.clear();
    off()->nextTransNeg[7] = start;
    EXPECT_STREQ(off()->brokenInvariant(), "a transition stands under the id of another");
}

TEST_F(StateInvariants, AnElementStandsUnderTheIdOfItsAtom) {
    off()->setAtom(pump["mode=on"]);
    EXPECT_STREQ(state()->brokenInvariant(), "an element stands under the id of another atom");
    off()->setAtom(nullptr);
    EXPECT_STREQ(state()->brokenInvariant(), "an element stands under the id of another atom");
}

TEST_F(StateInvariants, AConsequenceIsAnElementOfTheState) {
    off()->consequences = {on()};
    EXPECT_EQ(state()->brokenInvariant(), nullptr);
    State const copy(state(), true);
    EXPECT_EQ(copy.brokenInvariant(), nullptr) << "a copy has links of its own";
    off()->consequences = {copy.getElt(pump.id("mode=on"))};
    EXPECT_STREQ(state()->brokenInvariant(), "a consequence is no element of the state");
    off()->consequences = {nullptr};
    EXPECT_STREQ(state()->brokenInvariant(), "a consequence is no element of the state");
    off()->consequences.clear();
}

TEST_F(StateInvariants, AConsequenceMayHaveBeenReplaced) {
    off()->consequences = {on()};
    state()->addElt(on(), true);
    EXPECT_NE(off()->consequences.front(), on());
    EXPECT_EQ(state()->brokenInvariant(), nullptr);
}

TEST_F(StateInvariants, AComponentStandsUnderItsName) {
    state()->comps["q"] = &pump.comp;
    EXPECT_STREQ(state()->brokenInvariant(), "a component stands under another name");
    state()->comps["q"] = nullptr;
    EXPECT_STREQ(state()->brokenInvariant(), "a component stands under another name");
}

// The window has room for five states.
class WindowInvariants : public testing::Test, protected PumpHistory {
protected:
    WindowInvariants() { addEmpty(2); }
};

TEST_F(WindowInvariants, HoldWhileTheWindowMoves) {
    for (int i = 0; i < 10; ++i) {
        addEmpty();
        EXPECT_EQ(path.brokenInvariant(), nullptr);
    }
    path.removeLastState();
    EXPECT_EQ(path.brokenInvariant(), nullptr);
}

TEST_F(WindowInvariants, NoStepIsMissing) {
    std::unique_ptr<State> taken = path.takeState(1);
    EXPECT_STREQ(path.brokenInvariant(), "a step of the window has no state");
    path.putState(1, std::move(taken));
    EXPECT_EQ(path.brokenInvariant(), nullptr);
    path.currentTime = 3;
    EXPECT_STREQ(path.brokenInvariant(), "a step of the window has no state");
    path.currentTime = 2;
}

TEST_F(WindowInvariants, NoStateStandsBeforeTheWindow) {
    path.firstTime = 1;
    EXPECT_STREQ(path.brokenInvariant(), "a state stands before the window");
    path.firstTime = 0;
}

TEST_F(WindowInvariants, TheWindowIsBounded) {
    theRun().scheduler.book.twd = 2;
    EXPECT_STREQ(path.brokenInvariant(), "the window holds more states than it may");
    theRun().scheduler.book.twd = 5;
}

// Both modes begin with an idle transition that holds, so both components stand in the first state.
TEST_F(WindowInvariants, EveryComponentStaysInTheWindow) {
    string_map<Comp*> both;
    both["p"] = &pump.comp;
    both["t"] = &tank.comp;
    both["nothing"] = nullptr;
    for (int i = 0; i < 10; ++i) {
        addEmpty();
        EXPECT_TRUE(path.holdsAll(both)) << "step " << path.currentTime;
    }
    printed([&] { path.addComp(&tank.comp, path.getLastState(), path.currentTime, true, false); });
    path.removeComp(&tank.comp, path.firstTime);
    EXPECT_TRUE(path.holdsAll(both)) << "a newer state holds it";
    path.removeComp(&pump.comp, path.firstTime);
    EXPECT_FALSE(path.holdsAll(both));
}

}  // namespace
