// The view of a plant through which one run reaches it, and the holder of the run's statistics.
//
// The tables are the plant's own; while the plant is being built, and only then, they may be
// written, through the builder's operations. What is here besides belongs to the run: the tracked
// trajectories of a discrete run, covers, counters. It tells through the host.
//
// A subscript of active_comps or active_atoms with an unknown key enters a null, so every walk over
// them skips nulls.
#pragma once

#include <cassert>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "model/Plant.h"
#include "model/signedAtoms.h"
#include "support/hash_map.h"
#include "support/host.h"
#include "support/rules.h"
#include "trajectory/TrajectoryBook.h"

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
    // The plant is only read; it and the rules outlive the view.
    DataManager(Plant const& plant, Host& host, Rules const& rules = classicRules);
    // Frees what the run holds, and tells so.
    ~DataManager();
    DataManager(DataManager const&) = delete;
    DataManager& operator=(DataManager const&) = delete;

    // Starts the cover tables; returns 1.
    int init();

    // ---- Building ----

    // From here on the plant of this object may be written, by the operations below: it is being
    // built, and no run has it yet.
    void startBuilding(Plant& same) {
        assert(&same == &plant);
        plantInMaking = &same;
    }
    // The plant that is being built.
    Plant& building() const {
        assert(plantInMaking != nullptr);
        return *plantInMaking;
    }
    // Takes the component, tells what its making complained of, and returns it.
    template <typename Component>
    Component* addComp(std::unique_ptr<Component> comp) {
        tellComplaints(*comp);
        return building().addComp(std::move(comp));
    }
    // Required: an unknown name enters a null under it and answers null. The key must live on.
    Comp* getComp(char const* name) { return building().active_comps[name]; }
    void addAtom(Atom* atom) { building().active_atoms[atom->getId()] = atom; }
    // Required: as getComp.
    Atom* getAtom(char const* id) { return building().active_atoms[id]; }
    // Takes the clause and returns it.
    Clause* addClause(std::unique_ptr<Clause> clause) {
        return building().addClause(std::move(clause));
    }

    static bool inVector(Atom const* atom, std::vector<Atom*> const* atoms);
    static bool inList(char const* text, std::list<char const*> const* texts);
    static bool inMultimap(Atom const* atom,
                           std::multimap<std::string, Atom*, eqstring> const* atoms);

    // Adds to the cover of step t what transition *tr* takes of it.
    void updateStatesCover(int t, Transition const* tr);
    // Required: builds on the value of the earlier call.
    void updateTrajectoriesCover();

    // One line of the step log: the step, seconds of processor time, a flag, the number of
    // candidates.
    void addBmkEntry(int step, double seconds, bool flag, unsigned candidates);
    // One line of the propagation log: a running number, seconds, the number of results, the
    // atoms' ids.
    void addItmsBmkEntry(double seconds, unsigned results, std::vector<char const*> const* ids);

    // True when both states have the same elements with the same labels.
    static bool compareTrajsStates(State const* a, State const* b);
    // Prints which trajectories of the map went through equal states.
    void compareTrajs(TrajectoryMap const* trajectories);
    // Prints whether the joint guard probabilities of all components sum to 1.
    void testTransitionsProbas();

    // Writes a message. Kind 0 is a request error, kind 1 a warning, others nothing.
    void dataError(long kind, long code);
    // The index of each mode that holds in *state*; nothing when *stream* is null.
    static void printModes(std::ostream* stream, State const* state);

    void showComps();
    void showComp(char const* name, Comp::InfluencePrinter const& showInfluence);
    void showClauses();
    void showAtoms();
    void viewActiveAtoms(bool full);
    void viewAtomVector(std::vector<Atom*> const* atoms);
    void viewAtomVectorId(std::vector<Atom*> const* atoms);
    void viewAtomVector2(std::vector<std::vector<Atom*>> const* sets);
    void viewClauseVector(std::vector<Clause*> const* clauses);
    void viewMultimapAtom(SignedAtoms const* atoms);
    void viewHashMapAtom(string_map<Atom*> const* atoms);
    void viewTrajectoriesTransitionsMultimap(TrajectoryMap const* trajectories);

    Plant const& plant;
    Host& host;
    Rules const& rules;
    std::ostream& out;
    std::ostream& err;
    TrajectoryBook book;

    // Those of the plant.
    string_map<Comp*> const& active_comps;
    string_map<Atom*> const& active_atoms;
    hash_map<int, Transition*> const& active_trans;
    std::vector<std::unique_ptr<Clause>> const& cls;
    std::string const& model_name;

    TrajectoryMap tracked_traj;
    double traj_cover = 0.0;
    hash_map<int, double> states_cover;
    unsigned trajectories_created = 1;
    unsigned trajectories_checked = 0;
    unsigned transitions_checked = 0;
    unsigned trajectories_destroyed = 0;
    unsigned itms_calls = 0;

private:
    void tellComplaints(Comp const& comp) const;

    Plant* plantInMaking = nullptr;  // null in a run
};
