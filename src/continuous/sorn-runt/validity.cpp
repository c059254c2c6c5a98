// Validity spaces: one runtime becomes several where its values lie on both sides of a threshold.
//
// A condition constraint (an entry of aC) gives the interval in which its variable must lie. The
// validity space of a runtime is the set of constraints that hold in it. When a value has grown
// over the edge of its space, the part inside stays with the runtime and each part outside becomes
// a copy with its own space; when it has left the space altogether, the space changes and no copy
// is made.
//
// TMP1 holds the narrowed value through one pass and must survive everything called there; only
// TMP4 may be overwritten.
#include <algorithm>
#include <cassert>
#include <queue>

#include "continuous/bridge.h"
#include "continuous/sorn-runt.h"
#include "model/Atom.h"
#include "support/run_stopped.h"

namespace {

s_Condition* conditionAt(s_runtime* rt, int index) {
    assert(index >= 0 && static_cast<std::size_t>(index) < rt->condi.size());
    return rt->condi[static_cast<std::size_t>(index)];
}

// Both atoms belong to one discrete variable; a condition without an atom never matches.
bool sameStateVar(Atom const* a, Atom const* b) {
    return a != nullptr && b != nullptr && a->getStateVar() == b->getStateVar();
}

void takeOut(s_runtime* rt, std::vector<s_Condition*> const& conditions) {
    for (s_Condition* condition : conditions) {
        sn_setOutOfValSpc(rt, condition);
        removeBridgeEvent(condition, condition->atom, rt);
    }
}

// Of several conditions on one discrete variable only the first enters.
void bringIn(s_runtime* rt, std::vector<s_Condition*> const& conditions) {
    for (std::size_t i = 0; i < conditions.size(); ++i) {
        bool earlier = false;
        for (std::size_t j = 0; j < i; ++j)
            earlier = earlier || sameStateVar(conditions[j]->atom, conditions[i]->atom);
        if (earlier)
            continue;
        sn_setInValSpc(rt, conditions[i]);
        addBridgeEvent(conditions[i], conditions[i]->atom, true, rt);
    }
}

template <typename Act>
void forEachConstraint(s_Condition* condition, Act act) {
    if (condition->kind == COND_OR || condition->kind == COND_AND) {
        forEachConstraint(condition->left, act);
        forEachConstraint(condition->right, act);
    } else if (condition->kind == COND_NOT || condition->kind == COND_EXPR) {
        for (int const index : condition->acIdx)
            act(static_cast<std::size_t>(index));
    }
}

// Copies that a split has made and not yet settled.
using Pending = std::queue<std::unique_ptr<s_runtime>>;

// One runtime of a split that is being worked on.
struct Split {
    s_runtime* rt;
    Pending* pending;
    bool stable = true;
};

// A copy of the runtime for a piece of the value of constraint *index*'s variable.
std::unique_ptr<s_runtime> copyForPiece(s_runtime const* rt, s_Objet const& piece,
                                        std::size_t index) {
    std::unique_ptr<s_runtime> owned = sn_copyRuntime(rt);
    s_runtime* copy = owned.get();
    s_GVar* gvar = copy->aC[index]->gvar;
    assert(gvar != nullptr && isValue(piece));
    std::vector<s_Condition*> const left = sn_findCondCover(gvar, copy);
    sn_putObjet(&piece, &gvar->value);
    takeOut(copy, left);
    bringIn(copy, sn_findCondCover(gvar, copy));
    sn_updateCondAgenda(copy, gvar);
    return owned;
}

// Rule `cover`. Where no condition of the plant covers a value, nothing tells which modes are
// possible. The classic way ends the whole run there, with status 0, though every other candidate
// may be fine. Here only what reached that value goes: a piece of a split, or the candidate itself,
// which has no consistent mode; it is told, and the others go on. That is sound as far as the plant
// is: a state of which it says nothing is one that it excludes, and a plant that leaves such a gap
// by mistake is told when it is checked. At the start of a run there are no others, and the run
// ends as in the classic way.
template <typename Work>
bool isCovered(s_runtime const* rt, Work work) {
    if (!rt->engine->rules.cover || !rt->varsInitialised) {
        work();
        return true;
    }
    try {
        work();
        return true;
    } catch (RunStopped const& why) {
        if (why.reason != RunStopped::noCover)
            throw;
        rt->engine->err << "A candidate is dropped: " << why.what() << ".\n";
        return false;
    }
}

void sn_splitRt(s_runtime* rt, SpacePieces const& pieces, std::size_t index, Pending* pending) {
    for (auto const* piece : {&pieces.first, &pieces.second})
        if (*piece)
            isCovered(rt, [&] { pending->push(copyForPiece(rt, **piece, index)); });
}

// The value has left the range of constraint *index*, which is in TMP4: another space holds now.
void sn_emptyIsecValSpc(s_runtime* rt, std::size_t index) {
    s_GVar* gvar = rt->aC[index]->gvar;
    sn_putObjet(&rt->engine->TMP4, &gvar->value);
    takeOut(rt, sn_findCondCover(gvar, rt));
    sn_putObjet(&rt->engine->TMP1, &gvar->value);
    bringIn(rt, sn_findCondCover(gvar, rt));
}

// Narrows the variable of constraint *index* by every constraint of the agenda on it, in TMP1.
void narrow(Split& split, std::size_t index) {
    s_runtime* rt = split.rt;
    s_GVar const* gvar = rt->aC[index]->gvar;
    s_engine& engine = *rt->engine;
    sn_putObjet(&gvar->value, &engine.TMP1);
    bool empty = false;
    for (std::size_t j = 0; j < rt->aC.size(); ++j) {
        if (!rt->ccAgenda[j] || rt->aC[j]->gvar != gvar)
            continue;
        if (!empty) {
            sn_evalSolFunc(rt, rt->aC[j]);
            if (!sn_interObjet(&engine.TMP1, &engine.TMP4)) {
                sn_emptyIsecValSpc(rt, index);
                empty = true;
                split.stable = false;
            }
        }
        rt->ccAgenda[j] = 0;
    }
}

void applyConstraint(Split& split, std::size_t index) {
    s_runtime* rt = split.rt;
    s_GVar* gvar = rt->aC[index]->gvar;
    narrow(split, index);
    SpacePieces const pieces = sn_inSpObjet(&rt->engine->TMP1, &gvar->value);
    if (!pieces.any)
        return;
    s_Objet const narrowed = rt->engine->TMP1;
    sn_splitRt(rt, pieces, index, split.pending);
    gvar->value = narrowed;
    if (sn_updateCondAgenda(rt, gvar))
        split.stable = false;
}

void settle(Split& split) {
    do {
        split.stable = true;
        for (std::size_t i = 0; i < split.rt->aC.size(); ++i)
            if (split.rt->ccAgenda[i])
                applyConstraint(split, i);
    } while (!split.stable);
}

// Constraint variables take the values that the cycle left.
void loadValues(s_runtime* rt) {
    for (s_GVar* gvar : rt->gV) {
        if (gvar->acIdx.empty())
            continue;
        // Required: the predicted value counts also where the measure is trusted.
        if (gvar->kind == GV_VARIABLE)
            sn_putObjet(&gvar->var->old, &gvar->value);
        else if (gvar->kind == GV_INTERMEDIATE)
            sn_putObjet(objMax, &gvar->value);
    }
}

void storeValues(s_runtime* rt) {
    for (s_GVar const* gvar : rt->gV)
        if (gvar->kind == GV_VARIABLE) {
            sn_putObjet(&gvar->value, &gvar->var->old);
            sn_putObjet(&gvar->value, &gvar->var->new_);
        }
}

// Entering it into nrt comes last: until then the part belongs to whoever made it. False when it
// is dropped.
bool settlePart(s_runtime* rt, Pending& pending) {
    assert(rt->ccAgenda.size() == rt->aC.size() && rt->valSpc.size() == rt->aC.size());
    Split split{rt, &pending};
    if (!isCovered(rt, [&split] { settle(split); }))
        return false;
    storeValues(rt);
    sn_yieldDisplays(rt);
    // What is in force lies in its space, and nothing waits to be applied.
    assert(std::count(rt->ccAgenda.begin(), rt->ccAgenda.end(), 0) ==
           static_cast<std::ptrdiff_t>(rt->ccAgenda.size()));
    rt->engine->nrt.insert({rt->num, rt});
    return true;
}

// The conditions that cover the first values, all entered into the space.
std::vector<s_Condition*> placeInSpace(s_runtime* rt, int& found) {
    std::vector<s_Condition*> kept;
    for (s_GVar* gvar : rt->gV) {
        if (gvar->var == nullptr || gvar->acIdx.empty())
            continue;
        for (s_Condition* condition : sn_findCondCover(gvar, rt)) {
            kept.push_back(condition);
            for (int const index : condition->acIdx)
                rt->valSpc[static_cast<std::size_t>(index)] = 1;
            found = 1;
        }
    }
    return kept;
}

bool hasEventOnSameVar(s_runtime const* rt, Atom const* atom) {
    for (auto const& event : rt->bridgeEvents)
        if (sameStateVar(event.second, atom))
            return true;
    return false;
}

}  // namespace

