// The clauses of a plant over numbered atoms, and unit propagation over them.
//
// It serves whatever asks what follows from given facts alone, without a state: no labels, locks or
// supports are kept. A net is constant once it is made; it borrows the atoms.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

class Atom;
class Clause;

class ClauseNet {
public:
    enum Truth : signed char { no = -1, open = 0, yes = 1 };

    explicit ClauseNet(std::vector<std::unique_ptr<Clause>> const& clauses);

    // Each atom of a clause once, in the order in which the clauses mention them.
    std::vector<Atom const*> const& atoms() const { return all; }
    // Of an atom in that list; unmentioned when no clause mentions it.
    int placeOf(Atom const* atom) const;
    static constexpr int unmentioned = -1;
    // True of an atom that a clause over several variables asserts.
    bool isConcluded(int place) const {
        return place != unmentioned && concluded[static_cast<std::size_t>(place)] != 0;
    }
    // True of an atom that a clause over several variables mentions.
    bool isShared(int place) const {
        return place != unmentioned && shared[static_cast<std::size_t>(place)] != 0;
    }

private:
    friend class Entailment;
    // Twice the place of the atom, and one more when negated.
    using Literals = std::vector<int>;

    void noteClause(Clause const& clause);

    std::vector<Atom const*> all;
    std::unordered_map<Atom const*, int> places;  // looked up, never walked
    std::vector<Literals> clauses;
    std::vector<std::vector<int>> clausesWith;  // by literal
    std::vector<char> concluded, shared;        // by place
};

// What given facts entail by unit propagation. Facts may be added behind a propagation; once they
// contradict each other nothing is concluded any more.
class Entailment {
public:
    explicit Entailment(ClauseNet const& net);

    // A given fact. One that is known already, or that no clause mentions, changes nothing; one
    // whose opposite is known is a contradiction.
    void take(int place, bool holds);
    // To the end: a clause whose literals all fail but one makes that one hold.
    void propagate();

    ClauseNet::Truth truthOf(int place) const {
        return place == ClauseNet::unmentioned ? ClauseNet::open
                                               : truths[static_cast<std::size_t>(place)];
    }
    bool isContradicted() const { return contradiction != nothing; }
    // The places of the given facts on which the contradiction rests, in ascending order.
    std::vector<int> blamed() const;

private:
    static constexpr int given = -1;     // in reasons: no clause
    static constexpr int nothing = -1;   // no contradiction
    static constexpr int directly = -2;  // a fact was given whose opposite is known

    static std::size_t placeIn(int literal) { return static_cast<std::size_t>(literal / 2); }
    ClauseNet::Literals const& clause(int number) const {
        return net.clauses[static_cast<std::size_t>(number)];
    }
    ClauseNet::Truth valueOf(int literal) const;
    void enter(int literal, int reason);
    void look(int number);

    ClauseNet const& net;
    std::vector<ClauseNet::Truth> truths;
    std::vector<int> reasons;  // by place: the clause that made it known
    std::vector<int> trail;    // literals that hold, in the order in which they came to be known
    std::size_t next = 0;      // in the trail: what is not followed yet
    int contradiction = nothing;
    int denied = 0;  // the place of the fact that was contradicted directly
};
