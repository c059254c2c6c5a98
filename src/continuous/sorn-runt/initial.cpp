// The first values of a runtime.
#include "continuous/sorn-runt.h"

#include <cassert>

namespace {

// `defined` while a first value is being computed.
constexpr int beingDefined = -1;

void setFirstValue(s_Variable* variable, s_Objet const& value) {
    assert(!variable->isParam);
    sn_putObjet(&value, &variable->old);
    sn_fillHisto(variable);
    variable->defined = 1;
}

// sum += value x coefficient, on a local object: computing a cause may nest.
void addProduct(s_Objet* sum, s_Objet value, s_Objet const& coefficient) {
    sn_mulObjet(&value, &coefficient);
    sn_addObjet(sum, &value);
}

// A loop of static causes has no first value: it is told, and reads what is there.
void defineCause(s_runtime* rt, s_Variable* cause) {
    if (cause->defined == beingDefined)
        rt->engine->err << "The first value of " << cause->nom << " depends on itself !\n";
    if (cause->defined)
        return;
    if (sn_isMeasure(rt, cause) && isValue(cause->mes)) {
        cause->old = sn_observed(cause);
        cause->defined = 1;
    } else {
        sn_compInitVar(rt, cause);
    }
}

void addCauseForInit(s_runtime* rt, s_Influence* influence, influType kind, s_Objet* sum) {
    s_Variable* cause = influence->cause;
    if (kind == INF_STATIC)
        defineCause(rt, cause);
    if (kind == INF_DYNAMIC) {
        addProduct(sum, cause->old, influence->gain);
        return;
    }
    addProduct(sum, cause->old, influence->b1);
    if (kind == INF_DYNAMIC2)
        addProduct(sum, cause->histo.size() > 0 ? cause->histo[0] : cause->old, influence->b2);
}

void addOpenCauseForInit(s_runtime* rt, s_Influence* influence, influType kind, s_Objet* sum) {
    s_Objet share = *objZero;
    addCauseForInit(rt, influence, kind, &share);
    sn_coverNothing(&share);
    sn_addObjet(sum, &share);
}

void finishDynamic(s_engine& engine, s_Influence* last, s_Objet* sum) {
    sn_putObjet(sum, &engine.TMP1);
    sn_evalInitDynInfl(engine, last);
    sn_putObjet(&engine.TMP1, sum);
}

s_Objet firstValue(s_runtime* rt, s_CGraph const& graph) {
    s_Objet sum = *objZero;
    if (graph.kind == INF_COUPLING)
        return sum;  // such a graph has no recursion of its own
    s_Influence* last = nullptr;
    for (s_Influence* influence : graph.causes) {
        last = influence;
        Truth const acts = sn_pushActivity(influence, rt);
        if (acts == Truth::TRUE)
            addCauseForInit(rt, influence, graph.kind, &sum);
        else if (acts == Truth::OPEN)
            addOpenCauseForInit(rt, influence, graph.kind, &sum);
    }
    assert(last != nullptr);  // only an effect with causes has a first value from them
    if (graph.kind == INF_INTEGRAL)
        sn_addObjet(&sum, &last->effect->old);
    if (graph.kind == INF_DYNAMIC || graph.kind == INF_DYNAMIC2)
        finishDynamic(*rt->engine, last, &sum);
    return sum;
}

void defineFromCauses(s_runtime* rt, std::vector<s_Variable*> const& variables) {
    for (s_Variable* variable : variables)
        if (!variable->defined)
            sn_compInitVar(rt, variable);
}

}  // namespace

void sn_compInitVar(s_runtime* rt, s_Variable* variable) {
    if (variable->graph == nullptr || variable->graph->causes.empty())
        return;
    variable->defined = beingDefined;
    setFirstValue(variable, firstValue(rt, *variable->graph));
}

void sn_initVars(s_runtime* rt) {
    assert(rt->engine->nrt.empty());
    for (s_InitVar const& initial : rt->init)
        setFirstValue(initial.var, initial.value);
    for (s_Variable* measure : rt->measure)
        if (!measure->defined && isValue(measure->mes))
            setFirstValue(measure, sn_observed(measure));
    defineFromCauses(rt, rt->temporal);
    defineFromCauses(rt, rt->untemporal);
    if (sn_initValSpc(rt) != 1)
        rt->engine->out << "Error while splitting init state\n";
    rt->varsInitialised = 1;
}
