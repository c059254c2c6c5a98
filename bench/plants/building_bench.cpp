// The building from 1 to 256 rooms: what reading, building and a healthy step cost as it grows.
//
// A step is one of the detection with the sharp rules, beside a true run of the same building. Two
// days: a quiet one, on which no temperature comes near a threshold, so that one candidate is
// followed; and a day as it is, on which each room that is about to switch splits the candidates
// for some steps.
#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>

#include "language/language.h"
#include "run/build_plant.h"
#include "run/library_host.h"
#include "run/stepwise_run.h"
#include "truth/simulator.h"

namespace {

class Files : public SourceReader {
public:
    std::optional<std::string> read(std::string const& path) override {
        std::ifstream file(path, std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
};

using Settings = std::vector<std::string>;

Settings sizeOf(benchmark::State const& state) {
    return {"rooms=" + std::to_string(state.range(0))};
}

PlantFile building(Settings const& settings) {
    Files files;
    return {TAVRO_SOURCE "/plants/building/building.plant", files, settings};
}

void grows(benchmark::internal::Benchmark* benchmark) {
    benchmark->RangeMultiplier(4)->Range(1, 256)->Complexity()->Unit(benchmark::kMillisecond);
}

void read(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(building(sizeOf(state)).isSound());
    state.SetComplexityN(state.range(0));
}
BENCHMARK(read)->Apply(grows);

void build(benchmark::State& state) {
    PlantFile const file = building(sizeOf(state));
    Host host;
    for (auto _ : state)
        benchmark::DoNotOptimize(buildPlant(file.source(), host));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(build)->Apply(grows);

// A run beside the truth.
class Day {
public:
    explicit Day(Settings const& settings)
        : plant(buildPlant(building(settings).source(), host)),
          names(*plant),
          truth(*plant, {}),
          run(*plant, names, {.rules = "sharp"}) {
        truth.start({});
        run.start(line());
    }

    void step(benchmark::State& state) {
        truth.step({});
        tavro::Line const measured = line();
        state.ResumeTiming();
        candidates += run.step(measured).candidates.size();
        state.PauseTiming();
        ++steps;
    }
    double meanCandidates() const {
        return static_cast<double>(candidates) / static_cast<double>(steps);
    }

private:
    tavro::Line line() const { return {.measures = truth.measures()}; }

    Host host;
    std::unique_ptr<Plant> plant;
    PlantNames names;
    truth::Simulator truth;
    StepwiseRun run;
    std::size_t candidates = 0, steps = 0;
};

// An iteration is *steps* steps of a new day.
void followed(benchmark::State& state, Settings const& settings, int steps) {
    double candidates = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        Day day(settings);
        for (int i = 0; i < steps; ++i)
            day.step(state);
        candidates = day.meanCandidates();
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
    state.counters["candidates"] = candidates;
    state.counters["per_step"] = benchmark::Counter(
        steps, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void quietSteps(benchmark::State& state) {
    Settings settings = sizeOf(state);
    settings.insert(settings.end(), {"cold=-1000", "warm=1040"});
    followed(state, settings, 10);
}
BENCHMARK(quietSteps)->Apply(grows)->Iterations(3);

void stepsOfADay(benchmark::State& state) {
    followed(state, sizeOf(state), 60);
}
BENCHMARK(stepsOfADay)
    ->RangeMultiplier(4)
    ->Range(1, 16)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace
