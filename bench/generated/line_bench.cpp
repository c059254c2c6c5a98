// Steps of a discrete run, against the number of components and of tracked histories.
//
// The feed line with as many valves as wanted runs scenarios of its own. What is reported as `step`
// is the time of a line of the scenario, with its reading and its trace.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "fixtures/line.h"
#include "fixtures/the_run.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"
#include "silence.h"

namespace {

constexpr int linesOfARun = 40;

class LineBench {
public:
    LineBench(int valves, int histories)
        : valves(valves),
          histories(histories),
          path(std::filesystem::temp_directory_path() /
               ("tavro-line-bench-" + std::to_string(getpid()) + ".scn")) {
        newPlant("line");
        buildLine(theRun().sMM, valves);
        theRun().sMM->rtInit();
    }
    ~LineBench() {
        endPlant();
        std::filesystem::remove(path);
    }
    LineBench(LineBench const&) = delete;

    // A command line names every command.
    std::string command(std::string const& given) const {
        std::string line = "Command";
        auto const name = [&](std::string const& component) {
            bool const isGiven = given.find(component + ".cmd=") == 0;
            line += " " + (isGiven ? given : component + ".cmd=none");
        };
        name("pump");
        for (int i = 1; i <= valves; ++i)
            name("valve" + std::to_string(i));
        return line + "\n";
    }
    void write(std::string const& scenario) const { std::ofstream(path) << scenario; }

    // The nominal history at its start, as often as wanted.
    void init() const {
        clearMultiTrajs(theRun());
        tavro_initialize_discrete(theRun());
        Trajectory const* first = theRun().scheduler.tracked_traj.begin()->second.get();
        for (int i = 1; i < histories; ++i)
            theRun().scheduler.tracked_traj.emplace(0.5, std::make_unique<Trajectory>(first, 1));
    }
    // Times runs of what was written, which has *lines* lines.
    void measure(benchmark::State& state, int lines) const {
        for (auto _ : state) {
            state.PauseTiming();
            init();
            state.ResumeTiming();
            theRun().sMM->runSchD(path);
        }
        state.counters["step"] = benchmark::Counter(
            lines, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    }

private:
    int valves, histories;
    std::string path;
};

LineBench lineOf(benchmark::State const& state) {
    return {static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
}

// The first valve is opened and closed in turn.
void CommandStep(benchmark::State& state) {
    Silence const silence;
    LineBench const line = lineOf(state);
    std::string scenario;
    for (int i = 0; i < linesOfARun; i += 2)
        scenario += line.command("valve1.cmd=open") + line.command("valve1.cmd=close");
    line.write(scenario);
    line.measure(state, linesOfARun);
}

// Every history agrees.
void ObservationStep(benchmark::State& state) {
    Silence const silence;
    LineBench const line = lineOf(state);
    std::string scenario;
    for (int i = 0; i < linesOfARun; ++i)
        scenario += "Observation sensor.flow=zero\n";
    line.write(scenario);
    line.measure(state, linesOfARun);
}

// The whole line is opened, and nothing flows: one search, over the histories of one failure. Here
// `step` is the whole run.
void Search(benchmark::State& state) {
    Silence const silence;
    LineBench const line = lineOf(state);
    std::string scenario = line.command("pump.cmd=start");
    for (int i = 1; i <= state.range(0); ++i)
        scenario += line.command("valve" + std::to_string(i) + ".cmd=open");
    line.write(scenario + "Observation sensor.flow=zero\n");
    line.measure(state, 1);
}

void sizes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"valves", "histories"})->Unit(benchmark::kMillisecond);
    for (int valves : {2, 8, 32})
        bench->Args({valves, 1});
    for (int histories : {4, 16, 64})
        bench->Args({2, histories});
}
BENCHMARK(CommandStep)->Apply(sizes);
BENCHMARK(ObservationStep)->Apply(sizes);
BENCHMARK(Search)
    ->ArgNames({"valves", "histories"})
    ->Unit(benchmark::kMillisecond)
    ->Args({2, 1})
    ->Args({4, 1})
    ->Args({8, 1});

}  // namespace
