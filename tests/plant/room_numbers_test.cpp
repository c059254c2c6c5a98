// Every number that the builder computes for the room, against the model's tables written out by
// hand: numbers of conditions, of constraints, and what the atoms lead to.
#include <gtest/gtest.h>

#include "plant/plant_fixture.h"

using plant_fixture::Room;
using plant_fixture::Texts;

namespace {

class RoomNumbersTest : public testing::Test, protected Room {
protected:
    s_Condition const& condition(std::size_t i) const { return *rt().condi.at(i); }
    // The entry of condMap of one atom.
    int linked(char const* id) const {
        std::vector<int> const found = plant_fixture::linksOf(atom(id));
        EXPECT_EQ(found.size(), 1u) << id;
        return found.empty() ? -1 : found.front();
    }
};

// kind, atom, atomRef, and for a comparison its constraint.
struct Row {
    int kind;
    char const* atom;  // "" for none
    int atomRef;
    int constraint;  // -1 for none
};

std::vector<Row> const conditionTable = {
    {COND_ATOM, "thermostat.mode=off", 0, -1},
    {COND_ATOM, "thermostat.mode=on", 0, -1},
    {COND_ATOM, "thermostat.mode=stuck_on", 0, -1},
    {COND_ATOM, "thermostat.mode=stuck_off", 0, -1},
    {COND_ATOM, "thermostat.mode=unknown", 0, -1},
    {COND_OR, "", 6, -1},
    {COND_EXPR, "room.c1=c12", 5, 3},
    {COND_EXPR, "", 2, 1},
    {COND_EXPR, "", 3, 2},
    {COND_AND, "room.c1=c11", 4, -1},
    {COND_EXPR, "room.c1=c10", 1, 0},
    {COND_ATOM, "room.mode=closed", 0, -1},
    {COND_ATOM, "room.mode=open", 0, -1},
    {COND_ATOM, "room.mode=unknown", 0, -1},
    {COND_OR, "", 9, -1},
    {COND_OR, "", 10, -1},
};

TEST_F(RoomNumbersTest, ConditionsInOrderWithTheirConstraintsAndReferences) {
    ASSERT_EQ(rt().condi.size(), 16u);
    for (std::size_t i = 0; i < conditionTable.size(); ++i) {
        SCOPED_TRACE(i);
        Row const& row = conditionTable[i];
        EXPECT_EQ(condition(i).kind, row.kind);
        EXPECT_EQ(condition(i).atom == nullptr ? "" : condition(i).atom->id, row.atom);
        EXPECT_EQ(condition(i).atomRef, row.atomRef);
        EXPECT_EQ(condition(i).acIdx,
                  row.constraint < 0 ? std::vector<int>{} : std::vector<int>{row.constraint});
    }
}

TEST_F(RoomNumbersTest, OperandsOfConditions) {
    EXPECT_EQ(condition(9).left, rt().condi[7]);
    EXPECT_EQ(condition(9).right, rt().condi[8]);
    EXPECT_EQ(condition(14).left, rt().condi[3]);
    EXPECT_EQ(condition(14).right, rt().condi[0]);
    EXPECT_EQ(condition(5).left->atom->id, "thermostat.mode=stuck_on");
    EXPECT_EQ(condition(5).right->atom->id, "thermostat.mode=on");
    EXPECT_EQ(condition(15).left->atom->id, "room.mode=closed");
    EXPECT_EQ(condition(15).right->atom->id, "room.mode=open");
    // Four operands stand outside the numbered conditions.
    EXPECT_EQ(rt().condPool.size(), 20u);
}

TEST_F(RoomNumbersTest, AtomsLeadToConditions) {
    EXPECT_EQ(linked("thermostat.mode=off"), 0);
    EXPECT_EQ(linked("thermostat.mode=on"), 1);
    EXPECT_EQ(linked("thermostat.mode=stuck_on"), 2);
    EXPECT_EQ(linked("thermostat.mode=stuck_off"), 3);
    EXPECT_EQ(linked("thermostat.mode=unknown"), 4);
    EXPECT_EQ(linked("room.c1=c12"), 6);
    EXPECT_EQ(linked("room.c1=c11"), 9);
    EXPECT_EQ(linked("room.c1=c10"), 10);
    EXPECT_EQ(linked("room.mode=closed"), 11);
    EXPECT_EQ(linked("room.mode=open"), 12);
    EXPECT_EQ(linked("room.mode=unknown"), 13);
}

TEST_F(RoomNumbersTest, TheTemperatureIsBoundedAndConstrained) {
    EXPECT_EQ(variable("room.x")->varConds, (std::vector<int>{6, 9, 10}));
    ASSERT_EQ(rt().gV.size(), 1u);
    EXPECT_EQ(rt().gV[0]->var, variable("room.x"));
    EXPECT_EQ(rt().gV[0]->acIdx, (std::vector<int>{4, 0, 1, 2, 3}));
    EXPECT_TRUE(rt().gV[0]->gcIdx.empty()) << "no global constraint";
    for (char const* nom : {"room.xd", "room.xdq", "room.xext", "thermostat.h"})
        EXPECT_TRUE(variable(nom)->varConds.empty()) << nom;
}

TEST_F(RoomNumbersTest, RecordsStandInTheOrderOfTheTables) {
    Texts variables, influences;
    for (auto const& entry : rt().dico)
        variables.push_back(entry->nom + " " + std::to_string(entry->slot));
    EXPECT_EQ(variables,
              (Texts{"thermostat.h 0", "room.xd 1", "room.x 2", "room.xdq 3", "room.xext 4",
                     "room.Qc 5", "room.Qo 6", "room.m 7", "room.M 8", "room.un 9"}));
    for (auto const& entry : rt().influ)
        influences.push_back(entry->nom + " " + std::to_string(entry->slot));
    EXPECT_EQ(influences,
              (Texts{"T1.i1 0", "R1.i1 1", "R1.i2 2", "R1.i3 3", "R1.i4 4", "R1.i5 5", "R1.i6 6"}));
}

// "causes > effects" of a node, and its place.
TEST_F(RoomNumbersTest, CausesAndEffectsOfEveryNode) {
    Texts nodes;
    for (auto const& entry : rt().dico) {
        if (entry->graph == nullptr)
            continue;
        std::string text = std::to_string(entry->graph->slot) + " " + entry->nom + ":";
        for (s_Influence const* cause : entry->graph->causes)
            text += " " + cause->nom;
        text += " >";
        for (s_Influence const* effect : entry->graph->effects)
            text += " " + effect->nom;
        nodes.push_back(text);
    }
    EXPECT_EQ(nodes,
              (Texts{"0 thermostat.h: > T1.i1", "1 room.xd: R1.i5 R1.i4 R1.i3 > R1.i2",
                     "2 room.x: R1.i2 > R1.i6", "3 room.xdq: T1.i1 R1.i6 R1.i1 > R1.i5 R1.i4",
                     "4 room.xext: > R1.i1", "5 room.un: > R1.i3"}));
    EXPECT_EQ(variable("room.xd")->graph->kind, INF_STATIC);
    EXPECT_EQ(variable("room.x")->graph->kind, INF_INTEGRAL);
    EXPECT_EQ(variable("room.xdq")->graph->kind, INF_STATIC) << "two of its causes are couplings";
}

TEST_F(RoomNumbersTest, HistoriesSpanTheWindowAndTheDelay) {
    for (auto const& entry : rt().dico)
        EXPECT_EQ(entry->histLen(), entry->nom == "room.x" ? 301 : 300) << entry->nom;
}

}  // namespace
