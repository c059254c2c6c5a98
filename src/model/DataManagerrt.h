// The model-wide registry and the holder of statistics: a class of static members only.
//
// Everything reaches the model through these statics. The registry owns the components and the
// clauses, and through the components the variables, atoms and transitions; it also owns the
// tracked trajectories of a discrete run. The two benchmark logs are created, empty, before main.
//
// A subscript of active_comps or active_atoms with an unknown key enters a null, so every walk over
// them skips nulls.
#pragma once

#include <cstdio>
#include <fstream>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "model/Atom.h"
#include "model/Clause.h"
#include "model/Comprt.h"
#include "model/signedAtoms.h"
#include "support/hash_map.h"
#include "support/owned.h"

class State;
class TrajEl;
class Trajectory;

// Equality of strings as an ordering object: bags that are never searched by key.
struct eqstring {
    bool operator()(std::string const& a, std::string const& b) const { return a == b; }
};

// Candidate histories, best first; equal keys keep the order of insertion. Owns the trajectories.
using TrajectoryMap = std::multimap<double, std::unique_ptr<Trajectory>, std::greater<double>>;

class DataManager {
public:
    DataManager();
    // Frees the model.
    ~DataManager();
    DataManager(DataManager const&) = delete;
    DataManager& operator=(DataManager const&) = delete;

    // Starts the cover tables; returns 1.
    int init();

    // Takes the component and returns it.
    template <typename Component>
    Component* addComp(std::unique_ptr<Component> comp) {
        Component* borrowed = comp.get();
        ownedComps.push_back(own<Comp>(std::move(comp)));
        active_comps[borrowed->getName()] = borrowed;
        return borrowed;
    }
    // Required: an unknown name enters a null under it and answers null. The key must live on.
    static Comp* getComp(char const* name) { return active_comps[name]; }
    void addAtom(Atom* atom) { active_atoms[atom->getId()] = atom; }
    // Required: as getComp.
    static Atom* getAtom(char const* id) { return active_atoms[id]; }
    // Takes the clause and returns it.
    static Clause* addClause(std::unique_ptr<Clause> clause);

    static bool inVector(Atom const* atom, std::vector<Atom*> const* atoms);
    static bool inList(char const* text, std::list<char const*> const* texts);
    static bool inMultimap(Atom const* atom,
                           std::multimap<std::string, Atom*, eqstring> const* atoms);

    // Adds to the cover of step t what transition *tr* takes of it.
    static void updateStatesCover(int t, Transition const* tr);
    // Required: builds on the value of the earlier call.
    static void updateTrajectoriesCover();

    // One line of bench1.bmk: the step, seconds of processor time, a flag, the number of
    // candidates.
    static void addBmkEntry(int step, double seconds, bool flag, unsigned candidates);
    // One line of itmsbench.bmk: a running number, seconds, the number of results, the atoms' ids.
    static void addItmsBmkEntry(double seconds, unsigned results,
                                std::vector<char const*> const* ids);

    // True when both states have the same elements with the same labels.
    static bool compareTrajsStates(State const* a, State const* b);
    // Prints which trajectories of the map went through equal states.
    static void compareTrajs(TrajectoryMap const* trajectories);
    // Prints whether the joint guard probabilities of all components sum to 1.
    static void testTransitionsProbas();

    // Writes on the error stream. Kind 0 is a request error, kind 1 a warning, others nothing.
    static void dataError(long kind, long code);
    // The index of each mode that holds in *state*; nothing when *stream* is null.
    static void printModes(std::FILE* stream, State const* state);

    static void showComps();
    static void showComp(char const* name);
    static void showClauses();
    static void showAtoms();
    static void viewActiveAtoms(bool full);
    static void viewAtomVector(std::vector<Atom*> const* atoms);
    static void viewAtomVectorId(std::vector<Atom*> const* atoms);
    static void viewAtomVector2(std::vector<std::vector<Atom*>> const* sets);
    static void viewClauseVector(std::vector<Clause*> const* clauses);
    static void viewMultimapAtom(SignedAtoms const* atoms);
    static void viewHashMapAtom(string_map<Atom*> const* atoms);
    static void viewTrajectoriesTransitionsMultimap(TrajectoryMap const* trajectories);

    static string_map<Comp*> active_comps;
    static string_map<Atom*> active_atoms;
    static hash_map<int, Transition*> active_trans;
    static std::vector<std::unique_ptr<Clause>> cls;
    static TrajectoryMap tracked_traj;
    static double traj_cover;
    static hash_map<int, double> states_cover;
    static unsigned trajectories_created;
    static unsigned trajectories_checked;
    static unsigned transitions_checked;
    static unsigned trajectories_destroyed;
    static std::string model_name;
    static std::ofstream benchmk_stream;
    static std::ofstream itms_stream;
    static unsigned itms_calls;

private:
    static std::vector<owned<Comp>> ownedComps;
};
