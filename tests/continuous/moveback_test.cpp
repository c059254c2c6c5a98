// Moving a runtime back to a past time, with the moves spelled out on plain arrays beside it.
#include "engine_fixture.h"
#include "support/run_stopped.h"

namespace engine_test {
namespace {

std::vector<s_Objet> values(int count, double first) {
    std::vector<s_Objet> result;
    for (int i = 0; i < count; ++i)
        result.push_back(makeReal(first + i));
    return result;
}

// A variable whose fields all hold something else: values 1.. in histo, 101.. in mesHisto, 201.. in
// the flags and 401.. in the misbehaviours (no real flags, so that a mixed-up entry shows).
struct Moved {
    Plant plant;
    s_Variable* v;
    int length;

    explicit Moved(int length, bool measured = true) : length(length) {
        v = plant.add("v", obj("-1"), length);
        v->new_ = obj("-2");
        v->mes = obj("-3");
        v->histo = historyOf(values(length, 1));
        v->mesHisto = historyOf(values(length, 101));
        for (int i = 0; i < length; ++i) {
            v->lowHisto.set(i, 201 + i);
            v->highHisto.set(i, 301 + i);
            v->misbHisto.push_back(401 + i);
        }
        if (measured)
            plant.rt.measure = {v};
    }

    void move(double from, double to) { moveHistory(&plant.rt, v, from, to); }

