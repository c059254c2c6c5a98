// Searches from several starts: the runs, the choice of the best, the log and the statistics.
//
// Most tests use costs that are equal everywhere in one dimension, because such a search can be
// followed by hand: two points, the reflected one, the contracted one and one of the reduction make
// 5 evaluations, and the search ends where it started. A run is then the evaluation of its start, a
// search, an evaluation, a search and an evaluation: 13 calls, 10 of them in the searches.
#include <cmath>

#include "support/nelder_fixture.h"

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

constexpr int CALLS_OF_RUN = 13;

std::string const RULE =
    "+------------------------------------------+-------------------+-------------------+\n";
std::string const TITLE =
    "|      STATISTIQUES DE L'OPTIMISATION      |    Nombre  (%)    |  Moy. eval. cout  |\n";
std::string const OPTIMA_HEADER =
    "\n+------+  +-------------+  +-------------+  "
    "\n|  nb  |  |    cout     |  |      x1     |  "
    "\n+------+  +-------------+  +-------------+  \n";

std::string formatted(char const* format, double value) {
    char text[40];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

struct NelderMulti : NelderTest {
    // The log and the statistics are off unless a test asks for them.
    NelderMulti() { silent(); }

    static void silent(std::map<int, std::string> options = {}) {
        options.insert({{13, "0"}, {19, "0"}});
        writeOptions(options);
    }

    // The statistics, and nothing else.
    static void onlyStatistics(std::map<int, std::string> options = {}) {
        options.insert({{13, "0"}, {19, "1"}});
        writeOptions(options);
    }

    int search(int nbRuns, std::function<double(Point const&)> cost) {
        costAt = std::move(cost);
        int n = static_cast<int>(x.size()), status = 0;
        mopt_nelder(&nbRuns, recordedCost, &n, x.data(), lower.data(), upper.data(), nullptr,
                    nullptr, &status);
        return status;
    }

    std::string output(int nbRuns, std::function<double(Point const&)> cost) {
        CaptureStdout();
        search(nbRuns, std::move(cost));
        return GetCapturedStdout();
    }

    // The start of each run, when all costs of a run are equal.
    static double startOf(int run) { return visited[(run - 1) * CALLS_OF_RUN][0]; }

    Point x = {4.0};
    Point lower = {0.0};
    Point upper = {10.0};
};

double constant(Point const&) {
    return 2.0;
}

// Costs that fall from run to run: 5, 4, 3.
double falling(Point const&) {
    return 5.0 - static_cast<double>((visited.size() - 1) / CALLS_OF_RUN);
}

// Rows of the table up to the bar of the last column.
std::string table(std::vector<std::string> const& counts) {
    return RULE + TITLE + RULE + "|  optimum global & contraintes respectees |" + counts[0] +
           "|  optimum local & contraintes respectees  |" + counts[1] +
           "|  optimum local & contraintes violees     |" + counts[2] +
           "|  maximum d'evaluations du cout atteint   |" + counts[3] +
           "|  impossibilite physique                  |" + counts[4] + RULE +
           "|  total                                   |" + counts[5] + RULE;
}

std::string const NONE = "      0  (  0.0 %) |            0      |\n";
std::string const NONE_UNMEASURED = "      0  (  0.0 %) |      -------      |\n";

TEST_F(NelderMulti, TheFirstRunStartsAtXAndTheOthersAnywhereInTheBox) {
    int seed = -1;
    Optim_ran0(&seed);
    double const first = Optim_ran0(&seed), second = Optim_ran0(&seed);
    seed = -1;
    Optim_ran0(&seed);
    search(3, constant);
    ASSERT_EQ(visited.size(), 3u * CALLS_OF_RUN);
    EXPECT_EQ(startOf(1), 4.0);
    EXPECT_EQ(startOf(2), 10 * first);
    EXPECT_EQ(startOf(3), 10 * second);
}

TEST_F(NelderMulti, TheBestOfAllRunsIsKept) {
    EXPECT_EQ(search(3, falling), 5);
    EXPECT_EQ(x, Point{startOf(3)});
}

TEST_F(NelderMulti, ALaterRunOfEqualCostIsNotBetter) {
    EXPECT_EQ(search(3, constant), 5);
    EXPECT_EQ(x, Point{4.0});
}

// Two valleys, the deeper one at 8: the first run ends in the one at 2.
double twoValleys(Point const& z) {
    return z[0] < 5 ? (z[0] - 2) * (z[0] - 2) : (z[0] - 8) * (z[0] - 8) - 1;
}

TEST_F(NelderMulti, SeveralStartsLeaveALocalMinimum) {
    x = {1.0};
    EXPECT_GT(search(1, twoValleys), 0);
    EXPECT_NEAR(x[0], 2.0, 1e-2);
    EXPECT_GT(search(10, twoValleys), 0);
    EXPECT_NEAR(x[0], 8.0, 1e-2);
}

TEST_F(NelderMulti, ARestartFollowsEverySearch) {
    search(1, constant);
    ASSERT_EQ(visited.size(), static_cast<size_t>(CALLS_OF_RUN));
    EXPECT_EQ(visited[0], Point{4.0});   // the start
    EXPECT_EQ(visited[1], Point{4.0});   // first point of the first search
    EXPECT_EQ(visited[6], Point{4.0});   // its result
    EXPECT_EQ(visited[7], Point{4.0});   // first point of the second search
    EXPECT_EQ(visited[8], visited[2]);   // with a simplex as large as the first
    EXPECT_EQ(visited[12], Point{4.0});  // the result of the run
}

TEST_F(NelderMulti, ACostErrorAnywhereEndsItAndLeavesX) {
    for (failingCall = 1; failingCall <= 2 * CALLS_OF_RUN; ++failingCall) {
        visited.clear();
        EXPECT_EQ(search(2, falling), -99) << "call " << failingCall;
        EXPECT_EQ(visited.size(), static_cast<size_t>(failingCall));
        EXPECT_EQ(x, Point{4.0});
    }
}

TEST_F(NelderMulti, ADimensionBelowOneIsAnErrorThatEvaluatesNothing) {
    x.clear();
    EXPECT_EQ(search(3, constant), -99);
    EXPECT_TRUE(visited.empty());
}

TEST_F(NelderMulti, WithoutRunsThereIsNoResult) {
    EXPECT_EQ(search(0, constant), -1);
    EXPECT_EQ(search(-2, constant), -1);
    EXPECT_EQ(x, Point{4.0});
}

std::string const LIMIT_TEXT = "*** maximum d'evaluations de la fonction cout atteint ***\n\n";

// The text comes by puts, which adds a line end.
TEST_F(NelderMulti, LimitedRunsAreToldAndGiveNoResult) {
    silent({{42, "0"}, {44, "0"}});
    CaptureStdout();
    EXPECT_EQ(search(2, constant), -1);
    EXPECT_EQ(GetCapturedStdout(), LIMIT_TEXT + "\n" + LIMIT_TEXT + "\n");
    EXPECT_EQ(x, Point{4.0});
    EXPECT_EQ(visited.size(), 2u * 6);  // each run: its start, and one iteration
}

// The first search stops on equal costs; from then on they differ, and only the limit ends it.
TEST_F(NelderMulti, ALimitInTheSecondSearchAlsoEndsTheRun) {
    silent({{42, "1e-9"}, {44, "5"}});
    CaptureStdout();
    EXPECT_EQ(search(1, [](Point const& z) { return visited.size() <= 7 ? 2.0 : z[0]; }), -1);
    EXPECT_EQ(GetCapturedStdout(), LIMIT_TEXT + "\n");
    EXPECT_EQ(x, Point{4.0});
}

TEST_F(NelderMulti, TheLogTellsEveryRun) {
    writeOptions({{13, "1"}, {19, "0"}});
    x = {4.0, 5.0};
    lower = {0.0, 0.0};
    upper = {10.0, 10.0};
    std::string const point = "X_opt(1) =               4 \nX_opt(2) =               5 \n";
    std::string const cost = "Cout_opt =               2 \n\n";
    EXPECT_EQ(output(1, constant),
              "\n---> Optimisation no. 1: \n\n"
              "X_ini(1) =               4 \nX_ini(2) =               5 \n"
              "Cout_ini =               2 \n\n" +
                  point + cost + "Relance de l'optimisation: \n\n" + point + cost +
                  "\n---> Commande optimale: \n\n" + point + cost);
}

TEST_F(NelderMulti, TheLogNumbersTheRunsAndGoesToItsFile) {
    writeOptions({{13, "1"}, {14, "1"}, {15, "my.opt"}, {19, "0"}});
    EXPECT_EQ(output(2, falling), "");
    std::string const log = contentOf("my.opt");
    EXPECT_NE(log.find("\n---> Optimisation no. 2: \n\nX_ini(1) = "), std::string::npos) << log;
    EXPECT_TRUE(log.ends_with(
        "\n---> Commande optimale: \n\nX_opt(1) = " + formatted("%15.8g \n", startOf(2)) +
        "Cout_opt =               4 \n\n"))
        << log;
}

TEST_F(NelderMulti, TheLogTellsLimitedRunsOnce) {
    writeOptions({{13, "1"}, {19, "0"}, {42, "0"}, {44, "0"}});
    EXPECT_EQ(output(1, constant),
              "\n---> Optimisation no. 1: \n\n"
              "X_ini(1) =               4 \nCout_ini =               2 \n\n" +
                  LIMIT_TEXT);
}

TEST_F(NelderMulti, OutputsThatCannotBeOpenedAreToldAndStandardOutputTaken) {
    writeOptions({{13, "1"}, {14, "1"}, {15, "no/a"}, {19, "1"}, {20, "1"}, {21, "no/b"}});
    testing::internal::CaptureStderr();
    std::string const text = output(1, constant);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\n!!! ATTENTION: impossible d'ouvrir le fichier: no/a !!!\n"
              "\n!!! ATTENTION: impossible d'ouvrir le fichier: no/b !!!\n");
    EXPECT_NE(text.find("Commande optimale"), std::string::npos);
    EXPECT_NE(text.find(TITLE), std::string::npos);
}

