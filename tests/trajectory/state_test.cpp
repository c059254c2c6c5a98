// A state: the initial one, its lookups, locks, formulas, probabilities and text.
#include "fixtures/the_run.h"
#include "model/Clause.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::emptyState;
using trajectory_fixture::formulaOf;
using trajectory_fixture::Literals;
using trajectory_fixture::printed;
using trajectory_fixture::PumpAndTank;
using trajectory_fixture::stateOf;
using trajectory_fixture::Unit;

namespace {

TEST(StateStart, AnEmptyStateHasItsDefaults) {
    State const state{theRun().scheduler.book};
    EXPECT_TRUE(state.elts.empty());
    EXPECT_EQ(state.failCount, 0.0);
    EXPECT_EQ(state.cover, 0.0);
    EXPECT_EQ(state.proba, 0.0);
    EXPECT_EQ(state.prevTransProb, 0.0);
    EXPECT_EQ(state.obsProb, 1.0);
    EXPECT_EQ(state.prevTransCount, 0);
    EXPECT_TRUE(state.postProbs.empty());
    EXPECT_TRUE(state.sortedPostProbs.empty());
    EXPECT_TRUE(state.atomPostProbs.empty());
    EXPECT_TRUE(state.comps.empty());
    EXPECT_FALSE(state.locked);
    EXPECT_FALSE(state.observed);
    EXPECT_FALSE(state.unknown);
    EXPECT_TRUE(state.observations.empty());
}

class StateTest : public testing::Test, protected PumpAndTank {
protected:
    TrajEl* elt(State const& state, Unit const& unit, char const* atom) const {
        return state.getElt(unit.id(atom));
    }
};

// ---- The initial state ----

TEST_F(StateTest, TheInitialStateTakesLabelsAndSupportsOfTheAtoms) {
    Clause clause(&pump.comp);
    pump["mode=on"]->support = &clause;
    pump["mode=dead"]->setLabel(labelUnknown);
    State const state(theRun().scheduler.book, &atoms);
    EXPECT_EQ(state.elts.size(), 5u);
    EXPECT_EQ(elt(state, pump, "mode=off")->label, "true");
    EXPECT_EQ(elt(state, pump, "mode=on")->label, "false");
    EXPECT_EQ(elt(state, pump, "mode=dead")->label, "unknown");
    EXPECT_EQ(elt(state, tank, "mode=low")->label, "true");
    EXPECT_EQ(elt(state, pump, "mode=on")->support, &clause);
    EXPECT_EQ(elt(state, pump, "mode=off")->support, nullptr);
    EXPECT_EQ(elt(state, pump, "mode=off")->atom, pump["mode=off"]);
    EXPECT_EQ(elt(state, pump, "mode=off")->lock, 2);
    EXPECT_EQ(state.elts.find("p.mode=off")->first, pump.id("mode=off"))
        << "keyed by the atom's id";
}

// Idle transitions have off, on, low and high; the guards of on and high do not hold.
TEST_F(StateTest, TheInitialStateIsReachedByTheIdleTransitionsWhoseGuardsHold) {
    State const state(theRun().scheduler.book, &atoms);
    EXPECT_EQ(elt(state, pump, "mode=off")->prevTrans, stayOff);
    EXPECT_EQ(elt(state, tank, "mode=low")->prevTrans, stayLow);
    EXPECT_EQ(elt(state, pump, "mode=on")->prevTrans, nullptr);
    EXPECT_EQ(elt(state, pump, "mode=dead")->prevTrans, nullptr);
    EXPECT_EQ(elt(state, tank, "mode=high")->prevTrans, nullptr);
    EXPECT_EQ(state.prevTransCount, 2);
    ASSERT_EQ(state.comps.size(), 2u);
    EXPECT_EQ(state.comps.find("p")->second, &pump.comp);
    EXPECT_EQ(state.comps.find("t")->second, &tank.comp);
}

// 0.5 of the pump times 0.75 of the tank.
TEST_F(StateTest, TheInitialStateIsAsProbableAsItsTransitions) {
    State const state(theRun().scheduler.book, &atoms);
    EXPECT_EQ(state.prevTransProb, 0.375);
    EXPECT_EQ(state.proba, 0.375);
    EXPECT_EQ(state.cover, 0.0);
    EXPECT_EQ(state.obsProb, 1.0);
    EXPECT_EQ(state.failCount, 0.0);
    EXPECT_TRUE(state.locked);
    EXPECT_FALSE(state.observed);
    EXPECT_FALSE(state.unknown);
    EXPECT_TRUE(state.observations.empty());
    EXPECT_TRUE(state.postProbs.empty());
}

// No transition keeps the pump dead, so its component is none that the state was given.
TEST_F(StateTest, AComponentWithoutAnIdleTransitionThatHoldsIsNotEntered) {
    pump["mode=dead"]->set();
    State const state(theRun().scheduler.book, &atoms);
    EXPECT_EQ(state.comps.count("p"), 0u);
    EXPECT_EQ(state.comps.count("t"), 1u);
    EXPECT_EQ(state.prevTransCount, 1);
    EXPECT_EQ(state.proba, 0.75);
}

// The guard of the idle transition looks at the tank, which is low.
TEST_F(StateTest, AnIdleTransitionIsTakenOnlyWhenItsWholeGuardHolds) {
    pump["mode=off"]->idleTrans->pre->addAtom(tank["mode=high"], true);
    pump["mode=off"]->idleTrans->pre->setOperat("and");
    State const state(theRun().scheduler.book, &atoms);
    EXPECT_EQ(elt(state, pump, "mode=off")->prevTrans, nullptr);
    EXPECT_EQ(state.prevTransCount, 1);
}

// A model error: the idle transition was made without a guard.
TEST_F(StateTest, AnIdleTransitionWithoutAGuardIsToldAndLeftOut) {
    pump["mode=off"]->idleTrans->pre = nullptr;
    testing::internal::CaptureStderr();
    State const state(theRun().scheduler.book, &atoms);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string("the idle transition of ") +
                                                          pump["mode=off"]->getId() +
                                                          " has no guard or no component\n");
    EXPECT_EQ(elt(state, pump, "mode=off")->prevTrans, nullptr);
    EXPECT_EQ(state.prevTransCount, 1);
}

