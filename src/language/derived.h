// What follows from the equations of a flat plant.
#pragma once

#include "language/flat.h"

// How many past values of its condition an influence keeps, by place: so many that a fault in it
// can still be seen when its effect reaches a measure.
std::vector<int> keptConditions(FlatPlant const& flat);

// Variables in the order in which they are updated.
struct Updates {
    std::vector<QuantityRef> temporal;    // from the step before: before measures come in
    std::vector<QuantityRef> untemporal;  // each behind those that it follows from in this step
};
Updates updatesOf(FlatPlant const& flat);

// Of a form that works from the step before.
bool isTemporal(EquationForm form);
