// Looking for what is legal and probably wrong.
#include "language/warnings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>

namespace {

std::string nameOf(FlatPlant const& flat, FlatAtom const& atom) {
    return flat.choice(atom.choice).values[static_cast<std::size_t>(atom.value)].name;
}

// ---- Modes ----

using Atoms = std::set<std::pair<ChoiceRef, int>>;

void warnOfModes(FlatPlant const& flat, Messages& messages) {
    Atoms entered;
    for (FlatMove const& move : flat.moves)
        if (move.kind != MoveKind::idle)
            entered.insert({move.to.choice, move.to.value});
    for (std::size_t i = 0; i < flat.choices.size(); ++i) {
        FlatChoice const& choice = flat.choices[i];
        if (choice.kind != ChoiceKind::mode)
            continue;
        for (int value = 0; value < static_cast<int>(choice.values.size()); ++value) {
            auto const& named = choice.values[static_cast<std::size_t>(value)];
            if (value != choice.start && named.name != "unknown" &&
                entered.count({static_cast<ChoiceRef>(i), value}) == 0)
                messages.warning(named.range, "nothing enters the mode " + named.name,
                                 "write a move or a fault that leads to it, or take it out");
        }
    }
}

// ---- Probabilities ----

// Sums this far from 1 are meant: a share that is too small to tell.
constexpr double slack = 0.05;

std::string textOf(double number) {
    char digits[32];
    auto const end =
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 6);
    return {digits, end.ptr};
}

bool agrees(FlatPlant const& flat, FlatLiteral const& a, FlatLiteral const& b) {
    if (a.atom == b.atom)
        return a.holds == b.holds;
    if (a.atom.choice != b.atom.choice)
        return true;
    // Two values of one choice do not hold at once; of two values, not one is the other.
    return !(a.holds && b.holds) &&
           (flat.choice(a.atom.choice).values.size() > 2 || a.holds != b.holds);
}

// All that is asked for beside *of* can hold with it, and follows from it.
bool isDueWith(FlatMove const& move, FlatMove const& of) {
    return std::all_of(move.guard.begin(), move.guard.end(), [&](FlatLiteral const& literal) {
        return std::any_of(of.guard.begin(), of.guard.end(), [&](FlatLiteral const& given) {
            return (given.atom == literal.atom && given.holds == literal.holds) ||
                   (given.holds && !literal.holds && given.atom.choice == literal.atom.choice &&
                    !(given.atom == literal.atom));
        });
    });
}

bool conflicts(FlatPlant const& flat, FlatMove const& a, FlatMove const& b) {
    return std::any_of(a.guard.begin(), a.guard.end(), [&](FlatLiteral const& one) {
        return std::any_of(b.guard.begin(), b.guard.end(),
                           [&](FlatLiteral const& other) { return !agrees(flat, one, other); });
    });
}

// The situation of *move* is its guard alone. What may be due beside it and need not makes another
// situation, which has a sum of its own. An idle move is for when no nominal one is due.
void warnOfSum(FlatPlant const& flat, std::vector<FlatMove const*> const& moves,
               FlatMove const& move, Messages& messages) {
    double sum = 0.0, idle = 0.0;
    bool mayBeMore = false, leaves = false;
    for (FlatMove const* other : moves)
        if (!isDueWith(*other, move))
            mayBeMore = mayBeMore || !conflicts(flat, *other, move);
        else if (other->kind == MoveKind::idle)
            idle += other->probability;
        else {
            sum += other->probability;
            leaves = leaves || other->kind == MoveKind::nominal;
        }
    if (!leaves)
        sum += idle;
    bool const isOff = sum > 1.0 + slack || (sum < 1.0 - slack && !mayBeMore);
    if (isOff)
        messages.warning(move.range,
                         "the moves that leave " + nameOf(flat, move.from) +
                             " while this one is due have probabilities that sum to " + textOf(sum),
                         "let them sum to 1");
}

