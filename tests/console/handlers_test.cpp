// The handlers of the run commands: how they read their parameters, what they refuse, and the state
// that they leave. Whole runs are in tests/sessions.
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>

#include "console/run.h"
#include "console_fixture.h"
#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"

namespace {

// The reference model with its measure file, not initialised.
class HandlerTest : public testing::Test {
protected:
    HandlerTest() { WorkDirectory::write(measureFile, "0.8\n0.9\n"); }
    ~HandlerTest() override {
        clearMultiTrajs(theRun());
        discrete = disc_init = false;
    }

    // The handler's result; what it wrote is in `said`.
    int call(CommandHandler handler, char const* arg) {
        int result = -99;
        said = streamsOf([&] { result = handler(arg); });
        return result;
    }
    void init(char const* arg = nullptr) {
        call(snInit, arg);
        ASSERT_NE(theRun().hybNT, nullptr) << said.err;
    }

    ConsoleFiles files;
    ReferenceModel model;
    Streams said;
};

char const* const notInitialised = "Please initialize first !\n";

// ---- init ----

TEST_F(HandlerTest, InitTakesItsDefaults) {
    precision = 7.0;
    accuTime = 7;
    simTime = 7.0;
    theRun().engine.rt_num = 7;
    EXPECT_EQ(call(snInit, nullptr), 0);
    EXPECT_EQ(precision, 0.01);
    EXPECT_EQ(accuTime, 0);
    EXPECT_EQ(simTime, 0.0);
    ASSERT_NE(theRun().hybNT, nullptr);
    EXPECT_EQ(theRun().hybNT->rt->num, 0) << "the first runtime of a run is number 0";
    EXPECT_EQ(theRun().hybNT->rt->globalOn, 1);
    EXPECT_EQ(theRun().hybNT->rt->precision, 0.01);
    EXPECT_EQ(theRun().hybNT->rt->misbWindow, 0);
}

struct InitCase {
    char const* arg;
    int global, accumulation;
    double precision;
};

void PrintTo(InitCase const& tested, std::ostream* out) {
    *out << "init " << tested.arg;
}

class InitTest : public HandlerTest, public testing::WithParamInterface<InitCase> {};

TEST_P(InitTest, ReadsItsParameters) {
    init(GetParam().arg);
    EXPECT_EQ(theRun().hybNT->rt->globalOn, GetParam().global);
    EXPECT_EQ(accuTime, GetParam().accumulation);
    EXPECT_EQ(theRun().hybNT->rt->misbWindow, GetParam().accumulation);
    EXPECT_EQ(theRun().hybNT->rt->precision, GetParam().precision);
}

INSTANTIATE_TEST_SUITE_P(Handlers, InitTest,
                         testing::Values(InitCase{"", 1, 0, 0.01}, InitCase{"noglob", 0, 0, 0.01},
                                         InitCase{"xnoglobal", 0, 0, 0.01},
                                         InitCase{"5", 1, 5, 0.01},
                                         InitCase{"5.9 0.05", 1, 5, 0.05},
                                         InitCase{"noglob 5 0.05", 0, 5, 0.05},
                                         InitCase{"noglob  0  1e-3", 0, 0, 0.001},
                                         InitCase{"1000000 2 more", 1, 1000000, 2.0}));

TEST_F(HandlerTest, InitRefusesWithoutTouchingTheRun) {
    for (char const* arg : {"foo", "foo noglob", "-5", "noglob x", "5 noglob", "5 x", "1000001"}) {
        EXPECT_EQ(call(snInit, arg), 0);
        EXPECT_NE(said.err, "") << arg;
        EXPECT_EQ(said.out, "") << arg;
        EXPECT_EQ(theRun().hybNT, nullptr) << arg;
        EXPECT_EQ(dataOut, nullptr) << arg;
    }
}

TEST_F(HandlerTest, InitIsForOnce) {
    init();
    hybTrajectory const* first = theRun().hybNT;
    EXPECT_EQ(call(snInit, "foo"), 0);
    EXPECT_EQ(said.out, "The model has already been inited\n");
    EXPECT_EQ(said.err, "");
    EXPECT_EQ(theRun().hybNT, first);
}

TEST_F(HandlerTest, InitEndsTheDisplayLineWhateverHappens) {
    modesFile = "nowhere/modes";
    EXPECT_EQ(call(snInit, nullptr), 0);
    EXPECT_EQ(theRun().hybNT, nullptr);
    closeRunFiles();
    EXPECT_EQ(WorkDirectory::read(displayFile), "\n");
}

TEST_F(HandlerTest, InitNeverEmptiesAFileThatItReads) {
    std::string const measures = WorkDirectory::read(measureFile);
    displayFile = "disp/../obs/./day";
    EXPECT_EQ(call(snInit, nullptr), 0);
    EXPECT_EQ(said.err, "Can't write file disp/../obs/./day: it is the measure file obs/day\n");
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(theRun().hybNT, nullptr);
    EXPECT_EQ(measIn, nullptr);
    EXPECT_EQ(dataOut, nullptr);
    EXPECT_EQ(WorkDirectory::read(measureFile), measures);
}

// A device at both ends loses nothing.
TEST_F(HandlerTest, InitReadsAndWritesTheSameDevice) {
    measureFile = displayFile = "/dev/null";
    EXPECT_EQ(call(snInit, nullptr), 0);
    EXPECT_NE(theRun().hybNT, nullptr) << said.err;
}

TEST_F(HandlerTest, InitOfADiscreteModelIsSilent) {
    discrete = true;
    EXPECT_EQ(call(snInit, nullptr), 0);
    EXPECT_EQ(said.out + said.err, "");
    EXPECT_TRUE(disc_init);
    ASSERT_NE(theRun().hybNT, nullptr);
    EXPECT_EQ(theRun().scheduler.tracked_traj.size(), 1u);
    EXPECT_EQ(dataOut, nullptr);
    EXPECT_EQ(call(snInit, nullptr), 0);
    EXPECT_EQ(said.out, "The model has already been inited\n");
    theRun().scheduler.tracked_traj.clear();
}

// ---- simul ----

TEST_F(HandlerTest, SimulWantsInit) {
    EXPECT_EQ(call(snSimul, "1 multi"), 0);
    EXPECT_EQ(said.err, notInitialised);
    EXPECT_EQ(call(snSimul, nullptr), 0);
    EXPECT_EQ(said.err, notInitialised);
}

TEST_F(HandlerTest, SimulRefusesAndTheRunGoesOn) {
    init();
    std::pair<char const*, char const*> const cases[] = {
        {nullptr, "Missing parameter ! (expecting total time)\n"},
        {"", "Missing parameter ! (expecting total time)\n"},
        {"x", "Total time should be a number !\n"},
        {"-1", "Total time should be a number !\n"},
        {"0", "Total time is 0: no cycle is run.\n"},
        {"0 multi", "Total time is 0: no cycle is run.\n"},
        {"0x0 multi",
         "Parameter 0x0 is read as 0\n"
         "Total time is 0: no cycle is run.\n"},
        {"1e999 multi", "Total time is too long !\n"},
    };
    for (auto const& [arg, message] : cases) {
        EXPECT_EQ(call(snSimul, arg), 0);
        EXPECT_EQ(said.err, message);
        EXPECT_EQ(said.out, "");
        EXPECT_NE(theRun().hybNT, nullptr);
        EXPECT_EQ(simu_multi, 0);
    }
}

TEST_F(HandlerTest, ResettingWantsAMeasureFile) {
    init();
    std::fclose(measIn);
    measIn = nullptr;
    EXPECT_EQ(call(snSimul, "1 1 multi"), 0);
    EXPECT_EQ(said.err, "Resetting impossible (no measure file) !\n");
    EXPECT_NE(theRun().hybNT, nullptr);
    call(snSimul, "1 multi");
    EXPECT_EQ(said.out, "mode: 0\ninputs: \nwriting 1 trajectories\n")
        << "without a file no measures are read";
}

// Standard input at its end: no 'n', so that the simulation goes on.
class QuestionTest : public HandlerTest {
protected:
    QuestionTest() { EXPECT_NE(std::freopen("/dev/null", "r", stdin), nullptr); }

