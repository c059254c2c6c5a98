// Components: ownership, lookup, covers, the count of guards, and printing.
#include "model/Comprt.h"

#include <cmath>

#include "continuous/records.h"
#include "continuous/sorn-runt.h"
#include "model/model_fixture.h"

using model_fixture::complaint;
using model_fixture::formulaOf;
using model_fixture::Literal;
using model_fixture::printed;

namespace {

std::set<std::string> const modes = {"on", "off", "broken"};

class CompTest : public testing::Test {
protected:
    CompTest()
        : mode(comp.addStateVar(std::make_unique<ModeVar>("t.mode", modes, "on", nullptr))),
          command(comp.addStateVar(
              std::make_unique<CommandVar>("t.cmd", std::set<std::string>{"go", "none"}, "none"))),
          on(comp.newAtom("mode_on", mode, "on")),
          off(comp.newAtom("mode_off", mode, "off")),
          broken(comp.newAtom("mode_broken", mode, "broken")),
          go(comp.newAtom("cmd_go", command, "go")) {}

    Transition* add(std::vector<Literal> const& pre, Atom* to, double proba,
                    std::string const& type = "Nominal") {
        return comp.addTransitionToC(std::make_unique<Transition>(
            formulaOf(pre), formulaOf({{true, to}}), type, proba, 0.0, false));
    }

