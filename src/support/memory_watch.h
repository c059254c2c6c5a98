// The watch over the memory of a run.
//
// Candidates multiply: one step may make ten of each, and a diagnosis may grow a tree of any size.
// The system would end the process that takes too much, and every row of the run would be lost. So
// whatever makes a candidate, a branch or a leaf asks here first, and the run stops in time.
//
// A step that stops does so by an exception: an allocation that fails throws std::bad_alloc anyway,
// at any place, and both take the same road out of the step.
#pragma once

#include <memory>
#include <new>
#include <utility>

#include "support/available_memory.h"

class Host;

// The memory that is left is less than what it takes to end a run in order.
struct MemoryRunsShort : std::bad_alloc {
    char const* what() const noexcept override;
};

// Throws MemoryRunsShort when memory runs short, which the host decides, and RunStopped when the
// host cannot wait for the end of the step: what takes long takes memory all along. Cheap enough
// for an inner loop if the host's answers are.
void watchMemory(Host& host);

// The decision for a process that owns its memory, for its host to give.
//
// Reading what the system tells takes longer than a cycle of a small model, so most questions are
// answered without a look. A question stands for a bounded amount of memory, a copy of a runtime at
// most: after a look, as many questions go by as could not take half of what is left to spare, by
// what they have taken so far. So looks are rare while there is plenty, and come close together
// where memory gets short.
class SystemMemoryWatch {
public:
    explicit SystemMemoryWatch(
        std::unique_ptr<SystemTexts const> system = std::make_unique<SystemTexts const>())
        : system(std::move(system)) {}
    bool runsShort() { return --untilLook <= 0 && look(); }

private:
    bool look();
    int questionsFor(double spare);

    std::unique_ptr<SystemTexts const> system;
    int untilLook = 0;  // questions
    int sinceLook = 0;  // questions that were to go by since the last look; 0: there was none
    double lastSpare = 0.0;
};

// Bytes of a limit of *most* bytes that are kept free, to end a run with: a part of it, since a run
// in little space is a small one.
double memoryReserve(double most);
