// Search vectors and costs of the bound search.

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "continuous/search.h"
#include "dynamic_fixture.h"

namespace dynamic_test {
namespace {

// ---- Search vectors ----

struct Vectors {
    static constexpr double UNTOUCHED = -77;
    std::array<double, 10> start, lower, upper;

    Vectors() {
        start.fill(UNTOUCHED);
        lower.fill(UNTOUCHED);
        upper.fill(UNTOUCHED);
    }
    void expect(int i, double s, double l, double u) const {
        EXPECT_EQ(start[i], s) << i;
        EXPECT_EQ(lower[i], l) << i;
        EXPECT_EQ(upper[i], u) << i;
    }
    void expectUntouched(int i) const { expect(i, UNTOUCHED, UNTOUCHED, UNTOUCHED); }
    void mean(s_Objet const& o, int i) {
        meanCoef(&o, start.data(), lower.data(), upper.data(), i);
    }
};

TEST(SearchVector, ANumberIsADimensionOfWidthZero) {
    Vectors v;
    v.mean(makeReal(2.5), 3);
    v.expect(3, 2.5, 2.5, 2.5);
    v.expectUntouched(2);
    v.expectUntouched(4);
}

TEST(SearchVector, AnIntervalStartsInItsMiddle) {
    Vectors v;
    v.mean(obj("]1, 4]"), 0);
    v.expect(0, 2.5, 1, 4);
    v.mean(s_Objet{}, 1);
    v.expectUntouched(1);
}

class Parameters : public testing::Test {
protected:
    Parameters() {
        influence.n1 = obj("1");
        influence.n2 = obj("[2, 4]");
        influence.d0 = obj("3");
        influence.d1 = obj("4");
        influence.d2 = obj("5");
        influence.gain = obj("[6, 8]");
        influence.respTime = obj("[0, 7]");
    }

    int secondOrder() {
        return mean2ndOrderCoefs(&influence, v.start.data(), v.lower.data(), v.upper.data());
    }

    s_Influence influence;
    Vectors v;
};

TEST_F(Parameters, OfTheFirstOrder) {
    mean1stOrderCoefs(&influence, v.start.data(), v.lower.data(), v.upper.data());
    v.expectUntouched(1);
    v.expect(2, 3.5, 0, 7);
    v.expect(3, 7, 6, 8);
    v.expectUntouched(4);
}

TEST_F(Parameters, OfTheSecondOrder) {
    EXPECT_EQ(secondOrder(), 1);
    v.expect(0, 1, 1, 1);
    v.expect(1, 3, 2, 4);
    v.expect(2, 3, 3, 3);
    v.expect(3, 4, 4, 4);
    v.expect(4, 5, 5, 5);
    for (int i = 5; i < 9; ++i)
        v.expectUntouched(i);
    v.expect(9, 7, 6, 8);
}

TEST_F(Parameters, OfAnotherFormThereAreNone) {
    influence.n1.reset();
    EXPECT_EQ(secondOrder(), 0);
    for (int i = 0; i < 10; ++i)
        v.expectUntouched(i);
}

TEST_F(Parameters, OfAnIncompleteFormThereAreNone) {
    influence.d1.reset();
    EXPECT_EQ(secondOrder(), 0);
    v.expectUntouched(0);
}

TEST_F(Parameters, NoGainIsTheGainOne) {
    influence.gain = s_Objet{};
    EXPECT_EQ(secondOrder(), 1);
    v.expect(9, 1, 1, 1);
}

TEST(SearchResult, AnIntervalTakesTheBoundsInOrder) {
    s_Objet o = obj("]1, 2]");
    setNelderResult(&o, 5, 3);
    EXPECT_EQ(text(o), "]3, 5]");
    setNelderResult(&o, -1, 0);
    EXPECT_EQ(text(o), "]-1, 0]");
}

TEST(SearchResult, ANumberStays) {
    s_Objet o = obj("7");
    setNelderResult(&o, 5, 3);
    EXPECT_EQ(text(o), "7");
}

// ---- Costs ----

// One evaluation, with what is seen of it.
struct Evaluation {
    double p[3];
    int status = -5;

    Evaluation(double Ts, double side, double observed) : p{Ts, side, observed} {}

