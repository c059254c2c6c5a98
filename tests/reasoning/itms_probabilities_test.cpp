// Weights of transitions, the entropy of a variable, chances, likelihoods, truth of formulas.
#include <cmath>

#include "fixtures/the_run.h"
#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::count;
using reasoning_fixture::SmallModel;

namespace {

double const tolerance = 1e-12;

// c owns the mode m and the propositions p, q and r; d owns the three-valued n. The transitions t0
// (to p, 1/2) and t1 (to q, 1/4) belong to c. "!q p" links p to q.
class ItmsProbabilities : public testing::Test {
protected:
    ItmsProbabilities() {
        model.comp("d");
        model.variable("m", {"on", "off"});
        model.propositions("p q r");
        model.variable("n", {"a", "b", "c"}, true, "d");
        t0 = model.transition("m=on", "p", 0.5);
        t1 = model.transition("m=on", "q", 0.25);
        model.clause("!q p");
        model.clause("r");
    }
    void begin() {
        model.start();
        model.weigh({"c", "d"});
        model.engine.initPb(model.state());
    }
    double entropy(char const* name) {
        return model.engine.entropy(model.atom(name)->var, model.state());
    }
    State::PostProbs const& table(char const* name) {
        return *model.state()->atomPostProbs.at(model.atom(name)->getId());
    }

