// What the generator knows of the compiled models that it tries.
#pragma once

#include <string>
#include <vector>

#include "run/compiled_model.h"

namespace fuzz {

struct PlantFacts {
    CompiledModel const* model;
    std::string program;  // name of the executive
    bool discrete;
    int inputs, measures, displays;
    double Ts;                                   // 0 in a discrete plant
    std::vector<std::string> atoms, components;  // at least one each
    std::vector<std::string> commands, measureNames;
};

// Of all models, in an order that never changes.
std::vector<PlantFacts> const& plants();
// Of the model of that name, which there is.
PlantFacts const& plantOf(std::string const& model);

}  // namespace fuzz
