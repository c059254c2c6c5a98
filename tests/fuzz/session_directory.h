// Writing a case in the form of tests/sessions.
#pragma once

#include <filesystem>
#include <string>

#include "fuzz/session_case.h"

namespace fuzz {

// Makes the directory. What the session gives now stands there as expected: whoever keeps it as a
// test has to work out what is right, and to write it into NOTES.
void storeSession(SessionCase const& session, std::filesystem::path const& directory,
                  std::string const& notes);

}  // namespace fuzz
