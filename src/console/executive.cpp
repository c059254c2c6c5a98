// The program from its start to its end.
#include <csignal>
#include <cstdio>
#include <new>

#include "console/console.h"
#include "console/exchange.h"
#include "console/interrupts.h"
#include "console/losses.h"
#include "console/output_file.h"
#include "console/process.h"
#include "run/build_plant.h"
#include "support/run_stopped.h"

namespace {

// Who reads our output may go away; the run must not end with it. The signal is caught and not
// ignored, because the commands that `system` starts would inherit that it is ignored, and could
// not end with their own readers.
//
// A file that grows past its limit is a write that fails, and is told so.
void outliveBrokenFiles() {
    for (int const signal : {SIGPIPE, SIGXFSZ})
        std::signal(signal, [](int) {});
}

constexpr int statusOfUnusable = 1;

}  // namespace

void runExecutive(PlantSource const& source, int argc, char** argv) {
    outliveBrokenFiles();
    heedInterrupts();
    checkStandardOutput();
    try {
        startConsole(source, argc, argv);
        runConsole();
    } catch (RunStopped const& stop) {
        endSession(stop.exitStatus());
    } catch (PlantRefused const& refused) {
        for (Finding const& finding : refused.findings)
            std::fprintf(stderr, "plant: %s\n", finding.text.c_str());
        endSession(statusOfUnusable);
    } catch (std::bad_alloc const&) {
        tellLoss("Memory runs short: the program cannot begin.\n");
        endSession(statusOfUnusable);
    }
    // Before the farewell: what is lost of a run that was begun and not ended is told too.
    closeRunFiles();
    std::fprintf(stderr, "Leaving %s.\n", auxFile.c_str());
    endSession(statusOfInterrupt());
}
