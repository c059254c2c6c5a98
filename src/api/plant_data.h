// What stands behind a handle on a plant: the plant of the engine, and its names.
#pragma once

#include <memory>

#include "model/Plant.h"
#include "run/plant_names.h"
#include "tavro/tavro.hpp"

struct tavro::PlantData {
    explicit PlantData(std::unique_ptr<::Plant> built) : engine(std::move(built)), names(*engine) {}

    std::unique_ptr<::Plant const> const engine;
    PlantNames const names;
};