    SmallModel model;
    Transition* t0;
    Transition* t1;
};

TEST_F(ItmsProbabilities, WeightsStartFromThePriorsOfTheComponentsOfTheState) {
    model.start();
    model.engine.initStateProbas(model.state());
    EXPECT_TRUE(model.state()->postProbs.empty());  // a state without components has none
    model.weigh({"c"});
    model.state()->postProbs[t0->id] = 0.9;
    model.state()->postProbs[77] = 0.1;
    model.engine.initPb(model.state());
    EXPECT_EQ(model.state()->postProbs.at(t0->id), 0.5);
    EXPECT_EQ(model.state()->postProbs.at(t1->id), 0.25);
    EXPECT_EQ(model.state()->postProbs.at(77), 0.1);  // of no component here
}

TEST_F(ItmsProbabilities, SortingReplacesWhatWasSorted) {
    model.start();
    model.state()->sortedPostProbs.insert({0.3, 42});
    model.state()->postProbs = {{1, 0.25}, {2, 0.75}, {3, 0.5}};
    model.engine.sortPostProbs(model.state());
    std::vector<int> order;
    for (auto const& entry : model.state()->sortedPostProbs)
        order.push_back(entry.second);
    EXPECT_EQ(order, (std::vector<int>{2, 3, 1}));
}

TEST_F(ItmsProbabilities, WithoutComponentsEveryEntropyIsZero) {
    model.start();
    EXPECT_EQ(entropy("n=a"), 0.0);
    EXPECT_TRUE(table("n=a").empty());
    EXPECT_EQ(entropy("r"), 0.0);
}

// n is of a component that c does not import: each value has 1/3, so each of the three masses is
// 1/4, each table is 2/3 and 1/3, and the sum is the entropy of those times 3/4.
TEST_F(ItmsProbabilities, AnUnrelatedVariableLeavesTheWeightsAsTheyAre) {
    begin();
    double const h = std::log(2.0 / 3.0) * (2.0 / 3.0) + std::log(1.0 / 3.0) / 3.0;
    EXPECT_NEAR(entropy("n=a"), -0.75 * h, tolerance);
    for (char const* name : {"n=a", "n=b", "n=c"}) {
        EXPECT_NEAR(table(name).at(t0->id), 2.0 / 3.0, tolerance);
        EXPECT_NEAR(table(name).at(t1->id), 1.0 / 3.0, tolerance);
        EXPECT_EQ(table(name).size(), 2u);
    }
}

TEST_F(ItmsProbabilities, ALinkSettlesTheVariable) {
    begin();
    EXPECT_EQ(entropy("p"), 0.0);
    EXPECT_EQ(table("p").at(t0->id), 0.0);
    EXPECT_EQ(table("p").at(t1->id), 1.0);
}

TEST_F(ItmsProbabilities, WithoutAMassTheEntropyIsNotANumber) {
    begin();
    EXPECT_TRUE(std::isnan(entropy("r")));
    EXPECT_TRUE(std::isnan(table("r").at(t0->id)));
}

TEST_F(ItmsProbabilities, TransitionsOfNoWeightTakeNoPart) {
    begin();
    model.state()->postProbs[t0->id] = 0.0;
    EXPECT_EQ(entropy("n=a"), 0.0);  // one transition is left: nothing to learn
    EXPECT_EQ(table("n=a").size(), 1u);
    EXPECT_EQ(table("n=a").at(t1->id), 1.0);
    model.state()->postProbs.clear();
    EXPECT_EQ(entropy("n=a"), 0.0);
    EXPECT_TRUE(table("n=a").empty());
}

TEST_F(ItmsProbabilities, TheEntropyOfAnAtomTakesItForCertain) {
    begin();
    double const h = std::log(2.0 / 3.0) * (2.0 / 3.0) + std::log(1.0 / 3.0) / 3.0;
    EXPECT_NEAR(model.engine.entropy(model.atom("r"), model.state()), -h, tolerance);
    EXPECT_NEAR(table("r").at(t0->id), 2.0 / 3.0, tolerance);
}

TEST_F(ItmsProbabilities, ANewComputationLeavesTheTablesOfCopiesAlone) {
    begin();
    entropy("n=a");
    State const copy(model.state(), true);
    model.state()->postProbs[t0->id] = 0.0;
    entropy("n=a");
    EXPECT_NEAR(copy.atomPostProbs.at("d.n=a")->at(t0->id), 2.0 / 3.0, tolerance);
}

TEST_F(ItmsProbabilities, AnAtomOfAnUnrelatedComponentIsUniform) {
    begin();
    EXPECT_EQ(model.engine.computeCondProbRough(model.atom("n=b"), t0), 1.0 / 3.0);
}

TEST_F(ItmsProbabilities, AnAtomOfTheComponentIsCertainByAClauseAndElseExcluded) {
    begin();
    EXPECT_EQ(model.engine.computeCondProbRough(model.atom("p"), t1), 1.0);
    EXPECT_EQ(model.engine.computeCondProbRough(model.atom("p"), t0), 0.0);
    EXPECT_EQ(model.engine.computeCondProbRough(model.atom("m=on"), t1), 0.0);
}

TEST_F(ItmsProbabilities, ATransitionWithoutAnEffectSaysNothing) {
    auto effects = std::make_unique<Transition::Posts>();
    Transition const delayed(model.formula("m=on"), std::move(effects), transNominal, 0.5);
    begin();
    EXPECT_EQ(model.engine.computeCondProbRough(model.atom("m=on"), &delayed), 0.5);
}

TEST_F(ItmsProbabilities, AnAtomWithImplicatesHasNoChance) {
    begin();
    model.engine.piTable = std::make_unique<PiTable>();
    EXPECT_EQ(model.engine.computeCondProbRough(model.atom("p"), t1), 1.0);
    model.engine.piTable->addPIAtom(model.atom("p"), {});
    model.trace.take();
    EXPECT_EQ(model.engine.computeCondProbRough(model.atom("p"), t1), 0.0);
    EXPECT_EQ(model.trace.take(), "rough proba computation - strange end\n");
}

TEST_F(ItmsProbabilities, OppositesAreLookedForInTheClausesOfTheList) {
    SignedAtoms list;
    EXPECT_FALSE(itms::checkInOpposites(model.atom("p"), list));
    list.insert({true, model.atom("r")});
    EXPECT_FALSE(itms::checkInOpposites(model.atom("p"), list));
    list.insert({false, model.atom("q")});
    EXPECT_TRUE(itms::checkInOpposites(model.atom("p"), list));
    EXPECT_FALSE(itms::checkInOpposites(model.atom("q"), list));
}

class ItmsImports : public testing::Test {
protected:
    ItmsImports() {
        model.comp("d");
        model.propositions("p");
        model.propositions("far", "d");
        list.insert({true, model.atom("p")});
    }
    bool isImported() { return itms::checkInImportedComps(model.atom("far"), list); }
    Comp* c() { return model.comps.at("c"); }
    Comp* d() { return model.comps.at("d"); }

