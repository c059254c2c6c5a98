// A candidate: a discrete history and a continuous state that advance together.
#pragma once

#include <memory>

#include "continuous/records.h"
#include "trajectory/Trajectoryrt.h"

struct hybTrajectory {
    hybTrajectory() = default;
    // Copies of the states before step *upTo*, and of the runtime.
    hybTrajectory(hybTrajectory const* source, int upTo);
    // A full copy of the history; takes the runtime.
    hybTrajectory(Trajectory const* history, std::unique_ptr<s_runtime> runtime);
    // The initial state of the atoms, and a copy of the runtime, if there is one: the model's own
    // runtime is never stepped and stays a template for every run.
    hybTrajectory(TrajectoryBook& book, string_map<Atom*> const* atoms, s_runtime const* runtime);

    std::unique_ptr<Trajectory> traj;
    std::unique_ptr<s_runtime> rt;  // null in a discrete model
};
