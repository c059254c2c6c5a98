// A run that a fatal state stops, or an interrupt: its rows are written and its files closed before
// that is passed on.
#include <algorithm>
#include <csignal>
#include <new>
#include <optional>

#include "console/interrupts.h"
#include "console/losses.h"
#include "console/run.h"
#include "console_fixture.h"
#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"

namespace {

// Where the engine asks for memory it is stopped by another state, which needs another plant to
// come about.
class FatalStop : public testing::Test {
protected:
    FatalStop() { WorkDirectory::write(measureFile, "0.8\n0.9\n0.95\n0.97\n0.99\n1\n"); }
    ~FatalStop() override {
        runHost().onMemory = nullptr;
        runHost().onOverdue = nullptr;
        clearMultiTrajs(theRun());
    }
    // The sixth look is in the third step.
    static void stopInThirdStep(RunStopped::Reason reason) {
        runHost().onMemory = [looks = 5, reason]() mutable -> bool {
            if (looks-- == 0)
                throw RunStopped(reason, "the reason");
            return false;
        };
    }
    // What *command* tells, and the status that it ends the program with; -2 for none.
    void call(CommandHandler command, char const* arg) {
        told = streamsOf([&] { status = statusOf([&] { command(arg); }); }).err;
    }
    void init() {
        call(snInit, nullptr);
        ASSERT_EQ(status, -2);
    }

    ConsoleFiles files;
    ReferenceModel model;
    std::string told;
    int status = -2;
};

char const* const twoSteps =
    "-- time = 1 --------------------------\n"
    "-- time = 2 --------------------------\n"
    "-- time = 3 --------------------------\n"
    "run stopped at time 2: the reason\n";

TEST_F(FatalStop, ASimulationWritesItsRowsFirst) {
    init();
    call(snSimul, "2 multi");
    std::string const rows = WorkDirectory::read(displayFile);
    ASSERT_EQ(std::count(rows.begin(), rows.end(), '\n'), 3) << "time 0, and two cycles";
    init();
    int const before = losses();
    stopInThirdStep(RunStopped::noCover);
    call(snSimul, "5 multi");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(told, twoSteps);
    EXPECT_EQ(losses() - before, 1);
    EXPECT_EQ(WorkDirectory::read(displayFile), rows);
    EXPECT_EQ(dataOut, nullptr);
    EXPECT_EQ(theRun().hybNT, nullptr);
}

TEST_F(FatalStop, ADetectionWritesItsRowsAndItsLogFirst) {
    init();
    call(snDetect, "2 nofault 3");
    std::string const rows = WorkDirectory::read(displayFile);
    std::filesystem::remove("htraj0.dot");
    init();
    stopInThirdStep(RunStopped::eventImpossible);
    call(snDetect, "5 nofault 3");
    EXPECT_EQ(status, 1);
    EXPECT_EQ(told, std::string("mode: 3\n") + twoSteps + "No graphs are written\n");
    EXPECT_EQ(WorkDirectory::read(displayFile), rows);
    std::string const log = WorkDirectory::read(cycleBenchmark);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2);
    EXPECT_FALSE(std::filesystem::exists("htraj0.dot")) << "no candidate is whole";
}

// Between two steps nothing is lost: that of the signal is made to its end.
TEST_F(FatalStop, AnInterruptWaitsForTheEndOfTheStep) {
    init();
    call(snSimul, "3 multi");
    std::string const rows = WorkDirectory::read(displayFile);
    ASSERT_EQ(std::count(rows.begin(), rows.end(), '\n'), 4) << "time 0, and three cycles";
    init();
    std::signal(SIGINT, SIG_DFL);
    heedInterrupts();
    runHost().onMemory = [looks = 5]() mutable {
        if (looks-- == 0)
            std::raise(SIGINT);
        return false;
    };
    call(snSimul, "5 multi");
    std::signal(SIGINT, SIG_DFL);
    EXPECT_EQ(status, -2) << "the console goes on";
    EXPECT_NE(told.find("time = 3 --------------------------\n"
                        "run stopped at time 3: interrupted\n"),
              std::string::npos)
        << told;
    EXPECT_EQ(WorkDirectory::read(displayFile), rows);
    EXPECT_EQ(stopReason(), nullptr) << "an interrupt asks for no more";
}

TEST_F(FatalStop, AStepThatTakesLongIsGivenUp) {
    init();
    call(snSimul, "2 multi");
    std::string const rows = WorkDirectory::read(displayFile);
    init();
    runHost().onOverdue = [looks = 2]() mutable { return looks-- == 0 ? "interrupted" : nullptr; };
    call(snSimul, "5 multi");
    EXPECT_EQ(status, -2) << "the console goes on";
    EXPECT_NE(told.find("time = 3 --------------------------\n"
                        "run stopped at time 2: interrupted\n"),
              std::string::npos)
        << told;
    EXPECT_EQ(WorkDirectory::read(displayFile), rows);
    EXPECT_EQ(theRun().hybNT, nullptr);
}

TEST_F(FatalStop, AStartThatIsInterruptedIsNone) {
    runHost().onOverdue = [] { return "interrupted"; };
    call(snInit, nullptr);
    EXPECT_EQ(status, -2) << "the console goes on";
    EXPECT_NE(told.find("run stopped at time 0: interrupted\n  Initializations failed.\n"),
              std::string::npos)
        << told;
    EXPECT_EQ(theRun().hybNT, nullptr);
}

TEST_F(FatalStop, AStartIsTold) {
    runHost().onMemory = []() -> bool { throw RunStopped(RunStopped::noCover, "the reason"); };
    call(snInit, nullptr);
    EXPECT_EQ(status, 0);
    EXPECT_NE(told.find("run stopped at time 0: the reason\n"), std::string::npos) << told;
    EXPECT_EQ(theRun().hybNT, nullptr);
}

}  // namespace
