// The clauses of the reference model, and how the clauses of any variable are made.
//
// A bag is walked so that of literals of one sign the one entered last comes first.
#include <algorithm>

#include "fixtures/the_run.h"
#include "generated/therm_fixture.h"
#include "model/exclusiveChoice.h"

using therm_fixture::BuiltModel;
using therm_fixture::literals;
using therm_fixture::Texts;

namespace {

class ClausesTest : public testing::Test, protected BuiltModel {
protected:
    // The literals of a registered clause; true is a negation there.
    static Texts clause(std::size_t index) {
        return literals(thePlant().cls.at(index)->atoms, true);
    }
    static Texts notBoth(std::string const& variable, std::string const& a, std::string const& b) {
        return {"!" + variable + "=" + a, "!" + variable + "=" + b};
    }
};

TEST_F(ClausesTest, ThereAreTwentyThreeAndAllAreInternal) {
    // 10 pairs and 1 choice for five modes; 3 pairs and 1 choice for each of three variables.
    ASSERT_EQ(thePlant().cls.size(), 23u);
    for (auto const& clause : thePlant().cls)
        EXPECT_TRUE(clause->getInternal());
}

TEST_F(ClausesTest, OfTheThermostat) {
    std::vector<std::pair<char const*, char const*>> const pairs = {
        {"off", "on"},           {"off", "stuck_on"},       {"off", "stuck_off"},
        {"off", "unknown"},      {"on", "stuck_on"},        {"on", "stuck_off"},
        {"on", "unknown"},       {"stuck_on", "stuck_off"}, {"stuck_on", "unknown"},
        {"stuck_off", "unknown"}};
    for (std::size_t i = 0; i < pairs.size(); ++i)
        EXPECT_EQ(clause(i), notBoth("thermostat.mode", pairs[i].first, pairs[i].second)) << i;
    EXPECT_EQ(clause(10),
              (Texts{"thermostat.mode=off", "thermostat.mode=on", "thermostat.mode=stuck_on",
                     "thermostat.mode=stuck_off", "thermostat.mode=unknown"}));
}

TEST_F(ClausesTest, OfTheRoomVariableByVariable) {
    struct Variable {
        std::string name;
        std::string a, b, c;
    };
    std::size_t next = 11;
    for (Variable const& v :
         {Variable{"room.cmdin", "none", "open", "close"}, Variable{"room.c1", "c12", "c11", "c10"},
          Variable{"room.mode", "closed", "open", "unknown"}}) {
        EXPECT_EQ(clause(next), notBoth(v.name, v.a, v.b));
        EXPECT_EQ(clause(next + 1), notBoth(v.name, v.a, v.c));
        EXPECT_EQ(clause(next + 2), notBoth(v.name, v.b, v.c));
        EXPECT_EQ(clause(next + 3),
                  (Texts{v.name + "=" + v.a, v.name + "=" + v.b, v.name + "=" + v.c}));
        next += 4;
    }
}

TEST_F(ClausesTest, EachBelongsToItsVariableItsComponentAndItsAtoms) {
    std::size_t next = 0;
    for (StateVar* variable : {static_cast<StateVar*>(T1->mode), static_cast<StateVar*>(R1->cmdin),
                               static_cast<StateVar*>(R1->c1), static_cast<StateVar*>(R1->mode)})
        for (Clause* clause : variable->clauses) {
            EXPECT_EQ(clause, thePlant().cls.at(next++).get());
            EXPECT_EQ(clause->comp, variable->getComp());
            for (auto const& literal : clause->atoms) {
                auto const& known = literal.second->clauses;
                EXPECT_EQ(std::count(known.begin(), known.end(), clause), 1);
            }
        }
    EXPECT_EQ(next, 23u);
    EXPECT_EQ(T1->mode_on->clauses.size(), 5u) << "four pairs and the choice";
    EXPECT_EQ(R1->mode_open->clauses.size(), 3u);
}

// ---- Of any variable ----

class ExclusiveChoiceTest : public testing::Test {
protected:
    ~ExclusiveChoiceTest() override { thePlant().cls.clear(); }
    ModeVar* variable(std::vector<std::string> const& values) {
        auto* made = comp.addStateVar(std::make_unique<ModeVar>(
            "c.v", std::set<std::string>(values.begin(), values.end()), values.front(), &comp));
        for (std::string const& value : values)
            comp.newAtom(value.c_str(), made, value);
        return made;
    }

    Comp comp{"c"};
};

TEST_F(ExclusiveChoiceTest, TwoValuesMakeOnePairAndOneChoice) {
    ModeVar* v = variable({"a", "b"});
    addExclusiveChoice(thePlant(), v);
    ASSERT_EQ(v->clauses.size(), 2u);
    EXPECT_EQ(literals(v->clauses[0]->atoms, true), (Texts{"!c.v=a", "!c.v=b"}));
    EXPECT_EQ(literals(v->clauses[1]->atoms, true), (Texts{"c.v=a", "c.v=b"}));
    EXPECT_EQ(thePlant().cls.size(), 2u);
}

TEST_F(ExclusiveChoiceTest, ASingleValueMustHold) {
    ModeVar* v = variable({"a"});
    addExclusiveChoice(thePlant(), v);
    ASSERT_EQ(v->clauses.size(), 1u);
    EXPECT_EQ(literals(v->clauses[0]->atoms, true), (Texts{"c.v=a"}));
    EXPECT_TRUE(v->clauses[0]->getInternal());
    EXPECT_EQ(v->clauses[0]->comp, &comp);
}

// Any assignment of truth to the values satisfies the clauses exactly when one value is true.
TEST_F(ExclusiveChoiceTest, ExactlyOneValueHolds) {
    ModeVar* v = variable({"a", "b", "c", "d"});
    addExclusiveChoice(thePlant(), v);
    for (unsigned assignment = 0; assignment < 16; ++assignment) {
        bool satisfied = true;
        for (Clause const* clause : v->clauses) {
            bool any = false;
            for (auto const& [negated, atom] : clause->atoms)
                any = any || ((assignment >> atom->linkIndex & 1) == 1) != negated;
            satisfied = satisfied && any;
        }
        bool const one = assignment == 1 || assignment == 2 || assignment == 4 || assignment == 8;
        EXPECT_EQ(satisfied, one) << assignment;
    }
}

}  // namespace
