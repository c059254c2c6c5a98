// What a session gives to its parent, and sessions whose failures no file system makes.
#include "fuzz/runner.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <iostream>

#include "fuzz/error_stream.h"

namespace {

using namespace fuzz;

// What a process that writes with *tell* leaves: the bytes of the descriptor, then those in memory.
template <typename Tell>
std::string errorsOf(Tell tell) {
    ErrorMemory memory;
    std::FILE* const file = std::tmpfile();
    pid_t const child = fork();
    if (child == 0) {
        dup2(fileno(file), STDERR_FILENO);
        memory.replaceErrorStream();
        tell();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    std::string text;
    std::rewind(file);
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        text += static_cast<char>(c);
    std::fclose(file);
    return text + memory.text();
}

TEST(ErrorMemory, KeepsTheOrderOfBothStreamsUntilTheEnd) {
    EXPECT_EQ(errorsOf([] {
                  std::fprintf(stderr, "%d ", 1);
                  std::cerr << 2 << ' ';
                  std::fputs("3", stderr);
              }),
              "1 2 3");
}

TEST(ErrorMemory, TakesMoreThanItHolds) {
    std::string const line(999, 'x');
    std::string expected;
    for (int i = 0; i < 2500; ++i)
        expected += line + std::to_string(i % 10);
    EXPECT_EQ(errorsOf([&line] {
                  for (int i = 0; i < 2500; ++i)
                      std::fprintf(stderr, "%s%d", line.c_str(), i % 10);
              }),
              expected);
}

TEST(ErrorMemory, IsClearedForTheNextSession) {
    SessionCase session;
    session.model = "therm";
    session.args = {"m", "d"};
    session.script = "quit\n";
    EXPECT_EQ(run(session).err, run(session).err);
}

// The only files that this session closes are the logs of steps and of propagations, after all
// else.
SessionCase strictSession(long failingClose) {
    SessionCase session;
    session.model = "therm";
    session.args = {"--strict", "m", "d"};
    session.script = "quit\n";
    session.check = Check::FAULT;
    session.fault = {Fault::CLOSE, failingClose, false, EIO};
    return session;
}

// A full disk may be told at the close alone. Found by the seeds 12311, 18681, 22798 and 30043,
// where the loss was told when the status had been taken.
TEST(StrictSession, CountsALogThatCannotBeClosed) {
    char const* const logs[] = {"bench1.bmk", "itmsbench.bmk"};
    for (long nth : {1, 2}) {
        Outcome const outcome = run(strictSession(nth));
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.usage.closes, 2);
        EXPECT_TRUE(outcome.err.ends_with(std::string("Leaving tavro-exec.\nCan't write file ") +
                                          logs[nth - 1] + ": Input/output error\n"))
            << outcome.err;
    }
}

}  // namespace
