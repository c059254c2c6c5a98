// Running a session: in a copy of this process, or with the executive itself.
//
// The console keeps its state in globals and leaves by exit, so each session has a process of its
// own, which is a fork of this one: nothing is loaded and linked anew, and the streams are memory.
#pragma once

#include <filesystem>

#include "fuzz/outcome.h"
#include "fuzz/session_case.h"

namespace fuzz {

// A directory for one session, with a directory of ours above it, since a session may name a file
// there. It goes with the object.
class Place {
public:
    Place();
    ~Place();
    Place(Place const&) = delete;
    Place& operator=(Place const&) = delete;

    // Puts the files of the case there, beside the three directories that a session expects.
    void fill(SessionCase const& session) const;
    std::filesystem::path const& path() const { return work; }
    // All files that are there.
    std::map<std::string, std::string> files() const;

private:
    std::filesystem::path above, work;
};

// How often this process has run a session, in a fork or with an executive.
extern long sessionsRun;

// Makes what all sessions need, so that no fork has to.
void prepareForForks();

// Runs the session in the directory as it is. What comes out is masked.
Outcome runHere(SessionCase const& session, Place const& place);
// The same in a new directory with its files.
Outcome run(SessionCase const& session);
// The same with the executive itself, which stands in one of the two directories *bin* and *tests*
// of *build*. *expected* tells when it has come to the end of its input, where it has to be
// interrupted.
Outcome runProgram(SessionCase const& session, std::filesystem::path const& build,
                   Outcome const& expected);

}  // namespace fuzz
