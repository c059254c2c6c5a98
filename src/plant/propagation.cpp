// Unit propagation with reasons, clause by clause from the atoms that are labelled.
#include "plant/propagation.h"

#include <algorithm>
#include <cassert>
#include <set>

namespace {

bool isWhole(Holdings const& plant, Clause const& clause) {
    auto const isKnown = [&](auto const& literal) {
        Atom const* atom = literal.second;
        return plant.holds(atom) && std::find(atom->clauses.begin(), atom->clauses.end(),
                                              &clause) != atom->clauses.end();
    };
    return plant.holds(clause.comp) &&
           std::all_of(clause.atoms.begin(), clause.atoms.end(), isKnown);
}

}  // namespace

Propagation::Propagation(Holdings const& plant, PlantParts const& parts) {
    for (std::size_t i = 0; i < parts.clauses.size(); ++i) {
        Clause const* clause = parts.clauses[i].get();
        if (clause == nullptr || !isWhole(plant, *clause))
            continue;
        numbers.insert({clause, i});
        if (clause->atoms.size() == 1)
            units.push_back(clause);
    }
}

// What has a label keeps it: the clause that would change it is met as a conflict.
void Propagation::label(Labels& labels, Atom const* atom, bool holds, Clause const* reason) {
    if (labels.of.insert({atom, {holds, reason}}).second)
        labels.order.push_back(atom);
}

// Labels the last literal that can still make *clause* true. False: none can.
bool Propagation::propagate(Labels& labels, Clause const& clause) {
    Atom const* last = nullptr;
    bool lastHolds = false;
    for (auto const& [negated, atom] : clause.atoms) {
        auto const found = labels.of.find(atom);
        bool const isOpen = found == labels.of.end();
        bool const another = last != nullptr && (last != atom || lastHolds == negated);
        if ((!isOpen && found->second.holds != negated) || (isOpen && another))
            return true;
        if (isOpen) {
            last = atom;
            lastHolds = !negated;
        }
    }
    if (last != nullptr)
        label(labels, last, lastHolds, &clause);
    return last != nullptr;
}

Clause const* Propagation::firstConflict(Labels& labels) const {
    for (Clause const* unit : units)
        if (!propagate(labels, *unit))
            return unit;
    for (std::size_t i = 0; i < labels.order.size(); ++i)
        for (Clause const* clause : labels.order[i]->clauses)
            if (numbers.count(clause) != 0 && !propagate(labels, *clause))
                return clause;
    return nullptr;
}

// The conflict, and every clause that gave one of the labels that it stands on.
std::vector<std::size_t> Propagation::behind(Labels const& labels, Clause const* conflict) const {
    std::vector<Clause const*> reasons = {conflict};
    for (std::size_t i = 0; i < reasons.size(); ++i)
        for (auto const& entry : reasons[i]->atoms) {
            Clause const* reason = labels.of.at(entry.second).reason;
            if (reason != nullptr &&
                std::find(reasons.begin(), reasons.end(), reason) == reasons.end())
                reasons.push_back(reason);
        }
    std::set<std::size_t> all, stated;
    for (Clause const* reason : reasons) {
        all.insert(numbers.at(reason));
        if (!reason->getInternal())
            stated.insert(numbers.at(reason));
    }
    std::set<std::size_t> const& told = stated.empty() ? all : stated;
    return {told.begin(), told.end()};
}

std::vector<std::size_t> Propagation::forbidding(std::vector<Literal> const& literals) const {
    Labels labels;
    for (Literal const& literal : literals) {
        label(labels, literal.atom, literal.holds, nullptr);
        assert(labels.of.at(literal.atom).holds == literal.holds);
    }
    Clause const* conflict = firstConflict(labels);
    return conflict == nullptr ? std::vector<std::size_t>{} : behind(labels, conflict);
}
