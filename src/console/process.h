// What the program asks of the process it runs in: its exits, its standard streams.
#pragma once

// The one way out of the process for every state in which the system must stop: buffered files are
// written and closed on the way. Statuses: 0 regular end, missing arguments, or a value that no
// condition covers; 1 unusable files or windows, or too little memory to start; 2 an option that
// cannot be taken; 3 a loss in a strict session; 255 (-1) no diagnosis; 129, 130 and 143 a signal.
[[noreturn]] void leaveProcess(int status);

// Writes what waits for the standard output and the logs: a signal may end the program at any line
// that it waits for.
void flushAll();

// Ends the session: files are closed, and what cannot be written of them is told, before the
// process is left. In a strict session that has told a loss a status of 0 becomes 3.
[[noreturn]] void endSession(int status);
extern bool strictSession;  // chosen on the command line

// Opens the null device in place of a standard stream that the caller of the program had closed, so
// that no data file can take its descriptor and receive the program's messages. What is written to
// a closed standard output still fails, and is told as a loss. To be called before the first file
// is opened.
void keepStandardStreams();
