// The random numbers of the models: the same on every machine for one seed.
#pragma once

#include <random>

namespace random_models {

class Dice {
public:
    explicit Dice(unsigned seed) : engine(seed) {}
    int upTo(int last) { return static_cast<int>(engine() % static_cast<unsigned>(last + 1)); }
    bool oneIn(int n) { return upTo(n - 1) == 0; }

private:
    std::mt19937 engine;
};

}  // namespace random_models
