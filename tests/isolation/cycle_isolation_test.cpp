// The older cycle in each of its modes: isolation alone, with a request given from outside, and
// steps with checks and isolation.
#include "console/isolation_request.h"
#include "fixtures/the_run.h"
#include "hybrid/tavro-runt.h"
#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

// ---- Isolation alone, by request ----

// y {a, b} and z {b, c}; a has a condition, and so has d, which stands beside them.
class Request : public IsolationTest {
protected:
    Request() {
        s_Variable* u = graph.input("u");
        s_Variable *y = graph.measure("y"), *z = graph.measure("z");
        a = graph.link("a", u, y, 0, graph.constant(0));
        graph.link("b", u, y);
        graph.link("b", u, z);
        d = graph.link("d", u, z, 0, graph.constant(0));
        graph.ready();
        theRun().tavro_rt = rt;
    }
    std::string ask(char const* request, int mode) {
        tDiag = IsolationRequest(request);
        return complaint([&] { result = sorn_doCycle(rt, mode, 0); });
    }

    CausalGraph graph;
    s_runtime* rt = &graph.rt;
    s_Influence *a, *d;
    int result = -7;
};

// b is in both. Level 2: {a, b} and the soft set {a, d}: [a]; [b] grows into [b a], closed, and
// [b d].
TEST_F(Request, IsAnsweredAtTheLevelOfItsMode) {
    EXPECT_EQ(ask("y 1 1", 6), sent("[{a,0,(true)}][{b,0,()}]"));
    EXPECT_EQ(result, 0);
    EXPECT_EQ(ask("y 1 1", 7), sent("[{a,0,(true)}][{b,0,()}{d,0,(true)}]"));
    EXPECT_EQ(ask("y 1 1", 8), sent("[{a,0,(true)}]"));
    EXPECT_EQ(ask("z y 1 0", 8), sent("[{b,0,()}]"));
    EXPECT_EQ(rt->isoMode, 1);
}

TEST_F(Request, ConditionsComeFromOutside) {
    EXPECT_EQ(ask("y 0 1", 6), sent("[{b,0,()}]"));
    EXPECT_EQ(a->condHisto[0], 0);
    EXPECT_EQ(a->condHisto[1], 1) << "they are pushed";
    EXPECT_EQ(d->condHisto[0], 1);
    EXPECT_EQ(d->cond->val, 1);
}

