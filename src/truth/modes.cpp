#include "truth/modes.h"

#include <algorithm>
#include <cassert>

#include "model/Clause.h"
#include "model/Comprt.h"
#include "model/labels.h"
#include "plant/findings.h"

namespace truth {

namespace {

Atom const* firstValue(StateVar const& variable) {
    for (Atom const* atom : variable.getAtomLinks())
        if (variable.getDefault() == atom->getId())
            return atom;
    return nullptr;
}

bool isCommand(StateVar const& variable) {
    return variable.getType() == typeCommand;
}

// Neither moved, commanded nor tied to a condition: what it is follows from clauses.
bool followsFromClauses(StateVar const& variable) {
    CondMap const* links = linksOf(variable);
    return variable.getType() != typeMode && !isCommand(variable) &&
           (links == nullptr || links->empty());
}

bool comesFromOutside(StateVar const& variable) {
    auto const& all = variable.getComp()->getStateVariables();
    return std::none_of(all.begin(), all.end(),
                        [](auto const& other) { return other->getType() == typeMode; });
}

// The value of *variable* that the move leads to, or null.
Atom const* effectOn(Transition const& move, StateVar const& variable) {
    if (move.post == nullptr)
        return nullptr;
    for (auto const& [sign, atom] : move.post->getAtoms())
        if (sign && atom->getStateVar() == &variable)
            return atom;
    return nullptr;
}

}  // namespace

Modes::Modes(Plant const& plant, Setting const& setting)
    : plant(plant), setting(setting), pending(setting.faults) {
    for (StateVar const* variable : plant.stateVars)
        values[variable] = firstValue(*variable);
    deduce();
}

Atom const* Modes::valueOf(StateVar const& variable) const {
    auto const found = values.find(&variable);
    return found != values.end() ? found->second : nullptr;
}

// ---- What a step begins with ----

// A value that lies in no region leaves the last one.
void Modes::takeConditions(Holds const& holdsAt) {
    for (StateVar const* variable : plant.stateVars) {
        CondMap const* links = linksOf(*variable);
        if (variable->getType() != typeCond || links == nullptr)
            continue;
        for (Atom const* atom : variable->getAtomLinks()) {
            auto const link = std::find_if(links->begin(), links->end(), [atom](auto const& entry) {
                return atom->id == entry.first;
            });
            if (link != links->end() && holdsAt(link->second))
                values[variable] = atom;
        }
    }
}

void Modes::takeCommands(int time) {
    for (StateVar const* variable : plant.stateVars)
        if (isCommand(*variable))
            values[variable] = firstValue(*variable);
    for (Order const& order : setting.orders)
        if (order.step == time)
            values[order.command->getStateVar()] = order.command;
}

// ---- What follows from clauses: unit propagation to a fixed point ----

bool Modes::isFalse(Atom const& atom) const {
    Atom const* value = valueOf(*atom.getStateVar());
    return value != nullptr ? value != &atom : excluded.count(&atom) != 0;
}

bool Modes::settle(Atom const& atom, bool value) {
    if (value)
        values[atom.getStateVar()] = &atom;
    else
        excluded.insert(&atom);
    return true;
}

// The sign true is negation in a clause. Returns whether something became known.
bool Modes::deduceFrom(Clause const& clause) {
    Atom const* open = nullptr;
    bool openValue = false;
    for (auto const& [negated, atom] : clause.atoms) {
        if (negated ? isFalse(*atom) : isTrue(*atom))
            return false;
        if (negated ? isTrue(*atom) : isFalse(*atom))
            continue;
        if (open != nullptr)
            return false;
        open = atom;
        openValue = !negated;
    }
    return open != nullptr && settle(*open, openValue);
}

// The one value that is not excluded.
bool Modes::deduceOnly(StateVar const& variable) {
    if (valueOf(variable) != nullptr)
        return false;
    auto const& atoms = variable.getAtomLinks();
    auto const isOpen = [this](Atom const* atom) { return !isFalse(*atom); };
    return std::count_if(atoms.begin(), atoms.end(), isOpen) == 1 &&
           settle(**std::find_if(atoms.begin(), atoms.end(), isOpen), true);
}

void Modes::propagate() {
    bool changed = true;
    while (changed) {
        changed = false;
        for (auto const& clause : plant.cls)
            changed = deduceFrom(*clause) || changed;
        for (StateVar const* variable : plant.stateVars)
            changed = deduceOnly(*variable) || changed;
    }
}

// What a component without modes holds and nothing determines comes from outside the plant, and
// stays as it was at first.
void Modes::deduce() {
    excluded.clear();
    for (StateVar const* variable : plant.stateVars)
        if (followsFromClauses(*variable))
            values[variable] = nullptr;
    propagate();
    for (StateVar const* variable : plant.stateVars)
        if (valueOf(*variable) == nullptr && comesFromOutside(*variable)) {
            values[variable] = firstValue(*variable);
            propagate();
        }
}

// ---- Moves ----

bool Modes::holds(StateFormula const& formula) const {
    bool const any = formula.getOperat() == "or";
    auto const decides = [any](bool value) { return value == any; };
    for (auto const& [sign, atom] : formula.getAtoms())
        if (decides(isTrue(*atom) == sign))
            return any;
    for (auto const& nested : formula.getStateFormulas())
        if (decides(holds(*nested)))
            return any;
    return !any;
}

bool Modes::isDue(Transition const& move) const {
    return move.pre != nullptr && holds(*move.pre);
}

Transition const* Modes::nominalMove(StateVar const& variable) const {
    for (auto const& move : variable.getComp()->getCompTransitions())
        if (move->getType() == transNominal && !move->idle &&
            effectOn(*move, variable) != nullptr && isDue(*move))
            return move.get();
    return nullptr;
}

bool Modes::canFail(Atom const& mode) const {
    auto const& moves = mode.getVarComp()->getCompTransitions();
    return std::any_of(moves.begin(), moves.end(), [&mode](auto const& move) {
        return move->getType() == transFail && effectOn(*move, *mode.getStateVar()) == &mode;
    });
}

Transition const* Modes::failureInto(Atom const& mode) const {
    for (auto const& move : mode.getVarComp()->getCompTransitions())
        if (move->getType() == transFail && effectOn(*move, *mode.getStateVar()) == &mode &&
            isDue(*move))
            return move.get();
    return nullptr;
}

Atom const* Modes::strike(StateVar const& variable, int time, Transition const*& move) {
    for (auto fault = pending.begin(); fault != pending.end(); ++fault) {
        Atom const* mode = fault->mode;
        if (mode->getStateVar() != &variable || fault->from > time)
            continue;
        move = failureInto(*mode);
        if (move == nullptr && canFail(*mode))
            continue;
        strikes.push_back({mode, time});
        pending.erase(fault);
        return mode;
    }
    return nullptr;
}

std::vector<Transition const*> Modes::step(int time, Holds const& holdsAt) {
    takeConditions(holdsAt);
    takeCommands(time);
    deduce();
    std::vector<Transition const*> taken;
    std::map<StateVar const*, Atom const*> next;
    for (StateVar const* variable : plant.stateVars) {
        if (variable->getType() != typeMode)
            continue;
        Transition const* move = nullptr;
        Atom const* to = strike(*variable, time, move);
        if (to == nullptr && (move = nominalMove(*variable)) != nullptr)
            to = effectOn(*move, *variable);
        if (to == nullptr || to == valueOf(*variable))
            continue;
        next[variable] = to;
        if (move != nullptr)
            taken.push_back(move);
    }
    for (auto const& [variable, to] : next)
        values[variable] = to;
    deduce();
    return taken;
}

}  // namespace truth
