// The discrete coefficients of the influences.
//
// A causal link is a continuous transfer function whose parameters are numbers or intervals. Here
// it is turned, once per start, into a recursion over samples that is exact for inputs constant
// between them (step invariance; K. J. Astrom and B. Wittenmark, "Computer-Controlled Systems"):
//
//   static, coupling   y(k) = sum of b1 u
//   integral           y(k) = y(k-1) + sum of b1 u
//   first order        y(k) = a1 y(k-1) + (1 - a1) U,  U the sum of gain u
//   second order       y(k) = a1 y(k-1) + a2 y(k-2) + sum of (b1 u(k-1) + b2 u(k-2))
//
// Every formula is evaluated operation by operation on the values, in the order written. The order
// is part of the result: with intervals, each operation takes its operands as independent, so
// another order gives other bounds, and the alarms follow from these. A refused division leaves the
// dividend. A negative radicand gives NaN, which passes through: the model asked for an oscillation
// or a damping that it does not have.

#include <cfloat>

#include "continuous/sorn-runt.h"

namespace {

// ---- The operations on values, as functions ----

s_Objet plus(s_Objet a, s_Objet const& b) {
    sn_addObjet(&a, &b);
    return a;
}

s_Objet minus(s_Objet a, s_Objet const& b) {
    sn_subObjet(&a, &b);
    return a;
}

s_Objet times(s_Objet a, s_Objet const& b) {
    sn_mulObjet(&a, &b);
    return a;
}

s_Objet times(s_Objet a, double b) {
    return times(a, makeReal(b));
}

s_Objet over(s_Objet a, s_Objet const& b) {
    sn_divObjet(&a, &b);
    return a;
}

s_Objet negated(s_Objet a) {
    sn_minusObjet(&a);
    return a;
}

s_Objet expOf(s_Objet a) {
    sn_expObjet(&a);
    return a;
}

s_Objet rootOf(s_Objet a) {
    sn_sqrtObjet(&a);
    return a;
}

s_Objet sineOf(s_engine& engine, s_Objet a) {
    sn_sinObjet(engine, &a);
    return a;
}

s_Objet cosineOf(s_engine& engine, s_Objet a) {
    sn_cosObjet(engine, &a);
    return a;
}

// ---- First order and below ----

// After its response time a first-order effect has covered 1 - exp(-3), or 95 %, of a step.
constexpr double RESPONSE_FACTOR = 3.0;

void evalFirstOrder(s_Influence* influence, double Ts) {
    influence->a1 = expOf(over(makeReal(-RESPONSE_FACTOR * Ts), influence->respTime));
}

void evalIntegral(s_Influence* influence, double Ts) {
    influence->a1 = *objUn;
    influence->b1 = times(makeReal(Ts), influence->gain);
}

void evalMemoryless(s_Influence* influence, s_Objet const& gain) {
    influence->a1 = *objZero;
    influence->b1 = gain;
}

// ---- Second order ----

bool isRational(s_Influence const& influence) {
    return influence.n1.has_value();
}

// A compiled model that lacks a parameter of the form it has chosen.
bool isIncomplete(s_Influence const& influence) {
    if (isRational(influence))
        return !influence.n2 || !influence.d0 || !influence.d1 || !influence.d2;
    return !influence.xi || !influence.w;
}

bool isDamped(s_Objet const& xi) {
    return !sn_ltObjet(&xi, objUn) && !sn_eqObjet(&xi, objUn);
}

bool isWithoutEnd(s_Objet const& xi) {
    return isReal(xi) && xi.real == DBL_MAX;
}

// The last step of a rational coefficient; a model may give no gain at all.
s_Objet withGain(s_Objet const& coefficient, s_Objet const& gain) {
    return isValue(gain) ? times(coefficient, gain) : coefficient;
}

// (n1 + n2 s) / (d0 + d1 s + d2 s^2), with complex poles.
void evalRational(s_engine& engine, s_Influence* influence, double Ts) {
    s_Objet const &n1 = *influence->n1, &n2 = *influence->n2;
    s_Objet const &d0 = *influence->d0, &d1 = *influence->d1, &d2 = *influence->d2;
    s_Objet const alpha = over(d1, times(makeReal(2.0), d2));
    s_Objet const beta = rootOf(minus(over(d0, d2), times(alpha, alpha)));
    s_Objet const E = expOf(times(negated(alpha), Ts));
    s_Objet const S = times(sineOf(engine, times(beta, Ts)), E);
    s_Objet const C = times(cosineOf(engine, times(beta, Ts)), E);
    s_Objet const R = times(S, over(alpha, beta));
    s_Objet const A = minus(*objUn, plus(R, C));
    s_Objet const B = plus(minus(R, C), times(E, E));
    influence->a1 = times(C, 2.0);
    influence->a2 = negated(times(E, E));
    s_Objet const P = over(over(times(S, n2), beta), d2);
    s_Objet const Q = over(n1, d0);
    influence->b1 = withGain(plus(times(Q, A), P), influence->gain);
    influence->b2 = withGain(minus(times(Q, B), P), influence->gain);
}

// gain / s^2.
void evalDoubleIntegrator(s_Influence* influence, double Ts) {
    influence->a1 = makeReal(2.0);
    influence->a2 = makeReal(-1.0);
    influence->b1 = over(times(times(influence->gain, Ts), Ts), makeReal(2.0));
    influence->b2 = influence->b1;
}

// Two real poles, -p1 and -p2.
void evalOverdamped(s_Influence* influence, double Ts) {
    s_Objet const &xi = *influence->xi, &w = *influence->w, &gain = influence->gain;
    s_Objet const r = times(rootOf(minus(times(xi, xi), *objUn)), w);
    s_Objet const m = times(xi, w);
    s_Objet const p1 = minus(m, r);
    s_Objet const p2 = plus(m, r);
    s_Objet const e1 = expOf(negated(times(makeReal(Ts), p1)));
    s_Objet const e2 = expOf(negated(times(makeReal(Ts), p2)));
    influence->a1 = plus(e1, e2);
    influence->a2 = negated(expOf(negated(times(plus(p1, p2), Ts))));
    s_Objet const u1 = times(minus(*objUn, e1), p2);
    s_Objet const u2 = times(minus(*objUn, e2), p1);
    s_Objet const D = times(times(minus(p2, p1), p2), p1);
    influence->b1 = times(times(times(over(minus(u1, u2), D), w), w), gain);
    s_Objet const crossed = minus(times(u2, e1), times(u1, e2));
    influence->b2 = times(times(times(over(crossed, D), w), w), gain);
}

// Complex poles, or at a damping of 1 two equal ones: there s is 0 and k, whose division is
// refused, stays xi. Required: the term that two equal poles add then, w Ts exp(q) in b1 and b2, is
// left out.
void evalUnderdamped(s_engine& engine, s_Influence* influence, double Ts) {
    s_Objet const &xi = *influence->xi, &w = *influence->w, &gain = influence->gain;
    s_Objet const q = times(times(negated(xi), w), Ts);
    s_Objet const s = rootOf(minus(*objUn, times(xi, xi)));
    s_Objet const g = times(times(s, w), Ts);
    s_Objet const c = cosineOf(engine, g);
    s_Objet const z = sineOf(engine, g);
    influence->a1 = times(times(expOf(q), 2.0), c);
    influence->a2 = negated(expOf(times(q, 2.0)));
    s_Objet const k = over(xi, s);
    s_Objet const kz = times(k, z);
    influence->b1 = times(plus(times(negated(expOf(q)), plus(kz, c)), *objUn), gain);
    influence->b2 = times(plus(expOf(times(q, 2.0)), times(minus(kz, c), expOf(q))), gain);
}

void evalSecondOrder(s_engine& engine, s_Influence* influence, double Ts) {
    if (isRational(*influence))
        evalRational(engine, influence, Ts);
    else if (!isDamped(*influence->xi))
        evalUnderdamped(engine, influence, Ts);
    else if (isWithoutEnd(*influence->xi))
        evalDoubleIntegrator(influence, Ts);
    else
        evalOverdamped(influence, Ts);
}

void printCoefficient(s_Printer const& to, char const* title, s_Objet const& coefficient) {
    to.stream << title;
    sn_printObjet(to, &coefficient);
    to.stream << "\n";
}

void printSecondOrder(s_Printer const& to, s_Influence const& influence) {
    printCoefficient(to, "a1:\n", influence.a1);
    printCoefficient(to, "a2 :\n", influence.a2);
    printCoefficient(to, "b1 :\n", influence.b1);
    printCoefficient(to, "b2 :\n", influence.b2);
}

void evalSecondOrderIfComplete(s_engine& engine, s_Influence* influence, double Ts) {
    if (isIncomplete(*influence)) {
        engine.err << "Influence " << influence->nom
                   << " lacks a parameter of its second-order form !\n";
        return;
    }
    evalSecondOrder(engine, influence, Ts);
    printSecondOrder(dataPrinter(engine, engine.out), *influence);
}

void evalInfluence(s_engine& engine, s_Influence* influence, double Ts) {
    switch (influence->type) {
        case INF_DYNAMIC:
            return evalFirstOrder(influence, Ts);
        case INF_INTEGRAL:
            return evalIntegral(influence, Ts);
        case INF_STATIC:
            return evalMemoryless(influence, influence->gain);
        case INF_COUPLING:
            return evalMemoryless(influence, *objUn);
        case INF_DYNAMIC2:
            return evalSecondOrderIfComplete(engine, influence, Ts);
    }
}

}  // namespace

void sn_evalInfluCoefs(s_runtime* rt, double Ts) {
    for (auto const& influence : rt->influ)
        evalInfluence(*rt->engine, influence.get(), Ts);
}
