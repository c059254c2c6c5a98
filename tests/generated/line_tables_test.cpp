// The feed line as it is built, beside the tables of docs/line.md, written out by hand here. Not
// only what is there counts, but also its order: that of components and atoms decides the order of
// what is told, and that of clauses and their literals which repair of a violated clause is tried
// first.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "fixtures/line.h"
#include "fixtures/the_run.h"
#include "generated/therm_fixture.h"
#include "model/CommandVar.h"

using therm_fixture::literals;
using therm_fixture::Texts;

namespace {

struct ExpectedVariable {
    std::string name, type;
    Texts values;  // in the order of the atoms; it starts in the first
};

struct ExpectedMove {
    Texts guard;  // with "!" before a literal that must not hold
    std::string effect, type;
    double proba;
    bool idle;
};

struct ExpectedClause {
    Texts literals;  // as above
    bool internal;
};

Texts numbered(int count, std::string const& before, std::string const& after = "") {
    Texts texts;
    for (int i = 1; i <= count; ++i)
        texts.push_back(before + std::to_string(i) + after);
    return texts;
}

// ---- The tables ----

std::vector<ExpectedVariable> const pumpVariables = {
    {"cmd", "Command", {"none", "start", "stop"}},
    {"mode", "Mode", {"off", "on", "failed", "unknown"}}};
std::vector<ExpectedVariable> const valveVariables = {
    {"cmd", "Command", {"none", "open", "close"}},
    {"mode", "Mode", {"closed", "open", "stuck_closed", "stuck_open", "unknown"}},
    {"passage", "Observable", {"shut", "through"}}};
std::vector<ExpectedVariable> const sensorVariables = {
    {"flow", "Observable", {"zero", "positive"}}};

std::vector<ExpectedMove> const pumpMoves = {
    {{"mode=off"}, "mode=unknown", "Fail", 0.001, false},
    {{"mode=on"}, "mode=failed", "Fail", 0.01, false},
    {{"mode=on"}, "mode=unknown", "Fail", 0.001, false},
    {{"mode=failed"}, "mode=failed", "Nominal", 1.0, true},
    {{"mode=unknown"}, "mode=unknown", "Nominal", 1.0, true},
    {{"mode=off", "cmd=start"}, "mode=on", "Nominal", 0.999, false},
    {{"mode=off", "!cmd=start"}, "mode=off", "Nominal", 0.999, true},
    {{"mode=on", "cmd=stop"}, "mode=off", "Nominal", 0.989, false},
    {{"mode=on", "!cmd=stop"}, "mode=on", "Nominal", 0.989, true}};
std::vector<ExpectedMove> const valveMoves = {
    {{"mode=closed"}, "mode=stuck_closed", "Fail", 0.01, false},
    {{"mode=closed"}, "mode=unknown", "Fail", 0.001, false},
    {{"mode=open"}, "mode=stuck_open", "Fail", 0.01, false},
    {{"mode=open"}, "mode=unknown", "Fail", 0.001, false},
    {{"mode=stuck_closed"}, "mode=stuck_closed", "Nominal", 1.0, true},
    {{"mode=stuck_open"}, "mode=stuck_open", "Nominal", 1.0, true},
    {{"mode=unknown"}, "mode=unknown", "Nominal", 1.0, true},
    {{"mode=closed", "cmd=open"}, "mode=open", "Nominal", 0.989, false},
    {{"mode=closed", "!cmd=open"}, "mode=closed", "Nominal", 0.989, true},
    {{"mode=open", "cmd=close"}, "mode=closed", "Nominal", 0.989, false},
    {{"mode=open", "!cmd=close"}, "mode=open", "Nominal", 0.989, true}};

void addChoice(std::string const& comp, ExpectedVariable const& variable,
               std::vector<ExpectedClause>& all) {
    Texts ids;
    for (std::string const& value : variable.values)
        ids.push_back(comp + "." + variable.name + "=" + value);
    for (std::size_t i = 0; i < ids.size(); ++i)
        for (std::size_t j = i + 1; j < ids.size(); ++j)
            all.push_back({{"!" + ids[i], "!" + ids[j]}, true});
    all.push_back({ids, true});
}

std::vector<ExpectedClause> clausesOf(int valves) {
    std::vector<ExpectedClause> all;
    for (ExpectedVariable const& variable : pumpVariables)
        addChoice("pump", variable, all);
    addChoice("sensor", sensorVariables[0], all);
    for (std::string const& valve : numbered(valves, "valve")) {
        for (ExpectedVariable const& variable : valveVariables)
            addChoice(valve, variable, all);
        for (char const* mode : {"open", "stuck_open"})
            all.push_back({{valve + ".passage=through", "!" + valve + ".mode=" + mode}, false});
        for (char const* mode : {"closed", "stuck_closed", "unknown"})
            all.push_back({{valve + ".passage=shut", "!" + valve + ".mode=" + mode}, false});
    }
    for (char const* mode : {"off", "failed", "unknown"})
        all.push_back({{"sensor.flow=zero", std::string("!pump.mode=") + mode}, false});
    all.push_back({{"pump.mode=on", "!sensor.flow=positive"}, false});
    Texts allThrough{"sensor.flow=positive", "!pump.mode=on"};
    for (std::string const& valve : numbered(valves, "valve")) {
        for (char const* mode : {"closed", "stuck_closed", "unknown"})
            all.push_back({{"sensor.flow=zero", "!" + valve + ".mode=" + mode}, false});
        all.push_back({{valve + ".passage=through", "!sensor.flow=positive"}, false});
        allThrough.push_back("!" + valve + ".passage=through");
    }
    all.push_back({allThrough, false});
    return all;
}

// ---- The line beside them ----

class LineTablesTest : public testing::TestWithParam<int> {
protected:
    LineTablesTest() {
        newPlant("line");
        buildLine(&theRun().scheduler, valves);
    }
    ~LineTablesTest() override { endPlant(); }

