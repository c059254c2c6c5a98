// The generator's state is the only state of this file: one generator for the whole process, so
// that the draws of two searches never repeat each other.
#include "support/optim.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace {

// One more than the largest value of random(): 2 to the power of 31.
constexpr double RANDOM_RANGE = 2147483648.0;

// The shuffle: the current value selects the entry to give next, and a fresh draw takes its place.
// Neighbouring draws of random() are so kept from becoming neighbouring results.
struct Shuffle {
    bool seeded = false;
    long table[OPTIM_RAN0_TABLE + 1];  // entry 0 unused; meaningless until seeded
    long y = 0;                        // the last value given, or the one that starts the shuffle
};

Shuffle shuffle;

void seedShuffle(int seed) {
    srandom(static_cast<unsigned>(seed));
    for (int i = 0; i < OPTIM_RAN0_TABLE; ++i)
        random();  // the first draws still show the seed
    for (int i = 1; i <= OPTIM_RAN0_TABLE; ++i)
        shuffle.table[i] = random();
    shuffle.y = random();
    shuffle.seeded = true;
}

}  // namespace

int Optim_ran0_entry(long y) {
    double const entry = 1.0 + std::floor(OPTIM_RAN0_TABLE * (y / RANDOM_RANGE));
    if (entry < 1.0 || entry > OPTIM_RAN0_TABLE)
        std::fprintf(stderr, "\n!!! erreur dans Optim_ran0 !!!");
    return static_cast<int>(std::clamp(entry, 1.0, double{OPTIM_RAN0_TABLE}));
}

double Optim_ran0(int* seed) {
    if (*seed < 0 || !shuffle.seeded) {
        seedShuffle(*seed);
        *seed = 1;
    }
    long& selected = shuffle.table[Optim_ran0_entry(shuffle.y)];
    shuffle.y = selected;
    selected = random();
    return shuffle.y / RANDOM_RANGE;
}

double drandom_(int* seed) {
    return Optim_ran0(seed);
}

void Optim_tri_index(int n, double const* values, int* index) {
    if (n <= 0)
        return;
    auto const lower = [values](int a, int b) { return values[a] < values[b]; };
    std::iota(index, index + n, 0);
    std::make_heap(index, index + n, lower);
    std::sort_heap(index, index + n, lower);
}

double Optim_longvec_norm(int n, double const* a, double const* b, double const* scale) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        if (!(scale[i] > 0.0))
            continue;
        double const step = (b[i] - a[i]) / scale[i];
        sum += step * step;
    }
    return std::sqrt(sum);
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
