// tavro-fuzz: sessions drawn by seed.
//
//     tavro-fuzz --seeds A..B [--programs BUILD] [--digest] [--jobs N]
//         Tries the sessions of the seeds A to B. With --programs one in a hundred is also given to
//         the executives of that build. With --digest a line is written for each seed, with a
//         number that stands for all that came out, to be set beside that of another build.
//         N processes share the seeds, as many as there are processors unless told; the lines come
//         in any order.
//     tavro-fuzz --seed N [--keep DIRECTORY] [--shrink]
//         Tries one session. --keep stores it in the form of tests/sessions; --shrink makes it
//         smaller before, as long as what was found stays.
//     tavro-fuzz --torture [STRIDE]
//         Lets every call of one session fail (torture.h), of allocations every STRIDEth.
//
// Ends with 0 when nothing was found, with 1 when something was, with 2 when it is misused.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <thread>

#include "fuzz/oracles.h"
#include "fuzz/runner.h"
#include "fuzz/session_directory.h"
#include "fuzz/shrink.h"
#include "fuzz/torture.h"

// A finding of a sanitizer has a status of its own.
extern "C" char const* __asan_default_options() {
    return "exitcode=99:handle_abort=0:handle_segv=1:allocator_may_return_null=0";
}
extern "C" char const* __lsan_default_options() {
    return "exitcode=99";
}
extern "C" char const* __ubsan_default_options() {
    return "print_stacktrace=1";
}

namespace {

using namespace fuzz;

constexpr std::uint64_t everyProgram = 100;

struct Wanted {
    std::uint64_t first = 1, last = 0;
    unsigned jobs = std::max(std::thread::hardware_concurrency(), 1u);
    bool digest = false, shrink = false;
    std::string programs, keep;
};

void tell(std::uint64_t seed, Finding const& finding) {
    std::printf("seed %llu, version %d: %s: %s\n", static_cast<unsigned long long>(seed),
                generatorVersion, finding.kind.c_str(), finding.detail.c_str());
    std::fflush(stdout);
}

void keep(SessionCase const& session, std::uint64_t seed, Findings const& found,
          Wanted const& wanted) {
    storeSession(session, wanted.keep,
                 "Session " + std::to_string(seed) + " of the generator of version " +
                     std::to_string(generatorVersion) +
                     (found ? ", found for: " + found->kind + ": " + found->detail : "") + "\n");
}

bool trySeed(std::uint64_t seed, Wanted const& wanted) {
    SessionCase session = caseOf(seed);
    Outcome outcome;
    Findings found = tryCase(session, &outcome);
    if (!found && !wanted.programs.empty() && seed % everyProgram == 0)
        found = tryProgram(session, wanted.programs);
    if (found)
        tell(seed, *found);
    // Where a fault strikes, and where a session has done enough, depends on how it was compiled.
    bool const sameEverywhere = session.fault.kind == Fault::NONE && !outcome.usage.stopped;
    if (wanted.digest)
        std::printf("%llu %016llx\n", static_cast<unsigned long long>(seed),
                    sameEverywhere ? static_cast<unsigned long long>(digestOf(outcome)) : 0);
    if (found && wanted.shrink) {
        session = shrunk(session, found->kind);
        found = tryCase(session);
    }
    if (!wanted.keep.empty())
        keep(session, seed, found, wanted);
    return !found;
}

// What the processes share.
struct Tally {
    std::atomic<std::uint64_t> next;
    std::atomic<long> findings, sessions;
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
};

void work(Wanted const& wanted, Tally& tally) {
    for (std::uint64_t seed = tally.next++; seed <= wanted.last; seed = tally.next++)
        tally.findings += trySeed(seed, wanted) ? 0 : 1;
    tally.sessions += sessionsRun;
}

// Whether all of them came to their end.
bool workTogether(Wanted const& wanted, Tally& tally) {
    // Each line is written whole.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    bool well = true;
    for (unsigned i = 0; i < wanted.jobs; ++i) {
        pid_t const child = fork();
        if (child == 0) {
            work(wanted, tally);
            _exit(0);
        }
        well = well && child != -1;
    }
    for (int status = 0; wait(&status) > 0;)
        well = well && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return well;
}

int trySeeds(Wanted const& wanted) {
    auto const start = std::chrono::steady_clock::now();
    void* const shared =
        mmap(nullptr, sizeof(Tally), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        return 1;
    Tally& tally = *new (shared) Tally{{wanted.first}, {0}, {0}};
    prepareForForks();
    bool const well = workTogether(wanted, tally);
    double const seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::fprintf(stderr, "%llu seeds, %ld sessions, %ld findings, %.1f seconds\n",
                 static_cast<unsigned long long>(wanted.last - wanted.first + 1),
                 tally.sessions.load(), tally.findings.load(), seconds);
    return well && tally.findings == 0 ? 0 : 1;
}

bool readSeeds(char const* text, Wanted& wanted) {
    char* rest = nullptr;
    wanted.first = wanted.last = std::strtoull(text, &rest, 10);
    if (rest != text && std::strncmp(rest, "..", 2) == 0)
        wanted.last = std::strtoull(rest + 2, &rest, 10);
    return rest != text && *rest == '\0' && wanted.first <= wanted.last;
}

bool readArguments(int argc, char** argv, Wanted& wanted) {
    bool seeds = false;
    for (int i = 1; i < argc; ++i) {
        std::string const name = argv[i];
        bool const hasValue = i + 1 < argc;
        if ((name == "--seeds" || name == "--seed") && hasValue)
            seeds = readSeeds(argv[++i], wanted);
        else if (name == "--programs" && hasValue)
            wanted.programs = std::filesystem::absolute(argv[++i]);
        else if (name == "--jobs" && hasValue)
            wanted.jobs = static_cast<unsigned>(std::clamp(std::atoi(argv[++i]), 1, 1000));
        else if (name == "--keep" && hasValue)
            wanted.keep = std::filesystem::absolute(argv[++i]);
        else if (name == "--digest")
            wanted.digest = true;
        else if (name == "--shrink")
            wanted.shrink = true;
        else
            return false;
    }
    return seeds;
}

// What only the start of a program can be told: the C library keeps the small blocks at hand that a
// session makes and frees by the thousand, and symbols are looked up once and not in each fork
// anew.
void startForForks(char** argv) {
    char const* const caches = "GLIBC_TUNABLES";
    if (std::getenv(caches) != nullptr)
        return;
    setenv(caches, "glibc.malloc.tcache_count=5000", 1);
    setenv("LD_BIND_NOW", "1", 1);
    execv("/proc/self/exe", argv);
}

}  // namespace

int main(int argc, char** argv) {
    startForForks(argv);
    // What the executives would read of a user's own.
    setenv("TERM", "dumb", 1);
    setenv("INPUTRC", "/dev/null", 1);
    if (argc > 1 && std::strcmp(argv[1], "--torture") == 0)
        return torture(std::max(argc > 2 ? std::atol(argv[2]) : 1, 1L)) == 0 ? 0 : 1;
    Wanted wanted;
    if (!readArguments(argc, argv, wanted)) {
        std::fprintf(stderr,
                     "usage: tavro-fuzz --seeds A..B [--programs BUILD] [--digest] [--jobs N]\n"
                     "       tavro-fuzz --seed N [--keep DIRECTORY] [--shrink]\n"
                     "       tavro-fuzz --torture [STRIDE]\n");
        return 2;
    }
    return trySeeds(wanted);
}
