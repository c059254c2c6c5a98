// The bridge: truth between the two halves of a candidate.
//
// Up: a condition that enters the validity space becomes an event on a discrete atom. Down: atoms
// that the discrete step settled set the values of conditions, and transitions that fired are kept
// for the mapping functions.
#include "continuous/bridge.h"

#include <algorithm>
#include <cstring>

#include "hybrid/tavro-runt.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/labels.h"
#include "reasoning/Scheduler.h"

void addBridgeEvent(s_Condition* c, Atom* atom, bool sign, s_runtime* rt) {
    if (atom == nullptr) {
        c->val = sign ? 1 : 0;  // a condition of the continuous side alone
        return;
    }
    if (itms::inMultimap(atom, rt->bridgeEvents))
        return;
    rt->bridgeEvents.insert({sign, atom});
    c->val = sign ? 1 : 0;
}

void removeBridgeEvent(s_Condition* c, Atom const* atom, s_runtime* rt) {
    if (atom == nullptr) {
        c->val = 0;
        return;
    }
    auto const found =
        std::find_if(rt->bridgeEvents.begin(), rt->bridgeEvents.end(),
                     [atom](auto const& event) { return event.second == atom; });
    if (found == rt->bridgeEvents.end())
        return;
    rt->bridgeEvents.erase(found);
    c->val = 0;
}

void addBridgeTrans(Transition* transition, s_runtime* rt) {
    rt->bridgeTrans.push_back(transition);
}

void addBridgeCond(Atom* atom, bool sign, s_runtime* rt) { rt->bridgeConds.insert({sign, atom}); }

void setRTCondVal(s_runtime* rt, int index, bool value) {
    s_Condition* condition = rt->condi[static_cast<std::size_t>(index)];
    condition->val = value ? 1 : 0;
    if (condition->kind != COND_ATOM || condition->atom == nullptr)
        return;
    for (auto const& other : rt->condPool)
        if (other->kind == COND_ATOM && other->atom == condition->atom)
            other->val = condition->val;
}

void bridgeIncEvents(s_runtime* rt) {
    for (auto const& [sign, atom] : rt->bridgeEvents) {
        if (atom->getRefTransPre().empty())
            sMM->contEvents.insert({sign, atom});
        else if (sign)
            sMM->contCommands.push_back(atom);
    }
}

namespace {

// The conditions of a variable's atoms; null for kinds that have none.
CondMap const* condMapOf(StateVar const* variable) {
    if (variable->type == typeCond)
        return &static_cast<CondVar const*>(variable)->condMap;
    if (variable->type == typeMode)
        return &static_cast<ModeVar const*>(variable)->condMap;
    return nullptr;
}

void setCondsOfAtom(s_runtime* rt, Atom const* atom, bool value) {
    CondMap const* conditions = condMapOf(atom->getStateVar());
    if (conditions == nullptr)
        return;
    for (auto const& [id, index] : *conditions)
        if (std::strcmp(id, atom->getId()) == 0)
            setRTCondVal(rt, index, value);
}

}  // namespace

void bridgeConditions(s_runtime* rt) {
    for (auto const& [sign, atom] : rt->bridgeConds)
        setCondsOfAtom(rt, atom, sign);
}

void bridgeActiveAtoms(s_runtime* rt) {
    for (auto const& entry : DataManager::active_atoms)
        if (entry.second != nullptr && entry.second->bridged)
            setCondsOfAtom(rt, entry.second, entry.second->evalAtom());
}
