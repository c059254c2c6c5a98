// Numbers and intervals for calculations beside the engine: a value is two bounds and whether it is
// an interval; brackets play no part. Written apart from the engine's own operations.
#pragma once

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace plants_test {

struct Num {
    double lo = 0.0, hi = 0.0;
    bool range = false;
};

inline Num num(double x) {
    return {x, x, false};
}
inline Num range_(double lo, double hi) {
    return {lo, hi, true};
}
inline Num hullOf(std::initializer_list<double> points) {
    return range_(std::min(points), std::max(points));
}

inline Num operator+(Num a, Num b) {
    return {a.lo + b.lo, a.hi + b.hi, a.range || b.range};
}
// A number minus an interval has its bounds in the order of the interval.
inline Num operator-(Num a, Num b) {
    if (!a.range && b.range)
        return range_(a.lo - b.lo, a.lo - b.hi);
    return {a.lo - b.hi, a.hi - b.lo, a.range || b.range};
}
inline Num operator*(Num a, Num b) {
    if (!a.range && a.lo == 0.0)
        return a;
    if (!a.range && !b.range)
        return num(a.lo * b.lo);
    if (!b.range && b.lo == 0.0)
        return num(0.0);
    return hullOf({a.lo * b.lo, a.lo * b.hi, a.hi * b.lo, a.hi * b.hi});
}
// A divisor that holds or touches 0 leaves the dividend.
inline Num operator/(Num a, Num b) {
    if (b.range ? b.lo * b.hi <= 0 : b.lo == 0)
        return a;
    if (!a.range && !b.range)
        return num(a.lo / b.lo);
    return hullOf({a.lo / b.lo, a.lo / b.hi, a.hi / b.lo, a.hi / b.hi});
}
inline Num operator-(Num a) {
    return {-a.hi, -a.lo, a.range};
}
template <typename F>
Num atBounds(Num a, F f) {
    return a.range ? range_(f(a.lo), f(a.hi)) : num(f(a.lo));
}
inline Num exp_(Num a) {
    return atBounds(a, [](double x) { return std::exp(x); });
}
inline Num log_(Num a) {
    return atBounds(a, [](double x) { return std::log(x); });
}
inline Num sqrt_(Num a) {
    return atBounds(a, [](double x) { return std::sqrt(x); });
}
// For angles between 0 and a half turn, where the cosine falls all the way.
inline Num cos_(Num a) {
    Num const at = atBounds(a, [](double x) { return std::cos(x); });
    return a.range ? hullOf({at.lo, at.hi}) : at;
}
// For the same angles: the sine rises to the quarter turn and falls then.
inline Num sin_(Num a) {
    Num const at = atBounds(a, [](double x) { return std::sin(x); });
    if (!a.range)
        return at;
    double const quarter = std::acos(-1.0) / 2;
    bool const top = std::min(a.lo, a.hi) < quarter && quarter < std::max(a.lo, a.hi);
    return top ? hullOf({at.lo, at.hi, 1.0}) : hullOf({at.lo, at.hi});
}
// Covers both; two equal numbers stay one.
inline Num unite(Num a, Num b) {
    if (!a.range && !b.range && a.lo == b.lo)
        return a;
    return range_(std::min(a.lo, b.lo), std::max(a.hi, b.hi));
}

}  // namespace plants_test
