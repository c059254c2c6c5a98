// Asserting a proposition in a state of the reference model: one conflict, one branch.
#include <benchmark/benchmark.h>

#include "room_bench.h"

namespace {

void AddPropositions(benchmark::State& state) {
    Silence const silence;
    RoomBench room;
    Trajectory* traj = hybNT->traj.get();
    int const t = traj->getCurrentTime();
    for (auto _ : state) {
        state.PauseTiming();
        auto copy = std::make_unique<State>(traj->getState(t), false);
        TrajEl* off = sMM->getElt("thermostat.mode=off", {copy.get(), traj, t});
        SignedElements const props{{true, off}};
        state.ResumeTiming();
        benchmark::DoNotOptimize(sMM->addPropositions(props, copy, {true, 0.0}, traj, t, false));
    }
}
BENCHMARK(AddPropositions)->Unit(benchmark::kMicrosecond);

}  // namespace
