// Labels of elements, tests of clauses over them, and supports.
//
// How a circle of supports is kept out: the number of an element is one more than the highest of
// its support clause, itself included; only an element of a number no higher than that of the
// initial state can be given a new support; and a conflict does not change an element twice on a
// branch. So an element is above all others of its clause when it gets that support. It need not
// stay so: of two elements that were flipped for each other's clauses the later one is the higher,
// and the earlier one keeps its support, for its own literal satisfies the clause.
#include <algorithm>
#include <cassert>

#include "model/labels.h"
#include "reasoning/itmsrt.h"

TrajEl* itms::getElt(char const* id, StateSite const& site, bool withIdle) {
    assert(site.state != nullptr && site.trajectory != nullptr);
    if (TrajEl* present = site.state->getElt(id))
        return present;
    TrajEl const* earlier = site.trajectory->getElt(id, site.timestep, -1);
    Comp* comp = earlier != nullptr ? earlier->atom->getVarComp() : nullptr;
    if (comp == nullptr)
        return nullptr;
    site.trajectory->addComp(comp, site.state, site.timestep, withIdle, keepLocks);
    return site.state->getElt(id);
}

int itms::maxPropagationNumber(Clause const* clause, StateSite const& site) {
    int highest = 0;
    for (auto const& literal : clause->atoms)
        if (TrajEl const* element = getElt(literal.second->getId(), site))
            highest = std::max(highest, element->propagationNumber);
    return highest;
}

bool itms::isResupportable(TrajEl const* element, Clause const* clause, bool sign,
                           StateSite const& site) {
    assert(element->isLabelled(labelUnknown));
    for (auto const& [key, atom] : clause->atoms) {
        if (atom == element->atom) {
            if (key != sign)
                return false;
            continue;
        }
        // Required: compared with the number of the atom at start-up, not of its element here.
        if (element->propagationNumber > atom->propagationNumber)
            return false;
        TrajEl const* other = getElt(atom->getId(), site);
        if (other != nullptr && other->isLabelled(labelTrue))
            return false;
    }
    return true;
}

void itms::removeFromSupport(TrajEl* element, StateSite const& site) {
    if (element->support == nullptr)
        return;
    for (auto const& literal : element->support->atoms) {
        TrajEl* other = getElt(literal.second->getId(), site);
        if (other == nullptr || other == element)
            continue;
        auto& consequences = other->consequences;
        auto const first = std::find(consequences.begin(), consequences.end(), element);
        if (first != consequences.end())
            consequences.erase(first);
    }
}

void itms::setSupport(Clause* clause, TrajEl* element, StateSite const& site) {
    removeFromSupport(element, site);
    assert(clause->atoms.end() !=
           std::find_if(clause->atoms.begin(), clause->atoms.end(),
                        [element](auto const& l) { return l.second == element->atom; }));
    element->support = clause;
    for (auto const& literal : clause->atoms) {
        TrajEl* other = site.state->getElt(literal.second->getId());
        if (other != nullptr && other != element)
            other->consequences.push_back(element);
    }
}

SignedElements itms::getNotUnknown(Clause const* clause, StateSite const& site) {
    SignedElements unknown;
    for (auto const& [key, atom] : clause->atoms) {
        TrajEl* element = getElt(atom->getId(), site);
        if (element != nullptr && element->isLabelled(labelUnknown))
            unknown.insert({key, element});
    }
    return unknown;
}

TrajEl* itms::getUnknown(Clause const* clause, StateSite const& site) {
    for (auto const& literal : clause->atoms) {
        TrajEl* element = getElt(literal.second->getId(), site);
        if (element != nullptr && element->isLabelled(labelUnknown))
            return element;
    }
    return nullptr;
}

std::string itms::evalAtomOnLabels(SignedAtoms::const_iterator literal, StateSite const& site) {
    TrajEl const* element = getElt(literal->second->getId(), site);
    if (element == nullptr)
        return "";
    if (element->isLabelled(labelUnknown))
        return labelUnknown;
    if (element->isLabelled(labelTrue))
        return literal->first ? labelFalse : labelTrue;
    if (element->isLabelled(labelFalse))
        return literal->first ? labelTrue : labelFalse;
    return "";
}

bool itms::testClause(Clause const* clause, StateSite const& site) {
    for (auto literal = clause->atoms.begin(); literal != clause->atoms.end(); ++literal)
        if (evalAtomOnLabels(literal, site) == labelTrue)
            return true;
    return false;
}

bool itms::isViolated(Clause const* clause, StateSite const& site) {
    return !testClause(clause, site) && getUnknown(clause, site) == nullptr;
}

// Required: a negated literal that holds does not end the scan, and one unknown literal or more
// counts, not exactly one.
TrajEl* itms::unitClause(Clause const* clause, StateSite const& site) {
    TrajEl* last = nullptr;
    for (auto literal = clause->atoms.begin(); literal != clause->atoms.end(); ++literal) {
        std::string const truth = evalAtomOnLabels(literal, site);
        if (!literal->first && truth == labelTrue)
            return nullptr;
        if (truth == labelUnknown)
            last = getElt(literal->second->getId(), site);
    }
    return last;
}
