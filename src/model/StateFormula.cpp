// Collecting, comparing and printing the literals of formulas.
#include "model/StateFormula.h"

#include <algorithm>
#include <iostream>

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

void StateFormula::showStateFormula() const {
    if (negated)
        std::cout << "non - ";
    for (auto const& nested : stateFormulas) {
        nested->showStateFormula();
        std::cout << " " << operat << " ";
    }
    if (atoms.empty())
        return;
    std::cout << "(";
    for (auto const& [sign, atom] : atoms) {
        std::cout << (sign ? "" : "!") << atom->getId();
        // Beside nested formulas the atoms stand without a separator.
        if (stateFormulas.empty())
            std::cout << " " << operat << " ";
    }
    std::cout << ")";
}
