// The window of states: adding, replacing, taking away, folding and copying.
#include "fixtures/the_run.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::emptyState;
using trajectory_fixture::printed;
using trajectory_fixture::PumpAndTank;
using trajectory_fixture::PumpHistory;
using trajectory_fixture::Unit;

namespace {

class WindowTest : public testing::Test, protected PumpHistory {
protected:
    // A state in which the pump has just died.
    std::unique_ptr<State> failure() const {
        auto state = emptyState();
        TrajEl const dead(theRun().scheduler.book, pump["mode=dead"], nullptr, nullptr, labelTrue);
        state->addElt(&dead, false)->prevTrans = die;
        return state;
    }
    std::vector<int> steps() const {
        std::vector<int> found;
        for (int t = -1; t <= path.currentTime + 1; ++t)
            if (path.getState(t) != nullptr)
                found.push_back(t);
        return found;
    }
    TrajEl* elt(int t, Unit const& unit, char const* atom) const {
        return path.getState(t)->getElt(unit.id(atom));
    }
};

// ---- Making ----

TEST(TrajectoryStart, AnEmptyHistoryHasItsDefaults) {
    unsigned const created = theRun().scheduler.book.traj_created;
    unsigned const deleted = theRun().scheduler.book.traj_del;
    {
        Trajectory const path{theRun().scheduler.book};
        EXPECT_EQ(theRun().scheduler.book.traj_created, created + 1);
        EXPECT_TRUE(path.states.empty());
        EXPECT_EQ(path.currentTime, 0);
        EXPECT_EQ(path.firstTime, 0);
        EXPECT_EQ(path.rank, 0.0);
        EXPECT_EQ(path.proba, 0.0);
        EXPECT_EQ(path.stepCount, 0);
        EXPECT_FALSE(path.transByTime.has_value());
        EXPECT_TRUE(path.timeCorr.empty());
        EXPECT_FALSE(path.isUnknown());
    }
    EXPECT_EQ(theRun().scheduler.book.traj_del, deleted + 1);
    EXPECT_EQ(theRun().scheduler.book.traj_created, created + 1);
    EXPECT_EQ(theRun().scheduler.book.twd, 5);
}

TEST_F(WindowTest, AHistoryFromAtomsBeginsWithTheInitialState) {
    EXPECT_EQ(steps(), (std::vector<int>{0}));
    EXPECT_EQ(path.getState(0)->elts.size(), 5u);
    EXPECT_EQ(path.getState(0)->proba, 0.375);
    EXPECT_EQ(path.getCurrentTime(), 0);
    EXPECT_EQ(path.firstTime, 0);
    EXPECT_EQ(path.rank, 0.0);
    EXPECT_EQ(path.proba, 0.0);
    EXPECT_EQ(path.stepCount, 0);
    EXPECT_FALSE(path.transByTime.has_value());
    EXPECT_EQ(path.timeCorr, (std::vector<std::pair<int, double>>{{0, 0.0}}));
    EXPECT_EQ(path.getLastState(), path.getState(0));
}

TEST_F(WindowTest, AStateOutsideTheWindowIsNullAndIsNotCreated) {
    EXPECT_EQ(path.getState(1), nullptr);
    EXPECT_EQ(path.getState(-1), nullptr);
    EXPECT_EQ(path.states.size(), 1u);
}

TEST_F(WindowTest, HistoriesAndTheirStatesAreCountedInAndOut) {
    unsigned const created = theRun().scheduler.book.traj_created;
    unsigned const deleted = theRun().scheduler.book.traj_del;
    unsigned const states = theRun().scheduler.book.state_created;
    unsigned const statesGone = theRun().scheduler.book.state_del;
    unsigned const elements = theRun().scheduler.book.trajel_created;
    unsigned const elementsGone = theRun().scheduler.book.trajel_del;
    {
        Trajectory other(theRun().scheduler.book, &atoms);
        other.addState(1, failure());
        other.addCopyState(2, other.getState(1), true);
        Trajectory const copy(&other, 2);
        EXPECT_EQ(theRun().scheduler.book.traj_created, created + 2);
        EXPECT_EQ(theRun().scheduler.book.state_created, states + 5)
            << "three states, two of them copied";
    }
    EXPECT_EQ(theRun().scheduler.book.traj_del, deleted + 2);
    EXPECT_EQ(theRun().scheduler.book.state_del, statesGone + 5);
    EXPECT_EQ(theRun().scheduler.book.trajel_del - elementsGone,
              theRun().scheduler.book.trajel_created - elements);
}

// ---- The truncated copy ----

TEST_F(WindowTest, ATruncatedCopyHoldsTheStatesBeforeTheStepInFull) {
    addEmpty(3);
    path.getState(1)->cover = 0.5;
    path.getState(1)->locked = false;
    Trajectory const copy(&path, 2);
    EXPECT_EQ(copy.states.size(), 2u);
    ASSERT_NE(copy.getState(1), nullptr);
    EXPECT_NE(copy.getState(1), path.getState(1));
    EXPECT_EQ(copy.getState(1)->cover, 0.5);
    EXPECT_TRUE(copy.getState(1)->locked) << "a full copy is locked";
    EXPECT_EQ(copy.getState(0)->getElt(pump.id("mode=off"))->prevTrans, stayOff);
    EXPECT_EQ(copy.currentTime, 1);
    EXPECT_EQ(copy.stepCount, 1);
}

TEST_F(WindowTest, ATruncatedCopyTakesTheFieldsOver) {
    addEmpty(6);
    path.rank = 2.0;
    path.proba = 0.25;
    path.setUnknown();
    path.transByTime.emplace();
    path.transByTime->insert({3, start});
    Trajectory const copy(&path, path.currentTime + 1);
    EXPECT_EQ(copy.firstTime, 2);
    EXPECT_EQ(copy.currentTime, 6);
    EXPECT_EQ(copy.rank, 2.0);
    EXPECT_EQ(copy.proba, 0.25);
    EXPECT_TRUE(copy.isUnknown());
    ASSERT_TRUE(copy.transByTime.has_value());
    EXPECT_EQ(*copy.transByTime, (Trajectory::TransByTime{{3, start}}));
    EXPECT_EQ(copy.timeCorr, path.timeCorr);
}

TEST_F(WindowTest, ATruncatedCopyKeepsTheWholeTimeTable) {
    addEmpty(3);
    Trajectory const copy(&path, 1);
    EXPECT_EQ(copy.timeCorr, path.timeCorr);
    EXPECT_FALSE(copy.transByTime.has_value());
    EXPECT_FALSE(copy.isUnknown());
}

// ---- addState ----

TEST_F(WindowTest, AddStateAtTheNextStepAdvances) {
    auto state = emptyState();
    State* added = state.get();
    EXPECT_EQ(path.addState(1, std::move(state)), nullptr);
    EXPECT_EQ(path.currentTime, 1);
    EXPECT_EQ(path.stepCount, 1);
    EXPECT_EQ(path.getLastState(), added);
    EXPECT_EQ(path.firstTime, 0);
}

TEST_F(WindowTest, AddStateAtTheCurrentStepReplacesAndHandsTheOldStateOut) {
    State const* before = addEmpty();
    unsigned const deleted = theRun().scheduler.book.state_del;
    auto state = emptyState();
    State* added = state.get();
    std::unique_ptr<State> const handedOut = path.addState(1, std::move(state));
    EXPECT_EQ(handedOut.get(), before);
    EXPECT_EQ(theRun().scheduler.book.state_del, deleted);
    EXPECT_EQ(path.getState(1), added);
    EXPECT_EQ(path.currentTime, 1);
    EXPECT_EQ(path.stepCount, 1);
    EXPECT_EQ(path.states.size(), 2u);
}

TEST_F(WindowTest, OnlyTheNextStepAdvances) {
    path.addState(2, emptyState());
    EXPECT_EQ(path.currentTime, 0);
    EXPECT_EQ(path.stepCount, 0);
    path.addCopyState(3, path.getState(0), true);
    EXPECT_EQ(path.currentTime, 0);
    EXPECT_EQ(path.stepCount, 0);
}

TEST_F(WindowTest, AnUnknownStateMakesTheHistoryUnknown) {
    addEmpty();
    EXPECT_FALSE(path.isUnknown());
    auto state = emptyState();
    state->setUnknown();
    path.addState(2, std::move(state));
    EXPECT_TRUE(path.isUnknown());
    addEmpty();
    EXPECT_TRUE(path.isUnknown()) << "and it stays so";
}

// ---- addCopyState ----

TEST_F(WindowTest, AddCopyStateCopiesInFullOrNot) {
    path.addCopyState(1, path.getState(0), true);
    EXPECT_EQ(elt(1, pump, "mode=off")->prevTrans, stayOff);
    EXPECT_TRUE(path.getState(1)->locked);
    path.addCopyState(2, path.getState(0), false);
    EXPECT_EQ(elt(2, pump, "mode=off")->prevTrans, nullptr);
    EXPECT_FALSE(path.getState(2)->locked);
    EXPECT_EQ(path.currentTime, 2);
    EXPECT_EQ(path.stepCount, 2);
}

TEST_F(WindowTest, AddCopyStateDestroysTheStateThatStoodThere) {
    addEmpty();
    unsigned const deleted = theRun().scheduler.book.state_del;
    path.addCopyState(1, path.getState(0), true);
    EXPECT_EQ(theRun().scheduler.book.state_del, deleted + 1);
    EXPECT_EQ(path.getState(1)->elts.size(), 5u);
    EXPECT_EQ(path.currentTime, 1);
    EXPECT_EQ(path.stepCount, 1);
}

TEST_F(WindowTest, AStateMayBeReplacedByACopyOfItself) {
    path.addCopyState(0, path.getState(0), false);
    EXPECT_EQ(path.getState(0)->elts.size(), 5u);
    EXPECT_EQ(elt(0, pump, "mode=off")->prevTrans, nullptr);
}

TEST_F(WindowTest, ACopyOfAnUnknownStateMakesTheHistoryUnknown) {
    path.addCopyState(1, path.getState(0), true);
    EXPECT_FALSE(path.isUnknown());
    State source{theRun().scheduler.book};
    source.setUnknown();
    path.addCopyState(2, &source, false);
    EXPECT_TRUE(path.isUnknown());
}

// ---- Rank ----

TEST_F(WindowTest, TheRankOfAStateIsTheNumberOfItsFailures) {
    EXPECT_EQ(path.getStateRank(path.getState(0)), 0.0) << "two nominal transitions";
    EXPECT_EQ(path.getStateRank(failure().get()), 1.0);
    auto const twice = failure();
    TrajEl const off(theRun().scheduler.book, pump["mode=off"], nullptr, nullptr, labelFalse);
    twice->addElt(&off, false)->prevTrans = die;
    EXPECT_EQ(path.getStateRank(twice.get()), 2.0);
    EXPECT_EQ(path.getStateRank(emptyState().get()), 0.0);
}

TEST_F(WindowTest, TheRankCountsTheFailuresOfAllStatesAdded) {
    path.addState(1, failure());
    EXPECT_EQ(path.rank, 1.0);
    path.addCopyState(2, path.getState(1), true);
    EXPECT_EQ(path.rank, 2.0);
    path.addCopyState(3, path.getState(1), false);
    EXPECT_EQ(path.rank, 2.0) << "a copy without transitions has no failures";
    path.addState(3, failure());
    EXPECT_EQ(path.rank, 3.0);
    addEmpty(5);
    EXPECT_EQ(path.firstTime, 4);
    EXPECT_EQ(path.rank, 3.0) << "also those that have left the window";
}

// With a window of one state the state added is the one that the old one is folded into: the fold
// gives it the pump with its idle transition, here a failure.
TEST_F(WindowTest, TheFoldComesBeforeTheRankInOneAdditionAndAfterItInTheOther) {
    theRun().scheduler.book.twd = 1;
    stayOff->type = transFail;
    printed([&] {
        Trajectory added(theRun().scheduler.book, &atoms);
        added.addState(1, emptyState());
        EXPECT_EQ(added.rank, 1.0);
        Trajectory copied(theRun().scheduler.book, &atoms);
        copied.addCopyState(1, emptyState().get(), false);
        EXPECT_EQ(copied.rank, 0.0);
        EXPECT_EQ(copied.getState(1)->getElt(pump.id("mode=off"))->prevTrans, stayOff);
    });
    theRun().scheduler.book.twd = 5;
}

// ---- Taking away ----

TEST_F(WindowTest, RemovingTheLastStateDestroysIt) {
    addEmpty(2);
    unsigned const deleted = theRun().scheduler.book.state_del;
    path.removeLastState();
    EXPECT_EQ(theRun().scheduler.book.state_del, deleted + 1);
    EXPECT_EQ(steps(), (std::vector<int>{0, 1}));
    EXPECT_EQ(path.currentTime, 1);
    EXPECT_EQ(path.stepCount, 2);
}

TEST_F(WindowTest, TheCountOfStepsIsNotTakenDown) {
    addEmpty();
    path.removeLastState();
    addEmpty();
    EXPECT_EQ(path.currentTime, 1);
    EXPECT_EQ(path.stepCount, 2);
}

TEST_F(WindowTest, AStateCanBeTakenOutAndPutBackWithoutOtherEffects) {
    path.addState(1, failure());
    std::unique_ptr<State> taken = path.takeState(1);
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(path.getState(1), nullptr);
    EXPECT_EQ(path.currentTime, 1);
    State const* raw = taken.get();
    path.putState(1, std::move(taken));
    EXPECT_EQ(path.getState(1), raw);
    EXPECT_EQ(path.rank, 1.0);
    EXPECT_EQ(path.stepCount, 1);
    EXPECT_EQ(path.takeState(9), nullptr);
}

// ---- The window moves ----

TEST_F(WindowTest, FiveStatesFitTheWindow) {
    addEmpty(4);
    EXPECT_EQ(steps(), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(path.firstTime, 0);
    EXPECT_TRUE(path.getState(1)->elts.empty());
}

// The names "p" and "t" have their character codes as places in the table, so "p" comes first.
TEST_F(WindowTest, TheSixthStateMovesTheWindow) {
    addEmpty(4);
    unsigned const deleted = theRun().scheduler.book.state_del;
    auto state = emptyState();
    EXPECT_EQ(printed([&] { path.addState(5, std::move(state)); }),
              "[addComp] --> timestep : 1 -- p\n"
              "[addComp] --> timestep : 1 -- t\n");
    EXPECT_EQ(steps(), (std::vector<int>{1, 2, 3, 4, 5}));
    EXPECT_EQ(path.states.count(0), 0u);
    EXPECT_EQ(theRun().scheduler.book.state_del, deleted + 1);
    EXPECT_EQ(path.firstTime, 1);
    EXPECT_EQ(path.currentTime, 5);
    EXPECT_EQ(path.stepCount, 5);
}

TEST_F(WindowTest, TheNewFirstStateHoldsEveryComponentAndIsLockedForGood) {
    addEmpty(5);
    State const* first = path.getState(1);
    EXPECT_EQ(first->elts.size(), 5u);
    EXPECT_EQ(first->comps.size(), 2u);
    EXPECT_TRUE(first->locked);
    EXPECT_EQ(elt(1, pump, "mode=off")->label, "true");
    EXPECT_EQ(elt(1, pump, "mode=off")->lock, 3);
    EXPECT_EQ(elt(1, pump, "mode=on")->lock, 4);
    EXPECT_EQ(elt(1, pump, "mode=dead")->lock, 4);
    EXPECT_EQ(elt(1, tank, "mode=low")->lock, 3);
    EXPECT_EQ(elt(1, tank, "mode=high")->lock, 4);
    EXPECT_EQ(elt(1, pump, "mode=off")->prevTrans, stayOff);
    EXPECT_EQ(elt(1, tank, "mode=low")->prevTrans, stayLow);
}

TEST_F(WindowTest, TheTimeOfTheStateThatLeftIsForgotten) {
    addEmpty(4);
    EXPECT_EQ(path.getTimeCorr(0), 0.0);
    addEmpty();
    EXPECT_EQ(path.timeCorr, (std::vector<std::pair<int, double>>{
                                 {1, 10.0}, {2, 20.0}, {3, 30.0}, {4, 40.0}, {5, 50.0}}));
    EXPECT_EQ(path.getTimeCorr(0), 9999.0);
}

TEST_F(WindowTest, FoldingWithoutATimeTableIsPossible) {
    path.timeCorr.clear();
    printed([&] {
        for (int t = 1; t <= 5; ++t)
            path.addState(t, emptyState());
    });
    EXPECT_EQ(path.firstTime, 1);
    EXPECT_TRUE(path.timeCorr.empty());
}

// The pump was switched on at step 1; only the tank is older.
TEST_F(WindowTest, AComponentThatTheNextStateHoldsIsNotFolded) {
    addEmpty();
    printed([&] { path.addComp(&pump.comp, path.getState(1), 1, false, false); });
    elt(1, pump, "mode=off")->setLabel(labelFalse);
    elt(1, pump, "mode=on")->setLabel(labelTrue);
    path.getState(1)->setPrevTrans(pump.id("mode=on"), start);
    addEmpty(3);
    auto state = emptyState();
    EXPECT_EQ(printed([&] { path.addState(5, std::move(state)); }),
              "[addComp] --> timestep : 1 -- t\n");
    EXPECT_EQ(elt(1, pump, "mode=on")->label, "true");
    EXPECT_EQ(elt(1, pump, "mode=on")->prevTrans, start);
    EXPECT_EQ(elt(1, pump, "mode=on")->lock, 3);
    EXPECT_EQ(elt(1, pump, "mode=off")->lock, 4);
}

// A component that the oldest state has elements of, but was not given, is not folded.
TEST_F(WindowTest, OnlyTheComponentsOfTheOldestStateAreFolded) {
    path.getState(0)->comps.erase("t");
    addEmpty(5);
    EXPECT_EQ(path.getState(1)->elts.size(), 3u);
    EXPECT_EQ(path.getState(1)->comps.count("t"), 0u);
}

TEST_F(WindowTest, AddCopyStateMovesTheWindowToo) {
    addEmpty(4);
    printed([&] { path.addCopyState(5, path.getState(4), false); });
    EXPECT_EQ(path.firstTime, 1);
    EXPECT_EQ(steps(), (std::vector<int>{1, 2, 3, 4, 5}));
    EXPECT_EQ(elt(1, pump, "mode=off")->lock, 3);
}

TEST_F(WindowTest, TheWindowKeepsItsLengthAndWhatItKnows) {
    for (int t = 1; t <= 40; ++t) {
        addEmpty();
        ASSERT_LE(path.states.size(), 5u);
        ASSERT_EQ(path.firstTime, std::max(0, t - 4));
        ASSERT_EQ(path.currentTime, t);
        ASSERT_EQ(path.timeCorr.size(), path.states.size());
        std::vector<int> expected;
        for (int u = path.firstTime; u <= t; ++u)
            expected.push_back(u);
        ASSERT_EQ(steps(), expected);
    }
    EXPECT_EQ(elt(36, pump, "mode=off")->label, "true");
    EXPECT_EQ(elt(36, tank, "mode=low")->label, "true");
    EXPECT_TRUE(path.getState(37)->elts.empty());
}

}  // namespace
