// The truth of conditions on the values of a runtime.
#include "engine_fixture.h"

namespace engine_test {
namespace {

class Conditions : public EngineTest {
protected:
    Conditions() {
        x = plant.add("x", obj("0"));
        y = plant.add("y", obj("0"));
        gx = mkConstraintVar(plant.rt, x, obj("0"));
    }

    s_Condition* make(int kind) {
        s_Condition* c = adoptCondition(plant.rt, mkCond());
        c->kind = kind;
        return c;
    }
    s_Condition* constant(boolVal value) {
        s_Condition* c = make(COND_CONST);
        c->val = value;
        return c;
    }
    s_Condition* binary(int kind, boolVal left, boolVal right) {
        s_Condition* c = make(kind);
        c->left = constant(left);
        c->right = constant(right);
        return c;
    }
    // x <op> right for each of the seven operators and one beyond, as "0110000 0".
    std::string relations(char const* left, char const* right) {
        s_Condition* c = make(COND_REL);
        c->var = x;
        x->old = obj(left);
        c->value = obj(right);
        std::string answers;
        for (c->op = REL_EQ; c->op <= REL_IN; ++c->op)
            answers += std::to_string(eval(c));
        return answers + " " + std::to_string(eval(c));
    }
    // x in offset + space.
    s_Condition* inSpace(double offset, char const* space, int op = REL_GE) {
        s_Expr* expr = mkSpace(plant.rt, gx, offset, obj(space));
        return mkExprCond(plant.rt, x, static_cast<relation>(op), expr, 0, nullptr, 0);
    }
    int eval(s_Condition* c) { return sn_evalCond(c, &plant.rt); }
    int evalExpr(s_Condition* c, char const* value) {
        gx->value = obj(value);
        return sn_evalCondExpr(c, &plant.rt);
    }

