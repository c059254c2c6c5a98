// Histories that enter an unknown mode, under the rule `unknown`.
//
// Classic: the mark of a state that was reached through an unknown mode is set where a search turns
// the value "unknown" from true to false (branching.cpp), that is, where such a mode is left, and
// nowhere else. So a history that loses a mode does not say so, and whoever asks whether all
// explanations are unknown is told that none is.
//
// Under the rule a state is marked exactly when a transition recorded in it leads to an unknown
// mode that holds there: in the successors of a search and in nominal steps alike. The idle
// transition of an unknown mode is one of them, so that the state stays marked as long as the mode
// lasts and its component is in the state. A history is marked when one of its states is, or was
// before it left the window. Marks are renewed from the transitions and not added up: a search that
// puts another transition in the place of the one into the unknown mode takes the mark away. The
// rule adds no history and removes none; it only makes them tell what they hold.
#include <algorithm>

#include "reasoning/Diagnoser.h"

void Diagnoser::noteUnknown(State* state) const {
    if (!rules.unknown)
        return;
    state->unknown = std::any_of(state->elts.begin(), state->elts.end(), [](auto const& entry) {
        TrajEl const* element = entry.second;
        return element != nullptr && element->prevTrans != nullptr &&
               element->prevTrans->unknownPost && element->evalTrajEl();
    });
}

void Diagnoser::renewUnknown(Trajectory const& source, Trajectory& history) const {
    if (!rules.unknown)
        return;
    bool const wasBefore = source.isUnknown() && !source.holdsUnknown();
    history.unknown = wasBefore || history.holdsUnknown();
}
