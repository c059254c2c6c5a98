// The conditions that are linked to the atoms of a variable.
#pragma once

#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"

// Null for kinds that have none.
inline CondMap const* linkedConditions(StateVar const* variable) {
    if (variable->type == typeCond)
        return &static_cast<CondVar const*>(variable)->condMap;
    if (variable->type == typeMode)
        return &static_cast<ModeVar const*>(variable)->condMap;
    return nullptr;
}
