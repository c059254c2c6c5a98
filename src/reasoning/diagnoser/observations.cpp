// Inserting observations into the last state of a history.

#include <cassert>

#include "model/labels.h"
#include "reasoning/Diagnoser.h"

std::unique_ptr<State> Diagnoser::observedCopy(State const* state) {
    auto copy = std::make_unique<State>(state, true);
    copy->observed = true;
    copy->observations.clear();
    return copy;
}

void Diagnoser::noteChanged(ItmsRes const& result) {
    State* state = result.state.get();
    assert(state != nullptr && state->observed);
    for (auto const& entry : result.already_changed)
        if (entry.second->isLabelled(labelFalse))
            state->observations.push_back(entry.second->atom);
        else
            lockTrajEls(entry.second, state);
}

namespace {

// The history up to *t* with the result's state there. The probability is computed again once the
// likelihood of the observations is normalised.
std::unique_ptr<Trajectory> withOutcome(Trajectory const* trajectory, int t,
                                        std::unique_ptr<State> outcome, double sum) {
    assert(outcome != nullptr && sum > 0.0);
    auto history = std::make_unique<Trajectory>(trajectory, t);
    State* state = outcome.get();
    history->addState(t, std::move(outcome));
    history->computeStateProb(t);
    state->obsProb /= sum;
    history->computeStateProb(t);
    return history;
}

}  // namespace

TrajectoryMap Diagnoser::observationResults(Observations const& observations,
                                            Trajectory* trajectory, int t, double rank,
                                            bool observing) {
    err << "inserting observations at time_step : " << t << "\n";
    TrajectoryMap outcomes;
    State const* last = trajectory->getState(t);
    if (last == nullptr)
        return outcomes;  // the step has left the window
    std::unique_ptr<State> state = observedCopy(last);
    SignedElements props;
    for (auto const& [key, atom] : observations) {
        TrajEl* element = getElt(atom->getId(), {state.get(), trajectory, t});
        if (element == nullptr)
            continue;
        lockTrajElsPerm(element, state.get(), !key);
        props.insert({key, element});
    }
    ItmsResults results = addPropositions(props, state, {observing, rank}, trajectory, t, false);
    double sum = 0.0;
    for (auto const& result : results)
        sum += result->state->obsProb;
    for (auto const& result : results) {
        noteChanged(*result);
        auto history = withOutcome(trajectory, t, std::move(result->state), sum);
        double const key = history->getLastState()->obsProb;
        outcomes.emplace(key, std::move(history));
    }
    err << "results from observations computed : " << outcomes.size() << "\n";
    keepLocks = false;
    return outcomes;
}
