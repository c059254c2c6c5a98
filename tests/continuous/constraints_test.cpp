// Expressions over constraint variables, and the fixed point of the global constraints.
#include <cmath>

#include "engine_fixture.h"

namespace engine_test {
namespace {

class Constraints : public EngineTest {
protected:
    s_Variable* variable(char const* nom, char const* value) {
        s_Variable* v = plant.add(nom, obj(value));
        v->new_ = obj("-1");
        s_GVar* g = mkConstraintVar(plant.rt, v, obj("-2"));
        g->gcIdx = {0};
        plant.rt.gV.push_back(g);
        return v;
    }
    s_GVar* of(s_Variable const* v) {
        for (s_GVar* g : plant.rt.gV)
            if (g->var == v)
                return g;
        return nullptr;
    }
    s_GVar* intermediate(char const* value) {
        s_GVar* g = mkConstant(plant.rt, obj(value));
        g->kind = GV_INTERMEDIATE;
        g->gcIdx = {0};
        plant.rt.gV.push_back(g);
        return g;
    }

    s_Expr* node(int op, s_GVar* gvar, s_Expr* left = nullptr, s_Expr* right = nullptr) {
        s_Expr* e = adoptExpr(plant.rt, std::make_unique<s_Expr>());
        e->op = op;
        e->gvar = gvar;
        e->left = left;
        e->right = right;
        return e;
    }
    s_Expr* constant(char const* value) {
        return node(EXPR_CONST, mkConstant(plant.rt, obj(value)));
    }
    s_Expr* leaf(s_GVar* g) { return node(EXPR_VAR, g); }
    s_Expr* leaf(s_Variable const* v) { return leaf(of(v)); }

    // A constraint on a set: a constant cannot be one itself, since its node names the constant.
    s_Expr* space(char const* value) {
        return node(EXPR_ADD, nullptr, constant("0"), constant(value));
    }

    // Adds *constrained* = *e* to the global constraints, and to the agenda lists of *dependsOn*.
    void constrain(s_GVar* constrained, s_Expr* e, std::vector<s_GVar*> const& dependsOn = {}) {
        e->gvar = constrained;
        int const index = static_cast<int>(plant.rt.gC.size());
        plant.rt.gC.push_back(e);
        plant.rt.inAc.push_back(0);
        for (s_GVar* g : dependsOn)
            g->gcIdx.push_back(index);
    }

    std::string value(s_Expr const* e) {
        *TMP4 = obj("99");
        sn_evalSolFunc(&plant.rt, e);
        return text(*TMP4);
    }
    std::string binary(int op, char const* left, char const* right) {
        return value(node(op, nullptr, constant(left), constant(right)));
    }
    void propagate() { sn_globalConstraints(&plant.rt); }

