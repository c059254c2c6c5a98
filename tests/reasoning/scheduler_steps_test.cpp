// One nominal step of a trajectory: what is asserted, what fires, and what a step without a valid
// state leaves.
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

using namespace scheduler_fixture;

namespace {

constexpr char const* noState = "Error update the current state: no valid state found.\n";

// A valve, and beside it a pump with a command and a mode of its own.
//   pump.cmd: none, go; pump.mode: off, on
class NominalStep : public testing::Test {
protected:
    NominalStep() {
        pump = model.comp("pump");
        auto* cmd = model.variable<CommandVar>(pump, "cmd", {"none", "go"});
        auto* mode = model.variable<ModeVar>(pump, "mode", {"off", "on"});
        pumpNone = cmd->getAtomLinks()[0];
        go = cmd->getAtomLinks()[1];
        off = mode->getAtomLinks()[0];
        on = mode->getAtomLinks()[1];
    }

    // Builds the next state from *commands*; answers both streams.
    Streams step(std::vector<Atom*> commands, bool keepUnlocked = false) {
        return streamsOf([&] {
            theRun().sMM->constructNextNominalStateLarge(model.traj.get(), commands, keepUnlocked,
                                                         pending);
        });
    }
    void startValve() {
        model.addMoves();
        model.start();
    }
    // Beside the valve's mode, and always dark.
    void addLamp() {
        auto* lamp = model.variable<ModeVar>(model.valve, "lamp", {"dark", "lit"});
        HandModel::idle(model.valve, lamp->getAtomLinks()[0]);
    }
    using Transitions = std::vector<Transition*>;

    Valve model;
    PendingTransitions pending;
    Comp* pump = nullptr;
    Atom *pumpNone = nullptr, *go = nullptr, *off = nullptr, *on = nullptr;
};

// The component is pulled into the next state without its idle moves.
TEST_F(NominalStep, AModeBesideTheOneMovedIsReachedByNothing) {
    addLamp();
    startValve();
    step({model.open});
    TrajEl const* dark = model.traj->getState(1)->getElt("valve.lamp=dark");
    ASSERT_NE(dark, nullptr);
    EXPECT_TRUE(dark->evalTrajEl());
    EXPECT_EQ(dark->prevTrans, nullptr);
}

TEST_F(NominalStep, ACommandFiresTheTransitionThatItGuards) {
    startValve();
    theRun().sMM->simTime = 12.5;
    Streams const told = step({model.open});
    EXPECT_EQ(told.err, "");
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.label("valve.mode=open", 1), "true");
    EXPECT_EQ(model.label("valve.mode=closed", 1), "false");
    EXPECT_EQ(model.label("valve.mode=broken", 1), "false");
    // The state that the command was given in keeps its mode.
    EXPECT_EQ(model.label("valve.cmd=open", 0), "true");
    EXPECT_EQ(model.label("valve.cmd=none", 0), "false");
    EXPECT_EQ(model.label("valve.mode=closed", 0), "true");
    EXPECT_EQ(model.label("valve.mode=open", 0), "false");
    EXPECT_EQ(model.traj->getTimeCorr(1), 12.5);
    EXPECT_EQ(model.traj->rank, 0.0);
    EXPECT_NE(told.out.find("valve.mode=closed --------> valve.mode=open\n"), std::string::npos);
}

TEST_F(NominalStep, TheMoveIsLinkedAtBothEnds) {
    startValve();
    step({model.open});
    State const* from = model.traj->getState(0);
    State const* to = model.traj->getState(1);
    EXPECT_EQ(to->getElt("valve.mode=open")->prevTrans, model.opens);
    EXPECT_EQ(to->getElt("valve.mode=open")->index, 0);
    // What the step made false was not made by a transition.
    EXPECT_EQ(to->getElt("valve.mode=closed")->prevTrans, nullptr);
    for (char const* guard : {"valve.cmd=open", "valve.mode=closed"}) {
        auto const& leaving = from->getElt(guard)->nextTrans;
        auto const found = leaving.find(model.opens->id);
        ASSERT_NE(found, leaving.end()) << guard;
        EXPECT_EQ(found->second, model.opens);
    }
    EXPECT_EQ(model.rt.bridgeTrans, Transitions{model.opens});
}

