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

constexpr Uncertainty uncertainties[] = {Uncertainty::constant, Uncertainty::redrawn};

// Every threshold on every day with the fault.
void addDays(std::vector<RoomCase>& cases, RoomFault fault, int onset, int seed) {
    for (double const noise : noises)
        for (int const threshold : thresholds)
            for (Uncertainty const uncertainty : uncertainties)
                cases.push_back({{.fault = fault,
                                  .onset = onset,
                                  .noise = noise,
                                  .uncertainty = uncertainty,
                                  .seed = static_cast<std::uint64_t>(seed)},
                                 threshold,
                                 1});
}

}  // namespace

std::vector<RoomCase> healthyRooms(int seeds) {
    std::vector<RoomCase> cases;
    for (int seed = 1; seed <= seeds; ++seed)
        addDays(cases, RoomFault::none, 0, seed);
    return cases;
}

std::vector<RoomCase> faultyRooms(int seeds) {
    std::vector<RoomCase> cases;
    for (int seed = 1; seed <= seeds; ++seed)
        for (RoomFault const fault : faults)
            for (int const onset : onsets)
                addDays(cases, fault, onset, seed);
    return cases;
}

std::vector<RoomCase> isolatedRooms() {
    std::vector<RoomCase> cases;
    for (int const isolation : isolations)
        for (RoomFault const fault : faults)
            for (int const onset : {20, 100, 200})
                for (Uncertainty const uncertainty : uncertainties)
                    cases.push_back({{.fault = fault,
                                      .onset = onset,
                                      .noise = 0.02,
                                      .uncertainty = uncertainty},
                                     3,
                                     isolation});
    return cases;
}

std::vector<RoomResult> watchRooms(std::vector<RoomCase> const& cases, std::string const& rules,
                                   unsigned jobs) {
    tavro::Plant const plant = tavro::Plant::builtin("therm");
    std::vector<RoomResult> results(cases.size());
    inParallel(cases.size(), jobs, [&](std::size_t i) {
        RoomCase const& asked = cases[i];
        tavro::Options const options = underRules(rules, {.isolation = asked.isolation,
                                                          .threshold = asked.threshold,
                                                          .noise = {{"", asked.day.noise}}});
        results[i] = {asked, watchRoom(plant, asked.day, options)};
    });
    return results;
}

}  // namespace quality
