// Mapping functions: how a change of mode moves the continuous state.
#include "continuous/model_parts.h"
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

using scheduler_fixture::HandModel;

// A tank filled by a constant inflow: level(k) = level(k-1) + inflow, and a gauge that shows the
// level of the same cycle. The gauge is measured. One transition, without mapping functions yet.
class Tank : public testing::Test {
protected:
    Tank() {
        Comp* comp = model.comp("tank");
        auto* mode = model.variable<ModeVar>(comp, "mode", {"filling", "empty"});
        transition = HandModel::transition(comp, {{true, mode->getAtomLinks()[0]}},
                                           {{true, mode->getAtomLinks()[1]}});
        model.start();
        inflow = mkParameter(rt(), "tank.inflow", 2.0, 0);
        level = mkVariable(rt(), "tank.level", 20);
        gauge = mkVariable(rt(), "tank.gauge", 20);
        auto* fills =
            mkInfluence(rt(), "i1", INF_INTEGRAL, inflow, level, nullptr, 1, makeReal(1.0), 0, 0);
        auto* shows =
            mkInfluence(rt(), "i2", INF_STATIC, level, gauge, nullptr, 1, makeReal(1.0), 0, 0);
        mkGraph(rt(), inflow, INF_STATIC, {}, {fills});
        mkGraph(rt(), level, INF_INTEGRAL, {fills}, {shows});
        mkGraph(rt(), gauge, INF_STATIC, {shows}, {});
        rt().temporal = {level};
        rt().untemporal = {gauge};
        rt().measure = {gauge};
        rt().display = {level, gauge};
        rt().init.push_back({level, makeReal(10.0)});
        rt().twc = 20;
        sizeArrays(rt());
        theRun().engine.meas = {10.0};
        streamsOf([this] { sorn_initialize(&rt(), 0, 0.01, "", 0); });
    }

    s_runtime& rt() { return model.rt; }
    // A constant as mapping expression; answers its number.
    int constant(s_Objet const& value) {
        auto leaf = std::make_unique<s_Expr>();
        leaf->gvar = mkConstant(rt(), value);
        rt().mapExprs.push_back(adoptExpr(rt(), std::move(leaf)));
        return static_cast<int>(rt().mapExprs.size()) - 1;
    }
    // The transition assigns *value* to the variable, under a guard.
    void assign(char const* name, s_Objet const& value, s_Condition* guard = nullptr) {
        auto function = std::make_unique<MapFunc>();
        function->guard = guard;
        function->vars.push_back({name, constant(value)});
        transition->mapFuncs.push_back(std::move(function));
    }
    s_Condition* fixedCondition(int value) {
        auto condition = mkCond();
        condition->kind = COND_CONST;
        condition->val = value;
        return adoptCondition(rt(), std::move(condition));
    }
    void cycle(double measure) {
        theRun().engine.meas = {measure};
        sorn_doCycle2(&rt(), CYCLE_DETECT);
        sn_checkMs(&rt(), 3);
        sn_yieldAlarms(&rt());
    }
    void fire() { rt().bridgeTrans = {transition}; }

    HandModel model;
    Transition* transition = nullptr;
    s_Variable *inflow = nullptr, *level = nullptr, *gauge = nullptr;
};

// ---- applyMFBounds ----

// What the level (not measured) or the gauge (measured) becomes when *value* meets *old*.
struct Merge {
    s_Objet old, value;
    bool measured;
    s_Objet expectedOld, expectedNew, expectedMes;
};

void expectSame(s_Objet const& value, s_Objet const& expected, char const* what) {
    EXPECT_EQ(value.type, expected.type) << what;
    EXPECT_EQ(sn_infOf(value), sn_infOf(expected)) << what;
    EXPECT_EQ(sn_supOf(value), sn_supOf(expected)) << what;
    if (isRange(value) && isRange(expected)) {
        EXPECT_EQ(value.rng.infClosed, expected.rng.infClosed) << what;
        EXPECT_EQ(value.rng.supClosed, expected.rng.supClosed) << what;
    }
}

