// The list of compiled models, alone in this file: a program that is linked from the static library
// with a list of its own takes nothing from here.
#include "api/builtin_models.h"

extern CompiledModel const therm_model;
extern CompiledModel const line_model;

std::span<CompiledModel const* const> builtinModels() {
    static constexpr CompiledModel const* models[] = {&therm_model, &line_model};
    return models;
}
