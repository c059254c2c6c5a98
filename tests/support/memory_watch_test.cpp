// When the watch over the memory throws, and what it goes by.
#include "support/memory_watch.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr double megabyte = 1024.0 * 1024.0;

bool always() {
    return true;
}
bool never() {
    return false;
}

class Watch : public testing::Test {
protected:
    ~Watch() override { memoryRunsShort = &systemMemoryRunsShort; }
};

TEST_F(Watch, GoesByTheOneDecision) {
    memoryRunsShort = &never;
    EXPECT_NO_THROW(watchMemory());
    memoryRunsShort = &always;
    EXPECT_THROW(watchMemory(), MemoryRunsShort);
}

// So that it leaves a step by the same road as an allocation that fails.
TEST_F(Watch, ThrowsWhatAFailedAllocationThrows) {
    memoryRunsShort = &always;
    EXPECT_THROW(watchMemory(), std::bad_alloc);
}

// In a child, whose address space may grow by *spare* bytes. Leaves with 1 when memory runs short.
[[noreturn]] void lookWith(double spare) {
    std::ifstream file("/proc/self/statm");
    double pages = 0.0;
    file >> pages;
    rlimit limit = {};
    limit.rlim_cur =
        static_cast<rlim_t>(pages * static_cast<double>(sysconf(_SC_PAGESIZE)) + spare);
    limit.rlim_max = RLIM_INFINITY;
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        _exit(10);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    _exit(systemMemoryRunsShort() ? 1 : 0);
}

TEST_F(Watch, KeepsSixtyFourMegabytes) {
    EXPECT_EXIT(lookWith(56.0 * megabyte), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(lookWith(80.0 * megabyte), testing::ExitedWithCode(0), "");
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

TEST_F(Watch, CountsWhatTheAllocatorHoldsFree) {
    if (!reusesMemory)
        GTEST_SKIP() << "nothing is held free";
    EXPECT_EXIT(lookWithHeap(false), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(lookWithHeap(true), testing::ExitedWithCode(0), "");
}

}  // namespace
