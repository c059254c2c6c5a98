// From histories to answers.
#include "hybrid/answer.h"

#include <algorithm>

#include "model/Comprt.h"
#include "model/StateVar.h"
#include "model/Transitionrt.h"
#include "model/labels.h"
#include "support/numbers.h"

namespace {

// A later turn of the search may have put another transition in the place of this one. What has
// left the window is settled.
bool isStillTaken(Trajectory const& history, int step, Transition const* transition) {
    State const* state = history.getState(step);
    if (state == nullptr)
        return true;
    return std::any_of(state->elts.begin(), state->elts.end(), [transition](auto const& entry) {
        return entry.second != nullptr && entry.second->prevTrans == transition;
    });
}

std::string dateOf(Trajectory const& history, Move const& move, double placed) {
    auto const dated = history.dated.find(move.transition->id);
    if (dated != history.dated.end()) {
        // Times are sums of periods: those of one step may differ in their last digits.
        std::string const from = shortText(dated->second.from), to = shortText(dated->second.to);
        if (from != to)
            return "between " + from + " and " + to;
    }
    double const time = dated != history.dated.end() ? dated->second.from : placed;
    if (time == Trajectory::noTime)
        return "before the kept steps";
    return "at " + shortText(time);
}

std::string nameOf(Transition const& transition) {
    std::string text;
    if (Comp const* comp = transition.modeVar != nullptr ? transition.modeVar->getComp() : nullptr)
        text = comp->getName();
    if (transition.preMode != nullptr)
        text += " " + transition.preMode->value;
    text += " ->";
    if (transition.postMode != nullptr)
        text += " " + transition.postMode->value;
    return text;
}

std::string failuresOf(Trajectory const& history) {
    std::string text;
    for (Move const& move : movesOf(history))
        if (move.transition->type == transFail)
            text += (text.empty() ? "" : ", ") +
                    summaryOf(history, move, history.getTimeCorr(move.step));
    return text.empty() ? "nothing failed" : text;
}

}  // namespace

std::string summaryOf(Trajectory const& history, Move const& move, double placed) {
    return nameOf(*move.transition) + " " + dateOf(history, move, placed);
}

std::vector<Move> movesOf(Trajectory const& history) {
    std::vector<Move> moves;
    for (auto const* placed : {&history.settled, &history.transByTime})
        if (*placed)
            for (auto const& [step, transition] : **placed)
                if (!transition->idle && isStillTaken(history, step, transition))
                    moves.push_back({transition, step});
    std::stable_sort(moves.begin(), moves.end(),
                     [](Move const& a, Move const& b) { return a.step < b.step; });
    return moves;
}

void settleMoves(Trajectory& history) {
    Trajectory::TransByTime settled;
    for (Move const& move : movesOf(history))
        settled.insert({move.step, move.transition});
    history.settled = std::move(settled);
    history.transByTime.reset();
}

Atom const* valueOf(Trajectory const& history, StateVar const& variable) {
    for (int step = history.currentTime; step >= history.firstTime; --step) {
        bool present = false;
        for (Atom const* atom : variable.getAtomLinks()) {
            TrajEl const* element = history.getElt(step, atom->getId());
            present = present || element != nullptr;
            if (element != nullptr && element->evalTrajEl())
                return atom;
        }
        if (present)
            return nullptr;
    }
    return nullptr;
}

bool isLost(Plant const& plant, Trajectory const& history) {
    return std::any_of(plant.stateVars.begin(), plant.stateVars.end(), [&](auto const* variable) {
        Atom const* value = variable->type == typeMode ? valueOf(history, *variable) : nullptr;
        return value != nullptr && value->value == valueUnknown;
    });
}

std::string modesOf(Plant const& plant, Trajectory const& history) {
    std::string text;
    for (StateVar const* variable : plant.stateVars)
        if (variable->type == typeMode) {
            Atom const* value = valueOf(history, *variable);
            text += (value != nullptr ? value->getId() : "") + std::string(" ");
        }
    return text;
}

bool isLikelier(Plant const& plant, Trajectory const& a, Trajectory const& b) {
    if (a.rank != b.rank)
        return a.rank < b.rank;
    bool const lostA = isLost(plant, a);
    if (lostA != isLost(plant, b))
        return !lostA;
    return a.proba > b.proba;
}

std::vector<hybTrajectory const*> byLikelihood(Plant const& plant, HybMap const& candidates) {
    std::vector<hybTrajectory const*> ordered;
    for (auto const& entry : candidates)
        ordered.push_back(entry.second.get());
    std::stable_sort(ordered.begin(), ordered.end(), [&plant](auto const* a, auto const* b) {
        return isLikelier(plant, *a->traj, *b->traj);
    });
    return ordered;
}

void tellAnswers(RunState& run, HybMap const& candidates) {
    std::vector<hybTrajectory const*> const ordered = byLikelihood(run.plant, candidates);
    bool const allLost = std::all_of(ordered.begin(), ordered.end(), [&run](auto const* candidate) {
        return isLost(run.plant, *candidate->traj);
    });
    if (allLost && !ordered.empty())
        run.err << "answer: explained only by an unknown mode\n";
    for (hybTrajectory const* candidate : ordered) {
        Trajectory const& history = *candidate->traj;
        run.err << "answer: " << failuresOf(history) << " (rank " << shortText(history.rank);
        if (history.proba > 0.0)
            run.err << ", probability " << shortText(history.proba);
        run.err << ")\n";
    }
}
