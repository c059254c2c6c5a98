// An atom: the proposition that one variable has one value. All reasoning works on atoms.
//
// A component owns its atoms; they are never copied and live for the whole run. What changes during
// a run is the label and the support, kept by the truth maintenance; the copies of those for one
// candidate at one step are in TrajEl.
//
// Invariants (1 to 3 are told broken by brokenInvariant, which debug builds ask after each change):
//   1. var->atomLinks[linkIndex] is this atom, unless the value was refused: var is null then,
//      linkIndex -1 and `value` empty;
//   2. label is one of the three of labels.h;
//   3. `value` is in the domain of the variable;
//   4. `id` does not change while a table is keyed by getId().
#pragma once

#include <cassert>
#include <ostream>
#include <string>
#include <vector>

#include "model/labels.h"
#include "support/hash_map.h"

class Clause;
class Comp;
class StateVar;
class Transition;

class Atom {
public:
    // Links the atom to *var*. A value outside the domain is noted among the variable's complaints
    // and leaves `var` null and `value` empty: such an atom is never true, cannot be set, and has
    // no siblings, no kind and no component.
    Atom(StateVar* var, std::string const& value, std::string const& id);
    Atom(Atom const&) = delete;
    Atom& operator=(Atom const&) = delete;

    // True when the variable's current state is this atom's value.
    bool evalAtom() const;
    // Makes this the value of its variable; labels it true and its siblings false.
    void set();

    void setLabel(std::string const& newLabel) {
        assert(isLabel(newLabel));
        label = newLabel;
    }
    // With *exclusive* and the label "true", the siblings become "false".
    void setLabel(std::string const& newLabel, bool const& exclusive);
    std::string const& getLabel() const { return label; }

    char const* getId() const { return id.c_str(); }
    StateVar* getStateVar() const { return var; }
    Comp* getVarComp() const;
    std::string getVarType() const;
    std::vector<Transition*> const& getRefTransPre() const { return refTransPre; }
    std::vector<Transition*> const& getRefTransPost() const { return refTransPost; }
    void addRefTransPre(Transition* transition) {
        assert(transition != nullptr);
        refTransPre.push_back(transition);
    }
    void addRefTransPost(Transition* transition) {
        assert(transition != nullptr);
        refTransPost.push_back(transition);
    }

    // Every atom of the variable, this one included.
    std::vector<Atom*> const& getSiblings() const;
    // The atom of the same variable with this id, or null.
    Atom* getAtomLink(std::string const& otherId) const;

    void decTopoNumber() { --topoNumber; }
    void incTopoNumber() { ++topoNumber; }
    int getTopoNumber() const { return topoNumber; }

    // What does not hold of the invariants, or null.
    char const* brokenInvariant() const;

    void showAtom(std::ostream& out, bool full) const;

    StateVar* var = nullptr;
    std::string value;
    std::string id;
    int linkIndex = -1;    // position in var->atomLinks; -1 when the value was refused
    bool failure = false;  // a "Fail" transition leads here
    std::vector<Transition*> refTransPre;
    std::vector<Transition*> refTransPost;
    Clause* support = nullptr;        // the clause that forced the label; null for a premise
    std::vector<Atom*> consequences;  // atoms whose support holds this atom
    std::vector<Clause*> clauses;     // every clause that mentions this atom
    string_map<Comp*> comps;          // by name, the components that hold this atom
    std::string label;                // see labels.h
    int propagationNumber = 0;        // 1 for a label of the initial state
    double compiledProb = 0.0;        // mean probability of refTransPost
    bool bridged = false;             // tied to a continuous condition through condMap
    Transition* idleTrans = nullptr;  // keeps this atom true; null when the model has none
    unsigned guards = 0;              // distinct guards of the transitions that leave this atom
    bool deadEnd = false;             // no nominal transition but idle ones leaves this atom
    int topoNumber = 0;

private:
    void labelSiblingsFalse();

    std::vector<Atom*> const none;  // siblings of a refused value
};
