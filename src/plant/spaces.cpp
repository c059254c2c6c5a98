// Intervals of conditions. Bounds are compared with their brackets, so that two spaces that meet in
// a point neither leave it out nor hold it twice.
#include "plant/spaces.h"

#include <algorithm>
#include <cmath>

namespace {

std::optional<s_Objet> leafValue(s_GVar const* gvar) {
    if (gvar == nullptr || gvar->kind != GV_CONST || !isValue(gvar->value))
        return std::nullopt;
    return gvar->value;
}

// An operand with a variable is read and not worked out.
std::optional<s_Objet> operandValue(s_Expr const* operand) {
    if (operand == nullptr)
        return std::nullopt;
    return operand->gvar != nullptr ? leafValue(operand->gvar) : constantValue(*operand);
}

// As the engine does it, the power being right to the left.
void combine(int op, s_Objet* left, s_Objet* right) {
    if (op == EXPR_ADD) {
        sn_addObjet(left, right);
    } else if (op == EXPR_SUB) {
        sn_subObjet(left, right);
    } else if (op == EXPR_MUL) {
        sn_mulObjet(left, right);
    } else if (op == EXPR_DIV) {
        sn_divObjet(left, right);
    } else {
        sn_logObjet(right);
        sn_mulObjet(left, right);
        sn_expObjet(left);
    }
}

bool isBelow(range const& a, range const& b) {
    return a.inf < b.inf || (a.inf == b.inf && isInfClosed(a) && !isInfClosed(b));
}

bool isEmpty(range const& r) {
    return r.inf > r.sup || (r.inf == r.sup && !(isInfClosed(r) && isSupClosed(r)));
}

range closedAtTheEnds(range r) {
    if (r.inf == -DBL_MAX)
        r.infClosed = 1;
    if (r.sup == DBL_MAX)
        r.supClosed = 1;
    return r;
}

Space asSpace(s_Objet const& value) {
    range const where = isReal(value) ? range{value.real, value.real, 1, 1} : value.rng;
    return {isEmpty(where), closedAtTheEnds(where)};
}

}  // namespace

std::optional<s_Objet> constantValue(s_Expr const& expr) {
    if (expr.op == EXPR_CONST || expr.op == EXPR_VAR)
        return leafValue(expr.gvar);
    if (expr.op < EXPR_CONST || expr.op > EXPR_NEG)
        return std::nullopt;
    std::optional<s_Objet> left = operandValue(expr.left);
    if (!left)
        return std::nullopt;
    if (expr.op == EXPR_NEG) {
        sn_minusObjet(&*left);
        return left;
    }
    std::optional<s_Objet> right = operandValue(expr.right);
    if (!right)
        return std::nullopt;
    combine(expr.op, &*left, &*right);
    return left;
}

Space intersection(Space const& a, Space const& b) {
    range common = isBelow(a.where, b.where) ? b.where : a.where;
    range const& lower =
        a.where.sup < b.where.sup || (a.where.sup == b.where.sup && !isSupClosed(a.where))
            ? a.where
            : b.where;
    common.sup = lower.sup;
    common.supClosed = lower.supClosed;
    return {a.empty || b.empty || isEmpty(common), common};
}

std::optional<Space> spaceOf(s_Condition const& condition, s_Variable const* variable) {
    if (condition.kind == COND_AND) {
        if (condition.left == nullptr || condition.right == nullptr)
            return std::nullopt;
        std::optional<Space> const left = spaceOf(*condition.left, variable);
        std::optional<Space> const right = spaceOf(*condition.right, variable);
        if (!left || !right)
            return std::nullopt;
        return intersection(*left, *right);
    }
    bool const compares = condition.kind == COND_EXPR && condition.expr != nullptr &&
                          condition.expr->gvar != nullptr && condition.expr->gvar->var == variable;
    std::optional<s_Objet> const value =
        compares ? constantValue(*condition.expr) : std::optional<s_Objet>{};
    if (!value || std::isnan(sn_infOf(*value)) || std::isnan(sn_supOf(*value)))
        return std::nullopt;
    return asSpace(*value);
}

std::vector<range> gapsBetween(std::vector<Space> spaces, range const& domain) {
    std::sort(spaces.begin(), spaces.end(),
              [](Space const& a, Space const& b) { return isBelow(a.where, b.where); });
    std::vector<range> gaps;
    // All of the domain up to here is covered or told; the end itself when it is closed.
    range covered = {domain.inf, domain.inf, 1, static_cast<unsigned char>(!isInfClosed(domain))};
    auto const tellUpTo = [&](double end, bool endIsFree) {
        range const gap = {covered.sup, end, static_cast<unsigned char>(!isSupClosed(covered)),
                           static_cast<unsigned char>(endIsFree)};
        if (!isEmpty(gap))
            gaps.push_back(gap);
    };
    for (Space const& given : spaces) {
        Space const space = intersection(given, {false, domain});
        if (space.empty)
            continue;
        tellUpTo(space.where.inf, !isInfClosed(space.where));
        bool const further = space.where.sup > covered.sup ||
                             (space.where.sup == covered.sup && isSupClosed(space.where));
        if (further)
            covered = space.where;
    }
    tellUpTo(domain.sup, isSupClosed(domain));
    return gaps;
}
