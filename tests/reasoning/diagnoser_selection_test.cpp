// Which transitions are tried for a conflict, why others are refused, and which of those tried are
// within the rank.
//
// In most of these tests the tap was believed open at step 1 and is shut, so that `opens` is in
// conflict. Moves to the other modes could explain that: `stays`, which leads to shut, and
// `sticks`, `jams` and `remains`, which lead to stuck. At step 0 all is held: the tap is shut and
// no command is given, so `jams` and `remains` are locked out.
#include "reasoning/diagnoser_fixture.h"

using diagnoser_fixture::count;
using diagnoser_fixture::MovingTap;
using diagnoser_fixture::Tap;

namespace {

constexpr char const* actualOne = "trans is the actual one !\n";
constexpr char const* inNextTrans = "curr_trans already in nextTrans !\n";

// What one search chose and refused, in order, and its trace.
class Selecting : public MovingTap {
protected:
    TrajectoryMap search(ConflictSet const& set, int t, double rank, bool post) {
        TrajectoryMap finals = explain(set, t, rank, post);
        trace = errors.take();
        tried = chosen(trace);
        refused = toldBehind(
            "[immediateSuccessors] --> transition impossibility (" + std::to_string(t) + ") :\n",
            trace);
        return finals;
    }
    TrajectoryMap searchEffect(double rank) {
        return search(conflicts({conflict("m=open", 1, 0)}), 1, rank, true);
    }
    TrajectoryMap searchGuard(double rank) {
        return search(conflicts({conflict("m=shut", 1, 1)}), 2, rank, false);
    }
    // The conflict of a guard on a command of step 0.
    TrajectoryMap searchCommand(char const* name, double rank) {
        return search(conflicts({conflict(name, 0, 0)}), 1, rank, false);
    }
    bool told(std::string const& text) const { return trace.find(text) != std::string::npos; }

