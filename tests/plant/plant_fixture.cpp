// Building plants and reaching into them.
#include "plant/plant_fixture.h"

#include <gtest/gtest.h>

#include <cstring>

#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "run/compiled_model.h"

extern CompiledModel const therm_model;

namespace plant_fixture {

BuiltPlant::BuiltPlant(std::function<void(Scheduler*)> const& build) {
    scheduler.startBuilding(plant);
    build(&scheduler);
    runtime = plant.tavro_rt.get();
}

BuiltPlant::~BuiltPlant() = default;

PlantParts BuiltPlant::parts() const {
    return {plant.active_comps, plant.cls, runtime};
}

std::vector<std::unique_ptr<Clause>>& BuiltPlant::clauses() {
    return plant.cls;
}

Comp& BuiltPlant::comp(char const* name) const {
    return *plant.active_comps.find(name)->second;
}

StateVar* BuiltPlant::stateVariable(std::string const& name) const {
    for (auto const& entry : plant.active_comps)
        if (StateVar* found = entry.second->getStateVariable(name))
            return found;
    ADD_FAILURE() << "no variable " << name;
    return nullptr;
}

Atom* BuiltPlant::atom(std::string const& id) const {
    StateVar const* variable = stateVariable(id.substr(0, id.find('=')));
    for (Atom* atom : variable->getAtomLinks())
        if (atom->id == id)
            return atom;
    ADD_FAILURE() << "no atom " << id;
    return nullptr;
}

Transition& BuiltPlant::transition(char const* compName, std::size_t i) const {
    return *comp(compName).transitions.at(i);
}

s_Variable* BuiltPlant::variable(std::string const& nom) const {
    for (auto const& variable : runtime->dico)
        if (variable->nom == nom)
            return variable.get();
    ADD_FAILURE() << "no variable " << nom;
    return nullptr;
}

s_Influence* BuiltPlant::influence(std::string const& nom) const {
    for (auto const& influence : runtime->influ)
        if (influence->nom == nom)
            return influence.get();
    ADD_FAILURE() << "no influence " << nom;
    return nullptr;
}

Texts BuiltPlant::findings() const {
    Texts texts;
    for (Finding const& finding : checkPlant(parts()))
        texts.push_back((finding.refuses ? "" : "warning: ") + finding.text);
    return texts;
}

Room::Room() : BuiltPlant(therm_model.startinit) {}

CondMap& condMapOf(StateVar* variable) {
    return variable->type == "Cond" ? static_cast<CondVar*>(variable)->condMap
                                    : static_cast<ModeVar*>(variable)->condMap;
}

std::vector<int> linksOf(Atom const* atom) {
    std::vector<int> indices;
    for (auto const& [id, index] : condMapOf(atom->getStateVar()))
        if (std::strcmp(id, atom->getId()) == 0)
            indices.push_back(index);
    return indices;
}

}  // namespace plant_fixture
