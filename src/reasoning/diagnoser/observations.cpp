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

// The history up to *t* with the result's state there. Under the rule `histories` the failures that
// led into this step count once; they stood in the state that is replaced.
std::unique_ptr<Trajectory> withState(Trajectory const* trajectory, int t,
                                      std::unique_ptr<State> outcome) {
    assert(outcome != nullptr && outcome->observed);
    auto history = std::make_unique<Trajectory>(trajectory, t);
    if (history->book.rules.histories)
        history->rank -= history->getStateRank(trajectory->getState(t));
    history->addState(t, std::move(outcome));
    history->computeStateProb(t);
    return history;
}

// The probability is computed again once the likelihood of the observations is normalised. The rule
// `likelihood` leaves it as it is: the outcomes of a history are weighed beside those of others.
std::unique_ptr<Trajectory> withOutcome(Trajectory const* trajectory, int t,
                                        std::unique_ptr<State> outcome, double sum) {
    State* state = outcome.get();
    auto history = withState(trajectory, t, std::move(outcome));
    if (history->book.rules.likelihood)
        return history;
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
        noteUnknown(result->state.get());
        auto history = withOutcome(trajectory, t, std::move(result->state), sum);
        renewUnknown(*trajectory, *history);
        double const key = rules.likelihood ? history->weight() : history->getLastState()->obsProb;
        outcomes.emplace(key, std::move(history));
    }
    err << "results from observations computed : " << outcomes.size() << "\n";
    keepLocks = false;
    return outcomes;
}
