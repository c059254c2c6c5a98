// The memory that a process may still take: by texts that a test makes up, and by the limits of the
// system, each tried in a child where it would harm.
#include "support/available_memory.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <map>
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

// In a child: a limit of the data alone. The data that statm tells hold the stack as well.
[[noreturn]] void tryData(double spare, double atLeast, double atMost) {
    rlimit limit = {};
    limit.rlim_cur = static_cast<rlim_t>(ownBytes("VmData:") + ownBytes("VmStk:") + spare);
    limit.rlim_max = RLIM_INFINITY;
    if (setrlimit(RLIMIT_DATA, &limit) != 0)
        _exit(10);
    double const available = availableMemory();
    _exit(available < atLeast ? 20 : available > atMost ? 21 : 0);
}

TEST(AvailableMemory, IsWhatTheLimitOfTheDataLeaves) {
    if (checkedAllocator)
        GTEST_SKIP() << "the shadow memory of the address sanitizer is data";
    EXPECT_EXIT(tryData(16 * megabyte, 12 * megabyte, 16 * megabyte), ExitedWithCode(0), "");
}

// ---- Texts that are made up ----

class MadeUp : public SystemTexts {
public:
    std::string read(std::string const& path) const override {
        auto const found = files.find(path);
        return found == files.end() ? "" : found->second;
    }
    double limitOf(int resource) const override {
        auto const found = limits.find(resource);
        return found == limits.end() ? INFINITY : found->second;
    }
    // The files of a group of version 2 or 1. No text stands for a file that is missing.
    void unified(std::string const& path, std::string const& max, std::string const& current,
                 std::string const& stat = "") {
        files["/sys/fs/cgroup" + path + "/memory.max"] = max;
        files["/sys/fs/cgroup" + path + "/memory.current"] = current;
        files["/sys/fs/cgroup" + path + "/memory.stat"] = stat;
    }
    void legacy(std::string const& path, std::string const& limit, std::string const& usage,
                std::string const& stat = "") {
        files["/sys/fs/cgroup/memory" + path + "/memory.limit_in_bytes"] = limit;
        files["/sys/fs/cgroup/memory" + path + "/memory.usage_in_bytes"] = usage;
        files["/sys/fs/cgroup/memory" + path + "/memory.stat"] = stat;
    }
    void ownGroup(std::string const& lines) { files["/proc/self/cgroup"] = lines; }

    std::map<std::string, std::string> files;
    std::map<int, double> limits;
};

TEST(MemoryLimits, WithoutAnyTextNothingIsLimited) {
    EXPECT_TRUE(memoryLimits(MadeUp()).empty());
    EXPECT_EQ(availableMemory(MadeUp()), INFINITY);
}

TEST(MemoryLimits, TheMachineTellsKilobytes) {
    MadeUp system;
    system.files["/proc/meminfo"] =
        "MemTotal:        2000 kB\nMemFree:  10 kB\nMemAvailable:    300 kB\n";
    ASSERT_EQ(memoryLimits(system).size(), 1u);
    EXPECT_EQ(memoryLimits(system)[0].most, 2000.0 * 1024);
    EXPECT_EQ(memoryLimits(system)[0].left, 300.0 * 1024);
}

TEST(MemoryLimits, OfTheProcessCountItsPages) {
    double const page = static_cast<double>(sysconf(_SC_PAGESIZE));
    MadeUp system;
    system.files["/proc/self/statm"] = "100 50 20 5 0 30 0\n";
    system.limits[RLIMIT_AS] = 160 * page;
    EXPECT_EQ(availableMemory(system), 60 * page);
    system.limits[RLIMIT_DATA] = 70 * page;
    EXPECT_EQ(availableMemory(system), 40 * page);
    system.limits[RLIMIT_DATA] = 20 * page;
    EXPECT_EQ(availableMemory(system), 0.0);
}

TEST(MemoryLimits, AGroupOfVersion2) {
    MadeUp system;
    system.ownGroup("0::/user/session\n");
    system.unified("/user/session", "1000\n", "400\n");
    ASSERT_EQ(memoryLimits(system).size(), 1u);
    EXPECT_EQ(memoryLimits(system)[0].most, 1000.0);
    EXPECT_EQ(memoryLimits(system)[0].left, 600.0);
}

TEST(MemoryLimits, AGroupOfVersion1) {
    MadeUp system;
    system.ownGroup("5:cpu,cpuacct:/elsewhere\n4:hugetlb,memory:/jobs/one\n1:name=systemd:/\n");
    system.legacy("/jobs/one", "1000\n", "400\n");
    system.legacy("/elsewhere", "10\n", "9\n");
    EXPECT_EQ(availableMemory(system), 600.0);
}

