// The covering search: the histories of least failure that explain what was seen.
//
// Each round takes one rank. The observations are inserted at the last step, and every outcome is
// followed back through its steps, the likeliest first: a step without a conflict moves on, a step
// with conflicts is replaced by its successors. A history that has come to the first step after the
// start of its window is a result if its rank is the round's, and ends the search otherwise. The
// first rank that has results ends it too.
#include <cassert>
#include <ctime>

#include "reasoning/Diagnoser.h"
#include "support/memory_watch.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;

double secondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / ticksPerSecond;
}

bool isAtStart(Trajectory const& trajectory, int step) {
    return step == trajectory.firstTime + 1;
}

}  // namespace

// One rank of the search.
struct Diagnoser::Round {
    double rank;
    std::clock_t start;
    std::ostream& err;
    double& coverSum;
    TrajectoryMap open;  // histories to be followed back, by the probability of their last state

    void push(std::unique_ptr<Trajectory> trajectory) {
        assert(trajectory->stepCount > trajectory->firstTime);
        double const key = trajectory->getLastState()->proba;
        open.emplace(key, std::move(trajectory));
    }
    // Takes a history that reached its start as a result. False: its rank ends the search.
    bool accept(std::unique_ptr<Trajectory> trajectory, TrajectoryMap& results) {
        err << "Time : " << secondsSince(start) << "\n";
        // Required: the ranks are compared for equality, also where the one found is lower.
        if (trajectory->rank != rank) {
            err << "too high rank found: " << trajectory->rank << "\n";
            return false;
        }
        addResult(std::move(trajectory), results, coverSum);
        return true;
    }
};

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

void Diagnoser::reportResults(TrajectoryMap const& results, double coverSum) {
    for (auto const& result : results)
        result.second->proba = result.second->getLastState()->proba / coverSum;
    err << "res's size : " << results.size() << "\n";
    viewTrajectoriesTransitionsMultimap(&results);
    updateTrajectoriesCover();
}

TrajectoryMap Diagnoser::coverTrack3(std::unique_ptr<Trajectory> trajectory, double fromRank,
                                     double toRank, Observations const& observations,
                                     double& reached) {
    std::clock_t const start = std::clock();
    transitions_checked = 0;
    trajectories_checked = 0;
    double coverSum = 0.0;
    assert(trajectory != nullptr && redux_diag.empty());
    int const t = trajectory->getCurrentTime();
    TrajectoryMap results;
    double rank = fromRank;
    bool complete = true;
    while (complete && results.empty() && rank <= toRank) {
        err << "Rank : " << rank << "/" << toRank << " (" << secondsSince(start) << ")\n";
        Round round{rank, start, err, coverSum, {}};
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
