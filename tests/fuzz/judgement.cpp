// Judging one outcome.
#include <algorithm>
#include <cmath>
#include <csignal>
#include <sstream>
#include <vector>

#include "fuzz/oracles.h"
#include "fuzz/plants.h"

namespace fuzz {

namespace {

bool contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

bool containsAny(std::string const& text, std::vector<std::string> const& parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&text](std::string const& part) { return contains(text, part); });
}

// How many arguments are options.
std::size_t countOptions(std::vector<std::string> const& args) {
    auto const isOption = [](std::string const& arg) {
        return arg == "--strict" || arg.starts_with("--rules=") ||
               arg.starts_with("--candidates=") || arg.starts_with("--noise=");
    };
    return static_cast<std::size_t>(std::find_if_not(args.begin(), args.end(), isOption) -
                                    args.begin());
}

bool isStrict(SessionCase const& session) {
    auto const end = session.args.begin() + static_cast<std::ptrdiff_t>(countOptions(session.args));
    return std::find(session.args.begin(), end, "--strict") != end;
}

// ---- The end of the process ----

// The runtimes of the sanitizers end with these; see main.cpp.
constexpr int statusOfSanitizer = 99;
constexpr int signalBase = 128;

Findings judgeProcess(Outcome const& outcome) {
    if (outcome.signal == SIGXCPU || outcome.signal == SIGALRM || outcome.signal == SIGKILL)
        return Finding{"time", "the session takes too long"};
    if (outcome.signal != 0)
        return Finding{"crash", "signal " + std::to_string(outcome.signal)};
    if (outcome.status == statusOfSanitizer || contains(outcome.err, "runtime error: "))
        return Finding{"sanitizer", outcome.err.substr(std::min(outcome.err.find("==ERROR"),
                                                                outcome.err.find("runtime error")),
                                                       300)};
    return std::nullopt;
}

bool wasSignalled(SessionCase const& session, Outcome const& outcome, int signal) {
    bool const byFault = session.fault.kind == Fault::SIGNAL_AT_STEP ||
                         session.fault.kind == Fault::SIGNAL_AT_ALLOCATION;
    if (byFault && outcome.usage.faulted && session.fault.value == signal)
        return true;
    return signal == SIGINT && (outcome.usage.endOfInput || outcome.usage.stopped);
}

bool answersQuestion(SessionCase const& session, Outcome const& outcome) {
    return !session.args.empty() &&
           ((session.args[0] == "--help" && outcome.out.starts_with("usage: ")) ||
            (session.args[0] == "--version" && contains(outcome.out, " (model ")));
}

bool isDocumented(SessionCase const& session, Outcome const& outcome) {
    std::string const& err = outcome.err;
    switch (outcome.status) {
        case 0:
            return answersQuestion(session, outcome) ||
                   containsAny(err, {"Leaving ", "Not enough parameters", "no condition covers",
                                     "the scenario has no first event"});
        case 1:
            return containsAny(err, {"Can't write file ", "temporal window !", "fits no state",
                                     "plant: ", "the program cannot begin"});
        case 2:
            return containsAny(err, {"--rules: ", "--candidates: ", "--noise: "});
        case 3:
            return isStrict(session) && tellsLoss(err);
        case 255:
            return contains(err, "nothing explains the misbehaviour");
        default:
            return outcome.status > signalBase &&
                   wasSignalled(session, outcome, outcome.status - signalBase);
    }
}

Findings judgeStatus(SessionCase const& session, Outcome const& outcome) {
    if (!isDocumented(session, outcome))
        return Finding{"status", "status " + std::to_string(outcome.status) +
                                     " has no message that explains it"};
    if (outcome.status == 0 && isStrict(session) && !answersQuestion(session, outcome) &&
        tellsLoss(outcome.err))
        return Finding{"strict", "a loss was told, and the status is 0"};
    return std::nullopt;
}

// ---- The rows ----

// What the streams tell of the last run.
struct LastRun {
    bool known = false;  // `init` came to its end, and the file could be written
    int steps = 0;
    int candidates = -1;  // -1 before the rows are written
};

