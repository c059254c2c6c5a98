// What a file holds, and the components that are made in it with what they have.
#include "language/resolver.h"

namespace {

// More than this is surely meant otherwise, and would only fill the memory.
constexpr int mostElements = 100000;
constexpr std::size_t mostStatements = 2000000;

Entity entityOf(Entity::Kind kind, int reference) {
    Entity entity;
    entity.kind = kind;
    entity.reference = reference;
    return entity;
}

}  // namespace

// ---- The file ----

void Resolver::gatherFile() {
    for (Statement const* statement : text.statements) {
        if (auto const* constant = std::get_if<ConstantNode>(&statement->node)) {
            Entity entity;
            entity.kind = Entity::written;
            entity.expr = &constant->value;
            entity.scope = fileScope;
            declare(*fileScope, constant->name, entity);
        } else if (auto const* type = std::get_if<TypeNode>(&statement->node)) {
            if (!type->name.text.empty() && !types.insert({type->name.text, type}).second)
                messages.error(type->name.range,
                               "the type " + type->name.text + " is declared a second time",
                               "rename one of them");
        }
    }
    setConstants();
    std::vector<PlacedStatement> placed;
    unroll(text.statements, fileScope, placed);
    for (PlacedStatement const& one : placed)
        header(one);
    for (PlacedStatement const& one : placed)
        makeInstances(one);
    fileStatements = std::move(placed);
}

// Before anything is worked out. What stands in files counts but where a setting from outside takes
// its place.
void Resolver::setConstants() {
    for (auto const* list : {&text.statements, &text.settings}) {
        std::set<std::string> known;
        for (Statement const* statement : *list)
            if (auto const* node = std::get_if<SetNode>(&statement->node))
                setConstant(*node, known);
    }
}

void Resolver::setConstant(SetNode const& node, std::set<std::string>& known) {
    auto const found = fileScope->names.find(node.name.text);
    if (found == fileScope->names.end()) {
        if (!isDamaged(node.name.text))
            messages.error(
                node.name.range, "there is no constant " + node.name.text,
                suggestion(node.name.text, fileScope->order,
                           fileScope->order.empty() ? "the plant has none"
                                                    : "write " + oneOf(fileScope->order)));
        return;
    }
    if (!known.insert(node.name.text).second)
        messages.error(node.name.range, node.name.text + " is set a second time",
                       "keep one of them");
    found->second.expr = &node.value;
}

// What is told once for the whole plant.
void Resolver::header(PlacedStatement const& placed) {
    auto const& node = placed.statement->node;
    TextRange const& range = placed.statement->range;
    auto const once = [&](bool& known, char const* what) {
        if (known)
            messages.error(range, std::string(what) + " is told a second time", "keep one of them");
        bool const first = !known;
        known = true;
        return first;
    };
    if (auto const* name = std::get_if<PlantNode>(&node)) {
        if (once(hasName, "the name of the plant")) {
            plant.name = name->name.text;
            plant.nameRange = name->name.range;
        }
    } else if (auto const* sample = std::get_if<SampleNode>(&node)) {
        if (!once(hasPeriod, "the sample period"))
            return;
        if (std::optional<double> const period = duration(sample->value, placed.scope))
            plant.period = *period;
    } else if (auto const* window = std::get_if<WindowNode>(&node)) {
        if (!once(hasWindow, "the window"))
            return;
        if (std::optional<int> const steps =
                wholeNumber(window->value, placed.scope, "the window", 1))
            plant.window = *steps;
    }
}

// ---- Loops ----

void Resolver::unroll(std::vector<Statement const*> const& body, Scope* scope,
                      std::vector<PlacedStatement>& into) {
    for (Statement const* statement : body)
        if (auto const* loop = std::get_if<ForNode>(&statement->node))
            unrollLoop(*loop, scope, into);
        else
            into.push_back({statement, scope});
}

void Resolver::unroll(Body const& body, Scope* scope, std::vector<PlacedStatement>& into) {
    std::vector<Statement const*> statements;
    for (Statement const& statement : body)
        statements.push_back(&statement);
    unroll(statements, scope, into);
}

void Resolver::unrollLoop(ForNode const& node, Scope* scope, std::vector<PlacedStatement>& into) {
    std::optional<std::pair<int, int>> const range = bounds(node.count, scope);
    if (!range)
        return;
    for (int i = range->first; i <= range->second; ++i) {
        if (into.size() > mostStatements) {
            messages.error(node.count.index.range, "this repeats more than can be meant",
                           "repeat less often");
            return;
        }
        Scope* inner = newScope(scope, scope->component);
        Entity index;
        index.kind = Entity::number;
        index.value.low = index.value.high = i;
        declare(*inner, node.count.index, index);
        unroll(node.body, inner, into);
    }
}

std::optional<std::pair<int, int>> Resolver::bounds(CountNode const& count, Scope* scope) {
    return bounds(count.first, count.last, scope);
}

