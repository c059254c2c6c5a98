// The engine's hooks to its environment, provided by the console.
#pragma once

// Misbehaviours given from outside: one entry per measure. 0 when a name is wrong.
int sorn_getMisbs(char const* name, int count, int* values);
// Conditions given from outside: one entry per influence. 0 when a value is missing or wrong.
int sorn_getConds(char const* name, int count, int* values);
// Takes the alarms of a cycle, one entry per measure; returns 1.
int sorn_setAlarms(char const* name, int count, int const* low, int const* high, int const* misb);
// Takes the text of a diagnosis; returns 1.
int sorn_sendDiagnosis(char const* name, char const* text);