    // The atom of a literal; *marked* is the sign of one with "!".
    static std::pair<bool, Atom*> literal(std::string const& text, bool marked) {
        bool const isMarked = text.front() == '!';
        std::string const id = isMarked ? text.substr(1) : text;
        for (auto const& entry : thePlant().active_comps)
            for (auto const& variable : entry.second->getStateVariables())
                for (Atom* atom : variable->getAtomLinks())
                    if (atom->id == id)
                        return {isMarked == marked, atom};
        ADD_FAILURE() << "there is no " << id;
        return {};
    }
    // A bag is walked in an order of its own, which follows from the order of the literals.
    static Texts walked(Texts const& texts, bool marked) {
        SignedAtoms bag;
        for (std::string const& text : texts)
            bag.insert(literal(text, marked));
        return literals(bag, marked);
    }
    static void expectVariables(Comp* comp, std::vector<ExpectedVariable> const& expected);
    static void expectMoves(Comp const& comp, std::vector<ExpectedMove> const& expected);
    static void expectFailures(Comp const& comp, std::set<std::string> const& expected);

    int const valves = GetParam();
};

void LineTablesTest::expectVariables(Comp* comp, std::vector<ExpectedVariable> const& expected) {
    SCOPED_TRACE(comp->name);
    auto const& variables = comp->getStateVariables();
    ASSERT_EQ(variables.size(), expected.size());
    std::size_t atoms = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        std::string const name = comp->name + "." + expected[i].name;
        EXPECT_EQ(variables[i]->getName(), name);
        EXPECT_EQ(variables[i]->getType(), expected[i].type);
        EXPECT_EQ(variables[i]->getDefault(), name + "=" + expected[i].values.front());
        EXPECT_EQ(variables[i]->getCurrentState(), expected[i].values.front());
        EXPECT_EQ(variables[i]->getComp(), comp);
        Texts values;
        for (Atom const* atom : variables[i]->getAtomLinks()) {
            auto const key = comp->className + "_" + expected[i].name + "_" + atom->value;
            auto const found = comp->atoms.find(key.c_str());
            ASSERT_NE(found, comp->atoms.end()) << key;
            EXPECT_EQ(found->second, atom);
            EXPECT_EQ(atom->id, name + "=" + atom->value);
            EXPECT_FALSE(atom->bridged) << "there is no continuous side";
            values.push_back(atom->value);
        }
        EXPECT_EQ(values, expected[i].values);
        atoms += values.size();
    }
    EXPECT_EQ(comp->atoms.size(), atoms);
}

void LineTablesTest::expectMoves(Comp const& comp, std::vector<ExpectedMove> const& expected) {
    auto const full = [&comp](std::string const& text) {
        return text.front() == '!' ? "!" + comp.name + "." + text.substr(1)
                                   : comp.name + "." + text;
    };
    auto const& moves = comp.getCompTransitions();
    ASSERT_EQ(moves.size(), expected.size());
    for (std::size_t i = 0; i < moves.size(); ++i) {
        SCOPED_TRACE(comp.name + " #" + std::to_string(i));
        Texts guard;
        for (std::string const& text : expected[i].guard)
            guard.push_back(full(text));
        EXPECT_EQ(literals(moves[i]->pre->getAtoms(), false), walked(guard, false));
        EXPECT_EQ(moves[i]->pre->getOperat(), guard.size() > 1 ? "and" : "");
        EXPECT_EQ(literals(moves[i]->post->getAtoms(), false), (Texts{full(expected[i].effect)}));
        EXPECT_EQ(moves[i]->type, expected[i].type);
        EXPECT_DOUBLE_EQ(moves[i]->proba, expected[i].proba);
        EXPECT_EQ(moves[i]->idle, expected[i].idle);
        EXPECT_EQ(moves[i]->preMode, literal(guard.front(), false).second);
        EXPECT_EQ(moves[i]->postMode, literal(full(expected[i].effect), false).second);
        EXPECT_TRUE(moves[i]->mapFuncs.empty());
        bool const keeps = moves[i]->preMode->idleTrans == moves[i].get();
        EXPECT_EQ(keeps, expected[i].idle);
    }
}

