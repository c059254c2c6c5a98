// The moves of the feed line, and the enumeration.
#include "search/line_fixture.h"

#include "search/dice.h"

namespace feed_line {

using random_models::Dice;

namespace {

struct Move {
    int to;
    double proba;
    bool fails;
};

constexpr double lose = 0.001, breakDown = 0.01;

// What a part can do from a mode under a command: first what it does without a failure.
std::vector<Move> movesOf(int part, int mode, int command) {
    if (part == 0 && mode == OFF)
        return {{command == FORTH ? ON : OFF, 1.0 - lose, false}, {PUMP_LOST, lose, true}};
    if (part == 0 && mode == ON)
        return {{command == BACK ? OFF : ON, 1.0 - lose - breakDown, false},
                {FAILED, breakDown, true},
                {PUMP_LOST, lose, true}};
    if (part != 0 && mode == CLOSED)
        return {{command == FORTH ? OPEN : CLOSED, 1.0 - lose - breakDown, false},
                {STUCK_CLOSED, breakDown, true},
                {VALVE_LOST, lose, true}};
    if (part != 0 && mode == OPEN)
        return {{command == BACK ? CLOSED : OPEN, 1.0 - lose - breakDown, false},
                {STUCK_OPEN, breakDown, true},
                {VALVE_LOST, lose, true}};
    return {{mode, 1.0, false}};
}

// One enumeration.
struct Walk {
    std::vector<Line> const& lines;
    int wanted, first, last;
    std::vector<History>& found;

