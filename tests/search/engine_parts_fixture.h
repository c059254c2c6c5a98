// Parts of the engine's form of a random model: variables and clauses by number, and the labels of
// a history read back as numbers.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "fixtures/the_run.h"
#include "model/Comprt.h"
#include "trajectory/Trajectoryrt.h"

namespace random_models {

inline char const* const modeNames[] = {"m0", "m1", "bad", "worse"};
inline char const* const commandNames[] = {"none", "go", "back"};
inline char const* const outNames[] = {"lo", "hi"};
inline char const* const compNames[] = {"a", "b", "c"};

// A variable with an atom for each value, of which the first is the default.
template <typename Variable>
Variable* makeVariable(Comp* comp, std::string const& name, char const* const* values, int count);

inline Atom* atomOf(StateVar const* variable, int value) {
    return variable->getAtomLinks()[static_cast<std::size_t>(value)];
}
// The first literal is the conclusion; the others are negated.
void addRule(Comp* comp, Atom* conclusion, std::vector<Atom*> const& premises);

// Exactly one atom of a variable holds at a step: its number. What is wrong goes to *errors*.
int valueOf(Trajectory const* trajectory, StateVar const* variable, int step,
            std::vector<std::string>& errors);
// Every clause holds at a step.
void checkClauses(Trajectory const* trajectory, int step, std::vector<std::string>& errors);

}  // namespace random_models

// ---- Implementation of the template ----

#include "model/exclusiveChoice.h"

template <typename Variable>
Variable* random_models::makeVariable(Comp* comp, std::string const& name,
                                      char const* const* values, int count) {
    auto* made = comp->addStateVar(std::make_unique<Variable>(
        comp->name + "." + name, std::set<std::string>(values, values + count), values[0], comp));
    for (int i = 0; i < count; ++i)
        comp->newAtom((name + values[i]).c_str(), made, values[i]);
    addExclusiveChoice(thePlant(), made);
    return made;
}
