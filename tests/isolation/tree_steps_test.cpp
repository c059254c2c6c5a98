// The hitting-set tree step by step: numbers and places of leaves, what closes a branch, what a
// leaf remembers of its suspects, exoneration, and the order of preference.
#include <algorithm>

#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

// A tree grown by one set after the other.
HittingSetTree grown(std::vector<std::string> const& sets) {
    HittingSetTree tree(theEngine.host);
    for (std::string const& set : sets)
        tree.grow(suspects(set));
    return tree;
}

std::string leavesOf(std::vector<std::string> const& sets) {
    return text(grown(sets).leaves());
}

// ---- Growing ----

TEST(TreeSteps, ANewTreeHasNoLeaf) {
    EXPECT_EQ(leavesOf({}), "");
    EXPECT_EQ(leavesOf({"", ""}), "");
}

TEST(TreeSteps, LeavesAreNumberedFromOne) {
    EXPECT_EQ(leavesOf({"a"}), "1[a]");
    EXPECT_EQ(leavesOf({"", "c a b"}), "1[c]2[a]3[b]") << "an empty set makes none";
}

// Numbers are given leaf by leaf, 3 4 to [a] and 5 6 to [b]; the new leaves stand suspect by
// suspect.
TEST(TreeSteps, NewLeavesStandBySuspectAndAreNumberedByLeaf) {
    EXPECT_EQ(leavesOf({"a b", "x y"}), "3[a x]5[b x]4[a y]6[b y]");
}

TEST(TreeSteps, ALeafThatHitsTheSetStaysInFrontWithItsNumber) {
    // [b] stays; [a] grows into 4[a b], closed, and 5[a x]; [c] into 6[c b], closed, and 7[c x].
    EXPECT_EQ(leavesOf({"a b c", "b x"}), "2[b]5[a x]7[c x]");
}

TEST(TreeSteps, LeavesThatStayKeepTheirOrder) {
    EXPECT_EQ(leavesOf({"a b c", "c a"}), "1[a]3[c]");
}

TEST(TreeSteps, TheNumbersOfDroppedLeavesAreNotGivenAgain) {
    // 2[b] gives 3[b a], which is closed; 4 is the next.
    EXPECT_EQ(leavesOf({"a b", "a", "x"}), "4[a x]");
}

TEST(TreeSteps, TheSameSetTwiceChangesNothing) {
    EXPECT_EQ(leavesOf({"a b", "a b"}), "1[a]2[b]");
    EXPECT_EQ(leavesOf({"a b", "b a"}), "1[a]2[b]");
}

// After the second set: 3[a c] 5[b c] 4[a d] 6[b d]. The third holds a and c: 3 is hit by both,
// 5 by c alone, 4 by a alone. 6[b d] gives [b d a], closed by [a d], [b d c], closed by [b c], and
// 9[b d e].
TEST(TreeSteps, EachLeafThatIsHitOnceClosesThroughItsSuspect) {
    EXPECT_EQ(leavesOf({"a b", "c d", "a c e"}), "3[a c]5[b c]4[a d]9[b d e]");
}

// [a] grows into [a c]. It ends in c, and [b c], which was hit by c, is no part of it.
TEST(TreeSteps, OnlyALeafThatIsPartOfTheNewOneClosesIt) {
    // {a, b}: 1[a] 2[b]. {a, c}: [a] stays, [b a] is closed, 4[b c]. {c, d}: [b c] stays, [a] grows
    // into 5[a c] and 6[a d].
    EXPECT_EQ(leavesOf({"a b", "a c", "c d"}), "4[b c]5[a c]6[a d]");
}

// ---- What a leaf remembers ----

// {a, b@0}: [a], [b]. {a, f}: [a] stays, [b f] is new. {b@3, e}: [b f] stays; [a] grows.
TEST(TreeSteps, ASuspectKeepsTheDelayWithWhichItEnteredTheLeaf) {
    EXPECT_EQ(leavesOf({"a b", "a f", "b@3 e"}), "4[b f]5[a b@3]6[a e]");
}

