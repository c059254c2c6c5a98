// The feed line as plain data, from its description in docs/line.md: what each component can do at
// a command, how likely that is, and when it flows. Nothing here is taken from the engine.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace quality {

inline constexpr std::size_t lineComponents = 3;
extern std::array<char const*, lineComponents> const lineNames;  // pump, valve1, valve2

using LineModes = std::array<std::string, lineComponents>;
using LineCommands = std::array<std::string, lineComponents>;  // "none" where nothing is commanded

extern LineModes const firstLineModes;

struct LineMove {
    std::string to;
    double probability = 0.0;
    bool failure = false;
};

// The moves that a component has from a mode under a command: the ordinary one first. Pump and
// valves share no mode but `unknown`, so the mode tells which of them it is.
std::vector<LineMove> lineMoves(std::string const& mode, std::string const& command);

bool lineFlows(LineModes const& modes);

// One line of a scenario: a command to all components, or what the sensor shows.
struct LineEvent {
    bool isCommand = true;
    LineCommands commands{};
    bool flows = false;
};

// A failure that a history holds. Time is the number of the event, from 1 on.
struct LineFailure {
    std::string component, to;
    int time = 0;

    auto operator<=>(LineFailure const&) const = default;
};

}  // namespace quality
