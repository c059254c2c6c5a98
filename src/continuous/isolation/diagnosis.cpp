// From the misbehaving measures of a cycle to their diagnoses.
#include <algorithm>
#include <cassert>

#include "continuous/isolation.h"
#include "continuous/sorn-runt.h"
#include "support/host.h"

namespace {

bool isKnown(s_runtime const* rt, s_Variable const* variable) {
    return std::find(rt->knownMisb.begin(), rt->knownMisb.end(), variable) != rt->knownMisb.end();
}

void countMisbehaviours(s_runtime* rt) {
    rt->nbMisb = rt->nbNormal = 0;
    for (s_Variable const* measure : rt->measure)
        ++(measure->mesmisb ? rt->nbMisb : rt->nbNormal);
}

// The measures of one diagnosis, each with its suspects still to be found.
struct Case {
    std::vector<MeasureConflicts> misbVars;
    std::vector<MeasureConflicts> normalVars;
};

// With a memory of known misbehaviours, faultIsolationSetup has made a place for each measure.
Case sortMeasures(s_runtime* rt, bool incremental) {
    assert(rt->isoMode != 0 || rt->knownMisb.size() == rt->measure.size());
    Case sorted;
    for (s_Variable* measure : rt->measure) {
        if (!measure->mesmisb) {
            sorted.normalVars.push_back({measure, {}, {}});
        } else if (!incremental || !isKnown(rt, measure)) {
            sorted.misbVars.push_back({measure, {}, {}});
            if (rt->isoMode == 0)
                rt->knownMisb[static_cast<std::size_t>(rt->nbKnown++)] = measure;
        }
    }
    return sorted;
}

void findConflicts(s_runtime* rt, std::vector<MeasureConflicts>& measures) {
    for (MeasureConflicts& measure : measures) {
        std::vector<s_Variable const*> visited;
        Suspects resting;
        Suspects* const asked = rt->engine->rules.suspects ? &resting : nullptr;
        findConflictsAux(rt, measure.var, measure.conflicts, visited, 0, asked);
        addAbsentSuspects(rt, resting, measure.conflicts);
    }
}

HittingSetTree growTree(Host& host, std::vector<MeasureConflicts> const& misbVars) {
    HittingSetTree tree(host);
    for (MeasureConflicts const& misb : misbVars)
        for (Suspects const& set : misb.conflictSets)
            tree.grow(set);
    return tree;
}

}  // namespace

void faultIsolationSetup(s_runtime* rt, int mode) {
    rt->isoMode = mode;
    if (mode == 0)
        rt->knownMisb.assign(rt->measure.size(), nullptr);
}

void faultIsolationEnd(s_runtime* rt) {
    // The number of known measures stays, so an empty place counts as one that behaves again.
    if (rt->isoMode == 0)
        rt->knownMisb.clear();
}

bool configurationHasChanged(s_runtime* rt, bool& incremental, int level) {
    incremental = rt->isoMode == 0 && level != LEVEL_PREFERENCE && level != LEVEL_EXONERATION;
    if (rt->isoMode != 0)
        return true;
    bool changed = false;
    for (int i = 0; i < rt->nbKnown; ++i) {
        auto const place = static_cast<std::size_t>(i);
        s_Variable const* known = place < rt->knownMisb.size() ? rt->knownMisb[place] : nullptr;
        if (known != nullptr && known->mesmisb)
            continue;
        incremental = false;
        changed = true;
    }
    for (s_Variable const* measure : rt->measure)
        if (incremental && measure->misbHisto.size() > 1 &&
            measure->misbHisto[0] != measure->misbHisto[1])
            incremental = false;
    return changed || rt->nbKnown != rt->nbMisb;
}

void hittingSetDiagnosis(s_runtime* rt, int level) {
    countMisbehaviours(rt);
    if (rt->nbMisb == 0)
        return;
    bool incremental = false;
    if (!configurationHasChanged(rt, incremental, level))
        return;
    int const measures = static_cast<int>(rt->measure.size());
    if (incremental) {
        rt->nbMisb -= rt->nbKnown;
        rt->nbNormal = measures - rt->nbMisb;
    } else {
        rt->nbKnown = 0;
        std::fill(rt->knownMisb.begin(), rt->knownMisb.end(), nullptr);
        // With every measure misbehaving nothing can exonerate.
        if (rt->nbNormal == 0)
            level = LEVEL_PLAIN;
    }
    Case sorted = sortMeasures(rt, incremental);
    findConflicts(rt, sorted.misbVars);
    for (MeasureConflicts& misb : sorted.misbVars)
        misb.conflictSets.push_back(copySuspects(misb.conflicts));
    if (level != LEVEL_PLAIN)
        findConflicts(rt, sorted.normalVars);
    Suspects soft;
    if (level == LEVEL_PREFERENCE)
        soft = generateSoftConflictSets(rt->engine->host, sorted.misbVars, sorted.normalVars);
    HittingSetTree tree = growTree(rt->engine->host, sorted.misbVars);
    if (level == LEVEL_EXONERATION)
        tree.exonerate(sorted.normalVars);
    if (level == LEVEL_PREFERENCE)
        tree.sortByPreference(soft);
    Isolation const found{level, tree.leaves()};
    printHSTree(rt, found.leaves);
    rt->engine->host.isolated(found);
    faultIsolationEnd(rt);
}

void sn_detectAndIsolate(s_runtime* rt, int mode) {
    if (mode <= CYCLE_DETECT)
        return;
    faultIsolationSetup(rt, 1);
    sn_prepareDiag(rt);
    hittingSetDiagnosis(rt, mode - CYCLE_DETECT);
    sn_yieldDiags(rt);
}

namespace {

// Isolation alone, from what is given from outside.
int diagnoseRequest(s_runtime* rt, int mode) {
    int failures = sn_enterMisbs(rt) == 0 ? 1 : 0;
    if (sn_enterConds(rt) == 2)
        return -1;
    faultIsolationSetup(rt, 1);
    sn_razDiagBuf(rt);
    hittingSetDiagnosis(rt, mode - CYCLE_DIAGNOSE + 1);
    sn_yieldDiags(rt);
    return failures;
}

void finishRuntime(s_runtime* model, s_runtime* rt, int mode, int threshold) {
    if (rt->globalOn)
        sn_globalConstraints(rt);
    sn_yieldDisplays(rt);
    if (mode <= CYCLE_RESET)
        return;
    sn_checkMs(rt, threshold);
    sn_yieldAlarms(rt);
    sn_detectAndIsolate(model, mode);
}

}  // namespace

int sorn_doCycle(s_runtime* rt, int mode, int threshold) {
    if (mode <= CYCLE_RESET)
        sn_setAlarms(rt);
    if (mode >= CYCLE_DIAGNOSE)
        return diagnoseRequest(rt, mode);
    sn_doStepTempo(rt);
    int failures = sn_enterInputs(rt) == 0 ? 1 : 0;
    failures += sn_enterMeasures(rt) == 0 ? 1 : 0;
    sn_doStepUntemp(rt);
    bool const invalid = sn_yieldMRTConds(rt) == 2;
    for (auto const& entry : rt->engine->nrt)
        finishRuntime(rt, entry.second, mode, threshold);
    if (mode == CYCLE_RESET)
        sn_resetMs(rt);
    return invalid ? -1 : failures;
}

void sorn_close(s_runtime* rt) {
    faultIsolationEnd(rt);
}
