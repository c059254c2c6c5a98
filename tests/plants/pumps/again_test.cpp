// Rule `again`: every new loss of all candidates is diagnosed. And rule `cover`: what no condition
// covers ends a candidate.
#include <gtest/gtest.h>

#include "pumps_fixture.h"

using namespace pumps;

namespace {

// The lamp is commanded at 20 and at 40, so that the search places a failure there. `tight` stops
// at 20: below 0.9 k from 23 on, found at 24. `firm` stops at 40 and is below 0.9 (k - 1)
// from 46 on, found at 47.
Day& twoFaults(std::optional<Day>& day, char const* rules) {
    day.emplace(rules, Stops{{{"tight", 20}, {"firm", 40}}});
    day->command(1.0, "lamp.cmd=on");
    day->command(20.0, "lamp.cmd=off");
    day->command(40.0, "lamp.cmd=on");
    return *day;
}

TEST(Again, ASecondFaultIsFoundAndReplayedFromItsOwnStep) {
    std::optional<Day> made;
    Day& day = twoFaults(made, "again,continuity");
    EXPECT_EQ(day.to(24), (std::vector<int>{24}));
    EXPECT_EQ(day.answers(), (Lines{"tight on -> failed at 20 (rank 1)"}));
    EXPECT_EQ(day.to(47), (std::vector<int>{47}));
    EXPECT_EQ(day.answers(), (Lines{"tight on -> failed at 20, firm on -> failed at 40 (rank 2)"}));
    EXPECT_EQ(day.to(60), (std::vector<int>{}));
    EXPECT_TRUE(Day::holds("tight.mode=failed"));
    EXPECT_TRUE(Day::holds("firm.mode=failed"));
}

TEST(Again, WithoutItTheFirstFaultAloneIsNamed) {
    std::optional<Day> made;
    Day& day = twoFaults(made, "continuity");
    EXPECT_EQ(day.to(46), (std::vector<int>{24}));
    EXPECT_EQ(day.to(49), (std::vector<int>{47, 48, 49}));
    EXPECT_EQ(day.answers(), (Lines{}));
    EXPECT_EQ(day.told, "all trajs misbehave !\n");
}

// No mode explains a pipe that fills while its valve is closed. A loss is diagnosed once; after the
// gauge has been right again the next one is new.
class Unexplained : public testing::TestWithParam<char const*> {
protected:
    Unexplained() : day(GetParam()) {
        day.command(1.0, "lamp.cmd=on");
        day.shows = [this](std::string const& tank, int cycle) {
            bool const wrong = (cycle >= 5 && cycle <= 9) || cycle >= 12;
            return tank == "pipe" && wrong ? 5.0 : day.truth.gauge(tank, cycle);
        };
    }
    Day day;
};

TEST_P(Unexplained, ALossWithoutAnExplanationDoesNotEndTheRun) {
    EXPECT_EQ(day.to(6), (std::vector<int>{6}));
    EXPECT_EQ(day.lines("[Error]: Can't find any diagnose for this fault.").size(), 1u);
    EXPECT_EQ(day.to(9), (std::vector<int>{7, 8, 9}));
    EXPECT_EQ(day.told, "all trajs misbehave !\n");
    EXPECT_EQ(day.to(12), (std::vector<int>{}));
    EXPECT_EQ(day.to(13), (std::vector<int>{13}));
    EXPECT_EQ(day.lines("[Error]: Can't find any diagnose for this fault.").size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Rules, Unexplained,
                         testing::Values("again", "again,dates", "again,dates,continuity"));

TEST(Again, TheClassicRunEndsThere) {
    Day day("classic");
    day.shows = [&day](std::string const& tank, int cycle) {
        return tank == "pipe" && cycle >= 5 ? 5.0 : day.truth.gauge(tank, cycle);
    };
    EXPECT_EQ(statusOf([&day] { day.to(6); }), -1);
}

// ---- cover ----

// The level `wide` is [0.5 k, 1.5 k]: at 67 it reaches 100.5. No condition covers the part from 100
// on.
TEST(Cover, TheUncoveredPartOfASplitIsDropped) {
    Day day("cover");
    EXPECT_EQ(day.to(66), (std::vector<int>{}));
    EXPECT_EQ(day.told, "");
    EXPECT_TRUE(day.step());
    EXPECT_EQ(day.told, "A candidate is dropped: no condition covers a value of wide.level.\n");
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    expectBounds(Day::bounds("wide.level"), 33.5, 100.0);
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

TEST(Cover, TheClassicRunEndsThere) {
    Day day("classic");
    EXPECT_EQ(day.to(66), (std::vector<int>{}));
    EXPECT_EQ(statusOf([&day] { day.step(); }), 0);
}

// Without another candidate none is left. A simulation of one candidate takes the same road.
TEST(Cover, ACandidateThatIsUncoveredGoes) {
    for (int const mode : {RUN_DETECT, RUN_NOMERGE, RUN_SIMULATE}) {
        Day day("cover");
        day.options.mode = mode;
        s_Variable* level = sn_getVarDico(Day::candidate().rt.get(), "wide.level");
        level->old = level->new_ = makeRange(200.0, 201.0, 1, 1);
        day.step();
        EXPECT_EQ(
            day.lines("A candidate is dropped: no condition covers a value of wide.level.").size(),
            1u)
            << day.told;
        EXPECT_TRUE(theRun().tracked_trajs.empty());
        EXPECT_EQ(theRun().hybNT, nullptr);
        EXPECT_TRUE(theRun().engine.nrt.empty());
    }
}

// ---- What is told of bounds ----

// What drifts is [-0.125 k, 0.125 k] around its measure: 2.5 wide at step 10, and four times as
// much from step 40 on. The tenth step of those is 49. All other bounds leave 0, which was
// measured.
TEST(Bounds, PastUseIsToldOnce) {
    Day day("classic");
    EXPECT_EQ(day.to(48), (std::vector<int>{}));
    EXPECT_EQ(day.answers(), (Lines{}));
    day.step();
    EXPECT_EQ(day.answers(), (Lines{"the bounds of drift.gauge have grown past use at 49: little "
                                    "will be noticed from here on"}));
    day.to(60);
    EXPECT_EQ(day.answers(), (Lines{}));
}

}  // namespace
