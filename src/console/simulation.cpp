// `simul` and `detect`: the loops over time.
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <iostream>

#include "console/console.h"
#include "console/cycles.h"
#include "console/exchange.h"
#include "console/interrupts.h"
#include "console/isolation_request.h"
#include "console/losses.h"
#include "console/output_file.h"
#include "console/parameters.h"
#include "console/process.h"
#include "console/run.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"
#include "support/numbers.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;

void announceTime() {
    std::fprintf(stderr, "-- time = %g --------------------------\n", simTime);
}

void readDataLines(s_runtime const* rt) {
    if (dataIn != nullptr)
        tavro_getInputs(rt->name.c_str(), static_cast<int>(consoleRun->engine.inps.size()),
                        consoleRun->engine.inps.data());
    if (measIn != nullptr)
        tavro_getMeasures(rt->name.c_str(), static_cast<int>(consoleRun->engine.meas.size()),
                          consoleRun->engine.meas.data());
}

// Makes ready for cycles up to totalTime; false when that is more than a display table can hold.
bool beginRun() {
    clearNrt(*consoleRun, consoleRun->hybNT->rt.get());
    if (initDispAll(consoleRun->hybNT->rt.get(), totalTime / consoleRun->hybNT->rt->Ts))
        return true;
    std::fprintf(stderr, "Total time is too long !\n");
    return false;
}

bool readTotalTime(std::optional<std::string> const& word, char const* missing) {
    if (!word) {
        std::fputs(missing, stderr);
        return false;
    }
    if (!isNumeric(*word)) {
        std::fprintf(stderr, "Total time should be a number !\n");
        return false;
    }
    totalTime = numberOf(*word);
    if (totalTime > 0.0)
        return true;
    std::fprintf(stderr, "Total time is 0: no cycle is run.\n");
    return false;
}

// ---- simul ----

// Reads total-time [reset-period] [multi].
bool readSimulation(char const* arg, RunOptions& options) {
    Parameters parameters(arg);
    if (!readTotalTime(parameters.next(), "Missing parameter ! (expecting total time)\n"))
        return false;
    std::optional<std::string> word = parameters.next();
    if (word && isNumeric(*word)) {
        options.period = numberOf(*word);
        options.mode = RUN_RESET;
        if (measIn == nullptr) {
            std::fprintf(stderr, "Resetting impossible (no measure file) !\n");
            return false;
        }
        word = parameters.next();
    }
    options.multi = simu_multi = word && *word == "multi" ? 1 : 0;
    return true;
}

// Asks whether to simulate a model with spontaneous transitions along one candidate alone.
bool acceptsDrift() {
    if (guards_int != 1 || simu_multi != 0)
        return true;
    std::fprintf(stderr,
                 "Warning the model contains spontaneous transitions jumps on non-measured values: "
                 "predicted bounds will drift away. Try simulation with 'multi' flag instead.\n"
                 "Do you want to continue anyway ? (y/n)\n");
    flushAll();
    Waiting const waiting;
    return std::tolower(std::fgetc(stdin)) != 'n';
}

// Required: the countdown is not set back, so that the reset comes once, at the time of the period.
void simulate(RunOptions const& options) {
    Cycles cycles;
    double const Ts = consoleRun->hybNT->rt->Ts;
    double countdown = options.period - Ts;
    simTime = Ts;
    cycles.guard([&] {
        for (; simTime <= totalTime && cycles.mayGoOn(); simTime += Ts, countdown -= Ts) {
            announceTime();
            readDataLines(consoleRun->hybNT->rt.get());
            cycles.run(options, countdown);
        }
    });
    cycles.end(Graphs::NEVER);
}

// ---- detect ----

// The code of the continuous step for an isolation word, or 0 and a message. A word may stand
// inside a longer one; "nofault" is tried first.
int readIsolation(std::optional<std::string> const& word) {
    if (!word) {
        std::fprintf(stderr, "\nExpecting fault isolation parameter:\n\n\t nofault\n%s\n\n",
                     isolationLevels);
        return 0;
    }
    if (word->find("nofault") != std::string::npos)
        return CYCLE_DETECT;
    if (int const level = isolationLevelOf(*word); level != 0)
        return CYCLE_DETECT + level;
    std::fprintf(stderr, "Unknown parameter %s. Expecting one of\n\t nofault\n%s\n\n",
                 word->c_str(), isolationLevels);
    return 0;
}

