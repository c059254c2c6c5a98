// The start of a run, one step of all candidates, and the end of a run.
#include <cassert>
#include <new>

#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"
#include "model/Transitionrt.h"
#include "reasoning/Scheduler.h"
#include "support/run_stopped.h"

namespace {

constexpr double firstKey = 1.0;

void readFirstLines(RunState& run, s_runtime const* rt) {
    run.engine.meas.assign(rt->measure.size(), 0.0);
    run.engine.inps.assign(rt->input.size(), 0.0);
    if (!rt->measure.empty())
        run.host.measures(static_cast<int>(run.engine.meas.size()), run.engine.meas.data());
    if (!rt->input.empty())
        run.host.inputs(static_cast<int>(run.engine.inps.size()), run.engine.inps.data());
}

// The bounds of noise are those of the run, and only the rule `narrow` reads them.
void setNoise(RunState const& run, s_runtime const* rt) {
    for (s_Variable* measure : rt->measure)
        measure->noise = run.rules.narrow ? run.settings.noiseOf(measure->nom) : 0.0;
}

// What a cycle that does not come to its end has left, but for the candidates that it was to
// explain.
void abandonCycle(RunState& run) {
    run.hybNT = nullptr;
    for (HybMap* map : {&run.tracked_trajs, &run.ntrajs, &run.misbtrajs})
        map->clear();
    run.dropped.clear();
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

void initNominalTraj(RunState& run, string_map<Atom*> const* atoms, s_runtime const* rt) {
    run.tracked_trajs.clear();
    auto first = std::make_unique<hybTrajectory>(run.scheduler.book, atoms, rt);
    run.hybNT = first.get();
    for (auto const& entry : run.plant.active_comps)
        if (entry.second != nullptr)
            run.hybNT->traj->getState(0)->comps[entry.second->getName()] = entry.second;
    run.tracked_trajs.emplace(firstKey, std::move(first));
    assert(rt == nullptr || run.brokenInvariant() == nullptr);
}

int tavro_initialize_discrete(RunState& run) {
    initNominalTraj(run, &run.plant.active_atoms, nullptr);
    run.sMM->raz();
    run.scheduler.tracked_traj.emplace(firstKey, std::move(run.hybNT->traj));
    return 0;
}

int tavro_initialize(RunState& run, int global, double precision, char const* diagBuf,
                     int accuTime) {
    run.diag_flag = run.lost = run.limitAdvised = false;
    run.bounds = BoundsWatch();
    initNominalTraj(run, &run.plant.active_atoms, run.tavro_rt);
    s_runtime* rt = run.hybNT->rt.get();
    sn_updateDico(rt);
    setNoise(run, rt);
    run.err << "-- time = 0 --------------------------\n";
    readFirstLines(run, rt);
    run.sMM->raz();
    sorn_initialize(rt, global, precision, diagBuf, accuTime);
    bridgeIncEvents(run.scheduler, rt);
    run.sMM->doCycle(run.hybNT->traj.get(), rt, 0.0);
    lockFirstTrajState(run.hybNT->traj.get());
    bridgeConditions(rt);
    if (!rt->bridgeTrans.empty())
        tavro_initMappingFuncs(rt);
    clearRunTime(rt);
    // What a split of the first values added is followed by no candidate.
    clearNrt(run, rt);
    assert(run.brokenInvariant() == nullptr);
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
            assert(comp != nullptr);
            state->comps[comp->getName()] = comp;
        }
        Diagnoser::lockTrajElsPerm(element, state);
    }
}

void stepContinuousSide(RunState& run, RunOptions const& options, double countdown) {
    for (auto const& entry : run.tracked_trajs)
        if (sorn_doCycle2(entry.second->rt.get(), stepCode(options, countdown)) == -1)
            run.err << "Invalid model !\n";
}

int tavro_doCycle(RunState& run, RunOptions const& options, double countdown, double time,
                  bool& nominal) {
    assert(run.engine.nrt.empty());
    run.ntrajs.clear();
    run.misbtrajs.clear();
    stepContinuousSide(run, options, countdown);
    splitTrajs(run, options);
    tavroDiscreteCycle(run, options, time, nominal);
    liftWeights(run);
    run.hybNT = run.tracked_trajs.empty() ? nullptr : run.tracked_trajs.begin()->second.get();
    assert(run.brokenInvariant() == nullptr);
    return 1;
}

int tavro_tryCycle(RunState& run, RunOptions const& options, double countdown, double time,
                   bool& nominal) {
    try {
        return tavro_doCycle(run, options, countdown, time, nominal);
    } catch (std::bad_alloc const&) {
        abandonCycle(run);
        return 0;
    } catch (RunStopped const&) {
        abandonCycle(run);
        throw;
    }
}

void clearRunTime(s_runtime* rt) {
    rt->bridgeEvents.clear();
    rt->bridgeConds.clear();
    rt->bridgeTrans.clear();
}

void clearMultiTrajs(RunState& run) {
    run.hybNT = nullptr;
    run.tracked_trajs.clear();
    run.refuted.clear();
    run.dropped.clear();
}