TEST(TreeSteps, LeavesOutliveTheTreeAndTheSets) {
    std::vector<Leaf> leaves;
    {
        Suspects set = suspects("a@2 b");
        HittingSetTree tree(theEngine.host);
        tree.grow(set);
        leaves = tree.leaves();
    }
    EXPECT_EQ(text(leaves), "1[a@2]2[b]");
}

TEST(TreeSteps, ATreeMovesWithItsLeaves) {
    HittingSetTree tree = grown({"a b"});
    HittingSetTree other = std::move(tree);
    other.grow(suspects("b c"));
    EXPECT_EQ(text(other.leaves()), "2[b]4[a c]");
    tree = std::move(other);
    EXPECT_EQ(text(tree.leaves()), "2[b]4[a c]");
}

class TreeConditions : public testing::Test {
protected:
    Suspects setOf(std::vector<s_Influence*> const& influences) {
        Suspects set;
        for (s_Influence* influence : influences)
            makeUpConflict(influence, 0, set);
        return set;
    }
    CausalGraph graph;
    s_Variable *x = graph.variable("x"), *y = graph.variable("y");
    s_Influence* open = graph.link("a", x, y, 0, graph.constant(1));
    s_Influence* shut = graph.link("a", x, y, 0, graph.constant(0));
    s_Influence* alike = graph.link("a", x, y, 0, graph.constant(1));
};

TEST_F(TreeConditions, OneNameUnderTwoConditionsIsTwoSuspects) {
    HittingSetTree tree(theEngine.host);
    tree.grow(setOf({open}));
    tree.grow(setOf({shut}));
    EXPECT_EQ(text(tree.leaves()), "2[a a]");
}

TEST_F(TreeConditions, OneNameUnderEqualConditionsIsOneSuspect) {
    HittingSetTree tree(theEngine.host);
    tree.grow(setOf({open}));
    tree.grow(setOf({alike}));
    EXPECT_EQ(text(tree.leaves()), "1[a]");
}

TEST_F(TreeConditions, ExonerationTakesTheSameCondition) {
    HittingSetTree tree(theEngine.host);
    tree.grow(setOf({open, shut}));
    MeasureConflicts normal;
    normal.conflicts = setOf({shut});
    tree.exonerate({normal});
    std::vector<Leaf> const leaves = tree.leaves();
    ASSERT_EQ(leaves.size(), 1u);
    EXPECT_EQ(leaves[0].conflictSet[0]->influence, open);
}

// ---- All small cases ----

// A set of suspects as bits; suspect i is named by its number.
Suspects named(unsigned bits) {
    std::string notation;
    for (unsigned i = 0; i < 4; ++i)
        if ((bits >> i & 1u) != 0)
            notation += "s" + std::to_string(i) + " ";
    return suspects(notation);
}

unsigned bitsOf(Leaf const& leaf) {
    unsigned bits = 0;
    for (auto const& suspect : leaf.conflictSet)
        bits |= 1u << (suspect->name[1] - '0');
    return bits;
}

// By enumeration: what hits every set, and no part of which does.
std::vector<unsigned> minimalHittingSets(std::vector<unsigned> const& sets) {
    std::vector<unsigned> hitting, minimal;
    for (unsigned candidate = 0; candidate < 16; ++candidate)
        if (std::all_of(sets.begin(), sets.end(),
                        [=](unsigned set) { return (set & candidate) != 0; }))
            hitting.push_back(candidate);
    for (unsigned const candidate : hitting)
        if (std::none_of(hitting.begin(), hitting.end(), [=](unsigned other) {
                return other != candidate && (other & candidate) == other;
            }))
            minimal.push_back(candidate);
    return minimal;
}

