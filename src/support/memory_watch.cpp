// When memory runs short, and what is done then.
#include "support/memory_watch.h"

#include <algorithm>
#include <limits>

#include "support/host.h"
#include "support/run_stopped.h"

namespace {

constexpr double kilobyte = 1024.0;
constexpr double largestReserve = 64.0 * kilobyte * kilobyte;
constexpr double reservedPart = 1.0 / 8.0;

// What a question is taken to stand for at least: several copies of the runtime of a small model.
constexpr double leastPerQuestion = 64.0 * kilobyte;
// Others take memory as well, so that a look may not be put off for long.
constexpr double mostQuestions = 1000.0;

// What the tightest limit leaves above its reserve; negative below it.
double spareMemory(SystemTexts const& system) {
    double spare = std::numeric_limits<double>::infinity();
    for (MemoryLimit const& limit : memoryLimits(system))
        spare = std::min(spare, limit.left - memoryReserve(limit.most));
    return spare;
}

}  // namespace

char const* MemoryRunsShort::what() const noexcept {
    return "memory runs short";
}

void watchMemory(Host& host) {
    if (host.memoryRunsShort())
        throw MemoryRunsShort();
    if (char const* why = host.stopOverdue())
        throw RunStopped(RunStopped::overdue, why);
}

double memoryReserve(double most) {
    return std::min(largestReserve, most * reservedPart);
}

bool SystemMemoryWatch::look() {
    double spare = spareMemory(*system);
    // What an ended run has given back serves the next one.
    if (spare < 0.0)
        spare += system->heldFree();
    untilLook = sinceLook = questionsFor(spare);
    lastSpare = spare;
    return spare < 0.0;
}

int SystemMemoryWatch::questionsFor(double spare) {
    double const taken = sinceLook > 0 ? (lastSpare - spare) / sinceLook : 0.0;
    double const perQuestion = std::max(leastPerQuestion, taken);
    return static_cast<int>(std::clamp(spare / 2.0 / perQuestion, 1.0, mostQuestions));
}
