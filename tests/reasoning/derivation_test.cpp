// The rule `derived`: what modes entail is derived, and what contradicts that is explained by the
// fewest changes.
//
// Two gates in series, and what they pass on. The input i goes through a to x, and x through b to
// y; each is high at the start. A gate that is bad makes low of everything.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::complaint;
using reasoning_fixture::count;
using reasoning_fixture::SmallModel;

namespace {

SearchLimits const searching = {false, 9.0};
SearchLimits const observing = {true, 9.0};

RunSettings rulesOf(std::string const& text) {
    RunSettings settings;
    std::string wrong;
    EXPECT_TRUE(Rules::read(text, settings.rules, wrong)) << wrong;
    return settings;
}

class DerivationTest : public testing::Test {
protected:
    explicit DerivationTest(std::string const& rules = "derived") : model(rulesOf(rules)) {
        for (char const* wire : {"i", "x", "y"})
            model.variable<StateVar>(wire, {"high", "low"})->type = typeObservable;
        gate("a", "i", "x");
        gate("b", "x", "y");
    }
    void gate(std::string const& name, std::string const& in, std::string const& out) {
        model.variable(name, {"ok", "bad"});
        model.atom(name + "=bad")->failure = true;
        model.clause("!" + name + "=ok !" + in + "=high " + out + "=high");
        model.clause("!" + name + "=ok !" + in + "=low " + out + "=low");
        model.clause("!" + name + "=bad " + out + "=low");
    }
    // What holds in each of the results, of i, x, y, a and b.
    std::multiset<std::string> results(std::string const& props,
                                       SearchLimits const& limits = searching) {
        std::multiset<std::string> found;
        for (auto const& result : model.assertAll(props, limits))
            found.insert(model.labels("i=high x=high y=high a=ok b=ok", result->state.get()));
        return found;
    }
    bool wentTheClassicWay() {
        std::string const trace = model.trace.take();
        return count(trace, "a sol has been discarded...") > 0;
    }

