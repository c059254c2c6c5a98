// The steps of a run under the rule `likelihood`: the essay stands in diagnoser/likelihood.cpp.
#include <algorithm>

#include "reasoning/Scheduler.h"

// Weighs the steps above *from*. In a run without observations nothing else does, and a search
// would begin at states of probability 0.
void Scheduler::weighSteps(Trajectory* traj, int from) const {
    if (rules.likelihood)
        for (int t = std::max(from, traj->firstTime) + 1; t <= traj->getCurrentTime(); ++t)
            traj->computeStateProb(t);
}

void Scheduler::weighAfterCommand() {
    for (auto const& entry : tracked_traj) {
        Trajectory* traj = entry.second.get();
        traj->computeStateProb(traj->getCurrentTime());
        err << "state proba : " << traj->getLastState()->proba << "\n";
    }
    normalize(tracked_traj);
    for (auto const& entry : tracked_traj)
        err << "normalized proba : " << entry.second->proba << "\n";
}

void Scheduler::weighSurvivors(TrajectoryMap survivors) {
    normalize(survivors);
    for (auto const& entry : survivors)
        err << "normalized proba after inserting obs : " << entry.second->proba << "\n";
    tracked_traj = std::move(survivors);
}
