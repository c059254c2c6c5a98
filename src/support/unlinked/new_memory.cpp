// The only place where exhausted memory is told to the user.
#include "unlinked/new_memory.h"

#include <cstdio>
#include <cstdlib>

NewMemorySource newMemorySource = {std::malloc, std::calloc};

static void* orTellExhausted(void* block) {
    if (!block)
        std::fprintf(stderr, "\nImpossible to allocate any more dynamic memory!!!\n\n");
    return block;
}

void* new_malloc(unsigned size) {
    return orTellExhausted(newMemorySource.allocate(size));
}

void* new_calloc(unsigned count, unsigned size) {
    return orTellExhausted(newMemorySource.allocateZeroed(count, size));
}

void new_free(void* block, unsigned) {
    std::free(block);
}