    bool isAsked(char const* arg) {
        init();
        call(snSimul, arg);
        return said.err.find("Do you want to continue anyway ? (y/n)\n") != std::string::npos;
    }
};

TEST_F(QuestionTest, ComesUnlessMultiStandsWhereItMay) {
    EXPECT_TRUE(isAsked("1"));
    EXPECT_FALSE(isAsked("1 multi"));
    EXPECT_FALSE(isAsked("1 multi 2"));
    EXPECT_FALSE(isAsked("1 2 multi"));
    EXPECT_TRUE(isAsked("1 2"));
    EXPECT_TRUE(isAsked("1 x multi"));
    EXPECT_TRUE(isAsked("1 multiple"));
    EXPECT_TRUE(isAsked("1 2 x multi"));
}

TEST_F(QuestionTest, DoesNotComeWithoutSpontaneousTransitions) {
    guards_int = 0;
    EXPECT_FALSE(isAsked("1"));
    guards_int = 1;
}

TEST_F(HandlerTest, ARunEndsWithEverythingClosed) {
    init();
    int const before = memFr;
    call(snSimul, "1 multi");
    EXPECT_EQ(theRun().hybNT, nullptr);
    EXPECT_TRUE(theRun().tracked_trajs.empty());
    EXPECT_EQ(simu_multi, 0);
    for (std::FILE* stream : {dataIn, measIn, dataOut, modesOut})
        EXPECT_EQ(stream, nullptr);
    EXPECT_TRUE(theRun().engine.meas.empty());
    EXPECT_EQ(memFr - before, 8) << "eight bytes for the measures, and none for inputs";
    // x = 4 + [0.95, 1.05] * 0.8, xd = 0.05 * (20 - 4) + [0, 0.3]
    EXPECT_EQ(WorkDirectory::read(displayFile), "0.8 0.8 4 4 \n0.8 1.1 4.76 4.84 \n");
}

// ---- detect ----

TEST_F(HandlerTest, DetectWantsInit) {
    EXPECT_EQ(call(snDetect, "1 nofault 3"), 0);
    EXPECT_EQ(said.out, "entering detect\n");
    EXPECT_EQ(said.err, notInitialised);
}

TEST_F(HandlerTest, DetectWantsMeasuresAndVariables) {
    init();
    theRun().hybNT->rt->varsInitialised = 0;
    EXPECT_EQ(call(snDetect, "1 nofault 3"), 0);
    EXPECT_EQ(said.err, notInitialised);
    theRun().hybNT->rt->measure.clear();
    EXPECT_EQ(call(snDetect, "1 nofault 3"), 0);
    EXPECT_EQ(said.err, "No measure variable: detection impossible !\n");
}

TEST_F(HandlerTest, DetectRefusesAndTheRunGoesOn) {
    init();
    for (char const* arg : {static_cast<char const*>(nullptr), "x", "-1", "0", "1", "1 none 3",
                            "1 nofault", "1 nofault x", "1e999 nofault 3"}) {
        EXPECT_EQ(call(snDetect, arg), 0);
        EXPECT_EQ(said.out, "entering detect\n");
        EXPECT_NE(theRun().hybNT, nullptr);
        EXPECT_FALSE(std::filesystem::exists("cycbench.bmk"));
    }
}

TEST_F(HandlerTest, DetectLogsItsCycles) {
    init();
    EXPECT_EQ(call(snDetect, "1 nofault 3"), 1);
    EXPECT_EQ(said.err, "mode: 3\n-- time = 1 --------------------------\n");
    std::string const log = WorkDirectory::read("cycbench.bmk");
    EXPECT_EQ(log.rfind("1\t", 0), 0u) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1);
    EXPECT_GE(std::atof(log.c_str() + 2), 0.0);
    EXPECT_EQ(theRun().hybNT, nullptr);
    EXPECT_EQ(dataOut, nullptr);
}

