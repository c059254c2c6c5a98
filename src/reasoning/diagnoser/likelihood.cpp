// Histories beside each other, under the rule `likelihood`.
//
// Classic: what a history is divided by is not the sum of what it is compared with. An observation
// divides the likelihood of each history by that of its own outcomes, of which there is one, so
// that all histories that agree become equally likely, whatever they were before; a command step
// reads the state at the line of the scenario, and after the first observation there is none,
// because a line of observations is no step of a history. From there on probabilities stand still,
// and where a sum is 0 they are not-a-number.
//
// Under the rule every step ends with the weights of the histories that are followed: prior, moves
// and likelihood multiplied, each read at the history's own newest step. They are divided by their
// sum, which is Bayes' rule, and the states are scaled with them, so that the next step goes on
// from the posterior and a long run does not come down to zeros. Where the sum is 0 nothing tells
// the histories apart, and they are equal.
#include <cmath>

#include "reasoning/Diagnoser.h"

namespace {

// Of the histories whose weights tell nothing. Each stands for itself from here on.
void makeEqual(TrajectoryMap const& histories) {
    double const share = 1.0 / static_cast<double>(histories.size());
    for (auto const& entry : histories) {
        entry.second->represented = 1.0;
        entry.second->getLastState()->proba = share;
    }
}

}  // namespace

double Diagnoser::weightOf(TrajectoryMap const& histories) {
    double sum = 0.0;
    for (auto const& entry : histories)
        sum += entry.second->weight();
    return sum;
}

void Diagnoser::normalize(TrajectoryMap& histories) {
    double const factor = 1.0 / weightOf(histories);
    if (!std::isnormal(factor))
        makeEqual(histories);
    else
        for (auto const& entry : histories)
            entry.second->scaleProbas(factor);
    TrajectoryMap ordered;
    for (auto& entry : histories) {
        double const proba = entry.second->weight();
        entry.second->proba = proba;
        ordered.emplace(proba, std::move(entry.second));
    }
    histories = std::move(ordered);
}
