// Updating a variable from its causes, and what a cause is worth at a delay.
#include <algorithm>
#include <cassert>

#include "continuous/sorn-runt.h"

namespace {

// Makes *value* the newest entry; a history of length 0 holds its one entry all the same.
void pushCondHisto(s_Influence* influence, boolVal value) {
    assert(influence->cond != nullptr && (value == 0 || value == 1));
    auto& history = influence->condHisto;
    std::size_t const needed = static_cast<std::size_t>(std::max(influence->condHistoLn, 1));
    if (history.size() < needed)
        history.resize(needed, value);
    for (int i = influence->condHistoLn - 1; i >= 1; --i)
        history[static_cast<std::size_t>(i)] = history[static_cast<std::size_t>(i) - 1];
    history[0] = value;
}

void pushCondValue(s_Influence* influence, boolVal value) {
    pushCondHisto(influence, value);
    influence->cond->val = value;
}

// The entry, or the oldest that there is when the model's delay reaches behind the history, or the
// value itself when there is no history.
s_Objet const& entryAt(History<s_Objet> const& history, int i, s_Objet const& without) {
    if (history.size() == 0)
        return without;
    assert(i >= 0);
    return history[std::min(i, history.size() - 1)];
}

bool flagAt(History<int> const& history, int i) {
    return history.size() > 0 && history[std::min(i, history.size() - 1)] != 0;
}

// A second-order influence reads the value before, too: of the measures only if neither is missing.
bool isWhole(s_Influence const* influence, History<s_Objet> const& history, int before,
             s_Objet const& without) {
    return influence->type != INF_DYNAMIC2 || isValue(entryAt(history, before, without));
}

// At a delay of *hi* cycles the measure was trusted. Without a history only today's alarms are
// known.
bool wasTrusted(s_runtime const* rt, s_Variable const* cause, int hi) {
    if (cause->mesHisto.size() == 0)
        return sn_isTrusted(rt, cause);
    return sn_isMeasure(rt, cause) && isValue(entryAt(cause->mesHisto, hi - 1, cause->mes)) &&
           !flagAt(cause->lowHisto, hi - 1) && !flagAt(cause->highHisto, hi - 1);
}

// A delay of at least one cycle. Required: over a range of delays, the hull is always taken from
// the predicted values, also where the measures are trusted.
void loadDelayed(s_runtime const* rt, s_Influence const* influence, int lo, int hi) {
    s_engine& engine = *rt->engine;
    s_Variable const* cause = influence->cause;
    bool const measured =
        wasTrusted(rt, cause, hi) && isWhole(influence, cause->mesHisto, hi, cause->mes);
    History<s_Objet> const& history = measured ? cause->mesHisto : cause->histo;
    s_Objet const& without = measured ? cause->mes : cause->old;
    sn_putObjet(&entryAt(history, hi - 1, without), &engine.TMP2);
    if (influence->type == INF_DYNAMIC2)
        sn_putObjet(&entryAt(history, hi, without), &engine.TMP5);
    for (int i = hi - 2; i >= std::max(lo - 1, 0); --i)
        sn_uniObjet(&engine.TMP2, &entryAt(cause->histo, i, cause->old));
}

void loadPreviousCycle(s_runtime const* rt, s_Influence const* influence) {
    s_engine& engine = *rt->engine;
    s_Variable const* cause = influence->cause;
    bool const measured =
        sn_isTrusted(rt, cause) && isWhole(influence, cause->mesHisto, 0, cause->mes);
    sn_putObjet(measured ? &cause->mes : &cause->old, &engine.TMP2);
    if (influence->type != INF_DYNAMIC2)
        return;
    History<s_Objet> const& history = measured ? cause->mesHisto : cause->histo;
    sn_putObjet(&entryAt(history, 0, measured ? cause->mes : cause->old), &engine.TMP5);
}

void loadThisCycle(s_runtime const* rt, s_Variable const* cause) {
    s_engine& engine = *rt->engine;
    if (sn_isTrusted(rt, cause))
        sn_putObjet(&cause->mes, &engine.TMP2);
    else
        sn_putObjet(cause->isParam ? &cause->old : &cause->new_, &engine.TMP2);
}

// What a measure shows may be off by the noise.
void addNoise(s_Objet* value, double noise) {
    if (noise != 0.0 && isValue(*value))
        *value = makeRange(sn_infOf(*value) - noise, sn_supOf(*value) + noise, 1, 1);
}

// What nothing predicts has its measures alone.
bool isOnlyMeasured(s_runtime const* rt, s_Variable const* variable) {
    return sn_isMeasure(rt, variable) && !sn_isPredicted(variable);
}

// Adds every active cause times its coefficient to TMP1. Returns the influence looked at last.
s_Influence* addCauses(s_runtime* rt, s_Variable* variable, s_Objet s_Influence::*coefficient) {
    s_engine& engine = *rt->engine;
    s_Influence* last = nullptr;
    for (s_Influence* influence : variable->graph->causes) {
        last = influence;
        Truth const acts = sn_pushActivity(influence, rt);
        if (acts == Truth::FALSE)
            continue;
        sn_loadCauseValue(rt, influence);
        sn_mulObjet(&engine.TMP2, &(influence->*coefficient));
        if (acts == Truth::OPEN)
            sn_coverNothing(&engine.TMP2);
        sn_addObjet(&engine.TMP1, &engine.TMP2);
    }
    return last;
}

void updateIntegral(s_runtime* rt, s_Variable* variable) {
    s_engine& engine = *rt->engine;
    addCauses(rt, variable, &s_Influence::b1);
    // By the rule `narrow` the measure is in `old` already.
    bool const measured = !engine.rules.narrow && sn_isTrusted(rt, variable);
    sn_addObjet(&engine.TMP1, measured ? &variable->mes : &variable->old);
}

void updateStatic(s_runtime* rt, s_Variable* variable) {
    s_engine& engine = *rt->engine;
    s_Influence const* last = addCauses(rt, variable, &s_Influence::b1);
    assert(last != nullptr);
    if (engine.env_opti && last->useOpti && sn_isTrusted(rt, variable) &&
        sn_mayBeSearched(*variable->graph, rt))
        call_nelder_obs(variable, rt, &variable->mes, nullptr, &engine.TMP1, INF_STATIC, true);
}

// The corners of an influence that may not act reach to 0 as well.
void addSecondOrder(s_engine& engine, s_Influence* influence, Truth acts) {
    if (acts == Truth::TRUE)
        return sn_addSecondOrder(engine, influence);
    s_Objet const others = engine.TMP1;
    engine.TMP1 = *objZero;
    sn_addSecondOrder(engine, influence);
    for (s_Objet* share :
         {&engine.TMP1, &engine.TMPII, &engine.TMPIS, &engine.TMPSI, &engine.TMPSS})
        sn_coverNothing(share);
    sn_addObjet(&engine.TMP1, &others);
}

void updateSecondOrder(s_runtime* rt, s_Variable* variable) {
    s_engine& engine = *rt->engine;
    // Corners that no active cause makes anew contribute nothing.
    engine.TMPII = engine.TMPIS = engine.TMPSI = engine.TMPSS = *objZero;
    s_Influence* last = nullptr;
    for (s_Influence* influence : variable->graph->causes) {
        last = influence;
        Truth const acts = sn_pushActivity(influence, rt);
        if (acts == Truth::FALSE)
            continue;
        sn_loadCauseValue(rt, influence);
        addSecondOrder(engine, influence, acts);
    }
    assert(last != nullptr && last->effect == variable);
    sn_evalDynInfl(rt, last);
}

}  // namespace

