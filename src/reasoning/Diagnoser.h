// The search for candidate histories.
//
// A candidate is a Trajectory; a conflict is a transition recorded in it that no longer fits the
// labels of the states around it. The search goes backwards through the steps of a history: a step
// without a conflict moves on, a step with conflicts is replaced by the successors in which another
// transition explains them. The rank, the number of "Fail" transitions of a history, is raised by
// one at a time, so that the simplest explanations come first.
//
// Whoever passes a trajectory by unique_ptr gives it away. Trace lines go to the error stream.
#pragma once

#include <set>

#include "reasoning/itmsrt.h"

// One conflict on one element. Borrows the element.
struct disConflict {
    disConflict() = default;
    // On the effect of a transition.
    disConflict(TrajEl* element, int position) : disConflict(element, position, true) {}
    // On the guard of a transition; the mark is the literal's sign.
    disConflict(TrajEl* element, int position, bool repairable)
        : position(position), element(element), repairable(repairable) {}

    int position = 0;  // nearest step, at or before the one looked at, that holds the element
    TrajEl* element = nullptr;
    bool repairable = false;
};

// By atom id: of two conflicts on one id, the later one stands.
using ConflictSet = string_map<disConflict>;

// A transition chosen for expansion.
struct likelyTransition {
    Atom* conflictAtom;  // of the element in conflict
    Atom* currentAtom;   // of the sibling through which the transition was found
    double posterior;    // its weight in the state at the current step
    Transition* transition;
    int startStep;  // the conflict's position
};

// Observed atoms; the key true means observed true.
using Observations = SignedAtoms;

class Diagnoser : public itms {
public:
    using itms::itms;

    // ---- Locks (diagnoser/locks.cpp) ----

    // Labels the atom's element true, then those of its variable's atoms false. Required: the atom
    // is one of these, so it ends at false. No caller yet.
    static void setObservation(Atom const* atom, State* state);

    // Temporary: a free element is held at true and its siblings at false.
    static void lockTrajEls(TrajEl* element, State* state);
    // Permanent, the same.
    static void lockTrajElsPerm(TrajEl* element, State* state);
    // Permanent, this element alone, at false.
    static void lockTrajElsNegPerm(TrajEl* element, State* state);
    static void lockTrajElsPerm(TrajEl* element, State* state, bool negative);
    // Releases the temporary locks of a state.
    static void unlockState(State* state);
    // Releases those of a whole trajectory, and forgets its failures.
    static void unlockTrajectory(Trajectory* trajectory);

    // ---- Conflicts and successors (diagnoser/conflicts.cpp, successors.cpp, construct.cpp) ----

    // The transitions into step t whose effect (*post*) or whose guard no longer holds.
    ConflictSet getConflicts(Trajectory* trajectory, int t, bool post);
    void viewHashMapConflicts(ConflictSet const& conflicts);
    // Adds to *finals*, by the probability of their last state, the histories without a conflict
    // that explain *conflicts* within *rank*. Consumes the trajectory.
    void immediateSuccessors(ConflictSet const& conflicts, std::unique_ptr<Trajectory> trajectory,
                             int t, double rank, TrajectoryMap& finals, bool post);
    // Adds to *successors*, by rank, the copies of the history in which the transition was taken.
    void constructSuccessors(likelyTransition const& candidate, Trajectory* trajectory, int t,
                             TrajectoryMap& successors, double rank);
    // Whether a failure that no command triggers has been expanded already in this search.
    bool checkForDeadEnd(Transition const* transition);
    // The same, and whether the history holds one that has been; that alone decides for a
    // transition of another kind. Enters nothing. No caller yet.
    bool checkForDeadEndExt(Transition const* transition, Trajectory const* trajectory);
    // Whether a search does not expand the transition at step t of the history, by the rule in
    // force (dead_ends.cpp).
    bool isDeadEnd(Transition const* transition, Trajectory const* trajectory, int t);
    // Makes the weights of the histories sum to 1, tells each of them as its probability, and puts
    // the likeliest first (rule `likelihood`, likelihood.cpp).
    static void normalize(TrajectoryMap& histories);
    static double weightOf(TrajectoryMap const& histories);
    // Of the last search by the rule `likelihood`: what its answers weighed together before their
    // weights were made to sum to 1, so that answers of several searches can be weighed again.
    double answersWeight = 0.0;
    // Marks a state that a transition into an unknown mode leads to (rule `unknown`,
    // unknown_modes.cpp).
    void noteUnknown(State* state) const;
    // The mark of a history that was made from *source* with other states.
    void renewUnknown(Trajectory const& source, Trajectory& history) const;
    static void addResult(std::unique_ptr<Trajectory> trajectory, TrajectoryMap& results,
                          double& sum);

