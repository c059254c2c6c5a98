// A bag of signed atoms, walked and never searched by key.
//
// The two users read the sign in opposite ways, and both must be kept: in a Clause the key true is
// a negated literal, in a StateFormula and in propositions it is a positive one. The order of a
// walk follows from eqbool (see support/hash_map.h) and the order of insertion.
#pragma once

#include <map>

#include "support/hash_map.h"

class Atom;

using SignedAtoms = std::multimap<bool, Atom*, eqbool>;
