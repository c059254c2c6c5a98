// What the tests of the discrete model share: variables with their atoms, captured output, the
// shorthand for the walk of a bag, and a clean registry.
#pragma once

#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "model/Atom.h"
#include "model/CommandVar.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/StateFormula.h"
#include "model/Transitionrt.h"
#include "model/labels.h"
#include "trajectory/DataManagerrt.h"

namespace model_fixture {

// What *action* writes on standard output.
template <typename Action>
std::string printed(Action action) {
    testing::internal::CaptureStdout();
    action();
    std::cout.flush();
    return testing::internal::GetCapturedStdout();
}

// What *action* writes on the error stream.
template <typename Action>
std::string complaint(Action action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

// A variable whose domain and atoms are *values*, the atoms made in that order and the first value
// the default; ids are "<name>=<value>".
template <typename Variable = ModeVar>
class Valued {
public:
    Valued(std::string const& name, std::vector<std::string> const& values)
        : variable(name, {values.begin(), values.end()}, values.front(), nullptr) {
        for (std::string const& value : values)
            atoms.push_back(std::make_unique<Atom>(&variable, value, name + "=" + value));
    }
    Atom* operator[](std::string const& value) const {
        for (auto const& atom : atoms)
            if (atom->value == value)
                return atom.get();
        ADD_FAILURE() << "no atom of value " << value;
        return nullptr;
    }

    Variable variable;
    std::vector<std::unique_ptr<Atom>> atoms;
};

// A literal as tests write it: the sign and the value of its atom.
using Literal = std::pair<bool, Atom*>;

// The walk of a bag as signs and values: "+a-b" is the key true with a, then the key false with b.
std::string walk(SignedAtoms const& bag);
// The values of the atoms, one after the other.
std::string valuesOf(std::vector<Atom*> const& atoms);

// A formula with these literals, inserted in this order.
std::unique_ptr<StateFormula> formulaOf(std::vector<Literal> const& literals);

// A transition that leaves *from* for *to*.
std::unique_ptr<Transition> move(Atom* from, Atom* to, std::string const& type, double proba,
                                 bool idle = false);

// A registry that is empty before and after each test.
class RegistryTest : public testing::Test {
protected:
    RegistryTest();
    ~RegistryTest() override;

    // A component in the registry, with one mode and a transition for each guard probability.
    Comp* component(std::string const& name, std::vector<double> const& guardProbas);

    DataManager& registry;  // of the plant and the run that the test works on
};

}  // namespace model_fixture
