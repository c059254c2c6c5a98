// The agenda loop of unit propagation.
//
// The agenda is a stack: alternatives are explored depth first, the last pushed first, and the
// first candidate of each conflict is followed to its end without passing over the agenda. Only
// elements in the focus are checked again, and unit clauses are looked for only among the clauses
// of retracted elements: the whole clause base is never scanned.

#include <cassert>

#include "model/labels.h"
#include "reasoning/itmsrt.h"
#include "support/memory_watch.h"

namespace {

StateSite siteOf(ItmsRes const& branch, Trajectory* trajectory, int timestep) {
    return {branch.state.get(), trajectory, timestep};
}

}  // namespace

Clause* itms::getFirstUnitClause(Atom const* atom, StateSite const& site) {
    for (Clause* clause : atom->clauses)
        if (unitClause(clause, site) != nullptr) {
            clause->showClause(out, true);
            return clause;
        }
    return nullptr;
}

Clause* itms::getFirstUnitClause(std::vector<TrajEl*> const& elements, StateSite const& site) {
    for (TrajEl const* element : elements)
        if (Clause* clause = getFirstUnitClause(element->atom, site))
            return clause;
    return nullptr;
}

Clause* itms::getFirstUnitClause(StateSite const& site) {
    for (auto const& clause : cls)
        if (unitClause(clause.get(), site) != nullptr) {
            clause->showClause(out, true);
            return clause.get();
        }
    return nullptr;
}

// Required: the element becomes "true" whatever the sign of its literal, and it gets neither a
// support nor a number, so that a retraction does not reach it.
void itms::propagateClause(Clause const* clause, StateSite const& site) {
    TrajEl* unknown = getUnknown(clause, site);
    assert(unknown != nullptr);  // the clause is unit
    out << "[propagateClause] --> propagating (setting to true) :\n";
    unknown->showAtom(out, true);
    unknown->setLabel(labelTrue);
}

void itms::checkFocus(ElementTable const& table, ItmsRes& res, StateSite const& site) {
    checkForFocusedInternalConflicts(table, res.conflicts, site);
    checkForFocusedConflicts(table, res.conflicts, site);
}

// Works until nothing is unit and no conflict waits. Null when the branch was lost.
std::unique_ptr<ItmsRes> itms::settleBranch(std::unique_ptr<ItmsRes> cur, Agenda& agenda,
                                            SearchLimits const& limits, Trajectory* trajectory,
                                            int timestep) {
    for (;;) {
        StateSite const site = siteOf(*cur, trajectory, timestep);
        bool const pending = !cur->conflicts.empty();
        Clause const* unit = getFirstUnitClause(cur->deleted, site);
        if (unit == nullptr && !pending)
            return cur;
        if (unit != nullptr)
            propagateClause(unit, site);
        while (!cur->conflicts.empty()) {
            Clause* clause = cur->conflicts.front();
            cur->conflicts.pop();
            if (testClause(clause, siteOf(*cur, trajectory, timestep)))
                continue;
            cur = propagateThroughConflict(clause, std::move(cur), agenda, limits, trajectory,
                                           timestep);
            if (cur == nullptr)
                return nullptr;
        }
        checkFocus(cur->focus, *cur, siteOf(*cur, trajectory, timestep));
    }
}

void itms::finishBranch(std::unique_ptr<ItmsRes> cur, ItmsResults& results, Agenda const& agenda,
                        Trajectory* trajectory, int timestep) {
    assert(cur->conflicts.empty() && brokenSupports(*cur->state) == nullptr);
    sortPostProbs(cur->state.get());
    if (cur->state->observed && rules.likelihood)
        computeObsLikelihood(siteOf(*cur, trajectory, timestep));
    else if (cur->state->observed)
        computeObsCondRough(cur->state.get());
    out << "sol added !\nagenda's size : " << agenda.size()
        << "\nalready_changed's size end : " << cur->already_changed.size() << "\n";
    results.push_back(std::move(cur));
}

void itms::unitPropagate(std::unique_ptr<ItmsRes> branch, ItmsResults& results,
                         SearchLimits const& limits, Trajectory* trajectory, int timestep) {
    assert(branch != nullptr && branch->conflicts.empty() && branch->deleted.empty());
    StateSite const site = siteOf(*branch, trajectory, timestep);
    for (auto const& entry : branch->already_changed)
        resupportDependence(entry.second, branch->focus, site);
    checkFocus(branch->already_changed, *branch, site);
    Agenda agenda;
    agenda.push(std::move(branch));
    bool recheck = false;
    // Required: the line comes once before the first branch, and after each lost one.
    out << "a sol has been discarded...\n";
    while (!agenda.empty()) {
        watchMemory(host);
        std::unique_ptr<ItmsRes> cur = std::move(agenda.top());
        agenda.pop();
        if (recheck)
            checkFocus(cur->focus, *cur, siteOf(*cur, trajectory, timestep));
        cur = settleBranch(std::move(cur), agenda, limits, trajectory, timestep);
        if (cur != nullptr) {
            finishBranch(std::move(cur), results, agenda, trajectory, timestep);
            recheck = true;
        } else {
            recheck = !agenda.empty();
            out << "a sol has been discarded...\n";
        }
    }
}
