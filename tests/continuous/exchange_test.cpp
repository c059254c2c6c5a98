// What enters a runtime from outside, and what it yields; filling and pushing of histories.
#include <cmath>

#include "engine_fixture.h"

namespace engine_test {
namespace {

class Exchange : public EngineTest {
protected:
    s_Influence* link(boolVal value) {
        s_Influence* i = linkWithout();
        plant.condition(i, value);
        return i;
    }
    s_Influence* linkWithout() {
        s_Influence* i = plant.link(plant.add("c", obj("1")), plant.add("e", obj("0")), INF_STATIC);
        sizeArrays(plant.rt);
        return i;
    }

    Plant plant;
};

// ---- Histories ----

TEST_F(Exchange, FillingTakesTheValueForAllThePast) {
    s_Variable* v = plant.add("v", obj("[1, 2]"), 3);
    v->histo = numbered(3);
    sn_fillHisto(v);
    EXPECT_EQ(entries(v->histo), "[1, 2] [1, 2] [1, 2]");
}

TEST_F(Exchange, FillingMeasuresClearsTheirFlags) {
    s_Variable* v = plant.add("v", obj("1"), 2);
    v->mes = obj("7");
    v->lowHisto.fill(1);
    v->highHisto.fill(1);
    sn_fillHistoMes(v);
    EXPECT_EQ(entries(v->mesHisto), "7 7");
    EXPECT_EQ(entries(v->lowHisto), "0 0");
    EXPECT_EQ(entries(v->highHisto), "0 0");
    EXPECT_EQ(entries(v->histo), "1 1");
}

TEST_F(Exchange, FillingAllLeavesParametersAndUnmeasuredMeasures) {
    s_Variable* p = plant.add("p", obj("1"), 1);
    s_Variable* v = plant.add("v", obj("2"), 1);
    s_Variable* m = plant.add("m", obj("3"), 1);
    p->isParam = 1;
    for (s_Variable* x : {p, v, m}) {
        x->histo = x->mesHisto = numbered(1, 9);
        x->mes = obj("5");
    }
    plant.rt.measure = {m};
    sn_fillAllHistos(&plant.rt);
    sn_fillAllHistosMes(&plant.rt);
    EXPECT_EQ(text(p->histo[0]) + text(v->histo[0]) + text(m->histo[0]), "923");
    EXPECT_EQ(text(p->mesHisto[0]) + text(v->mesHisto[0]) + text(m->mesHisto[0]), "995");
}

TEST_F(Exchange, PushingAValue) {
    s_Variable* v = plant.add("v", obj("9"), 3);
    v->histo = numbered(3);
    sn_pushHisto(v);
    EXPECT_EQ(entries(v->histo), "9 1 2");
}

TEST_F(Exchange, PushingAMeasurePushesOneFlagAtMost) {
    s_Variable* v = plant.add("v", obj("9"), 4);
    v->mesHisto = numbered(4);
    std::vector<std::pair<int, int>> const alarms = {{0, 0}, {3, 0}, {0, 4}, {2, 2}};
    double measure = 11;
    for (auto const& [low, high] : alarms) {
        v->lowalarm = low;
        v->highalarm = high;
        v->mes = makeReal(measure++);
        sn_pushHistoMes(v);
    }
    EXPECT_EQ(entries(v->mesHisto), "14 13 12 11");
    EXPECT_EQ(entries(v->lowHisto), "1 0 1 0");
    EXPECT_EQ(entries(v->highHisto), "0 1 0 0");
}

TEST_F(Exchange, WithoutHistoriesPushingDoesNothing) {
    s_Variable* v = plant.add("v", obj("9"), 0);
    v->lowalarm = 1;
    sn_pushHisto(v);
    sn_pushHistoMes(v);
    sn_fillHisto(v);
    sn_fillHistoMes(v);
    EXPECT_EQ(v->histo.size() + v->mesHisto.size() + v->lowHisto.size(), 0);
}

// ---- Inputs and measures ----

TEST_F(Exchange, WithoutInputsNothingIsTouched) {
    double before = 0;
    plant.rt.inval = &before;
    inps = {1};
    EXPECT_EQ(sn_enterInputs(&plant.rt), 1);
    EXPECT_EQ(plant.rt.inval, &before);
}

TEST_F(Exchange, InputsBecomeNewValues) {
    s_Variable* a = plant.add("a", obj("[1, 2]"));
    s_Variable* b = plant.add("b", obj("3"));
    plant.rt.input = {b, a};
    inps = {7, 8};
    EXPECT_EQ(sn_enterInputs(&plant.rt), 1);
    EXPECT_EQ(plant.rt.inval, inps.data());
    EXPECT_EQ(text(b->new_) + " " + text(a->new_), "7 8");
    EXPECT_EQ(text(b->old) + " " + text(a->old), "3 [1, 2]");
    EXPECT_EQ(a->defined + b->defined, 2);
    EXPECT_EQ(entries(a->histo), "[1, 2] [1, 2] [1, 2] [1, 2]");
}

TEST_F(Exchange, WithoutMeasuresNothingIsTouched) {
    double before = 0;
    plant.rt.mesval = &before;
    meas = {1};
    EXPECT_EQ(sn_enterMeasures(&plant.rt), 1);
    EXPECT_EQ(sn_enterMeasuresOld(&plant.rt), 1);
    EXPECT_EQ(plant.rt.mesval, &before);
}

// The measure before goes into the history with the alarms that applied to it.
TEST_F(Exchange, MeasuresPushTheOnesBefore) {
    s_Variable* a = plant.add("a", obj("1"), 2);
    s_Variable* b = plant.add("b", obj("2"), 2);
    plant.measure(b, 20);
    plant.measure(a, 10);
    a->highalarm = 1;
    meas = {21, 11};
    EXPECT_EQ(sn_enterMeasures(&plant.rt), 1);
    EXPECT_EQ(plant.rt.mesval, meas.data());
    EXPECT_EQ(text(b->mes) + " " + text(a->mes), "21 11");
    EXPECT_EQ(entries(a->mesHisto), "10 10");
    EXPECT_EQ(entries(a->highHisto), "1 0");
    EXPECT_EQ(text(a->old) + " " + text(a->new_), "1 1");
    EXPECT_EQ(a->defined, 0);
}

TEST_F(Exchange, MeasuresMayEnterTheStateInstead) {
    s_Variable* a = plant.add("a", obj("1"), 2);
    plant.measure(a, 10);
    meas = {11};
    EXPECT_EQ(sn_enterMeasuresOld(&plant.rt), 1);
    EXPECT_EQ(plant.rt.mesval, meas.data());
    EXPECT_EQ(text(a->old) + " " + text(a->mes), "11 10");
    sn_enterMeasuresOld(&plant.rt);
    EXPECT_EQ(entries(a->mesHisto), "10 10");
}

TEST_F(Exchange, AMeasureThatIsNoNumberIsMissing) {
    s_Variable* a = plant.add("a", obj("1"), 2);
    plant.measure(a, 10);
    meas = {std::nan("")};
    sn_enterMeasures(&plant.rt);
    EXPECT_FALSE(isValue(a->mes));
    sn_enterMeasures(&plant.rt);
    EXPECT_FALSE(isValue(a->mesHisto[0]));
    EXPECT_EQ(text(a->mesHisto[1]), "10");
}

// ---- Displays ----

TEST_F(Exchange, DisplaysAreTheBoundsOfOld) {
    s_Variable* a = plant.add("a", obj("]1, 2]"));
    s_Variable* b = plant.add("b", obj("3"));
    a->new_ = b->new_ = obj("77");
    plant.rt.display = {b, a};
    sizeArrays(plant.rt);
    EXPECT_EQ(sn_yieldDisplays(&plant.rt), 1);
    EXPECT_EQ(plant.rt.dinfval, (std::vector<double>{3, 1}));
    EXPECT_EQ(plant.rt.dsupval, (std::vector<double>{3, 2}));
}

TEST_F(Exchange, WithoutDisplays) {
    EXPECT_EQ(sn_yieldDisplays(&plant.rt), 1);
}

// ---- Conditions that are yielded ----

TEST_F(Exchange, WithoutInfluencesEveryConditionIsFalse) {
    EXPECT_EQ(sn_yieldConds(&plant.rt), 2);
}

TEST_F(Exchange, ConditionsAreYieldedAsTheyWereEvaluated) {
    link(0);
    link(1);
    link(0);
    linkWithout();
    EXPECT_EQ(sn_yieldConds(&plant.rt), 1);
    EXPECT_EQ(entries(plant.rt.condout), "0 1 0 1");
}

TEST_F(Exchange, OneTrueConditionIsEnough) {
    link(1);
    link(0);
    EXPECT_EQ(sn_yieldConds(&plant.rt), 1);
}

TEST_F(Exchange, AnInfluenceWithoutConditionIsEnough) {
    linkWithout();
    link(0);
    EXPECT_EQ(sn_yieldConds(&plant.rt), 1);
    EXPECT_EQ(entries(plant.rt.condout), "1 0");
}

TEST_F(Exchange, AllFalseIsTold) {
    link(0);
    link(0);
    plant.rt.condout = {1, 1};
    EXPECT_EQ(sn_yieldConds(&plant.rt), 2);
    EXPECT_EQ(entries(plant.rt.condout), "0 0");
}

// ---- The same over the runtimes of a split ----

class ExchangeSplit : public Exchange {
protected:
    // A runtime that stands in nrt already, with one influence on a condition of this value.
    s_runtime* another(int num, boolVal value) {
        auto other = std::make_unique<s_runtime>();
        other->engine = &theEngine;
        other->num = num;
        s_Condition* condition = adoptCondition(*other, mkCond());
        condition->val = value;
        mkInfluence(*other, "", INF_STATIC, nullptr, nullptr, condition, 1, obj("1"), 0, 0);
        sizeArrays(*other);
        return nrt.insert({num, other.release()})->second;
    }
};

TEST_F(ExchangeSplit, TheRuntimeItselfIsAmongThem) {
    keep = &plant.rt;
    link(1);
    EXPECT_EQ(sn_yieldMRTConds(&plant.rt), 1);
    ASSERT_EQ(nrt.size(), 1u);
    EXPECT_EQ(nrt.begin()->second, &plant.rt);
    EXPECT_EQ(entries(plant.rt.condout), "1");
}

TEST_F(ExchangeSplit, WithoutInfluencesEveryConditionIsFalse) {
    keep = &plant.rt;
    EXPECT_EQ(sn_yieldMRTConds(&plant.rt), 2);
}

// By identity: -1, then the runtime itself with 0, then 1.
TEST_F(ExchangeSplit, TheWalkEndsAtTheFirstWithTheMarkStillSet) {
    keep = &plant.rt;
    link(1);
    another(-1, 0);
    EXPECT_EQ(sn_yieldMRTConds(&plant.rt), 2);
    EXPECT_EQ(entries(plant.rt.condout), "0");  // not reached
}

TEST_F(ExchangeSplit, TheMarkIsNotSetAgain) {
    keep = &plant.rt;
    link(1);
    s_runtime* later = another(1, 0);
    later->condout = {7};
    EXPECT_EQ(sn_yieldMRTConds(&plant.rt), 1);
    EXPECT_EQ(entries(later->condout), "0");
}

// ---- Misbehaviours and conditions from outside ----

TEST_F(Exchange, WithoutMeasuresNoMisbehavioursAreAsked) {
    EXPECT_EQ(sn_enterMisbs(&plant.rt), 1);
    EXPECT_EQ(outside.count, -1);
}

TEST_F(Exchange, MisbehavioursBecomeFlags) {
    s_Variable* a = plant.add("a", obj("1"));
    s_Variable* b = plant.add("b", obj("1"));
    s_Variable* c = plant.add("c", obj("1"));
    for (s_Variable* v : {c, a, b})
        plant.measure(v, 0);
    b->mesmisb = 1;
    outside.misbs = {5, 0, 0};
    EXPECT_EQ(sn_enterMisbs(&plant.rt), 1);
    EXPECT_EQ(outside.count, 3);
    EXPECT_EQ(entries({c->mesmisb, a->mesmisb, b->mesmisb}), "1 0 0");
    EXPECT_EQ(entries(plant.rt.mesmisb), "5 0 0");
}

// What the host left in the buffer counts even when it failed.
TEST_F(Exchange, AFailureIsHandedOn) {
    s_Variable* a = plant.add("a", obj("1"));
    plant.measure(a, 0);
    plant.rt.mesmisb = {1};
    outside.given = false;
    EXPECT_EQ(sn_enterMisbs(&plant.rt), 0);
    EXPECT_EQ(a->mesmisb, 1);
}

TEST_F(Exchange, WithoutInfluencesNoConditionsAreAsked) {
    EXPECT_EQ(sn_enterConds(&plant.rt), 2);
    EXPECT_EQ(outside.count, -1);
}

TEST_F(Exchange, ConditionsFromOutsideArePushed) {
    s_Influence* first = link(1);
    linkWithout();
    s_Influence* third = link(0);
    first->condHisto.assign(8, 0);
    outside.conds = {0, 0, 1};
    EXPECT_EQ(sn_enterConds(&plant.rt), 1);
    EXPECT_EQ(outside.count, 3);
    EXPECT_EQ(entries({first->cond->val, third->cond->val}), "0 1");
    EXPECT_EQ(entries({first->condHisto[0], third->condHisto[0]}), "0 1");
    EXPECT_EQ(dynamic_test::evaluations(*third), 1);
}

TEST_F(Exchange, AllConditionsFromOutsideFalse) {
    link(1);
    link(1);
    outside.conds = {0, 0};
    EXPECT_EQ(sn_enterConds(&plant.rt), 2);
    outside.conds = {0, 1};
    EXPECT_EQ(sn_enterConds(&plant.rt), 1);
    outside.conds = {1, 0};
    EXPECT_EQ(sn_enterConds(&plant.rt), 1);
}

TEST_F(Exchange, AnUnconditionalInfluenceClearsTheMark) {
    link(1);
    linkWithout();
    outside.conds = {0, 0};
    EXPECT_EQ(sn_enterConds(&plant.rt), 1);
}

TEST_F(Exchange, AFailureEndsBeforeAnyIsPushed) {
    s_Influence* i = link(1);
    outside.conds = {0};
    outside.given = false;
    EXPECT_EQ(sn_enterConds(&plant.rt), 0);
    EXPECT_EQ(dynamic_test::evaluations(*i), 0);
    EXPECT_EQ(i->cond->val, 1);
}

}  // namespace
}  // namespace engine_test
