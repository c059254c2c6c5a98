// The random numbers of truths, of tests and of data that is made: for one seed the same on every
// machine. The generator is fixed by the standard, the distributions of the standard library are
// not, so the conversion is our own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

class Dice {
public:
    // Streams of one seed do not follow each other: a truth takes one stream for each thing it
    // draws.
    Dice(std::uint64_t seed, std::uint64_t stream) : engine(mixed(mixed(seed) + stream)) {}

    // From low to high, high left out but for rounding; 53 bits, exact in a double.
    double within(double low, double high) {
        return low + (high - low) * (static_cast<double>(engine() >> 11) * 0x1p-53);
    }

    // 0 to count - 1. The bias of the remainder is below count / 2^64.
    std::size_t below(std::size_t count) { return static_cast<std::size_t>(engine() % count); }

    bool oneIn(std::size_t count) { return below(count) == 0; }

private:
    // The output function of SplitMix64 (Steele, Lea and Flood, "Fast splittable pseudorandom
    // number generators", OOPSLA 2014): small seeds give states that have nothing in common.
    static std::uint64_t mixed(std::uint64_t x) {
        x += 0x9e3779b97f4a7c15U;
        x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9U;
        x = (x ^ (x >> 27)) * 0x94d049bb133111ebU;
        return x ^ (x >> 31);
    }

    std::mt19937_64 engine;
};
