// What the check of plants finds, told in terms of the text.
#pragma once

#include "language/flat.h"
#include "language/messages.h"

// Builds the plant, checks it, and tells each finding where the text speaks of its element.
void tellFindings(FlatPlant const& flat, Messages& messages);