TEST_F(HandlerTest, DetectTakesEveryLevelWithAndWithoutMerging) {
    for (char const* level : {"nofault", "fault1", "fault2", "fault3"})
        for (char const* merging : {"", " xnomergey"}) {
            init();
            EXPECT_EQ(call(snDetect, (std::string("1 ") + level + " 3" + merging).c_str()), 1);
            std::string const mode = *merging == '\0' ? "mode: 3\n" : "mode: 4\n";
            EXPECT_EQ(said.err, mode + "-- time = 1 --------------------------\n") << level;
        }
}

// 0.1 + 0.1 + 0.1 is more than 0.3: the third cycle falls out.
TEST_F(HandlerTest, TheLastCycleMayFallOutThroughRounding) {
    theRun().tavro_rt->Ts = 0.1;
    init();
    call(snSimul, "0.3 multi");
    EXPECT_EQ(said.err,
              "-- time = 0.1 --------------------------\n"
              "-- time = 0.2 --------------------------\n"
              "obs/day, line 2, column 1: last line: the values stay from time 0.2 on\n");
    std::string const display = WorkDirectory::read(displayFile);
    EXPECT_EQ(std::count(display.begin(), display.end(), '\n'), 3) << "time 0, and two cycles";
}

TEST_F(HandlerTest, DetectEndsTheProcessWithoutItsLog) {
    init();
    std::filesystem::create_directory("cycbench.bmk");
    EXPECT_EXIT(
        {
            // The start-up arranges for this: the candidates go before the model does.
            std::atexit([] { clearMultiTrajs(theRun()); });
            snDetect("1 nofault 3");
        },
        testing::ExitedWithCode(1), "mode: 3\nCan't write file cycbench.bmk: Is a directory\n$");
}

