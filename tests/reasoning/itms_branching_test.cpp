// What a branch is made of: the copy, the flip, its support, what is retracted, implicates.
#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::count;
using reasoning_fixture::SmallModel;

namespace {

SearchLimits const searching = {false, 9.0};

class ItmsBranch : public testing::Test {
protected:
    TrajEl* in(std::unique_ptr<ItmsRes> const& branch, char const* name) {
        return model.elt(name, branch->state.get());
    }

    SmallModel model;
};

TEST_F(ItmsBranch, FlipsACopyAndLeavesTheStateAlone) {
    model.propositions("p q");
    Clause* clause = model.clause("p q");
    model.start();
    model.label("!p !q");
    auto const branch = model.resolve(clause, searching, "q");
    ASSERT_NE(branch, nullptr);
    EXPECT_EQ(model.labels("p q", branch->state.get()), "tf");
    EXPECT_EQ(model.labels("p q"), "ff");
    EXPECT_EQ(branch->already_changed.size(), 2u);
    EXPECT_EQ(branch->already_changed.find("c.p=on")->second, in(branch, "p"));
    EXPECT_EQ(branch->already_changed.find("c.q=on")->second, in(branch, "q"));
    EXPECT_TRUE(branch->state->locked);
}

TEST_F(ItmsBranch, TellsTheConflictTheCandidatesAndTheFlip) {
    model.propositions("p");
    Clause* clause = model.clause("p");
    model.start();
    model.label("!p");
    model.resolve(clause);
    std::string const text = model.trace.take();
    EXPECT_EQ(text.find("[propagateThroughConflict] --> "), 0u);
    std::size_t at = 0;
    for (char const* part : {"cl size: 1\nc.p=on\n", "not_unknown's size : 1\n", "label : false\n",
                             "[propagateThroughConflict] --> beginning propagation\n",
                             "[propagateThroughConflict] --> clause to be added :\n",
                             "\n[propagateThroughConflict] --> adding a new clause. true"}) {
        std::size_t const found = text.find(part, at);
        ASSERT_NE(found, std::string::npos) << part;
        at = found;
    }
}

TEST_F(ItmsBranch, ATrueElementBecomesFalse) {
    model.propositions("p");
    Clause* clause = model.clause("!p");
    model.start();
    model.label("p");
    auto const branch = model.resolve(clause);
    EXPECT_EQ(model.labels("p", branch->state.get()), "f");
    EXPECT_EQ(count(model.trace.take(), "adding a new clause. false"), 1);
}

TEST_F(ItmsBranch, TheFlipStandsOnTheClauseAndAboveAllItsElements) {
    model.propositions("p q");
    Clause* clause = model.clause("p q");
    model.start();
    model.label("!p !q");
    model.elt("p")->support = model.clause("!p");
    model.elt("p")->propagationNumber = 6;
    model.elt("q")->support = model.clause("!q");
    model.elt("q")->propagationNumber = 3;
    auto const branch = model.resolve(clause, searching, "q");
    EXPECT_EQ(in(branch, "p")->support, clause);
    EXPECT_EQ(in(branch, "p")->propagationNumber, 7);
    EXPECT_EQ(in(branch, "q")->consequences, std::vector<TrajEl*>{in(branch, "p")});
}

TEST_F(ItmsBranch, OneWithoutACandidateIsLost) {
    model.propositions("p");
    Clause* clause = model.clause("p");
    model.start();
    model.label("!p");
    EXPECT_EQ(model.resolve(clause, searching, "p"), nullptr);
    EXPECT_TRUE(model.agenda.empty());
}

TEST_F(ItmsBranch, OneCandidateWithoutATableLeavesTheAgendaEmpty) {
    model.propositions("p");
    Clause* clause = model.clause("p");
    model.start();
    model.label("!p");
    EXPECT_NE(model.resolve(clause), nullptr);
    EXPECT_TRUE(model.agenda.empty());
}

TEST_F(ItmsBranch, PendingConflictsGoAlongAndRetractionsDoNot) {
    model.propositions("p q r");
    Clause* clause = model.clause("p q");
    Clause* waiting = model.clause("r");
    model.start();
    model.label("!p !q !r");
    auto res = std::make_unique<ItmsRes>(std::make_unique<State>(model.state(), true));
    res->conflicts.push(waiting);
    res->deleted.push_back(model.elt("r", res->state.get()));
    auto const branch = model.engine.propagateThroughConflict(clause, std::move(res), model.agenda,
                                                              searching, model.history.get(), 0);
    ASSERT_EQ(model.agenda.size(), 1u);
    for (ItmsRes const* each : {branch.get(), model.agenda.top().get()}) {
        ASSERT_EQ(each->conflicts.size(), 1u);
        EXPECT_EQ(each->conflicts.front(), waiting);
        EXPECT_TRUE(each->deleted.empty());
    }
}

TEST_F(ItmsBranch, TheFocusIsWhatChangedAndWhatTheFlipSupports) {
    model.propositions("p q u");
    Clause* clause = model.clause("!p q");
    Clause* other = model.clause("!p u");
    model.start();
    model.label("p !q ?u");
    auto const branch = model.resolve(clause, searching, "q");
    ASSERT_NE(branch, nullptr);
    EXPECT_EQ(branch->focus.size(), 3u);
    EXPECT_EQ(branch->focus.count("c.u=on"), 1u);
    EXPECT_EQ(branch->already_changed.size(), 2u);
    EXPECT_EQ(in(branch, "u")->support, other);
}

TEST_F(ItmsBranch, ConsequencesWhoseSupportFailsOrIsMissingAreRetracted) {
    model.propositions("p failing holding bare");
    Clause* clause = model.clause("!p");
    Clause* falls = model.clause("p !failing");
    Clause* holds = model.clause("p holding");
    model.clause("bare");
    model.start();
    model.label("p failing holding bare");
    model.elt("failing")->support = falls;
    model.elt("holding")->support = holds;
    model.elt("p")->consequences = {model.elt("holding"), model.elt("bare"), model.elt("failing")};
    auto const branch = model.resolve(clause);
    EXPECT_EQ(model.labels("p failing holding bare", branch->state.get()), "futu");
    EXPECT_EQ(branch->deleted, (std::vector<TrajEl*>{in(branch, "bare"), in(branch, "failing")}));
    EXPECT_EQ(in(branch, "p")->consequences.size(), 3u);  // the flip's own list stays
    EXPECT_EQ(model.labels("failing bare"), "tt");        // the other copies know nothing of it
}

TEST_F(ItmsBranch, AFailureCountsInBothDirections) {
    model.propositions("p q");
    Clause* plain = model.clause("p");
    Clause* negated = model.clause("!p");
    Clause* other = model.clause("q");
    model.start();
    model.atom("p")->failure = true;
    model.label("!p !q");
    EXPECT_EQ(model.resolve(plain)->state->failCount, 1.0);
    EXPECT_EQ(model.resolve(other)->state->failCount, 0.0);
    model.label("p");
    model.state()->failCount = 2.0;
    EXPECT_EQ(model.resolve(negated)->state->failCount, 3.0);
    EXPECT_EQ(model.state()->failCount, 2.0);
}

TEST_F(ItmsBranch, LeavingAnUnknownModeMarksTheState) {
    model.variable("m", {"ok", "unknown"}, false);
    model.variable<CommandVar>("cmd", {"unknown"}, false);
    Clause* leave = model.clause("!m=unknown");
    Clause* enter = model.clause("m=unknown");
    Clause* other = model.clause("!m=ok");
    Clause* command = model.clause("!cmd=unknown");
    model.start();
    model.label("m=ok m=unknown cmd=unknown");
    EXPECT_TRUE(model.resolve(leave)->state->unknown);
    EXPECT_FALSE(model.resolve(other)->state->unknown);
    EXPECT_FALSE(model.resolve(command)->state->unknown);
    model.label("!m=unknown");
    EXPECT_FALSE(model.resolve(enter)->state->unknown);
}

// The table gives a two alternatives: with x, or with y and z.
class ItmsImplicates : public ItmsBranch {
protected:
    ItmsImplicates() { model.engine.piTable = std::make_unique<PiTable>(); }

