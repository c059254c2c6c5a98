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
    tellPlaces();
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

void Resolver::tellPlaces() {
    for (PlacedStatement const& placed : fileStatements)
        tellPlace(placed);
    for (Member const& member : members)
        for (PlacedStatement const& placed : member.statements)
            tellPlace(placed);
}

// A statement that would mean nothing where it stands. What it names is not missed elsewhere.
void Resolver::tellPlace(PlacedStatement const& placed) {
    auto const& node = placed.statement->node;
    TextRange const& range = placed.statement->range;
    bool const inType = placed.scope->component != nowhere;
    auto const* constant = std::get_if<ConstantNode>(&node);
    auto const* instance = std::get_if<InstanceNode>(&node);
    auto const* quantities = std::get_if<QuantitiesNode>(&node);
    bool const isOfComponent = quantities != nullptr || std::holds_alternative<ChoiceNode>(node);
    bool const isOfFile = constant != nullptr || std::holds_alternative<TypeNode>(node) ||
                          std::holds_alternative<IncludeNode>(node);
    bool const isOfPlant = instance != nullptr || std::holds_alternative<PlantNode>(node) ||
                           std::holds_alternative<SampleNode>(node) ||
                           std::holds_alternative<WindowNode>(node);
    if (isOfComponent && !inType)
        messages.error(range, "this is what a component has", "write it in a type");
    else if (isOfFile && placed.scope != fileScope)
        messages.error(range, "this is told of the whole plant",
                       "write it outside of types and loops");
    else if (isOfPlant && inType)
        messages.error(range, "this is told of the whole plant", "write it outside of types");
    else
        return;
    if (constant != nullptr)
        damaged.insert(constant->name.text);
    if (instance != nullptr)
        damaged.insert(instance->name.text);
    if (quantities != nullptr)
        for (QuantityNode const& quantity : quantities->quantities)
            damaged.insert(quantity.name.text);
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
