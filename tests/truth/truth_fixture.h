// Plants of the tests of true runs.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <set>
#include <string>

#include "continuous/records.h"
#include "model/Plant.h"
#include "run/build_plant.h"

extern CompiledModel const therm_model, line_model, vat_model, rig_model, works_model, tap_model;

namespace truth_test {

inline std::unique_ptr<Plant> built(CompiledModel const& model) {
    Host host;
    return buildPlant(model, host);
}

inline Atom* atom(Plant const& plant, char const* id) {
    auto const found = plant.active_atoms.find(id);
    EXPECT_TRUE(found != plant.active_atoms.end()) << id;
    return found->second;
}

}  // namespace truth_test
