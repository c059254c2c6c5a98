// Sub-formulas and printing of component constraints.
#include "model/Formula.h"

void Formula::addFormula(std::unique_ptr<Formula> formula) {
    if (!formulas)
        formulas = std::make_unique<Formulas>();
    formulas->push_back(std::move(formula));
}

void Formula::showFormula(std::ostream& out) const {
    if (pre) {
        pre->showStateFormula(out);
        out << " => ";
    }
    if (post)
        post->showStateFormula(out);
    if (!formulas) {
        out << "\n";
        return;
    }
    char const* separator = "";
    for (auto const& formula : *formulas) {
        out << separator;
        formula->showFormula(out);
        separator = "\t\t";
    }
}
