// What is kept of the steps of a run.
#include "report/run_record.h"

#include <gtest/gtest.h>

#include "report/made_up.h"

namespace {

class Record : public testing::Test {
protected:
    tavro::Plant const room = tavro::Plant::builtin("therm");
    Recorder recorder{room, true};
    RunRecord const& record = recorder.record();
};

TEST_F(Record, HasAnEntryPerStepAndMeasure) {
    recorder.add(measured(0.5), step(0, {candidate(7, 1, 2)}));
    recorder.add(measured(missing), step(1, {candidate(7, 3, 4), candidate(8, 5, 6)}));
    EXPECT_EQ(record.time, (std::vector<double>{0, 1}));
    EXPECT_EQ(record.followed, (std::vector<std::size_t>{1, 2}));
    ASSERT_EQ(record.measures.at("room.xd").size(), 2U);
    EXPECT_EQ(record.measures.at("room.xd")[0], 0.5);
    EXPECT_TRUE(std::isnan(record.measures.at("room.xd")[1]));
}

// One that goes on is one; what is gone for a step and comes back is another.
TEST_F(Record, ACandidateIsFollowedByItsIdentity) {
    recorder.add(measured(0), step(0, {candidate(7, 1, 2)}));
    recorder.add(measured(0), step(1, {candidate(8, 1, 2), candidate(7, 3, 4)}));
    recorder.add(measured(0), step(2, {candidate(8, 5, 6)}));
    recorder.add(measured(0), step(3, {candidate(7, 7, 8)}));
    ASSERT_EQ(record.candidates.size(), 3U);
    EXPECT_EQ(record.candidates[0].first, 0U);
    EXPECT_EQ(record.candidates[0].last, 1U);
    EXPECT_EQ(record.candidates[0].bounds.at("room.x").lower, (std::vector<double>{1, 3}));
    EXPECT_FALSE(record.candidates[0].alive);
    EXPECT_EQ(record.candidates[1].first, 1U);
    EXPECT_EQ(record.candidates[1].last, 2U);
    EXPECT_FALSE(record.candidates[1].alive);
    EXPECT_EQ(record.candidates[2].first, 3U);
    EXPECT_TRUE(record.candidates[2].alive);
    EXPECT_EQ(record.last, (std::vector<std::size_t>{2}));
}

// Of a measured variable what it was compared with, not what it narrowed itself to.
TEST_F(Record, TheBoundsOfAMeasureAreThoseForetold) {
    recorder.add(measured(0), step(0, {candidate(7, 1, 2)}));
    EXPECT_EQ(record.candidates[0].bounds.at("room.xd").lower, std::vector<double>{0});
    EXPECT_EQ(record.candidates[0].bounds.at("room.xd").upper, std::vector<double>{3});
}

TEST_F(Record, WithoutBoundsItKeepsNone) {
    Recorder small(room, false);
    small.add(measured(0), step(0, {candidate(7, 1, 2)}));
    EXPECT_TRUE(small.record().candidates[0].bounds.empty());
}

TEST_F(Record, ModesAreKeptWhereTheyChange) {
    tavro::Candidate open = candidate(7, 1, 2);
    open.modes["room.mode"] = "open";
    recorder.add(measured(0), step(0, {candidate(7, 1, 2)}));
    recorder.add(measured(0), step(1, {candidate(7, 1, 2)}));
    recorder.add(measured(0), step(2, {open}));
    auto const& modes = record.candidates[0].modes;
    ASSERT_EQ(modes.size(), 2U);
    EXPECT_EQ(modes[1].step, 2U);
    EXPECT_EQ(modes[1].values.at("room.mode"), "open");
}

// 0.6 and 0.2 of the same failure at two dates are one story of 0.8, dated by both.
TEST_F(Record, CandidatesThatTellTheSameFailureAreOneStory) {
    recorder.add(measured(0), step(0, {candidate(1, 1, 2)}));
    recorder.add(measured(0), diagnosis(1, {candidate(2, 1, 2, {move("stuck_on", 4, 6)}, 0.6),
                                            candidate(3, 1, 2, {move("stuck_on", 2, 5)}, 0.2),
                                            candidate(4, 1, 2, {move("unknown", 0, 6)}, 0.2)}));
    ASSERT_EQ(record.stories.size(), 3U);
    EXPECT_EQ(record.stories[0].summary, "nothing failed");
    EXPECT_FALSE(record.stories[0].alive);
    EXPECT_EQ(record.stories[1].summary, "thermostat on -> stuck_on between 2 and 6");
    EXPECT_DOUBLE_EQ(record.stories[1].probability, 0.8);
    EXPECT_TRUE(record.stories[2].unknown);
    ASSERT_EQ(record.diagnoses.size(), 1U);
    EXPECT_EQ(record.diagnoses[0].stories, (std::vector<std::size_t>{1, 1, 2}));
}

// What was 0.6 to 0.2 stays so when a third is refuted, however often it splits.
TEST_F(Record, StoriesAreWeighedAtTheDiagnosis) {
    recorder.add(measured(0), diagnosis(0, {candidate(2, 1, 2, {move("stuck_on", 4, 4)}, 0.6),
                                            candidate(3, 1, 2, {move("stuck_off", 4, 4)}, 0.2),
                                            candidate(4, 1, 2, {move("unknown", 4, 4)}, 0.2)}));
    recorder.add(measured(0), step(1, {candidate(5, 1, 2, {move("stuck_on", 4, 4)}, 0.6),
                                       candidate(6, 1, 2, {move("stuck_on", 4, 4)}, 0.6),
                                       candidate(3, 1, 2, {move("stuck_off", 4, 4)}, 0.2)}));
    EXPECT_DOUBLE_EQ(record.stories[0].probability, 0.75);
    EXPECT_DOUBLE_EQ(record.stories[1].probability, 0.25);
    EXPECT_EQ(record.stories[2].probability, 0.0);
}

// Foretold from 0 to 3 and 4 to 7 is 7 wide together; alone 3.
TEST_F(Record, WidthsAreThoseOfAllCandidatesTogether) {
    recorder.add(measured(0.5), step(0, {candidate(1, 1, 2), candidate(2, 5, 6)}));
    recorder.add(measured(missing), step(1, {candidate(1, 1, 2)}));
    recorder.add(measured(0.25), step(2, {candidate(1, -INFINITY, 2)}));
    auto const& width = record.widths.at("room.xd");
    EXPECT_EQ(width.steps, 2U);
    EXPECT_DOUBLE_EQ(width.mean(), 5.0);
    EXPECT_EQ(width.measured, 2U);
    EXPECT_EQ(width.least, 0.25);
    EXPECT_EQ(width.greatest, 0.5);
}

TEST_F(Record, SaysWhenInWords) {
    EXPECT_EQ(summaryOf(move("stuck_on", 24, 24)), "thermostat on -> stuck_on at 24");
    EXPECT_EQ(summaryOf(move("stuck_on", 22, 26.5)),
              "thermostat on -> stuck_on between 22 and 26.5");
    EXPECT_EQ(summaryOf(move("stuck_on", -1, -1)),
              "thermostat on -> stuck_on before the kept steps");
    EXPECT_EQ(summaryOf(std::vector<tavro::Explanation>{}), "nothing failed");
    EXPECT_EQ(summaryOf(std::vector{move("off", 3, 3, false), move("stuck_on", 4, 4)}),
              "thermostat on -> stuck_on at 4");
    EXPECT_EQ(summaryOf(std::vector{move("off", 3, 3, false)}), "thermostat on -> off at 3");
}

}  // namespace
