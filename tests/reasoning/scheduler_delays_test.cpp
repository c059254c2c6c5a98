// Transitions whose effects come at delays.
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

using namespace scheduler_fixture;

namespace {

// A pump that a command starts, and a fan with a mode and a command.
class DelayedEffects : public testing::Test {
protected:
    DelayedEffects() {
        pump = model.comp("pump");
        auto* cmd = model.variable<CommandVar>(pump, "cmd", {"none", "go"});
        auto* mode = model.variable<ModeVar>(pump, "mode", {"off", "on"});
        go = cmd->getAtomLinks()[1];
        off = mode->getAtomLinks()[0];
        on = mode->getAtomLinks()[1];
        fan = model.comp("fan");
        fanGo = model.variable<CommandVar>(fan, "cmd", {"none", "go"})->getAtomLinks()[1];
        auto* speed = model.variable<ModeVar>(fan, "mode", {"slow", "fast"});
        fast = speed->getAtomLinks()[1];
    }

    Streams step(std::vector<Atom*> commands) {
        return streamsOf([&] {
            theRun().sMM->constructNextNominalStateLarge(model.traj.get(), commands, false,
                                                         pending);
        });
    }
    std::vector<Atom*> commandsAt(double step) const {
        auto const found = theRun().sMM->scenario.find(step);
        return found == theRun().sMM->scenario.end() ? std::vector<Atom*>{} : found->second->atoms;
    }
    using Atoms = std::vector<Atom*>;

    HandModel model;
    PendingTransitions pending;
    Comp *pump = nullptr, *fan = nullptr;
    Atom *go = nullptr, *off = nullptr, *on = nullptr, *fanGo = nullptr, *fast = nullptr;
};

TEST_F(DelayedEffects, DelayOneIsTheNextStepAndALaterCommandAnEvent) {
    Transition* starts = HandModel::delayed(pump, {{true, go}, {true, off}},
                                            {{1, {{true, on}}}, {3, {{true, fanGo}}}});
    model.start();
    Streams const told = step({go});
    EXPECT_EQ(told.err, "");
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.label("pump.mode=on", 1), "true");
    EXPECT_EQ(model.label("pump.mode=off", 1), "false");
    TrajEl const* reached = model.traj->getState(1)->getElt("pump.mode=on");
    EXPECT_EQ(reached->prevTrans, starts);
    EXPECT_EQ(reached->index, 0);
    EXPECT_EQ(commandsAt(3.0), Atoms{fanGo});
    EXPECT_EQ(theRun().sMM->scenario.size(), 1u);
    EXPECT_EQ(model.rt.bridgeTrans, std::vector<Transition*>{starts});
    EXPECT_EQ(told.out.find("-------->"), std::string::npos);
    for (char const* guard : {"pump.cmd=go", "pump.mode=off"})
        EXPECT_EQ(model.traj->getState(0)->getElt(guard)->nextTrans.count(starts->id), 1u) << guard;
}

TEST_F(DelayedEffects, AModeAtALaterDelayIsScheduledAndNotAsserted) {
    Transition* starts = HandModel::delayed(pump, {{true, go}, {true, off}}, {{2, {{true, on}}}});
    model.start();
    step({go});
    // The element was fetched, so there is a next state; it stays off there.
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_EQ(model.label("pump.mode=on", 1), "false");
    EXPECT_EQ(model.label("pump.mode=off", 1), "true");
    EXPECT_EQ(model.traj->getState(1)->getElt("pump.mode=on")->prevTrans, starts);
    EXPECT_EQ(commandsAt(2.0), Atoms{on});
}

TEST_F(DelayedEffects, TheCommandOfTheGuardIsPending) {
    Transition* starts = HandModel::delayed(pump, {{true, off}, {true, go}},
                                            {{1, {{true, on}}}, {3, {{true, fanGo}}}});
    model.start();
    step({go});
    ASSERT_EQ(pending.size(), 1u);
    auto const& [id, running] = *pending.begin();
    EXPECT_EQ(id, starts->id);
    EXPECT_EQ(running.trans, starts);
    EXPECT_EQ(running.start, 0);
    EXPECT_EQ(running.command, go);
    // Two effects: it ends two steps after it fired.
    EXPECT_TRUE(running.getEnd(2));
    EXPECT_FALSE(running.getEnd(1));
    EXPECT_FALSE(running.getEnd(3));
}

