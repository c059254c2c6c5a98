// The recursions of dynamic effects, evaluated in each cycle.
//
// With number coefficients a recursion is a sum. With an interval among them, its bounds lie at
// ends of the coefficients, since it is linear in each of them: it is evaluated at every
// combination of ends (a corner) and the hull is taken. Rejected: products of intervals. An
// interval 1 - a1 beside an interval a1 would count a1 as two independent quantities, and the
// bounds would grow from cycle to cycle. Corners still take the four second-order coefficients as
// independent, though all of them come from the same parameters; the bound search (search.cpp)
// sharpens that.
//
// Nothing here allocates but the bound search.

#include <algorithm>
#include <array>
#include <cassert>

#include "continuous/sorn-runt.h"

namespace {

// What the recursion takes as y(k-1) and y(k-2) of the effect. `first` is the runtime's own object,
// which the search may narrow. `second` is a copy, since histories are written through set only.
struct Previous {
    s_Objet* first;
    s_Objet second;
    History<s_Objet>* history;  // where `second` is the newest entry, unless it is of length 0
};

Previous previousIn(s_Objet* value, History<s_Objet>* history) {
    return {value, history->size() > 0 ? (*history)[0] : *value, history};
}

Previous previousOf(s_runtime const* rt, s_Variable* effect) {
    // By the rule `narrow` the measure is in `old` already.
    if (!rt->engine->rules.narrow && sn_isTrusted(rt, effect)) {
        Previous const measured = previousIn(&effect->mes, &effect->mesHisto);
        if (isValue(measured.second))
            return measured;
    }
    return previousIn(&effect->old, &effect->histo);
}

// A narrowed y(k-2) goes back to where it was taken from.
void keepSecond(Previous const& previous) {
    if (isRange(previous.second) && previous.history->size() > 0)
        previous.history->set(0, previous.second);
}

// *product = a x. Required: an x without a value leaves a, so that the first value of an effect
// without an initial value has the bare coefficient in it.
void putProduct(s_Objet const& a, s_Objet const& x, s_Objet* product) {
    sn_putObjet(&a, product);
    sn_mulObjet(product, &x);
}

// TMP2 = a x + c y, by way of TMP3.
void putCombination(s_engine& engine, s_Objet const& a, s_Objet const& x, s_Objet const& c,
                    s_Objet const& y) {
    putProduct(a, x, &engine.TMP2);
    putProduct(c, y, &engine.TMP3);
    sn_addObjet(&engine.TMP2, &engine.TMP3);
}

// TMP1 = (1 - a) TMP1 + a previous, by way of TMP2.
void mixIntoSum(s_engine& engine, s_Objet const& a, s_Objet const& previous) {
    sn_putObjet(objUn, &engine.TMP2);
    sn_subObjet(&engine.TMP2, &a);
    sn_mulObjet(&engine.TMP1, &engine.TMP2);
    putProduct(a, previous, &engine.TMP2);
    sn_addObjet(&engine.TMP1, &engine.TMP2);
}

// The bounds of all values noted. A first bound that is not a number stays.
class Hull {
public:
    void note(s_Objet const& value) {
        lo = noted ? std::min(lo, sn_infOf(value)) : sn_infOf(value);
        hi = noted ? std::max(hi, sn_supOf(value)) : sn_supOf(value);
        noted = true;
    }
    // TMP1 becomes the hull, and a number when it is one point.
    // Required: its flags stay, also those that it remembers as a number.
    void putInSum(s_engine& engine) const {
        assert(noted);
        if (lo == hi)
            engine.TMP1 = makeReal(lo);
        else
            sn_setBounds(&engine.TMP1, lo, hi);
    }

private:
    double lo = 0.0, hi = 0.0;
    bool noted = false;
};

using Ends = std::array<double, 2>;

Ends endsOf(s_Objet const& o) {
    return {sn_infOf(o), sn_supOf(o)};
}

void evalFirstOrderEnds(s_engine& engine, s_Objet const& a1, s_Objet const& previous) {
    Hull hull;
    for (double const a : endsOf(a1)) {
        putCombination(engine, makeReal(1.0 - a), engine.TMP1, makeReal(a), previous);
        hull.note(engine.TMP2);
    }
    hull.putInSum(engine);
}

std::array<s_Objet*, 4> corners(s_engine& engine) {
    return {&engine.TMPII, &engine.TMPIS, &engine.TMPSI, &engine.TMPSS};
}

void evalInputCorners(s_engine& engine, s_Influence const& influence, Previous const& previous) {
    putCombination(engine, influence.a1, *previous.first, influence.a2, previous.second);
    Hull hull;
    for (s_Objet* corner : corners(engine)) {
        sn_addObjet(corner, &engine.TMP2);
        hull.note(*corner);
    }
    hull.putInSum(engine);
}

void evalAllCorners(s_engine& engine, s_Influence const& influence, Previous const& previous) {
    Hull hull;
    for (double const a : endsOf(influence.a1))
        for (double const c : endsOf(influence.a2))
            for (s_Objet const* corner : corners(engine)) {
                putCombination(engine, makeReal(a), *previous.first, makeReal(c), previous.second);
                sn_addObjet(&engine.TMP2, corner);
                hull.note(engine.TMP2);
            }
    hull.putInSum(engine);
}

void search(s_runtime* rt, s_Influence* influence, Previous& previous) {
    if (!influence->useOpti || !rt->engine->env_opti ||
        !sn_mayBeSearched(*influence->effect->graph, rt))
        return;
    if (sn_isMeasure(rt, influence->effect))
        call_nelder_obs(influence->effect, rt, previous.first, &previous.second, &rt->engine->TMP1,
                        INF_DYNAMIC2, true);
    else
        call_nelder_second(influence, rt, previous.first, &previous.second);
    keepSecond(previous);
}

void evalFirstOrder(s_runtime* rt, s_Influence* influence, Previous& previous) {
    s_engine& engine = *rt->engine;
    if (isReal(influence->a1))
        return mixIntoSum(engine, influence->a1, *previous.first);
    if (!isRange(influence->a1))
        return;
    evalFirstOrderEnds(engine, influence->a1, *previous.first);
    search(rt, influence, previous);
}

// Required: with number a1, a2 and b1 an interval b2 loses the whole contribution of the causes,
// for the corners that hold it are not read. Combinations that are not listed here change nothing.
void evalSecondOrder(s_runtime* rt, s_Influence* influence, Previous& previous) {
    s_engine& engine = *rt->engine;
    s_Objet const &a1 = influence->a1, &a2 = influence->a2;
    if (isReal(a1) && isReal(a2) && isReal(influence->b1)) {
        putCombination(engine, a1, *previous.first, a2, previous.second);
        sn_addObjet(&engine.TMP1, &engine.TMP2);
    } else if (isReal(a1) && isReal(a2) && isRange(influence->b1)) {
        evalInputCorners(engine, *influence, previous);
        search(rt, influence, previous);
    } else if (isRange(a1) && isRange(a2)) {
        evalAllCorners(engine, *influence, previous);
    }
}

// *corner = b TMP2 + c TMP5.
void putCorner(s_engine& engine, double b, double c, s_Objet* corner) {
    s_Objet older = makeReal(c);
    sn_mulObjet(&older, &engine.TMP5);
    *corner = makeReal(b);
    sn_mulObjet(corner, &engine.TMP2);
    sn_addObjet(corner, &older);
}

void putCorners(s_engine& engine, Ends const& b1, Ends const& b2) {
    putCorner(engine, b1[0], b2[0], &engine.TMPII);
    putCorner(engine, b1[0], b2[1], &engine.TMPIS);
    putCorner(engine, b1[1], b2[0], &engine.TMPSI);
    putCorner(engine, b1[1], b2[1], &engine.TMPSS);
}

// a1 to the tenth power: the state ten sample periods ahead.
s_Objet tenSamplesAhead(s_Objet a1) {
    sn_logObjet(&a1);
    sn_mulObjet(&a1, objDix);
    sn_expObjet(&a1);
    return a1;
}

}  // namespace

