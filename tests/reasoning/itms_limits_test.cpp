// What the rules of the engine miss, case by case: consistent states that are not found, and states
// that are found although they are not consistent, or do not keep to what was asked. Each case
// follows from rules that are kept on purpose; a change of one of these results is a change of the
// behaviour.
#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::SmallModel;

namespace {

class ItmsLimits : public testing::Test {
protected:
    // The labels of the first result, or "" without one.
    std::string found(std::string const& names, ItmsResults const& results) {
        return results.empty() ? "" : model.labels(names, results[0]->state.get());
    }
    // Labels the state, and lets d hang on x without a support, as an element does that was
    // retracted before: its links back are not taken away then.
    void begin(std::string const& labels) {
        model.start();
        model.label(labels);
    }
    void hang(char const* dependent, char const* on) {
        model.elt(on)->consequences = {model.elt(dependent)};
    }

    SmallModel model;
};

// Neither value of q satisfies both clauses without p, but as long as q is unknown none of them is
// violated.
TEST_F(ItmsLimits, AnUnknownElementHidesAContradiction) {
    model.propositions("p q");
    model.clause("p q");
    model.clause("p !q");
    begin("p ?q");
    EXPECT_EQ(found("p q", model.assertAll("!p")), "fu");
}

// Once nothing is known of q, a second assertion finds it.
TEST_F(ItmsLimits, WithoutTheUnknownItIsFound) {
    model.propositions("p q");
    model.clause("p q");
    model.clause("p !q");
    begin("p !q");
    EXPECT_TRUE(model.assertAll("!p").empty());
}

// The locks are not asked when a proposition is asserted: the caller is to know.
TEST_F(ItmsLimits, APropositionOverridesALock) {
    model.propositions("p");
    model.clause("p !p");
    begin("p");
    model.elt("p")->lock = LOCK_TRUE_PERM;
    EXPECT_EQ(found("p", model.assertAll("!p")), "f");
}

// Neither are they asked for the other atoms of an implicate, unless these are failures.
TEST_F(ItmsLimits, AnImplicateOverridesALock) {
    model.propositions("a b x");
    model.clause("a b");
    model.clause("x !x");
    begin("!a b !x");
    model.elt("x")->lock = LOCK_FALSE_PERM;
    model.engine.piTable = std::make_unique<PiTable>();
    model.engine.piTable->addPIAtom(model.atom("a"), {{model.atom("a"), model.atom("x")}});
    EXPECT_EQ(found("a b x", model.assertAll("!b")), "tft");
}

// Both a repair and a failure count, and a repair is never refused: it takes the room of the
// failure that comes after it. One failure is allowed, and "f instead of g" needs no more than
// that.
class ItmsRepair : public ItmsLimits {
protected:
    void beginRepair(char const* first, char const* second) {
        model.propositions("a f g");
        model.clause(first);
        model.clause(second);
        begin("!a !f g");
        model.atom("f")->failure = true;
        model.atom("g")->failure = true;
    }
};

TEST_F(ItmsRepair, BeforeAFailureUsesUpTheRank) {
    beginRepair("!a !g", "!a f");
    EXPECT_TRUE(model.assertAll("a", {false, 1.0}).empty());
}

TEST_F(ItmsRepair, AfterAFailureDoesNot) {
    beginRepair("!a f", "!a !g");
    ItmsResults const results = model.assertAll("a", {false, 1.0});
    EXPECT_EQ(found("a f g", results), "ttf");
    EXPECT_EQ(results.at(0)->state->failCount, 2.0);
}

// d is asked to be false. The flip of x retracts it all the same, since it hangs on x and has no
// support; and nothing asks for it again.
TEST_F(ItmsLimits, AStaleLinkRetractsAProposition) {
    model.propositions("a x d");
    model.clause("!a !x");
    model.clause("d !d");
    begin("!a x !d");
    hang("d", "x");
    EXPECT_EQ(found("a x d", model.assertAll("a !d")), "tft");  // unit in "d !d", and set to true
}

TEST_F(ItmsLimits, AndSoALock) {
    model.propositions("a x d e");
    model.clause("!a !x");
    model.clause("d e");
    begin("!a x d e");
    model.elt("d")->lock = LOCK_TRUE_PERM;
    hang("d", "x");
    ItmsResults const results = model.assertAll("a");
    EXPECT_EQ(found("a x d e", results), "tfut");
    EXPECT_EQ(model.elt("d", results.at(0)->state.get())->lock, LOCK_TRUE_PERM);
}

// The same with a clause that d then violates: d counts as changed, so the branch is lost, although
// the state in which d stays false is consistent.
TEST_F(ItmsLimits, AStaleLinkLosesAConsistentState) {
    model.propositions("a x d");
    model.clause("!a !x");
    model.clause("!a !d");
    begin("!a x !d");
    EXPECT_EQ(found("a x d", model.assertAll("a !d")), "tff");
    hang("d", "x");
    EXPECT_TRUE(model.assertAll("a !d").empty());
}

// A clause that waits in the queue is handled as a conflict, also when one of its elements has
// become unknown in the meantime: it has no candidate, and the branch is lost. Handled first, it
// gives d a support that holds.
TEST_F(ItmsLimits, AWaitingConflictIsHandledThoughAnElementIsOpenByNow) {
    model.propositions("a x d");
    model.clause("!a !x");
    model.clause("!a d");
    begin("!a x !d");
    hang("d", "x");
    EXPECT_TRUE(model.assertAll("a").empty());
}

TEST_F(ItmsLimits, InTheOtherOrderTheSameStateIsFound) {
    model.propositions("a x d");
    model.clause("!a d");
    model.clause("!a !x");
    begin("!a x !d");
    hang("d", "x");
    EXPECT_EQ(found("a x d", model.assertAll("a")), "tft");
}

// The links of a support are not taken away when a retraction clears it: this is how an element
// comes to hang on another without a support.
TEST_F(ItmsLimits, ARetractionLeavesTheLinksBack) {
    model.propositions("x d e");
    Clause* clause = model.clause("x d e");
    begin("x d e");
    model.engine.setSupport(clause, model.elt("d"), model.site());
    std::vector<TrajEl*> list;
    model.engine.deleteClause(model.elt("d"), list, model.site());
    EXPECT_EQ(model.elt("d")->support, nullptr);
    EXPECT_EQ(model.elt("x")->consequences, std::vector<TrajEl*>{model.elt("d")});
}

}  // namespace
