// What the machine and its limits leave to this process.
#pragma once

// Bytes that this process may still take before the system would end it: the least of what the
// machine has free, what its control group leaves, and what its address space limit leaves.
// A limit that cannot be read does not count.
double availableMemory();

// Bytes that this process has taken and the allocator holds free: given back by what has ended, and
// not yet by the allocator to the system. Takes a while when they are in many pieces.
double heldFree();