void sn_evalDynInfl(s_runtime* rt, s_Influence* influence) {
    assert(influence->effect != nullptr);
    Previous previous = previousOf(rt, influence->effect);
    if (influence->type == INF_DYNAMIC2)
        evalSecondOrder(rt, influence, previous);
    else
        evalFirstOrder(rt, influence, previous);
}

// Required: the plain sums, also with interval coefficients; there are no corners of a first value.
void sn_evalInitDynInfl(s_engine& engine, s_Influence* influence) {
    Previous const previous = previousIn(&influence->effect->old, &influence->effect->histo);
    if (influence->type != INF_DYNAMIC2)
        return mixIntoSum(engine, tenSamplesAhead(influence->a1), *previous.first);
    putCombination(engine, influence->a1, *previous.first, influence->a2, previous.second);
    sn_addObjet(&engine.TMP1, &engine.TMP2);
}

// Required: corners replace those of an influence before, and nothing of them enters the sum: an
// effect with interval coefficients is meant to have a single cause.
void sn_addSecondOrder(s_engine& engine, s_Influence* influence) {
    if (!isReal(influence->b1) || !isReal(influence->b2))
        return putCorners(engine, endsOf(influence->b1), endsOf(influence->b2));
    sn_mulObjet(&engine.TMP2, &influence->b1);
    sn_mulObjet(&engine.TMP5, &influence->b2);
    sn_addObjet(&engine.TMP1, &engine.TMP2);
    sn_addObjet(&engine.TMP1, &engine.TMP5);
}