TEST_F(Tank, AJumpIsMergedByTheKindsOfBothValues) {
    s_Objet const one = makeReal(1.0), five = makeReal(5.0);
    s_Objet const low = makeRange(1.0, 3.0, 1, 1), high = makeRange(2.0, 6.0, 1, 1);
    s_Objet const before = makeRange(100.0, 101.0, 1, 0), mes = makeRange(7.0, 8.0, 1, 0);
    s_Objet const hull = makeRange(1.0, 6.0, 0, 0);
    s_Objet const collapsed = makeReal(100.0);  // a range taken as a number is its lower bound
    s_Objet const unset;
    Merge const table[] = {
        {one, five, false, five, five, mes},      {one, high, false, high, high, mes},
        {one, five, true, one, collapsed, five},  {one, high, true, one, collapsed, high},
        {low, five, false, five, before, mes},    {low, five, true, low, before, five},
        {low, high, false, hull, before, mes},    {low, high, true, low, before, hull},
        {high, low, false, hull, before, mes},    {low, unset, false, low, before, mes},
        {unset, five, false, unset, before, mes}, {unset, five, true, unset, before, mes},
    };
    int row = 0;
    for (Merge const& merge : table) {
        SCOPED_TRACE(row++);
        s_Variable* target = merge.measured ? gauge : level;
        target->old = merge.old;
        target->new_ = before;
        target->mes = mes;
        target->defined = 0;
        applyMFBounds(&rt(), target, &merge.value);
        expectSame(target->old, merge.expectedOld, "old");
        expectSame(target->new_, merge.expectedNew, "new");
        expectSame(target->mes, merge.expectedMes, "mes");
        EXPECT_EQ(target->defined, 1);
    }
}

// ---- At the start ----

TEST_F(Tank, AtTheStartAnAssignmentFillsTheHistory) {
    assign("tank.level", makeReal(7.0));
    fire();
    gauge->defined = 0;
    EXPECT_EQ(streamsOf([this] { EXPECT_EQ(tavro_initMappingFuncs(&rt()), 1); }).out, "");
    EXPECT_EQ(level->old.real, 7.0);
    EXPECT_EQ(level->histo[0].real, 7.0);
    EXPECT_EQ(level->histo[19].real, 7.0);
    EXPECT_EQ(level->defined, 1);
    // What is not defined is computed from its causes.
    EXPECT_EQ(gauge->old.real, 7.0);
    EXPECT_EQ(gauge->defined, 1);
}

TEST_F(Tank, AtTheStartAFalseGuardIsSkipped) {
    assign("tank.level", makeReal(7.0), fixedCondition(0));
    assign("tank.gauge", makeReal(3.0), fixedCondition(1));
    fire();
    tavro_initMappingFuncs(&rt());
    EXPECT_EQ(level->old.real, 10.0);
    EXPECT_EQ(gauge->old.real, 3.0);
}

TEST_F(Tank, AtTheStartADefinedVariableIsNotComputed) {
    fire();
    gauge->old = makeReal(123.0);
    tavro_initMappingFuncs(&rt());
    EXPECT_EQ(gauge->old.real, 123.0);
}

TEST_F(Tank, AtTheStartAStateThatCannotBePlacedIsTold) {
    // A constraint variable that no constraint is on: nothing covers it.
    rt().gV = {mkConstraintVar(rt(), level, makeReal(0.0))};
    fire();
    int result = 1;
    EXPECT_EQ(streamsOf([&] { result = tavro_initMappingFuncs(&rt()); }).out,
              "Error while splitting init state\n");
    EXPECT_NE(result, 1);
    clearNrt(theRun(), &rt());
}

TEST_F(Tank, AnUnknownTargetIsPassed) {
    assign("tank.depth", makeReal(7.0));
    fire();
    EXPECT_EQ(streamsOf([this] { EXPECT_FALSE(tavro_applyMappingFuncs(&rt())); }).err,
              "Mapping of tank.depth: the model has no such variable.\n");
}

TEST_F(Tank, AnUnknownExpressionIsPassed) {
    assign("tank.level", makeReal(7.0));
    rt().mapExprs.clear();
    fire();
    EXPECT_EQ(streamsOf([this] { EXPECT_FALSE(tavro_applyMappingFuncs(&rt())); }).err,
              "Mapping of tank.level: the model has no such expression.\n");
}

// ---- Simulation ----

