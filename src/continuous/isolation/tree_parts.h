// What a hitting-set tree is made of: leaves as sets of suspect numbers.
//
// Invariants (told broken by brokenTree, which debug builds ask after each change of a tree):
//   1. suspects have one number when they are equal and different ones otherwise, given in the
//   order
//      of their first meeting;
//   2. a branch holds a suspect at least, no kind of suspect twice, and as bits what it has as
//   list;
//   3. numbers of branches are distinct, from 1 to nbLeaves;
//   4. no branch lies within another: the leaves are minimal.
// That every leaf hits every set met follows from a check of each set when it is met, for a branch
// never loses a suspect.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "continuous/isolation.h"

// A set of suspect numbers. The first 64 take no allocation.
class SuspectBits {
public:
    void add(int number) { word(static_cast<std::size_t>(number) / bits) |= mask(number); }
    bool holds(int number) const {
        return (wordAt(static_cast<std::size_t>(number) / bits) & mask(number)) != 0;
    }
    // How many members come before a number.
    int rank(int number) const {
        std::size_t const place = static_cast<std::size_t>(number) / bits;
        int count = std::popcount(wordAt(place) & (mask(number) - 1));
        for (std::size_t i = 0; i < place; ++i)
            count += std::popcount(wordAt(i));
        return count;
    }
    // Whether test(rank of the member) holds for a member that is in both, in ascending order.
    template <typename Test>
    bool anyCommon(SuspectBits const& other, Test test) const {
        int before = 0;
        for (std::size_t i = 0; i <= more.size(); ++i) {
            std::uint64_t const own = wordAt(i);
            for (std::uint64_t left = own & other.wordAt(i); left != 0; left &= left - 1)
                if (test(before + std::popcount(own & ((left & -left) - 1))))
                    return true;
            before += std::popcount(own);
        }
        return false;
    }
    int countCommon(SuspectBits const& other) const {
        int count = std::popcount(first & other.first);
        for (std::size_t i = 0; i < std::min(more.size(), other.more.size()); ++i)
            count += std::popcount(more[i] & other.more[i]);
        return count;
    }

private:
    static constexpr std::size_t bits = 64;
    static std::uint64_t mask(int number) {
        return std::uint64_t{1} << (static_cast<std::size_t>(number) % bits);
    }
    std::uint64_t wordAt(std::size_t i) const {
        if (i == 0)
            return first;
        return i - 1 < more.size() ? more[i - 1] : 0;
    }
    std::uint64_t& word(std::size_t i) {
        if (i == 0)
            return first;
        if (more.size() < i)
            more.resize(i);
        return more[i - 1];
    }

    std::uint64_t first = 0;
    std::vector<std::uint64_t> more;
};

// A leaf: its suspects as positions in the table of suspects met so far, in order of adding.
struct Branch {
    int number = 0;
    std::vector<int> members;
    SuspectBits held;
};

// A suspect as it came in a conflict set; its number is that of all its equals.
struct Met {
    std::shared_ptr<Conflict> suspect;
    int number;
};

struct TreeParts {
    std::vector<Met> met;
    std::vector<Conflict const*> kinds;  // by number, the first suspect of its kind
    std::vector<Branch> branches;
    int nbLeaves = 0;  // the number given last

    // -1 for a suspect that was not met.
    int numberOf(Conflict const& conflict) const {
        for (std::size_t i = 0; i < kinds.size(); ++i)
            if (compareConflicts(*kinds[i], conflict))
                return static_cast<int>(i);
        return -1;
    }
};

// What does not hold of the invariants, or null. Where more branches or suspects met would make a
// look at all pairs slow, it is left out.
char const* brokenTree(TreeParts const& tree);
