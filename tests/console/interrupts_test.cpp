// Signals, each in a child process: what is left for a run to see, and when the process ends.
#include "console/interrupts.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <string>

namespace {

using testing::ExitedWithCode;

// A test may have been started with a signal ignored.
void heedAll() {
    for (int const signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, SIG_DFL);
    heedInterrupts();
}

// Ends the child with *status* when all is as expected.
void leaveWhen(bool expected, int status = 7) {
    _exit(expected ? status : 99);
}

TEST(Interrupts, ASignalAsksForAStop) {
    for (auto const& [signal, reason] :
         {std::pair{SIGINT, "interrupted"}, std::pair{SIGTERM, "terminated"},
          std::pair{SIGHUP, "hung up"}})
        EXPECT_EXIT(
            {
                heedAll();
                bool const quiet = stopReason() == nullptr && statusOfInterrupt() == 0;
                raise(signal);
                leaveWhen(quiet && stopReason() == std::string(reason) &&
                          statusOfInterrupt() == 128 + signal);
            },
            ExitedWithCode(7), "");
}

TEST(Interrupts, AfterTheRunAnInterruptIsDone) {
    EXPECT_EXIT(
        {
            heedAll();
            raise(SIGINT);
            interruptIsDone();
            bool const done = stopReason() == nullptr;
            raise(SIGINT);  // the first one of the next run
            leaveWhen(done && stopReason() != nullptr);
        },
        ExitedWithCode(7), "");
}

TEST(Interrupts, AfterTheRunTheOthersStillEndTheProgram) {
    EXPECT_EXIT(
        {
            heedAll();
            raise(SIGTERM);
            interruptIsDone();
            leaveWhen(statusOfInterrupt() == 143);
        },
        ExitedWithCode(7), "");
}

TEST(Interrupts, AStepMayGoOnForASecond) {
    EXPECT_EXIT(
        {
            heedAll();
            bool const quiet = !stopIsOverdue();
            raise(SIGINT);
            bool const waits = !stopIsOverdue();
            usleep(2100000);
            leaveWhen(quiet && waits && stopIsOverdue());
        },
        ExitedWithCode(7), "");
}

// A read that nothing will ever serve, of a child that a second one interrupts.
void readInterrupted(bool interruptible) {
    heedAll();
    int ends[2];
    if (pipe(ends) != 0)
        _exit(98);
    pid_t const reader = getpid();
    if (fork() == 0) {
        usleep(200000);
        kill(reader, SIGINT);
        usleep(200000);
        [[maybe_unused]] ssize_t const written = write(ends[1], "x", 1);
        _exit(0);
    }
    std::optional<Interruptible> scope;
    if (interruptible)
        scope.emplace();
    char byte;
    leaveWhen(read(ends[0], &byte, 1) == 1, 7);
}

TEST(Interrupts, EndAWaitWhereThatIsWanted) {
    EXPECT_EXIT(readInterrupted(false), ExitedWithCode(7), "");
    EXPECT_EXIT(readInterrupted(true), ExitedWithCode(99), "");
}

void raiseBoth(int first, int second) {
    heedAll();
    raise(first);
    raise(second);
    leaveWhen(statusOfInterrupt() == 128 + second);
}

TEST(Interrupts, TheSameSignalAgainEndsTheProcess) {
    EXPECT_EXIT(raiseBoth(SIGINT, SIGINT), ExitedWithCode(130), "");
    EXPECT_EXIT(raiseBoth(SIGTERM, SIGTERM), ExitedWithCode(143), "");
    EXPECT_EXIT(raiseBoth(SIGHUP, SIGHUP), ExitedWithCode(129), "");
}

TEST(Interrupts, AnInterruptAfterAnotherSignalDoesToo) {
    EXPECT_EXIT(raiseBoth(SIGTERM, SIGINT), ExitedWithCode(130), "");
}

TEST(Interrupts, ATerminationStillWaitsForAnInterruptedRun) {
    EXPECT_EXIT(raiseBoth(SIGINT, SIGTERM), ExitedWithCode(7), "");
    EXPECT_EXIT(raiseBoth(SIGTERM, SIGHUP), ExitedWithCode(7), "");
}

TEST(Interrupts, WhileNothingIsUnwrittenOneIsEnough) {
    EXPECT_EXIT(
        {
            heedAll();
            { Waiting const over; }
            Waiting const waiting;
            raise(SIGTERM);
            leaveWhen(true);
        },
        ExitedWithCode(143), "");
    EXPECT_EXIT(
        {
            heedAll();
            raise(SIGINT);
            Waiting const waiting;
            leaveWhen(true);
        },
        ExitedWithCode(130), "")
        << "it has come before";
}

// As a job in the background is started.
TEST(Interrupts, AnIgnoredSignalStaysIgnored) {
    EXPECT_EXIT(
        {
            std::signal(SIGINT, SIG_IGN);
            heedInterrupts();
            raise(SIGINT);
            raise(SIGINT);
            leaveWhen(stopReason() == nullptr);
        },
        ExitedWithCode(7), "");
}

}  // namespace