    double operator()(Nelder_cost cost, std::vector<double> x, std::vector<double> lower,
                      std::vector<double> upper) {
        int n = static_cast<int>(x.size()), constraint = -6;
        double const value =
            cost(&n, x.data(), lower.data(), upper.data(), p, nullptr, &constraint, &status);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(constraint, -6);
        return value;
    }
};

// The recursion of the same point, from the exponential of its state matrix.
double recursionAt(std::vector<double> const& x, double Ts) {
    Recursion const r = stepInvariant(x[0], x[1], x[2], x[3], x[4], Ts);
    return r.a1 * x[5] + r.a2 * x[6] + x[9] * (r.b1 * x[7] + r.b2 * x[8]);
}

TEST(SearchCost, TheSecondOrderIsTheStepInvariantRecursion) {
    unsigned const seed = 4711;
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> parameter(0.5, 1.5), value(-3, 3);
    for (int round = 0; round < 200; ++round) {
        std::vector<double> x;
        for (int i = 0; i < 10; ++i)
            x.push_back(i < 5 ? parameter(random) : value(random));
        x[2] += 1;  // so that the poles are complex
        double const Ts = parameter(random);
        Evaluation low(Ts, 0.0, 9), high(Ts, 1.0, 9);
        EXPECT_NEAR(low(opti_second_order, x, x, x), recursionAt(x, Ts), 1e-12)
            << "seed " << seed << " round " << round;
        EXPECT_NEAR(high(opti_second_order, x, x, x), -recursionAt(x, Ts), 1e-12);
        EXPECT_EQ(high.p[1], 1.0);
    }
}

TEST(SearchCost, TheObservedSecondOrderPullsTheValuesAndTheOutput) {
    std::vector<double> const x = {1, 0.5, 2, 1, 1, 0.5, 0.25, 2, 3, 1.5};
    std::vector<double> lower = x, upper = x;
    for (int i = 0; i < 10; ++i) {
        lower[i] -= i + 1;
        upper[i] += 2 * (i + 1);
    }
    // Entries 5 to 8 alone miss their bounds: 36 + 49 + 64 + 81, and four times that above.
    double const missed = 7 - recursionAt(x, 0.5);
    Evaluation low(0.5, 0.0, 7), high(0.5, 1.0, 7);
    EXPECT_NEAR(low(opti_second_order_obs, x, lower, upper), missed * missed + 230, 1e-10);
    EXPECT_EQ(low.p[1], 0.0);
    EXPECT_NEAR(high(opti_second_order_obs, x, lower, upper), missed * missed + 920, 1e-10);
    // The side is gone: the next evaluation pulls to the lower bounds.
    EXPECT_EQ(high.p[1], 0.0);
    EXPECT_NEAR(high(opti_second_order_obs, x, lower, upper), missed * missed + 230, 1e-10);
}

TEST(SearchCost, TheObservedStaticSum) {
    std::vector<double> const x = {2, 10, -1, 3}, lower = {1, 0, -4, 0}, upper = {4, 90, 3, 90};
    Evaluation low(0.5, 0.0, 20), high(0.5, 1.0, 20);
    // The sum of causes is 2 * 10 - 1 * 3 = 17; the coefficients are not pulled.
    EXPECT_EQ(low(opti_static_obs, x, lower, upper), 9 + 1 + 9);
    EXPECT_EQ(high(opti_static_obs, x, lower, upper), 9 + 4 + 16);
    EXPECT_EQ(high.p[1], 1.0);
}

TEST(SearchCost, TheObservedIntegral) {
    std::vector<double> const x = {2, 3, 5}, lower = {1, 1, 0}, upper = {5, 7, 90};
    Evaluation low(0.5, 0.0, 20), high(0.5, 1.0, 20);
    EXPECT_EQ(low(opti_integral_obs, x, lower, upper), 1 + 4 + 9);  // 20 - (5 * 3 + 2) = 3
    EXPECT_EQ(high(opti_integral_obs, x, lower, upper), 9 + 16 + 9);
}

TEST(SearchCost, OfTheFirstOrderThereIsNone) {
    Evaluation low(0.5, 0.0, 20);
    EXPECT_EQ(low(opti_first_order_obs, {1}, {0}, {2}), 0.0);
}

TEST(SearchCost, TheCostsInUseAreSetByTheStart) {
    Nelder_cost* const inUse[] = {&opti_static_obs_ptr, &opti_integral_obs_ptr,
                                  &opti_first_order_obs_ptr, &opti_second_order_ptr,
                                  &opti_second_order_obs_ptr};
    Nelder_cost const costs[] = {opti_static_obs, opti_integral_obs, opti_first_order_obs,
                                 opti_second_order, opti_second_order_obs};
    for (Nelder_cost* pointer : inUse)
        *pointer = nullptr;
    init_nelder();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(*inUse[i], costs[i]) << i;
}

}  // namespace
}  // namespace dynamic_test
