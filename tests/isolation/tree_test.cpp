// The hitting-set tree: small cases by hand, a plain list twin, and published conflict sets.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "continuous/isolation.h"

namespace {

// Suspects named by letters; equal names are equal suspects.
class Names {
public:
    Suspects set(std::vector<std::string> const& names, int delay = 0) {
        Suspects suspects;
        for (std::string const& name : names)
            suspects.push_back(std::make_shared<Conflict>(Conflict{name, &influence, delay}));
        return suspects;
    }

private:
    s_Influence influence;  // without a condition
};

std::vector<std::string> namesOf(Leaf const& leaf) {
    std::vector<std::string> names;
    for (auto const& suspect : leaf.conflictSet)
        names.push_back(suspect->name);
    return names;
}

std::string textOf(std::vector<Leaf> const& leaves) {
    std::string text;
    for (Leaf const& leaf : leaves) {
        text += std::to_string(leaf.number) + "[";
        for (std::string const& name : namesOf(leaf))
            text += name + " ";
        text += "]";
    }
    return text;
}

TEST(HittingSetTree, OneSetGivesALeafPerSuspect) {
    Names names;
    HittingSetTree tree;
    tree.grow(names.set({"a", "b"}));
    EXPECT_EQ(textOf(tree.leaves()), "1[a ]2[b ]");
}

// [b] hits {b, c}; [a] grows into [a, b], which [b] closes, since it stayed because of b alone, and
// into [a, c].
TEST(HittingSetTree, ALeafThatHitsTheSetClosesItsSupersets) {
    Names names;
    HittingSetTree tree;
    tree.grow(names.set({"a", "b"}));
    tree.grow(names.set({"b", "c"}));
    EXPECT_EQ(textOf(tree.leaves()), "2[b ]4[a c ]");
}

TEST(HittingSetTree, AnEmptySetLeavesTheTree) {
    Names names;
    HittingSetTree tree;
    tree.grow(names.set({"a"}));
    tree.grow({});
    EXPECT_EQ(textOf(tree.leaves()), "1[a ]");
}

TEST(HittingSetTree, ABehavingMeasureExoneratesAtEqualOrLowerDelay) {
    Names names;
    HittingSetTree tree;
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
    Names names;
    HittingSetTree tree;
    tree.grow(names.set({"s", "a", "b"}));
    tree.grow(names.set({"s", "b", "c"}));
    // [s] and [b] stay; [a] grows into [a c] ([a s] and [a b] are closed).
    EXPECT_EQ(textOf(tree.leaves()), "1[s ]3[b ]6[a c ]");
    tree.sortByPreference(names.set({"s"}));
    EXPECT_EQ(textOf(tree.leaves()), "3[b ]6[a c ]1[s ]");
}

TEST(SoftConflicts, CountsTheNonEmptySubsets) {
    EXPECT_EQ(numberUnionSubsets(0), 0);
    EXPECT_EQ(numberUnionSubsets(1), 1);
    EXPECT_EQ(numberUnionSubsets(3), 7);
}

// A misbehaving measure {a, b} and a behaving one {b, c} share b: a fault shows in the parts that
// they do not share, {a, c}. c stands in that set only, so it is soft.
TEST(SoftConflicts, AreTheSymmetricDifference) {
    Names names;
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
    Names names;
    std::vector<MeasureConflicts> misb(1), normal(1);
    misb[0].conflicts = names.set({"a"});
    misb[0].conflictSets = {misb[0].conflicts};
    normal[0].conflicts = names.set({"z"});
    EXPECT_TRUE(generateSoftConflictSets(misb, normal).empty());
    EXPECT_EQ(misb[0].conflictSets.size(), 1u);
}

// The plain version: leaves as lists of names, every rule by walking the lists.
class ListTree {
public:
    using Set = std::vector<std::string>;
    struct ListLeaf {
        int number;
        Set names;
    };

    void grow(Set const& set) {
        std::vector<ListLeaf> grown;
        std::map<std::string, std::vector<ListLeaf>> open;
        std::map<std::string, std::vector<Set>> closing;
        auto const split = [&](Set const& from) {
            for (std::string const& name : set) {
                Set longer = from;
                longer.push_back(name);
                open[name].push_back({++made, longer});
            }
        };
        if (leaves.empty() && made == 0)
            split({});
        for (ListLeaf const& leaf : leaves) {
            Set common;
            for (std::string const& name : set)
                if (holds(leaf.names, name))
                    common.push_back(name);
            if (common.empty()) {
                split(leaf.names);
                continue;
            }
            grown.push_back(leaf);
            if (common.size() == 1)
                closing[common[0]].push_back(leaf.names);
        }
        for (std::string const& name : set)
            for (ListLeaf const& leaf : open[name]) {
                bool const closed =
                    std::any_of(closing[name].begin(), closing[name].end(), [&](Set const& closer) {
                        return std::all_of(closer.begin(), closer.end(), [&](std::string const& n) {
                            return holds(leaf.names, n);
                        });
                    });
                if (!closed)
                    grown.push_back(leaf);
            }
        leaves = grown;
    }

    std::string text() const {
        std::string all;
        for (ListLeaf const& leaf : leaves) {
            all += std::to_string(leaf.number) + "[";
            for (std::string const& name : leaf.names)
                all += name + " ";
            all += "]";
        }
        return all;
    }

    static bool holds(Set const& names, std::string const& name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    }

private:
    std::vector<ListLeaf> leaves;
    int made = 0;
};

TEST(HittingSetTree, AgreesWithThePlainListVersion) {
    unsigned const seed = 20261121;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int trial = 0; trial < 200; ++trial) {
        // Some trials need more than one word of suspects.
        int const suspects = trial % 4 == 0 ? 90 : 12;
        Names names;
        HittingSetTree tree;
        ListTree twin;
        for (int i = 0; i < 6; ++i) {
            std::set<std::string> chosen;
            std::size_t const size = 2 + random() % 3;
            while (chosen.size() < size)
                chosen.insert("i" + std::to_string(random() % static_cast<unsigned>(suspects)));
            std::vector<std::string> const set(chosen.begin(), chosen.end());
            tree.grow(names.set(set));
            twin.grow(set);
        }
        ASSERT_EQ(textOf(tree.leaves()), twin.text()) << "trial " << trial;
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
    Names names;
    HittingSetTree tree;
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
