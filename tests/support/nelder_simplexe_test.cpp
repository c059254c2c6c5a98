// The geometry of the simplex: first points, order, pivots, stop rules, and the check of the
// invariants. Nothing here evaluates a cost.
#include <cmath>
#include <limits>

#include "support/nelder_fixture.h"

namespace {

double const NOT_A_NUMBER = std::nan("");
double const INF = std::numeric_limits<double>::infinity();

Nelder_simplex simplexOf(std::vector<Nelder_point> const& points) {
    Nelder_simplex simplex(static_cast<int>(points.size()) - 1);
    simplex.point = points;
    return simplex;
}

// Points on a line, of which only the costs matter.
Nelder_simplex simplexOfCosts(std::vector<double> const& costs) {
    std::vector<Nelder_point> points;
    for (size_t i = 0; i < costs.size(); ++i)
        points.push_back({Point(costs.size() - 1, static_cast<double>(i)), costs[i]});
    return simplexOf(points);
}

struct NelderInitial : NelderTest {
    static constexpr double lower[] = {0.0, -100.0};
    static constexpr double upper[] = {10.0, 100.0};  // ranges 10 and 200
    static constexpr double x[] = {4.0, 50.0};

    static std::vector<Point> initial(int type, double size) {
        Nelder_simplex simplex(2);
        Nelder_initial(type, size, x, lower, upper, Optim_process_random(), simplex);
        std::vector<Point> points;
        for (Nelder_point const& point : simplex.point)
            points.push_back(point.x);
        EXPECT_EQ(points[0], (Point{4.0, 50.0}));
        return points;
    }
};

// p = (sqrt 3 - 1) / 2 * s = 0.0366025..., q = (sqrt 3 + 1) / 2 * s = 0.1366025... with s = 0.1.
TEST_F(NelderInitial, Type1IsRegularInUnitsOfTheRanges) {
    std::vector<Point> const points = initial(1, 0.1);
    EXPECT_NEAR(points[1][0], 4.0 + 10 * 0.13660254037844386, 1e-12);
    EXPECT_NEAR(points[1][1], 50.0 + 200 * 0.03660254037844386, 1e-12);
    EXPECT_NEAR(points[2][0], 4.0 + 10 * 0.03660254037844386, 1e-12);
    EXPECT_NEAR(points[2][1], 50.0 + 200 * 0.13660254037844386, 1e-12);
    double const ranges[] = {10.0, 200.0};
    double const edge = std::sqrt(2.0) * 0.1;
    EXPECT_NEAR(Optim_longvec_norm(2, points[0].data(), points[1].data(), ranges), edge, 1e-12);
    EXPECT_NEAR(Optim_longvec_norm(2, points[0].data(), points[2].data(), ranges), edge, 1e-12);
    EXPECT_NEAR(Optim_longvec_norm(2, points[1].data(), points[2].data(), ranges), edge, 1e-12);
}

TEST_F(NelderInitial, Type1InOneDimensionStepsByTheRootOfTwo) {
    Nelder_simplex simplex(1);
    Nelder_initial(1, 0.1, x, lower, upper, Optim_process_random(), simplex);
    ASSERT_EQ(simplex.point.size(), 2u);
    EXPECT_DOUBLE_EQ(simplex.point[1].x[0], 4.0 + 10 * 0.1 * std::sqrt(2.0));
}

TEST_F(NelderInitial, Type2StepsAlongTheAxes) {
    std::vector<Point> const points = initial(2, 0.25);
    EXPECT_EQ(points[1], (Point{6.5, 50.0}));
    EXPECT_EQ(points[2], (Point{4.0, 100.0}));
}

TEST_F(NelderInitial, ThePointsAreNotClippedToTheBox) {
    EXPECT_EQ(initial(2, 1.0)[1], (Point{14.0, 50.0}));
}

// The draws go point by point and, within one, coordinate by coordinate.
TEST_F(NelderInitial, Type3DrawsInTheBox) {
    int seed = -9;
    std::vector<double> draws;
    for (int i = 0; i < 5; ++i)
        draws.push_back(Optim_ran0(&seed));
    seed = -9;
    Optim_ran0(&seed);  // the generator goes on from here: it is not seeded anew
    std::vector<Point> const points = initial(3, 0.1);
    EXPECT_EQ(points[1], (Point{0.0 + 10 * draws[1], -100.0 + 200 * draws[2]}));
    EXPECT_EQ(points[2], (Point{0.0 + 10 * draws[3], -100.0 + 200 * draws[4]}));
}

TEST_F(NelderInitial, Type4DrawsAroundTheStart) {
    int seed = -9;
    std::vector<double> draws;
    for (int i = 0; i < 5; ++i)
        draws.push_back(Optim_ran0(&seed));
    seed = -9;
    Optim_ran0(&seed);
    std::vector<Point> const points = initial(4, 0.1);
    EXPECT_DOUBLE_EQ(points[1][0], 4.0 + (draws[1] - 0.5) * 1.0);
    EXPECT_DOUBLE_EQ(points[1][1], 50.0 + (draws[2] - 0.5) * 20.0);
    EXPECT_DOUBLE_EQ(points[2][0], 4.0 + (draws[3] - 0.5) * 1.0);
    EXPECT_DOUBLE_EQ(points[2][1], 50.0 + (draws[4] - 0.5) * 20.0);
}

TEST_F(NelderInitial, AnUnknownTypeIsRegular) {
    EXPECT_EQ(initial(0, 0.1), initial(1, 0.1));
    EXPECT_EQ(initial(17, 0.1), initial(1, 0.1));
}

std::vector<double> sortedMarks(std::vector<double> const& costs) {
    Nelder_simplex simplex = simplexOfCosts(costs);
    Nelder_tri_simplexe(simplex);
    std::vector<double> marks;
    for (Nelder_point const& point : simplex.point)
        marks.push_back(point.x[0]);
    return marks;
}

TEST(NelderTri, SortsByIncreasingCost) {
    EXPECT_EQ(sortedMarks({3.0, 1.0, 4.0, 2.0}), (Point{1.0, 3.0, 0.0, 2.0}));
}

TEST(NelderTri, PointsOfEqualCostKeepTheirOrder) {
    EXPECT_EQ(sortedMarks({2.0, 1.0, 2.0, 1.0, 2.0}), (Point{1.0, 3.0, 0.0, 2.0, 4.0}));
}

TEST(NelderTri, SwapsPointsWithoutCopyingThem) {
    Nelder_simplex simplex = simplexOfCosts({2.0, 1.0});
    double const* const coordinates = simplex.point[0].x.data();
    Nelder_tri_simplexe(simplex);
    EXPECT_EQ(simplex.point[1].x.data(), coordinates);
}

TEST(NelderTri, CostsThatAreNotNumbersStayWhereTheyAre) {
    EXPECT_EQ(sortedMarks({NOT_A_NUMBER, 2.0, 1.0}), (Point{0.0, 2.0, 1.0}));
    EXPECT_EQ(sortedMarks({2.0, NOT_A_NUMBER, 1.0}), (Point{0.0, 1.0, 2.0}));
}

TEST(NelderVerifie, AcceptsASortedSimplexOnly) {
    EXPECT_EQ(Nelder_verifie_simplexe(simplexOfCosts({1.0, 1.0, 2.0})), 1);
    EXPECT_EQ(Nelder_verifie_simplexe(simplexOfCosts({1.0, 3.0, 2.0})), 0);
    EXPECT_EQ(Nelder_verifie_simplexe(simplexOfCosts({1.0, NOT_A_NUMBER, 0.0})), 1);
}

TEST(NelderVerifie, RefusesAWrongNumberOfPointsOrCoordinates) {
    Nelder_simplex lostPoint = simplexOfCosts({1.0, 2.0, 3.0});
    lostPoint.point.pop_back();
    EXPECT_EQ(Nelder_verifie_simplexe(lostPoint), 0);
    Nelder_simplex lostCoordinate = simplexOfCosts({1.0, 2.0, 3.0});
    lostCoordinate.point[1].x.pop_back();
    EXPECT_EQ(Nelder_verifie_simplexe(lostCoordinate), 0);
    EXPECT_EQ(Nelder_verifie_simplexe(Nelder_simplex(0)), 0);
}

Point pivotOf(int type, std::vector<Nelder_point> const& points) {
    Nelder_simplex const simplex = simplexOf(points);
    Point pivot(simplex.n, -77.0);
    Nelder_pivot(type, simplex, pivot.data());
    return pivot;
}

std::vector<Nelder_point> const TRIANGLE = {
    {{1.0, 2.0}, 0.0}, {{5.0, 4.0}, 2.0}, {{9.0, 9.0}, 3.0}};

TEST(NelderPivot, Type1IsTheMeanOfAllButTheWorst) {
    EXPECT_EQ(pivotOf(1, TRIANGLE), (Point{3.0, 3.0}));
}

// Weights 3 - 0 = 3 and 3 - 2 = 1: (3 * 1 + 5) / 4 and (3 * 2 + 4) / 4.
TEST(NelderPivot, Type2WeighsByTheDistanceFromTheWorstCost) {
    EXPECT_EQ(pivotOf(2, TRIANGLE), (Point{2.0, 2.5}));
}

TEST(NelderPivot, Type2WithoutWeightsIsThePlainMean) {
    for (double const cost : {7.0, INF, NOT_A_NUMBER})
        EXPECT_EQ(pivotOf(2, {{{1.0, 2.0}, cost}, {{5.0, 4.0}, cost}, {{9.0, 9.0}, cost}}),
                  (Point{3.0, 3.0}));
    EXPECT_EQ(pivotOf(2, {{{1.0, 2.0}, 0.0}, {{5.0, 4.0}, 2.0}, {{9.0, 9.0}, INF}}),
              (Point{3.0, 3.0}));
}

TEST(NelderPivot, Type3IsTheBestPoint) {
    EXPECT_EQ(pivotOf(3, TRIANGLE), (Point{1.0, 2.0}));
}

TEST(NelderPivot, AnUnknownTypeIsThePlainMean) {
    EXPECT_EQ(pivotOf(0, TRIANGLE), (Point{3.0, 3.0}));
    EXPECT_EQ(pivotOf(4, TRIANGLE), (Point{3.0, 3.0}));
}

int stopsByCosts(int type, double tolCost, std::vector<double> const& costs) {
    Nelder_simplex simplex = simplexOfCosts(costs);
    Point const range(simplex.n, 1.0);
    return Nelder_critere_arret(type, tolCost, 0.0, range.data(), simplex);
}

// Costs 1 and 5: mean 3, deviation sqrt((4 + 4) / 2) = 2. Dividing by n would give 2.83.
TEST(NelderCritereArret, Type1IsStrictlyBelowTheDeviationOverAllPoints) {
    EXPECT_EQ(stopsByCosts(1, 2.1, {1.0, 5.0}), 1);
    EXPECT_EQ(stopsByCosts(1, 2.0, {1.0, 5.0}), 0);
    EXPECT_EQ(stopsByCosts(1, 1.9, {1.0, 5.0}), 0);
}

TEST(NelderCritereArret, Type1WithEqualCostsStopsUnlessTheToleranceIsZero) {
    EXPECT_EQ(stopsByCosts(1, 1e-300, {3.0, 3.0, 3.0}), 1);
    EXPECT_EQ(stopsByCosts(1, 0.0, {3.0, 3.0, 3.0}), 0);
}

// Differences from the mean of 0.95 are truncated to 0, those of 1 to 1, those of 1.5 to 1.
TEST(NelderCritereArret, Type2TruncatesTheDifferences) {
    EXPECT_EQ(stopsByCosts(2, 0.0, {0.0, 1.9}), 1);
    EXPECT_EQ(stopsByCosts(2, 0.5, {0.0, 2.0}), 0);
    EXPECT_EQ(stopsByCosts(2, 1.0, {0.0, 2.0}), 1);
    EXPECT_EQ(stopsByCosts(2, 1.0, {0.0, 3.0}), 1);
    EXPECT_EQ(stopsByCosts(2, 1.9, {0.0, 4.0}), 0);
}

// Mean 1: the differences are -1 and -1 and 2, of which only the last is too large.
TEST(NelderCritereArret, Type2LooksAtEveryPoint) {
    EXPECT_EQ(stopsByCosts(2, 1.0, {0.0, 0.0, 3.0}), 0);
    EXPECT_EQ(stopsByCosts(2, 2.0, {0.0, 0.0, 3.0}), 1);
}

TEST(NelderCritereArret, DifferencesBeyondTheWholeNumbersDoNotStop) {
    EXPECT_EQ(stopsByCosts(2, 1e-6, {-1e30, 1e30}), 0);
}

TEST(NelderCritereArret, CostsThatAreNotNumbersDoNotStop) {
    for (int const type : {1, 2}) {
        EXPECT_EQ(stopsByCosts(type, 1e9, {NOT_A_NUMBER, 1.0}), 0);
        EXPECT_EQ(stopsByCosts(type, 1e9, {INF, 1.0}), 0);
    }
}

// The centre of (0,0), (3,0), (0,6) is (1,2). With ranges 1 and 2 the distances from it are
// sqrt(1 + 1), sqrt(4 + 1) and sqrt(1 + 4): the largest is sqrt 5 = 2.236.
TEST(NelderCritereArret, Type3ScalesTheDistancesFromTheCentre) {
    Nelder_simplex simplex = simplexOf({{{0.0, 0.0}, 0.0}, {{3.0, 0.0}, 50.0}, {{0.0, 6.0}, 90.0}});
    double const range[] = {1.0, 2.0};
    EXPECT_EQ(Nelder_critere_arret(3, 0.0, std::sqrt(5.0), range, simplex), 1);
    EXPECT_EQ(Nelder_critere_arret(3, 0.0, 2.236, range, simplex), 0);
    EXPECT_EQ(Nelder_critere_arret(3, 1e9, 1.5, range, simplex), 0);
}

TEST(NelderCritereArret, AnUnknownTypeNeverStops) {
    EXPECT_EQ(stopsByCosts(0, 1e9, {1.0, 1.0}), 0);
    EXPECT_EQ(stopsByCosts(4, 1e9, {1.0, 1.0}), 0);
}

}  // namespace
