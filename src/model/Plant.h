// A plant: what is built once and constant from then on. Several runs may share one.
//
// It owns the components and the clauses, and through the components the variables, atoms and
// transitions; of a hybrid plant also the runtime of which every run makes its copies. A compiled
// model fills a plant through the scheduler that it is handed at start-up; start-up then numbers,
// weighs and links what was built (itms::rtInit). After that nothing of it is written.
//
// A subscript of active_comps or active_atoms with an unknown key enters a null, so every walk over
// them skips nulls.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/Atom.h"
#include "model/Clause.h"
#include "model/Comprt.h"
#include "support/hash_map.h"
#include "support/owned.h"

struct s_runtime;

struct Plant {
    explicit Plant(std::string name);
    ~Plant();
    Plant(Plant const&) = delete;
    Plant& operator=(Plant const&) = delete;

    // Takes the clause and returns it.
    Clause* addClause(std::unique_ptr<Clause> clause);
    // Takes the component and returns it.
    template <typename Component>
    Component* addComp(std::unique_ptr<Component> comp) {
        Component* borrowed = comp.get();
        ownedComps.push_back(own<Comp>(std::move(comp)));
        active_comps[borrowed->getName()] = borrowed;
        return borrowed;
    }
    // Frees the model: the tables first, since their keys live in what is destroyed.
    void clear();

    std::string name;  // of its runtime, and of the files that belong to it
    string_map<Comp*> active_comps;
    string_map<Atom*> active_atoms;
    hash_map<int, Transition*> active_trans;
    std::vector<std::unique_ptr<Clause>> cls;
    // Every variable of every component, in the order of the registry; filled at start-up.
    std::vector<StateVar*> stateVars;
    // A template that no run steps; null in a discrete plant. Shared only so that its type need not
    // be known here: the plant is the one owner.
    std::shared_ptr<s_runtime> tavro_rt;

private:
    std::vector<owned<Comp>> ownedComps;
};
