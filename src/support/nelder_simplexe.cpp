// The geometry of the simplex: its first points, its order, its pivot and the rules that stop a
// search. Nothing here evaluates a cost.
#include <algorithm>
#include <cassert>
#include <cmath>

#include "support/nelder.h"
#include "support/optim.h"

namespace {

struct Start {
    double const* x;
    double const* lower;
    double const* upper;
    int n;
    double size;
    Optim_random& random;
    int seed = 0;  // the generator takes it at its first draw only
};

// Offsets, as fractions of the range, of a regular simplex with one corner at the start. Point i
// lies at `own` along axis i and at `other` along every axis else; all edges are sqrt(2) * size.
struct Regular {
    double own;
    double other;
};

Regular regularOffsets(int n, double size) {
    double const root = std::sqrt(n + 1.0);
    return {(root + n - 1) * size / n, (root - 1) * size / n};
}

double regularCoordinate(Start const& start, int i, int j) {
    Regular const offset = regularOffsets(start.n, start.size);
    double const range = start.upper[j] - start.lower[j];
    return start.x[j] + range * (j == i - 1 ? offset.own : offset.other);
}

double axialCoordinate(Start const& start, int i, int j) {
    double const range = start.upper[j] - start.lower[j];
    return j == i - 1 ? start.x[j] + range * start.size : start.x[j];
}

double uniformCoordinate(Start& start, int j) {
    double const range = start.upper[j] - start.lower[j];
    return start.lower[j] + range * start.random.draw(&start.seed);
}

double aroundCoordinate(Start& start, int j) {
    double const range = start.upper[j] - start.lower[j];
    return start.x[j] + (start.random.draw(&start.seed) - 0.5) * range * start.size;
}

double initialCoordinate(int type, Start& start, int i, int j) {
    switch (type) {
        case 2:
            return axialCoordinate(start, i, j);
        case 3:
            return uniformCoordinate(start, j);
        case 4:
            return aroundCoordinate(start, j);
        default:
            return regularCoordinate(start, i, j);
    }
}

void meanPivot(Nelder_simplex const& simplex, double* pivot) {
    for (int j = 0; j < simplex.n; ++j) {
        double sum = 0.0;
        for (int i = 0; i < simplex.n; ++i)
            sum += simplex.point[i].x[j];
        pivot[j] = sum / simplex.n;
    }
}

double weightOf(Nelder_simplex const& simplex, int i) {
    return simplex.point[simplex.n].cost - simplex.point[i].cost;
}

// Costs that are all equal, infinite or not numbers give no weights; then the plain mean stands
// in, so that no point without a value is ever made.
void weightedPivot(Nelder_simplex const& simplex, double* pivot) {
    double weights = 0.0;
    for (int i = 0; i < simplex.n; ++i)
        weights += weightOf(simplex, i);
    if (!(weights > 0.0) || !std::isfinite(weights))
        return meanPivot(simplex, pivot);
    for (int j = 0; j < simplex.n; ++j) {
        double sum = 0.0;
        for (int i = 0; i < simplex.n; ++i)
            sum += weightOf(simplex, i) * simplex.point[i].x[j];
        pivot[j] = sum / weights;
    }
}

double meanCost(Nelder_simplex const& simplex) {
    double sum = 0.0;
    for (Nelder_point const& point : simplex.point)
        sum += point.cost;
    return sum / (simplex.n + 1);
}

bool deviationBelow(double tolCost, Nelder_simplex const& simplex) {
    double const mean = meanCost(simplex);
    double sum = 0.0;
    for (Nelder_point const& point : simplex.point)
        sum += (point.cost - mean) * (point.cost - mean);
    return std::sqrt(sum / (simplex.n + 1)) < tolCost;
}

// Required: the differences are truncated to whole numbers before they are compared, so that
// differences under 1 count as 0. Whoever selects this rule scales the cost for it.
bool costsWithin(double tolCost, Nelder_simplex const& simplex) {
    double const mean = meanCost(simplex);
    return std::all_of(simplex.point.begin(), simplex.point.end(), [&](Nelder_point const& point) {
        return std::fabs(std::trunc(point.cost - mean)) <= tolCost;
    });
}

void fillCentre(Nelder_simplex& simplex) {
    for (int j = 0; j < simplex.n; ++j) {
        double sum = 0.0;
        for (Nelder_point const& point : simplex.point)
            sum += point.x[j];
        simplex.centre[j] = sum / (simplex.n + 1);
    }
}

bool pointsWithin(double tolX, double const* range, Nelder_simplex& simplex) {
    fillCentre(simplex);
    return std::all_of(simplex.point.begin(), simplex.point.end(), [&](Nelder_point const& point) {
        return Optim_longvec_norm(simplex.n, simplex.centre.data(), point.x.data(), range) <= tolX;
    });
}

}  // namespace

Nelder_simplex::Nelder_simplex(int dimension)
    : n(dimension),
      point(dimension + 1, Nelder_point{std::vector<double>(dimension), 0.0}),
      centre(dimension) {}

int Nelder_verifie_simplexe(Nelder_simplex const& simplex) {
    auto const& point = simplex.point;
    size_t const n = simplex.n;
    if (simplex.n < 1 || point.size() != n + 1)
        return 0;
    for (size_t i = 0; i <= n; ++i)
        if (point[i].x.size() != n || (i > 0 && point[i].cost < point[i - 1].cost))
            return 0;
    return 1;
}

void Nelder_initial(int type, double size, double const* x, double const* lower,
                    double const* upper, Optim_random& random, Nelder_simplex& simplex) {
    Start start = {x, lower, upper, simplex.n, size, random};
    std::copy(x, x + simplex.n, simplex.point[0].x.begin());
    for (int i = 1; i <= simplex.n; ++i)
        for (int j = 0; j < simplex.n; ++j)
            simplex.point[i].x[j] = initialCoordinate(type, start, i, j);
}

// An insertion sort, because from one iteration to the next mostly a single point is out of place.
void Nelder_tri_simplexe(Nelder_simplex& simplex) {
    for (int i = 1; i <= simplex.n; ++i)
        for (int j = i; j > 0 && simplex.point[j - 1].cost > simplex.point[j].cost; --j)
            std::swap(simplex.point[j - 1], simplex.point[j]);
    assert(Nelder_verifie_simplexe(simplex));
}

void Nelder_pivot(int type, Nelder_simplex const& simplex, double* pivot) {
    switch (type) {
        case 2:
            return weightedPivot(simplex, pivot);
        case 3:
            std::copy(simplex.point[0].x.begin(), simplex.point[0].x.end(), pivot);
            return;
        default:
            return meanPivot(simplex, pivot);
    }
}

int Nelder_critere_arret(int type, double tolCost, double tolX, double const* range,
                         Nelder_simplex& simplex) {
    switch (type) {
        case 1:
            return deviationBelow(tolCost, simplex);
        case 2:
            return costsWithin(tolCost, simplex);
        case 3:
            return pointsWithin(tolX, range, simplex);
        default:
            return 0;
    }
}
