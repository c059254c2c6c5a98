// True days of the room: plain numbers, with every uncertain quantity of the model drawn from the
// interval that the model states for it. Nothing here knows of intervals or of the engine.
//
// With x the temperature, xd its rate of change, k the step:
//
//     x(0) = 4        x(k)  = x(k-1) + g(k) xd(k-1)                       g in [0.95, 1.05]
//                     xd(k) = K (drive(k) - x(max(k-1, 0))) + u(k)        u in [0, 0.3]
//
// K is 0.05 with the window closed and 0.0002 with it open; drive is 20 while the heater heats and
// 4 while it does not. The thermostat acts at the end of a step, once x(k) is known: off turns to
// on when x(k) < 10, on turns to off when x(k) >= 17; so xd(k+1) is the first rate that sees it. At
// 4 degrees it switches on before the first rate.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quality {

enum class RoomFault {
    none,
    stuckOn,     // the thermostat sticks where it ought to switch off
    stuckOff,    // the thermostat sticks where it ought to switch on
    sensorDead,  // the sensor goes on showing what it showed last
    sensorBias,  // the sensor shows 0.5 too much
    windowOpen,  // the window opens without a command: K is that of the open window
    draught      // cold air: 0.5 less in each rate, so the uncertain term is outside its interval
};

char const* nameOf(RoomFault fault);

// How the uncertain quantities g and u behave. The interval model holds all three: it says only
// that a value lies in the interval at each step.
enum class Uncertainty {
    midpoint,  // g = 1 and u = 0.15 at all steps
    constant,  // drawn once for the day
    redrawn    // drawn anew at each step
};

char const* nameOf(Uncertainty uncertainty);

struct RoomSetting {
    RoomFault fault = RoomFault::none;
    // First step at which the fault can strike. The sensor, the window and the draught strike right
    // there, a thermostat where it ought to switch next.
    int onset = 0;
    // Of the sensor: uniform in [-noise, noise]. The model knows of none, so only noise 0 is sound.
    double noise = 0.0;
    Uncertainty uncertainty = Uncertainty::constant;
    std::uint64_t seed = 1;
    int steps = 300;  // number of the last step
};

struct RoomSample {
    double measured = 0.0;  // what the sensor shows of the rate
    double rate = 0.0;
    double temperature = 0.0;
    // After the step.
    std::string thermostat;
    std::string window;
};

struct RoomDay {
    std::vector<RoomSample> samples;  // of the steps 0, 1, ...
    // The first step whose measure the fault has touched; none if it never struck.
    std::optional<int> struck;
};

// A day with a fault is the healthy day of the same seed and uncertainty until the fault acts.
RoomDay roomDay(RoomSetting const& setting);

}  // namespace quality
