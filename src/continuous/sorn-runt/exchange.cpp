// What enters a runtime from outside, and what it yields.
#include <cassert>
#include <cmath>
#include <limits>

#include "continuous/sorn-runt.h"

int sn_enterInputs(s_runtime* rt) {
    if (rt->input.empty())
        return 1;
    assert(rt->engine->inps.size() >= rt->input.size());
    rt->inval = rt->engine->inps.data();
    for (std::size_t i = 0; i < rt->input.size(); ++i) {
        rt->input[i]->new_ = makeReal(rt->inval[i]);
        rt->input[i]->defined = 1;
    }
    return 1;
}

namespace {

// Pushes the measure histories and puts the new measures into *field* of each variable.
int enterMeasuresInto(s_runtime* rt, s_Objet s_Variable::*field) {
    if (rt->measure.empty())
        return 1;
    assert(rt->engine->meas.size() >= rt->measure.size());
    rt->mesval = rt->engine->meas.data();
    for (std::size_t i = 0; i < rt->measure.size(); ++i) {
        sn_pushHistoMes(rt->measure[i]);
        rt->measure[i]->*field = sn_measured(rt->mesval[i]);
    }
    return 1;
}

// 2 when the mark that every condition is false survived, else 1.
int verdict(bool allFalse) {
    return allFalse ? 2 : 1;
}

// Copies the conditions' values out. Returns whether all are false, given that *allFalse* were so
// far.
bool yieldCondsOf(s_runtime* rt, bool allFalse) {
    assert(rt->condout.size() == rt->influ.size());
    for (std::size_t i = 0; i < rt->influ.size(); ++i) {
        s_Condition* condition = rt->influ[i]->cond;
        // What may act counts as acting.
        if (sn_isOpen(condition, rt))
            rt->condout[i] = 1;
        else
            rt->condout[i] = condition != nullptr ? condition->val : 1;
        if (rt->condout[i] != 0)
            allFalse = false;
    }
    return allFalse;
}

}  // namespace

s_Objet sn_measured(double number) {
    return std::isnan(number) ? s_Objet{} : makeReal(number);
}

double sn_numberOf(s_Objet const& measured) {
    return isValue(measured) ? sn_infOf(measured) : std::numeric_limits<double>::quiet_NaN();
}

int sn_enterMeasures(s_runtime* rt) {
    return enterMeasuresInto(rt, &s_Variable::mes);
}

int sn_enterMeasuresOld(s_runtime* rt) {
    return enterMeasuresInto(rt, &s_Variable::old);
}

int sn_enterMisbs(s_runtime* rt) {
    if (rt->measure.empty())
        return 1;
    assert(rt->mesmisb.size() == rt->measure.size());
    bool const given =
        rt->engine->host.misbehaviours(static_cast<int>(rt->measure.size()), rt->mesmisb.data());
    for (std::size_t i = 0; i < rt->measure.size(); ++i)
        rt->measure[i]->mesmisb = rt->mesmisb[i] != 0 ? 1 : 0;
    return given ? 1 : 0;
}

int sn_enterConds(s_runtime* rt) {
    if (rt->influ.empty())
        return verdict(true);
    assert(rt->condin.size() == rt->influ.size());
    if (!rt->engine->host.activity(static_cast<int>(rt->influ.size()), rt->condin.data()))
        return 0;
    bool allFalse = true;
    for (std::size_t i = 0; i < rt->influ.size(); ++i) {
        s_Influence* influence = rt->influ[i].get();
        if (influence->cond == nullptr || rt->condin[i] != 0)
            allFalse = false;
        if (influence->cond != nullptr)
            sn_pushExternCond(influence, rt->condin[i]);
    }
    return verdict(allFalse);
}

int sn_yieldDisplays(s_runtime* rt) {
    assert(rt->dinfval.size() == rt->display.size() && rt->dsupval.size() == rt->display.size());
    for (std::size_t i = 0; i < rt->display.size(); ++i) {
        rt->dinfval[i] = sn_infOf(rt->display[i]->old);
        rt->dsupval[i] = sn_supOf(rt->display[i]->old);
    }
    return 1;
}

int sn_yieldConds(s_runtime* rt) {
    return verdict(yieldCondsOf(rt, true));
}

int sn_yieldMRTConds(s_runtime* rt) {
    sn_splitValiditySpc(rt);
    bool allFalse = true;
    for (auto const& entry : rt->engine->nrt) {
        // Required: the mark goes on from runtime to runtime.
        allFalse = yieldCondsOf(entry.second, allFalse);
        if (allFalse)
            return verdict(true);
    }
    return verdict(false);
}
