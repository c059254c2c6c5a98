// Deep copies of a runtime in which everything is in use.
#include "copy_fixture.h"
#include "model/StateFormula.h"
#include "model/Transitionrt.h"

namespace engine_test {
namespace {

// A runtime in which every field is in use, with sharing of every kind: two conditions on one
// operand, two expressions on one leaf, one constraint variable in several arrays.
class FullRuntime {
public:
    FullRuntime()
        : mode("mode", {"on", "off"}),
          transition(std::make_unique<StateFormula>(), std::make_unique<StateFormula>(),
                     "Nominal") {
        rt.engine = &theEngine;
        makeVariables();
        makeConstraints();
        makeConditions();
        makeInfluences();
        fillArrays();
    }

    s_runtime rt;
    s_Variable *p, *u, *x, *y;

private:
    void makeVariables() {
        p = mkParameter(rt, "p", 3, 2);
        u = mkVariable(rt, "u", 2);
        x = mkVariable(rt, "x", 40);
        y = mkVariable(rt, "y", 3);
        for (int i = 0; i < 70; ++i)
            x->histo.push(makeReal(i));
        x->domain = obj("[0, 9[");
        x->defined = 1;
        x->old = obj("]1, 2]");
        x->new_ = obj("1.5");
        x->mes = obj("1.25");
        x->lowalarm = 1;
        x->highalarm = 2;
        x->meslowmisb = 3;
        x->meshighmisb = 4;
        x->mesmisb = 1;
        x->misbHisto = {1, 0, 1};
        x->mesHisto = numbered(40);
        x->lowHisto.set(3, 1);
        x->highHisto.set(4, 1);
        x->varConds = {0, 1};
    }
    void makeConstraints() {
        s_GVar* gx = mkConstraintVar(rt, x, obj("[1, 2]"));
        gx->gcIdx = {0, 0};
        gx->acIdx = {2, 0, 1};
        s_GVar* between = adoptGVar(rt, std::make_unique<s_GVar>());
        between->kind = GV_INTERMEDIATE;
        between->number = 5;
        rt.gV = {gx, between};
        s_Expr* space = mkSpace(rt, gx, 10, obj("[-1, 0]"));
        s_Expr* shared = mkSpace(rt, gx, 11, obj("[-1, 0]"));
        shared->left = space->left;
        rt.aC = {space, shared};
        rt.gC = {shared};
        rt.mapExprs = {space, space->right};
    }
    void makeConditions() {
        s_Condition* on = mkAtomCond(rt, mode[0], 1);
        on->val = 1;
        s_Condition* space = mkExprCond(rt, x, REL_GE, rt.aC[0], 0, mode[1], 2);
        s_Condition* relation = adoptCondition(rt, mkCond());
        relation->kind = COND_REL;
        relation->op = REL_LT;
        relation->var = x;
        relation->var2 = y;
        relation->value = obj("[3, 4[");
        s_Condition* both = mkBinaryCond(rt, COND_AND, on, space, 3);
        s_Condition* either = mkBinaryCond(rt, COND_OR, on, relation, 4);
        rt.condi = {both, either, space};
    }
    void makeInfluences() {
        s_Influence* i1 =
            mkInfluence(rt, "i1", INF_DYNAMIC2, u, x, rt.condi[0], 2, obj("[1, 2]"), 1, 1);
        i1->delayMax = 2;
        i1->condHisto = {1, 0};
        i1->respTime = obj("1");
        i1->a1 = obj("2");
        i1->b1 = obj("3");
        i1->a2 = obj("4");
        i1->b2 = obj("5");
        i1->xi = obj("6");
        i1->w = obj("7");
        i1->n1 = obj("8");
        i1->n2 = obj("9");
        i1->d0 = obj("10");
        i1->d1 = obj("11");
        i1->d2 = obj("12");
        s_Influence* i2 = mkInfluence(rt, "", INF_STATIC, x, y, rt.condi[0], 1, obj("1"), 0, 0);
        mkGraph(rt, x, INF_DYNAMIC2, {i1}, {i2});
        mkGraph(rt, y, INF_STATIC, {i2}, {});
        mkGraph(rt, u, INF_STATIC, {}, {i1});
    }
    void fillArrays() {
        rt.name = "full";
        rt.num = 17;
        rt.Ts = 0.5;
        rt.tStart = 2;
        rt.twc = 30;
        rt.cgAux = 2;
        rt.varsInitialised = rt.globalOn = 1;
        rt.misbWindow = 3;
        rt.precision = 0.01;
        rt.diagBuf = "text";
        rt.isoMode = 1;
        rt.nbMisb = 2;
        rt.nbNormal = 3;
        rt.nbKnown = 1;
        rt.knownMisb = {x};
        rt.input = {u};
        rt.display = {x, y};
        rt.measure = {x};
        rt.temporal = {x};
        rt.untemporal = {y, x};
        sizeArrays(rt);
        rt.inval = rt.mesval = values;
        rt.dinfval = {1, 2};
        rt.dsupval = {3, 4};
        rt.extra.resize(10);
        rt.extra.set(3, 5);
        rt.lowalarm = {1};
        rt.highalarm = {2};
        rt.meslowmisb = {3};
        rt.meshighmisb = {4};
        rt.mesmisb = {5};
        rt.condin = {1, 0};
        rt.condout = {0, 1};
        rt.inAc = {1};
        rt.valSpc = {1, 0};
        rt.ccAgenda = {0, 1};
        rt.init = {{x, obj("[1, 2]")}};
        rt.bridgeEvents.insert({true, mode[0]});
        rt.bridgeConds.insert({false, mode[1]});
        rt.bridgeTrans = {&transition};
        rt.bridgeConflicts = {{mode[0], mode[1]}, {}};
    }

