// Sub-formulas and printing of component constraints.
#include "model/Formula.h"

#include <iostream>

void Formula::addFormula(std::unique_ptr<Formula> formula) {
    if (!formulas)
        formulas = std::make_unique<Formulas>();
    formulas->push_back(std::move(formula));
}

void Formula::showFormula() const {
    if (pre) {
        pre->showStateFormula();
        std::cout << " => ";
    }
    if (post)
        post->showStateFormula();
    if (!formulas) {
        std::cout << "\n";
        return;
    }
    char const* separator = "";
    for (auto const& formula : *formulas) {
        std::cout << separator;
        formula->showFormula();
        separator = "\t\t";
    }
}
