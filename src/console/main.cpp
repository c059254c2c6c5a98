// The executive: one compiled model behind a console.
#include <csignal>
#include <cstdio>

#include "console/console.h"
#include "console/exchange.h"
#include "support/process.h"

namespace {

// Who reads our output may go away; the run must not end with it. The signal is caught and not
// ignored, because the commands that `system` starts would inherit that it is ignored, and could
// not end with their own readers.
void outliveReaders() {
    std::signal(SIGPIPE, [](int) {});
}

}  // namespace

int main(int argc, char** argv) {
    outliveReaders();
    startConsole(argc, argv);
    runConsole();
    // Files of a run that was begun and not ended.
    closeRunFiles();
    std::fprintf(stderr, "Leaving %s.\n", auxFile.c_str());
    leaveProcess(0);
}
