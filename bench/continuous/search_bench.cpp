// The bound search on the static cost, against its dimension.
#include <benchmark/benchmark.h>

#include <vector>

#include "continuous/search.h"
#include "support/host.h"
#include "support/nelder.h"

namespace {

// Causes in [0, 1] with coefficients in [0.9, 1.1], and an observed sum in the middle.
void NelderOnStaticCost(benchmark::State& state) {
    int n = static_cast<int>(state.range(0));
    std::vector<double> lower, upper, start;
    for (int i = 0; i < n; ++i) {
        bool const isCause = i % 2 == 0;
        lower.push_back(isCause ? 0.0 : 0.9);
        upper.push_back(isCause ? 1.0 : 1.1);
        start.push_back((lower.back() + upper.back()) / 2.0);
    }
    double parameters[] = {1.0, 0.0, 0.25 * n};
    int status = 0;
    Host host;
    Optim_random random;
    for (auto _ : state) {
        std::vector<double> x = start;
        Nelder_minimise(host, random, opti_static_obs, &n, x.data(), lower.data(), upper.data(),
                        parameters, nullptr, &status);
        benchmark::DoNotOptimize(x.data());
    }
    state.counters["evaluations"] = status;
}
BENCHMARK(NelderOnStaticCost)->Arg(2)->Arg(4)->Arg(10)->Unit(benchmark::kMicrosecond);

}  // namespace
