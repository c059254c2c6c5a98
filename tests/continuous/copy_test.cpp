// Deep copies of a runtime: source and copy are walked side by side.
#include "engine_fixture.h"
#include "model/StateFormula.h"
#include "model/Transitionrt.h"

namespace engine_test {
namespace {

std::string text(std::optional<s_Objet> const& o) {
    return o ? engine_test::text(*o) : "none";
}

std::string text(s_Objet const& o) {
    return engine_test::text(o);
}

// Compares two runtimes field by field. Records are compared through their pools, where the copy of
// a record has its slot: a pointer into a pool must become the pointer to the same slot of the
// other pool, which is at once "the same record", "shared as before" and "nothing in common".
class SideBySide {
public:
    SideBySide(s_runtime const& source, s_runtime const& copy) : a(source), b(copy) {}

    void check() const {
        checkScalars();
        checkLists();
        checkPool(a.dico, b.dico, [this](auto& x, auto& y) { checkVariable(x, y); });
        checkPool(a.influ, b.influ, [this](auto& x, auto& y) { checkInfluence(x, y); });
        checkPool(a.cG, b.cG, [this](auto& x, auto& y) { checkNode(x, y); });
        checkPool(a.gvPool, b.gvPool, [this](auto& x, auto& y) { checkGVar(x, y); });
        checkPool(a.exprPool, b.exprPool, [this](auto& x, auto& y) { checkExpr(x, y); });
        checkPool(a.condPool, b.condPool, [this](auto& x, auto& y) { checkCondition(x, y); });
        checkInit();
        checkBridge();
    }

private:
    template <typename Record>
    void same(Record const* x, Record const* y, std::vector<std::unique_ptr<Record>> const& poolA,
              std::vector<std::unique_ptr<Record>> const& poolB) const {
        if (x == nullptr) {
            EXPECT_EQ(y, nullptr);
            return;
        }
        ASSERT_NE(y, nullptr);
        EXPECT_NE(x, y);
        std::size_t const slot = static_cast<std::size_t>(x->slot);
        ASSERT_LT(slot, poolA.size());
        ASSERT_LT(slot, poolB.size());
        EXPECT_EQ(poolA[slot].get(), x);
        EXPECT_EQ(poolB[slot].get(), y);
    }
    void same(s_Variable const* x, s_Variable const* y) const { same(x, y, a.dico, b.dico); }
    void same(s_Influence const* x, s_Influence const* y) const { same(x, y, a.influ, b.influ); }
    void same(s_CGraph const* x, s_CGraph const* y) const { same(x, y, a.cG, b.cG); }
    void same(s_GVar const* x, s_GVar const* y) const { same(x, y, a.gvPool, b.gvPool); }
    void same(s_Expr const* x, s_Expr const* y) const { same(x, y, a.exprPool, b.exprPool); }
    void same(s_Condition const* x, s_Condition const* y) const {
        same(x, y, a.condPool, b.condPool);
    }
    template <typename Record>
    void same(std::vector<Record*> const& x, std::vector<Record*> const& y) const {
        ASSERT_EQ(x.size(), y.size());
        for (std::size_t i = 0; i < x.size(); ++i)
            same(x[i], y[i]);
    }

    template <typename Record, typename Check>
    static void checkPool(std::vector<std::unique_ptr<Record>> const& x,
                          std::vector<std::unique_ptr<Record>> const& y, Check check) {
        ASSERT_EQ(x.size(), y.size());
        for (std::size_t i = 0; i < x.size(); ++i) {
            EXPECT_NE(x[i], y[i]);
            EXPECT_EQ(x[i]->slot, static_cast<int>(i));
            EXPECT_EQ(y[i]->slot, static_cast<int>(i));
            check(*x[i], *y[i]);
        }
    }

