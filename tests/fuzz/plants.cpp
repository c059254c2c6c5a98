// Asking each model once.
#include "fuzz/plants.h"

#include <algorithm>

#include "continuous/records.h"
#include "model/Atom.h"
#include "model/Comprt.h"
#include "run/build_plant.h"
#include "support/host.h"

extern CompiledModel const therm_model, line_model, rig_model, works_model, pumps_model, tap_model,
    gauge_model, lamp_model;

namespace fuzz {

namespace {

std::string programOf(CompiledModel const& model) {
    return &model == &therm_model ? "tavro-exec" : std::string("tavro-") + model.model_name;
}

void takeNames(PlantFacts& facts, Plant const& plant) {
    for (auto const& entry : plant.active_atoms) {
        facts.atoms.emplace_back(entry.second->getId());
        if (entry.second->getVarType() == "Command")
            facts.commands.emplace_back(entry.second->getId());
    }
    for (auto const& entry : plant.active_comps)
        facts.components.emplace_back(entry.first);
    for (auto* names : {&facts.atoms, &facts.commands, &facts.components})
        std::sort(names->begin(), names->end());
    // A plant without any has one that nobody knows.
    if (facts.atoms.empty())
        facts.atoms.emplace_back("nobody.mode=none");
    if (facts.components.empty())
        facts.components.emplace_back("nobody");
}

PlantFacts factsOf(CompiledModel const& model) {
    Host silent;
    auto const plant = buildPlant(model, silent);
    PlantFacts facts{&model, programOf(model), true, 0, 0, 0, 0.0, {}, {}, {}, {}};
    takeNames(facts, *plant);
    s_runtime const* rt = plant->tavro_rt.get();
    if (rt == nullptr)
        return facts;
    facts.discrete = false;
    facts.inputs = static_cast<int>(rt->input.size());
    facts.measures = static_cast<int>(rt->measure.size());
    facts.displays = static_cast<int>(rt->display.size());
    facts.Ts = rt->Ts;
    for (s_Variable const* variable : rt->measure)
        facts.measureNames.push_back(variable->nom);
    return facts;
}

}  // namespace

std::vector<PlantFacts> const& plants() {
    static std::vector<PlantFacts> const all = {
        factsOf(therm_model), factsOf(line_model), factsOf(rig_model),   factsOf(works_model),
        factsOf(pumps_model), factsOf(tap_model),  factsOf(gauge_model), factsOf(lamp_model)};
    return all;
}

PlantFacts const& plantOf(std::string const& model) {
    return *std::find_if(plants().begin(), plants().end(), [&model](PlantFacts const& facts) {
        return facts.model->model_name == model;
    });
}

}  // namespace fuzz