bool sn_isTrusted(s_runtime const* rt, s_Variable const* variable) {
    return variable->lowalarm == 0 && variable->highalarm == 0 && isValue(variable->mes) &&
           sn_isMeasure(rt, variable);
}

int sn_pushCond(s_Influence* influence, s_runtime* rt) {
    pushCondValue(influence, sn_evalCond(influence->cond, rt));
    return influence->cond->val;
}

void sn_pushExternCond(s_Influence* influence, boolVal value) {
    pushCondValue(influence, value);
}

Truth sn_pushActivity(s_Influence* influence, s_runtime* rt) {
    if (influence->cond == nullptr)
        return Truth::TRUE;
    if (!sn_isOpen(influence->cond, rt))
        return sn_pushCond(influence, rt) != 0 ? Truth::TRUE : Truth::FALSE;
    // The condition keeps its own value, which may be the truth of an atom.
    pushCondHisto(influence, 1);
    return Truth::OPEN;
}

bool sn_isActive(s_Influence* influence, s_runtime* rt) {
    return sn_pushActivity(influence, rt) != Truth::FALSE;
}

void sn_coverNothing(s_Objet* value) {
    sn_coverBoth(value, *objZero);
}

void sn_loadCauseValue(s_runtime* rt, s_Influence* influence) {
    assert(influence->cause != nullptr && influence->delayMin <= influence->delayMax);
    if (rt->engine->rules.narrow && !isOnlyMeasured(rt, influence->cause))
        return sn_loadPredicted(rt, influence);
    s_engine& engine = *rt->engine;
    // A static link is told one cycle later than it acts: its delay 0 reads this very cycle.
    int const early = influence->type == INF_STATIC ? 1 : 0;
    int const lo = influence->delayMin - early;
    int const hi = influence->delayMax - early;
    if (hi > 0)
        loadDelayed(rt, influence, lo, hi);
    else if (hi == 0)
        loadPreviousCycle(rt, influence);
    else if (hi == -1 && influence->type == INF_STATIC)
        loadThisCycle(rt, influence->cause);
    addNoise(&engine.TMP2, influence->cause->noise);
    addNoise(&engine.TMP5, influence->cause->noise);
}

// Inactive causes contribute nothing: with every condition false the sum is 0.
void sn_updateVariable(s_runtime* rt, s_Variable* variable) {
    if (variable->graph == nullptr || variable->graph->causes.empty())
        return;
    s_engine& engine = *rt->engine;
    engine.TMP1 = *objZero;
    switch (variable->graph->kind) {
        case INF_INTEGRAL:
            updateIntegral(rt, variable);
            break;
        case INF_DYNAMIC:
            sn_evalDynInfl(rt, addCauses(rt, variable, &s_Influence::gain));
            break;
        case INF_STATIC:
            updateStatic(rt, variable);
            break;
        case INF_DYNAMIC2:
            updateSecondOrder(rt, variable);
            break;
        default:
            break;
    }
    sn_putObjet(&engine.TMP1, &variable->new_);
}
