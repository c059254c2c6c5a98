// The feed line as plain numbers: scenarios drawn by seed, and every history that explains them, by
// enumeration. Nothing here knows of the engine.
#pragma once

#include <array>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace feed_line {

constexpr int parts = 3;  // the pump and two valves
using Modes = std::array<int, parts>;

enum PumpMode { OFF, ON, FAILED, PUMP_LOST };
enum ValveMode { CLOSED, OPEN, STUCK_CLOSED, STUCK_OPEN, VALVE_LOST };
enum Command { NONE, FORTH, BACK };  // start or open, stop or close

// A step of the line: what is commanded, to one part at most, and then what is seen, if anything.
struct Line {
    std::array<int, parts> commands{};
    bool seen = false;
    bool positive = false;
};

// A part, the mode that failed and the one that it fell into.
struct Failure {
    int part, from, to;
    auto operator<=>(Failure const&) const = default;
    std::string text() const;
};

struct History {
    std::vector<Modes> modes;  // by step, the start first
    std::multimap<int, Failure> failures;
    double proba = 1.0;
};

// The histories that end in the same modes.
struct Answer {
    double proba = 0.0;
    std::map<std::string, std::set<int>> steps;  // of each failure
};
using Answers = std::map<std::string, Answer>;  // by the modes at the end

struct Day {
    std::vector<Line> lines;  // up to the first that no history without failures explains

    std::string describe() const;
    // Every history of exactly *failures* failures, all after step *first* and at or before step
    // *last*, that agrees with what was seen in the first *count* lines.
    std::vector<History> histories(int failures, int first, int last, std::size_t count) const;
    // Those of least failure, up to two, by their ends.
    Answers leastAnswers(int first) const;
    // What is left of them once the first *count* lines have been seen.
    Answers answersAfter(int failures, int first, std::size_t count) const;
    int leastFailures(int first) const;

    std::vector<Line> later;  // lines behind those
};

bool flows(Modes const& modes);
std::string nameOf(Modes const& modes);
char const* modeName(int part, int mode);

// With *faults* faults in what really happened; *commands* lines before the last.
Day randomDay(unsigned seed, int commands, int faults);
// The line runs, both valves are closed, and then, for the first time, the flow is seen to be still
// positive: it takes two failures to explain.
Day pairDay(unsigned seed);

}  // namespace feed_line