    // ---- Observations and covering (diagnoser/observations*.cpp, covering*.cpp) ----

    // The consistent outcomes of inserting observations at step t, by obsProb. The trajectory
    // stays.
    TrajectoryMap observationResults(Observations const& observations, Trajectory* trajectory,
                                     int t, double rank, bool observing);
    // The older form, kept beside the other one: every atom was observed true, the likelihood is
    // not normalised, and the key is the probability of the state. Consumes the trajectory.
    TrajectoryMap observationResults(std::vector<Atom*> const& observations,
                                     std::unique_ptr<Trajectory> trajectory, int t, double rank,
                                     bool observing);
    // The histories of least rank, from *fromRank* to *toRank*, that explain the observations at
    // the trajectory's current time, by probability. Consumes the trajectory. *reached* answers the
    // rank that the search came to.
    TrajectoryMap coverTrack3(std::unique_ptr<Trajectory> trajectory, double fromRank,
                              double toRank, Observations const& observations, double& reached);

    // The same under the rule `histories`, from several refuted histories at once
    // (covering_histories.cpp). An answer may have a lower rank than the search began at.
    TrajectoryMap coverHistories(std::vector<std::unique_ptr<Trajectory>> refuted, double fromRank,
                                 double toRank, Observations const& observations, double& reached);
    // How many of the answers of one search are kept, and how many successors it constructs at most
    // (rule `histories`).
    std::size_t mostAnswers = 200;
    unsigned mostExpansions = 20000;

    // The older search, kept beside the other one: depth first, back to step 1, without a match of
    // the ranks. Its results are released. Consumes the trajectory.
    TrajectoryMap coverTrack2(std::unique_ptr<Trajectory> trajectory, double fromRank,
                              double toRank, Observations const& observations, double& reached);

    // Failures without a command that have been expanded in this search; compared by identity.
    std::set<Transition const*> redux_diag;

private:
    void tellTransition(Transition const* transition);

    struct Selection;
    void selectTransitions(Selection& selection, ConflictSet const& conflicts);
    bool tryConflict(Selection& selection, disConflict const& conflict);
    bool isRefused(Selection const& selection, disConflict const& conflict, TrajEl const* through,
                   Transition const* transition);
    bool isPointless(Selection const& selection, disConflict const& conflict, TrajEl const* through,
                     Transition const* transition);
    bool isGuardRefused(Selection const& selection, disConflict const& conflict,
                        Transition const* transition);
    bool isEffectRefused(Selection const& selection, Transition const* transition);
    bool tryTransition(Selection& selection, disConflict const& conflict, TrajEl const* through,
                       Transition* transition);
    void recurse(std::unique_ptr<Trajectory> successor, Selection const& selection,
                 TrajectoryMap& finals);
    static std::unique_ptr<State> observedCopy(State const* state);
    // A changed element is held for the rest of the search, or noted as observed when it was
    // denied.
    static void noteChanged(ItmsRes const& result);
    ItmsResults settleGuard(likelyTransition const& candidate, Trajectory* trajectory,
                            std::unique_ptr<State> state, double rank);
    ItmsResults settleEffect(likelyTransition const& candidate, Trajectory* trajectory, int t,
                             std::unique_ptr<State> state, double rank);

    // Normalises the probabilities of what a search found, and tells it.
    void reportResults(TrajectoryMap& results, double coverSum);

    // ---- Answers (diagnoser/answers.cpp, likelihood.cpp) ----

    std::string endOf(Trajectory const& history) const;
    std::string pathOf(Trajectory const& history) const;
    std::string modesAt(Trajectory const& history, int t) const;
    TrajectoryMap answersOf(TrajectoryMap found);
    void cutAnswers(TrajectoryMap& answers);
    bool mayExpand();
    void fillGaps(Trajectory& history) const;
    void searchRank(std::vector<std::unique_ptr<Trajectory>> const& refuted, double rank,
                    Observations const& observations, TrajectoryMap& found);

    unsigned expansions = 0;  // of the search that runs, under the rule `histories`

    struct Round;
    bool exploreRound(Round& round, TrajectoryMap& results);
    bool stepBack(Round& round, std::unique_ptr<Trajectory>& current, TrajectoryMap& results);

    struct Descent;
    void descend(Descent& descent);
};
