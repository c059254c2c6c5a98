// Processes and directories.
#include "fuzz/runner.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <new>
#include <stdexcept>

#include "console/console.h"
#include "fuzz/error_stream.h"
#include "fuzz/plants.h"

namespace fuzz {

namespace fs = std::filesystem;

// ---- Directories ----

namespace {

// In memory where the system has such a place.
fs::path newDirectory() {
    fs::path const shared = "/dev/shm";
    std::error_code error;
    bool const inMemory = fs::is_directory(shared, error) && access(shared.c_str(), W_OK) == 0;
    std::string pattern = (inMemory ? shared : fs::temp_directory_path()) / "tavro-fuzz-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("cannot make a directory");
    return pattern;
}

std::string contentOf(fs::path const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Place::Place() : above(newDirectory()), work(above / "run") {
    fs::create_directory(work);
}

Place::~Place() {
    std::error_code error;
    fs::remove_all(above, error);
}

void Place::fill(SessionCase const& session) const {
    for (char const* name : {"inp", "obs", "disp"})
        fs::create_directory(work / name);
    for (auto const& [path, text] : session.files)
        if (path.ends_with('/'))
            fs::create_directories(work / path);
        else
            std::ofstream(work / path, std::ios::binary) << text;
}

std::map<std::string, std::string> Place::files() const {
    std::map<std::string, std::string> found;
    for (auto const& entry : fs::recursive_directory_iterator(above))
        if (entry.is_regular_file())
            found[entry.path().lexically_relative(work)] = contentOf(entry.path());
    return found;
}

// ---- Processes ----

namespace {

// A file in memory.
class Memory {
public:
    explicit Memory(std::string const& text = "")
        : descriptor(memfd_create("session", MFD_CLOEXEC)) {
        if (descriptor == -1 ||
            pwrite(descriptor, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()))
            throw std::runtime_error("no file in memory");
    }
    ~Memory() { ::close(descriptor); }
    Memory(Memory const&) = delete;
    Memory& operator=(Memory const&) = delete;

    void replace(int stream) const { dup2(descriptor, stream); }
    off_t size() const { return lseek(descriptor, 0, SEEK_END); }
    std::string text() const {
        std::string read(static_cast<std::size_t>(size()), '\0');
        if (pread(descriptor, read.data(), read.size(), 0) != static_cast<ssize_t>(read.size()))
            throw std::runtime_error("memory cannot be read");
        return read;
    }

private:
    int const descriptor;
};

struct Streams {
    explicit Streams(std::string const& script) : in(script) {}
    Memory in, out, err;
};

// Of a session; a session under a sanitizer is slower.
constexpr unsigned secondsOfSession = 60;

// Makes the process that calls it one for a session. What it started with is a terminal's or not.
void enter(Place const& place, Streams const& streams) {
    rlimit const noCore{0, 0}, time{secondsOfSession, secondsOfSession};
    setrlimit(RLIMIT_CORE, &noCore);
    setrlimit(RLIMIT_CPU, &time);
    alarm(2 * secondsOfSession);
    for (int const signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, SIG_DFL);
    if (chdir(place.path().c_str()) != 0)
        _exit(97);
    streams.in.replace(0);
    streams.out.replace(1);
    streams.err.replace(2);
}

// What execve and main take.
class Arguments {
public:
    Arguments(std::string name, std::vector<std::string> const& rest) : words{std::move(name)} {
        words.insert(words.end(), rest.begin(), rest.end());
        for (std::string& word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
    }
    int count() const { return static_cast<int>(words.size()); }
    char** values() { return pointers.data(); }

private:
    std::vector<std::string> words;
    std::vector<char*> pointers;
};

// *inMemory* is what is of the error stream and not in its file.
void takeEnd(int status, Streams const& streams, std::string const& inMemory, Place const& place,
             Outcome& outcome) {
    outcome.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome.out = streams.out.text();
    outcome.err = streams.err.text() + inMemory;
    outcome.files = place.files();
    mask(outcome);
}

// Seen by the child too.
Usage& sharedUsage() {
    static void* const shared =
        mmap(nullptr, sizeof(Usage), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return *new (shared) Usage{};
}

}  // namespace

long sessionsRun = 0;

void prepareForForks() {
    plants();
    // The heap keeps what it has, and grows by more than most sessions need.
    constexpr int growth = 1 << 20, largest = 1 << 25;
    mallopt(M_TOP_PAD, growth);
    mallopt(M_TRIM_THRESHOLD, largest);
    mallopt(M_MMAP_THRESHOLD, largest);
}

Outcome runHere(SessionCase const& session, Place const& place) {
    PlantFacts const& plant = plantOf(session.model);
    Streams const streams(session.script);
    Arguments arguments(plant.program, session.args);
    Usage& usage = sharedUsage();
    static ErrorMemory errors;
    errors.clear();
    std::fflush(nullptr);
    ++sessionsRun;
    pid_t const child = fork();
    if (child == 0) {
        enter(place, streams);
        errors.replaceErrorStream();
        countIn(&usage);
        arm(session.fault);
        boundSession();
        runExecutive(*plant.model, arguments.count(), arguments.values());
    }
    int status = 0;
    waitpid(child, &status, 0);
    Outcome outcome;
    outcome.usage = usage;
    takeEnd(status, streams, errors.text(), place, outcome);
    return outcome;
}

Outcome run(SessionCase const& session) {
    Place const place;
    place.fill(session);
    return runHere(session, place);
}

namespace {

fs::path executive(std::string const& name, fs::path const& build) {
    fs::path const installed = build / "bin" / name;
    return fs::exists(installed) ? installed : build / "tests" / name;
}

// Waits for the end of the program, and ends it when it waits for more input.
int awaitEnd(pid_t child, bool endOfInput) {
    constexpr int pause = 20000;  // microseconds
    // The console polls every tenth of a second: by then it has done all that it was told.
    int untilInterrupt = endOfInput ? 25 : -1;
    int status = 0;
    while (waitpid(child, &status, endOfInput ? WNOHANG : 0) == 0) {
        usleep(pause);
        if (untilInterrupt-- == 0)
            kill(child, SIGINT);
    }
    return status;
}

}  // namespace

Outcome runProgram(SessionCase const& session, fs::path const& build, Outcome const& expected) {
    PlantFacts const& plant = plantOf(session.model);
    Place const place;
    place.fill(session);
    Streams const streams(session.script);
    std::string const program = executive(plant.program, build);
    Arguments arguments(program, session.args);
    std::fflush(nullptr);
    ++sessionsRun;
    pid_t const child = fork();
    if (child == 0) {
        enter(place, streams);
        execv(program.c_str(), arguments.values());
        _exit(97);
    }
    Outcome outcome;
    takeEnd(awaitEnd(child, expected.usage.endOfInput), streams, "", place, outcome);
    return outcome;
}

}  // namespace fuzz
