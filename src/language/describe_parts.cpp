#include "language/describe_parts.h"

#include "support/numbers.h"

std::string textOf(Value const& value) {
    if (!value.isInterval)
        return shortText(value.low);
    std::string text = "[";
    text.append(shortText(value.low)).append(", ").append(shortText(value.high)).append("]");
    return text;
}

std::string nameIn(FlatPlant const& plant, ComponentRef component, QuantityRef quantity) {
    FlatQuantity const& own = plant.quantity(quantity);
    return own.component == component ? own.name : plant.fullName(own);
}

std::string const& valueName(FlatPlant const& plant, FlatAtom const& atom) {
    return plant.choice(atom.choice).values[static_cast<std::size_t>(atom.value)].name;
}

std::string textOf(FlatPlant const& plant, ComponentRef component, FlatAtom const& atom) {
    FlatChoice const& choice = plant.choice(atom.choice);
    std::string text = choice.component == component ? choice.name : plant.fullName(choice);
    return text.append(" = ").append(valueName(plant, atom));
}

namespace {

std::string relationOf(FlatPlant const& plant, ComponentRef component,
                       FlatCondition const& condition) {
    std::string text = nameIn(plant, component, condition.left);
    if (condition.relation == 'i')
        return text.append(" in ").append(textOf(condition.value));
    static constexpr std::pair<char, char const*> signs[] = {{'l', "<="}, {'g', ">="}, {'!', "!="}};
    std::string sign(1, condition.relation);
    for (auto const& [letter, written] : signs)
        if (condition.relation == letter)
            sign = written;
    text.append(" ").append(sign).append(" ");
    return text.append(condition.right == nowhere ? textOf(condition.value)
                                                  : nameIn(plant, component, condition.right));
}

std::string joined(FlatPlant const& plant, ComponentRef component, FlatCondition const& condition,
                   char const* word) {
    std::string text;
    for (FlatCondition const& part : condition.parts) {
        bool const isMixed = part.kind != condition.kind && !part.parts.empty() &&
                             part.kind != ConditionKind::opposite;
        std::string const inner = textOf(plant, component, part);
        text.append(text.empty() ? "" : word).append(isMixed ? "(" : "");
        text.append(inner).append(isMixed ? ")" : "");
    }
    return text;
}

}  // namespace

std::string textOf(FlatPlant const& plant, ComponentRef component, FlatCondition const& condition) {
    switch (condition.kind) {
        case ConditionKind::constant:
            return condition.holds ? "always" : "never";
        case ConditionKind::atom:
            return textOf(plant, component, condition.atom);
        case ConditionKind::relation:
            return relationOf(plant, component, condition);
        case ConditionKind::both:
            return joined(plant, component, condition, " and ");
        case ConditionKind::either:
            return joined(plant, component, condition, " or ");
        case ConditionKind::opposite:
            break;
    }
    std::string text = "not (";
    return text.append(textOf(plant, component, condition.parts.front())).append(")");
}

std::string guardOf(FlatPlant const& plant, FlatMove const& move) {
    std::string text;
    for (FlatLiteral const& literal : move.guard) {
        if (literal.holds && literal.atom == move.from)
            continue;
        std::string asked = textOf(plant, move.component, literal.atom);
        if (!literal.holds)
            asked.replace(asked.find(" = "), 3, " != ");
        text.append(text.empty() ? "" : " and ").append(asked);
    }
    return text;
}
