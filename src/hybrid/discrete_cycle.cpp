// The discrete step of all candidates, the check against the measures, and who stays.

#include <cassert>

#include "continuous/displays.h"
#include "continuous/sorn-runt.h"
#include "hybrid/dates.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"
#include "support/numbers.h"

namespace {

// The walk over tracked_trajs in one discrete step.
struct DiscreteWalk {
    RunState& run;
    RunOptions const& options;
    double time;
    int limit;  // runtimes up to this identity existed before the step
    bool& nominal;
    HybMap::iterator at;
};

void stepDiscreteSide(RunState& run, hybTrajectory& candidate, double time) {
    bridgeIncEvents(run.scheduler, candidate.rt.get());
    run.sMM->doCycle(candidate.traj.get(), candidate.rt.get(), time);
    bridgeConditions(candidate.rt.get());
}

bool checkMeasures(s_runtime* rt, int threshold) {
    sn_checkMs(rt, threshold);
    sn_yieldAlarms(rt);
    bool const misb = isMisb(rt);
    clearRunTime(rt);
    return misb;
}

// A mode changed: the candidate is rebuilt from its jumped state, behind its place in the walk for
// equal keys. Goes on to the entry that follows.
void rebuildAfterModeChange(DiscreteWalk& walk) {
    std::unique_ptr<hybTrajectory> candidate = std::move(walk.at->second);
    tavro_reinitialize(walk.run, candidate->rt.get(), walk.time, walk.options.mode,
                       walk.options.threshold);
    clearRunTime(candidate->rt.get());
    splitRuntime(walk.run, std::move(candidate), walk.run.tracked_trajs, 1, walk.options.mode);
    walk.at = walk.run.tracked_trajs.erase(walk.at);
}

// In a simulation every candidate stays where it is. Otherwise nominal ones go into ntrajs, oldest
// runtimes first, and misbehaving ones into misbtrajs.
void placeCandidate(DiscreteWalk& walk, bool misb) {
    if (!misb)
        walk.nominal = true;
    if (walk.options.mode <= RUN_RESET)
        return;
    std::unique_ptr<hybTrajectory> candidate = std::move(walk.at->second);
    if (misb) {
        double const rank = candidate->traj->rank;
        walk.run.misbtrajs.emplace(rank, std::move(candidate));
    } else {
        double const key = -static_cast<double>(candidate->rt->num);
        walk.run.ntrajs.emplace(key, std::move(candidate));
    }
}

// One candidate; moves on to the next entry.
void visit(DiscreteWalk& walk) {
    hybTrajectory& candidate = *walk.at->second;
    assert(candidate.rt != nullptr && candidate.traj != nullptr);
    s_runtime* rt = candidate.rt.get();
    if (rt->num <= walk.limit)
        stepDiscreteSide(walk.run, candidate, walk.time);
    if (!rt->bridgeTrans.empty()) {
        rebuildAfterModeChange(walk);
        return;
    }
    placeCandidate(walk, checkMeasures(rt, walk.options.threshold));
    tavro_setRTDisplays(static_cast<int>(rt->display.size()), rt, walk.time / rt->Ts);
    ++walk.at;
}

void keepNominal(RunState& run, RunOptions const& options, double time) {
    run.lost = false;
    if (run.rules.dates)
        keepDropped(run, time);
    run.misbtrajs.clear();
    run.tracked_trajs = std::move(run.ntrajs);
    if (options.mode == RUN_DETECT && run.tracked_trajs.size() > 1)
        sn_reduxTrajs(run.tracked_trajs, time);
}

// Nothing agrees with the measures: the misbehaving candidates go on being tracked.
void keepMisbehaving(RunState& run) {
    run.err << "all trajs misbehave !\n";
    run.tracked_trajs = std::move(run.misbtrajs);
}

// The discrete step of every tracked candidate and its check; each goes into ntrajs or misbtrajs,
// but in a simulation, where it stays. Returns whether one agrees.
bool walkCandidates(RunState& run, RunOptions const& options, double time) {
    run.ntrajs.clear();
    bool nominal = false;
    DiscreteWalk walk{run, options, time, run.engine.rt_num, nominal, run.tracked_trajs.begin()};
    while (walk.at != run.tracked_trajs.end())
        visit(walk);
    return nominal;
}

void watchBounds(RunState& run, double time) {
    std::string const measure = run.bounds.look(run.tracked_trajs);
    if (measure.empty())
        return;
    run.remarks.pastUse = measure;
    run.err << "answer: the bounds of " << measure << " have grown past use at " << shortText(time)
            << ": little will be noticed from here on\n";
}

}  // namespace

void stepAndCheck(RunState& run, RunOptions const& options, double time) {
    run.misbtrajs.clear();
    stepContinuousSide(run, options, 0.0);
    splitTrajs(run, options);
    walkCandidates(run, options, time);
    run.tracked_trajs.clear();
    run.misbtrajs.clear();
}

void tavroDiscreteCycle(RunState& run, RunOptions const& options, double time, bool& nominal) {
    bool const any = !run.tracked_trajs.empty();
    nominal = walkCandidates(run, options, time);
    if (options.mode <= RUN_RESET) {
        // Nothing disagrees in a simulation, so that none of the ways to go is ever dropped.
        limitCandidates(run, time, true);
        return;
    }
    run.tracked_trajs.clear();
    if (nominal)
        keepNominal(run, options, time);
    else if (options.isolation > CYCLE_DETECT && mayDiagnose(run) && any)
        diagnoseMisbTrajs(run, options, time);
    else
        keepMisbehaving(run);
    run.ntrajs.clear();
    run.misbtrajs.clear();
    limitCandidates(run, time, nominal);
    watchBounds(run, time);
}
