// Closed intervals whose operations are rounded outwards, for reasoning that must not lose the
// truth.
//
// The values of the engine (objets.h) round as doubles do, so that a bound may come to lie on the
// wrong side of the truth by the last digit. That is harmless where values only flow forward, but
// not where bounds are intersected again and again. Here each operation moves both bounds to the
// next double outwards: for any points of the operands, the exact result is inside. What cannot be
// told (infinity minus infinity, an overflow) becomes an infinite bound.
#pragma once

#include "continuous/objets.h"

// lo <= hi; a bound may be infinite, and none is NaN.
struct Outward {
    double lo = 0.0;
    double hi = 0.0;
};

// What narrowing did. SAME: nothing worth another round. CONTRADICTION: the intersection is empty.
enum class Narrowing { SAME, NARROWER, CONTRADICTION };

// The set of a value, open ends closed; the whole line for anything that is no value.
Outward outwardOf(s_Objet const& value);
Outward hullOf(Outward const& a, Outward const& b);
bool holdsZero(Outward const& a);
bool meet(Outward const& a, Outward const& b);

Outward operator+(Outward const& a, Outward const& b);
Outward operator-(Outward const& a, Outward const& b);
Outward operator*(Outward const& a, Outward const& b);
// *b* must not hold zero.
Outward operator/(Outward const& a, Outward const& b);

// *value* becomes its intersection with *by*. A gap that rounding alone explains is no
// contradiction and leaves *value*; so does an empty intersection.
Narrowing narrow(Outward& value, Outward const& by);

// Writes the bounds of *narrower* that lie inside *value* into it, as closed ends; a single point
// becomes a number. The other bounds keep their flags.
void putNarrower(s_Objet& value, Outward const& narrower);
