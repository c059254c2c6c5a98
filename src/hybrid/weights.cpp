// The weights of the candidates of a long run, under the rule `likelihood`.
//
// The weight of a history is the product of the probabilities of all its moves. After some twenty
// thousand switches of a thermostat it is 0, and then nothing tells one answer from another.
// Weights count beside each other alone, so they are lifted together once the heaviest has become
// small, by a power of two, which changes no digit of any. Candidates that were dropped, and that a
// later diagnosis may take up again, are lifted with them.
#include <algorithm>
#include <cmath>

#include "hybrid/tavro-runt.h"

namespace {

// Far from where numbers lose digits, at some 1e-308, also for a candidate that weighs a thousandth
// of the heaviest many times over.
constexpr double small = 0x1p-400;

double weightOf(hybTrajectory const& candidate) {
    return candidate.traj->getLastState()->proba;
}

double heaviestOf(RunState const& run) {
    double heaviest = 0.0;
    for (auto const& entry : run.tracked_trajs)
        heaviest = std::max(heaviest, weightOf(*entry.second));
    return heaviest;
}

}  // namespace

void liftWeights(RunState& run) {
    double const heaviest = run.rules.likelihood ? heaviestOf(run) : 0.0;
    if (heaviest <= 0.0 || heaviest >= small)
        return;
    // Of the smallest numbers the inverse is too large for one.
    constexpr int farthest = 1000;
    double const factor = std::ldexp(1.0, std::min(-std::ilogb(heaviest), farthest));
    for (auto const& entry : run.tracked_trajs)
        entry.second->traj->scaleProbas(factor);
    for (RunState::Dropped const& dropped : run.dropped)
        dropped.candidate->traj->scaleProbas(factor);
}