// The last may be one below the first: then there is nothing.
std::optional<std::pair<int, int>> Resolver::bounds(Expr const& first, Expr const& last,
                                                    Scope* scope) {
    std::optional<int> const from = wholeNumber(first, scope, "the first number", 0);
    std::optional<int> const to = wholeNumber(last, scope, "the last number", 0);
    if (!from || !to)
        return std::nullopt;
    if (*to < *from - 1 || *to - *from >= mostElements) {
        messages.error(through(first.range, last.range),
                       *to < *from ? "this range ends before it begins"
                                   : "this range is longer than can be meant",
                       "write the first number, .. and the last one");
        return std::nullopt;
    }
    return std::pair(*from, *to);
}

// ---- Instances ----

void Resolver::makeInstances(PlacedStatement const& placed) {
    auto const* node = std::get_if<InstanceNode>(&placed.statement->node);
    if (node == nullptr)
        return;
    if (!node->count) {
        Entity const entity = entityOf(Entity::component, static_cast<int>(members.size()));
        if (declare(*fileScope, node->name, entity))
            makeInstance(*node, node->name.text, placed.scope);
        return;
    }
    std::optional<std::pair<int, int>> const range = bounds(*node->count, placed.scope);
    Entity const entity = entityOf(Entity::array, static_cast<int>(arrays.size()));
    if (!range || !declare(*fileScope, node->name, entity)) {
        damaged.insert(node->name.text);
        return;
    }
    arrays.push_back({node->name, range->first, {}});
    for (int i = range->first; i <= range->second; ++i) {
        Scope* inner = newScope(placed.scope, nowhere);
        Entity index;
        index.kind = Entity::number;
        index.value.low = index.value.high = i;
        if (!node->count->index.text.empty())
            declare(*inner, node->count->index, index);
        arrays.back().components.push_back(static_cast<int>(members.size()));
        makeInstance(*node, node->name.text + std::to_string(i), inner);
    }
}

void Resolver::makeInstance(InstanceNode const& node, std::string const& name, Scope* scope) {
    auto const type = types.find(node.type.text);
    Scope* inner = newScope(fileScope, static_cast<int>(members.size()));
    std::string symbol = name;
    if (!node.symbol.text.empty())
        symbol = node.symbol.text + name.substr(node.name.text.size());
    for (FlatComponent const& other : plant.components)
        if (other.name == name)
            messages.error(node.name.range, "two components are named " + name, "rename one");
        else if (other.symbol == symbol)
            messages.error(
                node.symbol.text.empty() ? node.name.range : node.symbol.range,
                "two components have the symbol " + symbol + ", " + other.name + " being the other",
                "give one of them another symbol");
    plant.components.push_back({name, node.type.text, symbol, node.name.range, {}, {}});
    members.push_back({type == types.end() ? nullptr : type->second, inner, {}, {}, 0});
    if (type != types.end()) {
        bindArguments(node, *type->second, *inner, scope);
        return;
    }
    std::vector<std::string> known;
    for (auto const& entry : types)
        known.push_back(entry.first);
    if (!isDamaged(node.type.text))
        messages.error(
            node.type.range, "there is no type " + node.type.text,
            suggestion(node.type.text, known, "declare it: type " + node.type.text + " { ... }"));
}

// An argument is worked out where it is used: it may be of an instance that is not there yet.
void Resolver::bindArguments(InstanceNode const& node, TypeNode const& type, Scope& inner,
                             Scope* outer) {
    for (FormalNode const& formal : type.formals) {
        Entity entity;
        entity.kind = Entity::written;
        entity.scope = outer;
        for (ArgumentNode const& argument : node.arguments)
            if (argument.name.text == formal.name.text)
                entity.expr = &argument.value;
        if (entity.expr == nullptr && formal.otherwise) {
            entity.expr = &*formal.otherwise;
            entity.scope = fileScope;
        }
        if (entity.expr == nullptr) {
            messages.error(node.name.range,
                           node.name.text + " does not say what its " + formal.name.text + " is",
                           "write " + formal.name.text + " = ... in the parentheses");
            entity.kind = Entity::bad;
        }
        declare(inner, formal.name, entity);
    }
    checkArguments(node, type);
}

// Of arguments that the type does not ask for, and of those that stand twice.
void Resolver::checkArguments(InstanceNode const& node, TypeNode const& type) {
    std::vector<std::string> known;
    for (FormalNode const& formal : type.formals)
        known.push_back(formal.name.text);
    std::set<std::string> given;
    for (ArgumentNode const& argument : node.arguments) {
        if (!given.insert(argument.name.text).second)
            messages.error(argument.name.range, argument.name.text + " is given a second time",
                           "keep one of them");
        if (std::find(known.begin(), known.end(), argument.name.text) == known.end())
            messages.error(
                argument.name.range,
                "the type " + type.name.text + " does not ask for " + argument.name.text,
                suggestion(argument.name.text, known,
                           known.empty() ? "take it out" : "it asks for " + oneOf(known)));
    }
}

// ---- Members ----

