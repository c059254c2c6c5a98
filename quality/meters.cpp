// The allocator of the program is replaced by one that counts, thread by thread, and that can
// refuse.
#include "quality/meters.h"

#include <malloc.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <new>

namespace {

// In bytes. Below 0 when a thread frees what another one has allocated.
thread_local long held = 0;
thread_local long most = 0;
thread_local long before = 0;

constexpr long unlimited = LONG_MAX;
thread_local long allowed = unlimited;  // of held

void took(void* block) {
    held += static_cast<long>(malloc_usable_size(block));
    if (held > most)
        most = held;
}

bool mayTake(std::size_t size) {
    return allowed == unlimited || held + static_cast<long>(size) <= allowed;
}

void gives(void* block) {
    held -= static_cast<long>(malloc_usable_size(block));
}

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void* allocate(std::size_t size) noexcept {
    void* block = mayTake(size) ? std::malloc(size != 0 ? size : 1) : nullptr;
    if (block != nullptr)
        took(block);
    return block;
}

void* allocateOrThrow(std::size_t size) {
    void* block = allocate(size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void release(void* block) noexcept {
    if (block == nullptr)
        return;
    gives(block);
    std::free(block);
}

}  // namespace

// Every form but those of wider alignment. A sanitizer has forms of its own, which do not end in
// one another, so that none may be left out of a pair.
void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    return allocate(size);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}
void operator delete(void* block, std::nothrow_t const&) noexcept {
    release(block);
}
void operator delete[](void* block, std::nothrow_t const&) noexcept {
    release(block);
}

namespace quality {

Meter::Meter(std::size_t limit) : began(processorSeconds()) {
    most = before = held;
    allowed = held + static_cast<long>(limit);
}

Meter::~Meter() {
    allowed = unlimited;
}

Cost Meter::read() const {
    return {processorSeconds() - began, static_cast<std::size_t>(most - before)};
}

}  // namespace quality
