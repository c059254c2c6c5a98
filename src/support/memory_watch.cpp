// When memory runs short, and what is done then.
#include "support/memory_watch.h"

#include "support/available_memory.h"
#include "support/host.h"

namespace {

// Bytes kept free: what may be taken between two looks, and what it takes to end the run.
constexpr double memoryReserve = 64.0 * 1024.0 * 1024.0;

// Reading what the system tells costs as much as a cycle of a small model.
constexpr std::chrono::milliseconds timeBetweenLooks{1};

}  // namespace

char const* MemoryRunsShort::what() const noexcept {
    return "memory runs short";
}

void watchMemory(Host& host) {
    if (host.memoryRunsShort())
        throw MemoryRunsShort();
}

bool SystemMemoryWatch::runsShort() {
    auto const now = std::chrono::steady_clock::now();
    if (now - lastLook < timeBetweenLooks)
        return false;
    lastLook = now;
    double const available = availableMemory();
    // What an ended run has given back serves the next one.
    return available < memoryReserve && available + heldFree() < memoryReserve;
}
