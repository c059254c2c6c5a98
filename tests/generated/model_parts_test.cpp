// What a compiled model builds its records from.
#include "continuous/model_parts.h"
#include "fixtures/the_run.h"

#include <gtest/gtest.h>

#include <cfloat>

#include "continuous/sorn-runt.h"

namespace {

class PartsTest : public testing::Test {
protected:
    PartsTest() { rt.engine = &theRun().engine; }

    s_runtime rt;
};

TEST_F(PartsTest, ANewConditionIsZero) {
    auto const condition = mkCond();
    EXPECT_EQ(condition->kind, 0);
    EXPECT_EQ(condition->left, nullptr);
    EXPECT_EQ(condition->right, nullptr);
    EXPECT_EQ(condition->var, nullptr);
    EXPECT_EQ(condition->op, 0);
    EXPECT_FALSE(condition->value.has_value());
    EXPECT_EQ(condition->var2, nullptr);
    EXPECT_EQ(condition->val, 0);
    EXPECT_EQ(condition->atom, nullptr);
    EXPECT_EQ(condition->atomRef, 0);
    EXPECT_EQ(condition->expr, nullptr);
    EXPECT_TRUE(condition->acIdx.empty());
}

TEST_F(PartsTest, ParametersAndVariablesEnterTheRuntime) {
    s_Variable const* parameter = mkParameter(rt, "c.p", 2.5, 3);
    s_Variable const* variable = mkVariable(rt, "c.v", 4);
    ASSERT_EQ(rt.dico.size(), 2u);
    EXPECT_EQ(rt.dico[0].get(), parameter);
    EXPECT_EQ(rt.dico[1].get(), variable);
    EXPECT_EQ(parameter->nom, "c.p");
    EXPECT_EQ(parameter->isParam, 1);
    EXPECT_EQ(parameter->old.real, 2.5);
    EXPECT_FALSE(parameter->domain.has_value());
    EXPECT_EQ(parameter->histLen(), 3);
    EXPECT_EQ(variable->isParam, 0);
    EXPECT_EQ(variable->old.type, OBJ_UNSET);
    ASSERT_TRUE(variable->domain.has_value());
    EXPECT_EQ(variable->domain->rng.inf, -DBL_MAX);
    EXPECT_EQ(variable->domain->rng.sup, DBL_MAX);
    EXPECT_EQ(variable->histLen(), 4);
    EXPECT_EQ(variable->mesHisto.size(), 4);
    EXPECT_EQ(variable->lowHisto.size(), 4);
    EXPECT_EQ(variable->highHisto.size(), 4);
}

TEST_F(PartsTest, AHistoryMayBeEmpty) {
    EXPECT_EQ(mkVariable(rt, "c.v", 0)->histLen(), 0);
}

// Entry 0 of the history is always written, so there is one even for a length of 0.
TEST_F(PartsTest, TheConditionOfAnInfluenceAlwaysHeld) {
    for (auto const& [length, kept] : {std::pair{0, 1u}, std::pair{1, 1u}, std::pair{3, 3u}}) {
        s_Influence const* influence = mkInfluence(rt, "c.i", INF_STATIC, nullptr, nullptr, nullptr,
                                                   length, makeReal(2.0), 0, 0);
        EXPECT_EQ(influence->condHistoLn, length);
        EXPECT_EQ(influence->condHisto, std::vector<boolVal>(kept, 1));
    }
    EXPECT_EQ(rt.influ.size(), 3u);
}

TEST_F(PartsTest, AnInfluenceHasOneDelay) {
    s_Influence const* influence =
        mkInfluence(rt, "c.i", INF_DYNAMIC, nullptr, nullptr, nullptr, 1, makeReal(2.0), 4, 1);
    EXPECT_EQ(influence->delayMin, 4);
    EXPECT_EQ(influence->delayMax, 4);
    EXPECT_EQ(influence->useOpti, 1);
    EXPECT_EQ(influence->gain.real, 2.0);
}

TEST_F(PartsTest, AGraphNodeIsThatOfItsVariable) {
    s_Variable* variable = mkVariable(rt, "c.v", 1);
    s_Influence* influence =
        mkInfluence(rt, "c.i", INF_DYNAMIC, nullptr, variable, nullptr, 1, makeReal(2.0), 0, 0);
    s_CGraph* node = mkGraph(rt, variable, INF_DYNAMIC, {influence}, {});
    EXPECT_EQ(variable->graph, node);
    EXPECT_EQ(node->kind, INF_DYNAMIC);
    EXPECT_EQ(node->causes, (std::vector<s_Influence*>{influence}));
    EXPECT_TRUE(node->effects.empty());
    EXPECT_EQ(rt.cG.at(0).get(), node);
}

// 5 + [0, 2] is [5, 7].
TEST_F(PartsTest, ASpaceIsAnOffsetPlusARange) {
    s_GVar* gvar = mkConstraintVar(rt, nullptr, makeReal(0.0));
    s_Expr const* space = mkSpace(rt, gvar, 5.0, makeRange(0.0, 2.0, 1, 0));
    EXPECT_EQ(space->gvar, gvar);
    sn_evalSolFunc(&rt, space);
    ASSERT_EQ(rt.engine->TMP4.type, OBJ_RANGE);
    EXPECT_EQ(rt.engine->TMP4.rng.inf, 5.0);
    EXPECT_EQ(rt.engine->TMP4.rng.sup, 7.0);
    EXPECT_EQ(rt.engine->TMP4.rng.infClosed, 1);
    EXPECT_EQ(rt.engine->TMP4.rng.supClosed, 0);
    EXPECT_EQ(rt.gvPool.size(), 3u) << "the variable and two constants";
    EXPECT_EQ(rt.exprPool.size(), 3u);
}

TEST_F(PartsTest, ArrangingGivesTheOrderAndTheSlots) {
    s_Variable* a = mkVariable(rt, "a", 1);
    s_Variable* b = mkVariable(rt, "b", 1);
    s_Variable* c = mkVariable(rt, "c", 1);
    arrange(rt.dico, {c, a, b});
    EXPECT_EQ(rt.dico[0].get(), c);
    EXPECT_EQ(rt.dico[1].get(), a);
    EXPECT_EQ(rt.dico[2].get(), b);
    EXPECT_EQ(c->slot, 0);
    EXPECT_EQ(a->slot, 1);
    EXPECT_EQ(b->slot, 2);
}

TEST_F(PartsTest, ArraysGetTheLengthOfWhatTheyBelongTo) {
    s_Variable* variable = mkVariable(rt, "a", 1);
    s_Expr* expr = mkSpace(rt, mkConstraintVar(rt, variable, makeReal(0.0)), 0.0, makeReal(1.0));
    mkInfluence(rt, "i", INF_STATIC, variable, variable, nullptr, 1, makeReal(1.0), 0, 0);
    rt.display = {variable, variable, variable};
    rt.measure = {variable, variable};
    rt.gC = {expr};
    rt.aC = {expr, expr};
    sizeArrays(rt);
    EXPECT_EQ(rt.dinfval.size(), 3u);
    EXPECT_EQ(rt.dsupval.size(), 3u);
    for (auto const* alarms :
         {&rt.lowalarm, &rt.highalarm, &rt.meslowmisb, &rt.meshighmisb, &rt.mesmisb})
        EXPECT_EQ(alarms->size(), 2u);
    EXPECT_EQ(rt.condin.size(), 1u);
    EXPECT_EQ(rt.condout.size(), 1u);
    EXPECT_EQ(rt.inAc.size(), 1u);
    EXPECT_EQ(rt.valSpc.size(), 2u);
    EXPECT_EQ(rt.ccAgenda.size(), 2u);
}

}  // namespace
