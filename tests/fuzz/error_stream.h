// The error stream of a session, kept in memory.
//
// The C library writes each piece of an error message with a call of the system, which is a tenth
// of the time of a session. Here the pieces go into memory that the parent process sees: so nothing
// is lost when the session crashes or leaves by _exit.
#pragma once

#include <string>

namespace fuzz {

// Memory that is shared with the processes begun later; one for all sessions of a process. It is
// never given back: a session writes until the very end of its process, when statics are gone.
class ErrorMemory {
public:
    ErrorMemory();
    ErrorMemory(ErrorMemory const&) = delete;
    ErrorMemory& operator=(ErrorMemory const&) = delete;

    // For the parent, before a session begins.
    void clear();
    // For the session: from here on `stderr` and std::cerr write here. What does not fit is written
    // to the descriptor 2, behind all that came before it.
    void replaceErrorStream();
    // For the parent: what is here now, to be read behind what went to the descriptor.
    std::string text() const;

private:
    struct Shared;
    Shared* const shared;
};

}  // namespace fuzz