    void go(History& history, int failures) {
        std::size_t const step = history.modes.size() - 1;
        if (step > 0 && lines[step - 1].seen &&
            flows(history.modes.back()) != lines[step - 1].positive)
            return;
        if (step == lines.size()) {
            if (failures == wanted)
                found.push_back(history);
            return;
        }
        history.modes.push_back(history.modes.back());
        move(history, failures, 0);
        history.modes.pop_back();
    }
    void move(History& history, int failures, int part) {
        if (part == parts) {
            go(history, failures);
            return;
        }
        int const step = static_cast<int>(history.modes.size()) - 1;
        auto const at = static_cast<std::size_t>(part);
        int const from = history.modes[history.modes.size() - 2][at];
        int const command = lines[static_cast<std::size_t>(step) - 1].commands[at];
        for (Move const& each : movesOf(part, from, command)) {
            if (each.fails && (failures == wanted || step <= first || step > last))
                continue;
            double const before = history.proba;
            history.proba *= each.proba;
            history.modes.back()[at] = each.to;
            auto const noted = each.fails ? history.failures.insert({step, {part, from, each.to}})
                                          : history.failures.end();
            move(history, failures + (each.fails ? 1 : 0), part + 1);
            if (each.fails)
                history.failures.erase(noted);
            history.proba = before;
        }
        history.modes.back()[at] = from;
    }
};

Answers answersOf(std::vector<History> const& histories) {
    Answers answers;
    double sum = 0.0;
    for (History const& history : histories) {
        Answer& answer = answers[nameOf(history.modes.back())];
        answer.proba += history.proba;
        sum += history.proba;
        for (auto const& [step, failure] : history.failures)
            answer.steps[failure.text()].insert(step);
    }
    for (auto& entry : answers)
        entry.second.proba /= sum;
    return answers;
}

constexpr int anyStep = 1000;

}  // namespace

bool flows(Modes const& modes) {
    auto const lets = [](int mode) { return mode == OPEN || mode == STUCK_OPEN; };
    return modes[0] == ON && lets(modes[1]) && lets(modes[2]);
}

char const* modeName(int part, int mode) {
    static char const* const pump[] = {"off", "on", "failed", "unknown"};
    static char const* const valve[] = {"closed", "open", "stuck_closed", "stuck_open", "unknown"};
    return part == 0 ? pump[mode] : valve[mode];
}

std::string nameOf(Modes const& modes) {
    return std::string(modeName(0, modes[0])) + " " + modeName(1, modes[1]) + " " +
           modeName(2, modes[2]);
}

std::string Failure::text() const {
    return std::to_string(part) + " " + modeName(part, from) + " -> " + modeName(part, to);
}

std::vector<History> Day::histories(int failures, int first, int last, std::size_t count) const {
    std::vector<Line> known = lines;
    known.insert(known.end(), later.begin(), later.end());
    known.resize(count);
    std::vector<History> found;
    History start;
    start.modes.push_back({OFF, CLOSED, CLOSED});
    Walk{known, failures, first, last, found}.go(start, 0);
    return found;
}

int Day::leastFailures(int first) const {
    int failures = 0;
    while (failures < 2 && histories(failures, first, anyStep, lines.size()).empty())
        ++failures;
    return failures;
}

Answers Day::leastAnswers(int first) const {
    return answersOf(histories(leastFailures(first), first, anyStep, lines.size()));
}

Answers Day::answersAfter(int failures, int first, std::size_t count) const {
    return answersOf(histories(failures, first, static_cast<int>(lines.size()), count));
}

std::string Day::describe() const {
    std::string text;
    auto const add = [&text](std::vector<Line> const& some) {
        for (Line const& line : some) {
            for (int const command : line.commands)
                text += std::to_string(command) + " ";
            text += !line.seen ? "\n" : line.positive ? "-> positive\n" : "-> zero\n";
        }
    };
    add(lines);
    text += "searched\n";
    add(later);
    return text;
}

namespace {

// The start-up in a random order, and then anything.
Line randomLine(Dice& dice, Modes const& modes) {
    Line line;
    if (dice.oneIn(6))
        return line;
    auto const part = static_cast<std::size_t>(dice.upTo(parts - 1));
    bool const forth = modes[part] == 0 || dice.oneIn(3);
    line.commands[part] = forth ? FORTH : BACK;
    return line;
}

// Into *modes*; without a fault, what is commanded.
void follow(Modes& modes, Line const& line, int faulty, Dice& dice) {
    for (int part = 0; part < parts; ++part) {
        auto const at = static_cast<std::size_t>(part);
        auto const moves = movesOf(part, modes[at], line.commands[at]);
        std::size_t const taken =
            part == faulty ? static_cast<std::size_t>(dice.upTo(static_cast<int>(moves.size()) - 1))
                           : 0;
        modes[at] = moves[taken].to;
    }
}

}  // namespace

Day randomDay(unsigned seed, int commands, int faults) {
    Dice dice(seed);
    Day day;
    Modes truth{OFF, CLOSED, CLOSED};
    Modes believed = truth;
    bool searched = false;
    for (int i = 0; i < 2 * commands; ++i) {
        Line line = randomLine(dice, believed);
        bool const breaks = faults > 0 && dice.upTo(commands - 1) < 2;
        follow(truth, line, breaks ? dice.upTo(parts - 1) : parts, dice);
        faults -= breaks ? 1 : 0;
        follow(believed, line, parts, dice);
        line.seen = searched ? dice.oneIn(2) : i >= commands - 1 && flows(truth) != flows(believed);
        if (!searched && dice.oneIn(3) && flows(truth) == flows(believed))
            line.seen = true;
        line.positive = flows(truth);
        (searched ? day.later : day.lines).push_back(line);
        if (line.seen && flows(truth) != flows(believed))
            searched = true;
    }
    return day;
}

Day pairDay(unsigned seed) {
    Dice dice(seed);
    Day day;
    auto const say = [&day](int part, int command) {
        Line line;
        if (part < parts)
            line.commands[static_cast<std::size_t>(part)] = command;
        day.lines.push_back(line);
    };
    int const first = dice.upTo(parts - 1);
    for (int i = 0; i < parts; ++i)
        say((first + i) % parts, FORTH);
    day.lines.back().seen = day.lines.back().positive = dice.oneIn(2);
    int const idle = dice.upTo(3);  // 3: none
    int const valve = 1 + dice.upTo(1);
    if (idle == 0)
        say(parts, NONE);
    say(valve, BACK);
    if (idle == 1)
        say(parts, NONE);
    say(parts - valve, BACK);
    if (idle == 2)
        say(parts, NONE);
    day.lines.back().seen = day.lines.back().positive = true;
    for (int i = 0; i < 3; ++i) {
        say(parts, NONE);
        day.later.push_back(day.lines.back());
        day.lines.pop_back();
        day.later.back().seen = true;
        day.later.back().positive = i < 2 || dice.oneIn(2);
    }
    return day;
}

}  // namespace feed_line
