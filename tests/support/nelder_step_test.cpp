// One iteration of the search at a time, worked out by hand.
//
// All searches here start from the triangle (4,4), (5,4), (4,5): an axial first simplex of size 0.1
// in the box from (0,0) to (10,10), stopped after one iteration by a limit of 0. When (4,5) is the
// worst point, the pivot is (4.5, 4), the reflected point (5, 3), the expanded one (5.5, 2), and
// the contracted one (4.25, 4.5) on the side of the worst, (4.75, 3.5) on that of the reflected
// point.
#include "support/nelder_fixture.h"

namespace {

typedef std::vector<Point> Points;
Points const TRIANGLE = {{4.0, 4.0}, {5.0, 4.0}, {4.0, 5.0}};

struct NelderStep : NelderTest {
    NelderStep() {
        options.initialType = 2;
        options.stopType = 0;
        options.maxEvalFactor = 0;
    }

    int search(std::function<double(Point const&)> cost) {
        costAt = std::move(cost);
        int n = 2, status = 0;
        Nelder_optimisation(&options, recordedCost, &n, x.data(), lower.data(), upper.data(),
                            nullptr, nullptr, &status);
        return status;
    }

    // The points that were evaluated after the first triangle.
    static Points steps() {
        if (visited.size() < 3 || Points(visited.begin(), visited.begin() + 3) != TRIANGLE) {
            ADD_FAILURE() << "the search does not start with the triangle";
            return {};
        }
        return Points(visited.begin() + 3, visited.end());
    }

    // A cost that is listed for the points of the triangle, and the same everywhere else.
    static std::function<double(Point const&)> listed(double a, double b, double c, double other) {
        return [=](Point const& point) {
            return point == TRIANGLE[0]   ? a
                   : point == TRIANGLE[1] ? b
                   : point == TRIANGLE[2] ? c
                                          : other;
        };
    }

