// Asserting propositions, finding violated clauses, re-supporting and retracting elements.
#include <cassert>
#include <ctime>

#include "model/CommandVar.h"
#include "model/labels.h"
#include "reasoning/itmsrt.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;

// Each retraction doubles the list behind it. Nothing new stands in the copies, so beyond this
// length they are left out, and a long chain of retractions does not fill the memory.
constexpr std::size_t longestCopiedList = 1 << 12;

bool isForbiddenCommand(TrajEl const* element) {
    return element->getVarType() == typeCommand &&
           static_cast<CommandVar const*>(element->getStateVar())->forbidden;
}

// Labels the element and notes it as changed, unless that may not be: then nothing happens.
bool assertProposition(bool value, TrajEl* element, ItmsRes& res, double maxRank,
                       Trajectory const* trajectory) {
    if (value && element->isLabelled(labelFalse) && element->atom->failure &&
        maxRank < projectedRank(trajectory, res.state.get()))
        return false;
    if (isForbiddenCommand(element))
        return false;
    assert(res.state->getElt(element->getId()) == element);  // of this very state
    element->setLabel(value ? labelTrue : labelFalse);
    res.already_changed[element->getId()] = element;
    return true;
}

}  // namespace

double projectedRank(Trajectory const* trajectory, State const* state) {
    return trajectory->rank - trajectory->getStateRank(state) + state->failCount + 1;
}

ItmsResults itms::addPropositions(SignedElements const& props, std::unique_ptr<State>& state,
                                  SearchLimits const& limits, Trajectory* trajectory, int timestep,
                                  bool keep) {
    assert(state != nullptr && trajectory != nullptr && timestep >= trajectory->firstTime);
    std::vector<char const*> ids;
    std::clock_t const start = std::clock();
    if (keep)
        keepLocks = true;
    if (!limits.observing || state->observed)
        initPb(state.get());
    auto res = std::make_unique<ItmsRes>(std::move(state));
    ItmsResults results;
    for (auto const& [value, element] : props) {
        ids.push_back(element->getId());
        if (assertProposition(value, element, *res, limits.maxRank, trajectory))
            continue;
        // Required: a refusal leaves keepLocks as it is and writes no record.
        state = std::move(res->state);
        return results;
    }
    if (!deriveBranches(*res, results, limits, trajectory, timestep))
        unitPropagate(std::move(res), results, limits, trajectory, timestep);
    out << "[addClause] --> res' size : " << results.size() << "\n";
    double const seconds = static_cast<double>(std::clock() - start) / ticksPerSecond;
    addItmsBmkEntry(seconds, static_cast<unsigned>(results.size()), &ids);
    keepLocks = false;
    return results;
}

Clause* itms::checkForInternalConflicts(TrajEl const* element, StateSite const& site) {
    Clause* violated = nullptr;
    if (element->getStateVar() == nullptr)
        return nullptr;
    for (Clause* clause : element->getStateVar()->clauses)
        if (isViolated(clause, site))
            violated = clause;
    return violated;
}

void itms::checkForFocusedInternalConflicts(ElementTable const& table,
                                            std::queue<Clause*>& conflicts, StateSite const& site) {
    std::vector<StateVar*> seen;
    for (auto const& entry : table) {
        StateVar* variable = entry.second->getStateVar();
        if (inVectorStateVar(variable, &seen))
            continue;
        seen.push_back(variable);
        if (Clause* clause = checkForInternalConflicts(entry.second, site))
            conflicts.push(clause);
    }
}

void itms::checkForFocusedConflicts(ElementTable const& table, std::queue<Clause*>& conflicts,
                                    StateSite const& site) {
    for (auto const& entry : table)
        for (Clause* clause : entry.second->atom->clauses)
            if (isViolated(clause, site))
                conflicts.push(clause);
}

std::vector<Clause*> itms::checkForConflicts(std::vector<std::unique_ptr<Clause>> const& clauses,
                                             StateSite const& site) {
    std::vector<Clause*> found;
    for (auto const& clause : clauses)
        if (!testClause(clause.get(), site))
            found.push_back(clause.get());
    out << "*** detected conflicts ***\n";
    viewClauseVector(&found);
    return found;
}

// Required: unlike setSupport, this adds no link back from the elements of the clause.
void itms::resupportDependence(TrajEl* element, ElementTable& focus, StateSite const& site) {
    for (Clause* clause : element->atom->clauses) {
        if (!testClause(clause, site))
            continue;
        for (auto const& [key, unknown] : getNotUnknown(clause, site)) {
            if (unknown == element || !isResupportable(unknown, clause, key, site))
                continue;
            out << "[resupportDependency] --> resupporting :\n";
            unknown->showAtom(out, true);
            removeFromSupport(unknown, site);
            unknown->support = clause;
            unknown->propagationNumber = maxPropagationNumber(clause, site) + 1;
            assert(risesAboveSupport(*unknown, *site.state));
            focus.insert({unknown->getId(), unknown});
        }
    }
}

void itms::deleteClause(TrajEl* element, std::vector<TrajEl*>& list, StateSite const& site) {
    out << "[deleteClause] --> delete clause :\n";
    element->showAtom(out, true);
    element->setLabel(labelUnknown);
    element->support = nullptr;
    element->propagationNumber = 0;
    list.push_back(element);
    std::vector<TrajEl*> const consequences = element->consequences;
    for (TrajEl* dependent : consequences) {
        if (dependent->support == nullptr || testClause(dependent->support, site))
            continue;
        deleteClause(dependent, list, site);
        // Required: what the list holds by now is appended once more.
        std::vector<TrajEl*> const retracted = list;
        if (retracted.size() <= longestCopiedList)
            list.insert(list.end(), retracted.begin(), retracted.end());
    }
    element->consequences.clear();
    assert(element->support == nullptr && element->isLabelled(labelUnknown));
}