TEST_F(NelderMulti, TheDefaultsLogAndCountOnStandardOutput) {
    std::filesystem::remove("nelder.dat");
    std::string const text = output(1, constant);
    EXPECT_TRUE(text.starts_with("\n---> Optimisation no. 1: \n\n"));
    EXPECT_NE(text.find(TITLE), std::string::npos);
}

// Run 1 is the best; the other two end elsewhere at the same cost.
TEST_F(NelderMulti, RunsThatEndElsewhereAreLocal) {
    onlyStatistics();
    std::string const text = output(3, constant);
    std::string expected =
        table({"      1  ( 33.3 %) |           10      |\n",
               "      2  ( 66.7 %) |           10      |\n", NONE, NONE_UNMEASURED, NONE_UNMEASURED,
               "      3  (100.0 %) |           10      |\n"}) +
        OPTIMA_HEADER;
    EXPECT_EQ(text.substr(0, expected.size()), expected);
}

// Each run is lower than those before, which so turn out to be local; optima in order of cost.
TEST_F(NelderMulti, ABetterOptimumElsewhereMakesTheEarlierOnesLocal) {
    onlyStatistics();
    std::string const text = output(3, falling);
    std::string expected =
        table({"      1  ( 33.3 %) |           10      |\n",
               "      2  ( 66.7 %) |           10      |\n", NONE, NONE_UNMEASURED, NONE_UNMEASURED,
               "      3  (100.0 %) |           10      |\n"}) +
        OPTIMA_HEADER;
    for (int run = 3; run >= 1; --run)
        expected += "      1  " + formatted("%15.8g  ", 6 - run) +
                    formatted("%15.8g  ", startOf(run)) + "\n";
    EXPECT_EQ(text, expected);
}

