// What is told of a runtime whose invariants do not hold.
#include <functional>

#include "engine_fixture.h"

namespace engine_test {
namespace {

// Input u, measured m and parameter p; u acts on v, and v on m under a condition. A constraint of
// each kind bounds v.
class RuntimeInvariants : public EngineTest {
protected:
    RuntimeInvariants() {
        u = plant.add("u", obj("1"));
        v = plant.add("v", obj("1"));
        m = plant.add("m", obj("1"));
        byU = plant.link(u, v, INF_INTEGRAL);
        byV = plant.link(v, m, INF_STATIC);
        condition = plant.condition(byV, 1);
        plant.measure(m, 1);
        s_runtime& rt = plant.rt;
        rt.input = {u};
        rt.display = {v};
        rt.dinfval = rt.dsupval = {0.0};
        rt.temporal = {v};
        rt.untemporal = {m};
        rt.init = {{v, obj("1")}};
        rt.condi = {condition};
        auto g = std::make_unique<s_GVar>();
        g->kind = GV_VARIABLE;
        g->var = v;
        g->gcIdx = g->acIdx = {1, 0};
        gvar = adoptGVar(rt, std::move(g));
        auto e = std::make_unique<s_Expr>();
        e->op = EXPR_VAR;
        e->gvar = gvar;
        expr = adoptExpr(rt, std::move(e));
        rt.gV = {gvar};
        rt.gC = rt.aC = rt.mapExprs = {expr};
        rt.inAc = rt.valSpc = rt.ccAgenda = {0};
        v->varConds = {0};
        condition->acIdx = {0};
    }

    char const* broken() const { return sn_brokenRuntime(&plant.rt); }
    // What is told while *field* has another value.
    template <typename T>
    std::string brokenBy(T& field, T wrong) {
        std::swap(field, wrong);
        char const* const told = broken();
        std::swap(field, wrong);
        EXPECT_EQ(broken(), nullptr);
        return told != nullptr ? told : "";
    }

