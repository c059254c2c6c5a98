// Writing to descriptors, and the two kinds of streams over them.
#include "console/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <utility>

#include "console/losses.h"

// ---- The file ----

namespace {

constexpr int permissions = 0666;  // less what the user's mask takes

}  // namespace

OutputFile::OutputFile(std::string path)
    : path(std::move(path)),
      descriptor(
          ::open(this->path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, permissions)) {
    if (descriptor == -1)
        firstError = errno;
}

void OutputFile::fail(int error) {
    if (firstError == 0)
        firstError = error;
    tell();
}

void OutputFile::tell() {
    if (!std::exchange(told, true))
        tellUnwritten(path.c_str(), firstError);
}

bool OutputFile::write(char const* text, std::size_t size) {
    while (size > 0 && firstError == 0) {
        ssize_t const written = ::write(descriptor, text, size);
        if (written == -1 && errno == EINTR)
            continue;
        if (written == -1) {
            firstError = errno;
            break;
        }
        text += written;
        size -= static_cast<std::size_t>(written);
    }
    if (size == 0)
        return true;
    tell();
    return false;
}

bool OutputFile::close() {
    int const closing = std::exchange(descriptor, -1);
    if (closing != -1 && ::close(closing) == -1)
        fail(errno);
    return firstError == 0;
}

// ---- Streams of the language ----

OutputStream::Buffer::Buffer(std::string path) : file(std::move(path)) {
    setp(waiting, waiting + sizeof waiting);
}

int OutputStream::Buffer::sync() {
    bool const written = file.write(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    setp(waiting, waiting + sizeof waiting);
    return written ? 0 : -1;
}

int OutputStream::Buffer::overflow(int c) {
    if (sync() == -1)
        return traits_type::eof();
    if (c != traits_type::eof())
        sputc(static_cast<char>(c));
    return traits_type::not_eof(c);
}

OutputStream::OutputStream(std::string path) : std::ostream(nullptr), buffer(std::move(path)) {
    rdbuf(&buffer);
}

bool OutputStream::close() {
    buffer.sync();
    return buffer.file.close();
}

// ---- Streams of the C library ----

namespace {

// None of its bytes may be told as written when they are not, or the library takes the stream for a
// sound one.
ssize_t writeCookie(void* file, char const* text, std::size_t size) {
    return static_cast<OutputFile*>(file)->write(text, size) ? static_cast<ssize_t>(size) : 0;
}

int closeCookie(void* file) {
    std::unique_ptr<OutputFile> const owned(static_cast<OutputFile*>(file));
    return owned->close() ? 0 : EOF;
}

}  // namespace

std::FILE* openOutput(std::string const& path) {
    auto file = std::make_unique<OutputFile>(path);
    if (!file->isOpen()) {
        errno = file->error();
        return nullptr;
    }
    std::FILE* const stream =
        fopencookie(file.get(), "w", {nullptr, writeCookie, nullptr, closeCookie});
    if (stream != nullptr)
        file.release();
    return stream;
}

// ---- Standard output ----

namespace {

int outputError = 0;  // an errno: why a write failed; 0 while all is well

// In front of the C library's stream, which does the buffering, and whose other users see one order
// of all that is written. When a write fails, nothing but its caller can tell why.
class StandardOutput : public std::streambuf {
    template <typename Write>
    static bool checked(Write write) {
        bool const written = write();
        if (!written && outputError == 0)
            outputError = errno;
        return written;
    }
    int overflow(int c) override {
        if (c == traits_type::eof())
            return traits_type::not_eof(c);
        return checked([c] { return std::putc(c, stdout) != EOF; }) ? c : traits_type::eof();
    }
    std::streamsize xsputn(char const* text, std::streamsize count) override {
        auto const size = static_cast<std::size_t>(count);
        return checked([&] { return std::fwrite(text, 1, size, stdout) == size; }) ? count : 0;
    }
    int sync() override {
        return checked([] { return std::fflush(stdout) == 0; }) ? 0 : -1;
    }
};

}  // namespace

// Never destroyed: the last of the run's objects tell their end on it.
void checkStandardOutput() {
    alignas(StandardOutput) static std::byte place[sizeof(StandardOutput)];
    std::cout.rdbuf(new (place) StandardOutput);
}

void flushStandardOutput() {
    static bool told = false;
    bool const flushed = std::fflush(stdout) == 0;
    if (!flushed && outputError == 0)
        outputError = errno;
    if ((flushed && std::ferror(stdout) == 0) || std::exchange(told, true))
        return;
    tellLoss("Can't write standard output: %s\n", std::strerror(outputError));
}