// In a box without extent all points count as one.
TEST_F(NelderMulti, RunsThatEndTogetherAreHitsOfOneOptimum) {
    onlyStatistics();
    lower = upper = {4.0};
    EXPECT_EQ(output(2, falling),
              table({"      2  (100.0 %) |           10      |\n", NONE, NONE, NONE_UNMEASURED,
                     NONE_UNMEASURED, "      2  (100.0 %) |           10      |\n"}) +
                  OPTIMA_HEADER + "      2                5                4  \n");
}

// The two results lie at 4 and at the first draw of the box.
TEST_F(NelderMulti, TogetherMeansWithinAHundredTolerances) {
    int seed = -1;
    Optim_ran0(&seed);
    double const tolerance = std::fabs(Optim_ran0(&seed) - 0.4) / 100;
    for (double const factor : {1.001, 0.999}) {
        onlyStatistics({{43, formatted("%.17g", factor * tolerance)}});
        visited.clear();
        x = {4.0};
        seed = -1;
        Optim_ran0(&seed);
        std::string const text = output(2, falling);
        EXPECT_EQ(text.find("      2  (100.0 %)") < text.find("optimum local"), factor > 1);
        EXPECT_EQ(text.ends_with("      2                5                4  \n"), factor > 1);
    }
}

TEST_F(NelderMulti, ViolatedConstraintsAreCountedApart) {
    onlyStatistics();
    reportedConstraint = -1;
    lower = upper = {4.0};
    EXPECT_EQ(output(1, constant),
              table({NONE, NONE, "      1  (100.0 %) |           10      |\n", NONE_UNMEASURED,
                     NONE_UNMEASURED, "      1  (100.0 %) |           10      |\n"}) +
                  OPTIMA_HEADER + "      1                2                4  \n");
}