TEST_F(Tank, InASimulationTheJumpIsTakenAndTheRestComputed) {
    assign("tank.level", makeReal(0.0));
    cycle(12.0);
    fire();
    theRun().engine.meas = {0.0};
    EXPECT_FALSE(tavro_reinitialize(theRun(), &rt(), 1.0, RUN_SIMULATE, 3));
    EXPECT_EQ(level->old.real, 0.0);
    EXPECT_EQ(gauge->old.real, 0.0);  // computed again from the level
    EXPECT_EQ(gauge->mes.real, 0.0);  // every measure is entered again
    EXPECT_EQ(rt().dsupval[0], 0.0);
    EXPECT_EQ(rt().dsupval[1], 0.0);
}

TEST_F(Tank, AfterAJumpOneCycleIsEnoughForAnAlarm) {
    assign("tank.level", makeReal(0.0));
    cycle(12.0);
    fire();
    // The gauge's new value 0 against a measure of 12.
    EXPECT_TRUE(tavro_reinitialize(theRun(), &rt(), 1.0, RUN_SIMULATE, 3));
    EXPECT_EQ(rt().meshighmisb[0], 1);
}

TEST_F(Tank, WithoutMappingFunctionsTheThresholdStaysAndVariablesAreComputed) {
    cycle(12.0);
    fire();
    // The level is its own old value plus the inflow: 12 + 2; the gauge shows it.
    EXPECT_FALSE(tavro_reinitialize(theRun(), &rt(), 1.0, RUN_SIMULATE, 3));
    EXPECT_EQ(level->old.real, 14.0);
    EXPECT_EQ(gauge->old.real, 14.0);
    EXPECT_EQ(gauge->lowalarm, 1);  // 12 against 14 counts, and is no alarm yet
    EXPECT_EQ(rt().meslowmisb[0], 0);
}

TEST_F(Tank, AFalseGuardIsSkippedInSimulationAndAppliedInDetection) {
    assign("tank.level", makeReal(0.0), fixedCondition(0));
    cycle(12.0);
    fire();
    EXPECT_FALSE(tavro_applyMappingFuncs(&rt()));
    EXPECT_EQ(level->old.real, 12.0);
    EXPECT_TRUE(tavro_applyMappingFuncs2(theRun(), &rt(), 1.0));
    EXPECT_EQ(sn_infOf(level->old), 0.0);
}

// Guards are conditions of the model; a candidate asks its own copy of them.
TEST_F(Tank, AGuardIsThatOfTheCandidate) {
    s_Condition* guard = fixedCondition(0);
    assign("tank.level", makeReal(0.0), guard);
    fire();
    std::unique_ptr<s_runtime> copy = sn_copyRuntime(&rt());
    copy->condPool[static_cast<std::size_t>(guard->slot)]->val = 1;
    EXPECT_TRUE(tavro_applyMappingFuncs(copy.get()));
    EXPECT_FALSE(tavro_applyMappingFuncs(&rt()));
}

TEST_F(Tank, ASecondAssignmentActsOnTheResultOfTheFirst) {
    level->old = makeRange(3.0, 4.0, 1, 1);
    assign("tank.level", makeRange(5.0, 6.0, 1, 1));
    assign("tank.level", makeRange(1.0, 2.0, 1, 1));
    fire();
    EXPECT_TRUE(tavro_applyMappingFuncs(&rt()));
    // [3, 4] and [5, 6] give ]3, 6[, and that with [1, 2] gives ]1, 6[.
    expectSame(level->old, makeRange(1.0, 6.0, 0, 0), "old");
}

TEST_F(Tank, TransitionsAreWalkedInTheOrderInWhichTheyFired) {
    Transition other(scheduler_fixture::formulaOf({}), scheduler_fixture::formulaOf({}),
                     transNominal);
    auto function = std::make_unique<MapFunc>();
    function->vars.push_back({"tank.level", constant(makeReal(8.0))});
    other.mapFuncs.push_back(std::move(function));
    assign("tank.level", makeReal(9.0));
    rt().bridgeTrans = {transition, &other};
    tavro_applyMappingFuncs(&rt());
    EXPECT_EQ(level->old.real, 8.0);
    rt().bridgeTrans = {&other, transition};
    tavro_applyMappingFuncs(&rt());
    EXPECT_EQ(level->old.real, 9.0);
}

