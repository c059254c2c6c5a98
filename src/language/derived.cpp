// Orders of updates.
#include "language/derived.h"

#include <algorithm>
#include <queue>

bool isTemporal(EquationForm form) {
    return form != EquationForm::sum && form != EquationForm::coupling;
}

namespace {

// Influences by the place of their effect.
std::vector<std::vector<int>> causesOf(FlatPlant const& flat) {
    std::vector<std::vector<int>> causes(flat.quantities.size());
    for (std::size_t i = 0; i < flat.influences.size(); ++i)
        causes[static_cast<std::size_t>(flat.influences[i].effect)].push_back(static_cast<int>(i));
    return causes;
}

// Reads what its cause has become in this very step.
bool readsThisStep(FlatPlant const& flat, FlatInfluence const& influence) {
    return influence.form == EquationForm::sum && influence.shortestDelay == 0 &&
           !flat.quantity(influence.cause).isParameter;
}

// The places of quantities in lists.
std::vector<QuantityRef> listed(FlatPlant const& flat) {
    std::vector<std::vector<QuantityRef>> byComponent(flat.components.size());
    for (std::size_t i = 0; i < flat.quantities.size(); ++i)
        byComponent[static_cast<std::size_t>(flat.quantities[i].component)].push_back(
            static_cast<QuantityRef>(i));
    std::vector<QuantityRef> all;
    for (ComponentRef const component : flat.order) {
        auto const& own = byComponent[static_cast<std::size_t>(component)];
        all.insert(all.end(), own.begin(), own.end());
    }
    return all;
}

// Of those that are ready the first in the list; those in a loop come last, for the check to tell.
std::vector<QuantityRef> inCausalOrder(FlatPlant const& flat,
                                       std::vector<QuantityRef> const& updated) {
    std::vector<int> place(flat.quantities.size(), nowhere), waits(updated.size(), 0);
    for (std::size_t i = 0; i < updated.size(); ++i)
        place[static_cast<std::size_t>(updated[i])] = static_cast<int>(i);
    std::vector<std::vector<int>> followers(updated.size());
    for (FlatInfluence const& influence : flat.influences) {
        int const cause = place[static_cast<std::size_t>(influence.cause)];
        int const effect = place[static_cast<std::size_t>(influence.effect)];
        if (cause == nowhere || effect == nowhere || !readsThisStep(flat, influence))
            continue;
        followers[static_cast<std::size_t>(cause)].push_back(effect);
        ++waits[static_cast<std::size_t>(effect)];
    }
    std::priority_queue<int, std::vector<int>, std::greater<>> ready;
    for (std::size_t i = 0; i < updated.size(); ++i)
        if (waits[i] == 0)
            ready.push(static_cast<int>(i));
    std::vector<QuantityRef> ordered;
    while (!ready.empty()) {
        auto const next = static_cast<std::size_t>(ready.top());
        ready.pop();
        ordered.push_back(updated[next]);
        for (int const follower : followers[next])
            if (--waits[static_cast<std::size_t>(follower)] == 0)
                ready.push(follower);
    }
    for (std::size_t i = 0; i < updated.size(); ++i)
        if (waits[i] > 0)
            ordered.push_back(updated[i]);
    return ordered;
}

}  // namespace

// A variable is worked out by the first of its causes that is no coupling.
Updates updatesOf(FlatPlant const& flat) {
    std::vector<std::vector<int>> const causes = causesOf(flat);
    Updates updates;
    std::vector<QuantityRef> others;
    for (QuantityRef const quantity : listed(flat)) {
        auto const& own = causes[static_cast<std::size_t>(quantity)];
        bool const isInput =
            std::find(flat.inputs.begin(), flat.inputs.end(), quantity) != flat.inputs.end();
        if (own.empty() || isInput)
            continue;
        bool const temporal = std::any_of(own.begin(), own.end(), [&](int i) {
            return isTemporal(flat.influences[static_cast<std::size_t>(i)].form);
        });
        (temporal ? updates.temporal : others).push_back(quantity);
    }
    updates.untemporal = inCausalOrder(flat, others);
    return updates;
}
