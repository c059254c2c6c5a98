// A clause: a disjunction of signed atoms, the language that the truth maintenance propagates over.
//
// The registry owns all clauses. In a literal the sign true is negation (see signedAtoms.h).
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "model/signedAtoms.h"

class Atom;
class Comp;

class Clause {
public:
    explicit Clause(Comp* comp);
    // One literal; the atom gets no reference to this clause.
    Clause(Atom* atom, bool sign, Comp* comp);
    // Copies the literals and the component. Required: the copy is never internal.
    explicit Clause(Clause const* source);
    Clause(Clause const&) = delete;
    Clause& operator=(Clause const&) = delete;

    void addAtom(Atom* atom, bool sign);
    // Also enters this clause among the clauses of the atom.
    void addAtomRef(Atom* atom, bool sign);

    // Sign of the first literal of the atom; false when the atom is absent.
    bool getSign(Atom const* atom) const;
    // The first atom labelled "unknown", or null.
    Atom* getUnknown() const;
    SignedAtoms getNotUnknown() const;
    SignedAtoms getTrueAtoms() const;
    SignedAtoms getFalseAtoms() const;

    // Truth of one literal against the current state of its variable: "true" or "false".
    std::string evalAtom(SignedAtoms::const_iterator literal) const;

    // The atoms of the other sign when *atom* is the only literal of its own sign, else none.
    std::vector<Atom*> getOpposites(Atom const* atom) const;

    bool getInternal() const { return internal; }
    void setInternal(bool flag) { internal = flag; }

    // Makes this clause the support of *atom*, which becomes a consequence of the other atoms;
    // repeated calls append again.
    void setSupport(Atom* atom);

    // The argument has no effect.
    void showClause(std::ostream& out, bool full) const;

    SignedAtoms atoms;
    Comp* comp = nullptr;
    bool internal = false;  // states the exclusive choice among the values of one variable
};