// ---- Lookups and entries ----

TEST_F(StateTest, LooksUpByTextAndEntersNothing) {
    State const state(theRun().scheduler.book, &atoms);
    std::string const text = "p.mode=on";
    ASSERT_NE(state.getElt(text.c_str()), nullptr);
    EXPECT_EQ(state.getElt(text.c_str())->atom, pump["mode=on"]);
    EXPECT_EQ(state.getElt("p.mode=stuck"), nullptr);
    EXPECT_EQ(state.elts.size(), 5u);
}

TEST_F(StateTest, AddEltEntersACopyThatKeepsItsLockAndTransitionOnlyWhenTold) {
    State state{theRun().scheduler.book};
    TrajEl source(theRun().scheduler.book, pump["mode=off"], stayOff, nullptr, labelTrue);
    source.lock = LOCK_TRUE_PERM;
    source.propagationNumber = 5;
    TrajEl* free = state.addElt(&source, false);
    EXPECT_NE(free, &source);
    EXPECT_EQ(state.getElt(pump.id("mode=off")), free);
    EXPECT_EQ(free->lock, 2);
    EXPECT_EQ(free->prevTrans, nullptr);
    EXPECT_EQ(free->propagationNumber, 5);
    TrajEl* kept = state.addElt(&source, true);
    EXPECT_EQ(kept->lock, 3);
    EXPECT_EQ(kept->prevTrans, stayOff);
    EXPECT_EQ(state.elts.size(), 1u);
}

// What was replaced may still be the consequence of another element, so it lives as long as the
// state.
TEST_F(StateTest, AReplacedElementIsNotDestroyedBeforeTheState) {
    unsigned const deleted = theRun().scheduler.book.trajel_del;
    TrajEl const source(theRun().scheduler.book, pump["mode=off"], nullptr, nullptr, labelTrue);
    {
        State state{theRun().scheduler.book};
        TrajEl* first = state.addElt(&source, false);
        first->propagationNumber = 9;
        TrajEl* second = state.addElt(&source, false);
        EXPECT_NE(first, second);
        EXPECT_EQ(state.getElt(pump.id("mode=off")), second);
        EXPECT_EQ(theRun().scheduler.book.trajel_del, deleted);
        EXPECT_EQ(first->propagationNumber, 9);
    }
    EXPECT_EQ(theRun().scheduler.book.trajel_del, deleted + 2);
}

