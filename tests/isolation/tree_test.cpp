// The hitting-set tree: small cases by hand, a plain list twin, and published conflict sets.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "continuous/isolation.h"
#include "fixtures/list_tree.h"
#include "fixtures/one_engine.h"

namespace {

std::vector<std::string> namesOf(Leaf const& leaf) {
    std::vector<std::string> names;
    for (auto const& suspect : leaf.conflictSet)
        names.push_back(suspect->name);
    return names;
}

void addLeaf(std::string& text, int number, std::vector<std::string> const& names) {
    text += std::to_string(number) + "[";
    for (std::string const& name : names)
        text += name + " ";
    text += "]";
}

std::string textOf(std::vector<Leaf> const& leaves) {
    std::string text;
    for (Leaf const& leaf : leaves)
        addLeaf(text, leaf.number, namesOf(leaf));
    return text;
}

std::string textOf(ListTree const& tree) {
    std::string text;
    for (ListTree::Leaf const& leaf : tree.leaves)
        addLeaf(text, leaf.number, leaf.names);
    return text;
}

TEST(HittingSetTree, OneSetGivesALeafPerSuspect) {
    NamedSuspects names;
    HittingSetTree tree(theEngine.host);
    tree.grow(names.set({"a", "b"}));
    EXPECT_EQ(textOf(tree.leaves()), "1[a ]2[b ]");
}

// [b] hits {b, c}; [a] grows into [a, b], which [b] closes, since it stayed because of b alone, and
// into [a, c].
TEST(HittingSetTree, ALeafThatHitsTheSetClosesItsSupersets) {
    NamedSuspects names;
    HittingSetTree tree(theEngine.host);
    tree.grow(names.set({"a", "b"}));
    tree.grow(names.set({"b", "c"}));
    EXPECT_EQ(textOf(tree.leaves()), "2[b ]4[a c ]");
}

TEST(HittingSetTree, AnEmptySetLeavesTheTree) {
    NamedSuspects names;
    HittingSetTree tree(theEngine.host);
    tree.grow(names.set({"a"}));
    tree.grow({});
    EXPECT_EQ(textOf(tree.leaves()), "1[a ]");
}

TEST(HittingSetTree, ABehavingMeasureExoneratesAtEqualOrLowerDelay) {
    NamedSuspects names;
    HittingSetTree tree(theEngine.host);
    tree.grow(names.set({"a"}, 2));
    tree.grow(names.set({"b", "c"}, 1));
    // Innocent at delay 1: b would have shown. Innocent at delay 3: a, at 2, would not.
    std::vector<MeasureConflicts> normal(1);
    normal[0].conflicts = names.set({"b"}, 1);
    for (auto const& suspect : names.set({"a"}, 3))
        normal[0].conflicts.push_back(suspect);
    tree.exonerate(normal);
    EXPECT_EQ(textOf(tree.leaves()), "3[a c ]");
}

TEST(HittingSetTree, PreferenceGoesBySoftSuspectsAndThenBySize) {
    NamedSuspects names;
    HittingSetTree tree(theEngine.host);
    tree.grow(names.set({"s", "a", "b"}));
    tree.grow(names.set({"s", "b", "c"}));
    // [s] and [b] stay; [a] grows into [a c] ([a s] and [a b] are closed).
    EXPECT_EQ(textOf(tree.leaves()), "1[s ]3[b ]6[a c ]");
    tree.sortByPreference(names.set({"s"}));
    EXPECT_EQ(textOf(tree.leaves()), "3[b ]6[a c ]1[s ]");
}

TEST(DiagnosisText, CountsDigits) {
    EXPECT_EQ(numLength(0), 1);
    EXPECT_EQ(numLength(9), 1);
    EXPECT_EQ(numLength(10), 2);
    EXPECT_EQ(numLength(12345), 5);
}

TEST(Suspects, AreNamedAfterTheirEndsWithoutANameOfTheirOwn) {
    s_Variable inflow, level;
    inflow.nom = "inflow";
    level.nom = "level";
    s_Influence influence;
    influence.cause = &inflow;
    influence.effect = &level;
    EXPECT_EQ(createConflictName(&influence, "fill"), "fill");
    EXPECT_EQ(createConflictName(&influence, ""), "");
    EXPECT_EQ(createConflictName(&influence, nullptr), "inflow->level");
}

TEST(SoftConflicts, CountsTheNonEmptySubsets) {
    EXPECT_EQ(numberUnionSubsets(0), 0);
    EXPECT_EQ(numberUnionSubsets(1), 1);
    EXPECT_EQ(numberUnionSubsets(3), 7);
}

// A misbehaving measure {a, b} and a behaving one {b, c} share b: a fault shows in the parts that
// they do not share, {a, c}. c stands in that set only, so it is soft.
TEST(SoftConflicts, AreTheSymmetricDifference) {
    NamedSuspects names;
    std::vector<MeasureConflicts> misb(1), normal(1);
    misb[0].conflicts = names.set({"a", "b"});
    misb[0].conflictSets = {misb[0].conflicts};
    normal[0].conflicts = names.set({"b", "c"});
    Suspects const soft = generateSoftConflictSets(misb, normal);
    ASSERT_EQ(misb[0].conflictSets.size(), 2u);
    EXPECT_EQ(textOf({Leaf{0, misb[0].conflictSets[1]}}), "0[a c ]");
    EXPECT_EQ(textOf({Leaf{0, soft}}), "0[c ]");
}

TEST(SoftConflicts, AMeasureWithoutANeighbourKeepsItsOneSet) {
    NamedSuspects names;
    std::vector<MeasureConflicts> misb(1), normal(1);
    misb[0].conflicts = names.set({"a"});
    misb[0].conflictSets = {misb[0].conflicts};
    normal[0].conflicts = names.set({"z"});
    EXPECT_TRUE(generateSoftConflictSets(misb, normal).empty());
    EXPECT_EQ(misb[0].conflictSets.size(), 1u);
}

TEST(HittingSetTree, AgreesWithThePlainListVersion) {
    unsigned const seed = 20261121;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int trial = 0; trial < 200; ++trial) {
        // Some trials need more than one word of suspects.
        int const suspects = trial % 4 == 0 ? 90 : 12;
        std::vector<std::vector<std::string>> const sets =
            randomConflictSets(random, 6, {2, 4, suspects});
        NamedSuspects names;
        HittingSetTree tree(theEngine.host);
        ListTree twin;
        for (auto const& set : sets) {
            tree.grow(names.set(set));
            twin.grow(set);
        }
        ASSERT_EQ(textOf(tree.leaves()), textOf(twin)) << "trial " << trial;
    }
}

