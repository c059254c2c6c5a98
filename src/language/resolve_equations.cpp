// Equations: each term becomes an influence.
#include <cmath>

#include "language/resolver.h"

void Resolver::equation(EquationNode const& node, Scope* scope, TextRange const& range) {
    QuantityRef const effect = quantityOf(node.target, scope, "the variable that follows");
    if (effect != nowhere && plant.quantity(effect).isParameter)
        messages.error(node.target.range,
                       written(node.target.range) + " is a parameter, and stays as it is",
                       "declare it as a variable");
    std::optional<FlatCondition> when;
    if (node.when && (!(when = condition(*node.when, scope)) || !checkContinuous(*when)))
        return;
    std::vector<Term> terms;
    splitTerms(node.value, false, terms);
    if (terms.size() > 1 && !node.label.name.text.empty()) {
        messages.error(node.label.name.range, "this label stands before several terms",
                       "write a label before each term, as in y = i1: 2 * u + i2: 3 * v");
        return;
    }
    if (!node.label.name.text.empty() && terms.front().label == nullptr)
        terms.front().label = &node.label;
    for (Term const& term : terms)
        if (std::optional<FlatInfluence> made = influence(node, term, effect, scope)) {
            made->when = when;
            if (terms.size() == 1)
                made->range = range;
            plant.influences.push_back(std::move(*made));
        }
}

// ---- Terms ----

void Resolver::splitTerms(Expr const& expr, bool negative, std::vector<Term>& terms) {
    if (expr.kind != ExprKind::sum) {
        splitTerm(expr, {nullptr, &expr, negative}, terms);
        return;
    }
    for (std::size_t i = 0; i < expr.parts.size(); ++i)
        splitTerm(expr.parts[i], {nullptr, &expr.parts[i], negative != (expr.operators[i] == '-')},
                  terms);
}

void Resolver::splitTerm(Expr const& expr, Term term, std::vector<Term>& terms) {
    if (expr.kind == ExprKind::labelled) {
        term.label = &expr.label;
        term.expr = &expr.parts.front();
    }
    terms.push_back(term);
}

std::optional<FlatInfluence> Resolver::influence(EquationNode const& node, Term const& term,
                                                 QuantityRef effect, Scope* scope) {
    Factors factors;
    factors.range = term.expr->range;
    if (!collect(*term.expr, false, scope, factors) || effect == nowhere)
        return std::nullopt;
    ComponentRef const owner =
        scope->component != nowhere ? scope->component : plant.quantity(effect).component;
    FlatInfluence made{};
    made.component = owner;
    made.form = node.form;
    made.effect = effect;
    made.range = term.expr->range;
    std::optional<Value> const gain = gainOf(factors, owner, term.negative);
    if (!gain)
        return std::nullopt;
    made.gain = *gain;
    made.cause = factors.cause;
    made.sharpened = node.sharpened.value_or(node.form != EquationForm::coupling);
    if (node.keeping) {
        made.keeping = wholeNumber(*node.keeping, scope, "what is kept", 1);
        if (!made.keeping)
            return std::nullopt;
    }
    if (!setDelay(factors, scope, made) || !setForm(node, scope, made))
        return std::nullopt;
    checkUnits(made, !factors.numbers.empty());
    made.name = labelOf(term.label, owner, term.expr->range);
    return made;
}

// ---- Factors ----

bool Resolver::collect(Expr const& expr, bool divides, Scope* scope, Factors& factors) {
    if (expr.kind == ExprKind::product) {
        bool good = true;
        for (std::size_t i = 0; i < expr.parts.size(); ++i)
            good = collect(expr.parts[i], divides != (expr.operators[i] == '/'), scope, factors) &&
                   good;
        return good;
    }
    if (expr.kind == ExprKind::negation && mentionsVariable(expr, scope)) {
        Value minusOne;
        minusOne.low = minusOne.high = -1.0;
        factors.numbers.push_back({minusOne, false, nowhere, expr.range});
        return collect(expr.parts.front(), divides, scope, factors);
    }
    if (expr.kind == ExprKind::name)
        return collectName(expr, divides, scope, factors);
    if (expr.kind == ExprKind::delayed) {
        factors.delay = &expr;
        if (expr.parts.front().kind == ExprKind::name)
            return collectName(expr.parts.front(), divides, scope, factors);
        messages.error(expr.range, "only a variable can be delayed",
                       "write x @ 1 for a variable x");
        return false;
    }
    if (expr.kind == ExprKind::labelled) {
        messages.error(expr.range, "a label stands before a whole term", "move it to the front");
        return false;
    }
    if (mentionsVariable(expr, scope)) {
        messages.error(expr.range,
                       expr.kind == ExprKind::power ? "a power of a variable is not linear"
                                                    : "this sum in parentheses holds a variable",
                       expr.kind == ExprKind::power
                           ? "enclose it by an interval times the variable, or use a constraint"
                           : "write its terms one by one");
        return false;
    }
    std::optional<Value> const value = number(expr, scope);
    if (value)
        factors.numbers.push_back({*value, divides, nowhere, expr.range});
    return value.has_value();
}

