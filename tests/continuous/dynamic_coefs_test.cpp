// The discrete coefficients of the influences.
//
// The second-order forms are compared with recursions got without closed forms (dynamic_fixture.h),
// over a grid of parameters; with interval parameters, the recursions of sampled parameters must
// lie within the coefficients.

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>

#include "dynamic_fixture.h"

namespace dynamic_test {
namespace {

// One influence, as the compiled model leaves it.
class Coefs : public testing::Test {
protected:
    Coefs() {
        s_Variable* effect = plant.add("y", obj("0"));
        influence = plant.link(plant.add("u", obj("0")), effect, INF_DYNAMIC);
        influence->respTime = influence->a1 = influence->b1 = *objZero;
        influence->a2 = influence->b2 = obj("77");  // to be seen as not written
    }

    // The standard output is kept from the test's own.
    void eval(influType type, double Ts) {
        influence->type = type;
        testing::internal::CaptureStdout();
        sn_evalInfluCoefs(&plant.rt, Ts);
        printed = testing::internal::GetCapturedStdout();
    }

    void evalDamped(s_Objet const& xi, s_Objet const& w, s_Objet const& gain, double Ts) {
        influence->xi = xi;
        influence->w = w;
        influence->gain = gain;
        eval(INF_DYNAMIC2, Ts);
    }

    void evalRational(s_Objet const& n1, s_Objet const& n2, s_Objet const& d0, s_Objet const& d1,
                      s_Objet const& d2, double Ts) {
        influence->n1 = n1;
        influence->n2 = n2;
        influence->d0 = d0;
        influence->d1 = d1;
        influence->d2 = d2;
        eval(INF_DYNAMIC2, Ts);
    }

    void expectNumbers(Recursion const& r, double tolerance = 1e-12) {
        for (s_Objet const* o : {&influence->a1, &influence->a2, &influence->b1, &influence->b2})
            ASSERT_EQ(o->type, OBJ_REAL);
        EXPECT_NEAR(influence->a1.real, r.a1, tolerance);
        EXPECT_NEAR(influence->a2.real, r.a2, tolerance);
        EXPECT_NEAR(influence->b1.real, r.b1, tolerance);
        EXPECT_NEAR(influence->b2.real, r.b2, tolerance);
    }

    // Every coefficient is an interval that holds that of the recursion. The tolerance is that of
    // the searched sines and cosines.
    void expectWithin(Recursion const& r, double tolerance) {
        expectWithin(influence->a1, r.a1, tolerance);
        expectWithin(influence->a2, r.a2, tolerance);
        expectWithin(influence->b1, r.b1, tolerance);
        expectWithin(influence->b2, r.b2, tolerance);
    }

    static void expectWithin(s_Objet const& o, double value, double tolerance) {
        EXPECT_LE(sn_infOf(o), sn_supOf(o));
        EXPECT_LE(sn_infOf(o), value + tolerance);
        EXPECT_GE(sn_supOf(o), value - tolerance);
    }

