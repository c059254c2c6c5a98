// Names and symbols: each is told once, and can be written in a scenario.
#include <cstring>
#include <map>

#include "plant/findings.h"

namespace {

// Tells names that were taken before. The empty name is not looked at.
class TakenNames {
public:
    TakenNames(std::string what, Findings& findings) : what(std::move(what)), findings(findings) {}
    void take(std::string const& name) {
        if (!name.empty() && ++times[name] == 2)
            findings.refuse("Two " + what + " are named " + name + ": rename one.");
    }

private:
    std::string what;
    Findings& findings;
    std::map<std::string, int> times;
};

void checkComponentNames(Holdings const& plant, PlantParts const& parts, Findings& findings) {
    TakenNames taken("components", findings);
    for (Comp const* comp : plant.comps) {
        taken.take(comp->name);
        if (comp->name.empty())
            findings.refuse("A component has no name: give it one.");
        else if (parts.components.count(comp->getName()) == 0)
            findings.refuse("Component " + comp->name +
                            " is registered under another name: name it before it is registered.");
    }
}

void checkSymbols(Holdings const& plant, Findings& findings) {
    std::map<std::string, std::string> owners;
    bool anySymbol = false;
    for (Comp const* comp : plant.comps) {
        anySymbol = anySymbol || !comp->symbol.empty();
        auto const [owner, fresh] = owners.insert({comp->symbol, comp->name});
        if (!fresh && !comp->symbol.empty())
            findings.refuse("Components " + owner->second + " and " + comp->name +
                            " have the same symbol " + comp->symbol + ": change one.");
    }
    for (Comp const* comp : plant.comps)
        if (anySymbol && comp->symbol.empty())
            findings.warn("Component " + comp->name +
                          " has no symbol while others have one: give it one.");
}

bool isOneWord(std::string const& text) {
    return text.find_first_of(" \t\n=") == std::string::npos;
}

void checkSpelling(Comp const& comp, StateVar const& variable, Findings& findings) {
    if (variable.name.rfind(comp.name + ".", 0) != 0)
        findings.warn(nameOf(variable) + " belongs to " + comp.name + ": begin its name with " +
                      comp.name + " and a dot.");
    bool readable = isOneWord(variable.name);
    for (std::string const& value : variable.values)
        readable = readable && isOneWord(value) && !value.empty();
    if (!readable)
        findings.warn(nameOf(variable) +
                      " cannot be written in a scenario: use no blanks and no = in its name and "
                      "its values, and no empty value.");
}

}  // namespace

void checkNames(Holdings const& plant, PlantParts const& parts, Findings& findings) {
    checkComponentNames(plant, parts, findings);
    checkSymbols(plant, findings);
    TakenNames taken("discrete variables", findings);
    for (Comp const* comp : plant.comps)
        for (auto const& variable : comp->getStateVariables()) {
            taken.take(variable->name);
            checkSpelling(*comp, *variable, findings);
        }
}

void checkRecordNames(s_runtime const& rt, Findings& findings) {
    TakenNames variables("continuous variables", findings);
    for (auto const& variable : rt.dico) {
        variables.take(variable->nom);
        if (variable->nom.empty())
            findings.refuse("Variable " + std::to_string(variable->slot) +
                            " of dico has no name: give it one.");
    }
    TakenNames influences("influences", findings);
    for (auto const& influence : rt.influ)
        influences.take(influence->nom);
}
