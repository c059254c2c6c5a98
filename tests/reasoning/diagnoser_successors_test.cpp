// What becomes of the transitions that were tried: the rank, the cover, the order in which
// histories are made of them, and how these are followed until they hold no conflict.
#include "fixtures/the_run.h"
#include "reasoning/diagnoser_fixture.h"

using diagnoser_fixture::count;
using diagnoser_fixture::MovingTap;

namespace {

constexpr char const* shown = "******* Showing conflicts *******\n";

class DiagnoserSuccessors : public MovingTap {
protected:
    // "moves moves" of the results, the likeliest first.
    std::string told(TrajectoryMap const& finals) const {
        std::string text;
        for (auto const& entry : finals)
            text += "[" + moves(*entry.second) + "]";
        return text;
    }
    // A second tap n beside the first, without a command.
    void addTwin() {
        model.variable("n", {"x", "y"});
        rests = move("rests", "n=x", "n=x", 0.5, transNominal, true);
        turns = move("turns", "n=x", "n=y", 0.2);
        lingers = move("lingers", "n=y", "n=y", 0.9, transNominal, true);
    }
    Transition *rests = nullptr, *turns = nullptr, *lingers = nullptr;
};

// ---- Rank ----

TEST_F(DiagnoserSuccessors, AFailureAtTheRankOfTheHistoryIsOutOfRank) {
    believedOpen();
    history()->rank = 2.0;
    EXPECT_EQ(told(explainEffect("m=open", 2.0)), "[1:stays]");
    EXPECT_EQ(count(errors.take(), "out of rank !\ncurrent rank : 2 -- rank : 2"), 1);
}

TEST_F(DiagnoserSuccessors, AtOneMoreItIsTaken) {
    believedOpen();
    history()->rank = 2.0;
    TrajectoryMap const finals = explainEffect("m=open", 3.0);
    EXPECT_EQ(told(finals), "[1:stays][1:sticks]");
    EXPECT_EQ(finals.begin()->second->rank, 2.0);
    EXPECT_EQ(finals.rbegin()->second->rank, 3.0);
    EXPECT_EQ(count(errors.take(), "out of rank !\n"), 0);
}

TEST_F(DiagnoserSuccessors, ANominalMoveCostsNothing) {
    believedOpen();
    history()->rank = 2.0;
    EXPECT_EQ(told(explainEffect("m=open", 1.5)), "");
    EXPECT_EQ(count(errors.take(), "out of rank !\ncurrent rank : 2 -- rank : 1.5"), 2);
}

TEST_F(DiagnoserSuccessors, AFailureWithoutACommandIsExpandedOnceAndCoveredEachTime) {
    believedOpen();
    Trajectory again(history(), 2);
    EXPECT_EQ(told(explainEffect("m=open", 1.0)), "[1:stays][1:sticks]");
    EXPECT_EQ(theRun().scheduler.redux_diag, std::set<Transition const*>{sticks});
    model.history = std::make_unique<Trajectory>(&again, 2);
    TrajectoryMap const finals = explainEffect("m=open", 1.0);
    EXPECT_EQ(told(finals), "[1:stays]");
    EXPECT_EQ(count(errors.take(), "out of rank !\ncurrent rank : 0 -- rank : 1"), 1);
    EXPECT_DOUBLE_EQ(finals.begin()->second->getLastState()->cover, 0.7 + 0.1);
}

TEST_F(DiagnoserSuccessors, OneThatIsOutOfRankDoesNotCountAsExpanded) {
    believedOpen();
    explainEffect("m=open", 0.0);
    EXPECT_TRUE(theRun().scheduler.redux_diag.empty());
}

TEST_F(DiagnoserSuccessors, AFailureWithACommandIsExpandedEachTime) {
    believedOpen();
    command(0, "go");
    Trajectory again(history(), 2);
    EXPECT_EQ(told(explainEffect("m=open", 1.0)), "[1:jams][1:sticks]");
    model.history = std::make_unique<Trajectory>(&again, 2);
    EXPECT_EQ(told(explainEffect("m=open", 1.0)), "[1:jams]");
}

TEST_F(DiagnoserSuccessors, TheCandidatesWithinTheRankAreCounted) {
    theRun().scheduler.transitions_checked = 5;
    believedOpen();
    Trajectory again(history(), 2);
    explainEffect("m=open", 0.0);  // stays; sticks is out of rank
    EXPECT_EQ(theRun().scheduler.transitions_checked, 6u);
    model.history = std::make_unique<Trajectory>(&again, 2);
    explainEffect("m=open", 1.0);
    EXPECT_EQ(theRun().scheduler.transitions_checked, 8u);
}

// ---- Cover ----

TEST_F(DiagnoserSuccessors, AnEffectsCoverGrowsByWhatWasTriedTimesTheOtherMovesOfTheStep) {
    addTwin();
    believedOpen();
    takes(turns, 1);
    state(1)->cover = 0.25;
    TrajectoryMap const finals = explainEffect("m=open", 0.0);
    ASSERT_EQ(told(finals), "[1:stays]");
    // stays and sticks, each beside turns.
    EXPECT_DOUBLE_EQ(finals.begin()->second->getLastState()->cover, 0.25 + 0.7 * 0.2 + 0.1 * 0.2);
}

TEST_F(DiagnoserSuccessors, AGuardsCoverGrowsByWhatWasTriedTimesTheMovesThatLeaveItsStep) {
    believedShut();
    // What leads into step 2 does not count here; what leaves step 1 does: stays, recorded at the
    // command, since the mode in conflict forgets it.
    state(2)->setPrevTrans(elt("m=shut", 2), nullptr);
    state(2)->postProbs[stays->id] = 0.4;
    TrajectoryMap const finals = explain(conflicts({conflict("m=shut", 1, 1)}), 2, 0.0, false);
    ASSERT_EQ(told(finals), "[2:keeps]");
    EXPECT_DOUBLE_EQ(finals.begin()->second->getLastState()->cover, 0.6 * 0.4 + 0.5 * 0.4);
    EXPECT_EQ(finals.begin()->second->getState(1)->cover, 0.0);
}

// ---- Order ----

// Two moves of one probability: the results are as likely, so they keep the order in which they
// were made.
class DiagnoserOrder : public DiagnoserSuccessors {
protected:
    DiagnoserOrder() {
        seeps = move("seeps", "m=shut", "m=shut", 0.7);
        believedOpen();
    }
    Transition* seeps;
};

TEST_F(DiagnoserOrder, TheMoveOfTheHighestWeightAtTheStepIsBuiltFirst) {
    state(1)->postProbs[stays->id] = 0.2;
    state(1)->postProbs[seeps->id] = 0.3;
    EXPECT_EQ(told(explainEffect("m=open", 0.0)), "[1:seeps][1:stays]");
}

TEST_F(DiagnoserOrder, EqualWeightsKeepTheOrderInWhichTheyWereTried) {
    EXPECT_EQ(told(explainEffect("m=open", 0.0)), "[1:stays][1:seeps]");
}

TEST_F(DiagnoserOrder, AMoveWithoutAnEntryWeighsNothing) {
    state(1)->postProbs.erase(stays->id);
    EXPECT_EQ(told(explainEffect("m=open", 0.0)), "[1:seeps][1:stays]");
}

TEST_F(DiagnoserOrder, ForAGuardTheWeightIsThatOfTheLaterStep) {
    addStep();
    mode(1, "open");
    mode(2, "open");
    takes(keeps, 2);
    mode(1, "shut");  // so that the guard of keeps fails, and moves that leave shut are looked for
    label(2, "!m=open m=shut");
    state(1)->postProbs[stays->id] = 0.9;
    state(2)->postProbs[stays->id] = 0.2;
    EXPECT_EQ(told(explain(conflicts({conflict("m=open", 1, 1)}), 2, 0.0, false)),
              "[2:seeps][2:stays]");
}

// ---- Following ----

TEST_F(DiagnoserSuccessors, AHistoryWithoutAConflictIsEnteredUnderItsLastProbability) {
    believedOpen();
    state(1)->obsProb = 0.5;
    TrajectoryMap finals;
    finals.emplace(0.36, nullptr);
    errors.take();
    ConflictSet const set = conflicts({conflict("m=open", 1, 0)});
    diagnoser.immediateSuccessors(set, std::move(model.history), 1, 1.0, finals, true);
    double const likelier = 0.5 * 0.7;  // times 1 at step 0
    double const failed = 0.5 * 0.1;
    ASSERT_EQ(finals.size(), 3u);
    auto const second = std::next(finals.begin());
    EXPECT_EQ(finals.begin()->first, 0.36);
    EXPECT_DOUBLE_EQ(second->first, likelier);
    EXPECT_EQ(second->second->getLastState()->proba, second->first);
    EXPECT_DOUBLE_EQ(finals.rbegin()->first, failed);
    EXPECT_EQ(count(errors.take(), "Traj added to immSuccs final results...\n"), 2);
}

TEST_F(DiagnoserSuccessors, TheHistoryGivenAwayIsDestroyed) {
    believedOpen();
    unsigned const others =
        theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del - 1;
    explainEffect("m=open", 1.0).clear();
    EXPECT_EQ(theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del, others);
}

TEST_F(DiagnoserSuccessors, AnotherEffectOfTheStepInConflictIsExplainedNext) {
    addTwin();
    believedOpen();
    takes(turns, 1);
    label(1, "n=x !n=y");
    TrajectoryMap const finals =
        explain(theRun().scheduler.getConflicts(history(), 1, true), 1, 0.0, true);
    ASSERT_EQ(finals.size(), 1u);
    std::string const found = moves(*finals.begin()->second);
    // Effects are looked at first, and guards only once those are explained.
    EXPECT_EQ(count(errors.take(), shown), 1 + 2);
    EXPECT_TRUE(found == "1:stays 1:rests" || found == "1:rests 1:stays") << found;
    Trajectory const& result = *finals.begin()->second;
    EXPECT_EQ(elt("m=shut", result, 1)->prevTrans, stays);
    EXPECT_EQ(elt("n=x", result, 1)->prevTrans, rests);
    EXPECT_EQ(elt("n=y", result, 1)->prevTrans, nullptr);
}

TEST_F(DiagnoserSuccessors, OneThatCannotBeExplainedEndsTheHistory) {
    addTwin();
    believedOpen();
    takes(turns, 1);
    label(1, "n=x !n=y");
    elt("n=x", 0)->addToNextTrans(rests);  // so that rests is refused
    EXPECT_TRUE(explainEffect("m=open", 0.0).empty());
    EXPECT_EQ(count(errors.take(), "Traj added"), 0);
}

TEST_F(DiagnoserSuccessors, AGuardOfTheStepInConflictIsExplainedNext) {
    addTwin();
    believedOpen();
    takes(rests, 1);
    for (char const* value : {"n=x", "n=y"})
        elt(value, 0)->lock = LOCK_FREE;
    label(0, "!n=x n=y");
    TrajectoryMap const finals = explainEffect("m=open", 0.0);
    EXPECT_EQ(told(finals), "[1:stays 1:lingers]");
    EXPECT_EQ(count(errors.take(), shown), 2 + 2);
    EXPECT_EQ(labels("n=x n=y", *finals.begin()->second, 1), "ft");
}

TEST_F(DiagnoserSuccessors, AGuardOfALaterStepInConflictIsExplainedNext) {
    believedOpen();
    addStep();
    mode(1, "open");
    takes(keeps, 2);
    mode(1, "shut");
    TrajectoryMap const finals = explain(conflicts({conflict("m=open", 1, 0)}), 1, 0.0, true);
    EXPECT_EQ(told(finals), "[1:stays 2:stays]");
    // Effects and guards of step 1, guards of step 2; then effects and guards of step 2.
    EXPECT_EQ(count(errors.take(), shown), 3 + 2);
    EXPECT_EQ(labels("m=shut m=open m=stuck", *finals.begin()->second, 2), "tff");
}

TEST_F(DiagnoserSuccessors, TheLaterStepIsTheNextThatHoldsTheVariable) {
    believedOpen();
    addStep();
    addStep();
    mode(1, "open");
    takes(keeps, 2);
    forget("c", 2);
    state(3)->setPrevTrans(elt("m=open", 3), keeps);
    mode(3, "open");
    mode(1, "shut");
    TrajectoryMap const finals = explain(conflicts({conflict("m=open", 1, 0)}), 1, 0.0, true);
    EXPECT_EQ(told(finals), "[1:stays 3:stays]");
    EXPECT_EQ(finals.begin()->second->getState(2)->getElt("c.m=open"), nullptr);
}

TEST_F(DiagnoserSuccessors, WithoutALaterStepTheLastOneIsGivenTheComponentWithItsIdleMove) {
    believedOpen();
    addStep();
    addStep();
    forget("c", 2);
    forget("c", 3);
    TrajectoryMap const finals = explain(conflicts({conflict("m=open", 1, 0)}), 1, 1.0, true);
    ASSERT_EQ(told(finals), "[1:stays][1:sticks]");
    for (auto const& entry : finals) {
        Trajectory const& result = *entry.second;
        bool const stuck = moves(result) == "1:sticks";
        EXPECT_EQ(result.getState(2)->getElt("c.m=shut"), nullptr);
        EXPECT_EQ(labels("m=shut m=open m=stuck", result, 3), stuck ? "fft" : "tff");
        EXPECT_EQ(elt("m=shut", result, 3)->prevTrans, stuck ? nullptr : stays);
        EXPECT_EQ(elt("m=stuck", result, 3)->prevTrans, stuck ? remains : nullptr);
        EXPECT_EQ(locks("m=shut m=open m=stuck", result, 3), "222");
        EXPECT_EQ(result.getState(3)->comps.count("c"), 1u);
    }
}

TEST_F(DiagnoserSuccessors, AtTheLastStepThereIsNoLaterOne) {
    believedOpen();
    model.trace.take();
    EXPECT_EQ(told(explainEffect("m=open", 0.0)), "[1:stays]");
    EXPECT_EQ(count(model.trace.take(), "[addComp]"), 0);
    // Effects and guards of step 1, and no third look.
    EXPECT_EQ(count(errors.take(), shown), 2);
}

}  // namespace
