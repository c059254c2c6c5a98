// Detection of misbehaving measures.

#include <gtest/gtest.h>

#include <random>

#include "dynamic_fixture.h"

namespace dynamic_test {
namespace {

// What the host was given last.
struct Handed {
    std::string text;
    std::vector<int> low, high, misb;
    int calls = 0;
};

Handed handed;

// One measured variable, with a prediction and a measure in the notation of values.
class Alarms : public testing::Test {
protected:
    Alarms() {
        v = plant.add("v", obj("0"));
        plant.measure(v, 0);
        plant.rt.precision = 0.01;
        handed = {};
        testHost().onAlarms = [](int count, int const* low, int const* high, int const* misb) {
            handed = {"",
                      {low, low + count},
                      {high, high + count},
                      {misb, misb + count},
                      handed.calls + 1};
        };
        testHost().onDiagnosis = [](std::string const& text) {
            handed = {text, {}, {}, {}, handed.calls + 1};
        };
    }
    ~Alarms() override { testHost().onAlarms = nullptr, testHost().onDiagnosis = nullptr; }

    void check(char const* prediction, double measure, int threshold = 3) {
        v->old = obj(prediction);
        v->mes = makeReal(measure);
        EXPECT_EQ(sn_checkMs(&plant.rt, threshold), 1);
    }

    // Counters and flags: low, high, low misbehaviour, high misbehaviour, misbehaviour.
    std::string state() const {
        return std::to_string(v->lowalarm) + std::to_string(v->highalarm) + " " +
               std::to_string(v->meslowmisb) + std::to_string(v->meshighmisb) +
               std::to_string(v->mesmisb);
    }

    // The counters after one check from a state in which everything is set.
    std::string verdict(char const* prediction, double measure) {
        v->lowalarm = v->highalarm = 1;
        v->meslowmisb = v->meshighmisb = v->mesmisb = 0;
        check(prediction, measure, 9);
        if (state() == "00 000")
            return "inside";
        if (state() == "21 000")
            return "low";
        if (state() == "12 000")
            return "high";
        return state() == "11 000" ? "neither" : state();
    }