    Plant plant;
};

// ---- Expressions ----

TEST_F(Constraints, ALeafIsTheValueOfItsConstraintVariable) {
    EXPECT_EQ(value(constant("[1, 2[")), "[1, 2[");
    s_Variable* v = variable("v", "5");
    EXPECT_EQ(value(leaf(v)), "-2");
}

TEST_F(Constraints, EveryOperation) {
    EXPECT_EQ(binary(EXPR_ADD, "7", "2"), "9");
    EXPECT_EQ(binary(EXPR_SUB, "7", "2"), "5");
    EXPECT_EQ(binary(EXPR_MUL, "7", "2"), "14");
    EXPECT_EQ(binary(EXPR_DIV, "7", "2"), "3.5");
    EXPECT_EQ(value(node(EXPR_NEG, nullptr, constant("7"))), "-7");
    EXPECT_EQ(value(node(EXPR_NEG, nullptr, constant("[1, 2]"))), "[-2, -1]");
}

TEST_F(Constraints, OperationsAreThoseOfTheIntervals) {
    EXPECT_EQ(binary(EXPR_ADD, "10", "[-MAX, 0["), "[-MAX, 10[");
    EXPECT_EQ(binary(EXPR_SUB, "[1, 2]", "[1, 2]"), "[-1, 1]");
    EXPECT_EQ(binary(EXPR_MUL, "[1, 2]", "-3"), "[-6, -3]");
}

// 2 ** 3 is 3 squared.
TEST_F(Constraints, APowerIsTheRightToTheLeft) {
    value(node(EXPR_POW, nullptr, constant("2"), constant("3")));
    EXPECT_NEAR(TMP4->real, 9, 1e-12);
    value(node(EXPR_POW, nullptr, constant("[1, 2]"), constant("4")));
    EXPECT_NEAR(TMP4->rng.inf, 4, 1e-12);
    EXPECT_NEAR(TMP4->rng.sup, 16, 1e-12);
}

TEST_F(Constraints, ANegativeOperandOfAPowerIsNoNumber) {
    value(node(EXPR_POW, nullptr, constant("2"), constant("-3")));
    EXPECT_TRUE(std::isnan(TMP4->real));
}

TEST_F(Constraints, ARefusedDivisionLeavesTheLeftOperand) {
    EXPECT_EQ(binary(EXPR_DIV, "7", "0"), "7");
    EXPECT_EQ(binary(EXPR_DIV, "[1, 2]", "[-1, 1]"), "[1, 2]");
}

TEST_F(Constraints, AnUnknownOperationHasNoValue) {
    EXPECT_EQ(binary(8, "7", "2"), "type 0");
}

// (1 + 2) * (10 - 4): each side leaves its result where the other one does.
TEST_F(Constraints, InnerNodesAreEvaluated) {
    s_Expr* left = node(EXPR_ADD, nullptr, constant("1"), constant("2"));
    s_Expr* right = node(EXPR_SUB, nullptr, constant("10"), constant("4"));
    EXPECT_EQ(value(node(EXPR_MUL, nullptr, left, right)), "18");
    EXPECT_EQ(value(node(EXPR_NEG, nullptr, node(EXPR_NEG, nullptr, left))), "3");
}

TEST_F(Constraints, AnInnerNodeThatNamesAVariableIsReadAndNotEvaluated) {
    s_Variable* v = variable("v", "5");
    s_Expr* named = node(EXPR_ADD, of(v), constant("1"), constant("2"));
    EXPECT_EQ(value(node(EXPR_MUL, nullptr, named, constant("10"))), "-20");
    EXPECT_EQ(value(node(EXPR_NEG, nullptr, named)), "2");
    EXPECT_EQ(value(named), "3");  // on top it is evaluated
}

TEST_F(Constraints, TheResultIsInTheSharedObject) {
    s_Objet* result = sn_evalExpr(&plant.rt, constant("[1, 2]"));
    EXPECT_EQ(result, TMP4);
    EXPECT_EQ(text(*result), "[1, 2]");
}

// ---- The agenda ----

TEST_F(Constraints, TheAgendaStartsFull) {
    plant.rt.inAc = {0, 5, 0};
    sn_fillAgenda(&plant.rt);
    EXPECT_EQ(entries(plant.rt.inAc), "1 1 1");
}

TEST_F(Constraints, ANarrowedVariablePutsItsConstraintsOnTheAgenda) {
    s_GVar g;
    plant.rt.inAc = {0, 0, 0, 0};
    EXPECT_EQ(sn_updateAgenda(&plant.rt, &g), 0);
    g.gcIdx = {2};  // entry 0 is skipped
    EXPECT_EQ(sn_updateAgenda(&plant.rt, &g), 0);
    EXPECT_EQ(entries(plant.rt.inAc), "0 0 0 0");
    g.gcIdx = {2, 1, 3};
    EXPECT_EQ(sn_updateAgenda(&plant.rt, &g), 1);
    EXPECT_EQ(entries(plant.rt.inAc), "0 1 0 1");
}

// ---- The fixed point ----

TEST_F(Constraints, WithoutConstraintsValuesAreLoadedAndWrittenBack) {
    s_Variable* v = variable("v", "[1, 2]");
    s_GVar* i = intermediate("5");
    s_GVar* c = mkConstant(plant.rt, obj("6"));
    plant.rt.gV.push_back(c);
    propagate();
    EXPECT_EQ(text(v->old) + " " + text(v->new_), "[1, 2] -1");
    EXPECT_EQ(text(of(v)->value), "[1, 2]");
    EXPECT_EQ(text(i->value), "]-MAX, MAX[");
    EXPECT_EQ(text(c->value), "6");
}

TEST_F(Constraints, ARuntimeWithoutConstraintVariables) {
    propagate();
    EXPECT_TRUE(plant.rt.inAc.empty());
}

TEST_F(Constraints, AVariableIsNarrowedByItsConstraint) {
    s_Variable* v = variable("v", "[0, 10]");
    constrain(of(v), node(EXPR_ADD, nullptr, constant("1"), constant("[1, 4]")));
    propagate();
    EXPECT_EQ(text(v->old) + " " + text(v->new_), "[2, 5] -1");
    EXPECT_EQ(entries(plant.rt.inAc), "0");
}

TEST_F(Constraints, AContradictionReplacesTheValue) {
    s_Variable* v = variable("v", "[0, 1]");
    constrain(of(v), space("[2, 3]"));
    propagate();
    EXPECT_EQ(text(v->old), "[2, 3]");
}

// The second constraint on the variable is not looked at in that pass, and not narrowed by.
TEST_F(Constraints, AContradictionEndsThePassOfItsVariable) {
    s_Variable* v = variable("v", "[0, 1]");
    constrain(of(v), space("[2, 8]"));
    constrain(of(v), space("[3, 4]"));
    propagate();
    EXPECT_EQ(text(v->old), "[2, 8]");
    EXPECT_EQ(entries(plant.rt.inAc), "0 0");
}

TEST_F(Constraints, AllConstraintsOnAVariableNarrowItTogether) {
    s_Variable* v = variable("v", "[0, 10]");
    s_Variable* w = variable("w", "[0, 10]");
    constrain(of(v), space("[1, 8]"));
    constrain(of(w), space("[2, 3]"));
    constrain(of(v), space("[4, 20]"));
    propagate();
    EXPECT_EQ(text(v->old), "[4, 8]");
    EXPECT_EQ(text(w->old), "[2, 3]");
}

// y = x + 1 stands before x in [2, 3]: it must come back to the agenda.
TEST_F(Constraints, ANarrowedVariableNarrowsThoseThatDependOnIt) {
    s_Variable *x = variable("x", "[0, 10]"), *y = variable("y", "[0, 20]");
    constrain(of(y), node(EXPR_ADD, nullptr, leaf(x), constant("1")), {of(x)});
    constrain(of(x), space("[2, 3]"));
    propagate();
    EXPECT_EQ(text(x->old), "[2, 3]");
    EXPECT_EQ(text(y->old), "[3, 4]");
}

TEST_F(Constraints, WithoutADependencyNothingComesBack) {
    s_Variable *x = variable("x", "[0, 10]"), *y = variable("y", "[0, 20]");
    constrain(of(y), node(EXPR_ADD, nullptr, leaf(x), constant("1")));
    constrain(of(x), space("[2, 3]"));
    propagate();
    EXPECT_EQ(text(y->old), "[1, 11]");
}

// The value is contradicted and not narrowed: y is not computed again.
TEST_F(Constraints, AContradictionPutsNothingOnTheAgenda) {
    s_Variable *x = variable("x", "[0, 1]"), *y = variable("y", "[0, 20]");
    constrain(of(y), node(EXPR_ADD, nullptr, leaf(x), constant("1")), {of(x)});
    constrain(of(x), space("[5, 6]"));
    propagate();
    EXPECT_EQ(text(x->old), "[5, 6]");
    EXPECT_EQ(text(y->old), "[1, 2]");
}

// x = y and y = x: with the exact value no one is strictly narrower, so that the loop ends.
TEST_F(Constraints, AnEqualValuePutsNothingBack) {
    s_Variable *x = variable("x", "[0, 4]"), *y = variable("y", "[1, 9]");
    constrain(of(x), node(EXPR_ADD, nullptr, leaf(y), constant("0")), {of(y)});
    constrain(of(y), node(EXPR_ADD, nullptr, leaf(x), constant("0")), {of(x)});
    propagate();
    EXPECT_EQ(text(x->old), "[1, 4]");
    EXPECT_EQ(text(y->old), "[1, 4]");
}

TEST_F(Constraints, ANumberIsKeptByARangeAroundIt) {
    s_Variable* v = variable("v", "3");
    constrain(of(v), space("[2, 4]"), {of(v)});
    propagate();
    EXPECT_EQ(text(v->old), "3");
}

// An intermediate starts without bounds in every run and takes what its constraint gives.
TEST_F(Constraints, AnIntermediateCarriesAValueOn) {
    s_Variable *x = variable("x", "[2, 3]"), *y = variable("y", "[0, 100]");
    s_GVar* square = intermediate("7");
    constrain(of(y), node(EXPR_ADD, nullptr, leaf(square), constant("1")), {square});
    constrain(square, node(EXPR_MUL, nullptr, leaf(x), leaf(x)), {of(x)});
    propagate();
    EXPECT_EQ(text(square->value), "]4, 9[");
    EXPECT_EQ(text(y->old), "[5, 10]");
    x->old = obj("[2, 4]");
    y->old = obj("[0, 100]");
    propagate();
    EXPECT_EQ(text(square->value), "]4, 16[");
}

TEST_F(Constraints, AConstantOfTheNetworkStays) {
    s_GVar* c = mkConstant(plant.rt, obj("5"));
    plant.rt.gV.push_back(c);
    s_Variable* v = variable("v", "[0, 10]");
    constrain(of(v), node(EXPR_ADD, nullptr, leaf(c), constant("1")), {c});
    propagate();
    EXPECT_EQ(text(v->old), "6");
    EXPECT_EQ(text(c->value), "5");
}

// The measure of a variable plays no part: the constraints work on its old value.
TEST_F(Constraints, AMeasureDoesNotCount) {
    s_Variable* v = variable("v", "[0, 10]");
    plant.measure(v, 20);
    constrain(of(v), space("[2, 3]"));
    propagate();
    EXPECT_EQ(text(v->old), "[2, 3]");
    EXPECT_EQ(text(v->mes), "20");
}

}  // namespace
}  // namespace engine_test