    void checkScalars() const {
        EXPECT_EQ(a.name, b.name);
        EXPECT_NE(a.num, b.num);
        EXPECT_EQ(a.Ts, b.Ts);
        EXPECT_EQ(a.tStart, b.tStart);
        EXPECT_EQ(a.twc, b.twc);
        EXPECT_EQ(a.cgAux, b.cgAux);
        EXPECT_EQ(a.varsInitialised, b.varsInitialised);
        EXPECT_EQ(a.globalOn, b.globalOn);
        EXPECT_EQ(a.misbWindow, b.misbWindow);
        EXPECT_EQ(a.precision, b.precision);
        EXPECT_EQ(a.diagBuf, b.diagBuf);
    }
    void checkLists() const {
        same(a.input, b.input);
        same(a.display, b.display);
        same(a.measure, b.measure);
        same(a.temporal, b.temporal);
        same(a.untemporal, b.untemporal);
        same(a.gV, b.gV);
        same(a.gC, b.gC);
        same(a.aC, b.aC);
        same(a.mapExprs, b.mapExprs);
        same(a.condi, b.condi);
        EXPECT_EQ(a.inval, b.inval);
        EXPECT_EQ(a.mesval, b.mesval);
        EXPECT_EQ(a.dinfval, b.dinfval);
        EXPECT_EQ(a.dsupval, b.dsupval);
        EXPECT_EQ(a.lowalarm, b.lowalarm);
        EXPECT_EQ(a.highalarm, b.highalarm);
        EXPECT_EQ(a.meslowmisb, b.meslowmisb);
        EXPECT_EQ(a.meshighmisb, b.meshighmisb);
        EXPECT_EQ(a.mesmisb, b.mesmisb);
        EXPECT_EQ(a.condin, b.condin);
        EXPECT_EQ(a.condout, b.condout);
        EXPECT_EQ(a.inAc, b.inAc);
        EXPECT_EQ(a.valSpc, b.valSpc);
        EXPECT_EQ(a.ccAgenda, b.ccAgenda);
        ASSERT_EQ(a.extra.size(), b.extra.size());
        for (int i = 0; i < a.extra.size(); ++i)
            EXPECT_EQ(a.extra[i], b.extra[i]);
    }
    void checkVariable(s_Variable const& x, s_Variable const& y) const {
        EXPECT_EQ(x.nom, y.nom);
        EXPECT_EQ(x.isParam, y.isParam);
        EXPECT_EQ(text(x.domain), text(y.domain));
        EXPECT_EQ(x.defined, y.defined);
        EXPECT_EQ(text(x.old), text(y.old));
        EXPECT_EQ(text(x.new_), text(y.new_));
        EXPECT_EQ(text(x.mes), text(y.mes));
        EXPECT_EQ(x.lowalarm, y.lowalarm);
        EXPECT_EQ(x.highalarm, y.highalarm);
        EXPECT_EQ(x.meslowmisb, y.meslowmisb);
        EXPECT_EQ(x.meshighmisb, y.meshighmisb);
        EXPECT_EQ(x.mesmisb, y.mesmisb);
        EXPECT_EQ(entries(x.histo), entries(y.histo));
        EXPECT_EQ(entries(x.mesHisto), entries(y.mesHisto));
        EXPECT_EQ(entries(x.lowHisto), entries(y.lowHisto));
        EXPECT_EQ(entries(x.highHisto), entries(y.highHisto));
        EXPECT_EQ(x.varConds, y.varConds);
        same(x.graph, y.graph);
    }
    void checkInfluence(s_Influence const& x, s_Influence const& y) const {
        EXPECT_EQ(x.nom, y.nom);
        EXPECT_EQ(x.type, y.type);
        same(x.cause, y.cause);
        same(x.effect, y.effect);
        same(x.cond, y.cond);
        EXPECT_EQ(x.condHistoLn, y.condHistoLn);
        EXPECT_EQ(x.condHisto, y.condHisto);
        for (auto field : {&s_Influence::gain, &s_Influence::respTime, &s_Influence::a1,
                           &s_Influence::b1, &s_Influence::a2, &s_Influence::b2})
            EXPECT_EQ(text(x.*field), text(y.*field));
        for (auto field : {&s_Influence::xi, &s_Influence::w, &s_Influence::n1, &s_Influence::n2,
                           &s_Influence::d0, &s_Influence::d1, &s_Influence::d2})
            EXPECT_EQ(text(x.*field), text(y.*field));
        EXPECT_EQ(x.delayMin, y.delayMin);
        EXPECT_EQ(x.delayMax, y.delayMax);
        EXPECT_EQ(x.useOpti, y.useOpti);
    }
    void checkNode(s_CGraph const& x, s_CGraph const& y) const {
        EXPECT_EQ(x.kind, y.kind);
        same(x.causes, y.causes);
        same(x.effects, y.effects);
    }
    void checkGVar(s_GVar const& x, s_GVar const& y) const {
        EXPECT_EQ(x.kind, y.kind);
        EXPECT_EQ(x.number, y.number);
        EXPECT_EQ(text(x.value), text(y.value));
        EXPECT_EQ(x.gcIdx, y.gcIdx);
        EXPECT_EQ(x.acIdx, y.acIdx);
        same(x.var, y.var);
    }
    void checkExpr(s_Expr const& x, s_Expr const& y) const {
        EXPECT_EQ(x.op, y.op);
        same(x.gvar, y.gvar);
        same(x.left, y.left);
        same(x.right, y.right);
    }
    void checkCondition(s_Condition const& x, s_Condition const& y) const {
        EXPECT_EQ(x.kind, y.kind);
        EXPECT_EQ(x.op, y.op);
        EXPECT_EQ(text(x.value), text(y.value));
        EXPECT_EQ(x.val, y.val);
        EXPECT_EQ(x.atom, y.atom);  // the model's, for the whole run
        EXPECT_EQ(x.atomRef, y.atomRef);
        EXPECT_EQ(x.acIdx, y.acIdx);
        same(x.var, y.var);
        same(x.var2, y.var2);
        same(x.left, y.left);
        same(x.right, y.right);
        same(x.expr, y.expr);
    }
    void checkInit() const {
        ASSERT_EQ(a.init.size(), b.init.size());
        for (std::size_t i = 0; i < a.init.size(); ++i) {
            same(a.init[i].var, b.init[i].var);
            EXPECT_EQ(text(a.init[i].value), text(b.init[i].value));
        }
    }
    void checkBridge() const {
        EXPECT_EQ(events(a), events(b));
        EXPECT_EQ(a.bridgeConds, b.bridgeConds);
        EXPECT_EQ(a.bridgeTrans, b.bridgeTrans);
        EXPECT_EQ(a.bridgeConflicts, b.bridgeConflicts);
    }