TEST_F(NominalStep, CommandsAreLockedForGoodUnlessToldOtherwise) {
    startValve();
    step({model.close});
    EXPECT_EQ(model.lock("valve.cmd=close"), LOCK_TRUE_PERM);
    EXPECT_EQ(model.lock("valve.cmd=open"), LOCK_FALSE_PERM);
    EXPECT_EQ(model.lock("valve.cmd=none"), LOCK_FALSE_PERM);
}

TEST_F(NominalStep, CommandsMayStayUnlocked) {
    startValve();
    step({model.close}, true);
    EXPECT_EQ(model.label("valve.cmd=close"), "true");
    EXPECT_EQ(model.lock("valve.cmd=close"), LOCK_FREE);
    EXPECT_EQ(model.lock("valve.cmd=none"), LOCK_FREE);
}

TEST_F(NominalStep, WithoutAMoveTheTrajectoryStaysAtItsTime) {
    startValve();
    Streams const told = step({model.close});  // it is closed already
    EXPECT_EQ(told.err, "");
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
    EXPECT_EQ(model.traj->states.size(), 1u);
    EXPECT_EQ(model.label("valve.cmd=close", 0), "true");
    EXPECT_TRUE(model.rt.bridgeTrans.empty());
    EXPECT_EQ(model.traj->timeCorr.size(), 1u);  // of step 0
    EXPECT_EQ(theRun().scheduler.states_cover.count(1), 1u);
    EXPECT_EQ(theRun().scheduler.states_cover[1], 0.0);
}

TEST_F(NominalStep, TheCoverOfTheNextStepStartsAgain) {
    startValve();
    theRun().scheduler.states_cover[1] = 0.75;
    step({model.open});
    EXPECT_EQ(theRun().scheduler.states_cover[1], 0.0);
}

TEST_F(NominalStep, NeitherFailuresNorIdleTransitionsFire) {
    model.breaks = HandModel::transition(model.valve, {{true, model.open}, {true, model.isClosed}},
                                         {{true, model.isBroken}}, transFail);
    HandModel::transition(model.valve, {{true, model.open}, {true, model.isClosed}},
                          {{true, model.isClosed}}, transNominal, true);
    model.start();
    step({model.open});
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
    EXPECT_TRUE(model.rt.bridgeTrans.empty());
}

// The guard names both commands, so the transition is reached from each of them.
TEST_F(NominalStep, ATransitionIsTriedOnce) {
    Transition* both =
        HandModel::transition(model.valve, {{true, model.open}, {true, go}, {true, model.isClosed}},
                              {{true, model.isOpen}});
    model.start();
    step({model.open, go});
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.rt.bridgeTrans, Transitions{both});
}

TEST_F(NominalStep, TwoMovesMakeOneNextState) {
    model.addMoves();
    Transition* starts = HandModel::transition(pump, {{true, go}, {true, off}}, {{true, on}});
    model.start();
    step({go, model.open});
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.label("valve.mode=open"), "true");
    EXPECT_EQ(model.label("pump.mode=on"), "true");
    // In the order of the commands.
    EXPECT_EQ(model.rt.bridgeTrans, (Transitions{starts, model.opens}));
}

// The command of the valve forces the pump's command from none to go, and that starts the pump.
TEST_F(NominalStep, WhatTheCommandChangedFiresToo) {
    HandModel::exclude(pump, model.open, pumpNone);
    Transition* starts = HandModel::transition(pump, {{true, go}, {true, off}}, {{true, on}});
    model.start();
    step({model.open});
    EXPECT_EQ(model.label("pump.cmd=go", 0), "true");
    EXPECT_EQ(model.label("pump.mode=on", 1), "true");
    EXPECT_EQ(model.rt.bridgeTrans, Transitions{starts});
}

