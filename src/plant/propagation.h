// What the clauses of a plant leave of a set of literals, by unit propagation: a clause of which
// all literals but one are false makes the last one true. The check asks with it for what can never
// hold; it needs no run, and leaves the atoms as they are.
#pragma once

#include <unordered_map>
#include <vector>

#include "plant/findings.h"

// An atom that holds, or does not.
struct Literal {
    Atom const* atom;
    bool holds;
};

class Propagation {
public:
    // Reads the clauses of *parts* that are sound: what a broken one forbids follows from its
    // break. The clauses and the plant outlive this.
    Propagation(Holdings const& plant, PlantParts const& parts);

    // The numbers of the clauses that forbid *literals* together, in order, without those of
    // exclusive choice if there are others; nothing when no conflict is found. No atom may stand
    // in *literals* with both signs.
    std::vector<std::size_t> forbidding(std::vector<Literal> const& literals) const;

private:
    struct Label {
        bool holds;
        Clause const* reason;  // null: given
    };
    struct Labels {
        std::unordered_map<Atom const*, Label> of;
        std::vector<Atom const*> order;  // in which they were found
    };

    static void label(Labels& labels, Atom const* atom, bool holds, Clause const* reason);
    static bool propagate(Labels& labels, Clause const& clause);
    Clause const* firstConflict(Labels& labels) const;
    std::vector<std::size_t> behind(Labels const& labels, Clause const* conflict) const;

    std::unordered_map<Clause const*, std::size_t> numbers;
    std::vector<Clause const*> units;  // clauses of one literal, in order
};
