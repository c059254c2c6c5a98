// The memory that a process may still take, each limit tried in a child where it would harm.
#include "support/available_memory.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <string>

namespace {

using testing::ExitedWithCode;

constexpr double megabyte = 1024.0 * 1024.0;

TEST(AvailableMemory, IsPositiveAndWithinTheMachine) {
    struct sysinfo machine = {};
    ASSERT_EQ(sysinfo(&machine), 0);
    EXPECT_GT(availableMemory(), 0.0);
    EXPECT_LE(availableMemory(),
              static_cast<double>(machine.totalram) * static_cast<double>(machine.mem_unit));
}

// Bytes told in kilobytes under a field of a file of the system, or -1.
double bytesIn(char const* path, std::string const& field) {
    std::ifstream file(path);
    std::string word;
    double kilobytes = 0.0;
    while (file >> word)
        if (word == field && file >> kilobytes)
            return kilobytes * 1024.0;
    return -1.0;
}

double ownBytes(std::string const& field) {
    return bytesIn("/proc/self/status", field);
}

// True when the file tells a number of bytes below the memory of any machine.
bool tellsALimit(char const* path) {
    std::ifstream file(path);
    double limit = 0.0;
    return file >> limit && limit < 1e15;
}

// Others take and give back memory between the two readings, hence the wide margin.
TEST(AvailableMemory, IsAtMostWhatTheMachineHasFree) {
    double const margin = 512 * megabyte;
    double const free = bytesIn("/proc/meminfo", "MemAvailable:");
    double const available = availableMemory();
    EXPECT_LE(available, free + margin);
    rlimit limit = {};
    getrlimit(RLIMIT_AS, &limit);
    if (limit.rlim_cur == RLIM_INFINITY && !tellsALimit("/sys/fs/cgroup/memory.max") &&
        !tellsALimit("/sys/fs/cgroup/memory/memory.limit_in_bytes")) {
        EXPECT_GE(available, free - margin) << "no limit takes anything away";
    }
}

// In a child: leaves *spare* bytes of address space and asks what is available. Ends with status 0
// when the answer is between *atLeast* and *atMost*.
[[noreturn]] void tryAddressSpace(double spare, double atLeast, double atMost) {
    rlimit limit = {};
    limit.rlim_cur = static_cast<rlim_t>(ownBytes("VmSize:") + spare);
    limit.rlim_max = RLIM_INFINITY;
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        _exit(10);
    double const available = availableMemory();
    _exit(available < atLeast ? 20 : available > atMost ? 21 : 0);
}

// Reading the answer may itself take a little of the space that is left.
TEST(AvailableMemory, IsWhatTheAddressSpaceLimitLeaves) {
    EXPECT_EXIT(tryAddressSpace(16 * megabyte, 12 * megabyte, 16 * megabyte), ExitedWithCode(0),
                "");
    EXPECT_EXIT(tryAddressSpace(8 * megabyte, 4 * megabyte, 8 * megabyte), ExitedWithCode(0), "");
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool checkedAllocator = true;
#elif defined(__has_feature)
constexpr bool checkedAllocator = __has_feature(address_sanitizer);
#else
constexpr bool checkedAllocator = false;
#endif

// In a child: frees a block that the heap keeps, for the reading of the files to live on.
void keepSomeHeap() {
    std::size_t const belowTheReturnThreshold = 100000;
    auto const block = std::make_unique<char volatile[]>(belowTheReturnThreshold);
    block[0] = 1;
}

// A limit below what is taken already leaves nothing, and never a negative number.
TEST(AvailableMemory, IsZeroBeyondTheLimit) {
    if (checkedAllocator)
        GTEST_SKIP() << "the allocator of the address sanitizer must map new memory for every use";
    EXPECT_EXIT(
        {
            keepSomeHeap();
            tryAddressSpace(-4096.0, 0.0, 0.0);
        },
        ExitedWithCode(0), "");
}

}  // namespace
