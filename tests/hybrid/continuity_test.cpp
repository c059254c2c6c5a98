// Rule `continuity`: what is integrated does not jump when a mode changes. Each case stands beside
// what the classic way makes of it.
#include "hybrid/continuity.h"
#include "continuous/model_parts.h"
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

using scheduler_fixture::HandModel;

struct Setup {
    char const* rules = "continuity";
    double period = 1.0;
    int histories = 20;
    bool alike = false;  // the tank fills in both modes
};

// One at a time: it has the run of all tests. A tank that is filled by 2 a second in mode a, and
// loses 1 a second in mode b; a pipe that shows the input in mode a, and twice the input in mode b.
// The pipe is measured.
class Tank {
public:
    explicit Tank(Setup const& setup) : model(withRules(setup.rules)) {
        Comp* comp = model.comp("tank");
        auto* mode = model.variable<ModeVar>(comp, "mode", {"a", "b"});
        change = HandModel::transition(comp, {{true, mode->getAtomLinks()[0]}},
                                       {{true, mode->getAtomLinks()[1]}});
        model.start();
        isA = mkAtomCond(rt(), mode->getAtomLinks()[0], 0);
        isB = mkAtomCond(rt(), mode->getAtomLinks()[1], 0);
        isA->val = 1;
        build(setup);
        rt().Ts = setup.period;
        sizeArrays(rt());
        theRun().engine.inps = theRun().engine.meas = {1.0};
        streamsOf([this] { sorn_initialize(&rt(), 0, 0.01, "", 0); });
    }

    s_runtime& rt() { return model.rt; }
    void cycle(double line) {
        theRun().engine.inps = theRun().engine.meas = {line};
        sorn_doCycle2(&rt(), CYCLE_DETECT);
    }
    // What a split has left of the level.
    void keepOnly(double inf, double sup) { level->old = level->new_ = makeRange(inf, sup, 1, 1); }
    // The mode has become b.
    void changeMode(double time) {
        isA->val = 0;
        isB->val = 1;
        rt().bridgeTrans = {change};
        streamsOf([&] { tavro_reinitialize(theRun(), &rt(), time, RUN_DETECT, 3); });
    }
    void assign(char const* name, double value) {
        auto leaf = std::make_unique<s_Expr>();
        leaf->gvar = mkConstant(rt(), makeReal(value));
        rt().mapExprs.push_back(adoptExpr(rt(), std::move(leaf)));
        auto function = std::make_unique<MapFunc>();
        function->vars.push_back({name, static_cast<int>(rt().mapExprs.size()) - 1});
        change->mapFuncs.push_back(std::move(function));
    }

    HandModel model;
    Transition* change;
    s_Condition *isA, *isB;
    s_Variable *input, *level, *pipe;

private:
    void build(Setup const& setup) {
        int const length = setup.histories;
        s_Variable* one = mkParameter(rt(), "tank.one", 1.0, 0);
        input = mkVariable(rt(), "tank.input", length);
        level = mkVariable(rt(), "tank.level", length);
        pipe = mkVariable(rt(), "tank.pipe", length);
        auto const add = [this](char const* name, influType type, s_Variable* cause,
                                s_Variable* effect, s_Condition* condition, double gain) {
            return mkInfluence(rt(), name, type, cause, effect, condition, 1, makeReal(gain), 0, 0);
        };
        auto* fills = add("i1", INF_INTEGRAL, one, level, setup.alike ? nullptr : isA, 2.0);
        auto* leaks = add("i2", INF_INTEGRAL, one, level, isB, setup.alike ? 0.0 : -1.0);
        auto* shows = add("i3", INF_STATIC, input, pipe, isA, 1.0);
        auto* doubles = add("i4", INF_STATIC, input, pipe, isB, 2.0);
        std::vector<s_Influence*> flows{fills};
        if (!setup.alike)
            flows.push_back(leaks);
        mkGraph(rt(), one, INF_STATIC, {}, flows);
        mkGraph(rt(), input, INF_STATIC, {}, {shows, doubles});
        mkGraph(rt(), level, INF_INTEGRAL, flows, {});
        mkGraph(rt(), pipe, INF_STATIC, {shows, doubles}, {});
        rt().temporal = {level};
        rt().untemporal = {pipe};
        rt().input = {input};
        rt().measure = {pipe};
        rt().init = {{input, makeReal(1.0)}, {level, makeRange(6.0, 10.0, 1, 1)}};
        rt().twc = 20;
    }
};

// The flow does not depend on the mode: the level is what the split has left of it, whenever the
// change came, and the past is the past. The classic way takes the whole level of the cycle before,
// [6, 10] + 2, and fills the past with it.
TEST(Continuity, AnIntegratedValueKeepsWhatTheSplitLeft) {
    Tank tank({.alike = true});
    tank.cycle(1.0);
    expectBounds(tank.level->old, 8.0, 12.0);
    tank.keepOnly(10.0, 10.5);
    tank.changeMode(1.0);
    expectBounds(tank.level->old, 10.0, 10.5);
    expectBounds(tank.level->histo[0], 6.0, 10.0);
}

