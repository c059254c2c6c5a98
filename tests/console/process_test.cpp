// Exits and standard streams of the process, each tried in a child where it would harm.
#include "console/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using testing::ExitedWithCode;

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
// null device, for reading and writing, standard output for reading alone.
[[noreturn]] void tryClosed(std::initializer_list<int> descriptors) {
    for (int const descriptor : descriptors)
        close(descriptor);
    keepStandardStreams();
    for (int const descriptor : descriptors) {
        if (!isNullDevice(descriptor))
            _exit(10 + descriptor);
        // What is written to a closed standard output must go on failing, to be told.
        int const mode = descriptor == STDOUT_FILENO ? O_RDONLY : O_RDWR;
        if ((fcntl(descriptor, F_GETFL) & O_ACCMODE) != mode)
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

}  // namespace
