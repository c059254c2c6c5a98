// The pass over a fresh model: numbers and weights of transitions, guards, active atoms, links,
// dead ends and first labels.
#include <algorithm>
#include <cmath>
#include <set>

#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"
#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::complaint;
using reasoning_fixture::count;
using reasoning_fixture::SmallModel;

namespace {

class ItmsStartup : public testing::Test {
protected:
    std::string startText() {
        model.engine.rtInit();
        return model.trace.take();
    }
    Comp* theComp() { return model.comps.at("c"); }

    SmallModel model;
};

TEST_F(ItmsStartup, ListsTheVariablesOfEveryComponentInTheOrderOfTheRegistry) {
    model.comp("d");
    model.comp("e");
    model.variable("m", {"on"});
    model.variable("n", {"low"});
    model.variable("q", {"up"}, true, "d");
    model.variable("r", {"up"}, true, "e");
    startText();
    std::vector<StateVar*> expected;
    for (auto const& entry : thePlant().active_comps)
        for (auto const& variable : entry.second->getStateVariables())
            expected.push_back(variable.get());
    EXPECT_EQ(model.engine.stateVars, expected);
    EXPECT_EQ(expected.size(), 4u);
}

TEST_F(ItmsStartup, NumbersTheTransitionsOfAllComponentsFromZero) {
    model.comp("d");
    model.comp("still");
    model.variable("m", {"on", "off"});
    model.variable("q", {"up", "down"}, true, "d");
    model.variable("r", {"only"}, true, "still");
    std::set<Transition*> const all = {
        model.transition("m=on", "m=off", 0.5), model.transition("m=off", "m=on", 0.5),
        model.transition("q=up", "q=down", 0.5, transNominal, false, "d")};
    startText();
    std::set<int> ids;
    for (auto const& [id, transition] : thePlant().active_trans) {
        EXPECT_EQ(transition->id, id);
        EXPECT_EQ(all.count(transition), 1u);
        ids.insert(id);
    }
    EXPECT_EQ(ids, (std::set<int>{0, 1, 2}));
    // A component without transitions gives its variables, and no numbers.
    EXPECT_EQ(model.engine.stateVars.size(), 3u);
}

TEST_F(ItmsStartup, NumbersOneComponentInTheOrderOfItsTransitionsAndGoesOnFromTheCounter) {
    model.variable("m", {"on", "off"});
    Transition* first = model.transition("m=on", "m=off", 0.3);
    Transition* second = model.transition("m=off", "m=on", 0.6);
    int id = 7;
    model.engine.idTransitions(theComp(), id);
    EXPECT_EQ(first->id, 7);
    EXPECT_EQ(second->id, 8);
    EXPECT_EQ(id, 9);
    EXPECT_EQ(thePlant().active_trans[8], second);
    EXPECT_DOUBLE_EQ(first->weight, 0.15);  // of two transitions
    EXPECT_DOUBLE_EQ(second->weight, 0.3);
}

TEST_F(ItmsStartup, OnlyIdleAndFailTransitionsWithoutACommandLoseTheirCondition) {
    model.variable("m", {"on", "off", "bad"});
    model.variable<CommandVar>("cmd", {"none", "go"});
    Transition* nominal = model.transition("m=on", "m=off", 0.5);
    Transition* idle = model.transition("m=on", "m=on", 0.5, transNominal, true);
    Transition* fail = model.transition("m=on", "m=bad", 0.1, transFail);
    Transition* commanded = model.transition("m=on cmd=go", "m=bad", 0.1, transFail);
    Transition* refusing = model.transition("m=on !cmd=go", "m=on", 0.1, transNominal, true);
    startText();
    EXPECT_TRUE(nominal->unconditional);
    EXPECT_FALSE(idle->unconditional);
    EXPECT_FALSE(fail->unconditional);
    EXPECT_TRUE(commanded->unconditional);
    EXPECT_TRUE(refusing->unconditional);  // a negative literal names a command as well
}

TEST_F(ItmsStartup, ACommandInANestedGuardCounts) {
    model.variable("m", {"on"});
    model.variable<CommandVar>("cmd", {"none", "go"});
    auto guard = model.formula("m=on");
    guard->addStateFormula(model.formula("cmd=go"));
    Transition* idle = theComp()->addTransitionToC(std::make_unique<Transition>(
        std::move(guard), model.formula("m=on"), transNominal, 1.0, 0.0, true));
    startText();
    EXPECT_TRUE(idle->unconditional);
}

TEST_F(ItmsStartup, AMoveWithoutACommandLeavesEveryAtomOfTheImportedCommands) {
    model.comp("desk");
    auto* order = model.variable<CommandVar>("order", {"none", "go", "stop"}, true, "desk");
    auto* own = model.variable<CommandVar>("own", {"none", "go"});
    model.variable("m", {"on", "bad"});
    theComp()->importedCommands = {order, own};
    Transition* fail = model.transition("m=on", "m=bad", 0.1, transFail);
    Transition* commanded = model.transition("m=on own=go", "m=bad", 0.1, transFail);
    Transition* nominal = model.transition("m=bad", "m=on", 0.1);
    std::string const text = startText();
    for (char const* name : {"order=none", "order=go", "order=stop", "own=none", "own=go"}) {
        auto const& leaving = model.atom(name)->getRefTransPre();
        EXPECT_EQ(std::count(leaving.begin(), leaving.end(), fail), 1) << name;
        EXPECT_EQ(std::count(leaving.begin(), leaving.end(), nominal), 0) << name;
    }
    // What a command triggers leaves that command alone, and did so since its construction.
    EXPECT_TRUE(model.atom("order=go")->getRefTransPre() == std::vector<Transition*>{fail});
    EXPECT_EQ(model.atom("own=go")->getRefTransPre().front(), commanded);
    EXPECT_EQ(count(text, "adding idle trans reference :\n"), 5);
}

TEST_F(ItmsStartup, WithoutImportedCommandsNothingIsReferred) {
    model.variable<CommandVar>("own", {"none", "go"});
    model.variable("m", {"on"});
    model.transition("m=on", "m=on", 1.0, transNominal, true);
    std::string const text = startText();
    EXPECT_EQ(count(text, "adding idle trans reference"), 0);
    EXPECT_TRUE(model.atom("own=go")->getRefTransPre().empty());
}

TEST_F(ItmsStartup, ACertainTransitionCountsOneGuard) {
    StateVar* mode = model.variable("m", {"on"});
    Transition* only = model.transition("m=on", "m=on", 1.0, transNominal, true);
    std::string const text = startText();
    EXPECT_EQ(model.atom("m=on")->guards, 1u);
    EXPECT_EQ(mode->guards, 1);
    EXPECT_EQ(only->guardProba, 1.0);
    EXPECT_EQ(text,
              "weight : 1\n"
              "guards number of c.m=on : 1\n"
              "guards number of c.m : 1\n"
              "guard proba : 1\n"
              "compiled probability : c.m=on -- 1\n");
}

TEST_F(ItmsStartup, OfTwoHalvesTheFirstCountsTheSharedGuard) {
    StateVar* mode = model.variable("m", {"on", "off"});
    Transition* stay = model.transition("m=on", "m=on", 0.5, transNominal, true);
    Transition* go = model.transition("m=on", "m=off", 0.5);
    startText();
    EXPECT_EQ(model.atom("m=on")->guards, 1u);
    EXPECT_EQ(model.atom("m=off")->guards, 0u);
    EXPECT_EQ(mode->guards, 1);
    EXPECT_EQ(stay->guardProba, 0.5);
    EXPECT_EQ(go->guardProba, 0.5);
}

// Guards are compared one way: "m=on" is covered by "m=on p", but not the other way round.
TEST_F(ItmsStartup, ThreeWithOneGuardCountTwoAndOne) {
    StateVar* mode = model.variable("m", {"on", "off", "bad"});
    model.propositions("p");
    Transition* first = model.transition("m=on", "m=on", 0.4);
    model.transition("m=on", "m=off", 0.3);
    model.transition("m=on p", "m=bad", 0.3);
    startText();
    EXPECT_EQ(model.atom("m=on")->guards, 3u);  // 2 + 1 + 0
    EXPECT_EQ(mode->guards, 3);
    EXPECT_DOUBLE_EQ(first->guardProba, 0.4 / 3.0);
}

TEST_F(ItmsStartup, ALoneUncertainTransitionCountsNothingAndItsGuardIsInfinite) {
    model.variable("m", {"on", "off"});
    Transition* lone = model.transition("m=on", "m=off", 0.5);
    Transition* never = model.transition("m=off", "m=on", 0.0);
    std::string const text = startText();
    EXPECT_TRUE(std::isinf(lone->guardProba));
    EXPECT_TRUE(std::isnan(never->guardProba));
    EXPECT_EQ(count(text, "guard proba : inf\n"), 1);
}

TEST_F(ItmsStartup, TransitionsWithoutAModeOrAGuardAreToldAndLeftOut) {
    model.variable("m", {"on", "bad"});
    model.propositions<CondVar>("hot");
    Transition* modeless = model.transition("hot", "m=bad", 0.5);
    Transition* open = model.transition("", "m=bad", 0.5, transFail);
    Transition* sound = model.transition("m=on", "m=bad", 1.0);
    std::string const told = complaint([&] { startText(); });
    EXPECT_NE(told.find("c"), std::string::npos);
    EXPECT_EQ(modeless->guardProba, 0.0);
    EXPECT_FALSE(open->unconditional);  // no command in a guard that says nothing
    EXPECT_EQ(sound->guardProba, 1.0);
    EXPECT_EQ(thePlant().active_trans.size(), 3u);
}

TEST_F(ItmsStartup, ActiveAtomsAreThoseOfTheClauses) {
    model.propositions("p q lonely");
    model.clause("p !q");
    thePlant().active_atoms[model.atom("lonely")->getId()] = model.atom("lonely");
    startText();
    EXPECT_EQ(thePlant().active_atoms.size(), 2u);
    EXPECT_EQ(thePlant().active_atoms.count("c.p=on"), 1u);
    EXPECT_EQ(thePlant().active_atoms.count("c.q=on"), 1u);
}

TEST_F(ItmsStartup, InternalClausesThatNoRegistryHoldsMakeAtomsActiveToo) {
    StateVar* mode = model.variable("m", {"on"}, false);
    Clause internal(theComp());
    internal.addAtom(model.atom("m=on"), false);
    mode->clauses.push_back(&internal);
    startText();
    EXPECT_EQ(thePlant().active_atoms.count("c.m=on"), 1u);
    mode->clauses.clear();
}

TEST_F(ItmsStartup, OfTwoAtomsWithOneIdTheFirstIsActive) {
    StateVar* mode = model.variable("m", {"on", "off"}, false);
    Atom twin(mode, "on", "c.m=on");
    model.clause("m=on");
    std::vector<std::unique_ptr<Clause>> clauses;
    clauses.push_back(std::make_unique<Clause>(&twin, false, theComp()));
    clauses.push_back(std::make_unique<Clause>(model.atom("m=on"), false, theComp()));
    EXPECT_EQ(model.engine.loadAtoms(clauses)["c.m=on"], &twin);
    mode->atomLinks.pop_back();
}

TEST_F(ItmsStartup, LinksAtomsAndComponentsByIdAndName) {
    model.propositions("p lonely");
    model.clause("p");
    startText();
    EXPECT_EQ(theComp()->atoms.size(), 2u);  // the symbolic keys are gone
    // An atom that stands in no clause is linked, although it is not active.
    EXPECT_EQ(theComp()->atoms["c.lonely=on"], model.atom("lonely"));
    EXPECT_EQ(model.atom("lonely")->comps["c"], theComp());
    EXPECT_EQ(model.atom("p")->comps["c"], theComp());
    EXPECT_EQ(thePlant().active_atoms.count("c.lonely=on"), 0u);
}

TEST_F(ItmsStartup, AnAtomThatNoNominalMoveLeavesIsADeadEnd) {
    model.variable("m", {"on", "off", "bad", "end"}, false);
    model.transition("m=on", "m=off", 0.5);
    model.transition("m=off", "m=off", 0.5, transNominal, true);
    model.transition("m=bad", "m=on", 0.5, transFail);
    startText();
    EXPECT_FALSE(model.atom("m=on")->deadEnd);
    EXPECT_TRUE(model.atom("m=off")->deadEnd);
    EXPECT_TRUE(model.atom("m=bad")->deadEnd);
    EXPECT_TRUE(model.atom("m=end")->deadEnd);  // in no clause, and checked all the same
}

TEST_F(ItmsStartup, ANominalMoveLeavesTheFlagAsItIs) {
    model.variable("m", {"on", "off"});
    model.transition("m=on", "m=off", 0.5);
    model.atom("m=on")->deadEnd = true;
    model.engine.deadEndAtom(model.atom("m=on"));
    EXPECT_TRUE(model.atom("m=on")->deadEnd);
}

TEST_F(ItmsStartup, LabelsTheDefaultsTrueAndTheirSiblingsFalse) {
    model.variable("m", {"on", "off"});
    model.propositions("p");
    model.clause("p");
    startText();
    EXPECT_EQ(model.atom("m=on")->label, labelTrue);
    EXPECT_EQ(model.atom("m=on")->propagationNumber, 1);
    EXPECT_EQ(model.atom("m=off")->label, labelFalse);
    EXPECT_EQ(model.atom("m=off")->propagationNumber, 0);
    // A variable without a current state leaves its atoms unknown.
    EXPECT_EQ(model.atom("p")->label, labelUnknown);
    EXPECT_EQ(model.atom("p")->propagationNumber, 0);
}

TEST_F(ItmsStartup, AnAtomInNoClauseGetsNeitherALabelNorAProbability) {
    model.variable("m", {"on"}, false);
    model.transition("m=on", "m=on", 1.0);
    std::string const text = startText();
    EXPECT_EQ(model.atom("m=on")->label, labelUnknown);
    EXPECT_EQ(model.atom("m=on")->compiledProb, 0.0);
    EXPECT_EQ(count(text, "compiled probability"), 0);
}

TEST_F(ItmsStartup, TheCompiledProbabilityIsThePlainMeanOfWhatLeadsToTheAtom) {
    model.variable("m", {"on", "off"});
    model.transition("m=on", "m=off", 0.25);
    model.transition("m=off", "m=off", 0.5, transNominal, true);
    model.engine.compileTransitionsProb(model.atom("m=off"));
    EXPECT_EQ(model.atom("m=off")->compiledProb, 0.375);
    EXPECT_EQ(model.trace.take(), "compiled probability : c.m=off -- 0.375\n");
    model.atom("m=on")->compiledProb = 0.9;
    model.engine.compileTransitionsProb(model.atom("m=on"));
    EXPECT_EQ(model.atom("m=on")->compiledProb, 0.9);  // nothing leads there: nothing is written
    EXPECT_EQ(model.trace.take(), "");
}

TEST_F(ItmsStartup, ANullThatALookupEnteredIsSkipped) {
    model.variable("m", {"on"});
    startText();
    theRun().scheduler.getAtom("nobody");
    theRun().scheduler.getComp("nowhere");
    model.engine.initialize();
    EXPECT_EQ(model.atom("m=on")->label, labelTrue);
}

TEST_F(ItmsStartup, ClausesIntersectWhenTheyShareAnAtom) {
    model.propositions("p q r");
    Clause* pq = model.clause("p !q");
    Clause* q = model.clause("q");
    Clause* r = model.clause("r");
    EXPECT_FALSE(itms::intersectClauses({pq}, {r, q}));
    EXPECT_TRUE(itms::intersectClauses({pq, q}, {r}));
    EXPECT_TRUE(itms::intersectClauses({}, {pq}));
    EXPECT_TRUE(itms::intersectClauses({pq}, {}));
}

TEST_F(ItmsStartup, AnAtomIsIndependentOfAtomsWhoseClausesShareNothingWithIts) {
    model.propositions("p q r s free");
    model.clause("p q");
    model.clause("q r");
    model.clause("s");
    EXPECT_FALSE(itms::intersectClauses(model.atom("p"), {model.atom("s"), model.atom("r")}));
    EXPECT_TRUE(itms::intersectClauses(model.atom("p"), {model.atom("s"), model.atom("free")}));
    EXPECT_TRUE(itms::intersectClauses(model.atom("p"), {}));
    EXPECT_FALSE(itms::intersectClauses(model.atom("p"), {model.atom("p")}));
}

// The compiled model goes through the same pass: what must hold of any model, checked on a real
// one.
TEST(ItmsStartupOfTheReferenceModel, LeavesAConsistentRegistry) {
    ReferenceModel model;
    std::size_t transitions = 0;
    for (auto const& entry : thePlant().active_comps) {
        for (auto const& transition : entry.second->transitions)
            EXPECT_EQ(thePlant().active_trans[transition->id], transition.get());
        transitions += entry.second->transitions.size();
    }
    EXPECT_EQ(thePlant().active_trans.size(), transitions);
    for (auto const& [id, atom] : thePlant().active_atoms) {
        bool const holds = atom->evalAtom();
        EXPECT_EQ(atom->label, holds ? labelTrue : labelFalse) << id;
        EXPECT_EQ(atom->propagationNumber, holds ? 1 : 0) << id;
        EXPECT_EQ(atom->getVarComp()->atoms[id], atom);
    }
}

}  // namespace
