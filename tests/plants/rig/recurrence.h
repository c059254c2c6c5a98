// The discrete forms of the influences, written out for calculations beside the engine: from the
// parameters of a form to its coefficients, and from these to the next value. Every formula stands
// in the order of operations that the engine promises, for with intervals the order is part of the
// result, and with numbers it decides the last bit.
#pragma once

#include "plain_interval.h"

namespace plants_test {

struct Coefs {
    Num a1, a2, b1, b2;
};

// ---- From parameters to coefficients ----

inline Num firstOrderA1(Num respTime, double Ts) {
    return exp_(num(-3.0 * Ts) / respTime);
}

inline Coefs underdamped(Num xi, Num w, Num gain, double Ts) {
    Num const q = -xi * w * num(Ts);
    Num const s = sqrt_(num(1) - xi * xi);
    Num const g = s * w * num(Ts);
    Num const c = cos_(g), z = sin_(g);
    Num const k = xi / s;
    return {exp_(q) * num(2) * c, -exp_(q * num(2)), ((-exp_(q)) * (k * z + c) + num(1)) * gain,
            (exp_(q * num(2)) + (k * z - c) * exp_(q)) * gain};
}

inline Coefs overdamped(Num xi, Num w, Num gain, double Ts) {
    Num const r = sqrt_(xi * xi - num(1)) * w;
    Num const m = xi * w;
    Num const p1 = m - r, p2 = m + r;
    Num const e1 = exp_(-(num(Ts) * p1)), e2 = exp_(-(num(Ts) * p2));
    Num const u1 = (num(1) - e1) * p2, u2 = (num(1) - e2) * p1;
    Num const D = (p2 - p1) * p2 * p1;
    return {e1 + e2, -exp_(-((p1 + p2) * num(Ts))), (u1 - u2) / D * w * w * gain,
            (u2 * e1 - u1 * e2) / D * w * w * gain};
}

inline Coefs doubleIntegrator(Num gain, double Ts) {
    Num const b = gain * num(Ts) * num(Ts) / num(2);
    return {num(2), num(-1), b, b};
}

inline Coefs rational(Num n1, Num n2, Num d0, Num d1, Num d2, Num gain, double Ts) {
    Num const alpha = d1 / (num(2) * d2);
    Num const beta = sqrt_(d0 / d2 - alpha * alpha);
    Num const E = exp_(-alpha * num(Ts));
    Num const S = sin_(beta * num(Ts)) * E;
    Num const C = cos_(beta * num(Ts)) * E;
    Num const R = S * (alpha / beta);
    Num const A = num(1) - (R + C);
    Num const B = (R - C) + E * E;
    Num const P = (S * n2) / beta / d2;
    Num const Q = n1 / d0;
    return {C * num(2), -(E * E), (Q * A + P) * gain, (Q * B - P) * gain};
}

// ---- From coefficients to the next value ----

// y(k-1) and y(k-2) of the effect, u(k-1) and u(k-2) of a cause.
struct Two {
    Num newest, older;
};

// The hull of what a value can be at its ends.
class Corners {
public:
    void note(Num x) {
        lo = std::min(lo, x.lo);
        hi = std::max(hi, x.hi);
    }
    Num hull() const { return lo == hi ? num(lo) : range_(lo, hi); }

private:
    double lo = HUGE_VAL, hi = -HUGE_VAL;
};

inline Num firstOrder(Num a1, Num sum, Num previous) {
    if (!a1.range)
        return sum * (num(1) - a1) + a1 * previous;
    Corners corners;
    for (double const a : {a1.lo, a1.hi})
        corners.note(num(1 - a) * sum + num(a) * previous);
    return corners.hull();
}

// One cause with number coefficients.
inline Num contribution(Coefs const& c, Two u) {
    return u.newest * c.b1 + u.older * c.b2;
}

// Number a1 and a2: what the causes give is in *sum*.
inline Num secondOrder(Coefs const& c, Num sum, Two y) {
    return sum + (c.a1 * y.newest + c.a2 * y.older);
}

// Interval b1 and b2, with one cause: each end of them against the whole values of the cause, and
// each end of a1 and a2 against the whole state.
inline Num secondOrderCorners(Coefs const& c, Two u, Two y) {
    Corners corners;
    for (double const b1 : {c.b1.lo, c.b1.hi})
        for (double const b2 : {c.b2.lo, c.b2.hi})
            for (double const a1 : {c.a1.lo, c.a1.hi})
                for (double const a2 : {c.a2.lo, c.a2.hi}) {
                    Num const input = num(b1) * u.newest + num(b2) * u.older;
                    Num const state = num(a1) * y.newest + num(a2) * y.older;
                    corners.note(c.a1.range ? state + input : input + state);
                }
    return corners.hull();
}

// ---- First values, and values after a jump: plain products, also with intervals ----

inline Num firstOrderStart(Num a1, Num sum, Num previous) {
    Num const a = exp_(log_(a1) * num(10));
    return sum * (num(1) - a) + a * previous;
}

inline Num secondOrderStart(Coefs const& c, Num sum, Two y) {
    return sum + (c.a1 * y.newest + c.a2 * y.older);
}

}  // namespace plants_test
