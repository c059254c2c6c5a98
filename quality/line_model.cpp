// Moves and flow of the feed line.
#include "quality/line_model.h"

namespace quality {

namespace {

constexpr double lose = 0.001;
constexpr double breakDown = 0.01;

// A command takes the mode to another; any other command leaves it.
std::string commanded(std::string const& mode, std::string const& command) {
    if (mode == "off" && command == "start")
        return "on";
    if (mode == "on" && command == "stop")
        return "off";
    if (mode == "closed" && command == "open")
        return "open";
    if (mode == "open" && command == "close")
        return "closed";
    return mode;
}

std::vector<LineMove> failuresOf(std::string const& mode) {
    if (mode == "off")
        return {{"unknown", lose, true}};
    if (mode == "on")
        return {{"failed", breakDown, true}, {"unknown", lose, true}};
    if (mode == "closed")
        return {{"stuck_closed", breakDown, true}, {"unknown", lose, true}};
    if (mode == "open")
        return {{"stuck_open", breakDown, true}, {"unknown", lose, true}};
    return {};
}

bool letsThrough(std::string const& mode) {
    return mode == "open" || mode == "stuck_open";
}

}  // namespace

std::array<char const*, lineComponents> const lineNames{"pump", "valve1", "valve2"};
LineModes const firstLineModes{"off", "closed", "closed"};

std::vector<LineMove> lineMoves(std::string const& mode, std::string const& command) {
    std::vector<LineMove> moves{{commanded(mode, command), 1.0, false}};
    for (LineMove const& failure : failuresOf(mode)) {
        moves.front().probability -= failure.probability;
        moves.push_back(failure);
    }
    return moves;
}

bool lineFlows(LineModes const& modes) {
    return modes[0] == "on" && letsThrough(modes[1]) && letsThrough(modes[2]);
}

}  // namespace quality