TEST_F(DelayedEffects, AGuardWithoutACommandIsNotPending) {
    Atom* slow = fast->getSiblings()[0];
    HandModel::delayed(fan, {{true, slow}}, {{2, {{true, fanGo}}}});
    model.start();
    step({slow});
    EXPECT_EQ(commandsAt(2.0), Atoms{fanGo});
    EXPECT_TRUE(pending.empty());
}

// While the transition is pending, its later effects do not count as made by it anew.
TEST_F(DelayedEffects, AnEffectOfARunningTransitionRecordsNothing) {
    Transition* starts = HandModel::delayed(pump, {{true, go}, {true, off}},
                                            {{1, {{true, on}}}, {4, {{true, fast}}}});
    model.start();
    step({go});
    EXPECT_EQ(model.traj->getState(1)->getElt("pump.mode=on")->prevTrans, starts);
    EXPECT_EQ(model.traj->getState(1)->getElt("fan.mode=fast")->prevTrans, nullptr);
    EXPECT_EQ(model.label("fan.mode=fast", 1), "false");
    EXPECT_EQ(commandsAt(4.0), Atoms{fast});
}

TEST_F(DelayedEffects, APendingCommandIsAssertedAgain) {
    Transition* starts = HandModel::delayed(pump, {{true, go}, {true, on}}, {{1, {{true, off}}}});
    model.start();
    pending.insert({starts->id, transitionCM{starts, 0, go}});
    step({});
    EXPECT_EQ(model.label("pump.cmd=go", 0), "true");
    EXPECT_EQ(model.lock("pump.cmd=go"), LOCK_TRUE_PERM);
    EXPECT_EQ(pending.size(), 1u);
}

// A pending command fires transitions as a given one does.
TEST_F(DelayedEffects, APendingCommandIsOneOfTheCommands) {
    Transition* runs = HandModel::delayed(pump, {{true, go}, {true, on}}, {{1, {{true, off}}}});
    HandModel::transition(fan, {{true, go}}, {{true, fast}});
    model.start();
    pending.insert({runs->id, transitionCM{runs, 0, go}});
    step({});
    EXPECT_EQ(model.label("fan.mode=fast", 1), "true");
}

TEST_F(DelayedEffects, ATransitionThatEndsIsShownAndForgotten) {
    Transition* ends = HandModel::delayed(pump, {{true, go}, {true, on}},
                                          {{1, {{true, off}}}, {2, {{true, fanGo}}}});
    model.start();
    pending.insert({ends->id, transitionCM{ends, -2, go}});  // two effects: the end is step 0
    std::string const shown = streamsOf([ends] { ends->showTransition(std::cout); }).out;
    Streams const told = step({});
    EXPECT_NE(told.out.find(shown), std::string::npos);
    EXPECT_TRUE(pending.empty());
}

TEST_F(DelayedEffects, AnImpossibleEffectTakesTheWholeTransitionBack) {
    // The first effect could hold; the second names two values of one mode.
    HandModel::delayed(pump, {{true, off}, {true, go}},
                       {{1, {{true, on}}}, {2, {{true, fast}, {true, fast->getSiblings()[0]}}}});
    model.start();
    // At step 0 an element that records nothing has the index -1, so that delay 2 is due at once.
    Streams const told = step({go});
    EXPECT_EQ(told.err, "Error update the current state: no valid state found.\n");
    EXPECT_EQ(model.traj->getCurrentTime(), 0);
    EXPECT_TRUE(model.rt.bridgeTrans.empty());
}

