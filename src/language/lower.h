// From the flat plant to the engine's records, through the builder that numbers everything.
//
// Components are registered, and their discrete sides, conditions and influences made, as the text
// has them; lists hold them in the order of the plant. What a record remembers and how influences
// and updates are ordered is derived here from the equations.
#pragma once

#include "language/flat.h"

class Scheduler;

// Fills the plant that the scheduler is building. *flat* need not outlive it.
void lower(FlatPlant const& flat, Scheduler& scheduler);
