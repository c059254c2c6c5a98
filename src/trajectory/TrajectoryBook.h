// What the trajectories, states and elements of one run share: where they tell what they do, by
// which rules they are weighed, how long their window is, and how many of them there have been.
//
// The run owns the book, and it outlives everything that was made with it.
#pragma once

#include <ostream>

#include "support/rules.h"

struct TrajectoryBook {
    TrajectoryBook(std::ostream& out, std::ostream& err, Rules const& rules = classicRules)
        : out(out), err(err), rules(rules) {}
    TrajectoryBook(TrajectoryBook const&) = delete;
    TrajectoryBook& operator=(TrajectoryBook const&) = delete;

    std::ostream& out;
    std::ostream& err;
    Rules const& rules;
    int twd = 5;  // window size in states
    unsigned traj_created = 0;
    unsigned traj_del = 0;
    unsigned state_created = 0;
    unsigned state_del = 0;
    unsigned trajel_created = 0;
    unsigned trajel_del = 0;
};
