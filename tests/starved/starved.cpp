// The allocator of tavro-starved. The environment tells which allocation fails: STARVE=5 the fifth,
// STARVE=5+ all from the fifth on. With COUNT_ALLOCATIONS the program ends by telling on its error
// stream how many there were.
#include <cstdio>

#include "fixtures/failing_memory.h"

namespace {

// Set before the first allocation of the program's own, and asked after its last.
struct Starvation {
    Starvation() {
        char const* const which = std::getenv("STARVE");
        if (which == nullptr)
            return;
        char* rest = nullptr;
        failing_memory::countdown = std::strtol(which, &rest, 10);
        failing_memory::forGood = *rest == '+';
    }
    ~Starvation() {
        if (std::getenv("COUNT_ALLOCATIONS") != nullptr)
            std::fprintf(stderr, "allocations: %ld\n", failing_memory::counted);
    }
    Starvation(Starvation const&) = delete;
    Starvation& operator=(Starvation const&) = delete;
};

[[gnu::init_priority(200)]] Starvation starvation;

}  // namespace
