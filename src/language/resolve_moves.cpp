// Moves between modes: their guards, their probabilities, and what they set.
#include <cmath>

#include "language/resolver.h"

void Resolver::move(MoveNode const& node, Scope* scope, TextRange const& range) {
    if (scope->component == nowhere) {
        messages.error(range, "a move belongs to a component", "write it in a type");
        return;
    }
    if (node.idleOthers) {
        idlesAsked.push_back({plant.moves.size(), scope->component, range});
        return;
    }
    FlatMove made{};
    made.component = scope->component;
    made.kind = node.kind;
    made.range = range;
    bool good = guard(node, scope, made);
    if (node.to) {
        std::optional<FlatAtom> const to = modeOf(*node.to, scope, scope->component);
        good = good && to;
        if (to)
            made.to = *to;
        if (good && made.to.choice != made.from.choice) {
            messages.error(node.to->range,
                           "this move leaves a value of one variable for one of another",
                           "let from and to name values of one variable");
            good = false;
        } else if (good && made.to == made.from) {
            messages.error(node.to->range, "this move stays where it is",
                           "write idle, in place of move from and to");
            good = false;
        }
    } else {
        made.to = made.from;
    }
    if (std::optional<double> const probability =
            plainNumber(*node.probability, scope, "a probability")) {
        made.probability = *probability;
        if (!(*probability >= 0.0 && *probability <= 1.0)) {
            messages.error(node.probability->range, "a probability lies between 0 and 1",
                           "write such a number");
            good = false;
        }
    } else {
        good = false;
    }
    if (settings(node, scope, made) && good)
        plant.moves.push_back(std::move(made));
}

// ---- Guards ----

bool Resolver::guard(MoveNode const& node, Scope* scope, FlatMove& made) {
    bool good = true;
    for (std::size_t i = 0; i < node.guards.size(); ++i) {
        Expr const& part = node.guards[i];
        if (static_cast<int>(i) == node.from) {
            std::optional<FlatAtom> const from = modeOf(part, scope, scope->component);
            good = good && from;
            if (from) {
                made.from = *from;
                made.guard.push_back({*from, true});
            }
            continue;
        }
        std::optional<FlatCondition> const found = condition(part, scope);
        good = found && literals(*found, true, made.guard) && good;
    }
    return good;
}

bool Resolver::literals(FlatCondition const& condition, bool holds,
                        std::vector<FlatLiteral>& into) {
    switch (condition.kind) {
        case ConditionKind::atom:
            into.push_back({condition.atom, holds});
            return true;
        case ConditionKind::opposite:
            return literals(condition.parts.front(), !holds, into);
        case ConditionKind::constant:
            if (condition.holds == holds)
                return true;
            messages.error(condition.range, "this move can never be made", "take it out");
            return false;
        case ConditionKind::relation:
            messages.error(condition.range,
                           "a guard asks for modes, regions, commands and observables, and " +
                               plant.quantity(condition.left).name + " is a variable",
                           "make a region with this threshold, and ask for its value");
            return false;
        default:
            break;
    }
    if ((condition.kind == ConditionKind::both) != holds) {
        messages.error(condition.range, "a guard cannot say or", "write a move for each case");
        return false;
    }
    return std::all_of(condition.parts.begin(), condition.parts.end(),
                       [&](FlatCondition const& part) { return literals(part, holds, into); });
}

// `on`, where one mode variable alone has that value, or `power = on`.
std::optional<FlatAtom> Resolver::modeOf(Expr const& expr, Scope* scope, ComponentRef component) {
    bool const isValue =
        (expr.kind == ExprKind::name && expr.path.size() == 1) || expr.kind == ExprKind::number;
    if (isValue)
        return soleMode({written(expr.range), expr.range}, expr.range, component);
    std::optional<FlatCondition> const found = condition(expr, scope);
    if (!found)
        return std::nullopt;
    bool const fits = found->kind == ConditionKind::atom &&
                      plant.choice(found->atom.choice).kind == ChoiceKind::mode &&
                      plant.choice(found->atom.choice).component == component;
    if (fits)
        return found->atom;
    messages.error(expr.range, "a move leads from one mode of its component to another",
                   "write the mode alone, or for one of several variables power = on");
    return std::nullopt;
}

