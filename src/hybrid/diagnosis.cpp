// Hybrid diagnosis: from the alarm to candidates that explain it.
//
// When every candidate misbehaves for the first time in a run, each is isolated on its continuous
// side; the conditions of the suspects give sets of atoms; each set is taken to be false, and the
// covering search looks for discrete histories of least failure in which that holds; each of them
// is replayed from its fault time up to now. Later detections of the same run do not diagnose
// again.
#include <cassert>
#include <ctime>

#include "continuous/isolation.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"
#include "support/run_stopped.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;

double secondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / ticksPerSecond;
}

void isolate(RunState& run, s_runtime* rt, int isolation) {
    std::clock_t const start = std::clock();
    sn_detectAndIsolate(rt, isolation);
    if (rt->bridgeConflicts)
        run.scheduler.viewAtomVector2(&*rt->bridgeConflicts);
    run.err << "Diagnosis at continuous level in: " << secondsSince(start) << " seconds.\n";
}

// The accused atoms are taken to be not true. A condition of the continuous side alone has no atom.
Observations allFalse(std::vector<Atom*> const& atoms) {
    Observations observations;
    for (Atom* atom : atoms)
        if (atom != nullptr)
            observations.insert({false, atom});
    return observations;
}

}  // namespace

void insertDiagnosis(RunState& run, std::unique_ptr<hybTrajectory> candidate, HybMap& out) {
    assert(candidate->rt != nullptr && candidate->traj != nullptr);
    if (!candidate->rt->bridgeConflicts)
        return;
    for (auto const& set : *candidate->rt->bridgeConflicts) {
        hybTrajectory const copy(candidate.get(), candidate->traj->getCurrentTime() + 1);
        TrajectoryMap const results = run.scheduler.Diagnose(copy.traj.get(), allFalse(set));
        for (auto const& result : results)
            out.emplace(result.first, std::make_unique<hybTrajectory>(
                                          result.second.get(), sn_copyRuntime(copy.rt.get())));
    }
}

bool handleMisbTrajs(RunState& run, int isolation, int threshold, double time) {
    run.ntrajs.clear();
    run.tracked_trajs.clear();
    for (auto& entry : run.misbtrajs) {
        isolate(run, entry.second->rt.get(), isolation);
        insertDiagnosis(run, std::move(entry.second), run.tracked_trajs);
    }
    run.misbtrajs.clear();
    run.err << "Diagnosis completed\n";
    if (run.tracked_trajs.empty()) {
        run.err << "[Error]: Can't find any diagnose for this fault.\n";
        throw RunStopped(RunStopped::noDiagnosis, "nothing explains the misbehaviour");
    }
    return verifyAndUpdateTrajs(run, time, threshold);
}

HybMap copyHybTrajectories(HybMap const& trajectories) {
    HybMap copies;
    for (auto const& entry : trajectories)
        copies.emplace(entry.first,
                       std::make_unique<hybTrajectory>(entry.second.get(),
                                                       entry.second->traj->getCurrentTime() + 1));
    return copies;
}

void diagnoseMisbTrajs(RunState& run, RunOptions const& options, double time) {
    assert(!run.misbtrajs.empty() && !run.diag_flag);
    run.last_detection_time = time;
    HybMap copies = copyHybTrajectories(run.misbtrajs);
    if (handleMisbTrajs(run, options.isolation, options.threshold, time)) {
        switchToBST(run, run.tracked_trajs, std::move(copies), time, run.last_detection_time,
                    options.threshold);
        return;
    }
    if (options.mode == RUN_DETECT && run.tracked_trajs.size() > 1)
        sn_reduxTrajs(run.tracked_trajs, time);
    run.diag_flag = true;
}
