// The engine's form of a model with running transitions, its runs, and what its histories tell.
#include "search/executive_fixture.h"
#include "fixtures/the_run.h"

#include <algorithm>

#include "model/CommandVar.h"
#include "model/ModeVarrt.h"
#include "model/labels.h"
#include "search/engine_parts_fixture.h"

namespace executives {

using random_models::addRule;
using random_models::makeVariable;

namespace {

std::size_t at(int index) {
    return static_cast<std::size_t>(index);
}

}  // namespace

// ---- The model ----

Executive::Executive(Model const& model) : model(model), built(model.components.size()) {
    for (int i = 0; i < model.size(); ++i)
        build(i);
    for (int i = 0; i < model.size(); ++i) {
        addRules(i);
        addClauses(i);
        link(i);
    }
    engine.start();
    for (int more = 1; more < model.histories; ++more)
        theRun().scheduler.tracked_traj.emplace(
            1.0,
            std::make_unique<Trajectory>(theRun().scheduler.tracked_traj.begin()->second.get(), 1));
}

void Executive::build(int index) {
    Built& made = built[at(index)];
    made.comp = engine.scheduler->addComp(std::make_unique<Comp>(random_models::compNames[index]));
    auto* command = makeVariable<CommandVar>(made.comp, "cmd", random_models::commandNames, 3);
    made.comp->commands = {command};
    made.variables[COMMAND] = command;
    made.variables[MODE] = makeVariable<ModeVar>(made.comp, "mode", random_models::modeNames, 3);
    made.variables[OUT] = makeVariable<StateVar>(made.comp, "out", random_models::outNames, 2);
    made.variables[OUT]->type = typeObservable;
}

Atom* Executive::atom(Fact const& fact) const {
    return random_models::atomOf(built[at(fact.component)].variables[fact.kind], fact.value);
}

void Executive::addRules(int index) {
    Built& made = built[at(index)];
    for (Rule const& rule : model.components[at(index)].rules) {
        auto guard = std::make_unique<StateFormula>();
        for (auto const& [sign, fact] : rule.guard)
            guard->addAtom(atom(fact), sign);
        guard->setOperat(rule.guard.size() > 1 ? "and" : "");
        auto posts = std::make_unique<Transition::Posts>();
        for (auto const& [delay, fact] : rule.effects) {
            auto effect = std::make_unique<StateFormula>();
            effect->addAtom(atom(fact), true);
            (*posts)[delay] = effect.release();
        }
        std::unique_ptr<Transition> transition;
        if (rule.isDelayed()) {
            transition = std::make_unique<Transition>(std::move(guard), std::move(posts),
                                                      transNominal, rule.proba);
        } else {
            std::unique_ptr<StateFormula> effect(posts->begin()->second);
            transition = std::make_unique<Transition>(std::move(guard), std::move(effect),
                                                      rule.fails ? transFail : transNominal,
                                                      rule.proba, 0.0, rule.idle);
        }
        made.transitions.push_back(made.comp->addTransitionToC(std::move(transition)));
    }
}

// What a mode shows: lo, or hi and then only if what stands upstream is hi.
void Executive::addClauses(int index) {
    Component const& self = model.components[at(index)];
    Comp* comp = built[at(index)].comp;
    for (int const mode : {M0, M1, BAD}) {
        std::vector<Atom*> premises{atom({index, MODE, mode})};
        if (self.shows[at(mode)] == LO) {
            addRule(comp, atom({index, OUT, LO}), premises);
            continue;
        }
        if (self.upstream != nobody) {
            addRule(comp, atom({index, OUT, LO}), {premises[0], atom({self.upstream, OUT, LO})});
            premises.push_back(atom({self.upstream, OUT, HI}));
        }
        addRule(comp, atom({index, OUT, HI}), premises);
    }
    // The label at the start follows from the modes at the start.
    Modes const modes(model.components.size(), M0);
    char const* const shown = random_models::outNames[model.shown(modes, index)];
    built[at(index)].variables[OUT]->setDefault(shown);
    built[at(index)].variables[OUT]->setCurrentState(shown);
}

void Executive::link(int index) {
    Component const& self = model.components[at(index)];
    Comp* comp = built[at(index)].comp;
    for (int const other : self.neighbours)
        comp->neighbours.push_back(built[at(other)].comp);
    if (self.imports != nobody)
        comp->importedCommands = {
            static_cast<CommandVar*>(built[at(self.imports)].variables[COMMAND])};
}

void Executive::allowRepeatedFailures() {
    for (Built const& made : built)
        for (auto const& transition : made.comp->transitions)
            transition->unconditional = true;
}

// ---- Runs ----

void Executive::run(std::size_t lines) {
    ran = lines;
    engine.run(model.text(lines));
}

bool Executive::said(char const* words) const {
    return streams.text.str().find(words) != std::string::npos;
}

std::string Executive::told() const {
    std::istringstream lines(streams.text.str());
    std::string all;
    for (std::string line; std::getline(lines, line);) {
        for (char const* timed : {"elapsed time", "execution time", "Rank : ", "Time : "})
            if (line.find(timed) != std::string::npos)
                line = timed;
        all += line + "\n";
    }
    return all;
}

// ---- Histories as the engine tells them ----

Labels Executive::labelsAt(Trajectory const* trajectory, int step, Errors& errors) const {
    Labels labels;
    for (Built const& made : built) {
        labels.modes.push_back(
            random_models::valueOf(trajectory, made.variables[MODE], step, errors));
        labels.commands.push_back(
            random_models::valueOf(trajectory, made.variables[COMMAND], step, errors));
    }
    for (int i = 0; i < model.size(); ++i)
        if (random_models::valueOf(trajectory, built[at(i)].variables[OUT], step, errors) !=
            model.shown(labels.modes, i))
            errors.push_back("step " + std::to_string(step) + " shows what its modes do not");
    random_models::checkClauses(trajectory, step, errors);
    return labels;
}

Told Executive::tell(Trajectory const* trajectory, Errors& errors) const {
    Told told{trajectory->firstTime, {}};
    for (int step = told.first; step <= trajectory->getCurrentTime(); ++step)
        told.steps.push_back(labelsAt(trajectory, step, errors));
    return told;
}

std::vector<Told> Executive::histories(Errors& errors) const {
    std::vector<Told> all;
    for (auto const& entry : theRun().scheduler.tracked_traj)
        all.push_back(tell(entry.second.get(), errors));
    return all;
}

int Executive::checkMoves(Errors& errors) const {
    int unled = 0;
    for (auto const& entry : theRun().scheduler.tracked_traj) {
        Trajectory const* trajectory = entry.second.get();
        Told const told = tell(trajectory, errors);
        for (int step = told.first + 1; step <= trajectory->getCurrentTime(); ++step)
            for (int i = 0; i < model.size(); ++i)
                unled += checkMove(trajectory, told, i, step, errors) ? 1 : 0;
    }
    return unled;
}

// A step that failed is one that a history did not take.
void Executive::checkScenario(Errors& errors) const {
    for (auto const& entry : theRun().scheduler.tracked_traj) {
        checkRank(entry.second.get(), errors);
        if (!said("no valid state found"))
            checkLines(entry.second.get(), errors);
    }
}

Rule const* Executive::ruleOf(int component, Transition const* transition) const {
    auto const& transitions = built[at(component)].transitions;
    auto const found = std::find(transitions.begin(), transitions.end(), transition);
    return found == transitions.end()
               ? nullptr
               : &model.rule(component, static_cast<int>(found - transitions.begin()));
}

// Its mode may be the late effect of a transition, or it was brought into a state by an effect, and
// nothing led to its mode there.
bool Executive::isTouchedByDelays(int component) const {
    for (Component const& other : model.components)
        for (Rule const& rule : other.rules)
            if (rule.isDelayed())
                for (Effect const& effect : rule.effects)
                    if (effect.fact.component == component)
                        return true;
    return false;
}

// A component that is pulled into a state goes on by its idle transition there, whatever else the
// guard asks for.
void Executive::checkTaken(Rule const* rule, Labels const& before, Fact const& now,
                           std::string const& where, Errors& errors) const {
    if (rule == nullptr)
        errors.push_back(where + "a transition of another component");
    else if (std::none_of(rule->effects.begin(), rule->effects.end(),
                          [&now](Effect const& effect) { return effect.fact == now; }))
        errors.push_back(where + "a transition that leads elsewhere");
    else if (rule->idle ? before.of(now) != now.value : !before.holds(*rule))
        errors.push_back(where + "the guard did not hold");
}

// Whether the mode changed without a transition.
bool Executive::checkMove(Trajectory const* trajectory, Told const& told, int component, int step,
                          Errors& errors) const {
    Labels const& before = told.steps[at(step - told.first - 1)];
    Fact const now{component, MODE, told.steps[at(step - told.first)].modes[at(component)]};
    TrajEl const* element = trajectory->getElt(step, atom(now)->getId());
    Transition const* taken = element != nullptr ? element->prevTrans : nullptr;
    std::string const where =
        "step " + std::to_string(step) + " of " + random_models::compNames[component] + ": ";
    if (taken != nullptr) {
        checkTaken(ruleOf(component, taken), before, now, where, errors);
        return false;
    }
    if (before.of(now) == now.value)
        return false;
    if (!isTouchedByDelays(component))
        errors.push_back(where + "a move that no transition made");
    return true;
}

// An observation enters the last state anew, and the failures that led into it count once more.
void Executive::checkRank(Trajectory const* trajectory, Errors& errors) const {
    double failures = 0.0;
    for (int step = trajectory->firstTime; step <= trajectory->getCurrentTime(); ++step)
        failures += trajectory->getStateRank(trajectory->getState(step));
    bool const exact = trajectory->firstTime == 0 &&
                       std::count_if(model.lines.begin(), model.lines.end(),
                                     [](Line const& line) { return !line.commands; }) < 2;
    if (exact ? trajectory->rank != failures : trajectory->rank < failures)
        errors.push_back("rank " + std::to_string(trajectory->rank) + " and " +
                         std::to_string(failures) + " failures");
}

// Every line of commands was a step.
void Executive::checkLines(Trajectory const* trajectory, Errors& errors) const {
    int step = 0;
    for (std::size_t i = 0; i < ran; ++i) {
        Line const& line = model.lines[i];
        for (Fact const& fact : line.facts) {
            StateVar const* variable = built[at(fact.component)].variables[fact.kind];
            if (step >= trajectory->firstTime &&
                random_models::valueOf(trajectory, variable, step, errors) != fact.value)
                errors.push_back("line " + std::to_string(i + 1) + " is not what step " +
                                 std::to_string(step) + " tells");
        }
        step += line.commands ? 1 : 0;
    }
    if (step != trajectory->getCurrentTime())
        errors.push_back("a history of " + std::to_string(trajectory->getCurrentTime()) + " steps");
}

}  // namespace executives