LastRun lastRunOf(Outcome const& outcome, double Ts) {
    LastRun run;
    std::istringstream err(outcome.err), out(outcome.out);
    bool stopped = false;
    for (std::string line; std::getline(err, line);) {
        if (line == "  Initializations done.") {
            run = {true, 0, -1};
            stopped = false;
        } else if (line.starts_with("-- time = ") && !stopped) {
            ++run.steps;
        } else if (line.starts_with("run stopped at time ")) {
            run.steps = static_cast<int>(std::lround(std::stod(line.substr(20)) / Ts));
            stopped = true;
        } else if (containsAny(line, {"Can't open file ", "Can't write file ",
                                      "Initializations failed", "rows may be missing"})) {
            run.known = false;
        }
    }
    for (std::string line; std::getline(out, line);)
        if (int count = 0; std::sscanf(line.c_str(), "writing %d trajectories", &count) == 1)
            run.candidates = count;
    return run;
}

std::string displayPath(SessionCase const& session, PlantFacts const& plant) {
    std::size_t const at =
        countOptions(session.args) + (plant.inputs > 0 ? 1u : 0u) + (plant.measures > 0 ? 1u : 0u);
    std::string const name = at < session.args.size() ? session.args[at] : "";
    return std::filesystem::path("disp/" + name).lexically_normal();
}

int countValues(std::string const& line) {
    std::istringstream words(line);
    int count = 0;
    for (std::string word; words >> word;)
        ++count;
    return count;
}

Findings judgeRows(SessionCase const& session, Outcome const& outcome) {
    PlantFacts const& plant = plantOf(session.model);
    bool const endedAtOnce = outcome.status > signalBase && outcome.status != 255 &&
                             session.fault.kind != Fault::SIGNAL_AT_STEP &&
                             !outcome.usage.endOfInput;
    auto const file = outcome.files.find(displayPath(session, plant));
    if (plant.displays == 0 || endedAtOnce || file == outcome.files.end())
        return std::nullopt;
    LastRun const run = lastRunOf(outcome, plant.Ts);
    if (!run.known)
        return std::nullopt;
    int const expected = run.steps > 0 && run.candidates != 0 ? 1 + run.steps : 1;
    int rows = 0;
    std::istringstream text(file->second);
    for (std::string line; std::getline(text, line); ++rows) {
        int const width = 2 * plant.displays * (rows == 0 ? 1 : run.candidates);
        if (countValues(line) != width)
            return Finding{"rows", "row " + std::to_string(rows) + " has " +
                                       std::to_string(countValues(line)) + " values, not " +
                                       std::to_string(width)};
    }
    if (rows != expected)
        return Finding{"rows", std::to_string(rows) + " rows, not " + std::to_string(expected)};
    return std::nullopt;
}

Findings judgeCandidates(SessionCase const& session, Outcome const& outcome) {
    int limit = 0;
    for (std::size_t i = 0; i < countOptions(session.args); ++i)
        std::sscanf(session.args[i].c_str(), "--candidates=%d", &limit);
    // A simulation follows every split.
    bool detects = false;
    std::istringstream out(outcome.out);
    for (std::string line; limit > 0 && std::getline(out, line);) {
        int count = 0;
        if (line == "entering detect" || line.starts_with("mode: "))
            detects = line == "entering detect";
        else if (detects && std::sscanf(line.c_str(), "writing %d trajectories", &count) == 1 &&
                 count > limit)
            return Finding{"candidates", line + ", more than " + std::to_string(limit)};
    }
    return std::nullopt;
}

}  // namespace

bool tellsLoss(std::string const& err) {
    return containsAny(err, {"run stopped at time ",
                             "Memory runs short",
                             "Can't write ",
                             "Can't open file ",
                             "can't open scenario file",
                             " is a directory\n",
                             "Initializations failed",
                             "is not a number, ",
                             "Can't read file ",
                             "no kind of event, line skipped",
                             "received command is not valid",
                             "Atom not found: ",
                             " met no time step",
                             "no history explains the observations",
                             "Graphs are written of ",
                             "No graphs are written",
                             "Can't remove file ",
                             "!!! ATTENTION: ",
                             ", column ",
                             ": no line: the values stay",
                             "Not enough parameters",
                             "Gnuplot failed",
                             "Shell command failed"});
}

Findings judge(SessionCase const& session, Outcome const& outcome) {
    if (Findings found = judgeProcess(outcome))
        return found;
    if (Findings found = judgeStatus(session, outcome))
        return found;
    if (Findings found = judgeRows(session, outcome))
        return found;
    return judgeCandidates(session, outcome);
}

}  // namespace fuzz