    Plant plant;
    s_Influence* influence;
    std::string printed;
};

// ---- First order and below ----

TEST_F(Coefs, FirstOrderCoversAllButOneTwentiethInTheResponseTime) {
    influence->respTime = obj("6");
    influence->b1 = obj("55");
    eval(INF_DYNAMIC, 2.0);
    EXPECT_DOUBLE_EQ(influence->a1.real, std::exp(-1.0));  // 3 * 2 / 6
    EXPECT_EQ(text(influence->b1), "55");
    EXPECT_EQ(text(influence->a2), "77");
    EXPECT_EQ(text(influence->b2), "77");
    EXPECT_EQ(printed, "");
}

TEST_F(Coefs, FirstOrderOfAnIntervalTime) {
    influence->respTime = obj("]3, 6]");
    eval(INF_DYNAMIC, 1.0);
    ASSERT_EQ(influence->a1.type, OBJ_RANGE);
    EXPECT_DOUBLE_EQ(influence->a1.rng.inf, std::exp(-1.0));
    EXPECT_DOUBLE_EQ(influence->a1.rng.sup, std::exp(-0.5));
    EXPECT_FALSE(isInfClosed(influence->a1.rng));
    EXPECT_TRUE(isSupClosed(influence->a1.rng));
}

TEST_F(Coefs, FirstOrderWithoutATimeKeepsTheDividend) {
    for (char const* time : {"0", "[0, 2]", "[-1, 1]"}) {
        influence->respTime = obj(time);
        eval(INF_DYNAMIC, 0.5);
        EXPECT_EQ(text(influence->a1), text(makeReal(std::exp(-1.5)))) << time;
    }
}

TEST_F(Coefs, Integral) {
    influence->gain = obj("[0.75, 1.25[");
    eval(INF_INTEGRAL, 2.0);
    EXPECT_EQ(text(influence->a1), "1");
    EXPECT_EQ(text(influence->b1), "[1.5, 2.5[");
    EXPECT_EQ(text(influence->a2), "77");
    EXPECT_EQ(text(influence->b2), "77");
    EXPECT_EQ(printed, "");
}

TEST_F(Coefs, Static) {
    influence->gain = obj("]0, 0.3]");
    influence->a1 = obj("5");
    eval(INF_STATIC, 2.0);
    EXPECT_EQ(text(influence->a1), "0");
    EXPECT_EQ(text(influence->b1), "]0, 0.3]");
    EXPECT_EQ(text(influence->a2), "77");
    EXPECT_EQ(text(influence->b2), "77");
    EXPECT_EQ(printed, "");
}

TEST_F(Coefs, CouplingHasTheGainOne) {
    influence->gain = obj("0.25");
    influence->a1 = obj("5");
    eval(INF_COUPLING, 2.0);
    EXPECT_EQ(text(influence->a1), "0");
    EXPECT_EQ(text(influence->b1), "1");
    EXPECT_EQ(text(influence->a2), "77");
    EXPECT_EQ(printed, "");
}

TEST_F(Coefs, EveryInfluenceOfTheRuntimeIsDone) {
    s_Influence* second = plant.link(influence->cause, influence->effect, INF_STATIC, "3");
    second->b1 = *objZero;
    influence->gain = obj("4");
    eval(INF_INTEGRAL, 1.0);
    EXPECT_EQ(text(influence->b1), "4");
    EXPECT_EQ(text(second->b1), "3");
}

// ---- Damped forms ----

TEST_F(Coefs, UnderdampedIsStepInvariant) {
    for (double xi : {0.0, 0.1, 0.5, 0.9, 0.999})
        for (double w : {0.3, 1.0, 2.5})
            for (double Ts : {0.1, 1.0})
                for (double gain : {1.0, -2.0}) {
                    evalDamped(makeReal(xi), makeReal(w), makeReal(gain), Ts);
                    expectNumbers(stepInvariantOfDamping(xi, w, gain, Ts));
                }
}

// Close to two equal poles the closed form subtracts nearly equal numbers.
TEST_F(Coefs, OverdampedIsStepInvariant) {
    for (double xi : {1.01, 1.5, 3.0, 20.0})
        for (double w : {0.3, 1.0, 2.5})
            for (double Ts : {0.1, 1.0})
                for (double gain : {1.0, -2.0}) {
                    evalDamped(makeReal(xi), makeReal(w), makeReal(gain), Ts);
                    expectNumbers(stepInvariantOfDamping(xi, w, gain, Ts), 1e-11);
                }
}

TEST_F(Coefs, ADampingOfOneTakesTheUnderdampedForm) {
    double const w = 0.7, Ts = 0.5, gain = 3.0, e = std::exp(-w * Ts);
    evalDamped(obj("1"), makeReal(w), makeReal(gain), Ts);
    // With s = 0: g = 0, c = 1, z = 0.
    expectNumbers({2 * e, -std::exp(-2 * w * Ts), (1 - e) * gain, (e * e - e) * gain});
}

TEST_F(Coefs, AnEndlessDampingIsADoubleIntegrator) {
    evalDamped(makeReal(DBL_MAX), obj("5"), obj("3"), 0.5);
    expectNumbers(stepInvariant(3.0, 0, 0, 0, 1, 0.5));
    EXPECT_EQ(text(influence->a1), "2");
    EXPECT_EQ(text(influence->a2), "-1");
    EXPECT_EQ(text(influence->b1), "0.375");  // 3 * 0.25 / 2
    EXPECT_EQ(text(influence->b2), "0.375");
    EXPECT_EQ(printed, "a1:\n2\na2 :\n-1\nb1 :\n0.375\nb2 :\n0.375\n");
}

TEST_F(Coefs, TheDoubleIntegratorTakesAnIntervalGain) {
    evalDamped(makeReal(DBL_MAX), obj("5"), obj("]1, 2]"), 2.0);
    EXPECT_EQ(text(influence->b1), "]2, 4]");
    EXPECT_EQ(text(influence->b2), "]2, 4]");
}

// As an interval up to there it is overdamped: its square overflows.
TEST_F(Coefs, AnIntervalUpToTheEndlessDampingIsNotADoubleIntegrator) {
    evalDamped(closed(2, DBL_MAX), obj("1"), obj("1"), 0.5);
    EXPECT_EQ(influence->a1.type, OBJ_RANGE);
    EXPECT_EQ(influence->b1.type, OBJ_RANGE);
}

// The operations of the form one after the other on intervals, in 30 digits, with xi = [2, 2.01],
// w = [1, 1.01], gain = [1, 2], Ts = 0.5. Regrouped, b1 and b2 would have other bounds.
TEST_F(Coefs, OverdampedWithIntervalsFollowsTheOrderOfOperations) {
    evalDamped(closed(2, 2.01), closed(1, 1.01), closed(1, 2), 0.5);
    double const expected[4][2] = {{1.0117817934284958, 1.0421121770283634},
                                   {-0.13731010987665419, -0.12943367844871635},
                                   {0.041620038812798917, 0.21509360210912646},
                                   {0.023123289196089557, 0.10764981549808226}};
    s_Objet const* const found[4] = {&influence->a1, &influence->a2, &influence->b1,
                                     &influence->b2};
    for (int i = 0; i < 4; ++i) {
        ASSERT_EQ(found[i]->type, OBJ_RANGE) << i;
        EXPECT_NEAR(found[i]->rng.inf, expected[i][0], 1e-13) << i;
        EXPECT_NEAR(found[i]->rng.sup, expected[i][1], 1e-13) << i;
    }
}

TEST_F(Coefs, DampedIntervalsHoldTheRecursionsOfTheirPoints) {
    struct Case {
        s_Objet xi, w;
        double tolerance;
    };
    for (Case const& c :
         {Case{closed(0.3, 0.5), closed(1, 1.2), 1e-4}, Case{closed(0.6, 0.8), makeReal(2), 1e-4},
          Case{makeReal(0.5), closed(0.5, 1.5), 1e-4},
          Case{closed(1.5, 2), closed(1, 1.2), 1e-12}}) {
        evalDamped(c.xi, c.w, closed(-1, 2), 0.4);
        for (double i = 0; i <= 1; i += 0.125)
            for (double j = 0; j <= 1; j += 0.125)
                for (double gain : {-1.0, 0.5, 2.0}) {
                    double const xi = sn_infOf(c.xi) + i * (sn_supOf(c.xi) - sn_infOf(c.xi));
                    double const w = sn_infOf(c.w) + j * (sn_supOf(c.w) - sn_infOf(c.w));
                    expectWithin(stepInvariantOfDamping(xi, w, gain, 0.4), c.tolerance);
                }
    }
}

// Number poles: only the gain is an interval, so the bounds are exact.
TEST_F(Coefs, AnIntervalGainOfADampedFormIsExact) {
    for (double xi : {0.5, 2.0}) {
        evalDamped(makeReal(xi), obj("1"), obj("[1, 3["), 0.5);
        Recursion const r = stepInvariantOfDamping(xi, 1, 1, 0.5);
        EXPECT_EQ(influence->a1.type, OBJ_REAL);
        EXPECT_NEAR(influence->b1.rng.inf, r.b1, 1e-12);
        EXPECT_NEAR(influence->b1.rng.sup, 3 * r.b1, 1e-12);
        EXPECT_NEAR(influence->b2.rng.inf, r.b2, 1e-12);
        EXPECT_NEAR(influence->b2.rng.sup, 3 * r.b2, 1e-12);
        EXPECT_TRUE(isInfClosed(influence->b1.rng) && !isSupClosed(influence->b1.rng));
    }
}

// Overlapping 1 it is neither certainly below 1 nor equal to it: overdamped, with a negative
// radicand.
TEST_F(Coefs, AnIntervalDampingAcrossOneGivesNaN) {
    evalDamped(closed(0.5, 1.5), obj("1"), obj("1"), 0.5);
    EXPECT_TRUE(std::isnan(influence->a1.rng.inf) || std::isnan(influence->a1.rng.sup));
    EXPECT_TRUE(std::isnan(influence->b1.rng.inf) || std::isnan(influence->b1.rng.sup));
}

// ---- The rational form ----

TEST_F(Coefs, RationalIsStepInvariant) {
    for (double n1 : {1.0, -0.5})
        for (double n2 : {0.0, 0.7})
            for (double d1 : {0.2, 1.0})
                for (double d2 : {0.5, 2.0})
                    for (double Ts : {0.1, 1.0}) {
                        evalRational(makeReal(n1), makeReal(n2), makeReal(3.0), makeReal(d1),
                                     makeReal(d2), Ts);
                        expectNumbers(stepInvariant(n1, n2, 3.0, d1, d2, Ts));
                    }
}

TEST_F(Coefs, TheRationalFormTakesTheGain) {
    influence->gain = obj("[2, 4[");
    evalRational(obj("1"), obj("0.5"), obj("3"), obj("1"), obj("1"), 0.5);
    Recursion const r = stepInvariant(1, 0.5, 3, 1, 1, 0.5);
    EXPECT_NEAR(influence->a1.real, r.a1, 1e-12);
    EXPECT_NEAR(influence->b1.rng.inf, 2 * r.b1, 1e-12);
    EXPECT_NEAR(influence->b1.rng.sup, 4 * r.b1, 1e-12);
    EXPECT_NEAR(influence->b2.rng.inf, 4 * r.b2, 1e-12);  // b2 is negative here
    EXPECT_NEAR(influence->b2.rng.sup, 2 * r.b2, 1e-12);
}

TEST_F(Coefs, TheRationalFormWithoutAGainHasTheGainOne) {
    influence->gain = s_Objet{};
    evalRational(obj("1"), obj("0.5"), obj("3"), obj("1"), obj("1"), 0.5);
    expectNumbers(stepInvariant(1, 0.5, 3, 1, 1, 0.5));
}

TEST_F(Coefs, TheRationalFormComesFirst) {
    influence->xi = makeReal(DBL_MAX);
    influence->w = obj("1");
    evalRational(obj("1"), obj("0"), obj("1"), obj("1"), obj("1"), 0.5);
    expectNumbers(stepInvariant(1, 0, 1, 1, 1, 0.5));
}

TEST_F(Coefs, RationalIntervalsHoldTheRecursionsOfTheirPoints) {
    evalRational(closed(1, 1.5), closed(-0.2, 0.4), closed(2, 3), closed(0.5, 0.8), closed(1, 1.2),
                 0.4);
    for (int point = 0; point < 243; ++point) {  // three values of each of five parameters
        double at[5];
        for (int i = 0, rest = point; i < 5; ++i, rest /= 3)
            at[i] = rest % 3 * 0.5;
        expectWithin(stepInvariant(1 + 0.5 * at[0], -0.2 + 0.6 * at[1], 2 + at[2],
                                   0.5 + 0.3 * at[3], 1 + 0.2 * at[4], 0.4),
                     1e-4);
    }
}

// d0 / d2 = 1 is below (d1 / (2 d2))^2 = 4.
TEST_F(Coefs, ARationalFormWithRealPolesGivesNaN) {
    evalRational(obj("1"), obj("0"), obj("1"), obj("4"), obj("1"), 0.5);
    EXPECT_TRUE(std::isnan(influence->a1.real));
    EXPECT_FALSE(std::isnan(influence->a2.real));  // from the real part alone
    EXPECT_TRUE(std::isnan(influence->b1.real));
    EXPECT_TRUE(std::isnan(influence->b2.real));
}

// ---- Text, and models that lack a parameter ----

TEST_F(Coefs, EverySecondOrderFormIsPrinted) {
    evalDamped(obj("0.5"), obj("1"), obj("1"), 1.0);
    char expected[100];
    std::snprintf(expected, sizeof expected, "a1:\n%g\na2 :\n%g\nb1 :\n%g\nb2 :\n%g\n",
                  influence->a1.real, influence->a2.real, influence->b1.real, influence->b2.real);
    EXPECT_EQ(printed, expected);
}

TEST_F(Coefs, AnIncompleteFormIsReportedAndLeavesTheCoefficients) {
    for (int lacking = 0; lacking < 6; ++lacking) {
        influence->n1 = lacking < 4 ? copyObjet(objUn) : std::nullopt;
        influence->n2 = lacking != 0 ? copyObjet(objUn) : std::nullopt;
        influence->d0 = lacking != 1 ? copyObjet(objUn) : std::nullopt;
        influence->d1 = lacking != 2 ? copyObjet(objUn) : std::nullopt;
        influence->d2 = lacking != 3 ? copyObjet(objUn) : std::nullopt;
        influence->xi = lacking != 4 ? copyObjet(objUn) : std::nullopt;
        influence->w = lacking != 5 ? copyObjet(objUn) : std::nullopt;
        testing::internal::CaptureStderr();
        eval(INF_DYNAMIC2, 1.0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "Influence u>y lacks a parameter of its second-order form !\n");
        EXPECT_EQ(text(influence->a2), "77") << lacking;
        EXPECT_EQ(printed, "");
    }
}

}  // namespace
}  // namespace dynamic_test
