// One cycle of detection against the number of candidates, and a long simulation of one candidate.
#include <benchmark/benchmark.h>

#include "fixtures/the_run.h"
#include "room_bench.h"

namespace {

RunOptions detection() {
    RunOptions options;
    options.mode = RUN_NOMERGE;
    options.isolation = CYCLE_DETECT;
    options.threshold = 3;
    return options;
}

// Every iteration advances fresh copies of the same candidate, so the work does not drift.
void DetectCycle(benchmark::State& state) {
    Silence const silence;
    RoomBench room;
    room.follow(4, detection());
    auto const count = static_cast<std::size_t>(state.range(0));
    RoomBench::multiply(count);
    hybTrajectory const pristine(theRun().hybNT, theRun().hybNT->traj->getCurrentTime() + 1);
    for (auto _ : state) {
        state.PauseTiming();
        theRun().tracked_trajs.clear();
        theRun().tracked_trajs.emplace(
            0.0, std::make_unique<hybTrajectory>(&pristine, pristine.traj->getCurrentTime() + 1));
        RoomBench::multiply(count);
        theRun().engine.meas = {RoomBench::heatingRate()};
        bool nominal = false;
        state.ResumeTiming();
        tavro_doCycle(theRun(), detection(), 0.0, room.time + 1.0, nominal);
    }
    state.SetComplexityN(state.range(0));
    state.counters["per_candidate"] = benchmark::Counter(
        static_cast<double>(count),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(DetectCycle)
    ->Arg(1)
    ->Arg(8)
    ->Arg(64)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMicrosecond);

void Simulate1000Steps(benchmark::State& state) {
    Silence const silence;
    for (auto _ : state) {
        state.PauseTiming();
        RoomBench room;
        state.ResumeTiming();
        room.follow(1000, RunOptions{});
    }
}
BENCHMARK(Simulate1000Steps)->Unit(benchmark::kMillisecond);

}  // namespace
