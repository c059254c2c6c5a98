// Jumps of the continuous state when a mode changes.
//
// Mapping functions attached to the transitions that fired give some variables new values; the rest
// is computed anew. While detecting, the jump may have come now or one cycle ago, so the prediction
// afterwards covers both.
#include <algorithm>
#include <cassert>

#include "continuous/sorn-runt.h"
#include "hybrid/continuity.h"
#include "hybrid/tavro-runt.h"
#include "model/Transitionrt.h"
#include "reasoning/Scheduler.h"

namespace {

// The thresholds of the check after a jump.
constexpr int thresholdAfterJump = 1;

// Guards are conditions of the model's template; a candidate has its own copy at the same slot.
bool guardHolds(s_runtime* rt, MapFunc const& function) {
    if (function.guard == nullptr)
        return true;
    assert(static_cast<std::size_t>(function.guard->slot) < rt->condPool.size());
    return sn_evalCond(rt->condPool[static_cast<std::size_t>(function.guard->slot)].get(), rt) != 0;
}

// The variable that an assignment sets; null, and a message, when the model has no such variable or
// expression.
s_Variable* targetOf(s_runtime* rt, s_mapfVar const& target) {
    s_Variable* variable = sn_getVarDico(rt, target.name.c_str());
    bool const exists = target.expr >= 0 && target.expr < static_cast<int>(rt->mapExprs.size());
    if (variable != nullptr && exists)
        return variable;
    rt->engine->err << "Mapping of " << target.name << ": the model has no such "
                    << (variable == nullptr ? "variable" : "expression") << ".\n";
    return nullptr;
}

// Calls act(variable, expression) for each assignment of the transitions that fired.
template <typename Act>
void walkMappingFuncs(s_runtime* rt, bool testGuards, Act act) {
    for (Transition const* transition : rt->bridgeTrans)
        for (auto const& function : transition->mapFuncs) {
            if (testGuards && !guardHolds(rt, *function))
                continue;
            for (s_mapfVar const& target : function->vars)
                if (s_Variable* variable = targetOf(rt, target))
                    act(variable, rt->mapExprs[static_cast<std::size_t>(target.expr)]);
        }
}

// Returns whether at least one assignment was made.
bool applyBounds(s_runtime* rt, bool testGuards) {
    bool assigned = false;
    walkMappingFuncs(rt, testGuards, [&](s_Variable* variable, s_Expr const* expr) {
        s_Objet const value = *sn_evalExpr(rt, expr);
        applyMFBounds(rt, variable, &value);
        assigned = true;
    });
    return assigned;
}

void defineTheRest(s_runtime* rt) {
    for (auto const* list : {&rt->temporal, &rt->untemporal})
        for (s_Variable* variable : *list) {
            if (rt->engine->rules.continuity && carriesState(*variable))
                variable->defined = 1;
            if (!variable->defined)
                sn_compInitVar(rt, variable);
        }
}

void takeMeasure(s_runtime* rt, s_Variable* variable) {
    auto const found = std::find(rt->measure.begin(), rt->measure.end(), variable);
    assert(rt->mesval != nullptr || found == rt->measure.end());
    if (found != rt->measure.end())
        variable->mes = sn_measured(rt->mesval[found - rt->measure.begin()]);
}

void becomeNumber(s_Objet* value) {
    *value = makeReal(sn_infOf(*value));
}

// The smallest interval that covers both, open at both ends.
s_Objet openHull(s_Objet const& a, s_Objet const& b) {
    assert(isRange(a) && isRange(b));
    return makeRange(std::min(a.rng.inf, b.rng.inf), std::max(a.rng.sup, b.rng.sup), 0, 0);
}

// The prediction covers the jump now and the jump one cycle ago, stepped forward in *copy*.
void coverBothJumps(s_runtime* rt, s_runtime const* copy) {
    for (auto const& variable : rt->dico) {
        if (variable->isParam)
            continue;
        assert(copy->dico[static_cast<std::size_t>(variable->slot)]->nom == variable->nom);
        sn_uniObjet(&variable->new_, &copy->dico[static_cast<std::size_t>(variable->slot)]->new_);
        sn_putObjet(&variable->new_, &variable->old);
        sn_fillHisto(variable.get());
    }
}

// The past values of a second-order effect are a part of its state, which starts at rest when a
// mapping function sets it.
void startAssignedAtRest(s_runtime* rt) {
    walkMappingFuncs(rt, false, [](s_Variable* variable, s_Expr const*) {
        if (variable->graph != nullptr && variable->graph->kind == INF_DYNAMIC2)
            sn_fillHisto(variable);
    });
}

// By the rule `narrow` the past stays what it was through a jump. The classic rule fills it with
// the value of the jump; where measures have made that value narrow, the past then lies outside,
// and a delay reads something false.
class KeptPast {
public:
    explicit KeptPast(s_runtime const* rt) {
        if (rt->engine->rules.narrow)
            for (auto const& variable : rt->dico)
                past.push_back(variable->histo);
    }

