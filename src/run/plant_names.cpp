// Collecting the names of a plant.
#include "run/plant_names.h"

#include <algorithm>

#include "continuous/isolation.h"
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

std::string kindOf(influType type) {
    switch (type) {
        case INF_DYNAMIC:
            return "first order";
        case INF_DYNAMIC2:
            return "second order";
        case INF_INTEGRAL:
            return "integral";
        case INF_COUPLING:
            return "coupling";
        default:
            return "static";
    }
}

void addInfluences(s_runtime const& rt, std::vector<tavro::Influence>& influences) {
    for (auto const& influence : rt.influ)
        if (influence->cause != nullptr)
            influences.push_back({influence->nom, influence->cause->nom, influence->effect->nom,
                                  kindOf(influence->type), conditionText(influence->cond)});
}

}  // namespace

PlantNames::PlantNames(Plant const& plant) {
    for (auto const& entry : plant.active_comps)
        if (entry.second != nullptr)
            components.emplace_back(entry.second->getName());
    std::sort(components.begin(), components.end());
    for (StateVar const* variable : plant.stateVars) {
        if (variable->type == typeMode) {
            modes.push_back(variable->name);
            for (Atom const* atom : variable->getAtomLinks())
                values[variable->name].push_back(atom->value);
        }
        if (variable->type == typeCommand)
            addAtoms(*variable, commands);
    }
    if (s_runtime const* rt = plant.tavro_rt.get()) {
        inputs = namesOf(rt->input);
        measures = namesOf(rt->measure);
        for (auto const& variable : rt->dico)
            if (!variable->isParam)
                variables.push_back(variable->nom);
        addInfluences(*rt, influences);
        return;
    }
    // A hybrid run reads no observations.
    for (StateVar const* variable : plant.stateVars)
        if (variable->type == typeObservable)
            addAtoms(*variable, observations);
}