// Not all three of valve.cmd=open, pump.cmd=none and valve.mode=... : either of two repairs would
// do, and one of them is followed.
TEST_F(NominalStep, OneOfSeveralStatesStands) {
    Comp* third = model.comp("third");
    auto const& links = model.variable<CommandVar>(third, "cmd", {"none", "go"})->getAtomLinks();
    Clause* clause = thePlant().addClause(std::make_unique<Clause>(third));
    for (Atom* atom : {model.open, pumpNone, links[0]})
        clause->addAtomRef(atom, true);
    model.start();
    Streams const told = step({model.open});
    EXPECT_NE(told.out.find("res' size : 2"), std::string::npos) << told.out;
    EXPECT_NE(model.label("pump.cmd=go"), model.label("third.cmd=go"));
}

TEST_F(NominalStep, ACommandThatNoStateHoldsIsToldAndLeavesTheStateAsItWas) {
    startValve();
    // The closed mode goes on by its idle transition, so nothing may give way to the open one.
    Streams const told = step({model.isOpen});
    EXPECT_EQ(told.err, noState);
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
    EXPECT_EQ(model.traj->states.size(), 1u);
    EXPECT_EQ(model.label("valve.mode=open"), "false");
    EXPECT_EQ(model.label("valve.mode=closed"), "true");
    EXPECT_EQ(model.lock("valve.mode=open"), LOCK_FREE);
    EXPECT_EQ(model.lock("valve.mode=closed"), LOCK_FREE);
    EXPECT_TRUE(model.rt.bridgeConds.empty());
    // Nothing is lost: the trajectory goes on.
    EXPECT_EQ(step({model.open}).err, "");
    EXPECT_EQ(model.label("valve.mode=open"), "true");
}

TEST_F(NominalStep, AStateThatWasNotLockedIsNotLockedByAFailedStep) {
    startValve();
    model.traj->getState(0)->locked = false;
    EXPECT_EQ(step({model.isOpen}).err, noState);
    EXPECT_FALSE(model.traj->getState(0)->locked);
}

TEST_F(NominalStep, AForbiddenCommandIsRefused) {
    startValve();
    model.cmd->forbidden = true;
    EXPECT_EQ(step({model.open}).err, noState);
    EXPECT_EQ(model.label("valve.cmd=none"), "true");
    EXPECT_EQ(model.lock("valve.cmd=open"), LOCK_FREE);
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
}

// A failure adds to the rank, which a nominal step may not.
TEST_F(NominalStep, AFailureGivenAsACommandIsRefused) {
    startValve();
    EXPECT_EQ(step({model.isBroken}).err, noState);
    EXPECT_EQ(model.label("valve.mode=broken"), "false");
}

TEST_F(NominalStep, AnEffectThatNoStateHoldsHasNotFired) {
    // Two values of one mode.
    HandModel::transition(model.valve, {{true, model.open}, {true, model.isClosed}},
                          {{true, model.isOpen}, {true, model.isBroken}});
    model.start();
    Streams const told = step({model.open});
    EXPECT_EQ(told.err, noState);
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
    EXPECT_TRUE(model.rt.bridgeTrans.empty());
    EXPECT_EQ(model.traj->getState(0)->getElt("valve.cmd=open")->nextTrans.size(), 0u);
    EXPECT_EQ(told.out.find("-------->"), std::string::npos);
}

TEST_F(NominalStep, AnImpossibleEffectLeavesWhatFiredBefore) {
    Transition* starts = HandModel::transition(pump, {{true, go}, {true, off}}, {{true, on}});
    HandModel::transition(model.valve, {{true, model.open}, {true, model.isClosed}},
                          {{true, model.isOpen}, {true, model.isBroken}});
    model.start();
    EXPECT_EQ(step({go, model.open}).err, noState);
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.label("pump.mode=on"), "true");
    EXPECT_EQ(model.label("valve.mode=closed"), "true");
    EXPECT_EQ(model.traj->getState(1)->getElt("valve.mode=closed"), nullptr);
    EXPECT_EQ(model.rt.bridgeTrans, Transitions{starts});
}

// A mode and a command of another component: the mode is asserted, the command comes a step later.
TEST_F(NominalStep, ACommandAmongTheEffectsBecomesAnEvent) {
    HandModel::transition(model.valve, {{true, model.open}, {true, model.isClosed}},
                          {{true, model.isOpen}, {true, go}});
    model.start();
    step({model.open});
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.label("valve.mode=open", 1), "true");
    EXPECT_EQ(model.label("pump.cmd=go", 1), "false");
    ASSERT_EQ(theRun().sMM->scenario.count(1.0), 1u);
    EXPECT_TRUE(theRun().sMM->scenario[1.0]->isCommand);
    EXPECT_EQ(theRun().sMM->scenario[1.0]->atoms, std::vector<Atom*>{go});
}

