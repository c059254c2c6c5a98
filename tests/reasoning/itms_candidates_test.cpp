// Which elements of a violated clause may be flipped, and in which order they are tried.
#include <cmath>

#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::count;
using reasoning_fixture::SmallModel;

namespace {

SearchLimits const searching = {false, 9.0};
SearchLimits const observing = {true, 9.0};

// How many branches a conflict gave.
class ItmsCandidates : public testing::Test {
protected:
    std::size_t branches(Clause* clause, SearchLimits const& limits = searching,
                         std::string const& changed = "") {
        model.agenda = {};
        auto const continuing = model.resolve(clause, limits, changed);
        return model.agenda.size() + (continuing != nullptr ? 1 : 0);
    }

    SmallModel model;
};

class ItmsOneCandidate : public ItmsCandidates {
protected:
    // The clause of the sole proposition p; violated by the label.
    Clause* begin(bool label) {
        model.propositions("p");
        return finish(label);
    }
    Clause* finish(bool label) {
        Clause* clause = model.clause(label ? "!p" : "p");
        model.start();
        model.label(label ? "p" : "!p");
        return clause;
    }
    bool isCandidateUnder(int lock, Clause* clause) {
        model.elt("p")->lock = lock;
        return branches(clause) == 1;
    }
};

TEST_F(ItmsOneCandidate, AFalseElementIsHeldByTheLocksAtFalse) {
    Clause* clause = begin(false);
    EXPECT_TRUE(isCandidateUnder(LOCK_FREE, clause));
    EXPECT_FALSE(isCandidateUnder(LOCK_FALSE, clause));
    EXPECT_FALSE(isCandidateUnder(LOCK_FALSE_PERM, clause));
    EXPECT_TRUE(isCandidateUnder(LOCK_TRUE, clause));
    EXPECT_TRUE(isCandidateUnder(LOCK_TRUE_PERM, clause));
}

TEST_F(ItmsOneCandidate, ATrueElementIsHeldByTheLocksAtTrue) {
    Clause* clause = begin(true);
    EXPECT_TRUE(isCandidateUnder(LOCK_FREE, clause));
    EXPECT_FALSE(isCandidateUnder(LOCK_TRUE, clause));
    EXPECT_FALSE(isCandidateUnder(LOCK_TRUE_PERM, clause));
    EXPECT_TRUE(isCandidateUnder(LOCK_FALSE, clause));
    EXPECT_TRUE(isCandidateUnder(LOCK_FALSE_PERM, clause));
}

TEST_F(ItmsOneCandidate, AnUnknownElementIsNone) {
    Clause* clause = begin(false);
    model.label("?p");
    EXPECT_EQ(branches(clause), 0u);
}

TEST_F(ItmsOneCandidate, WhatTheBranchChangedIsNone) {
    Clause* clause = begin(false);
    EXPECT_EQ(branches(clause, searching, "p"), 0u);
}

TEST_F(ItmsOneCandidate, AFailureIsOneAsLongAsTheRankAllows) {
    Clause* clause = begin(false);
    model.atom("p")->failure = true;
    EXPECT_EQ(branches(clause, {false, 0.5}), 0u);
    EXPECT_EQ(branches(clause, {false, 1.0}), 1u);
    model.state()->failCount = 1.0;
    EXPECT_EQ(branches(clause, {false, 1.0}), 0u);
}

TEST_F(ItmsOneCandidate, ARepairIsOneWhateverTheRank) {
    Clause* clause = begin(true);
    model.atom("p")->failure = true;
    EXPECT_EQ(branches(clause, {false, -5.0}), 1u);
}

TEST_F(ItmsOneCandidate, WhileObservingAFalseConditionIsNone) {
    model.propositions<CondVar>("p");
    Clause* clause = finish(false);
    EXPECT_EQ(branches(clause, observing), 0u);
    EXPECT_EQ(branches(clause, searching), 1u);
}

TEST_F(ItmsOneCandidate, WhileObservingATrueConditionIsOne) {
    model.propositions<CondVar>("p");
    EXPECT_EQ(branches(finish(true), observing), 1u);
}

TEST_F(ItmsOneCandidate, WhileObservingAModeThatATransitionReachedIsNone) {
    Clause* clause = begin(false);
    EXPECT_EQ(branches(clause, observing), 1u);
    model.elt("p")->prevTrans = model.transition("p", "p", 0.5);
    EXPECT_EQ(branches(clause, observing), 0u);
    EXPECT_EQ(branches(clause, searching), 1u);
}

TEST_F(ItmsOneCandidate, WhileObservingACommandIsOneInBothDirections) {
    model.propositions<CommandVar>("p");
    Clause* clause = finish(false);
    model.elt("p")->prevTrans = model.transition("p", "p", 0.5);
    EXPECT_EQ(branches(clause, observing), 1u);
    model.label("p");
    EXPECT_EQ(branches(clause, observing), 1u);
}

TEST_F(ItmsOneCandidate, WhileSearchingATrueCommandIsOneAndAFalseOneNot) {
    model.propositions<CommandVar>("p");
    Clause* clause = finish(false);
    EXPECT_EQ(branches(clause, searching), 0u);
    model.label("p");
    EXPECT_EQ(branches(clause, searching), 1u);
}

TEST_F(ItmsCandidates, WhileSearchingTheIdleCommandIsOneInBothDirections) {
    model.variable<CommandVar>("cmd", {"none", "go"}, false);
    Clause* none = model.clause("cmd=none");
    Clause* go = model.clause("cmd=go");
    model.start();
    model.label("!cmd=none !cmd=go");
    EXPECT_EQ(branches(none), 1u);
    EXPECT_EQ(branches(go), 0u);
    model.label("cmd=none");
    EXPECT_EQ(branches(none), 1u);
}

TEST_F(ItmsCandidates, EveryLiteralThatIsHeldOrChangedLosesTheBranch) {
    model.propositions("p q r");
    Clause* clause = model.clause("p q r");
    model.start();
    model.label("!p !q !r");
    model.elt("q")->lock = LOCK_FALSE_PERM;
    model.elt("r")->lock = LOCK_FALSE;
    EXPECT_EQ(branches(clause, searching, "p"), 0u);
    EXPECT_EQ(count(model.trace.take(), "not_unknown's size : 0\n"), 1);
}

TEST_F(ItmsCandidates, AnEmptyClauseLosesTheBranch) {
    model.start();
    Clause empty(model.comps.at("c"));
    EXPECT_EQ(branches(&empty), 0u);
}

TEST_F(ItmsCandidates, AnAtomThatNoStepHoldsIsLeftOut) {
    model.propositions("p q");
    Clause* clause = model.clause("p q");
    model.start();
    model.label("!p");
    model.state()->removeElt(model.atom("q")->getId());
    EXPECT_EQ(branches(clause), 1u);
}

// Two components: the transitions t0 (to p) and t1 (to q) of c, and "far" in d, which c does not
// import. The weights are 1/2 and 1/4.
//   far: a one-valued variable, so each chance is 1/1: mass 3/4, entries 2/3 and 1/3, and
//        -3/4 (2/3 ln 2/3 + 1/3 ln 1/3) = 0.47738
//   p:   t0 leads to p, whose own clauses do not link it to itself: 0; t1 leads to q, which "!q p"
//        links to p: 1. Mass 1/4, entries 0 and 1: entropy 0
//   r:   of the component, but no clause links it to p or q: mass 0, not a number
class ItmsOrder : public ItmsCandidates {
protected:
    void begin() {
        model.comp("d");
        model.propositions("p q r");
        model.propositions("far", "d");
        t0 = model.transition("q", "p", 0.5);
        t1 = model.transition("p", "q", 0.25);
        model.clause("!q p");
        model.clause("p q r far");  // of one sign, so that it links none of them
    }
    void finish() {
        model.start();
        model.label("!p !q !r !far");
        model.weigh({"c", "d"});
    }
    // The names of the flipped elements: the one that goes on, then the agenda from its bottom.
    std::string order(Clause* clause) {
        std::vector<std::unique_ptr<ItmsRes>> results;
        auto continuing = model.resolve(clause);
        for (; !model.agenda.empty(); model.agenda.pop())
            results.insert(results.begin(), std::move(model.agenda.top()));
        results.insert(results.begin(), std::move(continuing));
        std::string names;
        for (auto const& result : results)
            for (char const* name : {"p", "q", "r", "far"})
                if (result && model.elt(name, result->state.get())->evalTrajEl())
                    names += std::string(name) + " ";
        return names;
    }

