// The engine's form of a case, its runs, and the histories that it tells.
#include "search/engine_model_fixture.h"
#include "fixtures/the_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "model/CommandVar.h"
#include "model/ModeVarrt.h"
#include "model/labels.h"
#include "model/transitionParts.h"
#include "search/engine_parts_fixture.h"

namespace random_models {

namespace {

std::size_t at(int index) {
    return static_cast<std::size_t>(index);
}

}  // namespace

EngineModel::EngineModel(Case const& example, RunSettings const& settings)
    : example(example), built(example.components.size()), engine("twin", settings) {
    for (std::size_t i = 0; i < built.size(); ++i)
        build(static_cast<int>(i));
    for (std::size_t i = 0; i < built.size(); ++i)
        addClauses(static_cast<int>(i));
    engine.start();
}

// ---- The model ----

void EngineModel::build(int index) {
    Component const& component = example.components[at(index)];
    Built& made = built[at(index)];
    made.comp = engine.scheduler->addComp(std::make_unique<Comp>(compNames[index]));
    if (component.commanded)
        made.command = makeVariable<CommandVar>(made.comp, "cmd", commandNames, 3);
    made.mode = makeVariable<ModeVar>(made.comp, "mode", modeNames, component.modes);
    made.out = makeVariable<StateVar>(made.comp, "out", outNames, 2);
    made.out->type = typeObservable;
    addMoves(index);
}

void EngineModel::addMoves(int index) {
    Built& made = built[at(index)];
    for (Move const& move : example.components[at(index)].moves) {
        std::vector<std::pair<Atom*, bool>> guard{{atomOf(made.mode, move.from), true}};
        if (move.command != anyCommand)
            guard.push_back({atomOf(made.command, move.command), !move.unlessThat});
        if (move.witness != noComponent)
            guard.push_back({atomOf(built[at(move.witness)].mode, M1), true});
        made.transitions.push_back(made.comp->addTransitionToC(
            mkTransition(guard, guard.size() > 1 ? "and" : "", atomOf(made.mode, move.to),
                         move.fails ? transFail : transNominal, move.proba, move.idle)));
    }
}

// What a mode shows: lo, or hi and then only if what stands upstream is hi.
void EngineModel::addModeClauses(Built const& made, Built const* above, int mode, int shows) {
    Atom* const lo = atomOf(made.out, LO);
    Atom* const holds = atomOf(made.mode, mode);
    if (shows == LO)
        addRule(made.comp, lo, {holds});
    if (shows != HI)
        return;
    std::vector<Atom*> premises{holds};
    if (above != nullptr) {
        addRule(made.comp, lo, {holds, atomOf(above->out, LO)});
        premises.push_back(atomOf(above->out, HI));
    }
    addRule(made.comp, atomOf(made.out, HI), premises);
}

void EngineModel::addClauses(int index) {
    Component const& component = example.components[at(index)];
    Built const& made = built[at(index)];
    Built const* above =
        component.upstream == noComponent ? nullptr : &built[at(component.upstream)];
    if (above != nullptr) {
        made.comp->neighbours.push_back(above->comp);
        above->comp->neighbours.push_back(made.comp);
    }
    for (int mode = 0; mode < component.modes; ++mode)
        addModeClauses(made, above, mode, component.shows[at(mode)]);
    // The label at the start follows from the modes at the start.
    bool const starts = component.shows[M0] == HI &&
                        (above == nullptr || above->out->getCurrentState() == outNames[HI]);
    made.out->setDefault(outNames[starts ? HI : LO]);
    made.out->setCurrentState(outNames[starts ? HI : LO]);
}

void EngineModel::allowRepeatedFailures() {
    for (Built const& made : built)
        for (auto const& transition : made.comp->transitions)
            transition->unconditional = true;
}

// ---- Runs ----

// A line for each step.
std::string EngineModel::commandLines() const {
    std::string lines;
    for (auto const& step : example.commands) {
        lines += "Command";
        for (std::size_t i = 0; i < step.size(); ++i)
            if (built[i].command != nullptr && step[i] != unsaid)
                lines += std::string(" ") + compNames[i] + ".cmd=" + commandNames[step[i]];
        lines += "\n";
    }
    return lines;
}

std::string EngineModel::observationLine() const {
    std::string line = "Observation";
    for (Observed const& seen : example.observed)
        line += std::string(" ") + compNames[seen.component] + ".out=" + outNames[seen.value];
    return line + "\n";
}

void EngineModel::command() {
    engine.run(commandLines());
}

Trajectory* EngineModel::followed() {
    return theRun().scheduler.tracked_traj.begin()->second.get();
}

int EngineModel::windowStart() const {
    return followed()->firstTime;
}

bool EngineModel::holds(int component, int step) const {
    return followed()->getElt(step, atomOf(built[at(component)].mode, M0)->getId()) != nullptr;
}

void EngineModel::fillGaps() {
    Trajectory* trajectory = followed();
    for (int step = trajectory->firstTime + 1; step <= trajectory->currentTime; ++step)
        for (std::size_t i = 0; i < built.size(); ++i)
            if (!holds(static_cast<int>(i), step))
                trajectory->addComp(built[i].comp, trajectory->getState(step), step, true, false);
}

// Each file is a scenario of its own, which begins at step 1.
void EngineModel::observe() {
    streams.errors.str("");
    engine.scheduler->time = 0;
    engine.run(observationLine());
    trace = streams.errors.str();
}

bool EngineModel::hasSearched() const {
    return trace.find("---------> Diagnosing...\n") != std::string::npos;
}

// The search tells a transition that it chooses, then that it leaves it out.
std::set<MoveOf> EngineModel::leftOutWithinRank() const {
    std::set<MoveOf> leftOut;
    std::istringstream lines(trace);
    std::string line, before;
    int chosen = -1;  // the id told last
    for (; std::getline(lines, line); before = line) {
        if (before.ends_with("transition chosen : "))
            chosen = std::stoi(line);
        double current = 0.0, rank = 0.0;
        if (std::sscanf(line.c_str(), "current rank : %lf -- rank : %lf", &current, &rank) == 2 &&
            current + 1.0 <= rank)
            leftOut.insert(moveOf(chosen));
    }
    return leftOut;
}

MoveOf EngineModel::moveOf(int id) const {
    for (std::size_t i = 0; i < built.size(); ++i)
        for (std::size_t move = 0; move < built[i].transitions.size(); ++move)
            if (built[i].transitions[move]->id == id)
                return {static_cast<int>(i), static_cast<int>(move)};
    ADD_FAILURE() << "no transition " << id;
    return {};
}

// ---- Histories as the engine tells them ----

// Where the engine names no transition into a mode, it is the one that keeps it.
bool EngineModel::isMeant(int component, int move, Transition const* taken, int to) const {
    Move const& plain = example.move(component, move);
    return taken != nullptr ? built[at(component)].transitions[at(move)] == taken
                            : plain.idle && plain.from == to;
}

int EngineModel::moveInto(Trajectory const* trajectory, int component, int step, Modes const& from,
                          int to, std::vector<std::string>& errors) const {
    TrajEl const* element =
        trajectory->getElt(step, atomOf(built[at(component)].mode, to)->getId());
    Transition const* taken = element != nullptr ? element->prevTrans : nullptr;
    std::string const where = "step " + std::to_string(step) + " of " + compNames[component] + ": ";
    auto const count = static_cast<int>(example.components[at(component)].moves.size());
    for (int move = 0; move < count; ++move) {
        if (!isMeant(component, move, taken, to))
            continue;
        Move const& plain = example.move(component, move);
        if (plain.to != to || !example.allows(component, plain, from, step - 1))
            errors.push_back(where + "move " + std::to_string(move) + " was not possible");
        return move;
    }
    errors.push_back(where + "no move");
    return 0;
}

// Also checks the rest of what the step tells.
Modes EngineModel::modesAt(Trajectory const* trajectory, int step,
                           std::vector<std::string>& errors) const {
    Modes modes;
    checkClauses(trajectory, step, errors);
    for (std::size_t i = 0; i < built.size(); ++i) {
        modes.push_back(valueOf(trajectory, built[i].mode, step, errors));
        valueOf(trajectory, built[i].out, step, errors);
        if (built[i].command == nullptr || step >= example.steps())
            continue;
        int const given = valueOf(trajectory, built[i].command, step, errors);
        if (example.commands[at(step)][i] != given)
            errors.push_back("step " + std::to_string(step) + ": another command");
    }
    return modes;
}

void EngineModel::readMoves(Trajectory const* trajectory, int step, Modes const& modes,
                            ModeHistory& history, std::vector<std::string>& errors) const {
    std::vector<int> moves;
    for (std::size_t i = 0; i < built.size(); ++i) {
        auto const component = static_cast<int>(i);
        int const move =
            moveInto(trajectory, component, step, history.modes.back(), modes[i], errors);
        moves.push_back(move);
        history.failures += example.move(component, move).fails ? 1 : 0;
    }
    history.moves.push_back(moves);
}

void EngineModel::checkEnd(Trajectory const* trajectory, ModeHistory const& history,
                           std::vector<std::string>& errors) const {
    int const last = trajectory->getCurrentTime();
    if (last != example.steps())
        errors.push_back("the history ends at step " + std::to_string(last));
    for (Observed const& seen : example.observed)
        if (valueOf(trajectory, built[at(seen.component)].out, last, errors) != seen.value)
            errors.push_back("another value than the one observed");
    if (history.failures != static_cast<int>(trajectory->rank))
        errors.push_back("rank " + std::to_string(trajectory->rank) + " and " +
                         std::to_string(history.failures) + " failures");
}

ModeHistory EngineModel::read(Trajectory const* trajectory,
                              std::vector<std::string>& errors) const {
    ModeHistory history;
    for (int step = trajectory->firstTime; step <= trajectory->getCurrentTime(); ++step) {
        Modes const modes = modesAt(trajectory, step, errors);
        if (step > trajectory->firstTime)
            readMoves(trajectory, step, modes, history, errors);
        history.modes.push_back(modes);
    }
    checkEnd(trajectory, history, errors);
    return history;
}

std::vector<std::string> EngineModel::histories(int first, std::vector<std::string>& errors) const {
    std::vector<std::string> texts;
    for (auto const& entry : theRun().scheduler.tracked_traj)
        texts.push_back(read(entry.second.get(), errors).text(at(example.steps() - first)));
    return texts;
}

}  // namespace random_models
