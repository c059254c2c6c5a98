// What a run costs: processor time and memory of the thread that takes it.
#pragma once

#include <cstddef>

namespace quality {

struct Cost {
    double seconds = 0.0;   // processor time
    std::size_t bytes = 0;  // the most that was allocated at one time, above what there was before
};

// A run of 300 steps holds about one MiB. One that needs this much has
// candidates, or a search, without end.
inline constexpr std::size_t memoryOfARun = std::size_t{64} << 20;

// Runs from its construction to its destruction. One at a time in a thread, and what is allocated
// meanwhile should be freed by the same thread. An allocation beyond the limit fails with
// std::bad_alloc: a run that runs away ends there, after the same work on every machine.
class Meter {
public:
    explicit Meter(std::size_t limit);  // in bytes
    ~Meter();
    Meter(Meter const&) = delete;
    Meter& operator=(Meter const&) = delete;

    Cost read() const;

private:
    double began;
};

}  // namespace quality
