// Nothing is found in what is shipped, nor in the models of the console sessions.
#include <gtest/gtest.h>

#include "generated/line/line.h"
#include "plant/plant_fixture.h"
#include "plant/session_models_fixture.h"

using plant_fixture::BuiltPlant;
using plant_fixture::Room;
using plant_fixture::Texts;

namespace {

TEST(ShippedPlants, TheRoom) {
    EXPECT_EQ(Room().findings(), Texts{});
}

TEST(ShippedPlants, TheFeedLine) {
    for (int const valves : {1, 2, 5}) {
        BuiltPlant const line([valves](Scheduler* registry) {
            buildLine(registry, valves);
            return nullptr;
        });
        EXPECT_EQ(line.findings(), Texts{}) << valves;
    }
}

// Nothing moves the modes of the gauge, and its conditions on them have no numbers: they are
// constants, and agree with how the modes begin.
TEST(ShippedPlants, TheGauge) {
    EXPECT_EQ(BuiltPlant(session_models::buildGauge).findings(), Texts{});
}

// Nothing leaves the mode on of the lamp, and it has no idle transitions.
TEST(ShippedPlants, TheLamp) {
    EXPECT_EQ(BuiltPlant(session_models::buildLamp).findings(), Texts{});
}

TEST(ShippedPlants, TheTap) {
    EXPECT_EQ(BuiltPlant(session_models::buildTap).findings(), Texts{});
}

}  // namespace
