// How far a run has come, for who watches it in a terminal.
#pragma once

#include <chrono>
#include <cstddef>

// Says nothing for the first two seconds, nor where standard error is no terminal. What it wrote is
// gone with the object.
class Progress {
public:
    explicit Progress(std::size_t steps);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    void reached(std::size_t step);

private:
    using Clock = std::chrono::steady_clock;

    std::size_t const steps;
    bool const watched;
    bool shown = false;
    Clock::time_point const begin = Clock::now();
    Clock::time_point next;  // time to be looked at again
};
