// The invariants of the truth maintenance, told broken in sentences.
#include <algorithm>

#include "reasoning/itmsrt.h"

namespace {

bool mentions(Clause const* clause, Atom const* atom) {
    return std::any_of(clause->atoms.begin(), clause->atoms.end(),
                       [atom](auto const& literal) { return literal.second == atom; });
}

char const* brokenSupport(State const& state, TrajEl const& element) {
    if (element.propagationNumber < 0)
        return "a propagation number is negative";
    if (element.support == nullptr)
        return nullptr;
    if (!mentions(element.support, element.atom))
        return "an element stands on a clause that does not mention it";
    for (auto const& literal : element.support->atoms) {
        TrajEl const* other = state.getElt(literal.second->getId());
        if (other != nullptr && other != &element &&
            other->propagationNumber >= element.propagationNumber)
            return "a propagation number does not rise along a support";
    }
    return nullptr;
}

}  // namespace

char const* itms::brokenSupports(State const& state) {
    if (char const* broken = state.brokenInvariant())
        return broken;
    for (auto const& entry : state.elts)
        if (entry.second != nullptr)
            if (char const* broken = brokenSupport(state, *entry.second))
                return broken;
    return nullptr;
}
