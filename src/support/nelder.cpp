// The search itself: a downhill simplex that walks in a box.
//
// The idea. A simplex of n + 1 points is carried over the cost surface. In each iteration its worst
// point is mirrored through the others; a step that finds a new best point is tried twice as far,
// a step that remains worst is tried half as far, and when that fails too the whole simplex shrinks
// towards its best point. No derivative is needed, only the order of the costs, which suits costs
// with corners and plateaus. Source: J. A. Nelder and R. Mead, "A simplex method for function
// minimization", The Computer Journal 7(4), 1965, pages 308 to 313.
//
// Where this variant departs from the publication:
//  - The search is bounded. Each coordinate of a reflected, expanded or contracted point is clipped
//    to the box; the publication keeps constraints by giving a very large cost outside, which
//    spends an evaluation to learn no more than that a point is outside. The first points and the
//    reduction are not clipped: the one would lose its shape, and the other makes convex
//    combinations, which stay inside when the simplex was.
//  - An expanded point is accepted only when it is better than the reflected one; the publication
//    asks that it be better than the best.
//  - A point of equal cost never displaces another: all comparisons are strict, so that plateaus
//    lead to reduction, and therefore to an end.
//  - The pivot may also be a weighted mean of the better points, or the best point alone; the first
//    simplex may be regular, axial or random.
//  - The stop rule on the costs divides by the number of points, n + 1, where the publication has
//    n; two other rules can be selected, and the number of evaluations is limited.
//
// All evaluations count towards the limit and the reported number, those of the first simplex
// included. The limit is tested once per iteration, so it is exceeded by at most those of one
// iteration, n + 2. Costs that are not numbers lose every comparison: they cannot crash the
// search, and the limit ends it.
#include "support/nelder.h"

#include <algorithm>
#include <climits>

#include "support/host.h"

namespace {

double clip(double value, double lower, double upper) {
    if (value > upper)
        return upper;
    return value < lower ? lower : value;
}

// Places *point* at a * pivot + b * v, clipped to the box, and evaluates it.
int tryPoint(Nelder_search& search, double a, double b, Nelder_point const& v,
             Nelder_point& point) {
    Nelder_problem const& problem = search.problem;
    for (int j = 0; j < problem.n; ++j)
        point.x[j] = clip(a * search.pivot[j] + b * v.x[j], problem.lower[j], problem.upper[j]);
    return Nelder_evalue(search.problem, point);
}

void traceMove(Nelder_search const& search, char const* move) {
    if (search.trace)
        *search.trace << "---> " << move << " \n";
}

void traceSimplex(Nelder_search const& search) {
    if (search.trace)
        Nelder_trace(*search.trace, search.simplex);
}

int accept(Nelder_search& search, Nelder_point& point, char const* move) {
    std::swap(search.simplex.worst(), point);
    traceMove(search, move);
    return 1;
}

int expandOrReflect(Nelder_search& search) {
    if (!Nelder_expansion(search))
        return 0;
    return search.expanded.cost < search.reflected.cost
               ? accept(search, search.expanded, "expansion")
               : accept(search, search.reflected, "reflexion");
}

// A reflected point that is at least better than the worst replaces it first, so that the
// contraction then falls on its side of the pivot.
int contractOrReduce(Nelder_search& search) {
    if (search.reflected.cost < search.simplex.worst().cost)
        accept(search, search.reflected, "reflexion");
    if (!Nelder_contraction(search))
        return 0;
    if (search.contracted.cost < search.simplex.worst().cost)
        return accept(search, search.contracted, "contraction");
    if (!Nelder_reduction(search))
        return 0;
    traceMove(search, "reduction");
    return 1;
}

int moveSimplex(Nelder_search& search) {
    if (!Nelder_reflexion(search))
        return 0;
    if (search.reflected.cost < search.simplex.best().cost)
        return expandOrReflect(search);
    if (search.reflected.cost < search.simplex.secondWorst().cost)
        return accept(search, search.reflected, "reflexion");
    return contractOrReduce(search);
}

// Leaves room for the evaluations of one more iteration, so that the counter cannot overflow.
int evaluationLimit(int n, int factor) {
    long long const limit = static_cast<long long>(n) * factor;
    return static_cast<int>(std::clamp<long long>(limit, 0, INT_MAX - (n + 2LL)));
}

int startSimplex(Nelder_search& search, double const* x) {
    Nelder_options const& options = search.options;
    Nelder_initial(options.initialType, options.initialSize, x, search.problem.lower,
                   search.problem.upper, search.random, search.simplex);
    for (Nelder_point& point : search.simplex.point)
        if (!Nelder_evalue(search.problem, point))
            return 0;
    return 1;
}

// The state in which the search ends. On return the simplex is not sorted.
int iterate(Nelder_search& search) {
    Nelder_options const& options = search.options;
    int const limit = evaluationLimit(search.problem.n, options.maxEvalFactor);
    for (;;) {
        ++search.iterations;
        Nelder_tri_simplexe(search.simplex);
        traceSimplex(search);
        Nelder_pivot(options.pivotType, search.simplex, search.pivot.data());
        if (!moveSimplex(search))
            return NELDER_ERREUR;
        if (Nelder_critere_arret(options.stopType, options.tolCost, options.tolX,
                                 search.range.data(), search.simplex))
            return NELDER_MINIMUM;
        if (search.problem.evaluations >= limit)
            return NELDER_LIMITE;
    }
}

int finish(Nelder_search& search, int state, double* x) {
    Nelder_tri_simplexe(search.simplex);
    traceSimplex(search);
    if (search.trace)
        Nelder_trace_final(*search.trace, state, search.iterations, search.problem.evaluations);
    std::copy(search.simplex.best().x.begin(), search.simplex.best().x.end(), x);
    return state == NELDER_MINIMUM ? search.problem.evaluations : state;
}

// The status to report. *x* changes only when the search ends without an error.
int runSearch(Nelder_search& search, double* x) {
    if (!startSimplex(search, x))
        return NELDER_ERREUR;
    if (search.trace)
        Nelder_trace_initial(*search.trace, search.problem.n);
    int const state = iterate(search);
    return state == NELDER_ERREUR ? state : finish(search, state, x);
}

}  // namespace

