// Rule `dates`: a failure is dated by a range of steps.
//
// The classic way. The search places a failure at the one step of the discrete history where its
// guard fits. The candidate's runtime is moved back to that step, changed over, and replayed up to
// now, without a look at the measures and without a discrete step.
//
// What goes wrong. A history has a step only where something happened that the plant knows of, and
// candidates that were merged had that step at different times, of which one is kept. So the date
// is one among many, and mostly too late. The runtime is moved back one cycle too far besides, and
// what happened to the rest of the plant after the failure is not repeated. The bounds that are
// followed from there are those of another run than the one that is watched.
//
// What this does. Every cycle of the window at which the failure was possible is tried: the mode
// that it leaves was one in which the candidate, or one merged into it, may have been; the
// conditions of its guard could hold by the bounds of that time; and every measure was still inside
// its bounds. From there the run itself is run again, with the inputs, measures and commands of the
// past: with splits, discrete steps and the check of every measure. A start that loses all its
// candidates by the alarm threshold on the way disagrees with what was measured, and is no date.
// What the others lead to is merged where it is the same, so that the bounds cover every date that
// agrees; the range of these dates is the answer.
//
// Why it is sound. The truth is one of the starts that are tried, as long as the failure is the
// true one and lies within the window, and then it is never dropped but by the same check that
// raises alarms; the union covers it.
//
// Of several new failures the first is tried at every date; the others come where the search placed
// them, or with the first where that is later, and so do earlier diagnosed failures of the
// candidate that a start goes back behind. A start from which a state is reached in which a run
// cannot go on is no date either. Where a mode can be lost in several ways, all are tried: the
// search gives histories that end alike as one answer, and names the likeliest.
//
// A candidate that has switched at one time and no longer agrees is dropped as long as another one
// does. When all are lost later, the failure may have come where the dropped one switched, in place
// of its switching; so the latest dropped ones are kept for a while, and the failures that explain
// the others are tried at the step of theirs, too.
//
// An explanation without a failure is a history that the run has followed, and lost, already; or
// one in which somebody gave a command that was not told. All that is commanded is told to a run,
// and such a history would come before every failure by its rank, though it takes one step that
// nobody has seen. So these are followed, from the step where the search placed them and as the
// classic way does, only when no date of any failure agrees.
#pragma once

#include "hybrid/tavro-runt.h"

// Keeps the misbehaving candidates of this step, which are dropped, in run.dropped.
void keepDropped(RunState& run, double time);

// Replaces the candidates *found*, explanations of the misbehaving *candidate* that add a failure,
// by what they come to from every date that agrees with the measures, in *out*. Each of them gets
// its share of the *budget*; false when that was too little for one of them.
// Uses the tracked candidates of the run as its work place.
bool dateExplanations(RunState& run, hybTrajectory const& candidate, HybMap const& found,
                      int threshold, double now, int budget, HybMap& out);
