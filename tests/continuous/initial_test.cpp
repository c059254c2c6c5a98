// The first values of a runtime.
#include "engine_fixture.h"

namespace engine_test {
namespace {

class Initial : public EngineTest {
protected:
    // A variable as it stands before its first value.
    s_Variable* add(char const* nom, int histLen = 2) {
        s_Variable* v = plant.add(nom, obj("0"), histLen);
        v->old = v->new_ = v->mes = s_Objet{};
        v->histo.fill(*objZero);
        return v;
    }
    // A variable with a first value.
    s_Variable* known(char const* nom, char const* value) {
        s_Variable* v = plant.add(nom, obj(value), 2);
        v->defined = 1;
        return v;
    }
    std::string first(s_Variable* v) {
        sn_compInitVar(&plant.rt, v);
        return state(*v);
    }
    static std::string state(s_Variable const& v) {
        return text(v.old) + " | " + entries(v.histo) + " | " + std::to_string(v.defined);
    }

    Plant plant;
};

// ---- One variable ----

TEST_F(Initial, WithoutCausesAVariableStaysUndefined) {
    s_Variable* v = add("v");
    EXPECT_EQ(first(v), "type 0 | 0 0 | 0");
    mkGraph(plant.rt, v, INF_STATIC, {}, {});
    EXPECT_EQ(first(v), "type 0 | 0 0 | 0");
}

TEST_F(Initial, AnIntegralAddsToWhatItsEffectHolds) {
    s_Variable* v = add("v");
    plant.link(known("a", "2"), v, INF_INTEGRAL, "10")->gain = obj("77");
    plant.link(known("b", "[3, 4]"), v, INF_INTEGRAL, "1");
    EXPECT_EQ(first(v), "[23, 24] | [23, 24] [23, 24] | 1");
    v->old = obj("100");
    EXPECT_EQ(first(v), "[123, 124] | [123, 124] [123, 124] | 1");
}

TEST_F(Initial, AStaticSum) {
    s_Variable* v = add("v");
    plant.link(known("a", "2"), v, INF_STATIC, "10")->gain = obj("77");
    plant.link(known("b", "3"), v, INF_STATIC, "-1");
    EXPECT_EQ(first(v), "17 | 17 17 | 1");
}

// The state ten samples ahead, a1^10 = 2^-10: (1 - 2^-10) 1024 + 2^-10 * 2048, by rounded
// logarithms.
TEST_F(Initial, AFirstOrderTakesTheGainsAndRunsAhead) {
    s_Variable* v = add("v");
    s_Influence* i = plant.link(known("a", "1024"), v, INF_DYNAMIC);
    i->a1 = obj("0.5");
    i->b1 = obj("77");
    v->old = obj("2048");
    first(v);
    EXPECT_NEAR(v->old.real, 1025, 1e-9);
    EXPECT_EQ(text(v->histo[1]), text(v->old));
}

// a1 = 1 keeps the state and a1 = 0 takes the sum. The last influence decides, active or not.
TEST_F(Initial, TheLastInfluenceGivesTheRecursion) {
    s_Variable* v = add("v");
    v->old = obj("9");
    plant.link(known("a", "2"), v, INF_DYNAMIC)->a1 = obj("0");
    s_Influence* last = plant.link(known("b", "3"), v, INF_DYNAMIC);
    last->a1 = obj("1");
    plant.condition(last, 0);
    EXPECT_EQ(first(v), "9 | 9 9 | 1");
}

// 10 u + 1000 u' + 2 y + 1 y', the primed ones the newest of the histories.
TEST_F(Initial, TheSecondOrderTakesTwoSamplesOfEach) {
    s_Variable* v = add("v");
    v->old = obj("100");
    v->histo.set(0, obj("50"));
    s_Variable* u = known("u", "2");
    u->histo.set(0, obj("4"));
    s_Influence* i = plant.link(u, v, INF_DYNAMIC2, "10");
    i->b2 = obj("1000");
    i->a1 = obj("2");
    i->a2 = obj("1");
    EXPECT_EQ(first(v), "4270 | 4270 4270 | 1");
}

TEST_F(Initial, ASecondOrderCauseWithoutHistoryHasItsValueForBoth) {
    s_Variable* v = add("v");
    v->old = obj("0");
    s_Variable* u = known("u", "2");
    u->histo = History<s_Objet>();
    s_Influence* i = plant.link(u, v, INF_DYNAMIC2, "10");
    i->b2 = obj("1000");
    i->a1 = i->a2 = obj("0");
    EXPECT_EQ(first(v), "2020 | 2020 2020 | 1");
}

// A coefficient times a value that is not there yet stays the coefficient. The first order has
// (1 - 1) * 7 from its cause, and a1^10 = 1. The second order has 10 u = 20 and a1 = 2, and of its
// past -1 * 3 = -3, or a2 = -1 where that is not there either.
TEST_F(Initial, AnEffectWithoutAValueLeavesTheCoefficients) {
    s_Variable *lag = add("lag"), *second = add("second"), *bare = add("bare");
    plant.link(known("a", "7"), lag, INF_DYNAMIC)->a1 = obj("1");
    EXPECT_EQ(first(lag), "1 | 1 1 | 1");
    for (s_Variable* v : {second, bare}) {
        s_Influence* i = plant.link(known("u", "2"), v, INF_DYNAMIC2, "10");
        i->a1 = obj("2");
        i->a2 = obj("-1");
        i->b2 = obj("0");
    }
    second->histo.set(0, obj("3"));
    bare->histo.set(0, s_Objet{});
    EXPECT_EQ(first(second), "19 | 19 19 | 1");
    EXPECT_EQ(first(bare), "21 | 21 21 | 1");
}

TEST_F(Initial, AnotherKindLeavesZero) {
    s_Variable* v = add("v");
    s_Influence* i = plant.link(known("a", "2"), v, INF_COUPLING, "10");
    plant.condition(i, 1);
    EXPECT_EQ(first(v), "0 | 0 0 | 1");
    EXPECT_EQ(dynamic_test::evaluations(*i), 0);
}

TEST_F(Initial, OnlyActiveCausesCount) {
    s_Variable* v = add("v");
    s_Influence* off = plant.link(known("a", "2"), v, INF_STATIC, "10");
    s_Influence* on = plant.link(known("b", "3"), v, INF_STATIC, "1");
    plant.condition(off, 0);
    plant.condition(on, 1);
    EXPECT_EQ(first(v), "3 | 3 3 | 1");
    EXPECT_EQ(entries({off->condHisto[0], on->condHisto[0]}), "0 1");
    EXPECT_EQ(dynamic_test::evaluations(*off), 1);
}

// ---- Static causes that have no value yet ----

TEST_F(Initial, AnUndefinedStaticCauseIsComputedFirst) {
    s_Variable *v = add("v"), *middle = add("middle"), *deep = add("deep");
    plant.link(middle, v, INF_STATIC, "2");
    plant.link(known("b", "1"), v, INF_STATIC, "1");
    plant.link(deep, middle, INF_STATIC, "3");
    plant.link(known("a", "5"), deep, INF_STATIC, "1");
    EXPECT_EQ(first(v), "31 | 31 31 | 1");
    EXPECT_EQ(state(*middle), "15 | 15 15 | 1");
    EXPECT_EQ(state(*deep), "5 | 5 5 | 1");
}

// Nested computations use objects of their own: the sum of the outer one survives a dynamic cause.
TEST_F(Initial, ANestedDynamicCauseLeavesTheSum) {
    s_Variable *v = add("v"), *d = add("d");
    plant.link(known("a", "100"), v, INF_STATIC, "1");
    plant.link(d, v, INF_STATIC, "1");
    plant.link(known("b", "7"), d, INF_DYNAMIC)->a1 = obj("0");
    d->old = obj("0");
    EXPECT_EQ(first(v), "107 | 107 107 | 1");
}

TEST_F(Initial, AnUndefinedMeasuredCauseTakesItsMeasure) {
    s_Variable *v = add("v"), *m = add("m");
    plant.link(known("a", "5"), m, INF_STATIC, "1");
    plant.measure(m, 8);
    plant.link(m, v, INF_STATIC, "2");
    EXPECT_EQ(first(v), "16 | 16 16 | 1");
    EXPECT_EQ(state(*m), "8 | 0 0 | 1");
}

TEST_F(Initial, ADefinedCauseKeepsItsValue) {
    s_Variable *v = add("v"), *m = known("m", "5");
    plant.measure(m, 8);
    plant.link(m, v, INF_STATIC, "2");
    EXPECT_EQ(first(v), "10 | 10 10 | 1");
}

TEST_F(Initial, AnInactiveCauseIsNotComputed) {
    s_Variable *v = add("v"), *middle = add("middle");
    plant.link(known("a", "5"), middle, INF_STATIC, "1");
    plant.condition(plant.link(middle, v, INF_STATIC, "2"), 0);
    EXPECT_EQ(first(v), "0 | 0 0 | 1");
    EXPECT_EQ(middle->defined, 0);
}

// Only static links look for a value: the others take what there is.
TEST_F(Initial, AnUndefinedCauseOfAnotherKindContributesNothing) {
    for (influType const kind : {INF_INTEGRAL, INF_DYNAMIC, INF_DYNAMIC2}) {
        s_Variable *v = add("v"), *middle = add("middle");
        v->old = obj("0");
        plant.link(known("a", "5"), middle, INF_STATIC, "1");
        s_Influence* i = plant.link(middle, v, kind, "2");
        i->a1 = i->a2 = i->b2 = obj("0");
        EXPECT_EQ(first(v), "0 | 0 0 | 1") << kind;
        EXPECT_EQ(middle->defined, 0);
    }
}

TEST_F(Initial, AStaticCauseWithoutCausesContributesNothing) {
    s_Variable* v = add("v");
    s_Variable* p = parameter(plant, "p", 3);
    plant.link(add("nothing"), v, INF_STATIC, "2");
    plant.link(p, v, INF_STATIC, "2");
    EXPECT_EQ(first(v), "6 | 6 6 | 1");
    EXPECT_EQ(p->defined, 0);
}

TEST_F(Initial, ALoopOfStaticCausesEndsAndIsTold) {
    s_Variable *x = add("x"), *y = add("y");
    plant.link(y, x, INF_STATIC, "2");
    plant.link(known("a", "5"), x, INF_STATIC, "1");
    plant.link(x, y, INF_STATIC, "3");
    plant.link(known("b", "7"), y, INF_STATIC, "1");
    EXPECT_EQ(complaint([&] { first(x); }), "The first value of x depends on itself !\n");
    EXPECT_EQ(state(*y), "7 | 7 7 | 1");
    EXPECT_EQ(state(*x), "19 | 19 19 | 1");
}

TEST_F(Initial, AVariableThatCausesItselfEndsAndIsTold) {
    s_Variable* x = add("x");
    x->old = obj("4");
    plant.link(x, x, INF_STATIC, "2");
    EXPECT_EQ(complaint([&] { first(x); }), "The first value of x depends on itself !\n");
    EXPECT_EQ(state(*x), "8 | 8 8 | 1");
}

// ---- All of them ----

class InitVars : public Initial {
protected:
    void run() {
        EXPECT_EQ(printed([this] { sn_initVars(&plant.rt); }), "");
        EXPECT_EQ(plant.rt.varsInitialised, 1);
    }
};

TEST_F(InitVars, AnEmptyRuntimeIsInitialised) {
    run();
    EXPECT_TRUE(nrt.empty());
}

TEST_F(InitVars, InitialValuesAreEntered) {
    s_Variable* v = add("v");
    plant.rt.init = {{v, obj("[1, 2]")}};
    run();
    EXPECT_EQ(state(*v), "[1, 2] | [1, 2] [1, 2] | 1");
}

TEST_F(InitVars, AMeasureStartsFromItsMeasure) {
    s_Variable* v = add("v");
    plant.measure(v, 6);
    run();
    EXPECT_EQ(state(*v), "6 | 6 6 | 1");
}

TEST_F(InitVars, AnInitialValueGoesBeforeTheMeasureAndTheCauses) {
    s_Variable* v = add("v");
    plant.measure(v, 6);
    plant.link(known("a", "5"), v, INF_STATIC, "1");
    plant.rt.untemporal = {v};
    plant.rt.init = {{v, obj("3")}};
    run();
    EXPECT_EQ(state(*v), "3 | 3 3 | 1");
}

TEST_F(InitVars, TheMeasureGoesBeforeTheCauses) {
    s_Variable* v = add("v");
    plant.measure(v, 6);
    plant.link(known("a", "5"), v, INF_STATIC, "1");
    plant.rt.untemporal = {v};
    run();
    EXPECT_EQ(state(*v), "6 | 6 6 | 1");
}

TEST_F(InitVars, DefinedVariablesOfTheListsAreLeft) {
    s_Variable* v = known("v", "3");
    plant.link(known("a", "5"), v, INF_STATIC, "1");
    plant.rt.temporal = plant.rt.untemporal = {v};
    run();
    EXPECT_EQ(text(v->old), "3");
}

// An integral takes what its cause holds, so that the order of the two shows.
TEST_F(InitVars, TemporalVariablesGoBeforeUntemporalOnes) {
    s_Variable *t = add("t"), *u = add("u");
    plant.link(known("a", "5"), t, INF_STATIC, "1");
    plant.link(t, u, INF_INTEGRAL, "1");
    plant.rt.temporal = {t};
    plant.rt.untemporal = {u};
    run();
    EXPECT_EQ(text(u->old), "5");

    t->old = u->old = s_Objet{};
    t->defined = u->defined = 0;
    plant.rt.temporal = {u};
    plant.rt.untemporal = {t};
    run();
    EXPECT_EQ(text(u->old), "0");
    EXPECT_EQ(text(t->old), "5");
}

TEST_F(InitVars, AListIsWalkedInItsOrder) {
    s_Variable *t = add("t"), *u = add("u");
    plant.link(known("a", "5"), t, INF_STATIC, "1");
    plant.link(t, u, INF_INTEGRAL, "1");
    plant.rt.untemporal = {u, t};
    run();
    EXPECT_EQ(text(u->old), "0");
}

// There are constraint variables but none of them could be placed.
TEST_F(InitVars, AFailedPlacingIsToldAndTheStartGoesOn) {
    s_Variable* v = add("v");
    plant.rt.init = {{v, obj("3")}};
    plant.rt.gV = {mkConstraintVar(plant.rt, v, obj("0"))};
    keep = &plant.rt;
    EXPECT_EQ(printed([this] { sn_initVars(&plant.rt); }), "Error while splitting init state\n");
    EXPECT_EQ(plant.rt.varsInitialised, 1);
}

}  // namespace
}  // namespace engine_test
