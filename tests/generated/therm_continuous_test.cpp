// The continuous side of the reference model as it is built: variables, lists, influences, causal
// graph and the runtime's own numbers.
#include <algorithm>
#include <cfloat>

#include "fixtures/the_run.h"
#include "generated/therm_fixture.h"

using therm_fixture::BuiltModel;
using therm_fixture::name;
using therm_fixture::names;
using therm_fixture::Texts;

namespace {

void expectReal(s_Objet const& object, double value) {
    ASSERT_EQ(object.type, OBJ_REAL);
    EXPECT_EQ(object.real, value);
}

void expectRange(s_Objet const& object, double inf, double sup) {
    ASSERT_EQ(object.type, OBJ_RANGE);
    EXPECT_EQ(object.rng.inf, inf);
    EXPECT_EQ(object.rng.sup, sup);
    EXPECT_EQ(object.rng.infClosed, 1);
    EXPECT_EQ(object.rng.supClosed, 1);
}

class ContinuousTest : public testing::Test, protected BuiltModel {
protected:
    s_Variable const* variable(char const* nom) const { return sn_getVarDico(rt, nom); }
    s_Influence const& influence(std::size_t i) const { return *rt->influ.at(i); }
};

// ---- Variables ----

TEST_F(ContinuousTest, VariablesInOrder) {
    Texts found;
    for (auto const& variable : rt->dico)
        found.push_back(variable->nom);
    EXPECT_EQ(found, (Texts{"thermostat.h", "room.xd", "room.x", "room.xdq", "room.xext", "room.Qc",
                            "room.Qo", "room.m", "room.M", "room.un"}));
    for (std::size_t i = 0; i < rt->dico.size(); ++i)
        EXPECT_EQ(rt->dico[i]->slot, static_cast<int>(i));
}

TEST_F(ContinuousTest, ParametersHoldTheirValues) {
    std::vector<std::pair<char const*, double>> const parameters = {
        {"thermostat.h", 20.0}, {"room.xext", 4.0}, {"room.Qc", 0.05}, {"room.Qo", 0.0002},
        {"room.m", 10.0},       {"room.M", 17.0},   {"room.un", 1.0}};
    for (auto const& [nom, value] : parameters) {
        SCOPED_TRACE(nom);
        s_Variable const* parameter = variable(nom);
        ASSERT_NE(parameter, nullptr);
        EXPECT_NE(parameter->isParam, 0);
        EXPECT_FALSE(parameter->domain.has_value());
        expectReal(parameter->old, value);
    }
}

TEST_F(ContinuousTest, TheOthersHaveADomainAndNoValue) {
    for (char const* nom : {"room.xd", "room.x", "room.xdq"}) {
        SCOPED_TRACE(nom);
        s_Variable const* found = variable(nom);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->isParam, 0);
        ASSERT_TRUE(found->domain.has_value());
        expectRange(*found->domain, -DBL_MAX, DBL_MAX);
        EXPECT_EQ(found->old.type, OBJ_UNSET);
        EXPECT_EQ(found->new_.type, OBJ_UNSET);
        EXPECT_EQ(found->mes.type, OBJ_UNSET);
    }
}

TEST_F(ContinuousTest, NothingIsDefinedAndNothingIsInAlarm) {
    for (auto const& variable : rt->dico) {
        SCOPED_TRACE(variable->nom);
        EXPECT_EQ(variable->defined, 0);
        EXPECT_EQ(variable->lowalarm, 0);
        EXPECT_EQ(variable->highalarm, 0);
        EXPECT_EQ(variable->meslowmisb, 0);
        EXPECT_EQ(variable->meshighmisb, 0);
        EXPECT_EQ(variable->mesmisb, 0);
        EXPECT_TRUE(variable->misbHisto.empty());
    }
}

// That of x is a cycle longer, for the influence that reads it at a delay of 1.
TEST_F(ContinuousTest, HistoriesSpanTheWindow) {
    for (auto const& variable : rt->dico) {
        SCOPED_TRACE(variable->nom);
        int const expected = variable->nom == "room.x" ? 301 : 300;
        EXPECT_EQ(variable->histLen(), expected);
        EXPECT_EQ(variable->histo.size(), expected);
        EXPECT_EQ(variable->mesHisto.size(), expected);
        EXPECT_EQ(variable->lowHisto.size(), expected);
        EXPECT_EQ(variable->highHisto.size(), expected);
        EXPECT_EQ(variable->histo[expected - 1].type, OBJ_UNSET);
        EXPECT_EQ(variable->mesHisto[0].type, OBJ_UNSET);
        EXPECT_EQ(variable->lowHisto[expected - 1], 0);
        EXPECT_EQ(variable->highHisto[0], 0);
    }
}

TEST_F(ContinuousTest, TheTemperatureIsBoundedByThreeConditions) {
    for (auto const& variable : rt->dico)
        EXPECT_EQ(variable->varConds,
                  variable->nom == "room.x" ? (std::vector<int>{6, 9, 10}) : std::vector<int>{})
            << variable->nom;
}

