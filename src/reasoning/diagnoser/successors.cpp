// From conflicts to the transitions that could explain them, and on to histories without conflicts.
//
// One call expands the conflicts of one variable; the successors deal with the rest, recursively.
#include <algorithm>
#include <cassert>

#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/Diagnoser.h"

// What one call of immediateSuccessors works on.
struct Diagnoser::Selection {
    Trajectory* trajectory;
    int t;
    double rank;
    bool post;
    // The transitions chosen, the likeliest first.
    std::multimap<double, likelyTransition, std::greater<double>> candidates;
    std::vector<StateVar const*> seen;
    StateVar const* commandVar = nullptr;  // once a command is in conflict: the mode that it moves
    StateVar const* lastVar = nullptr;     // of the conflict handled last

    State* now() const { return trajectory->getState(t); }
    bool isChosen(Transition const* transition) const {
        return std::any_of(candidates.begin(), candidates.end(), [transition](auto const& entry) {
            return entry.second.transition == transition;
        });
    }
};

namespace {

// Nulls may stand under ids that a walk of the cover entered, so membership is by value.
bool contains(TrajEl::Transitions const& transitions, Transition const* transition) {
    return std::any_of(transitions.begin(), transitions.end(),
                       [transition](auto const& entry) { return entry.second == transition; });
}

// The element in conflict forgets what led on from it, and an effect that is free what led to it.
void forgetTransitions(TrajEl* element, bool post) {
    element->nextTrans.clear();
    if (post && element->prevTrans != nullptr && element->prevTrans->post &&
        element->lock == LOCK_FREE)
        element->prevTrans = nullptr;
}

bool concernsNone(TrajEl const* element, TrajEl const* through) {
    return element->atom->value == valueNone || through->atom->value == valueNone;
}

}  // namespace

void Diagnoser::tellTransition(Transition const* transition) {
    err << transition->id << " " << transition->type;
    if (transition->preMode != nullptr && transition->postMode != nullptr)
        err << " " << transition->preMode->getId() << " -> " << transition->postMode->getId();
    err << "\n";
}

void Diagnoser::addResult(std::unique_ptr<Trajectory> trajectory, TrajectoryMap& results,
                          double& sum) {
    assert(trajectory != nullptr && trajectory->getLastState() != nullptr);
    trajectory->updateStatesProb();
    double const proba = trajectory->getLastState()->proba;
    sum += proba;
    results.emplace(proba, std::move(trajectory));
}

// A literal of the guard is locked against the transition, or is left by it already.
bool Diagnoser::isGuardRefused(Selection const& selection, disConflict const& conflict,
                               Transition const* transition) {
    Trajectory* trajectory = selection.trajectory;
    assert(transition->pre != nullptr);
    StateSite const site{trajectory->getState(conflict.position), trajectory,
                         conflict.position + 1};
    for (auto const& [key, atom] : transition->pre->getAllSignedAtoms()) {
        TrajEl const* element = getElt(atom->getId(), site, true);
        if (element == nullptr)
            continue;
        if (key ? element->isHeldFalse() : element->isHeldTrue()) {
            err << atom->getId() << " is locked !!\n";
            return true;
        }
        if (contains(element->nextTrans, transition)) {
            err << "already supported by : " << atom->getId() << "\n";
            return true;
        }
    }
    return false;
}

// An atom of the effect is held at false. Required: the sign of the literal is not looked at.
bool Diagnoser::isEffectRefused(Selection const& selection, Transition const* transition) {
    assert(transition->post != nullptr && selection.now() != nullptr);
    StateSite const site{selection.now(), selection.trajectory, selection.t + 1};
    for (Atom const* atom : transition->post->getAllAtoms()) {
        TrajEl const* effect = getElt(atom->getId(), site, true);
        if (effect == nullptr || !effect->isHeldFalse())
            continue;
        err << atom->getId() << " is post-locked !!\n";
        return true;
    }
    return false;
}

// The tests that need no guard and no effect.
bool Diagnoser::isPointless(Selection const& selection, disConflict const& conflict,
                            TrajEl const* through, Transition const* transition) {
    TrajEl const* element = conflict.element;
    if (element->getVarType() == typeCommand && !concernsNone(element, through))
        return true;
    if (selection.commandVar != nullptr && transition->modeVar != selection.commandVar)
        return true;
    if (selection.post && transition == through->prevTrans) {
        err << "trans is the actual one !\n";
        return true;
    }
    if (!selection.post &&
        (contains(through->nextTrans, transition) || contains(through->nextTransNeg, transition))) {
        err << "curr_trans already in nextTrans !\n";
        return true;
    }
    return selection.isChosen(transition);
}

// Whether a transition is not tried. The first reason that applies counts, and tells itself. One
// without a mode in its guard moves no component: there is no place where it could be taken.
bool Diagnoser::isRefused(Selection const& selection, disConflict const& conflict,
                          TrajEl const* through, Transition const* transition) {
    if (transition->modeVar == nullptr) {
        err << "transition " << transition->id << " has no mode in its guard\n";
        return true;
    }
    return isPointless(selection, conflict, through, transition) ||
           isGuardRefused(selection, conflict, transition) || !transition->post ||
           isEffectRefused(selection, transition);
}

