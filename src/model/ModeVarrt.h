// The behavioural mode of a component: transitions move it.
#pragma once

#include "model/StateVar.h"
#include "model/condMap.h"
#include "model/labels.h"

class ModeVar : public StateVar {
public:
    ModeVar() { type = typeMode; }
    ModeVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
            Comp* comp)
        : ModeVar(std::move(name), std::move(values), defaultValue, comp, false) {}
    ModeVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
            Comp* comp, bool observable)
        : StateVar(std::move(name), std::move(values), defaultValue, comp, observable) {
        type = typeMode;
    }

    CondMap condMap;
};
