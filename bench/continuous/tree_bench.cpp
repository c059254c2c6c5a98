// The hitting-set tree: time and leaves per second, by the number of conflict sets and of suspects.
//
// The sets are random, 3 to 8 suspects each, and the same in every run. The plain list version is
// measured beside it where it comes to an end in seconds; it gives the same leaves.
#include <benchmark/benchmark.h>

#include "fixtures/list_tree.h"
#include "support/host.h"

namespace {

void countLeaves(benchmark::State& state, std::size_t leaves) {
    state.counters["leaves"] = static_cast<double>(leaves);
    state.counters["leaves/s"] = benchmark::Counter(static_cast<double>(leaves),
                                                    benchmark::Counter::kIsIterationInvariantRate);
}

void GrowTree(benchmark::State& state) {
    NamedSuspects names;
    std::vector<Suspects> sets;
    for (auto const& set :
         benchmarkConflictSets(static_cast<int>(state.range(0)), static_cast<int>(state.range(1))))
        sets.push_back(names.set(set));
    std::size_t leaves = 0;
    Host host;
    for (auto _ : state) {
        HittingSetTree tree(host);
        for (Suspects const& set : sets)
            tree.grow(set);
        state.PauseTiming();
        leaves = tree.leaves().size();
        state.ResumeTiming();
    }
    countLeaves(state, leaves);
}
// Conflict sets, suspects. 30 sets out of 50 suspects have three million leaves: that takes a
// minute.
BENCHMARK(GrowTree)
    ->ArgsProduct({{10, 20, 30}, {30, 40}})
    ->Args({10, 50})
    ->Args({20, 50})
    ->Args({24, 50})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(GrowTree)->Args({30, 50})->Iterations(1)->Unit(benchmark::kMillisecond);

void GrowListTree(benchmark::State& state) {
    auto const sets =
        benchmarkConflictSets(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    std::size_t leaves = 0;
    for (auto _ : state) {
        ListTree tree;
        for (auto const& set : sets)
            tree.grow(set);
        leaves = tree.leaves.size();
    }
    countLeaves(state, leaves);
}
BENCHMARK(GrowListTree)->ArgsProduct({{10}, {30, 40, 50}})->Unit(benchmark::kMillisecond);

}  // namespace