// Returns whether the transition was not refused. The cover counts it also when it is out of rank.
bool Diagnoser::tryTransition(Selection& selection, disConflict const& conflict,
                              TrajEl const* through, Transition* transition) {
    if (isRefused(selection, conflict, through, transition)) {
        err << "[immediateSuccessors] --> transition impossibility (" << selection.t << ") :\n";
        tellTransition(transition);
        return false;
    }
    err << "[immediateSuccessors] --> transition chosen : \n";
    tellTransition(transition);
    Trajectory* trajectory = selection.trajectory;
    if (selection.post)
        trajectory->updateCover(selection.now(), transition);
    else
        trajectory->updateCover(trajectory->getState(conflict.position), selection.now(),
                                conflict.position, selection.t, transition);
    double const cost = transition->type == transFail ? 1.0 : 0.0;
    if (selection.rank >= trajectory->rank + cost &&
        !isDeadEnd(transition, trajectory, selection.t)) {
        double const posterior = selection.now()->getTransitionPostProb(transition);
        selection.candidates.insert(
            {posterior, likelyTransition{conflict.element->atom, through->atom, posterior,
                                         transition, conflict.position}});
    } else {
        err << "out of rank !\ncurrent rank : " << trajectory->rank
            << " -- rank : " << selection.rank << "\n";
    }
    if (conflict.element->getVarType() == typeCommand && selection.commandVar == nullptr)
        selection.commandVar = transition->modeVar;
    return true;
}

// Returns whether a transition was tried for the conflict.
bool Diagnoser::tryConflict(Selection& selection, disConflict const& conflict) {
    TrajEl* element = conflict.element;
    State const* where =
        selection.post ? selection.now() : selection.trajectory->getState(conflict.position);
    assert(where != nullptr && conflict.position <= selection.t);
    bool tried = false;
    for (Atom const* atom : element->getStateVar()->getAtomLinks()) {
        TrajEl const* through = where->getElt(atom->getId());
        if (through == nullptr || through == element)
            continue;
        // A copy: pulling components forward must not disturb the walk.
        std::vector<Transition*> const transitions =
            selection.post ? atom->getRefTransPost() : atom->getRefTransPre();
        for (Transition* transition : transitions)
            if (tryTransition(selection, conflict, through, transition))
                tried = true;
    }
    return tried;
}

void Diagnoser::selectTransitions(Selection& selection, ConflictSet const& conflicts) {
    for (auto const& entry : conflicts) {
        disConflict const& conflict = entry.second;
        forgetTransitions(conflict.element, selection.post);
        StateVar const* variable = conflict.element->getStateVar();
        if (std::find(selection.seen.begin(), selection.seen.end(), variable) !=
            selection.seen.end())
            continue;
        selection.seen.push_back(variable);
        selection.lastVar = variable;
        if (conflict.repairable && tryConflict(selection, conflict))
            return;
    }
}

void Diagnoser::recurse(std::unique_ptr<Trajectory> successor, Selection const& selection,
                        TrajectoryMap& finals) {
    int const t = selection.t;
    assert(selection.lastVar != nullptr);
    int next = 0;
    if (successor->getCurrentTime() != t) {
        next = successor->getNext(selection.lastVar, t);
        if (next == 0) {
            next = successor->getCurrentTime();
            successor->addComp(selection.lastVar->getComp(), successor->getLastState(), next, true,
                               false);
        }
    }
    struct Check {
        int step;
        bool post;
    };
    for (Check const& check : {Check{t, true}, Check{t, false}, Check{next, false}}) {
        if (check.step == 0)
            continue;
        ConflictSet const conflicts = getConflicts(successor.get(), check.step, check.post);
        if (conflicts.empty())
            continue;
        immediateSuccessors(conflicts, std::move(successor), check.step, selection.rank, finals,
                            check.post);
        return;
    }
    err << "Traj added to immSuccs final results...\n";
    successor->updateStatesProb();
    double const proba = successor->getLastState()->proba;
    finals.emplace(proba, std::move(successor));
}

void Diagnoser::immediateSuccessors(ConflictSet const& conflicts,
                                    std::unique_ptr<Trajectory> trajectory, int t, double rank,
                                    TrajectoryMap& finals, bool post) {
    assert(!conflicts.empty() && trajectory->getState(t) != nullptr);
    Selection selection{trajectory.get(), t, rank, post, {}, {}, nullptr, nullptr};
    selectTransitions(selection, conflicts);
    transitions_checked += static_cast<unsigned>(selection.candidates.size());
    TrajectoryMap successors;
    for (auto const& candidate : selection.candidates)
        if (mayExpand())
            constructSuccessors(candidate.second, trajectory.get(), t, successors, rank);
    for (auto& entry : successors)
        recurse(std::move(entry.second), selection, finals);
}
