// Elements of a state, tests of clauses over labels, supports, and the engine's tables.
#include "fixtures/the_run.h"
#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::SmallModel;

namespace {

class ItmsElements : public testing::Test {
protected:
    ItmsElements() {
        model.comp("d");
        model.variable("m", {"on", "off"});
        model.variable("q", {"up"}, true, "d");
        auto* seen = model.variable("seen", {"yes", "no"});
        seen->type = typeObservable;
        idle = model.transition("m=on", "m=on", 1.0, transNominal, true);
        model.start();
        model.history->addState(1, std::make_unique<State>(theRun().scheduler.book));
        later = model.history->getState(1);
    }
    StateSite siteAt1() { return {later, model.history.get(), 1}; }
    TrajEl* pull(char const* name) { return model.engine.getElt(id(name), siteAt1()); }
    char const* id(char const* name) { return model.atom(name)->getId(); }

    SmallModel model;
    Transition* idle;
    State* later;
};

TEST_F(ItmsElements, OneThatTheStateHoldsIsAnsweredAsItIs) {
    EXPECT_EQ(model.engine.getElt(id("m=on"), model.site()), model.elt("m=on"));
    EXPECT_EQ(model.trace.take(), "");
}

TEST_F(ItmsElements, AMissingOneBringsItsWholeComponentForward) {
    model.elt("m=off")->lock = LOCK_FALSE;
    TrajEl* pulled = pull("m=off");
    ASSERT_NE(pulled, nullptr);
    EXPECT_EQ(pulled, model.elt("m=off", later));
    EXPECT_NE(pulled, model.elt("m=off"));
    EXPECT_EQ(model.labels("m=on m=off seen=yes seen=no", later), "tftf");
    EXPECT_EQ(pulled->lock, LOCK_FREE);
    EXPECT_EQ(model.elt("q=up", later), nullptr);  // another component
    EXPECT_EQ(later->comps.count("c"), 1u);
    EXPECT_EQ(later->comps.count("d"), 0u);
}

TEST_F(ItmsElements, WithIdleAModeThatHoldsGoesOnByItsIdleTransition) {
    pull("seen=no");
    EXPECT_EQ(model.elt("m=on", later)->prevTrans, idle);
    EXPECT_EQ(model.elt("m=on")->nextTrans[idle->id], idle);
}

TEST_F(ItmsElements, WithoutIdleItDoesNot) {
    model.engine.getElt(id("seen=no"), siteAt1(), false);
    EXPECT_EQ(model.elt("m=on", later)->prevTrans, nullptr);
    EXPECT_TRUE(model.elt("m=on")->nextTrans.empty());
}

TEST_F(ItmsElements, LocksComeAlongOnRequestForObservables) {
    model.elt("seen=yes")->lock = LOCK_TRUE_PERM;
    model.elt("m=on")->lock = LOCK_TRUE_PERM;
    model.engine.keepLocks = true;
    pull("m=on");
    EXPECT_EQ(model.elt("seen=yes", later)->lock, LOCK_TRUE_PERM);
    EXPECT_EQ(model.elt("m=on", later)->lock, LOCK_FREE);
}

TEST_F(ItmsElements, WithoutTheRequestNoLockComesAlong) {
    model.elt("seen=yes")->lock = LOCK_TRUE_PERM;
    pull("seen=yes");
    EXPECT_EQ(model.elt("seen=yes", later)->lock, LOCK_FREE);
}

TEST_F(ItmsElements, AnAtomThatNoStepKnowsIsNullAndEntersNothing) {
    std::size_t const before = later->elts.size();
    EXPECT_EQ(model.engine.getElt("c.nobody=on", siteAt1()), nullptr);
    EXPECT_EQ(later->elts.size(), before);
    EXPECT_EQ(model.trace.take(), "Error: atom not found... c.nobody=on\n");
}

TEST_F(ItmsElements, CopyStateAnswersTheElementsOfTheOtherState) {
    State copy(model.state(), true);
    ElementTable const table = itms::copyState(model.table("m=on seen=no"), &copy);
    EXPECT_EQ(table.size(), 2u);
    EXPECT_EQ(table.find("c.m=on")->second, model.elt("m=on", &copy));
    EXPECT_EQ(table.find("c.seen=no")->second, model.elt("seen=no", &copy));
}

TEST_F(ItmsElements, AValueThatItsVariableRefusedStopsNothing) {
    Atom refused(model.atom("m=on")->var, "purple", "c.m=purple");
    Clause odd(model.comps.at("c"));
    odd.addAtom(&refused, true);
    TrajEl element(theRun().scheduler.book, &refused, nullptr, nullptr, labelTrue);
    TrajEl* entered = model.state()->addElt(&element, true);
    EXPECT_EQ(model.engine.getElt("c.m=purple", siteAt1()), nullptr);
    EXPECT_EQ(model.engine.checkForInternalConflicts(entered, model.site()), nullptr);
    EXPECT_EQ(model.resolve(&odd), nullptr);
    model.state()->removeElt("c.m=purple");
}

// Three propositions, all unknown.
class ItmsThree : public testing::Test {
protected:
    ItmsThree() { model.propositions("p q r"); }

