// The probability of a history under the rule `likelihood`.
//
// Classic: the probability of a state is that of the state before, times those of the transitions
// recorded in its elements, times the likelihood of its observations. Three things go wrong.
//
//   - A component that has no elements in a state counts as certain there, and one that has counts
//     with its idle transition. Which of them a state holds depends on what was asked of it and not
//     on what happened, so that of two histories the one that was looked at closer loses.
//   - A transition with an effect on several atoms stands in each of their elements, and counts as
//     often.
//   - The states are weighed anew up to the number of states and not up to the newest step. Once
//     the window has moved the newest states keep what they had before the change, and a history in
//     which a failure was placed late weighs as much as one without it.
//
// Under the rule every mode of the plant takes one transition into every step: the one recorded
// there or, where none is, the idle one of the mode that holds. Each transition counts once, and
// the states from the start of the window to the newest are weighed, the first as it stands. So the
// probability is that of the plant's own chain of modes: it depends on nothing but the moves of the
// history, and a component that is brought into a state later, idle, changes nothing.
#include <map>

#include "model/StateVar.h"
#include "model/Transitionrt.h"
#include "model/labels.h"
#include "trajectory/Trajectoryrt.h"

namespace {

// By id, so that a transition counts once and equal histories multiply in the same order.
using Moves = std::map<int, double>;
using Variables = std::set<StateVar const*>;

// The transitions recorded in a state, and the modes that they lead to.
void addRecorded(State const& state, Moves& moves, Variables& led) {
    for (auto const& entry : state.elts) {
        Transition const* taken = entry.second != nullptr ? entry.second->prevTrans : nullptr;
        if (taken == nullptr)
            continue;
        moves[taken->id] = taken->proba;
        led.insert(taken->modeVar);
    }
}

// The modes of this state that nothing newer has settled go on as they are.
void addIdle(State const& state, Moves& moves, Variables& settled) {
    Variables held;
    for (auto const& entry : state.elts) {
        TrajEl const* element = entry.second;
        if (element == nullptr || element->getVarType() != typeMode ||
            settled.count(element->getStateVar()) != 0)
            continue;
        held.insert(element->getStateVar());
        if (Transition const* idle = element->atom->idleTrans; element->evalTrajEl() && idle)
            moves[idle->id] = idle->proba;
    }
    settled.insert(held.begin(), held.end());
}

}  // namespace

// The product over the moves of all modes into step t.
double Trajectory::movesProba(int t) const {
    Moves moves;
    Variables settled;
    addRecorded(*getState(t), moves, settled);
    for (int from = t; from >= firstTime; --from)
        if (State const* state = getState(from))
            addIdle(*state, moves, settled);
    double product = 1.0;
    for (auto const& entry : moves)
        product *= entry.second;
    return product;
}

void Trajectory::updateStatesProbByStep() {
    for (int t = firstTime + 1; t <= currentTime; ++t)
        if (getState(t) != nullptr)
            computeStateProb(t);
}

void Trajectory::scaleProbas(double factor) {
    for (auto const& entry : states)
        if (entry.second != nullptr)
            entry.second->proba *= factor;
}
