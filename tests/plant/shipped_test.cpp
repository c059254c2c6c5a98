// Nothing is found in what is shipped, nor in the models of the console sessions.
#include <gtest/gtest.h>

#include <algorithm>

#include "fixtures/line.h"
#include "plant/plant_fixture.h"
#include "run/build_plant.h"

using plant_fixture::BuiltPlant;
using plant_fixture::Room;
using plant_fixture::Texts;

extern CompiledModel const gauge_model, lamp_model, tap_model, rig_model, works_model, vat_model;

namespace {

TEST(ShippedPlants, TheRoom) {
    EXPECT_EQ(Room().findings(), Texts{});
}

TEST(ShippedPlants, TheFeedLine) {
    for (int const valves : {1, 2, 5}) {
        BuiltPlant const line([valves](Scheduler* registry) { buildLine(registry, valves); });
        EXPECT_EQ(line.findings(), Texts{}) << valves;
    }
}

// Nothing moves the modes of the gauge, and its conditions on them have no numbers: they are
// constants, and agree with how the modes begin.
TEST(ShippedPlants, TheGauge) {
    EXPECT_EQ(BuiltPlant(gauge_model.startinit).findings(), Texts{});
}

// Nothing leaves the mode on of the lamp, and it has no idle transitions.
TEST(ShippedPlants, TheLamp) {
    EXPECT_EQ(BuiltPlant(lamp_model.startinit).findings(), Texts{});
}

TEST(ShippedPlants, TheTap) {
    EXPECT_EQ(BuiltPlant(tap_model.startinit).findings(), Texts{});
}

// The rig departs on purpose, and each departure is told.
TEST(TestPlants, TheRigIsRefused) {
    Texts const findings = BuiltPlant(rig_model.startinit).findings();
    auto const tells = [&](char const* text) {
        return std::find(findings.begin(), findings.end(), text) != findings.end();
    };
    EXPECT_TRUE(tells("Variable rig.drift is integrated and has no initial value: give it one."));
    EXPECT_TRUE(
        tells("warning: Variable rig.late follows from the cycle before and is updated after the "
              "measures of this one came in: name it in temporal."));
    EXPECT_EQ(findings.size(), 6u);
    EXPECT_FALSE(rig_model.checked);
}

// A plant with a mistake is refused before the first step, and every sentence is in the text.
TEST(TestPlants, ARefusedPlantIsNeverBuilt) {
    CompiledModel const model{"rig", rig_model.startinit};
    Host host;
    try {
        buildPlant(model, host);
        ADD_FAILURE() << "it was built";
    } catch (PlantRefused const& refused) {
        EXPECT_TRUE(isRefused(refused.findings));
        for (Finding const& finding : refused.findings)
            EXPECT_NE(std::string(refused.what()).find(finding.text), std::string::npos);
    }
}

TEST(TestPlants, AreSoundToo) {
    for (CompiledModel const* model : {&works_model, &vat_model})
        EXPECT_EQ(BuiltPlant(model->startinit).findings(), Texts{}) << model->model_name;
}

}  // namespace