    std::string state() const {
        return "old " + text(v->old) + " new " + text(v->new_) + " mes " + text(v->mes) + " | " +
               entries(v->histo) + " | " + entries(v->mesHisto) + " | " + entries(v->lowHisto) +
               " | " + entries(v->highHisto) + " | " + entries(v->misbHisto);
    }
};

TEST(MoveHistory, TheSameTimeChangesNothing) {
    Moved moved(3);
    std::string const before = moved.state();
    moved.move(4, 4);
    EXPECT_EQ(moved.state(), before);
}

TEST(MoveHistory, AFutureTimeChangesNothing) {
    Moved moved(3);
    std::string const before = moved.state();
    moved.move(5, 4);
    moved.move(1e9, -1e9);
    EXPECT_EQ(moved.state(), before);
}

TEST(MoveHistory, EachTimeIsTruncatedFirst) {
    Moved same(3), one(3);
    std::string const before = same.state();
    same.move(4.1, 4.9);
    EXPECT_EQ(same.state(), before);
    one.move(3.9, 4.1);  // 0.2 apart, but one cycle
    EXPECT_EQ(text(one.v->new_), "1");
}

TEST(MoveHistory, ValuesMoveOneFurtherThanMeasures) {
    Moved moved(5);
    moved.move(3, 5);
    EXPECT_EQ(moved.state(),
              "old 3 new 2 mes 102 | 4 5 3 0 0 | 103 104 105 0 0 | 203 204 205 0 0 | "
              "303 304 305 0 0 | 403 404 405 0 0");
}

TEST(MoveHistory, AnUnmeasuredVariableMovesItsValuesAlone) {
    Moved moved(3, false);
    moved.move(0, 1);
    EXPECT_EQ(moved.state(),
              "old 2 new 1 mes -3 | 3 2 0 | 101 102 103 | 201 202 203 | 301 302 303 | "
              "401 402 403");
}

TEST(MoveHistory, AParameterKeepsItsValue) {
    Moved moved(3, false);
    moved.v->isParam = 1;
    moved.move(0, 1);
    EXPECT_EQ(text(moved.v->old), "-1");
    EXPECT_EQ(text(moved.v->new_), "-2");
    EXPECT_EQ(entries(moved.v->histo), "3 2 0");
}

TEST(MoveHistory, WithoutMisbehaviourHistory) {
    Moved moved(3);
    moved.v->misbHisto.clear();
    moved.move(0, 1);
    EXPECT_EQ(entries(moved.v->misbHisto), "");
    EXPECT_EQ(entries(moved.v->mesHisto), "102 103 0");
}

TEST(MoveHistory, WithoutAnyHistory) {
    Moved moved(0);
    moved.move(0, 1);
    EXPECT_EQ(moved.state(), "old -1 new -2 mes -3 |  |  |  |  | ");
}

// The present values stand for the past from then on, which is told for each that is missing.
TEST(MoveHistory, FarBehindTheHistory) {
    Moved moved(3);
    std::string const before = moved.state();
    testing::internal::CaptureStderr();
    moved.move(0, 2e9);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "v: no value is kept of 1999999999 cycles back\n"
              "v: no value is kept of 2000000000 cycles back\n"
              "v: no value is kept of 1999999999 cycles back\n");
    EXPECT_EQ(moved.state(), before);
}

// Of three values the newest is one cycle old. The value at the end of the third cycle back is the
// last one; the one that it began with is missing.
TEST(MoveHistory, JustBehindTheHistory) {
    Moved moved(3);
    testing::internal::CaptureStderr();
    moved.move(0, 3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "v: no value is kept of 3 cycles back\n");
}

// ---- The twin ----

struct PlainVariable {
    s_Objet old, new_, mes;
    std::vector<s_Objet> histo, mesHisto;
    std::vector<int> low, high, misb;
};

PlainVariable plainOf(Moved const& moved) {
    PlainVariable plain{moved.v->old, moved.v->new_, moved.v->mes, {}, {}, {}, {}, {}};
    plain.histo = values(moved.length, 1);
    plain.mesHisto = values(moved.length, 101);
    for (int i = 0; i < moved.length; ++i) {
        plain.low.push_back(201 + i);
        plain.high.push_back(301 + i);
        plain.misb.push_back(401 + i);
    }
    return plain;
}

// Each entry in turn goes *by* places towards the newest and leaves *zero* behind.
template <typename T>
void shift(std::vector<T>& array, std::size_t by, T const& zero) {
    for (std::size_t i = by; i < array.size(); ++i) {
        array[i - by] = array[i];
        array[i] = zero;
    }
}

void movePlain(PlainVariable& plain, std::size_t d) {
    if (d == 0)
        return;
    if (d - 1 < plain.histo.size())
        plain.new_ = plain.histo[d - 1];
    if (d < plain.histo.size())
        plain.old = plain.histo[d];
    shift(plain.histo, d + 1, makeReal(0));
    if (d - 1 < plain.mesHisto.size())
        plain.mes = plain.mesHisto[d - 1];
    shift(plain.mesHisto, d, makeReal(0));
    shift(plain.low, d, 0);
    shift(plain.high, d, 0);
    shift(plain.misb, d, 0);
}

std::string stateOf(PlainVariable const& plain) {
    return "old " + text(plain.old) + " new " + text(plain.new_) + " mes " + text(plain.mes) +
           " | " + entries(historyOf(plain.histo)) + " | " + entries(historyOf(plain.mesHisto)) +
           " | " + entries(plain.low) + " | " + entries(plain.high) + " | " + entries(plain.misb);
}

// Also above half of the length, where entries are left that neither move nor are moved onto.
TEST(MoveHistoryTwin, EveryShiftOfEveryLength) {
    for (int length = 0; length <= 70; length += length < 8 ? 1 : 31)
        for (int d = 0; d <= length + 2; ++d) {
            Moved moved(length);
            PlainVariable plain = plainOf(moved);
            moved.move(10, 10 + d);
            movePlain(plain, static_cast<std::size_t>(d));
            ASSERT_EQ(moved.state(), stateOf(plain)) << "length " << length << ", shift " << d;
        }
}

// ---- The copy at a past time ----

class PartialCopy : public EngineTest {
protected:
    PartialCopy() {
        v = plant.add("v", obj("-1"), 5);
        v->histo = numbered(5);
        w = plant.add("w", obj("-2"), 5);
        w->histo = numbered(5, 11);
        plant.rt.twc = 300;
    }

    // What the same call tells, on the error stream and then on the other, and behind it how it
    // ends: "#", and the status when the run stops.
    std::string call(int faultCycle, double contTime, double curTime, int window) {
        std::string end = "#", told;
        auto const copy = [&] {
            try {
                sn_copyPartialFaultyRt(&plant.rt, faultCycle, contTime, curTime, window);
            } catch (RunStopped const& stop) {
                EXPECT_EQ(stop.reason, RunStopped::outsideWindow);
                end += std::to_string(stop.exitStatus());
            }
        };
        told = printed([&] { end = complaint(copy) + end; });
        std::size_t const sign = end.find('#');
        return end.substr(0, sign) + told + end.substr(sign);
    }

