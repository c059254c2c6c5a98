// One runtime through time: the start, the cycle and the order of their steps.
#include <cmath>

#include "continuous/search.h"
#include "engine_fixture.h"

namespace engine_test {
namespace {

class Cycle : public EngineTest {
protected:
    Cycle() { plant.rt.precision = 0.01; }

    // After the arrays of inputs and measures are known.
    int cycle(int mode) {
        if (plant.rt.condout.size() != plant.rt.influ.size())
            plant.rt.condout.assign(plant.rt.influ.size(), 0);
        plant.rt.dinfval.resize(plant.rt.display.size());
        plant.rt.dsupval.resize(plant.rt.display.size());
        return sorn_doCycle2(&plant.rt, mode);
    }
    // The same with these inputs and measures.
    int cycle(int mode, std::vector<double> inputs, std::vector<double> measures) {
        inps = std::move(inputs);
        meas = std::move(measures);
        return cycle(mode);
    }

    Plant plant;
};

// ---- Moving values ----

TEST_F(Cycle, TheNewValueBecomesTheOldOne) {
    s_Variable* v = plant.add("v", obj("1"), 2);
    v->new_ = obj("[2, 3]");
    EXPECT_EQ(sn_new2OldValue(&plant.rt, v), 1);
    EXPECT_EQ(text(v->old), "[2, 3]");
    EXPECT_EQ(entries(v->histo), "1 1");
    sn_new2OldValue(&plant.rt, v);
    EXPECT_EQ(entries(v->histo), "[2, 3] 1");
}

TEST_F(Cycle, TheOldValueIsClippedToTheDomainAndTheNewOneIsNot) {
    s_Variable* v = plant.add("v", obj("1"));
    v->domain = obj("[0, 10]");
    v->new_ = obj("[5, 15]");
    EXPECT_EQ(sn_new2OldValue(&plant.rt, v), 1);
    EXPECT_EQ(text(v->old), "[5, 10]");
    EXPECT_EQ(text(v->new_), "[5, 15]");
}

TEST_F(Cycle, AValueOutsideTheDomainStays) {
    s_Variable* v = plant.add("v", obj("1"));
    v->domain = obj("[0, 10]");
    v->new_ = obj("[11, 15]");
    EXPECT_EQ(sn_new2OldValue(&plant.rt, v), 0);
    EXPECT_EQ(text(v->old), "[11, 15]");
    v->new_ = obj("12");
    EXPECT_EQ(sn_new2OldValue(&plant.rt, v), 0);
    EXPECT_EQ(text(v->old), "12");
}

TEST_F(Cycle, AllButParametersAndInputsAreMoved) {
    s_Variable* v = plant.add("v", obj("1"));
    s_Variable* p = plant.add("p", obj("1"));
    s_Variable* in = plant.add("in", obj("1"));
    p->isParam = 1;
    plant.rt.input = {in};
    for (s_Variable* x : {v, p, in})
        x->new_ = obj("2");
    sn_moveAllOld(&plant.rt);
    EXPECT_EQ(text(v->old) + text(p->old) + text(in->old), "211");
    EXPECT_EQ(entries({v->defined, p->defined, in->defined}), "1 0 0");
    sn_moveInputs(&plant.rt);
    EXPECT_EQ(text(v->old) + text(p->old) + text(in->old), "212");
    EXPECT_EQ(entries(in->histo), "1 1 1 1");
    EXPECT_EQ(in->defined, 0);
}

// ---- The two update lists ----

TEST_F(Cycle, AListIsUpdatedInItsOrder) {
    s_Variable *a = plant.add("a", obj("1")), *b = plant.add("b", obj("10"));
    s_Variable* p = parameter(plant, "p", 5);
    plant.link(p, a, INF_STATIC);
    plant.link(a, b, INF_STATIC);
    using Run = void (*)(s_runtime*);
    std::pair<std::vector<s_Variable*>*, Run> const lists[] = {
        {&plant.rt.temporal, sn_doStepTempo}, {&plant.rt.untemporal, sn_doStepUntemp}};
    for (auto const& [list, run] : lists) {
        a->new_ = b->new_ = obj("0");
        *list = {a, b};
        run(&plant.rt);
        EXPECT_EQ(text(b->new_), "5");
        a->new_ = b->new_ = obj("0");
        *list = {b, a};
        run(&plant.rt);
        EXPECT_EQ(text(b->new_), "0");
        list->clear();
        run(&plant.rt);
    }
}

// In the same list a static link sees this cycle and a dynamic one the cycle before.
TEST_F(Cycle, OnlyAStaticLinkWithoutDelaySeesThisCycle) {
    s_Variable *a = plant.add("a", obj("1")), *s = plant.add("s", obj("0"));
    s_Variable* d = plant.add("d", obj("0"));
    plant.link(parameter(plant, "p", 5), a, INF_STATIC);
    plant.link(a, s, INF_STATIC);
    plant.link(a, d, INF_DYNAMIC)->a1 = obj("0");
    plant.rt.untemporal = {a, s, d};
    sn_doStepUntemp(&plant.rt);
    EXPECT_EQ(text(s->new_) + " " + text(d->new_), "5 1");
}

// ---- The order of the cycle ----

// Inputs enter between the two lists.
TEST_F(Cycle, AnInputIsSeenAtOnceByUntemporalVariablesOnly) {
    s_Variable* in = plant.add("in", obj("1"));
    s_Variable *early = plant.add("early", obj("0")), *late = plant.add("late", obj("0"));
    s_Variable* sum = plant.add("sum", obj("0"));
    plant.link(in, early, INF_STATIC);
    plant.link(in, late, INF_STATIC);
    plant.link(in, sum, INF_INTEGRAL);
    plant.rt.input = {in};
    plant.rt.temporal = {early, sum};
    plant.rt.untemporal = {late};
    EXPECT_EQ(cycle(CYCLE_DETECT, {7}, {}), 0);
    EXPECT_EQ(text(early->old) + text(late->old) + text(sum->old), "171");
    cycle(CYCLE_DETECT, {8}, {});
    EXPECT_EQ(text(early->old) + text(late->old) + text(sum->old), "788");
    EXPECT_EQ(text(in->old), "8");
    EXPECT_EQ(entries(in->histo), "7 1 1 1");
}

// Measures enter between the two lists.
TEST_F(Cycle, AMeasureIsSeenAtOnceByUntemporalVariablesOnly) {
    s_Variable *early = plant.add("early", obj("0")), *late = plant.add("late", obj("0"));
    s_Variable* m = plant.add("m", obj("50"));
    plant.measure(m, 1);
    plant.link(m, early, INF_STATIC);
    plant.link(m, late, INF_STATIC);
    plant.rt.temporal = {early};
    plant.rt.untemporal = {late};
    cycle(CYCLE_DETECT, {}, {7});
    EXPECT_EQ(text(early->old) + text(late->old), "17");
    EXPECT_EQ(text(m->mesHisto[0]), "1");
}

// Untemporal variables still see the old values of temporal ones under a dynamic link.
TEST_F(Cycle, ValuesMoveAfterBothLists) {
    s_Variable *t = plant.add("t", obj("1")), *u = plant.add("u", obj("0"));
    plant.link(parameter(plant, "p", 5), t, INF_STATIC);
    plant.link(t, u, INF_INTEGRAL);
    plant.rt.temporal = {t};
    plant.rt.untemporal = {u};
    cycle(CYCLE_DETECT);
    EXPECT_EQ(text(t->old) + text(u->old), "51");
    EXPECT_EQ(entries(t->histo), "1 1 1 1");
    cycle(CYCLE_DETECT);
    EXPECT_EQ(text(t->old) + text(u->old), "56");
    EXPECT_EQ(entries(t->histo), "5 1 1 1");
}

TEST_F(Cycle, DisplaysShowThisCycleAndInputsTheOneBefore) {
    s_Variable *in = plant.add("in", obj("1")), *v = plant.add("v", obj("0"));
    plant.link(in, v, INF_STATIC);
    plant.rt.input = {in};
    plant.rt.untemporal = {v};
    plant.rt.display = {v, in};
    cycle(CYCLE_DETECT, {7}, {});
    EXPECT_EQ(plant.rt.dinfval, (std::vector<double>{7, 1}));
}

TEST_F(Cycle, ConstraintsRunOnTheMovedValuesBeforeTheDisplays) {
    s_Variable* v = plant.add("v", obj("0"));
    plant.link(parameter(plant, "p", 1), v, INF_STATIC, "[0, 10]");
    plant.rt.untemporal = {v};
    plant.rt.display = {v};
    s_GVar* g = mkConstraintVar(plant.rt, v, obj("0"));
    plant.rt.gV = {g};
    plant.rt.gC = {mkSpace(plant.rt, g, 0, obj("[2, 3]"))};
    plant.rt.inAc = {0};
    cycle(CYCLE_DETECT);
    EXPECT_EQ(text(v->old), "[0, 10]");
    plant.rt.globalOn = 1;
    cycle(CYCLE_DETECT);
    EXPECT_EQ(text(v->old), "[2, 3]");
    EXPECT_EQ(text(v->new_), "[0, 10]");
    EXPECT_EQ(plant.rt.dsupval, (std::vector<double>{3}));
}

TEST_F(Cycle, ConditionsAreYieldedAsThisCycleEvaluatedThem) {
    s_Variable* v = plant.add("v", obj("0"));
    s_Influence* i = plant.link(parameter(plant, "p", 1), v, INF_STATIC);
    plant.link(parameter(plant, "q", 1), v, INF_STATIC);
    s_Condition* c = plant.condition(i, 0);
    c->kind = COND_REL;
    c->var = i->cause;
    c->op = REL_EQ;
    c->value = obj("1");
    plant.rt.untemporal = {v};
    EXPECT_EQ(cycle(CYCLE_DETECT), 0);
    EXPECT_EQ(entries(plant.rt.condout), "1 1");
    EXPECT_EQ(dynamic_test::evaluations(*i), 1);
}

TEST_F(Cycle, AllConditionsFalseMakeTheModelInvalidAndTheCycleGoesOn) {
    s_Variable *v = plant.add("v", obj("3")), *in = plant.add("in", obj("1"));
    plant.condition(plant.link(parameter(plant, "p", 1), v, INF_STATIC), 0);
    plant.rt.untemporal = {v};
    plant.rt.input = {in};
    plant.rt.display = {v};
    EXPECT_EQ(cycle(CYCLE_DETECT, {9}, {}), -1);
    EXPECT_EQ(text(v->old), "0");
    EXPECT_EQ(plant.rt.dinfval, (std::vector<double>{0}));
    EXPECT_EQ(text(in->old), "9");
}

TEST_F(Cycle, ARuntimeWithNothingInItIsInvalid) {
    EXPECT_EQ(cycle(CYCLE_SIMULATE), -1);
    EXPECT_EQ(cycle(CYCLE_RESET), -1);
    EXPECT_EQ(cycle(CYCLE_DETECT), -1);
    EXPECT_EQ(cycle(CYCLE_DIAGNOSE), 0);  // no step, so no conditions
}

// ---- The modes ----

// A measured integral of 1 per cycle that starts at 10; its measures say 50, 60, 70.
class CycleModes : public Cycle {
protected:
    CycleModes() {
        v = plant.add("v", obj("10"));
        plant.measure(v, 40);
        plant.link(parameter(plant, "p", 1), v, INF_INTEGRAL);
        plant.rt.temporal = {v};
        plant.rt.display = {v};
    }

