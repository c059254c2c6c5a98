// Replaying a diagnosed candidate from its fault time up to now.
//
// The runtime is moved back by its histories, brought in line with the discrete state of the fault
// step, and stepped forward again on past inputs and measures, read from the candidate's own
// histories and never from the files. No discrete step is taken: the history stands as the
// diagnosis made it.
#include <cassert>
#include <optional>

#include "continuous/displays.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"
#include "support/numbers.h"

namespace {

// Required: the replay assumes a sample period of 1.
constexpr double replayStep = 1.0;

// The first step above 0 at which the diagnosis took a transition.
std::optional<int> faultStepOf(Trajectory const& traj) {
    if (!traj.transByTime)
        return std::nullopt;
    auto const first = traj.transByTime->upper_bound(0);
    if (first == traj.transByTime->end())
        return std::nullopt;
    return first->first;
}

// The past value at index now - from - 1, newest first; the present one when that is negative.
double pastValue(s_Objet const& present, History<s_Objet> const& history, double from, double now) {
    int const index = truncateToInt(now) - truncateToInt(from) - 1;
    if (index < 0 || history.size() == 0)
        return sn_numberOf(present);
    return sn_numberOf(history[std::min(index, history.size() - 1)]);
}

// What the candidate becomes when it is replayed from its fault; into *result*, by rank.
void replay(RunState& run, hybTrajectory const& candidate, int faultStep, double time,
            int threshold, HybMap& result) {
    Trajectory const& history = *candidate.traj;
    auto moved = std::make_unique<hybTrajectory>();
    moved->traj = std::make_unique<Trajectory>(&history, history.getCurrentTime() + 1);
    double const faultTime = history.getTimeCorr(faultStep);
    assert(candidate.rt != nullptr && faultStep > 0);
    moved->rt = sn_copyPartialFaultyRt(candidate.rt.get(), faultStep, faultTime, time,
                                       run.scheduler.book.twd);
    updateDiagConds(run, moved->traj.get(), moved->rt.get(), faultStep, faultTime, threshold);
    assert(run.engine.inps.size() >= candidate.rt->input.size());
    assert(run.engine.meas.size() >= candidate.rt->measure.size());
    HybMap replayed;
    double const rank = moved->traj->rank;
    replayed.emplace(rank, std::move(moved));
    for (double t = faultTime + replayStep; t <= time; t += replayStep) {
        tavro_diagGetInputs(candidate.rt.get(), t, time, run.engine.inps.data());
        tavro_diagGetMeasures(candidate.rt.get(), t, time, run.engine.meas.data());
        if (tavro_checkCycle(run, replayed, t, threshold) == -1)
            run.err << "Tavro recursive cycle failed!\n";
    }
    for (auto& entry : replayed) {
        // Each step clears the bridge. A fault of the present has none, and its mode change, which
        // the runtime has taken already, must not be taken again by the next cycle.
        clearRunTime(entry.second->rt.get());
        double const key = entry.second->traj->rank;
        result.emplace(key, std::move(entry.second));
    }
}

}  // namespace

void tavro_diagGetInputs(s_runtime const* rt, double from, double now, double* out) {
    for (std::size_t i = 0; i < rt->input.size(); ++i)
        out[i] = pastValue(rt->input[i]->old, rt->input[i]->histo, from, now);
}

void tavro_diagGetMeasures(s_runtime const* rt, double from, double now, double* out) {
    for (std::size_t i = 0; i < rt->measure.size(); ++i)
        out[i] = pastValue(rt->measure[i]->mes, rt->measure[i]->mesHisto, from, now);
}

void replayExplanation(RunState& run, std::unique_ptr<hybTrajectory> explanation, double time,
                       int threshold, HybMap& result) {
    if (std::optional<int> const faultStep = faultStepOf(*explanation->traj)) {
        replay(run, *explanation, *faultStep, time, threshold, result);
        return;
    }
    double const rank = explanation->traj->rank;
    result.emplace(rank, std::move(explanation));
}

bool verifyAndUpdateTrajs(RunState& run, double time, int threshold) {
    bool allUnknown = true;
    HybMap result;
    for (auto& entry : run.tracked_trajs) {
        if (!entry.second->traj->isUnknown())
            allUnknown = false;
        replayExplanation(run, std::move(entry.second), time, threshold, result);
    }
    run.tracked_trajs = std::move(result);
    return allUnknown;
}

int tavro_checkCycle(RunState& run, HybMap& trajectories, double time, int) {
    HybMap stepped;
    for (auto& entry : trajectories) {
        s_runtime* rt = entry.second->rt.get();
        if (sorn_doCycle2(rt, CYCLE_ISOLATE) == -1)
            run.err << "Invalid model !\n";
        clearAlarms(rt);
        double const key = -static_cast<double>(rt->num);
        stepped.emplace(key, std::move(entry.second));
    }
    trajectories.clear();
    if (stepped.size() > 1)
        sn_reduxTrajs(stepped, time);
    for (auto& entry : stepped)
        splitRuntime(run, std::move(entry.second), trajectories, 1, RUN_DETECT);
    tavroDiagDiscreteCycle(time, trajectories);
    return 1;
}

void tavroDiagDiscreteCycle(double time, HybMap& trajectories) {
    for (auto const& entry : trajectories) {
        s_runtime* rt = entry.second->rt.get();
        tavro_setRTDisplays(static_cast<int>(rt->display.size()), rt, time / rt->Ts);
        clearRunTime(rt);
    }
}

void switchToBST(RunState& run, HybMap& target, HybMap copies, double time, double lastDetection,
                 int threshold) {
    run.err << "switching to blind state tracking\n";
    // The detection that has just been diagnosed is tracked as its diagnosis left it.
    if (time == lastDetection)
        return;
    for (auto const& entry : copies)
        if (std::optional<int> const faultStep = faultStepOf(*entry.second->traj))
            replay(run, *entry.second, *faultStep, time, threshold, target);
}
