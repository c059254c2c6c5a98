// What follows from the equations of a flat plant.
#pragma once

#include "language/flat.h"

// Variables in the order in which they are updated.
struct Updates {
    std::vector<QuantityRef> temporal;    // from the step before: before measures come in
    std::vector<QuantityRef> untemporal;  // each behind those that it follows from in this step
};
Updates updatesOf(FlatPlant const& flat);

// Of a form that works from the step before.
bool isTemporal(EquationForm form);