TEST_F(Tank, ParametersKeepTheirValueAndTheirMark) {
    inflow->defined = 1;
    cycle(12.0);
    fire();
    for (int mode : {RUN_SIMULATE, RUN_DETECT}) {
        tavro_reinitialize(theRun(), &rt(), 1.0, mode, 3);
        EXPECT_EQ(inflow->old.real, 2.0);
        EXPECT_EQ(inflow->defined, 1);
    }
}

// ---- Detection ----

// Levels 10, 12, 14 at times 0, 1, 2; at time 2 the tank is emptied.
//   one cycle ago: level 0, then one step: level 0 + 2 = 2, gauge 2
//   now:           level 0; the gauge's prediction of this cycle was 14
TEST_F(Tank, InDetectionThePredictionCoversTheJumpNowAndOneCycleAgo) {
    assign("tank.level", makeReal(0.0));
    cycle(12.0);
    cycle(14.0);
    fire();
    EXPECT_TRUE(tavro_applyMappingFuncs2(theRun(), &rt(), 2.0));
    // Two numbers have an open hull.
    expectSame(level->new_, makeRange(0.0, 2.0, 0, 0), "new level");
    expectSame(level->old, makeRange(0.0, 2.0, 0, 0), "old level");
    expectSame(level->histo[0], makeRange(0.0, 2.0, 0, 0), "past level");
    expectSame(level->histo[19], makeRange(0.0, 2.0, 0, 0), "oldest level");
    expectSame(gauge->old, makeRange(2.0, 14.0, 0, 0), "gauge");
    EXPECT_EQ(gauge->mes.real, 14.0);  // not a target, so its measure stays
}

TEST_F(Tank, InDetectionTheMeasureOfATargetIsEnteredAgain) {
    assign("tank.gauge", makeReal(3.0));
    cycle(12.0);
    cycle(14.0);
    fire();
    theRun().engine.meas = {13.5};  // what mesval points at
    EXPECT_TRUE(tavro_applyMappingFuncs2(theRun(), &rt(), 2.0));
    // The jump went into mes, which the measure then replaced; the prediction is no 3.
    EXPECT_EQ(gauge->mes.real, 13.5);
}

TEST_F(Tank, ReinitialisingInDetectionComparesWithTheCoveringPrediction) {
    assign("tank.level", makeReal(0.0));
    cycle(12.0);
    cycle(5.0);  // below 14: an alarm of 1
    EXPECT_EQ(gauge->lowalarm, 1);
    fire();
    // 5 lies in ]2, 14[, so the alarm is taken back.
    EXPECT_FALSE(tavro_reinitialize(theRun(), &rt(), 2.0, RUN_DETECT, 3));
    EXPECT_EQ(gauge->lowalarm, 0);
    EXPECT_EQ(rt().dinfval[1], 2.0);
    EXPECT_EQ(rt().dsupval[1], 14.0);
}

TEST_F(Tank, ReinitialisingInDetectionFindsAMisbehaviourAtOnce) {
    assign("tank.level", makeReal(0.0));
    cycle(12.0);
    cycle(20.0);  // above ]2, 14[ too
    fire();
    EXPECT_TRUE(tavro_reinitialize(theRun(), &rt(), 2.0, RUN_DETECT, 3));
    EXPECT_EQ(rt().meshighmisb[0], 1);
}

TEST_F(Tank, TheCopyOfTheCycleBeforeTakesAnIdentity) {
    theRun().engine.rt_num = 7;
    cycle(12.0);
    fire();
    tavro_applyMappingFuncs2(theRun(), &rt(), 1.0);
    EXPECT_EQ(theRun().engine.rt_num, 8);
}

// The runtime cannot be taken one unit of time back when no past cycle is kept at all.
TEST_F(Tank, OutsideTheWindowTheRunStops) {
    rt().twc = 0;
    fire();
    int status = -1;
    std::string const told = complaint(
        [&] { status = statusOf([&] { tavro_applyMappingFuncs2(theRun(), &rt(), 1.0); }); });
    EXPECT_NE(told.find("cont_fault_time: 0 -- stime: 1-- twc: 0"), std::string::npos) << told;
    EXPECT_EQ(status, 1);
}

}  // namespace
