// A component constraint, pre => post, with sub-formulas. The reference model holds none.
//
// A formula owns both sides and its sub-formulas.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/StateFormula.h"

class Formula {
public:
    using Formulas = std::vector<std::unique_ptr<Formula>>;

    Formula() = default;
    // *formulas* may be null: no sub-formulas.
    Formula(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
            std::unique_ptr<Formulas> formulas)
        : pre(std::move(pre)), post(std::move(post)), formulas(std::move(formulas)) {}
    // Required: the last argument is ignored.
    Formula(std::unique_ptr<StateFormula> pre, std::unique_ptr<StateFormula> post,
            std::unique_ptr<Formulas> formulas, bool)
        : Formula(std::move(pre), std::move(post), std::move(formulas)) {}

    void addFormula(std::unique_ptr<Formula> formula);
    std::string getOperat() const { return operat; }
    void setOperat(std::string const& word) { operat = word; }
    void showFormula(std::ostream& out) const;

    std::string operat;                  // free text
    std::unique_ptr<StateFormula> pre;   // may be null
    std::unique_ptr<StateFormula> post;  // may be null
    std::unique_ptr<Formulas> formulas;  // null until a sub-formula is given
};