    Comp comp{"t"};
    ModeVar* const mode;
    CommandVar* const command;
    Atom* const on;
    Atom* const off;
    Atom* const broken;
    Atom* const go;
};

TEST(Comp, StartsEmpty) {
    Comp const comp("room");
    EXPECT_STREQ(comp.getName(), "room");
    EXPECT_EQ(comp.className, "");
    EXPECT_EQ(comp.symbol, "");
    EXPECT_EQ(comp.compSize, 0);
    EXPECT_TRUE(comp.importedCommands.empty());
    EXPECT_TRUE(comp.commands.empty());
    EXPECT_TRUE(comp.getStateVariables().empty());
    EXPECT_TRUE(comp.getConstraints().empty());
    EXPECT_TRUE(comp.getCompTransitions().empty());
    EXPECT_TRUE(comp.clauses.empty());
    EXPECT_TRUE(comp.variables.empty());
    EXPECT_TRUE(comp.influences.empty());
    EXPECT_TRUE(comp.neighbours.empty());
    EXPECT_TRUE(comp.atoms.empty());
}

TEST(Comp, Rename) {
    Comp comp("room");
    comp.setName("attic");
    EXPECT_STREQ(comp.getName(), "attic");
}

TEST_F(CompTest, TakesVariablesInOrderAndTellsThemTheirComponent) {
    EXPECT_EQ(mode->getComp(), &comp);
    EXPECT_EQ(command->getComp(), &comp);
    ASSERT_EQ(comp.getStateVariables().size(), 2u);
    EXPECT_EQ(comp.getStateVariables()[0].get(), mode);
    EXPECT_EQ(comp.getStateVariables()[1].get(), command);
}

TEST_F(CompTest, FindsTheFirstVariableOfAFullName) {
    comp.addStateVar(std::make_unique<CommandVar>("t.cmd", std::set<std::string>{"x"}, "x"));
    EXPECT_EQ(comp.getStateVariable("t.mode"), mode);
    EXPECT_EQ(comp.getStateVariable("t.cmd"), command);
    EXPECT_EQ(comp.getStateVariable("mode"), nullptr);
    EXPECT_EQ(comp.getStateVariable(""), nullptr);
}

// The base class has no virtual destructor, and yet a variable must die as what it is.
TEST(Comp, DestroysAVariableAsItsOwnKind) {
    struct Counted : ModeVar {
        explicit Counted(int* deaths) : deaths(deaths) {}
        ~Counted() { ++*deaths; }
        int* deaths;
    };
    int deaths = 0;
    {
        Comp comp("c");
        comp.addStateVar(std::make_unique<Counted>(&deaths));
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);
}

TEST_F(CompTest, EntersAtomsUnderACopyOfTheSymbolicKey) {
    char key[] = "cmd_none";
    Atom* none = comp.newAtom(key, command, "none");
    key[0] = '?';
    ASSERT_EQ(comp.atoms.count("cmd_none"), 1u);
    EXPECT_EQ(comp.atoms["cmd_none"], none);
    EXPECT_EQ(comp.atoms["mode_on"], on);
    EXPECT_EQ(comp.atoms.size(), 5u);
    EXPECT_STREQ(none->getId(), "t.cmd=none");
    EXPECT_EQ(none->getStateVar(), command);
    EXPECT_EQ(none->linkIndex, 1);
}

TEST_F(CompTest, AtomOutsideTheDomainIsToldAndEnteredAllTheSame) {
    Atom* stray = nullptr;
    stray = comp.newAtom("mode_molten", mode, "molten");
    EXPECT_EQ(mode->complaints,
              "Atom --> Cannot create the atom : value not in the variable domain\n");
    EXPECT_EQ(comp.atoms["mode_molten"], stray);
    EXPECT_STREQ(stray->getId(), "t.mode=molten");
    EXPECT_EQ(mode->getAtomLinks().size(), 3u);
}

TEST_F(CompTest, AppendsTransitionsConstraintsVariablesAndInfluences) {
    Transition* first = add({{true, on}}, off, 0.5);
    Transition* second = add({{true, off}}, on, 0.5);
    ASSERT_EQ(comp.getCompTransitions().size(), 2u);
    EXPECT_EQ(comp.getCompTransitions()[0].get(), first);
    EXPECT_EQ(comp.getCompTransitions()[1].get(), second);

    auto constraint = std::make_unique<Formula>();
    Formula const* const given = constraint.get();
    comp.addFormulaToCS(std::move(constraint));
    comp.addFormulaToCS(std::make_unique<Formula>());
    ASSERT_EQ(comp.getConstraints().size(), 2u);
    EXPECT_EQ(comp.getConstraints()[0].get(), given);

    s_Variable variable;
    s_Influence influence;
    comp.addVariable(&variable);
    comp.addInfluence(&influence);
    comp.addInfluence(&influence);
    EXPECT_EQ(comp.variables, std::vector<s_Variable*>{&variable});
    EXPECT_EQ(comp.influences, (std::vector<s_Influence*>{&influence, &influence}));
}

// (0 + 0.6 + 0.2) / 2, and then (0.4 + 0.6 + 0.2) / 2 on top of it.
TEST_F(CompTest, NominalCoverIsTheMeanOfNominalTransitionsOnTopOfWhatItHolds) {
    add({{true, on}}, off, 0.6);
    add({{true, on}}, broken, 0.9, "Fail");
    add({{true, off}}, on, 0.2);
    comp.computeNominalCover();
    EXPECT_DOUBLE_EQ(comp.nominalCover, 0.4);
    comp.computeNominalCover();
    EXPECT_DOUBLE_EQ(comp.nominalCover, 0.6);
}

TEST_F(CompTest, NominalCoverWithoutNominalTransitionIsNotANumber) {
    add({{true, on}}, broken, 0.9, "Fail");
    comp.computeNominalCover();
    EXPECT_TRUE(std::isnan(comp.nominalCover));
}

TEST_F(CompTest, CertainTransitionIsAGuardByItself) {
    add({{true, on}}, on, 1.0);
    comp.getTransitionsGuards(std::cerr);
    EXPECT_EQ(on->guards, 1u);
    EXPECT_EQ(mode->guards, 1);
    EXPECT_EQ(off->guards, 0u);
}

TEST_F(CompTest, LoneUncertainTransitionCountsNothing) {
    add({{true, on}}, off, 0.99);
    add({{true, off}}, on, 0.5);
    comp.getTransitionsGuards(std::cerr);
    EXPECT_EQ(on->guards, 0u);
    EXPECT_EQ(off->guards, 0u);
    EXPECT_EQ(mode->guards, 0);
}

// Four equal guards: 3 + 2 + 1 + 0 for the atom; the two of the other guard: 1 + 0.
TEST_F(CompTest, GroupOfEqualGuardsCountsThePairs) {
    for (double const proba : {0.7, 0.1, 0.1, 0.1})
        add({{true, on}}, off, proba);
    add({{true, off}}, on, 0.5);
    add({{true, off}}, off, 0.5);
    comp.getTransitionsGuards(std::cerr);
    EXPECT_EQ(on->guards, 6u);
    EXPECT_EQ(off->guards, 1u);
    EXPECT_EQ(mode->guards, 7);
}

// The certain one counts once, whatever follows; the uncertain one before it counts the pair.
TEST_F(CompTest, CertainTransitionAmongEqualGuards) {
    add({{true, on}}, off, 0.5);
    add({{true, on}}, on, 1.0);
    add({{true, on}}, broken, 0.5);
    comp.getTransitionsGuards(std::cerr);
    EXPECT_EQ(on->guards, 3u);
}

// The comparison is an inclusion of the earlier guard in the later one.
TEST_F(CompTest, WiderGuardCountsOnlyWhenItComesLater) {
    add({{true, on}}, off, 0.5);
    add({{true, go}, {true, on}}, broken, 0.5);
    comp.getTransitionsGuards(std::cerr);
    EXPECT_EQ(on->guards, 1u);
    EXPECT_EQ(mode->guards, 1);

    Comp reversed("r");
    auto* var = reversed.addStateVar(std::make_unique<ModeVar>("r.mode", modes, "on", nullptr));
    Atom* there = reversed.newAtom("on", var, "on");
    reversed.addTransitionToC(std::make_unique<Transition>(
        formulaOf({{true, go}, {true, there}}), formulaOf({{true, there}}), "Nominal", 0.5));
    reversed.addTransitionToC(std::make_unique<Transition>(
        formulaOf({{true, there}}), formulaOf({{true, there}}), "Nominal", 0.5));
    reversed.getTransitionsGuards(std::cerr);
    EXPECT_EQ(there->guards, 0u);
}

// The counters are those of the transition's own mode, not of the later one's.
TEST_F(CompTest, EveryCountGoesToTheModeLeft) {
    add({{true, on}}, off, 1.0);
    add({{true, broken}}, off, 1.0);
    add({{true, broken}}, on, 1.0);
    comp.getTransitionsGuards(std::cerr);
    EXPECT_EQ(on->guards, 1u);
    EXPECT_EQ(broken->guards, 2u);
    EXPECT_EQ(off->guards, 0u);
    EXPECT_EQ(mode->guards, 3);
    EXPECT_EQ(command->guards, 0);
}

TEST_F(CompTest, SecondCountDoublesTheCounters) {
    add({{true, on}}, off, 0.5);
    add({{true, on}}, broken, 0.5);
    add({{true, off}}, on, 1.0);
    comp.getTransitionsGuards(std::cerr);
    comp.getTransitionsGuards(std::cerr);
    EXPECT_EQ(on->guards, 2u);
    EXPECT_EQ(off->guards, 2u);
    EXPECT_EQ(mode->guards, 4);
}

// A faulty model: the transition without a mode is told, the others are counted.
TEST_F(CompTest, GuardWithoutModeIsToldAndSkipped) {
    add({{true, on}}, off, 0.5);
    comp.addTransitionToC(
        std::make_unique<Transition>(nullptr, formulaOf({{true, off}}), "Nominal", 1.0));
    add({{true, go}}, off, 1.0);
    add({{true, on}}, broken, 0.5);
    EXPECT_EQ(complaint([&] { comp.getTransitionsGuards(std::cerr); }),
              "Transition 1 of t has no mode in its guard.\n"
              "Transition 2 of t has no mode in its guard.\n");
    EXPECT_EQ(on->guards, 1u);
    EXPECT_EQ(mode->guards, 1);
}

std::string const stars(51, '*');
std::string const dashes(51, '-');

TEST(Comp, ShowsItselfEmpty) {
    Comp const comp("room");
    EXPECT_EQ(printed([&] {
                  comp.showComp(std::cout,
                                [](s_Influence const* i) { printInfluence(std::cout, i); });
              }),
              stars + "\nComp : room\n" +            //
                  stars + "\nnominal cover : 0\n" +  //
                  "States : \n" +                    //
                  dashes + "\nConstraints : \n" +    //
                  dashes + "\nInfluences : \n" +     //
                  dashes + "\nTransitions : \n" +    //
                  stars + "\n");
}

TEST_F(CompTest, ShowsVariablesConstraintsAndTransitions) {
    comp.nominalCover = 0.25;
    comp.addFormulaToCS(
        std::make_unique<Formula>(formulaOf({{true, on}}), formulaOf({{true, go}}), nullptr));
    add({{true, on}}, off, 0.5)->setID(3);
    EXPECT_EQ(printed([&] {
                  comp.showComp(std::cout,
                                [](s_Influence const* i) { printInfluence(std::cout, i); });
              }),
              stars + "\nComp : t\n" + stars + "\nnominal cover : 0.25\n" +
                  "States : \n"
                  "t.mode - Mode -\n"
                  "\t\tt.mode\n\t\tType: Mode\n\t\tValues: \n\t\t{ broken  off  on  }\n\n"
                  "t.mode --->\t\t on\n"
                  "t.cmd - Command -\n"
                  "\t\tt.cmd\n\t\tType: Command\n\t\tValues: \n\t\t{ go  none  }\n\n"
                  "t.cmd --->\t\t none\n" +
                  dashes + "\nConstraints : \n(t.mode=on  ) => (t.cmd=go  )\n" + dashes +
                  "\nInfluences : \n" + dashes +
                  "\nTransitions : \n"
                  "Nominal (0.5) : (t.mode=on  ) =>O  and (t.mode=off  ) -- 3\n" +
                  stars + "\n");
}

TEST_F(CompTest, ShowsEachInfluenceThroughItsPrinter) {
    s_Variable heat;
    heat.nom = "t.heat";
    s_Variable temperature;
    temperature.nom = "t.temperature";
    s_Influence first;
    s_Influence second;
    first.cause = second.effect = &heat;
    first.effect = second.cause = &temperature;
    comp.addInfluence(&second);
    comp.addInfluence(&first);
    std::string const both = printed([&] {
        printInfluence(std::cout, &second);
        printInfluence(std::cout, &first);
    });
    std::string const text = printed([&] {
        comp.showComp(std::cout, [](s_Influence const* i) { printInfluence(std::cout, i); });
    });
    EXPECT_NE(text.find("\nInfluences : \n" + both + dashes + "\n"), std::string::npos) << text;
}

}  // namespace
