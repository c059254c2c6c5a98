// The compiled models of the library: what Plant::builtin finds by its name.
#pragma once

#include <span>

#include "run/compiled_model.h"

std::span<CompiledModel const* const> builtinModels();