bool Resolver::collectName(Expr const& expr, bool divides, Scope* scope, Factors& factors) {
    Entity const found = lookup(expr, scope);
    if (found.kind == Entity::number) {
        factors.numbers.push_back({found.value, divides, nowhere, expr.range});
        return true;
    }
    if (found.kind != Entity::quantity) {
        if (found.kind != Entity::bad)
            messages.error(expr.range, written(expr.range) + " is no number and no variable",
                           "an equation is made of these");
        return false;
    }
    if (plant.quantity(found.reference).isParameter) {
        Value const* value = valueOf(found.reference);
        if (value != nullptr)
            factors.numbers.push_back({*value, divides, found.reference, expr.range});
        return value != nullptr;
    }
    if (factors.cause != nowhere || divides) {
        messages.error(factors.cause != nowhere ? factors.range : expr.range,
                       factors.cause != nowhere ? "the product of two variables is not linear"
                                                : "a division by a variable is not linear",
                       "enclose one of them by an interval, or use a constraint");
        return false;
    }
    factors.cause = found.reference;
    return true;
}

// Numbers alone act through a parameter: the last one that is named, or the unit input.
std::optional<Value> Resolver::gainOf(Factors& factors, ComponentRef component, bool negative) {
    if (factors.cause == nowhere) {
        auto const last = std::find_if(
            factors.numbers.rbegin(), factors.numbers.rend(),
            [](Factors::Number const& n) { return n.parameter != nowhere && !n.divides; });
        if (last != factors.numbers.rend()) {
            factors.cause = last->parameter;
            factors.numbers.erase(std::next(last).base());
        } else {
            factors.cause = unitInput(component, factors.range);
            if (factors.cause == nowhere)
                return std::nullopt;
        }
    }
    Value gain;
    gain.low = gain.high = 1.0;
    bool first = true;
    for (Factors::Number const& factor : factors.numbers) {
        std::optional<Value> next = factor.value;
        if (factor.divides)
            next = dividedBy(gain, factor.value, factor.range);
        else if (!first)
            next = multiplied(gain, factor.value);
        if (!next)
            return std::nullopt;
        gain = *next;
        first = false;
    }
    if (negative) {
        std::swap(gain.low, gain.high);
        gain.low = -gain.low;
        gain.high = -gain.high;
    }
    if (std::isfinite(gain.low) && std::isfinite(gain.high))
        return gain;
    messages.error(factors.range, "this number is too large to be held",
                   "choose units in which it is smaller");
    return std::nullopt;
}

// The parameter un of the component, which is 1; made when it is not there.
QuantityRef Resolver::unitInput(ComponentRef component, TextRange const& range) {
    Scope& scope = *members[static_cast<std::size_t>(component)].scope;
    auto const found = scope.names.find("un");
    if (found == scope.names.end()) {
        Entity entity;
        entity.kind = Entity::quantity;
        entity.reference = static_cast<int>(plant.quantities.size());
        scope.names.insert({"un", entity});
        Value one;
        one.low = one.high = 1.0;
        plant.quantities.push_back({component, "un", true, one, {}, {}, range});
        pending.push_back({nullptr, nullptr, false});
        return entity.reference;
    }
    Value const* value = found->second.kind == Entity::quantity &&
                                 plant.quantity(found->second.reference).isParameter
                             ? valueOf(found->second.reference)
                             : nullptr;
    if (value != nullptr && value->low == 1.0)
        return found->second.reference;
    messages.error(range, "numbers alone act through the parameter un, and that is something else",
                   "rename what is called un here, or declare parameter un = 1");
    return nowhere;
}

// ---- Delays ----

