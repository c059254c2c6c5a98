// Making candidates.
#include "hybrid/hybTrajectory.h"

#include <cassert>

#include "continuous/sorn-runt.h"

namespace {

std::unique_ptr<s_runtime> copyOrNull(s_runtime const* runtime) {
    return runtime != nullptr ? sn_copyRuntime(runtime) : nullptr;
}

}  // namespace

hybTrajectory::hybTrajectory(hybTrajectory const* source, int upTo)
    : traj(std::make_unique<Trajectory>(source->traj.get(), upTo)),
      rt(copyOrNull(source->rt.get())) {}

hybTrajectory::hybTrajectory(Trajectory const* history, std::unique_ptr<s_runtime> runtime)
    : traj(std::make_unique<Trajectory>(history, history->getCurrentTime() + 1)),
      rt(std::move(runtime)) {
    assert(rt != nullptr);
}

hybTrajectory::hybTrajectory(TrajectoryBook& book, string_map<Atom*> const* atoms,
                             s_runtime const* runtime)
    : traj(std::make_unique<Trajectory>(book, atoms)), rt(copyOrNull(runtime)) {}