    SmallModel model;
};
using Labels = std::multiset<std::string>;

// A letter each for i, x, y high and a, b ok: t or f.
TEST_F(DerivationTest, WhatFollowsFromAnInputIsNoConflict) {
    model.start();
    ItmsResults const found = model.assertAll("i=low", searching);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(
        model.labels("i=low i=high x=low x=high y=low y=high a=ok b=ok", found[0]->state.get()),
        "tftftftt");
    EXPECT_FALSE(wentTheClassicWay());
}

TEST_F(DerivationTest, EachSuppositionThatExplainsIsGivenUpInTurn) {
    model.start();
    EXPECT_EQ(results("y=low"), (Labels{"ffftt", "tffft", "ttftf"}));
    EXPECT_EQ(results("y=low i=high"), (Labels{"tffft", "ttftf"}));
    EXPECT_EQ(results("y=low i=high x=high"), (Labels{"ttftf"}));
}

// x is low, so that b need not be bad for y to be low.
TEST_F(DerivationTest, NothingChangesWithoutNeed) {
    model.start();
    EXPECT_EQ(results("i=high x=low y=low"), (Labels{"tffft"}));
}

TEST_F(DerivationTest, ASecondChangeIsTakenWhereOneDoesNotDo) {
    model.variable<StateVar>("z", {"high", "low"})->type = typeObservable;
    gate("c", "i", "z");
    model.start();
    // y and z are low of a high input: c and one of a and b.
    Labels found;
    for (auto const& result : model.assertAll("i=high y=low z=low", searching))
        found.insert(model.labels("a=ok b=ok c=ok", result->state.get()));
    EXPECT_EQ(found, (Labels{"ftf", "tff"}));
}

// x is wrong for both that read it, or both are.
TEST_F(DerivationTest, ASetThatHoldsAnAnswerIsNone) {
    model.variable<StateVar>("z", {"high", "low"})->type = typeObservable;
    gate("c", "x", "z");
    model.start();
    Labels found;
    for (auto const& result : model.assertAll("i=high y=low z=low", searching))
        found.insert(model.labels("a=ok b=ok c=ok", result->state.get()));
    EXPECT_EQ(found, (Labels{"ftt", "tff"}));
}

// Two rows of fifteen gates, and at the end of each something is wrong: 225 pairs explain that.
TEST_F(DerivationTest, NoMoreThanTwoHundredAnswersAreTaken) {
    for (std::string const row : {"k", "l"}) {
        std::string in = "i";
        for (int number = 1; number <= 15; ++number) {
            std::string const out = row + "out" + std::to_string(number);
            model.variable<StateVar>(out, {"high", "low"})->type = typeObservable;
            gate(row + std::to_string(number), in, out);
            in = out;
        }
    }
    model.start();
    std::size_t found = 0;
    std::string const told = complaint(
        [&] { found = model.assertAll("i=high kout15=low lout15=low", searching).size(); });
    EXPECT_EQ(found, 200U);
    EXPECT_EQ(told, "search: stopped after 200 answers, more may explain this\n");
    EXPECT_EQ(model.assertAll("i=high kout14=low lout14=low", searching).size(), 196U);
}

TEST_F(DerivationTest, FailuresAreTakenUpToTheRank) {
    model.start();
    EXPECT_EQ(results("y=low", {false, 0.0}), (Labels{"ffftt"}));
    EXPECT_EQ(results("y=low i=high", {false, 0.0}), Labels{});
    EXPECT_EQ(results("y=low i=high", {false, 1.0}), (Labels{"tffft", "ttftf"}));
    model.state()->failCount = 1.0;
    EXPECT_EQ(results("y=low i=high", {false, 1.0}), Labels{});
}

TEST_F(DerivationTest, AFailureThatIsTakenCounts) {
    model.start();
    for (auto const& result : model.assertAll("y=low i=high", searching))
        EXPECT_EQ(result->state->failCount, 1.0);
    for (auto const& result : model.assertAll("i=low", searching))
        EXPECT_EQ(result->state->failCount, 0.0);
}

// The search leaves them as they are from here on: what was asserted, what was left and what was
// taken.
TEST_F(DerivationTest, WhatWasChangedIsTold) {
    model.start();
    ItmsResults const found = model.assertAll("y=low i=high x=high", searching);
    ASSERT_EQ(found.size(), 1U);
    ElementTable const& changed = found[0]->already_changed;
    EXPECT_EQ(changed.size(), 5U);
    for (char const* name : {"y=low", "i=high", "x=high", "b=ok", "b=bad"}) {
        char const* id = model.atom(name)->getId();
        ASSERT_EQ(changed.count(id), 1U) << name;
        EXPECT_EQ(changed.find(id)->second, found[0]->state->getElt(id)) << name;
    }
}

TEST_F(DerivationTest, WhatIsHeldIsNotGivenUp) {
    model.start();
    model.elt("b=ok")->lock = LOCK_TRUE_PERM;
    EXPECT_EQ(results("y=low i=high"), (Labels{"tffft"}));
    model.elt("a=bad")->lock = LOCK_FALSE;
    EXPECT_EQ(results("y=low i=high"), Labels{});
}

TEST_F(DerivationTest, WhatIsSeenDoesNotUndoAMoveThatHasBroughtAMode) {
    Transition* stays = model.transition("a=ok", "a=ok", 0.9, transNominal, true);
    model.start();
    model.elt("a=ok")->prevTrans = stays;
    EXPECT_EQ(results("y=low i=high", observing), (Labels{"ttftf"}));
    EXPECT_EQ(results("y=low i=high", searching), (Labels{"tffft", "ttftf"}));
}

TEST_F(DerivationTest, OneValueStandsForAnother) {
    model.start();
    EXPECT_EQ(results("!y=high i=high"), (Labels{"tffft", "ttftf"}));
}

TEST_F(DerivationTest, WithNothingAssertedTheStateIsTheResult) {
    model.start();
    EXPECT_EQ(results(""), (Labels{"ttttt"}));
}

// A mode in which nothing is said about the output.
TEST_F(DerivationTest, WhereSomethingStaysOpenTheClassicWayIsTaken) {
    model.variable<StateVar>("z", {"high", "low"})->type = typeObservable;
    model.variable("c", {"ok", "lost"});
    model.clause("!c=ok !y=high z=high");
    model.clause("!c=ok !y=low z=low");
    model.start();
    model.assertAll("i=low", searching);
    EXPECT_FALSE(wentTheClassicWay());
    model.assertAll("c=lost", searching);
    EXPECT_TRUE(wentTheClassicWay());
}

TEST_F(DerivationTest, APlantWithConditionsGoesTheClassicWay) {
    model.variable<CondVar>("cold", {"no", "yes"});
    model.start();
    model.assertAll("i=low", searching);
    EXPECT_TRUE(wentTheClassicWay());
}

class ClassicTest : public DerivationTest {
protected:
    ClassicTest() : DerivationTest("histories") {}
};

TEST_F(ClassicTest, WithoutTheRuleClausesAreRepaired) {
    model.start();
    model.assertAll("i=low", searching);
    EXPECT_TRUE(wentTheClassicWay());
}

// A command that was not told is looked for when something is seen; a search takes a command back
// alone.
TEST_F(DerivationTest, ACommandGoesToNoneAlone) {
    model.variable<StateVar>("w", {"high", "low"})->type = typeObservable;
    model.variable<CommandVar>("cmd", {"none", "hold", "stop"});
    model.clause("!cmd=none w=high");
    model.clause("!cmd=hold w=low");
    model.clause("!cmd=stop w=low");
    model.start();
    EXPECT_EQ(model.assertAll("w=low", searching).size(), 0U);
    EXPECT_EQ(model.assertAll("w=low", observing).size(), 2U);
    model.label("!cmd=none cmd=hold w=low !w=high");
    ItmsResults const found = model.assertAll("w=high", searching);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(model.labels("cmd=none cmd=hold cmd=stop", found[0]->state.get()), "tff");
}

TEST_F(DerivationTest, LeavingTheUnknownModeMarksTheState) {
    model.variable<StateVar>("z", {"high", "low"})->type = typeObservable;
    model.variable("c", {"unknown", "ok"});
    model.clause("!c=unknown z=low");
    model.clause("!c=ok !i=high z=high");
    model.clause("!c=ok !i=low z=low");
    model.start();
    ItmsResults const found = model.assertAll("i=high z=high", searching);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(found[0]->state->unknown);
    EXPECT_EQ(model.labels("c=ok c=unknown", found[0]->state.get()), "tf");
}

}  // namespace
