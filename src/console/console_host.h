// The first host: a console on the standard streams, with files in the working directory.
//
// It writes what a run tells to the same streams in the same order as it is told. Data lines come
// from the files that `init` opened, requests for isolation from the line of the command.
#pragma once

#include "console/output_file.h"
#include "support/host.h"
#include "support/memory_watch.h"

class ConsoleHost : public Host {
public:
    // Creates the two logs, empty.
    ConsoleHost();

    std::ostream& out() override;
    std::ostream& err() override;
    // Counts it.
    std::ostream& loss() override;
    std::ostream& propagationLog() override { return propagations; }
    std::ostream& stepLog() override { return steps; }

    void inputs(int count, double* values) override;
    void measures(int count, double* values) override;
    bool misbehaviours(int count, int* values) override;
    bool activity(int count, int* values) override;
    void alarms(int count, int const* low, int const* high, int const* misbehaving) override;
    void diagnosis(std::string const& text) override;

    std::unique_ptr<std::istream> open(std::string const& path) override;
    bool write(std::string const& path, std::string const& text) override;

    void optimiserOptions(Nelder_options& options) override;
    std::shared_ptr<std::ostream> optimiserTrace(Nelder_options const& options) override;

    bool memoryRunsShort() override;
    bool stopRequested() override;
    char const* stopOverdue() override;

    // Writes what waits for the logs.
    void flushLogs();
    // Nothing comes to the logs from here on: what cannot be written of them is told now.
    void closeLogs();

private:
    OutputStream steps;         // bench1.bmk
    OutputStream propagations;  // itmsbench.bmk
    bool traceLost = false;     // the optimiser's trace could not be written, which is told once
    SystemMemoryWatch memory;
};

// The host of the program's console; made by the first call.
ConsoleHost& consoleHost();
