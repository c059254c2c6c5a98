// Random cases, their enumeration, and the models of the engine that say the same.
#include "reasoning/diagnoser_twin_fixture.h"

#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>

#include "model/CommandVar.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "model/transitionParts.h"

namespace diagnoser_twin {

namespace {

char const* const modeNames[] = {"m0", "m1", "bad", "worse"};
char const* const commandNames[] = {"none", "go", "back"};
char const* const outNames[] = {"lo", "hi"};
char const* const compNames[] = {"a", "b", "c"};
constexpr char const* scenarioFile = "twin.scn";

// What a component may show, given what stands upstream.
bool mayShow(Component const& component, int mode, int upstreamValue, int value) {
    int const shows = component.shows[static_cast<std::size_t>(mode)];
    if (shows == FREE)
        return true;
    bool const high = shows == HI && upstreamValue == HI;
    return value == (high ? HI : LO);
}

}  // namespace

std::string History::text() const {
    std::string all;
    for (auto const& step : moves) {
        for (int const move : step)
            all += std::to_string(move) + " ";
        all += "/ ";
    }
    return all;
}

bool Case::allows(int component, Move const& move, Modes const& modes, int step) const {
    if (move.from != modes[static_cast<std::size_t>(component)])
        return false;
    if (move.witness != noComponent && modes[static_cast<std::size_t>(move.witness)] != M1)
        return false;
    if (move.command == anyCommand)
        return true;
    int const given = commands[static_cast<std::size_t>(step)][static_cast<std::size_t>(component)];
    return (given == move.command) != move.unlessThat;
}

bool Case::agrees(Modes const& modes) const {
    std::vector<int> shown(components.size(), LO);
    std::function<bool(std::size_t)> const from = [&](std::size_t i) {
        if (i == components.size())
            return true;
        Component const& component = components[i];
        int const above = component.upstream == noComponent
                              ? HI
                              : shown[static_cast<std::size_t>(component.upstream)];
        for (int const value : {LO, HI}) {
            bool fits = mayShow(component, modes[i], above, value);
            for (Observed const& seen : observed)
                if (seen.component == static_cast<int>(i) && seen.value != value)
                    fits = false;
            shown[i] = value;
            if (fits && from(i + 1))
                return true;
        }
        return false;
    };
    return from(0);
}

std::vector<History> Case::explanations(int failures, int first) const {
    std::vector<History> found;
    History history;
    history.modes.push_back(Modes(components.size(), M0));
    // One component of one step after the other.
    std::function<void(int, std::size_t)> const extend = [&](int step, std::size_t i) {
        if (step == steps()) {
            if (history.failures == failures && agrees(history.modes.back()))
                found.push_back(history);
            return;
        }
        if (i == 0) {
            history.modes.push_back(history.modes.back());
            history.moves.emplace_back(components.size(), 0);
        }
        std::vector<Move> const& moves = components[i].moves;
        for (std::size_t m = 0; m < moves.size(); ++m) {
            Move const& move = moves[m];
            Modes const& before = history.modes[history.modes.size() - 2];
            if (!allows(static_cast<int>(i), move, before, step))
                continue;
            if (move.fails && (step < first || history.failures == failures))
                continue;
            history.modes.back()[i] = move.to;
            history.moves.back()[i] = static_cast<int>(m);
            history.failures += move.fails ? 1 : 0;
            if (i + 1 < components.size())
                extend(step, i + 1);
            else
                extend(step + 1, 0);
            history.failures -= move.fails ? 1 : 0;
        }
        if (i == 0) {
            history.modes.pop_back();
            history.moves.pop_back();
        }
    };
    extend(0, 0);
    return found;
}

// ---- Random cases ----

namespace {

class Dice {
public:
    explicit Dice(unsigned seed) : engine(seed) {}
    int upTo(int last) { return static_cast<int>(engine() % static_cast<unsigned>(last + 1)); }
    bool oneIn(int n) { return upTo(n - 1) == 0; }

private:
    std::mt19937 engine;
};

Component randomComponent(Dice& dice, int index) {
    Component component;
    component.commanded = index == 0 || !dice.oneIn(4);  // a step needs a command
    component.modes = dice.oneIn(2) ? 4 : 3;
    double const bad = 0.01 * (1 + dice.upTo(4));
    double const worse = 0.001 * (1 + dice.upTo(4));
    int const failures = component.modes - 2;
    double const nominal = 1.0 - bad - (failures > 1 ? worse : 0.0);
    for (int const mode : {M0, M1}) {
        int const command = mode == M0 ? GO : BACK;
        bool const atCommand = component.commanded && dice.oneIn(3);
        component.moves.push_back(
            {mode, BAD, atCommand ? command : anyCommand, false, true, false, bad});
        if (failures > 1)
            component.moves.push_back(
                {mode, WORSE, anyCommand, false, true, false, worse,
                 index > 0 && dice.oneIn(4) ? dice.upTo(index - 1) : noComponent});
        if (component.commanded) {
            component.moves.push_back({mode, 1 - mode, command, false, false, false, nominal});
            component.moves.push_back({mode, mode, command, true, false, true, nominal});
        } else {
            component.moves.push_back({mode, mode, anyCommand, false, false, true, nominal});
        }
    }
    for (int mode = BAD; mode < component.modes; ++mode)
        component.moves.push_back({mode, mode, anyCommand, false, false, true, 1.0});
    bool const flipped = dice.oneIn(2);
    component.shows = {flipped ? HI : LO, flipped ? LO : HI, dice.upTo(1), dice.upTo(1)};
    if (dice.oneIn(5))
        component.shows[BAD] = FREE;
    if (index > 0 && dice.oneIn(2))
        component.upstream = dice.upTo(index - 1);
    return component;
}

// Follows one way through the model, with *failures* of the chances to fail taken.
Modes randomEnd(Case const& example, Dice& dice, int failures) {
    Modes modes(example.components.size(), M0);
    for (int step = 0; step < example.steps(); ++step) {
        Modes const before = modes;
        for (std::size_t i = 0; i < modes.size(); ++i) {
            std::vector<Move> nominal, failing;
            for (Move const& move : example.components[i].moves)
                if (example.allows(static_cast<int>(i), move, before, step))
                    (move.fails ? failing : nominal).push_back(move);
            bool const fails = failures > 0 && !failing.empty() && dice.oneIn(3);
            failures -= fails ? 1 : 0;
            auto const& choice = fails ? failing : nominal;
            modes[i] =
                choice[static_cast<std::size_t>(dice.upTo(static_cast<int>(choice.size()) - 1))].to;
        }
    }
    return modes;
}

// What the modes show, FREE ones by chance.
std::vector<int> showing(Case const& example, Modes const& modes, Dice& dice) {
    std::vector<int> shown;
    for (std::size_t i = 0; i < modes.size(); ++i) {
        Component const& component = example.components[i];
        int const above = component.upstream == noComponent
                              ? HI
                              : shown[static_cast<std::size_t>(component.upstream)];
        int value = dice.upTo(1);
        if (!mayShow(component, modes[i], above, value))
            value = 1 - value;
        shown.push_back(value);
    }
    return shown;
}

void observe(Case& example, Modes const& modes, Dice& dice) {
    std::vector<int> const shown = showing(example, modes, dice);
    example.observed.clear();
    for (std::size_t i = 0; i < shown.size(); ++i)
        if (!dice.oneIn(3) || (i + 1 == shown.size() && example.observed.empty()))
            example.observed.push_back({static_cast<int>(i), shown[i]});
}

}  // namespace

Case randomCase(unsigned seed) {
    Dice dice(seed);
    Case example;
    example.seed = seed;
    int const count = 1 + dice.upTo(2);
    for (int i = 0; i < count; ++i)
        example.components.push_back(randomComponent(dice, i));
    int const steps = 1 + dice.upTo(4);
    for (int step = 0; step < steps; ++step) {
        std::vector<int> given(example.components.size(), NONE);
        auto const commanded = static_cast<std::size_t>(dice.upTo(count - 1));
        if (example.components[commanded].commanded)
            given[commanded] = dice.upTo(BACK);
        example.commands.push_back(given);
    }
    // Most ends without a failure to explain are thrown again.
    for (int throws = 0; throws < 6; ++throws) {
        observe(example, randomEnd(example, dice, 1 + dice.upTo(2)), dice);
        if (example.explanations(0, 0).empty())
            break;
    }
    return example;
}

// ---- The engine's form ----

QuietStreams::QuietStreams()
    : console(std::cout.rdbuf(out.rdbuf())), errors(std::cerr.rdbuf(err.rdbuf())) {}

QuietStreams::~QuietStreams() {
    std::cout.rdbuf(console);
    std::cerr.rdbuf(errors);
}

EngineModel::EngineModel(Case const& example) : example(example), built(example.components.size()) {
    scheduler = std::make_unique<Scheduler>("twin");
    sMM = scheduler.get();
    DataManager::states_cover.clear();
    DataManager::traj_cover = 0.0;
    for (std::size_t i = 0; i < built.size(); ++i)
        build(static_cast<int>(i));
    for (std::size_t i = 0; i < built.size(); ++i)
        addClauses(static_cast<int>(i));
    scheduler->rtInit();
}

EngineModel::~EngineModel() {
    sMM = nullptr;
    scheduler.reset();
    Diagnoser::redux_diag.clear();
    discretemdl = false;
    std::remove(scenarioFile);
}

namespace {

template <typename Variable>
Variable* makeVariable(Comp* comp, std::string const& name, char const* const* values, int count) {
    auto* made = comp->addStateVar(std::make_unique<Variable>(
        comp->name + "." + name, std::set<std::string>(values, values + count), values[0], comp));
    for (int i = 0; i < count; ++i)
        comp->newAtom((name + values[i]).c_str(), made, values[i]);
    addExclusiveChoice(made);
    return made;
}

Atom* atomOf(StateVar const* variable, int value) {
    return variable->getAtomLinks()[static_cast<std::size_t>(value)];
}

// The first literal is the conclusion; the others are negated.
void addRule(Comp* comp, Atom* conclusion, std::vector<Atom*> const& premises) {
    Clause* clause = DataManager::addClause(std::make_unique<Clause>(comp));
    clause->addAtomRef(conclusion, false);
    for (Atom* premise : premises)
        clause->addAtomRef(premise, true);
}

}  // namespace

void EngineModel::build(int index) {
    Component const& component = example.components[static_cast<std::size_t>(index)];
    Built& made = built[static_cast<std::size_t>(index)];
    made.comp = scheduler->addComp(std::make_unique<Comp>(compNames[index]));
    if (component.commanded)
        made.command = makeVariable<CommandVar>(made.comp, "cmd", commandNames, 3);
    made.mode = makeVariable<ModeVar>(made.comp, "mode", modeNames, component.modes);
    made.out = makeVariable<StateVar>(made.comp, "out", outNames, 2);
    made.out->type = typeObservable;
    addMoves(index);
}

void EngineModel::addMoves(int index) {
    Built& made = built[static_cast<std::size_t>(index)];
    for (Move const& move : example.components[static_cast<std::size_t>(index)].moves) {
        std::vector<std::pair<Atom*, bool>> guard{{atomOf(made.mode, move.from), true}};
        if (move.command != anyCommand)
            guard.push_back({atomOf(made.command, move.command), !move.unlessThat});
        if (move.witness != noComponent)
            guard.push_back({atomOf(built[static_cast<std::size_t>(move.witness)].mode, M1), true});
        made.transitions.push_back(made.comp->addTransitionToC(
            mkTransition(guard, guard.size() > 1 ? "and" : "", atomOf(made.mode, move.to),
                         move.fails ? transFail : transNominal, move.proba, move.idle)));
    }
}

void EngineModel::addClauses(int index) {
    Component const& component = example.components[static_cast<std::size_t>(index)];
    Built& made = built[static_cast<std::size_t>(index)];
    Atom* const lo = atomOf(made.out, LO);
    Atom* const hi = atomOf(made.out, HI);
    Built const* above = component.upstream == noComponent
                             ? nullptr
                             : &built[static_cast<std::size_t>(component.upstream)];
    if (above != nullptr) {
        made.comp->neighbours.push_back(above->comp);
        above->comp->neighbours.push_back(made.comp);
    }
    for (int mode = 0; mode < component.modes; ++mode) {
        int const shows = component.shows[static_cast<std::size_t>(mode)];
        Atom* const holds = atomOf(made.mode, mode);
        if (shows == LO)
            addRule(made.comp, lo, {holds});
        if (shows != HI)
            continue;
        std::vector<Atom*> premises{holds};
        if (above != nullptr) {
            addRule(made.comp, lo, {holds, atomOf(above->out, LO)});
            premises.push_back(atomOf(above->out, HI));
        }
        addRule(made.comp, hi, premises);
    }
    // The label at the start follows from the modes at the start.
    bool const starts = component.shows[M0] == HI &&
                        (above == nullptr || above->out->getCurrentState() == outNames[HI]);
    made.out->setDefault(outNames[starts ? HI : LO]);
    made.out->setCurrentState(outNames[starts ? HI : LO]);
}

// The commands, a line for each step, and the observation.
void EngineModel::writeScenario() const {
    std::ofstream file(scenarioFile);
    for (auto const& step : example.commands) {
        file << "Command";
        for (std::size_t i = 0; i < step.size(); ++i)
            if (built[i].command != nullptr)
                file << " " << compNames[i] << ".cmd=" << commandNames[step[i]];
        file << "\n";
    }
}

void EngineModel::run(bool fillGaps) {
    writeScenario();
    streams.err.str("");
    scheduler->raz();
    scheduler->bound = 0.0;
    auto first = std::make_unique<Trajectory>(&DataManager::active_atoms);
    for (auto const& entry : DataManager::active_comps)
        first->getState(0)->comps[entry.second->getName()] = entry.second;
    DataManager::tracked_traj.emplace(1.0, std::move(first));
    scheduler->runSchD(scenarioFile);
    if (fillGaps)
        holdEverywhere(DataManager::tracked_traj.begin()->second.get());
    std::ofstream file(scenarioFile);
    file << "Observation";
    for (Observed const& seen : example.observed)
        file << " " << compNames[seen.component] << ".out=" << outNames[seen.value];
    file << "\n";
    file.close();
    int const time = scheduler->time;
    scheduler->time = 0;
    scheduler->runSchD(scenarioFile);
    scheduler->time = time;
}

void EngineModel::holdEverywhere(Trajectory* trajectory) {
    for (int t = trajectory->firstTime + 1; t <= trajectory->currentTime; ++t)
        for (Built const& made : built)
            if (trajectory->getElt(t, atomOf(made.mode, M0)->getId()) == nullptr)
                trajectory->addComp(made.comp, trajectory->getState(t), t, true, false);
}

void EngineModel::allowRepeatedFailures() {
    for (Built const& made : built)
        for (auto const& transition : made.comp->transitions)
            transition->unconditional = true;
}

int EngineModel::valueOf(Trajectory const* trajectory, StateVar const* variable, int t,
                         std::vector<std::string>& errors) const {
    int value = -1;
    int holding = 0;
    std::string labels;
    for (std::size_t i = 0; i < variable->getAtomLinks().size(); ++i) {
        TrajEl const* element = trajectory->getElt(variable->getAtomLinks()[i]->getId(), t, 0);
        if (element == nullptr) {
            errors.push_back("no element of " + variable->getName());
            return 0;
        }
        labels += element->getLabel() + " ";
        if (element->evalTrajEl()) {
            value = static_cast<int>(i);
            ++holding;
        }
    }
    if (holding != 1)
        errors.push_back("step " + std::to_string(t) + ": " + variable->getName() + " is " +
                         labels);
    return value < 0 ? 0 : value;
}

int EngineModel::moveInto(Trajectory const* trajectory, int index, int t, Modes const& from, int to,
                          std::vector<std::string>& errors) const {
    Built const& made = built[static_cast<std::size_t>(index)];
    auto const& moves = example.components[static_cast<std::size_t>(index)].moves;
    TrajEl const* element = trajectory->getElt(t, atomOf(made.mode, to)->getId());
    Transition const* taken = element != nullptr ? element->prevTrans : nullptr;
    std::string const where = "step " + std::to_string(t) + " of " + compNames[index] + ": ";
    for (std::size_t m = 0; m < moves.size(); ++m) {
        bool const meant =
            taken != nullptr ? made.transitions[m] == taken : moves[m].idle && moves[m].from == to;
        if (!meant)
            continue;
        if (!example.allows(index, moves[m], from, t - 1) || moves[m].to != to)
            errors.push_back(
                where + "move " + std::to_string(m) +
                (taken != nullptr ? " was not possible" : " (unsaid) was not possible"));
        return static_cast<int>(m);
    }
    errors.push_back(where + "no move");
    return 0;
}

void EngineModel::checkShown(Trajectory const* trajectory, int t,
                             std::vector<std::string>& errors) const {
    for (auto const& clause : DataManager::cls) {
        bool satisfied = false;
        for (auto const& [negated, atom] : clause->atoms) {
            TrajEl const* element = trajectory->getElt(atom->getId(), t, 0);
            if (element != nullptr && element->isLabelled(negated ? labelFalse : labelTrue))
                satisfied = true;
        }
        if (satisfied)
            continue;
        std::string text;
        for (auto const& [negated, atom] : clause->atoms)
            text += std::string(negated ? "!" : "") + atom->getId() + " " +
                    trajectory->getElt(atom->getId(), t, 0)->getLabel() + ", ";
        errors.push_back("step " + std::to_string(t) + ": clause " + text);
    }
}

History EngineModel::read(Trajectory const* trajectory, std::vector<std::string>& errors) const {
    History history;
    int const last = trajectory->getCurrentTime();
    if (last != example.steps())
        errors.push_back("the history ends at step " + std::to_string(last));
    for (int t = trajectory->firstTime; t <= last; ++t) {
        checkShown(trajectory, t, errors);
        Modes modes;
        for (std::size_t i = 0; i < built.size(); ++i) {
            modes.push_back(valueOf(trajectory, built[i].mode, t, errors));
            if (built[i].command != nullptr && t < last &&
                valueOf(trajectory, built[i].command, t, errors) !=
                    example.commands[static_cast<std::size_t>(t)][i])
                errors.push_back("step " + std::to_string(t) + ": another command");
            valueOf(trajectory, built[i].out, t, errors);
        }
        if (t > trajectory->firstTime) {
            std::vector<int> moves;
            for (std::size_t i = 0; i < built.size(); ++i) {
                moves.push_back(moveInto(trajectory, static_cast<int>(i), t, history.modes.back(),
                                         modes[i], errors));
                history.failures +=
                    example.components[i].moves[static_cast<std::size_t>(moves.back())].fails ? 1
                                                                                              : 0;
            }
            history.moves.push_back(moves);
        }
        history.modes.push_back(modes);
    }
    for (Observed const& seen : example.observed)
        if (valueOf(trajectory, built[static_cast<std::size_t>(seen.component)].out, last,
                    errors) != seen.value)
            errors.push_back("another value than the one observed");
    if (history.failures != static_cast<int>(trajectory->rank))
        errors.push_back("rank " + std::to_string(trajectory->rank) + " and " +
                         std::to_string(history.failures) + " failures");
    return history;
}

}  // namespace diagnoser_twin
