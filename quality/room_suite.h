// The days of the room that are followed, each with the options of its run.
#pragma once

#include <vector>

#include "quality/room_watch.h"

namespace quality {

struct RoomCase {
    RoomSetting day;
    int threshold = 3;
    int isolation = 1;
};

struct RoomResult {
    RoomCase asked;
    RoomVerdict verdict;
};

// Healthy days: each noise, threshold and drawn uncertainty, `seeds` of each.
std::vector<RoomCase> healthyRooms(int seeds);
// Days with a fault: each fault, onset, noise, threshold and drawn uncertainty, `seeds` of each, at
// level 1 of isolation.
std::vector<RoomCase> faultyRooms(int seeds);
// Some of the days of the first seed, with the most noise and threshold 3, at each level.
std::vector<RoomCase> isolatedRooms();

// In the order of the cases, whatever the number of jobs.
std::vector<RoomResult> watchRooms(std::vector<RoomCase> const& cases, std::string const& rules,
                                   unsigned jobs);

}  // namespace quality