TEST_F(NelderMulti, EnormousCostsAreImpossibleAndNoOptimum) {
    onlyStatistics();
    EXPECT_EQ(
        output(1, [](Point const&) { return 1.5e20; }),
        table({NONE, NONE, NONE, NONE_UNMEASURED, "      1  (100.0 %) |      -------      |\n",
               "      1  (100.0 %) |            0      |\n"}) +
            OPTIMA_HEADER);
    EXPECT_EQ(output(1, [](Point const&) { return 1e20; }).find("      1  (100.0 %) |      ---"),
              std::string::npos);
}

TEST_F(NelderMulti, LimitedRunsAreCounted) {
    onlyStatistics({{42, "0"}, {44, "0"}});
    EXPECT_EQ(output(1, constant),
              LIMIT_TEXT + "\n" +
                  table({NONE, NONE, NONE, "      1  (100.0 %) |      -------      |\n",
                         NONE_UNMEASURED, "      1  (100.0 %) |            0      |\n"}) +
                  OPTIMA_HEADER);
}

TEST_F(NelderMulti, WithoutRunsTheTableIsEmpty) {
    onlyStatistics();
    EXPECT_EQ(output(0, constant),
              table({NONE, NONE, NONE, NONE_UNMEASURED, NONE_UNMEASURED, NONE}) + OPTIMA_HEADER);
}

TEST_F(NelderMulti, TheStatisticsGoToTheirFile) {
    onlyStatistics({{20, "1"}, {21, "my.stat"}});
    EXPECT_EQ(output(1, constant), "");
    EXPECT_TRUE(contentOf("my.stat").starts_with(RULE + TITLE + RULE));
}

TEST_F(NelderMulti, TheUnderscoreNameIsTheSameFunction) {
    costAt = constant;
    int nbRuns = 1, n = 1, status = 0;
    mopt_nelder_(&nbRuns, recordedCost, &n, x.data(), lower.data(), upper.data(), nullptr, nullptr,
                 &status);
    EXPECT_EQ(status, 5);
    EXPECT_EQ(visited.size(), static_cast<size_t>(CALLS_OF_RUN));
}

}  // namespace
