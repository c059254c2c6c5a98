// Searching a history for the newest truth of an atom.
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::printed;
using trajectory_fixture::PumpHistory;

namespace {

// Both components at step 0; the pump again at steps 2 and 5; seven steps in all when *moved*.
class SearchTest : public testing::Test, protected PumpHistory {
protected:
    SearchTest() {
        addEmpty(2);
        extendByPump(2);
        addEmpty(2);
    }
    void extendByPump(int t) {
        printed([&] { path.addComp(&pump.comp, path.getState(t), t, false, false); });
    }
    // Steps 0 and 1 leave: the window is 2 to 6, five states, so that the short forms begin at 4.
    void move() {
        addEmpty();
        extendByPump(5);
        addEmpty();
    }
    TrajEl* at(int t, char const* id) const { return path.getState(t)->getElt(id); }

    char const* off = pump.id("mode=off");
    char const* low = tank.id("mode=low");
};

TEST_F(SearchTest, OneStepAloneIsNotSearched) {
    EXPECT_EQ(path.getElt(2, off), at(2, off));
    ASSERT_NE(path.getElt(2, off), nullptr);
    std::string const text = printed([&] {
        EXPECT_EQ(path.getElt(1, off), nullptr);
        EXPECT_EQ(path.getElt(2, low), nullptr);
        EXPECT_EQ(path.getElt(9, off), nullptr);
    });
    EXPECT_EQ(text, "") << "and says nothing";
}

TEST_F(SearchTest, AllFormsFindTheNewestAtOrBeforeTheirStart) {
    TrajEl* older = at(0, off);
    TrajEl* newer = at(2, off);
    ASSERT_NE(older, newer);
    EXPECT_EQ(path.getElt(off), newer) << "from step 4";
    EXPECT_EQ(path.getElt(off, 0), newer);
    EXPECT_EQ(path.getElt(off, -2), newer) << "from step 2 itself";
    EXPECT_EQ(path.getElt(off, -3), older);
    EXPECT_EQ(path.getElt(off, 4, 0), newer);
    EXPECT_EQ(path.getElt(off, 2, 0), newer);
    EXPECT_EQ(path.getElt(off, 2, -1), older);
    EXPECT_EQ(path.getElt(off, 1, 1), newer);
    EXPECT_EQ(path.getElt(low), at(0, low));
    EXPECT_EQ(path.getElt(low, 4, 0), at(0, low));
}

TEST_F(SearchTest, TwoFormsTellWhereTheyFoundIt) {
    int found = -7;
    EXPECT_EQ(path.getElt(off, found), at(2, off));
    EXPECT_EQ(found, 2);
    EXPECT_EQ(path.getElt(low, found), at(0, low));
    EXPECT_EQ(found, 0);
    EXPECT_EQ(path.getElt(off, 4, 0, found), at(2, off));
    EXPECT_EQ(found, 2);
    EXPECT_EQ(path.getElt(off, 2, -1, found), at(0, off));
    EXPECT_EQ(found, 0);
}

TEST_F(SearchTest, AFailedSearchSaysSoAndAnswersNull) {
    std::string const message = "Error: atom not found... p.mode=stuck\n";
    char const* const id = "p.mode=stuck";
    int found = -7;
    EXPECT_EQ(printed([&] { EXPECT_EQ(path.getElt(id), nullptr); }), message);
    EXPECT_EQ(printed([&] { EXPECT_EQ(path.getElt(id, found), nullptr); }), message);
    EXPECT_EQ(printed([&] { EXPECT_EQ(path.getElt(id, -1), nullptr); }), message);
    EXPECT_EQ(printed([&] { EXPECT_EQ(path.getElt(id, 4, 0), nullptr); }), message);
    EXPECT_EQ(printed([&] { EXPECT_EQ(path.getElt(id, 4, -1, found), nullptr); }), message);
    EXPECT_EQ(found, -7);
}

TEST_F(SearchTest, NothingIsFoundBeforeTheFirstStep) {
    EXPECT_EQ(printed([&] { EXPECT_EQ(path.getElt(off, 0, -1), nullptr); }),
              "Error: atom not found... p.mode=off\n");
}

// The window is 2 to 6 with the pump at 2 and 5; what was known of the tank was folded into step 2.
TEST_F(SearchTest, AfterAMoveTheShortFormsBeginBelowTheCurrentStep) {
    move();
    ASSERT_EQ(path.firstTime, 2);
    ASSERT_EQ(path.currentTime, 6);
    EXPECT_EQ(path.getElt(off), at(2, off)) << "from step 4: misses that of step 5";
    int found = 0;
    EXPECT_EQ(path.getElt(off, found), at(2, off));
    EXPECT_EQ(found, 2);
    EXPECT_EQ(path.getElt(off, 0), at(2, off));
    EXPECT_EQ(path.getElt(off, 1), at(5, off)) << "from step 5";
    EXPECT_EQ(path.getElt(off, 6, 0), at(5, off)) << "the forms with a step find the newest";
    EXPECT_EQ(path.getElt(off, 6, 0, found), at(5, off));
    EXPECT_EQ(found, 5);
    EXPECT_EQ(path.getElt(low), at(2, low));
}

TEST_F(SearchTest, AStartBehindTheWindowFindsNothing) {
    addEmpty(20);
    ASSERT_EQ(path.firstTime, 20);
    EXPECT_EQ(printed([&] { EXPECT_EQ(path.getElt(off), nullptr); }),
              "Error: atom not found... p.mode=off\n")
        << "the short form begins at step 4";
    EXPECT_EQ(path.states.size(), 5u) << "and enters no state";
}

TEST_F(SearchTest, AStartAheadOfTheWindowGoesBackIntoIt) {
    EXPECT_EQ(path.getElt(off, 7, 0), at(2, off));
    EXPECT_EQ(path.states.size(), 5u);
}

// ---- getNext ----

TEST_F(SearchTest, TheNextStepOfAVariableIsAfterTheOneGiven) {
    StateVar const* mode = pump["mode=off"]->var;
    EXPECT_EQ(path.getNext(mode, 0), 2);
    EXPECT_EQ(path.getNext(mode, 1), 2);
    EXPECT_EQ(path.getNext(mode, 2), 0) << "none after it";
    EXPECT_EQ(path.getNext(tank["mode=low"]->var, 0), 0);
    EXPECT_EQ(path.getNext(tank["mode=low"]->var, 4), 0);
}

// As of a transition that moves no mode.
TEST_F(SearchTest, WithoutAVariableThereIsNoNextStep) {
    EXPECT_EQ(path.getNext(nullptr, 0), 0);
}

TEST_F(SearchTest, TheNextStepMayBeTheCurrentOne) {
    extendByPump(4);
    EXPECT_EQ(path.getNext(pump["mode=off"]->var, 2), 4);
    EXPECT_EQ(path.getNext(pump["mode=off"]->var, 0), 2) << "the first one";
}

TEST_F(SearchTest, TheNextStepGoesByTheFirstAtomOfTheVariable) {
    path.getState(2)->removeElt(off);
    EXPECT_NE(at(2, pump.id("mode=on")), nullptr);
    EXPECT_EQ(path.getNext(pump["mode=off"]->var, 0), 0);
}

// ---- getLastNonEmptyState ----

TEST_F(SearchTest, TheLastStateWithElements) {
    EXPECT_EQ(path.getLastNonEmptyState(), path.getState(2));
    extendByPump(4);
    EXPECT_EQ(path.getLastNonEmptyState(), path.getState(4));
}

// It begins at the number of states less one, step 4 here.
TEST_F(SearchTest, TheLastStateWithElementsIsSearchedBelowTheNumberOfStates) {
    move();
    EXPECT_EQ(path.getLastNonEmptyState(), path.getState(2));
    addEmpty(20);
    EXPECT_EQ(path.getLastNonEmptyState(), nullptr);
}

}  // namespace
