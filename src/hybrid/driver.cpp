// The start of a run, one step of all candidates, and the end of a run.
#include <cstdio>
#include <new>

#include "continuous/sorn-runt.h"
#include "hybrid/exchange.h"
#include "hybrid/tavro-runt.h"
#include "model/Transitionrt.h"
#include "reasoning/Scheduler.h"

namespace {

constexpr double firstKey = 1.0;

void readFirstLines(s_runtime const* rt) {
    meas.assign(rt->measure.size(), 0.0);
    inps.assign(rt->input.size(), 0.0);
    if (!rt->measure.empty())
        tavro_getMeasures(rt->name.c_str(), static_cast<int>(meas.size()), meas.data());
    if (!rt->input.empty())
        tavro_getInputs(rt->name.c_str(), static_cast<int>(inps.size()), inps.data());
}

// The code of the continuous step of one candidate. Required: when the countdown is at exactly
// zero, only the first candidate is reset, since the countdown then starts again.
int stepCode(RunOptions const& options, double& countdown) {
    if (options.mode > RUN_RESET)
        return options.isolation;
    if (options.period == 0.0 || countdown != 0.0)
        return CYCLE_SIMULATE;
    countdown = options.period;
    return CYCLE_RESET;
}

}  // namespace

void initNominalTraj(string_map<Atom*> const* atoms, s_runtime const* rt) {
    tracked_trajs.clear();
    auto first = std::make_unique<hybTrajectory>(atoms, rt);
    hybNT = first.get();
    for (auto const& entry : DataManager::active_comps)
        if (entry.second != nullptr)
            hybNT->traj->getState(0)->comps[entry.second->getName()] = entry.second;
    tracked_trajs.emplace(firstKey, std::move(first));
}

int tavro_initialize_discrete() {
    initNominalTraj(&DataManager::active_atoms, nullptr);
    sMM->raz();
    DataManager::tracked_traj.emplace(firstKey, std::move(hybNT->traj));
    return 0;
}

int tavro_initialize(int global, double precision, char const* diagBuf, int accuTime) {
    diag_flag = false;
    initNominalTraj(&DataManager::active_atoms, tavro_rt);
    s_runtime* rt = hybNT->rt.get();
    sn_updateDico(rt);
    std::fprintf(stderr, "-- time = 0 --------------------------\n");
    readFirstLines(rt);
    sMM->raz();
    sorn_initialize(rt, global, precision, diagBuf, accuTime);
    bridgeIncEvents(rt);
    sMM->doCycle(hybNT->traj.get(), rt, 0.0);
    lockFirstTrajState(hybNT->traj.get());
    bridgeConditions(rt);
    if (!rt->bridgeTrans.empty())
        tavro_initMappingFuncs(rt);
    clearRunTime(rt);
    // What a split of the first values added is followed by no candidate.
    clearNrt(rt);
    return 1;
}

void lockFirstTrajState(Trajectory* traj) {
    State* state = traj->getState(0);
    if (state == nullptr)
        return;
    for (auto const& entry : state->elts) {
        TrajEl* element = entry.second;
        if (element == nullptr || !element->evalTrajEl())
            continue;
        if (Transition* idle = element->atom->idleTrans) {
            element->prevTrans = idle;
            ++state->prevTransCount;
            Comp* comp = element->atom->getVarComp();
            state->comps[comp->getName()] = comp;
        }
        Diagnoser::lockTrajElsPerm(element, state);
    }
}

int tavro_doCycle(RunOptions const& options, double countdown, double time, bool& nominal) {
    ntrajs.clear();
    misbtrajs.clear();
    for (auto const& entry : tracked_trajs)
        if (sorn_doCycle2(entry.second->rt.get(), stepCode(options, countdown)) == -1)
            std::fprintf(stderr, "Invalid model !\n");
    splitTrajs(options);
    tavroDiscreteCycle(options, time, nominal);
    hybNT = tracked_trajs.empty() ? nullptr : tracked_trajs.begin()->second.get();
    return 1;
}

int tavro_tryCycle(RunOptions const& options, double countdown, double time, bool& nominal) {
    try {
        return tavro_doCycle(options, countdown, time, nominal);
    } catch (std::bad_alloc const&) {
        clearMultiTrajs();
        ntrajs.clear();
        misbtrajs.clear();
        return 0;
    }
}

void clearRunTime(s_runtime* rt) {
    rt->bridgeEvents.clear();
    rt->bridgeConds.clear();
    rt->bridgeTrans.clear();
}

void clearMultiTrajs() {
    hybNT = nullptr;
    tracked_trajs.clear();
}
