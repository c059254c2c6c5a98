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

// Healthy days: each noise and threshold, each of the two drawn uncertainties, `seeds` of each.
// Days with a fault: each fault, onset, noise, threshold and level of isolation, with the two
// uncertainties in turn. The same day for each threshold and level.
std::vector<RoomCase> healthyRooms(int seeds);
std::vector<RoomCase> faultyRooms(int seeds);

// In the order of the cases, whatever the number of jobs.
std::vector<RoomResult> watchRooms(std::vector<RoomCase> const& cases, std::string const& rules,
                                   unsigned jobs);

}  // namespace quality
