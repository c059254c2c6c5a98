// Where a plant comes from: a compiled model, a text that was read, or whatever else can build one.
#pragma once

#include <functional>
#include <string>

#include "run/compiled_model.h"

struct PlantSource {
    // A model that is linked into the program.
    PlantSource(CompiledModel const& model)
        : name(model.model_name), build(model.startinit), checked(model.checked) {}
    PlantSource(std::string name, std::function<void(Scheduler*)> build)
        : name(std::move(name)), build(std::move(build)) {}

    std::string name;  // of its runtime, and of the files that belong to it
    // Builds every component, all clauses and, for a hybrid plant, tavro_rt, in the plant that the
    // scheduler is building. May be called again, for another plant.
    std::function<void(Scheduler*)> build;
    bool checked = true;  // see CompiledModel
};
