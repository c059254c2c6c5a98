// Pipes that are waited for, and those that no more is waited for.
#include "console/awaited_input.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <fstream>
#include <string>

#include "console/interrupts.h"
#include "support/run_stopped.h"

namespace {

using testing::ExitedWithCode;

// Of this process alone: tests run side by side.
std::string const ownPath = "awaited" + std::to_string(getpid());
char const* const path = ownPath.c_str();

class AwaitedInput : public testing::Test {
protected:
    void TearDown() override { unlink(path); }

    // A child that opens the pipe for writing, and then does what it is told with the descriptor.
    template <typename Write>
    static void beginWriter(Write write) {
        if (fork() != 0)
            return;
        int const pipe = open(path, O_WRONLY);
        write(pipe);
        _exit(0);
    }
    static void put(int pipe, char const* text) {
        [[maybe_unused]] ssize_t const written = ::write(pipe, text, std::strlen(text));
    }
    // Long enough for the reader to wait again.
    static void pause() { usleep(50000); }
};

TEST_F(AwaitedInput, IsWhatIsThereAndNoRegularFile) {
    EXPECT_FALSE(isAwaited("missing"));
    EXPECT_FALSE(isAwaited("."));
    std::ofstream(path) << "text\n";
    EXPECT_FALSE(isAwaited(path));
    unlink(path);
    ASSERT_EQ(mkfifo(path, 0600), 0);
    EXPECT_TRUE(isAwaited(path));
    EXPECT_TRUE(isAwaited("/dev/null"));
}

TEST_F(AwaitedInput, GivesTheLinesAsTheyCome) {
    ASSERT_EQ(mkfifo(path, 0600), 0);
    beginWriter([](int pipe) {
        put(pipe, "one\ntw");
        pause();
        put(pipe, "o\nthree");
    });
    auto const input = openAwaited(path);
    ASSERT_NE(input, nullptr);
    std::string line;
    for (char const* const expected : {"one", "two", "three"}) {
        EXPECT_TRUE(std::getline(*input, line));
        EXPECT_EQ(line, expected);
    }
    EXPECT_FALSE(std::getline(*input, line));
}

// A socket has a path, and cannot be opened by it.
TEST_F(AwaitedInput, IsNullWhenItCannotBeOpened) {
    int const listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, path);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_TRUE(isAwaited(path));
    EXPECT_EQ(openAwaited(path), nullptr);
    close(listener);
}

TEST_F(AwaitedInput, OutlastsASignalThatAsksForNothing) {
    ASSERT_EQ(mkfifo(path, 0600), 0);
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    beginWriter([](int pipe) {
        pause();
        kill(getppid(), SIGUSR1);
        pause();
        put(pipe, "one\n");
    });
    auto const input = openAwaited(path);
    std::string line;
    EXPECT_TRUE(std::getline(*input, line));
    EXPECT_EQ(line, "one");
}

// Ends with 7 when a line of the pipe is given up because of *signal*.
void giveUp(int signal) {
    std::signal(signal, SIG_DFL);
    heedInterrupts();
    auto const input = openAwaited(path);
    std::string line;
    try {
        std::getline(*input, line);
    } catch (RunStopped const& stop) {
        _exit(stop.reason == RunStopped::overdue && stop.what() == std::string(stopReason()) ? 7
                                                                                             : 98);
    }
    _exit(99);
}

TEST_F(AwaitedInput, IsGivenUpWhenARunIsToStop) {
    ASSERT_EQ(mkfifo(path, 0600), 0);
    for (int const signal : {SIGINT, SIGTERM})
        EXPECT_EXIT(
            {
                beginWriter([signal](int) {
                    pause();
                    kill(getppid(), signal);
                    usleep(1000000);
                });
                giveUp(signal);
            },
            ExitedWithCode(7), "");
}

TEST_F(AwaitedInput, IsNotEvenOpenedWhenTheStopWasAskedForBefore) {
    ASSERT_EQ(mkfifo(path, 0600), 0);
    EXPECT_EXIT(
        {
            std::signal(SIGINT, SIG_DFL);
            heedInterrupts();
            raise(SIGINT);
            try {
                openAwaited(path);
            } catch (RunStopped const&) {
                _exit(7);
            }
            _exit(99);
        },
        ExitedWithCode(7), "");
}

}  // namespace