TEST_F(StateTest, RemovingAnElementTakesItOutOfAllConsequences) {
    std::unique_ptr<State> const state = stateOf({&pump});
    TrajEl* off = elt(*state, pump, "mode=off");
    TrajEl* on = elt(*state, pump, "mode=on");
    TrajEl* dead = elt(*state, pump, "mode=dead");
    off->consequences = {on, dead, on};
    TrajEl* replaced = off;
    off = state->addElt(off, false);
    off->consequences = {dead, on};
    unsigned const deleted = theRun().scheduler.book.trajel_del;
    state->removeElt(pump.id("mode=on"));
    EXPECT_EQ(theRun().scheduler.book.trajel_del, deleted + 1);
    EXPECT_EQ(state->getElt(pump.id("mode=on")), nullptr);
    EXPECT_EQ(state->elts.size(), 2u);
    EXPECT_EQ(off->consequences, (std::vector<TrajEl*>{dead}));
    EXPECT_EQ(replaced->consequences, (std::vector<TrajEl*>{dead}));
    state->removeElt(pump.id("mode=on"));
    EXPECT_EQ(theRun().scheduler.book.trajel_del, deleted + 1)
        << "what is not there is not removed";
}

TEST_F(StateTest, SetsThePreviousTransitionByIdOrByElement) {
    State const initial(theRun().scheduler.book, &atoms);
    State state(&initial, false);
    state.setPrevTrans(pump.id("mode=on"), start);
    EXPECT_EQ(elt(state, pump, "mode=on")->prevTrans, start);
    state.setPrevTrans(elt(state, pump, "mode=on"), stayOn);
    EXPECT_EQ(elt(state, pump, "mode=on")->prevTrans, stayOn);
    state.setPrevTrans(pump.id("mode=on"), nullptr);
    EXPECT_EQ(elt(state, pump, "mode=on")->prevTrans, nullptr);
}

TEST_F(StateTest, ClearDestroysTheElements) {
    unsigned const deleted = theRun().scheduler.book.trajel_del;
    State state(theRun().scheduler.book, &atoms);
    state.clear();
    EXPECT_TRUE(state.elts.empty());
    EXPECT_EQ(theRun().scheduler.book.trajel_del, deleted + 5);
}

TEST_F(StateTest, SetUnknownMarksTheState) {
    State state{theRun().scheduler.book};
    state.setUnknown();
    EXPECT_TRUE(state.unknown);
}

TEST_F(StateTest, StatesAndElementsAreCountedInAndOut) {
    unsigned const states = theRun().scheduler.book.state_created;
    unsigned const statesGone = theRun().scheduler.book.state_del;
    unsigned const elements = theRun().scheduler.book.trajel_created;
    unsigned const elementsGone = theRun().scheduler.book.trajel_del;
    {
        State const empty{theRun().scheduler.book};
        EXPECT_EQ(theRun().scheduler.book.state_created, states + 1);
        State const initial(theRun().scheduler.book, &atoms);
        EXPECT_EQ(theRun().scheduler.book.state_created, states + 2);
        State const copy(&initial, true);
        EXPECT_EQ(theRun().scheduler.book.state_created, states + 3);
        EXPECT_EQ(theRun().scheduler.book.trajel_created, elements + 10);
        EXPECT_EQ(theRun().scheduler.book.state_del, statesGone);
    }
    EXPECT_EQ(theRun().scheduler.book.state_created, states + 3);
    EXPECT_EQ(theRun().scheduler.book.state_del, statesGone + 3);
    EXPECT_EQ(theRun().scheduler.book.trajel_created, elements + 10);
    EXPECT_EQ(theRun().scheduler.book.trajel_del, elementsGone + 10);
}

// ---- Locks ----

TEST_F(StateTest, PermanentLocksFixWhatIsTrueAndItsSiblings) {
    State const initial(theRun().scheduler.book, &atoms);
    State state(&initial, false);
    EXPECT_FALSE(state.locked);
    state.lockStatePerm();
    EXPECT_TRUE(state.locked);
    EXPECT_EQ(elt(state, pump, "mode=off")->lock, 3);
    EXPECT_EQ(elt(state, pump, "mode=on")->lock, 4);
    EXPECT_EQ(elt(state, pump, "mode=dead")->lock, 4);
    EXPECT_EQ(elt(state, tank, "mode=low")->lock, 3);
    EXPECT_EQ(elt(state, tank, "mode=high")->lock, 4);
}

TEST_F(StateTest, PermanentLocksSkipElementsThatAreLockedAlready) {
    for (int const lock : {0, 1, 3, 4}) {
        State const initial(theRun().scheduler.book, &atoms);
        State state(&initial, false);
        elt(state, pump, "mode=off")->lock = lock;
        state.lockStatePerm();
        EXPECT_EQ(elt(state, pump, "mode=off")->lock, lock);
        EXPECT_EQ(elt(state, pump, "mode=on")->lock, 2) << "nor are its siblings touched";
        EXPECT_EQ(elt(state, tank, "mode=low")->lock, 3);
    }
}

