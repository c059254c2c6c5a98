// Arithmetic on numbers and intervals, in place.
//
// A number takes part as an interval whose two bounds are that number, and then one formula serves
// every pair of kinds; only the pairs that depart from it are told apart. The result of two
// numbers is a number, and so is a product with an exact zero; any other result is an interval.

#include <algorithm>
#include <cmath>

#include "continuous/objets.h"

namespace {

bool areValues(s_Objet const& a, s_Objet const& b) {
    return isValue(a) && isValue(b);
}

bool areReals(s_Objet const& a, s_Objet const& b) {
    return isReal(a) && isReal(b);
}

bool isZero(s_Objet const& o) {
    return isReal(o) && o.real == 0.0;
}

// *a becomes the interval [inf, sup]; at least one of a and b is an interval. The flags are those
// of a, or those of b when a is a number.
void becomeRange(s_Objet* a, s_Objet const& b, double inf, double sup) {
    range const flags = isRange(*a) ? a->rng : b.rng;
    *a = makeRange(inf, sup, flags.infClosed, flags.supClosed);
}

// The same, from the four corner results, in any order.
void becomeHull(s_Objet* a, s_Objet const& b, double ii, double is, double si, double ss) {
    becomeRange(a, b, std::min({ii, is, si, ss}), std::max({ii, is, si, ss}));
}

bool isDivisor(s_Objet const& b) {
    return isReal(b) ? b.real != 0.0 : b.rng.inf * b.rng.sup > 0;
}

template <typename Function>
void applyToBounds(s_Objet* a, Function f) {
    if (isReal(*a)) {
        a->real = f(a->real);
    } else if (isRange(*a)) {
        a->rng.inf = f(a->rng.inf);
        a->rng.sup = f(a->rng.sup);
    }
}

}  // namespace

void sn_addObjet(s_Objet* a, s_Objet const* b) {
    if (!areValues(*a, *b))
        return;
    if (areReals(*a, *b))
        a->real += b->real;
    else
        becomeRange(a, *b, sn_infOf(*a) + sn_infOf(*b), sn_supOf(*a) + sn_supOf(*b));
}

void sn_subObjet(s_Objet* a, s_Objet const* b) {
    if (!areValues(*a, *b))
        return;
    if (areReals(*a, *b)) {
        a->real -= b->real;
    } else if (isReal(*a)) {
        // Required: a number minus an interval takes the bounds in the order of b, which leaves inf
        // above sup. Second-order coefficients hold such differences, and follow from this order.
        becomeRange(a, *b, a->real - b->rng.inf, a->real - b->rng.sup);
    } else {
        becomeRange(a, *b, a->rng.inf - sn_supOf(*b), a->rng.sup - sn_infOf(*b));
    }
}

void sn_mulObjet(s_Objet* a, s_Objet const* b) {
    if (!areValues(*a, *b) || isZero(*a))
        return;
    if (areReals(*a, *b)) {
        a->real *= b->real;
    } else if (isZero(*b)) {
        *a = makeReal(0.0);
    } else {
        double const a1 = sn_infOf(*a), a2 = sn_supOf(*a), b1 = sn_infOf(*b), b2 = sn_supOf(*b);
        becomeHull(a, *b, a1 * b1, a1 * b2, a2 * b1, a2 * b2);
    }
}

int sn_divObjet(s_Objet* a, s_Objet const* b) {
    if (!areValues(*a, *b) || !isDivisor(*b))
        return 0;
    if (areReals(*a, *b)) {
        a->real /= b->real;
    } else {
        double const a1 = sn_infOf(*a), a2 = sn_supOf(*a), b1 = sn_infOf(*b), b2 = sn_supOf(*b);
        becomeHull(a, *b, a1 / b1, a1 / b2, a2 / b1, a2 / b2);
    }
    return 1;
}

void sn_minusObjet(s_Objet* a) {
    if (isReal(*a)) {
        a->real = -a->real;
    } else if (isRange(*a)) {
        // Required: both flags end as the old flag of inf; they are not swapped. Relations that
        // count flags see the outcome, so a swap would move alarms and conditions.
        *a = makeRange(-a->rng.sup, -a->rng.inf, a->rng.infClosed, a->rng.infClosed);
    }
}

void sn_expObjet(s_Objet* a) {
    applyToBounds(a, [](double x) { return std::exp(x); });
}

void sn_logObjet(s_Objet* a) {
    applyToBounds(a, [](double x) { return std::log(x); });
}

void sn_sqrtObjet(s_Objet* a) {
    applyToBounds(a, [](double x) { return std::sqrt(x); });
}
