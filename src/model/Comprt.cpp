// Building, counting and printing of components.
#include "model/Comprt.h"

#include <algorithm>

#include "model/Atom.h"
#include "model/labels.h"

Comp::Comp(std::string name) : name(std::move(name)) {}

Comp::~Comp() = default;

StateVar* Comp::getStateVariable(std::string const& fullName) const {
    for (auto const& variable : stateVariables)
        if (variable->getName() == fullName)
            return variable.get();
    return nullptr;
}

Atom* Comp::newAtom(char const* key, StateVar* variable, std::string const& value) {
    assert(key != nullptr && variable != nullptr && atoms.count(key) == 0);
    symbolicKeys.push_back(std::make_unique<std::string>(key));
    ownedAtoms.push_back(
        std::make_unique<Atom>(variable, value, variable->getName() + "=" + value));
    Atom* atom = ownedAtoms.back().get();
    atoms[symbolicKeys.back()->c_str()] = atom;
    assert(brokenInvariant() == nullptr);
    return atom;
}

Transition* Comp::addTransitionToC(std::unique_ptr<Transition> transition) {
    assert(transition != nullptr);
    transitions.push_back(std::move(transition));
    return transitions.back().get();
}

void Comp::computeNominalCover() {
    int count = 0;
    for (auto const& transition : transitions)
        if (transition->type == transNominal) {
            nominalCover += transition->proba;
            ++count;
        }
    nominalCover /= count;
}

void Comp::countGuard(Transition const& transition) {
    assert(transition.preMode->getStateVar() == transition.modeVar);
    ++transition.preMode->guards;
    ++transition.modeVar->guards;
}

// Required: of k transitions with one guard and probabilities below 1, the first counts k-1, the
// next k-2 and so on; a lone one counts nothing, and a certain one counts once.
void Comp::getTransitionsGuards(std::ostream& err) {
    for (std::size_t i = 0; i < transitions.size(); ++i) {
        Transition const& transition = *transitions[i];
        if (!transition.pre || transition.modeVar == nullptr) {
            err << "Transition " << i << " of " << name << " has no mode in its guard.\n";
            continue;
        }
        if (transition.proba == 1.0) {
            countGuard(transition);
            continue;
        }
        for (std::size_t j = i + 1; j < transitions.size(); ++j)
            if (transitions[j]->pre && transition.pre->eq(transitions[j]->pre.get()))
                countGuard(transition);
    }
}

namespace {

template <typename List>
bool holdsNull(List const& list) {
    return std::any_of(list.begin(), list.end(), [](auto const& entry) { return !entry; });
}

}  // namespace

char const* Comp::brokenInvariant() const {
    for (auto const& variable : stateVariables) {
        if (variable->getComp() != this)
            return "a variable knows another component";
        if (char const* broken = variable->brokenInvariant())
            return broken;
    }
    if (holdsNull(clauses) || holdsNull(transitions) || holdsNull(commands) ||
        holdsNull(importedCommands) || holdsNull(neighbours))
        return "a list of the component holds a null";
    return nullptr;
}

char const* Comp::brokenLinks() const {
    std::size_t count = 0;
    std::string const prefix = name + ".";
    for (auto const& variable : stateVariables) {
        if (variable->getName().compare(0, prefix.size(), prefix) != 0)
            return "the name of a variable does not begin with that of the component";
        for (Atom const* atom : variable->getAtomLinks()) {
            ++count;
            auto const entry = atoms.find(atom->getId());
            if (entry == atoms.end() || entry->second != atom)
                return "an atom is missing from the table of the component";
            auto const owner = atom->comps.find(getName());
            if (owner == atom->comps.end() || owner->second != this)
                return "an atom does not list the component that holds it";
        }
    }
    return count == atoms.size() ? nullptr : "the table holds what is no atom of a variable";
}

namespace {

constexpr char const* starRule = "***************************************************";
constexpr char const* dashRule = "---------------------------------------------------";

}  // namespace

void Comp::showDiscrete(std::ostream& out) const {
    out << starRule << "\nComp : " << name << "\n"
        << starRule << "\nnominal cover : " << nominalCover << "\nStates : \n";
    for (auto const& variable : stateVariables) {
        out << variable->getName() << " - " << variable->getType() << " -\n";
        variable->showValues(out);
        variable->showCurrentState(out);
    }
    out << dashRule << "\nConstraints : \n";
    for (auto const& formula : constraints)
        formula->showFormula(out);
}

void Comp::showComp(std::ostream& out, InfluencePrinter const& showInfluence) const {
    showDiscrete(out);
    out << dashRule << "\nInfluences : \n";
    for (s_Influence const* influence : influences)
        showInfluence(influence);
    out << dashRule << "\nTransitions : \n";
    for (auto const& transition : transitions)
        transition->showTransition(out);
    out << starRule << "\n";
}
