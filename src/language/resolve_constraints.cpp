// Lists of variables, and equations that hold in every step.
#include "language/resolver.h"

void Resolver::list(ListNode const& node, Scope* scope) {
    for (Expr const& path : node.names) {
        if (node.kind == ListKind::import) {
            Entity const found = lookup(path, scope);
            bool const isCommand = found.kind == Entity::choice &&
                                   plant.choice(found.reference).kind == ChoiceKind::command;
            if (isCommand && scope->component == nowhere)
                messages.error(path.range, "commands are imported by a component",
                               "write it in a type");
            else if (isCommand)
                plant.components[static_cast<std::size_t>(scope->component)].imported.push_back(
                    found.reference);
            else if (found.kind != Entity::bad)
                messages.error(path.range, written(path.range) + " is no command of a component",
                               "a type imports commands of other components");
            continue;
        }
        QuantityRef const quantity = quantityOf(path, scope, "a variable");
        if (quantity == nowhere)
            continue;
        auto& into = node.kind == ListKind::input     ? plant.inputs
                     : node.kind == ListKind::measure ? plant.measures
                                                      : plant.displays;
        if (plant.quantity(quantity).isParameter && node.kind != ListKind::display)
            messages.error(path.range, written(path.range) + " is a parameter, and stays as it is",
                           "declare it as a variable");
        else if (std::find(into.begin(), into.end(), quantity) != into.end())
            messages.error(path.range, written(path.range) + " stands in this list already",
                           "name it once");
        else
            into.push_back(quantity);
    }
}

void Resolver::constraint(ConstraintNode const& node, Scope* scope, TextRange const& range) {
    QuantityRef const target =
        quantityOf(node.target, scope, "the variable that the constraint is about");
    if (target != nowhere && plant.quantity(target).isParameter)
        messages.error(node.target.range, "a parameter stays as it is",
                       "constrain a variable by it");
    std::optional<FlatExpression> value = expression(node.value, scope);
    if (target != nowhere && value)
        plant.constraints.push_back({target, nowhere, std::move(*value), range});
}

void Resolver::define(DefineNode const& node, Scope* scope, TextRange const& range) {
    if (scope->component == nowhere) {
        messages.error(range, "a part of constraints is named in a type", "move this into a type");
        return;
    }
    Entity const* found = find(scope, node.name.text);
    std::optional<FlatExpression> value = expression(node.value, scope);
    if (found != nullptr && found->kind == Entity::defined && value)
        plant.constraints.push_back({nowhere, found->reference, std::move(*value), range});
}

// ---- Expressions over variables ----

std::optional<FlatExpression> Resolver::combined(FlatExpression::Kind kind,
                                                 std::optional<FlatExpression> left,
                                                 std::optional<FlatExpression> right) {
    if (!left || !right)
        return std::nullopt;
    FlatExpression result{kind, {}, nowhere, {}};
    result.parts.push_back(std::move(*left));
    result.parts.push_back(std::move(*right));
    return result;
}

// What is of numbers alone is worked out.
std::optional<FlatExpression> Resolver::expression(Expr const& expr, Scope* scope) {
    if (expr.kind == ExprKind::name) {
        Entity const found = lookup(expr, scope);
        bool const isVariable =
            found.kind == Entity::quantity && !plant.quantity(found.reference).isParameter;
        if (isVariable)
            return FlatExpression{FlatExpression::quantity, {}, found.reference, {}};
        if (found.kind == Entity::defined)
            return FlatExpression{FlatExpression::defined, {}, found.reference, {}};
    }
    bool const compound = expr.kind == ExprKind::sum || expr.kind == ExprKind::product ||
                          expr.kind == ExprKind::power || expr.kind == ExprKind::negation;
    auto const isVaried = [&](auto const& self, Expr const& part) -> bool {
        if (part.kind == ExprKind::name) {
            Entity const found = lookup(part, scope, true);
            return found.kind == Entity::defined ||
                   (found.kind == Entity::quantity && !plant.quantity(found.reference).isParameter);
        }
        return std::any_of(part.parts.begin(), part.parts.end(),
                           [&](Expr const& inner) { return self(self, inner); });
    };
    if (!compound || !isVaried(isVaried, expr)) {
        std::optional<Value> const value = number(expr, scope);
        if (!value)
            return std::nullopt;
        return FlatExpression{FlatExpression::constant, *value, nowhere, {}};
    }
    if (expr.kind == ExprKind::negation) {
        std::optional<FlatExpression> inner = expression(expr.parts.front(), scope);
        if (!inner)
            return std::nullopt;
        FlatExpression result{FlatExpression::negate, {}, nowhere, {}};
        result.parts.push_back(std::move(*inner));
        return result;
    }
    if (expr.kind == ExprKind::power)
        return combined(FlatExpression::power, expression(expr.parts[0], scope),
                        expression(expr.parts[1], scope));
    std::optional<FlatExpression> result = expression(expr.parts.front(), scope);
    for (std::size_t i = 1; i < expr.parts.size(); ++i) {
        char const how = expr.operators[i];
        result = combined(how == '+'   ? FlatExpression::add
                          : how == '-' ? FlatExpression::subtract
                          : how == '*' ? FlatExpression::multiply
                                       : FlatExpression::divide,
                          std::move(result), expression(expr.parts[i], scope));
    }
    return result;
}
