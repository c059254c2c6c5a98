// From a diagnosed history back over the bridge: its transitions and its conditions, in a runtime
// that was moved back to the fault.
#include "continuous/bridge.h"
#include "continuous/model_parts.h"
#include "diagnosis/fault_run.h"
#include "fixtures/the_run.h"

using namespace diagnosis_fixture;

namespace {

using scheduler_fixture::HandModel;

// ---- Transitions of a diagnosed history ----

// A unit with four modes, and transitions from each to the next.
class DiagnosedTransitions : public testing::Test {
protected:
    DiagnosedTransitions() {
        Comp* unit = model.comp("unit");
        auto* mode = model.variable<ModeVar>(unit, "mode", {"a", "b", "c", "d"});
        std::vector<Atom*> const& atoms = mode->getAtomLinks();
        for (std::size_t i = 0; i < 3; ++i)
            moves.push_back(
                HandModel::transition(unit, {{true, atoms[i]}}, {{true, atoms[i + 1]}}, transFail));
        model.start();
        history()->transByTime.emplace();
    }
    s_runtime& rt() { return model.rt; }
    Trajectory* history() { return model.traj.get(); }
    void took(int step, std::size_t move) { history()->transByTime->insert({step, moves[move]}); }

    HandModel model;
    std::vector<Transition*> moves;
};

TEST_F(DiagnosedTransitions, ThoseOfTheFirstTimeGoOverInTheirOrder) {
    took(4, 2);
    took(3, 1);
    took(3, 0);
    addDiagBridgeTrans(history(), &rt(), 3);
    EXPECT_EQ(rt().bridgeTrans, (std::vector<Transition*>{moves[1], moves[0]}));
}

TEST_F(DiagnosedTransitions, OnesBehindAnotherTimeAreNotReached) {
    took(2, 0);
    took(3, 1);
    addDiagBridgeTrans(history(), &rt(), 3);
    EXPECT_TRUE(rt().bridgeTrans.empty());
}

TEST_F(DiagnosedTransitions, AHistoryWithoutAnyAddsNothing) {
    addDiagBridgeTrans(history(), &rt(), 3);
    history()->transByTime.reset();
    addDiagBridgeTrans(history(), &rt(), 3);
    EXPECT_TRUE(rt().bridgeTrans.empty());
}

// ---- Conditions of a diagnosed history ----

// The room after one cycle. Its history has step 0, with every atom, step 1, in which it is known
// to be below 10 degrees, and step 2, which holds the thermostat alone: it moved from off to on.
class DiagnosedConditions : public testing::Test {
protected:
    DiagnosedConditions() : run(0.95) {
        run.cycle(detection(3), 1.0, 0.95);
        rt().bridgeConds.clear();
        for (s_Condition* condition : rt().condi)
            condition->val = 7;  // neither of the two
    }
    s_runtime& rt() { return *theRun().hybNT->rt; }
    void update(int step, double contTime) {
        streamsOf([&] {
            updateDiagConds(theRun(), theRun().hybNT->traj.get(), &rt(), step, contTime, 3);
        });
    }
    int val(std::size_t i) { return rt().condi[i]->val; }

