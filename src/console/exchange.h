// The data files of a run: one line per time step in, one line per time step out.
//
// Input and measure files hold numbers in the order of the compiled model's lists, the first line
// for time 0; what follows them on a line is skipped. The display file's first line is written at
// the start, the others together at the end, for the candidates that are left.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "continuous/displays.h"
#include "hybrid/tavro-runt.h"

// Further files in the working directory: the logs of the cycles of `detect`, of the steps of a
// discrete run and of all propagations, and what tunes the optimiser.
constexpr char const* cycleBenchmark = "cycbench.bmk";
constexpr char const* stepBenchmark = "bench1.bmk";
constexpr char const* propagationBenchmark = "itmsbench.bmk";
constexpr char const* optimiserOptionsFile = "nelder.dat";

// Streams are open from `init` to the end of the run; null when there is none.
extern std::FILE *dataIn, *measIn, *dataOut, *modesOut;
extern int memFr;  // bytes released of the value arrays

// Each opens the file of a path that is not empty; 1 on success. A file that is open from an
// earlier, failed `init` is closed first.
int prepareEI();
int prepareMS();
int prepareDO();
int prepareMO();
// Loads the scenario; returns 1.
int prepareSc();

// Read one line of *count* values; return 1. What cannot be read leaves its value as it was.
int tavro_getInputs(char const* name, int count, double* values);
int tavro_getMeasures(char const* name, int count, double* values);
// Takes the alarms of a cycle, one entry per measure; returns 1.
int sorn_setAlarms(char const* name, int count, int const* low, int const* high, int const* misb);
// Takes the text of a diagnosis; returns 1.
int sorn_sendDiagnosis(char const* name, char const* text);
// Writes *count* pairs of bounds; returns 1.
int tavro_setDisplays(char const* name, int count, double const* inf, double const* sup);
// Writes the first *rows* rows of every candidate side by side, a line a row.
void writeDispAll(std::FILE* stream, HybMap const& trajectories, int rows);
// The rows of all candidates after some cycle, kept for the case that the next one does not come to
// its end: shared with the candidates until these write into them.
struct KeptRows {
    int rows = 0;   // cycles so far
    int width = 0;  // values in a row
    std::vector<DisplayTable> tables;
};
KeptRows keepRows(HybMap const& trajectories, int rows);
void writeDispAll(std::FILE* stream, KeptRows const& kept);
// Closes a stream; standard output stays open. The pointer becomes null. What could not be written
// is told by the file itself (output_file.h).
void closeStream(std::FILE*& stream);
// Closes every stream of the run.
void closeRunFiles();