// A pump that would start and give the fan's command, were it not that its last effect names two
// values of one mode. Its guard asks for a door that the step does not hold: the first effect pulls
// it there, and it goes on idle.
class TakenBack : public DelayedEffects {
protected:
    TakenBack() {
        Comp* doors = model.comp("door");
        shut = model.variable<ModeVar>(doors, "mode", {"shut", "open"})->getAtomLinks()[0];
        keepsShut = HandModel::idle(doors, shut);
        HandModel::transition(fan, {{true, fanGo}}, {{true, fast}});
        // At step 1 an element with the index -1 is due at delay 3.
        starts = HandModel::delayed(pump, {{true, go}, {true, off}, {true, shut}},
                                    {{1, {{true, on}, {true, fanGo}}},
                                     {3, {{true, shut}, {true, shut->getSiblings()[1]}}}});
        on->bridged = true;
        model.start();
        step({fanGo});
    }
    TrajEl const* at(int t, Atom const* atom) const {
        return model.traj->getState(t)->getElt(atom->getId());
    }

    Atom* shut;
    Transition *keepsShut, *starts;
};

TEST_F(TakenBack, NothingOfAnImpossibleTransitionStays) {
    ASSERT_EQ(model.traj->getCurrentTime(), 1);
    ASSERT_EQ(at(1, shut), nullptr);
    EXPECT_EQ(step({go}).err, "Error update the current state: no valid state found.\n");
    EXPECT_EQ(model.traj->getCurrentTime(), 1);
    EXPECT_TRUE(pending.empty());
    EXPECT_TRUE(theRun().sMM->scenario.empty());
    EXPECT_TRUE(at(1, go)->nextTrans.empty());
    EXPECT_EQ(at(1, off)->nextTrans.count(starts->id), 0u);
    EXPECT_EQ(at(1, shut), nullptr);
    EXPECT_EQ(model.traj->getState(1)->comps.count("door"), 0u);
    EXPECT_TRUE(at(0, shut)->nextTrans.empty());
    EXPECT_TRUE(model.rt.bridgeConds.empty());
    // So the next step is free of it.
    EXPECT_EQ(step({}).err, "");
}

TEST_F(TakenBack, WhatItReplacedComesBack) {
    pending.insert({starts->id, transitionCM{starts, 0, go}});
    TrajEl* element = model.traj->getState(0)->getElt(shut->getId());
    element->addToNextTrans(keepsShut);
    TrajEl::Transitions const links = element->nextTrans;
    EXPECT_EQ(step({go}).err, "Error update the current state: no valid state found.\n");
    ASSERT_EQ(pending.size(), 1u);
    EXPECT_EQ(pending.begin()->second.start, 0);
    EXPECT_EQ(at(0, shut)->nextTrans, links);
}

// Also a plain transition's.
TEST_F(DelayedEffects, ACommandOfAnImpossibleEffectIsNotGiven) {
    HandModel::transition(pump, {{true, go}, {true, off}},
                          {{true, fanGo}, {true, fast}, {true, fast->getSiblings()[0]}});
    model.start();
    EXPECT_EQ(step({go}).err, "Error update the current state: no valid state found.\n");
    EXPECT_TRUE(theRun().sMM->scenario.empty());
}

// In a hybrid run every cycle starts without running transitions.
TEST_F(DelayedEffects, NothingIsPendingInTheNextCycle) {
    Transition* starts = HandModel::delayed(pump, {{true, go}, {true, off}},
                                            {{1, {{true, on}}}, {2, {{true, fanGo}}}});
    model.start();
    theRun().sMM->addCommandEvent(go, 1);
    streamsOf([&] { theRun().sMM->doCycle(model.traj.get(), &model.rt, 1.0); });
    EXPECT_EQ(model.rt.bridgeTrans, std::vector<Transition*>{starts});
    int const before = model.traj->getCurrentTime();
    EXPECT_EQ(complaint([&] { theRun().sMM->doCycle(model.traj.get(), &model.rt, 1.5); }), "");
    EXPECT_EQ(model.traj->getCurrentTime(), before);
}

}  // namespace
