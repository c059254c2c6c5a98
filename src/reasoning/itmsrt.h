// The incremental truth maintenance engine.
//
// Every step of a candidate history is a State of elements. An element carries a three-valued
// label, the clause that justifies it, the elements that depend on it, a propagation number that is
// above those of its support when that is given, and a lock. Labels never live on the shared atoms
// during a search: a change is made on a private copy of the state, so that a retraction in one
// branch cannot touch another one.
//
// addPropositions is the entry: it asserts propositions in a state and answers the consistent
// states that follow, depth first, each a branch (ItmsRes). The functions are grouped by the file
// of itmsrt/ that holds them. Trace lines go to standard output.
//
// A trajectory and a step are passed along because a state holds the elements of those components
// alone that changed at its step: getElt pulls the others forward.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <queue>
#include <stack>
#include <string>
#include <vector>

#include "reasoning/clause_net.h"
#include "reasoning/mdlChkrt.h"
#include "reasoning/pi_table.h"
#include "trajectory/Trajectoryrt.h"

// Elements by atom id; they belong to a state.
using ElementTable = string_map<TrajEl*>;
// Elements with a sign. In propositions true asks for "true"; in a clause's literals true is
// negated.
using SignedElements = std::multimap<bool, TrajEl*, eqbool>;

// One open or finished branch of a propagation.
struct ItmsRes {
    // Takes the state as it is.
    explicit ItmsRes(std::unique_ptr<State> state) : state(std::move(state)) {}
    // Copies the state and the pending conflicts; already_changed is left to the caller.
    ItmsRes(State const* source, std::queue<Clause*> const& pending)
        : state(std::make_unique<State>(source, true)), conflicts(pending) {}

    std::unique_ptr<State> state;   // owned by the branch until a caller takes it
    ElementTable already_changed;   // changed on this branch: conflicts may not change them again
    ElementTable focus;             // elements whose clauses are to be checked again
    std::vector<TrajEl*> deleted;   // retracted on this branch: where unit clauses are looked for
    std::queue<Clause*> conflicts;  // found violated, not yet handled
};

using ItmsResults = std::vector<std::unique_ptr<ItmsRes>>;
using Agenda = std::stack<std::unique_ptr<ItmsRes>>;

// Where a propagation works: one state of one step of a trajectory. Borrows all.
struct StateSite {
    State* state;
    Trajectory* trajectory;
    int timestep;
};

// What limits a propagation.
struct SearchLimits {
    bool observing;  // observations are inserted, as against transitions tried: what may be flipped
    double maxRank;  // failures that the history may hold
};

class itms : public mdlChk {
public:
    using mdlChk::mdlChk;

    // ---- Start-up (startup.cpp) ----

    // Numbers and weighs transitions, finds the active atoms, links atoms and components, and sets
    // the first labels. Once, after the model has been built.
    void rtInit();
    // The atoms that stand in *clauses* or in an internal clause of a variable, by id.
    string_map<Atom*> loadAtoms(std::vector<std::unique_ptr<Clause>> const& clauses) const;
    void idTransitions(Comp* comp, int& id);
    void deadEndAtom(Atom* atom);
    void initialize();
    void compileTransitionsProb(Atom* atom);
    // True when the two sets of clauses have no atom in common.
    static bool intersectClauses(std::vector<Clause*> const& a, std::vector<Clause*> const& b);
    // True when the atom's clauses share no atom with those of any of *atoms*.
    static bool intersectClauses(Atom const* atom, std::vector<Atom*> const& atoms);

    // ---- Tables (tables.cpp) ----

