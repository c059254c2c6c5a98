// One rank of a covering search. Private to the diagnoser.
#pragma once

#include <ctime>

#include "reasoning/Diagnoser.h"

inline double secondsSince(std::clock_t start) {
    constexpr double ticksPerSecond = 1000000.0;
    return static_cast<double>(std::clock() - start) / ticksPerSecond;
}

struct Diagnoser::Round {
    double rank;
    std::clock_t start;
    DataManager& run;
    double& coverSum;
    TrajectoryMap open;  // histories to be followed back, by the probability of their last state

    void push(std::unique_ptr<Trajectory> trajectory) {
        double const key = trajectory->getLastState()->proba;
        open.emplace(key, std::move(trajectory));
    }
    // Takes a history that reached its start as a result. False: its rank ends the search.
    bool accept(std::unique_ptr<Trajectory> trajectory, TrajectoryMap& results) {
        run.err << "Time : " << secondsSince(start) << "\n";
        if (run.rules.histories ? trajectory->rank <= rank : trajectory->rank == rank) {
            addResult(std::move(trajectory), results, coverSum);
            return true;
        }
        if (run.rules.histories) {
            run.err << "put off to rank " << trajectory->rank << "\n";
            return true;
        }
        // Required: the ranks are compared for equality, also where the one found is lower.
        run.err << "too high rank found: " << trajectory->rank << "\n";
        return false;
    }
};
