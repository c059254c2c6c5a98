// Construction, default value and printing of variables.
#include "model/StateVar.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "model/Atom.h"

StateVar::StateVar() = default;

StateVar::StateVar(std::string name) : name(std::move(name)) {}

StateVar::StateVar(std::string name, std::set<std::string> values)
    : values(std::move(values)), name(std::move(name)) {}

StateVar::StateVar(std::string name, std::set<std::string> values, std::string const& defaultValue)
    : StateVar(std::move(name), std::move(values)) {
    setDefault(defaultValue);
    // Required: a default outside the domain is noted above and stored all the same.
    currentState = defaultValue;
}

StateVar::StateVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
                   Comp* comp)
    : StateVar(std::move(name), std::move(values), defaultValue) {
    this->comp = comp;
}

StateVar::StateVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
                   Comp* comp, bool observable)
    : StateVar(std::move(name), std::move(values), defaultValue, comp) {
    this->observable = observable;
}

void StateVar::setDefault(std::string const& value) {
    if (inValues(value))
        defaultValue = name + "=" + value;
    else
        complaints += "StateVar --> Wrong default value";
}

int StateVar::addAtomToLinks(Atom* atom) {
    assert(std::find(atomLinks.begin(), atomLinks.end(), atom) == atomLinks.end());
    atomLinks.push_back(atom);
    return static_cast<int>(atomLinks.size()) - 1;
}

bool StateVar::matchObs() const {
    return !observable || observation.empty() || currentState == observation;
}

char const* StateVar::brokenInvariant() const {
    for (std::size_t i = 0; i < atomLinks.size(); ++i)
        if (atomLinks[i]->var != this || atomLinks[i]->linkIndex != static_cast<int>(i))
            return "an atom of the variable does not stand at its place";
    bool const isDefault =
        defaultValue.empty() || std::any_of(values.begin(), values.end(), [&](auto const& value) {
            return defaultValue == name + "=" + value;
        });
    return isDefault ? nullptr : "the default is no value of the variable";
}

void StateVar::showValues(std::ostream& out) const {
    out << "\t\t" << name << "\n\t\tType: " << type << "\n\t\tValues: \n\t\t{ ";
    for (std::string const& value : values)
        out << value << "  ";
    out << "}\n\n";
}

void StateVar::showCurrentState(std::ostream& out) const {
    out << name << " --->\t\t " << currentState << "\n";
}
