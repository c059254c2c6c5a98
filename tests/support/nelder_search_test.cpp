// Whole searches through opt_nelder, with the options in a nelder.dat: minima that are known by
// hand, the account of evaluations, the ways to end, and input that makes no sense.
#include <cmath>
#include <limits>
#include <tuple>

#include "support/nelder_fixture.h"

namespace {

double const NOT_A_NUMBER = std::nan("");

struct NelderSearch : NelderTest {
    int search(std::function<double(Point const&)> cost) {
        costAt = std::move(cost);
        int n = static_cast<int>(x.size()), status = 0;
        opt_nelder(recordedCost, &n, x.data(), lower.data(), upper.data(), nullptr, nullptr,
                   &status);
        return status;
    }

    // The same start and bounds for all *n* coordinates.
    void startAt(int n, double start, double low, double high) {
        x = Point(n, start);
        lower = Point(n, low);
        upper = Point(n, high);
    }

    void expectNear(Point const& minimum, double tolerance) {
        for (size_t j = 0; j < x.size(); ++j)
            EXPECT_NEAR(x[j], minimum[j], tolerance) << "coordinate " << j;
    }

    void expectInBox(Point const& point) {
        for (size_t j = 0; j < point.size(); ++j) {
            EXPECT_GE(point[j], lower[j]);
            EXPECT_LE(point[j], upper[j]);
        }
    }

    Point x, lower, upper;
};

// Minimum 0 at (0.7, -0.6, -1.9, ...).
double bowl(Point const& x) {
    double sum = 0.0;
    for (size_t j = 0; j < x.size(); ++j) {
        double const step = x[j] - (0.7 - 1.3 * static_cast<double>(j));
        sum += static_cast<double>(j + 1) * step * step;
    }
    return sum;
}

double slope(Point const& x) {
    double sum = 0.0;
    for (size_t j = 0; j < x.size(); ++j)
        sum += static_cast<double>(j + 1) * x[j];
    return sum;
}

double rosenbrock(Point const& x) {
    double const bend = x[1] - x[0] * x[0], rest = 1 - x[0];
    return 100 * bend * bend + rest * rest;
}

double constant(Point const&) {
    return 3.0;
}

// The three kinds of options, in all combinations. Stop rule 2 ignores differences under 1, so its
// costs are scaled until such differences do not matter.
struct NelderKinds : NelderSearch, testing::WithParamInterface<std::tuple<int, int, int>> {
    int initialType = std::get<0>(GetParam());
    int pivotType = std::get<1>(GetParam());
    int stopType = std::get<2>(GetParam());
    double scale = stopType == 2 ? 1e9 : 1.0;

    void SetUp() override {
        writeOptions({{32, std::to_string(initialType)},
                      {33, "0.1"},
                      {37, std::to_string(pivotType)},
                      {41, std::to_string(stopType)},
                      {42, stopType == 1 ? "1e-12" : "1e-6"},
                      {43, "1e-8"},
                      {44, "1000"}});
    }

