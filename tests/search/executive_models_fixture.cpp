// Random models with running transitions, and the twin of their nominal steps.
#include "search/executive_models_fixture.h"

#include <algorithm>

#include "search/dice.h"
#include "search/engine_parts_fixture.h"

namespace executives {

using random_models::Dice;

namespace {

std::size_t at(int index) {
    return static_cast<std::size_t>(index);
}

char const* valueName(Fact const& fact) {
    switch (fact.kind) {
        case MODE:
            return random_models::modeNames[fact.value];
        case COMMAND:
            return random_models::commandNames[fact.value];
        default:
            return random_models::outNames[fact.value];
    }
}

std::string text(Fact const& fact) {
    constexpr char const* names[] = {"mode", "cmd", "out"};
    return std::string(random_models::compNames[fact.component]) + "." + names[fact.kind] + "=" +
           valueName(fact);
}

std::string text(Rule const& rule) {
    std::string all;
    for (Literal const& literal : rule.guard)
        all += (literal.sign ? " " : " not ") + text(literal.fact);
    for (Effect const& effect : rule.effects)
        all += " => " + std::to_string(effect.delay) + ": " + text(effect.fact);
    return all + (rule.fails ? " fails" : "") + (rule.idle ? " idle" : "");
}

}  // namespace

bool Rule::leaves(Fact const& fact) const {
    return std::any_of(guard.begin(), guard.end(), [&fact](Literal const& literal) {
        return literal.sign ? literal.fact == fact
                            : literal.fact.sameVariable(fact) && !(literal.fact == fact);
    });
}

Rule const& Model::rule(int component, int index) const {
    return components[at(component)].rules[at(index)];
}

int Model::shown(Modes const& modes, int component) const {
    Component const& self = components[at(component)];
    if (self.shows[at(modes[at(component)])] == LO)
        return LO;
    return self.upstream == nobody ? HI : shown(modes, self.upstream);
}

std::string Model::text(std::size_t count) const {
    std::string all;
    for (std::size_t i = 0; i < std::min(count, lines.size()); ++i) {
        all += lines[i].commands ? "Command" : "Observation";
        for (Fact const& fact : lines[i].facts)
            all += " " + executives::text(fact);
        all += "\n";
    }
    return all;
}

std::string Model::describe() const {
    std::string all = "seed " + std::to_string(seed) + ", histories at the start " +
                      std::to_string(histories) + "\n";
    for (int i = 0; i < size(); ++i) {
        Component const& self = components[at(i)];
        all += std::string(random_models::compNames[i]) + ", upstream " +
               std::to_string(self.upstream) + ", imports " + std::to_string(self.imports) +
               ", shows";
        for (int const value : self.shows)
            all += " " + std::to_string(value);
        for (Rule const& rule : self.rules)
            all += "\n  " + executives::text(rule);
        all += "\n";
    }
    return all + text(lines.size());
}

// ---- Random models ----

namespace {

int another(Dice& dice, int count, int self) {
    return (self + 1 + dice.upTo(count - 2)) % count;
}

Rule plainRule(std::vector<Literal> guard, int component, int to, double proba) {
    return {std::move(guard), {{nextStep, {component, MODE, to}}}, false, false, proba};
}

// Own effect late or at once, and the command of another component, or one of them.
std::vector<Effect> delayedEffects(Dice& dice, int self, int other) {
    Fact const moves{self, MODE, M1};
    int const late = 1 + dice.upTo(2);
    if (other == nobody || dice.oneIn(3))
        return {{late, moves}};
    Fact const gives{other, COMMAND, dice.oneIn(4) ? BACK : GO};
    int const when = 1 + dice.upTo(2);
    if (when == late)
        return {{late, moves}, {late + 1, gives}};
    if (when < late)
        return {{when, gives}, {late, moves}};
    return {{late, moves}, {when, gives}};
}

// What moves a component that works: a command, most often under further conditions.
Rule goes(Model const& model, Dice& dice, int i, int mover, bool delayed, bool plain) {
    int const count = model.size();
    std::vector<Literal> guard{{true, {i, MODE, M0}}, {true, {mover, COMMAND, GO}}};
    if (!plain && count > 1 && dice.oneIn(4))
        guard.push_back({true, {another(dice, count, i), MODE, M1}});
    if (!plain && !delayed && count > 1 && dice.oneIn(4))
        guard.push_back({false, {another(dice, count, i), COMMAND, BACK}});
    if (!delayed)
        return plainRule(guard, i, M1, 0.9);
    int const other = count > 1 ? another(dice, count, i) : nobody;
    return {guard, delayedEffects(dice, i, other), false, false, 0.9};
}

Rule failsFrom(Model const& model, Dice& dice, int i, int mode) {
    Rule rule = plainRule({{true, {i, MODE, mode}}}, i, BAD, 0.01 * (1 + dice.upTo(4)));
    if (model.size() > 1 && dice.oneIn(4))
        rule.guard.push_back({true, {another(dice, model.size(), i), MODE, M1}});
    rule.fails = true;
    return rule;
}

void addMoves(Model& model, Dice& dice, int i, bool plain) {
    Component& self = model.components[at(i)];
    int const mover = self.imports != nobody ? self.imports : i;
    bool const delayed = !plain && dice.oneIn(2);
    self.rules.push_back(goes(model, dice, i, mover, delayed, plain));
    self.rules.push_back(
        plainRule({{true, {i, MODE, M1}}, {true, {mover, COMMAND, BACK}}}, i, M0, 0.9));
    for (int const mode : {M0, M1}) {
        self.rules.push_back(failsFrom(model, dice, i, mode));
        Rule stays = plainRule({{true, {i, MODE, mode}}}, i, mode, 0.9);
        if (!delayed)
            stays.guard.push_back({false, {mover, COMMAND, mode == M0 ? GO : BACK}});
        stays.idle = true;
        self.rules.push_back(stays);
    }
    Rule broken = plainRule({{true, {i, MODE, BAD}}}, i, BAD, 1.0);
    broken.idle = true;
    self.rules.push_back(broken);
}

Line commandLine(Model const& model, Dice& dice, bool named) {
    Line line{true, {}};
    int const first = dice.upTo(model.size() - 1);
    if (named) {
        for (int i = 0; i < model.size(); ++i)
            line.facts.push_back({i, COMMAND, i == first ? dice.upTo(BACK) : NONE});
        return line;
    }
    for (int i = 0; i < model.size(); ++i)
        if (i == first || dice.oneIn(3))
            line.facts.push_back({i, COMMAND, dice.oneIn(2) ? GO : dice.upTo(BACK)});
    return line;
}

// Of what the modes show, or of one component the contrary.
Line observationLine(Model const& model, Dice& dice, Modes const& modes, bool wrong) {
    Line line{false, {}};
    int const first = dice.upTo(model.size() - 1);
    for (int i = 0; i < model.size(); ++i)
        if (i == first || dice.oneIn(2)) {
            int const value = model.shown(modes, i);
            line.facts.push_back({i, OUT, wrong && i == first ? 1 - value : value});
        }
    return line;
}

// The lines are made beside a twin, which tells what will be shown; most observations agree.
void addLines(Model& model, Dice& dice, Style const& style) {
    Twin twin(model);
    bool known = true;
    // The window of a plain run holds every step.
    int const count = style.plain ? 1 + dice.upTo(3) : 3 + dice.upTo(4);
    for (int i = 0; i < count; ++i) {
        Modes const modes = twin.histories().front().back().modes;
        bool const observes = i > 0 && dice.oneIn(3);
        bool const wrong = !style.plain && dice.oneIn(3);
        model.lines.push_back(observes ? observationLine(model, dice, modes, wrong)
                                       : commandLine(model, dice, style.named));
        known = known && twin.step(model.lines.back());
    }
    if (style.plain)
        model.lines.push_back(
            observationLine(model, dice, twin.histories().front().back().modes, true));
}

}  // namespace

Model randomModel(unsigned seed, Style const& style) {
    Dice dice(seed);
    Model model;
    model.seed = seed;
    model.components.resize(at(1 + dice.upTo(2)));
    // One command that moves two components which a clause links may move one of them only: what a
    // move pulled into the next state is held there by its idle transition.
    bool const linked = style.linked && (!style.plain || dice.oneIn(2));
    bool const imports = !style.plain || !linked;
    for (int i = 0; i < model.size(); ++i) {
        Component& self = model.components[at(i)];
        bool const flipped = dice.oneIn(2);
        self.shows = {flipped ? HI : LO, flipped ? LO : HI, dice.upTo(1)};
        if (linked && i > 0 && dice.oneIn(2))
            self.upstream = dice.upTo(i - 1);
        if (imports && model.size() > 1 && dice.oneIn(4))
            self.imports = another(dice, model.size(), i);
        for (int j = 0; j < model.size(); ++j)
            if (j != i && (j == self.upstream || dice.oneIn(3)))
                self.neighbours.push_back(j);
    }
    for (int i = 0; i < model.size(); ++i)
        addMoves(model, dice, i, style.plain);
    model.histories = !style.plain && dice.oneIn(3) ? 2 : 1;
    addLines(model, dice, style);
    return model;
}

// ---- The twin ----

int Labels::of(Fact const& fact) const {
    return (fact.kind == MODE ? modes : commands)[at(fact.component)];
}

bool Labels::holds(Rule const& rule) const {
    return std::all_of(rule.guard.begin(), rule.guard.end(), [this](Literal const& literal) {
        return (of(literal.fact) == literal.fact.value) == literal.sign;
    });
}

Twin::Twin(Model const& model) : model(model), all(at(model.histories)) {
    Labels const start{Modes(model.components.size(), M0), Modes(model.components.size(), NONE)};
    for (History& history : all)
        history.steps.push_back(start);
}

std::vector<std::vector<Labels>> Twin::histories() const {
    std::vector<std::vector<Labels>> steps;
    for (History const& history : all)
        steps.push_back(history.steps);
    return steps;
}

bool Twin::step(Line const& line) {
    // The line takes the place of what was scheduled for its step.
    events[time + 1] = line.facts;
    ++time;
    if (line.commands)
        for (History& history : all)
            command(history);
    else
        observe(line);
    events.erase(time);
    return !lost;
}

// Asserts the commands of the step and those that still run. Answers the facts that were asserted
// or gave way; none when two of them exclude each other, and then nothing has changed.
std::vector<Fact> Twin::settle(History& history) {
    std::vector<Fact>& given = events[time];
    for (auto const& entry : running)
        given.push_back(entry.second.command);
    std::vector<Fact> settled;
    Labels& labels = history.steps.back();
    for (Fact const& fact : given) {
        lost = lost || fact.kind != COMMAND;
        for (Fact const& other : given)
            if (fact.sameVariable(other) && fact.value != other.value)
                return {};
        settled.push_back(fact);
        settled.push_back({fact.component, COMMAND, labels.of(fact)});
    }
    for (Fact const& fact : given)
        labels.commands[at(fact.component)] = fact.value;
    return settled;
}

void Twin::command(History& history) {
    std::vector<Fact> const settled = settle(history);
    History next = history;
    next.steps.push_back(history.steps.back());
    next.empty = true;
    next.locked = false;
    if (settled.empty()) {
        ++failed;
    } else {
        history.empty = false;
        history.locked = true;
        fireAll(history, settled, next);
        endRunning(static_cast<int>(history.steps.size()) - 1);
    }
    if (!next.empty || (!history.empty && history.locked))
        history = next;
}

// What leaves a fact that was asserted or gave way, and holds.
void Twin::fireAll(History const& history, std::vector<Fact> const& settled, History& next) {
    for (int i = 0; i < model.size(); ++i)
        for (std::size_t r = 0; r < model.components[at(i)].rules.size(); ++r) {
            Rule const& rule = model.components[at(i)].rules[r];
            bool const examined =
                std::any_of(settled.begin(), settled.end(),
                            [&rule](Fact const& fact) { return rule.leaves(fact); });
            if (examined && !rule.fails && !rule.idle && history.steps.back().holds(rule))
                fire(history, {i, static_cast<int>(r)}, next);
        }
}

void Twin::fire(History const& history, RuleOf const& id, History& next) {
    Rule const& rule = model.rule(id.first, id.second);
    int const t = static_cast<int>(history.steps.size()) - 1;
    next.empty = false;
    for (Effect const& effect : rule.effects) {
        fireEffect(id, effect, t, next);
        if (effect.delay != nextStep)
            for (Literal const& literal : rule.guard)
                if (literal.fact.kind == COMMAND)
                    running[id] = {t, literal.fact};
    }
}

void Twin::fireEffect(RuleOf const& id, Effect const& effect, int t, History& next) {
    Fact const& fact = effect.fact;
    if (fact.kind == COMMAND) {
        give(fact, t + std::max(effect.delay, 1));
        return;
    }
    bool const runs = effect.delay != nextStep && running.count(id) != 0;
    auto const [place, added] = next.index.insert({{fact.component, fact.value}, -1});
    if (!runs)
        place->second = t;
    if (effect.delay != nextStep && place->second + effect.delay != t + 1) {
        give(fact, t + effect.delay);
        return;
    }
    lateEffects += effect.delay > 1 ? 1 : 0;
    next.locked = next.locked || next.steps.back().of(fact) != fact.value;
    next.steps.back().modes[at(fact.component)] = fact.value;
}

// A command waits for a step whose commands are of other variables.
void Twin::give(Fact const& fact, int when) {
    for (int key = when;; ++key) {
        std::vector<Fact>& event = events[key];
        if (std::any_of(event.begin(), event.end(),
                        [&fact](Fact const& other) { return fact.sameVariable(other); }))
            continue;
        event.push_back(fact);
        reached += key == time ? 1 : 0;
        return;
    }
}

void Twin::endRunning(int t) {
    std::erase_if(running, [this, t](auto const& entry) {
        auto const& [id, run] = entry;
        return run.start + static_cast<int>(model.rule(id.first, id.second).effects.size()) == t;
    });
}

// Every history is copied, and every copy locked.
void Twin::observe(Line const& line) {
    for (History& history : all) {
        for (Fact const& fact : line.facts)
            lost = lost || model.shown(history.steps.back().modes, fact.component) != fact.value;
        history.locked = true;
        history.empty = history.empty && line.facts.empty();
    }
}

// ---- The enumeration ----

namespace {

// Extends a history by one component of one line after the other.
class Enumeration {
public:
    Enumeration(Model const& model, int failures) : model(model), left(failures) {
        history.push_back(Modes(model.components.size(), M0));
    }
    std::set<std::vector<Modes>> run() {
        extend(0);
        return std::move(found);
    }

private:
    void extend(std::size_t line) {
        if (line == model.lines.size()) {
            if (left == 0)
                found.insert(history);
        } else if (model.lines[line].commands) {
            history.push_back(history.back());
            extend(line, 0);
            history.pop_back();
        } else if (shows(model.lines[line])) {
            extend(line + 1);
        }
    }
    void extend(std::size_t line, int component) {
        if (component == model.size()) {
            extend(line + 1);
            return;
        }
        Labels before{history[history.size() - 2], Modes(model.components.size())};
        for (Fact const& fact : model.lines[line].facts)
            before.commands[at(fact.component)] = fact.value;
        for (Rule const& rule : model.components[at(component)].rules)
            if (before.holds(rule) && (!rule.fails || left > 0)) {
                history.back()[at(component)] = rule.effects.front().fact.value;
                left -= rule.fails ? 1 : 0;
                extend(line, component + 1);
                left += rule.fails ? 1 : 0;
            }
    }
    bool shows(Line const& line) const {
        return std::all_of(line.facts.begin(), line.facts.end(), [this](Fact const& fact) {
            return model.shown(history.back(), fact.component) == fact.value;
        });
    }

    Model const& model;
    int left;  // failures
    std::vector<Modes> history;
    std::set<std::vector<Modes>> found;
};

}  // namespace

// A failure is never left, so there are at most as many as components.
std::set<std::vector<Modes>> leastHistories(Model const& model) {
    for (int failures = 0; failures <= model.size(); ++failures) {
        std::set<std::vector<Modes>> found = Enumeration(model, failures).run();
        if (!found.empty())
            return found;
    }
    return {};
}

}  // namespace executives
