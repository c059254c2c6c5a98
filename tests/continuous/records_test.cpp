// Making, finding and clearing the records of a runtime.
#include "engine_fixture.h"

namespace engine_test {
namespace {

TEST(Records, ANewConditionHasEveryFieldZero) {
    auto const condition = mkCond();
    EXPECT_EQ(condition->kind, 0);
    EXPECT_EQ(condition->op, 0);
    EXPECT_EQ(condition->val, 0);
    EXPECT_EQ(condition->atomRef, 0);
    EXPECT_EQ(condition->left, nullptr);
    EXPECT_EQ(condition->right, nullptr);
    EXPECT_EQ(condition->var, nullptr);
    EXPECT_EQ(condition->var2, nullptr);
    EXPECT_EQ(condition->atom, nullptr);
    EXPECT_EQ(condition->expr, nullptr);
    EXPECT_FALSE(condition->value.has_value());
    EXPECT_TRUE(condition->acIdx.empty());
}

TEST(Records, EveryRecordKnowsItsPlaceInItsPool) {
    s_runtime rt;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(adoptVariable(rt, std::make_unique<s_Variable>())->slot, i);
        EXPECT_EQ(adoptCondition(rt, mkCond())->slot, i);
        EXPECT_EQ(adoptGVar(rt, std::make_unique<s_GVar>())->slot, i);
        EXPECT_EQ(adoptExpr(rt, std::make_unique<s_Expr>())->slot, i);
        EXPECT_EQ(adoptInfluence(rt, std::make_unique<s_Influence>())->slot, i);
        EXPECT_EQ(adoptGraph(rt, std::make_unique<s_CGraph>())->slot, i);
    }
    EXPECT_EQ(rt.dico.size() + rt.condPool.size() + rt.gvPool.size(), 9u);
    EXPECT_EQ(rt.exprPool.size() + rt.influ.size() + rt.cG.size(), 9u);
}

TEST(Records, ANameFindsTheFirstVariableThatBearsIt) {
    Plant plant;
    s_Variable* a = plant.add("a", obj("1"));
    s_Variable* b = plant.add("b", obj("2"));
    plant.add("b", obj("3"));
    EXPECT_EQ(sn_getVarDico(&plant.rt, "a"), a);
    EXPECT_EQ(sn_getVarDico(&plant.rt, "b"), b);
}

TEST(Records, AnUnknownNameFindsNothing) {
    Plant plant;
    EXPECT_EQ(sn_getVarDico(&plant.rt, "a"), nullptr);
    plant.add("ab", obj("1"));
    EXPECT_EQ(sn_getVarDico(&plant.rt, "a"), nullptr);
    EXPECT_EQ(sn_getVarDico(&plant.rt, ""), nullptr);
}

TEST(Records, MembershipOfALinearSearchIsByRecordNotByName) {
    Plant plant;
    s_Variable* in = plant.add("v", obj("1"));
    s_Variable* shown = plant.add("v", obj("1"));
    s_Variable* measured = plant.add("v", obj("1"));
    plant.rt.input = {in};
    plant.rt.display = {in, shown};
    plant.rt.measure = {measured};
    auto const roles = [&plant](s_Variable const* v) {
        return std::to_string(sn_isInput(&plant.rt, v)) +
               std::to_string(sn_isDisplay(&plant.rt, v)) +
               std::to_string(sn_isMeasure(&plant.rt, v));
    };
    EXPECT_EQ(roles(in), "110");
    EXPECT_EQ(roles(shown), "010");
    EXPECT_EQ(roles(measured), "001");
    EXPECT_EQ(roles(nullptr), "000");
}

// A variable that has been through a run.
s_Variable* used(Plant& plant, char const* nom) {
    s_Variable* v = plant.add(nom, obj("[1, 2]"), 3);
    v->defined = 1;
    v->mes = makeReal(8);
    v->mesHisto = numbered(3);
    v->lowHisto = v->highHisto = historyOf<int>({1, 1, 1});
    v->lowalarm = v->highalarm = 2;
    v->meslowmisb = v->meshighmisb = v->mesmisb = 1;
    v->misbHisto = {1, 1};
    return v;
}

std::string alarms(s_Variable const& v) {
    return entries({v.lowalarm, v.highalarm, v.meslowmisb, v.meshighmisb, v.mesmisb});
}

TEST(UpdateDico, AnUnmeasuredVariableLosesItsValueAndItsPast) {
    Plant plant;
    s_Variable* v = used(plant, "v");
    sn_updateDico(&plant.rt);
    EXPECT_EQ(v->defined, 0);
    EXPECT_EQ(entries(v->histo), "0 0 0");
    EXPECT_EQ(text(v->old), "[1, 2]");  // only what `defined` says about it
    EXPECT_EQ(entries(v->lowHisto), "1 1 1");
    EXPECT_EQ(entries(v->highHisto), "1 1 1");
    EXPECT_EQ(alarms(*v), "2 2 1 1 1");
}

TEST(UpdateDico, AMeasureLosesItsAlarmsAndKeepsItsPastMeasures) {
    Plant plant;
    s_Variable* v = used(plant, "v");
    plant.rt.measure = {v};
    sn_updateDico(&plant.rt);
    EXPECT_EQ(v->defined, 0);
    EXPECT_EQ(entries(v->histo), "0 0 0");
    EXPECT_EQ(entries(v->mesHisto), "1 2 3");
    EXPECT_EQ(entries(v->lowHisto), "0 0 0");
    EXPECT_EQ(entries(v->highHisto), "0 0 0");
    EXPECT_EQ(alarms(*v), "0 0 0 0 0");
    EXPECT_EQ(text(v->mes), "8");
    EXPECT_EQ(entries(v->misbHisto), "1 1");
}

TEST(UpdateDico, AParameterStays) {
    Plant plant;
    s_Variable* p = used(plant, "p");
    p->isParam = 1;
    plant.rt.measure = {p};
    sn_updateDico(&plant.rt);
    EXPECT_EQ(p->defined, 1);
    EXPECT_EQ(entries(p->histo), "[1, 2] [1, 2] [1, 2]");
    EXPECT_EQ(alarms(*p), "2 2 1 1 1");
}

TEST(UpdateDico, AVariableWithoutHistoryAndARuntimeWithoutVariables) {
    Plant plant;
    sn_updateDico(&plant.rt);
    s_Variable* v = plant.add("v", obj("1"), 0);
    v->defined = 1;
    plant.rt.measure = {v};
    sn_updateDico(&plant.rt);
    EXPECT_EQ(v->defined, 0);
    EXPECT_EQ(v->histLen(), 0);
}

}  // namespace
}  // namespace engine_test