// ---- The other commands ----

TEST_F(HandlerTest, DiscWantsInit) {
    EXPECT_EQ(call(snDisc, nullptr), 1);
    EXPECT_EQ(said.err, "Should init first !\n");
}

TEST(System, AnswersWhetherTheCommandCouldBeRun) {
    EXPECT_EQ(snSystem("exit 3"), 1) << "a command that fails was run";
    EXPECT_EQ(snSystem(nullptr), 1);
}

// A process that ignores the end of its children cannot learn how they ended: `system` fails.
class NoChildren {
public:
    NoChildren() { before = std::signal(SIGCHLD, SIG_IGN); }
    ~NoChildren() { std::signal(SIGCHLD, before); }

private:
    void (*before)(int);
};

TEST(System, TellsACommandThatCouldNotBeRun) {
    NoChildren const none;
    Streams const said = streamsOf([] { EXPECT_EQ(snSystem("true"), 0); });
    EXPECT_EQ(said.err, "Shell command failed.\n");
}

TEST(Gnuplot, TellsWithoutALineEndWhenItCouldNotBeRun) {
    NoChildren const none;
    Streams const said = streamsOf([] { EXPECT_EQ(snGnup("x 2>/dev/null"), 1); });
    EXPECT_NE(said.err.find("Gnuplot failed"), std::string::npos);
    EXPECT_EQ(said.err.find("Gnuplot failed\n"), std::string::npos);
}

// ---- Start-up ----

TEST_F(HandlerTest, LocalInitGivesConditionsTheValuesOfTheirAtoms) {
    s_runtime* rt = theRun().tavro_rt;
    for (auto const& condition : rt->condi)
        condition->val = 7;
    clearNrt(theRun(), nullptr);
    bridgeActiveAtoms(thePlant(), rt);
    // The atoms that hold at the start: off, c10 and closed.
    std::pair<int, int> const expected[] = {{0, 1}, {1, 0},  {2, 0},  {3, 0},  {4, 0}, {6, 0},
                                            {9, 0}, {10, 1}, {11, 1}, {12, 0}, {13, 0}};
    for (auto const& [index, value] : expected)
        EXPECT_EQ(rt->condi[static_cast<std::size_t>(index)]->val, value) << index;
    for (int const unlinked : {5, 7, 8, 14, 15})
        EXPECT_EQ(rt->condi[static_cast<std::size_t>(unlinked)]->val, 7) << unlinked;
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

}  // namespace
