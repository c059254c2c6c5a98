// The recursions of dynamic effects and the sums of second-order causes.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "continuous/search.h"
#include "dynamic_fixture.h"

namespace dynamic_test {
namespace {

// One influence u -> y; y has distinct values in all the places that a previous value may come
// from.
class Dynamic : public testing::Test {
protected:
    Dynamic() {
        renewScratch();
        y = plant.add("y", obj("8"));
        y->new_ = obj("1000");
        y->histo.set(0, obj("3"));
        y->histo.set(1, obj("100"));
        u = plant.add("u", obj("0"));
        influence = plant.link(u, y, INF_DYNAMIC);
    }

    void coefs(influType type, char const* a1, char const* a2, char const* b1, char const* b2) {
        influence->type = type;
        influence->a1 = obj(a1);
        influence->a2 = obj(a2);
        influence->b1 = obj(b1);
        influence->b2 = obj(b2);
    }

    void corners(char const* ii, char const* is, char const* si, char const* ss) {
        *TMPII = obj(ii);
        *TMPIS = obj(is);
        *TMPSI = obj(si);
        *TMPSS = obj(ss);
    }

    std::string eval(char const* sum) {
        *TMP1 = obj(sum);
        sn_evalDynInfl(&plant.rt, influence);
        return text(*TMP1);
    }

    std::string evalInit(char const* sum) {
        *TMP1 = obj(sum);
        sn_evalInitDynInfl(influence);
        return text(*TMP1);
    }

    std::string add(char const* sum, char const* now, char const* older) {
        *TMP1 = obj(sum);
        *TMP2 = obj(now);
        *TMP5 = obj(older);
        sn_addSecondOrder(influence);
        return text(*TMP1);
    }

