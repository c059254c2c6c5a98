// What a compiled model provides: its name, and the function that builds it.
//
// Each model is one constant of this type, under a name of its own, so that any number of models
// can be linked into one program.
#pragma once

class Scheduler;

struct CompiledModel {
    char const* model_name;  // of its runtime, and of the files that belong to it
    // Builds every component, all clauses and, for a hybrid model, tavro_rt, in the plant that the
    // scheduler is building.
    void (*startinit)(Scheduler* scheduler);
    // False: the model departs from what a plant must be on purpose, as a test of the engine's
    // rules may, and is run unchecked.
    bool checked = true;
};
