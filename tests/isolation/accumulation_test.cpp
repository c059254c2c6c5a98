// Isolation of a candidate: misbehaviours that last for a window, the level of each mode, and when
// the text comes and goes by threshold and accumulation time.
#include <algorithm>

#include "fixtures/the_run.h"
#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

// ---- The window of misbehaviours ----

class Window : public IsolationTest {
protected:
    Window() { graph.measureOf("y", {"a"}); }
    // Prepares with this misbehaviour; answers the history and what the measure then counts as.
    std::string prepare(int misbehaves) {
        measure()->mesmisb = misbehaves;
        sn_prepareDiag(rt);
        std::string result;
        for (int const flag : measure()->misbHisto)
            result += std::to_string(flag);
        return result + ":" + std::to_string(measure()->mesmisb);
    }
    s_Variable* measure() { return rt->measure[0]; }
    // Starts a run with this window; the prediction of the measure is [0, 1] from then on.
    void start(int window) {
        graph.ready();
        theRun().engine.inps.assign(rt->input.size(), 0.0);
        theRun().engine.meas.assign(rt->measure.size(), 0.5);
        complaint([&] { sorn_initialize(rt, 0, 0.01, "", window); });
        measure()->old = makeRange(0, 1, 1, 1);
    }

    CausalGraph graph;
    s_runtime* rt = &graph.rt;
};

TEST_F(Window, PreparingEmptiesTheText) {
    for (int window : {0, 3}) {
        rt->misbWindow = window;
        rt->diagBuf = "[as it was]";
        sn_prepareDiag(rt);
        EXPECT_EQ(rt->diagBuf, "");
    }
}

TEST_F(Window, WithoutOneNothingIsKept) {
    rt->misbWindow = 0;
    measure()->misbHisto = {0, 1};
    EXPECT_EQ(prepare(1), "01:1");
    EXPECT_EQ(prepare(0), "01:0");
}

TEST_F(Window, OfOneCycleKeepsThatCycle) {
    rt->misbWindow = 1;
    EXPECT_EQ(prepare(1), "1:1");
    EXPECT_EQ(prepare(0), "0:0");
}

// The newest first. What leaves at the old end no longer counts.
TEST_F(Window, KeepsAMisbehaviourForItsLength) {
    rt->misbWindow = 3;
    EXPECT_EQ(prepare(0), "000:0");
    EXPECT_EQ(prepare(1), "100:1");
    EXPECT_EQ(prepare(0), "010:1");
    EXPECT_EQ(prepare(0), "001:1");
    EXPECT_EQ(prepare(0), "000:0");
    EXPECT_EQ(prepare(1), "100:1");
    EXPECT_EQ(prepare(0), "010:1");
    EXPECT_EQ(prepare(1), "101:1");
    EXPECT_EQ(prepare(0), "010:1");
    EXPECT_EQ(prepare(0), "001:1");
    EXPECT_EQ(prepare(0), "000:0");
}

// What the window made of a measure is not a misbehaviour by itself, but it is one when no check
// stands between two preparations.
TEST_F(Window, AFlagThatNoCheckClearsIsAMisbehaviourAgain) {
    rt->misbWindow = 2;
    EXPECT_EQ(prepare(1), "10:1");
    for (int cycle = 0; cycle < 5; ++cycle) {
        sn_prepareDiag(rt);
        EXPECT_EQ(measure()->misbHisto, (std::vector<int>{1, 1}));
        EXPECT_EQ(measure()->mesmisb, 1);
    }
}

TEST_F(Window, IsEachMeasuresOwn) {
    graph.measureOf("z", {"b"});
    rt->misbWindow = 2;
    prepare(1);
    rt->measure[1]->mesmisb = 1;
    EXPECT_EQ(prepare(0), "01:1");
    EXPECT_EQ(rt->measure[1]->misbHisto, (std::vector<int>{1, 0}));
    EXPECT_EQ(prepare(0), "00:0");
    EXPECT_EQ(rt->measure[1]->mesmisb, 1);
}

TEST_F(Window, AHistoryOfAnotherLengthIsBroughtToTheWindow) {
    rt->misbWindow = 3;
    measure()->misbHisto = {1};
    EXPECT_EQ(prepare(0), "010:1");
    measure()->misbHisto = {0, 0, 0, 1};
    EXPECT_EQ(prepare(0), "000:0") << "what is older than the window does not count";
    measure()->misbHisto = {};
    EXPECT_EQ(prepare(0), "000:0");
}

// The last alarm was one cycle ago: the measure counts as misbehaving for one cycle more, but not
// so in the copy, which does not know of it.
TEST_F(Window, ACopyForgetsAllButTheNewestCycle) {
    rt->misbWindow = 3;
    prepare(1);
    EXPECT_EQ(prepare(0), "010:1");
    auto const copy = sn_copyRuntime(rt);
    EXPECT_EQ(copy->measure[0]->mesmisb, 1);
    copy->measure[0]->mesmisb = 0;
    sn_prepareDiag(copy.get());
    EXPECT_EQ(copy->measure[0]->mesmisb, 0);
    EXPECT_EQ(prepare(0), "001:1");
}

