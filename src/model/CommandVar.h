// An external command input: its value is set by the scenario.
#pragma once

#include "model/StateVar.h"
#include "model/labels.h"

class CommandVar : public StateVar {
public:
    CommandVar() { type = typeCommand; }
    CommandVar(std::string name, std::set<std::string> values, std::string const& defaultValue)
        : CommandVar(std::move(name), std::move(values), defaultValue, nullptr, false) {}
    CommandVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
               Comp* comp)
        : CommandVar(std::move(name), std::move(values), defaultValue, comp, false) {}
    CommandVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
               Comp* comp, bool observable)
        : StateVar(std::move(name), std::move(values), defaultValue, comp, observable) {
        type = typeCommand;
    }

    // A command that may not be asserted: propositions on it are refused. No model sets it yet.
    bool forbidden = false;
};
