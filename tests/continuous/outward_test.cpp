// Intervals rounded outwards: against exact arithmetic of more digits, and the rules of narrowing.
#include <cmath>
#include <limits>
#include <random>

#include "continuous/outward.h"
#include "dynamic_fixture.h"

using dynamic_test::closed;
using objets_test::text;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

void expectHolds(Outward const& a, long double exact) {
    EXPECT_LE(static_cast<long double>(a.lo), exact);
    EXPECT_GE(static_cast<long double>(a.hi), exact);
}

// Ends and inner points of random intervals; a long double has eleven more bits, so that the exact
// result of sum and product is told apart from the double next to it.
TEST(Outward, HoldsTheExactResultOfEachOperation) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> any(-3, 3), share(0, 1);
    for (int i = 0; i < 20000; ++i) {
        double const a = any(random), b = a + share(random), c = any(random), d = c + share(random);
        Outward const x{a, b}, y{c, d};
        for (double const p : {a, b, std::lerp(a, b, 0.5)})
            for (double const q : {c, d, std::lerp(c, d, 0.5)}) {
                long double const u = p, v = q;
                expectHolds(x + y, u + v);
                expectHolds(x - y, u - v);
                expectHolds(x * y, u * v);
                if (!holdsZero(y))
                    expectHolds(x / y, u / v);
            }
    }
}

// 0.1 + 0.2 is no double.
TEST(Outward, IsNoWiderThanItMustBe) {
    Outward const sum = Outward{0.1, 0.1} + Outward{0.2, 0.2};
    EXPECT_EQ(sum.lo, std::nextafter(0.1 + 0.2, 0));
    EXPECT_EQ(sum.hi, std::nextafter(0.1 + 0.2, 1));
}

TEST(Outward, WhatCannotBeToldIsInfinite) {
    Outward const line{-inf, inf}, above{1, inf};
    EXPECT_EQ((above - above).lo, -inf);
    EXPECT_EQ((above - above).hi, inf);
    EXPECT_EQ((line * Outward{0, 0}).hi, std::nextafter(0.0, 1.0));
    EXPECT_LT((Outward{1, 2} / above).lo, 0.0);
    EXPECT_GT((Outward{1, 2} / above).lo, -1e-300);
    EXPECT_GE((Outward{1, 2} / above).hi, 2.0);
    EXPECT_LT((Outward{1, 2} / above).hi, 2.1);
    EXPECT_EQ((Outward{DBL_MAX, DBL_MAX} + Outward{DBL_MAX, DBL_MAX}).hi, inf);
}

TEST(Outward, TheEndsOfTheScaleAreInfinite) {
    Outward const all = outwardOf(*objMax);
    EXPECT_EQ(all.lo, -inf);
    EXPECT_EQ(all.hi, inf);
    EXPECT_EQ(outwardOf(s_Objet{}).hi, inf);
    EXPECT_EQ(outwardOf(makeReal(std::nan(""))).lo, -inf);
    EXPECT_EQ(outwardOf(makeRange(4, 3, 1, 1)).lo, 3);
}

TEST(Narrow, TellsWhatItDid) {
    Outward value{0, 10};
    EXPECT_EQ(narrow(value, {-1, 11}), Narrowing::SAME);
    EXPECT_EQ(narrow(value, {2, 11}), Narrowing::NARROWER);
    EXPECT_EQ(value.lo, 2);
    EXPECT_EQ(narrow(value, {3, 5}), Narrowing::NARROWER);
    EXPECT_EQ(narrow(value, {6, 7}), Narrowing::CONTRADICTION);
    EXPECT_EQ(value.lo, 3);
    EXPECT_EQ(value.hi, 5);
}

TEST(Narrow, AGapOfRoundingIsNoContradiction) {
    Outward value{1, 1};
    EXPECT_EQ(narrow(value, {1 + 1e-12, 1 + 1e-12}), Narrowing::SAME);
    EXPECT_EQ(value.hi, 1);
    EXPECT_EQ(narrow(value, {1 + 1e-6, 2}), Narrowing::CONTRADICTION);
}

// What moves by next to nothing is taken, and is worth no round of its own.
TEST(Narrow, ANegligibleGainIsNotProgress) {
    Outward value{0, 10};
    EXPECT_EQ(narrow(value, {-1, 10 - 1e-10}), Narrowing::SAME);
    EXPECT_EQ(value.hi, 10 - 1e-10);
}

TEST(PutNarrower, BoundsThatMoveAreClosedAndOthersStay) {
    s_Objet value = makeRange(0, 10, 0, 0);
    putNarrower(value, {2, inf});
    EXPECT_EQ(text(value), text(makeRange(2, 10, 1, 0)));
    putNarrower(value, {-inf, 7});
    EXPECT_EQ(text(value), text(closed(2, 7)));
    putNarrower(value, {7, 9});
    EXPECT_EQ(text(value), text(makeReal(7)));
    putNarrower(value, {1, 2});
    EXPECT_EQ(text(value), text(makeReal(7)));
}

}  // namespace
