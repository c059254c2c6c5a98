// `simul` and `detect`: the loops over time.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <new>

#include "console/console.h"
#include "console/exchange.h"
#include "console/isolation_request.h"
#include "console/parameters.h"
#include "console/process.h"
#include "console/run.h"
#include "console/stale_graphs.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"
#include "support/numbers.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;

void tellMemoryShort(std::size_t candidates, double time) {
    std::fprintf(stderr, "Memory runs short with %d candidates: the run stops at time %g.\n",
                 static_cast<int>(candidates), time);
}

// A run whose last cycle, at *time*, left no candidate, or too many for the memory, stops there.
bool mustStop(double time) {
    if (consoleRun->hybNT == nullptr)
        std::fprintf(stderr, "No candidate is left: the run stops at time %g.\n", time);
    else if (consoleRun->host.memoryRunsShort())
        tellMemoryShort(consoleRun->tracked_trajs.size(), time);
    else
        return false;
    return true;
}

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

// The cycles of a run, and the rows that they leave.
class Cycles {
public:
    // The cycle at simTime; *Ts* is the period. False, with a message, when memory ran short: then
    // the run stops at the last whole cycle.
    bool run(RunOptions const& options, double countdown, double Ts) {
        bool nominal = false;
        int const result = keep(simTime - Ts)
                               ? tavro_tryCycle(*consoleRun, options, countdown, simTime, nominal)
                               : 0;
        if (result == 0) {
            stopped = true;
            tellMemoryShort(kept.tables.size(), kept.time);
            return false;
        }
        if (result == -1)
            std::fprintf(stderr, "Tavro cycle failed!\n");
        ++count;
        return true;
    }

    void writeRows() const {
        if (stopped)
            writeDispAll(dataOut, kept);
        else
            writeDispAll(dataOut, consoleRun->tracked_trajs, count);
    }

private:
    bool keep(double time) {
        try {
            kept = keepRows(consoleRun->tracked_trajs, time, count);
            return true;
        } catch (std::bad_alloc const&) {
            return false;  // the rows of one cycle less
        }
    }

    int count = 0;
    bool stopped = false;  // within a cycle
    KeptRows kept;         // from before the last cycle
};

// Makes ready for cycles up to totalTime; false when that is more than a display table can hold.
bool beginRun() {
    clearNrt(*consoleRun, consoleRun->hybNT->rt.get());
    if (initDispAll(consoleRun->hybNT->rt.get(), totalTime / consoleRun->hybNT->rt->Ts))
        return true;
    std::fprintf(stderr, "Total time is too long !\n");
    return false;
}

// Whether a run leaves graphs of its candidates: never, or not this time, or it does.
enum class Graphs { NEVER, MISSING, WRITTEN };

void writeGraphs() {
    removeStaleGraphs(static_cast<int>(consoleRun->tracked_trajs.size()));
    graphTrajs(consoleRun->host, consoleRun->tracked_trajs);
}

// Writes the rows of the cycles and the graphs of the candidates; ends the run.
void endRun(Cycles const& cycles, Graphs graphs) {
    cycles.writeRows();
    if (graphs == Graphs::WRITTEN)
        writeGraphs();
    else if (graphs == Graphs::MISSING)
        tellStaleGraphs();
    clearMultiTrajs(*consoleRun);
    consoleRun->sMM->reportUnmetEvents(std::min(simTime, totalTime));
    closeRunFiles();
    for (auto* values : {&consoleRun->engine.inps, &consoleRun->engine.meas})
        if (!values->empty()) {
            values->clear();
            memFr += static_cast<int>(sizeof(double));
        }
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
    return std::tolower(std::fgetc(stdin)) != 'n';
}

// Required: the countdown is not set back, so that the reset comes once, at the time of the period.
void simulate(RunOptions const& options) {
    Cycles cycles;
    double const Ts = consoleRun->hybNT->rt->Ts;
    double countdown = options.period - Ts;
    for (simTime = Ts; simTime <= totalTime; simTime += Ts, countdown -= Ts) {
        if (mustStop(simTime - Ts))
            break;
        announceTime();
        readDataLines(consoleRun->hybNT->rt.get());
        if (!cycles.run(options, countdown, Ts))
            break;
    }
    endRun(cycles, Graphs::NEVER);
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
    std::FILE* file = std::fopen(cycleBenchmark, "w");
    if (file == nullptr) {
        std::cout << "Cannot create cycle benchmark file...\n" << std::flush;
        leaveProcess(1);
    }
    return file;
}

bool timedCycle(Cycles& cycles, RunOptions const& options, double Ts, std::FILE* benchmark) {
    std::clock_t const start = std::clock();
    if (!cycles.run(options, 0.0, Ts))
        return false;
    double const seconds = static_cast<double>(std::clock() - start) / ticksPerSecond;
    std::cout << "cycle: " << seconds << " seconds\n";
    std::fprintf(benchmark, "%i\t%g\n", static_cast<int>(consoleRun->tracked_trajs.size()),
                 seconds);
    return true;
}

void detect(RunOptions const& options) {
    std::FILE* benchmark = openCycleBenchmark();
    Cycles cycles;
    double const Ts = consoleRun->hybNT->rt->Ts;
    for (simTime = Ts; simTime <= totalTime; simTime += Ts) {
        if (mustStop(simTime - Ts))
            break;
        announceTime();
        readDataLines(consoleRun->hybNT->rt.get());
        if (!timedCycle(cycles, options, Ts, benchmark))
            break;
    }
    // A run that was stopped may hold more candidates than anyone wants as files.
    endRun(cycles, simTime > totalTime ? Graphs::WRITTEN : Graphs::MISSING);
    closeOutput(benchmark, cycleBenchmark);
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
