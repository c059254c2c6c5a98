// From the runtimes of a split to candidates.
#include <algorithm>
#include <cassert>

#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"

namespace {

// Takes the first runtime out of nrt. It may have been placed more than once; it is taken once.
std::unique_ptr<s_runtime> takeFromNrt(RunState& run) {
    assert(!run.engine.nrt.empty() && run.engine.nrt.begin()->second != nullptr);
    std::unique_ptr<s_runtime> taken(run.engine.nrt.begin()->second);
    std::erase_if(run.engine.nrt,
                  [&taken](auto const& entry) { return entry.second == taken.get(); });
    return taken;
}

// A runtime whose value no condition covers may have been left out.
bool isInNrt(RunState const& run, s_runtime const* rt) {
    return std::any_of(run.engine.nrt.begin(), run.engine.nrt.end(),
                       [rt](auto const& entry) { return entry.second == rt; });
}

// What a split that ran out of memory leaves in nrt belongs to no candidate. Allocates nothing.
struct NrtGuard {
    RunState& run;
    s_runtime const* keep;
    NrtGuard(RunState& run, s_runtime const* keep) : run(run), keep(keep) {}
    NrtGuard(NrtGuard const&) = delete;
    NrtGuard& operator=(NrtGuard const&) = delete;
    ~NrtGuard() { clearNrt(run, keep); }
};

}  // namespace

void clearNrt(RunState& run, s_runtime const* keep) {
    while (!run.engine.nrt.empty()) {
        std::unique_ptr<s_runtime> taken = takeFromNrt(run);
        if (taken.get() == keep)
            taken.release();
    }
}

void createNewTrajs(RunState& run, Trajectory const* history, HybMap& out) {
    while (!run.engine.nrt.empty())
        out.emplace(history->proba, std::make_unique<hybTrajectory>(history, takeFromNrt(run)));
}

void splitRuntime(RunState& run, std::unique_ptr<hybTrajectory> candidate, HybMap& out, int multi,
                  int mode) {
    assert(run.engine.nrt.empty() && candidate->rt != nullptr && candidate->traj != nullptr);
    NrtGuard guard(run, candidate->rt.get());
    sn_splitValiditySpc(candidate->rt.get());
    if (mode > RUN_RESET || multi == 1) {
        guard.keep = nullptr;
        assert(run.rules.cover || !run.engine.nrt.empty());  // at least the runtime itself
        if (isInNrt(run, candidate->rt.get()))
            candidate->rt.release();  // its copies are there too
        createNewTrajs(run, candidate->traj.get(), out);
        return;
    }
    // A simulation of one candidate: it goes on as it is, without what the split added.
    bool const covered = isInNrt(run, candidate->rt.get());
    clearNrt(run, candidate->rt.get());
    if (!covered)
        return;
    double const key = candidate->traj->proba;
    out.emplace(key, std::move(candidate));
}

void splitTrajs(RunState& run, RunOptions const& options) {
    for (auto& entry : run.tracked_trajs)
        splitRuntime(run, std::move(entry.second), run.ntrajs, options.multi, options.mode);
    run.hybNT = nullptr;
    run.tracked_trajs = std::move(run.ntrajs);
    run.ntrajs.clear();
}
