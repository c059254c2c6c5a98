// Misbehaviour of a candidate, and merging of candidates that have become the same.
#include <cassert>
#include <cmath>

#include "continuous/sorn-runt.h"
#include "hybrid/merging.h"
#include "hybrid/tavro-runt.h"
#include "model/labels.h"
#include "support/numbers.h"
#include "trajectory/DataManagerrt.h"

bool isMisb(s_runtime const* rt) {
    for (std::size_t i = 0; i < rt->measure.size(); ++i)
        if (rt->meslowmisb[i] || rt->meshighmisb[i])
            return true;
    return false;
}

namespace {

s_Variable const* sameVariable(s_runtime const* rt, s_Variable const* variable) {
    s_Variable const* same = rt->dico[static_cast<std::size_t>(variable->slot)].get();
    assert(same->nom == variable->nom);
    return same;
}

bool overlap(s_Objet const& a, s_Objet const& b) {
    s_Objet common = a;
    return sn_interObjet(&common, &b) == 1 || sn_eqObjet(&a, &b) == 1;
}

// Whether each mode of one history, as it was last, is that of the other.
bool endInTheSameModes(Trajectory const& a, Trajectory const& b) {
    auto const label = [](Trajectory const& history, char const* id) {
        TrajEl const* element = history.getElt(id, history.getCurrentTime(), 0);
        return element != nullptr && element->evalTrajEl();
    };
    for (auto const& [step, state] : a.states)
        for (auto const& [id, element] : state->elts)
            if (element != nullptr && element->getVarType() == typeMode &&
                label(a, id) != label(b, id))
                return false;
    return true;
}

// Rule `regions`. The last states of two histories may be equal while their runtimes lie in
// different validity spaces, or while the histories end in different modes: a state holds the
// components that changed at its step, and the space or the mode may have been entered at an
// earlier one. The classic merge unites them all the same. The value of the variable that the space
// is about then lies on both sides of a threshold, in a runtime that counts as being on one; the
// next split parts them again, each as wide as the piece allows, and with the conditions of
// neither. And of two modes one is lost, with what it explains. Here candidates of different spaces
// or modes stay apart. That is sound, since nothing is lost by not merging.
bool liesApart(hybTrajectory const& a, hybTrajectory const& b) {
    return a.rt->engine->rules.regions &&
           (a.rt->valSpc != b.rt->valSpc || !endInTheSameModes(*a.traj, *b.traj));
}

bool areTheSame(hybTrajectory& a, hybTrajectory const& b) {
    return DataManager::compareTrajsStates(a.traj->getLastState(), b.traj->getLastState()) &&
           !liesApart(a, b) && intersectObsRt(a.rt.get(), b.rt.get());
}

// What was, as far as either knows: a failure that is dated later may have begun in the past of
// either.
void coverPast(s_runtime* a, s_runtime const* b) {
    for (auto const& variable : a->dico)
        variable->histo.cover(sameVariable(b, variable.get())->histo,
                              [](s_Objet& value, s_Objet const& other) {
                                  if (sn_eqObjet(&value, &other))
                                      return false;
                                  sn_uniObjet(&value, &other);
                                  return true;
                              });
}

}  // namespace

// Required: one overlapping measure is enough, and its union stays whatever the others answer.
bool intersectObsRt(s_runtime* a, s_runtime const* b) {
    bool result = false;
    for (s_Variable* variable : a->measure) {
        s_Variable const* other = sameVariable(b, variable);
        if (!overlap(variable->old, other->old))
            continue;
        sn_uniObjet(&variable->old, &other->old);
        variable->defined = 1;
        result = true;
    }
    return result;
}

void mergeRuntimes(s_runtime* a, s_runtime const* b, double time) {
    for (auto const& variable : a->dico)
        sn_uniObjet(&variable->old, &sameVariable(b, variable.get())->old);
    for (s_Variable* measure : a->measure)
        sn_coverBoth(&measure->foretold, sameVariable(b, measure)->foretold);
    sn_yieldDisplays(a);
    // Required: the time counts rows, without a division by the period.
    double const values = 2.0 * time * static_cast<double>(a->display.size());
    a->extra.coverPairs(b->extra, truncateToInt(std::ceil(values)));
}

namespace {

void mergeEqual(HybMap& trajectories, double time, bool past, bool answers = false) {
    for (auto i = trajectories.begin(); i != trajectories.end(); ++i)
        for (auto j = std::next(i); j != trajectories.end();) {
            if (!areTheSame(*i->second, *j->second)) {
                ++j;
                continue;
            }
            mergeRuntimes(i->second->rt.get(), j->second->rt.get(), time);
            if (answers && i->second->rt->engine->rules.likelihood)
                i->second->traj->proba += j->second->traj->proba;
            if (i->second->rt->engine->rules.dates) {
                if (past)
                    coverPast(i->second->rt.get(), j->second->rt.get());
                i->second->traj->coverDates(*j->second->traj);
            }
            j = trajectories.erase(j);
        }
}

}  // namespace

void sn_reduxTrajs(HybMap& trajectories, double time) {
    mergeEqual(trajectories, time, true);
}

void mergeAnswers(HybMap& trajectories, double time) {
    mergeEqual(trajectories, time, true, true);
}

void mergeReplayed(HybMap& trajectories, double time) {
    mergeEqual(trajectories, time, false);
}