    int searchScaled(double (*cost)(Point const&)) {
        double const factor = scale;
        return search([=](Point const& point) { return factor * cost(point); });
    }
};

TEST_P(NelderKinds, FindTheBottomOfABowl) {
    startAt(2, 0.0, -10.0, 10.0);
    int const status = searchScaled(bowl);
    EXPECT_EQ(status, static_cast<int>(visited.size()));
    expectNear({0.7, -0.6}, 1e-3);
}

TEST_P(NelderKinds, FindTheCornerOfTheBox) {
    startAt(2, 5.0, 0.0, 10.0);
    int const status = searchScaled(slope);
    EXPECT_EQ(status, static_cast<int>(visited.size()));
    expectNear({0.0, 0.0}, 1e-3);
}

// Mirroring through the best point collapses in the bent valley, so that pivot only has to end
// somewhere that is no worse than its start.
TEST_P(NelderKinds, GoDownTheValleyOfRosenbrock) {
    startAt(2, 0.0, -2.0, 2.0);
    x = {-1.2, 1.0};
    int const status = searchScaled(rosenbrock);
    EXPECT_TRUE(status == -1 || status == static_cast<int>(visited.size()));
    EXPECT_LE(rosenbrock(x), 24.2);
    if (pivotType != 3) {
        EXPECT_GT(status, 0);
        expectNear({1.0, 1.0}, 1e-3);
    }
}

INSTANTIATE_TEST_SUITE_P(All, NelderKinds,
                         testing::Combine(testing::Range(1, 5), testing::Range(1, 4),
                                          testing::Range(1, 4)));

TEST_F(NelderSearch, FindsTheBottomOfBowlsOfSeveralDimensions) {
    writeOptions({{42, "1e-12"}});
    for (int n = 1; n <= 6; ++n) {
        startAt(n, 0.0, -10.0, 10.0);
        EXPECT_GT(search(bowl), 0);
        Point minimum;
        for (int j = 0; j < n; ++j)
            minimum.push_back(0.7 - 1.3 * j);
        expectNear(minimum, 1e-4);
    }
}

TEST_F(NelderSearch, FromACornerItStaysInTheBox) {
    writeOptions({{32, "2"}});
    startAt(2, 0.0, 0.0, 10.0);
    EXPECT_GT(search(slope), 0);
    for (Point const& point : visited)
        expectInBox(point);
    EXPECT_EQ(x, (Point{0.0, 0.0}));
}

TEST_F(NelderSearch, InOneDimensionItNeedsNoThirdPoint) {
    startAt(1, 8.0, 0.0, 10.0);
    int const status = search([](Point const& z) { return (z[0] - 2) * (z[0] - 2); });
    EXPECT_EQ(status, static_cast<int>(visited.size()));
    expectNear({2.0}, 1e-2);
    EXPECT_EQ(visited[0], Point{8.0});
    EXPECT_DOUBLE_EQ(visited[1][0], 8.0 + 10 * 0.1 * std::sqrt(2.0));
}

TEST_F(NelderSearch, TheUnderscoreNameIsTheSameFunction) {
    startAt(2, 0.0, -10.0, 10.0);
    int const status = search(bowl);
    Point const found = x;
    x = {0.0, 0.0};
    int n = 2, other = 0;
    opt_nelder_(recordedCost, &n, x.data(), lower.data(), upper.data(), nullptr, nullptr, &other);
    EXPECT_EQ(other, status);
    EXPECT_EQ(x, found);
}

double passedThrough(int* n, double*, double* lower, double* upper, double* p, int* q,
                     int* constraint, int* status) {
    *status = *constraint = 0;
    EXPECT_EQ(*n, 1);
    EXPECT_EQ(*lower, -5.0);
    EXPECT_EQ(*upper, 5.0);
    *q += 1;
    return *p;
}

TEST_F(NelderSearch, TheArgumentsOfTheCallerReachTheCost) {
    double point = 0.0, low = -5.0, high = 5.0, p = 2.5;
    int n = 1, q = 100, status = 0;
    opt_nelder(passedThrough, &n, &point, &low, &high, &p, &q, &status);
    EXPECT_EQ(q, 100 + status);
}

// Equal costs everywhere: the triangle, the reflected and the contracted point, and the two of the
// reduction; then the deviation of 0 is below the tolerance.
TEST_F(NelderSearch, EqualCostsStopAtTheFirstTest) {
    startAt(2, 4.0, 0.0, 10.0);
    EXPECT_EQ(search(constant), 7);
    EXPECT_EQ(x, (Point{4.0, 4.0}));
}

// Iterations of 4 evaluations after the first 3: 2 * 5 = 10 is passed at 11.
TEST_F(NelderSearch, EqualCostsAndNoToleranceRunIntoTheLimit) {
    writeOptions({{42, "0"}, {44, "5"}});
    startAt(2, 4.0, 0.0, 10.0);
    EXPECT_EQ(search(constant), -1);
    EXPECT_EQ(visited.size(), 11u);
}

TEST_F(NelderSearch, TheLimitItselfEndsTheSearch) {
    writeOptions({{42, "0"}, {44, "11"}});
    startAt(1, 4.0, 0.0, 10.0);
    // Two points, then 3 per iteration: 2, 5, 8, 11.
    EXPECT_EQ(search(constant), -1);
    EXPECT_EQ(visited.size(), 11u);
}

// 1000 * 2, reached in iterations of 4 after the first 3: 3 + 4 * 500 = 2003.
TEST_F(NelderSearch, TheDefaultLimitIsAThousandPerDimension) {
    writeOptions({{41, "0"}});
    startAt(2, 4.0, 0.0, 10.0);
    EXPECT_EQ(search(constant), -1);
    EXPECT_EQ(visited.size(), 2003u);
}

TEST_F(NelderSearch, AtTheLimitXHoldsTheBestPointFound) {
    writeOptions({{41, "0"}, {44, "10"}});
    startAt(2, 0.0, -10.0, 10.0);
    EXPECT_EQ(search(bowl), -1);
    double best = std::numeric_limits<double>::infinity();
    for (Point const& point : visited)
        best = std::min(best, bowl(point));
    EXPECT_EQ(bowl(x), best);
    EXPECT_LT(best, bowl({0.0, 0.0}));
}

// The point that the last iteration found stands in the worst place until the simplex is sorted.
TEST_F(NelderSearch, TheSimplexIsSortedBeforeTheResultIsTaken) {
    writeOptions({{32, "2"}, {33, "0.1"}, {41, "0"}, {44, "0"}});
    startAt(2, 4.0, 0.0, 10.0);
    EXPECT_EQ(search([](Point const& z) { return z[0] + 3 * z[1]; }), -1);
    EXPECT_EQ(x, (Point{5.5, 2.0}));  // the expanded point
}

TEST_F(NelderSearch, ACostErrorAtTheFirstPointLeavesX) {
    failingCall = 1;
    startAt(2, 4.0, 0.0, 10.0);
    EXPECT_EQ(search(bowl), -99);
    EXPECT_EQ(visited.size(), 1u);
    EXPECT_EQ(x, (Point{4.0, 4.0}));
}

TEST_F(NelderSearch, ACostErrorOnTheWayLeavesXAndSaysNothing) {
    failingCall = 30;
    startAt(2, 4.0, -10.0, 10.0);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(search(bowl), -99);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(x, (Point{4.0, 4.0}));
}

TEST_F(NelderSearch, ViolatedConstraintsDoNotStopASearch) {
    reportedConstraint = -1;
    startAt(2, 0.0, -10.0, 10.0);
    EXPECT_GT(search(bowl), 0);
}

TEST_F(NelderSearch, ADimensionBelowOneIsAnErrorThatEvaluatesNothing) {
    for (int n : {0, -1, -1000000}) {
        double point = 4.0;
        int status = 5;
        opt_nelder(recordedCost, &n, &point, nullptr, nullptr, nullptr, nullptr, &status);
        EXPECT_EQ(status, -99);
        EXPECT_EQ(point, 4.0);
    }
    EXPECT_TRUE(visited.empty());
}

TEST_F(NelderSearch, CostsThatAreNotNumbersRunIntoTheLimit) {
    for (int stop = 1; stop <= 2; ++stop) {
        writeOptions({{41, std::to_string(stop)}, {44, "50"}});
        startAt(2, 4.0, 0.0, 10.0);
        EXPECT_EQ(search([](Point const&) { return NOT_A_NUMBER; }), -1);
        EXPECT_EQ(x, (Point{4.0, 4.0}));
    }
}

TEST_F(NelderSearch, HolesInTheCostAreWalkedAround) {
    startAt(2, 4.0, -10.0, 10.0);
    EXPECT_GT(search([](Point const& z) { return z[0] < 0 ? NOT_A_NUMBER : bowl(z); }), 0);
    expectNear({0.7, -0.6}, 1e-2);
}

TEST_F(NelderSearch, NonsensicalOptionsEnd) {
    writeOptions({{25, "nan"},
                  {26, "inf"},
                  {27, "-1e308"},
                  {28, "0"},
                  {32, "-3"},
                  {33, "nan"},
                  {37, "99"},
                  {41, "-1"},
                  {44, "20"}});
    startAt(2, 4.0, 0.0, 10.0);
    EXPECT_EQ(search(bowl), -1);
    EXPECT_LE(visited.size(), 40u + 4u);
}

TEST_F(NelderSearch, ALimitBelowNothingEndsAfterOneIteration) {
    writeOptions({{41, "0"}, {44, "-1000"}});
    startAt(2, 4.0, 0.0, 10.0);
    EXPECT_EQ(search(constant), -1);
    EXPECT_EQ(visited.size(), 7u);
}

TEST_F(NelderSearch, AnEmptyOrInvertedBoxEnds) {
    startAt(2, 4.0, 4.0, 4.0);
    EXPECT_EQ(search(bowl), 7);  // all points are one, as with equal costs everywhere
    EXPECT_EQ(x, (Point{4.0, 4.0}));
    writeOptions({{44, "50"}});
    startAt(2, 4.0, 10.0, 0.0);
    visited.clear();
    search(bowl);
    EXPECT_LE(visited.size(), 100u + 4u);
}

// A limit that would not fit the counter is cut, and the search ends by its own rule.
TEST_F(NelderSearch, AnEnormousLimitDoesNotOverflow) {
    writeOptions({{44, "2147483647"}});
    startAt(2, 0.0, -10.0, 10.0);
    EXPECT_GT(search(bowl), 0);
}

}  // namespace
