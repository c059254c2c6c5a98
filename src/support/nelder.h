// A bounded downhill-simplex minimiser with options of its own and a French trace; the idea, its
// source and the variant are told at the head of nelder.cpp.
//
// Nelder_minimise is the call for one search as the host of a run wants it. Below it stand the
// steps that it is made of. Points are arrays of n doubles; the box is the two arrays lower and
// upper, with lower[i] <= upper[i]. All pointers are borrowed for the length of the call. Nothing
// here has a state of its own, opens a file or writes on a stream that it was not given.
#pragma once

#include <istream>
#include <ostream>
#include <vector>

#include "support/optim.h"

class Host;

// The cost at *x* of the given box. *p* and *q* are those of the call of the search. The function
// sets *status, negative when the cost could not be computed, and *constraint, negative when the
// constraints are violated at this point; both are 0 beforehand.
typedef double (*Nelder_cost)(int* n, double* x, double* lower, double* upper, double* p, int* q,
                              int* constraint, int* status);

// How a search ended. A search that reached its minimum reports the number of its evaluations
// instead of NELDER_MINIMUM.
constexpr int NELDER_MINIMUM = 0;
constexpr int NELDER_LIMITE = -1;   // the limit on evaluations was reached
constexpr int NELDER_ERREUR = -99;  // a cost could not be computed, or the dimension is below 1

// Minimises *cost* in the box, from *x*, with the options that the host wants, and traces on the
// stream that the host gives for a trace. On return x holds the best point found, and *status the
// number of evaluations, or NELDER_LIMITE. With *status NELDER_ERREUR, x is as it was.
void Nelder_minimise(Host& host, Optim_random& random, Nelder_cost cost, int* n, double* x,
                     double* lower, double* upper, double* p, int* q, int* status);

constexpr int NELDER_NAME_SIZE = 80;  // bytes of a file name, with its terminating zero

struct Nelder_options {
    int trace;        // non-zero: trace of each search
    int traceToFile;  // non-zero: to traceFile, else to standard output; so for the pairs below
    char traceFile[NELDER_NAME_SIZE];
    int optLog;  // non-zero: log of each run of a search from several starts
    int optLogToFile;
    char optLogFile[NELDER_NAME_SIZE];
    int stats;  // non-zero: statistics of such searches
    int statsToFile;
    char statsFile[NELDER_NAME_SIZE];
    double reflexion;    // alpha
    double contraction;  // beta
    double expansion;    // gamma
    double reduction;    // rho, the divisor of the distances to the best point
    int initialType;     // kind of initial simplex, see Nelder_initial
    double initialSize;  // its size, as a fraction of the range of each coordinate
    int pivotType;       // see Nelder_pivot
    int stopType;        // see Nelder_critere_arret
    double tolCost;
    double tolX;        // in fractions of the range of each coordinate
    int maxEvalFactor;  // the limit on evaluations is this times the dimension
};

Nelder_options Nelder_default_options();

// Replaces *options* by the values of a text in the form of nelder.dat. An option that the text
// lacks, or whose line does not hold a value of its type, stays.
void Nelder_read_options(std::istream& text, Nelder_options& options);

struct Nelder_point {
    std::vector<double> x;
    double cost;  // meaningless until Nelder_evalue has filled it
};

// Invariants:
//  1. n >= 1, and there are n + 1 points of n coordinates each.
//  2. After Nelder_tri_simplexe no point is followed by one of strictly smaller cost, so the best
//     point has index 0 and the worst index n.
struct Nelder_simplex {
    explicit Nelder_simplex(int dimension);

    int n;
    std::vector<Nelder_point> point;  // swapped with each other and with work points, never copied
    std::vector<double> centre;       // scratch of Nelder_critere_arret

    Nelder_point& best() { return point.front(); }
    Nelder_point& worst() { return point.back(); }
    Nelder_point& secondWorst() { return point[n - 1]; }
};

// 1 when the invariants hold, with the order of invariant 2; else 0.
int Nelder_verifie_simplexe(Nelder_simplex const& simplex);

// What is minimised, and the account of its evaluations.
struct Nelder_problem {
    Nelder_cost cost;
    int n;
    double* lower;
    double* upper;
    double* p;
    int* q;
    int evaluations = 0;
    int constraint = 0;  // as set by the last evaluation
};

// Fills the cost of *point*. 1, or 0 when the cost could not be computed.
int Nelder_evalue(Nelder_problem& problem, Nelder_point& point);

// The state of one search.
struct Nelder_search {
    // *trace* may be null: nothing is traced.
    Nelder_search(Nelder_options const& options, Nelder_problem const& problem,
                  Optim_random& random, std::ostream* trace);

    Nelder_options const& options;
    Nelder_problem problem;
    Optim_random& random;
    Nelder_simplex simplex;
    std::vector<double> range;  // upper - lower
    std::vector<double> pivot;  // filled by Nelder_pivot in each iteration
    // Work points: filled by the step of their name, and meaningless before it. A step that is
    // accepted swaps its work point with the worst point.
    Nelder_point reflected;
    Nelder_point expanded;
    Nelder_point contracted;
    std::ostream* trace;
    int iterations = 0;
};

// The whole search with given options and trace, which may be null; otherwise as Nelder_minimise.
void Nelder_optimisation(Nelder_options const& options, Optim_random& random, std::ostream* trace,
                         Nelder_cost cost, int* n, double* x, double* lower, double* upper,
                         double* p, int* q, int* status);

// Places the points of a new simplex, without their costs: point 0 is *x*; the others, by *type*:
// 1 a regular simplex, 2 one step along each axis, 3 uniform in the box, 4 uniform around x; any
// other type counts as 1. *size* is a fraction of the ranges. Required: the points are not clipped
// to the box, so that the simplex keeps its shape at a border.
void Nelder_initial(int type, double size, double const* x, double const* lower,
                    double const* upper, Optim_random& random, Nelder_simplex& simplex);

// Sorts by increasing cost; points of equal cost keep their order.
void Nelder_tri_simplexe(Nelder_simplex& simplex);

// The point that the worst one is moved through, by *type*: 1 the mean of the other points, 2 their
// mean weighted by how much they are better than the worst, 3 the best point; any other type
// counts as 1. The simplex must be sorted. *pivot* has room for n doubles.
void Nelder_pivot(int type, Nelder_simplex const& simplex, double* pivot);

// The moves. Each needs a sorted simplex, except that contraction and reduction allow a new worst
// point; the first three fill and evaluate their work point and leave the simplex alone, the last
// one moves and evaluates every point but the best. 1, or 0 when a cost could not be computed.
int Nelder_reflexion(Nelder_search& search);
int Nelder_expansion(Nelder_search& search);
int Nelder_contraction(Nelder_search& search);
int Nelder_reduction(Nelder_search& search);

// 1 when the search may stop, else 0, by *type*: 1 the standard deviation of the costs is below
// *tolCost*; 2 every cost is within tolCost of their mean; 3 every point is within *tolX* of the
// centre, distances being scaled by *range*. Never with another type.
int Nelder_critere_arret(int type, double tolCost, double tolX, double const* range,
                         Nelder_simplex& simplex);

// The parts of the trace: the header for *n* coordinates, the points from worst to best, and the
// account of a search that ended with *state*.
void Nelder_trace_initial(std::ostream& trace, int n);
void Nelder_trace(std::ostream& trace, Nelder_simplex const& simplex);
void Nelder_trace_final(std::ostream& trace, int state, int iterations, int evaluations);