    void begin() {
        model.clause("p q r");  // an atom that stands in no clause would have no element
        model.start();
        ASSERT_EQ(model.labels("p q r"), "uuu");
    }
    // The truth of the sole literal, on the element of p, for a label.
    std::string truthOf(Clause const* clause, std::string const& label) {
        model.elt("p")->setLabel(label);
        return model.engine.evalAtomOnLabels(clause->atoms.begin(), model.site());
    }

    SmallModel model;
};

TEST_F(ItmsThree, ALiteralIsTrueByLabelAndSign) {
    Clause* plain = model.clause("p");
    Clause* negated = model.clause("!p");
    begin();
    EXPECT_EQ(truthOf(plain, "true"), "true");
    EXPECT_EQ(truthOf(plain, "false"), "false");
    EXPECT_EQ(truthOf(plain, "unknown"), "unknown");
    EXPECT_EQ(truthOf(negated, "true"), "false");
    EXPECT_EQ(truthOf(negated, "false"), "true");
    EXPECT_EQ(truthOf(negated, "unknown"), "unknown");
    EXPECT_EQ(truthOf(plain, "maybe"), "");
    EXPECT_EQ(truthOf(negated, "maybe"), "");
}

TEST_F(ItmsThree, AClauseHoldsByOneTrueLiteral) {
    Clause* clause = model.clause("p q !r");
    begin();
    EXPECT_FALSE(model.engine.testClause(clause, model.site()));  // unknown does not satisfy
    model.label("!p !q r");
    EXPECT_FALSE(model.engine.testClause(clause, model.site()));
    model.label("q");
    EXPECT_TRUE(model.engine.testClause(clause, model.site()));
    model.label("!q !r");
    EXPECT_TRUE(model.engine.testClause(clause, model.site()));
}

TEST_F(ItmsThree, AClauseOfUnknownsIsNeitherViolatedNorSatisfied) {
    Clause* clause = model.clause("p q r");
    begin();
    EXPECT_FALSE(model.engine.testClause(clause, model.site()));
    EXPECT_FALSE(model.engine.isViolated(clause, model.site()));
    model.label("!p !q");
    EXPECT_FALSE(model.engine.isViolated(clause, model.site()));
    model.label("!r");
    EXPECT_TRUE(model.engine.isViolated(clause, model.site()));
}

TEST_F(ItmsThree, AnEmptyClauseIsViolatedAndNothingElse) {
    Clause const empty(model.comps.at("c"));
    begin();
    EXPECT_TRUE(model.engine.isViolated(&empty, model.site()));
    EXPECT_EQ(model.engine.getUnknown(&empty, model.site()), nullptr);
    EXPECT_EQ(model.engine.unitClause(&empty, model.site()), nullptr);
    EXPECT_EQ(model.engine.maxPropagationNumber(&empty, model.site()), 0);
}

TEST_F(ItmsThree, GetUnknownAnswersTheFirst) {
    Clause* clause = model.clause("p q r");
    begin();
    EXPECT_EQ(model.engine.getUnknown(clause, model.site()), model.elt("p"));
    model.label("p");
    EXPECT_EQ(model.engine.getUnknown(clause, model.site()), model.elt("q"));
    model.label("!q r");
    EXPECT_EQ(model.engine.getUnknown(clause, model.site()), nullptr);
}

TEST_F(ItmsThree, GetNotUnknownCollectsTheUnknownWithTheirSigns) {
    Clause* clause = model.clause("p !q !r");
    begin();
    model.label("p");
    SignedElements const found = model.engine.getNotUnknown(clause, model.site());
    ASSERT_EQ(found.size(), 2u);
    for (auto const& [key, element] : found) {
        EXPECT_TRUE(key);
        EXPECT_TRUE(element == model.elt("q") || element == model.elt("r"));
    }
}

TEST_F(ItmsThree, GetNotUnknownSkipsWhatNoStepHolds) {
    Clause* clause = model.clause("p q r");
    begin();
    model.state()->removeElt(model.atom("q")->getId());
    EXPECT_EQ(model.engine.getNotUnknown(clause, model.site()).size(), 2u);
    EXPECT_EQ(model.engine.getUnknown(clause, model.site()), model.elt("p"));
}

TEST_F(ItmsThree, AUnitClauseAnswersTheLastUnknown) {
    Clause* clause = model.clause("p q r");
    begin();
    EXPECT_EQ(model.engine.unitClause(clause, model.site()), model.elt("r"));
    model.label("!r");
    EXPECT_EQ(model.engine.unitClause(clause, model.site()), model.elt("q"));
    model.label("!q");
    EXPECT_EQ(model.engine.unitClause(clause, model.site()), model.elt("p"));
    model.label("!p");
    EXPECT_EQ(model.engine.unitClause(clause, model.site()), nullptr);
}

TEST_F(ItmsThree, APlainLiteralThatHoldsEndsTheSearchForAUnit) {
    Clause* clause = model.clause("p q r");
    begin();
    model.label("r");
    EXPECT_EQ(model.engine.unitClause(clause, model.site()), nullptr);
}

TEST_F(ItmsThree, ANegatedLiteralThatHoldsDoesNot) {
    Clause* clause = model.clause("!p q");
    begin();
    model.label("!p");
    ASSERT_TRUE(model.engine.testClause(clause, model.site()));
    EXPECT_EQ(model.engine.unitClause(clause, model.site()), model.elt("q"));
}

TEST_F(ItmsThree, TheHighestNumberCountsEveryElementOfTheClause) {
    Clause* clause = model.clause("p q r");
    begin();
    EXPECT_EQ(model.engine.maxPropagationNumber(clause, model.site()), 0);
    model.elt("p")->propagationNumber = 3;
    model.elt("q")->propagationNumber = 7;
    EXPECT_EQ(model.engine.maxPropagationNumber(clause, model.site()), 7);
    model.elt("q")->propagationNumber = -2;
    model.elt("p")->propagationNumber = -1;
    EXPECT_EQ(model.engine.maxPropagationNumber(clause, model.site()), 0);  // from 0 upwards
}

TEST_F(ItmsThree, AnElementIsResupportableUnderItsOwnSignOnly) {
    Clause* clause = model.clause("p !q");
    begin();
    EXPECT_TRUE(model.engine.isResupportable(model.elt("p"), clause, false, model.site()));
    EXPECT_FALSE(model.engine.isResupportable(model.elt("p"), clause, true, model.site()));
    EXPECT_TRUE(model.engine.isResupportable(model.elt("q"), clause, true, model.site()));
}

TEST_F(ItmsThree, AnotherElementThatIsTrueForbidsTheSupport) {
    Clause* clause = model.clause("p q");
    begin();
    model.label("q");
    EXPECT_FALSE(model.engine.isResupportable(model.elt("p"), clause, false, model.site()));
    model.label("!q");
    EXPECT_TRUE(model.engine.isResupportable(model.elt("p"), clause, false, model.site()));
}

TEST_F(ItmsThree, TheNumberIsComparedWithTheAtomOfStartUpAndNotWithItsElement) {
    Clause* clause = model.clause("p q");
    begin();
    model.elt("p")->propagationNumber = 1;
    model.elt("q")->propagationNumber = 9;
    EXPECT_FALSE(model.engine.isResupportable(model.elt("p"), clause, false, model.site()));
    model.atom("q")->propagationNumber = 1;
    EXPECT_TRUE(model.engine.isResupportable(model.elt("p"), clause, false, model.site()));
}

TEST_F(ItmsThree, ASupportLinksTheElementToTheOthersOfTheClause) {
    Clause* clause = model.clause("p q !r");
    begin();
    model.engine.setSupport(clause, model.elt("p"), model.site());
    EXPECT_EQ(model.elt("p")->support, clause);
    EXPECT_TRUE(model.elt("p")->consequences.empty());
    EXPECT_EQ(model.elt("q")->consequences, std::vector<TrajEl*>{model.elt("p")});
    EXPECT_EQ(model.elt("r")->consequences, std::vector<TrajEl*>{model.elt("p")});
}

TEST_F(ItmsThree, ANewSupportTakesTheFirstLinkOfTheOldOneAway) {
    Clause* old = model.clause("p q");
    Clause* fresh = model.clause("p r");
    begin();
    TrajEl* p = model.elt("p");
    TrajEl* q = model.elt("q");
    model.engine.setSupport(old, p, model.site());
    q->consequences = {model.elt("r"), p, p};
    model.engine.setSupport(fresh, p, model.site());
    EXPECT_EQ(p->support, fresh);
    EXPECT_EQ(q->consequences, (std::vector<TrajEl*>{model.elt("r"), p}));
    EXPECT_EQ(model.elt("r")->consequences, std::vector<TrajEl*>{p});
}

TEST_F(ItmsThree, OnlyElementsOfTheStateItselfAreLinkedToANewSupport) {
    model.comp("d");
    model.propositions("far", "d");
    Clause* clause = model.clause("p far");
    begin();
    model.history->addState(1, std::make_unique<State>(theRun().scheduler.book));
    State* later = model.history->getState(1);
    StateSite const site{later, model.history.get(), 1};
    TrajEl* p = model.engine.getElt(model.atom("p")->getId(), site);
    model.engine.setSupport(clause, p, site);
    EXPECT_EQ(model.elt("far", later), nullptr);  // not pulled forward
    EXPECT_EQ(p->support, clause);
}

TEST_F(ItmsThree, TheOldSupportIsReachedAcrossSteps) {
    model.comp("d");
    model.propositions("far", "d");
    Clause* old = model.clause("p far");
    Clause* fresh = model.clause("p q r");
    begin();
    model.engine.setSupport(old, model.elt("p"), model.site());
    model.history->addState(1, std::make_unique<State>(theRun().scheduler.book));
    State* later = model.history->getState(1);
    StateSite const site{later, model.history.get(), 1};
    TrajEl* p = model.engine.getElt(model.atom("p")->getId(), site);
    ASSERT_EQ(p->support, old);
    model.engine.setSupport(fresh, p, site);
    EXPECT_NE(model.elt("far", later), nullptr);  // pulled forward to be unlinked
}

TEST_F(ItmsThree, MembershipIsByIdentityAndOfTextsByContent) {
    Clause* in = model.clause("p");
    Clause* out = model.clause("p q r");
    Transition* move = model.transition("p", "q", 0.5);
    Transition* other = model.transition("p", "q", 0.5);
    begin();
    std::vector<TrajEl*> const elements = {model.elt("p"), model.elt("q")};
    EXPECT_TRUE(itms::inVector(model.elt("q"), &elements));
    EXPECT_FALSE(itms::inVector(model.elt("r"), &elements));
    std::vector<Transition*> const transitions = {move};
    EXPECT_TRUE(itms::inVector(move, &transitions));
    EXPECT_FALSE(itms::inVector(other, &transitions));
    std::vector<StateVar*> const variables = {model.atom("p")->var};
    EXPECT_TRUE(itms::inVectorStateVar(model.atom("p")->var, &variables));
    EXPECT_FALSE(itms::inVectorStateVar(model.atom("q")->var, &variables));
    std::vector<Clause*> const clauses = {in};
    EXPECT_TRUE(itms::inVectorClause(in, &clauses));
    EXPECT_FALSE(itms::inVectorClause(out, &clauses));
    std::vector<Atom*> const atoms = {model.atom("p")};
    EXPECT_TRUE(itms::inVector(model.atom("p"), &atoms));
    EXPECT_FALSE(itms::inVector(model.atom("q"), &atoms));
    std::string const same = "p";
    std::vector<char const*> const texts = {"p", "q"};
    EXPECT_TRUE(itms::inVector(same.c_str(), &texts));
    EXPECT_FALSE(itms::inVector("r", &texts));
}

TEST_F(ItmsThree, MembershipOfABagIgnoresTheSign) {
    SignedAtoms bag;
    bag.insert({true, model.atom("p")});
    bag.insert({false, model.atom("q")});
    EXPECT_TRUE(itms::inMultimap(model.atom("p"), bag));
    EXPECT_TRUE(itms::inMultimap(model.atom("q"), bag));
    EXPECT_FALSE(itms::inMultimap(model.atom("r"), bag));
}

TEST_F(ItmsElements, VariablesOfElementsComeByName) {
    std::vector<TrajEl*> const elements = {model.elt("m=on"), model.elt("m=off"),
                                           model.elt("q=up")};
    string_map<StateVar*> const variables = itms::getStateVars(&elements);
    EXPECT_EQ(variables.size(), 2u);
    EXPECT_EQ(variables.find("c.m")->second, model.atom("m=on")->var);
    EXPECT_EQ(variables.find("d.q")->second, model.atom("q=up")->var);
}

}  // namespace