    SmallModel model;
    SignedAtoms list;
};

TEST_F(ItmsImports, AnAtomOfTheComponentItselfCounts) {
    EXPECT_TRUE(itms::checkInImportedComps(model.atom("p"), list));
    EXPECT_FALSE(isImported());
    EXPECT_FALSE(itms::checkInImportedComps(model.atom("p"), {}));
}

TEST_F(ItmsImports, TheOwnerOfAnImportedCommandCounts) {
    c()->importedCommands = {model.variable<CommandVar>("go", {"none"}, false, "d")};
    EXPECT_TRUE(isImported());
    SignedAtoms const other = {{true, model.atom("far")}};
    EXPECT_FALSE(itms::checkInImportedComps(model.atom("p"), other));  // one way
}

TEST_F(ItmsImports, ANeighbourCountsIfTheyShareAClause) {
    c()->neighbours = {d()};
    EXPECT_FALSE(isImported());
    model.clause("!p far");
    EXPECT_TRUE(isImported());
    c()->neighbours.clear();
    EXPECT_FALSE(isImported());
}

class ItmsLikelihood : public ItmsProbabilities {
protected:
    // With m=on held true by nobody, but true; two transitions lead there.
    void begin() {
        model.transition("m=off", "m=on", 0.5);
        model.transition("m=on", "m=on", 0.5, transNominal, true);
        model.clause("!m=on r");
        model.start();
        model.label("m=on !m=off");
    }
    double likelihood() {
        model.engine.computeObsCondRough(model.state());
        return model.state()->obsProb;
    }
};

TEST_F(ItmsLikelihood, WithNothingHeldTrueItIsOne) {
    begin();
    model.state()->obsProb = 0.4;
    model.elt("r")->lock = LOCK_FALSE;
    model.elt("p")->lock = LOCK_FALSE_PERM;
    EXPECT_EQ(likelihood(), 1.0);
}

TEST_F(ItmsLikelihood, EachHeldElementSumsOverWhatLeadsToTheModesThatHold) {
    begin();
    model.elt("r")->lock = LOCK_TRUE;  // the clause links it to m=on: 1 for each of the two
    EXPECT_EQ(likelihood(), 2.0);
    model.elt("n=b")->lock = LOCK_TRUE_PERM;  // unrelated: 1/3 for each of the two
    EXPECT_NEAR(likelihood(), 2.0 * 2.0 / 3.0, tolerance);
}

TEST_F(ItmsLikelihood, OnlyModesThatHoldCount) {
    begin();
    model.elt("r")->lock = LOCK_TRUE;
    model.label("?m=on");
    EXPECT_EQ(likelihood(), 0.0);
    model.label("m=on");
    model.atom("m=on")->var->type = typeCond;
    EXPECT_EQ(likelihood(), 0.0);
}

TEST_F(ItmsProbabilities, PredictedAtomsAreTheOppositesAndTheAtomItself) {
    model.clause("!q r m=on");
    using Atoms = std::vector<Atom*>;
    EXPECT_EQ(itms::predictedAtoms(model.atom("q"), {}),
              (Atoms{model.atom("p"), model.atom("r"), model.atom("m=on"), model.atom("q")}));
    Atoms const given = {model.atom("q"), model.atom("r")};
    EXPECT_EQ(itms::predictedAtoms(model.atom("q"), given),
              (Atoms{model.atom("q"), model.atom("r"), model.atom("p"), model.atom("m=on")}));
    EXPECT_EQ(itms::predictedAtoms(model.atom("p"), {}), (Atoms{model.atom("q"), model.atom("p")}));
}

TEST_F(ItmsProbabilities, TheChanceOfAnAtomGivenObservationsIsTheShareThatItPredicts) {
    // q predicts p and q.
    EXPECT_EQ(itms::probaCondObsAtom(model.atom("q"),
                                     {model.atom("p"), model.atom("r"), model.atom("n=a")}),
              1.0 / 3.0);
    EXPECT_EQ(itms::probaCondObsAtom(model.atom("q"), {model.atom("p"), model.atom("q")}), 1.0);
    EXPECT_EQ(itms::probaCondObsAtom(model.atom("r"), {model.atom("p")}), 0.0);
    EXPECT_TRUE(std::isnan(itms::probaCondObsAtom(model.atom("r"), {})));
}

class ItmsFormulas : public ItmsProbabilities {
protected:
    bool holds(std::string const& literals, std::string const& operat, int t = 0) {
        auto formula =
            literals.empty() ? std::make_unique<StateFormula>() : model.formula(literals);
        formula->operat = operat;
        return itms::evalStateFormula(formula.get(), model.history.get(), t);
    }
};

TEST_F(ItmsFormulas, AConjunctionAsksForAllLiterals) {
    begin();
    model.label("p !q ?r");
    for (char const* conjunction : {"and", ""}) {
        EXPECT_TRUE(holds("p", conjunction));
        EXPECT_TRUE(holds("p !q", conjunction));
        EXPECT_FALSE(holds("p q", conjunction));
        EXPECT_FALSE(holds("q p", conjunction));
        EXPECT_FALSE(holds("r", conjunction));
        EXPECT_TRUE(holds("!r", conjunction));  // unknown is not true
    }
}

TEST_F(ItmsFormulas, ADisjunctionAsksForOne) {
    begin();
    model.label("p !q ?r");
    EXPECT_TRUE(holds("p q", "or"));
    EXPECT_TRUE(holds("q p", "or"));
    EXPECT_FALSE(holds("q r", "or"));
    EXPECT_TRUE(holds("q !r", "or"));
}

TEST_F(ItmsFormulas, NothingAndOtherOperatorsAreFalse) {
    begin();
    model.label("p");
    EXPECT_FALSE(holds("", "and"));
    EXPECT_FALSE(holds("", ""));
    EXPECT_FALSE(holds("", "or"));
    EXPECT_FALSE(holds("p", "xor"));
}

TEST_F(ItmsFormulas, TheNewestElementUpToTheStepIsRead) {
    begin();
    model.label("p");
    model.history->addState(1, std::make_unique<State>(theRun().scheduler.book));
    model.history->addState(2, std::make_unique<State>(theRun().scheduler.book));
    TrajEl* later = model.history->getState(2)->addElt(model.elt("p"), true);
    later->setLabel(labelFalse);
    EXPECT_TRUE(holds("p", "and", 0));
    EXPECT_TRUE(holds("p", "and", 1));
    EXPECT_FALSE(holds("p", "and", 2));
}

// All literals are read: an atom that no step holds is told even where the result is settled.
TEST_F(ItmsFormulas, EveryLiteralIsRead) {
    begin();
    model.label("!p q");
    model.state()->removeElt(model.atom("r")->getId());
    model.trace.take();
    EXPECT_FALSE(holds("r p", "and"));
    EXPECT_FALSE(holds("p r", "and"));
    EXPECT_TRUE(holds("r q", "or"));
    EXPECT_TRUE(holds("q r", "or"));
    EXPECT_EQ(count(model.trace.take(), "Error: atom not found... c.r=on\n"), 4);
}

}  // namespace
