// The bridge: truth between the two halves of a candidate. Its continuous end, which works on a
// runtime alone, is continuous/bridge.cpp.
//
// Up: a condition that enters the validity space becomes an event on a discrete atom. Down: atoms
// that the discrete step settled set the values of conditions, and transitions that fired are kept
// for the mapping functions.
#include "continuous/bridge.h"

#include <cassert>
#include <cstring>

#include "continuous/displays.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"
#include "model/labels.h"
#include "model/linkedConditions.h"
#include "reasoning/Scheduler.h"

void bridgeIncEvents(Scheduler& scheduler, s_runtime* rt) {
    for (auto const& [sign, atom] : rt->bridgeEvents) {
        assert(atom != nullptr);
        if (atom->getRefTransPre().empty())
            scheduler.contEvents.insert({sign, atom});
        else if (sign)
            scheduler.contCommands.push_back(atom);
    }
}

namespace {

void setCondsOfAtom(s_runtime* rt, Atom const* atom, bool value) {
    assert(atom->getStateVar() != nullptr);  // a bridged atom was not refused
    CondMap const* conditions = linkedConditions(atom->getStateVar());
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

void bridgeActiveAtoms(Plant const& plant, s_runtime* rt) {
    for (auto const& entry : plant.active_atoms)
        if (entry.second != nullptr && entry.second->bridged)
            setCondsOfAtom(rt, entry.second, entry.second->evalAtom());
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

void updateDiagConds(RunState& run, Trajectory const* traj, s_runtime* rt, int time,
                     double contTime, int threshold) {
    if (State const* state = traj->getState(time))
        for (s_Condition const* condition : rt->condi) {
            TrajEl const* element =
                condition->atom != nullptr ? state->getElt(condition->atom->getId()) : nullptr;
            if (element != nullptr)
                addBridgeCond(condition->atom, element->evalTrajEl(), rt);
        }
    bridgeConditions(rt);
    // A runtime that was moved back stands in the middle of its cycle. The classic rule leaves it
    // there, since a jump forgets the past; by the rule `narrow` the past is kept, so the cycle
    // ends.
    if (run.rules.narrow) {
        sn_moveAllOld(rt);
        sn_moveInputs(rt);
    }
    addDiagBridgeTrans(traj, rt, time);
    if (!rt->bridgeTrans.empty())
        tavro_reinitialize(run, rt, contTime, RUN_DETECT, threshold);
    tavro_setRTDisplays(static_cast<int>(rt->display.size()), rt, contTime / rt->Ts);
    clearAlarms(rt);
}

void clearAlarms(s_runtime* rt) {
    for (auto const& variable : rt->dico) {
        variable->lowalarm = variable->highalarm = 0;
        variable->meslowmisb = variable->meshighmisb = variable->mesmisb = 0;
    }
}
