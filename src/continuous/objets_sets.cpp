// Intersection, union and remainder of numbers and intervals.
//
// Bounds are those of the sets; flags are not. An operation changes the flags of its first argument
// only where a comment below says so, and then a value may be reported one end point too wide or
// too narrow. Splits of the validity space and narrowing tests are decided by these flags, so they
// are not to be mended.

#include <algorithm>

#include "continuous/objets.h"

namespace {

bool contains(range const& r, double x) {
    return (r.inf < x && x < r.sup) || (x == r.inf && isInfClosed(r)) ||
           (x == r.sup && isSupClosed(r));
}

// The single point where a and b meet belongs to the intersection when an interval that gives it as
// lower bound is closed there, and one that gives it as upper bound too.
bool isMeetingPoint(double x, range const& a, range const& b) {
    return ((x == a.inf && isInfClosed(a)) || (x == b.inf && isInfClosed(b))) &&
           ((x == a.sup && isSupClosed(a)) || (x == b.sup && isSupClosed(b)));
}

int interRanges(s_Objet* a, range const& b) {
    double const lo = std::max(a->rng.inf, b.inf);
    double const hi = std::min(a->rng.sup, b.sup);
    if (hi > lo) {
        // Required: the flags of a stay, also at a bound that comes from b.
        a->rng.inf = lo;
        a->rng.sup = hi;
        return 1;
    }
    if (hi != lo || !isMeetingPoint(lo, a->rng, b))
        return 0;
    *a = makeReal(lo);
    return 1;
}

// Required: an open end is closed only by the number that equals it, both ends when they are one
// point; a number farther out moves the bound and leaves it open. Each end is looked at by itself:
// between inverted bounds a number lies beyond both.
void growToReal(range* a, double x) {
    if (contains(*a, x))
        return;
    if (x == a->sup)
        a->supClosed = 1;
    if (x == a->inf)
        a->infClosed = 1;
    if (x < a->inf)
        a->inf = x;
    if (x > a->sup)
        a->sup = x;
}

// *a was the number x and becomes b, grown to x.
// Required: x on an open end does not close it, unlike in growToReal. On the open sup, the interval
// collapses onto that end: inf becomes x and sup stays open. This asymmetry is deliberate.
void growFromReal(s_Objet* a, range const& b) {
    double const x = a->real;
    *a = makeRange(b.inf, b.sup, b.infClosed, b.supClosed);
    if (contains(b, x))
        return;
    if (x == b.sup || x <= b.inf)
        a->rng.inf = x;
    if (x > b.sup)
        a->rng.sup = x;
}

SpacePieces onePiece(double lo, double hi) {
    return {true, sn_mkSpObjet(lo, hi), std::nullopt};
}

// Required: a number strictly inside b does not split it: there is no answer.
SpacePieces outsideReal(double a, range const& b) {
    if (a == b.sup && isSupClosed(b) && a > b.inf)
        return onePiece(b.inf, a);
    if (a == b.inf && isInfClosed(b) && b.sup > a)
        return onePiece(a, b.sup);
    return {};
}

// Required: at a bound that a and b share, flags that differ give no answer at all, although the
// other side of b remains.
SpacePieces outsideRange(range const& a, range const& b) {
    if (a.inf > b.inf && a.sup < b.sup)
        return {true, sn_mkSpObjet(b.inf, a.inf), sn_mkSpObjet(a.sup, b.sup)};
    if (a.inf > b.inf && a.sup == b.sup && isSupClosed(a) == isSupClosed(b))
        return onePiece(b.inf, a.inf);
    if (a.inf == b.inf && a.sup < b.sup && isInfClosed(a) == isInfClosed(b))
        return onePiece(a.sup, b.sup);
    return {};
}

}  // namespace

int sn_interObjet(s_Objet* a, s_Objet const* b) {
    if (isReal(*a) && isReal(*b))
        return a->real == b->real;
    if (isReal(*a) && isRange(*b))
        return contains(b->rng, a->real);
    if (isRange(*a) && isRange(*b))
        return interRanges(a, b->rng);
    if (!isRange(*a) || !isReal(*b) || !contains(a->rng, b->real))
        return 0;
    *a = makeReal(b->real);
    return 1;
}

void sn_uniObjet(s_Objet* a, s_Objet const* b) {
    if (!isValue(*a) || !isValue(*b))
        return;
    if (isRange(*a) && isReal(*b)) {
        growToReal(&a->rng, b->real);
    } else if (isRange(*a)) {
        // Required: the flags of a stay, also at a bound that comes from b.
        a->rng.inf = std::min(a->rng.inf, b->rng.inf);
        a->rng.sup = std::max(a->rng.sup, b->rng.sup);
    } else if (isRange(*b)) {
        growFromReal(a, b->rng);
    } else if (a->real != b->real) {
        // Required: the flags are those that a remembers, though both numbers are meant to be in
        // it.
        sn_setBounds(a, std::min(a->real, b->real), std::max(a->real, b->real));
    }
}

SpacePieces sn_inSpObjet(s_Objet const* a, s_Objet const* b) {
    if (!isRange(*b) || !isValue(*a))
        return {};
    return isReal(*a) ? outsideReal(a->real, b->rng) : outsideRange(a->rng, b->rng);
}
