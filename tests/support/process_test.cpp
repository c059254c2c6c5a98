// Exits, standard streams and memory of the process, each tried in a child where it would harm.
#include "support/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <string>

namespace {

using testing::ExitedWithCode;

constexpr double megabyte = 1024.0 * 1024.0;

TEST(LeaveProcess, EndsWithTheStatus) {
    EXPECT_EXIT(leaveProcess(0), ExitedWithCode(0), "^$");
    EXPECT_EXIT(leaveProcess(1), ExitedWithCode(1), "^$");
    EXPECT_EXIT(leaveProcess(-1), ExitedWithCode(255), "^$");
    EXPECT_EXIT(leaveProcess(255), ExitedWithCode(255), "^$");
}

std::string temporary(std::string const& name) {
    return testing::TempDir() + name + "-" + std::to_string(getpid());
}

std::string contentOf(std::string const& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(LeaveProcess, WritesBufferedFiles) {
    std::string const path = temporary("left-open");
    EXPECT_EXIT(
        {
            std::FILE* file = std::fopen(path.c_str(), "w");
            std::fputs("kept", file);
            leaveProcess(1);
        },
        ExitedWithCode(1), "");
    EXPECT_EQ(contentOf(path), "kept");
    std::filesystem::remove(path);
}

TEST(LeaveProcess, ClosesStreamsThatLiveAsLongAsTheProgram) {
    std::string const path = temporary("static-stream");
    EXPECT_EXIT(
        {
            static std::ofstream stream(path);
            stream << "kept";
            leaveProcess(-1);
        },
        ExitedWithCode(255), "");
    EXPECT_EQ(contentOf(path), "kept");
    std::filesystem::remove(path);
}

bool isNullDevice(int descriptor) {
    struct stat here = {};
    struct stat null = {};
    return fstat(descriptor, &here) == 0 && stat("/dev/null", &null) == 0 &&
           S_ISCHR(here.st_mode) && here.st_rdev == null.st_rdev;
}

// In a child: closes the descriptors, opens the null device in their place, and then a file. Ends
// with status 0 when the file got a descriptor above the standard ones and each closed one is the
// null device, for reading and writing.
[[noreturn]] void tryClosed(std::initializer_list<int> descriptors) {
    for (int const descriptor : descriptors)
        close(descriptor);
    keepStandardStreams();
    for (int const descriptor : descriptors) {
        if (!isNullDevice(descriptor))
            _exit(10 + descriptor);
        if ((fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDWR)
            _exit(20 + descriptor);
    }
    _exit(open("/", O_RDONLY) > 2 ? 0 : 30);
}

TEST(KeepStandardStreams, OpensTheNullDeviceForClosedOnes) {
    EXPECT_EXIT(tryClosed({1}), ExitedWithCode(0), "");
    EXPECT_EXIT(tryClosed({0}), ExitedWithCode(0), "");
    EXPECT_EXIT(tryClosed({2}), ExitedWithCode(0), "");
    EXPECT_EXIT(tryClosed({0, 2}), ExitedWithCode(0), "");
    EXPECT_EXIT(tryClosed({0, 1, 2}), ExitedWithCode(0), "");
}

// In a child: puts a file of its own in place of each standard stream, so that a replaced one
// shows.
[[noreturn]] void tryOpen(std::string const& path) {
    int const file = open(path.c_str(), O_RDWR | O_CREAT, 0600);
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        dup2(file, descriptor);
    int const lowestFree = dup(file);
    close(lowestFree);
    keepStandardStreams();
    struct stat expected = {};
    fstat(file, &expected);
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        struct stat now = {};
        if (fstat(descriptor, &now) != 0 || now.st_ino != expected.st_ino)
            _exit(10 + descriptor);
    }
    _exit(dup(file) == lowestFree ? 0 : 30);
}

TEST(KeepStandardStreams, LeavesOpenOnesAlone) {
    std::string const path = temporary("standard-streams");
    EXPECT_EXIT(tryOpen(path), ExitedWithCode(0), "");
    std::filesystem::remove(path);
}

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
