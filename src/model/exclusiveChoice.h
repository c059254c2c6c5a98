// The clauses that a compiled model states for each of its variables.
#pragma once

class StateVar;

// Enters the internal clauses of a variable in the registry and in the variable: for each pair of
// its atoms, not both; then, one of them.
void addExclusiveChoice(StateVar* variable);
