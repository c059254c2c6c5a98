// The text of a diagnosis: leaves, suspects, conditions of every kind, expressions.
#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

class DiagText : public testing::Test {
protected:
    std::string of(s_Condition const* condition) {
        sn_razDiagBuf(&graph.rt);
        sn_printDiagCond(&graph.rt, condition);
        return graph.rt.diagBuf;
    }
    std::string of(s_Expr const* expr) {
        sn_razDiagBuf(&graph.rt);
        sn_printDiagExpr(&graph.rt, expr);
        return graph.rt.diagBuf;
    }
    s_Expr* real(double value) { return graph.number(makeReal(value)); }

    CausalGraph graph;
    s_Variable* x = graph.variable("tank.x");
    s_Variable* y = graph.variable("tank.y");
    model_fixture::Valued<> mode{"valve", {"open", "shut"}};
    s_Condition* open = graph.on(mode["open"]);
    s_Condition* shut = graph.on(mode["shut"]);
};

// ---- Conditions ----

TEST_F(DiagText, AConstantIsItsTruth) {
    EXPECT_EQ(of(graph.constant(1)), "(true)");
    EXPECT_EQ(of(graph.constant(0)), "(false)");
    EXPECT_EQ(of(graph.constant(2)), "(false)") << "only 1 is true";
}

// Two operators have no text, one is not known to it, and the right-hand side is never written.
TEST_F(DiagText, ARelationIsItsVariableAndItsOperator) {
    char const* const expected[] = {"(tank.x)",    "(tank.x = )",  "(tank.x != )", "(tank.x)",
                                    "(tank.x < )", "(tank.x >= )", "(tank.x)",     "(tank.x)"};
    for (int op = 0; op <= REL_IN; ++op) {
        EXPECT_EQ(of(graph.relation(x, static_cast<relation>(op), makeReal(3))), expected[op]);
        EXPECT_EQ(of(graph.relation(x, static_cast<relation>(op), y)), expected[op]);
    }
}

TEST_F(DiagText, AnAtomStandsInParenthesesOfItsOwn) {
    EXPECT_EQ(of(open), "((valve=open))");
}

TEST_F(DiagText, OrAndAndJoinTheirOperands) {
    EXPECT_EQ(of(graph.either(open, shut)), "(((valve=open)) | ((valve=shut)))");
    EXPECT_EQ(of(graph.both(open, shut)), "(((valve=open)) & ((valve=shut)))");
    EXPECT_EQ(of(graph.both(graph.constant(1), graph.either(shut, graph.constant(0)))),
              "((true) & (((valve=shut)) | (false)))");
}

// The sign comes with the left operand, whether there is a right one or not.
TEST_F(DiagText, AnOperandThatIsMissingIsLeftOut) {
    EXPECT_EQ(of(graph.either(open, nullptr)), "(((valve=open)) | )");
    EXPECT_EQ(of(graph.either(nullptr, open)), "(((valve=open)))");
    EXPECT_EQ(of(graph.both(open, nullptr)), "(((valve=open)) & )");
    EXPECT_EQ(of(graph.both(nullptr, open)), "(((valve=open)))");
    EXPECT_EQ(of(graph.either(nullptr, nullptr)), "()");
}

TEST_F(DiagText, AnAtomShowsOperandsLikeAnOr) {
    shut->left = graph.constant(1);
    EXPECT_EQ(of(shut), "((valve=shut)(true) | )");
    shut->right = graph.constant(0);
    EXPECT_EQ(of(shut), "((valve=shut)(true) | (false))");
}

TEST_F(DiagText, ANegationStandsBeforeItsOperand) {
    EXPECT_EQ(of(graph.negation(open)), "(! ((valve=open)))");
    EXPECT_EQ(of(graph.negation(graph.negation(graph.constant(1)))), "(! (! (true)))");
}

TEST_F(DiagText, AnExpressionStandsBeforeItsRelation) {
    EXPECT_EQ(of(graph.expression(x, REL_IN, real(2.5))), "(2.5tank.x)");
    EXPECT_EQ(of(graph.expression(x, REL_GE, graph.value(y))), "(tank.ytank.x >= )");
}

TEST_F(DiagText, AnyOtherKindIsEmpty) {
    s_Condition* other = graph.constant(1);
    for (int kind : {0, 8, 100}) {
        other->kind = kind;
        EXPECT_EQ(of(other), "()");
    }
}

// ---- Expressions ----

// Six digits that count.
TEST_F(DiagText, ANumberIsShort) {
    EXPECT_EQ(of(real(2)), "2");
    EXPECT_EQ(of(real(-0.5)), "-0.5");
    EXPECT_EQ(of(real(1234567.0)), "1.23457e+06");
    EXPECT_EQ(of(real(1.0 / 3.0)), "0.333333");
}

TEST_F(DiagText, ARangeIsItsBoundsAlone) {
    EXPECT_EQ(of(graph.number(makeRange(1, 2.5, 0, 1))), "1 2.5");
    EXPECT_EQ(of(graph.number(makeRange(-1e10, 1e10, 1, 1))), "-1e+10 1e+10");
}

TEST_F(DiagText, AVariableIsItsName) {
    EXPECT_EQ(of(graph.value(x)), "tank.x");
}

