// Random models with running transitions as plain numbers, and a naive twin of the nominal steps.
//
// A component has the modes m0, m1 and bad, a command (none, go, back), and shows lo or hi as its
// mode says. What moves it: its own command or that of another component, which it imports; with
// another component in m1 as a witness, or unless a third one is told to go back. Some go from m0
// to m1 by effects at delays, of which one may give the command of another component. A scenario is
// a list of lines, each of commands or of what is observed; one line is one step.
//
// The twin knows labels by number, commands that persist, what runs, and the table of scheduled
// commands; it knows nothing of clauses, supports, locks on values or windows.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace executives {

enum Kind { MODE, COMMAND, OUT };
enum Mode { M0, M1, BAD };
enum Command { NONE, GO, BACK };
enum Shows { LO, HI };
constexpr int nobody = -1;
constexpr int nextStep = 0;  // the delay of a plain effect

// The value of a variable of a component.
struct Fact {
    int component;
    Kind kind;
    int value;

    bool operator==(Fact const&) const = default;
    bool sameVariable(Fact const& other) const {
        return component == other.component && kind == other.kind;
    }
};

struct Literal {
    bool sign;
    Fact fact;
};

struct Effect {
    int delay;  // or nextStep
    Fact fact;
};

// A transition.
struct Rule {
    std::vector<Literal> guard;
    std::vector<Effect> effects;  // one with nextStep, or several by rising delay
    bool fails, idle;
    double proba;

    bool isDelayed() const { return effects.front().delay != nextStep; }
    // Whether it is among those that leave the fact.
    bool leaves(Fact const& fact) const;
};

struct Component {
    std::vector<Rule> rules;
    std::array<int, 3> shows;     // by mode
    int upstream = nobody;        // hi needs hi there
    int imports = nobody;         // whose command moves it, if not its own
    std::vector<int> neighbours;  // as it lists them: one way
};

struct Line {
    bool commands;
    std::vector<Fact> facts;
};

using Modes = std::vector<int>;  // by component

struct Model {
    unsigned seed = 0;
    std::vector<Component> components;
    std::vector<Line> lines;
    int histories = 1;  // that are followed from the start

    int size() const { return static_cast<int>(components.size()); }
    Rule const& rule(int component, int index) const;
    // What the component shows in these modes.
    int shown(Modes const& modes, int component) const;
    // The lines up to *count* as text of a scenario file.
    std::string text(std::size_t count) const;
    std::string describe() const;
};

struct Style {
    bool linked = false;  // components may show less because of others upstream
    // Every line of commands names that of every component, and tells one of them at most to move:
    // so every state that commands were given in holds every component, and none is left to assume.
    bool named = false;
    // Nothing runs late, what moves a mode is a command alone, and only the last observation
    // disagrees: what the search answers can be enumerated.
    bool plain = false;
};

Model randomModel(unsigned seed, Style const& style);

// What a history tells of one step.
struct Labels {
    Modes modes, commands;  // by component

    int of(Fact const& fact) const;
    bool holds(Rule const& rule) const;
    bool operator==(Labels const&) const = default;
};

// The nominal steps of all histories, as long as every observation agrees with all of them.
class Twin {
public:
    explicit Twin(Model const& model);

    // One line of the scenario. False when it is beyond what the twin knows: an observation that
    // disagrees, or a mode that is scheduled for the step that runs.
    bool step(Line const& line);
    // By history and step.
    std::vector<std::vector<Labels>> histories() const;
    // What happened: transitions that fired late, commands that reached a later history, steps that
    // no state could hold.
    int lateEffects = 0, reached = 0, failed = 0;

private:
    struct History {
        std::vector<Labels> steps;
        std::map<std::pair<int, int>, int>
            index;                          // step recorded in an element, by component, mode
        bool empty = false, locked = true;  // of the last state
    };
    struct Running {
        int start;
        Fact command;
    };
    using RuleOf = std::pair<int, int>;  // component and index

    void command(History& history);
    void observe(Line const& line);
    std::vector<Fact> settle(History& history);
    void fireAll(History const& history, std::vector<Fact> const& settled, History& next);
    void fire(History const& history, RuleOf const& id, History& next);
    void fireEffect(RuleOf const& id, Effect const& effect, int t, History& next);
    void give(Fact const& fact, int when);
    void endRunning(int t);

    Model const& model;
    std::vector<History> all;
    std::map<RuleOf, Running> running;
    std::map<int, std::vector<Fact>> events;
    int time = 0;
    bool lost = false;
};

// The modes of every step of every history with the fewest failures that obeys the scenario and
// shows what was observed. Of plain models, whose every step names all commands.
std::set<std::vector<Modes>> leastHistories(Model const& model);

}  // namespace executives
