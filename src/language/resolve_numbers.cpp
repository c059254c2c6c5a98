// Numbers: constants, intervals and parameters, with their units.
#include <cfloat>
#include <cmath>

#include "language/resolver.h"

namespace {

Value real(double number) {
    Value value;
    value.low = value.high = number;
    return value;
}

Value spanning(std::initializer_list<double> ends, bool isInterval) {
    Value value;
    value.low = std::min(ends);
    value.high = std::max(ends);
    value.isInterval = isInterval;
    return value;
}

Value negated(Value value) {
    std::swap(value.low, value.high);
    value.low = -value.low;
    value.high = -value.high;
    return value;
}

// Of a sum: a part without a unit takes that of the others.
void takeUnits(Value& into, Value const& a, Value const& b) {
    into.unit = a.unit ? a.unit : b.unit;
    into.unitMatters = a.unitMatters || b.unitMatters;
}

Value plus(Value const& a, Value const& b) {
    Value value = spanning({a.low + b.low, a.high + b.high}, a.isInterval || b.isInterval);
    takeUnits(value, a, b);
    return value;
}

// A number without a unit is dimensionless beside one that has one.
MaybeUnit asFactor(Value const& value) {
    return value.unit || value.unitMatters ? value.unit : Unit{};
}

Value times(Value const& a, Value const& b) {
    Value value = spanning({a.low * b.low, a.low * b.high, a.high * b.low, a.high * b.high},
                           a.isInterval || b.isInterval);
    value.unitMatters = a.unitMatters || b.unitMatters;
    if (value.unitMatters)
        value.unit = asFactor(a) * asFactor(b);
    return value;
}

bool isFinite(Value const& value) {
    return std::isfinite(value.low) && std::isfinite(value.high);
}

}  // namespace

std::optional<Value> Resolver::number(Expr const& expr, Scope* scope) {
    switch (expr.kind) {
        case ExprKind::number: {
            Value value = real(std::isinf(expr.number) ? DBL_MAX : expr.number);
            value.unit = unitOf(expr.unit, messages);
            value.unitMatters = expr.unit.has_value();
            return value;
        }
        case ExprKind::interval:
            return interval(expr, scope);
        case ExprKind::name:
            return namedNumber(expr, scope);
        case ExprKind::sum:
            return sum(expr, scope);
        case ExprKind::product:
            return product(expr, scope);
        case ExprKind::power:
            return power(expr, scope);
        case ExprKind::negation:
            if (std::optional<Value> const value = number(expr.parts.front(), scope))
                return negated(*value);
            return std::nullopt;
        case ExprKind::delayed:
            messages.error(expr.range, "only a term of an equation can be delayed",
                           "let a variable follow from it, and use that");
            return std::nullopt;
        default:  // a labelled term: conditions stand in no arithmetic
            messages.error(expr.range, "a label stands before a whole term",
                           "move it to the front");
            return std::nullopt;
    }
}

std::optional<Value> Resolver::namedNumber(Expr const& expr, Scope* scope) {
    Entity const found = lookup(expr, scope);
    if (found.kind == Entity::number)
        return found.value;
    if (found.kind == Entity::bad)
        return std::nullopt;
    if (found.kind == Entity::quantity && plant.quantity(found.reference).isParameter) {
        Value const* value = valueOf(found.reference);
        return value == nullptr ? std::nullopt : std::optional<Value>(*value);
    }
    messages.error(expr.range, written(expr.range) + " is not a number",
                   found.kind == Entity::quantity
                       ? "a variable changes from step to step: use a constant or a parameter here"
                       : "use a constant or a parameter here");
    return std::nullopt;
}

std::optional<Value> Resolver::interval(Expr const& expr, Scope* scope) {
    std::optional<Value> const low = number(expr.parts[0], scope);
    std::optional<Value> const high = number(expr.parts[1], scope);
    if (!low || !high)
        return std::nullopt;
    if (low->low > high->high) {
        messages.error(expr.range, "this interval ends before it begins",
                       "write the smaller number first");
        return std::nullopt;
    }
    Value value = spanning({low->low, high->high}, true);
    takeUnits(value, *low, *high);
    if (expr.unit) {
        value.unit = unitOf(expr.unit, messages);
        value.unitMatters = true;
    }
    return value;
}

std::optional<Value> Resolver::sum(Expr const& expr, Scope* scope) {
    std::optional<Value> total;
    for (std::size_t i = 0; i < expr.parts.size(); ++i) {
        std::optional<Value> part = number(expr.parts[i], scope);
        if (!part)
            return std::nullopt;
        if (expr.operators[i] == '-')
            part = negated(*part);
        if (total)
            checkUnit(expr.parts[i].range, "this part", part->unit, total->unit);
        total = total ? plus(*total, *part) : *part;
    }
    return total;
}

std::optional<Value> Resolver::product(Expr const& expr, Scope* scope) {
    std::optional<Value> result;
    for (std::size_t i = 0; i < expr.parts.size(); ++i) {
        std::optional<Value> const part = number(expr.parts[i], scope);
        if (!part)
            return std::nullopt;
        if (!result)
            result = part;
        else if (expr.operators[i] == '*')
            result = multiplied(*result, *part);
        else
            result = dividedBy(*result, *part, expr.parts[i].range);
        if (!result)
            return std::nullopt;
        if (!isFinite(*result)) {
            messages.error(expr.range, "this number is too large to be held",
                           "choose units in which it is smaller");
            return std::nullopt;
        }
    }
    return result;
}

Value Resolver::multiplied(Value const& a, Value const& b) {
    return times(a, b);
}

