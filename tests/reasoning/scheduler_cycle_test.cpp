// The discrete half of a hybrid step: events of the scenario and of the continuous side.
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

using namespace scheduler_fixture;

namespace {

// A valve, and a level: level.c: low, high; level.m: a, b, c
class DiscreteCycle : public testing::Test {
protected:
    DiscreteCycle() {
        model.addMoves();
        level = model.comp("level");
        auto* cond = model.variable<CondVar>(level, "c", {"low", "high"});
        low = cond->getAtomLinks()[0];
        high = cond->getAtomLinks()[1];
        auto* mode = model.variable<ModeVar>(level, "m", {"a", "b"});
        a = mode->getAtomLinks()[0];
        b = mode->getAtomLinks()[1];
    }

    std::string cycle(double when) { return cycle(*model.traj, when); }
    std::string cycle(Trajectory& traj, double when) {
        return complaint([&] { theRun().sMM->doCycle(&traj, &model.rt, when); });
    }
    static void observe(double date, std::vector<Atom*> const& atoms) {
        theRun().sMM->scenario[date] = std::make_unique<scenarEvent>(scenarEvent{false, atoms});
    }
    using Atoms = std::vector<Atom*>;

    Valve model;
    Comp* level = nullptr;
    Atom *low = nullptr, *high = nullptr, *a = nullptr, *b = nullptr;
};

TEST_F(DiscreteCycle, WithoutEventsOnlyTheStepIsTold) {
    model.start();
    streamsOf([&] { theRun().sMM->syncPreviousState(model.traj.get()); });
    EXPECT_EQ(cycle(4.0), "");
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.rt.tStart, 1.0);
    EXPECT_EQ(theRun().sMM->simTime, 4.0);
    EXPECT_EQ(theRun().sMM->runtime, &model.rt);
    EXPECT_TRUE(theRun().sMM->scenario.empty());  // looking up entered nothing
}

TEST_F(DiscreteCycle, AModelWithoutARuntimeTakesACycle) {
    model.start();
    theRun().scheduler.discretemdl = true;
    theRun().sMM->addCommandEvent(model.open, 1);
    EXPECT_EQ(complaint([&] { theRun().sMM->doCycle(model.traj.get(), nullptr, 1.0); }),
              "valve.cmd=open\n");
    EXPECT_EQ(model.label("valve.mode=open"), "true");
}

// The first state is locked, so an empty one is put in between, which takes the command.
TEST_F(DiscreteCycle, ADatedCommandIsObeyed) {
    model.start();
    theRun().sMM->addCommandEvent(model.open, 3);
    EXPECT_EQ(cycle(2.0), "");
    EXPECT_EQ(cycle(3.0), "valve.cmd=open\n");
    EXPECT_EQ(model.traj->getCurrentTime(), 2);
    EXPECT_EQ(model.label("valve.cmd=open", 1), "true");
    EXPECT_EQ(model.label("valve.cmd=open", 0), "false");
    EXPECT_EQ(model.label("valve.mode=open", 2), "true");
    EXPECT_EQ(model.rt.tStart, 2.0);
    EXPECT_EQ(model.traj->getTimeCorr(1), 3.0);
    EXPECT_EQ(model.traj->getTimeCorr(2), 3.0);
}

TEST_F(DiscreteCycle, TheDateMustBeExactlyTheTime) {
    model.start();
    theRun().sMM->scenario[0.3] = std::make_unique<scenarEvent>(scenarEvent{true, {model.open}});
    EXPECT_EQ(cycle(0.1 + 0.1 + 0.1), "");  // 0.30000000000000004
    EXPECT_EQ(cycle(0.3), "valve.cmd=open\n");
}

TEST_F(DiscreteCycle, CommandsOfTheContinuousSideFollowThoseOfTheScenario) {
    model.start();
    theRun().sMM->addCommandEvent(model.open, 1);
    theRun().sMM->contCommands = {low};
    EXPECT_EQ(cycle(1.0), "valve.cmd=open\nlevel.c=low\n");
    EXPECT_TRUE(theRun().sMM->contCommands.empty());
    // The event keeps its own atoms.
    EXPECT_EQ(theRun().sMM->scenario[1.0]->atoms, Atoms{model.open});
}

