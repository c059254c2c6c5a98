// Start-up: the model, the command line, and what the program says of them.
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "console/console.h"
#include "console/console_host.h"
#include "console/exchange.h"
#include "console/losses.h"
#include "console/options.h"
#include "console/overwriting.h"
#include "console/process.h"
#include "continuous/records.h"
#include "run/build_plant.h"

namespace {

constexpr char const* version = "0.1.0";

// The arguments of the program, taken one after the other.
class Arguments {
public:
    Arguments(int count, char** values) : count(count), values(values) {}

    // Takes the options, which stand before the file names. An argument that is none is a file
    // name, whatever it begins with.
    RunSettings takeOptions() {
        RunSettings settings;
        while (following() != nullptr &&
               (isStrict(following()) || takeOption(following(), settings)))
            ++position;
        return settings;
    }

    // The argument that follows, or null; it is not taken.
    char const* following() const { return position < count ? values[position] : nullptr; }
    char const* take() { return values[position++]; }
    void printTaken() const {
        std::fprintf(stderr, "Execution parameters: ");
        for (int i = 1; i < position; ++i)
            std::fprintf(stderr, "%s%s", i > 1 ? ", " : "", values[i]);
        std::fprintf(stderr, ";\n");
    }

private:
    int count;
    char** values;
    int position = 1;
};

// The next argument, which must be there: without it the process ends with status 0.
char const* takeRequired(Arguments& arguments, char const* what) {
    if (arguments.following() == nullptr) {
        std::fprintf(stderr, "Not enough parameters (expecting %s) !\n", what);
        countLoss();
        endSession(0);
    }
    return arguments.take();
}

// Required: not the argument just taken, but the one that follows it, if there is one.
void echoFollowing(Arguments const& arguments) {
    if (arguments.following() != nullptr)
        std::cout << arguments.following() << "\n";
}

void takeDiscreteFiles(Arguments& arguments) {
    char const* next = arguments.following();
    std::cerr << "scenario file: " << (next != nullptr ? next : "") << "\n";
    inputFile += takeRequired(arguments, "scenario file");
    std::cout << "inputFile: " << inputFile << "\n";
}

void takeHybridFiles(Arguments& arguments) {
    std::cerr << "inputs: " << consoleRun->tavro_rt->input.size() << "\n";
    if (!consoleRun->tavro_rt->input.empty())
        inputFile += takeRequired(arguments, "input file");
    if (!consoleRun->tavro_rt->measure.empty()) {
        measureFile += takeRequired(arguments, "measure file");
        echoFollowing(arguments);
    }
    if (!consoleRun->tavro_rt->display.empty()) {
        displayFile += takeRequired(arguments, "display file");
        echoFollowing(arguments);
    }
    if (arguments.following() != nullptr) {
        scenarFile += arguments.take();
        std::cerr << "scenario file: " << scenarFile << "\n";
    }
}

void takeModesFile(Arguments& arguments) {
    if (arguments.following() == nullptr) {
        std::cout << "no mode files\n";
        return;
    }
    modesFile = arguments.take();
    std::cout << "mode file: " << modesFile << "\n";
}

void setPrefixes() {
    inputFile = scenarFile = inputPrefix;
    measureFile = measurePrefix;
    displayFile = "disp/";
    modesFile.clear();
}

// The last part of a path, or "" when there is none.
std::string baseName(char const* path) {
    std::string base;
    std::string part;
    for (char const* c = path; c != nullptr && *c != '\0'; ++c) {
        if (*c == '/')
            part.clear();
        else
            base = part += *c;
    }
    return base;
}

void printUsage(s_runtime const* rt) {
    std::cout << "usage: " << auxFile;
    if (rt == nullptr) {
        std::cout << " [OPTION]... SCENARIO-FILE [MODE-FILE]\n"
                  << "The scenario file is looked for under inp/.\n"
                  << optionsHelp();
    } else {
        std::cout
            << " [OPTION]..." << (rt->input.empty() ? "" : " INPUT-FILE")
            << (rt->measure.empty() ? "" : " MEASURE-FILE")
            << (rt->display.empty() ? "" : " DISPLAY-FILE") << " [SCENARIO-FILE [MODE-FILE]]\n"
            << "Input and scenario files are looked for under inp/, measure files under obs/;\n"
            << "display files are written under disp/.\n"
            << optionsHelp();
    }
    std::cout << "Commands are read from standard input; `help` lists them.\n";
}

// A first argument that asks about the program ends it, before it says anything else.
void answerQuestions(PlantSource const& source, int argc, char** argv) {
    if (argc < 2)
        return;
    bool const help = std::strcmp(argv[1], "--help") == 0;
    if (!help && std::strcmp(argv[1], "--version") != 0)
        return;
    if (help) {
        Host silent;
        std::unique_ptr<Plant> const plant = buildPlant(source, silent);
        printUsage(plant->tavro_rt.get());
    } else {
        std::cout << auxFile << " " << version << " (model " << source.name << ")\n";
    }
    endSession(0);
}

// The host empties the logs, before the command line is read.
void keepArguments(int argc, char** argv) {
    bool lost = false;
    for (char const* const log : {stepBenchmark, propagationBenchmark})
        lost |= wouldOverwriteArgument(log, argc, argv);
    if (lost)
        leaveProcess(1);
}

// Frees what the run and the plant hold, on every way out of the process: the run first, since the
// keys of its tables are texts of the plant.
void releaseAll() {
    consoleRun.reset();
    consolePlant.reset();
}

void buildModel(PlantSource const& source, RunSettings settings) {
    Host& host = consoleHost();
    std::atexit(releaseAll);
    consolePlant = buildPlant(source, host);
    checkNoise(settings, consolePlant->tavro_rt.get());
    consoleRun = std::make_unique<RunState>(*consolePlant, host, std::move(settings));
    // Without a file of prime implicates nothing is said.
    if (host.open(consolePlant->name + ".pi") != nullptr)
        consoleRun->sMM->readPI();
    discrete = consoleRun->tavro_rt == nullptr;
}

}  // namespace

void startConsole(PlantSource const& source, int argc, char** argv) {
    // One character may be read past the console, so nothing may be read ahead.
    std::setvbuf(stdin, nullptr, _IONBF, 0);
    auxFile = baseName(argc > 0 ? argv[0] : nullptr);
    keepArguments(argc, argv);
    consoleHost();
    answerQuestions(source, argc, argv);
    Arguments arguments(argc, argv);
    buildModel(source, arguments.takeOptions());
    ligneInit();
    setPrefixes();
    if (discrete)
        takeDiscreteFiles(arguments);
    else
        takeHybridFiles(arguments);
    takeModesFile(arguments);
    if (!discrete)
        std::fprintf(stderr, "Ready for executing %s with time step = %g;\n", auxFile.c_str(),
                     consoleRun->tavro_rt->Ts);
    arguments.printTaken();
}
