// The causes of a measured effect, by search.

#include <gtest/gtest.h>

#include <algorithm>

#include "search_fixture.h"

namespace dynamic_test {
namespace {

// ---- Static: v = b1 a + b1 b, both in [0, 2] and of this very cycle ----

class SearchStatic : public testing::Test {
protected:
    SearchStatic() {
        v = plant.add("v", closed(0, 4));
        a = plant.add("a", closed(0, 2));
        b = plant.add("b", closed(0, 2));
        fromA = plant.link(a, v, INF_STATIC);
        fromB = plant.link(b, v, INF_STATIC);
        init_nelder();
    }

    void call(bool useMeasure = true) {
        call_nelder_obs(v, &plant.rt, &v->mes, nullptr, &result, INF_STATIC, useMeasure);
    }

    static void expectNear(s_Objet const& o, double inf, double sup) {
        ASSERT_EQ(o.type, OBJ_RANGE);
        EXPECT_NEAR(o.rng.inf, inf, 1e-2);
        EXPECT_NEAR(o.rng.sup, sup, 1e-2);
    }

    Plant plant;
    s_Variable *v, *a, *b;
    s_Influence *fromA, *fromB;
    s_Objet result = obj("[-9, 9]");
};

// With a = b = x the cost of the low side is 2 x^2 + (3 - 2 x)^2, least at x = 1, and that of the
// high side 2 (x - 2)^2 + (3 - 2 x)^2, least at x = 5/3.
TEST_F(SearchStatic, TheCausesAreNarrowedToWhatExplainsTheMeasure) {
    plant.measure(v, 3);
    call();
    expectNear(a->new_, 1, 5.0 / 3);
    expectNear(b->new_, 1, 5.0 / 3);
    expectNear(result, 2, 10.0 / 3);
    EXPECT_EQ(text(a->old), "[0, 2]");
    EXPECT_EQ(text(a->histo[0]), "[0, 2]");
}

TEST_F(SearchStatic, TheResultsAreThoseOfTwoSearchesFromTheMiddle) {
    plant.measure(v, 3);
    fromB->b1 = closed(0.5, 1);
    PlainSearch plain{{}, {}, {}, {plant.rt.Ts, 0, 3}};
    for (s_Objet const* o : {&a->new_, &fromA->b1, &b->new_, &fromB->b1})
        plain.entry(*o);
    std::vector<double> const x1 = plain(opti_static_obs, 0), x2 = plain(opti_static_obs, 1);
    call();
    EXPECT_EQ(text(a->new_), text(closed(std::min(x1[0], x2[0]), std::max(x1[0], x2[0]))));
    EXPECT_EQ(text(b->new_), text(closed(std::min(x1[2], x2[2]), std::max(x1[2], x2[2]))));
    EXPECT_EQ(text(fromB->b1), "[0.5, 1]");
}

// Both searches end in the corner a = b = 2, whose sum 4 does not hold the measure 9.
TEST_F(SearchStatic, AResultWithoutTheMeasureIsDropped) {
    plant.measure(v, 9);
    call();
    EXPECT_EQ(text(result), "[-9, 9]");
    expectNear(a->new_, 2, 2);
}

TEST_F(SearchStatic, AResultThatTouchesTheMeasureIsTaken) {
    plant.measure(v, 3);
    a->new_ = obj("1");
    b->new_ = obj("2");
    call();
    EXPECT_EQ(text(result), "3");
}

TEST_F(SearchStatic, TheMeasureOfTheEffectIsTaken) {
    plant.measure(a, 77);
    plant.measure(v, 3);
    a->lowalarm = 1;  // so that its value counts
    call();
    EXPECT_EQ(text(a->new_), "[0, 2]");
    // b takes the first result, searched for a.
    expectNear(b->new_, 1, 5.0 / 3);
}

TEST_F(SearchStatic, WithAllConditionsFalseNothingHappens) {
    plant.measure(v, 3);
    plant.condition(fromA, 0);
    plant.condition(fromB, 0);
    call();
    EXPECT_EQ(text(result), "[-9, 9]");
    EXPECT_EQ(text(a->new_), "[0, 2]");
    EXPECT_EQ(evaluations(*fromA), 1);
    EXPECT_EQ(evaluations(*fromB), 1);
}

// With b alone the low side is b^2 + (3 - b)^2, least at 3/2; the high one (b - 2)^2 + (3 - b)^2,
// least above the bound 2.
TEST_F(SearchStatic, AnInactiveCauseDoesNotCount) {
    plant.measure(v, 3);
    plant.condition(fromA, 0);
    call();
    EXPECT_EQ(text(a->new_), "[0, 2]");
    expectNear(b->new_, 1.5, 2);
    // [1.5, 2] does not hold 3.
    EXPECT_EQ(text(result), "[-9, 9]");
}

// Counting, loading, writing back, evaluating.
TEST_F(SearchStatic, EveryPassPushesEveryCondition) {
    plant.measure(v, 3);
    plant.condition(fromA, 1);
    plant.condition(fromB, 0);
    call();
    EXPECT_EQ(evaluations(*fromA), 4);
    EXPECT_EQ(evaluations(*fromB), 4);
}

TEST_F(SearchStatic, AnEffectWithoutAMeasureIsNotSearched) {
    call();
    EXPECT_EQ(text(result), "[-9, 9]");
    EXPECT_EQ(text(a->new_), "[0, 2]");
    plant.measure(v, 3);
    plant.rt.mesval = nullptr;
    call();
    EXPECT_EQ(text(a->new_), "[0, 2]");
}

// The lower bound of the result is to be reached with the lowest causes, then its upper bound with
// the highest: 2 x^2 + (1 - 2 x)^2 is least at 1/3, and 2 (x - 2)^2 + (3 - 2 x)^2 at 5/3.
TEST_F(SearchStatic, WithoutTheMeasureTheBoundsOfTheResultAreReached) {
    plant.measure(v, 77);
    result = closed(1, 3);
    call(false);
    expectNear(a->new_, 1.0 / 3, 5.0 / 3);
    expectNear(result, 2.0 / 3, 10.0 / 3);
}

TEST_F(SearchStatic, ANumberStandsForBothBounds) {
    plant.measure(v, 77);
    result = obj("3");
    call(false);
    expectNear(a->new_, 1, 5.0 / 3);
    expectNear(result, 2, 10.0 / 3);
}

// ---- Which causes are narrowed, and where ----

TEST_F(SearchStatic, TheDelayTellsWhichValueIsNarrowed) {
    for (int delay = 0; delay <= 3; ++delay) {
        a->old = a->new_ = closed(0, 2);
        a->histo.fill(closed(0, 2));
        b->new_ = closed(0, 2);
        fromA->delayMin = fromA->delayMax = delay;
        if (delay == 0)
            plant.measure(v, 3);
        call();
        s_Objet const* const values[] = {&a->new_, &a->old, &a->histo[0], &a->histo[1]};
        for (int i = 0; i < 4; ++i) {
            if (i == delay)
                expectNear(*values[i], 1, 5.0 / 3);
            else
                EXPECT_EQ(text(*values[i]), "[0, 2]") << i << delay;
        }
    }
}

// The oldest of the four entries stands for those behind the history; it is not narrowed. Nor is
// there a place for a delay below that of this very cycle, which loads nothing.
TEST_F(SearchStatic, ADelayOutsideTheHistoryNarrowsNothing) {
    plant.measure(v, 3);
    for (int delay : {6, 9, -1}) {
        fromA->delayMin = fromA->delayMax = delay;
        b->new_ = *TMP2 = closed(0, 2);
        call();
        for (int i = 0; i < a->histo.size(); ++i)
            EXPECT_EQ(text(a->histo[i]), "[0, 2]");
        EXPECT_EQ(text(a->old), "[0, 2]");
        EXPECT_EQ(text(a->new_), "[0, 2]");
        EXPECT_NE(text(b->new_), "[0, 2]");
    }
}

TEST_F(SearchStatic, OtherCandidatesKeepTheirHistory) {
    plant.measure(v, 3);
    fromA->delayMin = fromA->delayMax = 2;
    a->histo.push(closed(0, 2));
    History<s_Objet> const other = a->histo;
    call();
    EXPECT_EQ(text(other[0]), "[0, 2]");
    EXPECT_NE(text(a->histo[0]), "[0, 2]");
}

// The first result, x = a, is searched in [0, 2] and the second, b, in [0, 1]: over a the low side
// is a^2 + b^2 + (2 - a - b)^2, least at a = b = 2/3; the high side (a - 2)^2 + (b - 1)^2 +
// (2 - a - b)^2, least at a = 5/3, b = 2/3.
class SearchWhich : public SearchStatic {
protected:
    SearchWhich() {
        plant.measure(v, 2);
        a->old = a->new_ = closed(0, 2);
        b->old = b->new_ = closed(0, 1);
    }

