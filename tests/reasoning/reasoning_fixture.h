// Small hand-made models for the tests of the reasoning, and the ways to read its results.
//
// A SmallModel owns the engine, and so the registry: one at a time. Atoms go by short names: a
// proposition "p" is the one atom of its variable; the values of a variable "mode" are "mode=on"
// and so on. Components share one name space, so the names of a model must differ.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "fixtures/the_run.h"
#include "model/CommandVar.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/StateFormula.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "reasoning/itmsrt.h"

namespace reasoning_fixture {

// Catches standard output while it lives, so that traces can be read and do not fill the log.
class Trace {
public:
    Trace();
    ~Trace();
    Trace(Trace const&) = delete;
    Trace& operator=(Trace const&) = delete;

    // What was printed since the last call.
    std::string take();

private:
    std::ostringstream text;
    std::streambuf* console;
};

// How often *part* stands in *text*, without overlaps.
int count(std::string const& text, std::string const& part);

// What *action* writes on the error stream.
template <typename Action>
std::string complaint(Action action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

class SmallModel {
public:
    explicit SmallModel(RunSettings const& settings = {});

    // ---- Building, before start() ----

    // A registered component; "c" exists from the beginning.
    Comp* comp(std::string const& name);
    // A variable of a component, with an atom for each value in that order; the first value is the
    // default. Without *exclusive* nothing keeps two values apart.
    template <typename Variable = ModeVar>
    Variable* variable(std::string const& name, std::vector<std::string> const& values,
                       bool exclusive = true, std::string const& owner = "c") {
        Comp* comp = comps.at(owner);
        auto* made = comp->addStateVar(std::make_unique<Variable>(
            owner + "." + name, std::set<std::string>(values.begin(), values.end()), values.front(),
            comp));
        for (std::string const& value : values)
            atoms[name + "=" + value] = comp->newAtom((name + value).c_str(), made, value);
        if (exclusive)
            addExclusiveChoice(thePlant(), made);
        return made;
    }
    // One-valued variables, of one kind each. Their current state is no value, so that their labels
    // are unknown at the start.
    template <typename Variable = ModeVar>
    void propositions(std::string const& names, std::string const& owner = "c") {
        for (std::string const& name : words(names)) {
            auto* made = variable<Variable>(name, {"on"}, false, owner);
            made->setCurrentState("");
            atoms[name] = atoms.at(name + "=on");
        }
    }
    // A clause of literals such as "!p q", registered; walked in the order of the text. A mixed
    // order that no insertion gives is a failure.
    Clause* clause(std::string const& literals);
    // A conjunction of such literals, or nothing for "".
    std::unique_ptr<StateFormula> formula(std::string const& literals) const;
    // A transition of a component. *pre* and *post* are literals.
    Transition* transition(std::string const& pre, std::string const& post, double proba,
                           std::string const& type = transNominal, bool idle = false,
                           std::string const& owner = "c");
    // Start-up, and a history with the initial state at step 0.
    void start();

    // ---- Reading and changing, after start() ----

    Atom* atom(std::string const& name) const { return atoms.at(name); }
    // State 0 of the history, where most tests work.
    State* state() const { return history->getState(0); }
    StateSite site() const { return {state(), history.get(), 0}; }
    StateSite site(State* other) const { return {other, history.get(), 0}; }
    TrajEl* elt(std::string const& name) const { return elt(name, state()); }
    TrajEl* elt(std::string const& name, State const* in) const;
    // Labels elements of state 0: "p !q ?r" for true, false and unknown.
    void label(std::string const& literals);
    // The labels of these elements, a letter each: "tfu".
    std::string labels(std::string const& names, State const* in) const;
    std::string labels(std::string const& names) const { return labels(names, state()); }
    // Table of elements of state 0.
    ElementTable table(std::string const& names) const;
    // Puts components into state 0 without pulling elements: their transitions then weigh.
    void weigh(std::initializer_list<char const*> names);

    // Asserts "p !q" in a full copy of state 0. What a refusal leaves is in `refused`.
    ItmsResults assertAll(std::string const& props, SearchLimits const& limits, bool keep = false);
    ItmsResults assertAll(std::string const& props) { return assertAll(props, {false, 9.0}); }
    // Hands a violated clause of a full copy of state 0 to the engine. The alternatives are in
    // `agenda`, the first on top.
    std::unique_ptr<ItmsRes> resolve(Clause* clause, SearchLimits const& limits,
                                     std::string const& changed = "");
    std::unique_ptr<ItmsRes> resolve(Clause* clause) { return resolve(clause, {false, 9.0}); }

    static std::vector<std::string> words(std::string const& text);

    Trace trace;
    itms& engine;
    std::unique_ptr<Trajectory> history;
    std::map<std::string, Comp*> comps;
    std::unique_ptr<State> refused;
    Agenda agenda;

private:
    std::map<std::string, Atom*> atoms;
};

}  // namespace reasoning_fixture