    Plant plant;
    s_Variable *v, *w;
};

TEST_F(PartialCopy, IsACopyWithEveryVariableMovedBack) {
    rt_num = 6;
    auto const copy = sn_copyPartialFaultyRt(&plant.rt, 0, 7, 9, 5);
    EXPECT_EQ(copy->num, 6);
    EXPECT_EQ(text(copy->dico[0]->old), "3");
    EXPECT_EQ(text(copy->dico[0]->new_), "2");
    EXPECT_EQ(text(copy->dico[1]->old), "13");
    EXPECT_EQ(entries(v->histo), "1 2 3 4 5");
    EXPECT_EQ(text(v->old), "-1");
}

// A sample period of 10 stands where one would expect the time.
TEST_F(PartialCopy, OutsideTheDiscreteWindowTheRunStops) {
    plant.rt.Ts = 10;
    EXPECT_EQ(call(4, 7, 9, 5), "The fault isn't in the discrete temporal window !\n#1");
    EXPECT_EQ(call(5, 7, 9, 5), "#");
}

TEST_F(PartialCopy, TheCurrentTimeDoesNotCountForTheDiscreteWindow) {
    EXPECT_TRUE(call(0, 1000, 1000, 5).ends_with("#"));
    EXPECT_TRUE(call(-5, 1000, 1000, 5).ends_with("discrete temporal window !\n#1"));
}

TEST_F(PartialCopy, OutsideTheContinuousWindowTheRunStops) {
    EXPECT_EQ(call(3, 99.5, 400, 5),
              "discrete fault time: 3\ncont_fault_time: 99.5 -- stime: 400-- twc: 300\n"
              "The fault isn't in the continuous temporal window !\n#1");
    EXPECT_TRUE(call(3, 100, 400, 5).ends_with("#"));
}

// ---- By whole cycles ----

// Two cycles ago the value was 2, the measure 102, and the flags of that measure are set. What the
// histories no longer reach stays as their oldest entry has it. The source is left alone.
TEST(CopyMovedBack, IsTheRuntimeOfThatCycle) {
    Moved moved(4);
    moved.v->lowalarm = 3;
    moved.v->meshighmisb = moved.v->mesmisb = 1;
    auto const copy = sn_copyMovedBack(&moved.plant.rt, 2);
    s_Variable const& v = *copy->dico[0];
    EXPECT_EQ(text(v.old), "2");
    EXPECT_EQ(text(v.new_), "2");
    EXPECT_EQ(text(v.mes), "102");
    EXPECT_EQ(v.lowalarm, 1);
    EXPECT_EQ(v.highalarm, 1);
    EXPECT_EQ(v.meshighmisb + v.meslowmisb + v.mesmisb, 0);
    EXPECT_EQ(entries(v.histo), "3 4 4 4");
    EXPECT_EQ(entries(v.mesHisto), "103 104 104 104");
    EXPECT_EQ(entries(v.lowHisto), "203 204 204 204");
    EXPECT_EQ(entries(moved.v->histo), "1 2 3 4");
    EXPECT_EQ(text(moved.v->old), "-1");
}

// The classic move by one unit of time lands a cycle further back.
TEST(CopyMovedBack, OneCycleIsOneEntry) {
    Moved moved(4);
    EXPECT_EQ(text(sn_copyMovedBack(&moved.plant.rt, 1)->dico[0]->old), "1");
    moved.move(4, 5);
    EXPECT_EQ(text(moved.v->old), "2");
}

TEST(CopyMovedBack, NoCycleIsACopy) {
    Moved moved(3);
    std::string const before = moved.state();
    auto const copy = sn_copyMovedBack(&moved.plant.rt, 0);
    EXPECT_EQ(text(copy->dico[0]->old), "-1");
    EXPECT_EQ(entries(copy->dico[0]->histo), "1 2 3");
    EXPECT_EQ(moved.state(), before);
}

TEST(CopyMovedBack, WhatHasNoHistoryKeepsItsValue) {
    Moved moved(0);
    auto const copy = sn_copyMovedBack(&moved.plant.rt, 3);
    EXPECT_EQ(text(copy->dico[0]->old), "-1");
    EXPECT_EQ(text(copy->dico[0]->mes), "-3");
    EXPECT_EQ(copy->dico[0]->lowalarm, 0);
}

// Behind the window nothing is known to have been different.
TEST(CopyMovedBack, BeyondTheHistoriesTheOldestEntryIsLeft) {
    Moved moved(3);
    auto const copy = sn_copyMovedBack(&moved.plant.rt, 9);
    EXPECT_EQ(text(copy->dico[0]->old), "-1");
    EXPECT_EQ(entries(copy->dico[0]->histo), "3 3 3");
}

}  // namespace
}  // namespace engine_test