    void expectOnlyBNarrowedByTheFirstResult() {
        call();
        EXPECT_EQ(text(a->new_), "[0, 2]");
        EXPECT_EQ(text(a->old), "[0, 2]");
        expectNear(b->new_, 2.0 / 3, 5.0 / 3);
    }
};

TEST_F(SearchWhich, BothByTheirOwnResults) {
    call();
    expectNear(a->new_, 2.0 / 3, 5.0 / 3);
    expectNear(b->new_, 2.0 / 3, 2.0 / 3);
}

// Results are matched by position among those that may be narrowed.
TEST_F(SearchWhich, AParameterIsNot) {
    a->isParam = 1;
    expectOnlyBNarrowedByTheFirstResult();
}

TEST_F(SearchWhich, AnInputIsNot) {
    plant.rt.input.push_back(a);
    expectOnlyBNarrowedByTheFirstResult();
}

TEST_F(SearchWhich, ACauseInAlarmIsNot) {
    a->lowalarm = 1;
    expectOnlyBNarrowedByTheFirstResult();
    b->new_ = closed(0, 1);
    a->lowalarm = 0;
    a->highalarm = 2;
    expectOnlyBNarrowedByTheFirstResult();
}

TEST_F(SearchWhich, AMeasuredCauseIsNot) {
    plant.measure(a, 77);
    a->highalarm = 1;  // so that its value counts
    expectOnlyBNarrowedByTheFirstResult();
}

TEST_F(SearchWhich, ANumberStays) {
    a->new_ = obj("1");
    call();
    EXPECT_EQ(text(a->new_), "1");
}

// ---- From the cycle ----

// v = a + b is evaluated to [0, 4] first; the last cause looked at tells whether to search.
TEST_F(SearchStatic, TheCycleSearchesWhenTheLastCauseAsksForIt) {
    plant.measure(v, 3);
    fromA->useOpti = 1;
    sn_updateVariable(&plant.rt, v);
    EXPECT_EQ(text(v->new_), "[0, 4]");
    fromB->useOpti = 1;
    sn_updateVariable(&plant.rt, v);
    expectNear(v->new_, 2, 10.0 / 3);
}

TEST_F(SearchStatic, TheCycleDoesNotSearchWithTheSwitchOff) {
    WithOpti const off(0);
    plant.measure(v, 3);
    fromB->useOpti = 1;
    sn_updateVariable(&plant.rt, v);
    EXPECT_EQ(text(v->new_), "[0, 4]");
}

TEST_F(SearchStatic, TheCycleDoesNotSearchForAMeasureInAlarm) {
    plant.measure(v, 3);
    fromB->useOpti = 1;
    v->highalarm = 1;
    sn_updateVariable(&plant.rt, v);
    EXPECT_EQ(text(v->new_), "[0, 4]");
}

// ---- Evaluations ----

TEST_F(SearchStatic, TheStaticSumCountsTheFirstActiveCauses) {
    a->new_ = closed(1, 2);
    b->new_ = obj("5");
    fromA->b1 = obj("-2");
    fromB->b1 = obj("3");
    EXPECT_EQ(text(opti_static_eval(2, v->graph, &plant.rt)), "[11, 13]");
    EXPECT_EQ(text(opti_static_eval(1, v->graph, &plant.rt)), "[-4, -2]");
    EXPECT_EQ(text(opti_static_eval(0, v->graph, &plant.rt)), "0");
    plant.condition(fromA, 0);
    EXPECT_EQ(text(opti_static_eval(2, v->graph, &plant.rt)), "15");
    EXPECT_EQ(text(*TMP2), "5");  // the loaded value itself stays
}

TEST_F(SearchStatic, TheIntegralIsPrinted) {
    a->new_ = closed(1, 2);
    fromA->b1 = obj("-2");
    s_Objet const previous = obj("10");
    testing::internal::CaptureStdout();
    s_Objet const sum = opti_integral_eval(2, v->graph, &previous, &plant.rt);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "y: 6 8\n");
    EXPECT_EQ(text(sum), "[6, 8]");
    EXPECT_EQ(text(previous), "10");
}

// ---- Second order ----

class SearchObserved : public testing::Test, protected SecondOrderPlant {
protected:
    SearchObserved() {
        plant.measure(y, 1.5);
        y->lowalarm = 1;  // the previous values are the state
        *TMP1 = result;
    }

