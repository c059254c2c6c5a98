// Cycles, and what is left of them.
#include "console/cycles.h"

#include <algorithm>
#include <new>

#include "console/console.h"
#include "console/console_host.h"
#include "console/interrupts.h"
#include "console/losses.h"
#include "console/run.h"
#include "console/stale_graphs.h"
#include "reasoning/Scheduler.h"
#include "support/run_stopped.h"

namespace {

// A run that stops may hold more candidates than anyone wants as files.
constexpr int mostGraphsOfStopped = 100;

// Does *work*; tells when memory is too short for it.
template <typename Work>
void tryTo(char const* what, Work work) {
    try {
        work();
    } catch (std::bad_alloc const&) {
        tellLoss("Memory runs short: %s.\n", what);
    }
}

}  // namespace

// ---- Going on and stopping ----

bool Cycles::mayGoOn() {
    if (consoleRun->hybNT == nullptr)
        stop("no candidate is left");
    else if (consoleRun->host.memoryRunsShort())
        stopForMemory(consoleRun->tracked_trajs.size());
    else if (consoleRun->host.stopRequested())
        stop(stopReason() != nullptr ? stopReason() : "asked to");
    return reason == nullptr;
}

void Cycles::stopForMemory(std::size_t candidates) {
    std::snprintf(memoryText, sizeof memoryText, "memory runs short with %d candidates",
                  static_cast<int>(candidates));
    stop(memoryText);
}

// Allocates nothing.
void Cycles::stopFor(std::exception_ptr const& thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (std::bad_alloc const&) {
        stopForMemory(withinCycle ? kept.tables.size() : consoleRun->tracked_trajs.size());
    } catch (RunStopped const& why) {
        cause = thrown;
        fatal = why.reason != RunStopped::overdue;
        stop(why.what());
    }
}

void Cycles::run(RunOptions const& options, double countdown) {
    bool nominal = false;
    kept = keepRows(consoleRun->tracked_trajs, count);
    withinCycle = true;
    int const result = tavro_tryCycle(*consoleRun, options, countdown, simTime, nominal);
    if (result == 0)
        throw std::bad_alloc();
    if (result == -1)
        std::fprintf(stderr, "Tavro cycle failed!\n");
    withinCycle = false;
    time = simTime;
    ++count;
}

// ---- The end ----

void Cycles::tellStop() const {
    if (reason != nullptr)
        tellLoss("run stopped at time %g: %s\n", time, reason);
}

void Cycles::writeRows() const {
    if (withinCycle)
        writeDispAll(dataOut, kept);
    else
        writeDispAll(dataOut, consoleRun->tracked_trajs, count);
}

// Within a cycle no candidate is whole, but those that a diagnosis was to explain.
void Cycles::writeGraphs() const {
    HybMap const& candidates = withinCycle ? consoleRun->refuted : consoleRun->tracked_trajs;
    int const most = reason != nullptr ? mostGraphsOfStopped : INT_MAX;
    if (reason != nullptr && candidates.empty()) {
        tellNoGraphs();
        return;
    }
    int const all = static_cast<int>(candidates.size());
    if (all > most)
        tellLoss("Graphs are written of %d candidates out of %d.\n", most, all);
    removeStaleGraphs(std::min(all, most));
    graphTrajs(consoleRun->host, candidates, most);
}

void Cycles::end(Graphs graphs) {
    tellStop();
    tryTo("rows may be missing", [this] { writeRows(); });
    if (graphs == Graphs::WANTED)
        tryTo("graphs are missing, and those that are there may be of an earlier run",
              [this] { writeGraphs(); });
    clearMultiTrajs(*consoleRun);
    kept = {};
    tryTo("events may be unmet that are not told",
          [] { consoleRun->sMM->reportUnmetEvents(std::min(simTime, totalTime)); });
    closeRunFiles();
    closeStream(cycleLog);
    consoleHost().flushLogs();
    for (auto* values : {&consoleRun->engine.inps, &consoleRun->engine.meas})
        if (!values->empty()) {
            values->clear();
            memFr += static_cast<int>(sizeof(double));
        }
    interruptIsDone();
    if (fatal)
        std::rethrow_exception(cause);
}
