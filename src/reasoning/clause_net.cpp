// Unit propagation over numbers. A clause is looked at when one of its literals has come to fail,
// so that a propagation costs no more than the clauses of what it concludes.
#include "reasoning/clause_net.h"

#include <algorithm>
#include <cassert>

#include "model/Atom.h"
#include "model/Clause.h"
#include "model/StateVar.h"

ClauseNet::ClauseNet(std::vector<std::unique_ptr<Clause>> const& given) {
    for (auto const& clause : given)
        noteClause(*clause);
    clausesWith.resize(2 * all.size());
    for (std::size_t i = 0; i < clauses.size(); ++i)
        for (int const literal : clauses[i])
            clausesWith[static_cast<std::size_t>(literal)].push_back(static_cast<int>(i));
}

void ClauseNet::noteClause(Clause const& clause) {
    if (clause.atoms.empty())
        return;
    StateVar const* first = clause.atoms.begin()->second->getStateVar();
    bool const isOfOne = std::all_of(
        clause.atoms.begin(), clause.atoms.end(),
        [first](auto const& literal) { return literal.second->getStateVar() == first; });
    Literals literals;
    for (auto const& [negated, atom] : clause.atoms) {
        auto const [entry, isNew] = places.insert({atom, static_cast<int>(all.size())});
        if (isNew) {
            all.push_back(atom);
            concluded.push_back(0);
            shared.push_back(0);
        }
        auto const place = static_cast<std::size_t>(entry->second);
        if (!isOfOne)
            shared[place] = 1;
        if (!isOfOne && !negated)
            concluded[place] = 1;
        literals.push_back(2 * entry->second + (negated ? 1 : 0));
    }
    clauses.push_back(std::move(literals));
}

int ClauseNet::placeOf(Atom const* atom) const {
    auto const found = places.find(atom);
    return found == places.end() ? unmentioned : found->second;
}

Entailment::Entailment(ClauseNet const& net)
    : net(net), truths(net.all.size(), ClauseNet::open), reasons(net.all.size(), given) {
    // A clause of one literal holds whatever is given.
    for (std::size_t i = 0; i < net.clauses.size() && !isContradicted(); ++i)
        if (net.clauses[i].size() == 1)
            look(static_cast<int>(i));
}

ClauseNet::Truth Entailment::valueOf(int literal) const {
    ClauseNet::Truth const truth = truths[placeIn(literal)];
    return literal % 2 == 0 ? truth : static_cast<ClauseNet::Truth>(-truth);
}

void Entailment::enter(int literal, int reason) {
    truths[placeIn(literal)] = literal % 2 == 0 ? ClauseNet::yes : ClauseNet::no;
    reasons[placeIn(literal)] = reason;
    trail.push_back(literal);
}

void Entailment::take(int place, bool holds) {
    if (isContradicted() || place == ClauseNet::unmentioned)
        return;
    int const literal = 2 * place + (holds ? 0 : 1);
    ClauseNet::Truth const value = valueOf(literal);
    if (value == ClauseNet::yes)
        return;
    if (value == ClauseNet::open) {
        enter(literal, given);
        return;
    }
    contradiction = directly;
    denied = place;
}

void Entailment::propagate() {
    while (!isContradicted() && next < trail.size()) {
        auto const failed = static_cast<std::size_t>(trail[next++] ^ 1);
        for (int const number : net.clausesWith[failed]) {
            look(number);
            if (isContradicted())
                return;
        }
    }
}

void Entailment::look(int number) {
    int last = -1;
    for (int const literal : clause(number)) {
        ClauseNet::Truth const value = valueOf(literal);
        if (value == ClauseNet::yes || (value == ClauseNet::open && last != -1 && last != literal))
            return;
        if (value == ClauseNet::open)
            last = literal;
    }
    if (last == -1)
        contradiction = number;
    else
        enter(last, number);
}

std::vector<int> Entailment::blamed() const {
    assert(isContradicted());
    std::vector<char> used(truths.size(), 0);
    if (contradiction == directly)
        used[static_cast<std::size_t>(denied)] = 1;
    else
        for (int const literal : clause(contradiction))
            used[placeIn(literal)] = 1;
    // What made a fact known was known before it, so that one way back meets all.
    for (auto literal = trail.rbegin(); literal != trail.rend(); ++literal) {
        std::size_t const place = placeIn(*literal);
        if (used[place] == 0 || reasons[place] == given)
            continue;
        used[place] = 0;
        for (int const other : clause(reasons[place]))
            if (placeIn(other) != place)
                used[placeIn(other)] = 1;
    }
    // A fact that was given although its opposite follows is given all the same.
    if (contradiction == directly)
        used[static_cast<std::size_t>(denied)] = 1;
    std::vector<int> found;
    for (std::size_t place = 0; place < used.size(); ++place)
        if (used[place] != 0)
            found.push_back(static_cast<int>(place));
    return found;
}