    Clause* begin() {
        Clause* clause = model.clause("a b");
        model.clause("x y z");
        model.start();
        model.label("!a !b !x !y !z");
        addTwo();
        return clause;
    }
    void addTwo() {
        model.engine.piTable->addPIAtom(model.atom("a"),
                                        {{model.atom("a"), model.atom("x")},
                                         {model.atom("y"), model.atom("a"), model.atom("z")}});
    }
    std::unique_ptr<ItmsRes> resolve(Clause* clause, double maxRank = 9.0) {
        return model.resolve(clause, {false, maxRank}, "b");
    }
    std::string waiting(std::string const& names) {
        return model.labels(names, model.agenda.top()->state.get());
    }
};

class ItmsFiveImplicates : public ItmsImplicates {
protected:
    ItmsFiveImplicates() { model.propositions("a b x y z"); }
};

TEST_F(ItmsFiveImplicates, EachAlternativeIsABranchOfItsOwn) {
    auto const branch = resolve(begin());
    ASSERT_NE(branch, nullptr);
    EXPECT_EQ(model.labels("a b x y z", branch->state.get()), "tftff");
    ASSERT_EQ(model.agenda.size(), 1u);
    EXPECT_EQ(waiting("a b x y z"), "tfftt");
    EXPECT_EQ(branch->already_changed.size(), 3u);              // a, b and x
    EXPECT_EQ(model.agenda.top()->already_changed.size(), 4u);  // a, b, y and z
    EXPECT_EQ(in(branch, "x")->support, nullptr);
}

TEST_F(ItmsFiveImplicates, AnAtomOfTheAlternativeThatIsNotFalseIsOnlyNoted) {
    Clause* clause = begin();
    model.label("x ?y");
    auto const branch = resolve(clause);
    EXPECT_EQ(model.labels("a x", branch->state.get()), "tt");
    EXPECT_EQ(branch->already_changed.count("c.x=on"), 1u);
    EXPECT_EQ(waiting("a y z"), "tut");
}

TEST_F(ItmsFiveImplicates, ATrueCandidateStandsAlone) {
    Clause* clause = model.clause("!a");
    begin();
    model.label("a");
    auto const branch = resolve(clause);
    EXPECT_EQ(model.labels("a x y z", branch->state.get()), "ffff");
    EXPECT_TRUE(model.agenda.empty());
}

TEST_F(ItmsFiveImplicates, ACandidateWithoutAListStandsAlone) {
    Clause* clause = begin();
    auto const branch = model.resolve(clause, searching, "a");
    EXPECT_EQ(model.labels("a b x y z", branch->state.get()), "ftfff");
    EXPECT_TRUE(model.agenda.empty());
}

TEST_F(ItmsFiveImplicates, AnEmptyListGivesNoBranch) {
    Clause* clause = begin();
    model.engine.piTable->addPIAtom(model.atom("a"), {});
    EXPECT_EQ(resolve(clause), nullptr);
    EXPECT_TRUE(model.agenda.empty());
}

TEST_F(ItmsImplicates, ACommandStandsAlone) {
    model.propositions("b x y z");
    model.variable<CommandVar>("cmd", {"none"}, false);
    Clause* clause = model.clause("cmd=none b");
    model.clause("x y z");
    model.start();
    model.label("!cmd=none !b !x !y !z");
    model.engine.piTable->addPIAtom(model.atom("cmd=none"), {{model.atom("x")}});
    auto const branch = resolve(clause);
    EXPECT_EQ(model.labels("cmd=none x", branch->state.get()), "tf");
}

// The first alternative holds x, a failure.
class ItmsBlocked : public ItmsFiveImplicates {
protected:
    Clause* begin() {
        Clause* clause = ItmsFiveImplicates::begin();
        model.atom("x")->failure = true;
        return clause;
    }
};

TEST_F(ItmsBlocked, AFailureThatTheRankAllowsIsTaken) {
    auto const branch = resolve(begin(), 1.0);
    ASSERT_NE(branch, nullptr);
    EXPECT_EQ(model.labels("a x", branch->state.get()), "tt");
    EXPECT_EQ(branch->state->failCount, 0.0);  // a itself is none
}

TEST_F(ItmsBlocked, OneThatItDoesNotEndsTheCandidateWithAllItsAlternatives) {
    EXPECT_EQ(resolve(begin(), 0.5), nullptr);
    EXPECT_TRUE(model.agenda.empty());
}

TEST_F(ItmsBlocked, SoDoesALock) {
    Clause* clause = begin();
    model.elt("x")->lock = LOCK_FALSE;
    EXPECT_EQ(resolve(clause), nullptr);
    model.elt("x")->lock = LOCK_FALSE_PERM;
    EXPECT_EQ(resolve(clause), nullptr);
    model.elt("x")->lock = LOCK_TRUE;
    EXPECT_NE(resolve(clause), nullptr);
}

TEST_F(ItmsBlocked, SoDoesAnEarlierChange) {
    EXPECT_EQ(model.resolve(begin(), searching, "b x"), nullptr);
    EXPECT_TRUE(model.agenda.empty());
}

TEST_F(ItmsBlocked, AFailureThatIsThereAlreadyIsNoHindrance) {
    Clause* clause = begin();
    model.label("x");
    EXPECT_NE(resolve(clause, 0.5), nullptr);
}

TEST_F(ItmsBlocked, ARefusalInTheSecondAlternativeKeepsTheFirst) {
    Clause* clause = begin();
    model.atom("x")->failure = false;
    model.atom("z")->failure = true;
    auto const branch = resolve(clause, 0.5);
    ASSERT_NE(branch, nullptr);
    EXPECT_EQ(model.labels("a x y z", branch->state.get()), "ttff");
    EXPECT_TRUE(model.agenda.empty());
}

// The refused branch was counted: the next candidate's is not the first, so it waits on the agenda
// and nothing goes on.
TEST_F(ItmsBlocked, AfterARefusedFirstBranchTheNextCandidateWaits) {
    Clause* clause = begin();
    EXPECT_EQ(model.resolve(clause, {false, 0.5}), nullptr);
    ASSERT_EQ(model.agenda.size(), 1u);
    EXPECT_EQ(waiting("a b"), "ft");
}

TEST_F(ItmsBlocked, TheLoopTakesThatForALossAndGoesOnWithWhatWaits) {
    model.clause("!y a b");
    begin();
    ItmsResults const results = model.assertAll("y", {false, 0.5});
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(model.labels("a b x y", results[0]->state.get()), "ftft");
    EXPECT_EQ(count(model.trace.take(), "a sol has been discarded...\n"), 2);
}

}  // namespace
