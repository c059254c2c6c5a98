// From a compiled model to a plant that runs can share.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/Plant.h"
#include "plant/check.h"
#include "run/compiled_model.h"
#include "support/host.h"

// A plant that no run may have: a sentence for each mistake, with those that are only probable.
class PlantRefused : public std::runtime_error {
public:
    explicit PlantRefused(std::vector<Finding> found);

    std::vector<Finding> const findings;
};

// Builds the model and checks it, then numbers, weighs and links it, and gives the conditions of
// its template their first values. The host takes what the building tells; what is probably wrong
// goes to its messages, a line each. Throws PlantRefused when something certainly is.
std::unique_ptr<Plant> buildPlant(CompiledModel const& model, Host& host);
