// A slip put into a plant, and the sentences that it must be told in: nothing more, nothing less.
// Warnings begin with "warning: ".
#pragma once

#include <gtest/gtest.h>

#include "plant/plant_fixture.h"

namespace plant_fixture {

template <typename Plant>
struct Slip {
    char const* name;
    std::function<void(Plant&)> apply;
    Texts told;
};

template <typename Plant>
void expectTold(std::vector<Slip<Plant>> const& slips) {
    for (Slip<Plant> const& slip : slips) {
        SCOPED_TRACE(slip.name);
        Plant plant;
        ASSERT_EQ(plant.findings(), Texts{}) << "before the slip";
        slip.apply(plant);
        EXPECT_EQ(plant.findings(), slip.told);
    }
}

}  // namespace plant_fixture
