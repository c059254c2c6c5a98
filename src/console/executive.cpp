// The program from its start to its end.
#include <csignal>
#include <cstdio>

#include "console/console.h"
#include "console/exchange.h"
#include "console/process.h"
#include "run/build_plant.h"
#include "support/run_stopped.h"

namespace {

// Who reads our output may go away; the run must not end with it. The signal is caught and not
// ignored, because the commands that `system` starts would inherit that it is ignored, and could
// not end with their own readers.
void outliveReaders() {
    std::signal(SIGPIPE, [](int) {});
}

}  // namespace

void runExecutive(PlantSource const& source, int argc, char** argv) {
    outliveReaders();
    try {
        startConsole(source, argc, argv);
        runConsole();
    } catch (RunStopped const& stop) {
        leaveProcess(stop.exitStatus());
    } catch (PlantRefused const& refused) {
        for (Finding const& finding : refused.findings)
            std::fprintf(stderr, "plant: %s\n", finding.text.c_str());
        leaveProcess(1);
    }
    // Files of a run that was begun and not ended.
    closeRunFiles();
    std::fprintf(stderr, "Leaving %s.\n", auxFile.c_str());
    leaveProcess(0);
}
