// A failure that is taken to have happened at a certain time.
#include "reasoning/Scheduler.h"

namespace {

// The idle moves of what is so at the last step.
std::vector<Transition*> idleMovesOf(Trajectory const& traj, std::vector<StateVar*> const& all) {
    std::vector<Transition*> moves;
    for (StateVar const* variable : all)
        for (Atom const* atom : variable->getAtomLinks()) {
            TrajEl const* element = traj.getElt(traj.getCurrentTime(), atom->getId());
            if (atom->idleTrans != nullptr && element != nullptr && element->evalTrajEl())
                moves.push_back(atom->idleTrans);
        }
    return moves;
}

}  // namespace

bool Scheduler::addQuietStep(Trajectory* traj) {
    int const t = traj->getCurrentTime();
    std::vector<Transition*> const moves = idleMovesOf(*traj, plant.stateVars);
    traj->addState(t + 1, std::make_unique<State>(book));
    std::unique_ptr<State> next = traj->takeState(t + 1);
    PendingTransitions pending;
    for (Transition* move : moves)
        triggerTransition(move, traj->getState(t), next, traj, pending, t);
    bool const stays = !next->elts.empty();
    traj->putState(t + 1, std::move(next));
    if (!stays) {
        traj->removeLastState();
        return false;
    }
    traj->setTimeCorr(simTime);
    return true;
}

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
