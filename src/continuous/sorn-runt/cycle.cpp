// One runtime through time: its start, and one cycle of a candidate.
#include <cassert>

#include "continuous/sorn-runt.h"
#include "support/memory_watch.h"

namespace {

// The threshold of the check at the start of a run, in cycles.
constexpr int initialThreshold = 2;

// A window of no cycle at all leaves everything as it is, and so does a negative one.
void startMisbehaviourWindow(s_runtime* rt, int window) {
    if (rt->measure.empty() || window <= 0)
        return;
    for (s_Variable* measure : rt->measure)
        measure->misbHisto.assign(static_cast<std::size_t>(window), 0);
    rt->misbWindow = window;
}

// Returns the number of enter and yield steps that failed.
int step(s_runtime* rt, bool narrows, bool& invalid) {
    int failures = 0;
    if (narrows)
        sn_takeMeasures(rt);
    sn_doStepTempo(rt);
    failures += sn_enterInputs(rt) == 0;
    failures += sn_enterMeasures(rt) == 0;
    sn_doStepUntemp(rt);
    for (s_Variable* measure : rt->measure)
        if (sn_isPredicted(measure))
            measure->foretold = measure->new_;
    if (narrows)
        sn_narrowCycle(rt);
    sn_moveAllOld(rt);
    invalid = sn_yieldConds(rt) == 2;
    return failures;
}

}  // namespace

void sorn_initialize(s_runtime* rt, int global, double precision, char const* diagBuf, int window) {
    assert(rt->engine != nullptr);
    sn_updateDico(rt);
    sn_evalInfluCoefs(rt, rt->Ts);
    sn_enterInputs(rt);
    sn_enterMeasures(rt);
    sn_initVars(rt);
    sn_moveInputs(rt);
    rt->engine->err << "global: " << global << "\n";
    rt->globalOn = global != 0 ? 1 : 0;
    if (rt->globalOn)
        sn_globalConstraints(rt);
    sn_fillAllHistos(rt);
    sn_fillAllHistosMes(rt);
    sn_yieldDisplays(rt);
    rt->precision = precision;
    sn_checkMs(rt, initialThreshold);
    sn_yieldAlarms(rt);
    rt->diagBuf = diagBuf != nullptr ? diagBuf : "";
    startMisbehaviourWindow(rt, window);
    init_nelder(*rt->engine);
    assert(sn_brokenRuntime(rt) == nullptr && sn_brokenValues(rt) == nullptr);
}

// The order is fixed: displays come after the constraints, a reset after the displays, and inputs
// move from new to old last of all.
int sorn_doCycle2(s_runtime* rt, int mode) {
    assert(rt->engine != nullptr && mode >= CYCLE_SIMULATE);
    // Candidates part here: what a copy shared with its source becomes its own.
    watchMemory(rt->engine->host);
    if (mode <= CYCLE_RESET)
        sn_setAlarms(rt);
    bool invalid = false;
    int failures = 0;
    if (mode < CYCLE_DIAGNOSE)
        failures += step(rt, rt->engine->rules.narrow && mode >= CYCLE_DETECT, invalid);
    if (rt->globalOn)
        sn_globalConstraints(rt);
    failures += sn_yieldDisplays(rt) == 0;
    if (mode == CYCLE_RESET)
        sn_resetMs(rt);
    sn_moveInputs(rt);
    assert(sn_brokenRuntime(rt) == nullptr && sn_brokenValues(rt) == nullptr);
    return invalid ? -1 : failures;
}

void sn_doStepTempo(s_runtime* rt) {
    for (s_Variable* variable : rt->temporal)
        sn_updateVariable(rt, variable);
}

void sn_doStepUntemp(s_runtime* rt) {
    for (s_Variable* variable : rt->untemporal)
        sn_updateVariable(rt, variable);
}

int sn_new2OldValue(s_runtime*, s_Variable* variable) {
    sn_pushHisto(variable);
    sn_putObjet(&variable->new_, &variable->old);
    // Required: a value wholly outside the domain stays as it is, and no one is told.
    return variable->domain ? sn_interObjet(&variable->old, &*variable->domain) : 1;
}

void sn_moveAllOld(s_runtime* rt) {
    for (auto const& variable : rt->dico) {
        if (variable->isParam || sn_isInput(rt, variable.get()))
            continue;
        sn_new2OldValue(rt, variable.get());
        variable->defined = 1;
    }
}

void sn_moveInputs(s_runtime* rt) {
    for (s_Variable* input : rt->input)
        sn_new2OldValue(rt, input);
}
