// Everything that one run of a plant changes.
//
// The plant is shared and only read; the host is the run's outside; all the rest is owned here, and
// nothing of it is shared with another run. The members keep the order in which they depend on each
// other, so that the end of a run is the reverse of its start: candidates go first, since the keys
// of their tables are texts of the plant and their states tell the scheduler's book.
//
// Invariants between two steps (told broken by brokenInvariant, which debug builds ask after each):
//   1. hybNT is null, or the first of tracked_trajs;
//   2. every candidate of tracked_trajs has a history and, in a hybrid plant, a runtime of this
//   run,
//      and the invariants of both hold;
//   3. the window of each history holds every component of the plant;
//   4. engine.nrt, ntrajs and misbtrajs are empty.
#pragma once

#include <deque>
#include <memory>
#include "continuous/engine.h"

#include "hybrid/bounds_watch.h"
#include "hybrid/hybTrajectory.h"
#include "hybrid/hybrid_candidates.h"
#include "hybrid/run_settings.h"
#include "reasoning/Scheduler.h"

struct RunState {
    RunState(Plant const& plant, Host& host, RunSettings settings = {});
    ~RunState();
    RunState(RunState const&) = delete;
    RunState& operator=(RunState const&) = delete;

    // What does not hold of the invariants, or null.
    char const* brokenInvariant() const;

    Plant const& plant;
    Host& host;
    RunSettings const settings;
    Rules const& rules = settings.rules;
    std::ostream& out;
    std::ostream& err;
    s_engine engine;
    Scheduler scheduler;
    Scheduler* const sMM = &scheduler;  // the name under which the discrete half is known

private:
    std::unique_ptr<s_runtime> ownTemplate;

public:
    s_runtime* tavro_rt;  // the run's own template, never stepped; null in a discrete plant

    HybMap tracked_trajs;            // the candidates being tracked
    HybMap ntrajs;                   // candidates being rebuilt within a cycle
    HybMap misbtrajs;                // candidates found misbehaving in this cycle
    HybMap refuted;                  // copies of those, while a diagnosis takes them apart
    hybTrajectory* hybNT = nullptr;  // the nominal candidate, borrowed; null: not initialised

    // By the rule `dates`: misbehaving candidates that were dropped, and when, the latest last.
    struct Dropped {
        double time;
        std::unique_ptr<hybTrajectory> candidate;
    };
    std::deque<Dropped> dropped;

    double last_detection_time = -1.0;  // of the first detection that came last; -1 at first
    bool diag_flag = false;             // a diagnosis has been accepted in this run
    bool lost = false;                  // no candidate has agreed since the last diagnosis
    bool limitAdvised = false;          // the user knows how to bound the number of candidates
    BoundsWatch bounds;                 // whether the bounds can still tell anything

    // What the user has been told of the last step besides its candidates.
    struct Remarks {
        std::size_t dropped = 0;  // by the rule `limit`
        bool datesCut = false;    // a diagnosis did not try every date
        std::string pastUse;      // a measure whose bounds tell nothing any more
    };
    Remarks remarks;
};
