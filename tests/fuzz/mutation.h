// What spoils a session: slips of a user, files of another program, hostile bytes.
#pragma once

#include "fuzz/plants.h"
#include "fuzz/random.h"
#include "fuzz/session_case.h"

namespace fuzz {

// Changes some of the case, which is no valid one any more.
void spoil(PlantFacts const& plant, Random& random, SessionCase& spoilt);

}  // namespace fuzz
