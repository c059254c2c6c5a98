// Memory of the continuous engine: malloc, calloc and free that tell the user when memory is
// exhausted. A failure is told once, here, and the callers only pass on a 0 result.
//
// Blocks are ordinary blocks of the C heap, so free may release what new_malloc gave.
#pragma once

#include <cstddef>

// A block of *size* bytes with undefined content, owned by the caller; null, after a message on
// the error stream, when memory is exhausted.
void* new_malloc(unsigned size);

// The same for *count* elements of *size* bytes, all bytes zero.
void* new_calloc(unsigned count, unsigned size);

// Releases *block*; null is allowed. The size takes no part: it is there so that the callers state
// what they release.
void new_free(void* block, unsigned size);

// Where the blocks come from: malloc and calloc, except in a test that has to run out of memory.
struct NewMemorySource {
    void* (*allocate)(std::size_t size);
    void* (*allocateZeroed)(std::size_t count, std::size_t size);
};
extern NewMemorySource newMemorySource;
