// Bounds that can tell nothing any more.
#include "hybrid/bounds_watch.h"

#include "continuous/model_parts.h"
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

// Candidates with two measures, of which only the first is given by the test.
class Watched : public testing::Test {
protected:
    Watched() { add(); }

    void add() {
        auto candidate = std::make_unique<hybTrajectory>();
        candidate->rt = std::make_unique<s_runtime>();
        s_runtime& rt = *candidate->rt;
        rt.engine = &theRun().engine;
        rt.measure = {mkVariable(rt, "first", 1), mkVariable(rt, "second", 1)};
        for (s_Variable* measure : rt.measure) {
            measure->old = makeRange(0.0, 1.0, 1, 1);
            measure->mes = makeReal(0.5);
        }
        candidates.emplace(0.0, std::move(candidate));
    }
    s_Variable& first(int candidate = 0) {
        return *std::next(candidates.begin(), candidate)->second->rt->measure[0];
    }
    void give(double inf, double sup, double measured) {
        first().old = makeRange(inf, sup, 1, 1);
        first().mes = makeReal(measured);
    }
    // The step, counted from here, at which the watch speaks; 0 when it does not in *steps*.
    int speaksAt(int steps) {
        for (int step = 1; step <= steps; ++step)
            if (std::string const name = watch.look(candidates); !name.empty()) {
                said = name;
                return step;
            }
        return 0;
    }

    HybMap candidates;
    BoundsWatch watch;
    std::string said;
};

TEST_F(Watched, BoundsThatStayAreOfUse) {
    EXPECT_EQ(speaksAt(200), 0);
}

// Ten first steps with a width of 1; from the eleventh on 4, ten times in a row.
TEST_F(Watched, FourTimesTheFirstWidthForTenStepsIsPastUse) {
    EXPECT_EQ(speaksAt(10), 0);
    give(-2.0, 2.0, 0.5);
    EXPECT_EQ(speaksAt(50), 10);
    EXPECT_EQ(said, "first");
    // Once for a run.
    EXPECT_EQ(speaksAt(50), 0);
}

TEST_F(Watched, LessThanFourTimesIsNot) {
    speaksAt(10);
    give(-2.0, 1.99, 0.5);
    EXPECT_EQ(speaksAt(50), 0);
}

// The widest of the first ten steps counts, also the tenth.
TEST_F(Watched, TheTenthStepIsAFirstOne) {
    speaksAt(9);
    give(-2.0, 2.0, 0.5);
    EXPECT_EQ(speaksAt(50), 0);
}

TEST_F(Watched, OneStepOfUseBeginsTheTenAnew) {
    speaksAt(10);
    give(-2.0, 2.0, 0.5);
    EXPECT_EQ(speaksAt(9), 0);
    give(0.0, 1.0, 0.5);
    EXPECT_EQ(speaksAt(1), 0);
    give(-2.0, 2.0, 0.5);
    EXPECT_EQ(speaksAt(50), 10);
}

// A measure of the very first step, 3, lies outside of the wide bounds: they would tell it today.
TEST_F(Watched, BoundsThatMissAValueOfThePastAreOfUse) {
    give(2.5, 3.5, 3.0);
    speaksAt(1);
    give(0.0, 1.0, 0.5);
    speaksAt(9);
    give(-2.0, 2.9, 0.5);
    EXPECT_EQ(speaksAt(50), 0);
    give(-2.0, 3.0, 0.5);
    EXPECT_EQ(speaksAt(50), 10);
}

// Neither candidate's bounds are wide; what both allow is.
TEST_F(Watched, TheBoundsOfAllCandidatesCountTogether) {
    add();
    EXPECT_EQ(speaksAt(10), 0);
    first(1).old = makeRange(3.0, 4.0, 1, 1);
    EXPECT_EQ(speaksAt(50), 10);
}

// A number that is predicted and measured as such all the time: as good a watch as there is.
TEST_F(Watched, NumbersAreOfUse) {
    first().old = first().mes = makeReal(0.5);
    EXPECT_EQ(speaksAt(200), 0);
    // Rounding is no growth.
    give(0.5 - 1e-12, 0.5 + 1e-12, 0.5);
    EXPECT_EQ(speaksAt(200), 0);
    give(0.4, 0.6, 0.5);
    EXPECT_EQ(speaksAt(50), 10);
}

TEST_F(Watched, WithoutCandidatesOrMeasuresThereIsNothingToWatch) {
    HybMap none;
    EXPECT_EQ(watch.look(none), "");
    none.emplace(0.0, std::make_unique<hybTrajectory>());
    EXPECT_EQ(watch.look(none), "");  // a discrete plant
    none.begin()->second->rt = std::make_unique<s_runtime>();
    for (int step = 0; step < 100; ++step)
        EXPECT_EQ(watch.look(none), "");
}

}  // namespace
