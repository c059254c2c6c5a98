// What no longer fits in a history, which failures were expanded already, and how a result is
// entered.
#include "fixtures/the_run.h"
#include "reasoning/diagnoser_fixture.h"

using diagnoser_fixture::count;
using diagnoser_fixture::MovingTap;

namespace {

constexpr bool effects = true;
constexpr bool guards = false;

class DiagnoserConflicts : public MovingTap {
protected:
    // A transition of both the tap and a gauge n with the values x and y.
    void addGauge() { model.variable<CondVar>("n", {"x", "y"}); }
    ConflictSet found(int t, bool post) {
        model.trace.take();
        errors.take();
        return theRun().scheduler.getConflicts(history(), t, post);
    }
    // The only conflict, told as "id position mark".
    static std::string only(ConflictSet const& set) {
        if (set.size() != 1)
            return std::to_string(set.size()) + " conflicts";
        disConflict const& one = set.begin()->second;
        return std::string(set.begin()->first) + " " + std::to_string(one.position) +
               (one.repairable ? " true" : " false");
    }
};

// ---- Effects ----

TEST_F(DiagnoserConflicts, AnEffectThatWasDeniedIsOne) {
    start(1);
    takes(opens, 1);
    label(1, "!m=open m=shut");
    ConflictSet const set = found(1, effects);
    EXPECT_EQ(only(set), "c.m=open 0 true");
    EXPECT_EQ(set.begin()->second.element, elt("m=open", 1));
}

TEST_F(DiagnoserConflicts, AnEffectThatHoldsOrIsUnknownIsNone) {
    start(1);
    takes(opens, 1);
    EXPECT_TRUE(found(1, effects).empty());
    label(1, "?m=open");
    EXPECT_TRUE(found(1, effects).empty());
}

TEST_F(DiagnoserConflicts, TheEffectsPositionIsTheNearestStepBeforeThatHoldsIt) {
    start(3);
    state(3)->setPrevTrans(elt("m=open", 3), keeps);  // shut, as before
    EXPECT_EQ(only(found(3, effects)), "c.m=open 2 true");
    forget("c", 2);
    EXPECT_EQ(only(found(3, effects)), "c.m=open 1 true");
}

TEST_F(DiagnoserConflicts, EveryAtomOfAnEffectIsLookedAt) {
    addGauge();
    Transition* both = move("both", "m=shut", "m=open n=y", 0.5);
    start(1);
    takes(both, 1);
    label(1, "!m=open !n=y");
    ConflictSet const set = found(1, effects);
    EXPECT_EQ(set.size(), 2u);
    EXPECT_EQ(set.count("c.m=open"), 1u);
    EXPECT_EQ(set.count("c.n=y"), 1u);
}

TEST_F(DiagnoserConflicts, TheEffectDecidesAndNotTheElementThroughWhichItWasFound) {
    start(1);
    state(1)->setPrevTrans(elt("m=stuck", 1), opens);  // open, its effect, is false
    EXPECT_EQ(only(found(1, effects)), "c.m=open 0 true");
}

TEST_F(DiagnoserConflicts, ATransitionThatLedToTwoElementsIsLookedAtOnceForItsEffect) {
    addGauge();
    Transition* both = move("both", "m=shut", "m=open n=y", 0.5);
    start();
    state(0)->setPrevTrans(elt("m=open", 0), both);
    state(0)->setPrevTrans(elt("n=y", 0), both);
    // Nothing stands before step 0, so that every lookup is told: one for each of the two atoms.
    found(0, effects);
    EXPECT_EQ(count(model.trace.take(), "Error: atom not found... "), 2);
}

TEST_F(DiagnoserConflicts, AndForItsGuardAsOftenAsItLed) {
    addGauge();
    Transition* both = move("both", "m=shut", "m=open n=y", 0.5);
    start();
    state(0)->setPrevTrans(elt("m=open", 0), both);
    found(0, guards);
    EXPECT_EQ(count(model.trace.take(), "Error: atom not found... "), 1);
    state(0)->setPrevTrans(elt("n=y", 0), both);
    found(0, guards);
    EXPECT_EQ(count(model.trace.take(), "Error: atom not found... "), 2);
}

TEST_F(DiagnoserConflicts, WithoutAnEffectThereIsNoneOfEitherKind) {
    Transition* drips = manyEffects("drips", "m=shut", "m=open", 0.5);
    start(1);
    state(1)->setPrevTrans(elt("m=open", 1), drips);
    label(0, "!m=shut");
    EXPECT_TRUE(found(1, effects).empty());
    EXPECT_TRUE(found(1, guards).empty());
}

// Nothing stands before the first step, so that the step itself is the nearest that holds it.
TEST_F(DiagnoserConflicts, ADeniedEffectOfTheFirstStepIsOneToo) {
    start();
    state(0)->setPrevTrans(elt("m=shut", 0), keeps);  // open, its effect, is false
    ConflictSet const set = found(0, effects);
    EXPECT_EQ(only(set), "c.m=open 0 true");
    EXPECT_EQ(set.begin()->second.element, elt("m=open", 0));
}

TEST_F(DiagnoserConflicts, SoItIsWhenTheWindowBeginsLater) {
    start(theRun().scheduler.book.twd + 1);
    int const first = history()->firstTime;
    ASSERT_GT(first, 0);
    state(first)->setPrevTrans(elt("m=shut", first), keeps);
    EXPECT_EQ(only(found(first, effects)), "c.m=open " + std::to_string(first) + " true");
}

// The search looks for what could have led there, as at any other step.
TEST_F(DiagnoserConflicts, AConflictOfTheFirstStepIsExplainedThere) {
    start();
    mode(0, "stuck");
    state(0)->setPrevTrans(elt("m=shut", 0), stays);
    ConflictSet const set = found(0, effects);
    ASSERT_EQ(only(set), "c.m=shut 0 true");
    explain(set, 0, 5.0, effects);
    EXPECT_NE(errors.take().find("[immediateSuccessors] --> "), std::string::npos);
}

// ---- Guards ----

TEST_F(DiagnoserConflicts, AGuardThatNoLongerHeldOneStepBeforeIsOne) {
    start(1);
    takes(stays, 1);
    EXPECT_TRUE(found(1, guards).empty());
    label(0, "!m=shut m=open");
    ConflictSet const set = found(1, guards);
    EXPECT_EQ(only(set), "c.m=shut 0 true");
    EXPECT_EQ(set.begin()->second.element, elt("m=shut", 0));
}

TEST_F(DiagnoserConflicts, AnUnknownGuardIsNone) {
    start(1);
    takes(stays, 1);
    label(0, "?m=shut");
    EXPECT_TRUE(found(1, guards).empty());
}

TEST_F(DiagnoserConflicts, ADeniedLiteralThatHoldsIsMarkedFalse) {
    addGauge();
    Transition* turns = move("turns", "m=shut !n=y", "m=open", 0.5);
    start(1);
    takes(turns, 1);
    EXPECT_TRUE(found(1, guards).empty());
    label(0, "?n=y");
    EXPECT_TRUE(found(1, guards).empty());
    label(0, "n=y");
    EXPECT_EQ(only(found(1, guards)), "c.n=y 0 false");
}

TEST_F(DiagnoserConflicts, TheGuardsPositionIsTheNearestStepBeforeThatHoldsIt) {
    start(3);
    takes(stays, 3);
    forget("c", 2);
    label(1, "!m=shut m=open");
    ConflictSet const set = found(3, guards);
    EXPECT_EQ(only(set), "c.m=shut 1 true");
    EXPECT_EQ(set.begin()->second.element, elt("m=shut", 1));
}

// ---- Both ----

TEST_F(DiagnoserConflicts, OfTwoOnOneAtomOneStands) {
    addGauge();
    Transition* dries = move("dries", "m=shut", "n=y", 0.5);
    start(1);
    takes(stays, 1);
    takes(dries, 1);
    label(0, "!m=shut m=open");
    EXPECT_EQ(only(found(1, guards)), "c.m=shut 0 true");
}

TEST_F(DiagnoserConflicts, EachKindLooksAtItsOwnSideOnly) {
    start(1);
    takes(stays, 1);
    label(0, "!m=shut m=open");
    EXPECT_TRUE(found(1, effects).empty());
    label(0, "m=shut !m=open");
    label(1, "!m=shut m=open");
    EXPECT_EQ(only(found(1, effects)), "c.m=shut 0 true");
    EXPECT_TRUE(found(1, guards).empty());
}

TEST_F(DiagnoserConflicts, BothTellTheSearchAndThenWhatTheyFound) {
    start(1);
    takes(stays, 1);
    for (bool const post : {effects, guards}) {
        label(post ? 1 : 0, "!m=shut");
        label(post ? 0 : 1, "m=shut");
        found(1, post);
        std::string const text = errors.take();
        EXPECT_EQ(text.find("[getConflicts()] --> "), 0u) << text;
        std::size_t const heading = text.find("\n******* Showing conflicts *******\n");
        ASSERT_NE(heading, std::string::npos) << text;
        EXPECT_GT(text.find("c.m=shut"), heading) << text;
    }
}

TEST_F(DiagnoserConflicts, AnEmptySetIsShownAsWell) {
    theRun().scheduler.viewHashMapConflicts({});
    EXPECT_EQ(errors.take(), "******* Showing conflicts *******\n");
}

TEST_F(DiagnoserConflicts, AStepOutsideTheWindowHasNone) {
    start(1);
    EXPECT_TRUE(found(2, effects).empty());
    EXPECT_TRUE(found(2, guards).empty());
}

TEST_F(DiagnoserConflicts, OneWithoutAMarkCanBeRepaired) {
    start();
    disConflict const two(elt("m=shut", 0), 4);
    EXPECT_EQ(two.element, elt("m=shut", 0));
    EXPECT_EQ(two.position, 4);
    EXPECT_TRUE(two.repairable);
    EXPECT_FALSE(disConflict(elt("m=shut", 0), 4, false).repairable);
}

// ---- Failures that were expanded ----

class DiagnoserDeadEnds : public MovingTap {
protected:
    DiagnoserDeadEnds() { start(1); }
};

TEST_F(DiagnoserDeadEnds, AFailureWithoutACommandIsOneTheSecondTime) {
    EXPECT_FALSE(theRun().scheduler.checkForDeadEnd(sticks));
    EXPECT_EQ(theRun().scheduler.redux_diag, std::set<Transition const*>{sticks});
    EXPECT_TRUE(theRun().scheduler.checkForDeadEnd(sticks));
    EXPECT_EQ(theRun().scheduler.redux_diag.size(), 1u);
}

TEST_F(DiagnoserDeadEnds, OneWithACommandNeverIs) {
    EXPECT_FALSE(theRun().scheduler.checkForDeadEnd(jams));
    EXPECT_FALSE(theRun().scheduler.checkForDeadEnd(jams));
    EXPECT_TRUE(theRun().scheduler.redux_diag.empty());
}

TEST_F(DiagnoserDeadEnds, NorIsANominalMoveWithoutACommand) {
    EXPECT_FALSE(theRun().scheduler.checkForDeadEnd(keeps));
    EXPECT_FALSE(theRun().scheduler.checkForDeadEnd(keeps));
    EXPECT_TRUE(theRun().scheduler.redux_diag.empty());
}

TEST_F(DiagnoserDeadEnds, TheExtendedTestEntersNothing) {
    EXPECT_FALSE(theRun().scheduler.checkForDeadEndExt(sticks, history()));
    EXPECT_TRUE(theRun().scheduler.redux_diag.empty());
    EXPECT_FALSE(theRun().scheduler.checkForDeadEndExt(sticks, history()));
    theRun().scheduler.redux_diag.insert(sticks);
    EXPECT_TRUE(theRun().scheduler.checkForDeadEndExt(sticks, history()));
    EXPECT_EQ(theRun().scheduler.redux_diag.size(), 1u);
}

TEST_F(DiagnoserDeadEnds, ItAlsoLooksAtWhatTheHistoryRecords) {
    takes(stays, 1);
    theRun().scheduler.redux_diag.insert(sticks);
    EXPECT_FALSE(theRun().scheduler.checkForDeadEndExt(jams, history()));
    EXPECT_FALSE(theRun().scheduler.checkForDeadEndExt(keeps, history()));
    takes(sticks, 1);
    for (Transition* each : {sticks, jams, keeps})
        EXPECT_TRUE(theRun().scheduler.checkForDeadEndExt(each, history())) << nameOf(each);
}

TEST_F(DiagnoserDeadEnds, ForATransitionOfAnotherKindThatAloneDecides) {
    theRun().scheduler.redux_diag = {jams, keeps};
    EXPECT_FALSE(theRun().scheduler.checkForDeadEndExt(jams, history()));
    EXPECT_FALSE(theRun().scheduler.checkForDeadEndExt(keeps, history()));
}

// ---- Results ----

TEST_F(DiagnoserDeadEnds, AResultIsEnteredUnderItsLastProbabilityRenewed) {
    takes(stays, 1);
    state(1)->obsProb = 0.5;
    state(1)->proba = 0.9;  // of before
    Trajectory const* added = history();
    TrajectoryMap results;
    results.emplace(0.2, nullptr);
    double sum = 0.25;
    Diagnoser::addResult(std::move(model.history), results, sum);
    double const proba = 0.5 * 0.7 * 1.0;  // obsProb, stays, step 0
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(results.begin()->first, proba);
    EXPECT_EQ(results.begin()->second.get(), added);
    EXPECT_EQ(added->getLastState()->proba, proba);
    EXPECT_EQ(sum, 0.25 + proba);
}

}  // namespace
