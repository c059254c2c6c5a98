// From a violated clause to branches.
//
// The elements of the clause that may be flipped are ordered by an information measure, the lowest
// entropy first. Each gets a copy of the state, in which it is flipped and what hung on its old
// value is retracted. The first branch goes on in the caller's loop; the others wait on the agenda.
// What bounds the search: locks, the elements changed already on the branch, and the rank that a
// history may reach.
#include <cassert>
#include <optional>

#include "model/labels.h"
#include "reasoning/itmsrt.h"

namespace {

using Candidates = std::multimap<double, TrajEl*, std::less<double>>;

// One conflict on one branch.
struct Conflict {
    Clause* clause;
    ItmsRes const& res;
    SearchLimits const& limits;
    Trajectory* trajectory;
    int timestep;

    StateSite site() const { return {res.state.get(), trajectory, timestep}; }
    bool rankAllows(State const* state) const {
        return limits.maxRank >= projectedRank(trajectory, state);
    }
};

bool isHeldAtItsLabel(TrajEl const* element) {
    if (element->isLabelled(labelFalse))
        return element->isHeldFalse();
    return !element->isLabelled(labelTrue) || element->isHeldTrue();
}

bool mayFlipWhileObserving(TrajEl const* element) {
    std::string const type = element->getVarType();
    if (type == typeCond && element->isLabelled(labelFalse))
        return false;
    return type != typeMode || element->prevTrans == nullptr;
}

bool mayFlipWhileSearching(TrajEl const* element) {
    if (element->getVarType() != typeCommand)
        return true;
    return element->isLabelled(labelTrue) ||
           (element->atom->value == valueNone && element->isLabelled(labelFalse));
}

bool isCandidate(TrajEl const* element, Conflict const& conflict) {
    if (element->getStateVar() == nullptr)
        return false;  // of a value that its variable refused: nothing weighs it
    if (element->atom->failure && element->isLabelled(labelFalse) &&
        !conflict.rankAllows(conflict.res.state.get()))
        return false;
    if (conflict.res.already_changed.count(element->getId()) != 0 || isHeldAtItsLabel(element))
        return false;
    return conflict.limits.observing ? mayFlipWhileObserving(element)
                                     : mayFlipWhileSearching(element);
}

void showCandidates(std::ostream& out, Candidates const& candidates) {
    for (auto const& candidate : candidates)
        candidate.second->showAtom(out, true);
}

// A failure atom of an implicate that would have to become true although it may not.
bool isBlockedFailure(TrajEl const* element, ItmsRes const& branch, Conflict const& conflict) {
    if (!element->atom->failure || !element->isLabelled(labelFalse))
        return false;
    return !conflict.rankAllows(branch.state.get()) ||
           branch.already_changed.count(element->getId()) != 0 || element->isHeldFalse();
}

// Makes the atoms of the implicate hold in the branch; false when one of them may not.
bool applyImplicate(Implicate const& implicate, TrajEl const* flipped, ItmsRes& branch,
                    Conflict const& conflict, itms& engine) {
    StateSite const site{branch.state.get(), conflict.trajectory, conflict.timestep};
    for (Atom const* atom : implicate) {
        TrajEl* element = engine.getElt(atom->getId(), site);
        if (element == nullptr || isBlockedFailure(element, branch, conflict))
            return false;
        if (element == flipped)
            continue;
        if (element->isLabelled(labelFalse))
            element->setLabel(labelTrue);
        branch.already_changed[element->getId()] = element;
    }
    return true;
}

void noteFailure(TrajEl const* flipped, State* state) {
    // Required: the label before the flip, so it is leaving the unknown mode that marks the state.
    if (flipped->getVarType() == typeMode && flipped->atom->value == valueUnknown &&
        flipped->isLabelled(labelTrue))
        state->setUnknown();
    // Required: counted in both directions of the flip.
    if (flipped->atom->failure)
        state->failCount += 1.0;
}

void flip(std::ostream& out, TrajEl* element, ItmsRes& branch) {
    assert(!element->isLabelled(labelUnknown));
    char const* label = element->isLabelled(labelFalse) ? labelTrue : labelFalse;
    out << "[propagateThroughConflict] --> clause to be added :\n";
    element->showAtom(out, true);
    out << "\n[propagateThroughConflict] --> adding a new clause. " << label << "\n";
    branch.already_changed[element->getId()] = element;
    element->setLabel(label);
}

// The weights of the transitions after learning the flipped variable's value.
void adoptPostProbs(TrajEl const* flipped, State* state) {
    auto const table = state->atomPostProbs.find(flipped->getId());
    if (table != state->atomPostProbs.end() && table->second)
        state->postProbs = *table->second;
}

void retractConsequences(TrajEl const* flipped, ItmsRes& branch, StateSite const& site,
                         itms& engine) {
    std::vector<TrajEl*> const consequences = flipped->consequences;
    for (TrajEl* dependent : consequences)
        if (dependent->support == nullptr || !engine.testClause(dependent->support, site))
            engine.deleteClause(dependent, branch.deleted, site);
}

// One branch: *candidate* flipped in a copy, with the atoms of the implicate. Null when refused.
std::unique_ptr<ItmsRes> makeBranch(TrajEl const* candidate, Implicate const& implicate,
                                    Conflict const& conflict, itms& engine) {
    auto branch = std::make_unique<ItmsRes>(conflict.res.state.get(), conflict.res.conflicts);
    branch->already_changed = itms::copyState(conflict.res.already_changed, branch->state.get());
    StateSite const site{branch->state.get(), conflict.trajectory, conflict.timestep};
    TrajEl* flipped = engine.getElt(candidate->getId(), site);
    assert(flipped != nullptr && flipped != candidate && flipped->eq(*candidate));
    assert(branch->already_changed.count(flipped->getId()) == 0);  // once on a branch
    if (!applyImplicate(implicate, flipped, *branch, conflict, engine))
        return nullptr;
    noteFailure(flipped, branch->state.get());
    engine.setSupport(conflict.clause, flipped, site);
    flipped->propagationNumber = engine.maxPropagationNumber(conflict.clause, site) + 1;
    assert(itms::risesAboveSupport(*flipped, *branch->state));
    flip(engine.out, flipped, *branch);
    adoptPostProbs(flipped, branch->state.get());
    branch->focus = branch->already_changed;
    engine.resupportDependence(flipped, branch->focus, site);
    retractConsequences(flipped, *branch, site, engine);
    assert(itms::brokenSupports(*branch->state) == nullptr);
    return branch;
}

// The alternatives to make a candidate hold: its prime implicates, or itself alone.
Implicates alternativesFor(TrajEl const* candidate, PiTable const* table) {
    if (table != nullptr && candidate->isLabelled(labelFalse) &&
        candidate->getVarType() != typeCommand)
        if (Implicates const* list = table->getPIs(candidate->atom))
            return *list;
    return {{candidate->atom}};
}

Candidates findCandidates(Conflict const& conflict, itms& engine) {
    Candidates candidates;
    for (auto const& literal : conflict.clause->atoms) {
        TrajEl* element = engine.getElt(literal.second->getId(), conflict.site());
        if (element == nullptr || !isCandidate(element, conflict))
            continue;
        double const key = engine.entropy(element->getStateVar(), conflict.res.state.get());
        candidates.insert({key, element});
    }
    engine.out << "not_unknown's size : " << candidates.size() << "\n";
    return candidates;
}

}  // namespace

std::unique_ptr<ItmsRes> itms::propagateThroughConflict(Clause* clause,
                                                        std::unique_ptr<ItmsRes> res,
                                                        Agenda& agenda, SearchLimits const& limits,
                                                        Trajectory* trajectory, int timestep) {
    assert(res != nullptr && res->state != nullptr);
    out << "[propagateThroughConflict] --> conflict :\n";
    clause->showClause(out, true);
    Conflict const conflict{clause, *res, limits, trajectory, timestep};
    Candidates const candidates = findCandidates(conflict, *this);
    if (candidates.empty())
        return nullptr;
    showCandidates(out, candidates);
    out << "[propagateThroughConflict] --> beginning propagation\n";
    int counter = 0;
    std::unique_ptr<ItmsRes> continuing;
    for (auto const& candidate : candidates)
        for (Implicate const& implicate : alternativesFor(candidate.second, piTable.get())) {
            ++counter;
            auto branch = makeBranch(candidate.second, implicate, conflict, *this);
            if (branch == nullptr)
                break;  // a refused implicate ends this candidate
            if (counter == 1)
                continuing = std::move(branch);
            else
                agenda.push(std::move(branch));
        }
    return continuing;
}