// A copy has a place for each cycle of the window when its measure misbehaves and no history when
// it does not, and goes on with either.
TEST_F(Window, GoesOnInACopy) {
    for (int window = 1; window <= 8; ++window)
        for (int misbehaves : {0, 1}) {
            start(window);
            measure()->mesmisb = misbehaves;
            sn_prepareDiag(rt);
            auto const copy = sn_copyRuntime(rt);
            s_Variable* copied = copy->measure[0];
            ASSERT_EQ(copied->misbHisto.size(), misbehaves ? static_cast<std::size_t>(window) : 0u);
            int cycles = 0;
            do {
                ++cycles;
                copied->mesmisb = 0;  // the check finds the measure inside from now on
                sn_prepareDiag(copy.get());
                ASSERT_EQ(copied->misbHisto.size(), static_cast<std::size_t>(window));
            } while (copied->mesmisb != 0);
            EXPECT_EQ(cycles, misbehaves ? window : 1);
        }
}

// ---- Isolation of a candidate ----

class Candidate : public Window {
protected:
    std::string isolate(int mode) {
        return complaint([&] { sn_detectAndIsolate(rt, mode); });
    }
};

// y {a, b} misbehaves, z {b, c} does not; see the levels of a diagnosis.
TEST_F(Candidate, IsIsolatedAtTheLevelOfItsMode) {
    graph.link("b", graph.input("u"), measure());
    graph.measureOf("z", {"b", "c"});
    measure()->mesmisb = 1;
    EXPECT_EQ(isolate(3), sent("[{a,0,()}][{b,0,()}]"));
    EXPECT_EQ(isolate(4), sent("[{a,0,()}][{b,0,()}{c,0,()}]"));
    EXPECT_EQ(isolate(5), sent("[{a,0,()}]"));
    EXPECT_EQ(rt->isoMode, 1);
}

TEST_F(Candidate, IsNotIsolatedInTheOtherModes) {
    measure()->mesmisb = 1;
    rt->diagBuf = "[as it was]";
    rt->misbWindow = 2;
    for (int mode : {0, 1, 2}) {
        EXPECT_EQ(isolate(mode), "");
        EXPECT_EQ(rt->diagBuf, "[as it was]");
        EXPECT_EQ(rt->isoMode, 0);
        EXPECT_TRUE(measure()->misbHisto.empty());
    }
}

TEST_F(Candidate, ThatBehavesSendsNothing) {
    rt->diagBuf = "[as it was]";
    EXPECT_EQ(isolate(3), "");
    EXPECT_EQ(rt->diagBuf, "");
}

// Nothing is left of the exonerated, so there is nothing to send.
TEST_F(Candidate, WithoutADiagnosisSendsNothing) {
    graph.measureOf("z", {"a"});
    measure()->mesmisb = 1;
    EXPECT_EQ(isolate(5), "");
    EXPECT_EQ(isolate(3), sent("[{a,0,()}]"));
}

TEST_F(Candidate, IsIsolatedAsLongAsTheWindowLasts) {
    rt->misbWindow = 3;
    measure()->mesmisb = 1;
    std::string expected[] = {sent("[{a,0,()}]"), sent("[{a,0,()}]"), sent("[{a,0,()}]"), ""};
    for (std::string const& text : expected) {
        EXPECT_EQ(isolate(3), text);
        measure()->mesmisb = 0;
    }
}

// ---- Thresholds and accumulation times ----

class Times : public Candidate, public testing::WithParamInterface<int> {};

// Measures are outside in the cycles 1 to 10 and inside from
// then on. With threshold n the alarm stands from cycle n on; with window w the misbehaviour is
// kept for w - 1 cycles after the last alarm, in cycle 10.
TEST_P(Times, AlarmsBeginAtTheThresholdAndLastForTheWindow) {
    int const threshold = GetParam();
    for (int window = 0; window <= 8; ++window) {
        start(window);
        int first = 0, last = 0, count = 0;
        for (int cycle = 1; cycle <= 30; ++cycle) {
            measure()->mes = makeReal(cycle <= 10 ? 5 : 0.5);
            sn_checkMs(rt, threshold);
            sn_yieldAlarms(rt);
            if (isolate(3).empty())
                continue;
            first = first == 0 ? cycle : first;
            last = cycle;
            ++count;
        }
        EXPECT_EQ(first, threshold);
        EXPECT_EQ(last, 10 + std::max(window - 1, 0)) << "window " << window;
        EXPECT_EQ(count, last - first + 1) << "without a gap";
    }
}

// A threshold of 1 leaves nothing that would be too short.
class LongerTimes : public Times {};

// A measure that is outside for less than the threshold is never isolated, whatever the window.
TEST_P(LongerTimes, AShortDeviationIsNoMisbehaviour) {
    int const threshold = GetParam();
    for (int window = 0; window <= 8; ++window) {
        start(window);
        for (int cycle = 1; cycle <= 4 * threshold; ++cycle) {
            bool const inside = cycle % threshold == 0;
            measure()->mes = makeReal(inside ? 0.5 : -5);
            sn_checkMs(rt, threshold);
            EXPECT_EQ(isolate(3), "") << "cycle " << cycle;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Thresholds, Times, testing::Range(1, 9));
INSTANTIATE_TEST_SUITE_P(Thresholds, LongerTimes, testing::Range(2, 9));

}  // namespace
