// What the tests of the scheduler and of the hybrid side share: captured streams, text files, and
// small discrete models made by hand.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "continuous/records.h"
#include "fixtures/the_run.h"
#include "model/CommandVar.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "reasoning/Scheduler.h"

namespace scheduler_fixture {

struct Streams {
    std::string out, err;
};

// What *action* writes on both standard streams.
template <typename Action>
Streams streamsOf(Action action) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    action();
    std::cout.flush();
    std::string out = testing::internal::GetCapturedStdout();
    return {std::move(out), testing::internal::GetCapturedStderr()};
}

// What *action* writes on the error stream; the trace on standard output is dropped.
template <typename Action>
std::string complaint(Action action) {
    return streamsOf(action).err;
}

// A file of the test's own, which goes with it.
class TextFile {
public:
    explicit TextFile(std::string const& text) {
        char name[] = "/tmp/tavro_test_XXXXXX";
        int const descriptor = mkstemp(name);
        EXPECT_NE(descriptor, -1);
        path = name;
        std::ofstream(path) << text;
        close(descriptor);
    }
    ~TextFile() { std::filesystem::remove(path); }
    TextFile(TextFile const&) = delete;

    std::string path;
};

// A literal of a guard or of an effect: the sign and the atom.
using Literal = std::pair<bool, Atom*>;

inline std::unique_ptr<StateFormula> formulaOf(std::vector<Literal> const& literals) {
    auto formula = std::make_unique<StateFormula>();
    for (auto const& [sign, atom] : literals)
        formula->addAtom(atom, sign);
    return formula;
}

// A scheduler with a model under construction. Components and variables are made first, then
// transitions; start() ends the construction and makes the first trajectory and an empty runtime.
class HandModel {
public:
    explicit HandModel(RunSettings const& settings = {}) {
        streamsOf([&] { newPlant("hand", settings); });
        scheduler = &theRun().scheduler;
        rt.engine = &theRun().engine;
    }
    ~HandModel() {
        traj.reset();
        streamsOf([] { endPlant(); });
    }
    HandModel(HandModel const&) = delete;

    Comp* comp(std::string const& name) { return scheduler->addComp(std::make_unique<Comp>(name)); }

    // A variable with an atom for each value, in that order; the first value is the default.
    template <typename Variable>
    Variable* variable(Comp* comp, std::string const& name,
                       std::vector<std::string> const& values) {
        Variable* made = comp->addStateVar(std::make_unique<Variable>(
            comp->name + "." + name, std::set<std::string>(values.begin(), values.end()),
            values.front(), comp));
        for (std::string const& value : values)
            comp->newAtom((name + "_" + value).c_str(), made, value);
        addExclusiveChoice(thePlant(), made);
        return made;
    }

    static Transition* transition(Comp* comp, std::vector<Literal> const& guard,
                                  std::vector<Literal> const& effect,
                                  std::string const& type = transNominal, bool idle = false) {
        return comp->addTransitionToC(std::make_unique<Transition>(
            formulaOf(guard), formulaOf(effect), type, 0.9, 0.0, idle));
    }

    // A transition that keeps the mode.
    static Transition* idle(Comp* comp, Atom* mode) {
        return transition(comp, {{true, mode}}, {{true, mode}}, transNominal, true);
    }

    // Several effects, each under its delay.
    static Transition* delayed(Comp* comp, std::vector<Literal> const& guard,
                               std::vector<std::pair<int, std::vector<Literal>>> const& effects) {
        auto posts = std::make_unique<Transition::Posts>();
        for (auto const& [delay, literals] : effects)
            (*posts)[delay] = formulaOf(literals).release();
        return comp->addTransitionToC(
            std::make_unique<Transition>(formulaOf(guard), std::move(posts), transNominal, 0.9));
    }

    // Not both of two atoms of different variables.
    static void exclude(Comp* comp, Atom* a, Atom* b) {
        Clause* clause = thePlant().addClause(std::make_unique<Clause>(comp));
        clause->addAtomRef(a, true);
        clause->addAtomRef(b, true);
    }

    void start() {
        streamsOf([this] { scheduler->rtInit(); });
        traj = std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms);
        for (auto const& entry : thePlant().active_comps)
            traj->getState(0)->comps[entry.second->getName()] = entry.second;
        theRun().sMM->runtime = &rt;
    }

    // The atom of that id in the model.
    static Atom* atom(char const* id) {
        auto const found = thePlant().active_atoms.find(id);
        if (found != thePlant().active_atoms.end())
            return found->second;
        ADD_FAILURE() << "no atom " << id;
        return nullptr;
    }

    // The newest label of an atom at or before step *t*.
    std::string label(char const* id, int t) const {
        TrajEl const* element = traj->getElt(id, t, 0);
        return element != nullptr ? element->getLabel() : "none";
    }
    std::string label(char const* id) const { return label(id, traj->getCurrentTime()); }
    // The lock in the state of the current step itself; -1 without an element there.
    int lock(char const* id) const {
        TrajEl const* element = traj->getLastState()->getElt(id);
        return element != nullptr ? element->lock : -1;
    }

    Scheduler* scheduler;
    std::unique_ptr<Trajectory> traj;
    s_runtime rt;
};

// A valve that a command opens and closes: a component with a command and a mode.
//   valve.cmd: none, open, close; valve.mode: closed, open, broken
class Valve : public HandModel {
public:
    Valve() {
        valve = comp("valve");
        cmd = variable<CommandVar>(valve, "cmd", {"none", "open", "close"});
        mode = variable<ModeVar>(valve, "mode", {"closed", "open", "broken"});
        none = cmd->getAtomLinks()[0];
        open = cmd->getAtomLinks()[1];
        close = cmd->getAtomLinks()[2];
        isClosed = mode->getAtomLinks()[0];
        isOpen = mode->getAtomLinks()[1];
        isBroken = mode->getAtomLinks()[2];
    }
    // The transitions of every valve: both moves, a failure, and the idle ones.
    void addMoves() {
        opens = transition(valve, {{true, open}, {true, isClosed}}, {{true, isOpen}});
        closes = transition(valve, {{true, close}, {true, isOpen}}, {{true, isClosed}});
        breaks = transition(valve, {{true, open}, {true, isClosed}}, {{true, isBroken}}, transFail);
        idle(valve, isClosed);
        idle(valve, isOpen);
        idle(valve, isBroken);
    }

    Comp* valve;
    CommandVar* cmd;
    ModeVar* mode;
    Atom *none, *open, *close, *isClosed, *isOpen, *isBroken;
    Transition *opens = nullptr, *closes = nullptr, *breaks = nullptr;
};

}  // namespace scheduler_fixture
