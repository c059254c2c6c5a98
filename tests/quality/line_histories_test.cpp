// The enumeration of the feed line's histories, beside histories and shares by hand; and its
// stories.
#include "quality/line_histories.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "quality/line_truth.h"

using namespace quality;

namespace {

LineEvent command(std::string const& pump, std::string const& valve1, std::string const& valve2) {
    return {true, {pump, valve1, valve2}, false};
}

LineEvent flow(bool flows) {
    return {false, {}, flows};
}

std::vector<LineEvent> startUp() {
    return {command("start", "none", "none"), command("none", "open", "none"),
            command("none", "none", "open")};
}

}  // namespace

TEST(LineHistories, MovesOfEveryModeSumToOne) {
    for (std::string const mode :
         {"off", "on", "failed", "unknown", "closed", "open", "stuck_closed", "stuck_open"})
        for (std::string const order : {"none", "start", "stop", "open", "close"}) {
            double total = 0.0;
            for (LineMove const& move : lineMoves(mode, order))
                total += move.probability;
            EXPECT_NEAR(total, 1.0, 1e-12) << mode << " " << order;
        }
}

// One command: pump off to on or unknown, each valve stays closed, sticks closed or is lost. With
// up to two failures: none 1, one 1 + 2 + 2 = 5, two 1*2 + 1*2 + 2*2 = 8.
TEST(LineHistories, CountsThoseOfOneCommand) {
    EXPECT_EQ(lineHistories({command("start", "none", "none")}, 1).size(), 14U);
}

// After a start-up that was seen to work, one idle command and then no flow: what can have failed
// did so at the idle command, event 5: the pump (failed 0.01, unknown 0.001) or a valve (unknown
// 0.001). A valve that sticks open goes on to let through. Together 100 + 10 + 10 + 10 parts, each
// times the ordinary moves of the others: 0.989 for every one of them. The pump on weighs 0.989 as
// the valves do.
TEST(LineHistories, ADeadPumpByHand) {
    std::vector<LineEvent> events = startUp();
    events.push_back(flow(true));
    events.push_back(command("none", "none", "none"));
    events.push_back(flow(false));
    std::vector<LineHistory> const minimal = minimalHistories(lineHistories(events, events.size()));
    ASSERT_EQ(minimal.size(), 4U);
    EXPECT_EQ(minimal[0].failures, (std::vector<LineFailure>{{"pump", "failed", 5}}));
    for (std::size_t i = 1; i < 4; ++i)
        EXPECT_NEAR(minimal[0].weight / minimal[i].weight, 10.0, 1e-9) << i;
}

// A valve that stays open once told to close has stuck while it was open: at event 3, before it was
// seen, or at the order itself, event 5. The earlier is likelier: it leaves out one ordinary move,
// 0.989.
TEST(LineHistories, AFailureAtTwoSteps) {
    std::vector<LineEvent> events = startUp();
    events.push_back(flow(true));
    events.push_back(command("none", "close", "none"));
    events.push_back(flow(true));
    std::vector<LineHistory> const minimal = minimalHistories(lineHistories(events, events.size()));
    ASSERT_EQ(minimal.size(), 2U);
    EXPECT_EQ(minimal[0].failures, (std::vector<LineFailure>{{"valve1", "stuck_open", 3}}));
    EXPECT_EQ(minimal[1].failures, (std::vector<LineFailure>{{"valve1", "stuck_open", 5}}));
}

TEST(LineHistories, WithoutAnObservationNothingNeedsToFail) {
    std::vector<LineHistory> const minimal = minimalHistories(lineHistories(startUp(), 3));
    ASSERT_EQ(minimal.size(), 1U);
    EXPECT_TRUE(minimal[0].failures.empty());
    EXPECT_EQ(minimal[0].modes, (LineModes{"on", "open", "open"}));
}

// What really happened is one of the histories, of every story.
TEST(LineStories, TheTruthIsAmongTheHistories) {
    for (int const failures : {0, 1, 2})
        for (std::uint64_t seed = 1; seed <= 50; ++seed) {
            LineStory const story = lineStory({failures, 6, 2, seed});
            ASSERT_EQ(story.failures.size(), static_cast<std::size_t>(failures));
            auto const histories = lineHistories(story.events, story.events.size());
            EXPECT_TRUE(std::any_of(histories.begin(), histories.end(),
                                    [&](auto const& history) {
                                        return history.failures == story.failures &&
                                               history.modes == story.modes.back();
                                    }))
                << failures << " failures, seed " << seed;
        }
}

TEST(LineStories, FailuresLeaveTheCommandsAsTheyAre) {
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        LineStory const healthy = lineStory({0, 12, 1, seed});
        LineStory const faulty = lineStory({2, 12, 1, seed});
        ASSERT_EQ(healthy.events.size(), faulty.events.size());
        for (std::size_t i = 0; i < healthy.events.size(); ++i)
            EXPECT_EQ(healthy.events[i].commands, faulty.events[i].commands);
    }
}
