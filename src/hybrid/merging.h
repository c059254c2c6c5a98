// Merging within a replay.
#pragma once

#include "hybrid/hybTrajectory.h"
#include "hybrid/hybrid_candidates.h"

// As sn_reduxTrajs, but the past of the candidates is left as that of the first: what is replayed
// from one start has it in common but for the cycles since, and to compare hundreds of entries at
// every cycle of every replay would cost more than all the rest of it.
void mergeReplayed(HybMap& trajectories, double time);

// As sn_reduxTrajs, for what a diagnosis has found: by the rule `likelihood` the one that stays is
// as probable as all that it stands for.
void mergeAnswers(HybMap& trajectories, double time);