void warnOfProbabilities(FlatPlant const& flat, Messages& messages) {
    std::vector<std::vector<FlatMove const*>> byChoice(flat.choices.size());
    for (FlatMove const& move : flat.moves)
        byChoice[static_cast<std::size_t>(move.from.choice)].push_back(&move);
    for (auto const& moves : byChoice)
        for (FlatMove const* move : moves) {
            std::vector<FlatMove const*> beside;
            for (FlatMove const* other : moves)
                if (other->from == move->from)
                    beside.push_back(other);
            warnOfSum(flat, beside, *move, messages);
        }
}

// ---- What measures and observations depend on ----

// Followed back from them: through equations, their conditions, regions, guards and clauses.
class Seen {
public:
    explicit Seen(FlatPlant const& flat) : flat(flat), quantities(flat.quantities.size(), false) {
        for (QuantityRef const measure : flat.measures)
            seeQuantity(measure);
        for (std::size_t i = 0; i < flat.choices.size(); ++i)
            if (flat.choices[i].kind == ChoiceKind::observed)
                seeChoice(static_cast<ChoiceRef>(i));
        while (grew)
            follow();
    }

    bool choice(ChoiceRef reference) const { return choices.count(reference) != 0; }
    bool quantity(QuantityRef reference) const {
        return quantities[static_cast<std::size_t>(reference)];
    }

private:
    void seeQuantity(QuantityRef quantity) {
        if (quantity == nowhere || this->quantity(quantity))
            return;
        quantities[static_cast<std::size_t>(quantity)] = true;
        grew = true;
    }
    void seeChoice(ChoiceRef choice) { grew = choices.insert(choice).second || grew; }
    void seeCondition(FlatCondition const& condition) {
        if (condition.kind == ConditionKind::atom)
            seeChoice(condition.atom.choice);
        seeQuantity(condition.left);
        seeQuantity(condition.right);
        for (FlatCondition const& part : condition.parts)
            seeCondition(part);
    }
    void seeExpression(FlatExpression const& expression) {
        if (expression.kind == FlatExpression::quantity)
            seeQuantity(expression.reference);
        for (FlatExpression const& part : expression.parts)
            seeExpression(part);
    }
    void follow();

    FlatPlant const& flat;
    std::vector<bool> quantities;
    std::set<ChoiceRef> choices;
    bool grew = true;
};

void Seen::follow() {
    grew = false;
    for (FlatInfluence const& influence : flat.influences)
        if (quantity(influence.effect)) {
            seeQuantity(influence.cause);
            if (influence.when)
                seeCondition(*influence.when);
        }
    for (std::size_t i = 0; i < flat.choices.size(); ++i)
        if (flat.choices[i].kind == ChoiceKind::region && choice(static_cast<ChoiceRef>(i)))
            seeQuantity(flat.choices[i].of);
    for (FlatMove const& move : flat.moves) {
        for (FlatSetting const& setting : move.settings)
            if (quantity(setting.target)) {
                seeChoice(move.to.choice);
                seeExpression(setting.value);
            }
        if (choice(move.to.choice))
            for (FlatLiteral const& literal : move.guard)
                seeChoice(literal.atom.choice);
    }
    for (FlatClause const& clause : flat.clauses)
        if (std::any_of(clause.literals.begin(), clause.literals.end(),
                        [this](FlatLiteral const& l) { return choice(l.atom.choice); }))
            for (FlatLiteral const& literal : clause.literals)
                seeChoice(literal.atom.choice);
    // A constraint narrows in both directions only through what it is about.
    for (FlatConstraint const& constraint : flat.constraints)
        if (constraint.target == nowhere || quantity(constraint.target))
            seeExpression(constraint.value);
}

void warnOfHiddenFaults(FlatPlant const& flat, Messages& messages) {
    Seen const seen(flat);
    std::set<ChoiceRef> told;
    for (FlatMove const& move : flat.moves)
        if (move.kind == MoveKind::fault && !seen.choice(move.to.choice) &&
            told.insert(move.to.choice).second)
            messages.warning(
                move.range, "no measure can show this fault",
                "measure something that depends on " + flat.fullName(flat.choice(move.to.choice)));
}