    Plant plant;
    s_Variable* v;
};

// ---- The verdict ----

TEST_F(Alarms, AgainstAnInterval) {
    EXPECT_EQ(verdict("[1, 2]", 1.5), "inside");
    EXPECT_EQ(verdict("]1, 2[", 1.5), "inside");
    EXPECT_EQ(verdict("[1, 2]", 2.5), "high");
    EXPECT_EQ(verdict("[1, 2]", 0.5), "low");
    EXPECT_EQ(verdict("[1, 2]", -3), "low");
}

TEST_F(Alarms, OnABoundTheFlagDecides) {
    EXPECT_EQ(verdict("[1, 2]", 2), "inside");
    EXPECT_EQ(verdict("[1, 2]", 1), "inside");
    EXPECT_EQ(verdict("[1, 2[", 2), "neither");
    EXPECT_EQ(verdict("]1, 2]", 1), "neither");
    EXPECT_EQ(verdict("]1, 2]", 2), "inside");
    EXPECT_EQ(verdict("[1, 2[", 1), "inside");
}

TEST_F(Alarms, OnAOnePointIntervalNothingIsInside) {
    EXPECT_EQ(verdict("[1, 1]", 1), "neither");
    EXPECT_EQ(verdict("[1, 1]", 1.5), "high");
}

TEST_F(Alarms, AgainstANumber) {
    EXPECT_EQ(verdict("100", 100.5), "inside");  // 0.5 / 200.5
    EXPECT_EQ(verdict("100", 99.5), "inside");
    EXPECT_EQ(verdict("100", 110), "high");  // 10 / 210
    EXPECT_EQ(verdict("100", 90), "low");
    EXPECT_EQ(verdict("-100", -100.5), "inside");
    EXPECT_EQ(verdict("-100", -90), "high");
    EXPECT_EQ(verdict("-100", -110), "low");
    EXPECT_EQ(verdict("-1", 1), "high");  // 2 / 2
}

// 1/8 from both: 2 / (9 + 7) with a precision of exactly 1/8.
TEST_F(Alarms, ADistanceOfThePrecisionIsOutside) {
    plant.rt.precision = 0.125;
    EXPECT_EQ(verdict("7", 9), "high");
    EXPECT_EQ(verdict("9", 7), "low");
    plant.rt.precision = 0.125000001;
    EXPECT_EQ(verdict("7", 9), "inside");
}

TEST_F(Alarms, AgainstZero) {
    EXPECT_EQ(verdict("0", 0), "inside");
    EXPECT_EQ(verdict("0", 1e-9), "high");  // the distance is 1
    EXPECT_EQ(verdict("0", -1e-9), "low");
    EXPECT_EQ(verdict("1e-9", 0), "low");
    plant.rt.precision = 0;
    EXPECT_EQ(verdict("0", 0), "inside");
    EXPECT_EQ(verdict("5", 5), "low");  // neither nearer than 0 nor above
}

// ---- Counting ----

TEST_F(Alarms, TheThirdInARowIsAnAlarm) {
    check("[1, 2]", 3);
    EXPECT_EQ(state(), "01 000");
    check("[1, 2]", 3);
    EXPECT_EQ(state(), "02 000");
    check("[1, 2]", 3);
    EXPECT_EQ(state(), "03 011");
    check("[1, 2]", 3);
    EXPECT_EQ(state(), "03 011");
}

TEST_F(Alarms, LowMeasuresCountOnTheirOwnSide) {
    check("[1, 2]", 0);
    check("[1, 2]", 0);
    EXPECT_EQ(state(), "20 000");
    check("[1, 2]", 0);
    EXPECT_EQ(state(), "30 101");
    check("[1, 2]", 0);
    EXPECT_EQ(state(), "30 101");
}

TEST_F(Alarms, AMeasureOnAnOpenBoundPausesTheCount) {
    check("[1, 2[", 3);
    check("[1, 2[", 3);
    check("[1, 2[", 2);
    EXPECT_EQ(state(), "02 000");
    check("[1, 2[", 3);
    EXPECT_EQ(state(), "03 011");
    check("[1, 2[", 2);
    EXPECT_EQ(state(), "03 011");
}

TEST_F(Alarms, AMeasureInsideClearsEverything) {
    for (int i = 0; i < 3; ++i) {
        check("[1, 2]", 3);
        check("[1, 2]", 0);
    }
    EXPECT_EQ(state(), "33 111");
    check("[1, 2]", 1.5);
    EXPECT_EQ(state(), "00 000");
}

TEST_F(Alarms, TheOtherSideDoesNotResetACounter) {
    check("[1, 2]", 3);
    check("[1, 2]", 0);
    check("[1, 2]", 3);
    EXPECT_EQ(state(), "12 000");
}

TEST_F(Alarms, WithAThresholdOfOneTheFirstMeasureIsAnAlarm) {
    check("[1, 2]", 3, 1);
    EXPECT_EQ(state(), "01 011");
    check("[1, 2]", 0, 1);
    EXPECT_EQ(state(), "11 111");
}

// The threshold of a later command replaces the count.
TEST_F(Alarms, ACounterPastTheThresholdComesBackToIt) {
    v->highalarm = 7;
    check("[1, 2]", 3, 2);
    EXPECT_EQ(state(), "02 011");
}

TEST_F(Alarms, AMisbehaviourOfAnotherOriginStays) {
    v->mesmisb = 1;
    check("[1, 2]", 3);
    EXPECT_EQ(state(), "01 001");
}

// On either side, from either flag, also with a verdict that counts nothing.
TEST_F(Alarms, AnEstablishedSideIsAMisbehaviour) {
    v->meslowmisb = 1;
    check("[1, 2[", 2);
    EXPECT_EQ(state(), "00 101");
}

TEST_F(Alarms, EveryMeasureIsCheckedAndNoOtherVariable) {
    s_Variable* second = plant.add("second", obj("[1, 2]"));
    plant.measure(second, 5);
    s_Variable* other = plant.add("other", obj("[1, 2]"));
    other->mes = makeReal(5);
    check("[1, 2]", 0);
    EXPECT_EQ(state(), "10 000");
    EXPECT_EQ(second->highalarm, 1);
    EXPECT_EQ(other->highalarm, 0);
}

// ---- Against a slow twin ----

// One variable, written from the rules alone: 'i' inside, 'l', 'h', 'n' neither.
struct Twin {
    int low = 0, high = 0, lowMisb = 0, highMisb = 0, misb = 0;

    static char classify(s_Objet const& p, double m, double precision) {
        if (p.type == OBJ_RANGE) {
            bool const aboveInf = m > p.rng.inf, belowSup = m < p.rng.sup;
            if (aboveInf && belowSup)
                return 'i';
            if (m == p.rng.inf && belowSup)
                return p.rng.infClosed == 1 ? 'i' : 'n';
            if (m == p.rng.sup && aboveInf)
                return p.rng.supClosed == 1 ? 'i' : 'n';
            return m == p.rng.inf ? 'n' : aboveInf ? 'h' : 'l';
        }
        if (m == p.real)
            return precision > 0 || m == 0 ? 'i' : 'l';
        double const sum = (m < 0 ? -m : m) + (p.real < 0 ? -p.real : p.real);
        double const r = (m > p.real ? m - p.real : p.real - m) / sum;
        return r < precision ? 'i' : m > p.real ? 'h' : 'l';
    }

