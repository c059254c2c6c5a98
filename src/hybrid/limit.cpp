// Rule `limit`: a bounded number of candidates is followed.
//
// The classic way has no bound. A candidate whose value lies on both sides of a threshold is split,
// and while nothing agrees with the measures no candidate is dropped, nor ever in a simulation; so
// candidates may double at every step, until memory stops the run and with it the watch over the
// plant.
//
// What this does. When more than the allowed number is left after a step, equal candidates are
// merged first, which loses nothing. Of the rest the likeliest stay: first one for each combination
// of modes, the likeliest combination first, so that no explanation goes unheard as long as there
// is room for it; then the likeliest of all the others. What was dropped is told, once per step.
//
// Why it is sound. What is dropped is no longer covered by the answer, which is why it is told; the
// candidates that stay are untouched. A run that would have ended without an answer goes on with
// the best part of one.
#include <set>

#include "hybrid/answer.h"
#include "hybrid/tavro-runt.h"

namespace {

using Chosen = std::set<hybTrajectory const*>;

// Only membership is asked of the set, so that its order by address is never seen.
Chosen chooseLikeliest(RunState const& run, HybMap const& candidates, std::size_t limit) {
    std::vector<hybTrajectory const*> const ordered = byLikelihood(run.plant, candidates);
    Chosen chosen;
    std::set<std::string> modes;
    for (hybTrajectory const* candidate : ordered)
        if (chosen.size() < limit && modes.insert(modesOf(run.plant, *candidate->traj)).second)
            chosen.insert(candidate);
    for (hybTrajectory const* candidate : ordered)
        if (chosen.size() < limit)
            chosen.insert(candidate);
    return chosen;
}

// Of a classic run, once: what could be done about it.
void adviseLimit(RunState& run, bool nominal) {
    constexpr std::size_t many = RunSettings::candidatesOfLimit;
    if (nominal || run.limitAdvised || run.tracked_trajs.size() <= many)
        return;
    run.limitAdvised = true;
    run.err << "More than " << many
            << " candidates are followed and none agrees: --candidates=N would follow the N "
               "likeliest.\n";
}

}  // namespace

void limitCandidates(RunState& run, double time, bool nominal) {
    std::size_t const limit = static_cast<std::size_t>(run.settings.limit());
    if (limit == 0) {
        adviseLimit(run, nominal);
        return;
    }
    if (run.tracked_trajs.size() <= limit)
        return;
    sn_reduxTrajs(run.tracked_trajs, time);
    std::size_t const before = run.tracked_trajs.size();
    if (before <= limit)
        return;
    Chosen const chosen = chooseLikeliest(run, run.tracked_trajs, limit);
    std::erase_if(run.tracked_trajs,
                  [&chosen](auto const& entry) { return chosen.count(entry.second.get()) == 0; });
    run.remarks.dropped += before - limit;
    run.err << "The limit of " << limit << " candidates is met: " << before - limit
            << " of the least likely are dropped.\n";
}
