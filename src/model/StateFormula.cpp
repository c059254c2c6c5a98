// Collecting, comparing and printing the literals of formulas.
#include "model/StateFormula.h"

#include <algorithm>
#include "model/Atom.h"

void StateFormula::setOperat(std::string const& word) {
    if (word == "and" || word == "or")
        operat = word;
}

void StateFormula::copyAtoms(std::vector<Atom*>* into) const {
    for (auto const& literal : atoms)
        into->push_back(literal.second);
    for (auto const& nested : stateFormulas)
        nested->copyAtoms(into);
}

void StateFormula::copyAtoms(SignedAtoms* into) const {
    for (auto const& literal : atoms)
        into->insert(literal);
    for (auto const& nested : stateFormulas)
        nested->copyAtoms(into);
}

std::vector<Atom*> StateFormula::getAllAtoms() const {
    std::vector<Atom*> all;
    copyAtoms(&all);
    return all;
}

SignedAtoms StateFormula::getAllSignedAtoms() const {
    SignedAtoms all;
    copyAtoms(&all);
    return all;
}

bool StateFormula::eq(StateFormula const* other) const {
    SignedAtoms const mine = getAllSignedAtoms();
    SignedAtoms const theirs = other->getAllSignedAtoms();
    return std::all_of(mine.begin(), mine.end(), [&](auto const& literal) {
        return std::find(theirs.begin(), theirs.end(), literal) != theirs.end();
    });
}

void StateFormula::showStateFormula(std::ostream& out) const {
    if (negated)
        out << "non - ";
    for (auto const& nested : stateFormulas) {
        nested->showStateFormula(out);
        out << " " << operat << " ";
    }
    if (atoms.empty())
        return;
    out << "(";
    for (auto const& [sign, atom] : atoms) {
        out << (sign ? "" : "!") << atom->getId();
        // Beside nested formulas the atoms stand without a separator.
        if (stateFormulas.empty())
            out << " " << operat << " ";
    }
    out << ")";
}
