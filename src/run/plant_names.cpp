// Collecting the names of a plant.
#include "run/plant_names.h"

#include <algorithm>

#include "continuous/records.h"
#include "model/labels.h"

namespace {

std::vector<std::string> namesOf(std::vector<s_Variable*> const& variables) {
    std::vector<std::string> names;
    for (s_Variable const* variable : variables)
        names.push_back(variable->nom);
    return names;
}

void addAtoms(StateVar const& variable, std::vector<std::string>& ids) {
    for (Atom const* atom : variable.getAtomLinks())
        ids.emplace_back(atom->getId());
}

}  // namespace

PlantNames::PlantNames(Plant const& plant) {
    for (auto const& entry : plant.active_comps)
        if (entry.second != nullptr)
            components.emplace_back(entry.second->getName());
    std::sort(components.begin(), components.end());
    for (StateVar const* variable : plant.stateVars) {
        if (variable->type == typeMode)
            modes.push_back(variable->name);
        if (variable->type == typeCommand)
            addAtoms(*variable, commands);
    }
    if (s_runtime const* rt = plant.tavro_rt.get()) {
        inputs = namesOf(rt->input);
        measures = namesOf(rt->measure);
        for (auto const& variable : rt->dico)
            if (!variable->isParam)
                variables.push_back(variable->nom);
        return;
    }
    // A hybrid run reads no observations.
    for (StateVar const* variable : plant.stateVars)
        if (variable->type == typeObservable)
            addAtoms(*variable, observations);
}