TEST_F(DiscreteCycle, CommandsOfTheContinuousSideAloneAreObeyed) {
    model.start();
    theRun().sMM->contCommands = {model.open};
    EXPECT_EQ(cycle(1.0), "valve.cmd=open\n");
    EXPECT_EQ(model.label("valve.mode=open"), "true");
    EXPECT_TRUE(theRun().sMM->contCommands.empty());
}

TEST_F(DiscreteCycle, ObservationsHaveNoEffectAndCommandsWait) {
    model.start();
    observe(1.0, {model.isOpen});
    theRun().sMM->contCommands = {model.open};
    EXPECT_EQ(cycle(1.0), "");
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
    EXPECT_EQ(theRun().sMM->contCommands, Atoms{model.open});
    // Also for a candidate that comes through the same time again.
    EXPECT_EQ(cycle(1.0), "");
    EXPECT_EQ(cycle(2.0), "valve.cmd=open\n");
}

TEST_F(DiscreteCycle, AnEventOfCommandsWithoutAtomsDoesNothing) {
    model.start();
    theRun().sMM->scenario[1.0] = std::make_unique<scenarEvent>(scenarEvent{true, {}});
    EXPECT_EQ(cycle(1.0), "");
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
}

TEST_F(DiscreteCycle, EveryTrajectoryTakesTheEventOnce) {
    model.start();
    Trajectory second(model.traj.get(), 1);
    theRun().sMM->addCommandEvent(model.open, 3);
    EXPECT_EQ(cycle(3.0), "valve.cmd=open\n");
    EXPECT_EQ(cycle(second, 3.0), "valve.cmd=open\n");
    EXPECT_EQ(second.getElt("valve.mode=open", 2, 0)->getLabel(), "true");
    // Neither takes it again, nor does one that was copied from a trajectory that took it.
    Trajectory copy(model.traj.get(), model.traj->getCurrentTime() + 1);
    EXPECT_EQ(cycle(3.0), "");
    EXPECT_EQ(cycle(second, 3.0), "");
    EXPECT_EQ(cycle(copy, 3.0), "");
    // An event of another date is another event.
    theRun().sMM->addCommandEvent(model.close, 4);
    EXPECT_EQ(cycle(copy, 4.0), "valve.cmd=close\n");
    EXPECT_EQ(copy.getElt("valve.mode=closed", copy.getCurrentTime(), 0)->getLabel(), "true");
}

TEST_F(DiscreteCycle, AfterItsEventATrajectoryStillObeysTheContinuousSide) {
    model.start();
    theRun().sMM->addCommandEvent(model.open, 3);
    cycle(3.0);
    theRun().sMM->contCommands = {low};
    EXPECT_EQ(cycle(3.0), "level.c=low\n");
}

TEST_F(DiscreteCycle, AnImpossibleCommandIsToldAndForgotten) {
    model.start();
    theRun().sMM->contCommands = {model.isOpen};
    EXPECT_EQ(cycle(1.0),
              "valve.mode=open\nError update the current state: no valid state found.\n");
    EXPECT_TRUE(theRun().sMM->contCommands.empty());
    EXPECT_EQ(model.label("valve.mode=closed"), "true");
    EXPECT_EQ(model.rt.tStart, model.traj->getCurrentTime());
    EXPECT_TRUE(model.rt.bridgeTrans.empty());
}

TEST_F(DiscreteCycle, AStepThatFailsTakesItsEmptyStateBack) {
    model.start();
    auto const times = model.traj->timeCorr;
    theRun().sMM->contCommands = {model.close, model.none};
    EXPECT_EQ(cycle(1.0),
              "valve.cmd=close\nvalve.cmd=none\n"
              "Error update the current state: no valid state found.\n");
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
    EXPECT_FALSE(model.traj->getLastState()->elts.empty());
    EXPECT_EQ(model.traj->timeCorr, times);
    EXPECT_EQ(model.rt.tStart, 0.0);
    // The next one begins as if it had not been.
    EXPECT_EQ((theRun().sMM->contCommands = {model.open}, cycle(2.0)), "valve.cmd=open\n");
    EXPECT_EQ(model.traj->getCurrentTime(), 2);
}

