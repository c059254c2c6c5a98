// The sixteen transitions of the reference model: as they are built, how they are woven into the
// atoms, and what start-up derives from them.
#include "fixtures/the_run.h"
#include "generated/therm_fixture.h"

using therm_fixture::BuiltModel;
using therm_fixture::literals;
using therm_fixture::StartedModel;
using therm_fixture::Texts;

namespace {

struct Expected {
    Texts guard;  // in the order of a walk; "!" marks a negative literal
    char const* operat;
    char const* effect;
    char const* type;
    double proba;
    bool idle;
};

// Of two positive literals the one added last is walked first; a negative one after a positive one
// is walked last.
std::vector<Expected> const roomTransitions = {
    {{"room.mode=unknown"}, "", "room.mode=unknown", "Nominal", 1.0, true},
    {{"room.mode=open"}, "", "room.mode=open", "Nominal", 0.99, true},
    {{"room.mode=closed"}, "", "room.mode=closed", "Nominal", 0.99, true},
    {{"room.mode=open", "room.cmdin=close"}, "and", "room.mode=closed", "Nominal", 0.99, false},
    {{"room.mode=closed", "room.cmdin=open"}, "and", "room.mode=open", "Nominal", 0.99, false},
};

std::string const mode = "thermostat.mode=";

std::vector<Expected> const thermostatTransitions = {
    {{mode + "on"}, "", "thermostat.mode=unknown", "Fail", 0.001, false},
    {{mode + "off"}, "", "thermostat.mode=unknown", "Fail", 0.001, false},
    {{"room.c1=c12", mode + "on"}, "and", "thermostat.mode=stuck_on", "Fail", 0.01, false},
    {{"room.c1=c10", mode + "off"}, "and", "thermostat.mode=stuck_off", "Fail", 0.01, false},
    {{mode + "stuck_on"}, "", "thermostat.mode=stuck_on", "Nominal", 1.0, true},
    {{mode + "stuck_off"}, "", "thermostat.mode=stuck_off", "Nominal", 1.0, true},
    {{mode + "unknown"}, "", "thermostat.mode=unknown", "Nominal", 1.0, true},
    {{mode + "off", "!room.c1=c10"}, "and", "thermostat.mode=off", "Nominal", 0.999, true},
    {{mode + "on", "!room.c1=c12"}, "and", "thermostat.mode=on", "Nominal", 0.999, true},
    {{"room.c1=c12", mode + "on"}, "and", "thermostat.mode=off", "Nominal", 0.99, false},
    {{"room.c1=c10", mode + "off"}, "and", "thermostat.mode=on", "Nominal", 0.99, false},
};

void expectTransition(Transition const& transition, Expected const& expected) {
    EXPECT_EQ(literals(transition.pre->getAtoms(), false), expected.guard);
    EXPECT_EQ(transition.pre->getOperat(), expected.operat);
    EXPECT_TRUE(transition.pre->getStateFormulas().empty());
    EXPECT_FALSE(transition.pre->negated);
    EXPECT_EQ(literals(transition.post->getAtoms(), false), (Texts{expected.effect}));
    EXPECT_EQ(transition.post->getOperat(), "");
    EXPECT_EQ(transition.type, expected.type);
    EXPECT_EQ(transition.proba, expected.proba);
    EXPECT_EQ(transition.idle, expected.idle);
    EXPECT_EQ(transition.proba2, 0.0);
    EXPECT_EQ(transition.posts, nullptr);
    EXPECT_EQ(transition.nbPosts, 1);
    EXPECT_TRUE(transition.formulas.empty());
    EXPECT_TRUE(transition.mapFuncs.empty());
}

void expectTransitions(Comp const& comp, std::vector<Expected> const& expected) {
    auto const& transitions = comp.getCompTransitions();
    ASSERT_EQ(transitions.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(comp.name + " #" + std::to_string(i));
        expectTransition(*transitions[i], expected[i]);
    }
}

// The positions of transitions in their component: "R" or "T" and the number.
Texts positions(std::vector<Transition*> const& transitions, room const* R1, therm const* T1) {
    Texts texts;
    for (Transition const* transition : transitions) {
        std::string found = "?";
        for (Comp const* comp : {static_cast<Comp const*>(R1), static_cast<Comp const*>(T1)}) {
            auto const& own = comp->getCompTransitions();
            for (std::size_t i = 0; i < own.size(); ++i)
                if (own[i].get() == transition)
                    found = comp->symbol.substr(0, 1) + std::to_string(i);
        }
        texts.push_back(found);
    }
    return texts;
}

class TransitionsTest : public testing::Test, protected BuiltModel {
protected:
    Texts leaving(Atom const* atom) const { return positions(atom->getRefTransPre(), R1, T1); }
    Texts reaching(Atom const* atom) const { return positions(atom->getRefTransPost(), R1, T1); }
};

TEST_F(TransitionsTest, OfTheRoom) {
    expectTransitions(*R1, roomTransitions);
}

TEST_F(TransitionsTest, OfTheThermostat) {
    expectTransitions(*T1, thermostatTransitions);
}

TEST_F(TransitionsTest, EachMovesTheModeOfItsComponent) {
    for (Comp const* comp : {static_cast<Comp*>(R1), static_cast<Comp*>(T1)})
        for (auto const& transition : comp->getCompTransitions()) {
            StateVar const* expected = comp == R1 ? static_cast<StateVar*>(R1->mode) : T1->mode;
            EXPECT_EQ(transition->modeVar, expected);
            ASSERT_NE(transition->preMode, nullptr);
            ASSERT_NE(transition->postMode, nullptr);
            EXPECT_EQ(transition->preMode->getStateVar(), expected);
            EXPECT_EQ(transition->postMode, transition->post->getAllAtoms().front());
        }
    EXPECT_EQ(R1->getCompTransitions()[3]->preMode, R1->mode_open);
    EXPECT_EQ(T1->getCompTransitions()[10]->preMode, T1->mode_off);
}

TEST_F(TransitionsTest, OnlyTheUnknownModesAreUnknownEffects) {
    EXPECT_EQ(R1->getCompTransitions()[0]->unknownPost, true);
    EXPECT_EQ(R1->getCompTransitions()[1]->unknownPost, false);
    for (std::size_t i = 0; i < 11; ++i)
        EXPECT_EQ(T1->getCompTransitions()[i]->unknownPost, i == 0 || i == 1 || i == 6) << i;
}

// ---- Links in the atoms ----

TEST_F(TransitionsTest, WhatLeavesTheAtomsOfTheModes) {
    EXPECT_EQ(leaving(R1->mode_closed), (Texts{"R2", "R4"}));
    EXPECT_EQ(leaving(R1->mode_open), (Texts{"R1", "R3"}));
    EXPECT_EQ(leaving(R1->mode_unknown), (Texts{"R0"}));
    EXPECT_EQ(leaving(T1->mode_off), (Texts{"T1", "T3", "T7", "T10"}));
    EXPECT_EQ(leaving(T1->mode_on), (Texts{"T0", "T2", "T8", "T9"}));
    EXPECT_EQ(leaving(T1->mode_stuck_on), (Texts{"T4"}));
    EXPECT_EQ(leaving(T1->mode_stuck_off), (Texts{"T5"}));
    EXPECT_EQ(leaving(T1->mode_unknown), (Texts{"T6"}));
}

TEST_F(TransitionsTest, WhatLeavesTheAtomsOfTheCommand) {
    EXPECT_EQ(leaving(R1->cmdin_none), (Texts{}));
    EXPECT_EQ(leaving(R1->cmdin_open), (Texts{"R4"}));
    EXPECT_EQ(leaving(R1->cmdin_close), (Texts{"R3"}));
}

// Transition 7 says "not c10": it leaves c12 and c11. Transition 8 says "not c12": c11 and c10. The
// six literals are added in the order 2, 3, 7, 8, 9, 10.
TEST_F(TransitionsTest, WhatLeavesTheAtomsOfTheConditionVariable) {
    EXPECT_EQ(leaving(R1->c1_c12), (Texts{"T2", "T7", "T9"}));
    EXPECT_EQ(leaving(R1->c1_c11), (Texts{"T7", "T8"}));
    EXPECT_EQ(leaving(R1->c1_c10), (Texts{"T3", "T8", "T10"}));
}

TEST_F(TransitionsTest, WhatReachesTheAtoms) {
    EXPECT_EQ(reaching(R1->mode_closed), (Texts{"R2", "R3"}));
    EXPECT_EQ(reaching(R1->mode_open), (Texts{"R1", "R4"}));
    EXPECT_EQ(reaching(R1->mode_unknown), (Texts{"R0"}));
    EXPECT_EQ(reaching(T1->mode_off), (Texts{"T7", "T9"}));
    EXPECT_EQ(reaching(T1->mode_on), (Texts{"T8", "T10"}));
    EXPECT_EQ(reaching(T1->mode_stuck_on), (Texts{"T2", "T4"}));
    EXPECT_EQ(reaching(T1->mode_stuck_off), (Texts{"T3", "T5"}));
    EXPECT_EQ(reaching(T1->mode_unknown), (Texts{"T0", "T1", "T6"}));
    for (Atom const* atom :
         {R1->cmdin_none, R1->cmdin_open, R1->cmdin_close, R1->c1_c12, R1->c1_c11, R1->c1_c10})
        EXPECT_EQ(reaching(atom), (Texts{})) << atom->id;
}

TEST_F(TransitionsTest, WhatKeepsTheModes) {
    Texts kept;
    for (Atom const* atom : {R1->mode_unknown, R1->mode_open, R1->mode_closed, T1->mode_stuck_on,
                             T1->mode_stuck_off, T1->mode_unknown, T1->mode_off, T1->mode_on})
        kept.push_back(positions({atom->idleTrans}, R1, T1).front());
    EXPECT_EQ(kept, (Texts{"R0", "R1", "R2", "T4", "T5", "T6", "T7", "T8"}));
    EXPECT_EQ(R1->cmdin_none->idleTrans, nullptr);
    EXPECT_EQ(R1->c1_c10->idleTrans, nullptr);
}

TEST_F(TransitionsTest, OnlyFaultModesAreFailures) {
    for (Comp const* comp : {static_cast<Comp*>(R1), static_cast<Comp*>(T1)})
        for (auto const& entry : comp->atoms) {
            Atom const* atom = entry.second;
            bool const fault =
                atom == T1->mode_unknown || atom == T1->mode_stuck_on || atom == T1->mode_stuck_off;
            EXPECT_EQ(atom->failure, fault) << atom->id;
        }
}

// Together they come to 1.001: the unknown mode stands beside the other two.
TEST_F(TransitionsTest, WhatLeavesTheHeatingThermostatInAWarmRoom) {
    auto const& transitions = T1->getCompTransitions();
    EXPECT_DOUBLE_EQ(transitions[0]->proba + transitions[2]->proba + transitions[9]->proba, 1.001);
}

// ---- What start-up derives ----

class StartedTransitionsTest : public testing::Test, protected StartedModel {};

// In the table of components the thermostat has place 98, the room place 126.
TEST_F(StartedTransitionsTest, AreNumberedThroughTheThermostatFirst) {
    ASSERT_EQ(thePlant().active_trans.size(), 16u);
    int id = 0;
    for (Comp const* comp : {static_cast<Comp*>(T1), static_cast<Comp*>(R1)})
        for (auto const& transition : comp->getCompTransitions()) {
            EXPECT_EQ(transition->id, id);
            EXPECT_EQ(thePlant().active_trans[id], transition.get());
            ++id;
        }
}

TEST_F(StartedTransitionsTest, WeighTheirShareOfTheComponent) {
    for (std::size_t i = 0; i < 11; ++i)
        EXPECT_DOUBLE_EQ(T1->getCompTransitions()[i]->weight,
                         thermostatTransitions[i].proba / 11.0);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_DOUBLE_EQ(R1->getCompTransitions()[i]->weight, roomTransitions[i].proba / 5.0);
}

TEST_F(StartedTransitionsTest, GuardsAreCounted) {
    EXPECT_EQ(T1->mode->guards, 11);
    EXPECT_EQ(T1->mode_on->guards, 4u);
    EXPECT_EQ(T1->mode_off->guards, 4u);
    EXPECT_EQ(T1->mode_stuck_on->guards, 1u);
    EXPECT_EQ(T1->mode_stuck_off->guards, 1u);
    EXPECT_EQ(T1->mode_unknown->guards, 1u);
    EXPECT_EQ(R1->mode->guards, 3);
    EXPECT_EQ(R1->mode_closed->guards, 1u);
    EXPECT_EQ(R1->mode_open->guards, 1u);
    EXPECT_EQ(R1->mode_unknown->guards, 1u);
    EXPECT_EQ(R1->cmdin->guards, 0);
    EXPECT_EQ(R1->c1->guards, 0);
}

TEST_F(StartedTransitionsTest, GuardProbabilitiesAreSharesOfTheGuards) {
    for (std::size_t i = 0; i < 11; ++i)
        EXPECT_DOUBLE_EQ(T1->getCompTransitions()[i]->guardProba,
                         thermostatTransitions[i].proba / 11.0);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_DOUBLE_EQ(R1->getCompTransitions()[i]->guardProba, roomTransitions[i].proba / 3.0);
}

// Idle and failing transitions without a command can happen at any time; the moves of the room wait
// for a command, and those of the thermostat are nominal.
TEST_F(StartedTransitionsTest, OnlyNominalMovesStayUnconditional) {
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(R1->getCompTransitions()[i]->unconditional, i >= 3) << i;
    for (std::size_t i = 0; i < 11; ++i)
        EXPECT_EQ(T1->getCompTransitions()[i]->unconditional, i >= 9) << i;
}

TEST_F(StartedTransitionsTest, ShowTheirGuardsWithBothLiterals) {
    testing::internal::CaptureStdout();
    T1->getCompTransitions()[7]->showTransition(std::cout);
    R1->getCompTransitions()[3]->showTransition(std::cout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Nominal (0.999) (idle) : (thermostat.mode=off and !room.c1=c10 and ) =>O  and "
              "(thermostat.mode=off  ) -- 7\n"
              "Nominal (0.99) : (room.mode=open and room.cmdin=close and ) =>O  and "
              "(room.mode=closed  ) -- 14\n");
}

}  // namespace
