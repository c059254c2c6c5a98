// The memory, and the two streams over it.
#include "fuzz/error_stream.h"

#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>
#include <stdexcept>
#include <streambuf>

namespace fuzz {

namespace {

constexpr std::size_t capacity = 1 << 20;

}  // namespace

struct ErrorMemory::Shared {
    std::size_t size;
    char text[capacity];

    // By a call that the seams do not count.
    void writeOut() {
        for (std::size_t done = 0; done < size;) {
            iovec const rest{text + done, size - done};
            ssize_t const written = writev(STDERR_FILENO, &rest, 1);
            if (written <= 0)
                break;
            done += static_cast<std::size_t>(written);
        }
        size = 0;
    }
    void append(char const* piece, std::size_t length) {
        while (length > 0) {
            if (size == capacity)
                writeOut();
            std::size_t const taken = std::min(length, capacity - size);
            std::memcpy(text + size, piece, taken);
            size += taken;
            piece += taken;
            length -= taken;
        }
    }
};

namespace {

// In front of `stderr`, as std::cerr is.
class ErrorBuffer : public std::streambuf {
    int overflow(int c) override {
        return c == traits_type::eof() ? traits_type::not_eof(c) : std::putc(c, stderr);
    }
    std::streamsize xsputn(char const* text, std::streamsize count) override {
        return static_cast<std::streamsize>(
            std::fwrite(text, 1, static_cast<std::size_t>(count), stderr));
    }
};

}  // namespace

ErrorMemory::ErrorMemory()
    : shared(static_cast<Shared*>(mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                                       MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
    if (shared == MAP_FAILED)
        throw std::runtime_error("no memory to share");
}

void ErrorMemory::clear() {
    shared->size = 0;
}

// Never destroyed: the session writes until its end.
void ErrorMemory::replaceErrorStream() {
    auto const write = [](void* memory, char const* text, std::size_t size) {
        static_cast<Shared*>(memory)->append(text, size);
        return static_cast<ssize_t>(size);
    };
    std::FILE* const stream = fopencookie(shared, "w", {nullptr, write, nullptr, nullptr});
    if (stream == nullptr)
        return;
    std::setvbuf(stream, nullptr, _IONBF, 0);
    stderr = stream;
    alignas(ErrorBuffer) static char place[sizeof(ErrorBuffer)];
    std::cerr.rdbuf(new (place) ErrorBuffer);
}

std::string ErrorMemory::text() const {
    return {shared->text, shared->size};
}

}  // namespace fuzz
