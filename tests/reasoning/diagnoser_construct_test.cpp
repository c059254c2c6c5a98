// Histories in which another transition was taken: its guard asserted at one step, its effect at a
// later one.
#include "reasoning/diagnoser_fixture.h"

using diagnoser_fixture::count;
using diagnoser_fixture::MovingTap;

namespace {

class DiagnoserConstruct : public MovingTap {
protected:
    // Adds to `successors` the histories with the transition taken from step p to step t.
    void build(Transition* transition, int p, int t, double rank) {
        likelyTransition const candidate{nullptr, nullptr, 0.5, transition, p};
        errors.take();
        diagnoser.constructSuccessors(candidate, history(), t, successors, rank);
        trace = errors.take();
    }
    // The only history made.
    Trajectory const& made() const {
        EXPECT_EQ(successors.size(), 1u);
        return *successors.begin()->second;
    }
    void forbidCommands() {
        static_cast<CommandVar*>(elt("cmd=go", 0)->getStateVar())->forbidden = true;
    }
    void addGauge() { model.variable<CondVar>("n", {"x", "y"}); }
    // A proposition in a clause that any mode satisfies.
    void addProposition() {
        model.propositions<CondVar>("p");
        model.clause("m=shut m=open m=stuck p");
    }

    TrajectoryMap successors;
    std::string trace;
};

// ---- The copy ----

TEST_F(DiagnoserConstruct, TheHistoryItselfStaysAsItWas) {
    start(2);
    build(keeps, 1, 2, 0.0);
    ASSERT_EQ(successors.size(), 1u);
    for (int const t : {1, 2}) {
        EXPECT_EQ(labels("m=shut m=open m=stuck", *history(), t), "tff");
        EXPECT_EQ(locks("m=shut m=open m=stuck", *history(), t), "222");
        EXPECT_EQ(elt("m=open", t)->prevTrans, nullptr);
        EXPECT_TRUE(elt("m=open", t)->nextTrans.empty());
    }
    EXPECT_FALSE(history()->transByTime.has_value());
}

TEST_F(DiagnoserConstruct, TheNewOneHasAllItsStepsAndTwoOfThemReplaced) {
    start(3);
    label(3, "?m=open");
    state(1)->obsProb = 0.25;
    build(keeps, 1, 2, 0.0);
    EXPECT_EQ(made().getCurrentTime(), 3);
    EXPECT_EQ(made().states.size(), 4u);
    EXPECT_EQ(labels("m=shut m=open m=stuck", made(), 0), "tff");
    EXPECT_EQ(labels("m=shut m=open m=stuck", made(), 1), "ftf");
    EXPECT_EQ(labels("m=shut m=open m=stuck", made(), 2), "ftf");
    EXPECT_EQ(labels("m=shut m=open m=stuck", made(), 3), "tuf");
    EXPECT_EQ(made().getState(1)->obsProb, 0.25);  // a full copy
}

TEST_F(DiagnoserConstruct, TheTransitionIsRecordedAtItsStepBesideEarlierOnes) {
    believedOpen();
    history()->transByTime.emplace();
    history()->transByTime->insert({1, opens});
    build(stays, 0, 1, 0.0);
    EXPECT_EQ(moves(made()), "1:opens 1:stays");
    EXPECT_EQ(moves(*history()), "1:opens");
}

TEST_F(DiagnoserConstruct, TheSuccessorsThatWereThereStay) {
    believedOpen();
    build(stays, 0, 1, 1.0);
    EXPECT_EQ(count(trace, "construct size : 1\n"), 1);
    build(sticks, 0, 1, 1.0);
    EXPECT_EQ(count(trace, "construct size : 2\n"), 1);
    ASSERT_EQ(successors.size(), 2u);
    // By rank, the highest first.
    EXPECT_EQ(successors.begin()->first, 1.0);
    EXPECT_EQ(moves(*successors.begin()->second), "1:sticks");
    EXPECT_EQ(successors.rbegin()->first, 0.0);
    EXPECT_EQ(moves(*successors.rbegin()->second), "1:stays");
}

// ---- Rank ----

TEST_F(DiagnoserConstruct, TheFailuresOfBothStepsAreCountedAnew) {
    start(2);
    takes(sticks, 1);
    takes(sticks, 2);
    history()->rank = 7.0;
    build(stays, 1, 2, 9.0);
    // The failure into step 1 is still recorded, the one into step 2 is not.
    EXPECT_EQ(made().rank, 7.0 - 1.0 - 1.0 + 1.0 + 0.0);
    EXPECT_EQ(successors.begin()->first, 6.0);
    EXPECT_EQ(history()->rank, 7.0);
}

TEST_F(DiagnoserConstruct, ANewFailureAddsOne) {
    start(2);
    history()->rank = 7.0;
    build(sticks, 1, 2, 9.0);
    EXPECT_EQ(made().rank, 8.0);
}

// ---- Components that a step does not hold ----

TEST_F(DiagnoserConstruct, TheyAreAddedWithIdleMovesAtTheGuardAndWithoutAtTheEffect) {
    addGauge();
    Transition* dries = move("dries", "m=shut", "n=y", 0.5);
    start(2);
    forget("c", 1);
    forget("c", 2);
    build(dries, 1, 2, 0.0);
    for (int const t : {1, 2}) {
        EXPECT_EQ(made().getState(t)->comps.count("c"), 1u);
        EXPECT_EQ(labels("m=shut m=open m=stuck", made(), t), "tff");
    }
    EXPECT_EQ(elt("m=shut", made(), 1)->prevTrans, stays);
    EXPECT_EQ(elt("m=shut", made(), 0)->nextTrans.count(stays->id), 1u);
    EXPECT_EQ(elt("m=shut", made(), 2)->prevTrans, nullptr);
    EXPECT_EQ(elt("n=y", made(), 2)->prevTrans, dries);
    EXPECT_EQ(state(1)->getElt("c.m=shut"), nullptr);
}

TEST_F(DiagnoserConstruct, ThoseThatConsequencesReachAreAddedAtTheStepOfEach) {
    addSensor();
    start(3);
    forget("d", 1);
    forget("d", 3);
    model.trace.take();
    build(keeps, 1, 3, 0.0);
    std::string const text = model.trace.take();
    EXPECT_EQ(count(text, "[addComp] --> timestep : 1 -- d\n"), 1);
    EXPECT_EQ(count(text, "[addComp] --> timestep : 3 -- d\n"), 1);
    for (int const t : {1, 3})
        EXPECT_EQ(labels("out=lo out=hi", made(), t), "ft");
    EXPECT_EQ(state(1)->getElt("d.out=lo"), nullptr);
}

TEST_F(DiagnoserConstruct, WhatIsThereIsLeftAlone) {
    start(2);
    build(keeps, 1, 2, 0.0);
    EXPECT_EQ(elt("m=shut", made(), 1)->prevTrans, nullptr);
    EXPECT_TRUE(elt("m=shut", made(), 0)->nextTrans.empty());
}

// ---- The guard ----

TEST_F(DiagnoserConstruct, ItsLiteralsAreAssertedAndHeldAndLeftByTheTransition) {
    start(2);
    build(keeps, 1, 2, 0.0);
    EXPECT_EQ(labels("m=shut m=open m=stuck", made(), 1), "ftf");
    EXPECT_EQ(locks("m=shut m=open m=stuck", made(), 1), "101");
    EXPECT_EQ(elt("m=open", made(), 1)->nextTrans, (TrajEl::Transitions{{keeps->id, keeps}}));
    EXPECT_TRUE(made().getState(1)->locked);
}

TEST_F(DiagnoserConstruct, OneThatHoldsIsHeldAndLeftAllTheSame) {
    start(2);
    build(sticks, 1, 2, 1.0);
    EXPECT_EQ(locks("m=shut m=open m=stuck", made(), 1), "011");
    EXPECT_EQ(elt("m=shut", made(), 1)->nextTrans, (TrajEl::Transitions{{sticks->id, sticks}}));
}

TEST_F(DiagnoserConstruct, OneThatHoldsIsNotAsserted) {
    start(1);
    command(0, "go");
    forbidCommands();
    build(opens, 0, 1, 0.0);
    EXPECT_EQ(moves(made()), "1:opens");
}

TEST_F(DiagnoserConstruct, ADeniedLiteralIsAssertedAtFalseAndNotHeld) {
    addProposition();
    Transition* slips = move("slips", "m=shut !p", "m=shut", 0.5);
    start(2);
    label(1, "p");
    build(slips, 1, 2, 0.0);
    EXPECT_EQ(labels("p", made(), 1), "f");
    EXPECT_EQ(locks("p", made(), 1), "2");
    EXPECT_TRUE(elt("p", made(), 1)->nextTrans.empty());
    EXPECT_EQ(elt("p", made(), 1)->nextTransNeg, (TrajEl::Transitions{{slips->id, slips}}));
}

TEST_F(DiagnoserConstruct, ADeniedLiteralThatIsFalseIsLeftAllTheSame) {
    addGauge();
    Transition* turns = move("turns", "m=shut !n=y", "m=shut", 0.5);
    start(2);
    build(turns, 1, 2, 0.0);
    EXPECT_EQ(locks("n=x n=y", made(), 1), "22");
    EXPECT_EQ(elt("n=y", made(), 1)->nextTransNeg.count(turns->id), 1u);
}

TEST_F(DiagnoserConstruct, WhatTheGuardChangesIsHeldUnlessItBecameFalse) {
    addGauge();
    model.propositions<CondVar>("p");
    model.clause("!m=open n=y");
    model.clause("!m=open !p");
    start(2);
    label(1, "p");
    label(2, "!p");
    build(keeps, 1, 2, 0.0);
    EXPECT_EQ(labels("n=x n=y p", made(), 1), "ftf");
    EXPECT_EQ(locks("n=x n=y p", made(), 1), "102");
}

TEST_F(DiagnoserConstruct, AGuardThatIsRefusedAbortsTheTransition) {
    start(1);
    forbidCommands();
    successors.emplace(3.0, nullptr);
    build(opens, 0, 1, 9.0);
    EXPECT_EQ(successors.size(), 1u);
    EXPECT_EQ(count(trace, ">>>>> Transition aborted : \n"), 1);
    EXPECT_EQ(count(trace, "construct size"), 0);
}

TEST_F(DiagnoserConstruct, SoDoesOneThatNeedsMoreFailuresThanTheRank) {
    start(2);
    history()->rank = 1.0;
    build(remains, 1, 2, 1.0);
    EXPECT_TRUE(successors.empty());
    EXPECT_EQ(count(trace, ">>>>> Transition aborted : \n"), 1);
    build(remains, 1, 2, 2.0);
    EXPECT_EQ(labels("m=shut m=open m=stuck", made(), 1), "fft");
}

// ---- The effect ----

TEST_F(DiagnoserConstruct, ItIsAssertedAndHeldAndReachedByTheTransition) {
    believedOpen();
    build(sticks, 0, 1, 1.0);
    EXPECT_EQ(labels("m=shut m=open m=stuck", made(), 1), "fft");
    EXPECT_EQ(locks("m=shut m=open m=stuck", made(), 1), "110");
    EXPECT_EQ(elt("m=stuck", made(), 1)->prevTrans, sticks);
    EXPECT_EQ(elt("m=open", made(), 1)->prevTrans, nullptr);  // no longer by opens
}

TEST_F(DiagnoserConstruct, AnEffectThatHoldsIsNotAsserted) {
    Transition* resets = move("resets", "m=shut", "m=shut cmd=none", 0.5);
    start(1);
    forbidCommands();
    build(resets, 0, 1, 0.0);
    EXPECT_EQ(elt("cmd=none", made(), 1)->prevTrans, resets);
}

TEST_F(DiagnoserConstruct, ADeniedEffectIsAssertedAtFalseAndHeldAsIfItWereTrue) {
    addProposition();
    Transition* frees = move("frees", "m=shut", "m=shut !p", 0.5);
    start(1);
    label(1, "p");
    build(frees, 0, 1, 0.0);
    EXPECT_EQ(labels("p", made(), 1), "f");
    EXPECT_EQ(locks("p", made(), 1), "0");
    EXPECT_EQ(elt("p", made(), 1)->prevTrans, frees);
}

TEST_F(DiagnoserConstruct, ConsequencesThatNoObservationWouldAllowAreDrawn) {
    addSensor();
    start(1);
    command(0, "go");
    build(opens, 0, 1, 0.0);
    EXPECT_EQ(labels("out=lo out=hi", made(), 1), "ft");
    EXPECT_EQ(locks("out=lo out=hi", made(), 1), "10");
}

TEST_F(DiagnoserConstruct, AnEffectThatIsRefusedGivesNoHistoryAndDoesNotAbort) {
    start(1);
    history()->rank = 2.0;
    // The failure is one of the step's already when it is asserted, so rank 2 would do.
    build(sticks, 0, 1, 1.5);
    EXPECT_TRUE(successors.empty());
    EXPECT_EQ(count(trace, "Transition aborted"), 0);
    EXPECT_EQ(count(trace, "construct size : 0\n"), 1);
    build(sticks, 0, 1, 2.0);
    EXPECT_EQ(moves(made()), "1:sticks");
}

// ---- Several outcomes ----

TEST_F(DiagnoserConstruct, EveryOutcomeOfTheGuardMeetsEveryOutcomeOfTheEffect) {
    model.propositions<CondVar>("g q r e u v");
    model.clause("!g q r");
    model.clause("!e u v");
    Transition* forks = move("forks", "m=shut g", "m=shut e", 0.5);
    start(2);
    for (int const t : {1, 2})
        label(t, "!g !q !r !e !u !v");
    build(forks, 1, 2, 0.0);
    std::vector<std::string> before, after;
    for (auto const& entry : successors) {
        before.push_back(labels("q r", *entry.second, 1));
        after.push_back(labels("u v", *entry.second, 2));
        EXPECT_EQ(moves(*entry.second), "2:forks");
    }
    ASSERT_EQ(before.size(), 4u);
    EXPECT_EQ(count(trace, "construct size : 4\n"), 1);
    // Guard by guard: each pair of one guard has both effects, in the same order.
    std::set<std::string> const either = {"tf", "ft"};
    EXPECT_EQ((std::set<std::string>{before[0], before[2]}), either);
    EXPECT_EQ((std::set<std::string>{after[0], after[1]}), either);
    EXPECT_EQ(before[1], before[0]);
    EXPECT_EQ(before[3], before[2]);
    EXPECT_EQ(after[2], after[0]);
    EXPECT_EQ(after[3], after[1]);
}

}  // namespace
