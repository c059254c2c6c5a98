// Construction and reset of the scheduler.
#include <cassert>

#include "reasoning/Scheduler.h"

#include "support/run_stopped.h"
#include "trajectory/model_tools.h"

Scheduler::Scheduler(Plant const& plant, Host& host, Rules const& rules)
    : Diagnoser(plant, host, rules) {
    if (initSchD() != 1)
        throw RunStopped(RunStopped::initialisation, "the scheduler could not be made ready");
}

Scheduler::~Scheduler() = default;

int Scheduler::initSchD() {
    time = 0;
    scenario.clear();
    return 1;
}

void Scheduler::raz() {
    tracked_traj.clear();
    contEvents.clear();
    contCommands.clear();
    bound = 0.0;
    // What a search or a propagation that ran out of memory has left.
    redux_diag.clear();
    keepLocks = false;
    initSchD();
}

void Scheduler::graphTraj(TrajectoryMap const& trajectories) {
    int i = 0;
    for (auto const& entry : trajectories)
        toDot(host, entry.second.get(), "traj" + std::to_string(i++));
}
