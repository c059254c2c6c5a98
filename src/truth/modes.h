// The true values of the discrete variables of a plant over a run: modes that moves lead on,
// commands that are given, values that follow from conditions, and values that follow from clauses.
//
// Of the moves of a variable that a step allows the first nominal one that is not idle is taken; a
// failure only where a fault of the setting asks for it. A command lasts one step.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <vector>

#include "model/Plant.h"
#include "model/StateVar.h"
#include "model/Transitionrt.h"
#include "truth/setting.h"

namespace truth {

// A fault of the setting, and the step at which it struck.
struct Strike {
    Atom const* mode = nullptr;
    int step = 0;
};

class Modes {
public:
    // Whether a condition of the continuous side, by its place in the list of conditions, holds.
    using Holds = std::function<bool(int)>;

    // The plant outlives this.
    Modes(Plant const& plant, Setting const& setting);

    // Takes what conditions and commands are at the step, and then every move that is due. Returns
    // the moves taken, in the order of the plant's variables; a mode that a fault enters without a
    // move of the plant is not among them.
    std::vector<Transition const*> step(int time, Holds const& holds);

    // Null when nothing determines the value.
    Atom const* valueOf(StateVar const& variable) const;
    bool isTrue(Atom const& atom) const { return valueOf(*atom.getStateVar()) == &atom; }
    std::vector<Strike> const& struck() const { return strikes; }

private:
    void takeConditions(Holds const& holds);
    void takeCommands(int time);
    void deduce();
    void propagate();
    bool deduceFrom(Clause const& clause);
    bool deduceOnly(StateVar const& variable);
    bool isFalse(Atom const& atom) const;
    bool settle(Atom const& atom, bool value);
    bool holds(StateFormula const& formula) const;
    bool isDue(Transition const& move) const;
    Transition const* nominalMove(StateVar const& variable) const;
    Transition const* failureInto(Atom const& mode) const;
    bool canFail(Atom const& mode) const;
    // The atom that a fault leads the variable to now, and the move; null when none strikes.
    Atom const* strike(StateVar const& variable, int time, Transition const*& move);

    Plant const& plant;
    Setting const setting;
    std::map<StateVar const*, Atom const*> values;
    std::set<Atom const*> excluded;  // false, though the value of the variable is not yet known
    std::vector<Fault> pending;
    std::vector<Strike> strikes;
};

}  // namespace truth
