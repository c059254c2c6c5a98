// Small helpers of the optimiser: a random generator and a scaled distance.
//
// Vectors are bare arrays of *n* doubles that the caller owns.
#pragma once

#include <cstdint>
#include <cstdlib>

// Size of the generator's table; its entries are numbered from 1.
constexpr int OPTIM_RAN0_TABLE = 97;

// The entry of the table, 1 to OPTIM_RAN0_TABLE, that the value *y* of the library's generator
// selects; 0 <= y < 2 to the power of 31.
int Optim_ran0_place(long y);

// Uniform doubles in [0, 1): a shuffled generator over the library's random(), after W. H. Press,
// B. P. Flannery, S. A. Teukolsky and W. T. Vetterling, "Numerical Recipes in C", Cambridge
// University Press, 1988, section 7.1 (ran0, the shuffle of Bays and Durham).
//
// Each object has a random() of its own, with the state of the library's at the start of a process:
// its draws are those that a fresh process gets, whoever else draws.
class Optim_random {
public:
    Optim_random() = default;
    Optim_random(Optim_random const&) = delete;  // `library` points into `state`
    Optim_random& operator=(Optim_random const&) = delete;

    // A negative *seed, or the first call, restarts the generator from *seed and sets *seed to 1;
    // otherwise *seed takes no part.
    double draw(int* seed);

private:
    void seedShuffle(int seed);
    long next();

    // The size that selects the same generator as that of random().
    static constexpr std::size_t stateSize = 128;

    bool seeded = false;
    long table[OPTIM_RAN0_TABLE + 1];  // entry 0 unused; meaningless until seeded
    long y = 0;                        // the last value given, or the one that starts the shuffle
    // State of the library's generator; meaningless until seeded.
    alignas(std::int32_t) char state[stateSize];
    random_data library;
};

// The square root of the sum of ((b[i] - a[i]) / scale[i])^2 over the i with scale[i] > 0; the
// other coordinates, whose range is empty, are ignored.
double Optim_longvec_norm(int n, double const* a, double const* b, double const* scale);
