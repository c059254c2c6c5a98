// The covering search under the rule `histories`: all the histories of least failure.
//
// Classic (coverTrack3): the search begins at one history alone, the first of those that were
// refuted; a history that comes to its start with another rank than the round's ends the search,
// and all that is open with it; and a component has a move only where a state happens to hold it.
// What goes wrong: explanations that go on from another refuted history are lost; one history of
// rank 0, in which somebody gave a command that was not named, leaves no answer at all; and a
// failure between two states that hold its component has no place.
//
// Under the rule a round starts from every refuted history, with every component in every step. A
// history of a higher rank is put off: the round of its rank finds it again. One of a lower rank is
// an answer, since no earlier round has had it. It is sound: a component that a state did not hold
// went on idle, and that is how it is brought in; and a round that finds anything is finished, so
// that all histories up to its rank come out.
//
// How much a search may take is bounded. For two failures on a line of two valves it constructs
// some two hundred successors; twenty thousand of them take seconds, after which an answer that is
// not whole is worth more than none. Two hundred answers are more than anybody reads, or than a run
// can follow step by step; the likeliest stay.
#include "model/Comprt.h"
#include "reasoning/diagnoser/round.h"

void Diagnoser::fillGaps(Trajectory& history) const {
    for (int t = history.firstTime + 1; t <= history.getCurrentTime(); ++t) {
        State* state = history.getState(t);
        for (auto const& entry : active_comps)
            if (entry.second != nullptr && state->comps.count(entry.second->getName()) == 0)
                history.addComp(entry.second, state, t, true, false);
    }
}

// Counts an expansion; false when there have been too many, which is told once.
bool Diagnoser::mayExpand() {
    if (!rules.histories)
        return true;
    if (++expansions == mostExpansions + 1)
        err << "search: stopped after " << mostExpansions << " expansions, more may explain this\n";
    return expansions <= mostExpansions;
}

// All histories of at most *rank* failures, into *found*.
void Diagnoser::searchRank(std::vector<std::unique_ptr<Trajectory>> const& refuted, double rank,
                           Observations const& observations, TrajectoryMap& found) {
    double sum = 0.0;  // the answers are weighed once they are known
    Round round{rank, std::clock(), *this, sum, {}};
    for (auto const& history : refuted) {
        Trajectory from(history.get(), history->getCurrentTime() + 1);
        for (auto& outcome :
             observationResults(observations, &from, from.getCurrentTime(), rank, false))
            round.push(std::move(outcome.second));
    }
    exploreRound(round, found);
}

TrajectoryMap Diagnoser::coverHistories(std::vector<std::unique_ptr<Trajectory>> refuted,
                                        double fromRank, double toRank,
                                        Observations const& observations, double& reached) {
    std::clock_t const start = std::clock();
    transitions_checked = 0;
    trajectories_checked = 0;
    expansions = 0;
    for (auto const& history : refuted)
        fillGaps(*history);
    TrajectoryMap found;
    double rank = fromRank;
    for (; found.empty() && rank <= toRank && expansions <= mostExpansions; rank += 1.0) {
        err << "Rank : " << rank << "/" << toRank << " (" << secondsSince(start) << ")\n";
        searchRank(refuted, rank, observations, found);
    }
    reached = rank - 1.0;
    TrajectoryMap answers = answersOf(std::move(found));
    double sum = 0.0;
    for (auto const& answer : answers)
        sum += answer.second->weight();
    reportResults(answers, sum);
    err << "cover_track execution time : " << secondsSince(start) << "\n";
    return answers;
}
