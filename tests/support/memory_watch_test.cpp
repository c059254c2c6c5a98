// When the watch over the memory throws, and what it goes by.
#include "support/memory_watch.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <thread>
#include <vector>

#include "support/host.h"

namespace {

constexpr double megabyte = 1024.0 * 1024.0;

class Decided : public Host {
public:
    explicit Decided(bool answer) : answer(answer) {}
    bool memoryRunsShort() override { return answer; }

private:
    bool answer;
};

TEST(Watch, GoesByTheDecisionOfTheHost) {
    Decided enough(false), little(true);
    EXPECT_NO_THROW(watchMemory(enough));
    EXPECT_THROW(watchMemory(little), MemoryRunsShort);
}

TEST(Watch, TheSilentHostNeverRunsShort) {
    Host silent;
    EXPECT_NO_THROW(watchMemory(silent));
}

// So that it leaves a step by the same road as an allocation that fails.
TEST(Watch, ThrowsWhatAFailedAllocationThrows) {
    Decided little(true);
    EXPECT_THROW(watchMemory(little), std::bad_alloc);
}

// So that its address space may grow by *spare* bytes, of a child.
void leave(double spare) {
    std::ifstream file("/proc/self/statm");
    double pages = 0.0;
    file >> pages;
    rlimit limit = {};
    limit.rlim_cur =
        static_cast<rlim_t>(pages * static_cast<double>(sysconf(_SC_PAGESIZE)) + spare);
    limit.rlim_max = RLIM_INFINITY;
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        _exit(10);
}

// In a child. Leaves with 1 when memory runs short.
[[noreturn]] void lookWith(double spare) {
    leave(spare);
    SystemMemoryWatch watch;
    _exit(watch.runsShort() ? 1 : 0);
}

TEST(Watch, KeepsSixtyFourMegabytes) {
    EXPECT_EXIT(lookWith(56.0 * megabyte), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(lookWith(80.0 * megabyte), testing::ExitedWithCode(0), "");
}

// In a child: looks again at once, and then late enough. Each watch remembers its own last look.
[[noreturn]] void lookTwice() {
    SystemMemoryWatch watch, other;
    bool const before = watch.runsShort();
    leave(8.0 * megabyte);
    bool const atOnce = watch.runsShort(), elsewhere = other.runsShort();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    _exit((before ? 8 : 0) + (atOnce ? 4 : 0) + (elsewhere ? 2 : 0) + (watch.runsShort() ? 1 : 0));
}

// The second look may come late on a busy machine; then it sees the shortage too.
TEST(Watch, LooksAtMostOnceAMillisecond) {
    EXPECT_EXIT(
        lookTwice(),
        [](int status) {
            int const looks = WEXITSTATUS(status);
            return WIFEXITED(status) && (looks == 3 || looks == 7);
        },
        "");
}

// The allocator of the address sanitizer does not reuse what it was given back.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool reusesMemory = false;
#else
constexpr bool reusesMemory = true;
#endif

// In a child, 40 megabytes in pieces with a last one behind them, so that they do not go back to
// the system as they are freed.
[[noreturn]] void lookWithHeap(bool freed) {
    std::vector<std::unique_ptr<char[]>> pieces;
    for (int i = 0; i < 40 * 16; ++i)
        pieces.push_back(std::make_unique<char[]>(64 * 1024));
    auto const last = std::make_unique<char[]>(64 * 1024);
    if (freed)
        pieces.clear();
    lookWith(40.0 * megabyte);
}

TEST(Watch, CountsWhatTheAllocatorHoldsFree) {
    if (!reusesMemory)
        GTEST_SKIP() << "nothing is held free";
    EXPECT_EXIT(lookWithHeap(false), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(lookWithHeap(true), testing::ExitedWithCode(0), "");
}

}  // namespace
