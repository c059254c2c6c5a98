// Keeps the engine's traces out of the results of a benchmark.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

// Sends both standard streams to the null device for its lifetime: the engine's traces would drown
// the results.
class Silence {
public:
    Silence() : out(swap(STDOUT_FILENO)), err(swap(STDERR_FILENO)) {}
    ~Silence() {
        restore(STDOUT_FILENO, out);
        restore(STDERR_FILENO, err);
    }
    Silence(Silence const&) = delete;
    Silence& operator=(Silence const&) = delete;

private:
    static int swap(int descriptor) {
        std::fflush(nullptr);
        int const kept = dup(descriptor);
        int const null = open("/dev/null", O_WRONLY);
        dup2(null, descriptor);
        close(null);
        return kept;
    }
    static void restore(int descriptor, int kept) {
        std::fflush(nullptr);
        dup2(kept, descriptor);
        close(kept);
    }

    int out, err;
};
