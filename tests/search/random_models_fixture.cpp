// Random cases, and the enumeration of their histories.
#include "search/random_models_fixture.h"

#include <algorithm>

#include "search/dice.h"

namespace random_models {

namespace {

std::size_t at(int index) {
    return static_cast<std::size_t>(index);
}

// What a component may show, given what stands upstream.
bool mayShow(Component const& component, int mode, int upstreamValue, int value) {
    int const shows = component.shows[at(mode)];
    if (shows == FREE)
        return true;
    bool const high = shows == HI && upstreamValue == HI;
    return value == (high ? HI : LO);
}

// What stands upstream of a component shows; hi when nothing does.
int valueAbove(Component const& component, std::vector<int> const& shown) {
    return component.upstream == noComponent ? HI : shown[at(component.upstream)];
}

// Extends a history by one component of one step after the other.
class Enumeration {
public:
    Enumeration(Case const& example, int failures, int first)
        : example(example), failures(failures), first(first) {
        history.modes.emplace_back(example.components.size(), M0);
    }
    std::vector<ModeHistory> run() {
        extendStep(0);
        return std::move(found);
    }

private:
    void extendStep(int step) {
        if (step == example.steps()) {
            if (history.failures == failures && example.agrees(history.modes.back()))
                found.push_back(history);
            return;
        }
        history.modes.push_back(history.modes.back());
        history.moves.emplace_back(example.components.size(), 0);
        extendComponent(step, 0);
        history.modes.pop_back();
        history.moves.pop_back();
    }
    void extendComponent(int step, std::size_t component) {
        if (component == example.components.size()) {
            extendStep(step + 1);
            return;
        }
        std::vector<Move> const& moves = example.components[component].moves;
        for (std::size_t m = 0; m < moves.size(); ++m)
            if (isPossible(static_cast<int>(component), moves[m], step))
                take(step, component, m);
    }
    bool isPossible(int component, Move const& move, int step) const {
        if (move.fails && (step < first || history.failures == failures))
            return false;
        return example.allows(component, move, history.modes[at(step)], step);
    }
    void take(int step, std::size_t component, std::size_t m) {
        Move const& move = example.components[component].moves[m];
        history.modes.back()[component] = move.to;
        history.moves.back()[component] = static_cast<int>(m);
        history.failures += move.fails ? 1 : 0;
        extendComponent(step, component + 1);
        history.failures -= move.fails ? 1 : 0;
    }