    // Membership by identity; of texts, by content.
    using DataManager::inVector;
    static bool inVector(TrajEl const* element, std::vector<TrajEl*> const* elements);
    static bool inVector(Transition const* transition, std::vector<Transition*> const* transitions);
    static bool inVector(char const* text, std::vector<char const*> const* texts);
    static bool inVectorStateVar(StateVar const* variable, std::vector<StateVar*> const* variables);
    static bool inVectorClause(Clause const* clause, std::vector<Clause*> const* clauses);
    // Ignores the key.
    static bool inMultimap(Atom const* atom, SignedAtoms const& atoms);
    // The same keys, with the elements of *state*.
    static ElementTable copyState(ElementTable const& table, State const* state);
    // The variables of the elements, by name.
    static string_map<StateVar*> getStateVars(std::vector<TrajEl*> const* elements);

    // ---- Labels and supports (labels.cpp) ----

    // The element of an atom in a state: the component is pulled forward when it is missing, with
    // its idle transitions unless told otherwise. Null only for an atom that no step knows.
    TrajEl* getElt(char const* id, StateSite const& site, bool withIdle = true);
    int maxPropagationNumber(Clause const* clause, StateSite const& site);
    bool isResupportable(TrajEl const* element, Clause const* clause, bool sign,
                         StateSite const& site);
    void setSupport(Clause* clause, TrajEl* element, StateSite const& site);
    // Required: in spite of its name, the elements whose label is "unknown".
    SignedElements getNotUnknown(Clause const* clause, StateSite const& site);
    // The first unknown element, or null.
    TrajEl* getUnknown(Clause const* clause, StateSite const& site);
    // Truth of a literal: "true", "false", "unknown", or "" for a label that is none of these.
    std::string evalAtomOnLabels(SignedAtoms::const_iterator literal, StateSite const& site);
    bool testClause(Clause const* clause, StateSite const& site);
    // True when the clause can no longer be satisfied.
    bool isViolated(Clause const* clause, StateSite const& site);
    // The last unknown element of a clause that no plain literal satisfies, or null.
    TrajEl* unitClause(Clause const* clause, StateSite const& site);

    // ---- Invariants (invariants.cpp) ----

    // What does not hold of a state that the engine works on, or null: the invariants of the state,
    // and that each element has a number of 0 and no support, or stands on a clause that mentions
    // it.
    static char const* brokenSupports(State const& state);
    // Whether the number of a supported element is above those of the others of its clause in the
    // state. So it is when the support is given; a later flip of another may raise that one.
    static bool risesAboveSupport(TrajEl const& element, State const& state);

    // ---- Unit propagation (propagate.cpp) ----

    Clause* getFirstUnitClause(std::vector<TrajEl*> const& elements, StateSite const& site);
    Clause* getFirstUnitClause(Atom const* atom, StateSite const& site);
    Clause* getFirstUnitClause(StateSite const& site);
    void propagateClause(Clause const* clause, StateSite const& site);
    // Takes a branch to zero or more consistent ones, which are appended to *results*.
    void unitPropagate(std::unique_ptr<ItmsRes> branch, ItmsResults& results,
                       SearchLimits const& limits, Trajectory* trajectory, int timestep);

    // ---- Conflicts (conflicts.cpp) and branching (branching.cpp) ----

    // Asserts *props* in a state. The state is consumed, unless a proposition is refused: then it
    // stays in *state* and the result is empty. An empty result tells that the step is impossible.
    ItmsResults addPropositions(SignedElements const& props, std::unique_ptr<State>& state,
                                SearchLimits const& limits, Trajectory* trajectory, int timestep,
                                bool keep);
    // Consumes a branch with a violated clause: answers the branch that goes on, or null, and
    // pushes the alternatives on the agenda.
    std::unique_ptr<ItmsRes> propagateThroughConflict(Clause* clause, std::unique_ptr<ItmsRes> res,
                                                      Agenda& agenda, SearchLimits const& limits,
                                                      Trajectory* trajectory, int timestep);
    void resupportDependence(TrajEl* element, ElementTable& focus, StateSite const& site);
    void checkForFocusedInternalConflicts(ElementTable const& table, std::queue<Clause*>& conflicts,
                                          StateSite const& site);
    // The last violated internal clause of the element's variable, or null.
    Clause* checkForInternalConflicts(TrajEl const* element, StateSite const& site);
    void checkForFocusedConflicts(ElementTable const& table, std::queue<Clause*>& conflicts,
                                  StateSite const& site);
    // Every clause of *clauses* that tests false, printed.
    std::vector<Clause*> checkForConflicts(std::vector<std::unique_ptr<Clause>> const& clauses,
                                           StateSite const& site);
    // Retracts an element and what depends on it; all of them are appended to *list*.
    void deleteClause(TrajEl* element, std::vector<TrajEl*>& list, StateSite const& site);

