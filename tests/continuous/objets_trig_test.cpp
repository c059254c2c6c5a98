// Sine and cosine of the value objects.
//
// Over an interval the expectation is exact: the same search, spelled out here with costs of its
// own. Its start, its box and its sides are thereby fixed; that it finds the true bounds is checked
// apart, within what the stop rule of the optimiser allows.

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "continuous/objets.h"
#include "fixtures/one_engine.h"

namespace objets_test {

s_Objet obj(char const* notation);
std::string text(s_Objet const& o);

namespace {

using Trig = double (*)(double);

template <Trig function, int sign>
double plainCost(int*, double* x, double*, double*, double*, int*, int* constraint, int* status) {
    *constraint = *status = 0;
    return sign * function(x[0]);
}

double found(Nelder_cost cost, Trig function, double lo, double hi) {
    int n = 1, status = 0;
    double x = 0.5 * (lo + hi);
    opt_nelder(cost, &n, &x, &lo, &hi, nullptr, nullptr, &status);
    return function(x);
}

template <Trig function>
void expectSearched(void (*operation)(s_Objet*), double lo, double hi) {
    for (int flags = 0; flags < 4; ++flags) {
        s_Objet o = makeRange(lo, hi, flags >> 1, flags & 1);
        operation(&o);
        s_Objet const expected =
            makeRange(found(plainCost<function, 1>, function, lo, hi),
                      found(plainCost<function, -1>, function, lo, hi), flags >> 1, flags & 1);
        EXPECT_EQ(text(o), text(expected)) << lo << " " << hi;
    }
}

template <Trig function>
void expectSearchedOverGrid(void (*operation)(s_Objet*)) {
    for (double lo = -4; lo <= 4; lo += 0.8)
        for (double width : {0.01, 0.5, 1.0, 2.5, 7.0})
            expectSearched<function>(operation, lo, lo + width);
}

TEST(ObjetsTrig, OfANumberItIsTheLibraryFunction) {
    s_Objet sine = obj("0.7"), cosine = obj("0.7");
    sn_sinObjet(&sine);
    sn_cosObjet(&cosine);
    EXPECT_EQ(text(sine), text(makeReal(std::sin(0.7))));
    EXPECT_EQ(text(cosine), text(makeReal(std::cos(0.7))));
}

TEST(ObjetsTrig, OverAnIntervalTheBoundsAreThoseOfTheTwoSearches) {
    expectSearchedOverGrid<std::sin>(sn_sinObjet);
    expectSearchedOverGrid<std::cos>(sn_cosObjet);
}

// The stop rule accepts costs 1e-6 apart. Where the function is steep the search ends within about
// as much of its optimum; the tolerance leaves room for the width of the simplex.
void expectNear(void (*operation)(s_Objet*), double lo, double hi, double inf, double sup) {
    s_Objet o = makeRange(lo, hi, 1, 1);
    operation(&o);
    EXPECT_NEAR(o.rng.inf, inf, 1e-4) << lo << " " << hi;
    EXPECT_NEAR(o.rng.sup, sup, 1e-4) << lo << " " << hi;
}

TEST(ObjetsTrig, MonotoneStretchesGiveTheValuesAtTheEnds) {
    expectNear(sn_sinObjet, -1, 1, std::sin(-1), std::sin(1));
    expectNear(sn_sinObjet, 2, 4, std::sin(4), std::sin(2));
    expectNear(sn_cosObjet, 0.5, 2.5, std::cos(2.5), std::cos(0.5));
    expectNear(sn_cosObjet, -2.5, -0.5, std::cos(2.5), std::cos(0.5));
}

TEST(ObjetsTrig, AnExtremeInsideIsFound) {
    expectNear(sn_sinObjet, 1, 1.8, std::sin(1), 1);
    expectNear(sn_cosObjet, 3, 4, -1, std::cos(4));
}

TEST(ObjetsTrig, AnIntervalWithoutWidthIsExact) {
    double const sine = std::sin(0.3), cosine = std::cos(0.3);
    s_Objet s = obj("[0.3, 0.3["), c = obj("]0.3, 0.3]");
    sn_sinObjet(&s);
    sn_cosObjet(&c);
    EXPECT_EQ(text(s), text(makeRange(sine, sine, 1, 0)));
    EXPECT_EQ(text(c), text(makeRange(cosine, cosine, 0, 1)));
}

// A number minus an interval leaves inverted bounds; the result is ordered again.
TEST(ObjetsTrig, InvertedBoundsGiveOrderedOnes) {
    s_Objet o = obj("[1, 0.5]");
    sn_sinObjet(&o);
    EXPECT_LE(std::sin(0.5) - 1e-12, o.rng.inf);
    EXPECT_LT(o.rng.inf, o.rng.sup);
    EXPECT_LE(o.rng.sup, std::sin(1.0) + 1e-12);
}

TEST(ObjetsTrig, TheCostsTakeTheSideFromTheirFirstParameter) {
    double x = 0.7, lower = 0, upper = 1, low = 0.0, high = 1.0, half = 0.5;
    int n = 1, constraint = -7, status = -9;
    EXPECT_EQ(sin_cost(&n, &x, &lower, &upper, &low, nullptr, &constraint, &status), std::sin(0.7));
    EXPECT_EQ(status, 0);
    status = -9;
    EXPECT_EQ(cos_cost(&n, &x, &lower, &upper, &low, nullptr, &constraint, &status), std::cos(0.7));
    EXPECT_EQ(status, 0);
    for (double* side : {&high, &half}) {
        EXPECT_EQ(sin_cost(&n, &x, &lower, &upper, side, nullptr, &constraint, &status),
                  -std::sin(0.7));
        EXPECT_EQ(cos_cost(&n, &x, &lower, &upper, side, nullptr, &constraint, &status),
                  -std::cos(0.7));
    }
    EXPECT_EQ(constraint, -7);
}

TEST(ObjetsTrig, OnlyASearchSetsTheCostInUse) {
    sin_cost_ptr = cos_cost_ptr = nullptr;
    s_Objet number = obj("0.7"), interval = obj("[0, 1]");
    sn_sinObjet(&number);
    sn_cosObjet(&number);
    EXPECT_EQ(sin_cost_ptr, nullptr);
    EXPECT_EQ(cos_cost_ptr, nullptr);
    sn_sinObjet(&interval);
    EXPECT_EQ(sin_cost_ptr, &sin_cost);
    EXPECT_EQ(cos_cost_ptr, nullptr);
    sn_cosObjet(&interval);
    EXPECT_EQ(cos_cost_ptr, &cos_cost);
}

}  // namespace
}  // namespace objets_test
