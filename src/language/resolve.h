// From the tree to the flat plant: instances are made, names looked up, numbers worked out, units
// compared. What is wrong is told; whatever follows from it alone is left out in silence, so that
// the flat plant is complete only when there was no error.
#pragma once

#include "language/flat.h"
#include "language/text.h"

FlatPlant resolve(PlantText const& text, Sources const& sources, Messages& messages);