// Every sequence of three sets over four suspects: each minimal hitting set is one leaf, and there
// is no other leaf. (A part of a new leaf that hits the set would contain its last suspect alone of
// the set, so it has closed the leaf; and parts of new leaves grew from parts of old ones.)
TEST(TreeSteps, TheLeavesAreTheMinimalHittingSets) {
    for (unsigned family = 0; family < 16 * 16 * 16; ++family) {
        std::vector<unsigned> sets;
        HittingSetTree tree(theEngine.host);
        for (unsigned const set : {family & 15u, family >> 4 & 15u, family >> 8 & 15u})
            if (set != 0) {
                sets.push_back(set);
                tree.grow(named(set));
            }
        std::vector<unsigned> leaves;
        for (Leaf const& leaf : tree.leaves())
            leaves.push_back(bitsOf(leaf));
        std::sort(leaves.begin(), leaves.end());
        // Without a set there is nothing to hit, and no leaf.
        ASSERT_EQ(leaves, sets.empty() ? std::vector<unsigned>{} : minimalHittingSets(sets))
            << "family " << family;
    }
}

// ---- Exoneration ----

std::string exonerated(std::vector<std::string> const& sets,
                       std::vector<std::string> const& behaving) {
    std::vector<MeasureConflicts> normal;
    for (std::string const& notation : behaving)
        normal.push_back(measureWith(notation));
    HittingSetTree tree = grown(sets);
    tree.exonerate(normal);
    return text(tree.leaves());
}

TEST(Exoneration, GoesByTheDelay) {
    EXPECT_EQ(exonerated({"a@2 b"}, {"a@1"}), "2[b]") << "a lower one would have shown";
    EXPECT_EQ(exonerated({"a@2 b"}, {"a@2"}), "2[b]") << "so would an equal one";
    EXPECT_EQ(exonerated({"a@2 b"}, {"a@3"}), "1[a@2]2[b]") << "a higher one is still to come";
}

TEST(Exoneration, OneSuspectCondemnsTheLeaf) {
    // 3[a c] 5[b c] 4[a d] 6[b d].
    EXPECT_EQ(exonerated({"a b", "c d"}, {"c"}), "4[a d]6[b d]");
    EXPECT_EQ(exonerated({"a b", "c d"}, {"a d"}), "5[b c]");
}

TEST(Exoneration, EveryBehavingMeasureCounts) {
    EXPECT_EQ(exonerated({"a b c"}, {"a", "c"}), "2[b]");
    EXPECT_EQ(exonerated({"a@2 b c"}, {"a@3 c", "a@1"}), "2[b]");
    EXPECT_EQ(exonerated({"a b"}, {"b a"}), "");
}

TEST(Exoneration, WhatIsNotInTheTreeDoesNotMatter) {
    EXPECT_EQ(exonerated({"a b"}, {"z", ""}), "1[a]2[b]");
    EXPECT_EQ(exonerated({"a b"}, {}), "1[a]2[b]");
    EXPECT_EQ(exonerated({}, {"a"}), "");
}

// 4[b f], where b came at delay 0, and 5[a b@3]: only the delay in the leaf itself counts.
TEST(Exoneration, TheDelayInTheLeafCounts) {
    EXPECT_EQ(exonerated({"a b", "a f", "b@3 e"}, {"b@2"}), "4[b f]6[a e]");
}

// ---- The order of preference ----

std::string preferred(std::vector<std::string> const& sets, std::string const& soft) {
    HittingSetTree tree = grown(sets);
    tree.sortByPreference(suspects(soft));
    return text(tree.leaves());
}

TEST(Preference, FewerSoftSuspectsComeFirst) {
    EXPECT_EQ(preferred({"s b"}, "s"), "2[b]1[s]");
    EXPECT_EQ(preferred({"s b"}, "s b"), "1[s]2[b]") << "as many each";
    EXPECT_EQ(preferred({"s@4 b"}, "s@1"), "2[b]1[s@4]") << "delays play no part";
    EXPECT_EQ(preferred({"a b"}, "z"), "1[a]2[b]") << "a soft suspect that is in no leaf";
}

// {a, b}, {a, c}, {c, d}: 4[b c] 5[a c] 6[a d]; one soft suspect, none, one.
TEST(Preference, EverySoftSuspectOfALeafCounts) {
    EXPECT_EQ(preferred({"a b", "a c", "c d"}, "b d"), "5[a c]4[b c]6[a d]");
    // None, one and two.
    EXPECT_EQ(preferred({"a b", "a c", "c d"}, "a d"), "4[b c]5[a c]6[a d]");
}

