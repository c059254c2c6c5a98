// The older insertion of observations: every atom counts as seen, and nothing is normalised.
// Nothing calls it; results of both forms can be compared.

#include <cassert>

#include "model/labels.h"
#include "reasoning/Diagnoser.h"

namespace {

// The history up to *t* with the outcome there, told on the error stream.
std::unique_ptr<Trajectory> withOutcome(DataManager const& run, Trajectory const* trajectory, int t,
                                        std::unique_ptr<State> outcome) {
    auto history = std::make_unique<Trajectory>(trajectory, t);
    State const* state = outcome.get();
    history->addState(t, std::move(outcome));
    history->computeStateProb(t);
    run.err << "posterior proba on obs : " << state->obsProb << "\nproba : " << state->proba
            << "\ncover : " << state->cover << "\n";
    state->showState(run.out);
    return history;
}

}  // namespace

TrajectoryMap Diagnoser::observationResults(std::vector<Atom*> const& observations,
                                            std::unique_ptr<Trajectory> trajectory, int t,
                                            double rank, bool observing) {
    err << "inserting observations at time_step (deprecated version): " << t << "\n";
    TrajectoryMap outcomes;
    State const* last = trajectory->getState(t);
    if (last == nullptr)
        return outcomes;  // the step has left the window
    keepLocks = true;
    std::unique_ptr<State> state = observedCopy(last);
    SignedElements props;
    for (Atom const* atom : observations) {
        TrajEl* element = getElt(atom->getId(), {state.get(), trajectory.get(), t});
        if (element == nullptr)
            continue;
        lockTrajElsPerm(element, state.get());
        props.insert({true, element});
    }
    ItmsResults results =
        addPropositions(props, state, {observing, rank}, trajectory.get(), t, true);
    err << "itms_tmp size: " << results.size() << "\n";
    for (auto const& result : results) {
        noteChanged(*result);
        auto history = withOutcome(*this, trajectory.get(), t, std::move(result->state));
        double const key = history->getLastState()->proba;
        outcomes.emplace(key, std::move(history));
    }
    err << "results from observations computed : " << outcomes.size() << "\n";
    keepLocks = false;
    return outcomes;
}
