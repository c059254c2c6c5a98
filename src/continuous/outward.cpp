// Intervals rounded outwards.
#include "continuous/outward.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// Relative to the bounds. A gap below it is what rounding leaves between two ways to one number;
// what moves a bound by less is not worth another round.
constexpr double negligible = 1e-9;

Outward roundedOut(double lo, double hi) {
    return {std::isnan(lo) ? -infinity : std::nextafter(lo, -infinity),
            std::isnan(hi) ? infinity : std::nextafter(hi, infinity)};
}

// Nothing times anything is nothing: an infinite bound stands for all finite values below it.
double product(double a, double b) {
    return a == 0.0 || b == 0.0 ? 0.0 : a * b;
}

double scaleOf(double a, double b) {
    return std::max(std::fabs(a), std::fabs(b));
}

bool isMoved(double from, double to) {
    return from != to && !(std::fabs(from - to) <= negligible * scaleOf(from, to));
}

}  // namespace

Outward outwardOf(s_Objet const& value) {
    double const a = sn_infOf(value), b = sn_supOf(value);
    if (!isValue(value) || std::isnan(a) || std::isnan(b))
        return {-infinity, infinity};
    double const lo = std::min(a, b), hi = std::max(a, b);
    return {lo <= -DBL_MAX ? -infinity : lo, hi >= DBL_MAX ? infinity : hi};
}

Outward hullOf(Outward const& a, Outward const& b) {
    return {std::min(a.lo, b.lo), std::max(a.hi, b.hi)};
}

bool holdsZero(Outward const& a) {
    return a.lo <= 0.0 && a.hi >= 0.0;
}

bool meet(Outward const& a, Outward const& b) {
    return a.lo <= b.hi && b.lo <= a.hi;
}

Outward operator+(Outward const& a, Outward const& b) {
    return roundedOut(a.lo + b.lo, a.hi + b.hi);
}

Outward operator-(Outward const& a, Outward const& b) {
    return roundedOut(a.lo - b.hi, a.hi - b.lo);
}

Outward operator*(Outward const& a, Outward const& b) {
    auto const [lo, hi] = std::minmax(
        {product(a.lo, b.lo), product(a.lo, b.hi), product(a.hi, b.lo), product(a.hi, b.hi)});
    return roundedOut(lo, hi);
}

Outward operator/(Outward const& a, Outward const& b) {
    assert(!holdsZero(b));
    if (std::isinf(b.lo) || std::isinf(b.hi))
        return a * hullOf({0.0, 0.0}, roundedOut(1.0 / b.hi, 1.0 / b.lo));
    auto const [lo, hi] = std::minmax({a.lo / b.lo, a.lo / b.hi, a.hi / b.lo, a.hi / b.hi});
    return roundedOut(lo, hi);
}

Narrowing narrow(Outward& value, Outward const& by) {
    double const lo = std::max(value.lo, by.lo), hi = std::min(value.hi, by.hi);
    if (lo > hi)
        return isMoved(lo, hi) ? Narrowing::CONTRADICTION : Narrowing::SAME;
    bool const moved = isMoved(value.lo, lo) || isMoved(value.hi, hi);
    value = {lo, hi};
    return moved ? Narrowing::NARROWER : Narrowing::SAME;
}

void putNarrower(s_Objet& value, Outward const& narrower) {
    if (!isRange(value))
        return;
    range bounds = value.rng;
    if (narrower.lo > bounds.inf) {
        bounds.inf = narrower.lo;
        bounds.infClosed = 1;
    }
    if (narrower.hi < bounds.sup) {
        bounds.sup = narrower.hi;
        bounds.supClosed = 1;
    }
    if (bounds.inf > bounds.sup)
        return;
    if (bounds.inf == bounds.sup)
        value = makeReal(bounds.inf);
    else
        value.rng = bounds;
}
