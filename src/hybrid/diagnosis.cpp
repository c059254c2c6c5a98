// Hybrid diagnosis: from the alarm to candidates that explain it.
//
// When every candidate misbehaves for the first time in a run, each is isolated on its continuous
// side; the conditions of the suspects give sets of atoms; each set is taken to be false, and the
// covering search looks for discrete histories of least failure in which that holds; each of them
// is replayed from its fault time up to now. Later detections of the same run do not diagnose
// again.
#include <cstdio>
#include <ctime>
#include <iostream>

#include "continuous/isolation.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"
#include "support/process.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;
// How many failures more than the misbehaving history an explanation may hold.
constexpr double rankMargin = 3.0;
constexpr int noDiagnosis = -1;

double secondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / ticksPerSecond;
}

void isolate(s_runtime* rt, int isolation) {
    std::clock_t const start = std::clock();
    sn_detectAndIsolate(rt, isolation);
    if (rt->bridgeConflicts)
        DataManager::viewAtomVector2(&*rt->bridgeConflicts);
    std::cerr << "Diagnosis at continuous level in: " << secondsSince(start) << " seconds.\n";
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

void Scheduler::Diagnose(Trajectory* traj, s_runtime const* rt, Observations const& observations,
                         HybMap& out) {
    std::clock_t const start = std::clock();
    bound = traj->rank;
    int const t = traj->getCurrentTime();
    auto copy = std::make_unique<Trajectory>(traj, t + 1);
    std::cerr << "[Scheduler] --> updating tracked trajectories with observations (" << t << ")\n";
    TrajectoryMap results = observationResults(observations, traj, t, 0.0, true);
    bool const explained =
        results.size() == 1 && getConflicts(results.begin()->second.get(), t, true).empty();
    std::cerr << "[Scheduler] --> elapsed time (observations insertion) : " << secondsSince(start)
              << "\n";
    if (!explained) {
        std::cerr << "---------> Diagnosing...\n";
        double const highest = copy->rank + rankMargin;
        results = coverTrack3(std::move(copy), bound + 1.0, highest, observations, bound);
        std::cerr << "[Scheduler] --> elapsed time : " << secondsSince(start) << "\n";
    }
    for (auto const& result : results)
        out.emplace(result.first,
                    std::make_unique<hybTrajectory>(result.second.get(), sn_copyRuntime(rt)));
}

void insertDiagnosis(std::unique_ptr<hybTrajectory> candidate, HybMap& out) {
    if (!candidate->rt->bridgeConflicts)
        return;
    for (auto const& set : *candidate->rt->bridgeConflicts) {
        hybTrajectory const copy(candidate.get(), candidate->traj->getCurrentTime() + 1);
        sMM->Diagnose(copy.traj.get(), copy.rt.get(), allFalse(set), out);
    }
}

bool handleMisbTrajs(int isolation, int threshold, double time) {
    ntrajs.clear();
    tracked_trajs.clear();
    for (auto& entry : misbtrajs) {
        isolate(entry.second->rt.get(), isolation);
        insertDiagnosis(std::move(entry.second), tracked_trajs);
    }
    misbtrajs.clear();
    std::fprintf(stderr, "Diagnosis completed\n");
    if (tracked_trajs.empty()) {
        std::fprintf(stderr, "[Error]: Can't find any diagnose for this fault.\n");
        leaveProcess(noDiagnosis);
    }
    return verifyAndUpdateTrajs(time, threshold);
}

HybMap copyHybTrajectories(HybMap const& trajectories) {
    HybMap copies;
    for (auto const& entry : trajectories)
        copies.emplace(entry.first,
                       std::make_unique<hybTrajectory>(entry.second.get(),
                                                       entry.second->traj->getCurrentTime() + 1));
    return copies;
}

void diagnoseMisbTrajs(RunOptions const& options, double time) {
    last_detection_time = time;
    HybMap copies = copyHybTrajectories(misbtrajs);
    if (handleMisbTrajs(options.isolation, options.threshold, time)) {
        switchToBST(tracked_trajs, std::move(copies), time, last_detection_time, options.threshold);
        return;
    }
    if (options.mode == RUN_DETECT && tracked_trajs.size() > 1)
        sn_reduxTrajs(tracked_trajs, time);
    diag_flag = true;
}
