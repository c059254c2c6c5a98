// The parts of the bound search (sorn-runt/search.cpp): search vectors, costs and evaluations. The
// searches themselves are call_nelder_second and call_nelder_obs of sorn-runt.h.
//
// A search vector of the second order has ten entries: the parameters of the rational form, the two
// previous values of the effect, the two cause values, the gain. A static one has two entries per
// counted influence, in the order of the causes: the cause value, then its coefficient. Beside the
// start point stand two arrays of the same shape with the bounds.
//
// The parameter block p of a search: p[0] is the sample period in seconds, p[1] the side, p[2] the
// observed value that the effect has to reach.
#pragma once

#include "continuous/records.h"
#include "support/nelder.h"

constexpr int SECOND_ORDER_DIMENSION = 10;
// Entries of a second-order search vector.
enum : int {
    AT_N1,
    AT_N2,
    AT_D0,
    AT_D1,
    AT_D2,
    AT_Y1,  // the effect one sample back
    AT_Y2,  // and two samples back
    AT_U1,  // the cause one sample back
    AT_U2,  // and two samples back
    AT_GAIN,
};

// The side of a search: the lower bound or the upper one. A cost takes any p[1] but 0.0 as upper.
constexpr double LOW_SIDE = 0.0;
constexpr double HIGH_SIDE = 1.0;

// ---- Search vectors ----

// Entry *i* of the three arrays: the middle of the value, and its bounds. A number sets all three,
// a search dimension of width 0. Anything else leaves them.
void meanCoef(s_Objet const* o, double* start, double* lower, double* upper, int i);

// The parameters of a first-order form: the response time at 2, the gain at 3. No search uses them
// so far, as there is no cost of the first order.
void mean1stOrderCoefs(s_Influence const* influence, double* start, double* lower, double* upper);

// The entries that are parameters of the rational form. 0, with nothing written, when the influence
// is of another form.
int mean2ndOrderCoefs(s_Influence const* influence, double* start, double* lower, double* upper);

// The bounds of an interval become the smaller and the larger of *a* and *b*; its flags stay.
// Anything else stays as it is.
void setNelderResult(s_Objet* o, double a, double b);

// ---- Costs, with the signature of Nelder_cost; *status is set to 0 ----

// The output of the rational form at a point, negated on the upper side.
double opti_second_order(int* n, double* x, double* lower, double* upper, double* p, int* q,
                         int* constraint, int* status);

// The costs of an observed effect: the square of what the effect misses p[2] by, plus the squares
// of what the searched values miss their lower or upper bound by. That of the second order sets
// p[1] to LOW_SIDE.
double opti_static_obs(int* n, double* x, double* lower, double* upper, double* p, int* q,
                       int* constraint, int* status);
double opti_second_order_obs(int* n, double* x, double* lower, double* upper, double* p, int* q,
                             int* constraint, int* status);
// x is the previous effect, the cause and its gain.
double opti_integral_obs(int* n, double* x, double* lower, double* upper, double* p, int* q,
                         int* constraint, int* status);
// No search of the first order exists: 0.0.
double opti_first_order_obs(int* n, double* x, double* lower, double* upper, double* p, int* q,
                            int* constraint, int* status);

// ---- Evaluations ----

// The sum over the active ones of the first *count* causes of *graph*. Loads them through TMP2.
s_Objet opti_static_eval(int count, s_CGraph const* graph, s_runtime* rt);

// *previous* plus the first cause of *graph*, which must have one; the result is also told
// on the engine's out. *count* plays no part.
s_Objet opti_integral_eval(int count, s_CGraph const* graph, s_Objet const* previous,
                           s_runtime* rt);
