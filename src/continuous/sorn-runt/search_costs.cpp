// The costs that the bound search minimises, and their entry into the engine.
//
// All of them are pure functions of their arguments, but for the side that opti_second_order_obs
// resets. An observed effect is not a constraint of the optimiser: it enters the cost as a
// quadratic penalty of the same weight as the distances from the bounds. Hence a result explains
// the measure only nearly, and the caller has to test it.

#include <cassert>
#include <cmath>

#include "continuous/search.h"
#include "continuous/sorn-runt.h"

void init_nelder(s_engine& engine) {
    engine.opti_static_obs_ptr = opti_static_obs;
    engine.opti_integral_obs_ptr = opti_integral_obs;
    engine.opti_first_order_obs_ptr = opti_first_order_obs;
    engine.opti_second_order_ptr = opti_second_order;
    engine.opti_second_order_obs_ptr = opti_second_order_obs;
}

namespace {

double square(double x) {
    return x * x;
}

// The bounds that the searched values are pulled to.
double const* boundsOfSide(double const* lower, double const* upper, double const* p) {
    return p[1] != LOW_SIDE ? upper : lower;
}

}  // namespace

// The recursion of dynamic_coefs.cpp for the rational form, with one set of parameters in all four
// coefficients: that is what makes its extremes tighter than those of independent coefficients.
double opti_second_order(int*, double* x, double*, double*, double* p, int*, int*, int* status) {
    double const Ts = p[0];
    assert(p[1] == LOW_SIDE || p[1] == HIGH_SIDE);
    double const alpha = x[AT_D1] / (2 * x[AT_D2]);
    double const beta = std::sqrt(x[AT_D0] / x[AT_D2] - alpha * alpha);
    double const E = std::exp(-alpha * Ts);
    double const E2 = std::exp(-(x[AT_D1] / x[AT_D2]) * Ts);
    double const c = std::cos(beta * Ts);
    double const s = std::sin(beta * Ts);
    double const Q = x[AT_N1] / x[AT_D0];
    double const P = (x[AT_N2] / (beta * x[AT_D2])) * E * s;
    double const R = (alpha / beta) * E * s;
    double const value = 2 * E * c * x[AT_Y1] - E2 * x[AT_Y2] +
                         ((1 - c * E - R) * Q + P) * x[AT_GAIN] * x[AT_U1] +
                         ((R + E2 - c * E) * Q - P) * x[AT_GAIN] * x[AT_U2];
    *status = 0;
    return p[1] == LOW_SIDE ? value : -value;
}

// Required: the side goes back to low in the parameter block itself, after the first evaluation of
// a search has read it. So a search for the upper side pulls to the upper bounds in that evaluation
// alone, and the output below is never negated.
double opti_second_order_obs(int* n, double* x, double* lower, double* upper, double* p, int* q,
                             int* constraint, int* status) {
    double const* bounds = boundsOfSide(lower, upper, p);
    double sum = 0.0;
    for (int i = AT_Y1; i <= *n - 2; ++i)
        sum += square(x[i] - bounds[i]);
    p[1] = LOW_SIDE;
    double const y = opti_second_order(n, x, lower, upper, p, q, constraint, status);
    return square(p[2] - y) + sum;
}

double opti_static_obs(int* n, double* x, double* lower, double* upper, double* p, int*, int*,
                       int* status) {
    double const* bounds = boundsOfSide(lower, upper, p);
    double sum = 0.0, acc = 0.0;
    assert(*n % 2 == 0);  // pairs of a value and its coefficient
    for (int i = 0; i < *n; i += 2) {
        sum += square(x[i] - bounds[i]);
        acc -= x[i + 1] * x[i];
    }
    *status = 0;
    return square(p[2] + acc) + sum;
}

double opti_integral_obs(int*, double* x, double* lower, double* upper, double* p, int*, int*,
                         int* status) {
    double const* bounds = boundsOfSide(lower, upper, p);
    *status = 0;
    return square(x[0] - bounds[0]) + square(x[1] - bounds[1]) +
           square(p[2] - (x[2] * x[1] + x[0]));
}

double opti_first_order_obs(int*, double*, double*, double*, double*, int*, int*, int* status) {
    *status = 0;
    return 0.0;
}
