// The console: its globals, its line reader, its command table and its loop.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "hybrid/run_state.h"
#include "run/plant_source.h"

// ---- Globals ----

extern int done;        // set by `quit`: the loop ends
extern char* ligne;     // the current input line, owned by the reader; null at end of input
extern bool discrete;   // the model has no continuous side
extern bool disc_init;  // `init` has run for a discrete model, and `disc` has not yet used it

// Where inputs and scenarios are, and measures. Without a scenario the prefix is all of its path.
constexpr char const* inputPrefix = "inp/";
constexpr char const* measurePrefix = "obs/";
// Paths of the data files. Each begins as the prefix of its directory; modesFile has none.
extern std::string inputFile, scenarFile, measureFile, displayFile, modesFile;
extern std::string auxFile;  // base name of the program

// The plant of the program and its one run: built at start-up, and released on every way out.
extern std::unique_ptr<Plant> consolePlant;
extern std::unique_ptr<RunState> consoleRun;

// ---- Commands ----

// A handler takes the text after the command word, or null; the loop ignores its result.
using CommandHandler = int (*)(char const* argument);

struct snCom {
    char const* name;  // null ends a table
    CommandHandler func;
    char const* doc;  // help text without its final full stop
};

extern snCom const cde[];

// Commands of the debug console. Required: nothing looks them up, since that console only reads.
extern snCom const dde[];

// The last record of exactly that name, or null: no abbreviations.
snCom const* whichCom(snCom const* table, char const* word);
// Lists the commands that begin with *arg*, or all names when there is none.
void printHelp(char const* arg);

int snQuit(char const* arg);
int snHelp(char const* arg);
int snComment(char const* arg);

// The handlers of dde: each does nothing and returns 1.
int deExit(char const* arg);
int deHelp(char const* arg);
int dePrint(char const* arg);

// ---- Reading and running ----

// Makes the first, empty line.
void ligneInit();
// Reads a line into `ligne` and into the history; null at end of input, after a short sleep. Lines
// are edited at a terminal only.
char* do_gets(char const* prompt);
// Removes white space at both ends, in place. Required: the first character is never removed from
// the end.
void stripWhite(char* text);
// Obeys one line.
void obeyLine(char* line);
// Obeys lines until `quit`, or until a signal wants the program to end.
void runConsole();

// ---- Start-up (start.cpp) ----

// Builds the plant, reads the command line, and says what it took.
void startConsole(PlantSource const& source, int argc, char** argv);
// The whole program around one plant: start-up, commands until `quit`, the end of the
// process. A run that cannot go on ends it too, with the status of the reason.
[[noreturn]] void runExecutive(PlantSource const& source, int argc, char** argv);
