// The components of the reference model as they are built: variables, atoms, keys, links.
#include <algorithm>
#include <map>

#include "fixtures/the_run.h"
#include "generated/therm_fixture.h"

using therm_fixture::BuiltModel;
using therm_fixture::StartedModel;
using therm_fixture::Texts;

namespace {

class ComponentsTest : public testing::Test, protected BuiltModel {};

// ---- Components ----

TEST_F(ComponentsTest, TheRoomAndTheThermostatAreRegistered) {
    ASSERT_EQ(thePlant().active_comps.size(), 2u);
    ASSERT_NE(R1, nullptr);
    ASSERT_NE(T1, nullptr);
    EXPECT_STREQ(R1->getName(), "room");
    EXPECT_EQ(R1->className, "room");
    EXPECT_EQ(R1->symbol, "R1");
    EXPECT_STREQ(T1->getName(), "thermostat");
    EXPECT_EQ(T1->className, "therm");
    EXPECT_EQ(T1->symbol, "T1");
    EXPECT_EQ(thePlant().name, "therm");
}

TEST_F(ComponentsTest, OnlyTheThermostatKnowsItsPeer) {
    EXPECT_EQ(R1->peer, nullptr) << "the thermostat was not there yet";
    EXPECT_EQ(T1->peer, R1);
}

TEST_F(ComponentsTest, EachIsTheOthersNeighbour) {
    EXPECT_EQ(R1->neighbours, (std::vector<Comp*>{T1}));
    EXPECT_EQ(T1->neighbours, (std::vector<Comp*>{R1}));
}

TEST_F(ComponentsTest, OnlyTheRoomHasCommands) {
    EXPECT_EQ(R1->commands, (std::vector<CommandVar*>{R1->cmdin}));
    EXPECT_TRUE(T1->commands.empty());
    EXPECT_TRUE(R1->importedCommands.empty());
    EXPECT_TRUE(T1->importedCommands.empty());
}

TEST_F(ComponentsTest, WhatNoComponentOfThisModelHas) {
    for (Comp const* comp : {static_cast<Comp*>(R1), static_cast<Comp*>(T1)}) {
        EXPECT_EQ(comp->compSize, 0);
        EXPECT_TRUE(comp->clauses.empty());
        EXPECT_TRUE(comp->constraints.empty());
        EXPECT_TRUE(comp->variables.empty());
    }
}

TEST_F(ComponentsTest, InfluencesInTheOrderOfTheirDeclaration) {
    EXPECT_EQ(therm_fixture::names(T1->influences), (Texts{"T1.i1"}));
    EXPECT_EQ(therm_fixture::names(R1->influences),
              (Texts{"R1.i1", "R1.i2", "R1.i3", "R1.i4", "R1.i5", "R1.i6"}));
}

// ---- Variables and atoms ----

struct ExpectedAtom {
    char const* value;
    char const* key;
};

struct ExpectedVariable {
    char const* name;
    char const* type;
    std::set<std::string> domain;
    char const* standard;
    std::vector<ExpectedAtom> atoms;  // in the order of creation
};

std::vector<ExpectedVariable> const thermostatVariables = {
    {"thermostat.mode",
     "Mode",
     {"off", "on", "stuck_off", "stuck_on", "unknown"},
     "off",
     {{"off", "therm_mode_off"},
      {"on", "therm_mode_on"},
      {"stuck_on", "therm_mode_stuck_on"},
      {"stuck_off", "therm_mode_stuck_off"},
      {"unknown", "therm_mode_unknown"}}}};

std::vector<ExpectedVariable> const roomVariables = {
    {"room.cmdin",
     "Command",
     {"close", "none", "open"},
     "none",
     {{"none", "room_cmdin_none"}, {"open", "room_cmdin_open"}, {"close", "room_cmdin_close"}}},
    {"room.c1",
     "Cond",
     {"c10", "c11", "c12"},
     "c10",
     {{"c12", "room_c1_c12"}, {"c11", "room_c1_c11"}, {"c10", "room_c1_c10"}}},
    {"room.mode",
     "Mode",
     {"closed", "open", "unknown"},
     "closed",
     {{"closed", "room_mode_closed"},
      {"open", "room_mode_open"},
      {"unknown", "room_mode_unknown"}}}};

void expectVariable(StateVar const& variable, ExpectedVariable const& expected, Comp* comp) {
    SCOPED_TRACE(expected.name);
    EXPECT_EQ(variable.getName(), expected.name);
    EXPECT_EQ(variable.getType(), expected.type);
    EXPECT_EQ(variable.getValues(), expected.domain);
    EXPECT_EQ(variable.getDefault(), std::string(expected.name) + "=" + expected.standard);
    EXPECT_EQ(variable.getCurrentState(), expected.standard);
    EXPECT_EQ(variable.getComp(), comp);
    EXPECT_EQ(variable.symbName, "");
    EXPECT_EQ(variable.observation, "");
    EXPECT_FALSE(variable.observable);
    EXPECT_EQ(variable.guards, 0) << "counted at start-up";
}

void expectAtoms(StateVar const& variable, ExpectedVariable const& expected, Comp const& comp,
                 bool symbolic) {
    SCOPED_TRACE(expected.name);
    std::vector<Atom*> const& atoms = variable.getAtomLinks();
    ASSERT_EQ(atoms.size(), expected.atoms.size());
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        std::string const id = std::string(expected.name) + "=" + expected.atoms[i].value;
        EXPECT_EQ(atoms[i]->value, expected.atoms[i].value);
        EXPECT_EQ(atoms[i]->id, id);
        EXPECT_EQ(atoms[i]->getStateVar(), &variable);
        EXPECT_EQ(atoms[i]->linkIndex, static_cast<int>(i));
        auto const found = comp.atoms.find(symbolic ? expected.atoms[i].key : id.c_str());
        ASSERT_NE(found, comp.atoms.end()) << id;
        EXPECT_EQ(found->second, atoms[i]);
    }
}