// A group of another controller, whose name begins alike, tells nothing of the memory.
TEST(MemoryLimits, OnlyTheControllerOfTheMemoryCounts) {
    MadeUp system;
    system.ownGroup("4:memoryless,cpu:/jobs\n");
    system.legacy("/jobs", "1000\n", "400\n");
    EXPECT_EQ(availableMemory(system), INFINITY);
}

TEST(MemoryLimits, TheTightestGroupOnTheWayUpCounts) {
    for (std::string const tight : {"/a/b/c", "/a/b", "/a", ""}) {
        MadeUp system;
        system.ownGroup("0::/a/b/c\n");
        for (std::string const path : {"/a/b/c", "/a/b", "/a", ""})
            system.unified(path, path == tight ? "500\n" : "900\n", "100\n");
        EXPECT_EQ(availableMemory(system), 400.0) << "limit at " << tight << "/";
    }
    MadeUp system;
    system.ownGroup("3:memory:/a/b\n");
    system.legacy("/a/b", "9223372036854771712\n", "100\n");
    system.legacy("/a", "700\n", "200\n");
    system.legacy("", "9223372036854771712\n", "900\n");
    ASSERT_EQ(memoryLimits(system).size(), 1u) << "the highest number of pages is no limit";
    EXPECT_EQ(availableMemory(system), 500.0);
}

// A group beside the own one, or below it, is none of the process's.
TEST(MemoryLimits, OtherGroupsDoNotCount) {
    MadeUp system;
    system.ownGroup("0::/a\n");
    system.unified("/a/b", "5\n", "4\n");
    system.unified("/aa", "5\n", "4\n");
    EXPECT_EQ(availableMemory(system), INFINITY);
}

TEST(MemoryLimits, AGroupMayHaveNone) {
    MadeUp system;
    system.ownGroup("0::/a/b\n");
    system.unified("/a/b", "max\n", "400\n");
    system.unified("/a", "1000\n", "450\n");
    EXPECT_EQ(availableMemory(system), 550.0);
}

// In a container the path is that of the machine, and only the root of it is there.
TEST(MemoryLimits, LevelsThatAreMissingArePassedOver) {
    MadeUp system;
    system.ownGroup("0::/machine/container\n");
    system.unified("", "1000\n", "400\n");
    EXPECT_EQ(availableMemory(system), 600.0);
    system.ownGroup("0::/../..\n");
    EXPECT_EQ(availableMemory(system), 600.0);
    system.ownGroup("");
    EXPECT_EQ(availableMemory(system), 600.0);
}

TEST(MemoryLimits, BothVersionsSideBySide) {
    MadeUp system;
    system.ownGroup("4:memory:/old\n0::/new\n");
    system.legacy("/old", "1000\n", "400\n");
    system.files["/sys/fs/cgroup/unified/new/memory.max"] = "800\n";
    system.files["/sys/fs/cgroup/unified/new/memory.current"] = "300\n";
    EXPECT_EQ(memoryLimits(system).size(), 2u);
    EXPECT_EQ(availableMemory(system), 500.0);
}

// What is kept of files only to read them faster again is given back when it is needed.
TEST(MemoryLimits, TheCacheOfFilesCountsAsLeft) {
    MadeUp system;
    system.ownGroup("4:memory:/old\n0::/new\n");
    system.unified("/new", "1000\n", "990\n", "anon 90\nactive_file 20\ninactive_file 880\n");
    EXPECT_EQ(availableMemory(system), 890.0);
    system.legacy("/old", "1000\n", "990\n", "inactive_file 1\ntotal_inactive_file 500\n");
    EXPECT_EQ(availableMemory(system), 510.0);
}

TEST(MemoryLimits, WhatIsNoNumberDoesNotCount) {
    for (std::string const limit : {"", "garbage\n", "-5\n", "12 34\n", "1000x\n", "\0"}) {
        MadeUp system;
        system.ownGroup("0::/a\n");
        system.unified("/a", limit, "400\n");
        EXPECT_EQ(availableMemory(system), INFINITY) << limit;
    }
    MadeUp system;
    system.unified("", "1000\n", "garbage\n");
    EXPECT_EQ(availableMemory(system), INFINITY) << "what is used is not known";
    for (std::string const lines : {"garbage", ":\n", "::\n", "0:\n", "0::\n", "0::a\n\n:::\n"}) {
        system.unified("", "1000\n", "400\n");
        system.ownGroup(lines);
        EXPECT_EQ(availableMemory(system), 600.0) << "taken to stand at the root: " << lines;
    }
    system.files["/proc/meminfo"] = "MemAvailable: none\n";
    system.files["/proc/self/statm"] = "x";
    system.limits[RLIMIT_AS] = 500.0;
    EXPECT_EQ(availableMemory(system), 500.0) << "nothing is known to be taken";
}

}  // namespace
