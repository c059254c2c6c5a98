// The resolution as a whole.
#include "language/resolve.h"

#include "language/resolver.h"

FlatPlant resolve(PlantText const& text, Sources const& sources, Messages& messages) {
    return Resolver(text, sources, messages).run();
}

// Names first, so that they can be used before the place where they are given.
FlatPlant Resolver::run() {
    damaged = text.damaged;
    fileScope = newScope(nullptr, nowhere);
    gatherFile();
    for (ComponentRef component = 0; component < static_cast<int>(members.size()); ++component)
        declareMembers(component);
    for (QuantityRef quantity = 0; quantity < static_cast<int>(pending.size()); ++quantity)
        settleQuantity(quantity);
    for (std::size_t i = 0; i < members.size(); ++i)
        for (PlacedStatement const& placed : members[i].statements)
            readStatement(placed);
    for (PlacedStatement const& placed : fileStatements)
        readStatement(placed);
    finish();
    return std::move(plant);
}

void Resolver::readStatement(PlacedStatement const& placed) {
    auto const& node = placed.statement->node;
    TextRange const& range = placed.statement->range;
    if (auto const* asEquation = std::get_if<EquationNode>(&node))
        equation(*asEquation, placed.scope, range);
    else if (auto const* asMove = std::get_if<MoveNode>(&node))
        move(*asMove, placed.scope, range);
    else if (auto const* asChoice = std::get_if<ChoiceNode>(&node))
        region(*asChoice, placed.scope);
    else if (auto const* asClause = std::get_if<ClauseNode>(&node))
        clause(*asClause, placed.scope, range);
    else if (auto const* asConstraint = std::get_if<ConstraintNode>(&node))
        constraint(*asConstraint, placed.scope, range);
    else if (auto const* asDefine = std::get_if<DefineNode>(&node))
        define(*asDefine, placed.scope, range);
    else if (auto const* asList = std::get_if<ListNode>(&node))
        list(*asList, placed.scope);
    else if (std::holds_alternative<OrderNode>(node))
        setOrder(placed);
    else if (std::holds_alternative<SetNode>(node) && placed.scope != fileScope)
        messages.error(range, "a constant is set for the whole plant",
                       "write this outside of types and loops");
}

void Resolver::finish() {
    idleOthers();
    completeOrder();
    if (!hasName)
        messages.error({}, "the plant has no name", "begin the file with plant and a name");
    if (plant.isContinuous() && !hasPeriod && !isDamaged("sample"))
        messages.error(plant.nameRange, "this plant has variables and no sample period",
                       "write, for example, sample 1 s");
    if (plant.components.empty() && !messages.hasErrors())
        messages.error(plant.nameRange, "this plant has no components",
                       "make one of a type, such as room: room()");
}
