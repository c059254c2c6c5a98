// The generator's state is the only state of this file.
#include "unlinked/optim_calls.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

Optim_random& Optim_process_random() {
    static Optim_random random;
    return random;
}

double Optim_ran0(int* seed) {
    return Optim_process_random().draw(seed);
}

double drandom_(int* seed) {
    return Optim_ran0(seed);
}

int Optim_ran0_entry(long y) {
    constexpr long largest = (1L << 31) - 1;
    if (y < 0 || y > largest)
        std::fprintf(stderr, "\n!!! erreur dans Optim_ran0 !!!");
    return Optim_ran0_place(std::clamp(y, 0L, largest));
}

void Optim_tri_index(int n, double const* values, int* index) {
    if (n <= 0)
        return;
    auto const lower = [values](int a, int b) { return values[a] < values[b]; };
    std::iota(index, index + n, 0);
    std::make_heap(index, index + n, lower);
    std::sort_heap(index, index + n, lower);
}

int iveridom(int const* n, double const* x, double const* lower, double const* upper) {
    for (int i = 0; i < *n; ++i)
        if (!(lower[i] <= x[i] && x[i] <= upper[i]))
            return 0;
    return 1;
}

int iveridom_(int const* n, double const* x, double const* lower, double const* upper) {
    return iveridom(n, x, lower, upper);
}