TEST_F(DiagText, OperandsStandInParentheses) {
    s_Expr *one = real(1), *v = graph.value(x);
    EXPECT_EQ(of(graph.operation(EXPR_ADD, one, v)), "(1)+(tank.x)");
    EXPECT_EQ(of(graph.operation(EXPR_SUB, one, v)), "(1)-(tank.x)");
    EXPECT_EQ(of(graph.operation(EXPR_MUL, one, v)), "(1)*(tank.x)");
    EXPECT_EQ(of(graph.operation(EXPR_DIV, one, v)), "(1)/(tank.x)");
    EXPECT_EQ(of(graph.operation(EXPR_POW, one, v)), "(1)**(tank.x)");
    EXPECT_EQ(of(graph.operation(EXPR_NEG, v)), "-(tank.x)");
}

TEST_F(DiagText, ExpressionsNest) {
    s_Expr* sum = graph.operation(EXPR_ADD, graph.value(x), real(2));
    s_Expr* product = graph.operation(EXPR_MUL, graph.operation(EXPR_NEG, sum), graph.value(y));
    EXPECT_EQ(of(product), "(-((tank.x)+(2)))*(tank.y)");
}

// The constrained variable at the top of an expression is no part of its text.
TEST_F(DiagText, ASpaceIsAnOffsetAndARange) {
    s_Expr* space =
        mkSpace(graph.rt, mkConstraintVar(graph.rt, x, x->old), 20, makeRange(-1, 1, 1, 0));
    EXPECT_EQ(of(space), "(20)+(-1 1)");
}

// ---- Suspects and leaves ----

TEST_F(DiagText, ASuspectIsItsNameItsDelayAndItsCondition) {
    s_Influence* free = graph.link("tank.i1", x, y);
    s_Influence* bound = graph.link("tank.i2", x, y, 0, graph.relation(x, REL_LT, makeReal(3)));
    Conflict const first{"tank.i1", free, 0}, second{"tank.i2", bound, 12};
    printConflict(&graph.rt, &first);
    printConflict(&graph.rt, &second);
    EXPECT_EQ(graph.rt.diagBuf, "{tank.i1,0,()}{tank.i2,12,(tank.x < )}");
}

TEST_F(DiagText, ASuspectThatIsNotThereIsTold) {
    graph.rt.diagBuf = "[";
    EXPECT_EQ(complaint([&] { printConflict(&graph.rt, nullptr); }),
              "Unable to print conflict (NULL Pointer)\n");
    EXPECT_EQ(graph.rt.diagBuf, "[");
}

TEST_F(DiagText, AnAnonymousSuspectHasNoName) {
    s_Variable* measure = graph.measure("m", 1);
    graph.link("", graph.input("u"), measure);
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{,0,()}]");
}

// A name is text as it stands, whatever signs it holds.
TEST_F(DiagText, ANameIsNotInterpreted) {
    graph.measureOf("m", {"100%s of [it] %n"}, 1);
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{100%s of [it] %n,0,()}]");
}

TEST_F(DiagText, LeavesFollowEachOtherWithoutSeparators) {
    s_Influence* i1 = graph.link("i1", x, y, 0, graph.relation(x, REL_LT, makeReal(3)));
    Suspects set = suspects("i1 i2@2 i3@1");
    set[0]->influence = i1;
    sn_razDiagBuf(&graph.rt);
    printHSTree(&graph.rt, {Leaf{1, {set[0], set[1]}}, Leaf{2, {set[2]}}});
    EXPECT_EQ(graph.rt.diagBuf, "[{i1,0,(tank.x < )}{i2,2,()}][{i3,1,()}]");
}

TEST_F(DiagText, WithoutLeavesNothingIsAdded) {
    graph.rt.diagBuf = "[as it was]";
    printHSTree(&graph.rt, {});
    EXPECT_EQ(graph.rt.diagBuf, "[as it was]");
}

TEST_F(DiagText, TheLeavesAreAppended) {
    graph.rt.diagBuf = "[as it was]";
    printHSTree(&graph.rt, {Leaf{1, suspects("a")}});
    EXPECT_EQ(graph.rt.diagBuf, "[as it was][{a,0,()}]");
}

TEST_F(DiagText, EmptyingLeavesNothing) {
    graph.rt.diagBuf = "[as it was]";
    sn_razDiagBuf(&graph.rt);
    EXPECT_EQ(graph.rt.diagBuf, "");
    sn_razDiagBuf(&graph.rt);
    EXPECT_EQ(graph.rt.diagBuf, "");
}

// ---- Long texts ----

// 500 suspects of 20 letters each: 500 times [{..,0,()}] is 500 x 29 characters.
TEST_F(DiagText, GrowsWithTheNumberOfLeaves) {
    s_Variable* measure = graph.measure("m", 1);
    s_Variable* input = graph.input("u");
    std::string expected;
    for (int i = 0; i < 500; ++i) {
        std::string const name = "influence.number." + std::to_string(100 + i);
        graph.link(name, input, measure);
        expected += "[{" + name + ",0,()}]";
    }
    EXPECT_EQ(expected.size(), 500u * 29u);
    EXPECT_EQ(diagnosis(&graph.rt, 1), expected);
}

TEST_F(DiagText, HoldsANameOfAnyLength) {
    std::string const name(10000, 'n');
    graph.measureOf("m", {name, "b"}, 1);
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{" + name + ",0,()}][{b,0,()}]");
}

// A condition 1000 deep.
TEST_F(DiagText, HoldsAConditionOfAnyDepth) {
    s_Condition* deep = graph.constant(1);
    std::string expected = "(true)";
    for (int i = 0; i < 1000; ++i) {
        deep = graph.negation(deep);
        expected = "(! " + expected + ")";
    }
    EXPECT_EQ(of(deep), expected);
}

}  // namespace
