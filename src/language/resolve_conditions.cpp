// Conditions, regions and clauses.
#include <cfloat>

#include "language/resolver.h"

namespace {

FlatCondition made(ConditionKind kind, TextRange const& range) {
    FlatCondition condition{};
    condition.kind = kind;
    condition.range = range;
    return condition;
}

char turned(char relation) {
    switch (relation) {
        case '<':
            return '>';
        case '>':
            return '<';
        case 'l':
            return 'g';
        case 'g':
            return 'l';
        default:
            return relation;
    }
}

}  // namespace

std::optional<FlatCondition> Resolver::condition(Expr const& expr, Scope* scope) {
    switch (expr.kind) {
        case ExprKind::always: {
            FlatCondition constant = made(ConditionKind::constant, expr.range);
            constant.holds = expr.number != 0.0;
            return constant;
        }
        case ExprKind::disjunction:
            return group(ConditionKind::either, expr, scope);
        case ExprKind::conjunction:
            return group(ConditionKind::both, expr, scope);
        case ExprKind::negated:
            return group(ConditionKind::opposite, expr, scope);
        case ExprKind::forEvery:
            return repeated(ConditionKind::both, expr, scope);
        case ExprKind::forSome:
            return repeated(ConditionKind::either, expr, scope);
        case ExprKind::among:
            return among(expr, scope);
        case ExprKind::comparison:
            return comparison(expr, scope);
        case ExprKind::implies:
        case ExprKind::equivalent:
            messages.error(expr.range, "only a clause can say implies or iff",
                           "write it with and, or and not");
            return std::nullopt;
        default:
            messages.error(expr.range, "this is no condition",
                           "compare something, as in mode = " + written(expr.range));
            return std::nullopt;
    }
}

// Every part is looked at, so that each mistake is told.
std::optional<FlatCondition> Resolver::group(ConditionKind kind, Expr const& expr, Scope* scope) {
    FlatCondition result = made(kind, expr.range);
    for (Expr const& part : expr.parts)
        if (std::optional<FlatCondition> one = condition(part, scope))
            result.parts.push_back(std::move(*one));
    return result.parts.size() == expr.parts.size() ? std::optional(std::move(result))
                                                    : std::nullopt;
}

std::optional<FlatCondition> Resolver::repeated(ConditionKind kind, Expr const& expr,
                                                Scope* scope) {
    std::optional<std::pair<int, int>> const range = bounds(expr.parts[0], expr.parts[1], scope);
    if (!range)
        return std::nullopt;
    FlatCondition result = made(kind, expr.range);
    for (int i = range->first; i <= range->second; ++i) {
        Scope* inner = newScope(scope, scope->component);
        Entity index;
        index.kind = Entity::number;
        index.value.low = index.value.high = i;
        declare(*inner, expr.label.name, index);
        std::optional<FlatCondition> one = condition(expr.parts[2], inner);
        if (!one)
            return std::nullopt;
        result.parts.push_back(std::move(*one));
    }
    if (result.parts.empty()) {
        result.kind = ConditionKind::constant;
        result.holds = kind == ConditionKind::both;
    }
    return result;
}

// ---- Atoms ----

std::optional<FlatAtom> Resolver::atom(ChoiceRef reference, Expr const& value) {
    FlatChoice const& choice = plant.choice(reference);
    std::string const name = written(value.range);
    std::vector<std::string> known;
    for (std::size_t i = 0; i < choice.values.size(); ++i) {
        if (choice.values[i].name == name)
            return FlatAtom{reference, static_cast<int>(i)};
        known.push_back(choice.values[i].name);
    }
    if (!isDamaged(name))
        messages.error(value.range, choice.name + " has no value " + name,
                       suggestion(name, known, "its values are " + oneOf(known)));
    return std::nullopt;
}

