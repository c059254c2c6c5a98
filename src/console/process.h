// What the program asks of the process it runs in: its exits, its standard streams, its memory.
#pragma once

// The one way out of the process for every state in which the system must stop: buffered files are
// written and closed on the way. Statuses: 0 regular end, missing arguments, or a value that no
// condition covers; 1 unusable files or windows; 255 (-1) no diagnosis.
[[noreturn]] void leaveProcess(int status);

// Opens the null device in place of a standard stream that the caller of the program had closed, so
// that no data file can take its descriptor and receive the program's messages. To be called
// before the first file is opened.
void keepStandardStreams();

// Bytes that this process may still take before the system would end it: the least of what the
// machine has free, what its control group leaves, and what its address space limit leaves.
// A limit that cannot be read does not count.
double availableMemory();

// Bytes that this process has taken and the allocator holds free: given back by what has ended, and
// not yet by the allocator to the system. Takes a while when they are in many pieces.
double heldFree();
