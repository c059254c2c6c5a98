// Expressions over constraint variables, and the fixed point of the global constraints.
//
// A constraint is an expression whose gvar is the constrained variable. A variable is narrowed by
// the constraints on it until nothing becomes strictly narrower; a constraint comes back to the
// agenda only after a variable that it depends on was narrowed.
#include "continuous/sorn-runt.h"

#include <cassert>

namespace {

s_Objet operandValue(s_runtime* rt, s_Expr const* operand) {
    assert(operand != nullptr && (operand->op != EXPR_CONST || operand->gvar != nullptr));
    // Required: an operand that names a variable is read, not evaluated again.
    if (operand->op == EXPR_CONST || operand->gvar != nullptr)
        return operand->gvar->value;
    sn_evalSolFunc(rt, operand);
    return rt->engine->TMP4;
}

// left op= right. A refused division leaves left.
void combine(int op, s_Objet* left, s_Objet* right) {
    switch (op) {
        case EXPR_ADD:
            sn_addObjet(left, right);
            break;
        case EXPR_SUB:
            sn_subObjet(left, right);
            break;
        case EXPR_MUL:
            sn_mulObjet(left, right);
            break;
        case EXPR_DIV:
            sn_divObjet(left, right);
            break;
        default:
            // Required: the power is right to the left, exp(left x log(right)).
            sn_logObjet(right);
            sn_mulObjet(left, right);
            sn_expObjet(left);
            break;
    }
}

s_Objet evaluate(s_runtime* rt, s_Expr const* expr) {
    if (expr->op == EXPR_CONST || expr->op == EXPR_VAR) {
        assert(expr->gvar != nullptr);
        return expr->gvar->value;
    }
    if (expr->op == EXPR_NEG) {
        s_Objet left = operandValue(rt, expr->left);
        sn_minusObjet(&left);
        return left;
    }
    if (expr->op > EXPR_NEG)
        return s_Objet{};  // no such operation: no value
    s_Objet right = operandValue(rt, expr->right);
    s_Objet left = operandValue(rt, expr->left);
    combine(expr->op, &left, &right);
    return left;
}

// Narrows TMP1 by every agenda constraint on *gvar*; returns whether they contradict the value.
bool narrowByConstraints(s_runtime* rt, s_GVar* gvar) {
    s_engine& engine = *rt->engine;
    bool contradiction = false;
    for (std::size_t j = 0; j < rt->gC.size(); ++j) {
        if (!rt->inAc[j] || rt->gC[j]->gvar != gvar)
            continue;
        if (!contradiction) {
            sn_evalSolFunc(rt, rt->gC[j]);
            if (!sn_interObjet(&engine.TMP1, &engine.TMP4)) {
                // Required: the constraint's own value takes the place of the old one.
                sn_putObjet(&engine.TMP4, &gvar->value);
                contradiction = true;
            }
        }
        rt->inAc[j] = 0;
    }
    return contradiction;
}

// One pass over the agenda; returns whether nothing came back to it.
bool passIsStable(s_runtime* rt) {
    bool stable = true;
    for (std::size_t i = 0; i < rt->gC.size(); ++i) {
        if (!rt->inAc[i])
            continue;
        s_GVar* gvar = rt->gC[i]->gvar;
        assert(gvar != nullptr);  // a constraint constrains something
        s_Objet* const narrowed = &rt->engine->TMP1;
        sn_putObjet(&gvar->value, narrowed);
        if (narrowByConstraints(rt, gvar) || !sn_inObjet(narrowed, &gvar->value))
            continue;
        sn_putObjet(narrowed, &gvar->value);
        if (sn_updateAgenda(rt, gvar))
            stable = false;
    }
    return stable;
}

}  // namespace

void sn_evalSolFunc(s_runtime* rt, s_Expr const* expr) {
    rt->engine->TMP4 = evaluate(rt, expr);
}

s_Objet* sn_evalExpr(s_runtime* rt, s_Expr const* expr) {
    sn_evalSolFunc(rt, expr);
    return &rt->engine->TMP4;
}

void sn_fillAgenda(s_runtime* rt) {
    for (int& flag : rt->inAc)
        flag = 1;
}

int sn_updateAgenda(s_runtime* rt, s_GVar const* gvar) {
    int result = 0;
    for (std::size_t position = 1; position < gvar->gcIdx.size(); ++position) {
        rt->inAc[static_cast<std::size_t>(gvar->gcIdx[position])] = 1;
        result = 1;
    }
    return result;
}

void sn_globalConstraints(s_runtime* rt) {
    assert(rt->inAc.size() == rt->gC.size());
    sn_fillAgenda(rt);
    for (s_GVar* gvar : rt->gV) {
        if (gvar->kind == GV_VARIABLE)
            sn_putObjet(&gvar->var->old, &gvar->value);
        else if (gvar->kind == GV_INTERMEDIATE)
            sn_putObjet(objMax, &gvar->value);
    }
    while (!passIsStable(rt)) {
    }
    for (s_GVar const* gvar : rt->gV)
        if (gvar->kind == GV_VARIABLE)
            sn_putObjet(&gvar->value, &gvar->var->old);
}
