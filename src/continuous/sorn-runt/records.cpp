// Making, finding and clearing records of a runtime.
#include <algorithm>
#include <cassert>

#include "continuous/sorn-runt.h"

std::unique_ptr<s_Condition> mkCond() {
    auto condition = std::make_unique<s_Condition>();
    condition->kind = 0;
    return condition;
}

namespace {

template <typename Record>
Record* adopt(std::vector<std::unique_ptr<Record>>& pool, std::unique_ptr<Record> record) {
    assert(record != nullptr);
    record->slot = static_cast<int>(pool.size());
    pool.push_back(std::move(record));
    return pool.back().get();
}

int holds(std::vector<s_Variable*> const& list, s_Variable const* variable) {
    return std::find(list.begin(), list.end(), variable) != list.end() ? 1 : 0;
}

}  // namespace

s_Variable* adoptVariable(s_runtime& rt, std::unique_ptr<s_Variable> variable) {
    return adopt(rt.dico, std::move(variable));
}

s_Condition* adoptCondition(s_runtime& rt, std::unique_ptr<s_Condition> condition) {
    return adopt(rt.condPool, std::move(condition));
}

s_GVar* adoptGVar(s_runtime& rt, std::unique_ptr<s_GVar> gvar) {
    return adopt(rt.gvPool, std::move(gvar));
}

s_Expr* adoptExpr(s_runtime& rt, std::unique_ptr<s_Expr> expr) {
    return adopt(rt.exprPool, std::move(expr));
}

s_Influence* adoptInfluence(s_runtime& rt, std::unique_ptr<s_Influence> influence) {
    return adopt(rt.influ, std::move(influence));
}

s_CGraph* adoptGraph(s_runtime& rt, std::unique_ptr<s_CGraph> node) {
    return adopt(rt.cG, std::move(node));
}

s_Variable* sn_getVarDico(s_runtime const* rt, char const* name) {
    for (auto const& variable : rt->dico)
        if (variable->nom == name)
            return variable.get();
    return nullptr;
}

void sn_updateDico(s_runtime* rt) {
    for (auto const& variable : rt->dico) {
        if (variable->isParam)
            continue;
        variable->defined = 0;
        variable->histo.fill(*objZero);
        if (!sn_isMeasure(rt, variable.get()))
            continue;
        // Past measures stay: the next start fills them anew.
        variable->lowHisto.fill(0);
        variable->highHisto.fill(0);
        variable->lowalarm = variable->highalarm = 0;
        variable->meslowmisb = variable->meshighmisb = variable->mesmisb = 0;
    }
}

int sn_isInput(s_runtime const* rt, s_Variable const* variable) {
    return holds(rt->input, variable);
}

int sn_isDisplay(s_runtime const* rt, s_Variable const* variable) {
    return holds(rt->display, variable);
}

int sn_isMeasure(s_runtime const* rt, s_Variable const* variable) {
    return holds(rt->measure, variable);
}
