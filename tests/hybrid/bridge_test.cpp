// The bridge: events going up, truth and transitions coming down.
#include "continuous/bridge.h"
#include "fixtures/the_run.h"

#include "continuous/model_parts.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

using scheduler_fixture::HandModel;

// A level whose high value has a transition and whose low one has none, and a gate with a mode and
// a command. Conditions, by number: 0 high, 1 low, 2 gate open, 3 gate open once more.
class Bridge : public testing::Test {
protected:
    Bridge() {
        Comp* tank = model.comp("tank");
        level = model.variable<CondVar>(tank, "level", {"low", "high"});
        low = level->getAtomLinks()[0];
        high = level->getAtomLinks()[1];
        gate = model.variable<ModeVar>(tank, "gate", {"shut", "open"});
        shut = gate->getAtomLinks()[0];
        open = gate->getAtomLinks()[1];
        command = model.variable<CommandVar>(tank, "cmd", {"none", "go"})->getAtomLinks()[1];
        HandModel::transition(tank, {{true, high}, {true, shut}}, {{true, open}});
        model.start();
        for (Atom* atom : {high, low, open, open})
            rt().condi.push_back(mkAtomCond(rt(), atom, 0));
        level->condMap.insert({high->getId(), 0});
        level->condMap.insert({low->getId(), 1});
        gate->condMap.insert({open->getId(), 2});
        gate->condMap.insert({open->getId(), 3});
    }

    s_runtime& rt() { return model.rt; }
    s_Condition* cond(std::size_t i) { return rt().condi[i]; }
    int val(std::size_t i) { return rt().condi[i]->val; }
    using Atoms = std::vector<Atom*>;

    HandModel model;
    CondVar* level = nullptr;
    ModeVar* gate = nullptr;
    Atom *low = nullptr, *high = nullptr, *shut = nullptr, *open = nullptr, *command = nullptr;
};

TEST_F(Bridge, AnEventIsEnteredAndMakesTheConditionTrue) {
    addBridgeEvent(cond(0), high, true, &rt());
    ASSERT_EQ(rt().bridgeEvents.size(), 1u);
    EXPECT_EQ(*rt().bridgeEvents.begin(), (std::pair<bool const, Atom*>(true, high)));
    EXPECT_EQ(val(0), 1);
}

TEST_F(Bridge, AnAtomStandsOnceUnderEitherSign) {
    addBridgeEvent(cond(0), high, true, &rt());
    addBridgeEvent(cond(0), high, false, &rt());
    EXPECT_EQ(rt().bridgeEvents.size(), 1u);
    EXPECT_TRUE(rt().bridgeEvents.begin()->first);
    EXPECT_EQ(val(0), 1);
    // The other way round, and with another condition on the same atom.
    addBridgeEvent(cond(2), open, false, &rt());
    addBridgeEvent(cond(3), open, true, &rt());
    EXPECT_EQ(rt().bridgeEvents.size(), 2u);
    EXPECT_EQ(val(2), 0);
    EXPECT_EQ(val(3), 0);
}

TEST_F(Bridge, AnEventThatGoesMakesTheConditionFalse) {
    addBridgeEvent(cond(0), high, true, &rt());
    addBridgeEvent(cond(1), low, true, &rt());
    removeBridgeEvent(cond(0), high, &rt());
    ASSERT_EQ(rt().bridgeEvents.size(), 1u);
    EXPECT_EQ(rt().bridgeEvents.begin()->second, low);
    EXPECT_EQ(val(0), 0);
    EXPECT_EQ(val(1), 1);
}

TEST_F(Bridge, RemovingAnEventThatIsNotThereChangesNothing) {
    addBridgeEvent(cond(1), low, true, &rt());
    cond(0)->val = 1;
    removeBridgeEvent(cond(0), high, &rt());
    EXPECT_EQ(val(0), 1);
    EXPECT_EQ(rt().bridgeEvents.size(), 1u);
}

TEST_F(Bridge, AConditionWithoutAnAtomTellsNoOne) {
    addBridgeEvent(cond(0), nullptr, true, &rt());
    EXPECT_TRUE(rt().bridgeEvents.empty());
    EXPECT_EQ(val(0), 1);
    addBridgeEvent(cond(1), low, true, &rt());
    removeBridgeEvent(cond(0), nullptr, &rt());
    EXPECT_EQ(val(0), 0);
    EXPECT_EQ(rt().bridgeEvents.size(), 1u);
}

// ---- Up ----

TEST_F(Bridge, AnAtomWithTransitionsActsAsACommandWhenTrue) {
    rt().bridgeEvents.insert({true, high});
    bridgeIncEvents(theRun().scheduler, &rt());
    EXPECT_EQ(theRun().sMM->contCommands, Atoms{high});
    EXPECT_TRUE(theRun().sMM->contEvents.empty());
    // The events stay until the end of the step.
    EXPECT_EQ(rt().bridgeEvents.size(), 1u);
}

