// The invariants of a runtime, told broken in sentences.
//
// Everything here is linear in the records, and nothing is linear in the length of a history, so
// that debug builds can ask after every copy and every cycle.
#include <algorithm>

#include "continuous/sorn-runt.h"

namespace {

// The first sentence that broken(rt, record) answers of a record of the pool, or null.
template <typename Record>
char const* firstBroken(s_runtime const& rt, std::vector<std::unique_ptr<Record>> const& pool,
                        char const* (*broken)(s_runtime const&, Record const&)) {
    for (auto const& record : pool)
        if (char const* sentence = broken(rt, *record))
            return sentence;
    return nullptr;
}

template <typename Record>
bool isIn(std::vector<std::unique_ptr<Record>> const& pool, Record const* record) {
    std::size_t const slot = record != nullptr ? static_cast<std::size_t>(record->slot) : 0;
    return record != nullptr && slot < pool.size() && pool[slot].get() == record;
}

template <typename Record>
bool isInOrNull(std::vector<std::unique_ptr<Record>> const& pool, Record const* record) {
    return record == nullptr || isIn(pool, record);
}

template <typename Record>
bool areIn(std::vector<std::unique_ptr<Record>> const& pool, std::vector<Record*> const& records) {
    return std::all_of(records.begin(), records.end(),
                       [&pool](Record const* record) { return isIn(pool, record); });
}

// A pool whose records know their places.
template <typename Record>
bool isNumbered(std::vector<std::unique_ptr<Record>> const& pool) {
    for (std::size_t i = 0; i < pool.size(); ++i)
        if (pool[i] == nullptr || pool[i]->slot != static_cast<int>(i))
            return false;
    return true;
}

// The entries of *indices* from *first* on are positions in an array of *size*.
bool pointInto(std::vector<int> const& indices, std::size_t first, std::size_t size) {
    return std::all_of(
        indices.begin() + static_cast<std::ptrdiff_t>(std::min(first, indices.size())),
        indices.end(),
        [size](int index) { return index >= 0 && static_cast<std::size_t>(index) < size; });
}

bool isFlag(int value) {
    return value == 0 || value == 1;
}

bool areFlags(std::vector<int> const& values) {
    return std::all_of(values.begin(), values.end(), isFlag);
}

char const* brokenPools(s_runtime const& rt) {
    bool const numbered = isNumbered(rt.dico) && isNumbered(rt.influ) && isNumbered(rt.cG) &&
                          isNumbered(rt.gvPool) && isNumbered(rt.exprPool) &&
                          isNumbered(rt.condPool);
    return numbered ? nullptr : "a record is not at its slot";
}

char const* brokenLists(s_runtime const& rt) {
    for (auto const* list : {&rt.input, &rt.display, &rt.measure, &rt.temporal, &rt.untemporal})
        if (!areIn(rt.dico, *list))
            return "a list holds a variable of another runtime";
    if (!areIn(rt.gvPool, rt.gV) || !areIn(rt.exprPool, rt.gC) || !areIn(rt.exprPool, rt.aC) ||
        !areIn(rt.exprPool, rt.mapExprs) || !areIn(rt.condPool, rt.condi))
        return "a list holds a record of another runtime";
    for (s_InitVar const& initial : rt.init)
        if (!isIn(rt.dico, initial.var))
            return "an initial value is of a variable of another runtime";
    return nullptr;
}

char const* brokenSizes(s_runtime const& rt) {
    std::size_t const measures = rt.measure.size();
    for (auto const* mirror :
         {&rt.lowalarm, &rt.highalarm, &rt.meslowmisb, &rt.meshighmisb, &rt.mesmisb})
        if (mirror->size() != measures)
            return "a mirror of the alarms has not one entry per measure";
    if (rt.dinfval.size() != rt.display.size() || rt.dsupval.size() != rt.display.size())
        return "the bounds for output have not one entry per display variable";
    if (rt.condin.size() != rt.influ.size() || rt.condout.size() != rt.influ.size())
        return "the values of conditions have not one entry per influence";
    if (rt.inAc.size() != rt.gC.size() || rt.valSpc.size() != rt.aC.size() ||
        rt.ccAgenda.size() != rt.aC.size())
        return "an agenda has not one entry per constraint";
    return areFlags(rt.inAc) && areFlags(rt.valSpc) && areFlags(rt.ccAgenda)
               ? nullptr
               : "an agenda holds what is neither 0 nor 1";
}

char const* brokenVariable(s_runtime const& rt, s_Variable const& variable) {
    if (!isInOrNull(rt.cG, variable.graph))
        return "a variable's node is of another runtime";
    if (!pointInto(variable.varConds, 0, rt.condi.size()))
        return "a variable is bounded by a condition that is none";
    if (variable.lowHisto.size() != variable.mesHisto.size() ||
        variable.highHisto.size() != variable.mesHisto.size())
        return "the histories of a measure differ in length";
    if (!variable.misbHisto.empty() && static_cast<int>(variable.misbHisto.size()) != rt.misbWindow)
        return "a history of misbehaviour is not of the length of the window";
    return nullptr;
}

char const* brokenInfluence(s_runtime const& rt, s_Influence const& influence) {
    if (!isIn(rt.dico, influence.cause) || !isIn(rt.dico, influence.effect) ||
        !isInOrNull(rt.condPool, influence.cond))
        return "an influence joins records of another runtime";
    if (influence.delayMin > influence.delayMax)
        return "the delays of an influence are the wrong way round";
    bool const sized = influence.condHisto.empty() ||
                       static_cast<int>(influence.condHisto.size()) >= influence.condHistoLn;
    return sized ? nullptr : "the history of a condition is shorter than its length";
}

// A coupling acts as a static link, and may stand among them.
bool isOfKind(s_Influence const& influence, influType kind) {
    return influence.type == kind || (kind == INF_STATIC && influence.type == INF_COUPLING);
}

char const* brokenNode(s_runtime const& rt, s_CGraph const& node) {
    if (!areIn(rt.influ, node.causes) || !areIn(rt.influ, node.effects))
        return "a node holds an influence of another runtime";
    for (s_Influence const* influence : node.causes)
        if (influence->effect->graph != &node || !isOfKind(*influence, node.kind))
            return "a cause does not end at its node, or is of another kind";
    for (s_Influence const* influence : node.effects)
        if (influence->cause->graph != &node)
            return "an effect does not start at its node";
    return nullptr;
}

char const* brokenCondition(s_runtime const& rt, s_Condition const& condition) {
    if (!isInOrNull(rt.condPool, condition.left) || !isInOrNull(rt.condPool, condition.right) ||
        !isInOrNull(rt.dico, condition.var) || !isInOrNull(rt.dico, condition.var2) ||
        !isInOrNull(rt.exprPool, condition.expr))
        return "a condition holds a record of another runtime";
    return pointInto(condition.acIdx, 0, rt.aC.size()) ? nullptr
                                                       : "a condition counts on no constraint";
}

char const* brokenGVar(s_runtime const& rt, s_GVar const& gvar) {
    if (gvar.kind == GV_VARIABLE ? !isIn(rt.dico, gvar.var) : gvar.var != nullptr)
        return "a variable of the constraints is bound wrongly";
    return pointInto(gvar.gcIdx, 1, rt.gC.size()) && pointInto(gvar.acIdx, 1, rt.aC.size())
               ? nullptr
               : "a variable of the constraints lists one that is none";
}

char const* brokenExpr(s_runtime const& rt, s_Expr const& expr) {
    bool const ownRecords = isInOrNull(rt.gvPool, expr.gvar) &&
                            isInOrNull(rt.exprPool, expr.left) &&
                            isInOrNull(rt.exprPool, expr.right);
    if (!ownRecords)
        return "an expression holds a record of another runtime";
    bool const leaf = expr.op == EXPR_CONST || expr.op == EXPR_VAR;
    return !leaf || expr.gvar != nullptr ? nullptr : "a leaf of an expression names nothing";
}

bool isOrdered(s_Objet const& value) {
    return !isRange(value) || !(value.rng.inf > value.rng.sup);
}

}  // namespace

// Each look relies on those before it: that a pointer is of the runtime comes before what it leads
// to.
char const* sn_brokenRuntime(s_runtime const* rt) {
    for (auto const broken : {brokenPools, brokenLists, brokenSizes})
        if (char const* sentence = broken(*rt))
            return sentence;
    if (char const* sentence = firstBroken(*rt, rt->dico, brokenVariable))
        return sentence;
    if (char const* sentence = firstBroken(*rt, rt->influ, brokenInfluence))
        return sentence;
    if (char const* sentence = firstBroken(*rt, rt->cG, brokenNode))
        return sentence;
    if (char const* sentence = firstBroken(*rt, rt->condPool, brokenCondition))
        return sentence;
    if (char const* sentence = firstBroken(*rt, rt->gvPool, brokenGVar))
        return sentence;
    return firstBroken(*rt, rt->exprPool, brokenExpr);
}

char const* sn_brokenValues(s_runtime const* rt) {
    for (auto const& variable : rt->dico) {
        if (!isOrdered(variable->old) || !isOrdered(variable->new_) || !isOrdered(variable->mes))
            return "an interval ends before it begins";
        if (variable->defined == 1 && !isValue(variable->old))
            return "a defined variable has no value";
    }
    return nullptr;
}
