// From the runtimes of a split to candidates.
#include <cassert>

#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"

void clearNrt(s_runtime const* keep) {
    // A runtime may have been placed more than once; it is destroyed once.
    std::map<s_runtime*, int> seen;
    for (auto const& entry : nrt)
        if (entry.second != keep && seen[entry.second]++ == 0)
            delete entry.second;
    nrt.clear();
}

void createNewTrajs(Trajectory const* history, HybMap& out) {
    for (auto const& entry : nrt)
        out.emplace(history->proba, std::make_unique<hybTrajectory>(
                                        history, std::unique_ptr<s_runtime>(entry.second)));
    nrt.clear();
}

void splitRuntime(std::unique_ptr<hybTrajectory> candidate, HybMap& out, int multi, int mode) {
    assert(nrt.empty());
    sn_splitValiditySpc(candidate->rt.get());
    if (mode > RUN_RESET || multi == 1) {
        candidate->rt.release();  // it is in nrt, with its copies
        createNewTrajs(candidate->traj.get(), out);
        return;
    }
    // A simulation of one candidate: it goes on as it is, without what the split added.
    clearNrt(candidate->rt.get());
    double const key = candidate->traj->proba;
    out.emplace(key, std::move(candidate));
}

void splitTrajs(RunOptions const& options) {
    for (auto& entry : tracked_trajs)
        splitRuntime(std::move(entry.second), ntrajs, options.multi, options.mode);
    hybNT = nullptr;
    tracked_trajs = std::move(ntrajs);
    ntrajs.clear();
}