TEST_F(Bridge, AFalseEventOnSuchAnAtomIsDropped) {
    rt().bridgeEvents.insert({false, high});
    bridgeIncEvents(theRun().scheduler, &rt());
    EXPECT_TRUE(theRun().sMM->contCommands.empty());
    EXPECT_TRUE(theRun().sMM->contEvents.empty());
}

TEST_F(Bridge, AnAtomWithoutTransitionsIsToBeFixedUnderItsSign) {
    rt().bridgeEvents.insert({false, low});
    bridgeIncEvents(theRun().scheduler, &rt());
    ASSERT_EQ(theRun().sMM->contEvents.size(), 1u);
    EXPECT_EQ(*theRun().sMM->contEvents.begin(), (std::pair<bool const, Atom*>(false, low)));
    rt().bridgeEvents.clear();
    rt().bridgeEvents.insert({true, open});
    bridgeIncEvents(theRun().scheduler, &rt());
    EXPECT_EQ(theRun().sMM->contEvents.size(), 2u);
    EXPECT_TRUE(theRun().sMM->contCommands.empty());
}

// ---- Down ----

TEST_F(Bridge, TransitionsAreKeptInTheOrderInWhichTheyFired) {
    Transition* first = thePlant().active_trans[0];
    addBridgeTrans(first, &rt());
    addBridgeTrans(nullptr, &rt());
    addBridgeTrans(first, &rt());
    EXPECT_EQ(rt().bridgeTrans, (std::vector<Transition*>{first, nullptr, first}));
}

TEST_F(Bridge, SettledAtomsAreKeptWithDuplicates) {
    addBridgeCond(open, true, &rt());
    addBridgeCond(open, true, &rt());
    EXPECT_EQ(rt().bridgeConds.size(), 2u);
}

TEST_F(Bridge, SettledAtomsSetEveryConditionOfTheirs) {
    addBridgeCond(open, true, &rt());
    addBridgeCond(low, true, &rt());
    cond(0)->val = 1;
    bridgeConditions(&rt());
    EXPECT_EQ(val(1), 1);
    EXPECT_EQ(val(2), 1);
    EXPECT_EQ(val(3), 1);
    EXPECT_EQ(val(0), 1);  // the other atom of the variable is left alone
    EXPECT_EQ(rt().bridgeConds.size(), 2u);
}

TEST_F(Bridge, TheAtomsOfACommandAreSkipped) {
    addBridgeCond(command, true, &rt());
    bridgeConditions(&rt());
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(val(i), 0) << i;
}

TEST_F(Bridge, WithoutSettledAtomsNothingChanges) {
    cond(2)->val = 1;
    bridgeConditions(&rt());
    EXPECT_EQ(val(2), 1);
    EXPECT_EQ(val(0), 0);
}

TEST_F(Bridge, ALaterTruthOverwritesAnEarlier) {
    // Under one sign the pairs keep their order; the bag puts the two signs in an order of its own,
    // which the walk below reads off.
    addBridgeCond(open, true, &rt());
    addBridgeCond(open, false, &rt());
    bool last = true;
    for (auto const& settled : rt().bridgeConds)
        last = settled.first;
    bridgeConditions(&rt());
    EXPECT_EQ(val(2), last ? 1 : 0);
}

TEST_F(Bridge, ANumberedConditionSetsEveryOperandOnTheSameAtom) {
    s_Condition* operand = mkAtomCond(rt(), open, 0);
    s_Condition* other = mkAtomCond(rt(), shut, 0);
    s_Condition* either = mkBinaryCond(rt(), COND_OR, operand, other, 0);
    setRTCondVal(&rt(), 2, true);
    EXPECT_EQ(val(2), 1);
    EXPECT_EQ(operand->val, 1);
    EXPECT_EQ(other->val, 0);
    EXPECT_EQ(sn_evalCond(either, &rt()), 1);
    setRTCondVal(&rt(), 3, false);
    EXPECT_EQ(operand->val, 0);
}

TEST_F(Bridge, AConditionOfAnotherKindIsSetAlone) {
    cond(0)->kind = COND_EXPR;
    s_Condition* operand = mkAtomCond(rt(), high, 0);
    setRTCondVal(&rt(), 0, true);
    EXPECT_EQ(val(0), 1);
    EXPECT_EQ(operand->val, 0);
}

TEST_F(Bridge, ClearingForgetsAllThree) {
    rt().bridgeEvents.insert({true, high});
    addBridgeCond(open, true, &rt());
    addBridgeTrans(nullptr, &rt());
    clearRunTime(&rt());
    EXPECT_TRUE(rt().bridgeEvents.empty());
    EXPECT_TRUE(rt().bridgeConds.empty());
    EXPECT_TRUE(rt().bridgeTrans.empty());
}

TEST_F(Bridge, FirstTruthComesFromTheMarkedAtoms) {
    low->bridged = shut->bridged = open->bridged = true;  // not high
    cond(0)->val = 1;
    cond(2)->val = 1;
    bridgeActiveAtoms(thePlant(), &rt());
    EXPECT_EQ(val(1), 1);  // low is the default
    EXPECT_EQ(val(2), 0);  // the gate is shut
    EXPECT_EQ(val(0), 1);  // left alone
}

}  // namespace
