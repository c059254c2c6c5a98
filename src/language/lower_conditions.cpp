// Conditions: of regions, of modes, and of influences.
//
// Every value of a region and of a mode has the condition that it is linked with. A condition that
// asks for several values holds records of its own for the modes of its component, and shares those
// of other components. What says the same within a component is one record.
#include <algorithm>
#include <cfloat>
#include <charconv>

#include "continuous/sorn-runt.h"
#include "language/lowering.h"
#include "model/Atom.h"

void Lowering::makeConditions(std::size_t i) {
    Own& of = own[i];
    for (int const choice : of.choices)
        if (flat.choice(choice).kind == ChoiceKind::region)
            makeRegion(of, choice);
    if (!flat.isContinuous())
        return;
    for (int const choice : of.choices) {
        if (flat.choice(choice).kind != ChoiceKind::mode)
            continue;
        auto& conditions = linked[static_cast<std::size_t>(choice)];
        for (std::size_t value = 0; value < conditions.size(); ++value) {
            Atom* atom = atomOf({choice, static_cast<int>(value)});
            conditions[value] = of.part->onAtom(atom);
            builder.linkAtom(atom, conditions[value]);
        }
    }
}

// From the lowest interval up.
void Lowering::makeRegion(Own& of, ChoiceRef reference) {
    FlatChoice const& from = flat.choice(reference);
    s_GVar* gvar = gvarOf(from.of);
    gvar->value = makeReal(0.0);
    std::vector<std::size_t> values(from.values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = i;
    std::stable_sort(values.begin(), values.end(), [&](std::size_t a, std::size_t b) {
        return from.values[a].space.low < from.values[b].space.low;
    });
    for (std::size_t const value : values) {
        Atom* atom = atomOf({reference, static_cast<int>(value)});
        s_Condition* condition = spaceCondition(*of.part, gvar, from.values[value].space);
        linked[static_cast<std::size_t>(reference)][value] = condition;
        builder.linkAtom(atom, condition);
    }
}

s_Condition* Lowering::spaceCondition(PlantPart& part, s_GVar* gvar, FlatSpace const& space) {
    s_Condition *low = nullptr, *high = nullptr;
    if (space.low > -DBL_MAX || space.high == DBL_MAX)
        low = space.lowBelongs ? part.compare(REL_GE, part.from(gvar, space.low))
                               : part.compare(REL_GT, part.above(gvar, space.low));
    if (space.high < DBL_MAX)
        high = space.highBelongs ? part.compare(REL_LE, part.upTo(gvar, space.high))
                                 : part.compare(REL_LT, part.below(gvar, space.high));
    if (low == nullptr || high == nullptr)
        return low == nullptr ? high : low;
    return part.combine(COND_AND, low, high);
}

s_Condition* Lowering::linkedCondition(FlatAtom const& atom) const {
    return linked[static_cast<std::size_t>(atom.choice)][static_cast<std::size_t>(atom.value)];
}

// ---- Conditions that are asked for ----

namespace {

std::string textOf(double number) {
    char digits[32];
    auto const end = std::to_chars(digits, digits + sizeof digits, number);
    return {digits, end.ptr};
}

// The same for conditions that say the same.
std::string keyOf(FlatCondition const& condition) {
    std::string key;
    switch (condition.kind) {
        case ConditionKind::constant:
            return condition.holds ? "t" : "f";
        case ConditionKind::atom:
            return std::string("a") + std::to_string(condition.atom.choice) + "." +
                   std::to_string(condition.atom.value);
        case ConditionKind::relation:
            key = std::string("r") + std::to_string(condition.left) + condition.relation;
            return condition.right != nowhere ? key + std::to_string(condition.right)
                                              : key + "n" + textOf(condition.value.low) + "," +
                                                    textOf(condition.value.high);
        case ConditionKind::opposite:
            key = "!";
            break;
        case ConditionKind::both:
            key = "&";
            break;
        case ConditionKind::either:
            key = "|";
            break;
    }
    for (FlatCondition const& part : condition.parts)
        key.append("(").append(keyOf(part)).append(")");
    return key;
}

relation relationOf(char relation) {
    switch (relation) {
        case '=':
            return REL_EQ;
        case '!':
            return REL_DIFF;
        case '<':
            return REL_LT;
        case 'l':
            return REL_LE;
        case '>':
            return REL_GT;
        case 'g':
            return REL_GE;
        default:
            return REL_IN;
    }
}

}  // namespace

s_Condition* Lowering::conditionOf(Own& of, FlatCondition const& from) {
    if (from.kind == ConditionKind::atom)
        return linkedCondition(from.atom);
    auto const [place, isNew] = of.conditions.insert({keyOf(from), nullptr});
    if (isNew)
        place->second = made(of, from);
    return place->second;
}

s_Condition* Lowering::made(Own& of, FlatCondition const& from) {
    switch (from.kind) {
        case ConditionKind::constant:
            return of.part->constant(from.holds);
        case ConditionKind::relation:
            return of.part->relate(
                variables[static_cast<std::size_t>(from.left)], relationOf(from.relation),
                from.value.object(),
                from.right == nowhere ? nullptr : variables[static_cast<std::size_t>(from.right)]);
        case ConditionKind::opposite: {
            FlatCondition const& inner = from.parts.front();
            s_Condition* opposite = of.part->combine(COND_NOT, operand(of, inner), nullptr);
            awaitOperand(&opposite->left, inner);
            return opposite;
        }
        default:
            return grouped(of, from.kind == ConditionKind::both ? COND_AND : COND_OR, from.parts, 0,
                           from.parts.size(), true);
    }
}

bool Lowering::isOwnMode(Own const& of, FlatCondition const& from) const {
    if (from.kind != ConditionKind::atom)
        return false;
    FlatChoice const& choice = flat.choice(from.atom.choice);
    return choice.kind == ChoiceKind::mode &&
           own[static_cast<std::size_t>(choice.component)].comp == of.comp;
}

// In halves, so that a long list is not deep. Inner records have no numbers.
s_Condition* Lowering::grouped(Own& of, conditionKind kind, std::vector<FlatCondition> const& parts,
                               std::size_t begin, std::size_t end, bool isTop) {
    if (end - begin == 1)
        return operand(of, parts[begin]);
    bool const isPair = end - begin == 2;
    if (isTop && kind == COND_OR && isPair && isOwnMode(of, parts[begin]) &&
        isOwnMode(of, parts[begin + 1]))
        return of.part->either(atomOf(parts[begin].atom), atomOf(parts[begin + 1].atom));
    std::size_t const middle = begin + (end - begin + 1) / 2;
    s_Condition* left = grouped(of, kind, parts, begin, middle, false);
    s_Condition* right = grouped(of, kind, parts, middle, end, false);
    s_Condition* group =
        isTop ? of.part->combine(kind, left, right) : mkBinaryCond(rt, kind, left, right, 0);
    if (middle - begin == 1)
        awaitOperand(&group->left, parts[begin]);
    if (end - middle == 1)
        awaitOperand(&group->right, parts[middle]);
    return group;
}

// Null, to be awaited, for an atom whose condition is not there yet.
s_Condition* Lowering::operand(Own& of, FlatCondition const& from) {
    if (isOwnMode(of, from))
        return mkAtomCond(rt, atomOf(from.atom), 0);
    return from.kind == ConditionKind::atom ? linkedCondition(from.atom) : conditionOf(of, from);
}

void Lowering::awaitOperand(s_Condition** place, FlatCondition const& from) {
    if (*place == nullptr && from.kind == ConditionKind::atom)
        await(place, from.atom);
}
