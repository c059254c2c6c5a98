// Source and copy of a runtime, walked side by side.
#pragma once

#include "engine_fixture.h"

namespace engine_test {

inline std::string text(std::optional<s_Objet> const& o) {
    return o ? objets_test::text(*o) : "none";
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
        EXPECT_EQ(a.isoMode, b.isoMode);
        EXPECT_EQ(a.nbMisb, b.nbMisb);
        EXPECT_EQ(a.nbNormal, b.nbNormal);
        EXPECT_EQ(b.nbKnown, 0);  // what an isolation knows is its own runtime's
        EXPECT_TRUE(b.knownMisb.empty());
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

}  // namespace engine_test
