// Start-up: the model, the command line, and what the program says of them.
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>

#include "console/console.h"
#include "continuous/records.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"
#include "reasoning/compiled_model.h"
#include "support/process.h"

namespace {

constexpr char const* version = "0.1.0";

// The arguments of the program, taken one after the other.
class Arguments {
public:
    Arguments(int count, char** values) : count(count), values(values) {}

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
        leaveProcess(0);
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
    std::cerr << "inputs: " << tavro_rt->input.size() << "\n";
    if (!tavro_rt->input.empty())
        inputFile += takeRequired(arguments, "input file");
    if (!tavro_rt->measure.empty()) {
        measureFile += takeRequired(arguments, "measure file");
        echoFollowing(arguments);
    }
    if (!tavro_rt->display.empty()) {
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
    inputFile = scenarFile = "inp/";
    measureFile = "obs/";
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

void printUsage() {
    std::cout << "usage: " << auxFile;
    if (tavro_rt == nullptr) {
        std::cout << " SCENARIO-FILE [MODE-FILE]\n"
                  << "The scenario file is looked for under inp/.\n";
    } else {
        std::cout
            << (tavro_rt->input.empty() ? "" : " INPUT-FILE")
            << (tavro_rt->measure.empty() ? "" : " MEASURE-FILE")
            << (tavro_rt->display.empty() ? "" : " DISPLAY-FILE")
            << " [SCENARIO-FILE [MODE-FILE]]\n"
            << "Input and scenario files are looked for under inp/, measure files under obs/;\n"
            << "display files are written under disp/.\n";
    }
    std::cout << "Commands are read from standard input; `help` lists them.\n";
}

// A first argument that asks about the program ends it, before it says anything else.
void answerQuestions(int argc, char** argv) {
    if (argc < 2)
        return;
    bool const help = std::strcmp(argv[1], "--help") == 0;
    if (!help && std::strcmp(argv[1], "--version") != 0)
        return;
    if (help) {
        startinit(new Scheduler(model_name));
        printUsage();
    } else {
        std::cout << auxFile << " " << version << " (model " << model_name << ")\n";
    }
    std::cout.flush();
    std::_Exit(0);
}

// Frees what a run and the model hold, on every way out of the process: the candidates first, since
// the keys of their tables are texts of the model, then the scheduler, which owns the model.
void releaseAll() {
    for (HybMap* candidates : {&tracked_trajs, &ntrajs, &misbtrajs})
        candidates->clear();
    delete sMM;
    sMM = nullptr;
}

void buildModel() {
    hybNT = nullptr;
    std::cout << "appliName: " << model_name << "\n";
    sMM = new Scheduler(model_name);
    std::atexit(releaseAll);
    startinit(sMM);
    std::cout << "model successfully loaded.\n";
    sMM->rtInit();
    // Without a file of prime implicates nothing is said.
    if (std::ifstream(model_name + ".pi"))
        sMM->readPI();
    if (tavro_rt != nullptr)
        localInit(tavro_rt, sMM);
    else
        discrete = true;
}

}  // namespace

void localInit(s_runtime* rt, Scheduler*) {
    bridgeActiveAtoms(rt);
}

void startConsole(int argc, char** argv) {
    // One character may be read past the console, so nothing may be read ahead.
    std::setvbuf(stdin, nullptr, _IONBF, 0);
    auxFile = baseName(argc > 0 ? argv[0] : nullptr);
    answerQuestions(argc, argv);
    buildModel();
    ligneInit();
    setPrefixes();
    Arguments arguments(argc, argv);
    if (discrete)
        takeDiscreteFiles(arguments);
    else
        takeHybridFiles(arguments);
    takeModesFile(arguments);
    if (!discrete)
        std::fprintf(stderr, "Ready for executing %s with time step = %g;\n", auxFile.c_str(),
                     tavro_rt->Ts);
    arguments.printTaken();
}
