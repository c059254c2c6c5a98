// The selectors of `print` on the reference model: which one decides, what it shows, and where.
// What the printers themselves write is tested with the engine.
#include "console/run.h"
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

namespace {

using hybrid_fixture::RoomRun;
using hybrid_fixture::Streams;
using hybrid_fixture::streamsOf;

Streams shown(char const* arg) {
    return streamsOf([arg] { snPrint(arg); });
}

// What is shown by *selector* is *heading* and the runtime's list, and nothing else.
void expectList(char const* selector, std::string const& heading,
                void (*print)(s_Printer const&, s_runtime const*), s_runtime const* rt) {
    Streams const expected = streamsOf([=] { print(peoplePrinter(theRun().engine), rt); });
    Streams const actual = shown(selector);
    EXPECT_EQ(actual.err, heading + expected.err) << selector;
    EXPECT_EQ(actual.out, expected.out) << selector;
}

class Show : public testing::Test {
protected:
    ReferenceModel model;
};

// ---- Each selector, on the model's own runtime ----

TEST_F(Show, TheDictionary) {
    Streams const text = shown("dictionary");
    EXPECT_EQ(text.err,
              "Dictionary:\n"
              "  thermostat.h:  parameter  =20; history length = 300*Ts\n"
              "  room.xd: measured, display; variable in  [-oo, +oo]; history length = 300*Ts\n"
              "  room.x: display; variable in  [-oo, +oo]; history length = 301*Ts\n"
              "  room.xdq:  variable in  [-oo, +oo]; history length = 300*Ts\n"
              "  room.xext:  parameter  =4; history length = 300*Ts\n"
              "  room.Qc:  parameter  =0.05; history length = 300*Ts\n"
              "  room.Qo:  parameter  =0.0002; history length = 300*Ts\n"
              "  room.m:  parameter  =10; history length = 300*Ts\n"
              "  room.M:  parameter  =17; history length = 300*Ts\n"
              "  room.un:  parameter  =1; history length = 300*Ts\n");
    EXPECT_EQ(text.out, "");
}

TEST_F(Show, Values) {
    EXPECT_EQ(shown("space").err, "Current space:\n  room.xd ?\n  room.x ?\n  room.xdq ?\n");
    EXPECT_EQ(shown("displays").err, "Displays:\n  room.xd ?\n  room.x ?\n");
    EXPECT_EQ(shown("measures").err, "Measure:\n  room.xd ?\n");
}

TEST_F(Show, ListsThatMayBeEmpty) {
    EXPECT_EQ(shown("inputs").err, "No inputs.\n");
    EXPECT_EQ(shown("initials").err, "Initializations:\n  room.x =4\n");
    s_Variable* x = ReferenceModel::variable(theRun().tavro_rt, "room.x");
    theRun().tavro_rt->input = {x};
    theRun().tavro_rt->init.clear();
    EXPECT_EQ(shown("inputs").err, "Inputs:\n  room.x ?\n");
    EXPECT_EQ(shown("initials").err, "No initializations.\n");
    theRun().tavro_rt->measure.clear();
    EXPECT_EQ(shown("measures").err, "No measure variables.\n");
}

TEST_F(Show, TheCausalGraph) {
    EXPECT_EQ(shown("graph").err,
              "Causal graph:\n"
              "  thermostat.h:\n    no causes;\n    effects: T1.i1; \n"
              "  room.xd:\n    causes (static): R1.i5; R1.i4; R1.i3; \n    effects: R1.i2; \n"
              "  room.x:\n    causes (integral): R1.i2; \n    effects: R1.i6; \n"
              "  room.xdq:\n    causes (static): T1.i1; R1.i6; R1.i1; \n"
              "    effects: R1.i5; R1.i4; \n"
              "  room.xext:\n    no causes;\n    effects: R1.i1; \n"
              "  room.un:\n    no causes;\n    effects: R1.i3; \n");
}

TEST_F(Show, TheUpdatingSequenceAndTheConstraints) {
    EXPECT_EQ(shown("update").err,
              "Updating sequence: \n Temporal listsorn: room.x;\n"
              " Untemporal listsorn: room.xdq, room.xd;\n");
    EXPECT_EQ(shown("global").err,
              "Global constraints variables:\n  room.x;\nGlobal constraints:\n");
}

TEST_F(Show, ConditionsAndInfluences) {
    expectList("conditions", "Conditions:\n", sn_printConds, theRun().tavro_rt);
    expectList("influences", "Influences:\n", sn_printRules, theRun().tavro_rt);
    EXPECT_EQ(shown("cond").err.find("Conditions:\nsize : 16\n("), 0u);
}

TEST_F(Show, Clauses) {
    Streams const text = shown("clauses");
    EXPECT_EQ(text.err, "Clauses:\n");
    EXPECT_EQ(text.out, streamsOf([] { theRun().scheduler.showClauses(); }).out);
    EXPECT_NE(text.out, "");
}

TEST_F(Show, Atoms) {
    Streams const text = shown("toms");
    EXPECT_EQ(text.err, "");
    EXPECT_EQ(text.out, streamsOf([] { theRun().scheduler.showAtoms(); }).out);
    EXPECT_EQ(text.out.find("thermostat.mode=on\nroom.cmdin=open\n"), 0u);
}

// ---- Components ----

// The thermostat is in place 98 of the table, the room in 126.
TEST_F(Show, AllComponents) {
    for (char const* arg : {"co", "comps", " comps "}) {
        Streams const text = shown(arg);
        EXPECT_EQ(text.out, "thermostat -- thermostat\nroom -- room\n") << arg;
        EXPECT_EQ(text.err, "") << arg;
    }
}

TEST_F(Show, AComponentByItsNameOrItsClass) {
    Comp const* thermostat = theComp("thermostat");
    std::string const expected = streamsOf([=] {
                                     thermostat->showComp(std::cout, [](s_Influence const* i) {
                                         printInfluence(std::cout, i);
                                     });
                                 }).out;
    ASSERT_NE(expected.find("Comp : thermostat\n"), std::string::npos);
    EXPECT_EQ(shown("comp thermostat").out, expected);
    EXPECT_EQ(shown("comp therm").out, expected);
    EXPECT_EQ(shown("comp therm room").out, expected) << "the first name decides";
    EXPECT_NE(shown("comp room").out.find("Comp : room\n"), std::string::npos);
}

TEST_F(Show, AnUnknownComponentIsToldAndNotEntered) {
    std::size_t const before = thePlant().active_comps.size();
    Streams const text = shown("comp nobody");
    EXPECT_EQ(text.err, streamsOf([] { theRun().scheduler.dataError(1, 1); }).err);
    EXPECT_NE(text.err, "");
    EXPECT_EQ(text.out, "");
    EXPECT_EQ(thePlant().active_comps.size(), before);
}

// ---- Which selector decides ----

TEST_F(Show, TheFirstOfTheOrderDecides) {
    std::vector<std::pair<char const*, char const*>> const cases = {
        {"conddic", "Dictionary:\n"},      {"tomscond", "Conditions:\n"},
        {"inpspa", "Current space:\n"},    {"disinp", "Inputs:\n"},
        {"meadis", "Displays:\n"},         {"infmea", "Measure:\n"},
        {"grainf", "Influences:\n"},       {"updgra", "Causal graph:\n"},
        {"gloupd", "Updating sequence: "}, {"claglo", "Global constraints variables:\n"},
        {"inicla", "Clauses:\n"},
    };
    theRun().tavro_rt->input = {ReferenceModel::variable(theRun().tavro_rt, "room.x")};
    for (auto const& [arg, heading] : cases)
        EXPECT_EQ(shown(arg).err.find(heading), 0u) << arg;
    EXPECT_EQ(shown("tomsco").out, "thermostat -- thermostat\nroom -- room\n");
    EXPECT_EQ(shown("spatoms").out, shown("toms").out);
}

TEST_F(Show, NoArgumentAndNoSelector) {
    EXPECT_EQ(shown(nullptr).err, "Missing argument for print.\n");
    EXPECT_EQ(shown("nothing").err, "Can't print nothing\n");
    EXPECT_EQ(shown("Dic x").err, "Can't print Dic x\n");
    EXPECT_EQ(shown("nothing").out, "");
}

// ---- Which runtime is shown ----

TEST(ShowARun, TheCandidateIsShown) {
    RoomRun run(0.8);
    ASSERT_NE(theRun().hybNT, nullptr);
    EXPECT_EQ(shown("measures").err, "Measure:\n  room.xd =0.8\n");
    s_runtime const* rt = theRun().hybNT->rt.get();
    expectList("dic", "Dictionary:\n", sn_printDic, rt);
    expectList("cond", "Conditions:\n", sn_printConds, rt);
    expectList("spa", "Current space:\n", sn_printSpace, rt);
    expectList("dis", "Displays:\n", sn_printDisplays, rt);
    expectList("inf", "Influences:\n", sn_printRules, rt);
    expectList("gra", "Causal graph:\n", sn_printCGraph, rt);
    expectList("upd", "Updating sequence: ", sn_printUpdateListsorn, rt);
    EXPECT_EQ(shown("inp").err, "No inputs.\n");
    expectList("ini", "Initializations:\n", sn_printInits, rt);
}

TEST_F(Show, WithoutARuntimeTheDiscreteSideIsShown) {
    s_runtime* before = theRun().tavro_rt;
    theRun().tavro_rt = nullptr;
    for (char const* arg :
         {"dic", "cond", "spa", "inp", "dis", "mea", "inf", "gra", "upd", "glo", "ini"}) {
        Streams const text = shown(arg);
        EXPECT_EQ(text.err, "The model has no continuous runtime.\n") << arg;
        EXPECT_EQ(text.out, "") << arg;
    }
    EXPECT_EQ(shown("comps").out, "thermostat -- thermostat\nroom -- room\n");
    EXPECT_NE(shown("atoms").out, "");
    EXPECT_EQ(shown("clauses").err, "Clauses:\n");
    EXPECT_EQ(shown("nothing").err, "Can't print nothing\n");
    theRun().tavro_rt = before;
}

}  // namespace