TEST_F(ContinuousTest, ListsOfVariables) {
    EXPECT_EQ(names(rt->display), (Texts{"room.xd", "room.x"}));
    EXPECT_EQ(names(rt->measure), (Texts{"room.xd"}));
    EXPECT_EQ(names(rt->temporal), (Texts{"room.x"}));
    EXPECT_EQ(names(rt->untemporal), (Texts{"room.xdq", "room.xd"}));
    EXPECT_TRUE(rt->input.empty());
}

TEST_F(ContinuousTest, OneInitialValue) {
    ASSERT_EQ(rt->init.size(), 1u);
    EXPECT_EQ(rt->init[0].var, variable("room.x"));
    expectReal(rt->init[0].value, 4.0);
}

// ---- Influences ----

struct ExpectedInfluence {
    char const* nom;
    influType type;
    char const* cause;
    char const* effect;
    std::size_t condition;  // in condi
    int condHistoLn;
    double inf, sup;  // of the gain; equal ones for a number
    int delay;
    int useOpti;
};

std::vector<ExpectedInfluence> const expectedInfluences = {
    {"T1.i1", INF_COUPLING, "thermostat.h", "room.xdq", 5, 1, 1.0, 1.0, 0, 0},
    {"R1.i1", INF_COUPLING, "room.xext", "room.xdq", 14, 1, 1.0, 1.0, 0, 0},
    {"R1.i2", INF_INTEGRAL, "room.xd", "room.x", 15, 2, 0.95, 1.05, 0, 1},
    {"R1.i3", INF_STATIC, "room.un", "room.xd", 15, 1, 0.0, 0.3, 0, 1},
    {"R1.i4", INF_STATIC, "room.xdq", "room.xd", 11, 1, 0.05, 0.05, 0, 1},
    {"R1.i5", INF_STATIC, "room.xdq", "room.xd", 12, 1, 0.0002, 0.0002, 0, 1},
    {"R1.i6", INF_STATIC, "room.x", "room.xdq", 15, 1, -1.0, -1.0, 1, 1},
};

TEST_F(ContinuousTest, InfluencesInOrder) {
    ASSERT_EQ(rt->influ.size(), expectedInfluences.size());
    for (std::size_t i = 0; i < expectedInfluences.size(); ++i) {
        ExpectedInfluence const& expected = expectedInfluences[i];
        SCOPED_TRACE(expected.nom);
        EXPECT_EQ(influence(i).nom, expected.nom);
        EXPECT_EQ(influence(i).slot, static_cast<int>(i));
        EXPECT_EQ(influence(i).type, expected.type);
        EXPECT_EQ(name(influence(i).cause), expected.cause);
        EXPECT_EQ(name(influence(i).effect), expected.effect);
        EXPECT_EQ(influence(i).cond, rt->condi.at(expected.condition));
        EXPECT_EQ(influence(i).delayMin, expected.delay);
        EXPECT_EQ(influence(i).delayMax, expected.delay);
        EXPECT_EQ(influence(i).useOpti, expected.useOpti);
        if (expected.inf == expected.sup)
            expectReal(influence(i).gain, expected.inf);
        else
            expectRange(influence(i).gain, expected.inf, expected.sup);
    }
}

TEST_F(ContinuousTest, ConditionsOfInfluencesHeldInThePast) {
    for (std::size_t i = 0; i < expectedInfluences.size(); ++i) {
        SCOPED_TRACE(expectedInfluences[i].nom);
        int const length = expectedInfluences[i].condHistoLn;
        EXPECT_EQ(influence(i).condHistoLn, length);
        EXPECT_EQ(influence(i).condHisto,
                  std::vector<boolVal>(static_cast<std::size_t>(length), 1));
    }
}

TEST_F(ContinuousTest, InfluencesHaveZeroCoefficientsAndNoSecondOrder) {
    for (auto const& influence : rt->influ) {
        SCOPED_TRACE(influence->nom);
        for (s_Objet const* coefficient :
             {&influence->respTime, &influence->a1, &influence->b1, &influence->a2, &influence->b2})
            expectReal(*coefficient, 0.0);
        EXPECT_FALSE(influence->xi.has_value());
        EXPECT_FALSE(influence->w.has_value());
        EXPECT_FALSE(influence->n1.has_value());
        EXPECT_FALSE(influence->n2.has_value());
        EXPECT_FALSE(influence->d0.has_value());
        EXPECT_FALSE(influence->d1.has_value());
        EXPECT_FALSE(influence->d2.has_value());
    }
}

TEST_F(ContinuousTest, TheGainsRepeatTheCoefficientsAndAreNoLinksToThem) {
    R1->Qc->old = makeReal(0.5);
    R1->Qo->old = makeReal(0.002);
    expectReal(R1->i4->gain, 0.05);
    expectReal(R1->i5->gain, 0.0002);
}

TEST_F(ContinuousTest, ComponentsListTheInfluencesOfTheRuntime) {
    EXPECT_EQ(T1->influences, (std::vector<s_Influence*>{rt->influ[0].get()}));
    for (std::size_t i = 1; i < rt->influ.size(); ++i)
        EXPECT_EQ(R1->influences.at(i - 1), rt->influ[i].get());
}