    Case const& example;
    int failures, first;
    ModeHistory history;
    std::vector<ModeHistory> found;
};

}  // namespace

std::string ModeHistory::text(std::size_t count) const {
    std::string all;
    for (std::size_t step = moves.size() - std::min(count, moves.size()); step < moves.size();
         ++step) {
        for (int const move : moves[step])
            all += std::to_string(move) + " ";
        all += "/ ";
    }
    return all;
}

Move const& Case::move(int component, int index) const {
    return components[at(component)].moves[at(index)];
}

bool Case::allows(int component, Move const& move, Modes const& modes, int step) const {
    if (move.from != modes[at(component)])
        return false;
    if (move.witness != noComponent && modes[at(move.witness)] != M1)
        return false;
    if (move.command == anyCommand)
        return true;
    int const given = commands[at(step)][at(component)];
    return (given == move.command) != move.unlessThat;
}

// What is shown is told from upstream to downstream, both values where the mode says nothing.
bool Case::agrees(Modes const& modes) const {
    std::vector<std::vector<int>> open{{}};
    for (std::size_t i = 0; i < components.size(); ++i) {
        std::vector<std::vector<int>> longer;
        for (std::vector<int> const& shown : open)
            for (int const value : {LO, HI}) {
                bool const contradicts =
                    std::any_of(observed.begin(), observed.end(), [&](Observed const& seen) {
                        return at(seen.component) == i && seen.value != value;
                    });
                if (contradicts ||
                    !mayShow(components[i], modes[i], valueAbove(components[i], shown), value))
                    continue;
                longer.push_back(shown);
                longer.back().push_back(value);
            }
        open = std::move(longer);
    }
    return !open.empty();
}

std::vector<ModeHistory> Case::explanations(int failures, int first) const {
    return Enumeration(*this, failures, first).run();
}

// A failure is never left, so there are at most as many as components.
std::vector<ModeHistory> Case::leastExplanations(int first) const {
    for (std::size_t failures = 0; failures <= components.size(); ++failures) {
        std::vector<ModeHistory> found = explanations(static_cast<int>(failures), first);
        if (!found.empty())
            return found;
    }
    return {};
}

// ---- As text ----

namespace {

std::string describeMove(Move const& move) {
    std::string text = "m" + std::to_string(move.from) + " to m" + std::to_string(move.to);
    if (move.command != anyCommand)
        text += (move.unlessThat ? " unless " : " at ") + std::to_string(move.command);
    if (move.witness != noComponent)
        text += " with component " + std::to_string(move.witness) + " in m1";
    return text + (move.fails ? ", fails" : "");
}

std::string joined(std::vector<int> const& numbers) {
    std::string text;
    for (int const number : numbers)
        text += " " + std::to_string(number);
    return text + "\n";
}

}  // namespace

std::string Case::describe() const {
    std::string text = "seed " + std::to_string(seed) + "\n";
    for (std::size_t i = 0; i < components.size(); ++i) {
        text += "component " + std::to_string(i) + ", upstream " +
                std::to_string(components[i].upstream) + ", shows" + joined(components[i].shows);
        for (std::size_t m = 0; m < components[i].moves.size(); ++m)
            text += "  " + std::to_string(m) + ": " + describeMove(components[i].moves[m]) + "\n";
    }
    for (auto const& step : commands)
        text += "commands" + joined(step);
    for (Observed const& seen : observed)
        text += "component " + std::to_string(seen.component) + " shows " +
                (seen.value == HI ? "hi" : "lo") + "\n";
    return text;
}

// ---- Random cases ----

namespace {

// What the modes m0 and m1 do when nothing fails: commands move them, or nothing does.
void addNominalMoves(Component& component, int mode, double proba) {
    if (!component.commanded) {
        component.moves.push_back({mode, mode, anyCommand, false, false, true, proba});
        return;
    }
    int const command = mode == M0 ? GO : BACK;
    component.moves.push_back({mode, 1 - mode, command, false, false, false, proba});
    component.moves.push_back({mode, mode, command, true, false, true, proba});
}

void addAbsorbingMoves(Component& component) {
    for (int mode = BAD; mode < component.modes; ++mode)
        component.moves.push_back({mode, mode, anyCommand, false, false, true, 1.0});
}

// The probabilities of the moves that one mode, one command and the others allow sum to 1 at most.
void addRandomMoves(Component& component, Dice& dice, int index) {
    double const bad = 0.01 * (1 + dice.upTo(4));
    double const worse = component.modes > 3 ? 0.001 * (1 + dice.upTo(4)) : 0.0;
    for (int const mode : {M0, M1}) {
        bool const atCommand = component.commanded && dice.oneIn(3);
        int const command = mode == M0 ? GO : BACK;
        component.moves.push_back(
            {mode, BAD, atCommand ? command : anyCommand, false, true, false, bad});
        if (component.modes > 3)
            component.moves.push_back(
                {mode, WORSE, anyCommand, false, true, false, worse,
                 index > 0 && dice.oneIn(4) ? dice.upTo(index - 1) : noComponent});
        addNominalMoves(component, mode, 1.0 - bad - worse);
    }
    addAbsorbingMoves(component);
}

Component randomComponent(Dice& dice, int index) {
    Component component;
    component.commanded = index == 0 || !dice.oneIn(4);  // a step needs a command
    component.modes = dice.oneIn(5) ? 4 : 3;
    addRandomMoves(component, dice, index);
    bool const flipped = dice.oneIn(2);
    component.shows = {flipped ? HI : LO, flipped ? LO : HI, dice.upTo(1), dice.upTo(1)};
    if (dice.oneIn(5))
        component.shows[BAD] = FREE;
    if (index > 0 && dice.oneIn(2))
        component.upstream = dice.upTo(index - 1);
    return component;
}

// The index of a move that the component may take, a failing one if asked for and if there is one.
int randomMove(Case const& example, Dice& dice, int component, Modes const& before, int step,
               bool fails) {
    std::vector<int> nominal, failing;
    auto const& moves = example.components[at(component)].moves;
    for (std::size_t m = 0; m < moves.size(); ++m)
        if (example.allows(component, moves[m], before, step))
            (moves[m].fails ? failing : nominal).push_back(static_cast<int>(m));
    auto const& choice = fails && !failing.empty() ? failing : nominal;
    return choice[at(dice.upTo(static_cast<int>(choice.size()) - 1))];
}

// Where a history ends that takes up to *failures* of its chances to fail.
Modes randomEnd(Case const& example, Dice& dice, int failures) {
    Modes modes(example.components.size(), M0);
    for (int step = 0; step < example.steps(); ++step) {
        Modes const before = modes;
        for (std::size_t i = 0; i < modes.size(); ++i) {
            auto const component = static_cast<int>(i);
            int const index =
                randomMove(example, dice, component, before, step, failures > 0 && dice.oneIn(3));
            failures -= example.move(component, index).fails ? 1 : 0;
            modes[i] = example.move(component, index).to;
        }
    }
    return modes;
}

// What the modes show; by chance where they do not say.
std::vector<int> showing(Case const& example, Modes const& modes, Dice& dice) {
    std::vector<int> shown;
    for (std::size_t i = 0; i < modes.size(); ++i) {
        Component const& component = example.components[i];
        int const value = dice.upTo(1);
        bool const fits = mayShow(component, modes[i], valueAbove(component, shown), value);
        shown.push_back(fits ? value : 1 - value);
    }
    return shown;
}

// Most of what is shown is observed, and something always is.
void observe(Case& example, Modes const& modes, Dice& dice) {
    std::vector<int> const shown = showing(example, modes, dice);
    example.observed.clear();
    for (std::size_t i = 0; i < shown.size(); ++i)
        if (!dice.oneIn(3) || (i + 1 == shown.size() && example.observed.empty()))
            example.observed.push_back({static_cast<int>(i), shown[i]});
}

// At most one component is commanded in a step: commands of components that a clause links may
// block each other.
void command(Case& example, Dice& dice) {
    std::vector<int> given(example.components.size(), NONE);
    auto const chosen = at(dice.upTo(static_cast<int>(given.size()) - 1));
    if (example.components[chosen].commanded)
        given[chosen] = dice.upTo(BACK);
    example.commands.push_back(given);
}

}  // namespace

// Large models are short ones in most cases, so that a search takes milliseconds.
Case randomCase(unsigned seed) {
    Dice dice(seed);
    Case example;
    example.seed = seed;
    int const count = dice.oneIn(5) ? 3 : 1 + dice.upTo(1);
    for (int i = 0; i < count; ++i)
        example.components.push_back(randomComponent(dice, i));
    int const steps = 1 + dice.upTo(dice.oneIn(16) || count == 1 ? 4 : 4 - count);
    for (int step = 0; step < steps; ++step)
        command(example, dice);
    // Most ends without a failure to explain are thrown again.
    for (int throws = 0; throws < 6; ++throws) {
        observe(example, randomEnd(example, dice, dice.oneIn(8) ? 2 : 1), dice);
        if (example.explanations(0, 0).empty())
            break;
    }
    return example;
}

Component plainComponent(bool commanded) {
    Component component;
    component.commanded = commanded;
    component.shows = {LO, HI, LO};
    for (int const mode : {M0, M1}) {
        component.moves.push_back({mode, BAD, anyCommand, false, true, false, 0.01});
        addNominalMoves(component, mode, 0.99);
    }
    addAbsorbingMoves(component);
    return component;
}

}  // namespace random_models
