// A finite-domain variable of the discrete model.
//
// A variable is the base of three kinds, told apart by the string `type` alone: ModeVar, CondVar
// and CommandVar. Variables are built once by the compiled model, live for the whole run and are
// never copied; a component owns them, and the component's atoms are linked here in creation order.
//
// Invariants (told broken by brokenInvariant, which debug builds ask when a component changes):
//   1. every atom of `atomLinks` names this variable and has its own position as `linkIndex`;
//   2. `defaultValue` is "" or name + "=" + a member of `values`.
#pragma once

#include <ostream>
#include <set>
#include <string>
#include <vector>

class Atom;
class Clause;
class Comp;

class StateVar {
public:
    StateVar();
    explicit StateVar(std::string name);
    StateVar(std::string name, std::set<std::string> values);
    StateVar(std::string name, std::set<std::string> values, std::string const& defaultValue);
    StateVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
             Comp* comp);
    StateVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
             Comp* comp, bool observable);
    StateVar(StateVar const&) = delete;
    StateVar& operator=(StateVar const&) = delete;

    void setValues(std::set<std::string> newValues) { values = std::move(newValues); }
    std::set<std::string> getValues() const { return values; }
    void addValue(std::string const& value) { values.insert(value); }
    bool inValues(std::string const& value) const { return values.count(value) != 0; }

    // Takes the bare value; keeps the old default and notes a complaint when it is outside the
    // domain.
    void setDefault(std::string const& value);
    // In atom-id form, name + "=" + value.
    std::string getDefault() const { return defaultValue; }
    // The bare domain value.
    std::string getCurrentState() const { return currentState; }
    void setCurrentState(std::string const& value) { currentState = value; }

    void setName(std::string const& newName) { name = newName; }
    std::string getName() const { return name; }
    char const* getCharName() const { return name.c_str(); }
    void setSymbName(std::string const& newName) { symbName = newName; }
    std::string getSymbName() const { return symbName; }
    std::string getType() const { return type; }
    void setComp(Comp* newComp) { comp = newComp; }
    Comp* getComp() const { return comp; }
    std::vector<Atom*> const& getAtomLinks() const { return atomLinks; }

    // Appends and returns the atom's position.
    int addAtomToLinks(Atom* atom);

    // False only when the variable is observable, has an observation, and is in another state.
    bool matchObs() const;

    // What does not hold of the invariants, or null.
    char const* brokenInvariant() const;

    void showValues(std::ostream& out) const;
    void showCurrentState(std::ostream& out) const;

    std::set<std::string> values;  // the domain, in string order
    std::string type;              // see labels.h; "" in the plain base class
    std::string name;              // component name, ".", short name
    std::string symbName;          // second name; "" unless set
    std::string currentState;      // bare value; meaningless until a default or a value was set
    std::string defaultValue;      // in atom-id form; "" until a valid default was set
    Comp* comp = nullptr;          // null until a component takes the variable
    std::vector<Atom*> atomLinks;
    bool observable = false;
    std::string observation;  // "" when nothing was observed
    // The clauses that state the exclusive choice among the values; the registry owns them.
    std::vector<Clause*> clauses;
    int guards = 0;  // distinct guards of the transitions of this variable; counted at start-up
    // What was wrong with the making of the variable and its atoms: told by whoever takes the
    // component. Empty in a sound model.
    std::string complaints;
};
