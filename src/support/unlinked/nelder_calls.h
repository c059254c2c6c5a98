// The optimiser as a library of its own: calls that read nelder.dat in the working directory, write
// their trace, log and statistics where it says, and share one random generator in the process.
//
// No executable links this folder. The engine searches through Nelder_minimise and its host alone;
// these calls, the lists (listsorn.h) and the memory functions (new_memory.h) are what the engine
// was once built on, kept with their tests for programs that know them by these names. So they may
// do what the engine may not: write on the standard streams, open files, and keep a static state.
//
// opt_nelder is the call for one search, mopt_nelder for several searches from different starts.
// The names with a trailing underscore are the same functions for callers with the Fortran linking
// convention.
#pragma once

#include <cstdio>
#include <memory>

#include "support/nelder.h"

// Nelder_minimise with the options of nelder.dat.
void opt_nelder(Nelder_cost cost, int* n, double* x, double* lower, double* upper, double* p,
                int* q, int* status);
extern "C" void opt_nelder_(Nelder_cost cost, int* n, double* x, double* lower, double* upper,
                            double* p, int* q, int* status);

// Repeats the search *nbRuns times, each with a restart from its own result: the first from *x*,
// the others from points drawn uniformly in the box. x takes the best result, and *status that of
// the last search of the run that gave it. When no run ended, *status is NELDER_LIMITE, and after a
// cost that could not be computed NELDER_ERREUR; x is then as it was.
void mopt_nelder(int* nbRuns, Nelder_cost cost, int* n, double* x, double* lower, double* upper,
                 double* p, int* q, int* status);
extern "C" void mopt_nelder_(int* nbRuns, Nelder_cost cost, int* n, double* x, double* lower,
                             double* upper, double* p, int* q, int* status);

// The defaults, replaced by the values of nelder.dat in the working directory. Nothing is reported
// when that file is missing. It is read again for every search, so that the optimiser can be
// re-tuned without a restart.
void Nelder_init_options(Nelder_options* options);

// The whole search with given options; otherwise as opt_nelder.
void Nelder_optimisation(Nelder_options const* options, Nelder_cost cost, int* n, double* x,
                         double* lower, double* upper, double* p, int* q, int* status);

// A stream that closes itself, unless it is standard output. Null: nothing is to be written.
struct Nelder_ferme {
    void operator()(std::FILE* file) const;
};
typedef std::unique_ptr<std::FILE, Nelder_ferme> Nelder_sortie;

// The stream for an output that is *wanted*: the file *name*, emptied, or standard output when it
// is not to go to a file. A file that cannot be opened is told on the error stream, and standard
// output takes its place.
Nelder_sortie Nelder_ouvre(int wanted, int toFile, char const* name);

// The stream for the trace that the options want, in the same way; null when they want none.
std::shared_ptr<std::ostream> Nelder_ouvre_trace(Nelder_options const& options);
