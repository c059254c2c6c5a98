// The trace of a search, byte for byte. The search is the one of nelder_step_test.cpp that expands:
// one iteration from the triangle (4,4), (5,4), (4,5) with costs 16, 17, 19.
#include "support/nelder_fixture.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

std::string const HEADER =
    "============  ============  ============ \n"
    "     x1            x2           cout \n"
    "============  ============  ============ \n\n";

std::string const TRIANGLE =
    "           4             5            19 \n"
    "           5             4            17 \n"
    "           4             4            16 \n\n";

std::string const AFTER_EXPANSION =
    "           5             4            17 \n"
    "           4             4            16 \n"
    "         5.5             2          11.5 \n\n";

std::string const ACCOUNT =
    "Nombre d'iterations du simplexe:        1\n"
    "Nombre d'evaluations du cout:           5\n\n";

std::string const EXPANSION = HEADER + TRIANGLE + "---> expansion \n" + AFTER_EXPANSION +
                              "Etat des calculs: NOMBRE MAXIMUM D'EVALUATIONS DU COUT ATTEINT\n" +
                              ACCOUNT;

struct NelderTrace : NelderTest {
    static std::map<int, std::string> oneIteration() {
        return {{7, "1"}, {32, "2"}, {33, "0.1"}, {41, "0"}, {44, "0"}};
    }

    int search(std::function<double(Point const&)> cost) {
        costAt = std::move(cost);
        double x[] = {4.0, 4.0}, lower[] = {0.0, 0.0}, upper[] = {10.0, 10.0};
        int n = 2, status = 0;
        opt_nelder(recordedCost, &n, x, lower, upper, nullptr, nullptr, &status);
        return status;
    }

    // What a search writes to standard output.
    std::string traced(std::function<double(Point const&)> cost) {
        CaptureStdout();
        search(std::move(cost));
        return GetCapturedStdout();
    }

    // The lines that name the moves.
    static std::string movesOf(std::string const& trace) {
        std::istringstream lines(trace);
        std::string moves;
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with("---> "))
                moves += line + "\n";
        return moves;
    }
};

double sloped(Point const& z) {
    return z[0] + 3 * z[1];
}

TEST_F(NelderTrace, GoesToStandardOutput) {
    writeOptions(oneIteration());
    EXPECT_EQ(traced(sloped), EXPANSION);
}

TEST_F(NelderTrace, GoesToItsFileAndReplacesWhatStoodThere) {
    auto options = oneIteration();
    options[8] = "1";
    options[9] = "my.out";
    writeOptions(options);
    std::ofstream("my.out") << std::string(5000, 'z');
    EXPECT_EQ(traced(sloped), "");
    EXPECT_EQ(contentOf("my.out"), EXPANSION);
}

TEST_F(NelderTrace, TheFileHasADefaultName) {
    auto options = oneIteration();
    options[8] = "1";
    options[9] = "";
    writeOptions(options);
    EXPECT_EQ(traced(sloped), "");
    EXPECT_EQ(contentOf("nelder.out"), EXPANSION);
}

TEST_F(NelderTrace, AFileThatCannotBeOpenedIsToldAndStandardOutputTaken) {
    auto options = oneIteration();
    options[8] = "1";
    options[9] = "absent/my.out";
    writeOptions(options);
    CaptureStderr();
    EXPECT_EQ(traced(sloped), EXPANSION);
    EXPECT_EQ(GetCapturedStderr(),
              "\n!!! ATTENTION: impossible d'ouvrir le fichier: absent/my.out !!!\n");
}

TEST_F(NelderTrace, NothingIsWrittenOrOpenedWithoutTrace) {
    auto options = oneIteration();
    options[7] = "0";
    options[8] = "1";
    writeOptions(options);
    EXPECT_EQ(traced(sloped), "");
    EXPECT_FALSE(std::filesystem::exists("nelder.out"));
}

