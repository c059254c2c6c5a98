// Certain relations between numbers and intervals.
//
// Each answers 1 only when the relation holds whatever point of the operands is taken. Where the
// kinds allow it, a number takes part as an interval with two equal bounds. The relations treat
// bracket flags each in its own way; alarms and conditions are decided by exactly these ways.

#include "continuous/objets.h"

namespace {

// No point of a can equal a point of b, judged by the bounds alone.
bool areApart(s_Objet const& a, s_Objet const& b) {
    return sn_infOf(a) > sn_supOf(b) || sn_infOf(b) > sn_supOf(a);
}

bool sameFlags(range const& a, range const& b) {
    return a.infClosed == b.infClosed && a.supClosed == b.supClosed;
}

// Whether a >= b still holds when the lowest bound of a is the highest of b.
bool geWhenTouching(s_Objet const& a, s_Objet const& b) {
    // Required: between two intervals only the flag of b counts, so a threshold with a
    // closed sup is reached by any value that starts there, even an open one.
    if (isRange(b))
        return isSupClosed(b.rng);
    return isReal(a) || isInfClosed(a.rng);
}

// Required: a number that equals a closed one-point interval is not inside it, for this asks
// whether a is narrower than b.
bool isRealInside(double a, range const& b) {
    if (b.inf < a && a < b.sup)
        return true;
    return (a == b.inf && isInfClosed(b) && a < b.sup) ||
           (a == b.sup && isSupClosed(b) && a > b.inf);
}

bool isRangeInside(range const& a, range const& b) {
    if (a.sup < b.sup)
        return a.inf > b.inf || (a.inf == b.inf && (!isInfClosed(a) || isInfClosed(b)));
    // Required: when both bounds coincide the answer is 0, whatever the flags: callers ask this
    // to learn whether a value has become narrower.
    return a.inf > b.inf && a.sup == b.sup && (!isSupClosed(a) || isSupClosed(b));
}

}  // namespace

int sn_sgnObjet(s_Objet const* a) {
    double const inf = sn_infOf(*a), sup = sn_supOf(*a);
    if (inf >= 0 && sup > 0)
        return 1;
    return inf < 0 && sup <= 0 ? -1 : 0;
}

int sn_eqObjet(s_Objet const* a, s_Objet const* b) {
    if (isReal(*a) && isReal(*b))
        return a->real == b->real;
    return isRange(*a) && isRange(*b) && a->rng.inf == b->rng.inf && a->rng.sup == b->rng.sup &&
           sameFlags(a->rng, b->rng);
}

int sn_diffObjet(s_Objet const* a, s_Objet const* b) {
    if (!isValue(*a) || !isValue(*b))
        return 0;
    if (isReal(*a) && isReal(*b))
        return a->real != b->real;
    // Required: two intervals that overlap count as different when a flag differs.
    if (isRange(*a) && isRange(*b) && !sameFlags(a->rng, b->rng))
        return 1;
    return areApart(*a, *b);
}

// Required: no flags. [1, 2[ is not certainly below [2, 3].
int sn_ltObjet(s_Objet const* a, s_Objet const* b) {
    return isValue(*a) && isValue(*b) && sn_supOf(*a) < sn_infOf(*b);
}

int sn_geObjet(s_Objet const* a, s_Objet const* b) {
    if (!isValue(*a) || !isValue(*b))
        return 0;
    double const lowest = sn_infOf(*a), highest = sn_supOf(*b);
    return lowest > highest || (lowest == highest && geWhenTouching(*a, *b));
}

int sn_inObjet(s_Objet const* a, s_Objet const* b) {
    if (!isRange(*b))
        return 0;
    if (isReal(*a))
        return isRealInside(a->real, b->rng);
    return isRange(*a) && isRangeInside(a->rng, b->rng);
}
