// What the machine and its limits leave to this process.
#pragma once

#include <string>
#include <vector>

// What the system tells, as texts and numbers. The class itself asks Linux; a test derives from it
// and tells something else.
class SystemTexts {
public:
    virtual ~SystemTexts() = default;
    // All of a file of the system; "" when it cannot be read.
    virtual std::string read(std::string const& path) const;
    // What the process may have of a resource (RLIMIT_AS and so on), in bytes; infinity: no limit.
    virtual double limitOf(int resource) const;
    // Bytes that this process has taken and the allocator holds free: given back by what has ended,
    // and not yet by the allocator to the system. Takes a while when they are in many pieces.
    virtual double heldFree() const;
};

// Bytes that some limit allows, and how many of them are still to be taken, which is never
// negative.
struct MemoryLimit {
    double most;
    double left;
};

// Every limit that holds for this process: the memory of the machine, the address space and the
// data that the process may have, and those of its control group and of the groups around it, of
// either version. A limit that cannot be read does not count.
std::vector<MemoryLimit> memoryLimits(SystemTexts const& system);

// Bytes that this process may still take before the system would end it; infinity when nothing
// limits them.
double availableMemory(SystemTexts const& system = SystemTexts());
