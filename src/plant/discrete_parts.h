// What the components of a plant make their discrete side from: variables with their atoms, and
// moves from mode to mode.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "model/Comprt.h"
#include "model/transitionParts.h"

// One value of a variable, and the member by which the component holds its atom.
struct NamedValue {
    char const* value;
    Atom** atom;
};

// Enters an atom for each value, in the order given, under the key class_variable_value, where the
// class is that of *comp* and must be set before.
void addAtoms(Comp& comp, StateVar* variable, std::string const& shortName,
              std::vector<NamedValue> const& values);

// A variable of *comp*, named after both, that begins as *start*.
template <typename Variable>
Variable* addChoice(Comp& comp, std::string const& shortName, char const* start,
                    std::vector<NamedValue> const& values) {
    std::set<std::string> domain;
    for (NamedValue const& named : values)
        domain.insert(named.value);
    Variable* variable = comp.addStateVar(
        std::make_unique<Variable>(comp.name + "." + shortName, std::move(domain), start, &comp));
    addAtoms(comp, variable, shortName, values);
    return variable;
}

// Literals of a guard that must all hold; false forbids the atom.
using Guard = std::vector<std::pair<Atom*, bool>>;

// A transition of *comp* that leads to *to* when all of *guard* holds.
Transition* addMove(Comp& comp, Guard const& guard, Atom* to, char const* type, double proba,
                    bool idle);