void expectComponent(Comp* comp, std::vector<ExpectedVariable> const& expected) {
    auto const& variables = comp->getStateVariables();
    ASSERT_EQ(variables.size(), expected.size());
    std::size_t count = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        expectVariable(*variables[i], expected[i], comp);
        expectAtoms(*variables[i], expected[i], *comp, true);
        count += expected[i].atoms.size();
    }
    EXPECT_EQ(comp->atoms.size(), count) << "only symbolic keys before start-up";
}

TEST_F(ComponentsTest, VariablesAndAtomsOfTheThermostat) {
    expectComponent(T1, thermostatVariables);
}

TEST_F(ComponentsTest, VariablesAndAtomsOfTheRoom) {
    expectComponent(R1, roomVariables);
}

TEST(ThermStart, AtomsAreEnteredAgainByTheirIds) {
    StartedModel const model;
    for (std::size_t i = 0; i < roomVariables.size(); ++i)
        expectAtoms(*model.R1->getStateVariables()[i], roomVariables[i], *model.R1, false);
    expectAtoms(*model.T1->getStateVariables()[0], thermostatVariables[0], *model.T1, false);
    EXPECT_EQ(model.R1->atoms.size(), 9u);
    EXPECT_EQ(model.T1->atoms.size(), 5u);
}

// ---- Links to the continuous side ----

TEST_F(ComponentsTest, ElevenAtomsAreBridged) {
    for (Comp const* comp : {static_cast<Comp*>(R1), static_cast<Comp*>(T1)})
        for (auto const& variable : comp->getStateVariables())
            for (Atom const* atom : variable->getAtomLinks())
                EXPECT_EQ(atom->bridged, variable->getType() != "Command") << atom->id;
}

// The entries as ids and indices; the keys must be the atoms' own texts.
std::map<std::string, int> entries(CondMap const& map, StateVar const& variable) {
    std::map<std::string, int> found;
    EXPECT_EQ(map.size(), variable.getAtomLinks().size());
    for (Atom const* atom : variable.getAtomLinks()) {
        EXPECT_EQ(map.count(atom->getId()), 1u) << atom->id;
        auto const entry = map.find(atom->getId());
        if (entry != map.end())
            found[atom->value] = entry->second;
    }
    return found;
}

TEST_F(ComponentsTest, AtomsLeadToTheirConditions) {
    using Entries = std::map<std::string, int>;
    EXPECT_EQ(entries(T1->mode->condMap, *T1->mode),
              (Entries{{"off", 0}, {"on", 1}, {"stuck_on", 2}, {"stuck_off", 3}, {"unknown", 4}}));
    EXPECT_EQ(entries(R1->c1->condMap, *R1->c1), (Entries{{"c12", 6}, {"c11", 9}, {"c10", 10}}));
    EXPECT_EQ(entries(R1->mode->condMap, *R1->mode),
              (Entries{{"closed", 11}, {"open", 12}, {"unknown", 13}}));
}

TEST_F(ComponentsTest, TheConditionOfAnAtomNamesIt) {
    for (CondMap const* map : {&T1->mode->condMap, &R1->c1->condMap, &R1->mode->condMap})
        for (auto const& [id, index] : *map) {
            s_Condition const* condition = rt->condi.at(static_cast<std::size_t>(index));
            ASSERT_NE(condition->atom, nullptr);
            EXPECT_EQ(condition->atom->getId(), id);
        }
}

// ---- The initial state ----

TEST(ThermStart, TheInitialStateHoldsTheDefaults) {
    StartedModel const model;
    State const state(theRun().scheduler.book, &thePlant().active_atoms);
    Texts holding;
    for (auto const& entry : state.elts)
        if (entry.second->evalTrajEl())
            holding.emplace_back(entry.first);
    std::sort(holding.begin(), holding.end());
    EXPECT_EQ(holding,
              (Texts{"room.c1=c10", "room.cmdin=none", "room.mode=closed", "thermostat.mode=off"}));
    for (auto const& entry : state.elts)
        EXPECT_EQ(entry.second->getLabel(), entry.second->evalTrajEl() ? "true" : "false")
            << entry.first;
}

TEST(ThermStart, TheDefaultOfTheConditionVariableIsNotItsFirstAtom) {
    StartedModel const model;
    EXPECT_EQ(model.R1->c1->getCurrentState(), "c10");
    EXPECT_EQ(model.R1->c1->getAtomLinks().front()->value, "c12");
}

TEST(ThermStart, AllAtomsAreActive) {
    StartedModel const model;
    EXPECT_EQ(thePlant().active_atoms.size(), 14u);
    EXPECT_EQ(thePlant().active_atoms.find("room.mode=open")->second, model.R1->mode_open);
    EXPECT_EQ(thePlant().active_atoms.find("room.mode=open")->first, model.R1->mode_open->getId());
}

}  // namespace
