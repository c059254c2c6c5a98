// Locks of elements, and the labels of an observed atom.
#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/Diagnoser.h"

namespace {

// Gives a free element and its siblings their locks; one that is held already keeps its own.
void lockFree(TrajEl* element, State* state, LockStatus own, LockStatus siblings) {
    state->locked = true;
    if (element->lock != LOCK_FREE)
        return;
    for (Atom const* atom : element->atom->getSiblings())
        if (TrajEl* sibling = state->getElt(atom->getId());
            sibling != nullptr && atom != element->atom)
            sibling->lock = siblings;
    element->lock = own;
}

}  // namespace

void Diagnoser::setObservation(Atom const* atom, State* state) {
    if (TrajEl* element = state->getElt(atom->getId()))
        element->setLabel(labelTrue);
    for (Atom const* sibling : atom->getSiblings())
        if (TrajEl* element = state->getElt(sibling->getId()))
            element->setLabel(labelFalse);
}

void Diagnoser::lockTrajEls(TrajEl* element, State* state) {
    lockFree(element, state, LOCK_TRUE, LOCK_FALSE);
}

void Diagnoser::lockTrajElsPerm(TrajEl* element, State* state) {
    lockFree(element, state, LOCK_TRUE_PERM, LOCK_FALSE_PERM);
}

void Diagnoser::lockTrajElsNegPerm(TrajEl* element, State* state) {
    element->lock = LOCK_FALSE_PERM;
    state->locked = true;
}

void Diagnoser::lockTrajElsPerm(TrajEl* element, State* state, bool negative) {
    if (negative)
        lockTrajElsNegPerm(element, state);
    else
        lockTrajElsPerm(element, state);
}

void Diagnoser::unlockState(State* state) {
    for (auto const& entry : state->elts) {
        TrajEl* element = entry.second;
        if (element != nullptr && (element->lock == LOCK_TRUE || element->lock == LOCK_FALSE))
            element->lock = LOCK_FREE;
    }
    state->locked = false;
}

void Diagnoser::unlockTrajectory(Trajectory* trajectory) {
    for (auto const& entry : trajectory->states) {
        entry.second->failCount = 0.0;
        if (entry.second->locked)
            unlockState(entry.second);
    }
    trajectory->rank = 0.0;
}
