// The invariants of the truth maintenance, told broken in sentences.
//
// The links between supports and consequences are not among them, since they hold in neither
// direction. Required: what unit propagation labels, and what a conflict leaves unknown, has a
// support and is no consequence of it. A support may also name elements of an earlier state, which
// record only what depends on them there. And the first sets of a start-up append a consequence at
// each call, also when the support is set anew.
#include <algorithm>

#include "reasoning/itmsrt.h"

namespace {

bool mentions(Clause const* clause, Atom const* atom) {
    return std::any_of(clause->atoms.begin(), clause->atoms.end(),
                       [atom](auto const& literal) { return literal.second == atom; });
}

char const* brokenSupport(TrajEl const& element) {
    if (element.propagationNumber < 0)
        return "a propagation number is negative";
    if (element.support == nullptr)
        return element.propagationNumber == 0 ? nullptr
                                              : "an element without a support has a number";
    return mentions(element.support, element.atom)
               ? nullptr
               : "an element stands on a clause that does not mention it";
}

}  // namespace

char const* itms::brokenSupports(State const& state) {
    if (char const* broken = state.brokenInvariant())
        return broken;
    for (auto const& entry : state.elts)
        if (entry.second != nullptr)
            if (char const* broken = brokenSupport(*entry.second))
                return broken;
    return nullptr;
}

bool itms::risesAboveSupport(TrajEl const& element, State const& state) {
    return std::all_of(element.support->atoms.begin(), element.support->atoms.end(),
                       [&](auto const& literal) {
                           TrajEl const* other = state.getElt(literal.second->getId());
                           return other == nullptr || other == &element ||
                                  other->propagationNumber < element.propagationNumber;
                       });
}