    Plant plant;
    s_Variable *y, *u;
    s_Influence* influence;
};

// ---- First order, number coefficient ----

TEST_F(Dynamic, FirstOrderMixesTheSumAndThePreviousValue) {
    coefs(INF_DYNAMIC, "0.25", "0", "0", "0");
    EXPECT_EQ(eval("4"), "5");  // 0.75 * 4 + 0.25 * 8
    EXPECT_EQ(eval("[4, 8["), "[5, 8[");
    y->old = obj("[8, 16]");
    EXPECT_EQ(eval("4"), "[5, 7]");
}

TEST_F(Dynamic, EveryTypeButTheSecondOrderIsOfTheFirst) {
    for (influType type : {INF_INTEGRAL, INF_STATIC, INF_COUPLING}) {
        coefs(type, "0.25", "0", "0", "0");
        EXPECT_EQ(eval("4"), "5");
    }
}

TEST_F(Dynamic, AStepOfOneIsReachedExponentially) {
    influence->respTime = makeReal(3 * plant.rt.Ts);
    sn_evalInfluCoefs(&plant.rt, plant.rt.Ts);
    EXPECT_DOUBLE_EQ(influence->a1.real, std::exp(-1.0));
    y->old = obj("0");
    for (int k = 1; k < 20; ++k) {
        eval("1");
        EXPECT_NEAR(TMP1->real, 1 - std::exp(-k), 1e-12);
        y->old = *TMP1;
    }
}

// ---- Where the previous values come from ----

TEST_F(Dynamic, ATrustedMeasureIsThePreviousValue) {
    plant.measure(y, 20);
    y->mesHisto.set(0, obj("40"));
    coefs(INF_DYNAMIC, "0.25", "0", "0", "0");
    EXPECT_EQ(eval("4"), "8");  // 0.75 * 4 + 0.25 * 20
    coefs(INF_DYNAMIC2, "0.25", "0.5", "0", "0");
    EXPECT_EQ(eval("1"), "26");  // 1 + 0.25 * 20 + 0.5 * 40
}

TEST_F(Dynamic, AMeasureInAlarmIsNot) {
    plant.measure(y, 20);
    coefs(INF_DYNAMIC, "0.25", "0", "0", "0");
    y->lowalarm = 1;
    EXPECT_EQ(eval("4"), "5");
    y->lowalarm = 0;
    y->highalarm = 1;
    EXPECT_EQ(eval("4"), "5");
}

TEST_F(Dynamic, WithoutAHistoryTheValueStandsForTheOneBefore) {
    y->histo = History<s_Objet>(0);
    coefs(INF_DYNAMIC2, "0.25", "0.5", "0", "0");
    EXPECT_EQ(eval("1"), "7");  // 1 + 0.25 * 8 + 0.5 * 8
}

// ---- First order, interval coefficient ----

TEST_F(Dynamic, AnIntervalCoefficientIsTakenAtBothEnds) {
    coefs(INF_DYNAMIC, "[0.5, 0.6]", "0", "0", "0");
    y->old = obj("0");
    eval("10");
    EXPECT_DOUBLE_EQ(sn_infOf(*TMP1), 4);
    EXPECT_DOUBLE_EQ(sn_supOf(*TMP1), 5);
    EXPECT_EQ(TMP1->type, OBJ_RANGE);
}

TEST_F(Dynamic, TheFlagsOfTheSumStay) {
    coefs(INF_DYNAMIC, "[0.5, 0.75]", "0", "0", "0");
    EXPECT_EQ(eval("[0, 4["), "[4, 7[");  // least 0.5 * 0 + 0.5 * 8, greatest 0.25 * 4 + 0.75 * 8
    EXPECT_EQ(eval("]0, 4]"), "]4, 7]");
    EXPECT_EQ(eval("0"), "]4, 6]");  // the number stands where an interval was
}

TEST_F(Dynamic, AHullOfOnePointBecomesANumber) {
    coefs(INF_DYNAMIC, "[0.25, 0.75]", "0", "0", "0");
    EXPECT_EQ(eval("8"), "8");
    EXPECT_EQ(eval("[8, 8]"), "8");
}

TEST_F(Dynamic, AnUnsetCoefficientLeavesTheSum) {
    coefs(INF_DYNAMIC, "0", "0", "0", "0");
    influence->a1 = s_Objet{};
    EXPECT_EQ(eval("4"), "4");
}

// ---- Second order ----

TEST_F(Dynamic, SecondOrderNumbers) {
    coefs(INF_DYNAMIC2, "0.5", "-0.25", "1", "1");
    EXPECT_EQ(eval("1"), "4.25");  // 1 + 0.5 * 8 - 0.25 * 3
    y->old = obj("[8, 10]");
    EXPECT_EQ(eval("1"), "[4.25, 5.25]");
}

// 0.5 * 8 - 0.25 * 3 = 3.25 is added to each corner.
TEST_F(Dynamic, AnIntervalB1TakesTheHullOfTheCorners) {
    coefs(INF_DYNAMIC2, "0.5", "-0.25", "[0, 1]", "1");
    corners("1", "-2", "[0, 5]", "4");
    EXPECT_EQ(eval("[90, 99["), "[1.25, 8.25[");
    EXPECT_EQ(text(*TMPII), "4.25");
    EXPECT_EQ(text(*TMPIS), "1.25");
    EXPECT_EQ(text(*TMPSI), "[3.25, 8.25]");
    EXPECT_EQ(text(*TMPSS), "7.25");
}

TEST_F(Dynamic, EqualCornersBecomeANumber) {
    coefs(INF_DYNAMIC2, "0.5", "-0.25", "[0, 1]", "1");
    corners("1", "1", "1", "1");
    EXPECT_EQ(eval("[90, 99]"), "4.25");
}

TEST_F(Dynamic, AnIntervalB2AloneLosesTheInput) {
    coefs(INF_DYNAMIC2, "0.5", "-0.25", "1", "[0, 1]");
    EXPECT_EQ(add("0", "6", "7"), "0");
    EXPECT_EQ(text(*TMPIS), "13");
    EXPECT_EQ(eval("0"), "3.25");
}

TEST_F(Dynamic, OtherCombinationsLeaveTheSum) {
    corners("1", "2", "3", "4");
    for (char const* b1 : {"1", "[0, 1]"}) {
        coefs(INF_DYNAMIC2, "0.5", "[0, 1]", b1, "1");
        EXPECT_EQ(eval("[6, 7["), "[6, 7[") << b1;
        coefs(INF_DYNAMIC2, "[0, 1]", "0.5", b1, "1");
        EXPECT_EQ(eval("[6, 7["), "[6, 7[") << b1;
    }
}

TEST_F(Dynamic, TwoIntervalCoefficientsTakeTheHullOfSixteen) {
    coefs(INF_DYNAMIC2, "[0.5, 1]", "[-1, 2]", "1", "1");
    corners("1", "-2", "[0, 5]", "4");
    // Least: 0.5 * 8 - 3 - 2; greatest: 8 + 6 + 5.
    EXPECT_EQ(eval("]90, 99]"), "]-1, 19]");
    EXPECT_EQ(text(*TMPSI), "[0, 5]");
}

// Each of the corners alone gives one end of the hull.
TEST_F(Dynamic, EveryCornerCounts) {
    s_Objet* const all[] = {TMPII, TMPIS, TMPSI, TMPSS};
    for (int low = 0; low < 4; ++low)
        for (char const* a : {"0", "[0, 0]"}) {
            coefs(INF_DYNAMIC2, a, a, "[0, 1]", "1");
            corners("0", "0", "0", "0");
            *all[low] = obj("-5");
            *all[(low + 1) % 4] = obj("7");
            EXPECT_EQ(eval("[0, 0]"), "[-5, 7]") << low << " " << a;
        }
}

TEST_F(Dynamic, SixteenEqualSumsBecomeANumber) {
    coefs(INF_DYNAMIC2, "[0.5, 0.5]", "[1, 1]", "1", "1");
    corners("1", "1", "1", "1");
    EXPECT_EQ(eval("[90, 99]"), "8");
}

// ---- Against points ----

// What a point of the coefficients and values gives must lie in the hull, and the hull must be
// reached. All values are multiples of 1/8, so that every sum is exact.
class Points {
public:
    explicit Points(unsigned seed) : random(seed) {}