bool Resolver::setDelay(Factors const& factors, Scope* scope, FlatInfluence& made) {
    if (factors.delay == nullptr)
        return true;
    auto const& parts = factors.delay->parts;
    if (plant.quantity(made.cause).isParameter) {
        messages.error(factors.delay->range, "a parameter stays as it is, and has no past",
                       "take the delay out");
        return false;
    }
    std::optional<int> const shortest = steps(parts[1], scope);
    std::optional<int> const longest = parts.size() > 2 ? steps(parts[2], scope) : shortest;
    if (!shortest || !longest)
        return false;
    made.shortestDelay = *shortest;
    made.longestDelay = *longest;
    if (*shortest <= *longest)
        return true;
    messages.error(factors.delay->range, "this delay ends before it begins",
                   "write the shorter delay first");
    return false;
}

// In steps, or as a time that is a whole number of them.
std::optional<int> Resolver::steps(Expr const& expr, Scope* scope) {
    std::optional<Value> const value = number(expr, scope);
    if (!value)
        return std::nullopt;
    if (!value->unit)
        return wholeNumber(expr, scope, "a delay in steps", 0);
    std::optional<double> const time = duration(expr, scope);
    if (!time)
        return std::nullopt;
    double const count = std::round(*time / plant.period);
    if (std::abs(count * plant.period - *time) <= 1e-9 * *time && count < 1e6)
        return static_cast<int>(count);
    messages.error(expr.range, "this delay is no whole number of sample periods",
                   "write it in steps, or choose another sample period");
    return std::nullopt;
}

// ---- Forms ----

bool Resolver::setForm(EquationNode const& node, Scope* scope, FlatInfluence& made) {
    auto const set = [&](std::optional<Expr> const& from, Value& into) {
        std::optional<Value> const value = from ? number(*from, scope) : std::nullopt;
        if (value)
            into = *value;
        return value.has_value();
    };
    switch (node.form) {
        case EquationForm::firstOrder: {
            if (!set(node.responseTime, made.responseTime))
                return false;
            MaybeUnit const& unit = made.responseTime.unit;
            if (unit && sameDimension(*unit, seconds())) {
                made.responseTime.low *= unit->factor;
                made.responseTime.high *= unit->factor;
            } else {
                checkUnit(node.responseTime->range, "this time", unit, seconds());
            }
            return true;
        }
        case EquationForm::damped:
            return set(node.damping, made.damping) && set(node.frequency, made.frequency);
        case EquationForm::rational:
            if (node.numerator[2] || !node.denominator[2] || !node.denominator[0]) {
                messages.error(node.transfer,
                               "a transfer function has a numerator of first order at most and a "
                               "denominator of second order",
                               "write by (n1 + n2 s) / (d0 + d1 s + d2 s^2)");
                return false;
            }
            return setPolynomial(node.numerator, scope, made.numerator) &&
                   setPolynomial(node.denominator, scope, made.denominator);
        default:
            return true;
    }
}

bool Resolver::setPolynomial(std::vector<std::optional<Expr>> const& from, Scope* scope,
                             std::vector<std::optional<Value>>& into) {
    for (std::optional<Expr> const& expr : from) {
        into.emplace_back();
        if (expr && !(into.back() = number(*expr, scope)))
            return false;
    }
    return true;
}

// ---- Units and labels ----

void Resolver::checkUnits(FlatInfluence const& made, bool hasGain) {
    MaybeUnit found = plant.quantity(made.cause).unit;
    if (made.form != EquationForm::coupling && hasGain)
        found = made.gain.unitMatters ? found * made.gain.unit : std::nullopt;
    bool const isTwice = made.form == EquationForm::doubleIntegral;
    bool const integrates = isTwice || made.form == EquationForm::integral;
    if (integrates)
        found = found * MaybeUnit(seconds());
    if (isTwice)
        found = found * MaybeUnit(seconds());
    if (made.form == EquationForm::rational || made.form == EquationForm::damped)
        return;  // their coefficients have units of their own
    checkUnit(made.range, integrates ? "what this integrates to" : "this", found,
              plant.quantity(made.effect).unit);
}

// The next number for a term without a label.
std::string Resolver::labelOf(LabelNode const* label, ComponentRef component,
                              TextRange const& range) {
    int const count = ++members[static_cast<std::size_t>(component)].terms;
    std::string const& symbol = plant.components[static_cast<std::size_t>(component)].symbol;
    std::string name = symbol + ".i" + std::to_string(count);
    TextRange place = range;
    if (label != nullptr) {
        name = label->isWhole ? label->name.text : symbol + "." + label->name.text;
        place = label->name.range;
    }
    if (!labels.insert({name, place}).second)
        messages.error(place, "two terms are labelled " + name,
                       "give them labels of their own, or none");
    return name;
}
