// The executive: one compiled model behind a console.
#include <csignal>
#include <cstdio>

#include "console/console.h"
#include "support/process.h"

int main(int argc, char** argv) {
    // Who reads our output may go away; the run must not end with it.
    std::signal(SIGPIPE, SIG_IGN);
    startConsole(argc, argv);
    runConsole();
    std::fprintf(stderr, "Leaving %s.\n", auxFile.c_str());
    leaveProcess(0);
}