TEST(Continuity, AnIntegratedValueKeepsWhatTheSplitLeftClassic) {
    Tank classic({.rules = "classic", .alike = true});
    classic.cycle(1.0);
    classic.keepOnly(10.0, 10.5);
    classic.changeMode(1.0);
    expectBounds(classic.level->old, 8.0, 12.0);
    expectBounds(classic.level->histo[0], 8.0, 12.0);
}

// The flow depends on the mode. Now: [10, 10.5]. A cycle ago: only [8, 8.5] of [6, 10] can have led
// to that with 2 more, and has lost 1 since: [7, 7.5]. The classic way does not ask what led there,
// and takes all of [6, 10] - 1.
TEST(Continuity, OnlyWhatCanHaveLedToTheChangeIsTakenForwardAgain) {
    Tank tank({});
    tank.cycle(1.0);
    tank.keepOnly(10.0, 10.5);
    tank.changeMode(1.0);
    expectBounds(tank.level->old, 7.0, 10.5);
    expectBounds(tank.level->histo[0], 6.0, 10.0);
}

TEST(Continuity, OnlyWhatCanHaveLedToTheChangeIsTakenForwardAgainClassic) {
    Tank classic({.rules = "classic"});
    classic.cycle(1.0);
    classic.keepOnly(10.0, 10.5);
    classic.changeMode(1.0);
    expectBounds(classic.level->old, 5.0, 10.5);
}

// A cycle of half a second: 1 flowed in, and 0.5 would have flowed out.
TEST(Continuity, ACycleIsASamplePeriod) {
    Tank tank({.period = 0.5});
    tank.cycle(1.0);
    expectBounds(tank.level->old, 7.0, 11.0);
    tank.keepOnly(10.0, 10.5);
    tank.changeMode(0.5);
    // [10, 10.5] - 1 - 0.5 = [8.5, 9]
    expectBounds(tank.level->old, 8.5, 10.5);
}

// Without a history nothing is known of the cycle before but what the flow tells: [8, 8.5] - 1.
TEST(Continuity, WithoutAHistoryTheFlowTellsWhatWas) {
    Tank tank({.histories = 0});
    tank.cycle(1.0);
    tank.keepOnly(10.0, 10.5);
    tank.changeMode(1.0);
    expectBounds(tank.level->old, 7.0, 10.5);
}

// The input rose from 1 to 3 in this very cycle. The pipe shows 3 if the mode changed now, and 6 if
// it changed a cycle ago. The input itself is known.
TEST(Continuity, TheCycleAgoIsSteppedWithTheInputOfNow) {
    Tank tank({});
    tank.cycle(1.0);
    tank.cycle(3.0);
    tank.changeMode(2.0);
    expectBounds(tank.pipe->old, 3.0, 6.0);
    EXPECT_TRUE(isReal(tank.input->old));
    EXPECT_EQ(sn_infOf(tank.input->old), 3.0);
}

// Emptied now, or a cycle ago, and then 1 less: [-1, 0]. What is assigned does not keep its value.
TEST(Continuity, AnAssignedValueJumps) {
    Tank tank({});
    tank.assign("tank.level", 0.0);
    tank.cycle(1.0);
    tank.changeMode(1.0);
    // A jump meets a range by its number.
    expectBounds(tank.level->old, -1.0, 0.0);
    expectBounds(tank.level->histo[0], 6.0, 10.0);
}

// In a simulation the change comes now. The classic way adds the flow of a cycle once more.
TEST(Continuity, InASimulationTheLevelStays) {
    for (bool const classic : {false, true}) {
        Tank tank({.rules = classic ? "classic" : "continuity", .alike = true});
        tank.cycle(1.0);
        tank.rt().bridgeTrans = {tank.change};
        tavro_reinitialize(theRun(), &tank.rt(), 1.0, RUN_SIMULATE, 3);
        expectBounds(tank.level->old, classic ? 10.0 : 8.0, classic ? 14.0 : 12.0);
    }
}

TEST(Continuity, WhatCarriesStateIsIntegratedOrLags) {
    s_CGraph graph;
    s_Influence influence;
    s_Variable variable;
    EXPECT_FALSE(carriesState(variable));
    variable.graph = &graph;
    graph.kind = INF_INTEGRAL;
    EXPECT_FALSE(carriesState(variable));  // nothing acts on it: the kind means nothing
    graph.causes = {&influence};
    for (influType const kind : {INF_INTEGRAL, INF_DYNAMIC, INF_DYNAMIC2}) {
        graph.kind = kind;
        EXPECT_TRUE(carriesState(variable));
    }
    for (influType const kind : {INF_STATIC, INF_COUPLING}) {
        graph.kind = kind;
        EXPECT_FALSE(carriesState(variable));
    }
}

}  // namespace
