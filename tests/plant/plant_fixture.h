// What the tests of the plant share: plants as their models build them, and not yet started, with
// what the check takes of them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "continuous/records.h"
#include "model/Atom.h"
#include "model/Clause.h"
#include "model/Comprt.h"
#include "model/condMap.h"
#include "plant/check.h"
#include "reasoning/Scheduler.h"
#include "support/hash_map.h"

namespace plant_fixture {

using Texts = std::vector<std::string>;

// A plant as it was built and not yet started.
class BuiltPlant {
public:
    explicit BuiltPlant(std::function<void(Scheduler*)> const& build);
    ~BuiltPlant();

    s_runtime& rt() const { return *runtime; }
    PlantParts parts() const;
    std::vector<std::unique_ptr<Clause>>& clauses();
    Comp& comp(char const* name) const;
    Atom* atom(std::string const& id) const;
    StateVar* stateVariable(std::string const& name) const;
    Transition& transition(char const* comp, std::size_t i) const;
    s_Variable* variable(std::string const& nom) const;
    s_Influence* influence(std::string const& nom) const;

    // What the check tells: refusals as they are, warnings behind "warning: ".
    Texts findings() const;

private:
    Host host;
    Plant plant{"plant"};
    Scheduler scheduler{plant, host};
    s_runtime* runtime;
};

// The shipped room.
class Room : public BuiltPlant {
public:
    Room();
};

CondMap& condMapOf(StateVar* variable);
// The entries of condMap under the id of *atom*.
std::vector<int> linksOf(Atom const* atom);

}  // namespace plant_fixture
