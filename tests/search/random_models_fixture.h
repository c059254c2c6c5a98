// Random small models as plain numbers, and the histories that they allow, by enumeration.
//
// A component has the modes m0 and m1, a failure "bad", and sometimes a second one "worse"; most
// have a command (none, go, back). It shows lo or hi, as its mode says, and as what stands upstream
// of it shows. A history begins at step 0 with every component in m0; a line of commands leads from
// each step to the next, and in the last step some of what the components show is observed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace random_models {

enum Mode { M0, M1, BAD, WORSE };
enum Command { NONE, GO, BACK };
enum Shows { LO, HI, FREE };  // FREE: the mode says nothing of what is shown
constexpr int noComponent = -1;
constexpr int anyCommand = -1;  // of a guard that does not look at the command
constexpr int unsaid = -1;      // of a line that does not name the component's command

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
struct ModeHistory {
    std::vector<Modes> modes;
    std::vector<std::vector<int>> moves;  // by step and component, index into its moves
    int failures = 0;

    // The last *count* steps' moves, or all of them if there are fewer.
    std::string text(std::size_t count) const;
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
    Move const& move(int component, int index) const;
    bool allows(int component, Move const& move, Modes const& modes, int step) const;
    // Whether the modes can show what was observed.
    bool agrees(Modes const& modes) const;
    // Every history of exactly *failures* failures from step *first* on that agrees with what was
    // observed. Before *first* all goes as commanded.
    std::vector<ModeHistory> explanations(int failures, int first) const;
    // Those of least failure; empty when there are none.
    std::vector<ModeHistory> leastExplanations(int first) const;
    std::string describe() const;
};

Case randomCase(unsigned seed);
// A component as the random ones are, with one failure, which no command triggers. It shows lo in
// m0, hi in m1 and lo when it has failed.
Component plainComponent(bool commanded);

}  // namespace random_models
