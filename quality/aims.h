// What the sharp rules are meant to reach, measured day by day: no false alarm, every fault noticed
// at whatever step it strikes and no later than by the classic rules, the true mode first, the
// truth within narrow bounds, and never more candidates than the limit.
#pragma once

#include <string>
#include <vector>

#include "quality/markdown.h"
#include "quality/room_suite.h"

namespace quality {

// A day with a fault, followed by the rules in question and by the classic ones.
struct Beside {
    RoomCase asked;
    RoomVerdict verdict;
    RoomVerdict classic;

    // The rules in question are behind the classic ones, or blind where these are not.
    bool isLater() const {
        return classic.noticed() && (!verdict.noticed() || *verdict.alarm > *classic.alarm);
    }
};

// Healthy days of 300 steps with threshold 3: each noise and drawn uncertainty, `seeds` of each.
std::vector<RoomCase> aimedHealthyRooms(int seeds);
// Days with a fault that is meant to be noticed, each at a step of its own between 1 and 220, with
// threshold 3: each fault, noise and drawn uncertainty, `seeds` of each. Faults of the thermostat
// are diagnosed, the others only noticed: no mode of the model is theirs.
std::vector<RoomCase> aimedFaultyRooms(int seeds);
// Short days of 45 steps, each with a fault, an onset, a noise, a threshold and a level of its own,
// and more noise than the run is told: such as drive the candidates of a run apart.
std::vector<RoomCase> wildRooms(int count);

std::vector<Beside> watchBeside(std::vector<RoomCase> const& cases, std::string const& rules,
                                unsigned jobs);
// Of wild days: the run is told of no noise.
std::vector<RoomResult> watchWild(std::vector<RoomCase> const& cases, std::string const& rules,
                                  unsigned jobs);

Table aimedHealthyTable(std::vector<RoomResult> const& results);
Table aimedFaultyTable(std::vector<Beside> const& results);
Table wildTable(std::vector<RoomResult> const& results);

}  // namespace quality
