// `init` and the small commands.
#include "console/run.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>

#include "console/console.h"
#include "console/console_host.h"
#include "console/exchange.h"
#include "console/interrupts.h"
#include "console/losses.h"
#include "console/overwriting.h"
#include "console/parameters.h"
#include "console/process.h"
#include "continuous/sorn-runt.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"
#include "support/numbers.h"
#include "support/run_stopped.h"

double simTime = 0.0;
double totalTime = 0.0;
double precision = 0.01;
int accuTime = 0;
int simu_multi = 0;
int guards_int = 1;

namespace {

constexpr double defaultPrecision = 0.01;
// A misbehaviour is remembered for at most this many cycles: the memory that it takes is set aside.
constexpr int longestAccumulation = 1000000;

struct InitOptions {
    int global = 1;
    bool valid = true;
};

InitOptions refuse(char const* message) {
    std::fputs(message, stderr);
    return {1, false};
}

// Reads [noglob] [accumulation-time [precision]].
InitOptions readInitOptions(char const* arg) {
    InitOptions options;
    Parameters parameters(arg);
    std::optional<std::string> word = parameters.next();
    if (word && !isNumeric(*word)) {
        if (word->find("noglob") == std::string::npos) {
            std::fprintf(stderr, "Unknown parameter %s (expecting noglob) !\n", word->c_str());
            return {1, false};
        }
        options.global = 0;
        word = parameters.next();
    }
    if (!word)
        return options;
    if (!isNumeric(*word))
        return refuse("Accumulation time should be a number !\n");
    accuTime = truncateToInt(numberOf(*word));
    if (accuTime > longestAccumulation)
        return refuse("Accumulation time is too long !\n");
    if (word = parameters.next(); !word)
        return options;
    if (!isNumeric(*word))
        return refuse("Precision should be a number !\n");
    precision = numberOf(*word);
    if (word = parameters.next(); word)
        std::fprintf(stderr, "Unexpected parameter %s\n", word->c_str());
    return options;
}

int initDiscrete() {
    if (!disc_init) {
        disc_init = true;
        tavro_initialize_discrete(*consoleRun);
    }
    return 0;
}

void abandonStart() {
    clearNrt(*consoleRun, consoleRun->hybNT != nullptr ? consoleRun->hybNT->rt.get() : nullptr);
    clearMultiTrajs(*consoleRun);
}

// False when it fails, and when memory runs short: then there is no candidate. A run without all of
// its events would be another one.
bool startRun(int global) {
    try {
        if (tavro_initialize(*consoleRun, global, precision, "", accuTime) != 1)
            return false;
        prepareSc();
        return true;
    } catch (std::bad_alloc const&) {
        abandonStart();
        return false;
    } catch (RunStopped const& why) {
        tellLoss("run stopped at time 0: %s\n", why.what());
        abandonStart();
        if (why.reason == RunStopped::overdue)
            return false;
        throw;
    }
}

// An interrupt ends a run that has begun to be made ready, as it would later.
bool stoppedAtStart() {
    if (stopReason() == nullptr)
        return false;
    tellLoss("run stopped at time 0: %s\n", stopReason());
    abandonStart();
    return true;
}

void initHybrid(int global) {
    if (wouldOverwriteFiles())
        return;
    if (!prepareEI() || !prepareMS() || !prepareDO() || !prepareMO())
        return;
    if (!startRun(global) || stoppedAtStart()) {
        tellLoss("  Initializations failed.\n");
        return;
    }
    std::fprintf(stderr, "  Initializations done.\n");
    s_runtime const* rt = consoleRun->hybNT->rt.get();
    tavro_setDisplays(rt->name.c_str(), static_cast<int>(rt->display.size()), rt->dinfval.data(),
                      rt->dsupval.data());
}

}  // namespace

int snInit(char const* arg) {
    if (consoleRun->hybNT != nullptr) {
        std::cout << "The model has already been inited\n";
        return 0;
    }
    consoleRun->engine.rt_num = 0;
    simTime = 0.0;
    precision = defaultPrecision;
    accuTime = 0;
    InitOptions const options = readInitOptions(arg);
    if (!options.valid)
        return 0;
    if (discrete)
        return initDiscrete();
    initHybrid(options.global);
    interruptIsDone();
    if (dataOut != nullptr) {
        std::fprintf(dataOut, "\n");
        // A program that is killed before its first run leaves the line all the same.
        std::fflush(dataOut);
    }
    return 0;
}

namespace {

void tellStop(char const* reason) {
    tellLoss("run stopped at time %d: %s\n", consoleRun->sMM->time, reason);
}

// Answers what is fatal.
std::exception_ptr runScenario() {
    try {
        consoleRun->sMM->runSchD(inputFile);
        if (stopReason() != nullptr)
            tellStop(stopReason());
    } catch (std::bad_alloc const&) {
        tellStop("memory runs short");
    } catch (RunStopped const& why) {
        tellStop(why.what());
        if (why.reason != RunStopped::overdue)
            return std::current_exception();
    }
    return nullptr;
}

}  // namespace

int snDisc(char const*) {
    if (!disc_init) {
        std::fprintf(stderr, "Should init first !\n");
        return 1;
    }
    std::cout << "inputFile: " << inputFile << "\n";
    std::exception_ptr const fatal = runScenario();
    disc_init = false;
    clearMultiTrajs(*consoleRun);
    consoleHost().flushLogs();
    interruptIsDone();
    if (fatal)
        std::rethrow_exception(fatal);
    return 1;
}

namespace {

int shell(char const* command) {
    flushAll();
    Waiting const waiting;
    return std::system(command);
}

}  // namespace

int snGnup(char const* arg) {
    std::string command = "gnuplot ";
    if (std::optional<std::string> const script = Parameters(arg).next())
        command += *script;
    if (shell(command.c_str()) == -1)
        tellLoss("Gnuplot failed");
    return 1;
}

int snSystem(char const* arg) {
    if (shell(arg) == -1) {
        tellLoss("Shell command failed.\n");
        return 0;
    }
    return 1;
}

// Required: nothing obeys the lines, and nothing ends the loop but the end of the process.
int snDebug(char const*) {
    for (;;)
        do_gets("debug>");
}
