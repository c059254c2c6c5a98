// A run that memory stops: what the console says, which rows it writes, and that it goes on.
#include <algorithm>

#include "console/losses.h"
#include "console/run.h"
#include "console_fixture.h"
#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"
#include "support/memory_watch.h"

namespace {

int looksLeft = 0;

// Memory runs short at one look.
bool afterSomeLooks() {
    return looksLeft-- == 0;
}

class MemoryStop : public testing::Test {
protected:
    MemoryStop() { WorkDirectory::write(measureFile, "0.8\n0.9\n0.95\n0.97\n0.99\n1\n"); }
    ~MemoryStop() override {
        runHost().onMemory = nullptr;
        clearMultiTrajs(theRun());
    }
    // What a run writes on the error stream, and its display file, when memory runs short at the
    // look after so many; never for -1.
    std::string run(CommandHandler command, char const* arg, int looks) {
        std::string const told = streamsOf([&] {
                                     snInit(nullptr);
                                     looksLeft = looks;
                                     runHost().onMemory = afterSomeLooks;
                                     command(arg);
                                 }).err;
        return told + WorkDirectory::read(displayFile);
    }
    static std::string after(std::string const& text, std::string const& mark) {
        std::size_t const found = text.find(mark);
        return found == std::string::npos ? "no " + mark : text.substr(found + mark.size());
    }

    ConsoleFiles files;
    ReferenceModel model;
};

// A detection that is stopped within a cycle leaves the graph of the one before it.
char const* const staleGraphs = "No graphs are written: those here are of an earlier run\n";
char const* const thirdStep = "-- time = 3 --------------------------\n";

// A look between two steps, and one as the only candidate is about to be stepped: the sixth look is
// in the third step, of which no row is written.
TEST_F(MemoryStop, DetectionKeepsTheRowsOfWholeCycles) {
    run(snDetect, "2 nofault 3", -1);
    std::string const file = WorkDirectory::read(displayFile);
    ASSERT_EQ(std::count(file.begin(), file.end(), '\n'), 3) << "the start and two steps";
    EXPECT_EQ(after(run(snDetect, "5 nofault 3", 5), thirdStep),
              std::string("run stopped at time 2: memory runs short with 1 candidates\n") +
                  staleGraphs + file);
}

TEST_F(MemoryStop, DetectionStopsBetweenTwoSteps) {
    run(snDetect, "2 nofault 3", -1);
    std::string const file = WorkDirectory::read(displayFile);
    std::string const told = run(snDetect, "5 nofault 3", 4);
    EXPECT_EQ(told.find(thirdStep), std::string::npos);
    EXPECT_EQ(after(told, "time = 2 --------------------------\n"),
              "run stopped at time 2: memory runs short with 1 candidates\n" + file);
    EXPECT_NE(WorkDirectory::read("htraj0.dot"), "") << "between two steps a candidate is whole";
}

TEST_F(MemoryStop, GraphsThatAreLeftOutAreTold) {
    std::string const sound = run(snDetect, "2 nofault 3", -1);
    EXPECT_EQ(sound.find("graphs"), std::string::npos);
    runHost().onWrite = [](std::string const&) { throw std::bad_alloc(); };
    int const before = losses();
    std::string const told = run(snDetect, "2 nofault 3", -1);
    runHost().onWrite = nullptr;
    EXPECT_NE(told.find("Memory runs short: graphs are missing"), std::string::npos) << told;
    EXPECT_EQ(losses() - before, 1);
    EXPECT_EQ(theRun().hybNT, nullptr) << "the run has ended";
    EXPECT_EQ(run(snDetect, "2 nofault 3", -1), sound);
}

TEST_F(MemoryStop, SimulationKeepsTheRowsOfWholeCycles) {
    run(snSimul, "2 multi", -1);
    std::string const file = WorkDirectory::read(displayFile);
    EXPECT_EQ(after(run(snSimul, "5 multi", 5), thirdStep),
              "run stopped at time 2: memory runs short with 1 candidates\n" + file);
}

TEST_F(MemoryStop, TheNextRunIsASoundOne) {
    std::string const sound = run(snDetect, "5 nofault 3", -1);
    run(snDetect, "5 nofault 3", 5);
    EXPECT_EQ(theRun().hybNT, nullptr);
    EXPECT_EQ(run(snDetect, "5 nofault 3", -1), sound);
}

// The copy of the model's runtime, the first candidate, is the first look of all.
TEST_F(MemoryStop, ARunThatCannotBeginIsTold) {
    looksLeft = 0;
    runHost().onMemory = afterSomeLooks;
    std::string const told = streamsOf([] { snInit(nullptr); }).err;
    EXPECT_EQ(told, "  Initializations failed.\n");
    EXPECT_EQ(theRun().hybNT, nullptr);
    EXPECT_NE(run(snDetect, "2 nofault 3", -1).find("Initializations done."), std::string::npos);
}

}  // namespace