    double eighth() { return (static_cast<int>(random() % 65) - 32) / 8.0; }

    s_Objet interval() {
        double const a = eighth(), b = eighth();
        return a == b ? closed(a, a + 1) : closed(std::min(a, b), std::max(a, b));
    }
    s_Objet value() { return random() % 2 ? interval() : makeReal(eighth()); }

private:
    std::mt19937 random;
};

// The least and the greatest value of f over all corners of the given values: f is linear in each.
template <typename F>
std::string hullOfCorners(std::vector<s_Objet> const& values, F f) {
    double lo = 1e300, hi = -1e300;
    for (unsigned corner = 0; corner < 1u << values.size(); ++corner) {
        std::vector<double> at;
        for (std::size_t i = 0; i < values.size(); ++i)
            at.push_back(corner >> i & 1 ? sn_supOf(values[i]) : sn_infOf(values[i]));
        lo = std::min(lo, f(at));
        hi = std::max(hi, f(at));
    }
    return lo == hi ? text(makeReal(lo)) : text(closed(lo, hi));
}

constexpr unsigned seed = 20240611;

TEST_F(Dynamic, FirstOrderIsTheHullOfItsPoints) {
    Points points(seed);
    for (int round = 0; round < 2000; ++round) {
        influence->type = INF_DYNAMIC;
        influence->a1 = points.interval();
        y->old = points.value();
        s_Objet const sum = points.interval();  // closed, so that the flags are
        *TMP1 = sum;
        sn_evalDynInfl(&plant.rt, influence);
        EXPECT_EQ(text(*TMP1),
                  hullOfCorners({influence->a1, sum, y->old},
                                [](auto const& x) { return (1 - x[0]) * x[1] + x[0] * x[2]; }))
            << "seed " << seed << " round " << round;
    }
}

// The corner sums come from sn_addSecondOrder.
TEST_F(Dynamic, SecondOrderIsTheHullOfItsPoints) {
    Points points(seed);
    for (int round = 0; round < 2000; ++round) {
        influence->type = INF_DYNAMIC2;
        bool const inputOnly = round % 2 == 0;
        influence->a1 = inputOnly ? makeReal(points.eighth()) : points.interval();
        influence->a2 = inputOnly ? makeReal(points.eighth()) : points.interval();
        influence->b1 = points.interval();
        influence->b2 = points.value();
        y->old = points.value();
        y->histo.set(0, points.value());
        s_Objet const now = points.value(), older = points.value();
        *TMP1 = closed(0, 0);
        *TMP2 = now;
        *TMP5 = older;
        sn_addSecondOrder(influence);
        EXPECT_EQ(text(*TMP1), "[0, 0]");
        sn_evalDynInfl(&plant.rt, influence);
        EXPECT_EQ(text(*TMP1), hullOfCorners({influence->a1, influence->a2, influence->b1,
                                              influence->b2, y->old, y->histo[0], now, older},
                                             [](auto const& x) {
                                                 return x[0] * x[4] + x[1] * x[5] + x[2] * x[6] +
                                                        x[3] * x[7];
                                             }))
            << "seed " << seed << " round " << round;
    }
}

// ---- Second-order sum ----

TEST_F(Dynamic, NumberCoefficientsAddToTheSum) {
    coefs(INF_DYNAMIC2, "0", "0", "2", "-3");
    corners("1", "2", "3", "4");
    EXPECT_EQ(add("1", "10", "[1, 2]"), "[15, 18]");  // 1 + 20 - 3 * [1, 2]
    EXPECT_EQ(text(*TMP2), "20");
    EXPECT_EQ(text(*TMP5), "[-6, -3]");
    EXPECT_EQ(text(*TMPII), "1");
    EXPECT_EQ(text(*TMPSS), "4");
}

TEST_F(Dynamic, IntervalCoefficientsMakeCornersInstead) {
    coefs(INF_DYNAMIC2, "0", "0", "[2, 3]", "[-1, 4]");
    EXPECT_EQ(add("1", "10", "100"), "1");
    EXPECT_EQ(text(*TMPII), "-80");
    EXPECT_EQ(text(*TMPIS), "420");
    EXPECT_EQ(text(*TMPSI), "-70");
    EXPECT_EQ(text(*TMPSS), "430");
    EXPECT_EQ(text(*TMP2), "10");
    EXPECT_EQ(text(*TMP5), "100");
}

TEST_F(Dynamic, ANumberBesideAnIntervalHasTwoEqualBounds) {
    coefs(INF_DYNAMIC2, "0", "0", "[2, 3]", "1");
    EXPECT_EQ(add("1", "[10, 11[", "100"), "1");
    EXPECT_EQ(text(*TMPII), "[120, 122[");
    EXPECT_EQ(text(*TMPIS), "[120, 122[");
    EXPECT_EQ(text(*TMPSI), "[130, 133[");
    EXPECT_EQ(text(*TMPSS), "[130, 133[");
}

// As the past of a parameter, which is never written. A product keeps its first factor then: with
// numbers that is the cause, which adds nothing to 5 * 10; of a corner it is the coefficient, so
// that the end of b2 itself is added to that of b1 times 10.
TEST_F(Dynamic, ACauseWithoutAValueLeavesTheCoefficientInACorner) {
    *TMP5 = s_Objet{};
    coefs(INF_DYNAMIC2, "0", "0", "5", "7");
    *TMP1 = obj("0");
    *TMP2 = obj("10");
    sn_addSecondOrder(influence);
    EXPECT_EQ(text(*TMP1), "50");
    coefs(INF_DYNAMIC2, "0", "0", "[5, 6]", "[7, 8]");
    *TMP2 = obj("10");
    sn_addSecondOrder(influence);
    EXPECT_EQ(text(*TMPII), "57");  // 5 * 10 + 7
    EXPECT_EQ(text(*TMPIS), "58");
    EXPECT_EQ(text(*TMPSI), "67");
    EXPECT_EQ(text(*TMPSS), "68");
}

TEST_F(Dynamic, TheLastIntervalInfluenceReplacesTheCorners) {
    coefs(INF_DYNAMIC2, "0", "0", "[2, 3]", "1");
    add("0", "10", "100");
    coefs(INF_DYNAMIC2, "0", "0", "[4, 5]", "1");
    add("0", "1", "1");
    EXPECT_EQ(text(*TMPII), "5");
    EXPECT_EQ(text(*TMPSS), "6");
}

// ---- First value ----

TEST_F(Dynamic, AFirstValueIsTenSamplesAhead) {
    coefs(INF_DYNAMIC, "0.5", "0", "0", "0");
    evalInit("2048");
    // (1 - 2^-10) * 2048 + 2^-10 * 8
    EXPECT_NEAR(TMP1->real, 2046 + 8.0 / 1024, 1e-9);
    EXPECT_EQ(text(influence->a1), "0.5");
}

TEST_F(Dynamic, AFirstValueOfTheSecondOrderIsOneSampleAhead) {
    coefs(INF_DYNAMIC2, "0.5", "-0.25", "1", "1");
    EXPECT_EQ(evalInit("1"), "4.25");
}

// The plain products of intervals, not corners: a = [2^-20, 2^-10], and 1 - a has its bounds in the
// order of a, which the product with the sum sets right: [1 - 2^-10, 1 - 2^-20] * 2048 + a * 8.
TEST_F(Dynamic, AFirstValueWithIntervalsTakesTheNumberForms) {
    coefs(INF_DYNAMIC, "[0.25, 0.5]", "0", "0", "0");
    evalInit("2048");
    EXPECT_NEAR(sn_infOf(*TMP1), 2048 - 2 + std::ldexp(8, -20), 1e-9);
    EXPECT_NEAR(sn_supOf(*TMP1), 2048 - std::ldexp(2048, -20) + std::ldexp(8, -10), 1e-9);
    coefs(INF_DYNAMIC2, "[0.5, 1]", "[-1, 2]", "[0, 1]", "1");
    corners("1000", "1000", "1000", "1000");
    EXPECT_EQ(evalInit("1"), "[2, 15]");  // 1 + [4, 8] + [-3, 6]
}

TEST_F(Dynamic, AFirstValueTakesTheStateAndNeverTheMeasure) {
    plant.measure(y, 20);
    coefs(INF_DYNAMIC2, "0.5", "-0.25", "1", "1");
    EXPECT_EQ(evalInit("1"), "4.25");
    coefs(INF_DYNAMIC, "1", "0", "0", "0");
    EXPECT_EQ(evalInit("1"), "8");
}

// ---- When a search is made ----

int searches;

double countedCost(int*, double*, double*, double*, double*, int*, int*, int* status) {
    ++searches;
    *status = -1;  // ends the search at once
    return 0.0;
}

// Whether the influence made a search, with all costs replaced by one that counts.
class DynamicSearch : public Dynamic {
protected:
    DynamicSearch() {
        influence->n1 = influence->d0 = influence->d1 = influence->d2 = *objUn;
        influence->n2 = *objZero;
        influence->useOpti = 1;
        opti_second_order_ptr = opti_second_order_obs_ptr = opti_static_obs_ptr = countedCost;
    }
    ~DynamicSearch() override { init_nelder(); }

