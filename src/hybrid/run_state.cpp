// The start and the end of what a run owns.
#include "hybrid/run_state.h"

#include <cassert>
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

void RunState::checkRunState() const {
#ifndef NDEBUG
    assert(hybNT == nullptr ||
           (!tracked_trajs.empty() && hybNT == tracked_trajs.begin()->second.get()));
    assert(engine.nrt.empty());
    for (auto const& [key, candidate] : tracked_trajs) {
        assert(candidate != nullptr && candidate->traj != nullptr);
        assert(candidate->rt != nullptr || tavro_rt == nullptr);
        assert(candidate->rt == nullptr || candidate->rt->engine == &engine);
    }
#endif
}
