// The start and the end of what a run owns.
#include "hybrid/run_state.h"

#include <utility>

#include "continuous/sorn-runt.h"

namespace {

// The copy takes no identity: those of the run's candidates begin at 0.
std::unique_ptr<s_runtime> copyTemplate(Plant const& plant, s_engine& engine) {
    if (plant.tavro_rt == nullptr)
        return nullptr;
    std::unique_ptr<s_runtime> copy = sn_copyRuntime(plant.tavro_rt.get(), &engine);
    engine.rt_num = 0;
    return copy;
}

}  // namespace

RunState::RunState(Plant const& plant, Host& host, RunSettings settings)
    : plant(plant),
      host(host),
      settings(std::move(settings)),
      out(host.out()),
      err(host.err()),
      engine(host, rules),
      scheduler(plant, host, rules),
      ownTemplate(copyTemplate(plant, engine)),
      tavro_rt(ownTemplate.get()) {}

RunState::~RunState() = default;

namespace {

char const* brokenRuntime(RunState const& run, hybTrajectory const& candidate) {
    if (candidate.rt == nullptr)
        return run.tavro_rt == nullptr ? nullptr : "a candidate has no runtime";
    if (candidate.rt->engine != &run.engine)
        return "a runtime belongs to another run";
    return sn_brokenRuntime(candidate.rt.get());
}

char const* brokenCandidate(RunState const& run, hybTrajectory const* candidate) {
    if (candidate == nullptr || candidate->traj == nullptr)
        return "a candidate has no history";
    if (!candidate->traj->holdsAll(run.plant.active_comps))
        return "a component has left the window of a history";
    if (char const* broken = candidate->traj->brokenInvariant())
        return broken;
    return brokenRuntime(run, *candidate);
}

}  // namespace

char const* RunState::brokenInvariant() const {
    if (hybNT != nullptr && (tracked_trajs.empty() || hybNT != tracked_trajs.begin()->second.get()))
        return "the nominal candidate is not the first";
    if (!engine.nrt.empty() || !ntrajs.empty() || !misbtrajs.empty())
        return "a table of a step is not empty";
    for (auto const& entry : tracked_trajs)
        if (char const* broken = brokenCandidate(*this, entry.second.get()))
            return broken;
    return nullptr;
}
