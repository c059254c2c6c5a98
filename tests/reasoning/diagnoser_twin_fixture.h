// Random small models in two forms: plain numbers, whose histories are enumerated, and the records
// of the engine, in which the covering search looks for them.
//
// A component has the modes m0 and m1, a failure "bad", and sometimes a second one "worse"; most
// have a command (none, go, back). It shows lo or hi, as its mode says, and as what stands upstream
// of it shows. A history begins at step 0 with every component in m0.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "reasoning/Scheduler.h"

namespace diagnoser_twin {

// ---- Plain form ----

enum Mode { M0, M1, BAD, WORSE };
enum Command { NONE, GO, BACK };
enum Shows { LO, HI, FREE };  // FREE: the mode says nothing of what is shown
constexpr int noComponent = -1;
constexpr int anyCommand = -1;

// One transition of a component.
struct Move {
    int from;
    int to;
    int command;      // of the guard, or anyCommand
    bool unlessThat;  // the guard holds when the command is another one
    bool fails;
    bool idle;
    double proba;
    int witness = noComponent;  // another component that must be in m1 for the move
};

struct Component {
    bool commanded = false;
    int modes = 3;
    std::vector<Move> moves;
    std::vector<int> shows;      // by mode
    int upstream = noComponent;  // hi needs hi there
};

using Modes = std::vector<int>;  // by component

// The modes of every step and the moves between them.
struct History {
    std::vector<Modes> modes;
    std::vector<std::vector<int>> moves;  // by step and component, index into its moves
    int failures = 0;

    // The moves as text, step by step.
    std::string text() const;
};

struct Observed {
    int component;
    int value;  // LO or HI
};

struct Case {
    unsigned seed = 0;
    std::vector<Component> components;
    std::vector<std::vector<int>> commands;  // by step and component
    std::vector<Observed> observed;          // after the last step

    int steps() const { return static_cast<int>(commands.size()); }
    bool allows(int component, Move const& move, Modes const& modes, int step) const;
    // Whether the modes can show what was observed.
    bool agrees(Modes const& modes) const;
    // Every history of exactly *failures* failures from *first* on that agrees with what was
    // observed. Before *first* all goes as commanded.
    std::vector<History> explanations(int failures, int first) const;
};

Case randomCase(unsigned seed);

// ---- The engine's form ----

// Both streams go nowhere but into strings while it lives.
class QuietStreams {
public:
    QuietStreams();
    ~QuietStreams();
    QuietStreams(QuietStreams const&) = delete;

    std::ostringstream err;

private:
    std::ostringstream out;
    std::streambuf *console, *errors;
};

// A scheduler with the model of a case.
class EngineModel {
public:
    explicit EngineModel(Case const& example);
    ~EngineModel();
    EngineModel(EngineModel const&) = delete;

    // Runs the scenario of the case from a fresh start. With *fillGaps* every state then holds
    // every component before the observation comes.
    void run(bool fillGaps = false);
    // Failures without a command may then be expanded any number of times in one search.
    void allowRepeatedFailures();

    // The history as the engine tells it, from *first* on; what is wrong with it goes to *errors*.
    History read(Trajectory const* trajectory, std::vector<std::string>& errors) const;
    std::string trace() const { return streams.err.str(); }

    std::unique_ptr<Scheduler> scheduler;

private:
    struct Built {
        Comp* comp = nullptr;
        StateVar* mode = nullptr;
        StateVar* command = nullptr;
        StateVar* out = nullptr;
        std::vector<Transition const*> transitions;
    };
    void writeScenario() const;
    void holdEverywhere(Trajectory* trajectory);
    void build(int index);
    void addMoves(int index);
    void addClauses(int index);
    int valueOf(Trajectory const* trajectory, StateVar const* variable, int t,
                std::vector<std::string>& errors) const;
    int moveInto(Trajectory const* trajectory, int component, int t, Modes const& from, int to,
                 std::vector<std::string>& errors) const;
    void checkShown(Trajectory const* trajectory, int t, std::vector<std::string>& errors) const;

    Case const& example;
    std::vector<Built> built;
    QuietStreams streams;
};

}  // namespace diagnoser_twin
