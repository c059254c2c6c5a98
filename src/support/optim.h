// Small helpers of the optimiser: a random generator, an index sort, a scaled distance and a test
// for the box of admissible points.
//
// Vectors are bare arrays of *n* doubles that the caller owns. The names with a trailing underscore
// are the same functions for callers with the Fortran linking convention.
#pragma once

// A uniform double in [0, 1): a shuffled generator over the library's random(), after W. H. Press,
// B. P. Flannery, S. A. Teukolsky and W. T. Vetterling, "Numerical Recipes in C", Cambridge
// University Press, 1988, section 7.1 (ran0, the shuffle of Bays and Durham).
// A negative *seed, or the first call of the process, restarts random() from *seed and sets *seed
// to 1; otherwise *seed takes no part. The generator's state survives across calls.
double Optim_ran0(int* seed);

// Size of the generator's table; its entries are numbered from 1.
constexpr int OPTIM_RAN0_TABLE = 97;

// The entry of the table, 1 to OPTIM_RAN0_TABLE, that the value *y* of random() selects. A value
// that random() cannot give is told on the error stream, and selects the nearest entry.
int Optim_ran0_entry(long y);

extern "C" double drandom_(int* seed);

// Fills *index* with 0 to n - 1, ordered so that values[index[i]] ascends (heap sort: the order of
// equal values is not that of their indices). Nothing when n <= 0.
void Optim_tri_index(int n, double const* values, int* index);

// The square root of the sum of ((b[i] - a[i]) / scale[i])^2 over the i with scale[i] > 0; the
// other coordinates, whose range is empty, are ignored.
double Optim_longvec_norm(int n, double const* a, double const* b, double const* scale);

// 1 when lower[i] <= x[i] <= upper[i] for all *n coordinates, also when there are none; else 0.
int iveridom(int const* n, double const* x, double const* lower, double const* upper);
extern "C" int iveridom_(int const* n, double const* x, double const* lower, double const* upper);
