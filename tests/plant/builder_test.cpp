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

// gauge <- pipe, 3 cycles late, or of the pond, 5 late; pipe <- pond with a response, a cycle more;
// pond <- supply, which nothing measures. A fault of the pond is then seen after 5 cycles at most:
// through the pipe after 3 + 1. The outlet leads to no measure.
TEST_F(BuilderTest, ConditionsAreRememberedUpToTheMeasure) {
    PlantPart& part = plant.part(first);
    s_Variable* supply = part.variable("supply");
    s_Variable* pond = part.variable("pond");
    s_Variable* pipe = part.variable("pipe");
    s_Variable* gauge = part.variable("gauge");
    s_Variable* outlet = part.variable("outlet");
    auto const length = [](s_Influence const* influence) {
        EXPECT_EQ(influence->condHisto,
                  std::vector<boolVal>(static_cast<std::size_t>(influence->condHistoLn), 1));
        return influence->condHistoLn;
    };
    s_Influence* fills = part.influence("i1", INF_INTEGRAL, supply, pond, nullptr, makeReal(1.0));
    s_Influence* given = part.influence("i2", INF_INTEGRAL, supply, pond, nullptr, makeReal(1.0),
                                        {.condHistoLn = 9});
    s_Influence* lags = part.influence("i3", INF_DYNAMIC, pond, pipe, nullptr, makeReal(1.0));
    lags->respTime = makeReal(4.0);
    s_Influence* late =
        part.influence("i4", INF_STATIC, pipe, gauge, nullptr, makeReal(1.0), {.delay = 3});
    s_Influence* later =
        part.influence("i5", INF_STATIC, pond, gauge, nullptr, makeReal(1.0), {.delay = 5});
    s_Influence* leaves = part.influence("i6", INF_STATIC, gauge, outlet, nullptr, makeReal(1.0));
    rt.measure = {gauge};
    plant.finish({&first});
    EXPECT_EQ(length(late), 1);
    EXPECT_EQ(length(later), 1);
    EXPECT_EQ(length(lags), 1 + 3);
    EXPECT_EQ(length(fills), 1 + 5) << "from the cycle itself to 5 before";
    EXPECT_EQ(length(given), 9);
    EXPECT_EQ(length(leaves), 1);
}

// gauge <- a <- b <- c <- a, each 2 cycles late. No walk passes a twice, so that c is at 2 + 2 + 2
// and what leads from a to c is asked for that long ago.
TEST_F(BuilderTest, ALoopIsPassedOnce) {
    PlantPart& part = plant.part(first);
    s_Variable* a = part.variable("a");
    s_Variable* b = part.variable("b");
    s_Variable* c = part.variable("c");
    s_Variable* gauge = part.variable("gauge");
    std::vector<s_Influence*> chain;
    auto const link = [&](s_Variable* cause, s_Variable* effect) {
        chain.push_back(part.influence("i" + std::to_string(chain.size()), INF_STATIC, cause,
                                       effect, nullptr, makeReal(0.5), {.delay = 2}));
    };
    link(a, gauge);
    link(b, a);
    link(c, b);
    link(a, c);
    rt.measure = {gauge};
    plant.finish({&first});
    EXPECT_EQ(chain[0]->condHistoLn, 1);
    EXPECT_EQ(chain[1]->condHistoLn, 1 + 2);
    EXPECT_EQ(chain[2]->condHistoLn, 1 + 4);
    EXPECT_EQ(chain[3]->condHistoLn, 1 + 6);
}

// The rain is seen by its own measure, and by the gauge behind it only through that one.
TEST_F(BuilderTest, NoFaultIsLookedForBehindAMeasureOrAnInput) {
    PlantPart& part = plant.part(first);
    s_Variable* sky = part.variable("sky");
    s_Variable* rain = part.variable("rain");
    s_Variable* valve = part.variable("valve");
    s_Variable* gauge = part.variable("gauge");
    s_Influence* falls = part.influence("i1", INF_STATIC, sky, rain, nullptr, makeReal(1.0));
    s_Influence* opens = part.influence("i2", INF_STATIC, sky, valve, nullptr, makeReal(1.0));
    part.influence("i3", INF_STATIC, rain, gauge, nullptr, makeReal(1.0), {.delay = 4});
    part.influence("i4", INF_STATIC, valve, gauge, nullptr, makeReal(1.0), {.delay = 4});
    rt.measure = {rain, gauge};
    rt.input = {valve};
    plant.finish({&first});
    EXPECT_EQ(falls->condHistoLn, 1);
    EXPECT_EQ(opens->condHistoLn, 1);
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