TEST_F(StateTest, PermanentLocksLeaveAVariableWithoutATrueElementFree) {
    State const initial(theRun().scheduler.book, &atoms);
    State state(&initial, false);
    elt(state, pump, "mode=off")->setLabel(labelUnknown);
    state.lockStatePerm();
    EXPECT_EQ(elt(state, pump, "mode=off")->lock, 2);
    EXPECT_EQ(elt(state, pump, "mode=on")->lock, 2);
    EXPECT_EQ(elt(state, pump, "mode=dead")->lock, 2);
    EXPECT_TRUE(state.locked);
}

// A temporary lock of a sibling gives way to the permanent one.
TEST_F(StateTest, PermanentLocksReplaceTheLocksOfSiblings) {
    State const initial(theRun().scheduler.book, &atoms);
    State state(&initial, false);
    elt(state, pump, "mode=on")->lock = LOCK_FALSE;
    state.lockStatePerm();
    EXPECT_EQ(elt(state, pump, "mode=on")->lock, 4);
}

// ---- Formulas ----

class FormulaTest : public StateTest {
protected:
    // Whether a formula of these literals holds; the pump is off, the tank is low.
    bool holds(Literals const& literals, char const* operat) const {
        State const ignored{theRun().scheduler.book};
        return ignored.evalStateFormula(formulaOf(literals, operat).get(), &state);
    }
    std::pair<Atom*, bool> off(bool sign) const { return {pump["mode=off"], sign}; }
    std::pair<Atom*, bool> on(bool sign) const { return {pump["mode=on"], sign}; }
    std::pair<Atom*, bool> low(bool sign) const { return {tank["mode=low"], sign}; }

    State const state{theRun().scheduler.book, &atoms};
};

TEST_F(FormulaTest, AConjunctionNeedsAllLiteralsAndADisjunctionOne) {
    struct Case {
        Literals literals;
        bool all;
        bool any;
    };
    std::vector<Case> const cases = {
        {{off(true)}, true, true},
        {{off(false)}, false, false},
        {{on(true)}, false, false},
        {{on(false)}, true, true},
        {{off(true), low(true)}, true, true},
        {{off(true), on(true)}, false, true},
        {{on(true), off(true)}, false, true},
        {{on(true), low(false)}, false, false},
        {{on(false), low(true), off(true)}, true, true},
        {{on(false), low(false), off(true)}, false, true},
        {{}, true, false},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        EXPECT_EQ(holds(cases[i].literals, "and"), cases[i].all) << "case " << i;
        EXPECT_EQ(holds(cases[i].literals, ""), cases[i].all) << "case " << i;
        EXPECT_EQ(holds(cases[i].literals, "or"), cases[i].any) << "case " << i;
    }
}

TEST_F(FormulaTest, AnUnknownLabelHoldsWithNoPositiveSign) {
    TrajEl* element = state.getElt(pump.id("mode=off"));
    element->setLabel(labelUnknown);
    EXPECT_FALSE(holds({off(true)}, "and"));
    EXPECT_TRUE(holds({off(false)}, "and"));
}

TEST_F(FormulaTest, AnyOtherOperatorIsFalse) {
    auto const formula = formulaOf({off(true)}, "");
    formula->operat = "xor";
    EXPECT_FALSE(state.evalStateFormula(formula.get(), &state));
    formula->operat = "AND";
    EXPECT_FALSE(state.evalStateFormula(formula.get(), &state));
}

TEST_F(FormulaTest, NestedFormulasAndNegationPlayNoPart) {
    auto const formula = formulaOf({off(true)}, "and");
    formula->addStateFormula(formulaOf({on(true)}, "and"));
    formula->negated = true;
    EXPECT_TRUE(state.evalStateFormula(formula.get(), &state));
}

TEST_F(FormulaTest, ReadsTheStateGivenAndNotTheOneAsked) {
    State other(&state, false);
    other.getElt(pump.id("mode=off"))->setLabel(labelFalse);
    auto const formula = formulaOf({off(true)}, "and");
    EXPECT_TRUE(other.evalStateFormula(formula.get(), &state));
    EXPECT_FALSE(state.evalStateFormula(formula.get(), &other));
}

// ---- Probabilities ----

