// The agenda loop: unit clauses, the order of the solutions, lost branches, and what is printed.
#include "fixtures/the_run.h"
#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::count;
using reasoning_fixture::SmallModel;

namespace {

char const* const lost = "a sol has been discarded...\n";
char const* const found = "sol added !\n";
char const* const conflict = "[propagateThroughConflict] --> beginning propagation\n";
char const* const unit = "[propagateClause] --> propagating (setting to true) :\n";

class ItmsPropagation : public testing::Test {
protected:
    // Takes a copy of state 0, in which *changed* counts as changed, through the loop.
    ItmsResults propagate(std::string const& changed, SearchLimits const& limits = {false, 9.0}) {
        auto branch = std::make_unique<ItmsRes>(std::make_unique<State>(model.state(), true));
        branch->already_changed = itms::copyState(model.table(changed), branch->state.get());
        ItmsResults results;
        model.engine.unitPropagate(std::move(branch), results, limits, model.history.get(), 0);
        return results;
    }

    SmallModel model;
};

TEST_F(ItmsPropagation, TheFirstUnitClauseGoesByElementsThenByTheirClauses) {
    model.propositions("p q r");
    Clause* held = model.clause("p q");
    Clause* first = model.clause("q r");
    model.clause("!r q");
    model.start();
    model.label("p !q ?r");
    std::vector<TrajEl*> const elements = {model.elt("p"), model.elt("q"), model.elt("r")};
    EXPECT_EQ(model.engine.getFirstUnitClause(elements, model.site()), first);
    EXPECT_EQ(model.trace.take(), "cl size: 2\nc.q=on \\/ c.r=on\n");
    EXPECT_EQ(model.engine.getFirstUnitClause({model.elt("p")}, model.site()), nullptr);
    EXPECT_EQ(model.trace.take(), "");
    model.label("!p ?q");
    EXPECT_EQ(model.engine.getFirstUnitClause(elements, model.site()), held);
}

TEST_F(ItmsPropagation, OtherFormsSearchTheClausesOfAnAtomOrAll) {
    model.propositions("p q r");
    model.clause("p");
    Clause* pq = model.clause("p q");
    Clause* qr = model.clause("r q");
    model.start();
    model.label("p ?q !r");
    EXPECT_EQ(model.engine.getFirstUnitClause(model.atom("p"), model.site()), nullptr);
    EXPECT_EQ(model.engine.getFirstUnitClause(model.atom("q"), model.site()), qr);
    EXPECT_EQ(model.trace.take(), "cl size: 2\nc.r=on \\/ c.q=on\n");
    EXPECT_EQ(model.engine.getFirstUnitClause(model.site()), qr);
    EXPECT_EQ(model.trace.take(), "cl size: 2\nc.r=on \\/ c.q=on\n");
    model.label("!p");
    EXPECT_EQ(model.engine.getFirstUnitClause(model.site()), pq);
    model.label("p q");
    EXPECT_EQ(model.engine.getFirstUnitClause(model.site()), nullptr);
}

TEST_F(ItmsPropagation, AUnitClauseMakesItsFirstUnknownTrueWhateverTheSign) {
    model.propositions("p q");
    Clause* clause = model.clause("!p q");
    model.start();
    EXPECT_EQ(model.engine.unitClause(clause, model.site()), model.elt("q"));
    model.engine.propagateClause(clause, model.site());
    EXPECT_EQ(model.labels("p q"), "tu");
    std::string const text = model.trace.take();
    EXPECT_EQ(text.find(unit), 0u);
    // The element is shown as it was before.
    EXPECT_NE(text.find("c.p=on --> [0]\nlabel : unknown\n"), std::string::npos);
}

TEST_F(ItmsPropagation, WhatAUnitClauseMadeTrueHasNoSupport) {
    model.propositions("p q");
    Clause* clause = model.clause("p q");
    model.start();
    model.label("!p");
    model.elt("p")->propagationNumber = 4;
    model.engine.propagateClause(clause, model.site());
    EXPECT_EQ(model.labels("p q"), "ft");
    EXPECT_EQ(model.elt("q")->support, nullptr);
    EXPECT_EQ(model.elt("q")->propagationNumber, 0);
    EXPECT_TRUE(model.elt("p")->consequences.empty());
    EXPECT_TRUE(model.elt("q")->consequences.empty());
}

TEST_F(ItmsPropagation, WithNothingChangedTheBranchIsTheOnlySolution) {
    model.propositions("p q");
    model.clause("p q");
    model.start();
    model.label("!p !q");  // violated, but nobody looks
    ItmsResults const results = propagate("");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(model.labels("p q", results[0]->state.get()), "ff");
    EXPECT_EQ(model.trace.take(),
              "a sol has been discarded...\n"
              "sol added !\n"
              "agenda's size : 0\n"
              "already_changed's size end : 0\n");
}

TEST_F(ItmsPropagation, ALostBranchIsToldAfterTheFirstLine) {
    model.propositions("p");
    model.clause("p");
    model.start();
    model.label("p");
    EXPECT_TRUE(model.assertAll("!p").empty());
    std::string const text = model.trace.take();
    EXPECT_EQ(count(text, lost), 2);
    EXPECT_EQ(count(text, found), 0);
}

// a is asked to be false, so b or c must be true; each of them is forbidden without a.
TEST_F(ItmsPropagation, WhenEveryBranchFailsThereIsALineForEachAndOneMore) {
    model.propositions("a b c");
    model.clause("a b c");
    model.clause("!b a");
    model.clause("!c a");
    model.start();
    model.label("a !b !c");
    EXPECT_TRUE(model.assertAll("!a").empty());
    EXPECT_EQ(count(model.trace.take(), lost), 3);
}

TEST_F(ItmsPropagation, TheFirstCandidateComesFirstThenTheLastPushed) {
    model.propositions("a b c d");
    model.clause("a b c d");
    model.start();
    model.label("a !b !c !d");
    ItmsResults const results = model.assertAll("!a");
    ASSERT_EQ(results.size(), 3u);
    EXPECT_EQ(model.labels("a b c d", results[0]->state.get()), "ftff");
    EXPECT_EQ(model.labels("a b c d", results[1]->state.get()), "ffft");
    EXPECT_EQ(model.labels("a b c d", results[2]->state.get()), "fftf");
    std::string const text = model.trace.take();
    EXPECT_EQ(count(text, lost), 1);
    EXPECT_EQ(count(text, found), 3);
    EXPECT_LT(text.find("agenda's size : 2\n"), text.find("agenda's size : 1\n"));
    EXPECT_LT(text.find("agenda's size : 1\n"), text.find("agenda's size : 0\n"));
    EXPECT_EQ(count(text, "already_changed's size end : 2\n"), 3);
}

// The branch of c waits on the agenda with an empty queue; what its flip violates is found when it
// is taken up, after a solution.
TEST_F(ItmsPropagation, AWaitingBranchIsCheckedWhenItIsTakenUpAfterASolution) {
    model.propositions("a b c e");
    model.clause("a b c");
    model.clause("!c e");
    model.start();
    model.label("a !b !c !e");
    ItmsResults const results = model.assertAll("!a");
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(model.labels("a b c e", results[0]->state.get()), "ftff");
    EXPECT_EQ(model.labels("a b c e", results[1]->state.get()), "fftt");
}

// The same after a lost branch: b cannot hold.
TEST_F(ItmsPropagation, AWaitingBranchIsCheckedWhenItIsTakenUpAfterALoss) {
    model.propositions("a b c e");
    model.clause("a b c");
    model.clause("!b");
    model.clause("!c e");
    model.start();
    model.label("a !b !c !e");
    ItmsResults const results = model.assertAll("!a");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(model.labels("a b c e", results[0]->state.get()), "fftt");
    EXPECT_EQ(count(model.trace.take(), lost), 2);
}

TEST_F(ItmsPropagation, ASolutionStandsUnderTheClausesOfWhatItsBranchChanged) {
    model.propositions("a b c d e");
    model.clause("!a b");
    model.clause("!b c");
    model.clause("!c d");
    model.clause("!d e");
    model.start();
    model.label("!a !b !c !d !e");
    ItmsResults const results = model.assertAll("a");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(model.labels("a b c d e", results[0]->state.get()), "ttttt");
    // Numbers rise along the chain of supports.
    EXPECT_EQ(model.elt("a", results[0]->state.get())->propagationNumber, 0);
    EXPECT_EQ(model.elt("b", results[0]->state.get())->propagationNumber, 1);
    EXPECT_EQ(model.elt("c", results[0]->state.get())->propagationNumber, 2);
    EXPECT_EQ(model.elt("e", results[0]->state.get())->propagationNumber, 4);
}

TEST_F(ItmsPropagation, UnknownElementsOfSatisfiedClausesAreSupportedFirst) {
    model.propositions("p q");
    Clause* clause = model.clause("!p q");
    model.start();
    model.label("!p");
    ItmsResults const results = propagate("p");
    ASSERT_EQ(results.size(), 1u);
    TrajEl const* q = model.elt("q", results[0]->state.get());
    EXPECT_EQ(q->support, clause);
    EXPECT_TRUE(q->isLabelled(labelUnknown));
    EXPECT_EQ(results[0]->focus.size(), 1u);
    EXPECT_EQ(results[0]->focus.count("c.q=on"), 1u);
}

TEST_F(ItmsPropagation, InternalConflictsComeBeforeTheOthers) {
    StateVar* mode = model.variable("m", {"on", "off"}, false);
    model.propositions("p");
    model.clause("p !m=off");
    addExclusiveChoice(thePlant(), mode);
    model.start();
    model.label("m=on !m=off !p");
    EXPECT_EQ(model.assertAll("m=off").size(), 1u);
    std::string const text = model.trace.take();
    std::size_t const inner = text.find("non - c.m=on");
    std::size_t const outer = text.find("c.p=on");
    EXPECT_NE(inner, std::string::npos);
    EXPECT_LT(inner, outer);
}

TEST_F(ItmsPropagation, AClauseThatWasQueuedTwiceIsHandledOnce) {
    model.propositions("p q r");
    model.clause("!p !q r");
    model.start();
    model.label("!p !q !r");
    ItmsResults const results = model.assertAll("p q");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(model.labels("p q r", results[0]->state.get()), "ttt");
    EXPECT_EQ(count(model.trace.take(), conflict), 1);
}

class ItmsRetraction : public ItmsPropagation {
protected:
    // Asking for "a" makes x false, and d hangs on x without a support.
    void begin(std::string const& labels) {
        model.clause("!a !x");
        model.start();
        model.label("!a x " + labels);
        model.elt("x")->consequences = {model.elt("d")};
    }
};

TEST_F(ItmsRetraction, AUnitClauseOfARetractedElementIsPropagated) {
    model.propositions("a x d e");
    model.clause("d e");
    begin("d !e");
    ItmsResults const results = model.assertAll("a");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(model.labels("a x d e", results[0]->state.get()), "tftf");
    EXPECT_EQ(count(model.trace.take(), unit), 1);
    ASSERT_EQ(results[0]->deleted.size(), 1u);
    EXPECT_EQ(results[0]->deleted[0], model.elt("d", results[0]->state.get()));
}

TEST_F(ItmsRetraction, ARetractedElementWithoutAUnitClauseStaysUnknown) {
    model.propositions("a x d e");
    model.clause("d e");
    begin("d e");
    ItmsResults const results = model.assertAll("a");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(model.labels("a x d e", results[0]->state.get()), "tfut");
    EXPECT_EQ(count(model.trace.take(), unit), 0);
}

// d becomes true although its literal is negated, and e, the other one, was not changed on the
// branch: nothing in the focus mentions the clause, so the solution leaves it violated.
TEST_F(ItmsRetraction, APropagatedElementOutsideTheFocusIsNotCheckedAgain) {
    model.propositions("a x d e");
    Clause* broken = model.clause("!d e");
    begin("!d !e");
    ItmsResults const results = model.assertAll("a");
    ASSERT_EQ(results.size(), 1u);
    State* state = results[0]->state.get();
    EXPECT_EQ(model.labels("a x d e", state), "tftf");
    EXPECT_TRUE(model.engine.isViolated(broken, model.site(state)));
}

// The same with e in the focus, as a proposition: the check decides, and turns d back.
TEST_F(ItmsRetraction, APropagatedElementInTheFocusIsDecidedByTheNextCheck) {
    model.propositions("a x d e");
    model.clause("!d e");
    begin("!d !e");
    ItmsResults const results = model.assertAll("a !e");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(model.labels("a x d e", results[0]->state.get()), "tfff");
}

TEST_F(ItmsPropagation, ASolutionHasItsTransitionsSorted) {
    model.variable("m", {"on", "off"});
    Transition* rare = model.transition("m=on", "m=off", 0.25);
    Transition* often = model.transition("m=off", "m=on", 0.75);
    model.start();
    model.weigh({"c"});
    ItmsResults const results = model.assertAll("m=on");
    ASSERT_EQ(results.size(), 1u);
    auto const& sorted = results[0]->state->sortedPostProbs;
    ASSERT_EQ(sorted.size(), 2u);
    EXPECT_EQ(sorted.begin()->second, often->id);
    EXPECT_EQ(sorted.rbegin()->second, rare->id);
}

TEST_F(ItmsPropagation, OnlyAnObservedSolutionGetsTheLikelihoodOfItsObservations) {
    model.propositions("p");
    model.clause("p");
    model.start();
    model.label("p");
    model.elt("p")->lock = LOCK_TRUE_PERM;  // held true, and no transition leads to a mode: 0
    EXPECT_EQ(propagate("p")[0]->state->obsProb, 1.0);
    model.state()->observed = true;
    EXPECT_EQ(propagate("p")[0]->state->obsProb, 0.0);
}

}  // namespace