    double values[2] = {1, 2};
    Choice mode;
    Transition transition;
};

class Copy : public EngineTest {};

TEST_F(Copy, EveryFieldIsThereAndNoRecordIsShared) {
    FullRuntime full;
    auto const copy = sn_copyRuntime(&full.rt);
    SideBySide(full.rt, *copy).check();
}

TEST_F(Copy, OfACopyToo) {
    FullRuntime full;
    auto const copy = sn_copyRuntime(&full.rt);
    auto const second = sn_copyRuntime(copy.get());
    SideBySide(full.rt, *second).check();
    SideBySide(*copy, *second).check();
}

TEST_F(Copy, EveryOneTakesTheNextIdentity) {
    s_runtime source;
    source.engine = &theEngine;
    source.num = 4;
    rt_num = 9;
    EXPECT_EQ(sn_copyRuntime(&source)->num, 9);
    EXPECT_EQ(sn_copyRuntime(&source)->num, 10);
    EXPECT_EQ(rt_num, 11);
    EXPECT_EQ(source.num, 4);
}

TEST_F(Copy, OfAnEmptyRuntimeIsEmpty) {
    s_runtime source;
    source.engine = &theEngine;
    rt_num = 1;
    SideBySide(source, *sn_copyRuntime(&source)).check();
}

TEST_F(Copy, AnOperandOfTwoConditionsIsSharedInTheCopy) {
    FullRuntime full;
    auto const copy = sn_copyRuntime(&full.rt);
    EXPECT_EQ(copy->condi[0]->left, copy->condi[1]->left);
    EXPECT_EQ(copy->condi[0]->right, copy->condi[2]);
    EXPECT_EQ(copy->aC[0]->left, copy->aC[1]->left);
    EXPECT_EQ(copy->aC[0]->gvar, copy->gV[0]);
    EXPECT_EQ(copy->gC[0], copy->aC[1]);
    EXPECT_EQ(copy->influ[0]->cond, copy->influ[1]->cond);
}

TEST_F(Copy, OutlivesItsSource) {
    std::unique_ptr<s_runtime> copy, twin;
    {
        FullRuntime full;
        copy = sn_copyRuntime(&full.rt);
        twin = sn_copyRuntime(&full.rt);
    }
    copy->bridgeEvents.clear();  // its atoms are gone
    twin->bridgeEvents.clear();
    SideBySide(*copy, *twin).check();
}

TEST_F(Copy, WhatIsDoneToItLeavesTheSource) {
    FullRuntime full;
    FullRuntime const untouched;
    auto const copy = sn_copyRuntime(&full.rt);
    s_Variable* x = sn_getVarDico(copy.get(), "x");
    x->histo.push(obj("77"));
    x->histo.set(20, obj("78"));
    x->mesHisto.fill(obj("79"));
    x->lowHisto.forgetNewest(2, 1);
    x->misbHisto = {0};
    copy->extra.set(3, 80);
    copy->bridgeEvents.clear();
    copy->condi[0]->acIdx.push_back(1);
    copy->init[0].value = obj("81");
    EXPECT_EQ(entries(full.x->histo), entries(untouched.x->histo));
    EXPECT_EQ(entries(full.x->mesHisto), entries(untouched.x->mesHisto));
    EXPECT_EQ(entries(full.x->lowHisto), entries(untouched.x->lowHisto));
    EXPECT_EQ(entries(full.x->misbHisto), "1 0 1");
    EXPECT_EQ(full.rt.extra[3], 5.0);
    EXPECT_EQ(full.rt.bridgeEvents.size(), 1u);
    EXPECT_TRUE(full.rt.condi[0]->acIdx.empty());
    EXPECT_EQ(text(full.rt.init[0].value), "[1, 2]");
}

// The misbehaviour history after a copy, from this one and with this flag and window.
std::string copiedWindow(std::vector<int> const& history, int flag, int window) {
    Plant plant;
    s_Variable* v = plant.add("v", obj("1"));
    plant.rt.misbWindow = window;
    v->mesmisb = flag;
    v->misbHisto = history;
    return entries(sn_copyRuntime(&plant.rt)->dico[0]->misbHisto);
}

TEST_F(Copy, AWellBehavedMeasureLosesItsMisbehaviourHistory) {
    EXPECT_EQ(copiedWindow({1, 0, 1}, 0, 3), "");
}

// The newest entry goes over; there is a place for every cycle of the window.
TEST_F(Copy, AMisbehavingMeasureKeepsItsNewestEntry) {
    EXPECT_EQ(copiedWindow({1, 0, 1}, 1, 3), "1 0 0");
    // The source lost it in an earlier copy, and has misbehaved since.
    EXPECT_EQ(copiedWindow({}, 1, 3), "0 0 0");
    EXPECT_EQ(copiedWindow({1}, 1, 2), "1 0");
    EXPECT_EQ(copiedWindow({1, 1}, 1, 0), "");
}

}  // namespace
}  // namespace engine_test