    Plant plant;
    Plant foreign;
    s_Variable *u, *v, *m;
    s_Influence *byU, *byV;
    s_Condition* condition;
    s_GVar* gvar;
    s_Expr* expr;
};

TEST_F(RuntimeInvariants, Hold) {
    EXPECT_EQ(broken(), nullptr);
    EXPECT_EQ(sn_brokenValues(&plant.rt), nullptr);
    s_runtime const empty;
    EXPECT_EQ(sn_brokenRuntime(&empty), nullptr);
}

TEST_F(RuntimeInvariants, ARecordIsAtItsSlot) {
    char const* const astray = "a record is not at its slot";
    EXPECT_EQ(brokenBy(u->slot, 1), astray);
    EXPECT_EQ(brokenBy(byU->slot, -1), astray);
    EXPECT_EQ(brokenBy(v->graph->slot, 7), astray);
    EXPECT_EQ(brokenBy(gvar->slot, 1), astray);
    EXPECT_EQ(brokenBy(expr->slot, 1), astray);
    EXPECT_EQ(brokenBy(condition->slot, 1), astray);
}

TEST_F(RuntimeInvariants, AListStaysInsideTheRuntime) {
    s_Variable* const w = foreign.add("w", obj("1"));
    for (auto list : {&s_runtime::input, &s_runtime::display, &s_runtime::temporal,
                      &s_runtime::untemporal, &s_runtime::measure})
        for (s_Variable* wrong : {w, static_cast<s_Variable*>(nullptr)})
            EXPECT_EQ(brokenBy((plant.rt.*list)[0], wrong),
                      "a list holds a variable of another runtime");
    EXPECT_EQ(brokenBy(plant.rt.init[0].var, w),
              "an initial value is of a variable of another runtime");
    s_Expr strange;
    for (auto list : {&s_runtime::gC, &s_runtime::aC, &s_runtime::mapExprs})
        EXPECT_EQ(brokenBy((plant.rt.*list)[0], &strange),
                  "a list holds a record of another runtime");
    s_GVar strangeVar;
    EXPECT_EQ(brokenBy(plant.rt.gV[0], &strangeVar), "a list holds a record of another runtime");
    s_Condition strangeCondition;
    EXPECT_EQ(brokenBy(plant.rt.condi[0], &strangeCondition),
              "a list holds a record of another runtime");
}

TEST_F(RuntimeInvariants, ArraysAreOfTheSizeOfTheModel) {
    std::vector<int> const two{0, 0};
    for (auto mirror : {&s_runtime::lowalarm, &s_runtime::highalarm, &s_runtime::meslowmisb,
                        &s_runtime::meshighmisb, &s_runtime::mesmisb})
        EXPECT_EQ(brokenBy(plant.rt.*mirror, two),
                  "a mirror of the alarms has not one entry per measure");
    for (auto bounds : {&s_runtime::dinfval, &s_runtime::dsupval})
        EXPECT_EQ(brokenBy(plant.rt.*bounds, {}),
                  "the bounds for output have not one entry per display variable");
    for (auto values : {&s_runtime::condin, &s_runtime::condout})
        EXPECT_EQ(brokenBy(plant.rt.*values, {}),
                  "the values of conditions have not one entry per influence");
    for (auto agenda : {&s_runtime::inAc, &s_runtime::valSpc, &s_runtime::ccAgenda}) {
        EXPECT_EQ(brokenBy(plant.rt.*agenda, two), "an agenda has not one entry per constraint");
        EXPECT_EQ(brokenBy((plant.rt.*agenda)[0], 2), "an agenda holds what is neither 0 nor 1");
    }
}

TEST_F(RuntimeInvariants, OfAVariable) {
    EXPECT_EQ(brokenBy(v->varConds, {1}), "a variable is bounded by a condition that is none");
    EXPECT_EQ(brokenBy(v->varConds, {-1}), "a variable is bounded by a condition that is none");
    s_CGraph strange;
    EXPECT_EQ(brokenBy(u->graph, &strange), "a variable's node is of another runtime");
    EXPECT_EQ(brokenBy(m->lowHisto, History<int>(3)),
              "the histories of a measure differ in length");
    EXPECT_EQ(brokenBy(m->highHisto, History<int>(0)),
              "the histories of a measure differ in length");
    plant.rt.misbWindow = 2;
    EXPECT_EQ(brokenBy(m->misbHisto, {0}),
              "a history of misbehaviour is not of the length of the window");
    m->misbHisto = {0, 0};
    EXPECT_EQ(broken(), nullptr);
}

TEST_F(RuntimeInvariants, OfAnInfluence) {
    char const* const apart = "an influence joins records of another runtime";
    EXPECT_EQ(brokenBy(byU->cause, foreign.add("w", obj("1"))), apart);
    EXPECT_EQ(brokenBy(byU->effect, static_cast<s_Variable*>(nullptr)), apart);
    s_Condition strange;
    EXPECT_EQ(brokenBy(byU->cond, &strange), apart);
    EXPECT_EQ(brokenBy(byU->delayMin, 1), "the delays of an influence are the wrong way round");
    EXPECT_EQ(brokenBy(byV->condHistoLn, 9),
              "the history of a condition is shorter than its length");
}

TEST_F(RuntimeInvariants, OfANode) {
    char const* const wrong = "a cause does not end at its node, or is of another kind";
    EXPECT_EQ(brokenBy(v->graph->causes[0], byV), wrong);
    EXPECT_EQ(brokenBy(v->graph->kind, INF_STATIC), wrong);
    s_Influence strange;
    EXPECT_EQ(brokenBy(v->graph->causes[0], &strange),
              "a node holds an influence of another runtime");
    v->graph->effects = {byV};
    EXPECT_EQ(brokenBy(v->graph->effects[0], byU), "an effect does not start at its node");
}

TEST_F(RuntimeInvariants, OfAConditionAndItsConstraints) {
    s_Condition strange;
    EXPECT_EQ(brokenBy(condition->left, &strange), "a condition holds a record of another runtime");
    EXPECT_EQ(brokenBy(condition->acIdx, {1}), "a condition counts on no constraint");
    EXPECT_EQ(brokenBy(gvar->kind, static_cast<int>(GV_INTERMEDIATE)),
              "a variable of the constraints is bound wrongly");
    EXPECT_EQ(brokenBy(gvar->var, foreign.add("w", obj("1"))),
              "a variable of the constraints is bound wrongly");
    EXPECT_EQ(brokenBy(gvar->gcIdx, {1, 1}),
              "a variable of the constraints lists one that is none");
    EXPECT_EQ(brokenBy(gvar->acIdx, {1, -1}),
              "a variable of the constraints lists one that is none");
    s_Expr strangeExpr;
    EXPECT_EQ(brokenBy(expr->left, &strangeExpr),
              "an expression holds a record of another runtime");
    EXPECT_EQ(brokenBy(expr->gvar, static_cast<s_GVar*>(nullptr)),
              "a leaf of an expression names nothing");
}

TEST_F(RuntimeInvariants, TheFirstEntryOfAListOfConstraintsIsNoPosition) {
    gvar->gcIdx[0] = gvar->acIdx[0] = 4;
    EXPECT_EQ(broken(), nullptr);
}

TEST_F(RuntimeInvariants, AnIntervalEndsWhereItBeginsOrLater) {
    v->old = obj("[2, 2]");
    EXPECT_EQ(sn_brokenValues(&plant.rt), nullptr);
    for (auto field : {&s_Variable::old, &s_Variable::new_, &s_Variable::mes}) {
        v->*field = makeRange(2.0, 1.0, 1, 1);
        EXPECT_STREQ(sn_brokenValues(&plant.rt), "an interval ends before it begins");
        v->*field = obj("1");
    }
}

TEST_F(RuntimeInvariants, ADefinedVariableHasAValue) {
    v->old = s_Objet{};
    EXPECT_EQ(sn_brokenValues(&plant.rt), nullptr) << "not defined yet";
    v->defined = 1;
    EXPECT_STREQ(sn_brokenValues(&plant.rt), "a defined variable has no value");
}

TEST_F(RuntimeInvariants, ACopyIsAsSoundAsItsSource) {
    plant.rt.engine = &theEngine;
    EXPECT_EQ(sn_brokenRuntime(sn_copyRuntime(&plant.rt).get()), nullptr);
    plant.rt.condin.clear();
    EXPECT_STREQ(sn_brokenRuntime(sn_copyRuntime(&plant.rt).get()), broken());
}

}  // namespace
}  // namespace engine_test