// Reads total-time isolation threshold [nomerge].
bool readDetection(char const* arg, RunOptions& options) {
    Parameters parameters(arg);
    if (!readTotalTime(parameters.next(), "\nMissing parameter (expecting total time) !\n"))
        return false;
    options.isolation = readIsolation(parameters.next());
    if (options.isolation == 0)
        return false;
    std::optional<std::string> const threshold = parameters.next();
    if (!threshold) {
        std::fprintf(stderr, "\nExpecting alarm threshold parameter:\n");
        return false;
    }
    if (!isNumeric(*threshold)) {
        std::fprintf(stderr, "Alarm threshold should be a number !\n");
        return false;
    }
    options.threshold = truncateToInt(numberOf(*threshold));
    std::optional<std::string> const merging = parameters.next();
    bool const nomerge = merging && merging->find("nomerge") != std::string::npos;
    options.mode = nomerge ? RUN_NOMERGE : RUN_DETECT;
    return true;
}

bool canDetect() {
    if (consoleRun->hybNT == nullptr) {
        std::fprintf(stderr, "Please initialize first !\n");
        return false;
    }
    if (consoleRun->hybNT->rt == nullptr || consoleRun->hybNT->rt->measure.empty()) {
        std::fprintf(stderr, "No measure variable: detection impossible !\n");
        return false;
    }
    if (!consoleRun->hybNT->rt->varsInitialised) {
        std::fprintf(stderr, "Please initialize first !\n");
        return false;
    }
    return true;
}

std::FILE* openCycleBenchmark() {
    std::FILE* file = openOutput(cycleBenchmark);
    if (file == nullptr) {
        tellUnwritten(cycleBenchmark, errno);
        std::cout << "Cannot create cycle benchmark file...\n" << std::flush;
        endSession(1);
    }
    return file;
}

void timedCycle(Cycles& cycles, RunOptions const& options, std::FILE* benchmark) {
    std::clock_t const start = std::clock();
    cycles.run(options, 0.0);
    double const seconds = static_cast<double>(std::clock() - start) / ticksPerSecond;
    std::cout << "cycle: " << seconds << " seconds\n";
    std::fprintf(benchmark, "%i\t%g\n", static_cast<int>(consoleRun->tracked_trajs.size()),
                 seconds);
}

void detect(RunOptions const& options) {
    Cycles cycles(openCycleBenchmark());
    double const Ts = consoleRun->hybNT->rt->Ts;
    simTime = Ts;
    cycles.guard([&] {
        for (; simTime <= totalTime && cycles.mayGoOn(); simTime += Ts) {
            announceTime();
            readDataLines(consoleRun->hybNT->rt.get());
            timedCycle(cycles, options, cycles.log());
        }
    });
    cycles.end(Graphs::WANTED);
}

}  // namespace

int snSimul(char const* arg) {
    if (consoleRun->hybNT == nullptr) {
        std::fprintf(stderr, "Please initialize first !\n");
        return 0;
    }
    if (consoleRun->hybNT->rt == nullptr) {
        std::fprintf(stderr, "No continuous variable: simulation impossible !\n");
        return 0;
    }
    RunOptions options;
    if (!readSimulation(arg, options) || !acceptsDrift() || !beginRun()) {
        simu_multi = 0;
        return 0;
    }
    std::cout << "mode: " << options.mode << "\n";
    simulate(options);
    simu_multi = 0;
    return 0;
}

int snDetect(char const* arg) {
    std::cout << "entering detect\n";
    if (!canDetect())
        return 0;
    RunOptions options;
    if (!readDetection(arg, options))
        return 0;
    if (!beginRun())
        return 0;
    std::cerr << "mode: " << options.mode << "\n";
    detect(options);
    return 1;
}
