// The seams at which a session is made to fail, or is watched: its allocations, its output files,
// its steps.
//
// The calls of the console are bound to this file when an executable is linked (TAVRO_SEAMS in
// CMakeLists.txt): what the console opens, writes and closes, the lines that announce a step, the
// pause at the end of its input, the commands of the shell. The C library's own calls are not.
#pragma once

#include <string>

#include "fuzz/session_case.h"

namespace fuzz {

// What a session did, kept where its parent process sees it.
struct Usage {
    long allocations;
    long steps;
    long opens, writes, closes;
    bool faulted;     // the fault has come
    bool stopped;     // a run was interrupted, because the session had done enough
    bool ranShell;    // a command of the shell was asked for
    bool endOfInput;  // the console waited at the end of its script
};

// Where the seams count; that of a fuzzed session is shared with its parent.
void countIn(Usage* usage);

// Lets the calls fail from here on.
void arm(Fault const& fault);

// From here on a session that has done enough is interrupted as by a user, its shell runs a few
// harmless commands only, and the end of its input ends it, by an interrupt too.
void boundSession();

}  // namespace fuzz