std::optional<FlatCondition> Resolver::atomCondition(ChoiceRef choice, Expr const& value,
                                                     TextRange const& range) {
    std::optional<FlatAtom> const found = atom(choice, value);
    if (!found)
        return std::nullopt;
    FlatCondition result = made(ConditionKind::atom, range);
    result.atom = *found;
    return result;
}

std::optional<FlatCondition> Resolver::among(Expr const& expr, Scope* scope) {
    Expr const& subject = expr.parts.front();
    if (subject.kind != ExprKind::name) {
        messages.error(subject.range, "in asks where a variable is", "write its name before in");
        return std::nullopt;
    }
    Entity const found = lookup(subject, scope);
    if (found.kind == Entity::bad)
        return std::nullopt;
    if (found.kind == Entity::quantity && expr.parts[1].kind == ExprKind::interval)
        return relation(subject, 'i', expr.parts[1], scope, expr.range);
    if (found.kind != Entity::choice) {
        messages.error(expr.range, written(subject.range) + " has no values to be among",
                       found.kind == Entity::quantity ? "ask for an interval: in [1, 2]"
                                                      : "name a mode, a region or a command");
        return std::nullopt;
    }
    FlatCondition result = made(ConditionKind::either, expr.range);
    bool good = true;
    for (std::size_t i = 1; i < expr.parts.size(); ++i) {
        std::optional<FlatCondition> one =
            atomCondition(found.reference, expr.parts[i], expr.range);
        good = good && one;
        if (one)
            result.parts.push_back(std::move(*one));
    }
    if (!good)
        return std::nullopt;
    return result.parts.size() == 1 ? std::move(result.parts.front()) : std::move(result);
}

std::optional<FlatCondition> Resolver::comparison(Expr const& expr, Scope* scope) {
    Expr const& subject = expr.parts.front();
    Entity const found =
        subject.kind == ExprKind::name ? lookup(subject, scope) : Entity{Entity::number};
    if (found.kind == Entity::bad)
        return std::nullopt;
    if (found.kind == Entity::choice) {
        char const how = expr.operators.front();
        if (expr.parts.size() > 2 || (how != '=' && how != '!')) {
            messages.error(expr.range, written(subject.range) + " has values that have no order",
                           "ask with = or !=");
            return std::nullopt;
        }
        std::optional<FlatCondition> one =
            atomCondition(found.reference, expr.parts[1], expr.range);
        if (!one || how == '=')
            return one;
        FlatCondition result = made(ConditionKind::opposite, expr.range);
        result.parts.push_back(std::move(*one));
        return result;
    }
    FlatCondition result = made(ConditionKind::both, expr.range);
    for (std::size_t i = 0; i + 1 < expr.parts.size(); ++i) {
        std::optional<FlatCondition> one =
            relation(expr.parts[i], expr.operators[i], expr.parts[i + 1], scope, expr.range);
        if (!one)
            return std::nullopt;
        result.parts.push_back(std::move(*one));
    }
    return result.parts.size() == 1 ? std::move(result.parts.front()) : std::move(result);
}

// One side at least is a variable, which comes to stand left.
std::optional<FlatCondition> Resolver::relation(Expr const& left, char relation, Expr const& right,
                                                Scope* scope, TextRange const& range) {
    auto const isVariable = [&](Expr const& side) {
        return side.kind == ExprKind::name && mentionsVariable(side, scope);
    };
    if (!isVariable(left)) {
        if (isVariable(right))
            return this->relation(right, turned(relation), left, scope, range);
        std::optional<Value> const a = number(left, scope);
        if (a && number(right, scope))
            messages.error(range, "this compares numbers, and never changes", "compare a variable");
        return std::nullopt;
    }
    FlatCondition result = made(ConditionKind::relation, range);
    result.left = lookup(left, scope).reference;
    result.relation = relation;
    MaybeUnit const& unit = plant.quantity(result.left).unit;
    if (isVariable(right)) {
        result.right = lookup(right, scope).reference;
        checkUnit(right.range, "this", plant.quantity(result.right).unit, unit);
        return result;
    }
    std::optional<Value> const value = number(right, scope);
    if (!value)
        return std::nullopt;
    if (value->isInterval && relation != 'i') {
        messages.error(right.range, "a variable is compared with one number",
                       "write in before an interval");
        return std::nullopt;
    }
    checkUnit(right.range, "this", value->unit, unit);
    result.value = *value;
    return result;
}

