// The benchmark circuit c17 as a compiled model: six NAND gates, five inputs, two outputs.
//
//   10 = NAND(1, 3)    11 = NAND(3, 6)     16 = NAND(2, 11)
//   19 = NAND(11, 7)   22 = NAND(10, 16)   23 = NAND(16, 19)
//
// A gate that is ok shows the NAND of its inputs; a broken one may show anything. The inputs are
// variables that nothing moves: observing them fixes them.
#pragma once

#include <array>
#include <set>
#include <string>
#include <vector>

#include "model/Comprt.h"
#include "model/ModeVarrt.h"
#include "search/search_fixture.h"

namespace c17 {

constexpr std::array<int, 5> inputNumbers{1, 2, 3, 6, 7};

// The number of a gate and of what feeds it.
struct Wiring {
    int number, first, second;
};
constexpr std::array<Wiring, 6> wiring{
    {{10, 1, 3}, {11, 3, 6}, {16, 2, 11}, {19, 11, 7}, {22, 10, 16}, {23, 16, 19}}};

// By position in inputNumbers.
using Inputs = std::array<bool, inputNumbers.size()>;

// A variable of the values 0 and 1.
struct Signal {
    StateVar* variable = nullptr;
    Atom* zero = nullptr;
    Atom* one = nullptr;
};

// Named gate10, gate11 and so on. It starts ok and showing *output*.
class gate : public Comp {
public:
    gate(std::string name, bool output);

    ModeVar* mode;
    Atom *mode_ok, *mode_broken;
    Signal out;

private:
    void initTransitions();
};

// The component "inputs", with the variables i1, i2 and so on.
class source : public Comp {
public:
    source(std::string name, Inputs const& values);

    std::array<Signal, inputNumbers.size()> inputs;
};

// A scheduler with the circuit, which starts ok at the given inputs.
class Circuit {
public:
    explicit Circuit(Inputs const& inputs);

    // Every failure may then be expanded any number of times in one search.
    void allowRepeatedFailures();
    // A step without a command, then an observation of the outputs, and with *namesInputs* of the
    // inputs. Once.
    void observe(bool out22, bool out23, bool namesInputs = true);
    // The broken gates of each history that the engine holds, in its order.
    std::vector<std::set<int>> candidates() const;
    // What observe() wrote on the error stream.
    std::string trace;

private:
    void build();
    Signal signalOf(int number) const;
    void addClauses(gate* self, Wiring const& wires);

    Inputs inputs;
    search_fixture::QuietStreams streams;
    search_fixture::Engine engine{"c17"};
    source* feed = nullptr;
    std::array<gate*, wiring.size()> gates{};
};

}  // namespace c17
