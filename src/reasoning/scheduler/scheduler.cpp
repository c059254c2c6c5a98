// Construction and reset of the scheduler.
#include "reasoning/Scheduler.h"

#include "support/process.h"
#include "trajectory/model_tools.h"

bool discretemdl = false;
Scheduler* sMM = nullptr;
double Scheduler::simTime = 0.0;

Scheduler::Scheduler(std::string const& name) : scenarioFile(nullptr, &std::fclose) {
    model_name = name;
    if (initSchD() != 1)
        leaveProcess(1);
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
        toDot(entry.second.get(), "traj" + std::to_string(i++));
}
