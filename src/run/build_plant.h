// From where a plant comes from to a plant that runs can share.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/Plant.h"
#include "plant/check.h"
#include "run/plant_source.h"
#include "support/host.h"

// A plant that no run may have: a sentence for each mistake, with those that are only probable.
class PlantRefused : public std::runtime_error {
public:
    explicit PlantRefused(std::vector<Finding> found);

    std::vector<Finding> const findings;
};

// Builds the plant and checks it, then numbers, weighs and links it, and gives the conditions of
// its template their first values. The host takes what the building tells; what is probably wrong
// goes to its messages, a line each. Throws PlantRefused when something certainly is.
std::unique_ptr<Plant> buildPlant(PlantSource const& source, Host& host);