TEST_F(NelderTrace, TheMovesAreNamed) {
    writeOptions(oneIteration());
    auto const bowlAt = [](double x, double y) {
        return [=](Point const& z) { return (z[0] - x) * (z[0] - x) + (z[1] - y) * (z[1] - y); };
    };
    EXPECT_EQ(movesOf(traced(bowlAt(5.0, 3.0))), "---> reflexion \n");
    EXPECT_EQ(movesOf(traced(bowlAt(4.5, 4.0))), "---> contraction \n");
    EXPECT_EQ(movesOf(traced(bowlAt(4.5, 3.9))), "---> reflexion \n---> contraction \n");
    EXPECT_EQ(movesOf(traced([](Point const&) { return 1.0; })), "---> reduction \n");
}

// Worst and best cost 1, everything else between them: a reflexion that needs no other step.
TEST_F(NelderTrace, AMiddlingReflexionIsNamedOnce) {
    writeOptions(oneIteration());
    auto const middling = [](Point const& z) {
        return z[1] == 5 ? 3.0 : z[0] == 5 && z[1] == 4 ? 2.0 : 1.0;
    };
    EXPECT_EQ(movesOf(traced(middling)), "---> reflexion \n");
}

TEST_F(NelderTrace, AMinimumIsToldWithItsAccount) {
    auto options = oneIteration();
    options[41] = "1";
    writeOptions(options);
    std::string const trace = traced([](Point const&) { return 2.0; });
    EXPECT_TRUE(
        trace.ends_with("Etat des calculs: MINIMUM ATTEINT\n"
                        "Nombre d'iterations du simplexe:        1\n"
                        "Nombre d'evaluations du cout:           7\n\n"))
        << trace;
}

TEST_F(NelderTrace, ACostErrorInTheFirstSimplexWritesNothing) {
    writeOptions(oneIteration());
    failingCall = 2;
    EXPECT_EQ(traced(sloped), "");
}

TEST_F(NelderTrace, ACostErrorLaterEndsTheTraceWhereItIs) {
    writeOptions(oneIteration());
    failingCall = 4;
    EXPECT_EQ(traced(sloped), HEADER + TRIANGLE);
}

TEST_F(NelderTrace, TheTraceFileIsClosedAfterACostError) {
    auto options = oneIteration();
    options[8] = "1";
    options[9] = "my.out";
    writeOptions(options);
    failingCall = 4;
    EXPECT_EQ(search(sloped), -99);
    EXPECT_EQ(contentOf("my.out"), HEADER + TRIANGLE);
}

std::string finalFor(int state) {
    std::ostringstream trace;
    Nelder_trace_final(trace, state, 12, 345);
    return trace.str();
}

TEST(NelderTraceFinal, NamesEveryState) {
    std::string const account =
        "Nombre d'iterations du simplexe:       12\n"
        "Nombre d'evaluations du cout:         345\n\n";
    EXPECT_EQ(finalFor(0), "Etat des calculs: MINIMUM ATTEINT\n" + account);
    EXPECT_EQ(finalFor(-1),
              "Etat des calculs: NOMBRE MAXIMUM D'EVALUATIONS DU COUT ATTEINT\n" + account);
    EXPECT_EQ(finalFor(-99), "Etat des calculs: ERREUR DANS LE CALCUL DU COUT\n" + account);
    EXPECT_EQ(finalFor(3), "Etat des calculs: CAS INCONNU\n" + account);
}

TEST(NelderTraceInitial, WideNumbersKeepTheColumns) {
    std::ostringstream trace;
    Nelder_trace_initial(trace, 12);
    std::string const header = trace.str();
    EXPECT_NE(header.find("     x9            x10           x11           x12          cout \n"),
              std::string::npos)
        << header;
}

TEST(NelderTracePoints, RoundsToSixDigits) {
    Nelder_simplex simplex(1);
    simplex.point[0] = {{1.0 / 3.0}, -1234567.0};
    simplex.point[1] = {{-2e-10}, 0.0};
    std::ostringstream trace;
    Nelder_trace(trace, simplex);
    EXPECT_EQ(trace.str(),
              "      -2e-10             0 \n"
              "    0.333333  -1.23457e+06 \n\n");
}

}  // namespace
