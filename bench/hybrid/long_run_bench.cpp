// The growth of a long run: what a step takes after 1,000, 10,000 and 50,000 steps.
//
// The room heats and cools as its own thermostat does, a healthy day without an end. Candidates
// part and are merged all the time, as in a `detect` of the console.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <utility>

#include "console/exchange.h"
#include "continuous/displays.h"
#include "continuous/sorn-runt.h"
#include "fixtures/the_run.h"
#include "silence.h"
#include "support/memory_watch.h"

extern CompiledModel const therm_model;

namespace {

// A plant that stands in for the real room. The uncertain term comes from the minimal standard
// generator of Park and Miller, so that every run is the same.
class HealthyRoom {
public:
    // The rate of change that is measured next.
    double nextRate() {
        double const before = x;
        x += rate;
        rate = 0.05 * ((on ? 20.0 : 4.0) - before) + 0.15 + 0.05 * draw();
        if (x < 10.0)
            on = true;
        else if (x >= 17.0)
            on = false;
        return rate;
    }

private:
    // Between -1 and 1.
    double draw() {
        constexpr std::int64_t modulus = 2147483647;
        seed = 16807 * seed % modulus;
        return 2.0 * static_cast<double>(seed) / static_cast<double>(modulus) - 1.0;
    }

    double x = 4.0, rate = 0.0;
    bool on = true;
    std::int64_t seed = 282475249;
};

class LongRun {
public:
    LongRun(int steps, char const* rules) {
        newPlant(therm_model, withRules(rules));
        start();
        initDispAll(theRun().hybNT->rt.get(), steps);
        options.mode = RUN_DETECT;
        options.isolation = CYCLE_DETECT;
        options.threshold = 3;
    }
    ~LongRun() { endPlant(); }

    void follow(int steps) {
        for (int i = 0; i < steps; ++i) {
            theRun().engine.meas = {room.nextRate()};
            bool nominal = false;
            tavro_doCycle(theRun(), options, 0.0, ++time, nominal);
        }
    }

private:
    // The console's host reads the first measure from a file.
    void start() {
        measIn = std::tmpfile();
        std::fprintf(measIn, "%.6f\n", room.nextRate());
        std::rewind(measIn);
        tavro_initialize(theRun(), 1, 0.01, "", 0);
        std::fclose(std::exchange(measIn, nullptr));
    }

    HealthyRoom room;
    RunOptions options;
    double time = 0.0;
};

constexpr int measuredSteps = 1000;

// The last 1,000 of so many steps.
void DetectAfter(benchmark::State& state, char const* rules) {
    Silence const silence;
    auto const steps = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        LongRun run(steps, rules);
        run.follow(steps - measuredSteps);
        state.ResumeTiming();
        run.follow(measuredSteps);
        state.PauseTiming();
        state.counters["candidates"] = static_cast<double>(theRun().tracked_trajs.size());
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(DetectAfter, classic, "classic")
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(50000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(DetectAfter, sharp, "sharp")
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(50000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// 1,000 steps of one candidate whose host watches the memory of the system, as that of the console
// does, or does not.
void SimulateWatched(benchmark::State& state, bool watched) {
    Silence const silence;
    for (auto _ : state) {
        state.PauseTiming();
        LongRun run(measuredSteps, "classic");
        runHost().onMemory = watched ? std::function<bool()>() : [] { return false; };
        state.ResumeTiming();
        for (int i = 1; i <= measuredSteps; ++i) {
            bool nominal = false;
            tavro_doCycle(theRun(), RunOptions{}, 0.0, i, nominal);
        }
    }
    runHost().onMemory = nullptr;
}
BENCHMARK_CAPTURE(SimulateWatched, watched, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SimulateWatched, unwatched, false)->Unit(benchmark::kMillisecond);

// One question to the watch over the memory, with the looks that it makes.
void AskMemoryWatch(benchmark::State& state) {
    SystemMemoryWatch watch;
    for (auto _ : state)
        benchmark::DoNotOptimize(watch.runsShort());
}
BENCHMARK(AskMemoryWatch);

}  // namespace