std::optional<Value> Resolver::dividedBy(Value const& a, Value const& b, TextRange const& range) {
    if (b.low <= 0.0 && b.high >= 0.0) {
        messages.error(
            range, b.isInterval ? "this divides by an interval that holds 0" : "this divides by 0",
            "divide by something else than 0");
        return std::nullopt;
    }
    Value result = spanning({a.low / b.low, a.low / b.high, a.high / b.low, a.high / b.high},
                            a.isInterval || b.isInterval);
    result.unitMatters = a.unitMatters || b.unitMatters;
    if (result.unitMatters)
        result.unit = asFactor(a) / asFactor(b);
    return result;
}

std::optional<Value> Resolver::power(Expr const& expr, Scope* scope) {
    std::optional<Value> const base = number(expr.parts[0], scope);
    std::optional<Value> const exponent = number(expr.parts[1], scope);
    if (!base || !exponent)
        return std::nullopt;
    Value const result = real(std::pow(base->low, exponent->low));
    if (base->isInterval || exponent->isInterval || !isFinite(result)) {
        messages.error(expr.range, "this power is no number", "raise a number to a number");
        return std::nullopt;
    }
    return result;
}

std::optional<double> Resolver::plainNumber(Expr const& expr, Scope* scope, char const* what) {
    std::optional<Value> const value = number(expr, scope);
    if (value && value->isInterval)
        messages.error(expr.range, std::string(what) + " cannot be an interval",
                       "write one number");
    return value && !value->isInterval ? std::optional<double>(value->low) : std::nullopt;
}

std::optional<int> Resolver::wholeNumber(Expr const& expr, Scope* scope, char const* what,
                                         int least) {
    constexpr double greatest = 1e6;
    std::optional<double> const value = plainNumber(expr, scope, what);
    if (!value)
        return std::nullopt;
    if (*value != std::floor(*value) || *value < least || *value > greatest) {
        messages.error(expr.range,
                       std::string(what) + " must be a whole number, of at least " +
                           std::to_string(least) + " and at most 1000000",
                       "write such a number");
        return std::nullopt;
    }
    return static_cast<int>(*value);
}

// A number without a unit is in seconds.
std::optional<double> Resolver::duration(Expr const& expr, Scope* scope) {
    std::optional<Value> const value = number(expr, scope);
    if (!value)
        return std::nullopt;
    if (value->unit && !sameDimension(*value->unit, seconds())) {
        messages.error(expr.range, "this is in " + textOf(*value->unit) + ", and no time",
                       "give it in s, min or h");
        return std::nullopt;
    }
    if (value->isInterval || value->low <= 0.0) {
        messages.error(expr.range, "a time must be one number above 0", "give it in seconds");
        return std::nullopt;
    }
    return value->unit ? value->low * value->unit->factor : value->low;
}

bool Resolver::mentionsVariable(Expr const& expr, Scope* scope) {
    if (expr.kind == ExprKind::name) {
        Entity const found = lookup(expr, scope, true);
        return found.kind == Entity::quantity && !plant.quantity(found.reference).isParameter;
    }
    return std::any_of(expr.parts.begin(), expr.parts.end(),
                       [&](Expr const& part) { return mentionsVariable(part, scope); });
}

// ---- Quantities ----

Value const* Resolver::valueOf(QuantityRef parameter) {
    settleQuantity(parameter);
    auto const& start = plant.quantities[static_cast<std::size_t>(parameter)].start;
    return start ? &*start : nullptr;
}

// Works its start and its domain out, once.
void Resolver::settleQuantity(QuantityRef reference) {
    Pending& work = pending[static_cast<std::size_t>(reference)];
    if (work.node == nullptr)
        return;
    QuantityNode const& node = *work.node;
    if (work.busy) {
        messages.error(node.name.range,
                       "the value of " + node.name.text + " is worked out from itself",
                       "give it a number");
        return;
    }
    work.busy = true;
    MaybeUnit const unit = unitOf(node.unit, messages);
    std::optional<Value> start, domain;
    if (node.start && (start = number(*node.start, work.scope)))
        checkUnit(node.start->range, "this value", start->unit, unit);
    if (node.domain && (domain = number(*node.domain, work.scope)))
        checkUnit(node.domain->range, "this interval", domain->unit, unit);
    if (domain && !domain->isInterval) {
        messages.error(node.domain->range, "bounds are an interval", "write [lowest, highest]");
        domain.reset();
    }
    if (node.isParameter && start && start->isInterval) {
        messages.error(node.start->range, "a parameter is one number",
                       "use the interval in the equations, or a constant of that name");
        start.reset();
    }
    FlatQuantity& quantity = plant.quantities[static_cast<std::size_t>(reference)];
    quantity.unit = unit ? unit : start && node.isParameter ? start->unit : std::nullopt;
    quantity.start = start;
    quantity.domain = domain;
    if (start && node.isParameter && quantity.unit) {
        quantity.start->unit = quantity.unit;
        quantity.start->unitMatters = true;
    }
    pending[static_cast<std::size_t>(reference)] = {nullptr, nullptr, false};
}

// ---- Units ----

void Resolver::checkUnit(TextRange const& range, std::string const& what, MaybeUnit const& found,
                         MaybeUnit const& wanted) {
    if (!found || !wanted || *found == *wanted)
        return;
    messages.error(
        range, what + " is in " + textOf(*found) + ", and " + textOf(*wanted) + " belongs here",
        sameDimension(*found, *wanted) ? "units are not converted: write it in " + textOf(*wanted)
                                       : "correct the unit, or the equation");
}
