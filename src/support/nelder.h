// A bounded downhill-simplex minimiser with its own options file and its own French trace; the
// idea, its source and the variant are told at the head of nelder.cpp.
//
// opt_nelder is the call for one search, mopt_nelder for several searches from different starts.
// Below them stand the steps that these are made of. Points are arrays of n doubles; the box is
// the two arrays lower and upper, with lower[i] <= upper[i]. All pointers are borrowed for the
// length of the call. The names with a trailing underscore are the same functions for callers with
// the Fortran linking convention.
#pragma once

#include <cstdio>
#include <memory>
#include <vector>

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

// Minimises *cost* in the box, from *x*, with the options of nelder.dat in the working directory.
// On return x holds the best point found, and *status the number of evaluations, or NELDER_LIMITE.
// With *status NELDER_ERREUR, x is as it was.
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

constexpr int NELDER_NAME_SIZE = 80;  // bytes of a file name, with its terminating zero

struct Nelder_options {
    int trace;        // non-zero: trace of each search
    int traceToFile;  // non-zero: to traceFile, else to standard output; so for the pairs below
    char traceFile[NELDER_NAME_SIZE];
    int optLog;  // non-zero: log of each run of mopt_nelder
    int optLogToFile;
    char optLogFile[NELDER_NAME_SIZE];
    int stats;  // non-zero: statistics of mopt_nelder
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

// The defaults, replaced by the values of nelder.dat in the working directory. Nothing is reported
// when that file is missing; an option that it lacks, or whose line does not hold a value of its
// type, keeps the default.
void Nelder_init_options(Nelder_options* options);

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

// A stream that closes itself, unless it is standard output. Null: nothing is to be written.
struct Nelder_ferme {
    void operator()(std::FILE* file) const;
};
typedef std::unique_ptr<std::FILE, Nelder_ferme> Nelder_sortie;

// The stream for an output that is *wanted*: the file *name*, emptied, or standard output when it
// is not to go to a file. A file that cannot be opened is told on the error stream, and standard
// output takes its place.
Nelder_sortie Nelder_ouvre(int wanted, int toFile, char const* name);

// The state of one search.
struct Nelder_search {
    Nelder_search(Nelder_options const& options, Nelder_problem const& problem);

    Nelder_options const& options;
    Nelder_problem problem;
    Nelder_simplex simplex;
    std::vector<double> range;  // upper - lower
    std::vector<double> pivot;  // filled by Nelder_pivot in each iteration
    // Work points: filled by the step of their name, and meaningless before it. A step that is
    // accepted swaps its work point with the worst point.
    Nelder_point reflected;
    Nelder_point expanded;
    Nelder_point contracted;
    Nelder_sortie trace;
    int iterations = 0;
};

// The whole search with given options; otherwise as opt_nelder.
void Nelder_optimisation(Nelder_options const* options, Nelder_cost cost, int* n, double* x,
                         double* lower, double* upper, double* p, int* q, int* status);

// Places the points of a new simplex, without their costs: point 0 is *x*; the others, by *type*:
// 1 a regular simplex, 2 one step along each axis, 3 uniform in the box, 4 uniform around x; any
// other type counts as 1. *size* is a fraction of the ranges. Required: the points are not clipped
// to the box, so that the simplex keeps its shape at a border.
void Nelder_initial(int type, double size, double const* x, double const* lower,
                    double const* upper, Nelder_simplex& simplex);

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
void Nelder_trace_initial(std::FILE* trace, int n);
void Nelder_trace(std::FILE* trace, Nelder_simplex const& simplex);
void Nelder_trace_final(std::FILE* trace, int state, int iterations, int evaluations);
