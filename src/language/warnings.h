// What a plant may say and hardly means.
#pragma once

#include "language/flat.h"
#include "language/messages.h"

// A mode that nothing enters, probabilities of one situation that do not sum to 1, a fault that no
// measure can show, a measure that nothing predicts, a variable that nothing reads.
void warn(FlatPlant const& flat, Messages& messages);
