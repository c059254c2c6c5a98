// What the program asks of the process it runs in: its exits, its standard streams.
#pragma once

// The one way out of the process for every state in which the system must stop: buffered files are
// written and closed on the way. Statuses: 0 regular end, missing arguments, or a value that no
// condition covers; 1 unusable files or windows; 2 an option that cannot be taken; 255 (-1) no
// diagnosis.
[[noreturn]] void leaveProcess(int status);

// Opens the null device in place of a standard stream that the caller of the program had closed, so
// that no data file can take its descriptor and receive the program's messages. To be called
// before the first file is opened.
void keepStandardStreams();
