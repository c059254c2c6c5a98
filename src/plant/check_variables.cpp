// The discrete variables: their atoms, their defaults, and the clauses of exclusive choice.
#include <algorithm>
#include <set>

#include "model/CommandVar.h"
#include "model/labels.h"
#include "plant/findings.h"
#include "plant/propagation.h"

namespace {

std::string domainOf(StateVar const& variable) {
    return joined({variable.values.begin(), variable.values.end()});
}

void checkAtom(StateVar const& variable, std::size_t i, Findings& findings) {
    Atom const& atom = *variable.getAtomLinks()[i];
    if (atom.getStateVar() != &variable || atom.linkIndex != static_cast<int>(i)) {
        findings.refuse(nameOf(atom) + " is listed by " + variable.name +
                        " and does not know it: make it with the variable and once.");
        return;
    }
    if (!variable.inValues(atom.value))
        findings.refuse(nameOf(atom) + " has a value outside the domain of " + variable.name +
                        ": choose one of " + domainOf(variable) + ".");
    else if (atom.id != variable.name + "=" + atom.value)
        findings.refuse(nameOf(atom) + " is the value " + atom.value + " of " + variable.name +
                        ": name it " + variable.name + "=" + atom.value + ".");
}

void checkAtoms(StateVar const& variable, Findings& findings) {
    auto const& atoms = variable.getAtomLinks();
    for (std::size_t i = 0; i < atoms.size(); ++i)
        checkAtom(variable, i, findings);
    for (std::string const& value : variable.values) {
        auto const of = [&](Atom const* atom) { return atom->value == value; };
        auto const count = std::count_if(atoms.begin(), atoms.end(), of);
        if (count == 0)
            findings.refuse(nameOf(variable) + " has no atom for " + value + ": make one.");
        else if (count > 1)
            findings.refuse(nameOf(variable) + " has " + std::to_string(count) + " atoms for " +
                            value + ": keep one.");
    }
}

// The component's table is what start-up, scenarios and printing find an atom by.
void checkTable(Comp const& comp, StateVar const& variable, Findings& findings) {
    for (Atom const* atom : variable.getAtomLinks()) {
        auto const entered =
            std::any_of(comp.atoms.begin(), comp.atoms.end(),
                        [atom](auto const& entry) { return entry.second == atom; });
        if (!entered)
            findings.refuse(nameOf(*atom) + " is not in the table of " + comp.name +
                            ": give every atom a key of its own.");
    }
}

void checkDefault(StateVar const& variable, Findings& findings) {
    if (variable.values.empty())
        findings.refuse(nameOf(variable) + " has no values: give it a domain.");
    else if (!variable.inValues(variable.currentState))
        findings.refuse(nameOf(variable) + " begins as \"" + variable.currentState +
                        "\", which is outside its domain: choose one of " + domainOf(variable) +
                        ".");
    else if (variable.defaultValue != variable.name + "=" + variable.currentState)
        findings.refuse(nameOf(variable) + " begins as " + variable.currentState +
                        " and has the default \"" + variable.defaultValue +
                        "\": make both the same.");
}

void checkKind(StateVar const& variable, Findings& findings) {
    std::set<std::string> const kinds = {typeMode, typeCond, typeCommand, typeObservable,
                                         typeDependent};
    if (kinds.count(variable.type) == 0)
        findings.warn(nameOf(variable) + " has the kind \"" + variable.type +
                      "\", which is treated as none: make it a mode, a condition, a command or an "
                      "observable.");
    if (variable.type == typeCommand && !variable.inValues(valueNone))
        findings.warn(nameOf(variable) +
                      " is a command without a value none: a command of it can never be over.");
}

// ---- Exclusive choice ----

using Literals = std::multiset<std::pair<Atom const*, bool>>;

// Some clause of the plant that *variable* names has exactly these literals.
bool hasClause(Holdings const& plant, StateVar const& variable, Literals const& literals) {
    for (Clause const* clause : variable.clauses) {
        if (plant.clauses.count(clause) == 0 || !clause->getInternal())
            continue;
        Literals found;
        for (auto const& [negated, atom] : clause->atoms)
            found.insert({atom, negated});
        if (found == literals)
            return true;
    }
    return false;
}

bool isExclusive(Holdings const& plant, StateVar const& variable) {
    auto const& atoms = variable.getAtomLinks();
    Literals oneOfThem;
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        oneOfThem.insert({atoms[i], false});
        for (std::size_t j = i + 1; j < atoms.size(); ++j)
            if (!hasClause(plant, variable, {{atoms[i], true}, {atoms[j], true}}))
                return false;
    }
    return hasClause(plant, variable, oneOfThem);
}

