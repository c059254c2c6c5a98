// The constraints and conditions of the reference model: where the temperature lies between the two
// thresholds, and which modes let which influences act.
#include <algorithm>
#include <cfloat>

#include "generated/therm_fixture.h"

using therm_fixture::BuiltModel;

namespace {

class ConditionsTest : public testing::Test, protected BuiltModel {
protected:
    s_Condition const& condition(std::size_t i) const { return *rt->condi.at(i); }
    s_Variable const* x() const { return sn_getVarDico(rt, "room.x"); }
};

// ---- Constraints ----

TEST_F(ConditionsTest, TheTemperatureIsTheOneVariableOfTheConstraints) {
    ASSERT_EQ(rt->gV.size(), 1u);
    s_GVar const* gvar = rt->gV[0];
    EXPECT_EQ(gvar->kind, GV_VARIABLE);
    EXPECT_EQ(gvar->var, x());
    ASSERT_EQ(gvar->value.type, OBJ_REAL);
    EXPECT_EQ(gvar->value.real, 0.0);
    EXPECT_TRUE(gvar->gcIdx.empty());
    EXPECT_EQ(gvar->acIdx, (std::vector<int>{4, 0, 1, 2, 3})) << "the count, then the constraints";
}

s_Objet const& constantOf(s_Expr const* leaf) {
    EXPECT_EQ(leaf->op, EXPR_CONST);
    EXPECT_EQ(leaf->gvar->kind, GV_CONST);
    EXPECT_EQ(leaf->left, nullptr);
    EXPECT_EQ(leaf->right, nullptr);
    return leaf->gvar->value;
}

TEST_F(ConditionsTest, EachConstraintIsAThresholdPlusARange) {
    struct Expected {
        double threshold;
        bool below;
    };
    std::vector<Expected> const constraints = {
        {10.0, true}, {10.0, false}, {17.0, true}, {17.0, false}};
    ASSERT_EQ(rt->aC.size(), constraints.size());
    for (std::size_t i = 0; i < constraints.size(); ++i) {
        SCOPED_TRACE(i);
        s_Expr const* sum = rt->aC[i];
        EXPECT_EQ(sum->op, EXPR_ADD);
        EXPECT_EQ(sum->gvar, rt->gV[0]);
        s_Objet const& threshold = constantOf(sum->left);
        ASSERT_EQ(threshold.type, OBJ_REAL);
        EXPECT_EQ(threshold.real, constraints[i].threshold);
        s_Objet const& space = constantOf(sum->right);
        ASSERT_EQ(space.type, OBJ_RANGE);
        EXPECT_EQ(space.rng.inf, constraints[i].below ? -DBL_MAX : 0.0);
        EXPECT_EQ(space.rng.sup, constraints[i].below ? 0.0 : DBL_MAX);
        EXPECT_EQ(space.rng.infClosed, 1);
        EXPECT_EQ(space.rng.supClosed, constraints[i].below ? 0 : 1);
    }
}

// ---- Conditions ----

TEST_F(ConditionsTest, ConditionsOnTheModes) {
    std::vector<std::pair<std::size_t, Atom const*>> const onAtoms = {
        {0, T1->mode_off},       {1, T1->mode_on},      {2, T1->mode_stuck_on},
        {3, T1->mode_stuck_off}, {4, T1->mode_unknown}, {11, R1->mode_closed},
        {12, R1->mode_open},     {13, R1->mode_unknown}};
    ASSERT_EQ(rt->condi.size(), 16u);
    for (auto const& [i, atom] : onAtoms) {
        SCOPED_TRACE(i);
        EXPECT_EQ(condition(i).kind, COND_ATOM);
        EXPECT_EQ(condition(i).atom, atom);
        EXPECT_EQ(condition(i).atomRef, 0);
        EXPECT_TRUE(condition(i).acIdx.empty());
        EXPECT_EQ(condition(i).expr, nullptr);
    }
}

TEST_F(ConditionsTest, ConditionsOnTheTemperature) {
    struct Expected {
        std::size_t index;
        int constraint;
        int op;
        Atom const* atom;
        int atomRef;
    };
    for (Expected const& expected :
         {Expected{6, 3, 5, R1->c1_c12, 5}, Expected{7, 1, 5, nullptr, 2},
          Expected{8, 2, 4, nullptr, 3}, Expected{10, 0, 4, R1->c1_c10, 1}}) {
        SCOPED_TRACE(expected.index);
        s_Condition const& found = condition(expected.index);
        EXPECT_EQ(found.kind, COND_EXPR);
        EXPECT_EQ(found.expr, rt->aC[static_cast<std::size_t>(expected.constraint)]);
        EXPECT_EQ(found.acIdx, (std::vector<int>{expected.constraint}));
        EXPECT_EQ(found.op, expected.op);
        EXPECT_EQ(found.var, x());
        EXPECT_EQ(found.atom, expected.atom);
        EXPECT_EQ(found.atomRef, expected.atomRef);
    }
}

TEST_F(ConditionsTest, BetweenTheThresholdsIsTheConjunctionOfTwo) {
    s_Condition const& between = condition(9);
    EXPECT_EQ(between.kind, COND_AND);
    EXPECT_EQ(between.left, rt->condi[7]);
    EXPECT_EQ(between.right, rt->condi[8]);
    EXPECT_EQ(between.atom, R1->c1_c11);
    EXPECT_EQ(between.atomRef, 4);
    EXPECT_TRUE(between.acIdx.empty());
}

TEST_F(ConditionsTest, NotHeatingIsADisjunctionOfNumberedConditions) {
    s_Condition const& notHeating = condition(14);
    EXPECT_EQ(notHeating.kind, COND_OR);
    EXPECT_EQ(notHeating.left, rt->condi[3]) << "stuck off";
    EXPECT_EQ(notHeating.right, rt->condi[0]) << "off";
    EXPECT_EQ(notHeating.atom, nullptr);
    EXPECT_EQ(notHeating.atomRef, 9);
}

void expectOwnAtom(s_runtime const& rt, s_Condition const* operand, Atom const* atom) {
    ASSERT_NE(operand, nullptr);
    EXPECT_EQ(operand->kind, COND_ATOM);
    EXPECT_EQ(operand->atom, atom);
    EXPECT_EQ(std::count(rt.condi.begin(), rt.condi.end(), operand), 0)
        << "a record outside the numbered conditions";
}

TEST_F(ConditionsTest, TheOtherDisjunctionsHaveRecordsOfTheirOwn) {
    EXPECT_EQ(condition(5).kind, COND_OR);
    EXPECT_EQ(condition(5).atom, nullptr);
    EXPECT_EQ(condition(5).atomRef, 6);
    expectOwnAtom(*rt, condition(5).left, T1->mode_stuck_on);
    expectOwnAtom(*rt, condition(5).right, T1->mode_on);
    EXPECT_EQ(condition(15).kind, COND_OR);
    EXPECT_EQ(condition(15).atom, nullptr);
    EXPECT_EQ(condition(15).atomRef, 10);
    expectOwnAtom(*rt, condition(15).left, R1->mode_closed);
    expectOwnAtom(*rt, condition(15).right, R1->mode_open);
}

TEST_F(ConditionsTest, NoConditionHasAValueYet) {
    for (s_Condition const* condition : rt->condi) {
        EXPECT_EQ(condition->val, 0);
        EXPECT_FALSE(condition->value.has_value());
        EXPECT_EQ(condition->var2, nullptr);
    }
}

// ---- What they say ----

// The numbered conditions that hold when the temperature is *value*: 10 below the lower threshold,
// 9 between (with 7 and 8), 6 above the upper one.
std::vector<int> holding(s_runtime* rt, s_Variable* x, s_Objet const& value) {
    x->old = value;
    std::vector<int> found;
    for (int const i : {6, 9, 10})
        if (sn_evalCond(rt->condi[static_cast<std::size_t>(i)], rt) == 1)
            found.push_back(i);
    return found;
}

TEST_F(ConditionsTest, ATemperatureLiesInOneOfThreeSpaces) {
    s_Variable* temperature = R1->x;
    EXPECT_EQ(holding(rt, temperature, makeReal(4.0)), (std::vector<int>{10}))
        << "where the room begins";
    EXPECT_EQ(holding(rt, temperature, makeReal(9.999)), (std::vector<int>{10}));
    EXPECT_EQ(holding(rt, temperature, makeReal(10.0)), (std::vector<int>{9}));
    EXPECT_EQ(holding(rt, temperature, makeReal(16.999)), (std::vector<int>{9}));
    EXPECT_EQ(holding(rt, temperature, makeReal(17.0)), (std::vector<int>{6}));
    EXPECT_EQ(holding(rt, temperature, makeReal(40.0)), (std::vector<int>{6}));
    EXPECT_EQ(holding(rt, temperature, makeRange(11.0, 12.0, 1, 1)), (std::vector<int>{9}));
    EXPECT_EQ(holding(rt, temperature, makeRange(9.0, 12.0, 1, 1)), (std::vector<int>{}))
        << "over a threshold nothing is certain";
}

TEST_F(ConditionsTest, TheInitialTemperatureAgreesWithTheDefaultOfTheDiscreteSide) {
    EXPECT_EQ(holding(rt, R1->x, rt->init.at(0).value), (std::vector<int>{10}));
    EXPECT_EQ(rt->condi[10]->atom->id, R1->c1->getDefault());
}

// A copy keeps what is shared: the disjunction and the numbered conditions are the same records.
TEST_F(ConditionsTest, ACopyOfTheRuntimeKeepsTheSharing) {
    auto const copy = sn_copyRuntime(rt);
    EXPECT_EQ(copy->condi[14]->left, copy->condi[3]);
    EXPECT_EQ(copy->condi[14]->right, copy->condi[0]);
    EXPECT_EQ(copy->condi[9]->left, copy->condi[7]);
    EXPECT_EQ(copy->influ[1]->cond, copy->condi[14]);
    EXPECT_NE(copy->condi[14], rt->condi[14]);
}

}  // namespace
