// The state before a change of mode, and what it becomes.
#include "hybrid/continuity.h"

namespace {

bool isIntegrated(s_Variable const& variable) {
    return variable.graph != nullptr && !variable.graph->causes.empty() &&
           variable.graph->kind == INF_INTEGRAL;
}

// Whether the influence acted in the cycle that has just been computed, under the mode before.
bool actedBefore(s_Influence const& influence) {
    return influence.cond == nullptr ||
           (!influence.condHisto.empty() && influence.condHisto.front() != 0);
}

// What the cause was one cycle ago does not depend on the mode.
bool isGiven(s_runtime const* rt, s_Variable const* cause) {
    return cause->isParam || sn_isInput(rt, cause) || sn_isTrusted(rt, cause);
}

// The same influences act as before, each on what is given: the flow into the variable is the same
// whether the jump came now or one cycle ago.
bool flowsAlike(s_runtime* rt, s_Variable const& variable) {
    for (s_Influence const* influence : variable.graph->causes) {
        bool const acts = influence->cond == nullptr || sn_evalCond(influence->cond, rt) != 0;
        if (acts != actedBefore(*influence) || (acts && !isGiven(rt, influence->cause)))
            return false;
    }
    return true;
}

// What flowed into an integrated variable in the cycle that has just been computed. *before* is the
// runtime one cycle ago.
s_Objet flowBefore(s_runtime* before, s_Variable const& variable) {
    s_Objet flow = *objZero;
    for (s_Influence* influence : variable.graph->causes) {
        if (!actedBefore(*influence))
            continue;
        sn_loadCauseValue(before, influence);
        s_Objet part = before->engine->TMP2;
        sn_mulObjet(&part, &influence->b1);
        sn_addObjet(&flow, &part);
    }
    return flow;
}

// Of the value one cycle ago only what the flow has led to the value of now; all of it when the
// two contradict each other, or when nobody knows how much has flowed.
void narrowToSource(s_runtime* before, s_Variable* variable, s_Objet const& now) {
    if (sn_anyOpen(*variable->graph, before))
        return;
    s_Objet led = now;
    s_Objet const flow = flowBefore(before, *variable);
    sn_subObjet(&led, &flow);
    // Without a history the copy holds the value of now.
    s_Objet narrowed = variable->histLen() > 0 ? variable->old : led;
    if (sn_interObjet(&narrowed, &led) == 1)
        variable->old = variable->new_ = narrowed;
}

}  // namespace

bool carriesState(s_Variable const& variable) {
    if (variable.graph == nullptr || variable.graph->causes.empty())
        return false;
    influType const kind = variable.graph->kind;
    return kind == INF_INTEGRAL || kind == INF_DYNAMIC || kind == INF_DYNAMIC2;
}

std::unique_ptr<s_runtime> copyOfJumpBefore(s_runtime* rt) {
    std::unique_ptr<s_runtime> copy = sn_copyMovedBack(rt, 1);
    for (auto const& variable : copy->dico)
        if (isIntegrated(*variable))
            narrowToSource(copy.get(), variable.get(),
                           rt->dico[static_cast<std::size_t>(variable->slot)]->old);
    return copy;
}

void coverJumpBefore(s_runtime* rt, s_runtime const* copy) {
    for (auto const& variable : rt->dico) {
        if (variable->isParam || sn_isInput(rt, variable.get()))
            continue;
        bool const assigned = variable->defined != 0;
        variable->defined = 1;
        // Of a range an assignment has moved the old value alone.
        if (assigned)
            variable->new_ = variable->old;
        if (!assigned && isIntegrated(*variable) && flowsAlike(rt, *variable))
            continue;
        sn_uniObjet(&variable->new_, &copy->dico[static_cast<std::size_t>(variable->slot)]->new_);
        sn_putObjet(&variable->new_, &variable->old);
    }
}
