// The memory that a process may still take, as Linux tells it.
#include "support/available_memory.h"

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <string>

namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();

// The first number of a one-number file, such as a control group's limit; none for "max".
std::optional<double> numberIn(std::string const& path) {
    std::ifstream file(path);
    double value = 0.0;
    if (file >> value)
        return value;
    return std::nullopt;
}

double freeInMachine() {
    std::ifstream file("/proc/meminfo");
    std::string field;
    double kilobytes = 0.0;
    while (file >> field) {
        if (field == "MemAvailable:" && file >> kilobytes)
            return kilobytes * 1024.0;
    }
    return unlimited;
}

double leftBy(std::optional<double> limit, std::optional<double> used) {
    return limit && used ? std::max(0.0, *limit - *used) : unlimited;
}

double leftInControlGroup() {
    std::string const unified = "/sys/fs/cgroup/memory.";
    std::string const legacy = "/sys/fs/cgroup/memory/memory.";
    return std::min(
        leftBy(numberIn(unified + "max"), numberIn(unified + "current")),
        leftBy(numberIn(legacy + "limit_in_bytes"), numberIn(legacy + "usage_in_bytes")));
}

// The address space taken, the first number of /proc/self/statm, which counts pages.
double ownAddressSpace() {
    return numberIn("/proc/self/statm").value_or(0.0) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double leftInAddressSpace() {
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return unlimited;
    return std::max(0.0, static_cast<double>(limit.rlim_cur) - ownAddressSpace());
}

}  // namespace

double availableMemory() {
    return std::min({freeInMachine(), leftInControlGroup(), leftInAddressSpace()});
}

double heldFree() {
    return static_cast<double>(mallinfo2().fordblks);
}
