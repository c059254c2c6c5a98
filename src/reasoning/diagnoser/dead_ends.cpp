// Which expansions a search does not repeat.
//
// Classic (checkForDeadEnd): a failure without a command is expanded once in a search, in whichever
// history and at whichever step it is met first. What goes wrong: the failure is then spent for all
// other histories. Two failures that only together explain what is seen are not found at all, since
// the round for one failure has used up both; a failure at another step, or beside another one, is
// not found either; and the only explanation left is often that a mode is lost.
//
// Under the rule `histories` the dead end belongs to the history and the step: a transition is not
// expanded where this very history has it already. Two histories may then both use a failure, and
// one history may use it at any step. It is sound, since a history with the transition at the step
// is the one that the expansion would give, and the search still ends: a transition that is taken
// holds its guard and its effect for the rest of the search, so that each adds one of finitely many
// moves to the history. How much is searched altogether is bounded by mostExpansions.
#include <algorithm>

#include "model/labels.h"
#include "reasoning/Diagnoser.h"

namespace {

bool takesAlready(Trajectory const& history, int t, Transition const* transition) {
    State const* state = history.getState(t);
    return state != nullptr &&
           std::any_of(state->elts.begin(), state->elts.end(), [&](auto const& entry) {
               TrajEl const* element = entry.second;
               return element != nullptr && element->prevTrans == transition &&
                      element->lock != LOCK_FREE;
           });
}

}  // namespace

bool Diagnoser::isDeadEnd(Transition const* transition, Trajectory const* trajectory, int t) {
    return rules.histories ? takesAlready(*trajectory, t, transition) : checkForDeadEnd(transition);
}

bool Diagnoser::checkForDeadEnd(Transition const* transition) {
    if (transition->type != transFail || transition->unconditional)
        return false;
    return !redux_diag.insert(transition).second;
}

bool Diagnoser::checkForDeadEndExt(Transition const* transition, Trajectory const* trajectory) {
    for (auto const& entry : trajectory->states)
        for (Transition const* recorded : trajectory->getStateTransitions(entry.first))
            if (redux_diag.count(recorded) != 0)
                return true;
    return transition->type == transFail && !transition->unconditional &&
           redux_diag.count(transition) != 0;
}