// The sizes that the benchmark takes, as far as plain lists can follow.
TEST(HittingSetTree, AgreesWithThePlainListVersionOnLargeTrees) {
    for (int const suspects : {30, 50}) {
        SCOPED_TRACE(std::to_string(suspects) + " suspects");
        NamedSuspects names;
        HittingSetTree tree(theEngine.host);
        ListTree twin;
        for (auto const& set : benchmarkConflictSets(8, suspects)) {
            tree.grow(names.set(set));
            twin.grow(set);
        }
        EXPECT_GT(twin.leaves.size(), 500u) << "a tree worth comparing";
        EXPECT_EQ(textOf(tree.leaves()), textOf(twin));
    }
}

using Family = std::set<std::set<std::string>>;

// Brute force: the subsets of all suspects that hit every set and none of whose parts does.
Family minimalHittingSets(std::vector<std::vector<std::string>> const& sets) {
    std::set<std::string> universe;
    for (auto const& set : sets)
        universe.insert(set.begin(), set.end());
    std::vector<std::string> const all(universe.begin(), universe.end());
    std::vector<unsigned> hitting;
    for (unsigned mask = 0; mask < (1u << all.size()); ++mask) {
        auto const chosen = [&](std::string const& name) {
            auto const at = std::find(all.begin(), all.end(), name) - all.begin();
            return (mask >> at & 1u) != 0;
        };
        if (std::all_of(sets.begin(), sets.end(), [&](auto const& set) {
                return std::any_of(set.begin(), set.end(), chosen);
            }))
            hitting.push_back(mask);
    }
    Family minimal;
    for (unsigned const mask : hitting) {
        if (std::any_of(hitting.begin(), hitting.end(), [mask](unsigned other) {
                return other != mask && (other & mask) == other;
            }))
            continue;
        std::set<std::string> names;
        for (std::size_t i = 0; i < all.size(); ++i)
            if ((mask >> i & 1u) != 0)
                names.insert(all[i]);
        minimal.insert(names);
    }
    return minimal;
}

struct Outcome {
    std::size_t leaves;    // of the tree
    std::size_t minimal;   // among them, different ones that are minimal
    std::size_t expected;  // minimal hitting sets that there are
};

Outcome outcomeOf(std::vector<std::vector<std::string>> const& sets) {
    NamedSuspects names;
    HittingSetTree tree(theEngine.host);
    for (auto const& set : sets)
        tree.grow(names.set(set));
    Family const expected = minimalHittingSets(sets);
    Family found;
    for (Leaf const& leaf : tree.leaves()) {
        std::vector<std::string> const members = namesOf(leaf);
        std::set<std::string> const set(members.begin(), members.end());
        // Every leaf hits every set, whether minimal or not.
        for (auto const& conflict : sets)
            EXPECT_TRUE(std::any_of(conflict.begin(), conflict.end(),
                                    [&](std::string const& n) { return set.count(n) != 0; }));
        if (expected.count(set) != 0)
            found.insert(set);
    }
    return {tree.leaves().size(), found.size(), expected.size()};
}

// Published conflict sets. On these the tree holds the minimal hitting sets and no other leaf.
TEST(HittingSetTree, GivesTheMinimalSetsOfPublishedConflicts) {
    struct Published {
        char const* source;
        std::vector<std::vector<std::string>> sets;
    };
    Published const all[] = {
        {"Reiter 1987",
         {{"2", "4", "5"},
          {"1", "2", "3"},
          {"1", "3", "5"},
          {"2", "4", "6"},
          {"2", "4"},
          {"2", "3", "5"},
          {"1", "6"}}},
        {"Greiner 1989", {{"a", "b"}, {"b", "c"}, {"a", "c"}, {"b", "d"}, {"b"}}},
        {"adders and multipliers", {{"A1", "M1", "M2"}, {"A1", "A2", "M1", "M3"}}},
        {"full adder", {{"X1", "X2"}, {"X1", "A2", "O1"}}},
    };
    for (Published const& published : all) {
        SCOPED_TRACE(published.source);
        Outcome const outcome = outcomeOf(published.sets);
        EXPECT_EQ(outcome.minimal, outcome.expected);
        EXPECT_EQ(outcome.leaves, outcome.expected);
    }
}

}  // namespace
