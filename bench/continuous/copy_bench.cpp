// A deep copy of a runtime whose histories are full, and the push that follows it.
#include <benchmark/benchmark.h>

#include "fixtures/the_run.h"
#include "room_bench.h"

namespace {

RunOptions detection() {
    RunOptions options;
    options.mode = RUN_DETECT;
    options.isolation = CYCLE_DETECT;
    options.threshold = 3;
    return options;
}

void CopyRuntime(benchmark::State& state) {
    Silence const silence;
    RoomBench room;
    room.follow(static_cast<int>(state.range(0)), detection());
    s_runtime const* rt = theRun().hybNT->rt.get();
    for (auto _ : state)
        benchmark::DoNotOptimize(sn_copyRuntime(rt));
}
// Cycles followed before the copy: the histories hold 300 entries from the start.
BENCHMARK(CopyRuntime)->Arg(1)->Arg(400)->Unit(benchmark::kMicrosecond);

// Every entry is moved in a plain array; here the cost must not grow with the length.
void PushHistory(benchmark::State& state) {
    History<s_Objet> history(static_cast<int>(state.range(0)));
    s_Objet const value = makeRange(1.0, 2.0, 1, 1);
    for (auto _ : state)
        history.push(value);
}
BENCHMARK(PushHistory)->Arg(30)->Arg(300)->Arg(3000);

}  // namespace