bool Resolver::checkContinuous(FlatCondition const& condition) {
    if (condition.kind == ConditionKind::atom) {
        FlatChoice const& choice = plant.choice(condition.atom.choice);
        if (choice.kind == ChoiceKind::mode || choice.kind == ChoiceKind::region)
            return true;
        messages.error(condition.range,
                       "an influence cannot depend on " + choice.name + ", which is " +
                           (choice.kind == ChoiceKind::command ? "a command" : "observed"),
                       "let a move change a mode, and ask for the mode");
        return false;
    }
    return std::all_of(condition.parts.begin(), condition.parts.end(),
                       [this](FlatCondition const& part) { return checkContinuous(part); });
}

// ---- Regions ----

void Resolver::region(ChoiceNode const& node, Scope* scope) {
    if (node.kind != ChoiceKind::region || scope->component == nowhere)
        return;
    Scope& own = *members[static_cast<std::size_t>(scope->component)].scope;
    auto const declared = own.names.find(node.name.text);
    if (declared == own.names.end() || declared->second.kind != Entity::choice ||
        declared->second.range.begin != node.name.range.begin)
        return;
    FlatChoice& choice = plant.choices[static_cast<std::size_t>(declared->second.reference)];
    for (std::size_t i = 0; i < node.values.size() && i < choice.values.size(); ++i) {
        auto const found = space(*node.values[i].when, scope);
        if (!found)
            continue;
        if (choice.of != nowhere && choice.of != found->first)
            messages.error(node.values[i].when->range,
                           "the values of a region are intervals of one variable, and the first "
                           "is of " +
                               plant.quantity(choice.of).name,
                           "make a region of its own for " + plant.quantity(found->first).name);
        choice.of = found->first;
        choice.values[i].space = found->second;
    }
}

std::optional<std::pair<QuantityRef, FlatSpace>> Resolver::space(Expr const& expr, Scope* scope) {
    std::optional<FlatCondition> const found = condition(expr, scope);
    QuantityRef of = nowhere;
    FlatSpace space{-DBL_MAX, DBL_MAX, true, true};
    if (!found || !narrow(*found, of, space))
        return std::nullopt;
    if (space.low < space.high ||
        (space.low == space.high && space.lowBelongs && space.highBelongs))
        return std::pair(of, space);
    messages.error(expr.range, "no value of " + plant.quantity(of).name + " can be there",
                   "put the lower threshold first");
    return std::nullopt;
}

// Takes what *condition* leaves out of *space*; false, and told, when that is no interval.
bool Resolver::narrow(FlatCondition const& condition, QuantityRef& of, FlatSpace& space) {
    if (condition.kind == ConditionKind::both)
        return std::all_of(condition.parts.begin(), condition.parts.end(),
                           [&](FlatCondition const& part) { return narrow(part, of, space); });
    bool const fits = condition.kind == ConditionKind::relation && condition.right == nowhere &&
                      (of == nowhere || of == condition.left) && condition.relation != '=' &&
                      condition.relation != '!';
    if (!fits) {
        messages.error(condition.range, "a region is an interval of one variable",
                       "compare the variable with numbers: x < 10, or 10 <= x < 17");
        return false;
    }
    of = condition.left;
    double const low = condition.value.low, high = condition.value.high;
    char const relation = condition.relation;
    if ((relation == '<' || relation == 'l' || relation == 'i') && high <= space.high)
        space.high = high, space.highBelongs = relation != '<';
    if ((relation == '>' || relation == 'g' || relation == 'i') && low >= space.low)
        space.low = low, space.lowBelongs = relation != '>';
    return true;
}

