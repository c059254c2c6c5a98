// What a plant owns, and its end.
#include "model/Plant.h"

#include <cassert>

Plant::Plant(std::string name) : name(std::move(name)) {}

Plant::~Plant() {
    clear();
}

Clause* Plant::addClause(std::unique_ptr<Clause> clause) {
    assert(clause != nullptr);
    cls.push_back(std::move(clause));
    return cls.back().get();
}

void Plant::clear() {
    active_comps.clear();
    active_atoms.clear();
    active_trans.clear();
    stateVars.clear();
    tavro_rt.reset();
    ownedComps.clear();
    cls.clear();
}
