// The product of everything that is varied.
#include "quality/room_suite.h"

#include "quality/in_parallel.h"
#include "quality/rules.h"

namespace quality {

namespace {

constexpr RoomFault faults[] = {RoomFault::stuckOn,    RoomFault::stuckOff,   RoomFault::sensorDead,
                                RoomFault::sensorBias, RoomFault::windowOpen, RoomFault::draught};
constexpr int onsets[] = {20, 60, 100, 150, 200};
constexpr double noises[] = {0.0, 0.01, 0.02};
constexpr int thresholds[] = {2, 3};
constexpr int isolations[] = {1, 2, 3};

Uncertainty uncertaintyOf(int seed) {
    return seed % 2 != 0 ? Uncertainty::constant : Uncertainty::redrawn;
}

RoomSetting dayOf(RoomFault fault, int onset, double noise, int seed) {
    return {.fault = fault,
            .onset = onset,
            .noise = noise,
            .uncertainty = uncertaintyOf(seed),
            .seed = static_cast<std::uint64_t>(seed)};
}

}  // namespace

std::vector<RoomCase> healthyRooms(int seeds) {
    std::vector<RoomCase> cases;
    for (double const noise : noises)
        for (int const threshold : thresholds)
            for (int seed = 1; seed <= 2 * seeds; ++seed)
                cases.push_back({dayOf(RoomFault::none, 0, noise, seed), threshold, 1});
    return cases;
}

std::vector<RoomCase> faultyRooms(int seeds) {
    std::vector<RoomCase> cases;
    for (RoomFault const fault : faults)
        for (int const onset : onsets)
            for (double const noise : noises)
                for (int seed = 1; seed <= seeds; ++seed)
                    for (int const threshold : thresholds)
                        for (int const isolation : isolations)
                            cases.push_back(
                                {dayOf(fault, onset, noise, seed), threshold, isolation});
    return cases;
}

std::vector<RoomResult> watchRooms(std::vector<RoomCase> const& cases, std::string const& rules,
                                   unsigned jobs) {
    tavro::Plant const plant = tavro::Plant::builtin("therm");
    std::vector<RoomResult> results(cases.size());
    inParallel(cases.size(), jobs, [&](std::size_t i) {
        RoomCase const& asked = cases[i];
        tavro::Options const options =
            underRules(rules, {.isolation = asked.isolation, .threshold = asked.threshold});
        results[i] = {asked, watchRoom(plant, asked.day, options)};
    });
    return results;
}

}  // namespace quality
