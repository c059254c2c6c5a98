// What the driver expects of the data files; the console provides it.
#pragma once

struct s_runtime;

// Read one line of *count* values; return 1. What cannot be read leaves its value as it was.
int tavro_getInputs(char const* name, int count, double* values);
int tavro_getMeasures(char const* name, int count, double* values);

// Keeps the current bounds of the *count* displays in the row of the run's table, from 1.
void tavro_setRTDisplays(int count, s_runtime* rt, double row);
