// Sine and cosine of numbers and intervals.
//
// Over an interval the bounds are searched, not worked out from the period: the bounded simplex of
// Nelder and Mead (support/nelder.h, with the publication) runs from the middle once for the
// minimum and once for the maximum. It is a local search, and keeps its tolerances, so over more
// than half a period the bounds found may be narrower than the true ones. Rejected: the exact
// bounds from the period. They would give other coefficients, and so other predictions, than those
// that recorded runs were made with.

#include <algorithm>
#include <cmath>

#include "continuous/engine.h"

namespace {

double costOf(double value, double const* p, int* status) {
    *status = 0;
    return p[0] == 0.0 ? value : -value;
}

// The cost at the point where the search ends; side is what the cost reads as p[0]. How the search
// ended does not matter: also at its limit it leaves its best point. Bounds in the wrong order are
// handed on as they stand.
double searchCost(s_engine& engine, Nelder_cost cost, range const& box, double side) {
    int n = 1, constraint = 0, status = 0;
    double lower = box.inf, upper = box.sup;
    double x = 0.5 * (lower + upper);
    Nelder_minimise(engine.host, engine.random, cost, &n, &x, &lower, &upper, &side, nullptr,
                    &status);
    return cost(&n, &x, &lower, &upper, &side, nullptr, &constraint, &status);
}

void searchBounds(s_engine& engine, Nelder_cost cost, range* r) {
    double const low = searchCost(engine, cost, *r, 0.0);
    double const high = -searchCost(engine, cost, *r, 1.0);
    r->inf = std::min(low, high);
    r->sup = std::max(low, high);
}

}  // namespace

double sin_cost(int*, double* x, double*, double*, double* p, int*, int*, int* status) {
    return costOf(std::sin(x[0]), p, status);
}

double cos_cost(int*, double* x, double*, double*, double* p, int*, int*, int* status) {
    return costOf(std::cos(x[0]), p, status);
}

void sn_sinObjet(s_engine& engine, s_Objet* a) {
    if (isReal(*a)) {
        a->real = std::sin(a->real);
    } else if (isRange(*a)) {
        engine.sin_cost_ptr = sin_cost;
        searchBounds(engine, engine.sin_cost_ptr, &a->rng);
    }
}

void sn_cosObjet(s_engine& engine, s_Objet* a) {
    if (isReal(*a)) {
        a->real = std::cos(a->real);
    } else if (isRange(*a)) {
        engine.cos_cost_ptr = cos_cost;
        searchBounds(engine, engine.cos_cost_ptr, &a->rng);
    }
}
