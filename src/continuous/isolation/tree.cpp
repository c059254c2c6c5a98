// The hitting-set tree, as a flat list of leaves.
//
// A new conflict set S meets every leaf. A leaf that already holds a suspect of S stays. Any other
// is replaced by one leaf for each suspect of S. Branches are closed by this engine's own rule: a
// new leaf that ends in suspect c is dropped when it holds every suspect of some leaf that stayed
// because of c alone. That is enough: the leaves are the minimal hitting sets. A leaf that stayed
// and lies within a new one can hit S through c alone, and of two new leaves the one can lie within
// the other only if their parents did.
//
// Which leaves there are, in which order and with which numbers, is fixed; how they are held is
// not. Equal suspects get one small number each, a leaf keeps its suspects as a set of bits beside
// their list, and touching, counting and closing are operations on words. A set may close many of
// thousands of leaves, so the closing sets of one suspect stand in an index of their own.
#include <algorithm>
#include <cassert>

#include "continuous/isolation/tree_parts.h"
#include "support/memory_watch.h"

namespace {

// Sets of suspect numbers, kept so that the question whether one of them lies within another set
// need not look at each: a tree in which every path from the root is the ascending members of a
// set. (I. Savnik, "Index data structure for fast subset and superset queries", 2013.)
class ClosingSets {
public:
    bool empty() const { return nodes.empty(); }

    void add(std::vector<int> members) {
        std::sort(members.begin(), members.end());
        if (nodes.empty())
            nodes.emplace_back();
        std::size_t at = 0;
        for (int const member : members)
            at = childOf(at, member);
        nodes[at].ends = true;
    }

    // Whether a set closes the leaf that holds *leaf* and the suspect that all these sets share,
    // and that is left out of them: every suspect of the set is in it.
    bool closeBranch(SuspectBits const& leaf) const { return isWithin(leaf, 0); }

private:
    struct Node {
        bool ends = false;                  // a set ends here
        SuspectBits next;                   // the members that sets go on with,
        std::vector<std::size_t> children;  // and the node of each, in ascending order
    };

    std::size_t childOf(std::size_t at, int member) {
        auto const rank = nodes[at].next.rank(member);
        assert(rank >= 0 && static_cast<std::size_t>(rank) <= nodes[at].children.size());
        if (!nodes[at].next.holds(member)) {
            nodes[at].next.add(member);
            nodes[at].children.insert(nodes[at].children.begin() + rank, nodes.size());
            nodes.emplace_back();
        }
        return nodes[at].children[static_cast<std::size_t>(rank)];
    }

    bool isWithin(SuspectBits const& leaf, std::size_t at) const {
        Node const& node = nodes[at];
        return node.ends || node.next.anyCommon(leaf, [&](int rank) {
            return isWithin(leaf, node.children[static_cast<std::size_t>(rank)]);
        });
    }

    std::vector<Node> nodes;  // the root first
};

// The plain, not stable version: what it leaves of equal elements' order is part of the result.
template <typename T, typename Less>
void quickSort(std::vector<T>& items, int low, int high, Less less) {
    if (low >= high)
        return;
    auto const at = [&](int i) -> T& { return items[static_cast<std::size_t>(i)]; };
    std::swap(at(low), at((low + high) / 2));
    int last = low;
    for (int i = low + 1; i <= high; ++i)
        if (less(at(i), at(low)))
            std::swap(at(++last), at(i));
    std::swap(at(low), at(last));
    quickSort(items, low, last - 1, less);
    quickSort(items, last + 1, high, less);
}

}  // namespace

struct HittingSetTree::Implementation : TreeParts {
    class Growth;

    explicit Implementation(Host& host) : host(host) {}

    Host& host;

    // That the tree holds its invariants, and that every leaf hits the set just met.
    bool hasMet(SuspectBits const& set) const {
        return brokenTree(*this) == nullptr &&
               std::all_of(branches.begin(), branches.end(), [&set](Branch const& branch) {
                   return branch.held.countCommon(set) > 0;
               });
    }

    // Enters the suspects of a conflict set; returns the position of the first.
    int enter(Suspects const& conflictSet) {
        int const start = static_cast<int>(met.size());
        for (auto const& suspect : conflictSet) {
            int number = numberOf(*suspect);
            if (number == -1) {
                number = static_cast<int>(kinds.size());
                kinds.push_back(suspect.get());
            }
            met.push_back({suspect, number});
        }
        return start;
    }

    // The suspects of a branch by number, but for one of them.
    std::vector<int> numbersWithout(Branch const& branch, int left) const {
        std::vector<int> numbers;
        for (int const member : branch.members)
            if (int const number = met[static_cast<std::size_t>(member)].number; number != left)
                numbers.push_back(number);
        return numbers;
    }

    Branch extend(Branch const& from, int member, int number) const {
        watchMemory(host);
        assert(!from.held.holds(met[static_cast<std::size_t>(member)].number));
        Branch extended{number, {}, from.held};
        extended.members.reserve(from.members.size() + 1);
        extended.members = from.members;
        extended.members.push_back(member);
        extended.held.add(met[static_cast<std::size_t>(member)].number);
        return extended;
    }
};

