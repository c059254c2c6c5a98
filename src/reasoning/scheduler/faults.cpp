// A failure that is taken to have happened at a certain time.
#include "reasoning/Scheduler.h"

bool Scheduler::takeFailure(Trajectory* traj, s_runtime* rt, Transition* failure,
                            SignedAtoms const& events, double when) {
    simTime = when;
    runtime = rt;
    if (!events.empty()) {
        contEvents = events;
        syncPreviousState(traj);
        addContEvents(traj);
        // What they would have triggered is what the failure stands in place of.
        contCommands.clear();
    }
    int const t = traj->getCurrentTime();
    traj->addState(t + 1, std::make_unique<State>(book));
    std::unique_ptr<State> next = traj->takeState(t + 1);
    PendingTransitions pending;
    triggerTransition(failure, traj->getState(t), next, traj, pending, t);
    if (next->elts.empty()) {
        traj->putState(t + 1, std::move(next));
        traj->removeLastState();
        return false;
    }
    noteUnknown(next.get());
    traj->addState(t + 1, std::move(next));
    traj->setTimeCorr(when);
    weighSteps(traj, t);
    if (!traj->transByTime)
        traj->transByTime.emplace();
    traj->transByTime->insert({t + 1, failure});
    return true;
}
