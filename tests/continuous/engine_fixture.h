// What the tests of the continuous engine share: a clean engine for each test, a record of the
// calls of the bridge, the data given from outside, and small discrete variables.
#pragma once

#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "continuous/model_parts.h"
#include "continuous/sorn-runt.h"
#include "dynamic_fixture.h"
#include "model/Atom.h"
#include "model/CondVarrt.h"

namespace engine_test {

using dynamic_test::Plant;
using objets_test::obj;
using objets_test::text;

// Calls of the bridge in order, as "add <atom> #<runtime>" and "remove <atom> #<runtime>".
extern std::vector<std::string> bridgeCalls;

// What the host hands out when misbehaviours and conditions are asked for, and what it was asked
// with.
struct Outside {
    std::vector<int> misbs, conds;
    bool given = true;
    int count = -1;
};
extern Outside outside;

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

// The entries of a history, newest first, as "1 2 [3, 4]".
std::string entries(History<s_Objet> const& history);
std::string entries(History<int> const& history);
std::string entries(std::vector<int> const& values);

// A history whose entries are *values*, newest first.
template <typename T>
History<T> historyOf(std::vector<T> const& values) {
    History<T> history(static_cast<int>(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i)
        history.set(static_cast<int>(i), values[i]);
    return history;
}
// The same with the numbers first, first + 1, ...
History<s_Objet> numbered(int length, double first = 1);

// A parameter of the plant.
s_Variable* parameter(Plant& plant, char const* nom, double value);

// A discrete variable with an atom for each value; ids are "<name>=<value>".
class Choice {
public:
    Choice(std::string const& name, std::vector<std::string> const& values);
    Atom* operator[](int i) const { return atoms[static_cast<std::size_t>(i)].get(); }

private:
    CondVar variable;
    std::vector<std::unique_ptr<Atom>> atoms;
};

// The events of a runtime in the order of a walk, as "+c1=low -c1=high".
std::string events(s_runtime const& rt);

// The engine as it stands at the start of the program, before and after each test.
// Runtimes that a split added to nrt are destroyed; the one that was split belongs to its test.
class EngineTest : public testing::Test {
protected:
    EngineTest() { reset(); }
    ~EngineTest() override { reset(); }

    // Empties nrt, and destroys what is in it but *keep*.
    void dropSplit();

    s_runtime* keep = nullptr;

private:
    void reset();
};

// A random engine; its seed goes into the failure messages of the test.
class Dice {
public:
    explicit Dice(unsigned seed) : engine(seed) {}
    int operator()(int lowest, int highest) {
        return std::uniform_int_distribution<int>(lowest, highest)(engine);
    }

private:
    std::mt19937 engine;
};

}  // namespace engine_test
