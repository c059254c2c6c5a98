#include "tavro/progress.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr std::chrono::seconds silence(2);
constexpr std::chrono::milliseconds interval(200);

// "1:02:03", "4:05"
void putDuration(long seconds) {
    if (seconds >= 3600)
        std::fprintf(stderr, "%ld:%02ld:%02ld", seconds / 3600, seconds / 60 % 60, seconds % 60);
    else
        std::fprintf(stderr, "%ld:%02ld", seconds / 60, seconds % 60);
}

}  // namespace

Progress::Progress(std::size_t steps)
    : steps(steps), watched(isatty(STDERR_FILENO) == 1), next(begin + silence) {}

Progress::~Progress() {
    if (shown)
        std::fputs("\r\033[K", stderr);
}

void Progress::reached(std::size_t step) {
    if (!watched || steps == 0 || step == 0)
        return;
    Clock::time_point const now = Clock::now();
    if (now < next)
        return;
    next = now + interval;
    shown = true;
    std::chrono::duration<double> const spent = now - begin;
    double const left =
        spent.count() / static_cast<double>(step) * static_cast<double>(steps - step);
    std::fprintf(stderr, "\r\033[Kstep %zu of %zu, ", step, steps);
    putDuration(static_cast<long>(left + 0.5));
    std::fputs(" left", stderr);
    std::fflush(stderr);
}
