// The discrete image of conditions on continuous variables: its value follows the continuous side.
#pragma once

#include "model/StateVar.h"
#include "model/condMap.h"
#include "model/labels.h"

class CondVar : public StateVar {
public:
    CondVar() { type = typeCond; }
    CondVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
            Comp* comp)
        : StateVar(std::move(name), std::move(values), defaultValue, comp) {
        type = typeCond;
    }
    // Required: the last argument is dropped, since the value is computed and never observed.
    CondVar(std::string name, std::set<std::string> values, std::string const& defaultValue,
            Comp* comp, bool)
        : CondVar(std::move(name), std::move(values), defaultValue, comp) {}

    CondMap condMap;
};
