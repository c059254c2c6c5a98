// The older covering search: depth first, and without a match of the ranks. Nothing calls it;
// results of both searches can be compared.
//
// It goes back to step 1 and not to the start of the window, so it finds nothing once the window
// has moved. Every history that comes to step 1 is a result of the first rank that has any.
#include <cassert>
#include <ctime>
#include <stack>

#include "reasoning/Diagnoser.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;
constexpr int firstMove = 1;  // the step of the first transitions

double secondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / ticksPerSecond;
}

void tellCounters(DataManager const& run) {
    TrajectoryBook const& book = run.book;
    run.err << "transitions checked : " << run.transitions_checked
            << "\ntrajectories created : " << book.traj_created
            << "\ntrajectories destroyed : " << book.traj_del
            << "\nstates created : " << book.state_created
            << "\nstates deleted : " << book.state_del << "\nelts created : " << book.trajel_created
            << "\nelts deleted : " << book.trajel_del << "\n";
}

}  // namespace

// One rank of the search.
struct Diagnoser::Descent {
    double rank;
    std::clock_t start;
    std::ostream& err;
    double& coverSum;
    TrajectoryMap& results;
    std::stack<std::unique_ptr<Trajectory>> pending;  // the newest is followed first

    // Goes on from step *step*, or takes the history as a result when that is the first move.
    void advance(std::unique_ptr<Trajectory> trajectory, int step) {
        if (step != firstMove) {
            --trajectory->stepCount;
            pending.push(std::move(trajectory));
            return;
        }
        err << "Time : " << secondsSince(start) << "\n";
        unlockTrajectory(trajectory.get());
        double const proba = trajectory->getLastState()->proba;
        coverSum += proba;
        results.emplace(proba, std::move(trajectory));
    }
};

void Diagnoser::descend(Descent& descent) {
    while (!descent.pending.empty()) {
        std::unique_ptr<Trajectory> current = std::move(descent.pending.top());
        descent.pending.pop();
        int const step = current->stepCount;
        if (current->getState(step) == nullptr)
            continue;  // the step has left the window
        ConflictSet const conflicts = getConflicts(current.get(), step, true);
        if (conflicts.empty()) {
            descent.advance(std::move(current), step);
            continue;
        }
        TrajectoryMap successors;
        immediateSuccessors(conflicts, std::move(current), step, descent.rank, successors, true);
        err << "result size from immediate succs : " << successors.size() << "\n";
        compareTrajs(&successors);
        for (auto& entry : successors)
            descent.advance(std::move(entry.second), step);
    }
}

// Required: the failures that were expanded are not forgotten at the end, so that a later search
// does not expand them again.
TrajectoryMap Diagnoser::coverTrack2(std::unique_ptr<Trajectory> trajectory, double fromRank,
                                     double toRank, Observations const& observations,
                                     double& reached) {
    std::clock_t const start = std::clock();
    transitions_checked = 0;
    trajectories_checked = 0;
    double coverSum = 0.0;
    int const t = trajectory->getCurrentTime();
    TrajectoryMap results;
    double rank = fromRank;
    for (; results.empty() && rank <= toRank; rank += 1.0) {
        err << "Rank : " << rank << "(" << secondsSince(start) << ")\n";
        Descent descent{rank, start, err, coverSum, results, {}};
        Trajectory from(trajectory.get(), t + 1);
        for (auto& outcome : observationResults(observations, &from, t, rank, false))
            descent.pending.push(std::move(outcome.second));
        descend(descent);
    }
    reached = rank - 1.0;
    tellCounters(*this);
    reportResults(results, coverSum);
    err << "trajectories cover : " << traj_cover
        << "\ncover_track execution time : " << secondsSince(start) << "\n";
    return results;
}
