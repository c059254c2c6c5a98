// Giving components and elements to the states of a history, and taking them away.
#include "fixtures/the_run.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::atomsOf;
using trajectory_fixture::emptyState;
using trajectory_fixture::printed;
using trajectory_fixture::PumpHistory;
using trajectory_fixture::Unit;

namespace {

class CompTest : public testing::Test, protected PumpHistory {
protected:
    CompTest() { addEmpty(2); }

    // What the addition prints.
    std::string add(Comp& comp, int t, bool idle = false, bool keepLocks = false) {
        return printed([&] { path.addComp(&comp, path.getState(t), t, idle, keepLocks); });
    }
    TrajEl* elt(int t, Unit const& unit, char const* atom) const {
        return path.getState(t)->getElt(unit.id(atom));
    }
};

// ---- addComp ----

TEST_F(CompTest, TellsWhatIsAddedWhere) {
    EXPECT_EQ(add(pump.comp, 2), "[addComp] --> timestep : 2 -- p\n");
    EXPECT_EQ(add(tank.comp, 1, true, true), "[addComp] --> timestep : 1 -- t (locked)\n");
}

TEST_F(CompTest, CopiesTheElementsOfOneComponent) {
    add(pump.comp, 2);
    State const* state = path.getState(2);
    EXPECT_EQ(state->elts.size(), 3u);
    ASSERT_EQ(state->comps.size(), 1u);
    EXPECT_EQ(state->comps.begin()->first, pump.comp.getName());
    EXPECT_EQ(state->comps.begin()->second, &pump.comp);
    EXPECT_EQ(elt(2, pump, "mode=off")->label, "true");
    EXPECT_EQ(elt(2, pump, "mode=on")->label, "false");
    EXPECT_NE(elt(2, pump, "mode=off"), elt(0, pump, "mode=off"));
}

TEST_F(CompTest, TakesTheNewestElementsFromBeforeTheStep) {
    add(pump.comp, 1);
    elt(1, pump, "mode=off")->setLabel(labelUnknown);
    add(pump.comp, 2);
    EXPECT_EQ(elt(2, pump, "mode=off")->label, "unknown");
    elt(2, pump, "mode=off")->setLabel(labelFalse);
    add(pump.comp, 2);
    EXPECT_EQ(elt(2, pump, "mode=off")->label, "unknown") << "not those of the step itself";
}

TEST_F(CompTest, TheStateNeedNotBelongToTheHistory) {
    State loose{theRun().scheduler.book};
    printed([&] { path.addComp(&pump.comp, &loose, 2, false, false); });
    EXPECT_EQ(loose.elts.size(), 3u);
    EXPECT_TRUE(path.getState(2)->elts.empty());
}

TEST_F(CompTest, FreesTheCopiesAndForgetsTheirTransitions) {
    elt(0, pump, "mode=off")->lock = LOCK_TRUE_PERM;
    for (bool const keepLocks : {false, true}) {
        add(pump.comp, 1, false, keepLocks);
        EXPECT_EQ(elt(1, pump, "mode=off")->lock, 2);
        EXPECT_EQ(elt(1, pump, "mode=off")->prevTrans, nullptr);
    }
    EXPECT_EQ(elt(0, pump, "mode=off")->prevTrans, stayOff) << "the source keeps its own";
    EXPECT_TRUE(elt(0, pump, "mode=off")->nextTrans.empty());
}

TEST_F(CompTest, WithIdleAModeThatHoldsGoesOn) {
    add(pump.comp, 1, true);
    EXPECT_EQ(elt(1, pump, "mode=off")->prevTrans, stayOff);
    EXPECT_EQ(elt(1, pump, "mode=on")->prevTrans, nullptr) << "on does not hold";
    EXPECT_EQ(elt(0, pump, "mode=off")->nextTrans, (TrajEl::Transitions{{0, stayOff}}));
    EXPECT_TRUE(elt(0, pump, "mode=on")->nextTrans.empty());
    EXPECT_TRUE(elt(1, pump, "mode=off")->nextTrans.empty()) << "copied before the entry";
}

TEST_F(CompTest, GoingOnReplacesTheSuccessorOfTheSameMode) {
    elt(0, pump, "mode=off")->addToNextTrans(start);
    add(pump.comp, 1, true);
    EXPECT_EQ(elt(0, pump, "mode=off")->nextTrans, (TrajEl::Transitions{{0, stayOff}}));
}

TEST_F(CompTest, AModeWithoutAnIdleTransitionGoesOnWithoutOne) {
    elt(0, pump, "mode=off")->setLabel(labelFalse);
    elt(0, pump, "mode=dead")->setLabel(labelTrue);
    add(pump.comp, 1, true);
    EXPECT_EQ(elt(1, pump, "mode=dead")->prevTrans, nullptr);
    EXPECT_TRUE(elt(0, pump, "mode=dead")->nextTrans.empty());
}

TEST_F(CompTest, CountsTheComponentsSize) {
    pump.comp.compSize = 3;
    path.getState(1)->prevTransCount = 4;
    add(pump.comp, 1);
    EXPECT_EQ(path.getState(1)->prevTransCount, 7);
    add(pump.comp, 1);
    EXPECT_EQ(path.getState(1)->prevTransCount, 10);
}

TEST_F(CompTest, SupportLinksInsideTheComponentCarryOver) {
    TrajEl* off = elt(0, pump, "mode=off");
    off->consequences = {elt(0, pump, "mode=dead"), elt(0, tank, "mode=low"),
                         elt(0, pump, "mode=on")};
    elt(0, tank, "mode=low")->consequences = {off};
    add(pump.comp, 1);
    EXPECT_EQ(elt(1, pump, "mode=off")->consequences,
              (std::vector<TrajEl*>{elt(1, pump, "mode=dead"), elt(1, pump, "mode=on")}))
        << "that of the tank has no element here";
    EXPECT_TRUE(elt(1, pump, "mode=on")->consequences.empty());
    add(tank.comp, 1);
    EXPECT_TRUE(elt(1, tank, "mode=low")->consequences.empty()) << "the pump is another component";
}

TEST_F(CompTest, OtherComponentsOfTheStateKeepTheirLinks) {
    add(tank.comp, 1);
    TrajEl* low = elt(1, tank, "mode=low");
    low->consequences = {elt(1, tank, "mode=high")};
    add(pump.comp, 1);
    EXPECT_EQ(elt(1, tank, "mode=low"), low);
    EXPECT_EQ(low->consequences, (std::vector<TrajEl*>{elt(1, tank, "mode=high")}));
}

TEST_F(CompTest, AnAtomWithoutAnEarlierElementIsToldAndLeftOut) {
    path.getState(0)->removeElt(pump.id("mode=dead"));
    EXPECT_EQ(add(pump.comp, 1),
              "[addComp] --> timestep : 1 -- p\n"
              "Error: atom not found... p.mode=dead\n");
    EXPECT_EQ(path.getState(1)->elts.size(), 2u);
    EXPECT_EQ(path.getState(1)->comps.count("p"), 1u);
}

// A component with one variable of each kind; all of its elements are locked at step 0.
class KindsTest : public testing::Test {
protected:
    KindsTest() {
        unit.variable<StateVar>("seen", {"yes", "no"})->type = typeObservable;
        unit.variable<CommandVar>("cmd", {"none", "go"});
        unit.variable("mode", {"rest", "work"});
        unit.stay(0, "mode=rest", 0.5);
        // No model makes a command or an observation the effect of a transition that idles.
        unit["seen=yes"]->idleTrans = unit["cmd=none"]->idleTrans = unit["mode=rest"]->idleTrans;
        atoms = atomsOf({&unit});
        path = std::make_unique<Trajectory>(theRun().scheduler.book, &atoms);
        path->addState(1, emptyState());
        for (auto const& entry : path->getState(0)->elts)
            entry.second->lock = LOCK_TRUE_PERM;
    }
    void add(bool idle, bool keepLocks) {
        printed([&] { path->addComp(&unit.comp, path->getState(1), 1, idle, keepLocks); });
    }
    TrajEl* elt(char const* atom) const { return path->getState(1)->getElt(unit.id(atom)); }