std::vector<s_Condition*> sn_findCondCover(s_GVar* gvar, s_runtime* rt) {
    std::vector<s_Condition*> cover;
    if (gvar->var == nullptr)
        return cover;  // an intermediate is no variable of the model, so no condition bounds it
    for (int const index : gvar->var->varConds)
        if (sn_evalCondExpr(conditionAt(rt, index), rt))
            cover.push_back(conditionAt(rt, index));
    if (cover.empty()) {
        rt->engine->out << "[findCover -->] returning NULL\n" << std::flush;
        throw RunStopped(RunStopped::noCover, "no condition covers a value of " + gvar->var->nom);
    }
    return cover;
}

void sn_fillCondAgenda(s_runtime* rt) {
    for (std::size_t i = 0; i < rt->valSpc.size(); ++i)
        if (rt->valSpc[i])
            rt->ccAgenda[i] = 1;
}

void sn_setOutOfValSpc(s_runtime* rt, s_Condition* condition) {
    forEachConstraint(condition, [rt](std::size_t i) { rt->valSpc[i] = rt->ccAgenda[i] = 0; });
}

void sn_setInValSpc(s_runtime* rt, s_Condition* condition) {
    forEachConstraint(condition, [rt](std::size_t i) { rt->valSpc[i] = 1; });
}

