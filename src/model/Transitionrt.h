// A transition: a probabilistic move of a component's mode.
//
// When the guard `pre` holds at a step, `post` may hold at the next one. Construction weaves the
// transition into the atoms that it mentions, so that the search finds without a walk the
// transitions that leave an atom and those that reach it. A component owns its transitions, a
// transition its formulas and mapping functions.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/Formula.h"
#include "model/MapFunc.h"
#include "model/StateFormula.h"
#include "support/hash_map.h"

class Atom;
class StateVar;

class Transition {
public:
    // Several effects, each under a time offset; the transition that holds the table owns them.
    using Posts = hash_map<int, StateFormula*>;

    Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
               std::string const& type);
    Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
               std::string const& type, double proba);
    Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
               std::string const& type, double proba, bool idle);
    // The form of compiled models.
    Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
               std::string const& type, double proba, double proba2, bool idle);
    // Multi-valued. Consumes the formulas of *posts*.
    Transition(std::unique_ptr<StateFormula> pre, std::unique_ptr<Posts> posts,
               std::string const& type, double proba);
    ~Transition();
    Transition(Transition const&) = delete;
    Transition& operator=(Transition const&) = delete;

    void setID(int newId) { id = newId; }
    std::string const& getType() const { return type; }
    // By id alone, so all transitions are equal until start-up has numbered them.
    bool eq(Transition const* other) const { return id == other->id; }

    // Enters this transition as leaving the atom: with sign false, as leaving every sibling of it.
    // The top level of a compiled model calls it too, for a literal added to an existing guard.
    void refAtomPre(bool sign, Atom* atom);
    // Enters this transition as reaching the atom.
    void refAtomPost(Atom* atom);

    void addFormulaToTrans(std::unique_ptr<Formula> formula) {
        formulas.push_back(std::move(formula));
    }

    // Nothing for an idle transition; a transition without both modes is told on *err*.
    void showMove(std::ostream& out, std::ostream& err) const;
    void showTransition(std::ostream& out) const;

    int id = 0;                   // unique once start-up has numbered the transitions
    std::string type;             // "Nominal" or "Fail"
    StateVar* modeVar = nullptr;  // variable of the first positive "Mode" literal of `pre`
    Atom* preMode = nullptr;      // that literal's atom; null when there is none
    Atom* postMode = nullptr;     // atom of modeVar in the effect; null when there is none
    double proba = 0.0;           // when the guard holds
    double weight = 0.0;          // proba / transitions of the component; set at start-up
    double guardProba = 0.0;      // proba / guards of modeVar; set at start-up
    double proba2 = 0.0;          // kept, read by nothing
    std::unique_ptr<StateFormula> pre;
    std::unique_ptr<StateFormula> post;              // null for a multi-valued transition
    int nbPosts = 1;                                 // number of effects
    std::unique_ptr<Posts> posts;                    // null unless multi-valued
    std::vector<std::unique_ptr<Formula>> formulas;  // printed with the transition
    bool idle = false;                               // keeps the state when nothing else happens
    bool unconditional = true;  // cleared at start-up for idle or "Fail" without a command literal
    std::vector<std::unique_ptr<MapFunc>> mapFuncs;
    bool unknownPost = false;  // the effect's last atom has the value "unknown"

private:
    void addRefToAtoms();
    void refAtomPosts(Atom* atom);
};
