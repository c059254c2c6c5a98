// What a user is told of the candidates of a run.
#pragma once

#include <functional>
#include <vector>

#include "hybrid/run_state.h"
#include "tavro/tavro.hpp"

// A candidate of a hybrid or of a discrete run, for as long as the run is not stepped.
struct CandidateView {
    Trajectory const* history;
    s_runtime const* runtime;  // null in a discrete run
};

// The time of a step of a history.
using TimeOfStep = std::function<double(Trajectory const& history, int step)>;

// Of a hybrid run by rank, those in an unknown mode behind their equals, and otherwise in the order
// of the run; of a discrete one in its order, which is that of probability.
std::vector<CandidateView> candidatesOf(RunState const& run);

tavro::Candidate describe(Plant const& plant, CandidateView const& candidate, bool detecting,
                          TimeOfStep const& timeOfStep);

// What the candidates misbehave in: each measure and side once, in the order of the measures.
std::vector<tavro::Alarm> alarmsOf(std::vector<CandidateView> const& candidates);

// The transitions that a search put into the histories, candidate by candidate.
std::vector<tavro::Explanation> explanationsOf(std::vector<CandidateView> const& candidates,
                                               TimeOfStep const& timeOfStep);

// The steps of a history that its window still holds.
std::vector<tavro::HistoryStep> stepsOf(Trajectory const& history, TimeOfStep const& timeOfStep);