// The events of the same cycle made a state of their own, and it stays.
TEST_F(DiscreteCycle, WhatTheEventsSettledStays) {
    model.start();
    theRun().sMM->contEvents.insert({true, high});
    theRun().sMM->contCommands = {model.close, model.none};
    cycle(1.0);
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.label("level.c=high", 1), "true");
}

// ---- Events of the continuous side ----

TEST_F(DiscreteCycle, ATrueEventIsFixedInTheCurrentState) {
    model.start();
    theRun().sMM->contEvents.insert({true, high});
    EXPECT_EQ(cycle(1.0), "");
    // A new state, since the first is locked.
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.label("level.c=high", 1), "true");
    EXPECT_EQ(model.label("level.c=low", 1), "false");
    EXPECT_EQ(model.label("level.c=low", 0), "true");
    EXPECT_EQ(model.lock("level.c=high"), LOCK_TRUE_PERM);
    EXPECT_EQ(model.lock("level.c=low"), LOCK_FALSE_PERM);
    EXPECT_TRUE(theRun().sMM->contEvents.empty());
}

TEST_F(DiscreteCycle, AFalseEventLocksItsOwnElementAlone) {
    model.start();
    theRun().sMM->contEvents.insert({false, a});
    EXPECT_EQ(cycle(1.0), "");
    EXPECT_EQ(model.label("level.m=a", 1), "false");
    EXPECT_EQ(model.label("level.m=b", 1), "true");  // one of them must hold
    EXPECT_EQ(model.lock("level.m=a"), LOCK_FALSE_PERM);
    EXPECT_EQ(model.lock("level.m=b"), LOCK_FREE);
}

// The event forces the command from none to open; open has transitions, so it acts as a command.
TEST_F(DiscreteCycle, WhatAnEventMadeTrueMayActAsACommand) {
    HandModel::exclude(level, high, model.none);
    HandModel::exclude(level, high, model.close);
    model.start();
    theRun().sMM->contEvents.insert({true, high});
    EXPECT_EQ(cycle(1.0), "valve.cmd=open\n");
    EXPECT_EQ(model.label("valve.mode=open"), "true");
    EXPECT_EQ(model.rt.bridgeTrans, std::vector<Transition*>{model.opens});
}

TEST_F(DiscreteCycle, OnlyTrueAtomsWithTransitionsActAsCommands) {
    // The event makes high true, which leads nowhere, and low false.
    HandModel::transition(level, {{true, low}, {true, a}}, {{true, b}});
    model.start();
    theRun().sMM->contEvents.insert({true, high});
    streamsOf([&] {
        theRun().sMM->simTime = 1.0;
        theRun().sMM->addContEvents(model.traj.get());
    });
    EXPECT_TRUE(theRun().sMM->contCommands.empty());
    EXPECT_EQ(model.traj->getCurrentTime(), 0);  // the state itself was replaced
    EXPECT_EQ(model.label("level.c=high", 0), "true");
}

TEST_F(DiscreteCycle, AnEventThatNoStateHoldsStopsTheRun) {
    model.start();
    // Of a choice between two, a condition may not become true while observing.
    theRun().sMM->contEvents.insert({false, low});
    int status = -1;
    EXPECT_EQ(complaint([&] {
                  status = statusOf([&] { theRun().sMM->addContEvents(model.traj.get()); });
              }),
              "Error adding continuous events: no valid state found.\n");
    EXPECT_EQ(status, 1);
}

TEST_F(DiscreteCycle, BridgeConditionsTakeTheMarkedElementsAlone) {
    high->bridged = true;
    model.start();
    ElementTable table;
    for (char const* id : {"level.c=high", "level.c=low", "valve.mode=closed"})
        table[id] = model.traj->getState(0)->getElt(id);
    theRun().sMM->addBridgeConditions(table);
    ASSERT_EQ(model.rt.bridgeConds.size(), 1u);
    EXPECT_EQ(model.rt.bridgeConds.begin()->second, high);
    EXPECT_FALSE(model.rt.bridgeConds.begin()->first);
}

}  // namespace
