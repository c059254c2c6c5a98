// The stories of the feed line that are followed.
#pragma once

#include <string>
#include <vector>

#include "quality/line_watch.h"

namespace quality {

struct LineResult {
    LineSetting asked;
    LineVerdict verdict;
};

// Each count of failures, length, and density of observations, `seeds` of each.
std::vector<LineSetting> feedLines(int seeds);

// In the order of the settings, whatever the number of jobs.
std::vector<LineResult> watchLines(std::vector<LineSetting> const& settings,
                                   std::string const& rules, unsigned jobs);

}  // namespace quality
