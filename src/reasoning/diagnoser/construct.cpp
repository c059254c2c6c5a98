// A history in which another transition was taken: its guard asserted at one step, its effect at a
// later one.

#include <cassert>

#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/Diagnoser.h"

namespace {

// What a result changed and did not deny is held for the rest of the search.
void lockChanged(ItmsResults const& results) {
    for (auto const& result : results)
        for (auto const& entry : result->already_changed)
            if (!entry.second->isLabelled(labelFalse))
                Diagnoser::lockTrajEls(entry.second, result->state.get());
}

void requireComponent(Trajectory* trajectory, State* state, Transition const* transition, int t,
                      bool idle) {
    assert(transition->modeVar != nullptr && transition->modeVar->getComp() != nullptr);
    Comp* comp = transition->modeVar->getComp();
    if (state->comps.count(comp->getName()) == 0)
        trajectory->addComp(comp, state, t, idle, false);
}

void clearPrevTransOfSiblings(TrajEl const* element, State const* state) {
    for (Atom const* atom : element->getStateVar()->getAtomLinks())
        if (TrajEl* sibling = state->getElt(atom->getId());
            sibling != nullptr && sibling != element)
            sibling->prevTrans = nullptr;
}

void addUnlessLabelled(SignedElements& props, bool value, TrajEl* element) {
    if (!element->isLabelled(value ? labelTrue : labelFalse))
        props.insert({value, element});
}

// A copy of the history with both states in place of its own; the rank counts the new failures.
std::unique_ptr<Trajectory> combine(Trajectory const* trajectory, likelyTransition const& candidate,
                                    int t, State const* guardState, State const* effectState) {
    auto history = std::make_unique<Trajectory>(trajectory, trajectory->getCurrentTime() + 1);
    history->rank -= history->getStateRank(trajectory->getState(candidate.startStep));
    history->rank -= history->getStateRank(trajectory->getState(t));
    history->addCopyState(candidate.startStep, guardState, true);
    history->addCopyState(t, effectState, true);
    if (!history->transByTime)
        history->transByTime.emplace();
    history->transByTime->insert({t, candidate.transition});
    assert(history->brokenInvariant() == nullptr && history->rank >= 0.0);
    return history;
}

}  // namespace

ItmsResults Diagnoser::settleGuard(likelyTransition const& candidate, Trajectory* trajectory,
                                   std::unique_ptr<State> state, double rank) {
    int const step = candidate.startStep;
    Transition* transition = candidate.transition;
    SignedElements props;
    for (auto const& [key, atom] : transition->pre->getAllSignedAtoms()) {
        TrajEl* element = getElt(atom->getId(), {state.get(), trajectory, step});
        if (element == nullptr)
            continue;
        addUnlessLabelled(props, key, element);
        if (key) {
            lockTrajEls(element, state.get());
            element->addToNextTrans(transition);
        } else {
            element->addToNextTransNeg(transition);
        }
    }
    ItmsResults results = addPropositions(props, state, {false, rank}, trajectory, step, false);
    lockChanged(results);
    return results;
}

ItmsResults Diagnoser::settleEffect(likelyTransition const& candidate, Trajectory* trajectory,
                                    int t, std::unique_ptr<State> state, double rank) {
    SignedElements props;
    for (auto const& [key, atom] : candidate.transition->post->getAllSignedAtoms()) {
        TrajEl* element = getElt(atom->getId(), {state.get(), trajectory, t});
        if (element == nullptr)
            continue;
        addUnlessLabelled(props, key, element);
        element->prevTrans = candidate.transition;
        lockTrajEls(element, state.get());
        clearPrevTransOfSiblings(element, state.get());
    }
    ItmsResults results = addPropositions(props, state, {false, rank}, trajectory, t, false);
    lockChanged(results);
    return results;
}

void Diagnoser::constructSuccessors(likelyTransition const& candidate, Trajectory* trajectory,
                                    int t, TrajectoryMap& successors, double rank) {
    int const start = candidate.startStep;
    assert(trajectory->getState(start) != nullptr && trajectory->getState(t) != nullptr &&
           start <= t);
    auto guardState = std::make_unique<State>(trajectory->getState(start), true);
    auto effectState = std::make_unique<State>(trajectory->getState(t), true);
    requireComponent(trajectory, guardState.get(), candidate.transition, start, true);
    requireComponent(trajectory, effectState.get(), candidate.transition, t, false);
    ItmsResults const guards = settleGuard(candidate, trajectory, std::move(guardState), rank);
    if (guards.empty()) {
        err << ">>>>> Transition aborted : \n";
        tellTransition(candidate.transition);
        return;
    }
    ItmsResults const effects =
        settleEffect(candidate, trajectory, t, std::move(effectState), rank);
    for (auto const& result : guards)
        noteUnknown(result->state.get());
    for (auto const& result : effects)
        noteUnknown(result->state.get());
    for (auto const& guard : guards)
        for (auto const& effect : effects) {
            auto history =
                combine(trajectory, candidate, t, guard->state.get(), effect->state.get());
            renewUnknown(*trajectory, *history);
            double const key = history->rank;
            successors.emplace(key, std::move(history));
        }
    err << "construct size : " << successors.size() << "\n";
}
