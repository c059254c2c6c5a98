// All histories of the feed line with up to two failures that agree with a scenario, by
// enumeration: at each command every component takes each of its moves. It is exact: the outcome of
// an observation follows from the modes, so a history's share is the product of its moves.
#pragma once

#include <vector>

#include "quality/line_model.h"

namespace quality {

inline constexpr int mostFailures = 2;

struct LineHistory {
    std::vector<LineFailure> failures;  // by time, then in the order of the components
    double weight = 0.0;                // the product of the probabilities of all moves
    LineModes modes;                    // at the end
};

// Of the first `count` events.
std::vector<LineHistory> lineHistories(std::vector<LineEvent> const& events, std::size_t count);

// Those with the fewest failures, the likeliest first.
std::vector<LineHistory> minimalHistories(std::vector<LineHistory> const& histories);

}  // namespace quality
