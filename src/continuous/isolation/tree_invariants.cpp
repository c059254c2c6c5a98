// The invariants of a hitting-set tree, told broken in sentences.
#include "continuous/isolation/tree_parts.h"

namespace {

// Up to here every pair of branches, and every suspect met with every kind, is looked at.
constexpr std::size_t fewEnoughForPairs = 64;

char const* brokenNumbers(TreeParts const& tree) {
    for (Met const& met : tree.met)
        if (met.suspect == nullptr || met.number < 0 ||
            static_cast<std::size_t>(met.number) >= tree.kinds.size())
            return "a suspect has no number";
    if (tree.met.size() > fewEnoughForPairs)
        return nullptr;
    for (Met const& met : tree.met)
        if (tree.numberOf(*met.suspect) != met.number)
            return "a suspect has another number than its equals";
    return nullptr;
}

char const* brokenBranch(TreeParts const& tree, Branch const& branch) {
    if (branch.members.empty())
        return "a branch holds nothing";
    SuspectBits listed;
    for (int const member : branch.members) {
        if (member < 0 || static_cast<std::size_t>(member) >= tree.met.size())
            return "a branch holds a suspect that was not met";
        int const number = tree.met[static_cast<std::size_t>(member)].number;
        if (listed.holds(number))
            return "a branch holds a suspect twice";
        if (!branch.held.holds(number))
            return "the bits of a branch miss a suspect of its list";
        listed.add(number);
    }
    return branch.held.countCommon(branch.held) == static_cast<int>(branch.members.size())
               ? nullptr
               : "the bits of a branch hold more than its list";
}

bool numbersAreDistinct(TreeParts const& tree) {
    std::vector<int> numbers;
    for (Branch const& branch : tree.branches)
        numbers.push_back(branch.number);
    std::sort(numbers.begin(), numbers.end());
    return std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end() &&
           (numbers.empty() || (numbers.front() >= 1 && numbers.back() <= tree.nbLeaves));
}

bool isWithin(Branch const& a, Branch const& b) {
    return a.held.countCommon(b.held) == static_cast<int>(a.members.size());
}

bool isMinimal(TreeParts const& tree) {
    if (tree.branches.size() > fewEnoughForPairs)
        return true;
    for (Branch const& a : tree.branches)
        for (Branch const& b : tree.branches)
            if (&a != &b && isWithin(a, b))
                return false;
    return true;
}

}  // namespace

char const* brokenTree(TreeParts const& tree) {
    if (char const* broken = brokenNumbers(tree))
        return broken;
    for (Branch const& branch : tree.branches)
        if (char const* broken = brokenBranch(tree, branch))
            return broken;
    if (!numbersAreDistinct(tree))
        return "the numbers of the branches are not distinct";
    return isMinimal(tree) ? nullptr : "a branch lies within another";
}
