// The bridge: truth between the two halves of a candidate.
//
// Up: a condition that enters the validity space becomes an event on a discrete atom. Down: atoms
// that the discrete step settled set the values of conditions, and transitions that fired are kept
// for the mapping functions.
#include "continuous/bridge.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "hybrid/exchange.h"
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
    auto const found = std::find_if(rt->bridgeEvents.begin(), rt->bridgeEvents.end(),
                                    [atom](auto const& event) { return event.second == atom; });
    if (found == rt->bridgeEvents.end())
        return;
    rt->bridgeEvents.erase(found);
    c->val = 0;
}

void addBridgeTrans(Transition* transition, s_runtime* rt) {
    rt->bridgeTrans.push_back(transition);
}

void addBridgeCond(Atom* atom, bool sign, s_runtime* rt) {
    rt->bridgeConds.insert({sign, atom});
}

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

namespace {

using AtomSet = std::shared_ptr<std::vector<Atom*>>;

// One condition's walk. Required: a disjunction adds the set that it was given, not a copy, so the
// sets of nested disjunctions are one set, each with the atoms of all.
class ConditionWalk {
public:
    // *set* is the one being filled, or null. Only a leaf with no set, and disjunctions, add sets.
    void parseCondConflicts(s_Condition const* condition, bool sign, AtomSet const& set);
    std::vector<AtomSet> found;

private:
    void parseLeaf(Atom* atom, bool sign, AtomSet const& set);
    void parseDisjunction(s_Condition const* condition, AtomSet const& set);
    void parseConjunction(s_Condition const* condition, AtomSet const& set);
};

// Required: the set that a conjunction passes down is dropped, and so is the copy that a leaf below
// it makes, so that only a disjunction nested under a conjunction yields a set.
void ConditionWalk::parseLeaf(Atom* atom, bool sign, AtomSet const& set) {
    if (set != nullptr && !sign)
        set->push_back(atom);
    else if (set == nullptr)
        found.push_back(std::make_shared<std::vector<Atom*>>(1, atom));
}

void ConditionWalk::parseDisjunction(s_Condition const* condition, AtomSet const& set) {
    AtomSet const target = set != nullptr ? set : std::make_shared<std::vector<Atom*>>();
    parseCondConflicts(condition->left, false, target);
    parseCondConflicts(condition->right, false, target);
    found.push_back(target);
}

void ConditionWalk::parseConjunction(s_Condition const* condition, AtomSet const& set) {
    auto const own = set != nullptr ? std::make_shared<std::vector<Atom*>>(*set)
                                    : std::make_shared<std::vector<Atom*>>();
    parseCondConflicts(condition->left, true, own);
    parseCondConflicts(condition->right, true, own);
}

void ConditionWalk::parseCondConflicts(s_Condition const* condition, bool sign,
                                       AtomSet const& set) {
    switch (condition->kind) {
        case COND_NOT:
            // Required: the sign is not inverted.
            parseCondConflicts(condition->left, sign, set);
            break;
        case COND_OR:
            parseDisjunction(condition, set);
            break;
        case COND_AND:
            parseConjunction(condition, set);
            break;
        case COND_ATOM:
        case COND_EXPR:
            parseLeaf(condition->atom, sign, set);
            break;
        default:
            break;
    }
}

}  // namespace

void addBridgeConflict(s_runtime* rt, s_Condition const* condition,
                       std::vector<s_Condition const*>& existing) {
    if (condition == nullptr ||
        std::find(existing.begin(), existing.end(), condition) != existing.end())
        return;
    if (!rt->bridgeConflicts)
        rt->bridgeConflicts.emplace();
    ConditionWalk walk;
    walk.parseCondConflicts(condition, true, nullptr);
    for (AtomSet const& set : walk.found)
        rt->bridgeConflicts->push_back(*set);
    existing.push_back(condition);
}

void addDiagBridgeTrans(Trajectory const* traj, s_runtime* rt, int time) {
    if (!traj->transByTime)
        return;
    // Required: entries behind a first one of another time are not reached.
    for (auto const& [step, transition] : *traj->transByTime) {
        if (step != time)
            return;
        addBridgeTrans(transition, rt);
    }
}

void updateDiagConds(Trajectory const* traj, s_runtime* rt, int time, double contTime,
                     int threshold) {
    if (State const* state = traj->getState(time))
        for (s_Condition const* condition : rt->condi) {
            TrajEl const* element =
                condition->atom != nullptr ? state->getElt(condition->atom->getId()) : nullptr;
            if (element != nullptr)
                addBridgeCond(condition->atom, element->evalTrajEl(), rt);
        }
    bridgeConditions(rt);
    addDiagBridgeTrans(traj, rt, time);
    if (!rt->bridgeTrans.empty())
        tavro_reinitialize(rt, contTime, RUN_DETECT, threshold);
    tavro_setRTDisplays(static_cast<int>(rt->display.size()), rt, contTime / rt->Ts);
    clearAlarms(rt);
}

void clearAlarms(s_runtime* rt) {
    for (auto const& variable : rt->dico) {
        variable->lowalarm = variable->highalarm = 0;
        variable->meslowmisb = variable->meshighmisb = variable->mesmisb = 0;
    }
}
