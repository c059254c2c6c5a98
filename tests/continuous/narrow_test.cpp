// The rule `narrow`, one relation at a time. Every bound is worked out by hand.
#include "narrow_fixture.h"

using namespace narrow_test;

namespace {

// y = 2 u + v with u in [0, 10] and v in [1, 2].
class Static : public NarrowTest {
protected:
    Static() {
        u = free("u", closed(0, 10));
        v = free("v", closed(1, 2));
        y = effect("y", closed(1, 22));
        toU = link(u, y, INF_STATIC, "2");
        link(v, y, INF_STATIC);
    }

    s_Variable *u, *v, *y;
    s_Influence* toU;
};

// u = (9 - [1, 2]) / 2; what v and u leave for each other does not narrow v; y = 2 u + v.
TEST_F(Static, AMeasureNarrowsItsCauseAndThePredictionFollows) {
    plant.measure(y, 9);
    sn_narrowCycle(&plant.rt);
    expectNow(u, 3.5, 4);
    expectNow(v, 1, 2);
    expectNow(y, 8, 10);
}

// u = ([8, 10] - [1, 2]) / 2.
TEST_F(Static, NoiseWidensTheMeasure) {
    plant.measure(y, 9);
    y->noise = 1;
    sn_narrowCycle(&plant.rt);
    expectNow(u, 3, 4.5);
}

// w = 3 u, z = w + v: two links behind the measure of z, 22 = 3 u + [1, 2].
TEST_F(Static, ItReachesThroughWhatIsNotMeasured) {
    s_Variable* w = effect("w", closed(0, 30));
    link(u, w, INF_STATIC, "3");
    s_Variable* z = effect("z", closed(1, 32));
    link(w, z, INF_STATIC);
    link(v, z, INF_STATIC);
    plant.measure(z, 22);
    sn_narrowCycle(&plant.rt);
    expectNow(w, 20, 21);
    expectNow(u, 20.0 / 3, 7);
    expectNow(y, 1 + 40.0 / 3, 16);  // forward again, to an effect that is not measured
}

TEST_F(Static, AMeasureInAlarmNarrowsNothing) {
    plant.measure(y, 9);
    y->lowalarm = 1;
    sn_narrowCycle(&plant.rt);
    expectNow(u, 0, 10);
    y->lowalarm = 0;
    y->highalarm = 2;
    sn_narrowCycle(&plant.rt);
    expectNow(u, 0, 10);
}

TEST_F(Static, NorDoesOneBesideItsPrediction) {
    plant.measure(y, 23);
    sn_narrowCycle(&plant.rt);
    expectNow(u, 0, 10);
    EXPECT_EQ(y->sideOfOthers, 0);
}

// But with its noise it does: y in [21, 25], and no more than 22; u = [21 - 2, 22 - 1] / 2.
TEST_F(Static, UnlessTheNoiseReachesThere) {
    plant.measure(y, 23);
    y->noise = 2;
    sn_narrowCycle(&plant.rt);
    expectNow(u, 9.5, 10);
}

TEST_F(Static, AnInactiveInfluenceIsNoPartOfTheSum) {
    plant.condition(toU, 0);
    y->new_ = closed(1, 2);
    plant.measure(y, 1.5);
    sn_narrowCycle(&plant.rt);
    expectNow(u, 0, 10);
    expectNow(v, 1.5, 1.5);
}

TEST_F(Static, ConditionsAreNotPushed) {
    s_Condition* condition = plant.condition(toU, 1);
    plant.measure(y, 9);
    sn_narrowCycle(&plant.rt);
    EXPECT_EQ(dynamic_test::evaluations(*toU), 0);
    EXPECT_EQ(condition->val, 1);
    expectNow(u, 3.5, 4);
}

// Whether the influence acts is not certain while g lies on both sides of 5: it may add nothing.
TEST_F(Static, NothingIsNarrowedBehindAnUncertainCondition) {
    s_Variable* g = plant.add("g", closed(4, 6));
    s_Condition* condition = plant.condition(toU, 0);
    condition->kind = COND_REL;
    condition->op = REL_GE;
    condition->var = g;
    condition->value = makeReal(5);
    plant.measure(y, 9);
    sn_narrowCycle(&plant.rt);
    expectNow(u, 0, 10);
    g->old = closed(5.5, 6);
    sn_narrowCycle(&plant.rt);
    expectNow(u, 3.5, 4);
}

TEST_F(Static, NorThroughACoefficientThatMayBeZero) {
    toU->b1 = closed(-1, 2);
    y->new_ = closed(-9, 22);
    plant.measure(y, 9);
    sn_narrowCycle(&plant.rt);
    expectNow(u, 0, 10);
}

// u = 9 / [2, 3] less v: ([7, 8]) / [2, 3].
TEST_F(Static, AnIntervalCoefficientDividesByBothEnds) {
    toU->b1 = closed(2, 3);
    y->new_ = closed(1, 32);
    plant.measure(y, 9);
    sn_narrowCycle(&plant.rt);
    expectNow(u, 7.0 / 3, 4);
}

// And a negative one turns the ends: 9 = -2 u + v, u = ([1, 2] - 9) / 2 = [-4, -3.5].
TEST_F(Static, ANegativeCoefficientTurnsTheEnds) {
    toU->b1 = makeReal(-2);
    u->new_ = closed(-10, 0);
    u->graph->causes[0]->b1 = closed(-10, 0);
    y->new_ = closed(1, 22);
    plant.measure(y, 9);
    sn_narrowCycle(&plant.rt);
    expectNow(u, -4, -3.5);
}

TEST_F(Static, ParametersAndInputsStay) {
    s_Variable* input = plant.add("in", closed(0, 3));
    plant.rt.input.push_back(input);
    s_Variable* z = effect("z", closed(0, 13));
    link(input, z, INF_STATIC);
    link(u, z, INF_STATIC);
    plant.measure(z, 1);
    sn_narrowCycle(&plant.rt);
    EXPECT_EQ(text(input->new_), text(closed(0, 3)));
    expectNow(u, 0, 1);
    EXPECT_EQ(one->old.real, 1.0);
}

// y = 2 u + v = 9 and z = u = 9 agree with their predictions, but not with each other: from z, y is
// at least 19, and from y, u is at most 4.
TEST_F(Static, MeasuresThatContradictEachOtherNarrowNothingAndAreOutside) {
    s_Variable* z = effect("z", closed(0, 10));
    link(u, z, INF_STATIC);
    plant.measure(y, 9);
    plant.measure(z, 9);
    sn_narrowCycle(&plant.rt);
    EXPECT_EQ(text(u->new_), text(closed(0, 10)));
    EXPECT_EQ(text(v->new_), text(closed(1, 2)));
    EXPECT_EQ(text(y->new_), text(closed(1, 22)));
    EXPECT_EQ(y->sideOfOthers, -1);
    EXPECT_EQ(z->sideOfOthers, 1);
    sn_moveAllOld(&plant.rt);
    sn_checkMs(&plant.rt, 1);
    EXPECT_EQ(y->meslowmisb, 1);
    EXPECT_EQ(z->meshighmisb, 1);
}

// The noise of either explains the difference: u in [8, 10] of z, [-0.5, 9] of y.
TEST_F(Static, NoiseExplainsADifference) {
    s_Variable* z = effect("z", closed(0, 10));
    link(u, z, INF_STATIC);
    plant.measure(y, 9);
    plant.measure(z, 9);
    y->noise = 10;
    z->noise = 1;
    sn_narrowCycle(&plant.rt);
    EXPECT_EQ(y->sideOfOthers, 0);
    EXPECT_EQ(z->sideOfOthers, 0);
    expectNow(u, 8, 9);
}

// With the tolerance of the check a difference in the last digit of a data line is none.
TEST_F(Static, TheToleranceHoldsBetweenMeasures) {
    s_Variable* z = effect("z", closed(0, 10));
    link(u, z, INF_STATIC);
    s_Variable* w = effect("w", closed(0, 10));
    link(u, w, INF_STATIC);
    plant.measure(z, 5);
    plant.measure(w, 5.000001);
    plant.rt.precision = 0.01;
    sn_narrowCycle(&plant.rt);
    EXPECT_EQ(z->sideOfOthers, 0);
    EXPECT_EQ(w->sideOfOthers, 0);
    EXPECT_EQ(text(u->new_), text(closed(0, 10)));
    plant.rt.precision = 1e-8;
    sn_narrowCycle(&plant.rt);
    EXPECT_EQ(z->sideOfOthers, -1);
    EXPECT_EQ(w->sideOfOthers, 1);
}

// A new cycle judges anew.
TEST_F(Static, TheSideOfOneCycleIsForgottenInTheNext) {
    plant.measure(y, 9);
    y->sideOfOthers = 1;
    sn_narrowCycle(&plant.rt);
    EXPECT_EQ(y->sideOfOthers, 0);
}

class Past : public NarrowTest {};

// x(k) = x(k-1) + 2 u(k-1): with x(k) = 9 and u(k-1) in [1, 2], x(k-1) = [5, 7], and z = x(k-1).
TEST_F(Past, AnIntegralGoesBackToItsOwnPast) {
    s_Variable* u = free("u", closed(1, 2));
    s_Variable* x = temporal("x", closed(0, 10), closed(2, 14));
    link(u, x, INF_INTEGRAL, "2");
    s_Variable* z = effect("z", closed(0, 10));
    link(x, z, INF_STATIC, "1", 1);
    plant.measure(x, 9);
    sn_narrowCycle(&plant.rt);
    expectNow(z, 5, 7);
    expectNow(x, 7, 11);
    // What was known at the end of the last step stays what it was.
    EXPECT_EQ(text(x->old), text(closed(0, 10)));
    expectNow(u, 1, 2);
}

// y(k) = 0.5 y(k-1) + 0.5 u(k-1): with y(k) = 4 and u(k-1) in [2, 3], y(k-1) = 8 - [2, 3].
TEST_F(Past, AFirstOrderEffectGoesBackToItsOwnPast) {
    s_Variable* u = free("u", closed(2, 3));
    s_Variable* y = temporal("y", closed(0, 8), closed(1, 5.5));
    link(u, y, INF_DYNAMIC)->a1 = makeReal(0.5);
    s_Variable* z = effect("z", closed(0, 8));
    link(y, z, INF_STATIC, "1", 1);
    plant.measure(y, 4);
    sn_narrowCycle(&plant.rt);
    expectNow(z, 5, 6);
    expectNow(y, 3.5, 4.5);
}

// The same backward into the cause: y(k-1) = 6 exactly, u(k-1) = 8 - 6, and z = u(k-1).
TEST_F(Past, AFirstOrderEffectGoesBackToItsCause) {
    s_Variable* u = free("u", closed(0, 10));
    s_Variable* y = temporal("y", makeReal(6), closed(3, 8));
    link(u, y, INF_DYNAMIC, "1")->a1 = makeReal(0.5);
    s_Variable* z = effect("z", closed(0, 10));
    link(u, z, INF_STATIC, "1", 1);
    plant.measure(y, 4);
    sn_narrowCycle(&plant.rt);
    expectNow(z, 2, 2);
}

// With a in [0.5, 0.75], y(k-1) = 8 and y(k) = 7: u = (7 - a 8) / (1 - a), from (7 - 6) / 0.5 or
// 0.25 to (7 - 4) / 0.5 or 0.25, a counted twice: [2, 12], of which [2, 10] was possible.
TEST_F(Past, AnIntervalResponseIsCountedAtBothEnds) {
    s_Variable* u = free("u", closed(0, 10));
    s_Variable* y = temporal("y", makeReal(8), closed(4, 9));
    link(u, y, INF_DYNAMIC)->a1 = closed(0.5, 0.75);
    s_Variable* z = effect("z", closed(0, 10));
    link(u, z, INF_STATIC, "1", 1);
    plant.measure(y, 7);
    sn_narrowCycle(&plant.rt);
    expectNow(z, 2, 10);
}

// y(k) = y(k-1) - 0.5 y(k-2) + u(k-1) + u(k-2), with y(k-1) = 4, y(k-2) = 2, u(k-2) = 1 and
// y(k) = 6: u(k-1) = 6 - 4 + 1 - 1.
TEST_F(Past, ASecondOrderEffectGoesBackToItsCause) {
    s_Variable* u = free("u", closed(0, 10));
    u->histo.fill(makeReal(1));
    s_Variable* y = temporal("y", makeReal(4), closed(4, 14));
    y->histo.fill(makeReal(2));
    s_Influence* influence = link(u, y, INF_DYNAMIC2);
    influence->a1 = makeReal(1);
    influence->a2 = makeReal(-0.5);
    influence->b2 = makeReal(1);
    s_Variable* z = effect("z", closed(0, 10));
    link(u, z, INF_STATIC, "1", 1);
    plant.measure(y, 6);
    sn_narrowCycle(&plant.rt);
    expectNow(z, 2, 2);
}

// An interval b2 beside a number b1: the update loses the cause, so the relation is no hull.
TEST_F(Past, ASecondOrderEffectThatLosesItsCauseIsLeftOut) {
    s_Variable* u = free("u", closed(0, 10));
    s_Variable* y = temporal("y", makeReal(4), closed(0, 14));
    s_Influence* influence = link(u, y, INF_DYNAMIC2);
    influence->a1 = makeReal(1);
    influence->a2 = makeReal(-0.5);
    influence->b2 = closed(0, 1);
    s_Variable* z = effect("z", closed(0, 10));
    link(u, z, INF_STATIC, "1", 1);
    plant.measure(y, 6);
    sn_narrowCycle(&plant.rt);
    expectNow(z, 0, 10);
}

// y = u(k-3) = 4, and z = 2 u(k-3) with it; u(k-1), and so w = u(k-1), stays. The history too.
TEST_F(Past, ADelayIsNarrowedWhereItIsRead) {
    s_Variable* u = free("u", closed(0, 10));
    s_Variable* y = effect("y", closed(0, 10));
    s_Variable* z = effect("z", closed(0, 20));
    s_Variable* w = effect("w", closed(0, 10));
    link(u, y, INF_STATIC, "1", 3);
    link(u, z, INF_STATIC, "2", 3);
    link(u, w, INF_STATIC, "1", 1);
    plant.measure(y, 4);
    sn_narrowCycle(&plant.rt);
    expectNow(z, 8, 8);
    expectNow(w, 0, 10);
    EXPECT_EQ(entries(u->histo), "[0, 10] [0, 10] [0, 10] [0, 10]");
}

// One of u(k-2) and u(k-3) is 4, and which one is not known; together they tell v = y - u.
TEST_F(Past, OfARangeOfDelaysNoneIsNarrowed) {
    s_Variable* u = free("u", closed(0, 10));
    s_Variable* v = free("v", closed(0, 50));
    s_Variable* y = effect("y", closed(0, 60));
    s_Influence* influence = link(u, y, INF_STATIC);
    influence->delayMin = 2;
    influence->delayMax = 3;
    u->histo.set(0, closed(1, 2));
    u->histo.set(1, closed(4, 5));
    link(v, y, INF_STATIC);
    s_Variable* z = effect("z", closed(4, 5));
    link(u, z, INF_STATIC, "1", 3);
    plant.measure(y, 40);
    sn_narrowCycle(&plant.rt);
    expectNow(v, 35, 39);
    expectNow(z, 4, 5);
}

// Two cycles later the history has ended: its oldest value stands for all that is older.
TEST_F(Past, BehindTheHistoryNothingIsNarrowed) {
    s_Variable* u = free("u", closed(0, 10), 1);
    s_Variable* y = effect("y", closed(0, 10));
    link(u, y, INF_STATIC, "1", 3);
    s_Variable* z = effect("z", closed(0, 10));
    link(u, z, INF_STATIC, "1", 2);
    plant.measure(y, 4);
    sn_narrowCycle(&plant.rt);
    expectNow(z, 0, 10);
}

// ---- Before a cycle ----

class Taking : public NarrowTest {
protected:
    s_Variable* measured(double shown, double noise) {
        s_Variable* y = effect("y", closed(1, 5));
        link(one, y, INF_STATIC, "[1,5]");
        plant.measure(y, shown);
        y->noise = noise;
        return y;
    }
};

TEST_F(Taking, ATrustedMeasureEntersTheState) {
    s_Variable* y = measured(3, 0);
    sn_takeMeasures(&plant.rt);
    EXPECT_EQ(text(y->old), text(makeReal(3)));
}

TEST_F(Taking, WithItsNoiseAndWhatWasPredicted) {
    s_Variable* y = measured(4, 2);
    sn_takeMeasures(&plant.rt);
    EXPECT_EQ(text(y->old), text(closed(2, 5)));
}

TEST_F(Taking, NotWhenItIsInAlarm) {
    s_Variable* y = measured(3, 0);
    y->highalarm = 1;
    sn_takeMeasures(&plant.rt);
    EXPECT_EQ(text(y->old), text(closed(1, 5)));
}

// A number is compared with a tolerance: trusted, and beside it.
TEST_F(Taking, AMeasureWithinTheToleranceStands) {
    s_Variable* y = measured(5.01, 0);
    y->old = makeReal(5);
    sn_takeMeasures(&plant.rt);
    EXPECT_EQ(text(y->old), text(makeReal(5.01)));
}

// ---- The check ----

TEST_F(Taking, TheCheckAllowsForTheNoise) {
    s_Variable* y = measured(5.5, 0.5);
    sn_checkMs(&plant.rt, 1);
    EXPECT_EQ(y->meshighmisb, 0);
    y->mes = makeReal(5.6);
    sn_checkMs(&plant.rt, 1);
    EXPECT_EQ(y->meshighmisb, 1);
    y->mes = makeReal(0.4);
    sn_checkMs(&plant.rt, 1);
    EXPECT_EQ(y->meslowmisb, 1);
}

// A number predicted, and a bound of noise: the bound takes the place of the tolerance.
TEST_F(Taking, TheCheckOfANumberAllowsForTheNoise) {
    s_Variable* y = measured(5.4, 0.5);
    y->old = makeReal(5);
    plant.rt.precision = 1e-3;
    sn_checkMs(&plant.rt, 1);
    EXPECT_EQ(y->meshighmisb, 0);
    y->mes = makeReal(5.6);
    sn_checkMs(&plant.rt, 1);
    EXPECT_EQ(y->meshighmisb, 1);
}

// What rounding makes of a number is compared as a number is.
TEST_F(Taking, AThinPredictionHasTheToleranceOfANumber) {
    s_Variable* y = measured(5.001, 0);
    y->old = closed(5, std::nextafter(5.0, 6.0));
    plant.rt.precision = 0.01;
    sn_checkMs(&plant.rt, 1);
    EXPECT_EQ(y->meshighmisb, 0);
    y->old = closed(4.99, 5);
    sn_checkMs(&plant.rt, 1);
    EXPECT_EQ(y->meshighmisb, 1);
}

// ---- The update reads predictions, each at its age ----

// The measure of this cycle has entered when an untemporal variable is updated. A delay of 1 asks
// for the value before, which the measure before has narrowed.
TEST_F(Taking, ADelayedCauseIsReadAtItsDelay) {
    s_Variable* y = measured(3, 0);
    sn_takeMeasures(&plant.rt);
    y->mes = makeReal(4);
    s_Influence* influence = link(y, effect("z", closed(0, 10)), INF_STATIC, "1", 1);
    sn_loadCauseValue(&plant.rt, influence);
    EXPECT_EQ(text(engine.TMP2), text(makeReal(3)));
}

TEST_F(Taking, TheSearchDoesNotRun) {
    s_Variable* y = measured(3, 0);
    init_nelder(engine);
    for (s_Influence* influence : y->graph->causes) {
        influence->useOpti = 1;
        plant.condition(influence, 1);
    }
    sn_updateVariable(&plant.rt, y);
    EXPECT_EQ(dynamic_test::evaluations(*y->graph->causes[0]), 1);
}

}  // namespace
