// The allocator, and the calls that the linker binds here.
#include "fuzz/seams.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

using fuzz::Fault;

// Constant from the start of the process on: the first allocations come before any constructor.
fuzz::Usage ownUsage = {};
fuzz::Usage* usage = &ownUsage;
Fault fault;
bool bounded = false;

// What a session may do before its run is interrupted: steps, and allocations, which stand for time
// since they are counted and no clock is. A run looks between two steps; the last bound is for a
// step that does not end.
constexpr long mostSteps = 150;
constexpr long manyAllocations = 3000000, tooManyAllocations = 40000000;

// Whether the call, the *count*th of its kind, fails.
bool fails(Fault::Kind kind, long count) {
    if (fault.kind != kind || (fault.forGood ? count < fault.nth : count != fault.nth))
        return false;
    usage->faulted = true;
    return true;
}

void interruptRun() {
    usage->stopped = true;
    std::raise(SIGINT);
}

void countAllocation() {
    long const count = ++usage->allocations;
    if (bounded && count == tooManyAllocations)
        interruptRun();
    if (fails(Fault::SIGNAL_AT_ALLOCATION, count))
        std::raise(fault.value);
}

void* allocate(std::size_t size) {
    countAllocation();
    return fails(Fault::ALLOCATION, usage->allocations) ? nullptr : std::malloc(size);
}

void beginStep() {
    long const count = ++usage->steps;
    if (fails(Fault::SIGNAL_AT_STEP, count))
        std::raise(fault.value);
    bool const enough = count % mostSteps == 0 || usage->allocations > manyAllocations;
    if (bounded && enough)
        interruptRun();
}

}  // namespace

// Not inlined: the compiler would take a block from the one and to the other for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* block = allocate(size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}
[[gnu::noinline]] void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return allocate(size);
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

extern "C" {

int __real_open(char const* path, int flags, ...);
ssize_t __real_write(int descriptor, void const* text, std::size_t size);
int __real_close(int descriptor);
int __real_system(char const* command);
int __real_usleep(unsigned microseconds);

int __wrap_open(char const* path, int flags, unsigned mode) {
    if (fails(Fault::OPEN, ++usage->opens)) {
        errno = fault.value;
        return -1;
    }
    return __real_open(path, flags, mode);
}

// A value of 0 cuts the write short, once: whoever writes has to go on.
ssize_t __wrap_write(int descriptor, void const* text, std::size_t size) {
    if (!fails(Fault::WRITE, ++usage->writes))
        return __real_write(descriptor, text, size);
    if (fault.value == 0)
        return __real_write(descriptor, text, std::min<std::size_t>(size, 1));
    errno = fault.value;
    return -1;
}

// The descriptor is closed all the same, as the system has it.
int __wrap_close(int descriptor) {
    int const result = __real_close(descriptor);
    if (!fails(Fault::CLOSE, ++usage->closes))
        return result;
    errno = fault.value;
    return -1;
}

int __wrap_fprintf(std::FILE* stream, char const* format, ...) {
    if (std::strncmp(format, "-- time", 7) == 0)
        beginStep();
    std::va_list values;
    va_start(values, format);
    int const result = std::vfprintf(stream, format, values);
    va_end(values);
    return result;
}

int __wrap_system(char const* command) {
    usage->ranShell = true;
    bool harmless = !bounded;
    for (char const* known : {"true", "echo seeded", "exit 3"})
        harmless |= command != nullptr && std::strcmp(command, known) == 0;
    return harmless ? __real_system(command) : 0;
}

int __wrap_usleep(unsigned microseconds) {
    usage->endOfInput = true;
    if (bounded)
        std::raise(SIGINT);
    return __real_usleep(microseconds);
}

}  // extern "C"

namespace fuzz {

void countIn(Usage* shared) {
    usage = shared;
}

void arm(Fault const& armed) {
    fault = armed;
}

void boundSession() {
    bounded = true;
}

}  // namespace fuzz
