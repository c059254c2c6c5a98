// A conjunction or disjunction of signed atoms and nested formulas: the guards and the effects of
// transitions, evaluated against one time step.
//
// A formula owns its nested formulas; atoms are borrowed. The sign true is a positive literal here,
// the opposite of a Clause.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "model/signedAtoms.h"

class StateFormula {
public:
    StateFormula() = default;
    explicit StateFormula(Atom* atom) : StateFormula(atom, true) {}
    StateFormula(Atom* atom, bool sign) { addAtom(atom, sign); }
    StateFormula(StateFormula const&) = delete;
    StateFormula& operator=(StateFormula const&) = delete;

    std::string getOperat() const { return operat; }
    // Takes "and" and "or"; any other word is ignored without a message.
    void setOperat(std::string const& word);

    // The literals of this level alone.
    SignedAtoms const& getAtoms() const { return atoms; }
    void addAtom(Atom* atom) { addAtom(atom, true); }
    void addAtom(Atom* atom, bool sign) { atoms.insert({sign, atom}); }

    // This level in order, then the nested formulas in theirs; repeated atoms are repeated.
    std::vector<Atom*> getAllAtoms() const;
    SignedAtoms getAllSignedAtoms() const;
    void copyAtoms(std::vector<Atom*>* into) const;
    void copyAtoms(SignedAtoms* into) const;

    std::vector<std::unique_ptr<StateFormula>> const& getStateFormulas() const {
        return stateFormulas;
    }
    void addStateFormula(std::unique_ptr<StateFormula> formula) {
        stateFormulas.push_back(std::move(formula));
    }

    // Required: one-directional. True when every literal of this formula stands in *other*, which
    // may hold more; operators play no part.
    bool eq(StateFormula const* other) const;

    void showStateFormula(std::ostream& out) const;

    std::string operat;  // "and", "or", or "" which counts as "and"
    std::vector<std::unique_ptr<StateFormula>> stateFormulas;
    SignedAtoms atoms;
    bool negated = false;  // printed only: no evaluation looks at it
};
