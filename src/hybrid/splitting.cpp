// From the runtimes of a split to candidates.
#include <cassert>

#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"

namespace {

// Takes the first runtime out of nrt. It may have been placed more than once; it is taken once.
std::unique_ptr<s_runtime> takeFromNrt() {
    std::unique_ptr<s_runtime> taken(nrt.begin()->second);
    std::erase_if(nrt, [&taken](auto const& entry) { return entry.second == taken.get(); });
    return taken;
}

// What a split that ran out of memory leaves in nrt belongs to no candidate. Allocates nothing.
struct NrtGuard {
    s_runtime const* keep;
    explicit NrtGuard(s_runtime const* keep) : keep(keep) {}
    NrtGuard(NrtGuard const&) = delete;
    NrtGuard& operator=(NrtGuard const&) = delete;
    ~NrtGuard() { clearNrt(keep); }
};

}  // namespace

void clearNrt(s_runtime const* keep) {
    while (!nrt.empty()) {
        std::unique_ptr<s_runtime> taken = takeFromNrt();
        if (taken.get() == keep)
            taken.release();
    }
}

void createNewTrajs(Trajectory const* history, HybMap& out) {
    while (!nrt.empty())
        out.emplace(history->proba, std::make_unique<hybTrajectory>(history, takeFromNrt()));
}

void splitRuntime(std::unique_ptr<hybTrajectory> candidate, HybMap& out, int multi, int mode) {
    assert(nrt.empty());
    NrtGuard guard(candidate->rt.get());
    sn_splitValiditySpc(candidate->rt.get());
    if (mode > RUN_RESET || multi == 1) {
        guard.keep = nullptr;
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
