// Deep copies of a runtime.
//
// Records point at each other, and one record may be reached from several arrays. A copy keeps that
// sharing: every record is copied once, at the same slot of the same pool, and every pointer
// between records is then carried over by slot. Histories and display rows are shared until one
// side writes.
#include <algorithm>
#include <cassert>

#include "continuous/sorn-runt.h"
#include "support/memory_watch.h"

namespace {

template <typename Record>
std::unique_ptr<Record> clone(Record const& record) {
    return std::make_unique<Record>(record);
}

// The copy of *record*, which lives in the pool that *pool* is a copy of; null for null.
template <typename Record>
Record* counterpart(std::vector<std::unique_ptr<Record>> const& pool, Record const* record) {
    assert(record == nullptr || static_cast<std::size_t>(record->slot) < pool.size());
    return record == nullptr ? nullptr : pool[static_cast<std::size_t>(record->slot)].get();
}

template <typename Record>
std::vector<Record*> counterparts(std::vector<std::unique_ptr<Record>> const& pool,
                                  std::vector<Record*> const& records) {
    std::vector<Record*> copies;
    copies.reserve(records.size());
    for (Record const* record : records)
        copies.push_back(counterpart(pool, record));
    return copies;
}

template <typename Record>
void clonePool(std::vector<std::unique_ptr<Record>> const& from,
               std::vector<std::unique_ptr<Record>>& to) {
    to.reserve(from.size());
    for (auto const& record : from)
        to.push_back(clone(*record));
}

void copyScalars(s_runtime const& from, s_runtime& to) {
    to.name = from.name;
    to.num = to.engine->rt_num++;
    to.Ts = from.Ts;
    to.tStart = from.tStart;
    to.twc = from.twc;
    to.cgAux = from.cgAux;
    to.varsInitialised = from.varsInitialised;
    to.globalOn = from.globalOn;
    to.misbWindow = from.misbWindow;
    to.precision = from.precision;
    to.isoMode = from.isoMode;
    to.nbMisb = from.nbMisb;
    to.nbNormal = from.nbNormal;
    to.diagBuf = from.diagBuf;
}

void copyVariables(s_runtime const& from, s_runtime& to) {
    clonePool(from.dico, to.dico);
    for (auto const& variable : to.dico) {
        // Required: of a misbehaviour history a copy keeps the newest entry, and that only of a
        // measure that misbehaves. There is a place for each cycle of the window all the same.
        bool const kept = variable->mesmisb != 0;
        variable->misbHisto.resize(kept ? 1 : 0, 0);
        if (kept)
            variable->misbHisto.resize(static_cast<std::size_t>(std::max(from.misbWindow, 0)), 0);
    }
    to.input = counterparts(to.dico, from.input);
    to.display = counterparts(to.dico, from.display);
    to.measure = counterparts(to.dico, from.measure);
    to.temporal = counterparts(to.dico, from.temporal);
    to.untemporal = counterparts(to.dico, from.untemporal);
    to.inval = from.inval;
    to.mesval = from.mesval;
    to.dinfval = from.dinfval;
    to.dsupval = from.dsupval;
    to.extra = from.extra;
    to.lowalarm = from.lowalarm;
    to.highalarm = from.highalarm;
    to.meslowmisb = from.meslowmisb;
    to.meshighmisb = from.meshighmisb;
    to.mesmisb = from.mesmisb;
}

void copyConstraints(s_runtime const& from, s_runtime& to) {
    clonePool(from.gvPool, to.gvPool);
    for (auto const& gvar : to.gvPool)
        gvar->var = counterpart(to.dico, gvar->var);
    clonePool(from.exprPool, to.exprPool);
    for (auto const& expr : to.exprPool) {
        expr->gvar = counterpart(to.gvPool, expr->gvar);
        expr->left = counterpart(to.exprPool, expr->left);
        expr->right = counterpart(to.exprPool, expr->right);
    }
    to.gV = counterparts(to.gvPool, from.gV);
    to.gC = counterparts(to.exprPool, from.gC);
    to.aC = counterparts(to.exprPool, from.aC);
    to.mapExprs = counterparts(to.exprPool, from.mapExprs);
    to.inAc = from.inAc;
    to.valSpc = from.valSpc;
    to.ccAgenda = from.ccAgenda;
}

void copyConditions(s_runtime const& from, s_runtime& to) {
    clonePool(from.condPool, to.condPool);
    for (auto const& condition : to.condPool) {
        condition->left = counterpart(to.condPool, condition->left);
        condition->right = counterpart(to.condPool, condition->right);
        condition->var = counterpart(to.dico, condition->var);
        condition->var2 = counterpart(to.dico, condition->var2);
        condition->expr = counterpart(to.exprPool, condition->expr);
    }
    to.condi = counterparts(to.condPool, from.condi);
}

void copyInfluences(s_runtime const& from, s_runtime& to) {
    clonePool(from.influ, to.influ);
    for (auto const& influence : to.influ) {
        influence->cause = counterpart(to.dico, influence->cause);
        influence->effect = counterpart(to.dico, influence->effect);
        influence->cond = counterpart(to.condPool, influence->cond);
    }
    to.condin = from.condin;
    to.condout = from.condout;
}

void copyGraph(s_runtime const& from, s_runtime& to) {
    clonePool(from.cG, to.cG);
    for (auto const& node : to.cG) {
        node->causes = counterparts(to.influ, node->causes);
        node->effects = counterparts(to.influ, node->effects);
    }
    for (auto const& variable : to.dico)
        variable->graph = counterpart(to.cG, variable->graph);
    to.init = from.init;
    for (s_InitVar& initial : to.init)
        initial.var = counterpart(to.dico, initial.var);
}

void copyBridge(s_runtime const& from, s_runtime& to) {
    to.bridgeEvents = from.bridgeEvents;
    to.bridgeConds = from.bridgeConds;
    to.bridgeTrans = from.bridgeTrans;
    to.bridgeConflicts = from.bridgeConflicts;
}

}  // namespace

std::unique_ptr<s_runtime> sn_copyRuntime(s_runtime const* source, s_engine* engine) {
    if (engine == nullptr)
        engine = source->engine;
    assert(engine != nullptr);
    watchMemory(engine->host);
    auto copy = std::make_unique<s_runtime>();
    copy->engine = engine;
    copyScalars(*source, *copy);
    copyVariables(*source, *copy);
    copyConstraints(*source, *copy);
    copyConditions(*source, *copy);
    copyInfluences(*source, *copy);
    copyGraph(*source, *copy);
    copyBridge(*source, *copy);
    // As sound as its source: of an incomplete one the same is told.
    assert(sn_brokenRuntime(copy.get()) == nullptr ||
           sn_brokenRuntime(copy.get()) == sn_brokenRuntime(source));
    return copy;
}