    bool searched() {
        searches = 0;
        corners("1", "2", "3", "4");
        eval("[1, 2]");
        return searches > 0;
    }
};

TEST_F(DynamicSearch, AfterTheHullsOfOneIntervalOnly) {
    coefs(INF_DYNAMIC2, "0.5", "0.5", "[0, 1]", "1");
    EXPECT_TRUE(searched());
    coefs(INF_DYNAMIC, "[0.5, 0.75]", "0", "0", "0");
    EXPECT_TRUE(searched());
    for (auto const& [a1, a2, b1] : {std::array{"0.5", "0.5", "1"},
                                     {"[0, 1]", "[0, 1]", "[0, 1]"},
                                     {"[0, 1]", "[0, 1]", "1"},
                                     {"0.5", "[0, 1]", "[0, 1]"},
                                     {"[0, 1]", "0.5", "[0, 1]"}}) {
        coefs(INF_DYNAMIC2, a1, a2, b1, "1");
        EXPECT_FALSE(searched()) << a1 << a2 << b1;
    }
    coefs(INF_DYNAMIC, "0.5", "0", "0", "0");
    EXPECT_FALSE(searched());
}

TEST_F(DynamicSearch, NotWithoutTheFlagOfTheInfluence) {
    coefs(INF_DYNAMIC2, "0.5", "0.5", "[0, 1]", "1");
    influence->useOpti = 0;
    EXPECT_FALSE(searched());
    EXPECT_EQ(text(*TMP1), "[6.5, 9.5]");  // the closed form: 5.5 + [1, 4]
}

TEST_F(DynamicSearch, NotWithTheGlobalSwitchOff) {
    coefs(INF_DYNAMIC2, "0.5", "0.5", "[0, 1]", "1");
    WithOpti const off(0);
    EXPECT_FALSE(searched());
    plant.measure(y, 5);
    EXPECT_FALSE(searched());
}

TEST_F(DynamicSearch, NotInAFirstValue) {
    coefs(INF_DYNAMIC2, "0.5", "0.5", "[0, 1]", "1");
    searches = 0;
    evalInit("1");
    EXPECT_EQ(searches, 0);
}

int obsSearches;

double countedObsCost(int*, double*, double*, double*, double*, int*, int*, int* status) {
    ++obsSearches;
    *status = -1;
    return 0.0;
}

// By its measure also when that is in alarm, and whatever the type of the influence.
TEST_F(DynamicSearch, AMeasuredEffectIsSearchedByItsMeasure) {
    opti_second_order_obs_ptr = countedObsCost;
    obsSearches = 0;
    coefs(INF_DYNAMIC2, "0.5", "0.5", "[0, 1]", "1");
    EXPECT_TRUE(searched());
    EXPECT_EQ(obsSearches, 0);
    plant.measure(y, 5);
    for (influType type : {INF_DYNAMIC2, INF_DYNAMIC})
        for (int alarm : {0, 1}) {
            influence->type = type;
            influence->a1 = obj(type == INF_DYNAMIC2 ? "0.5" : "[0.5, 0.75]");
            y->lowalarm = alarm;
            obsSearches = 0;
            EXPECT_TRUE(searched());
            EXPECT_EQ(obsSearches, 2) << type << alarm;  // one evaluation for each side
        }
}

}  // namespace
}  // namespace dynamic_test
