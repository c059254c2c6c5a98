// True runs of the room and of the feed line, worked out by hand.
#include "truth/simulator.h"

#include <gtest/gtest.h>

#include "model/Comprt.h"
#include "truth_fixture.h"

using namespace truth_test;
using truth::Setting;
using truth::Simulator;
using truth::Uncertainty;

namespace {

double valueIn(Plant const& plant, Simulator const& run, char const* name) {
    for (auto const& variable : plant.tavro_rt->dico)
        if (variable->nom == name)
            return run.values()[static_cast<std::size_t>(variable->slot)];
    ADD_FAILURE() << name;
    return 0.0;
}

std::string modeIn(Plant const& plant, Simulator const& run, char const* name) {
    for (StateVar const* variable : plant.stateVars)
        if (variable->getName() == name) {
            Atom const* value = run.modes().valueOf(*variable);
            return value != nullptr ? value->value : "open";
        }
    ADD_FAILURE() << name;
    return "";
}

// x(k) = x(k-1) + g xd(k-1), xd(k) = K (drive - x(k-1)) + u with g = 1, u = 0.15, K = 0.05 in the
// middle; the heater is on below 10 and off from 17 on, which acts from the next step on. At 4
// degrees it goes on at once, so the first rate is 0.05 (20 - 4) + 0.15.
TEST(RoomTruth, FollowsItsEquations) {
    auto const plant = built(therm_model);
    Simulator run(*plant, {.uncertainty = Uncertainty::midpoint});
    run.start({});
    double x = 4.0, xd = 0.05 * (20.0 - x) + 0.15;
    bool heats = true;
    ASSERT_DOUBLE_EQ(valueIn(*plant, run, "room.xd"), xd);
    int switches = 0;
    for (int k = 1; k <= 200; ++k) {
        run.step({});
        double const drive = heats ? 20.0 : 4.0;
        double const next = x + xd;
        xd = 0.05 * (drive - x) + 0.15;
        x = next;
        ASSERT_NEAR(valueIn(*plant, run, "room.x"), x, 1e-9) << k;
        ASSERT_NEAR(run.measures()[0], xd, 1e-9) << k;
        bool const before = heats;
        heats = heats ? x < 17.0 : x < 10.0;
        switches += before != heats;
        ASSERT_EQ(modeIn(*plant, run, "thermostat.mode"), heats ? "on" : "off") << k;
    }
    EXPECT_GT(switches, 3);
}

// The gain lies in [0.95, 1.05] and the disturbance in [0, 0.3]: drawn once, the same ratio of the
// change of x and the rate before it comes out at every step; drawn anew, another.
TEST(RoomTruth, DrawsGainsOnceOrAnew) {
    auto const plant = built(therm_model);
    for (Uncertainty const uncertainty : {Uncertainty::constant, Uncertainty::redrawn}) {
        Simulator run(*plant, {.seed = 7, .uncertainty = uncertainty});
        run.start({});
        std::set<long> gains;
        for (int k = 1; k <= 50; ++k) {
            double const x = valueIn(*plant, run, "room.x"), xd = valueIn(*plant, run, "room.xd");
            run.step({});
            double const gain = (valueIn(*plant, run, "room.x") - x) / xd;
            EXPECT_GE(gain, 0.95 - 1e-6);
            EXPECT_LE(gain, 1.05 + 1e-6);
            gains.insert(std::lround(gain * 1e6));
        }
        if (uncertainty == Uncertainty::constant)
            EXPECT_LE(gains.size(), 2u) << "one, but for rounding";
        else
            EXPECT_GT(gains.size(), 40u);
    }
}

TEST(RoomTruth, IsTheSameForOneSeedAndAnotherForAnother) {
    auto const plant = built(therm_model);
    auto const last = [&](std::uint64_t seed) {
        Simulator run(*plant, {.seed = seed, .noise = 0.02});
        run.start({});
        for (int k = 1; k <= 30; ++k)
            run.step({});
        return run.measures()[0];
    };
    EXPECT_EQ(last(3), last(3));
    EXPECT_NE(last(3), last(4));
}

// A thermostat can stick on where it ought to switch off: with the heater on from the start that is
// the first step from 5 on at which the room has 17 degrees. From then on it heats.
TEST(RoomTruth, AFaultStrikesWhereThePlantLetsIt) {
    auto const plant = built(therm_model);
    Atom* stuck = atom(*plant, "thermostat.mode=stuck_on");
    Simulator run(*plant, {.uncertainty = Uncertainty::midpoint, .faults = {{stuck, 5}}});
    run.start({});
    int struck = -1;
    for (int k = 1; k <= 60 && struck < 0; ++k) {
        run.step({});
        if (!run.modes().struck().empty())
            struck = run.modes().struck()[0].step;
        else
            EXPECT_LT(valueIn(*plant, run, "room.x"), 17.0);
    }
    ASSERT_GT(struck, 5);
    EXPECT_EQ(struck, run.now());
    EXPECT_GE(valueIn(*plant, run, "room.x"), 17.0);
    for (int k = 1; k <= 40; ++k)
        run.step({});
    EXPECT_EQ(modeIn(*plant, run, "thermostat.mode"), "stuck_on");
    EXPECT_GT(valueIn(*plant, run, "room.x"), 19.0);
}

// No move of the room leads to an unknown window: it is entered when it is asked for.
TEST(RoomTruth, AFaultWithoutAMoveStrikesAtItsStep) {
    auto const plant = built(therm_model);
    Simulator run(*plant, {.faults = {{atom(*plant, "room.mode=unknown"), 3}}});
    run.start({});
    for (int k = 1; k <= 3; ++k) {
        EXPECT_EQ(modeIn(*plant, run, "room.mode"), "closed");
        run.step({});
    }
    EXPECT_EQ(modeIn(*plant, run, "room.mode"), "unknown");
}

TEST(RoomTruth, ACommandActsAtItsStepAlone) {
    auto const plant = built(therm_model);
    Setting const setting{.orders = {{atom(*plant, "room.cmdin=open"), 2}}};
    Simulator run(*plant, setting);
    run.start({});
    run.step({});
    EXPECT_EQ(modeIn(*plant, run, "room.mode"), "closed");
    run.step({});
    EXPECT_EQ(modeIn(*plant, run, "room.mode"), "open");
    EXPECT_EQ(modeIn(*plant, run, "room.cmdin"), "open");
    run.step({});
    EXPECT_EQ(modeIn(*plant, run, "room.cmdin"), "none");
    EXPECT_EQ(modeIn(*plant, run, "room.mode"), "open");
}

// The flow is positive exactly when the pump is on and both valves let through: clauses tell it.
TEST(LineTruth, WhatIsSeenFollowsFromTheModes) {
    auto const plant = built(line_model);
    Simulator run(*plant, {.faults = {{atom(*plant, "valve2.mode=stuck_closed"), 5}},
                           .orders = {{atom(*plant, "pump.cmd=start"), 1},
                                      {atom(*plant, "valve1.cmd=open"), 2},
                                      {atom(*plant, "valve2.cmd=open"), 3},
                                      {atom(*plant, "valve2.cmd=close"), 4},
                                      {atom(*plant, "valve2.cmd=open"), 6}}});
    run.start({});
    std::string flows;
    for (int k = 1; k <= 6; ++k) {
        run.step({});
        flows += modeIn(*plant, run, "sensor.flow") + " ";
    }
    EXPECT_EQ(flows, "zero zero positive zero zero zero ");
    EXPECT_EQ(modeIn(*plant, run, "valve2.mode"), "stuck_closed");
    EXPECT_EQ(modeIn(*plant, run, "valve1.passage"), "through");
}

}  // namespace
