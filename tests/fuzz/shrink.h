// Making a case smaller that shows something.
#pragma once

#include <string>

#include "fuzz/session_case.h"

namespace fuzz {

// A case that still shows a finding of that kind, of which no line, no file, no argument and no
// word can be left out any more.
SessionCase shrunk(SessionCase session, std::string const& kind);

}  // namespace fuzz
