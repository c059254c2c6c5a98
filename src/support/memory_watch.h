// The watch over the memory of a run.
//
// Candidates multiply: one step may make ten of each, and a diagnosis may grow a tree of any size.
// The system would end the process that takes too much, and every row of the run would be lost. So
// whatever makes a candidate, a branch or a leaf asks here first, and the run stops in time.
//
// A step that stops does so by an exception: an allocation that fails throws std::bad_alloc anyway,
// at any place, and both take the same road out of the step.
#pragma once

#include <chrono>
#include <new>

class Host;

// The memory that is left is less than what it takes to end a run in order.
struct MemoryRunsShort : std::bad_alloc {
    char const* what() const noexcept override;
};

// Throws MemoryRunsShort when memory runs short, which the host decides. Cheap enough for an inner
// loop if the host's answer is.
void watchMemory(Host& host);

// The decision for a process that owns its memory, for its host to give. It looks at the system at
// most once a millisecond, and answers false in between: no process fills the reserve in that time.
class SystemMemoryWatch {
public:
    bool runsShort();

private:
    std::chrono::steady_clock::time_point lastLook;  // the clock's zero before the first one
};
