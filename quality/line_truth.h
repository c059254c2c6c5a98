// True stories of the feed line: the start-up, then commands drawn by seed, with failures where
// they are asked for, and what the sensor shows.
#pragma once

#include <cstdint>
#include <vector>

#include "quality/line_model.h"

namespace quality {

struct LineSetting {
    int failures = 0;  // up to two
    int commands = 6;  // the three of the start-up among them
    int observeEvery =
        1;  // an observation behind each, or behind each second, ... command, and last
    std::uint64_t seed = 1;
};

struct LineStory {
    std::vector<LineEvent> events;
    std::vector<LineModes> modes;  // after each event
    std::vector<LineFailure> failures;
};

// A story without failures and one with them have the same commands for one seed.
LineStory lineStory(LineSetting const& setting);

}  // namespace quality