    Nelder_options options = defaultOptions();
    Point x = {4.0, 4.0};
    Point lower = {0.0, 0.0};
    Point upper = {10.0, 10.0};
};

// Costs 2, 1, 5; reflected 0, which is a new best; expanded 0.25 + 1, which is not better.
TEST_F(NelderStep, ReflexionToANewBestWhoseExpansionFails) {
    EXPECT_EQ(
        search([](Point const& z) { return (z[0] - 5) * (z[0] - 5) + (z[1] - 3) * (z[1] - 3); }),
        -1);
    EXPECT_EQ(steps(), (Points{{5.0, 3.0}, {5.5, 2.0}}));
    EXPECT_EQ(x, (Point{5.0, 3.0}));
}

// Costs 16, 17, 19; reflected 14, expanded 11.5.
TEST_F(NelderStep, ExpansionWhenItBeatsTheReflexion) {
    EXPECT_EQ(search([](Point const& z) { return z[0] + 3 * z[1]; }), -1);
    EXPECT_EQ(steps(), (Points{{5.0, 3.0}, {5.5, 2.0}}));
    EXPECT_EQ(x, (Point{5.5, 2.0}));
}

// The expanded point is better than the best one, but not better than the reflected one.
TEST_F(NelderStep, AnExpansionAsGoodAsTheReflexionIsNotTaken) {
    search(listed(1.0, 2.0, 3.0, 0.0));
    EXPECT_EQ(steps(), (Points{{5.0, 3.0}, {5.5, 2.0}}));
    EXPECT_EQ(x, (Point{5.0, 3.0}));
}

// Reflected: as good as the best and better than the second worst.
TEST_F(NelderStep, ReflexionBetweenBestAndSecondWorstNeedsNoOtherStep) {
    search(listed(1.0, 2.0, 3.0, 1.0));
    EXPECT_EQ(steps(), (Points{{5.0, 3.0}}));
    EXPECT_EQ(x, (Point{4.0, 4.0}));
}

// Costs 0.25, 0.25, 1.25; reflected 1.25, contracted 0.0625 + 0.25.
TEST_F(NelderStep, ContractionTowardsTheWorst) {
    search([](Point const& z) { return (z[0] - 4.5) * (z[0] - 4.5) + (z[1] - 4) * (z[1] - 4); });
    EXPECT_EQ(steps(), (Points{{5.0, 3.0}, {4.25, 4.5}}));
    EXPECT_EQ(x, (Point{4.0, 4.0}));
}

// Costs 0.26, 0.26, 1.46; reflected 1.06, which replaces the worst; contracted 0.0625 + 0.16.
TEST_F(NelderStep, ContractionTowardsAReflectedPointThatIsBetterThanTheWorst) {
    search(
        [](Point const& z) { return (z[0] - 4.5) * (z[0] - 4.5) + (z[1] - 3.9) * (z[1] - 3.9); });
    EXPECT_EQ(steps(), (Points{{5.0, 3.0}, {4.75, 3.5}}));
    EXPECT_EQ(x, (Point{4.75, 3.5}));
}

// Reflected: as good as the second worst, which is not good enough for a plain reflexion.
TEST_F(NelderStep, AReflexionAsGoodAsTheSecondWorstIsContracted) {
    search(listed(1.0, 2.0, 3.0, 2.0));
    Points const expected = {{5.0, 3.0}, {4.75, 3.5}, {4.5, 4.0}, {4.5, 3.5}};
    EXPECT_EQ(steps(), expected);
}

// The other two points move half of the way to (4,4).
TEST_F(NelderStep, ReductionWhenAllElseFails) {
    EXPECT_EQ(search(listed(1.0, 2.0, 3.0, 4.0)), -1);
    EXPECT_EQ(steps(), (Points{{5.0, 3.0}, {4.25, 4.5}, {4.5, 4.0}, {4.0, 4.5}}));
    EXPECT_EQ(x, (Point{4.0, 4.0}));
}

TEST_F(NelderStep, AContractionAsGoodAsTheWorstIsReduced) {
    search(listed(1.0, 2.0, 3.0, 3.0));
    EXPECT_EQ(steps(), (Points{{5.0, 3.0}, {4.25, 4.5}, {4.5, 4.0}, {4.0, 4.5}}));
}

// 1.5c - 0.5w = (4.75, 3.5); then -2c + 3r = (5.25, 2.5).
TEST_F(NelderStep, TheCoefficientsOfReflexionAndExpansionCount) {
    options.reflexion = 0.5;
    options.expansion = 3.0;
    search([](Point const& z) { return z[0] + 3 * z[1]; });
    EXPECT_EQ(steps(), (Points{{4.75, 3.5}, {5.25, 2.5}}));
}

// 0.75c + 0.25w = (4.375, 4.25); then a quarter of the way remains from (4,4).
TEST_F(NelderStep, TheCoefficientsOfContractionAndReductionCount) {
    options.contraction = 0.25;
    options.reduction = 4.0;
    search(listed(1.0, 2.0, 3.0, 4.0));
    EXPECT_EQ(steps(), (Points{{5.0, 3.0}, {4.375, 4.25}, {4.25, 4.0}, {4.0, 4.25}}));
}

// With the best point as pivot: 2 * (4,4) - (4,5) and, twice as far, (4,2).
TEST_F(NelderStep, ThePivotTypeCounts) {
    options.pivotType = 3;
    search([](Point const& z) { return z[0] + 3 * z[1]; });
    EXPECT_EQ(steps(), (Points{{4.0, 3.0}, {4.0, 2.0}}));
}

// The reflected point (5,3) and the expanded one (5.5,2) both lie outside.
TEST_F(NelderStep, StepsAreClippedAtBothBounds) {
    lower = {0.0, 3.5};
    upper = {10.0, 13.5};
    search([](Point const& z) { return z[0] + 3 * z[1]; });
    // From the clipped (5, 3.5) the expansion goes to -(4.5, 4) + 2 * (5, 3.5) = (5.5, 3).
    EXPECT_EQ(steps(), (Points{{5.0, 3.5}, {5.5, 3.5}}));
    visited.clear();
    lower = {-5.25, 0.0};
    upper = {4.75, 10.0};
    x = {4.0, 4.0};
    search([](Point const& z) { return z[0] + 3 * z[1]; });
    EXPECT_EQ(steps(), (Points{{4.75, 3.0}, {4.75, 2.0}}));
}

// Lower bound 4.375 on y: neither the contracted point (4.75, 3.5), built on the clipped reflected
// one (5, 4.375), nor that one itself may go below it: (c + r) / 2 = (4.75, 4.1875).
TEST_F(NelderStep, TheContractedPointIsClippedToo) {
    lower = {0.0, 4.375};
    upper = {10.0, 14.375};
    search(listed(1.0, 2.0, 3.0, 2.5));
    ASSERT_GE(steps().size(), 2u);
    EXPECT_EQ(steps()[0], (Point{5.0, 4.375}));
    EXPECT_EQ(steps()[1], (Point{4.75, 4.375}));
}

// The first simplex lies outside, and the reduction stays there: (4,4), (4.5,4), (4,4.5).
TEST_F(NelderStep, TheReductionIsNotClipped) {
    lower = {6.0, 6.0};
    upper = {16.0, 16.0};
    search(listed(1.0, 2.0, 3.0, 4.0));
    ASSERT_EQ(steps().size(), 4u);
    EXPECT_EQ(steps()[2], (Point{4.5, 4.0}));
    EXPECT_EQ(steps()[3], (Point{4.0, 4.5}));
}

// Each of the calls of an iteration with reduction fails in turn: three points of the triangle, the
// reflected one, the contracted one, the two of the reduction.
TEST_F(NelderStep, ACostErrorAnywhereEndsTheSearchAndLeavesX) {
    for (failingCall = 1; failingCall <= 7; ++failingCall) {
        visited.clear();
        EXPECT_EQ(search(listed(1.0, 2.0, 3.0, 4.0)), -99) << "call " << failingCall;
        EXPECT_EQ(visited.size(), static_cast<size_t>(failingCall));
        EXPECT_EQ(x, (Point{4.0, 4.0}));
    }
    visited.clear();
    EXPECT_EQ(search(listed(1.0, 2.0, 3.0, 4.0)), -1);
}

TEST_F(NelderStep, ACostErrorInTheExpansionLeavesXAlthoughABetterPointIsKnown) {
    failingCall = 5;
    EXPECT_EQ(search([](Point const& z) { return z[0] + 3 * z[1]; }), -99);
    EXPECT_EQ(x, (Point{4.0, 4.0}));
}

// The steps by themselves: each fills its own work point and leaves the simplex alone.
TEST_F(NelderStep, TheStepFunctionsFillTheirWorkPoint) {
    costAt = [](Point const& z) { return z[0] + 3 * z[1]; };
    Nelder_search search(options, {recordedCost, 2, lower.data(), upper.data(), nullptr, nullptr},
                         Optim_process_random(), nullptr);
    for (int i = 0; i < 3; ++i)
        search.simplex.point[i] = {TRIANGLE[i], costAt(TRIANGLE[i])};
    search.pivot = {4.5, 4.0};
    EXPECT_EQ(search.range, (Point{10.0, 10.0}));
    EXPECT_EQ(Nelder_reflexion(search), 1);
    EXPECT_EQ(Nelder_expansion(search), 1);
    EXPECT_EQ(Nelder_contraction(search), 1);
    EXPECT_EQ(search.reflected.x, (Point{5.0, 3.0}));
    EXPECT_EQ(search.reflected.cost, 14.0);
    EXPECT_EQ(search.expanded.x, (Point{5.5, 2.0}));
    EXPECT_EQ(search.expanded.cost, 11.5);
    EXPECT_EQ(search.contracted.x, (Point{4.25, 4.5}));
    EXPECT_EQ(search.contracted.cost, 17.75);
    EXPECT_EQ(search.simplex.worst().x, TRIANGLE[2]);
    EXPECT_EQ(search.problem.evaluations, 3);
}

TEST_F(NelderStep, TheReductionMovesAndEvaluatesAllButTheBest) {
    costAt = [](Point const& z) { return z[0] + 3 * z[1]; };
    Nelder_search search(options, {recordedCost, 2, lower.data(), upper.data(), nullptr, nullptr},
                         Optim_process_random(), nullptr);
    for (int i = 0; i < 3; ++i)
        search.simplex.point[i] = {TRIANGLE[i], costAt(TRIANGLE[i])};
    EXPECT_EQ(Nelder_reduction(search), 1);
    EXPECT_EQ(search.simplex.point[0].x, (Point{4.0, 4.0}));
    EXPECT_EQ(search.simplex.point[1].x, (Point{4.5, 4.0}));
    EXPECT_EQ(search.simplex.point[1].cost, 16.5);
    EXPECT_EQ(search.simplex.point[2].x, (Point{4.0, 4.5}));
    EXPECT_EQ(search.simplex.point[2].cost, 17.5);
}

double silentCost(int*, double* x, double*, double*, double*, int*, int*, int*) {
    return *x;
}

// A cost function that sets neither result reports neither an error nor violated constraints.
TEST_F(NelderStep, AnEvaluationStartsFromGoodResults) {
    costAt = [](Point const& z) { return z[0]; };
    reportedConstraint = -4;
    Nelder_problem problem = {recordedCost, 1, lower.data(), upper.data(), nullptr, nullptr};
    Nelder_point point = {{2.5}, 0.0};
    EXPECT_EQ(Nelder_evalue(problem, point), 1);
    EXPECT_EQ(problem.constraint, -4);
    problem.cost = silentCost;
    EXPECT_EQ(Nelder_evalue(problem, point), 1);
    EXPECT_EQ(problem.constraint, 0);
    EXPECT_EQ(point.cost, 2.5);
    EXPECT_EQ(problem.evaluations, 2);
}

}  // namespace
