// From candidates to what is told of them.
#include "run/step_report.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include "continuous/records.h"
#include "hybrid/answer.h"
#include "model/Comprt.h"
#include "model/labels.h"
#include "support/numbers.h"

namespace {

bool misbehaves(s_runtime const& rt) {
    return std::any_of(rt.measure.begin(), rt.measure.end(), [](s_Variable const* measure) {
        return measure->meslowmisb != 0 || measure->meshighmisb != 0;
    });
}

// The largest double stands for infinity inside.
double toOutside(double bound) {
    if (bound == DBL_MAX || bound == -DBL_MAX)
        return std::copysign(std::numeric_limits<double>::infinity(), bound);
    return bound;
}

tavro::Bounds boundsOf(s_Objet const& value) {
    if (!isValue(value)) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return {-infinity, infinity};
    }
    return {toOutside(sn_infOf(value)), toOutside(sn_supOf(value))};
}

tavro::Bounds boundsOf(s_Variable const& variable) {
    return boundsOf(variable.defined ? variable.old : s_Objet{});
}

std::string textOf(Atom const* atom) {
    return atom != nullptr ? atom->value : "";
}

tavro::Explanation explain(Trajectory const& history, Transition& transition, int step,
                           double time) {
    tavro::Explanation e;
    if (Comp const* comp = transition.modeVar != nullptr ? transition.modeVar->getComp() : nullptr)
        e.component = comp->getName();
    if (transition.preMode != nullptr)
        e.from = transition.preMode->value;
    if (transition.postMode != nullptr)
        e.to = transition.postMode->value;
    e.step = step;
    e.time = e.earliest = e.latest = time == Trajectory::noTime ? -1.0 : time;
    if (auto const dated = history.dated.find(transition.id); dated != history.dated.end()) {
        e.earliest = dated->second.from;
        e.latest = dated->second.to;
    }
    e.failure = transition.type == transFail;
    e.unknown = transition.unknownPost;
    e.summary = summaryOf(history, {&transition, step}, time);
    return e;
}

// The explanations of one history, as its own.
std::vector<tavro::Explanation> explain(Trajectory const& history, TimeOfStep const& timeOfStep) {
    std::vector<tavro::Explanation> explanations;
    for (auto const& [transition, step] : movesOf(history)) {
        explanations.push_back(explain(history, *transition, step, timeOfStep(history, step)));
        explanations.back().rank = history.rank;
    }
    return explanations;
}

bool holdsAt(Trajectory const& history, Atom const& atom, int step) {
    TrajEl const* element = history.getElt(step, atom.getId());
    return element != nullptr && element->evalTrajEl();
}

// What leaves the mode and has reached another one by the next step that is about the component.
void addMoves(Trajectory const& history, TrajEl const& mode, int step,
              std::map<int, std::vector<tavro::Move>>& moves) {
    int const next = history.getNext(mode.getStateVar(), step);
    if (next == 0)
        return;
    for (auto const& [id, transition] : mode.nextTrans)
        if (transition != nullptr && !transition->idle && transition->postMode != nullptr &&
            holdsAt(history, *transition->postMode, next))
            moves[next].push_back({mode.atom->getVarComp()->getName(), mode.atom->value,
                                   transition->postMode->value, transition->type == transFail,
                                   transition->unknownPost});
}

}  // namespace

std::vector<tavro::HistoryStep> stepsOf(Trajectory const& history, TimeOfStep const& timeOfStep) {
    std::vector<tavro::HistoryStep> steps;
    std::map<int, std::vector<tavro::Move>> moves;
    for (auto const& [number, state] : history.states) {
        tavro::HistoryStep told;
        told.step = number;
        double const time = timeOfStep(history, number);
        told.time = time == Trajectory::noTime ? -1.0 : time;
        for (auto const& [id, element] : state->elts) {
            if (element == nullptr || element->getVarType() != typeMode || !element->evalTrajEl())
                continue;
            told.modes[element->getStateVar()->getName()] = element->atom->value;
            addMoves(history, *element, number, moves);
        }
        steps.push_back(std::move(told));
    }
    std::sort(steps.begin(), steps.end(),
              [](auto const& a, auto const& b) { return a.step < b.step; });
    for (tavro::HistoryStep& step : steps)
        step.moves = std::move(moves[step.step]);
    return steps;
}

std::vector<CandidateView> candidatesOf(RunState const& run) {
    std::vector<CandidateView> candidates;
    if (run.tavro_rt == nullptr) {
        for (auto const& entry : run.scheduler.tracked_traj)
            candidates.push_back({entry.second.get(), nullptr});
        return candidates;
    }
    for (auto const& entry : run.tracked_trajs)
        candidates.push_back({entry.second->traj.get(), entry.second->rt.get()});
    std::stable_sort(candidates.begin(), candidates.end(),
                     [&plant = run.plant](auto const& a, auto const& b) {
                         return isLikelier(plant, *a.history, *b.history);
                     });
    return candidates;
}

tavro::Candidate describe(Plant const& plant, CandidateView const& candidate, bool detecting,
                          TimeOfStep const& timeOfStep) {
    tavro::Candidate described;
    described.moves = explain(*candidate.history, timeOfStep);
    for (StateVar const* variable : plant.stateVars)
        if (variable->type == typeMode)
            described.modes[variable->name] = textOf(valueOf(*candidate.history, *variable));
    described.rank = candidate.history->rank;
    described.probability = candidate.history->proba;
    if (candidate.runtime == nullptr)
        return described;
    described.id = candidate.runtime->num;
    for (auto const& variable : candidate.runtime->dico)
        if (!variable->isParam)
            described.bounds[variable->nom] = boundsOf(*variable);
    for (s_Variable const* measure : candidate.runtime->measure)
        described.foretold[measure->nom] =
            isValue(measure->foretold) ? boundsOf(measure->foretold) : boundsOf(*measure);
    described.agrees = !detecting || !misbehaves(*candidate.runtime);
    return described;
}

std::vector<tavro::Alarm> alarmsOf(std::vector<CandidateView> const& candidates) {
    std::vector<tavro::Alarm> alarms;
    if (candidates.empty())
        return alarms;
    std::vector<s_Variable*> const& measures = candidates.front().runtime->measure;
    for (std::size_t i = 0; i < measures.size(); ++i) {
        auto const any = [&](int s_Variable::*misbehaves) {
            return std::any_of(candidates.begin(), candidates.end(), [&](auto const& candidate) {
                return candidate.runtime->measure[i]->*misbehaves != 0;
            });
        };
        if (any(&s_Variable::meslowmisb))
            alarms.push_back({measures[i]->nom, tavro::Side::low});
        if (any(&s_Variable::meshighmisb))
            alarms.push_back({measures[i]->nom, tavro::Side::high});
    }
    return alarms;
}

std::vector<tavro::Explanation> explanationsOf(std::vector<CandidateView> const& candidates,
                                               TimeOfStep const& timeOfStep) {
    std::vector<tavro::Explanation> explanations;
    for (std::size_t i = 0; i < candidates.size(); ++i)
        for (tavro::Explanation& e : explain(*candidates[i].history, timeOfStep)) {
            e.candidate = i;
            explanations.push_back(std::move(e));
        }
    return explanations;
}