// The next state holds the component of every atom of the effect, a command's too.
TEST_F(NominalStep, AnEffectOfCommandsAloneMakesAStep) {
    HandModel::transition(model.valve, {{true, model.open}, {true, model.isClosed}}, {{true, go}});
    model.start();
    step({model.open});
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    ASSERT_NE(model.traj->getState(1)->getElt("pump.cmd=go"), nullptr);
    EXPECT_EQ(model.label("pump.cmd=go", 1), "false");
    EXPECT_EQ(theRun().sMM->scenario[1.0]->atoms, std::vector<Atom*>{go});
}

// ---- The bridge ----

TEST_F(NominalStep, SettledAtomsWithTheMarkCrossTheBridge) {
    model.isOpen->bridged = model.isClosed->bridged = model.open->bridged = true;
    startValve();
    step({model.open});
    std::map<Atom*, bool> crossed;
    for (auto const& [sign, atom] : model.rt.bridgeConds)
        crossed[atom] = sign;
    EXPECT_EQ(crossed, (std::map<Atom*, bool>{
                           {model.open, true}, {model.isOpen, true}, {model.isClosed, false}}));
}

TEST_F(NominalStep, ADiscreteRunCrossesNoBridge) {
    model.isOpen->bridged = true;
    startValve();
    theRun().scheduler.discretemdl = true;
    theRun().sMM->runtime = nullptr;
    step({model.open});
    EXPECT_EQ(model.label("valve.mode=open"), "true");
    EXPECT_TRUE(model.rt.bridgeTrans.empty());
    EXPECT_TRUE(model.rt.bridgeConds.empty());
}

// ---- Components that the current state does not hold ----

TEST_F(NominalStep, TheGuardsComponentIsPulledIntoTheCurrentState) {
    // The pump starts when the valve is commanded open and the pump is off.
    HandModel::transition(pump, {{true, model.open}, {true, off}}, {{true, on}});
    HandModel::idle(pump, off);
    model.start();
    streamsOf([&] { theRun().sMM->syncPreviousState(model.traj.get()); });
    step({model.open});
    ASSERT_EQ(model.traj->getCurrentTime(), 2);
    TrajEl const* guard = model.traj->getState(1)->getElt("pump.mode=off");
    ASSERT_NE(guard, nullptr);
    EXPECT_EQ(guard->nextTrans.count(0) + guard->nextTrans.count(1), 1u);  // the move alone
    // It came there by its idle transition.
    EXPECT_EQ(guard->prevTrans, off->idleTrans);
}

TEST_F(NominalStep, AWindowOfStatesMovesOn) {
    startValve();
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(step({i % 2 == 0 ? model.open : model.close}).err, "");
        EXPECT_EQ(model.traj->getCurrentTime(), i + 1);
        EXPECT_EQ(model.label(i % 2 == 0 ? "valve.mode=open" : "valve.mode=closed"), "true");
    }
    EXPECT_EQ(model.traj->states.size(), static_cast<std::size_t>(theRun().scheduler.book.twd));
    EXPECT_EQ(model.rt.bridgeTrans.size(), 10u);
}

// ---- syncPreviousState ----

TEST_F(NominalStep, ALockedStateGetsAnEmptySuccessor) {
    startValve();
    theRun().sMM->simTime = 3.0;
    EXPECT_EQ(theRun().sMM->syncPreviousState(model.traj.get()), 1);
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_TRUE(model.traj->getLastState()->elts.empty());
    EXPECT_EQ(model.traj->getTimeCorr(1), 3.0);
    // The empty one gets none.
    EXPECT_EQ(theRun().sMM->syncPreviousState(model.traj.get()), 0);
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
}

TEST_F(NominalStep, AnUnlockedStateIsUsedAgain) {
    startValve();
    model.traj->getState(0)->locked = false;
    EXPECT_EQ(theRun().sMM->syncPreviousState(model.traj.get()), 0);
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
}

}  // namespace