    void call() { call_nelder_obs(y, &plant.rt, &y->old, &prev2, TMP1, INF_DYNAMIC2, true); }

    s_Objet prev2 = closed(0.5, 1);
    s_Objet result = closed(-100, 100);
};

TEST_F(SearchObserved, TheFirstCauseTakesTheResultForThePreviousEffect) {
    PlainSearch plain = plainSearch(*influence, y->old, prev2, u->old, u->histo[0], plant.rt.Ts);
    plain.p[2] = 1.5;
    std::vector<double> const x1 = plain(opti_second_order_obs, 0);
    std::vector<double> const x2 = plain(opti_second_order_obs, 1);
    s_Objet const narrowed = closed(std::min(x1[5], x2[5]), std::max(x1[5], x2[5]));
    // Then the bounds of the effect, with the cause in its new bounds.
    PlainSearch after = plainSearch(*influence, y->old, prev2, narrowed, u->histo[0], plant.rt.Ts);
    std::vector<double> const z1 = after(opti_second_order, 0), z2 = after(opti_second_order, 1);
    call();
    EXPECT_EQ(text(u->old), text(narrowed));
    EXPECT_EQ(text(u->histo[0]), "[0, 0.5]");
    EXPECT_EQ(text(*TMP1), text(closed(after.costAt(opti_second_order, 0, z1),
                                       -after.costAt(opti_second_order, 1, z2))));
    EXPECT_EQ(text(y->old), text(closed(std::min(z1[5], z2[5]), std::max(z1[5], z2[5]))));
    EXPECT_EQ(text(prev2), text(closed(std::min(z1[6], z2[6]), std::max(z1[6], z2[6]))));
}

// More causes than the four results: entries 5 to 8 go to the first four, by position.
TEST_F(SearchObserved, FiveCausesShareFourResults) {
    std::vector<s_Variable*> causes = {u};
    for (char const* nom : {"u2", "u3", "u4", "u5"}) {
        causes.push_back(plant.add(nom, closed(0, 9)));
        plant.link(causes.back(), y, INF_DYNAMIC2);
    }
    PlainSearch plain = plainSearch(*influence, y->old, prev2, u->old, u->histo[0], plant.rt.Ts);
    plain.p[2] = 1.5;
    std::vector<double> const x1 = plain(opti_second_order_obs, 0);
    std::vector<double> const x2 = plain(opti_second_order_obs, 1);
    call();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(text(causes[i]->old),
                  text(closed(std::min(x1[5 + i], x2[5 + i]), std::max(x1[5 + i], x2[5 + i]))))
            << i;
    EXPECT_EQ(text(causes[4]->old), "[0, 9]");
}

TEST_F(SearchObserved, AFalseFirstConditionEndsIt) {
    s_Variable* second = plant.add("u2", closed(0, 9));
    s_Influence* fromSecond = plant.link(second, y, INF_DYNAMIC2);
    plant.condition(fromSecond, 1);
    plant.condition(influence, 0);
    call();
    EXPECT_EQ(text(*TMP1), "[-100, 100]");
    EXPECT_EQ(text(u->old), "[0, 1]");
    EXPECT_EQ(evaluations(*influence), 1);
    EXPECT_EQ(evaluations(*fromSecond), 0);
}

// The first influence is looked at to set up and to write back, the others to write back only.
TEST_F(SearchObserved, ThePassesPushTheConditions) {
    s_Influence* fromSecond = plant.link(plant.add("u2", closed(0, 9)), y, INF_DYNAMIC2);
    plant.condition(influence, 1);
    plant.condition(fromSecond, 0);
    call();
    EXPECT_EQ(evaluations(*influence), 2);
    EXPECT_EQ(evaluations(*fromSecond), 1);
}

TEST_F(SearchObserved, AnotherFormThanTheRationalIsNotSearched) {
    influence->n1.reset();
    call();
    EXPECT_EQ(text(*TMP1), "[-100, 100]");
    EXPECT_EQ(text(u->old), "[0, 1]");
}

// ---- Kinds that no caller passes ----

// y(k-1) = 1, u in [0, 2], gain 1, observed 2: over u the low side is u^2 + (2 - u - 1)^2, least at
// 1/2; the high side (u - 2)^2 + (1 - u)^2, least at 3/2.
TEST_F(SearchStatic, AnIntegralNarrowsItsFirstCause) {
    plant.measure(v, 2);
    fromA->type = INF_INTEGRAL;
    fromA->respTime = closed(5, 6);
    a->old = closed(0, 2);
    s_Objet previous = obj("1");
    testing::internal::CaptureStdout();
    call_nelder_obs(v, &plant.rt, &previous, nullptr, &result, INF_INTEGRAL, true);
    EXPECT_EQ(testing::internal::GetCapturedStdout().substr(0, 3), "y: ");
    expectNear(a->old, 0.5, 1.5);
    EXPECT_EQ(text(b->new_), "[0, 2]");
    EXPECT_EQ(text(result), "[-9, 9]");
}

TEST_F(SearchStatic, AnInactiveIntegralIsNotSearched) {
    plant.measure(v, 2);
    plant.condition(fromA, 0);
    s_Objet previous = obj("1");
    call_nelder_obs(v, &plant.rt, &previous, nullptr, &result, INF_INTEGRAL, true);
    EXPECT_EQ(text(a->new_), "[0, 2]");
}

TEST_F(SearchStatic, AnyOtherKindIsTold) {
    plant.measure(v, 2);
    testing::internal::CaptureStdout();
    call_nelder_obs(v, &plant.rt, &v->mes, nullptr, &result, INF_DYNAMIC, true);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "default: 1\n");
    EXPECT_EQ(text(result), "[-9, 9]");
    EXPECT_EQ(text(a->new_), "[0, 2]");
}

}  // namespace
}  // namespace dynamic_test