    void restore(s_runtime* rt) const {
        for (std::size_t i = 0; i < past.size(); ++i)
            rt->dico[i]->histo = past[i];
        if (!past.empty())
            startAssignedAtRest(rt);
    }

private:
    std::vector<History<s_Objet>> past;  // by slot; empty without the rule
};

bool applyContinuously(s_runtime* rt) {
    std::unique_ptr<s_runtime> const copy = copyOfJumpBefore(rt);
    applyBounds(copy.get(), false);
    sn_doStepTempo(copy.get());
    sn_enterInputs(copy.get());
    sn_enterMeasures(copy.get());
    sn_doStepUntemp(copy.get());
    bool const assigned = applyBounds(rt, false);
    walkMappingFuncs(rt, false,
                     [rt](s_Variable* variable, s_Expr const*) { takeMeasure(rt, variable); });
    coverJumpBefore(rt, copy.get());
    startAssignedAtRest(rt);
    return assigned;
}

}  // namespace

int tavro_initMappingFuncs(s_runtime* rt) {
    walkMappingFuncs(rt, true, [rt](s_Variable* variable, s_Expr const* expr) {
        sn_putObjet(sn_evalExpr(rt, expr), &variable->old);
        sn_fillHisto(variable);
        variable->defined = 1;
    });
    defineTheRest(rt);
    int const result = sn_initValSpc(rt);
    if (result != 1)
        rt->engine->out << "Error while splitting init state\n";
    return result;
}

// For a measured variable a jump changes what the prediction is compared with, not the prediction.
void applyMFBounds(s_runtime* rt, s_Variable* variable, s_Objet const* value) {
    bool const measured = sn_isMeasure(rt, variable) == 1;
    s_Objet* target = measured ? &variable->mes : &variable->old;
    variable->defined = 1;
    if (isReal(variable->old)) {
        becomeNumber(&variable->new_);
        sn_putObjet(value, target);
        if (!measured)
            sn_putObjet(value, &variable->new_);
    } else if (isRange(variable->old) && isReal(*value)) {
        sn_putObjet(value, target);
    } else if (isRange(variable->old) && isRange(*value)) {
        *target = openHull(variable->old, *value);
    }
}

bool tavro_applyMappingFuncs(s_runtime* rt) {
    bool const assigned = applyBounds(rt, true);
    defineTheRest(rt);
    for (s_Variable* measure : rt->measure)
        takeMeasure(rt, measure);
    return assigned;
}

bool tavro_applyMappingFuncs2(RunState& run, s_runtime* rt, double time) {
    if (run.rules.continuity)
        return applyContinuously(rt);
    std::unique_ptr<s_runtime> copy =
        sn_copyPartialFaultyRt(rt, 0, time - 1.0, time, run.scheduler.book.twd);
    KeptPast const past(rt);
    applyBounds(copy.get(), false);
    sn_doStepTempo(copy.get());
    sn_doStepUntemp(copy.get());
    bool const assigned = applyBounds(rt, false);
    defineTheRest(rt);
    walkMappingFuncs(rt, false,
                     [rt](s_Variable* variable, s_Expr const*) { takeMeasure(rt, variable); });
    coverBothJumps(rt, copy.get());
    past.restore(rt);
    return assigned;
}

bool tavro_reinitialize(RunState& run, s_runtime* rt, double time, int mode, int threshold) {
    for (auto const& variable : rt->dico) {
        if (!variable->isParam)
            variable->defined = 0;
        // It was a matter of the prediction before the jump.
        variable->sideOfOthers = 0;
    }
    bool const assigned =
        mode <= RUN_RESET ? tavro_applyMappingFuncs(rt) : tavro_applyMappingFuncs2(run, rt, time);
    sn_checkMs(rt, assigned ? thresholdAfterJump : threshold);
    sn_yieldAlarms(rt);
    sn_yieldDisplays(rt);
    return isMisb(rt);
}