void checkVariable(Holdings const& plant, Comp const& comp, StateVar const& variable,
                   Findings& findings) {
    if (variable.getComp() != &comp)
        findings.refuse(nameOf(variable) + " is held by " + comp.name +
                        " and names another component: add it with addStateVar.");
    checkKind(variable, findings);
    checkDefault(variable, findings);
    std::size_t const before = findings.list.size();
    checkAtoms(variable, findings);
    checkTable(comp, variable, findings);
    bool const atomsAreRight = findings.list.size() == before && !variable.values.empty();
    if (atomsAreRight && !isExclusive(plant, variable))
        findings.refuse(nameOf(variable) +
                        " is not kept to one value by clauses: call addExclusiveChoice for it.");
}

// An atom whose value was refused when it was made belongs to no variable.
void checkStrayAtoms(Holdings const& plant, Comp const& comp, Findings& findings) {
    for (auto const& entry : comp.atoms)
        if (entry.second == nullptr || !plant.holds(entry.second))
            findings.refuse("Component " + comp.name + " has under \"" + entry.first +
                            "\" an atom of no variable: give it a value of its variable's "
                            "domain.");
}

void checkRelations(Holdings const& plant, Comp const& comp, Findings& findings) {
    for (Comp const* neighbour : comp.neighbours)
        if (!plant.holds(neighbour))
            findings.refuse("Component " + comp.name +
                            " has a neighbour that is no component of the plant: register it, or "
                            "take it out.");
        else if (neighbour == &comp)
            findings.warn("Component " + comp.name + " is its own neighbour: take it out.");
    for (auto const& variable : comp.getStateVariables()) {
        bool const listed = std::find(comp.commands.begin(), comp.commands.end(), variable.get()) !=
                            comp.commands.end();
        if (variable->type == typeCommand && !listed)
            findings.warn("Component " + comp.name + " does not list " + variable->name +
                          " among its commands: add it there.");
    }
}

}  // namespace

void checkStateVariables(Holdings const& plant, Findings& findings) {
    for (Comp const* comp : plant.comps) {
        for (auto const& variable : comp->getStateVariables())
            checkVariable(plant, *comp, *variable, findings);
        checkStrayAtoms(plant, *comp, findings);
        checkRelations(plant, *comp, findings);
    }
}

// ---- Clauses ----

namespace {

void checkLiterals(Holdings const& plant, Clause const& clause, std::string const& name,
                   Findings& findings) {
    Literals seen;
    for (auto const& [negated, atom] : clause.atoms) {
        if (!plant.holds(atom)) {
            findings.refuse(name + " names an atom of no component: use the plant's own atoms.");
            continue;
        }
        auto const& known = atom->clauses;
        if (std::find(known.begin(), known.end(), &clause) == known.end())
            findings.refuse(name + " names " + atom->id +
                            ", which does not know it: add literals with addAtomRef.");
        if (seen.count({atom, !negated}) != 0)
            findings.warn(name + " says nothing, since it allows " + atom->id +
                          " and its opposite: take it out.");
        seen.insert({atom, negated});
    }
}

// Some state is possible, as far as unit propagation sees.
void checkTogether(Holdings const& plant, PlantParts const& parts, Findings& findings) {
    std::vector<std::size_t> const conflict = Propagation(plant, parts).forbidding({});
    if (!conflict.empty())
        findings.refuse("No state is possible: " + nameOfClauses(conflict) +
                        " can never hold together. Drop one.");
}

}  // namespace

void checkClauses(Holdings const& plant, PlantParts const& parts, Findings& findings) {
    for (std::size_t i = 0; i < parts.clauses.size(); ++i) {
        std::string const name = nameOfClause(i);
        Clause const* clause = parts.clauses[i].get();
        if (clause == nullptr) {
            findings.refuse(name + " is empty of content: take it out.");
            continue;
        }
        if (clause->atoms.empty())
            findings.refuse(name + " has no literals, so that it can never hold: add some.");
        if (!plant.holds(clause->comp))
            findings.refuse(name + " belongs to no component of the plant: name one.");
        checkLiterals(plant, *clause, name, findings);
    }
    checkTogether(plant, parts, findings);
}
