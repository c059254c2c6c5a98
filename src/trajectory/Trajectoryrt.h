// One candidate history of the system: a window of states by discrete step, with the transitions
// that lead from each to the next.
//
// Only the newest states are kept: when the window is full, the oldest is folded into the next. A
// state holds elements only for the components that changed at its step, so the truth of an atom is
// searched backwards through the window. A trajectory owns its states.
//
// Invariants (1 and 2 are told broken by brokenInvariant, which debug builds ask after each
// addition and removal):
//   1. the steps of `states` run from firstTime to currentTime with none missing;
//   2. right after an addition there are at most `twd` of them;
//   3. a component that a state of the window holds leaves the window with no state of it: when the
//      oldest state is folded, the next one holds what it held. So a history that begins with every
//      component, as those of a run do, can always tell the truth of each: holdsAll.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "support/hash_map.h"
#include "trajectory/Statert.h"

class Trajectory {
public:
    using States = hash_map<int, State*>;
    using TransByTime = std::multimap<int, Transition*>;
    struct DateRange {
        double from, to;  // the same for a single time
    };
    // By transition id, the steps into which a failure was placed.
    using FailureSteps = std::map<int, std::set<int>>;

    // What the time table answers for a step or a time that it does not hold.
    static constexpr double noTime = 9999.0;
    static constexpr int noStep = 9999;

    explicit Trajectory(TrajectoryBook& book);
    Trajectory(TrajectoryBook& book, string_map<Atom*> const* atoms);
    // A copy of the states before step *upTo*, which must be above the first step kept.
    Trajectory(Trajectory const* source, int upTo);
    ~Trajectory();
    Trajectory(Trajectory const&) = delete;
    Trajectory& operator=(Trajectory const&) = delete;

    // Takes the state. Returns the state that stood at that step, if any: it is the caller's now.
    std::unique_ptr<State> addState(int t, std::unique_ptr<State> state);
    // Destroys the state that stood at that step.
    void addCopyState(int t, State const* source, bool full);
    void removeLastState();
    // Hands a state out and leaves its place empty, to be filled again with putState before any
    // other operation on that step: neither the rank nor the window changes.
    std::unique_ptr<State> takeState(int t);
    void putState(int t, std::unique_ptr<State> state);
    // Folds the oldest state into the next.
    void reduceTrajectory();

    int getCurrentTime() const { return currentTime; }
    // Null outside the window; enters nothing.
    State* getState(int t) const;
    State* getLastState() const { return getState(currentTime); }
    // The newest state below the size of the window that has elements, or null.
    State* getLastNonEmptyState() const;

    // The element of an atom at or before a start step; null, and a line told in the book, when
    // the search fails. The forms differ in where they start, and by whether they tell the step.
    TrajEl* getElt(int t, char const* id) const;  // step t alone, without a search or a message
    // Required: these start at the number of states minus 1, which is not the newest step once the
    // window has moved.
    TrajEl* getElt(char const* id) const;
    TrajEl* getElt(char const* id, int& found) const;
    // By reference, since a variable can then only mean the form above.
    TrajEl* getElt(char const* id, int const& offset) const;
    TrajEl* getElt(char const* id, int t, int offset) const;
    TrajEl* getElt(char const* id, int t, int offset, int& found) const;

    // Copies an element into the state of step t, and with *recurse* its consequences.
    void insertElt(TrajEl* element, int t, bool recurse);
    // The first step after t whose state has an element for the variable; 0 when there is none.
    int getNext(StateVar const* variable, int t) const;

    // Extends a state of step t with the newest elements of a component from before t. With *idle*
    // a mode that holds goes on by its idle transition; *keepLocks* matters to observables alone.
    void addComp(Comp* comp, State* state, int t, bool idle, bool keepLocks);
    void removeComp(Comp* comp, int t);
    // Failures among the transitions into a state.
    double getStateRank(State const* state) const;

    // The times at which a step was taken: of this history and of those merged into it.
    DateRange datesOf(int step) const;
    // The dates cover those of a history that is being merged into this one. Steps are matched from
    // the last one back, since both end in the same state.
    void coverDates(Trajectory const& other);
    // Relates the current step to a continuous time.
    void setTimeCorr(double time);
    double getTimeCorr(int step) const;
    int getDiscTimeCorr(double time) const;

    std::vector<Transition*> getStateTransitions(int t) const;
    void computePrevTransSetProb(int t);
    // Nothing for step 0. Without the state before it, only the transitions' product is renewed.
    void computeStateProb(int t);
    void updateStatesProb();
    // How much the history counts beside others of the same run: the probability of its last state,
    // with that of the histories for which it stands.
    double weight() const { return getLastState()->proba * represented; }
    // Multiplies the probability of every state.
    void scaleProbas(double factor);
    // Cover of *state* grows by what *transition* takes of it.
    void updateCover(State* state, Transition const* transition);
    // The same when the state before, *from* at step t, is not the one right before *to* at step u.
    void updateCover(State* from, State* to, int t, int u, Transition const* transition);

    bool isUnknown() const { return unknown; }
    void setUnknown() { unknown = true; }
    // Whether a state of the window was reached through an unknown mode.
    bool holdsUnknown() const;
    // What does not hold of the invariants 1 and 2, or null.
    char const* brokenInvariant() const;
    // Whether each of *comps* that is not null stands in a state of the window.
    bool holdsAll(string_map<Comp*> const& comps) const;

    void showTrajectory(std::ostream& out, int t) const;
    void showTrajectoryFull(std::ostream& out, int t) const;
    void showTrajectoryTransitions(std::ostream& out) const;
    void showTrajectoryLight(std::ostream& out) const;

    States states;
    int currentTime = 0;
    int firstTime = 0;
    double rank = 0.0;   // failures in all states added, also in those that left the window
    double proba = 0.0;  // written by the search and the discrete run
    int stepCount = 0;   // goes up with currentTime, but not down again
    std::optional<TransByTime> transByTime;        // transitions by step, of a diagnosed history
    std::optional<TransByTime> settled;            // the same of earlier diagnoses (rule `again`)
    std::vector<std::pair<int, double>> timeCorr;  // discrete step to continuous time
    // When a transition of the history was taken, by its id, where that is a range of times; and
    // the same of every step, where candidates that were merged had taken it at different times.
    std::map<int, DateRange> dated;
    std::map<int, DateRange> stepDates;
    bool unknown = false;     // a state with an unknown mode was added
    double eventTime = -1.0;  // date of the scenario event taken last; -1 for none
    // Of an answer that stands for several histories (rule `histories`): the sum of their
    // probabilities in parts of its own, and the steps of all of them by failure. 1 and empty for a
    // history that no search has answered.
    double represented = 1.0;
    FailureSteps failureSteps;

    TrajectoryBook& book;

private:
    TrajEl* searchBack(char const* id, int start, int* found) const;
    // The two ways to weigh a history: the second is that of the rule `likelihood`.
    void updateStatesProbClassic();
    void updateStatesProbByStep();
    double movesProba(int t) const;
    int sizeStart() const { return static_cast<int>(states.size()) - 1; }
    void advanceTo(int t);
};
