// The one-off pass over a model that has just been built.
//
// It numbers the transitions, derives the probabilities that the search needs, fixes the active
// atoms, links atoms and components both ways, marks dead ends and sets the first labels. After it
// the transition ids are stable keys.

#include <cassert>

#include "model/CommandVar.h"
#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/itmsrt.h"

namespace {

// The propagation number of a label that stands on the initial state and on no clause.
constexpr int initialPropagation = 1;

using AtomIds = string_map<Atom*>;

void collectAtoms(std::vector<Clause*> const& clauses, AtomIds& ids) {
    for (Clause const* clause : clauses)
        for (auto const& literal : clause->atoms)
            ids.insert({literal.second->getId(), literal.second});
}

}  // namespace

void itms::rtInit() {
    assert(stateVars.empty() && active_trans.empty());  // once in the life of a plant
    int id = 0;
    for (auto const& entry : active_comps) {
        if (entry.second == nullptr)
            continue;
        for (auto const& variable : entry.second->getStateVariables())
            building().stateVars.push_back(variable.get());
        idTransitions(entry.second, id);
    }
    string_map<Atom*> loaded = loadAtoms(cls);
    building().active_atoms.swap(loaded);
    for (auto const& entry : active_comps)
        if (entry.second != nullptr)
            linkAtoms(entry.second);
    initialize();
}

void itms::linkAtoms(Comp* comp) {
    comp->atoms.clear();
    for (auto const& variable : comp->getStateVariables())
        for (Atom* atom : variable->getAtomLinks()) {
            comp->atoms[atom->getId()] = atom;
            atom->comps[comp->getName()] = comp;
            deadEndAtom(atom);
        }
    assert(comp->brokenInvariant() == nullptr && comp->brokenLinks() == nullptr);
}

string_map<Atom*> itms::loadAtoms(std::vector<std::unique_ptr<Clause>> const& clauses) const {
    AtomIds atoms;
    for (auto const& clause : clauses)
        collectAtoms({clause.get()}, atoms);
    for (StateVar const* variable : stateVars)
        collectAtoms(variable->clauses, atoms);
    return atoms;
}

bool itms::guardHasCommand(Transition const& transition) {
    if (!transition.pre)
        return false;
    for (auto const& literal : transition.pre->getAllSignedAtoms())
        if (literal.second->getVarType() == typeCommand)
            return true;
    return false;
}

void itms::numberTransition(Transition* transition, Comp const& comp, int id) {
    assert(active_trans.count(id) == 0 && !comp.transitions.empty());
    transition->setID(id);
    building().active_trans[id] = transition;
    transition->weight = transition->proba / static_cast<double>(comp.transitions.size());
    out << "weight : " << transition->weight << "\n";
}

void itms::idTransitions(Comp* comp, int& id) {
    for (auto const& owned : comp->transitions) {
        Transition* transition = owned.get();
        numberTransition(transition, *comp, id++);
        if (!transition->idle && transition->type != transFail)
            continue;
        if (guardHasCommand(*transition))
            continue;
        transition->unconditional = false;
        // A move that no command triggers stays reachable from a conflict on a command.
        for (CommandVar const* command : comp->importedCommands)
            for (Atom* atom : command->getAtomLinks()) {
                out << "adding idle trans reference :\n";
                atom->addRefTransPre(transition);
            }
    }
    comp->getTransitionsGuards(err);
    weighGuards(*comp);
}

void itms::weighGuards(Comp const& comp) {
    for (auto const& transition : comp.transitions) {
        if (transition->modeVar == nullptr) {
            err << "Component " << comp.getName()
                << ": a transition has no mode in its guard, its guard counts nothing.\n";
            continue;
        }
        StateVar const* variable = transition->modeVar;
        out << "guards number of " << transition->preMode->getId() << " : "
            << transition->preMode->guards << "\n"
            << "guards number of " << variable->getCharName() << " : " << variable->guards << "\n";
        // A count of 0 gives an infinite value, which stands.
        transition->guardProba = transition->proba / static_cast<double>(variable->guards);
        out << "guard proba : " << transition->guardProba << "\n";
    }
}

void itms::deadEndAtom(Atom* atom) {
    for (Transition const* transition : atom->getRefTransPre())
        if (transition->type == transNominal && !transition->idle)
            return;
    atom->deadEnd = true;
}

void itms::initialize() {
    for (auto const& entry : active_atoms) {
        Atom* atom = entry.second;
        if (atom == nullptr)
            continue;
        compileTransitionsProb(atom);
        if (!atom->evalAtom())
            continue;
        atom->set();
        atom->propagationNumber = initialPropagation;
        assert(atom->brokenInvariant() == nullptr);
    }
}

void itms::compileTransitionsProb(Atom* atom) {
    double sum = 0.0;
    for (Transition const* transition : atom->getRefTransPost())
        sum += transition->proba;
    if (atom->getRefTransPost().empty())
        return;
    atom->compiledProb = sum / static_cast<double>(atom->getRefTransPost().size());
    out << "compiled probability : " << atom->getId() << " -- " << atom->compiledProb << "\n";
}

bool itms::intersectClauses(std::vector<Clause*> const& a, std::vector<Clause*> const& b) {
    AtomIds first, second;
    collectAtoms(a, first);
    collectAtoms(b, second);
    for (auto const& entry : first)
        if (second.count(entry.first) != 0)
            return false;
    return true;
}

bool itms::intersectClauses(Atom const* atom, std::vector<Atom*> const& atoms) {
    for (Atom const* other : atoms)
        if (!intersectClauses(atom->clauses, other->clauses))
            return false;
    return true;
}