    RoomRun run;
};

// Conditions 0 to 4 are the modes of the thermostat: off, on, stuck_on, stuck_off, unknown; 5 is a
// combination. From 6 on they are those of the room, which has no element in the step.
TEST_F(DiagnosedConditions, AtomsOfTheStepSetTheirConditionsAndOthersStay) {
    update(2, 0.0);
    EXPECT_EQ(val(0), 0);
    EXPECT_EQ(val(1), 1);
    for (std::size_t i : {2, 3, 4})
        EXPECT_EQ(val(i), 0) << i;
    for (std::size_t i = 5; i < rt().condi.size(); ++i)
        EXPECT_EQ(val(i), 7) << i;
    EXPECT_EQ(rt().bridgeConds.size(), 5u);
}

TEST_F(DiagnosedConditions, TheStateIsThatOfTheStepAndNotTheNewest) {
    update(0, 0.0);
    EXPECT_EQ(val(0), 1);   // off
    EXPECT_EQ(val(1), 0);   // on
    EXPECT_EQ(val(10), 1);  // below 10 degrees
    EXPECT_EQ(val(11), 1);  // the window is closed
    EXPECT_EQ(val(12), 0);
}

TEST_F(DiagnosedConditions, AStepOutsideTheWindowSetsNone) {
    update(9, 0.0);
    for (std::size_t i = 0; i < rt().condi.size(); ++i)
        EXPECT_EQ(val(i), 7) << i;
}

TEST_F(DiagnosedConditions, TheBoundsGoIntoTheRowOfTheTime) {
    rt().dinfval = {0.5, 4.5};
    rt().dsupval = {0.75, 4.75};
    update(1, 3.0);
    // Row 3, two displays of two bounds each.
    EXPECT_EQ(rt().extra[8], 0.5);
    EXPECT_EQ(rt().extra[9], 0.75);
    EXPECT_EQ(rt().extra[10], 4.5);
    EXPECT_EQ(rt().extra[11], 4.75);
}

TEST_F(DiagnosedConditions, TheRowIsTheTimeOverThePeriod) {
    rt().Ts = 0.5;
    rt().dinfval = {0.5, 4.5};
    update(1, 3.0);
    EXPECT_EQ(rt().extra[20], 0.5) << "row 6, behind five rows of four bounds";
}

TEST_F(DiagnosedConditions, AnUnknownAtomIsNotTrue) {
    theRun().hybNT->traj->getState(2)->getElt("thermostat.mode=stuck_on")->setLabel("unknown");
    update(2, 0.0);
    EXPECT_EQ(val(2), 0);
}

// Time 0 has no row: its bounds were written when the run began.
TEST_F(DiagnosedConditions, ARowBeforeTheFirstIsSkipped) {
    double const before = rt().extra[0];
    rt().dinfval = {-77.0, -77.0};
    update(1, 0.0);
    EXPECT_EQ(rt().extra[0], before);
    EXPECT_NE(rt().extra[0], -77.0);
}

TEST_F(DiagnosedConditions, ATimeThatIsNoneIsBehindTheTable) {
    update(1, Trajectory::noTime);
    EXPECT_EQ(rt().extra.size(), 2 * 2 * 250);
}

TEST_F(DiagnosedConditions, TheAlarmsOfEveryVariableAreForgotten) {
    for (auto const& v : rt().dico)
        v->lowalarm = v->highalarm = v->meslowmisb = v->meshighmisb = v->mesmisb = 1;
    update(1, 0.0);
    for (auto const& v : rt().dico) {
        EXPECT_EQ(v->lowalarm + v->highalarm, 0) << v->nom;
        EXPECT_EQ(v->meslowmisb + v->meshighmisb + v->mesmisb, 0) << v->nom;
    }
}

TEST_F(DiagnosedConditions, WithoutATransitionTheValuesStay) {
    s_Variable const* x = variable(&rt(), "room.x");
    int const identities = theRun().engine.rt_num;
    update(2, 0.0);
    EXPECT_TRUE(rt().bridgeTrans.empty());
    expectBounds(x->old, 4.9025, 4.9975);
    EXPECT_EQ(sn_supOf(x->histo[0]), 4.0);
    EXPECT_EQ(theRun().engine.rt_num, identities);
}

// With one they are computed anew: the histories begin again with the present value, and the copy
// that predicts from the step before takes an identity.
TEST_F(DiagnosedConditions, ATransitionOfTheStepBeginsTheHistoriesAnew) {
    s_Variable const* x = variable(&rt(), "room.x");
    EXPECT_EQ(sn_supOf(x->histo[0]), 4.0);
    int const identities = theRun().engine.rt_num;
    theRun().hybNT->traj->transByTime.emplace();
    theRun().hybNT->traj->transByTime->insert({2, thePlant().active_trans[2]});
    update(2, 1.0);
    EXPECT_EQ(rt().bridgeTrans, std::vector<Transition*>{thePlant().active_trans[2]});
    // 4 and a step of the measured rate, 0.95, by a gain within 5 % of 1.
    for (s_Objet const& value : {x->old, x->histo[0], x->histo[100]})
        expectBounds(value, 4.9025, 4.9975);
    EXPECT_EQ(theRun().engine.rt_num, identities + 1);
}

}  // namespace
