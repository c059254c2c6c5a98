// Whether the bounds of a run can still tell anything.
//
// A fault is noticed when a measure leaves the bounds of every candidate. Bounds that contain
// whatever has been measured so far in the run notice next to nothing. A measure's bounds are past
// use when, for ten steps in a row, the hull of those of all candidates contains every value that
// the measure has had, and is at least four times as wide as it was at its widest in the first ten
// steps. The second condition keeps a measure that hardly moves from being called unwatched, as
// long as its bounds have not grown; bounds as thin as rounding have not. This is told once per
// run; bounds that shrink again do not take it back.
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "hybrid/hybTrajectory.h"
#include "hybrid/hybrid_candidates.h"

class BoundsWatch {
public:
    // Looks at the candidates of one more step. Answers the measure whose bounds are past use, the
    // first time that there is one; "" otherwise.
    std::string look(HybMap const& candidates);

private:
    struct Watched {
        double least = INFINITY;  // of the values measured
        double greatest = -INFINITY;
        double firstWidth = 0.0;  // the widest bounds of the first steps
        int blindSteps = 0;       // in a row
    };
    static bool isBlind(Watched& watched, std::size_t measure, HybMap const& candidates, int step);

    std::vector<Watched> measures;
    int steps = 0;
    bool told = false;
};
