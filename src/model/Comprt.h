// A component: what belongs to one physical part of the system.
//
// A component owns its variables, atoms, transitions and constraints; its continuous variables and
// influences belong to the runtime and are only listed here. Compiled models derive from this class
// and fill it in init().
//
// Invariants (1 and 2 are told broken by brokenInvariant, which debug builds ask after each change;
// the others hold once start-up is over, and are told broken by brokenLinks):
//   1. every variable knows this component, and its own invariants hold;
//   2. no clause, transition, command or neighbour is null;
//   3. names of variables begin with the component's name and a dot;
//   4. `atoms` holds every atom of every variable and nothing else, keyed by atom id;
//   5. each of these atoms lists this component under its name.
#pragma once

#include <cassert>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "model/Formula.h"
#include "model/StateVar.h"
#include "model/Transitionrt.h"
#include "support/hash_map.h"
#include "support/owned.h"

class Atom;
class Clause;
class CommandVar;
struct s_Influence;
struct s_Variable;

class Comp {
public:
    explicit Comp(std::string name);
    ~Comp();
    Comp(Comp const&) = delete;
    Comp& operator=(Comp const&) = delete;

    // Zero-terminated, and the key of this component in the registry.
    char const* getName() const { return name.c_str(); }
    // To be called before the component is registered, since the registry keeps the pointer.
    void setName(std::string const& newName) { name = newName; }

    std::vector<owned<StateVar>> const& getStateVariables() const { return stateVariables; }
    std::vector<std::unique_ptr<Formula>> const& getConstraints() const { return constraints; }
    std::vector<std::unique_ptr<Transition>> const& getCompTransitions() const {
        return transitions;
    }
    // The variable of that full name, or null.
    StateVar* getStateVariable(std::string const& fullName) const;

    // Takes the variable, tells it its component, and returns it for the caller to keep by name.
    template <typename Variable>
    Variable* addStateVar(std::unique_ptr<Variable> variable) {
        Variable* borrowed = variable.get();
        borrowed->setComp(this);
        stateVariables.push_back(own<StateVar>(std::move(variable)));
        assert(brokenInvariant() == nullptr);
        return borrowed;
    }
    // Makes the atom of a value of *variable* and enters it under a symbolic key, which is copied.
    Atom* newAtom(char const* key, StateVar* variable, std::string const& value);
    void addVariable(s_Variable* variable) {
        assert(variable != nullptr);
        variables.push_back(variable);
    }
    void addInfluence(s_Influence* influence) {
        assert(influence != nullptr);
        influences.push_back(influence);
    }
    void addFormulaToCS(std::unique_ptr<Formula> formula) {
        assert(formula != nullptr);
        constraints.push_back(std::move(formula));
    }
    Transition* addTransitionToC(std::unique_ptr<Transition> transition);

    // The mean of the nominal transitions' probabilities; not-a-number when there is none.
    void computeNominalCover();
    // Counts guards into the atoms and variables of the transitions; to be called once. A guard
    // without a mode is told on *err* and counts nothing.
    void getTransitionsGuards(std::ostream& err);

    // *showInfluence* prints one influence, in the form of the runtime's printers.
    using InfluencePrinter = std::function<void(s_Influence const*)>;
    // What does not hold of the invariants, or null.
    char const* brokenInvariant() const;
    char const* brokenLinks() const;

    void showComp(std::ostream& out, InfluencePrinter const& showInfluence) const;

    std::string className;  // name of the compiled class; assigned by the top level of the model
    std::string name;
    int compSize = 0;  // added to a state's count of transitions; no model gives another value
    // Commands of other components. Idle and "Fail" transitions without a command literal count as
    // leaving each atom of these. Owned by their components; empty in the reference model.
    std::vector<CommandVar*> importedCommands;
    std::vector<CommandVar*> commands;  // of this component, which owns them as variables
    std::vector<owned<StateVar>> stateVariables;
    std::vector<std::unique_ptr<Formula>> constraints;
    std::vector<Clause*> clauses;  // owned by the registry
    std::vector<s_Variable*> variables;
    std::vector<s_Influence*> influences;
    std::vector<std::unique_ptr<Transition>> transitions;
    std::vector<Comp*> neighbours;
    // Under symbolic keys ("room_mode_open") until start-up enters them again by atom id.
    string_map<Atom*> atoms;
    double nominalCover = 0.0;
    std::string symbol;  // the model's identifier, written to files of prime implicates

private:
    void countGuard(Transition const& transition);
    void showDiscrete(std::ostream& out) const;

    std::vector<std::unique_ptr<Atom>> ownedAtoms;
    std::vector<std::unique_ptr<std::string>> symbolicKeys;  // what `atoms` is keyed by at first
};