void sn_updateValSpc(s_runtime* rt, s_Condition* out, s_Condition* in) {
    sn_setOutOfValSpc(rt, out);
    sn_setInValSpc(rt, in);
}

int sn_updateCondAgenda(s_runtime* rt, s_GVar* gvar) {
    int result = 0;
    for (std::size_t position = 1; position < gvar->acIdx.size(); ++position) {
        std::size_t const index = static_cast<std::size_t>(gvar->acIdx[position]);
        if (rt->valSpc[index]) {
            rt->ccAgenda[index] = 1;
            result = 1;
        }
    }
    return result;
}

int sn_initValSpc(s_runtime* rt) {
    if (rt->gV.empty())
        return 1;
    int found = 0;
    std::vector<s_Condition*> const kept = placeInSpace(rt, found);
    sn_splitValiditySpc(rt);
    for (auto const& entry : rt->engine->nrt)
        for (s_Condition const* condition : kept) {
            s_runtime* target = entry.second;
            if (!hasEventOnSameVar(target, condition->atom))
                addBridgeEvent(target->condPool[static_cast<std::size_t>(condition->slot)].get(),
                               condition->atom, true, target);
        }
    return found;
}

void sn_splitValiditySpc(s_runtime* rt) {
    Pending pending;
    sn_fillCondAgenda(rt);
    loadValues(rt);
    settlePart(rt, pending);
    while (!pending.empty()) {
        // It must be taken out first: settling it may add to what is pending.
        std::unique_ptr<s_runtime> part = std::move(pending.front());
        pending.pop();
        if (settlePart(part.get(), pending))
            part.release();  // it is in nrt
    }
}

void viewValSpc(s_runtime const* rt) {
    std::ostream& out = rt->engine->out;
    out << "rt " << rt->num << " valSpc => " << std::flush;
    for (std::size_t i = 0; i < rt->aC.size(); ++i)
        if (rt->valSpc[i]) {
            sn_printExpr(dataPrinter(*rt->engine, out), rt->aC[i]);
            out << " ";
        }
}

void viewCcAgenda(s_runtime const* rt) {
    s_Printer const to = dataPrinter(*rt->engine, rt->engine->out);
    to.stream << "Cc agenda:\n ";
    for (std::size_t i = 0; i < rt->aC.size(); ++i) {
        if (rt->aC[i]->gvar != nullptr) {
            sn_printGVar(to, rt->aC[i]->gvar);
            to.stream << "\n";
        }
        sn_printExpr(to, rt->aC[i]);
        to.stream << " -- " << rt->ccAgenda[i] << "\n";
    }
}

void viewSplitState(s_Printer const& to, s_GVar const* gvar, s_Objet const* current,
                    s_Objet const* filtered) {
    to.stream << "\t\t|variable: ";
    sn_printGVar(to, gvar);
    to.stream << "\n\n\t\t|current value: ";
    sn_printObjet(to, current);
    to.stream << "\n\t\t|filtered value: ";
    sn_printObjet(to, filtered);
    to.stream << "\n";
}