    std::string step(int mode, double measure) {
        EXPECT_EQ(cycle(mode, {}, {measure}), 0);
        return text(v->old) + " shown " + text(makeReal(plant.rt.dinfval[0]));
    }

    s_Variable* v;
};

TEST_F(CycleModes, ASimulationIsNeverPulledByTheMeasure) {
    EXPECT_EQ(step(CYCLE_SIMULATE, 50), "11 shown 11");
    EXPECT_EQ(v->lowalarm, 1);
    v->lowalarm = 0;  // as a check inside the prediction would leave it
    EXPECT_EQ(step(CYCLE_SIMULATE, 60), "12 shown 12");
    EXPECT_EQ(step(CYCLE_SIMULATE, 70), "13 shown 13");
}

// The display shows the prediction, the next cycle starts from the measure.
TEST_F(CycleModes, AResetTakesTheMeasureAfterTheDisplay) {
    EXPECT_EQ(step(CYCLE_RESET, 50), "50 shown 11");
    EXPECT_EQ(step(CYCLE_SIMULATE, 60), "51 shown 51");
}

TEST_F(CycleModes, ADetectionIsPulledUntilThereIsAnAlarm) {
    for (int mode = CYCLE_DETECT; mode < CYCLE_DIAGNOSE; ++mode) {
        v->old = obj("10");
        v->mes = obj("40");
        v->highalarm = v->lowalarm = 0;
        EXPECT_EQ(step(mode, 50), "41 shown 41");
        EXPECT_EQ(v->lowalarm, 0);
        EXPECT_EQ(step(mode, 60), "51 shown 51");
        v->highalarm = 1;
        EXPECT_EQ(step(mode, 70), "52 shown 52");
        EXPECT_EQ(step(mode, 80), "53 shown 53");
    }
}

TEST_F(CycleModes, AnIsolationAloneTakesNoStep) {
    s_Variable* in = plant.add("in", obj("1"));
    in->new_ = obj("2");
    plant.rt.input = {in};
    for (int const mode : {6, 7, 8})
        EXPECT_EQ(step(mode, 50), "10 shown 10");
    EXPECT_EQ(text(v->mes), "40");
    EXPECT_EQ(text(in->old), "2");
    EXPECT_EQ(v->lowalarm, 0);
}

// The integral grows by 1 a cycle, from the measure before where there is one.
TEST_F(CycleModes, WhileAMeasureIsMissingThePredictionGoesOnAlone) {
    double const missing = std::nan("");
    EXPECT_EQ(step(CYCLE_DETECT, missing), "41 shown 41");
    EXPECT_FALSE(isValue(v->mes));
    EXPECT_EQ(step(CYCLE_DETECT, 60), "42 shown 42");
    EXPECT_FALSE(isValue(v->mesHisto[0]));
    EXPECT_EQ(step(CYCLE_DETECT, missing), "61 shown 61");
    EXPECT_EQ(step(CYCLE_RESET, missing), "62 shown 62");
}

// Two measures in a row, of which one is missing in between: an alarm at the second.
TEST_F(CycleModes, AMissingMeasureIsComparedWithNothing) {
    step(CYCLE_DETECT, 60);
    sn_checkMs(&plant.rt, 2);
    EXPECT_EQ(v->highalarm, 1);
    step(CYCLE_DETECT, std::nan(""));
    sn_checkMs(&plant.rt, 2);
    EXPECT_EQ(v->highalarm, 1);
    EXPECT_EQ(v->meshighmisb, 0);
    step(CYCLE_DETECT, 60);
    sn_checkMs(&plant.rt, 2);
    EXPECT_EQ(v->meshighmisb, 1);
}

// ---- The start ----

class Start : public Cycle {
protected:
    std::string start(int global = 0, int window = 0, char const* diagBuf = "") {
        plant.rt.dinfval.resize(plant.rt.display.size());
        plant.rt.dsupval.resize(plant.rt.display.size());
        plant.rt.inAc.resize(plant.rt.gC.size());
        return complaint([&] { sorn_initialize(&plant.rt, global, 0.25, diagBuf, window); });
    }
};

TEST_F(Start, OfAnEmptyRuntime) {
    EXPECT_EQ(start(0, 5), "global: 0\n");
    EXPECT_EQ(plant.rt.misbWindow, 0);
    EXPECT_EQ(plant.rt.varsInitialised, 1);
}

TEST_F(Start, TheGlobalSwitchIsToldAsGivenAndKeptAsATruth) {
    EXPECT_EQ(start(7), "global: 7\n");
    EXPECT_EQ(plant.rt.globalOn, 1);
    EXPECT_EQ(start(0), "global: 0\n");
    EXPECT_EQ(plant.rt.globalOn, 0);
}

TEST_F(Start, PrecisionAndTextAreKept) {
    start(0, 0, "so far");
    EXPECT_EQ(plant.rt.precision, 0.25);
    EXPECT_EQ(plant.rt.diagBuf, "so far");
    start(0, 0, nullptr);
    EXPECT_EQ(plant.rt.diagBuf, "");
}

// Coefficients come before the first values: b1 of an integral is gain times sample period.
TEST_F(Start, FirstValuesUseThisRuntimesCoefficients) {
    plant.rt.Ts = 0.5;
    s_Variable* v = plant.add("v", obj("1"));
    s_Influence* i = plant.link(parameter(plant, "p", 1), v, INF_INTEGRAL, "10");
    i->b1 = obj("77");
    v->old = obj("0");
    plant.rt.temporal = {v};
    start();
    EXPECT_EQ(text(v->old), "5");
}

// A variable of a run before starts as new: its value is not taken for defined.
TEST_F(Start, ForgetsTheRunBefore) {
    s_Variable *v = plant.add("v", obj("99")), *m = plant.add("m", obj("98"));
    plant.link(parameter(plant, "p", 6), v, INF_STATIC);
    plant.rt.untemporal = {v};
    plant.measure(m, 97);
    v->defined = m->defined = 1;
    m->highalarm = 5;
    m->meslowmisb = m->mesmisb = 1;
    meas = {3};
    start();
    EXPECT_EQ(text(v->old), "6");
    EXPECT_EQ(text(m->old), "3");
    EXPECT_EQ(entries({m->highalarm, m->meslowmisb, m->mesmisb}), "0 0 0");
}

TEST_F(Start, InputsAndMeasuresHaveTheirFirstLineInAllThePast) {
    s_Variable *in = plant.add("in", obj("99")), *m = plant.add("m", obj("98"));
    plant.rt.input = {in};
    plant.measure(m, 97);
    plant.rt.display = {in, m};
    inps = {4};
    meas = {3};
    start();
    EXPECT_EQ(text(in->old), "4");
    EXPECT_EQ(entries(in->histo), "4 4 4 4");
    EXPECT_EQ(entries(m->histo), "3 3 3 3");
    EXPECT_EQ(entries(m->mesHisto), "3 3 3 3");
    EXPECT_EQ(plant.rt.dinfval, (std::vector<double>{4, 3}));
}

// Inputs have no old value while the others get theirs; they move behind them.
TEST_F(Start, InputsMoveAfterTheFirstValues) {
    s_Variable *in = plant.add("in", obj("99")), *v = plant.add("v", obj("1"));
    plant.link(in, v, INF_STATIC);
    plant.rt.input = {in};
    plant.rt.untemporal = {v};
    inps = {4};
    start();
    EXPECT_EQ(text(v->old), "99");
    EXPECT_EQ(text(in->old), "4");
}

// The placing of the first values, which finds no space here, leaves the constraint variable's
// value.
TEST_F(Start, ConstraintsNarrowBeforeTheHistoriesAreFilled) {
    s_Variable* v = plant.add("v", obj("1"));
    s_GVar* g = mkConstraintVar(plant.rt, v, obj("[0, 10]"));
    plant.rt.gV = {g};
    plant.rt.gC = {mkSpace(plant.rt, g, 0, obj("[2, 3]"))};
    plant.rt.init = {{v, obj("[0, 10]")}};
    plant.rt.display = {v};
    keep = &plant.rt;
    std::string const told = printed([this] { start(1); });
    EXPECT_EQ(told, "Error while splitting init state\n");
    EXPECT_EQ(text(v->old), "[2, 3]");
    EXPECT_EQ(entries(v->histo), "[2, 3] [2, 3] [2, 3] [2, 3]");
    EXPECT_EQ(plant.rt.dinfval, (std::vector<double>{2}));
}

TEST_F(Start, WithoutTheSwitchConstraintsDoNotNarrow) {
    s_Variable* v = plant.add("v", obj("1"));
    s_GVar* g = mkConstraintVar(plant.rt, v, obj("[0, 10]"));
    plant.rt.gV = {g};
    plant.rt.gC = {mkSpace(plant.rt, g, 0, obj("[2, 3]"))};
    plant.rt.init = {{v, obj("[0, 10]")}};
    keep = &plant.rt;
    printed([this] { start(0); });
    EXPECT_EQ(text(v->old), "[0, 10]");
    EXPECT_EQ(entries(v->histo), "[0, 10] [0, 10] [0, 10] [0, 10]");
}

// The first check wants two in a row, by the precision of this start, and yields its alarms.
TEST_F(Start, ChecksTheFirstMeasures) {
    s_Variable *far = plant.add("far", obj("1")), *near = plant.add("near", obj("1"));
    plant.measure(far, 0);
    plant.measure(near, 0);
    plant.rt.init = {{far, obj("100")}, {near, obj("100")}};
    meas = {200, 150};  // relative distances 1/3 and 1/5, with 1/4 allowed
    start();
    EXPECT_EQ(entries({far->highalarm, far->meshighmisb, near->highalarm}), "1 0 0");
    EXPECT_EQ(entries(plant.rt.highalarm), "1 0");
    EXPECT_EQ(entries(plant.rt.meshighmisb), "0 0");
}

TEST_F(Start, AWindowOfMisbehavioursForEachMeasure) {
    s_Variable *a = plant.add("a", obj("1")), *b = plant.add("b", obj("1"));
    plant.measure(a, 0);
    plant.measure(b, 0);
    a->misbHisto = {1, 1, 1, 1};
    meas = {0, 0};
    start(0, 3);
    EXPECT_EQ(entries(a->misbHisto) + " | " + entries(b->misbHisto), "0 0 0 | 0 0 0");
    EXPECT_EQ(plant.rt.misbWindow, 3);
    a->misbHisto = {1, 1, 1};
    for (int const none : {0, -4}) {
        start(0, none);
        EXPECT_EQ(entries(a->misbHisto), "1 1 1");
        EXPECT_EQ(plant.rt.misbWindow, 3);
    }
}

TEST_F(Start, TheBoundSearchIsMadeReady) {
    opti_static_obs_ptr = nullptr;
    start();
    EXPECT_NE(opti_static_obs_ptr, nullptr);
}

}  // namespace
}  // namespace engine_test
