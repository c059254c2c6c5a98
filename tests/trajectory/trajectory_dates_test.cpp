// The times at which the steps of a history were taken, and of those merged into it.
#include "fixtures/the_run.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::PumpHistory;

namespace {

// Steps 0, 1, 2 ... at the times 0, 10, 20 ...
struct Dated : PumpHistory {
    explicit Dated(int steps) { addEmpty(steps); }
    void setTime(int step, double time) {
        for (auto& entry : path.timeCorr)
            if (entry.first == step)
                entry.second = time;
    }
    void expect(int step, double from, double to) const {
        EXPECT_EQ(path.datesOf(step).from, from) << step;
        EXPECT_EQ(path.datesOf(step).to, to) << step;
    }
};

TEST(Dates, AStepHasTheTimeOfItsTable) {
    Dated const history(2);
    history.expect(0, 0.0, 0.0);
    history.expect(2, 20.0, 20.0);
    history.expect(3, Trajectory::noTime, Trajectory::noTime);
}

TEST(Dates, AMergedStepHasTheTimesOfBoth) {
    Dated one(2), other(2);
    other.setTime(1, 8.0);
    other.setTime(2, 25.0);
    one.path.coverDates(other.path);
    one.expect(0, 0.0, 0.0);
    one.expect(1, 8.0, 10.0);
    one.expect(2, 20.0, 25.0);
    other.expect(1, 8.0, 8.0);
    EXPECT_EQ(one.path.stepDates.size(), 2u);  // step 0 has one time
    // And with a third.
    Dated third(2);
    third.setTime(1, 12.0);
    one.path.coverDates(third.path);
    one.expect(1, 8.0, 12.0);
}

// Both end in the same state, so the steps are matched from there: 2 with 3, 1 with 2, 0 with 1.
TEST(Dates, HistoriesOfOtherLengthsAreMatchedFromTheirEnds) {
    Dated one(2), longer(3);
    one.path.coverDates(longer.path);
    one.expect(2, 20.0, 30.0);
    one.expect(1, 10.0, 20.0);
    one.expect(0, 0.0, 10.0);
    Dated again(3), shorter(2);
    again.path.coverDates(shorter.path);
    again.expect(3, 20.0, 30.0);
    again.expect(1, 0.0, 10.0);
    again.expect(0, 0.0, 0.0);
}

TEST(Dates, TheDateOfATransitionCoversThatOfTheOther) {
    Dated one(1), other(1);
    one.path.dated[3] = {4.0, 6.0};
    other.path.dated[3] = {5.0, 9.0};
    other.path.dated[7] = {1.0, 1.0};
    one.path.coverDates(other.path);
    EXPECT_EQ(one.path.dated.at(3).from, 4.0);
    EXPECT_EQ(one.path.dated.at(3).to, 9.0);
    EXPECT_EQ(one.path.dated.at(7).from, 1.0);
}

// A step that leaves the window takes its dates along, and so does a copy.
TEST(Dates, DatesGoWithTheirSteps) {
    Dated one(2), other(2);
    other.setTime(1, 8.0);
    one.path.coverDates(other.path);
    Trajectory const copy(&one.path, 3);
    EXPECT_EQ(copy.datesOf(1).from, 8.0);
    one.addEmpty(4);  // the window holds 5 of 7 states
    EXPECT_EQ(one.path.firstTime, 2);
    EXPECT_TRUE(one.path.stepDates.empty());
    one.expect(1, Trajectory::noTime, Trajectory::noTime);
}

}  // namespace
