// Constraints between variables, and the expressions of settings.
#include "continuous/sorn-runt.h"
#include "language/lowering.h"

// A split hands the value back to every variable of a constraint, so it must hold what the variable
// can be.
s_GVar* Lowering::gvarOf(QuantityRef reference) {
    auto const place = static_cast<std::size_t>(reference);
    if (gvars[place] != nullptr)
        return gvars[place];
    FlatQuantity const& from = flat.quantity(reference);
    s_GVar* made =
        own[static_cast<std::size_t>(from.component)].part->constrained(variables[place]);
    made->value = from.start ? from.start->object() : *variables[place]->domain;
    return gvars[place] = made;
}

s_Expr* Lowering::leaf(s_GVar* gvar) {
    auto expr = std::make_unique<s_Expr>();
    expr->op = gvar->kind == GV_CONST ? EXPR_CONST : EXPR_VAR;
    expr->gvar = gvar;
    return adoptExpr(rt, std::move(expr));
}

s_Expr* Lowering::expressionOf(FlatExpression const& from) {
    switch (from.kind) {
        case FlatExpression::constant:
            return leaf(mkConstant(rt, from.value.object()));
        case FlatExpression::quantity:
            return leaf(gvarOf(from.reference));
        case FlatExpression::defined:
            return leaf(defined[static_cast<std::size_t>(from.reference)]);
        default:
            break;
    }
    auto expr = std::make_unique<s_Expr>();
    expr->op = EXPR_ADD + (from.kind - FlatExpression::add);
    expr->left = expressionOf(from.parts[0]);
    if (from.parts.size() > 1)
        expr->right = expressionOf(from.parts[1]);
    // Required by the engine: it raises the right operand to the power of the left one.
    if (from.kind == FlatExpression::power)
        std::swap(expr->left, expr->right);
    return adoptExpr(rt, std::move(expr));
}

void Lowering::makeConstraints() {
    for (FlatConstraint const& from : flat.constraints) {
        s_Expr* right = expressionOf(from.value);
        // The top of a constraint is an operation.
        if (right->gvar != nullptr) {
            auto sum = std::make_unique<s_Expr>();
            sum->op = EXPR_ADD;
            sum->left = right;
            sum->right = leaf(mkConstant(rt, makeReal(0.0)));
            right = adoptExpr(rt, std::move(sum));
        }
        right->gvar = from.target != nowhere ? gvarOf(from.target)
                                             : defined[static_cast<std::size_t>(from.defines)];
        builder.globalConstraint(right);
    }
}
