// Reading from a descriptor, and giving up.
#include "console/awaited_input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <streambuf>

#include "console/interrupts.h"
#include "support/run_stopped.h"

namespace {

void heedStop() {
    if (char const* why = stopReason())
        throw RunStopped(RunStopped::overdue, why);
}

// Calls until something else than a signal ends the call. A signal that has come before is not
// waited with either.
template <typename Call>
auto await(Call call) {
    Interruptible const interruptible;
    for (;;) {
        heedStop();
        auto const result = call();
        if (result != -1 || errno != EINTR)
            return result;
    }
}

class AwaitedBuffer : public std::streambuf {
public:
    explicit AwaitedBuffer(std::string const& path)
        : descriptor(await([&path] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); })) {}
    ~AwaitedBuffer() override {
        if (isOpen())
            ::close(descriptor);
    }
    AwaitedBuffer(AwaitedBuffer const&) = delete;
    AwaitedBuffer& operator=(AwaitedBuffer const&) = delete;

    bool isOpen() const { return descriptor != -1; }

protected:
    int_type underflow() override {
        ssize_t const count = await([this] { return ::read(descriptor, bytes, sizeof bytes); });
        if (count <= 0)
            return traits_type::eof();
        setg(bytes, bytes, bytes + count);
        return traits_type::to_int_type(bytes[0]);
    }

private:
    int const descriptor;  // -1 when the file could not be opened
    char bytes[4096];
};

class AwaitedInput : public std::istream {
public:
    explicit AwaitedInput(std::string const& path) : std::istream(nullptr), buffer(path) {
        rdbuf(&buffer);
        // What the buffer throws is kept by the stream unless it is asked for.
        exceptions(std::ios::badbit);
    }
    bool isOpen() const { return buffer.isOpen(); }

private:
    AwaitedBuffer buffer;
};

}  // namespace

bool isAwaited(std::string const& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

std::unique_ptr<std::istream> openAwaited(std::string const& path) {
    auto file = std::make_unique<AwaitedInput>(path);
    if (!file->isOpen())
        return nullptr;
    return file;
}
