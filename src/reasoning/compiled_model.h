// What a compiled model provides to the executive that it is linked with.
#pragma once

#include <string>

class Scheduler;

// Name of the model: of its runtime, and of the files that belong to it.
extern std::string model_name;

// Builds every component, all clauses and, for a hybrid model, tavro_rt.
void startinit(Scheduler* scheduler);
