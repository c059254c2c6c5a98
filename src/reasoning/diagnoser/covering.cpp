// The covering search: the histories of least failure that explain what was seen.
//
// Each round takes one rank. The observations are inserted at the last step, and every outcome is
// followed back through its steps, the likeliest first: a step without a conflict moves on, a step
// with conflicts is replaced by its successors. A history that has come to the first step after the
// start of its window is a result if its rank is the round's, and ends the search otherwise. The
// first rank that has results ends it too.
#include "reasoning/diagnoser/round.h"
#include "support/memory_watch.h"

namespace {

bool isAtStart(Trajectory const& trajectory, int step) {
    return step == trajectory.firstTime + 1;
}

}  // namespace

// One step of one history. False: the search ends. *current* stays set while it has steps to go
// back.
bool Diagnoser::stepBack(Round& round, std::unique_ptr<Trajectory>& current,
                         TrajectoryMap& results) {
    assert(current != nullptr);
    int const step = current->stepCount;
    if (current->getState(step) == nullptr) {
        // The step has left the window, and nothing can be explained there.
        current = nullptr;
        return true;
    }
    ConflictSet const conflicts = getConflicts(current.get(), step, true);
    if (conflicts.empty()) {
        if (isAtStart(*current, step))
            return round.accept(std::move(current), results);
        --current->stepCount;
        return true;
    }
    TrajectoryMap successors;
    immediateSuccessors(conflicts, std::move(current), step, round.rank, successors, true);
    for (auto& entry : successors) {
        std::unique_ptr<Trajectory> successor = std::move(entry.second);
        if (isAtStart(*successor, step)) {
            if (!round.accept(std::move(successor), results))
                return false;
            continue;
        }
        --successor->stepCount;
        round.push(std::move(successor));
    }
    return true;
}

// Returns whether the round came to its end.
bool Diagnoser::exploreRound(Round& round, TrajectoryMap& results) {
    std::unique_ptr<Trajectory> current;
    while (current != nullptr || !round.open.empty()) {
        watchMemory(host);
        if (current == nullptr) {
            current = std::move(round.open.begin()->second);
            round.open.erase(round.open.begin());
        }
        if (!stepBack(round, current, results))
            return false;
    }
    return true;
}

void Diagnoser::reportResults(TrajectoryMap& results, double coverSum) {
    if (rules.likelihood) {
        answersWeight = weightOf(results);
        normalize(results);
    } else
        for (auto const& result : results)
            result.second->proba = result.second->weight() / coverSum;
    err << "res's size : " << results.size() << "\n";
    viewTrajectoriesTransitionsMultimap(&results);
    updateTrajectoriesCover();
}

TrajectoryMap Diagnoser::coverTrack3(std::unique_ptr<Trajectory> trajectory, double fromRank,
                                     double toRank, Observations const& observations,
                                     double& reached) {
    if (rules.histories) {
        std::vector<std::unique_ptr<Trajectory>> refuted;
        refuted.push_back(std::move(trajectory));
        return coverHistories(std::move(refuted), fromRank, toRank, observations, reached);
    }
    std::clock_t const start = std::clock();
    transitions_checked = 0;
    trajectories_checked = 0;
    double coverSum = 0.0;
    assert(trajectory != nullptr && trajectory->getLastState() != nullptr);
    int const t = trajectory->getCurrentTime();
    TrajectoryMap results;
    double rank = fromRank;
    bool complete = true;
    while (complete && results.empty() && rank <= toRank) {
        err << "Rank : " << rank << "/" << toRank << " (" << secondsSince(start) << ")\n";
        Round round{rank, start, *this, coverSum, {}};
        Trajectory from(trajectory.get(), trajectory->getCurrentTime() + 1);
        for (auto& outcome : observationResults(observations, &from, t, rank, false))
            round.push(std::move(outcome.second));
        complete = exploreRound(round, results);
        if (complete)
            rank += 1.0;
    }
    reached = rank - 1.0;
    reportResults(results, coverSum);
    err << "cover_track execution time : " << secondsSince(start) << "\n";
    redux_diag.clear();
    return results;
}
