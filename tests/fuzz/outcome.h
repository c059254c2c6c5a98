// What came out of a session.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "fuzz/seams.h"

namespace fuzz {

struct Outcome {
    int status = 0;  // of the exit; -1 when a signal killed the process
    int signal = 0;  // that killed the process, or 0
    std::string out, err;
    std::map<std::string, std::string> files;  // by path, all that are there at the end
    Usage usage{};                             // empty for a session with the program itself
};

// Replaces timings and the sign of what is not a number, as tests/sessions/run-session does.
void mask(Outcome& outcome);

// The first difference in words, or an empty text. Both are masked.
std::string difference(Outcome const& expected, Outcome const& found);
// The same of two texts; *what* they are.
std::string differenceOf(std::string const& what, std::string const& expected,
                         std::string const& found);

// One number for all that came out, masked.
std::uint64_t digestOf(Outcome const& masked);

}  // namespace fuzz
