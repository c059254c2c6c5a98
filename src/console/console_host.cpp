// Streams, files and requests of a console's runs.
#include "console/console_host.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "console/awaited_input.h"
#include "console/console.h"
#include "console/exchange.h"
#include "console/interrupts.h"
#include "console/isolation_request.h"
#include "console/losses.h"
#include "console/overwriting.h"
#include "console/process.h"
#include "support/nelder.h"

namespace {

// To be asked for the name of the first file that is opened.
char const* firstFile(char const* name) {
    keepStandardStreams();
    return name;
}

// A pointer to a stream that lives on.
std::shared_ptr<std::ostream> borrowed(std::ostream& stream) {
    return {&stream, [](std::ostream*) {}};
}

}  // namespace

ConsoleHost::ConsoleHost() : steps(firstFile(stepBenchmark)), propagations(propagationBenchmark) {}

std::ostream& ConsoleHost::out() {
    return std::cout;
}

std::ostream& ConsoleHost::err() {
    return std::cerr;
}

std::ostream& ConsoleHost::loss() {
    countLoss();
    return std::cerr;
}

void ConsoleHost::inputs(int count, double* values) {
    tavro_getInputs("", count, values);
}

void ConsoleHost::measures(int count, double* values) {
    tavro_getMeasures("", count, values);
}

bool ConsoleHost::misbehaviours(int count, int* values) {
    return sorn_getMisbs("", count, values) == 1;
}

bool ConsoleHost::activity(int count, int* values) {
    return sorn_getConds("", count, values) == 1;
}

void ConsoleHost::alarms(int count, int const* low, int const* high, int const* misbehaving) {
    sorn_setAlarms("", count, low, high, misbehaving);
}

void ConsoleHost::diagnosis(std::string const& text) {
    sorn_sendDiagnosis("", text.c_str());
}

// A directory could be opened, and would read as an empty file.
std::unique_ptr<std::istream> ConsoleHost::open(std::string const& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        loss() << path << " is a directory\n";
        return nullptr;
    }
    if (isAwaited(path))
        return openAwaited(path);
    auto file = std::make_unique<std::ifstream>(path);
    if (!*file)
        return nullptr;
    return file;
}

namespace {

bool writeWhole(std::string const& path, std::string const& text) {
    OutputFile file(path);
    file.write(text.data(), text.size());
    return file.close();
}

}  // namespace

bool ConsoleHost::write(std::string const& path, std::string const& text) {
    // Where there is no file of prime implicates yet, the engine writes it for the next start.
    bool const isNew = consolePlant != nullptr && path == consolePlant->name + ".pi" &&
                       ::access(path.c_str(), F_OK) != 0;
    if (!isNew && (wouldOverwriteInput(path) || wouldOverwriteOutput(path)))
        return false;
    return writeWhole(path, text);
}

// Read again for every search, so that the optimiser can be tuned anew without a restart. A cycle
// searches a dozen times, mostly without the file: a stream alone would cost more than asking for
// it.
void ConsoleHost::optimiserOptions(Nelder_options& options) {
    if (::access(optimiserOptionsFile, F_OK) != 0)
        return;
    if (std::ifstream file(optimiserOptionsFile); file)
        Nelder_read_options(file, options);
}

// Every search begins the file anew: one that cannot be written is told for the first of them.
std::shared_ptr<std::ostream> ConsoleHost::optimiserTrace(Nelder_options const& options) {
    if (!options.traceToFile)
        return borrowed(std::cout);
    traceLost = traceLost || wouldOverwriteInput(options.traceFile) ||
                wouldOverwriteOutput(options.traceFile);
    if (traceLost)
        return nullptr;
    auto file = std::make_unique<OutputStream>(options.traceFile);
    if (file->isOpen())
        return {file.release(), [this](OutputStream* trace) {
                    traceLost = !trace->close();
                    delete trace;
                }};
    loss() << "\n!!! ATTENTION: impossible d'ouvrir le fichier: " << options.traceFile << " !!!\n";
    return borrowed(std::cout);
}

bool ConsoleHost::memoryRunsShort() {
    return memory.runsShort();
}

bool ConsoleHost::stopRequested() {
    return stopReason() != nullptr;
}

char const* ConsoleHost::stopOverdue() {
    return stopIsOverdue() ? stopReason() : nullptr;
}

void ConsoleHost::flushLogs() {
    steps.flush();
    propagations.flush();
}

void ConsoleHost::closeLogs() {
    steps.close();
    propagations.close();
}

ConsoleHost& consoleHost() {
    static ConsoleHost host;
    return host;
}
