// The measure of bounds that are past use.
#include "hybrid/bounds_watch.h"

#include <algorithm>
#include <cmath>

#include "continuous/sorn-runt.h"

namespace {

constexpr int firstSteps = 10;
constexpr int blindSteps = 10;
constexpr double growth = 4.0;

// What the rounding of a few operations makes of a number. Bounds as thin as that have not grown.
double rounding(double lower, double upper) {
    constexpr double part = 1e-9;
    return std::max(part * (std::fabs(lower) + std::fabs(upper)), part);
}

s_Variable const& measureOf(hybTrajectory const& candidate, std::size_t measure) {
    return *candidate.rt->measure[measure];
}

}  // namespace

bool BoundsWatch::isBlind(Watched& watched, std::size_t measure, HybMap const& candidates,
                          int step) {
    if (s_Objet const& mes = measureOf(*candidates.begin()->second, measure).mes; isValue(mes)) {
        watched.least = std::min(watched.least, sn_infOf(mes));
        watched.greatest = std::max(watched.greatest, sn_infOf(mes));
    }
    double lower = INFINITY;
    double upper = -INFINITY;
    for (auto const& entry : candidates) {
        s_Objet const& bounds = measureOf(*entry.second, measure).old;
        lower = std::min(lower, sn_infOf(bounds));
        upper = std::max(upper, sn_supOf(bounds));
    }
    if (step <= firstSteps) {
        watched.firstWidth = std::max(watched.firstWidth, upper - lower);
        return false;
    }
    return lower <= watched.least && upper >= watched.greatest &&
           upper - lower >= std::max(growth * watched.firstWidth, rounding(lower, upper));
}

std::string BoundsWatch::look(HybMap const& candidates) {
    if (told || candidates.empty() || candidates.begin()->second->rt == nullptr)
        return "";
    hybTrajectory const& first = *candidates.begin()->second;
    ++steps;
    measures.resize(first.rt->measure.size());
    for (std::size_t i = 0; i < measures.size(); ++i) {
        bool const blind = isBlind(measures[i], i, candidates, steps);
        measures[i].blindSteps = blind ? measures[i].blindSteps + 1 : 0;
        if (measures[i].blindSteps < blindSteps)
            continue;
        told = true;
        return measureOf(first, i).nom;
    }
    return "";
}
