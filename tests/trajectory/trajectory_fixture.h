// What the tests of histories share: components made by hand, with their atoms entered by id as
// start-up leaves them, histories over them, and captured output.
//
// Ids are "<component>.<variable>=<value>"; a Unit answers to "<variable>=<value>".
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "fixtures/the_run.h"
#include "model/CommandVar.h"
#include "model/Comprt.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/labels.h"
#include "trajectory/DataManagerrt.h"
#include "trajectory/Trajectoryrt.h"

namespace trajectory_fixture {

// What *action* writes on standard output.
template <typename Action>
std::string printed(Action action) {
    testing::internal::CaptureStdout();
    action();
    std::cout.flush();
    return testing::internal::GetCapturedStdout();
}

// Literals of a guard or an effect: values as a Unit names them, and their signs.
using Literals = std::vector<std::pair<Atom*, bool>>;

std::unique_ptr<StateFormula> formulaOf(Literals const& literals, char const* operat);

// A component with its variables, atoms and transitions.
class Unit {
public:
    explicit Unit(std::string const& name) : comp(name) {}

    // A variable with an atom for each value, in that order. The first value is the default: its
    // atom is set, so that it is labelled true and its siblings false.
    template <typename Variable = ModeVar>
    Variable* variable(std::string const& name, std::vector<std::string> const& values) {
        auto* made = comp.addStateVar(std::make_unique<Variable>(
            comp.name + "." + name, std::set<std::string>(values.begin(), values.end()),
            values.front(), &comp));
        for (std::string const& value : values)
            enter(comp.newAtom("", made, value));
        made->getAtomLinks().front()->set();
        return made;
    }
    // A move of a mode, or a stay when both are the same; *also* are further literals of the guard.
    Transition* move(int id, char const* from, char const* to, double proba,
                     char const* type = transNominal, bool idle = false, Literals const& also = {});
    // The transition that keeps a mode.
    Transition* stay(int id, char const* mode, double proba, char const* type = transNominal) {
        return move(id, mode, mode, proba, type, true);
    }

    Atom* operator[](std::string const& atom) const;
    // Zero-terminated and stable, as tables want it.
    char const* id(std::string const& atom) const { return (*this)[atom]->getId(); }

    Comp comp;

private:
    void enter(Atom* atom);
};

// All atoms of the components, by id.
string_map<Atom*> atomsOf(std::initializer_list<Unit const*> units);

// The elements of a state in the order of a walk, as their ids.
std::vector<std::string> walk(State const& state);

// A state without elements, and one with those of these components, free and without transitions.
std::unique_ptr<State> emptyState();
std::unique_ptr<State> stateOf(std::initializer_list<Unit const*> units);

// Two components of one mode each: a pump "p" with the modes off, on, dead, and a tank "t" with the
// modes low, high. The pump's off and on and the tank's low and high have idle transitions.
struct PumpAndTank {
    PumpAndTank();

    Unit pump{"p"};
    Unit tank{"t"};
    Transition *stayOff, *stayOn, *start, *die;  // ids 0 to 3, probabilities 0.5, 0.25, 0.5, 0.125
    Transition *stayLow, *stayHigh, *fill;       // ids 4 to 6, probabilities 0.75, 0.5, 0.25
    string_map<Atom*> atoms;
};

// A history of the plant from its initial state, without the trace of what is added to it.
class PumpHistory : public PumpAndTank {
public:
    PumpHistory() : path(theRun().scheduler.book, &atoms) {}

    // Adds a state without elements at the next step, with the time 10 * step.
    State* addEmpty();
    void addEmpty(int count);

    Trajectory path;
};

}  // namespace trajectory_fixture
