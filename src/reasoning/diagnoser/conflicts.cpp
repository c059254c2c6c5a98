// Conflicts between the transitions of a history and the labels of its states.
#include <algorithm>
#include <cassert>

#include "model/labels.h"
#include "reasoning/Diagnoser.h"

namespace {

void showHeading(std::ostream& err, char const* what, int t) {
    err << "[getConflicts()] --> " << what << " at time step " << t << "\n";
}

// A transition whose effect has been labelled false.
void addEffectConflicts(Trajectory const* trajectory, int t, Transition const* transition,
                        ConflictSet& conflicts) {
    State const* state = trajectory->getState(t);
    for (Atom const* atom : transition->post->getAllAtoms()) {
        TrajEl* element = state->getElt(atom->getId());
        if (element == nullptr || !element->isLabelled(labelFalse))
            continue;
        int position = t;  // when nothing stands before
        trajectory->getElt(atom->getId(), t - 1, 0, position);
        assert(position <= t);
        conflicts[atom->getId()] = disConflict(element, position);
    }
}

// A transition whose guard no longer holds one step before.
void addGuardConflicts(Trajectory const* trajectory, int t, Transition const* transition,
                       ConflictSet& conflicts) {
    if (!transition->pre)
        return;  // nothing to hold
    for (auto const& [key, atom] : transition->pre->getAllSignedAtoms()) {
        int position = 0;
        TrajEl* element = trajectory->getElt(atom->getId(), t - 1, 0, position);
        assert(element == nullptr || position < t);
        if (element != nullptr && element->isLabelled(key ? labelFalse : labelTrue))
            conflicts[atom->getId()] = disConflict(element, position, key);
    }
}

}  // namespace

ConflictSet Diagnoser::getConflicts(Trajectory* trajectory, int t, bool post) {
    assert(trajectory != nullptr && t >= 0);
    showHeading(err, post ? "effects" : "guards", t);
    ConflictSet conflicts;
    std::vector<Transition const*> seen;
    State const* state = trajectory->getState(t);
    if (state == nullptr)
        return conflicts;
    for (auto const& entry : state->elts) {
        Transition const* transition = entry.second != nullptr ? entry.second->prevTrans : nullptr;
        if (transition == nullptr || !transition->post)
            continue;
        if (!post) {
            addGuardConflicts(trajectory, t, transition, conflicts);
            continue;
        }
        if (std::find(seen.begin(), seen.end(), transition) != seen.end())
            continue;
        seen.push_back(transition);
        addEffectConflicts(trajectory, t, transition, conflicts);
    }
    viewHashMapConflicts(conflicts);
    return conflicts;
}

void Diagnoser::viewHashMapConflicts(ConflictSet const& conflicts) {
    err << "******* Showing conflicts *******\n";
    for (auto const& entry : conflicts)
        err << entry.first << " (" << entry.second.position << ")\n";
}
