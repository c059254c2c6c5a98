// Membership tests and copies of the engine's tables.
#include <algorithm>

#include "reasoning/itmsrt.h"

bool itms::inMultimap(Atom const* atom, SignedAtoms const& atoms) {
    return std::any_of(atoms.begin(), atoms.end(),
                       [atom](auto const& entry) { return entry.second == atom; });
}

ElementTable itms::copyState(ElementTable const& table, State const* state) {
    ElementTable copy;
    for (auto const& entry : table)
        copy[entry.first] = state->getElt(entry.first);
    return copy;
}
