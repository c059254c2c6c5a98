// The exclusive choice among the values of a variable, as clauses.
#include "model/exclusiveChoice.h"

#include <cassert>

#include "model/Plant.h"
#include "model/StateVar.h"

namespace {

Clause* newInternalClause(Plant& plant, StateVar* variable) {
    Clause* clause = plant.addClause(std::make_unique<Clause>(variable->getComp()));
    clause->setInternal(true);
    variable->clauses.push_back(clause);
    return clause;
}

}  // namespace

void addExclusiveChoice(Plant& plant, StateVar* variable) {
    assert(variable->clauses.empty());  // told once
    std::vector<Atom*> const& atoms = variable->getAtomLinks();
    for (std::size_t i = 0; i < atoms.size(); ++i)
        for (std::size_t j = i + 1; j < atoms.size(); ++j) {
            Clause* notBoth = newInternalClause(plant, variable);
            notBoth->addAtomRef(atoms[j], true);
            notBoth->addAtomRef(atoms[i], true);
        }
    Clause* oneOfThem = newInternalClause(plant, variable);
    for (auto atom = atoms.rbegin(); atom != atoms.rend(); ++atom)
        oneOfThem->addAtomRef(*atom, false);
}
