// Independent pieces of work, shared out to threads. Which thread takes which piece changes
// nothing: a piece writes to a place of its own.
#pragma once

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace quality {

// Calls work(i) once for each i below count. Work must not throw.
template <typename Work>
void inParallel(std::size_t count, unsigned jobs, Work work) {
    std::atomic<std::size_t> next{0};
    auto const takeAll = [&] {
        for (std::size_t i = next++; i < count; i = next++)
            work(i);
    };
    std::vector<std::jthread> others;
    for (unsigned job = 1; job < jobs; ++job)
        others.emplace_back(takeAll);
    takeAll();
}

}  // namespace quality
