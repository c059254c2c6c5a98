// Exits and standard streams, as Linux has them.
#include "console/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "console/console_host.h"
#include "console/exchange.h"
#include "console/losses.h"
#include "console/output_file.h"

namespace {

constexpr int statusOfLoss = 3;

// A host that memory is too short to make has no logs.
void closeLogs() {
    try {
        consoleHost().closeLogs();
    } catch (std::bad_alloc const&) {
    }
}

}  // namespace

bool strictSession = false;

// A host that memory is too short to make has written nothing.
void flushAll() {
    try {
        consoleHost().flushLogs();
    } catch (std::bad_alloc const&) {
    }
    flushStandardOutput();
}

void endSession(int status) {
    closeRunFiles();
    flushAll();
    closeLogs();  // a full disk may be told at the close alone
    if (std::fflush(stderr) != 0 || std::ferror(stderr) != 0)
        countLoss();
    leaveProcess(status == 0 && strictSession && losses() > 0 ? statusOfLoss : status);
}

void leaveProcess(int status) {
    std::exit(status);
}

void keepStandardStreams() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        if (fcntl(descriptor, F_GETFD) == -1) {
            // The lowest free descriptor is this one, since the lower ones are open by now.
            [[maybe_unused]] int const opened =
                open("/dev/null", descriptor == STDOUT_FILENO ? O_RDONLY : O_RDWR);
        }
}