// ---- Measures that nothing predicts ----

std::vector<bool> predictedQuantities(FlatPlant const& flat) {
    std::vector<bool> predicted(flat.quantities.size(), false);
    auto const mark = [&predicted](QuantityRef quantity) {
        if (quantity != nowhere)
            predicted[static_cast<std::size_t>(quantity)] = true;
    };
    for (FlatInfluence const& influence : flat.influences)
        mark(influence.effect);
    // It narrows its left side alone.
    for (FlatConstraint const& constraint : flat.constraints)
        mark(constraint.target);
    for (FlatMove const& move : flat.moves)
        for (FlatSetting const& setting : move.settings)
            mark(setting.target);
    for (QuantityRef const input : flat.inputs)
        mark(input);
    return predicted;
}

void warnOfUnpredicted(FlatPlant const& flat, Messages& messages) {
    std::vector<bool> const predicted = predictedQuantities(flat);
    for (QuantityRef const measure : flat.measures) {
        std::string const& name = flat.quantity(measure).name;
        if (!predicted[static_cast<std::size_t>(measure)])
            messages.warning(
                flat.quantity(measure).range,
                "nothing predicts " + name +
                    ", so that its measures are compared with its first value for good",
                "write input " + name + ", in place of measure " + name +
                    ", or an equation for it");
    }
}

// ---- Variables that nothing reads ----

void markRead(FlatCondition const& condition, std::vector<bool>& read) {
    for (QuantityRef const side : {condition.left, condition.right})
        if (side != nowhere)
            read[static_cast<std::size_t>(side)] = true;
    for (FlatCondition const& part : condition.parts)
        markRead(part, read);
}

void markRead(FlatExpression const& expression, std::vector<bool>& read) {
    if (expression.kind == FlatExpression::quantity)
        read[static_cast<std::size_t>(expression.reference)] = true;
    for (FlatExpression const& part : expression.parts)
        markRead(part, read);
}

std::vector<bool> readQuantities(FlatPlant const& flat) {
    std::vector<bool> read(flat.quantities.size(), false);
    for (auto const* list : {&flat.measures, &flat.displays})
        for (QuantityRef const quantity : *list)
            read[static_cast<std::size_t>(quantity)] = true;
    for (FlatInfluence const& influence : flat.influences) {
        read[static_cast<std::size_t>(influence.cause)] = true;
        if (influence.when)
            markRead(*influence.when, read);
    }
    for (FlatChoice const& choice : flat.choices)
        if (choice.of != nowhere)
            read[static_cast<std::size_t>(choice.of)] = true;
    for (FlatConstraint const& constraint : flat.constraints) {
        if (constraint.target != nowhere)
            read[static_cast<std::size_t>(constraint.target)] = true;
        markRead(constraint.value, read);
    }
    for (FlatMove const& move : flat.moves)
        for (FlatSetting const& setting : move.settings) {
            markRead(setting.value, read);
            if (setting.condition)
                markRead(*setting.condition, read);
        }
    return read;
}

// Parameters that are copied into numbers are read by no record; nothing is said of them.
void warnOfUnread(FlatPlant const& flat, Messages& messages) {
    std::vector<bool> const read = readQuantities(flat);
    for (std::size_t i = 0; i < read.size(); ++i)
        if (!read[i] && !flat.quantities[i].isParameter)
            messages.warning(flat.quantities[i].range,
                             "nothing reads the variable " + flat.quantities[i].name,
                             "display it, use it, or take it out");
}

}  // namespace

void warn(FlatPlant const& flat, Messages& messages) {
    warnOfModes(flat, messages);
    warnOfProbabilities(flat, messages);
    warnOfHiddenFaults(flat, messages);
    warnOfUnpredicted(flat, messages);
    warnOfUnread(flat, messages);
}
