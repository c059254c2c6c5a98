// From the id of an atom to the runtime conditions that are true exactly when the atom holds.
//
// Keys are Atom::getId() pointers, ordered by pointer value, so the order of a walk means nothing:
// lookups compare the text or go through the atom's own id. Values are indices into the runtime's
// condition array.
#pragma once

#include <functional>
#include <map>

using CondMap = std::multimap<char const*, int, std::less<char const*>>;
