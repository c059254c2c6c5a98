// The generator of the optimiser, and its scaled distance.
#include "support/optim.h"

#include <cassert>
#include <cmath>

namespace {

// One more than the largest value of random(): 2 to the power of 31.
constexpr double RANDOM_RANGE = 2147483648.0;

}  // namespace

int Optim_ran0_place(long y) {
    assert(y >= 0 && static_cast<double>(y) < RANDOM_RANGE);
    return static_cast<int>(1.0 + std::floor(OPTIM_RAN0_TABLE * (y / RANDOM_RANGE)));
}

long Optim_random::next() {
    std::int32_t drawn = 0;
    random_r(&library, &drawn);
    return drawn;
}

void Optim_random::seedShuffle(int seed) {
    library = {};
    initstate_r(static_cast<unsigned>(seed), state, stateSize, &library);
    for (int i = 0; i < OPTIM_RAN0_TABLE; ++i)
        next();  // the first draws still show the seed
    for (int i = 1; i <= OPTIM_RAN0_TABLE; ++i)
        table[i] = next();
    y = next();
    seeded = true;
}

// The shuffle: the current value selects the entry to give next, and a fresh draw takes its place.
// Neighbouring draws of random() are so kept from becoming neighbouring results.
double Optim_random::draw(int* seed) {
    if (*seed < 0 || !seeded) {
        seedShuffle(*seed);
        *seed = 1;
    }
    long& selected = table[Optim_ran0_place(y)];
    y = selected;
    selected = next();
    return y / RANDOM_RANGE;
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
