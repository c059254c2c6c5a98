// Soft conflicts: what behaving measures tell of the misbehaving ones.
//
// A suspect common to a misbehaving and a behaving measure cannot by itself explain the one without
// showing in the other, so a candidate lies in the parts that they do not share, or is compensated
// by a further fault: the symmetric differences are conflict sets too. For each misbehaving measure
// the behaving ones that share suspects with it, directly or through each other, form a tree; its
// sets are made from the leaves up, from every union of a subset of a node's children. A union
// raises delays in the sets that it joins, and these belong to one tree: what the measures
// themselves hold, and what the trees of other measures start from, stays as it was found.
#include <algorithm>
#include <deque>

#include "continuous/isolation.h"
#include "support/memory_watch.h"

long numberUnionSubsets(int n) {
    return (1L << n) - 1;
}

namespace {

// A node of the tree of one misbehaving measure. A root needs no sets: no union takes them.
struct SoftVar {
    MeasureConflicts* misbehaving = nullptr;  // null for a behaving measure
    Suspects const* conflicts = nullptr;
    std::vector<SoftVar*> children;
    std::vector<Suspects> sets;  // the first is a copy of the conflicts
};

// Any suspect of *a* stands in *b*.
bool shareSuspects(Suspects const& a, Suspects const& b) {
    return std::any_of(a.begin(), a.end(),
                       [&](auto const& suspect) { return findConflict(b, *suspect) != nullptr; });
}

// a, then the suspects of b that are not in a, whose delays rise together with their equals in a.
Suspects unite(Suspects const& a, Suspects const& b) {
    Suspects united = a;
    for (auto const& suspect : b) {
        bool const present = std::any_of(a.begin(), a.end(), [&](auto const& other) {
            return compareAndUpdateConflicts(*other, *suspect);
        });
        if (!present)
            united.push_back(suspect);
    }
    return united;
}

void copyMissing(Suspects const& from, Suspects const& in, Suspects& into) {
    for (auto const& suspect : from)
        if (findConflict(in, *suspect) == nullptr)
            into.push_back(std::make_shared<Conflict>(*suspect));
}

// Copies: what is in a and not in b, then what is in b and not in a.
Suspects symmetricDifference(Suspects const& a, Suspects const& b) {
    Suspects difference;
    copyMissing(a, b, difference);
    copyMissing(b, a, difference);
    return difference;
}

// The tree of one misbehaving measure, and what its sets add to the soft suspects of all.
class ClassTree {
public:
    ClassTree(Host& host, MeasureConflicts& root, std::vector<MeasureConflicts> const& normalVars,
              std::vector<MeasureConflicts> const& misbVars, Suspects& soft)
        : host(host), misbVars(misbVars), soft(soft) {
        nodes.push_back({&root, &root.conflicts, {}, {}});
        for (MeasureConflicts const& normal : normalVars)
            nodes.push_back({nullptr, &normal.conflicts, {}, {copySuspects(normal.conflicts)}});
        connect();
        generate(nodes.front());
    }

private:
    // Breadth first: a behaving measure becomes the child of the first node that shares a suspect.
    void connect() {
        std::vector<bool> visited(nodes.size(), false);
        std::deque<SoftVar*> queue{&nodes.front()};
        while (!queue.empty()) {
            SoftVar* node = queue.front();
            queue.pop_front();
            for (std::size_t i = 1; i < nodes.size(); ++i) {
                if (visited[i] || !shareSuspects(*nodes[i].conflicts, *node->conflicts))
                    continue;
                visited[i] = true;
                node->children.push_back(&nodes[i]);
                queue.push_back(&nodes[i]);
            }
        }
    }

    // A leaf keeps its own set.
    void generate(SoftVar& node) {
        for (SoftVar* child : node.children)
            generate(*child);
        for (std::size_t first = 0; first < node.children.size(); ++first) {
            std::vector<SoftVar*> subset{node.children[first]};
            generateUnions(node, subset, first + 1);
        }
    }

    // The subset, then every extension of it by later children.
    void generateUnions(SoftVar& node, std::vector<SoftVar*>& subset, std::size_t next) {
        generateSynonyms(node, subset, 0, {});
        for (; next < node.children.size(); ++next) {
            subset.push_back(node.children[next]);
            generateUnions(node, subset, next + 1);
            subset.pop_back();
        }
    }

    // Every union of one set of each member of the subset.
    void generateSynonyms(SoftVar& node, std::vector<SoftVar*> const& subset, std::size_t position,
                          Suspects const& accumulated) {
        for (Suspects const& set : subset[position]->sets) {
            watchMemory(host);
            Suspects const united = unite(set, accumulated);
            if (position + 1 < subset.size())
                generateSynonyms(node, subset, position + 1, united);
            else
                addDifference(node, united);
        }
    }

    void addDifference(SoftVar& node, Suspects const& united) {
        if (node.misbehaving == nullptr) {
            node.sets.push_back(symmetricDifference(node.sets.front(), united));
            return;
        }
        Suspects difference = symmetricDifference(*node.conflicts, united);
        updateSoftConflicts(difference);
        node.misbehaving->conflictSets.push_back(std::move(difference));
    }

    // A suspect of no misbehaving measure is a soft one.
    void updateSoftConflicts(Suspects const& difference) {
        for (auto const& suspect : difference) {
            bool const hard =
                std::any_of(misbVars.begin(), misbVars.end(), [&](MeasureConflicts const& misb) {
                    return findConflict(misb.conflicts, *suspect) != nullptr;
                });
            if (!hard && findConflict(soft, *suspect) == nullptr)
                soft.push_back(suspect);
        }
    }

    Host& host;
    std::vector<MeasureConflicts> const& misbVars;
    Suspects& soft;
    std::deque<SoftVar> nodes;  // the root first; addresses are stable
};

}  // namespace

Suspects generateSoftConflictSets(Host& host, std::vector<MeasureConflicts>& misbVars,
                                  std::vector<MeasureConflicts> const& normalVars) {
    Suspects soft;
    for (MeasureConflicts& misb : misbVars)
        ClassTree(host, misb, normalVars, misbVars, soft);
    return soft;
}
