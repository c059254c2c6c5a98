// When the watch over the memory throws, and what it goes by.
#include "support/memory_watch.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "support/host.h"
#include "support/run_stopped.h"

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

class ImpatientHost : public Host {
public:
    char const* stopOverdue() override { return "the reason"; }
};

TEST(Watch, LeavesAStepThatIsNotWaitedFor) {
    ImpatientHost host;
    try {
        watchMemory(host);
        FAIL() << "the step goes on";
    } catch (RunStopped const& why) {
        EXPECT_EQ(why.reason, RunStopped::overdue);
        EXPECT_STREQ(why.what(), "the reason");
    }
}

// A limit of 500 megabytes or more keeps 64 of them free, a lower one an eighth.
TEST(Watch, TheReserveGrowsWithTheLimit) {
    EXPECT_EQ(memoryReserve(0.0), 0.0);
    EXPECT_EQ(memoryReserve(64.0 * megabyte), 8.0 * megabyte);
    EXPECT_EQ(memoryReserve(512.0 * megabyte), 64.0 * megabyte);
    EXPECT_EQ(memoryReserve(1e18), 64.0 * megabyte);
}

// In a child that has taken 256 megabytes more than it uses: of which an eighth is to be kept free.
[[noreturn]] void lookBeyond256With(double spare) {
    std::size_t const ballast = 256 * 1024 * 1024;
    auto const taken = std::make_unique_for_overwrite<char[]>(ballast);
    lookWith(spare);
}

TEST(Watch, ALimitOfTheAddressSpaceIsSeen) {
    EXPECT_EXIT(lookBeyond256With(8.0 * megabyte), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(lookBeyond256With(80.0 * megabyte), testing::ExitedWithCode(0), "");
}

// A system whose one limit, of 100 megabytes, leaves what the test says.
class Fuel : public SystemTexts {
public:
    explicit Fuel(double& left, int& looks) : left(left), looks(looks) {}
    std::string read(std::string const& path) const override {
        if (path != "/proc/meminfo")
            return "";
        ++looks;
        return "MemTotal: 102400 kB\nMemAvailable: " + std::to_string(left / 1024.0) + " kB\n";
    }
    double limitOf(int) const override { return INFINITY; }
    double heldFree() const override { return held; }

    double held = 0.0;

private:
    double& left;
    int& looks;
};

class WatchedFuel : public testing::Test {
protected:
    double left = 90.0 * megabyte;
    int looks = 0;
    SystemMemoryWatch watch{std::make_unique<Fuel>(left, looks)};

    // How many questions go by before memory runs short, if each takes *bytes*; -1 when it is all
    // taken before that.
    int questionsUntilShort(double bytes) {
        for (int questions = 0; left > 0.0; ++questions, left -= bytes)
            if (watch.runsShort())
                return questions;
        return -1;
    }
};

// 77.5 megabytes are to spare, as the half of which 620 questions of 64 kilobytes each go by.
TEST_F(WatchedFuel, IsSeldomLookedAtAsLongAsThereIsPlenty) {
    for (int i = 0; i < 620; ++i)
        EXPECT_FALSE(watch.runsShort());
    EXPECT_EQ(looks, 1);
    EXPECT_FALSE(watch.runsShort());
    EXPECT_EQ(looks, 2);
    for (int i = 0; i < 6200; ++i)
        EXPECT_FALSE(watch.runsShort());
    EXPECT_EQ(looks, 12);
}

TEST_F(WatchedFuel, IsLookedAtAfterAThousandQuestionsAtTheLatest) {
    left = 1e6 * megabyte;
    for (int i = 0; i < 10001; ++i)
        EXPECT_FALSE(watch.runsShort());
    EXPECT_EQ(looks, 11);
}

// The reserve of 12.5 megabytes may be touched, by half of what a question takes at most.
TEST_F(WatchedFuel, TheReserveIsNotUsedUp) {
    for (double const bytes : {1e3, 1e4, 6e4, 65536.0}) {
        left = 90.0 * megabyte;
        looks = 0;
        watch = SystemMemoryWatch(std::make_unique<Fuel>(left, looks));
        int const questions = questionsUntilShort(bytes);
        ASSERT_GE(questions, 0) << bytes;
        EXPECT_LE(left, 12.5 * megabyte) << bytes;
        EXPECT_GE(left, 12.0 * megabyte) << bytes;
        EXPECT_LE(looks, std::max(200, questions / 50)) << bytes;
    }
}

// A question that takes more than is assumed is found out: after the first look 1 question in 620.
TEST_F(WatchedFuel, LargeQuestionsAreLearntFrom) {
    left = 90.0 * megabyte;
    EXPECT_FALSE(watch.runsShort());
    left = 70.0 * megabyte;
    for (int i = 0; i < 620; ++i)
        watch.runsShort();
    EXPECT_EQ(looks, 2);
    // 20 megabytes by 620 questions are less than assumed: 57.5 megabytes to spare, 460 questions.
    for (int i = 0; i < 460; ++i)
        watch.runsShort();
    EXPECT_EQ(looks, 3);
    left = 20.0 * megabyte;
    for (int i = 0; i < 460; ++i)
        watch.runsShort();
    // 50 megabytes by 460 questions are 111 kilobytes each: 7.5 megabytes are to spare, the half of
    // which is taken by 34 questions.
    EXPECT_EQ(looks, 4);
    for (int i = 0; i < 33; ++i)
        watch.runsShort();
    EXPECT_EQ(looks, 4);
    watch.runsShort();
    EXPECT_EQ(looks, 5);
}

// What an ended run gave back to the allocator, and that did not go back to the system.
TEST(Watch, WhatIsHeldFreeCountsAsLeft) {
    double left = 0.0;
    int looks = 0;
    auto fuel = std::make_unique<Fuel>(left, looks);
    Fuel& held = *fuel;
    SystemMemoryWatch watch(std::move(fuel));
    EXPECT_TRUE(watch.runsShort());
    held.held = 12.0 * megabyte;
    EXPECT_TRUE(watch.runsShort());
    held.held = 13.0 * megabyte;
    EXPECT_FALSE(watch.runsShort());
}

// The memory of an ended run is free again; short memory is looked at each time.
TEST_F(WatchedFuel, ShortMemoryMayBecomePlenty) {
    left = 0.0;
    EXPECT_TRUE(watch.runsShort());
    EXPECT_TRUE(watch.runsShort());
    EXPECT_EQ(looks, 2);
    left = 50.0 * megabyte;
    EXPECT_FALSE(watch.runsShort());
    EXPECT_EQ(looks, 3);
}

// The allocator of the address sanitizer does not reuse what it was given back.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool reusesMemory = false;
#else
constexpr bool reusesMemory = true;
#endif

// In a child, 40 megabytes in pieces with a last one behind them, so that they do not go back to
// the system as they are freed. A limit of more than 44 megabytes keeps more than 4 of them.
[[noreturn]] void lookWithHeap(bool freed) {
    std::vector<std::unique_ptr<char[]>> pieces;
    for (int i = 0; i < 40 * 16; ++i)
        pieces.push_back(std::make_unique<char[]>(64 * 1024));
    auto const last = std::make_unique<char[]>(64 * 1024);
    if (freed)
        pieces.clear();
    lookWith(4.0 * megabyte);
}

TEST(Watch, CountsWhatTheAllocatorHoldsFree) {
    if (!reusesMemory)
        GTEST_SKIP() << "nothing is held free";
    EXPECT_EXIT(lookWithHeap(false), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(lookWithHeap(true), testing::ExitedWithCode(0), "");
}

}  // namespace