TEST_F(Request, TakesNoStep) {
    rt->untemporal = {rt->measure[0]};
    rt->misbWindow = 3;
    rt->measure[1]->misbHisto = {0, 1, 0};
    rt->measure[1]->mesmisb = 1;
    theRun().engine.inps = {7.0};
    ask("y 1 1", 6);
    EXPECT_EQ(sn_infOf(rt->measure[0]->new_), 0.0);
    EXPECT_EQ(sn_infOf(rt->input[0]->new_), 0.0);
    EXPECT_EQ(rt->measure[1]->misbHisto, (std::vector<int>{0, 1, 0})) << "nothing ages";
    EXPECT_EQ(rt->measure[1]->mesmisb, 0) << "z was not named";
    EXPECT_EQ(rt->measure[0]->lowalarm, 0) << "nor is the loop opened";
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

TEST_F(Request, WithoutAMisbehaviourNothingIsSent) {
    rt->diagBuf = "[as it was]";
    EXPECT_EQ(ask("1 1", 6), "");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(rt->diagBuf, "");
}

// The wrong name clears them all and ends the request, so the conditions are missing as well; that
// is told, but is no step that failed.
TEST_F(Request, AWrongNameIsAFailure) {
    EXPECT_EQ(ask("y x 1 1", 6),
              "Variable x either is not measured or does not exist !\n"
              "Not enough condition values !\n");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(rt->measure[0]->mesmisb, 0);
}

TEST_F(Request, WithoutConditionValuesTheLastOnesStand) {
    EXPECT_EQ(ask("y", 6), "Not enough condition values !\n" + sent("[{a,0,(false)}][{b,0,()}]"));
    EXPECT_EQ(result, 0);
    EXPECT_EQ(a->condHisto[0], 1);
    EXPECT_EQ(ask("y 1 x", 6), "Wrong condition value !\n" + sent("[{a,0,(false)}][{b,0,()}]"));
}

TEST_F(Request, AllConditionsFalseMakeTheModelInvalid) {
    for (auto const& influence : rt->influ)
        if (influence->cond == nullptr)
            influence->cond = graph.constant(1);
    rt->diagBuf = "[as it was]";
    rt->isoMode = 0;
    EXPECT_EQ(ask("y 0 0 0 0", 6), "");
    EXPECT_EQ(result, -1);
    EXPECT_EQ(rt->diagBuf, "[as it was]");
    EXPECT_EQ(rt->isoMode, 0);
    EXPECT_EQ(rt->measure[0]->mesmisb, 1) << "the misbehaviours are in by then";
    EXPECT_EQ(ask("y 0 1 0 0", 6), sent("[{b,0,(true)}]"));
    EXPECT_EQ(result, 0);
}

TEST_F(Request, ARuntimeWithoutInfluencesIsInvalid) {
    CausalGraph empty;
    empty.measure("y");
    empty.ready();
    theRun().tavro_rt = &empty.rt;
    tDiag = IsolationRequest("y");
    EXPECT_EQ(sorn_doCycle(&empty.rt, 6, 0), -1);
}

// ---- The older cycle with a step ----

// A level that is the input of this cycle, measured by y, and a static reading x of it. Nothing is
// moved to `old`, which is where the measure is compared.
class OlderCycle : public IsolationTest {
protected:
    OlderCycle() {
        s_Variable* u = graph.input("u");
        y = graph.measure("y");
        x = graph.variable("x");
        b = graph.link("b", u, y);
        graph.link("x<u", u, x)->b1 = makeReal(1.0);
        rt->untemporal = {x};
        y->old = makeRange(0, 1, 1, 1);
        rt->display = {y};
        graph.ready();
        theRun().engine.inps = {4.0};
        theRun().engine.meas = {9.0};
    }
    ~OlderCycle() override { theRun().engine.nrt.clear(); }
    std::string cycle(int mode, int threshold = 1) {
        theRun().engine.nrt.clear();
        if (extra != nullptr)
            theRun().engine.nrt.insert({extra->num, extra.get()});
        return complaint([&] { result = sorn_doCycle(rt, mode, threshold); });
    }
    // Another runtime of the split.
    void split() {
        theRun().engine.rt_num = rt->num + 1;
        extra = sn_copyRuntime(rt);
    }

    CausalGraph graph;
    s_runtime* rt = &graph.rt;
    std::unique_ptr<s_runtime> extra;
    s_Variable *y, *x;
    s_Influence* b;
    int result = -7;
};

TEST_F(OlderCycle, TakesAStepAndMovesNothing) {
    for (int mode = 0; mode <= 5; ++mode) {
        x->new_ = makeReal(0.0);
        EXPECT_EQ(cycle(mode).empty(), mode <= 2) << mode;
        EXPECT_EQ(result, 0);
        EXPECT_EQ(sn_infOf(x->new_), 4.0) << "the input of this cycle";
        EXPECT_EQ(sn_infOf(x->old), 0.0);
        EXPECT_EQ(sn_infOf(y->mes), 9.0);
        EXPECT_EQ(theRun().engine.nrt.size(), 1u) << "the runtime itself";
        y->old = makeRange(0, 1, 1, 1);
    }
}

TEST_F(OlderCycle, ASimulationOpensTheLoopAndChecksNothing) {
    EXPECT_EQ(cycle(0), "");
    EXPECT_EQ(y->lowalarm, 1);
    EXPECT_EQ(y->highalarm, 0);
    EXPECT_EQ(rt->highalarm[0], 0);
    EXPECT_TRUE(isRange(y->old));
    EXPECT_EQ(rt->dsupval[0], 1.0) << "the display is yielded";
}

// The display is that of the prediction; the measure takes its place afterwards.
TEST_F(OlderCycle, AResetTakesTheMeasureAfterTheDisplay) {
    EXPECT_EQ(cycle(1), "");
    EXPECT_EQ(y->lowalarm, 1);
    EXPECT_EQ(sn_infOf(y->old), 9.0);
    EXPECT_EQ(rt->dsupval[0], 1.0);
}

TEST_F(OlderCycle, AResetIsThatOfItsOwnRuntime) {
    split();
    cycle(1);
    EXPECT_EQ(sn_infOf(y->old), 9.0);
    EXPECT_TRUE(isRange(extra->measure[0]->old)) << "the others of the split keep theirs";
}

TEST_F(OlderCycle, ADetectionChecksAndSendsNoDiagnosis) {
    EXPECT_EQ(cycle(2, 2), "");
    EXPECT_EQ(rt->highalarm[0], 1) << "the threshold counts";
    EXPECT_EQ(rt->mesmisb[0], 0);
    EXPECT_EQ(cycle(2, 2), "");
    EXPECT_EQ(rt->highalarm[0], 2);
    EXPECT_EQ(rt->meshighmisb[0], 1);
    EXPECT_EQ(rt->mesmisb[0], 1);
    EXPECT_EQ(y->lowalarm, 0) << "the loop is closed";
}

// z {b, c} behaves.
TEST_F(OlderCycle, AnIsolationHasTheLevelOfItsMode) {
    graph.link("a", rt->input[0], y);
    s_Variable* z = graph.measureOf("z", {"b", "c"});
    z->old = makeRange(0, 1, 1, 1);
    graph.ready();
    theRun().engine.meas = {9.0, 0.5};
    theRun().engine.inps.resize(rt->input.size());
    EXPECT_EQ(cycle(3), sent("[{b,0,()}][{a,0,()}]"));
    EXPECT_EQ(cycle(4), sent("[{a,0,()}][{b,0,()}{c,0,()}]"));
    EXPECT_EQ(cycle(5), sent("[{a,0,()}]"));
}

// The diagnosis is prepared: misbehaviours age.
TEST_F(OlderCycle, AnIsolationKeepsAWindow) {
    rt->misbWindow = 2;
    EXPECT_EQ(cycle(3), sent("[{b,0,()}]"));
    EXPECT_EQ(y->misbHisto, (std::vector<int>{1, 0}));
    theRun().engine.meas = {0.5};
    EXPECT_EQ(cycle(3), sent("[{b,0,()}]"));
    EXPECT_EQ(cycle(3), "");
}

// Every runtime of the split is checked, and each time the one that was split is isolated.
TEST_F(OlderCycle, EveryRuntimeOfTheSplitIsChecked) {
    split();
    rt->globalOn = extra->globalOn = 1;
    theRun().engine.meas = {9.0};
    extra->measure[0]->mes = makeReal(-9.0);
    EXPECT_EQ(cycle(3), sent("[{b,0,()}]") + sent("[{b,0,()}]"));
    EXPECT_EQ(rt->highalarm[0], 1);
    EXPECT_EQ(extra->lowalarm[0], 1);
    EXPECT_EQ(extra->highalarm[0], 0);
    EXPECT_EQ(extra->dsupval[0], 1.0);
    EXPECT_EQ(extra->diagBuf, "");
}

TEST_F(OlderCycle, AnInvalidModelIsToldAndCheckedAllTheSame) {
    for (auto const& influence : rt->influ)
        influence->cond = graph.constant(0);
    EXPECT_EQ(cycle(3), sent("[{b,0,(false)}]"));
    EXPECT_EQ(result, -1);
    EXPECT_EQ(rt->highalarm[0], 1);
}

}  // namespace
