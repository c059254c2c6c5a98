// Numbers from references. No condition or expression may hold itself.
#include "plant/numbering.h"

influType kindOfCauses(std::vector<s_Influence*> const& causes) {
    for (s_Influence const* cause : causes)
        if (cause != nullptr && cause->type != INF_COUPLING)
            return cause->type;
    return INF_STATIC;
}

int longestDelayFrom(s_runtime const& rt, s_Variable const* variable) {
    int longest = 0;
    for (auto const& influence : rt.influ)
        if (influence->cause == variable)
            longest = std::max(longest, influence->delayMax);
    return longest;
}

namespace {

// The operands of *expr* name *gvar*; its own variable is what it constrains.
bool readsBelow(s_Expr const* expr, s_GVar const* gvar);

// A node with a variable is read and not worked out.
bool reads(s_Expr const* operand, s_GVar const* gvar) {
    if (operand == nullptr)
        return false;
    return operand->gvar != nullptr ? operand->gvar == gvar : readsBelow(operand, gvar);
}

bool readsBelow(s_Expr const* expr, s_GVar const* gvar) {
    return reads(expr->left, gvar) || reads(expr->right, gvar);
}

std::vector<int> behindTheirCount(std::vector<int> numbers) {
    if (!numbers.empty())
        numbers.insert(numbers.begin(), static_cast<int>(numbers.size()));
    return numbers;
}

}  // namespace

bool bounds(s_Condition const* condition, s_Variable const* variable) {
    if (condition == nullptr)
        return false;
    if (condition->kind == COND_AND)
        return bounds(condition->left, variable) || bounds(condition->right, variable);
    return condition->kind == COND_EXPR && condition->expr != nullptr &&
           condition->expr->gvar != nullptr && condition->expr->gvar->var == variable;
}

std::vector<int> conditionsBounding(s_runtime const& rt, s_Variable const* variable) {
    std::vector<int> numbers;
    for (std::size_t i = 0; i < rt.condi.size(); ++i)
        if (rt.condi[i]->atom != nullptr && bounds(rt.condi[i], variable))
            numbers.push_back(static_cast<int>(i));
    return numbers;
}

std::vector<int> constraintsOn(s_runtime const& rt, s_GVar const* gvar) {
    std::vector<int> numbers;
    for (std::size_t i = 0; i < rt.aC.size(); ++i)
        if (rt.aC[i]->gvar == gvar)
            numbers.push_back(static_cast<int>(i));
    return behindTheirCount(std::move(numbers));
}

std::vector<int> constraintsReading(s_runtime const& rt, s_GVar const* gvar) {
    std::vector<int> numbers;
    for (std::size_t i = 0; i < rt.gC.size(); ++i)
        if (readsBelow(rt.gC[i], gvar))
            numbers.push_back(static_cast<int>(i));
    return behindTheirCount(std::move(numbers));
}
