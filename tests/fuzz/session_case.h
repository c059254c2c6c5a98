// One session to be tried: what is given to the program, and what is asked of it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace fuzz {

// Raised whenever the same seed no longer gives the same session.
constexpr int generatorVersion = 1;

// Something that fails while the session runs.
struct Fault {
    enum Kind { NONE, ALLOCATION, WRITE, OPEN, CLOSE, SIGNAL_AT_STEP, SIGNAL_AT_ALLOCATION };
    Kind kind = NONE;
    long nth = 0;          // call, counted from 1
    bool forGood = false;  // every later one fails too
    int value = 0;         // an errno, a signal, or 0 for a write that is cut short
};

// What is asked beside the general: a second session is set beside the first.
enum class Check { PLAIN, COMMENT, LINE_ENDS, RENAMING, SPLIT, STRICT, FAULT };

struct SessionCase {
    std::string model;
    std::vector<std::string> args;  // without the name of the program
    std::string script;
    std::map<std::string, std::string> files;  // by path; a path that ends in '/' is a directory
    Check check = Check::PLAIN;
    Fault fault;
    // Neither mutated nor hostile: the commands of the script are those that it seems to hold.
    bool valid = true;
};

// The case of a seed.
SessionCase caseOf(std::uint64_t seed);

// The same in words, for a report.
std::string describe(Fault const& fault);

}  // namespace fuzz
