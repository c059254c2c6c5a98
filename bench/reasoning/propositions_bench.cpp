// Asserting a proposition in a state of the reference model: one conflict, one branch.
#include <benchmark/benchmark.h>

#include "fixtures/the_run.h"
#include "room_bench.h"

namespace {

void AddPropositions(benchmark::State& state) {
    Silence const silence;
    RoomBench room;
    Trajectory* traj = theRun().hybNT->traj.get();
    int const t = traj->getCurrentTime();
    for (auto _ : state) {
        state.PauseTiming();
        auto copy = std::make_unique<State>(traj->getState(t), false);
        TrajEl* off = theRun().sMM->getElt("thermostat.mode=off", {copy.get(), traj, t});
        SignedElements const props{{true, off}};
        state.ResumeTiming();
        benchmark::DoNotOptimize(
            theRun().sMM->addPropositions(props, copy, {true, 0.0}, traj, t, false));
    }
}
BENCHMARK(AddPropositions)->Unit(benchmark::kMicrosecond);

}  // namespace