void Resolver::declareMembers(ComponentRef component) {
    Member& member = members[static_cast<std::size_t>(component)];
    if (member.type == nullptr)
        return;
    unroll(member.type->body, member.scope, member.statements);
    std::vector<std::string> declared;
    for (PlacedStatement const& placed : member.statements)
        if (auto const* quantities = std::get_if<QuantitiesNode>(&placed.statement->node))
            for (QuantityNode const& quantity : quantities->quantities)
                declared.push_back(quantity.name.text);
    for (PlacedStatement const& placed : member.statements) {
        auto const& node = placed.statement->node;
        if (auto const* quantities = std::get_if<QuantitiesNode>(&node))
            for (QuantityNode const& quantity : quantities->quantities)
                declareQuantity(component, quantity, placed.scope);
        else if (auto const* list = std::get_if<ListNode>(&node))
            declareInputs(component, *list, declared);
        else if (auto const* choice = std::get_if<ChoiceNode>(&node))
            declareChoice(component, *choice);
        else if (auto const* define = std::get_if<DefineNode>(&node))
            declare(*member.scope, define->name, entityOf(Entity::defined, plant.defined++));
    }
}

void Resolver::declareQuantity(ComponentRef component, QuantityNode const& node, Scope* scope) {
    Entity const entity = entityOf(Entity::quantity, static_cast<int>(plant.quantities.size()));
    if (!declare(*members[static_cast<std::size_t>(component)].scope, node.name, entity))
        return;
    plant.quantities.push_back(
        {component, node.name.text, node.isParameter, {}, {}, {}, node.name.range});
    pending.push_back({&node, scope, false});
}

// An input that is declared by nothing else is a variable.
void Resolver::declareInputs(ComponentRef component, ListNode const& node,
                             std::vector<std::string> const& declared) {
    if (node.kind != ListKind::input)
        return;
    for (Expr const& path : node.names) {
        NameNode const& name = path.path.front().name;
        if (path.path.size() > 1 ||
            std::find(declared.begin(), declared.end(), name.text) != declared.end())
            continue;
        Entity const entity = entityOf(Entity::quantity, static_cast<int>(plant.quantities.size()));
        if (!declare(*members[static_cast<std::size_t>(component)].scope, name, entity))
            continue;
        plant.quantities.push_back({component, name.text, false, {}, {}, {}, name.range});
        pending.push_back({nullptr, nullptr, false});
    }
}

void Resolver::declareChoice(ComponentRef component, ChoiceNode const& node) {
    Member& member = members[static_cast<std::size_t>(component)];
    ChoiceRef const reference = static_cast<int>(plant.choices.size());
    if (!declare(*member.scope, node.name, entityOf(Entity::choice, reference)))
        return;
    FlatChoice choice{component, node.kind, node.name.text, {}, 0, nowhere, node.name.range};
    std::vector<std::string> known;
    for (ValueNode const& value : node.values) {
        if (std::find(known.begin(), known.end(), value.name.text) != known.end())
            messages.error(value.name.range, value.name.text + " is a value a second time",
                           "keep one of them");
        known.push_back(value.name.text);
        choice.values.push_back({value.name.text, value.name.range, {}});
    }
    if (known.empty()) {
        messages.error(node.name.range, node.name.text + " has no values", "name them");
    } else if (!node.start.text.empty()) {
        auto const start = std::find(known.begin(), known.end(), node.start.text);
        if (start == known.end())
            messages.error(node.start.range, node.start.text + " is none of the values",
                           suggestion(node.start.text, known, "they are " + oneOf(known)));
        else
            choice.start = static_cast<int>(start - known.begin());
    }
    if (node.kind == ChoiceKind::mode)
        member.modes.push_back(reference);
    plant.choices.push_back(std::move(choice));
}

// ---- Order ----

void Resolver::setOrder(PlacedStatement const& placed) {
    auto const& node = std::get<OrderNode>(placed.statement->node);
    if (hasOrder) {
        messages.error(placed.statement->range, "the order is told a second time",
                       "keep one of them");
        return;
    }
    hasOrder = true;
    for (Expr const& path : node.instances) {
        Entity const found = lookup(path, placed.scope);
        std::vector<ComponentRef> named;
        if (found.kind == Entity::array)
            named = arrays[static_cast<std::size_t>(found.reference)].components;
        else if (ComponentRef const one = componentOf(path, placed.scope); one != nowhere)
            named = {one};
        for (ComponentRef const one : named) {
            if (std::find(plant.order.begin(), plant.order.end(), one) != plant.order.end())
                messages.error(path.range, written(path.range) + " stands here a second time",
                               "keep one of them");
            else
                plant.order.push_back(one);
        }
    }
}

// Those that the text does not name come last, as they were made.
void Resolver::completeOrder() {
    std::vector<char> known(plant.components.size(), 0);
    for (ComponentRef const one : plant.order)
        known[static_cast<std::size_t>(one)] = 1;
    for (ComponentRef one = 0; one < static_cast<int>(known.size()); ++one)
        if (!known[static_cast<std::size_t>(one)])
            plant.order.push_back(one);
}
