// The truth of conditions on the values of a runtime.
//
// All relations are certain ones: a condition is false when its truth depends on where a value lies
// in its interval, and its negation is then true. So a model gives two opposite relations as two
// conditions, and the split of the validity space resolves such intervals.
#include "continuous/sorn-runt.h"

#include <cassert>

namespace {

// Required: two values that are equal, or one strictly inside the other.
boolVal insideOrEqual(s_Objet const* value, s_Objet const* space) {
    return sn_inObjet(value, space) || sn_eqObjet(value, space) ? 1 : 0;
}

boolVal evalRelation(s_Condition const* condition) {
    assert(condition->var != nullptr && (condition->var2 != nullptr || condition->value));
    s_Objet const* left = &condition->var->old;
    s_Objet const* right = condition->var2 != nullptr ? &condition->var2->old : &*condition->value;
    switch (condition->op) {
        case REL_EQ:
            return sn_eqObjet(left, right);
        case REL_DIFF:
            return sn_diffObjet(left, right);
        case REL_LE:
            return sn_ltObjet(left, right) || sn_eqObjet(left, right) ? 1 : 0;
        case REL_LT:
            return sn_ltObjet(left, right);
        case REL_GE:
            return sn_geObjet(left, right);
        case REL_GT:
            return sn_geObjet(left, right) && !sn_eqObjet(left, right) ? 1 : 0;
        case REL_IN:
            return sn_inObjet(left, right);
        default:
            return 0;
    }
}

boolVal evalExpression(s_Condition const* condition, s_runtime* rt) {
    assert(condition->var != nullptr && condition->expr != nullptr);
    s_Variable const* variable = condition->var;
    // A copy: the evaluation of the expression must not see the scratch objects.
    s_Objet const left = variable->old.type == OBJ_UNSET ? variable->new_ : variable->old;
    sn_evalSolFunc(rt, condition->expr);
    return condition->op == REL_EQ ? sn_eqObjet(&left, &rt->engine->TMP4)
                                   : insideOrEqual(&left, &rt->engine->TMP4);
}

}  // namespace

boolVal sn_evalCond(s_Condition* condition, s_runtime* rt) {
    switch (condition->kind) {
        case COND_CONST:
            return condition->val;
        case COND_REL:
            return evalRelation(condition);
        case COND_OR: {
            assert(condition->left != nullptr && condition->right != nullptr);
            // Both operands are evaluated always.
            boolVal const left = sn_evalCond(condition->left, rt);
            boolVal const right = sn_evalCond(condition->right, rt);
            return left == 1 || right == 1 ? 1 : 0;
        }
        case COND_AND: {
            assert(condition->left != nullptr && condition->right != nullptr);
            boolVal const left = sn_evalCond(condition->left, rt);
            boolVal const right = sn_evalCond(condition->right, rt);
            return left != 0 && right != 0 ? 1 : 0;
        }
        case COND_NOT:
            assert(condition->left != nullptr);
            return sn_evalCond(condition->left, rt) == 1 ? 0 : 1;
        case COND_ATOM:
            return condition->val != 0 ? 1 : 0;
        case COND_EXPR:
            return evalExpression(condition, rt);
        default:
            return 0;
    }
}

int sn_evalCondExpr(s_Condition* condition, s_runtime* rt) {
    if (condition->kind == COND_AND)
        return sn_evalCondExpr(condition->left, rt) == 1 &&
                       sn_evalCondExpr(condition->right, rt) == 1
                   ? 1
                   : 0;
    if (condition->kind != COND_EXPR)
        return 0;
    assert(condition->expr != nullptr && condition->expr->gvar != nullptr);
    s_Objet value = condition->expr->gvar->value;
    sn_evalSolFunc(rt, condition->expr);
    s_Objet const space = rt->engine->TMP4;
    int const equal = sn_eqObjet(&value, &space);
    return sn_interObjet(&value, &space) == 1 || equal ? 1 : 0;
}