// ---- Causal graph ----

struct ExpectedNode {
    char const* variable;
    influType kind;  // of the causes; no meaning without any
    Texts causes;
    Texts effects;
};

std::vector<ExpectedNode> const expectedNodes = {
    {"thermostat.h", INF_STATIC, {}, {"T1.i1"}},
    {"room.xd", INF_STATIC, {"R1.i5", "R1.i4", "R1.i3"}, {"R1.i2"}},
    {"room.x", INF_INTEGRAL, {"R1.i2"}, {"R1.i6"}},
    {"room.xdq", INF_STATIC, {"T1.i1", "R1.i6", "R1.i1"}, {"R1.i5", "R1.i4"}},
    {"room.xext", INF_STATIC, {}, {"R1.i1"}},
    {"room.un", INF_STATIC, {}, {"R1.i3"}},
};

TEST_F(ContinuousTest, GraphNodesInOrder) {
    ASSERT_EQ(rt->cG.size(), expectedNodes.size());
    for (std::size_t i = 0; i < expectedNodes.size(); ++i) {
        ExpectedNode const& expected = expectedNodes[i];
        SCOPED_TRACE(expected.variable);
        s_CGraph const& node = *rt->cG[i];
        EXPECT_EQ(variable(expected.variable)->graph, &node);
        EXPECT_EQ(node.slot, static_cast<int>(i));
        EXPECT_EQ(names(node.causes), expected.causes);
        EXPECT_EQ(names(node.effects), expected.effects);
        if (!expected.causes.empty()) {
            EXPECT_EQ(node.kind, expected.kind);
        }
    }
}

TEST_F(ContinuousTest, FourParametersHaveNoGraphNode) {
    for (char const* nom : {"room.Qc", "room.Qo", "room.m", "room.M"})
        EXPECT_EQ(variable(nom)->graph, nullptr) << nom;
}

// Every influence ends in the node of its effect and starts in the node of its cause.
TEST_F(ContinuousTest, TheGraphAgreesWithTheInfluences) {
    for (auto const& influence : rt->influ) {
        auto const& causes = influence->effect->graph->causes;
        auto const& effects = influence->cause->graph->effects;
        EXPECT_EQ(std::count(causes.begin(), causes.end(), influence.get()), 1) << influence->nom;
        EXPECT_EQ(std::count(effects.begin(), effects.end(), influence.get()), 1) << influence->nom;
    }
}

// ---- The runtime ----

TEST_F(ContinuousTest, NumbersOfTheRuntime) {
    EXPECT_EQ(rt->name, "therm");
    EXPECT_EQ(rt->num, 0);
    EXPECT_EQ(rt->Ts, 1.0);
    EXPECT_EQ(rt->tStart, 0.0);
    EXPECT_EQ(rt->twc, 300);
    EXPECT_EQ(rt->cgAux, 2);
    EXPECT_EQ(rt->varsInitialised, 0);
    EXPECT_EQ(rt->globalOn, 0);
    EXPECT_EQ(rt->misbWindow, 0);
    EXPECT_EQ(rt->precision, 0.0);
    EXPECT_EQ(rt->isoMode, 0);
    EXPECT_EQ(rt->nbMisb, 0);
    EXPECT_EQ(rt->nbNormal, 0);
    EXPECT_EQ(rt->nbKnown, 0);
    EXPECT_EQ(rt->inval, nullptr);
    EXPECT_EQ(rt->mesval, nullptr);
    EXPECT_EQ(rt->diagBuf, "");
    EXPECT_EQ(theRun().scheduler.book.twd, 5);
}

TEST_F(ContinuousTest, ArraysOfTheRuntimeHaveTheirLengthsAndAreZero) {
    EXPECT_EQ(rt->dinfval, (std::vector<double>{0.0, 0.0}));
    EXPECT_EQ(rt->dsupval, (std::vector<double>{0.0, 0.0}));
    for (auto const* alarms :
         {&rt->lowalarm, &rt->highalarm, &rt->meslowmisb, &rt->meshighmisb, &rt->mesmisb})
        EXPECT_EQ(*alarms, (std::vector<int>{0}));
    EXPECT_EQ(rt->condin, std::vector<int>(7, 0));
    EXPECT_EQ(rt->condout, std::vector<int>(7, 0));
    EXPECT_EQ(rt->valSpc, std::vector<int>(4, 0));
    EXPECT_EQ(rt->ccAgenda, std::vector<int>(4, 0));
    EXPECT_EQ(rt->extra.size(), 0);
}

TEST_F(ContinuousTest, WhatTheRuntimeBeginsWithout) {
    EXPECT_TRUE(rt->gC.empty());
    EXPECT_TRUE(rt->inAc.empty());
    EXPECT_TRUE(rt->mapExprs.empty());
    EXPECT_TRUE(rt->bridgeEvents.empty());
    EXPECT_TRUE(rt->bridgeConds.empty());
    EXPECT_TRUE(rt->bridgeTrans.empty());
    EXPECT_FALSE(rt->bridgeConflicts.has_value());
    EXPECT_TRUE(rt->knownMisb.empty());
}

}  // namespace
