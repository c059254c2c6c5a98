// The names by which the world outside speaks of a plant.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "model/Plant.h"
#include "tavro/tavro.hpp"

struct PlantNames {
    explicit PlantNames(Plant const& plant);

    std::vector<std::string> inputs, measures, variables;    // empty in a discrete plant
    std::vector<std::string> components;                     // in alphabetical order
    std::vector<std::string> modes;                          // of variables
    std::map<std::string, std::vector<std::string>> values;  // of each of these
    std::vector<tavro::Influence> influences;
    std::vector<std::string> commands, observations;  // ids of atoms
};
