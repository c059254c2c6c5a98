// Names: scopes, what is in them, and the way along a path such as valve[2].mode.
#include <cmath>

#include "language/resolver.h"

Scope* Resolver::newScope(Scope* outer, ComponentRef component) {
    Scope& scope = scopes.emplace_back();
    scope.outer = outer;
    scope.component = component;
    return &scope;
}

bool Resolver::declare(Scope& scope, NameNode const& name, Entity entity) {
    entity.range = name.range;
    auto const [place, isNew] = scope.names.insert({name.text, entity});
    if (isNew) {
        scope.order.push_back(name.text);
        return true;
    }
    messages.error(
        name.range, "the name " + name.text + " is given a second time",
        "rename one of them" + (place->second.range.isPlace()
                                    ? "; the other is in line " +
                                          std::to_string(sources[place->second.range.file]
                                                             .positionOf(place->second.range.begin)
                                                             .line)
                                    : std::string()));
    return false;
}

Entity* Resolver::find(Scope* scope, std::string const& name) {
    for (; scope != nullptr; scope = scope->outer)
        if (auto const found = scope->names.find(name); found != scope->names.end())
            return &found->second;
    return nullptr;
}

std::string Resolver::written(TextRange const& range) const {
    return std::string(sources[range.file].text().substr(
        static_cast<std::size_t>(range.begin), static_cast<std::size_t>(range.end - range.begin)));
}

Entity Resolver::unknown(NameNode const& name, Scope* scope, bool quiet) {
    if (quiet || isDamaged(name.text))
        return {};
    std::vector<std::string> known;
    for (; scope != nullptr; scope = scope->outer)
        known.insert(known.end(), scope->order.begin(), scope->order.end());
    messages.error(name.range, "there is nothing of the name " + name.text,
                   suggestion(name.text, known, "declare it, or correct its spelling"));
    return {};
}

// ---- Paths ----

Entity Resolver::lookup(Expr const& path, Scope* scope, bool quiet) {
    PathStep const& first = path.path.front();
    Entity* found = find(scope, first.name.text);
    if (found == nullptr)
        return unknown(first.name, scope, quiet);
    Entity entity = settled(*found, quiet);
    if (!first.index.empty())
        entity = element(entity, first, scope, quiet);
    for (std::size_t i = 1; i < path.path.size() && entity.kind != Entity::bad; ++i)
        entity = step(entity, path.path[i], scope, quiet);
    mentionOwner(scope, entity);
    return entity;
}

Entity Resolver::step(Entity const& from, PathStep const& step, Scope* scope, bool quiet) {
    if (from.kind != Entity::component) {
        if (!quiet)
            messages.error(
                step.name.range,
                "what stands before ." + step.name.text + " is no component, and has no members",
                from.kind == Entity::array ? "say which of the array, as in valve[1]"
                                           : "take the dot and what is behind it out");
        return {};
    }
    Entity const found = member(from.reference, step.name, quiet);
    return step.index.empty() ? found : element(found, step, scope, quiet);
}

Entity Resolver::element(Entity const& array, PathStep const& step, Scope* scope, bool quiet) {
    if (array.kind == Entity::bad)
        return {};
    if (array.kind != Entity::array) {
        if (!quiet)
            messages.error(step.name.range, step.name.text + " is no array",
                           "take the brackets out");
        return {};
    }
    InstanceArray const& found = arrays[static_cast<std::size_t>(array.reference)];
    std::optional<Value> const index = number(step.index.front(), scope);
    if (!index)
        return {};
    double const place = index->low - found.first;
    bool const inside = !index->isInterval && place == std::floor(place) && place >= 0.0 &&
                        place < static_cast<double>(found.components.size());
    if (!inside) {
        int const last = found.first + static_cast<int>(found.components.size()) - 1;
        if (!quiet)
            messages.error(step.index.front().range,
                           found.name.text + " has no element of this number",
                           std::string("they go from ") + std::to_string(found.first) + " to " +
                               std::to_string(last));
        return {};
    }
    Entity entity;
    entity.kind = Entity::component;
    entity.reference = found.components[static_cast<std::size_t>(place)];
    return entity;
}

// An expression that was given under a name, followed to what it means.
Entity Resolver::settled(Entity& entity, bool quiet) {
    if (entity.kind != Entity::written)
        return entity;
    if (entity.busy) {
        messages.error(entity.range,
                       "the value of " + written(entity.range) + " is worked out from itself",
                       "give it a number");
        entity.kind = Entity::bad;
        return {};
    }
    entity.busy = true;
    Entity found;
    if (entity.expr->kind == ExprKind::name) {
        found = lookup(*entity.expr, entity.scope, quiet);
    } else if (std::optional<Value> const value = number(*entity.expr, entity.scope)) {
        found.kind = Entity::number;
        found.value = *value;
    }
    entity.busy = false;
    if (found.kind == Entity::bad && !quiet)
        entity.kind = Entity::bad;
    return found;
}

Entity Resolver::member(ComponentRef component, NameNode const& name, bool quiet) {
    Member& of = members[static_cast<std::size_t>(component)];
    if (of.type == nullptr)
        return {};  // its type was not found, which was told
    auto const found = of.scope->names.find(name.text);
    if (found != of.scope->names.end())
        return settled(found->second, quiet);
    if (!quiet && !isDamaged(name.text))
        messages.error(name.range,
                       "a component of type " + of.type->name.text + " has no " + name.text,
                       suggestion(name.text, of.scope->order, "declare it there"));
    return {};
}

// ---- Who names whom ----

void Resolver::mention(ComponentRef from, ComponentRef other) {
    if (from == nowhere || other == nowhere || from == other)
        return;
    auto& mentions = plant.components[static_cast<std::size_t>(from)].mentions;
    if (std::find(mentions.begin(), mentions.end(), other) == mentions.end())
        mentions.push_back(other);
}

void Resolver::mentionOwner(Scope const* scope, Entity const& entity) {
    if (entity.kind == Entity::quantity)
        mention(scope->component, plant.quantity(entity.reference).component);
    else if (entity.kind == Entity::choice)
        mention(scope->component, plant.choice(entity.reference).component);
}

// ---- Of a certain kind ----

QuantityRef Resolver::quantityOf(Expr const& path, Scope* scope, char const* wanted) {
    Entity const found = lookup(path, scope);
    if (found.kind == Entity::quantity)
        return found.reference;
    if (found.kind != Entity::bad)
        messages.error(path.range,
                       written(path.range) + " is no variable, and here belongs " + wanted,
                       "name a variable");
    return nowhere;
}

ComponentRef Resolver::componentOf(Expr const& path, Scope* scope) {
    Entity const found = lookup(path, scope);
    if (found.kind == Entity::component)
        return found.reference;
    if (found.kind != Entity::bad)
        messages.error(path.range, written(path.range) + " is no component", "name an instance");
    return nowhere;
}