    // ---- Derivation (derivation.cpp, rule `derived`) ----

    // The consistent branches that follow from what was asserted in *base*, of the fewest changes;
    // false where the classic way is to be taken.
    bool deriveBranches(ItmsRes const& base, ItmsResults& results, SearchLimits const& limits,
                        Trajectory* trajectory, int timestep);
    // Of the plant's clauses; made when it is first asked for.
    ClauseNet const& clauseNet();

    // ---- Probabilities (probabilities.cpp) ----

    void initPb(State* state) { initStateProbas(state); }
    void initStateProbas(State* state);
    void sortPostProbs(State* state);
    // Mass-weighted entropy of the transitions after learning the variable's value. Fills the
    // table of each of its atoms. Without the rule `likelihood` not-a-number when an atom has no
    // mass.
    double entropy(StateVar const* variable, State* state);
    double entropy(Atom const* atom, State* state);
    // Chance that the atom holds after a transition.
    double computeCondProbRough(Atom const* atom, Transition const* transition);
    void computeObsCondRough(State* state);
    // The likelihood of what was observed in a state, given its modes (likelihood.cpp).
    void computeObsLikelihood(StateSite const& site);
    static bool checkInOpposites(Atom const* atom, SignedAtoms const& atoms);
    // The atom belongs to the component of one of *atoms*, or to one that this component imports:
    // an owner of its imported commands, or a neighbour with which it shares a clause.
    static bool checkInImportedComps(Atom const* atom, SignedAtoms const& atoms);
    static std::vector<Atom*> predictedAtoms(Atom* atom, std::vector<Atom*> list);
    static double probaCondObsAtom(Atom* atom, std::vector<Atom*> const& observed);
    // Truth of this level of a formula on the newest labels up to step t.
    static bool evalStateFormula(StateFormula const* formula, Trajectory const* trajectory, int t);

    // ---- Prime implicates (implicates.cpp) ----

    // Reads the file named after the model. 1 when read, 0 without a file, -1 on an unknown atom.
    int readPI();

    // Every variable of every component, in the order of the registry.
    std::vector<StateVar*> const& stateVars = plant.stateVars;
    // Components pulled forward keep the locks of their observable elements.
    bool keepLocks = false;
    std::unique_ptr<PiTable> piTable;  // null unless readPI has run

private:
    std::unique_ptr<ClauseNet const> itsClauseNet;

    void settle(TrajEl* element, char const* label, StateSite const& site);
    void giveUp(Atom const* left, Atom const* taken, ItmsRes& branch, StateSite const& site);
    void numberTransition(Transition* transition, Comp const& comp, int id);
    static bool guardHasCommand(Transition const& transition);
    void weighGuards(Comp const& comp);
    void linkAtoms(Comp* comp);
    void checkFocus(ElementTable const& table, ItmsRes& res, StateSite const& site);
    std::unique_ptr<ItmsRes> settleBranch(std::unique_ptr<ItmsRes> cur, Agenda& agenda,
                                          SearchLimits const& limits, Trajectory* trajectory,
                                          int timestep);
    void finishBranch(std::unique_ptr<ItmsRes> cur, ItmsResults& results, Agenda const& agenda,
                      Trajectory* trajectory, int timestep);
    void removeFromSupport(TrajEl* element, StateSite const& site);
};

// Failures of the trajectory's history if one more were added in *state*.
double projectedRank(Trajectory const* trajectory, State const* state);
