// The handler, and what it leaves behind.
#include "console/interrupts.h"

#include <unistd.h>

#include <atomic>
#include <csignal>

namespace {

constexpr int signalBase = 128;  // of the status, as shells have it

// What a handler may touch: these two, without a lock.
std::atomic<int> pending = 0;  // the signal that is to be heeded; 0 for none
std::atomic<bool> waiting = false;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

// An interrupt has nothing to wait for where another signal has asked already; the others want the
// run to be written in any case, also where it has been interrupted.
void heed(int signal) {
    int const before = pending.exchange(signal);
    if (waiting || before == signal || (before != 0 && signal == SIGINT))
        _exit(signalBase + signal);
}

}  // namespace

void heedInterrupts() {
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
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

void interruptIsDone() {
    int expected = SIGINT;
    pending.compare_exchange_strong(expected, 0);
}

int statusOfInterrupt() {
    return pending == 0 ? 0 : signalBase + pending;
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