    Unit unit{"u"};
    string_map<Atom*> atoms;
    std::unique_ptr<Trajectory> path;
};

TEST_F(KindsTest, OnlyObservablesKeepTheirLocksAndOnlyWhenTold) {
    add(false, false);
    EXPECT_EQ(elt("seen=yes")->lock, 2);
    add(false, true);
    EXPECT_EQ(elt("seen=yes")->lock, 3);
    EXPECT_EQ(elt("seen=no")->lock, 3);
    EXPECT_EQ(elt("cmd=none")->lock, 2);
    EXPECT_EQ(elt("mode=rest")->lock, 2);
}

TEST_F(KindsTest, AKeptLockKeepsNoTransition) {
    path->getState(0)->setPrevTrans(unit.id("seen=yes"), unit["mode=rest"]->idleTrans);
    add(false, true);
    EXPECT_EQ(elt("seen=yes")->prevTrans, nullptr);
}

TEST_F(KindsTest, OnlyModesGoOnByTheirIdleTransition) {
    add(true, false);
    EXPECT_NE(elt("mode=rest")->prevTrans, nullptr);
    EXPECT_EQ(elt("seen=yes")->prevTrans, nullptr);
    EXPECT_EQ(elt("cmd=none")->prevTrans, nullptr);
    EXPECT_TRUE(path->getState(0)->getElt(unit.id("cmd=none"))->nextTrans.empty());
}

// ---- removeComp ----

TEST_F(CompTest, RemovesTheElementsOfOneComponent) {
    pump.comp.compSize = 3;
    add(pump.comp, 1);
    add(tank.comp, 1);
    unsigned const deleted = theRun().scheduler.book.trajel_del;
    path.removeComp(&pump.comp, 1);
    EXPECT_EQ(theRun().scheduler.book.trajel_del, deleted + 3);
    EXPECT_EQ(path.getState(1)->elts.size(), 2u);
    EXPECT_EQ(elt(1, pump, "mode=off"), nullptr);
    EXPECT_NE(elt(1, tank, "mode=low"), nullptr);
    EXPECT_EQ(path.getState(1)->comps.count("p"), 0u);
    EXPECT_EQ(path.getState(1)->comps.count("t"), 1u);
    EXPECT_EQ(path.getState(1)->prevTransCount, 0);
    EXPECT_EQ(path.getState(0)->elts.size(), 5u) << "other steps keep theirs";
}

TEST_F(CompTest, RemovingWhatIsNotThereTakesItsSizeAllTheSame) {
    pump.comp.compSize = 3;
    path.removeComp(&pump.comp, 1);
    EXPECT_EQ(path.getState(1)->prevTransCount, -3);
    EXPECT_TRUE(path.getState(1)->elts.empty());
}

// ---- insertElt ----

TEST_F(CompTest, InsertsAFreeCopy) {
    TrajEl* off = elt(0, pump, "mode=off");
    off->lock = LOCK_TRUE_PERM;
    path.insertElt(off, 2, false);
    ASSERT_EQ(path.getState(2)->elts.size(), 1u);
    EXPECT_NE(elt(2, pump, "mode=off"), off);
    EXPECT_EQ(elt(2, pump, "mode=off")->label, "true");
    EXPECT_EQ(elt(2, pump, "mode=off")->lock, 2);
}

TEST_F(CompTest, TheSourceAndNotTheCopyTakesTheIdleTransition) {
    TrajEl* off = elt(0, pump, "mode=off");
    off->prevTrans = start;
    path.insertElt(off, 2, false);
    EXPECT_EQ(off->prevTrans, stayOff);
    EXPECT_EQ(elt(2, pump, "mode=off")->prevTrans, nullptr);
}

TEST_F(CompTest, OnlyAModeThatHoldsTakesTheIdleTransition) {
    TrajEl* on = elt(0, pump, "mode=on");
    on->prevTrans = start;
    path.insertElt(on, 2, false);
    EXPECT_EQ(on->prevTrans, start) << "on does not hold";
    Unit unit("u");
    unit.variable<CommandVar>("cmd", {"none", "go"});
    unit["cmd=none"]->idleTrans = stayOff;
    TrajEl none(theRun().scheduler.book, unit["cmd=none"], nullptr, nullptr, labelTrue);
    path.insertElt(&none, 2, false);
    EXPECT_EQ(none.prevTrans, nullptr) << "a command is no mode";
    path.getState(2)->removeElt(unit.id("cmd=none"));
}

TEST_F(CompTest, WithRecursionTheConsequencesThatAreMissingFollow) {
    TrajEl* off = elt(0, pump, "mode=off");
    TrajEl* on = elt(0, pump, "mode=on");
    TrajEl* low = elt(0, tank, "mode=low");
    off->consequences = {on, low};
    on->consequences = {elt(0, pump, "mode=dead")};
    path.insertElt(low, 2, false);
    TrajEl const* there = elt(2, tank, "mode=low");
    path.insertElt(off, 2, true);
    EXPECT_NE(elt(2, pump, "mode=on"), nullptr);
    EXPECT_EQ(elt(2, tank, "mode=low"), there) << "what is there stays";
    EXPECT_EQ(elt(2, pump, "mode=dead"), nullptr) << "the recursion is one level deep";
    EXPECT_EQ(path.getState(2)->elts.size(), 3u);
}

TEST_F(CompTest, WithoutRecursionTheConsequencesStay) {
    TrajEl* off = elt(0, pump, "mode=off");
    off->consequences = {elt(0, pump, "mode=on")};
    path.insertElt(off, 2, false);
    EXPECT_EQ(path.getState(2)->elts.size(), 1u);
}

}  // namespace