    void step(char verdict, int n) {
        if (verdict == 'i')
            *this = {};
        if (verdict == 'h') {
            highMisb = highMisb || high + 1 >= n;
            high = high + 1 < n ? high + 1 : n;
        }
        if (verdict == 'l') {
            lowMisb = lowMisb || low + 1 >= n;
            low = low + 1 < n ? low + 1 : n;
        }
        if (verdict != 'i')
            misb = misb || lowMisb || highMisb;
    }

    std::string state() const {
        return std::to_string(low) + std::to_string(high) + " " + std::to_string(lowMisb) +
               std::to_string(highMisb) + std::to_string(misb);
    }
};

TEST_F(Alarms, AsTheSlowTwinOverRandomSequences) {
    char const* const predictions[] = {"[-1, 2]", "[-1, 2[", "]-1, 2]", "]-1, 2[", "[2, 2]",
                                       "]2, 2[",  "0",       "2",       "-1",      "[0, 1]"};
    unsigned const seed = 8080;
    std::mt19937 random(seed);
    for (int sequence = 0; sequence < 400; ++sequence) {
        Twin twin;
        check("[0, 1]", 0.5);
        int const threshold = 1 + static_cast<int>(random() % 4);
        plant.rt.precision = random() % 2 ? 0.2 : 0.0;
        for (int step = 0; step < 60; ++step) {
            char const* prediction = predictions[random() % 10];
            double const measure = static_cast<int>(random() % 13) * 0.5 - 3;
            check(prediction, measure, threshold);
            twin.step(Twin::classify(obj(prediction), measure, plant.rt.precision), threshold);
            ASSERT_EQ(state(), twin.state())
                << "seed " << seed << " sequence " << sequence << " step " << step << ": "
                << measure << " against " << prediction << ", threshold " << threshold;
        }
    }
}

// ---- Opening the loop, resetting ----

TEST_F(Alarms, SettingThemOpensTheLoop) {
    s_Variable* other = plant.add("other", obj("1"));
    v->highalarm = 4;
    sn_setAlarms(&plant.rt);
    EXPECT_EQ(state(), "14 000");
    EXPECT_EQ(other->lowalarm, 0);
}

TEST_F(Alarms, ResettingTakesTheMeasures) {
    s_Variable* other = plant.add("other", obj("1"));
    other->mes = makeReal(9);
    v->old = obj("[1, 2]");
    v->mes = makeReal(7);
    sn_resetMs(&plant.rt);
    EXPECT_EQ(text(v->old), "7");
    EXPECT_EQ(text(other->old), "1");
}

// ---- Handing on ----

TEST_F(Alarms, TheMirrorsAndTheHookGetEveryMeasure) {
    s_Variable* second = plant.add("second", obj("1"));
    plant.measure(second, 0);
    v->lowalarm = 1;
    v->highalarm = 2;
    v->meslowmisb = 3;
    v->meshighmisb = 4;
    v->mesmisb = 5;
    second->lowalarm = 6;
    second->highalarm = 7;
    second->meslowmisb = 8;
    second->meshighmisb = 9;
    second->mesmisb = 10;
    EXPECT_EQ(sn_yieldAlarms(&plant.rt), 1);
    using Values = std::vector<int>;
    EXPECT_EQ(plant.rt.lowalarm, (Values{1, 6}));
    EXPECT_EQ(plant.rt.highalarm, (Values{2, 7}));
    EXPECT_EQ(plant.rt.meslowmisb, (Values{3, 8}));
    EXPECT_EQ(plant.rt.meshighmisb, (Values{4, 9}));
    EXPECT_EQ(plant.rt.mesmisb, (Values{5, 10}));
    EXPECT_EQ(handed.low, (Values{1, 6}));
    EXPECT_EQ(handed.high, (Values{2, 7}));
    EXPECT_EQ(handed.misb, (Values{3, 8}));
    EXPECT_EQ(handed.calls, 1);
}

TEST_F(Alarms, WithoutMeasuresTheHostIsNotCalled) {
    s_runtime empty;
    empty.engine = &theEngine;
    EXPECT_EQ(sn_yieldAlarms(&empty), 1);
    EXPECT_EQ(sn_checkMs(&empty, 2), 1);
    EXPECT_EQ(handed.calls, 0);
}

TEST_F(Alarms, TheDiagnosisIsHandedOn) {
    plant.rt.diagBuf = "R1.i2 is faulty\n";
    EXPECT_EQ(sn_yieldDiags(&plant.rt), 1);
    EXPECT_EQ(handed.text, "R1.i2 is faulty\n");
}

}  // namespace
}  // namespace dynamic_test
