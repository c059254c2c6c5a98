// What a candidate's history says, and the lines that tell it to the user.
#pragma once

#include <string>
#include <vector>

#include "hybrid/run_state.h"

// A transition that a search put into a history to explain what was seen.
struct Move {
    Transition* transition;
    int step;  // of the history
};

// The moves of a history, idle ones left out, and those that a later turn of the search has
// replaced. In the order of their steps.
std::vector<Move> movesOf(Trajectory const& history);
// Makes what earlier searches put into the history, and is still taken, a part of it: what
// transByTime holds from here on is new.
void settleMoves(Trajectory& history);
// "thermostat on -> stuck_on at 24", or "between 20 and 24" where the date is a range. *placed* is
// the time of the move's step.
std::string summaryOf(Trajectory const& history, Move const& move, double placed);
// The value that the newest state with this variable holds; null when none does.
Atom const* valueOf(Trajectory const& history, StateVar const& variable);
// Whether the history ends in an unknown mode.
bool isLost(Plant const& plant, Trajectory const& history);
// The modes in which the history ends, as one text.
std::string modesOf(Plant const& plant, Trajectory const& history);
// By rank, those in an unknown mode behind their equals, then by probability.
bool isLikelier(Plant const& plant, Trajectory const& a, Trajectory const& b);
// The candidates of a map, the likeliest first; equals in the map's order.
std::vector<hybTrajectory const*> byLikelihood(Plant const& plant, HybMap const& candidates);

// Tells on the error stream what the candidates of a diagnosis say, a line for each, the likeliest
// first.
void tellAnswers(RunState& run, HybMap const& candidates);
