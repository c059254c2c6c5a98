// The constraint network: expressions that can be worked out, and the numbers by which variables,
// constraints and conditions find each other.
#include <algorithm>
#include <set>

#include "plant/findings.h"
#include "plant/numbering.h"

namespace {

// ---- Expressions ----

bool hasNumber(s_GVar const& gvar) {
    return isValue(gvar.value) && sn_infOf(gvar.value) == sn_infOf(gvar.value) &&
           sn_supOf(gvar.value) == sn_supOf(gvar.value);
}

// What the node lacks in order to be worked out; "" when nothing.
std::string lack(s_Expr const& expr) {
    bool const leaf = expr.op == EXPR_CONST || expr.op == EXPR_VAR;
    if (expr.op < EXPR_CONST || expr.op > EXPR_NEG)
        return "an operator";
    if (leaf && expr.gvar == nullptr)
        return "a value";
    if (leaf && expr.gvar->kind == GV_CONST && !hasNumber(*expr.gvar))
        return "a value that is a number";
    if (!leaf && expr.left == nullptr)
        return "its left operand";
    if (!leaf && expr.op != EXPR_NEG && expr.right == nullptr)
        return "its right operand";
    return "";
}

std::string lackBelow(s_Expr const& expr, bool top) {
    std::string found = lack(expr);
    if (!found.empty() || (!top && expr.gvar != nullptr))
        return found;
    for (s_Expr const* operand : {expr.left, expr.right})
        if (found.empty() && operand != nullptr)
            found = lackBelow(*operand, false);
    return found;
}

void checkExpression(std::string const& name, s_Expr const& expr, Findings& findings) {
    std::string const missing = lackBelow(expr, true);
    if (!missing.empty())
        findings.refuse(name + " cannot be worked out, since it lacks " + missing + ": set it.");
}

void checkConstrained(s_runtime const& rt, std::string const& name, s_Expr const& constraint,
                      Findings& findings) {
    if (constraint.gvar == nullptr)
        findings.refuse(name + " is on no variable: name the one that it constrains.");
    else if (positionIn(rt.gV, constraint.gvar) < 0)
        findings.refuse(name + " is on a variable that is not in gV: add it there.");
}

// ---- Variables of the network ----

std::string nameOfGVar(s_GVar const& gvar, std::size_t i) {
    return "Entry " + std::to_string(i) + " of gV" +
           (gvar.var == nullptr ? "" : " (" + gvar.var->nom + ")");
}

void checkGVar(s_GVar const& gvar, std::string const& name, Findings& findings) {
    if (gvar.kind < GV_CONST || gvar.kind > GV_INTERMEDIATE)
        findings.refuse(name + " is of no kind: make it a variable or an intermediate.");
    else if (gvar.kind == GV_VARIABLE && gvar.var == nullptr)
        findings.refuse(name + " stands for no variable: name one.");
}

std::string textOf(std::vector<int> const& numbers) {
    std::vector<std::string> words;
    for (int const number : numbers)
        words.push_back(std::to_string(number));
    return words.empty() ? "none" : joined(words);
}

// Numbers behind their count; the order means nothing.
bool sameNumbers(std::vector<int> const& given, std::vector<int> const& wanted) {
    return given.size() == wanted.size() &&
           (given.empty() ||
            (given.front() == wanted.front() &&
             std::is_permutation(given.begin() + 1, given.end(), wanted.begin() + 1)));
}

void checkNumbers(std::string const& name, char const* field, std::vector<int> const& given,
                  std::vector<int> const& wanted, Findings& findings) {
    if (!sameNumbers(given, wanted))
        findings.refuse(name + " has in " + field + " the numbers " + textOf(given) +
                        ", and its constraints are, behind their count, " + textOf(wanted) +
                        ": write these.");
}

// An empty list and a count of 0 say the same.
std::vector<int> withoutZero(std::vector<int> const& numbers) {
    return numbers == std::vector<int>{0} ? std::vector<int>{} : numbers;
}

void checkGVars(s_runtime const& rt, Findings& findings) {
    std::multiset<int> slots;
    std::multiset<int> variables;
    for (std::size_t i = 0; i < rt.gV.size(); ++i) {
        s_GVar const& gvar = *rt.gV[i];
        std::string const name = nameOfGVar(gvar, i);
        checkGVar(gvar, name, findings);
        slots.insert(gvar.slot);
        if (gvar.var != nullptr)
            variables.insert(gvar.var->slot);
        if (slots.count(gvar.slot) == 2 ||
            (gvar.var != nullptr && variables.count(gvar.var->slot) == 2))
            findings.refuse(name + " stands in gV twice: keep one entry.");
        checkNumbers(name, "acIdx", withoutZero(gvar.acIdx), constraintsOn(rt, &gvar), findings);
        checkNumbers(name, "gcIdx", withoutZero(gvar.gcIdx), constraintsReading(rt, &gvar),
                     findings);
    }
}

// Variables that a constraint reads and that nothing fills with a value.
void checkLeaves(s_runtime const& rt, s_Expr const& expr, std::string const& name,
                 Findings& findings) {
    for (s_Expr const* operand : {expr.left, expr.right}) {
        if (operand == nullptr)
            continue;
        s_GVar const* gvar = operand->gvar;
        if (gvar == nullptr)
            checkLeaves(rt, *operand, name, findings);
        else if (gvar->kind != GV_CONST && positionIn(rt.gV, gvar) < 0)
            findings.refuse(name + " reads a variable that is not in gV: add it there.");
    }
}

bool isUsed(s_runtime const& rt, std::size_t i) {
    return std::any_of(rt.condPool.begin(), rt.condPool.end(), [i](auto const& condition) {
        auto const& numbers = condition->acIdx;
        return std::find(numbers.begin(), numbers.end(), static_cast<int>(i)) != numbers.end();
    });
}

}  // namespace

void checkConstraints(s_runtime const& rt, Findings& findings) {
    for (std::size_t i = 0; i < rt.aC.size(); ++i) {
        std::string const name = nameOfConstraint(rt, i);
        checkConstrained(rt, name, *rt.aC[i], findings);
        checkExpression(name, *rt.aC[i], findings);
        checkLeaves(rt, *rt.aC[i], name, findings);
        if (!isUsed(rt, i))
            findings.warn(name + " is behind no condition: name it in one, or take it out.");
    }
    for (std::size_t i = 0; i < rt.gC.size(); ++i) {
        std::string const name = "Global constraint " + std::to_string(i);
        checkConstrained(rt, name, *rt.gC[i], findings);
        checkExpression(name, *rt.gC[i], findings);
        checkLeaves(rt, *rt.gC[i], name, findings);
    }
    for (std::size_t i = 0; i < rt.mapExprs.size(); ++i)
        checkExpression("Mapping expression " + std::to_string(i), *rt.mapExprs[i], findings);
    checkGVars(rt, findings);
}