    std::string trace, tried, refused;
};

class DiagnoserSelection : public Selecting {};

// ---- Which are tried ----

TEST_F(DiagnoserSelection, AnEffectIsExplainedByMovesThatReachItsSiblings) {
    believedOpen();
    TrajectoryMap const finals = searchEffect(0.0);
    EXPECT_EQ(tried, "stays sticks");
    EXPECT_EQ(refused, "jams remains");
    ASSERT_EQ(finals.size(), 1u);
    EXPECT_EQ(moves(*finals.begin()->second), "1:stays");
}

TEST_F(DiagnoserSelection, AGuardIsExplainedByMovesThatLeaveItsSiblings) {
    believedShut();
    TrajectoryMap const finals = searchGuard(0.0);
    EXPECT_EQ(tried, "keeps remains");
    EXPECT_EQ(refused, "");
    ASSERT_EQ(finals.size(), 1u);  // remains would need a failure at step 1
    EXPECT_EQ(moves(*finals.begin()->second), "2:keeps");
    EXPECT_EQ(labels("m=shut m=open m=stuck", *finals.begin()->second, 2), "ftf");
}

TEST_F(DiagnoserSelection, NothingIsTriedForAConflictThatCannotBeRepaired) {
    believedShut();
    EXPECT_TRUE(search(conflicts({conflict("m=shut", 1, 1, false)}), 2, 9.0, false).empty());
    EXPECT_EQ(tried + refused, "");
}

TEST_F(DiagnoserSelection, AVariableIsLookedAtOnceEvenIfAnotherElementIsInConflict) {
    believedOpen();
    ConflictSet set = conflicts({conflict("m=open", 1, 0), conflict("m=stuck", 1, 0)});
    set.begin()->second.repairable = false;  // whichever comes first
    EXPECT_TRUE(search(set, 1, 9.0, true).empty());
    EXPECT_EQ(tried + refused, "");
}

TEST_F(DiagnoserSelection, AnotherVariableIsTriedAfterOneForWhichNothingWas) {
    model.variable("n", {"x", "y"});
    move("rests", "n=x", "n=x", 0.5, transNominal, true);
    believedOpen();
    ConflictSet set = conflicts({conflict("m=open", 1, 0), conflict("n=y", 1, 0)});
    set.begin()->second.repairable = false;
    bool const tapLeft = std::string(set.begin()->first) == "c.n=y";
    EXPECT_EQ(search(set, 1, 0.0, true).size(), 1u);
    EXPECT_EQ(tried, tapLeft ? "stays sticks" : "rests");
}

TEST_F(DiagnoserSelection, OnlyOneVariableIsExpandedAlsoWhenItsMovesAreOutOfRank) {
    model.variable("n", {"x", "y"});
    move("rests", "n=x", "n=x", 0.5, transNominal, true);
    believedOpen();
    ConflictSet const set = conflicts({conflict("m=open", 1, 0), conflict("n=y", 1, 0)});
    bool const tapFirst = std::string(set.begin()->first) == "c.m=open";
    EXPECT_TRUE(search(set, 1, -1.0, true).empty());
    EXPECT_EQ(tried, tapFirst ? "stays sticks" : "rests");
}

// ---- What the element in conflict forgets ----

TEST_F(DiagnoserSelection, TheElementForgetsWhatLedOnFromItAndItsSiblingsDoNot) {
    believedOpen();
    elt("m=open", 1)->addToNextTrans(keeps);
    elt("m=stuck", 1)->addToNextTrans(remains);
    TrajectoryMap const finals = searchEffect(0.0);
    ASSERT_EQ(finals.size(), 1u);
    Trajectory const& result = *finals.begin()->second;
    EXPECT_TRUE(elt("m=open", result, 1)->nextTrans.empty());
    EXPECT_EQ(elt("m=stuck", result, 1)->nextTrans.count(remains->id), 1u);
}

TEST_F(DiagnoserSelection, AGuardForgetsWhatLedOnFromItToo) {
    believedShut();
    TrajectoryMap const finals = searchGuard(0.0);
    ASSERT_EQ(finals.size(), 1u);
    Trajectory const& result = *finals.begin()->second;
    EXPECT_TRUE(elt("m=shut", result, 1)->nextTrans.empty());
    EXPECT_EQ(elt("cmd=none", result, 1)->nextTrans.count(stays->id), 1u);
}

// The cover of a move into step 1 is its weight times those of the other moves recorded there, so
// it shows whether `opens` (0.8) was forgotten. Tried: stays (0.7) and sticks (0.1).
TEST_F(DiagnoserSelection, AFreeEffectForgetsWhatLedToIt) {
    believedOpen();
    TrajectoryMap const finals = searchEffect(0.0);
    ASSERT_EQ(finals.size(), 1u);
    EXPECT_DOUBLE_EQ(finals.begin()->second->getLastState()->cover, 0.7 + 0.1);
}

TEST_F(DiagnoserSelection, AHeldEffectDoesNot) {
    believedOpen();
    elt("m=open", 1)->lock = LOCK_FALSE_PERM;
    TrajectoryMap const finals = searchEffect(0.0);
    ASSERT_EQ(finals.size(), 1u);
    EXPECT_DOUBLE_EQ(finals.begin()->second->getLastState()->cover, (0.7 + 0.1) * 0.8);
}

TEST_F(DiagnoserSelection, NorDoesOneToWhichAMoveWithoutAnEffectLed) {
    Transition* drips = manyEffects("drips", "m=shut", "m=open", 0.25);
    believedOpen();
    state(1)->setPrevTrans(elt("m=open", 1), drips);
    TrajectoryMap const finals = searchEffect(0.0);
    ASSERT_EQ(finals.size(), 1u);
    EXPECT_DOUBLE_EQ(finals.begin()->second->getLastState()->cover, (0.7 + 0.1) * 0.25);
}

TEST_F(DiagnoserSelection, NorDoesAGuard) {
    believedShut();
    state(1)->setPrevTrans(elt("m=shut", 1), stays);
    TrajectoryMap const finals = searchGuard(0.0);
    ASSERT_EQ(finals.size(), 1u);
    EXPECT_EQ(elt("m=shut", *finals.begin()->second, 1)->prevTrans, stays);
}

// ---- Commands ----

TEST_F(DiagnoserSelection, OneCommandIsNotExplainedByAnother) {
    move("closes", "m=open cmd=back", "m=shut", 0.5);
    believedOpen();
    TrajectoryMap const finals = searchCommand("cmd=go", 0.0);
    EXPECT_EQ(tried, "stays");  // through none
    EXPECT_EQ(refused, "closes");
    EXPECT_FALSE(told("is locked"));
    ASSERT_EQ(finals.size(), 1u);
    EXPECT_EQ(moves(*finals.begin()->second), "1:stays");
}

TEST_F(DiagnoserSelection, ThatNoneWasGivenIsExplainedByAnyCommand) {
    move("closes", "m=shut cmd=back", "m=shut", 0.5);
    start(1);
    takes(stays, 1);
    for (char const* value : {"cmd=go", "cmd=back"})
        elt(value, 0)->lock = LOCK_FREE;
    searchCommand("cmd=none", -1.0);
    EXPECT_EQ(tried, "opens jams closes");
}

TEST_F(DiagnoserSelection, ACommandMovesOneModeOnly) {
    model.variable("n", {"x", "y"});
    move("rests", "n=x cmd=none", "n=x", 0.5, transNominal, true);
    believedOpen();
    EXPECT_EQ(searchCommand("cmd=go", 0.0).size(), 1u);
    EXPECT_EQ(tried, "stays");
    EXPECT_EQ(refused, "rests");
}

TEST_F(DiagnoserSelection, AModeIsExplainedByMovesOfAnyMode) {
    model.variable("n", {"x", "y"});
    move("pushes", "n=x", "m=stuck", 0.5);
    believedOpen();
    searchEffect(0.0);
    EXPECT_EQ(tried, "stays sticks pushes");
}

class DiagnoserSlippingTap : public Tap {};

TEST_F(DiagnoserSlippingTap, AMoveOutOfRankSettlesTheModeOfACommandAsWell) {
    model.variable("n", {"x", "y"});
    move("slips", "m=shut cmd=none", "m=stuck", 0.1, transFail);
    move("rests", "n=x cmd=none", "n=x", 0.5, transNominal, true);
    start(1);
    TrajectoryMap const finals = explain(conflicts({conflict("cmd=go", 0, 0)}), 1, 0.0, false);
    std::string const trace = errors.take();
    EXPECT_EQ(chosen(trace), "slips");
    EXPECT_EQ(count(trace, "out of rank !\n"), 1);
    EXPECT_EQ(count(trace, "transition impossibility (1) :\n"), 1);
    EXPECT_TRUE(finals.empty());
}

// ---- What is taken already ----

TEST_F(DiagnoserSelection, TheMoveThatLedToTheSiblingIsRefused) {
    believedOpen();
    state(1)->setPrevTrans(elt("m=shut", 1), stays);
    EXPECT_TRUE(searchEffect(0.0).empty());
    EXPECT_EQ(tried, "sticks");
    EXPECT_EQ(refused, "stays jams remains");
    EXPECT_EQ(count(trace, actualOne), 1);
}

TEST_F(DiagnoserSelection, ForAGuardItIsNot) {
    believedShut();
    state(1)->setPrevTrans(elt("m=open", 1), keeps);
    searchGuard(0.0);
    EXPECT_EQ(tried, "keeps remains");
    EXPECT_FALSE(told(actualOne));
}

TEST_F(DiagnoserSelection, ForAGuardTheMoveThatLeavesTheSiblingIsRefused) {
    believedShut();
    elt("m=open", 1)->addToNextTrans(keeps);
    searchGuard(0.0);
    EXPECT_EQ(tried, "remains");
    EXPECT_EQ(refused, "keeps");
    EXPECT_EQ(count(trace, inNextTrans), 1);
}

TEST_F(DiagnoserSelection, AlsoWhenItLeavesItsFalseSide) {
    believedShut();
    elt("m=stuck", 1)->addToNextTransNeg(remains);
    searchGuard(0.0);
    EXPECT_EQ(tried, "keeps");
    EXPECT_EQ(refused, "remains");
    EXPECT_EQ(count(trace, inNextTrans), 1);
}

TEST_F(DiagnoserSelection, ForAnEffectItIsNot) {
    believedOpen();
    elt("m=shut", 1)->addToNextTrans(stays);
    elt("m=stuck", 1)->addToNextTransNeg(sticks);
    searchEffect(0.0);
    EXPECT_EQ(tried, "stays sticks");
    EXPECT_FALSE(told(inNextTrans));
}

TEST_F(DiagnoserSelection, AMoveThatIsACandidateIsNotOneTwice) {
    model.variable("n", {"x", "y"});
    move("swings", "n=x !m=shut", "n=y", 0.5);  // leaves open as well as stuck
    believedShut();
    state(2)->setPrevTrans(elt("m=shut", 2), nullptr);  // nothing is left to be explained
    searchGuard(0.0);
    EXPECT_EQ(tried, "keeps swings remains");
    EXPECT_EQ(refused, "swings");
}

TEST_F(DiagnoserSelection, OneThatWasOutOfRankIsTriedAgain) {
    model.variable("n", {"x", "y"});
    move("swings", "n=x !m=shut", "n=y", 0.5);
    believedShut();
    searchGuard(-1.0);
    EXPECT_EQ(tried, "keeps swings remains swings");
    EXPECT_EQ(refused, "");
}

TEST_F(DiagnoserSelection, AMoveThatLeavesItsGuardAlreadyIsRefused) {
    believedOpen();
    elt("m=shut", 0)->addToNextTrans(sticks);
    elt("m=shut", 0)->addToNextTransNeg(stays);  // this side is not looked at
    searchEffect(0.0);
    EXPECT_EQ(tried, "stays");
    EXPECT_EQ(refused, "sticks jams remains");
    EXPECT_TRUE(told("already supported by : c.m=shut\n"));
}

TEST_F(DiagnoserSelection, AMoveWithoutAnEffectIsNeverChosen) {
    manyEffects("drips", "m=shut", "m=shut", 0.5);
    believedOpen();
    searchEffect(9.0);
    EXPECT_EQ(tried, "stays sticks");
    EXPECT_EQ(refused, "drips jams remains");
}

// It moves no component, so there is no place where it could be taken.
TEST_F(DiagnoserSelection, NorIsOneWithoutAModeInItsGuard) {
    model.variable<CondVar>("n", {"x", "y"});
    move("pours", "n=x", "m=shut", 0.5);
    believedOpen();
    searchEffect(9.0);
    EXPECT_EQ(tried, "stays sticks");
    EXPECT_EQ(refused, "pours jams remains");
    EXPECT_EQ(count(trace, "has no mode in its guard\n"), 1);
}

// ---- What is held against it ----

class DiagnoserHeldElement : public Selecting, public testing::WithParamInterface<int> {
protected:
    bool heldTrue() const { return GetParam() == LOCK_TRUE || GetParam() == LOCK_TRUE_PERM; }
    bool heldFalse() const { return GetParam() == LOCK_FALSE || GetParam() == LOCK_FALSE_PERM; }
};

INSTANTIATE_TEST_SUITE_P(AllLocks, DiagnoserHeldElement,
                         testing::Values(LOCK_TRUE, LOCK_FALSE, LOCK_FREE, LOCK_TRUE_PERM,
                                         LOCK_FALSE_PERM));

TEST_P(DiagnoserHeldElement, AGuardHeldAtFalseRefuses) {
    believedOpen();
    elt("m=shut", 0)->lock = GetParam();
    searchEffect(0.0);
    EXPECT_EQ(tried, heldFalse() ? "" : "stays sticks");
    EXPECT_EQ(told("c.m=shut is locked !!\n"), heldFalse());
}

TEST_P(DiagnoserHeldElement, ADeniedLiteralHeldAtTrueRefuses) {
    model.variable<CondVar>("n", {"x", "y"});
    move("turns", "m=shut !n=y", "m=shut", 0.5);
    believedOpen();
    elt("n=y", 0)->lock = GetParam();
    searchEffect(0.0);
    EXPECT_EQ(tried, heldTrue() ? "stays sticks" : "stays turns sticks");
    EXPECT_EQ(told("c.n=y is locked !!\n"), heldTrue());
}

TEST_P(DiagnoserHeldElement, AnEffectHeldAtFalseRefuses) {
    believedOpen();
    elt("m=stuck", 1)->lock = GetParam();
    searchEffect(0.0);
    EXPECT_EQ(tried, heldFalse() ? "stays" : "stays sticks");
    EXPECT_EQ(told("c.m=stuck is post-locked !!\n"), heldFalse());
}

TEST_P(DiagnoserHeldElement, WhateverTheSignOfItsLiteral) {
    model.variable<CondVar>("n", {"x", "y"});
    move("frees", "m=shut", "m=shut !n=y", 0.5);
    believedOpen();
    elt("n=y", 1)->lock = GetParam();
    searchEffect(0.0);
    EXPECT_EQ(tried, heldFalse() ? "stays sticks" : "stays frees sticks");
    EXPECT_EQ(told("c.n=y is post-locked !!\n"), heldFalse());
}

// ---- Elements of other components ----

class DiagnoserPump : public Selecting {
protected:
    DiagnoserPump() {
        model.comp("p");
        model.variable("w", {"on", "off"}, true, "p");
        runs = move("runs", "w=on", "w=on", 0.5, transNominal, true, "p");
    }
    Transition* runs;
};

TEST_F(DiagnoserPump, OneOfAGuardIsPulledForwardWithItsIdleMove) {
    move("leaks", "m=shut w=on", "m=shut", 0.5);
    start(2);
    forget("p", 1);
    TrajectoryMap const finals = search(conflicts({conflict("m=open", 2, 1)}), 2, 0.0, true);
    EXPECT_EQ(tried, "stays leaks sticks remains");
    ASSERT_EQ(finals.size(), 2u);
    for (auto const& entry : finals) {
        ASSERT_NE(elt("w=on", *entry.second, 1), nullptr);
        EXPECT_EQ(labels("w=on w=off", *entry.second, 1), "tf");
        EXPECT_EQ(elt("w=on", *entry.second, 1)->prevTrans, runs);
        EXPECT_EQ(elt("w=on", *entry.second, 0)->nextTrans.count(runs->id), 1u);
    }
    EXPECT_EQ(count(model.trace.take(), "[addComp] --> timestep : 2 -- p\n"), 1);
}

TEST_F(DiagnoserPump, OneOfAnEffectIsToo) {
    move("floods", "m=shut", "m=shut w=off", 0.5);
    start(2);
    forget("p", 2);
    TrajectoryMap const finals = search(conflicts({conflict("m=open", 2, 1)}), 2, 0.0, true);
    EXPECT_EQ(tried, "stays floods sticks remains");
    ASSERT_EQ(finals.size(), 2u);
    EXPECT_EQ(count(model.trace.take(), "[addComp] --> timestep : 3 -- p\n"), 1);
    for (auto const& entry : finals) {
        bool const flooded = moves(*entry.second) == "2:floods";
        EXPECT_EQ(labels("w=on w=off", *entry.second, 2), flooded ? "ft" : "tf");
        EXPECT_EQ(elt("w=on", *entry.second, 2)->prevTrans, flooded ? nullptr : runs);
    }
}

}  // namespace
