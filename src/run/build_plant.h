// From a compiled model to a plant that runs can share.
#pragma once

#include <memory>

#include "model/Plant.h"
#include "run/compiled_model.h"
#include "support/host.h"

// Builds the model, then numbers, weighs and links it, and gives the conditions of its template
// their first values. The host takes what the building tells.
std::unique_ptr<Plant> buildPlant(CompiledModel const& model, Host& host);