// {a, b}, {b, c}, {d, b}: [b] stays in front, and [a c] grows into [a c d]. The size decides among
// leaves with as many soft suspects, and only among these.
TEST(Preference, ThenTheSmallerLeaf) {
    EXPECT_EQ(leavesOf({"a b", "b c", "d b"}), "2[b]5[a c d]");
    EXPECT_EQ(preferred({"a b", "b c", "d b"}, ""), "2[b]5[a c d]");
    EXPECT_EQ(preferred({"a b", "b c", "d b"}, "b"), "5[a c d]2[b]");
    EXPECT_EQ(preferred({"a b", "b c", "d b"}, "b a"), "2[b]5[a c d]");
}

// {a, w}, {b, w}, {c, w}: 2[w] 5[a b c]. {a, s}: [a b c] stays, [w] grows into 7[w a] and 8[w s].
TEST(Preference, ALargerLeafInFrontGoesBehind) {
    EXPECT_EQ(leavesOf({"a w", "b w", "c w", "a s"}), "5[a b c]7[w a]8[w s]");
    EXPECT_EQ(preferred({"a w", "b w", "c w", "a s"}, ""), "7[w a]8[w s]5[a b c]");
}

// The sort is not stable, and its order of equal leaves shows in the text. Of four: 1 changes with
// the middle, 2; nothing is less than the first. Of the last three, 1 changes with 3. The last two
// stay.
TEST(Preference, EqualLeavesAreOrderedByTheSortItself) {
    EXPECT_EQ(preferred({"a b"}, ""), "1[a]2[b]");
    EXPECT_EQ(preferred({"a b c"}, ""), "2[b]1[a]3[c]");
    EXPECT_EQ(preferred({"a b c d"}, ""), "2[b]3[c]1[a]4[d]");
}

// With a and d soft: 1 0 0 1 0.
//   a and c change places: c b a d e. Nothing is less than c.
//   Of b a d e, a and b change: a b d e. b and e are less than a: a b e d, then a goes behind
//   them, e b a d.
//   Of e b, nothing changes.
TEST(Preference, TheSortExchangesAsItGoes) {
    EXPECT_EQ(preferred({"a b c d e"}, "a d"), "3[c]5[e]2[b]1[a]4[d]");
}

TEST(Preference, OneLeafOrNoneStays) {
    EXPECT_EQ(preferred({"a"}, "a"), "1[a]");
    EXPECT_EQ(preferred({}, "a"), "");
}

// ---- Many suspects ----

// s0 to s129, more than two words of bits.
std::string many() {
    std::string set;
    for (int i = 0; i < 130; ++i)
        set += "s" + std::to_string(i) + " ";
    return set;
}

// [s64] and [s129] stay; every other leaf s grows into [s s64] and [s s129], which are closed, and
// into [s x], whose numbers go up by three.
TEST(ManySuspects, AreHitAndClosedLikeAFew) {
    std::vector<Leaf> const leaves = grown({many(), "s64 s129 x"}).leaves();
    ASSERT_EQ(leaves.size(), 130u);
    EXPECT_EQ(text({leaves[0], leaves[1], leaves[2]}), "65[s64]130[s129]133[s0 x]");
    EXPECT_EQ(text({leaves[129]}), "514[s128 x]");
}

TEST(ManySuspects, AreExoneratedLikeAFew) {
    HittingSetTree tree = grown({many()});
    tree.exonerate({measureWith("s63 s64 s128 s129")});
    EXPECT_EQ(tree.leaves().size(), 126u);
    for (Leaf const& leaf : tree.leaves())
        for (char const* gone : {"s63", "s64", "s128", "s129"})
            EXPECT_NE(leaf.conflictSet[0]->name, gone);
}

// Every leaf but one holds one soft suspect.
TEST(ManySuspects, AreOrderedLikeAFew) {
    HittingSetTree tree = grown({many()});
    Suspects soft = suspects(many());
    soft.erase(soft.begin() + 100);
    tree.sortByPreference(soft);
    EXPECT_EQ(text({tree.leaves()[0]}), "101[s100]");
}

}  // namespace
