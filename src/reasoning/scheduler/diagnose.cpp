// From one misbehaving candidate and what was seen to the histories that explain it.
#include <cassert>
#include <ctime>

#include "reasoning/Scheduler.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;
// How many failures more than the misbehaving history an explanation may hold.
constexpr double rankMargin = 3.0;

double secondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / ticksPerSecond;
}

}  // namespace

TrajectoryMap Scheduler::Diagnose(Trajectory* traj, Observations const& observations) {
    std::clock_t const start = std::clock();
    assert(traj->brokenInvariant() == nullptr);
    bound = traj->rank;
    int const t = traj->getCurrentTime();
    auto copy = std::make_unique<Trajectory>(traj, t + 1);
    err << "[Scheduler] --> updating tracked trajectories with observations (" << t << ")\n";
    TrajectoryMap results = observationResults(observations, traj, t, 0.0, true);
    bool const explained =
        results.size() == 1 && getConflicts(results.begin()->second.get(), t, true).empty();
    err << "[Scheduler] --> elapsed time (observations insertion) : " << secondsSince(start)
        << "\n";
    if (!explained) {
        err << "---------> Diagnosing...\n";
        double const highest = copy->rank + rankMargin;
        results = coverTrack3(std::move(copy), bound + 1.0, highest, observations, bound);
        err << "[Scheduler] --> elapsed time : " << secondsSince(start) << "\n";
    }
    if (rules.likelihood)
        normalize(results);
    return results;
}
