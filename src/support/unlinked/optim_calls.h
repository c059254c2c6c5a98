// The helpers of the optimiser as free functions over bare arrays, and a generator that the whole
// process shares. The names with a trailing underscore are the same functions for callers with the
// Fortran linking convention. No executable links these; see nelder_calls.h.
#pragma once

#include "support/optim.h"

// The generator of the whole process, so that the draws of two searches never repeat each other.
Optim_random& Optim_process_random();

// Its next draw: see Optim_random::draw.
double Optim_ran0(int* seed);
extern "C" double drandom_(int* seed);

// Optim_ran0_place of any *y*. A value that random() cannot give is told on the error stream, and
// selects the nearest entry.
int Optim_ran0_entry(long y);

// Fills *index* with 0 to n - 1, ordered so that values[index[i]] ascends (heap sort: the order of
// equal values is not that of their indices). Nothing when n <= 0.
void Optim_tri_index(int n, double const* values, int* index);

// 1 when lower[i] <= x[i] <= upper[i] for all *n coordinates, also when there are none; else 0.
int iveridom(int const* n, double const* x, double const* lower, double const* upper);
extern "C" int iveridom_(int const* n, double const* x, double const* lower, double const* upper);