    Transition* t0 = nullptr;
    Transition* t1 = nullptr;
};

TEST_F(ItmsOrder, TheLowestEntropyComesFirst) {
    begin();
    Clause* clause = model.clause("far p");
    finish();
    EXPECT_EQ(order(clause), "p far ");
    EXPECT_EQ(count(model.trace.take(), "not_unknown's size : 2\n"), 1);
}

TEST_F(ItmsOrder, EqualEntropiesKeepTheOrderOfTheClause) {
    begin();
    Clause* clause = model.clause("r q p");
    model.start();
    model.label("!p !q !r");  // no component weighs: all are 0
    EXPECT_EQ(order(clause), "r q p ");
}

// A not-a-number is neither below nor above another key: what follows is entered behind it, and it
// is entered behind what is there.
TEST_F(ItmsOrder, NotANumberStaysWhereTheClauseHasIt) {
    begin();
    Clause* first = model.clause("r far");
    Clause* last = model.clause("far r");
    finish();
    model.engine.initPb(model.state());
    ASSERT_TRUE(std::isnan(model.engine.entropy(model.atom("r")->var, model.state())));
    EXPECT_EQ(order(first), "r far ");
    EXPECT_EQ(order(last), "far r ");
}

TEST_F(ItmsOrder, OnlyNotANumberIsAnOrderToo) {
    begin();
    model.propositions("s");
    Clause* clause = model.clause("r s");
    finish();
    model.label("!s");
    EXPECT_EQ(branches(clause), 2u);
}

TEST_F(ItmsOrder, TheFirstGoesOnAndTheOthersWait) {
    begin();
    Clause* clause = model.clause("r q p");
    model.start();
    model.label("!p !q !r");
    auto const continuing = model.resolve(clause);
    ASSERT_NE(continuing, nullptr);
    EXPECT_EQ(model.labels("r q p", continuing->state.get()), "tff");
    ASSERT_EQ(model.agenda.size(), 2u);
    EXPECT_EQ(model.labels("r q p", model.agenda.top()->state.get()), "fft");
}

TEST_F(ItmsOrder, TheBranchTakesTheWeightsThatGoWithItsFlip) {
    begin();
    Clause* clause = model.clause("p");
    finish();
    auto const branch = model.resolve(clause);
    ASSERT_NE(branch, nullptr);
    EXPECT_EQ(branch->state->postProbs.at(t0->id), 0.0);
    EXPECT_EQ(branch->state->postProbs.at(t1->id), 1.0);
    EXPECT_EQ(branch->state->postProbs.size(), 2u);
}

TEST_F(ItmsOrder, ASecondConflictOnTheBranchStartsFromThoseWeights) {
    begin();
    Clause* first = model.clause("p");
    Clause* second = model.clause("far");
    finish();
    auto branch = model.resolve(first);
    branch = model.engine.propagateThroughConflict(second, std::move(branch), model.agenda,
                                                   searching, model.history.get(), 0);
    ASSERT_NE(branch, nullptr);
    // Only t1 has a weight left: its entry is the whole mass, and t0 has no entry any more.
    EXPECT_EQ(branch->state->postProbs.size(), 1u);
    EXPECT_EQ(branch->state->postProbs.at(t1->id), 1.0);
}

}  // namespace
