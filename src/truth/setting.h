// What a true run of a plant is asked for.
#pragma once

#include <cstdint>
#include <vector>

class Atom;

namespace truth {

// How the numbers behave that a plant gives as intervals. The plant allows all three: it says only
// that each lies in its interval at each step.
enum class Uncertainty {
    midpoint,  // the middle of each
    constant,  // drawn once
    redrawn    // drawn anew at each step
};

// A mode that is entered at the first step from *from* on at which a failure of the plant may lead
// there; at *from* itself when the plant has no failure that leads there.
struct Fault {
    Atom* mode = nullptr;
    int from = 0;
};

struct Order {
    Atom* command = nullptr;
    int step = 0;
};

struct Setting {
    std::uint64_t seed = 1;
    Uncertainty uncertainty = Uncertainty::constant;
    double noise = 0.0;  // of each measure: uniform in [-noise, noise]
    std::vector<Fault> faults{};
    std::vector<Order> orders{};
};

}  // namespace truth