// ---- Clauses ----

void Resolver::clause(ClauseNode const& node, Scope* scope, TextRange const& range) {
    std::optional<Disjunctions> found = clausesOf(node.condition, scope, true);
    if (!found)
        return;
    for (std::vector<FlatLiteral>& literals : *found) {
        if (literals.empty()) {
            messages.error(range, "this clause can never hold",
                           "take it out, or say what can hold");
            return;
        }
        ComponentRef const component = scope->component != nowhere
                                           ? scope->component
                                           : plant.choice(literals.front().atom.choice).component;
        for (FlatLiteral const& literal : literals)
            mention(component, plant.choice(literal.atom.choice).component);
        plant.clauses.push_back({component, std::move(literals), range});
    }
}

// The conclusion stands first: a repair begins there.
std::optional<Resolver::Disjunctions> Resolver::clausesOf(Expr const& expr, Scope* scope,
                                                          bool holds) {
    bool const both = expr.kind == ExprKind::equivalent;
    if (expr.kind != ExprKind::implies && !both) {
        std::optional<FlatCondition> const found = condition(expr, scope);
        return found ? disjunctions(*found, holds) : std::nullopt;
    }
    std::optional<FlatCondition> const left = condition(expr.parts[0], scope);
    std::optional<FlatCondition> const right = condition(expr.parts[1], scope);
    if (!left || !right)
        return std::nullopt;
    auto const implied = [&](FlatCondition const& premise, FlatCondition const& conclusion) {
        std::optional<Disjunctions> const then = disjunctions(conclusion, true);
        std::optional<Disjunctions> const unless = disjunctions(premise, false);
        return then && unless ? alternatives(*then, *unless, expr.range) : std::nullopt;
    };
    std::optional<Disjunctions> result = implied(*left, *right);
    if (!result || !both)
        return result;
    std::optional<Disjunctions> const back = implied(*right, *left);
    if (!back)
        return std::nullopt;
    result->insert(result->end(), back->begin(), back->end());
    return result;
}

std::optional<Resolver::Disjunctions> Resolver::disjunctions(FlatCondition const& condition,
                                                             bool holds) {
    switch (condition.kind) {
        case ConditionKind::constant:
            return condition.holds == holds ? Disjunctions{} : Disjunctions{{}};
        case ConditionKind::atom:
            return Disjunctions{{{condition.atom, holds}}};
        case ConditionKind::opposite:
            return disjunctions(condition.parts.front(), !holds);
        case ConditionKind::relation:
            messages.error(condition.range,
                           plant.quantity(condition.left).name +
                               " is a variable, and a clause is over modes, regions, commands and "
                               "observables",
                           "make a region of the variable, and ask for its value");
            return std::nullopt;
        default:
            break;
    }
    bool const all = (condition.kind == ConditionKind::both) == holds;
    Disjunctions result = all ? Disjunctions{} : Disjunctions{{}};
    for (FlatCondition const& part : condition.parts) {
        std::optional<Disjunctions> one = disjunctions(part, holds);
        if (!one)
            return std::nullopt;
        if (all) {
            result.insert(result.end(), one->begin(), one->end());
            continue;
        }
        std::optional<Disjunctions> joined = alternatives(result, *one, condition.range);
        if (!joined)
            return std::nullopt;
        result = std::move(*joined);
    }
    return result;
}

// One of *a* or one of *b* holds.
std::optional<Resolver::Disjunctions> Resolver::alternatives(Disjunctions const& a,
                                                             Disjunctions const& b,
                                                             TextRange const& range) {
    constexpr std::size_t most = 10000;
    if (a.size() * b.size() > most) {
        messages.error(range, "this makes too many clauses",
                       "write it as several clauses over fewer alternatives");
        return std::nullopt;
    }
    Disjunctions result;
    for (auto const& first : a)
        for (auto const& second : b) {
            result.push_back(first);
            result.back().insert(result.back().end(), second.begin(), second.end());
        }
    return result;
}