TEST_F(StateTest, ThePostProbabilityOfAnAbsentTransitionIsZeroAndEntersNothing) {
    State state{theRun().scheduler.book};
    state.postProbs[start->id] = 0.25;
    EXPECT_EQ(state.getTransitionPostProb(start), 0.25);
    EXPECT_EQ(state.getTransitionPostProb(fill), 0.0);
    EXPECT_EQ(state.postProbs.size(), 1u);
}

TEST_F(StateTest, EqualPostProbabilitiesStandInFrontOfOneAnother) {
    State state{theRun().scheduler.book};
    int id = 0;
    for (double const probability : {0.5, 0.25, 0.5, 0.75, 0.25})
        state.sortedPostProbs.insert({probability, id++});
    std::vector<int> ids;
    for (auto const& entry : state.sortedPostProbs)
        ids.push_back(entry.second);
    EXPECT_EQ(ids, (std::vector<int>{3, 2, 0, 4, 1}));
}

TEST_F(StateTest, TheProbabilityOfTheTransitionsInIsTheirProduct) {
    State const initial(theRun().scheduler.book, &atoms);
    State state(&initial, false);
    state.computePrevTransProb();
    EXPECT_EQ(state.prevTransProb, 1.0) << "without transitions";
    state.setPrevTrans(pump.id("mode=on"), start);
    state.computePrevTransProb();
    EXPECT_EQ(state.prevTransProb, 0.5);
    state.setPrevTrans(tank.id("mode=high"), fill);
    state.computePrevTransProb();
    EXPECT_EQ(state.prevTransProb, 0.125);
}

TEST_F(StateTest, TheGuardOfTheTransitionsInIsTheProductOfTheirPostProbabilities) {
    State const initial(theRun().scheduler.book, &atoms);
    State state(&initial, false);
    state.prevTransProb = 0.625;
    EXPECT_EQ(state.computePrevTransGuard(), 1.0);
    state.postProbs = {{start->id, 0.5}, {fill->id, 0.25}};
    state.setPrevTrans(pump.id("mode=on"), start);
    state.setPrevTrans(tank.id("mode=high"), fill);
    EXPECT_EQ(state.computePrevTransGuard(), 0.125);
    state.setPrevTrans(tank.id("mode=high"), stayHigh);
    EXPECT_EQ(state.computePrevTransGuard(), 0.0) << "a transition without an entry weighs nothing";
    EXPECT_EQ(state.prevTransProb, 0.625) << "nothing is stored";
}

// Transition 2 leaves two elements and counts once; null entries count nothing.
TEST_F(StateTest, TheGuardOfTheTransitionsOutCountsEachOnce) {
    State const initial(theRun().scheduler.book, &atoms);
    State state(&initial, false);
    EXPECT_EQ(state.computeNextTransGuard(), 1.0);
    start->guardProba = 0.5;
    fill->guardProba = 0.25;
    elt(state, pump, "mode=off")->nextTrans = {{0, nullptr}, {2, start}};
    elt(state, tank, "mode=low")->nextTrans = {{2, start}, {6, fill}};
    EXPECT_EQ(state.computeNextTransGuard(), 0.125);
}

// ---- Text ----

TEST_F(StateTest, ShowsItsElementsInOneLineEach) {
    Unit unit("u");
    unit.variable("mode", {"only"});
    string_map<Atom*> const only = trajectory_fixture::atomsOf({&unit});
    State state(theRun().scheduler.book, &only);
    state.proba = 0.25;
    state.cover = 0.125;
    state.getElt(unit.id("mode=only"))->propagationNumber = 4;
    state.getElt(unit.id("mode=only"))->lock = LOCK_TRUE_PERM;
    EXPECT_EQ(printed([&] { state.showState(std::cout); }),
              "proba : 0.25\n"
              "cover : 0.125\n"
              "u.mode=only --true (4)  -- 3\n");
}

TEST_F(StateTest, ShowsItselfInFullAsItsElementsInFull) {
    State const state(theRun().scheduler.book, &atoms);
    std::string expected;
    for (auto const& entry : state.elts)
        expected += printed([&] { entry.second->showTrajEl(std::cout, true); });
    EXPECT_EQ(printed([&] { state.showFullState(std::cout); }), expected);
    EXPECT_NE(expected.find("p.mode=off --> [1]\n"), std::string::npos);
    EXPECT_EQ(printed([] { State(theRun().scheduler.book).showFullState(std::cout); }), "");
    EXPECT_EQ(printed([] { State(theRun().scheduler.book).showState(std::cout); }),
              "proba : 0\ncover : 0\n");
}

}  // namespace
