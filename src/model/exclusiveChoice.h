// The clauses that a compiled model states for each of its variables.
#pragma once

struct Plant;
class StateVar;

// Enters the internal clauses of a variable in the plant and in the variable: for each pair of
// its atoms, not both; then, one of them.
void addExclusiveChoice(Plant& plant, StateVar* variable);
