// What the builder works out for plants that the room does not show: several delays, global
// constraints, parts in another order than that of their declaration.
#include "plant/builder.h"

#include <gtest/gtest.h>

#include "continuous/sorn-runt.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "plant/discrete_parts.h"

namespace {

using Texts = std::vector<std::string>;

class BuilderTest : public testing::Test {
protected:
    s_runtime rt;
    PlantBuilder plant{rt, "tanks", 2.0, 50};
    Comp first{"first"}, second{"second"};

    Texts variables() const {
        Texts texts;
        for (auto const& variable : rt.dico)
            texts.push_back(variable->nom);
        return texts;
    }
};

TEST_F(BuilderTest, TheRuntimeHasItsNumbers) {
    plant.finish({});
    EXPECT_EQ(rt.name, "tanks");
    EXPECT_EQ(rt.Ts, 2.0);
    EXPECT_EQ(rt.twc, 50);
}

TEST_F(BuilderTest, PartsStandInTheOrderGivenAtTheEnd) {
    PlantPart& one = plant.part(first);
    PlantPart& two = plant.part(second);
    s_Variable* a = one.variable("a");
    s_Variable* b = two.variable("b");
    s_Variable* c = one.variable("c");
    one.influence("i1", INF_STATIC, a, c, nullptr, makeReal(1.0));
    two.influence("i2", INF_STATIC, b, c, nullptr, makeReal(1.0));
    plant.finish({&second, &first});
    EXPECT_EQ(variables(), (Texts{"second.b", "first.a", "first.c"}));
    EXPECT_EQ(rt.influ[0]->nom, "i2");
    EXPECT_EQ(rt.influ[1]->nom, "i1");
    ASSERT_EQ(c->graph->causes.size(), 2u);
    EXPECT_EQ(c->graph->causes[0]->nom, "i2") << "declared last";
    EXPECT_EQ(first.influences, (std::vector<s_Influence*>{rt.influ[1].get()}));
}

TEST_F(BuilderTest, HistoriesHoldTheLongestDelay) {
    PlantPart& part = plant.part(first);
    s_Variable* a = part.variable("a");
    s_Variable* b = part.variable("b");
    part.influence("i1", INF_DYNAMIC, a, b, nullptr, makeReal(1.0), {.delay = 7});
    part.influence("i2", INF_DYNAMIC, a, b, nullptr, makeReal(1.0), {.delay = 3});
    plant.finish({&first});
    EXPECT_EQ(a->histLen(), 57);
    EXPECT_EQ(a->mesHisto.size(), 57);
    EXPECT_EQ(a->lowHisto.size(), 57);
    EXPECT_EQ(a->highHisto.size(), 57);
    EXPECT_EQ(b->histLen(), 50);
    EXPECT_EQ(b->graph->kind, INF_DYNAMIC);
}

TEST_F(BuilderTest, ANodeOfCouplingsIsStatic) {
    PlantPart& part = plant.part(first);
    s_Variable* a = part.parameter("a", 1.0);
    s_Variable* b = part.variable("b");
    s_Variable* alone = part.variable("alone");
    part.influence("i1", INF_COUPLING, a, b, nullptr, makeReal(1.0));
    plant.finish({&first});
    EXPECT_EQ(b->graph->kind, INF_STATIC);
    EXPECT_EQ(alone->graph, nullptr);
}

s_Expr* leaf(s_runtime& rt, s_GVar* gvar) {
    auto expr = std::make_unique<s_Expr>();
    expr->op = EXPR_VAR;
    expr->gvar = gvar;
    return adoptExpr(rt, std::move(expr));
}

// a = b - c, and b = -c: b is read by the first, c by both, a by none.
TEST_F(BuilderTest, GlobalConstraintsAreKnownToWhatTheyRead) {
    PlantPart& part = plant.part(first);
    s_GVar* a = part.constrained(part.variable("a"));
    s_GVar* b = part.constrained(part.variable("b"));
    s_GVar* c = part.constrained(part.variable("c"));
    auto difference = std::make_unique<s_Expr>();
    difference->op = EXPR_SUB;
    difference->gvar = a;
    difference->left = leaf(rt, b);
    difference->right = leaf(rt, c);
    auto opposite = std::make_unique<s_Expr>();
    opposite->op = EXPR_NEG;
    opposite->gvar = b;
    opposite->left = leaf(rt, c);
    plant.globalConstraint(adoptExpr(rt, std::move(difference)));
    plant.globalConstraint(adoptExpr(rt, std::move(opposite)));
    plant.finish({&first});
    EXPECT_TRUE(a->gcIdx.empty());
    EXPECT_EQ(b->gcIdx, (std::vector<int>{1, 0}));
    EXPECT_EQ(c->gcIdx, (std::vector<int>{2, 0, 1}));
    EXPECT_EQ(rt.inAc, (std::vector<int>{0, 0}));
}

TEST_F(BuilderTest, ConditionsOfAVariableComeBeforeTheOthersOfThePart) {
    PlantPart& part = plant.part(first);
    Atom *low, *high;
    addChoice<CondVar>(first, "level", "low", {{"high", &high}, {"low", &low}});
    s_GVar* level = part.constrained(part.variable("h"));
    s_Condition* open = part.openOr();
    s_Condition* isLow = part.compare(REL_LT, part.below(level, 3.0));
    s_Condition* isHigh = part.compare(REL_GE, part.from(level, 3.0));
    plant.linkAtom(low, isLow);
    plant.linkAtom(high, isHigh);
    plant.setOperands(open, isLow, isHigh);
    plant.finish({&first});
    EXPECT_EQ(rt.condi, (std::vector<s_Condition*>{isHigh, isLow, open}));
    EXPECT_EQ(open->atomRef, 1) << "declared first";
    EXPECT_EQ(isLow->atomRef, 2);
    EXPECT_EQ(isHigh->atomRef, 3);
    EXPECT_EQ(isHigh->acIdx, (std::vector<int>{1}));
    EXPECT_EQ(level->acIdx, (std::vector<int>{2, 0, 1}));
    EXPECT_EQ(level->var->varConds, (std::vector<int>{0, 1}));
    EXPECT_TRUE(low->bridged && high->bridged);
}

TEST_F(BuilderTest, AtomsGetSymbolicKeys) {
    first.className = "valve";
    Atom *closed, *open;
    ModeVar* mode =
        addChoice<ModeVar>(first, "mode", "open", {{"closed", &closed}, {"open", &open}});
    EXPECT_EQ(mode->name, "first.mode");
    EXPECT_EQ(mode->getDefault(), "first.mode=open");
    EXPECT_EQ(first.atoms.find("valve_mode_closed")->second, closed);
    EXPECT_EQ(first.atoms.find("valve_mode_open")->second, open);
    Transition const* stay = addMove(first, {{open, true}}, open, "Nominal", 0.5, true);
    Transition const* move =
        addMove(first, {{open, true}, {closed, false}}, closed, "Fail", 0.25, false);
    EXPECT_EQ(stay->pre->getOperat(), "");
    EXPECT_EQ(move->pre->getOperat(), "and");
    EXPECT_EQ(move->postMode, closed);
    EXPECT_TRUE(stay->idle && !move->idle);
}

}  // namespace