std::optional<FlatAtom> Resolver::soleMode(NameNode const& value, TextRange const& range,
                                           ComponentRef component) {
    std::vector<FlatAtom> found;
    std::vector<std::string> known;
    Member const& member = members[static_cast<std::size_t>(component)];
    for (ChoiceRef const mode : member.modes)
        for (std::size_t i = 0; i < plant.choice(mode).values.size(); ++i) {
            known.push_back(plant.choice(mode).values[i].name);
            if (known.back() == value.text)
                found.push_back({mode, static_cast<int>(i)});
        }
    if (found.size() == 1)
        return found.front();
    bool const mayBeDamaged = member.modes.empty() && isDamaged("mode");
    if (isDamaged(value.text) || mayBeDamaged)
        return std::nullopt;
    if (found.empty())
        messages.error(range, "there is no mode " + value.text,
                       member.modes.empty()
                           ? "declare the modes of this type: mode off, on"
                           : suggestion(value.text, known, "the modes are " + oneOf(known)));
    else
        messages.error(
            range, "several variables have a mode " + value.text,
            "say of which, as in " + plant.choice(found[0].choice).name + " = " + value.text);
    return std::nullopt;
}

// ---- Settings ----

bool Resolver::settings(MoveNode const& node, Scope* scope, FlatMove& made) {
    bool good = true;
    for (SettingNode const& setting : node.settings) {
        QuantityRef const target = quantityOf(setting.target, scope, "the variable that is set");
        if (target != nowhere && plant.quantity(target).isParameter) {
            messages.error(setting.target.range, "a parameter stays as it is", "set a variable");
            good = false;
        }
        std::optional<FlatExpression> value = expression(setting.value, scope);
        std::optional<FlatCondition> when;
        if (setting.condition &&
            (!(when = condition(*setting.condition, scope)) || !checkContinuous(*when)))
            good = false;
        good = good && target != nowhere && value;
        if (good)
            made.settings.push_back({target, std::move(*value), std::move(when)});
    }
    return good;
}

// ---- Idle moves that are asked for ----

// From the last on, so that places before stay.
void Resolver::idleOthers() {
    for (auto asked = idlesAsked.rbegin(); asked != idlesAsked.rend(); ++asked) {
        std::vector<FlatMove> added;
        for (ChoiceRef const mode : members[static_cast<std::size_t>(asked->component)].modes)
            for (std::size_t i = 0; i < plant.choice(mode).values.size(); ++i)
                if (std::optional<FlatMove> one = idleMove({mode, static_cast<int>(i)}, *asked))
                    added.push_back(std::move(*one));
        plant.moves.insert(plant.moves.begin() + static_cast<std::ptrdiff_t>(asked->place),
                           added.begin(), added.end());
    }
}

// It stays while none of the moves with a guard is due, with what the others leave of 1.
std::optional<FlatMove> Resolver::idleMove(FlatAtom const& mode, IdleOthers const& asked) {
    FlatMove idle{asked.component, MoveKind::idle, {{mode, true}}, mode, mode, 1.0, {},
                  asked.range};
    for (FlatMove const& move : plant.moves) {
        if (move.component != asked.component || !(move.from == mode))
            continue;
        if (move.kind == MoveKind::idle)
            return std::nullopt;
        if (move.guard.size() == 1) {
            idle.probability -= move.probability;
            continue;
        }
        if (move.guard.size() > 2) {
            messages.error(
                asked.range,
                "when to stay in " +
                    plant.choice(mode.choice).values[static_cast<std::size_t>(mode.value)].name +
                    " does not follow from a move that asks for several things at once",
                "write this idle move yourself");
            return std::nullopt;
        }
        FlatLiteral due = move.guard[0].atom == mode ? move.guard[1] : move.guard[0];
        due.holds = !due.holds;
        bool const known =
            std::any_of(idle.guard.begin(), idle.guard.end(), [&](FlatLiteral const& literal) {
                return literal.atom == due.atom && literal.holds == due.holds;
            });
        if (!known)
            idle.guard.push_back(due);
    }
    idle.probability = std::max(idle.probability, 0.0);
    return idle;
}