    s_runtime const &a, &b;
};

// A runtime in which every field is in use, with sharing of every kind: two conditions on one
// operand, two expressions on one leaf, one constraint variable in several arrays.
class FullRuntime {
public:
    FullRuntime()
        : mode("mode", {"on", "off"}),
          transition(std::make_unique<StateFormula>(), std::make_unique<StateFormula>(),
                     "Nominal") {
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
    source.num = 4;
    rt_num = 9;
    EXPECT_EQ(sn_copyRuntime(&source)->num, 9);
    EXPECT_EQ(sn_copyRuntime(&source)->num, 10);
    EXPECT_EQ(rt_num, 11);
    EXPECT_EQ(source.num, 4);
}

TEST_F(Copy, OfAnEmptyRuntimeIsEmpty) {
    s_runtime const source;
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
    EXPECT_EQ(engine_test::text(full.rt.init[0].value), "[1, 2]");
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

TEST_F(Copy, AMisbehavingMeasureHasAWholeWindow) {
    EXPECT_EQ(copiedWindow({1, 0, 1}, 1, 3), "1 0 1");
    // The source lost it in an earlier copy, and has misbehaved since.
    EXPECT_EQ(copiedWindow({}, 1, 3), "0 0 0");
    EXPECT_EQ(copiedWindow({1}, 1, 2), "1 0");
    EXPECT_EQ(copiedWindow({1, 1}, 1, 0), "");
}

// A runtime of random size: every pointer to a record goes to a random one, or nowhere.
class RandomRuntime {
public:
    explicit RandomRuntime(unsigned seed) : dice(seed) {
        make(rt.dico, [this] { return std::make_unique<s_Variable>(); });
        make(rt.gvPool, [this] { return std::make_unique<s_GVar>(); });
        make(rt.exprPool, [this] { return std::make_unique<s_Expr>(); });
        make(rt.condPool, [this] { return mkCond(); });
        make(rt.influ, [this] { return std::make_unique<s_Influence>(); });
        make(rt.cG, [this] { return std::make_unique<s_CGraph>(); });
        point();
        for (auto* list : {&rt.input, &rt.display, &rt.measure, &rt.temporal, &rt.untemporal})
            *list = some(rt.dico);
        for (auto* list : {&rt.gC, &rt.aC, &rt.mapExprs})
            *list = some(rt.exprPool);
        rt.gV = some(rt.gvPool);
        rt.condi = some(rt.condPool);
        rt.num = -1;
    }

    s_runtime rt;

private:
    template <typename Record, typename Make>
    void make(std::vector<std::unique_ptr<Record>>& pool, Make newRecord) {
        for (int count = dice(0, 6); count > 0; --count) {
            pool.push_back(newRecord());
            pool.back()->slot = static_cast<int>(pool.size()) - 1;
        }
    }
    template <typename Record>
    Record* any(std::vector<std::unique_ptr<Record>> const& pool) {
        int const i = dice(-1, static_cast<int>(pool.size()) - 1);
        return i < 0 ? nullptr : pool[static_cast<std::size_t>(i)].get();
    }
    template <typename Record>
    std::vector<Record*> some(std::vector<std::unique_ptr<Record>> const& pool) {
        std::vector<Record*> list;
        for (int count = dice(0, 4); count > 0; --count)
            if (Record* record = any(pool))
                list.push_back(record);
        return list;
    }
    void point() {
        for (auto const& v : rt.dico)
            v->graph = any(rt.cG);
        for (auto const& g : rt.gvPool)
            g->var = any(rt.dico);
        for (auto const& e : rt.exprPool) {
            e->gvar = any(rt.gvPool);
            e->left = any(rt.exprPool);
            e->right = any(rt.exprPool);
        }
        for (auto const& c : rt.condPool) {
            c->left = any(rt.condPool);
            c->right = any(rt.condPool);
            c->var = any(rt.dico);
            c->var2 = any(rt.dico);
            c->expr = any(rt.exprPool);
        }
        for (auto const& i : rt.influ) {
            i->cause = any(rt.dico);
            i->effect = any(rt.dico);
            i->cond = any(rt.condPool);
        }
        for (auto const& n : rt.cG) {
            n->causes = some(rt.influ);
            n->effects = some(rt.influ);
        }
    }

    Dice dice;
};

TEST_F(Copy, OfRandomRuntimes) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomRuntime const random(seed);
        auto const copy = sn_copyRuntime(&random.rt);
        SideBySide(random.rt, *copy).check();
        if (HasFailure())
            break;
    }
}

}  // namespace
}  // namespace engine_test