int Nelder_evalue(Nelder_problem& problem, Nelder_point& point) {
    int n = problem.n;
    int status = 0;
    problem.constraint = 0;
    ++problem.evaluations;
    point.cost = problem.cost(&n, point.x.data(), problem.lower, problem.upper, problem.p,
                              problem.q, &problem.constraint, &status);
    return status >= 0;
}

Nelder_search::Nelder_search(Nelder_options const& opts, Nelder_problem const& prob,
                             Optim_random& generator, std::ostream* traceStream)
    : options(opts),
      problem(prob),
      random(generator),
      simplex(prob.n),
      range(prob.n),
      pivot(prob.n),
      reflected(simplex.point[0]),
      expanded(simplex.point[0]),
      contracted(simplex.point[0]),
      trace(traceStream) {
    for (int j = 0; j < problem.n; ++j)
        range[j] = problem.upper[j] - problem.lower[j];
}

int Nelder_reflexion(Nelder_search& search) {
    double const alpha = search.options.reflexion;
    return tryPoint(search, 1 + alpha, -alpha, search.simplex.worst(), search.reflected);
}

int Nelder_expansion(Nelder_search& search) {
    double const gamma = search.options.expansion;
    return tryPoint(search, 1 - gamma, gamma, search.reflected, search.expanded);
}

int Nelder_contraction(Nelder_search& search) {
    double const beta = search.options.contraction;
    return tryPoint(search, 1 - beta, beta, search.simplex.worst(), search.contracted);
}

int Nelder_reduction(Nelder_search& search) {
    double const part = 1 / search.options.reduction;
    Nelder_simplex& simplex = search.simplex;
    for (int i = 1; i <= simplex.n; ++i) {
        for (int j = 0; j < simplex.n; ++j)
            simplex.point[i].x[j] = part * simplex.point[i].x[j] + (1 - part) * simplex.best().x[j];
        if (!Nelder_evalue(search.problem, simplex.point[i]))
            return 0;
    }
    return 1;
}

void Nelder_optimisation(Nelder_options const& options, Optim_random& random, std::ostream* trace,
                         Nelder_cost cost, int* n, double* x, double* lower, double* upper,
                         double* p, int* q, int* status) {
    if (*n < 1) {
        *status = NELDER_ERREUR;
        return;
    }
    Nelder_search search(options, {cost, *n, lower, upper, p, q}, random, trace);
    *status = runSearch(search, x);
}

void Nelder_minimise(Host& host, Optim_random& random, Nelder_cost cost, int* n, double* x,
                     double* lower, double* upper, double* p, int* q, int* status) {
    if (*n < 1) {
        *status = NELDER_ERREUR;
        return;
    }
    Nelder_options options = Nelder_default_options();
    host.optimiserOptions(options);
    std::shared_ptr<std::ostream> const trace =
        options.trace ? host.optimiserTrace(options) : nullptr;
    Nelder_optimisation(options, random, trace.get(), cost, n, x, lower, upper, p, q, status);
}
