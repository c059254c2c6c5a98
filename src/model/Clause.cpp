// Literals, tests on labels, supports and printing of clauses.
#include "model/Clause.h"

#include <algorithm>
#include <cassert>

#include "model/Atom.h"
#include "model/labels.h"

namespace {

template <typename Accept>
SignedAtoms literalsWhere(SignedAtoms const& atoms, Accept accept) {
    SignedAtoms chosen;
    for (auto const& literal : atoms)
        if (accept(literal.second->getLabel()))
            chosen.insert(literal);
    return chosen;
}

}  // namespace

Clause::Clause(Comp* comp) : comp(comp) {}

Clause::Clause(Atom* atom, bool sign, Comp* comp) : comp(comp) {
    addAtom(atom, sign);
}

Clause::Clause(Clause const* source) : atoms(source->atoms), comp(source->comp) {}

void Clause::addAtom(Atom* atom, bool sign) {
    atoms.insert({sign, atom});
}

void Clause::addAtomRef(Atom* atom, bool sign) {
    addAtom(atom, sign);
    atom->clauses.push_back(this);
}

bool Clause::getSign(Atom const* atom) const {
    for (auto const& [sign, member] : atoms)
        if (member == atom)
            return sign;
    return false;
}

Atom* Clause::getUnknown() const {
    for (auto const& literal : atoms)
        if (literal.second->getLabel() == labelUnknown)
            return literal.second;
    return nullptr;
}

SignedAtoms Clause::getNotUnknown() const {
    return literalsWhere(atoms, [](std::string const& label) { return label != labelUnknown; });
}

SignedAtoms Clause::getTrueAtoms() const {
    return literalsWhere(atoms, [](std::string const& label) { return label == labelTrue; });
}

SignedAtoms Clause::getFalseAtoms() const {
    return literalsWhere(atoms, [](std::string const& label) { return label == labelFalse; });
}

std::string Clause::evalAtom(SignedAtoms::const_iterator literal) const {
    return literal->first != literal->second->evalAtom() ? labelTrue : labelFalse;
}

std::vector<Atom*> Clause::getOpposites(Atom const* atom) const {
    bool const sign = getSign(atom);
    std::vector<Atom*> opposites;
    for (auto const& [memberSign, member] : atoms) {
        if (memberSign != sign)
            opposites.push_back(member);
        else if (member != atom)
            return {};
    }
    return opposites;
}

void Clause::setSupport(Atom* atom) {
    assert(std::any_of(atoms.begin(), atoms.end(),
                       [atom](auto const& literal) { return literal.second == atom; }));
    atom->support = this;
    for (auto const& literal : atoms)
        if (literal.second != atom)
            literal.second->consequences.push_back(atom);
}

void Clause::showClause(std::ostream& out, bool) const {
    if (atoms.empty())
        out << "null\n";
    out << "cl size: " << atoms.size() << "\n";
    char const* separator = "";
    for (auto const& [sign, atom] : atoms) {
        out << separator << (sign ? "non - " : "") << atom->getId();
        separator = " \\/ ";
    }
    out << "\n";
}