    Plant plant;
    s_Variable *x, *y;
    s_GVar* gx;
};

TEST_F(Conditions, AKindOutsideTheListIsFalse) {
    for (int const kind : {0, 8, -1, 99}) {
        s_Condition* c = make(kind);
        c->val = 1;
        EXPECT_EQ(eval(c), 0) << kind;
        EXPECT_EQ(sn_evalCondExpr(c, &plant.rt), 0) << kind;
    }
}

TEST_F(Conditions, AConstantIsItsValue) {
    for (boolVal const value : {0, 1, 5})
        EXPECT_EQ(eval(constant(value)), value);
}

TEST_F(Conditions, AnAtomIsTrueWhenItsValueIsNotZero) {
    s_Condition* c = make(COND_ATOM);
    EXPECT_EQ(eval(c), 0);
    c->val = 1;
    EXPECT_EQ(eval(c), 1);
    c->val = -3;
    EXPECT_EQ(eval(c), 1);
}

// Columns: =, !=, <=, <, >=, >, in.
TEST_F(Conditions, RelationsOfNumbers) {
    EXPECT_EQ(relations("2", "2"), "1010100 0");
    EXPECT_EQ(relations("1", "2"), "0111000 0");
    EXPECT_EQ(relations("3", "2"), "0100110 0");
}

TEST_F(Conditions, RelationsWithIntervalsAreCertainOnes) {
    EXPECT_EQ(relations("[1, 3]", "2"), "0000000 0");
    EXPECT_EQ(relations("[1, 2]", "[1, 2]"), "1010000 0");
    EXPECT_EQ(relations("[1, 2]", "[3, 4]"), "0111000 0");
    EXPECT_EQ(relations("[3, 4]", "[1, 2]"), "0100110 0");
    EXPECT_EQ(relations("2", "[1, 3]"), "0000001 0");
    // Touching: certainly not below 3, and the closed upper end of the right makes it "at least".
    EXPECT_EQ(relations("]3, 4]", "[1, 3]"), "0100110 0");
    EXPECT_EQ(relations("[1, 3]", "[3, 4]"), "0000000 0");
}

// Equal one-point values are "at least" each other but not above.
TEST_F(Conditions, AboveMeansAtLeastAndNotEqual) {
    EXPECT_EQ(relations("[2, 2]", "[2, 2]"), "1010100 0");
}

TEST_F(Conditions, ARelationReadsTheOldValueAndTheSecondVariableFirst) {
    s_Condition* c = make(COND_REL);
    c->var = x;
    c->op = REL_LT;
    c->value = obj("0");
    x->old = obj("5");
    x->new_ = y->new_ = obj("-7");
    EXPECT_EQ(eval(c), 0);
    y->old = obj("6");
    c->var2 = y;
    EXPECT_EQ(eval(c), 1);
}

TEST_F(Conditions, OrIsTrueWhenEitherIs) {
    EXPECT_EQ(eval(binary(COND_OR, 0, 0)), 0);
    EXPECT_EQ(eval(binary(COND_OR, 1, 0)), 1);
    EXPECT_EQ(eval(binary(COND_OR, 0, 1)), 1);
    EXPECT_EQ(eval(binary(COND_OR, 1, 1)), 1);
    EXPECT_EQ(eval(binary(COND_OR, 5, 7)), 0);  // neither is exactly 1
}

TEST_F(Conditions, AndIsTrueWhenBothAreNotZero) {
    EXPECT_EQ(eval(binary(COND_AND, 0, 0)), 0);
    EXPECT_EQ(eval(binary(COND_AND, 1, 0)), 0);
    EXPECT_EQ(eval(binary(COND_AND, 0, 1)), 0);
    EXPECT_EQ(eval(binary(COND_AND, 1, 1)), 1);
    EXPECT_EQ(eval(binary(COND_AND, 5, 7)), 1);
}

TEST_F(Conditions, NotIsTrueWhenItsOperandIsNotOne) {
    s_Condition* c = make(COND_NOT);
    for (auto const& [operand, result] : {std::pair{0, 1}, {1, 0}, {5, 1}}) {
        c->left = constant(operand);
        EXPECT_EQ(eval(c), result);
    }
    c->left = binary(COND_OR, 0, 0);
    EXPECT_EQ(eval(c), 1);
}

// Both a relation and its opposite are unknown, so both are false and the negation of each is true.
TEST_F(Conditions, TheNegationOfWhatIsNotCertainIsTrue) {
    s_Condition* below = make(COND_REL);
    below->var = x;
    below->op = REL_LT;
    below->value = obj("2");
    x->old = obj("[1, 3]");
    s_Condition* c = make(COND_NOT);
    c->left = below;
    EXPECT_EQ(eval(c), 1);
    below->op = REL_GE;
    EXPECT_EQ(eval(c), 1);
}

// ---- Expressions ----

TEST_F(Conditions, AValueInsideASpaceOrEqualToIt) {
    s_Condition* c = inSpace(10, "[0, 5]");
    std::vector<std::pair<char const*, int>> const cases = {
        {"12", 1},       {"10", 1},       {"9", 0},        {"[11, 12]", 1}, {"[10, 15]", 1},
        {"[10, 14]", 1}, {"[10, 16]", 0}, {"]10, 15[", 0}, {"]10, 15]", 0}, {"[8, 9]", 0}};
    for (auto const& [value, expected] : cases) {
        x->old = obj(value);
        EXPECT_EQ(eval(c), expected) << value;
    }
}

TEST_F(Conditions, WithTheOperatorOfEqualityInsideIsNotEnough) {
    s_Condition* c = inSpace(10, "[0, 5]", REL_EQ);
    x->old = obj("[11, 12]");
    EXPECT_EQ(eval(c), 0);
    x->old = obj("[10, 15]");
    EXPECT_EQ(eval(c), 1);
}

TEST_F(Conditions, AnExpressionReadsTheNewValueWhenThereIsNoOldOne) {
    s_Condition* c = inSpace(10, "[0, 5]");
    x->old = s_Objet{};
    x->new_ = obj("12");
    EXPECT_EQ(eval(c), 1);
    x->old = obj("3");
    EXPECT_EQ(eval(c), 0);
}

// The value of the constraint variable is not that of the condition.
TEST_F(Conditions, ACoverAsksWhetherTheConstraintVariableMeetsTheSpace) {
    s_Condition* c = inSpace(10, "[0, 5[");
    x->old = obj("99");
    std::vector<std::pair<char const*, int>> const cases = {
        {"12", 1},       {"10", 1},       {"15", 0},      {"9", 0},
        {"[0, 99]", 1},  {"[0, 10]", 1},  {"[0, 10[", 0}, {"[15, 20]", 0},
        {"[14, 20]", 1}, {"]10, 15[", 1}, {"[10, 15[", 1}};
    for (auto const& [value, expected] : cases)
        EXPECT_EQ(evalExpr(c, value), expected) << value;
}

// No point is common to the value and itself, and yet it is equal.
TEST_F(Conditions, AnEqualSpaceCoversEvenWhenTheIntersectionIsEmpty) {
    EXPECT_EQ(evalExpr(inSpace(0, "]3, 3["), "]3, 3["), 1);
    EXPECT_EQ(evalExpr(inSpace(0, "]3, 3["), "]3, 3]"), 0);
}

TEST_F(Conditions, ACoverLeavesTheValue) {
    EXPECT_EQ(evalExpr(inSpace(10, "[0, 5]"), "[0, 12]"), 1);
    EXPECT_EQ(text(gx->value), "[0, 12]");
}

TEST_F(Conditions, ACoverByTwoNeedsBoth) {
    s_Condition* c =
        mkBinaryCond(plant.rt, COND_AND, inSpace(10, "[0, MAX]"), inSpace(17, "[-MAX, 0["), 0);
    EXPECT_EQ(evalExpr(c, "12"), 1);
    EXPECT_EQ(evalExpr(c, "9"), 0);
    EXPECT_EQ(evalExpr(c, "17"), 0);
    EXPECT_EQ(evalExpr(c, "[0, 99]"), 1);
}

TEST_F(Conditions, OtherKindsCoverNothing) {
    s_Condition* either =
        mkBinaryCond(plant.rt, COND_OR, inSpace(0, "[0, 9]"), inSpace(0, "[0, 9]"), 0);
    EXPECT_EQ(evalExpr(either, "5"), 0);
    s_Condition* negation = make(COND_NOT);
    negation->left = inSpace(0, "[0, 1]");
    EXPECT_EQ(evalExpr(negation, "5"), 0);
    for (int const kind : {COND_CONST, COND_ATOM, COND_REL}) {
        s_Condition* c = make(kind);
        c->val = 1;
        EXPECT_EQ(evalExpr(c, "5"), 0);
    }
}

}  // namespace
}  // namespace engine_test
