// Times, probabilities and covers of a trajectory.
#include <algorithm>
#include <cassert>
#include <set>

#include "model/Transitionrt.h"
#include "trajectory/Trajectoryrt.h"

void Trajectory::setTimeCorr(double time) {
    // In the order of the steps: only the current one is appended.
    assert(timeCorr.empty() || timeCorr.back().first <= currentTime);
    timeCorr.emplace_back(currentTime, time);
}

double Trajectory::getTimeCorr(int step) const {
    for (auto const& [discrete, continuous] : timeCorr)
        if (discrete == step)
            return continuous;
    return noTime;
}

int Trajectory::getDiscTimeCorr(double time) const {
    for (auto const& [discrete, continuous] : timeCorr)
        if (continuous == time)
            return discrete;
    return noStep;
}

Trajectory::DateRange Trajectory::datesOf(int step) const {
    auto const found = stepDates.find(step);
    if (found != stepDates.end())
        return found->second;
    double const time = getTimeCorr(step);
    return {time, time};
}

void Trajectory::coverDates(Trajectory const& other) {
    int const ahead = currentTime - other.currentTime;
    for (int step = std::max(firstTime, other.firstTime + ahead); step <= currentTime; ++step) {
        DateRange const theirs = other.datesOf(step - ahead);
        DateRange const own = datesOf(step);
        if (theirs.from == noTime || own.from == noTime)
            continue;
        DateRange const both{std::min(own.from, theirs.from), std::max(own.to, theirs.to)};
        if (both.from < both.to)
            stepDates[step] = both;
    }
    for (auto const& [transition, range] : other.dated) {
        auto const own = dated.try_emplace(transition, range).first;
        own->second.from = std::min(own->second.from, range.from);
        own->second.to = std::max(own->second.to, range.to);
    }
}

std::vector<Transition*> Trajectory::getStateTransitions(int t) const {
    std::vector<Transition*> transitions;
    assert(getState(t) != nullptr);
    for (auto const& entry : getState(t)->elts)
        if (entry.second != nullptr && entry.second->prevTrans != nullptr)
            transitions.push_back(entry.second->prevTrans);
    return transitions;
}

void Trajectory::computePrevTransSetProb(int t) {
    assert(getState(t) != nullptr);
    getState(t)->computePrevTransProb();
}

void Trajectory::computeStateProb(int t) {
    if (t == 0)
        return;
    State* state = getState(t);
    assert(state != nullptr);
    if (book.rules.likelihood)
        state->prevTransProb = movesProba(t);
    else
        state->computePrevTransProb();
    if (State const* before = getState(t - 1))
        state->proba = state->obsProb * state->prevTransProb * before->proba;
}

void Trajectory::updateStatesProb() {
    if (book.rules.likelihood)
        updateStatesProbByStep();
    else
        updateStatesProbClassic();
}

// Required: the walk ends below the number of states, whatever the first step.
void Trajectory::updateStatesProbClassic() {
    int t = firstTime;
    while (t <= currentTime && !getState(t)->locked)
        ++t;
    for (; t < static_cast<int>(states.size()); ++t)
        if (getState(t) != nullptr)
            computeStateProb(t);
}

void Trajectory::updateCover(State* state, Transition const* transition) {
    assert(state != nullptr && transition != nullptr);
    double const guard = state->computePrevTransGuard();
    state->cover += state->getTransitionPostProb(transition) * guard;
}

namespace {

// Required: every id below the largest gets an entry, a null one where there is no transition, so
// that the maps walked hold nulls afterwards.
void fillWithNulls(TrajEl::Transitions& transitions) {
    for (std::size_t k = 0; k < transitions.size(); ++k)
        transitions[static_cast<int>(k)];
}

}  // namespace

void Trajectory::updateCover(State* from, State* to, int t, int u, Transition const* transition) {
    assert(from != nullptr && to != nullptr && t < u);
    double guard = 1.0;
    std::set<int> seen;
    for (auto const& entry : from->elts) {
        if (entry.second == nullptr)
            continue;
        fillWithNulls(entry.second->nextTrans);
        for (auto const& next : entry.second->nextTrans) {
            Transition const* leaving = next.second;
            if (leaving != nullptr && seen.count(leaving->id) == 0 &&
                getNext(leaving->modeVar, t) == u) {
                seen.insert(leaving->id);
                guard *= to->getTransitionPostProb(leaving);
            }
        }
    }
    to->cover += to->getTransitionPostProb(transition) * guard;
}
