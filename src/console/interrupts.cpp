// The handler, and what it leaves behind.
#include "console/interrupts.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <ctime>

namespace {

constexpr int signalBase = 128;    // of the status, as shells have it
constexpr std::int64_t grace = 1;  // seconds that a cycle may go on, and what is left of another
constexpr int heeded[] = {SIGINT, SIGTERM, SIGHUP};

// What a handler may touch: these, without a lock.
std::atomic<int> pending = 0;         // the signal that is to be heeded; 0 for none
std::atomic<std::int64_t> since = 0;  // when it came; a meaning while there is one
std::atomic<bool> waiting = false;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free &&
              std::atomic<std::int64_t>::is_always_lock_free);

// Seconds since some moment. May be called by a handler.
std::int64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec;
}

// An interrupt has nothing to wait for where another signal has asked already; the others want the
// run to be written in any case, also where it has been interrupted.
void heed(int signal) {
    since = now();
    int const before = pending.exchange(signal);
    if (waiting || before == signal || (before != 0 && signal == SIGINT))
        _exit(signalBase + signal);
}

// SA_RESTART: what a signal interrupts in the system is taken up again.
void setFlags(int flags) {
    for (int const signal : heeded) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != heed)
            continue;
        action.sa_flags = flags;
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace

void heedInterrupts() {
    for (int const signal : heeded) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = heed;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

char const* stopReason() {
    switch (pending) {
        case 0:
            return nullptr;
        case SIGINT:
            return "interrupted";
        case SIGTERM:
            return "terminated";
        default:
            return "hung up";
    }
}

bool stopIsOverdue() {
    return pending != 0 && now() - since > grace;
}

void interruptIsDone() {
    int expected = SIGINT;
    pending.compare_exchange_strong(expected, 0);
}

int statusOfInterrupt() {
    return pending == 0 ? 0 : signalBase + pending;
}

Interruptible::Interruptible() {
    setFlags(0);
}

Interruptible::~Interruptible() {
    setFlags(SA_RESTART);
}

// A signal that came just before is seen here, and one that comes later by the handler.
Waiting::Waiting() {
    waiting = true;
    if (pending != 0)
        _exit(statusOfInterrupt());
}

Waiting::~Waiting() {
    waiting = false;
}