// What becomes of the branches when one conflict set meets them.
class HittingSetTree::Implementation::Growth {
public:
    Growth(Implementation& tree, Suspects const& conflictSet)
        : tree(tree), start(tree.enter(conflictSet)), closing(conflictSet.size()) {
        for (std::size_t i = 0; i < closing.size(); ++i)
            set.add(numberAt(i));
        assert(set.countCommon(set) == static_cast<int>(closing.size()));  // each suspect once
    }

    // A branch that holds nothing of the set is to get a leaf for each suspect of it.
    void split(Branch const& branch) {
        open.emplace_back(&branch, tree.nbLeaves);
        tree.nbLeaves += static_cast<int>(closing.size());
    }

    // A branch that holds something of the set stays, and closes others if that is one suspect.
    void meet(Branch& branch) {
        int const common = branch.held.countCommon(set);
        if (common == 0) {
            split(branch);
            return;
        }
        if (common == 1)
            for (std::size_t i = 0; i < closing.size(); ++i)
                if (branch.held.holds(numberAt(i)))
                    closing[i].add(tree.numbersWithout(branch, numberAt(i)));
        grown.push_back(std::move(branch));
    }

    // Makes the leaves that nothing closes, by suspect.
    void extendOpen() {
        for (std::size_t i = 0; i < closing.size(); ++i)
            for (auto const& [branch, before] : open)
                if (closing[i].empty() || !closing[i].closeBranch(branch->held))
                    grown.push_back(tree.extend(*branch, start + static_cast<int>(i),
                                                before + static_cast<int>(i) + 1));
    }

    std::vector<Branch> grown;
    SuspectBits set;  // the conflict set

private:
    int numberAt(std::size_t i) const {
        return tree.met[static_cast<std::size_t>(start) + i].number;
    }

    Implementation& tree;
    int start;  // of the set, in the table of suspects met
    // The branches to be split, each with the last number given before its leaves got theirs: most
    // leaves of a large tree are closed at once, and never made.
    std::vector<std::pair<Branch const*, int>> open;
    std::vector<ClosingSets> closing;  // by suspect of the set
};

HittingSetTree::HittingSetTree(Host& host) : own(std::make_unique<Implementation>(host)) {}
HittingSetTree::~HittingSetTree() = default;
HittingSetTree::HittingSetTree(HittingSetTree&&) noexcept = default;
HittingSetTree& HittingSetTree::operator=(HittingSetTree&&) noexcept = default;

void HittingSetTree::grow(Suspects const& conflictSet) {
    if (conflictSet.empty())
        return;
    Implementation::Growth growth(*own, conflictSet);
    Branch const root{};
    if (own->branches.empty() && own->nbLeaves == 0)
        growth.split(root);
    for (Branch& branch : own->branches)
        growth.meet(branch);
    growth.extendOpen();
    own->branches = std::move(growth.grown);
    assert(own->hasMet(growth.set));
}

void HittingSetTree::exonerate(std::vector<MeasureConflicts> const& normalVars) {
    Implementation& tree = *own;
    // Per position, whether the suspect would have shown in a behaving measure.
    std::vector<bool> shown(tree.met.size(), false);
    for (MeasureConflicts const& normal : normalVars)
        for (auto const& innocent : normal.conflicts) {
            int const number = tree.numberOf(*innocent);
            for (std::size_t i = 0; i < tree.met.size(); ++i)
                if (tree.met[i].number == number && tree.met[i].suspect->delay >= innocent->delay)
                    shown[i] = true;
        }
    std::erase_if(tree.branches, [&](Branch const& branch) {
        return std::any_of(branch.members.begin(), branch.members.end(),
                           [&](int member) { return shown[static_cast<std::size_t>(member)]; });
    });
    assert(brokenTree(tree) == nullptr);
}

void HittingSetTree::sortByPreference(Suspects const& softConflicts) {
    Implementation& tree = *own;
    SuspectBits soft;
    for (auto const& suspect : softConflicts)
        if (int const number = tree.numberOf(*suspect); number != -1)
            soft.add(number);
    auto const isBefore = [&](Branch const& a, Branch const& b) {
        int const softInA = a.held.countCommon(soft), softInB = b.held.countCommon(soft);
        return softInA != softInB ? softInA < softInB : a.members.size() < b.members.size();
    };
    quickSort(tree.branches, 0, static_cast<int>(tree.branches.size()) - 1, isBefore);
    assert(brokenTree(tree) == nullptr);
}

std::vector<Leaf> HittingSetTree::leaves() const {
    std::vector<Leaf> leaves;
    for (Branch const& branch : own->branches) {
        watchMemory(own->host);
        Leaf leaf{branch.number, {}};
        for (int const member : branch.members)
            leaf.conflictSet.push_back(own->met[static_cast<std::size_t>(member)].suspect);
        leaves.push_back(std::move(leaf));
    }
    return leaves;
}