void LineTablesTest::expectFailures(Comp const& comp, std::set<std::string> const& expected) {
    std::set<std::string> failures;
    for (auto const& entry : comp.atoms)
        if (entry.second->failure)
            failures.insert(entry.second->value);
    EXPECT_EQ(failures, expected) << comp.name;
}

TEST_P(LineTablesTest, Components) {
    Texts found, expected{"pump pump P1", "sensor sensor S1"};
    for (std::string const& number : numbered(valves, ""))
        expected.push_back("valve" + number + " valve V" + number);
    for (auto const& entry : thePlant().active_comps)
        found.push_back(entry.second->name + " " + entry.second->className + " " +
                        entry.second->symbol);
    EXPECT_EQ(found, expected);
    EXPECT_EQ(thePlant().tavro_rt, nullptr);
}

TEST_P(LineTablesTest, EachComponentIsANeighbourOfTheSensor) {
    auto const neighbours = [](std::string const& name) {
        Texts names;
        for (Comp const* neighbour : theComp(name.c_str())->neighbours)
            names.push_back(neighbour->name);
        return names;
    };
    Texts all = numbered(valves, "valve");
    for (std::string const& valve : all)
        EXPECT_EQ(neighbours(valve), Texts{"sensor"});
    EXPECT_EQ(neighbours("pump"), Texts{"sensor"});
    all.insert(all.begin(), "pump");
    EXPECT_EQ(neighbours("sensor"), all);
}

TEST_P(LineTablesTest, Variables) {
    expectVariables(theComp("pump"), pumpVariables);
    expectVariables(theComp("sensor"), sensorVariables);
    for (std::string const& valve : numbered(valves, "valve"))
        expectVariables(theComp(valve.c_str()), valveVariables);
}

TEST_P(LineTablesTest, Commands) {
    auto const ownCommand = [](Comp const& comp) {
        ASSERT_EQ(comp.commands.size(), 1u);
        EXPECT_EQ(comp.commands[0], comp.getStateVariable(comp.name + ".cmd"));
    };
    ownCommand(*theComp("pump"));
    for (std::string const& valve : numbered(valves, "valve"))
        ownCommand(*theComp(valve.c_str()));
    EXPECT_TRUE(theComp("sensor")->commands.empty());
    for (auto const& entry : thePlant().active_comps)
        EXPECT_TRUE(entry.second->importedCommands.empty());
}

TEST_P(LineTablesTest, Clauses) {
    std::vector<ExpectedClause> const expected = clausesOf(valves);
    // 18 and 26 for each valve: the tables count 70 for two.
    ASSERT_EQ(expected.size(), 18u + 26u * static_cast<unsigned>(valves));
    ASSERT_EQ(thePlant().cls.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        Clause const* clause = thePlant().cls[i].get();
        // Choices are entered so that they are walked in the order of the values.
        bool const isChoice = expected[i].internal;
        EXPECT_EQ(literals(clause->atoms, true),
                  isChoice ? expected[i].literals : walked(expected[i].literals, true))
            << i;
        EXPECT_EQ(clause->internal, isChoice) << i;
        for (auto const& entry : clause->atoms) {
            auto const& known = entry.second->clauses;
            EXPECT_EQ(std::count(known.begin(), known.end(), clause), 1) << i;
        }
    }
}

// A clause within one component belongs to it, one between several to the sensor.
TEST_P(LineTablesTest, ComponentsOfTheClauses) {
    for (auto const& clause : thePlant().cls) {
        std::set<Comp*> touched;
        for (auto const& entry : clause->atoms)
            touched.insert(entry.second->getStateVar()->getComp());
        EXPECT_EQ(clause->comp, touched.size() == 1 ? *touched.begin() : theComp("sensor"));
    }
}

TEST_P(LineTablesTest, Moves) {
    expectMoves(*theComp("pump"), pumpMoves);
    expectMoves(*theComp("sensor"), {});
    for (std::string const& valve : numbered(valves, "valve"))
        expectMoves(*theComp(valve.c_str()), valveMoves);
}

TEST_P(LineTablesTest, Failures) {
    expectFailures(*theComp("pump"), {"failed", "unknown"});
    expectFailures(*theComp("sensor"), {});
    for (std::string const& valve : numbered(valves, "valve"))
        expectFailures(*theComp(valve.c_str()), {"stuck_closed", "stuck_open", "unknown"});
}

INSTANTIATE_TEST_SUITE_P(Valves, LineTablesTest, testing::Values(2, 3));

// As many valves as the text says: two.
TEST(LineModelTest, HasTwoValves) {
    Host silent;
    auto const plant = buildPlant(line_model, silent);
    EXPECT_EQ(plant->name, "line");
    EXPECT_EQ(plant->active_comps.size(), 4u);
    EXPECT_EQ(plant->cls.size(), 70u);
}

}  // namespace
