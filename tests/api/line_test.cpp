// The feed line, a discrete plant, through the C++ interface. Its scenarios are explained in
// examples/line/README.md, with the probabilities by hand.
#include <gtest/gtest.h>

#include <algorithm>

#include "tavro/tavro.hpp"

namespace {

using tavro::Line;
using tavro::Step;

Line command(std::string const& pump, std::string const& valve1, std::string const& valve2) {
    return {.commands = {"pump.cmd=" + pump, "valve1.cmd=" + valve1, "valve2.cmd=" + valve2}};
}

Line flow(std::string const& value) {
    return {.observations = {"sensor.flow=" + value}};
}

Step startUp(tavro::Run& run) {
    run.start();
    run.step(command("start", "none", "none"));
    run.step(command("none", "open", "none"));
    return run.step(command("none", "none", "open"));
}

tavro::Run lineRun() {
    return tavro::Run(tavro::Plant::builtin("line"));
}

}  // namespace

TEST(FeedLine, NamesWhatItTakes) {
    tavro::Plant const plant = tavro::Plant::builtin("line");
    EXPECT_TRUE(plant.discrete());
    EXPECT_TRUE(plant.measures().empty());
    EXPECT_EQ(plant.components(), (std::vector<std::string>{"pump", "sensor", "valve1", "valve2"}));
    auto const& seen = plant.observations();
    EXPECT_NE(std::find(seen.begin(), seen.end(), "sensor.flow=zero"), seen.end());
    // Three commands each for the pump and two valves.
    EXPECT_EQ(plant.commands().size(), 9U);
}

TEST(FeedLine, FollowsWhatIsCommanded) {
    tavro::Run run = lineRun();
    Step const running = startUp(run);
    EXPECT_EQ(running.time, 3.0);
    ASSERT_EQ(running.candidates.size(), 1U);
    tavro::Candidate const& only = running.candidates.front();
    EXPECT_EQ(only.modes.at("pump.mode"), "on");
    EXPECT_EQ(only.modes.at("valve1.mode"), "open");
    EXPECT_EQ(only.modes.at("valve2.mode"), "open");
    EXPECT_EQ(only.probability, 1.0);
    EXPECT_TRUE(only.bounds.empty());
    Step const seen = run.step(flow("positive"));
    EXPECT_FALSE(seen.diagnosed);
    EXPECT_EQ(seen.candidates.size(), 1U);
}

// The pump fails at line 5: the likeliest of four histories of one failure, 100 parts of 211.
TEST(FeedLine, ExplainsADeadPump) {
    tavro::Run run = lineRun();
    startUp(run);
    run.step(flow("positive"));
    run.step(command("none", "none", "none"));
    Step const found = run.step(flow("zero"));
    EXPECT_TRUE(found.diagnosed);
    EXPECT_EQ(found.time, 6.0);
    ASSERT_EQ(found.candidates.size(), 4U);
    EXPECT_NEAR(found.candidates[0].probability, 100.0 / 211.0, 1e-12);
    EXPECT_NEAR(found.candidates[3].probability, 15.0 / 211.0, 1e-12);
    EXPECT_EQ(found.candidates[0].modes.at("pump.mode"), "failed");
    ASSERT_EQ(found.explanations.size(), 4U);
    tavro::Explanation const& pump = found.explanations[0];
    EXPECT_EQ(pump.candidate, 0U);
    EXPECT_EQ(pump.step, 4);  // the fourth command
    EXPECT_EQ(pump.summary, "pump on -> failed at 5");
    EXPECT_FALSE(pump.unknown);
    for (std::size_t i = 1; i < 4; ++i)
        EXPECT_TRUE(found.explanations[i].unknown) << i;
}

// Both valves stick open, one after the other; the second search adds to the first.
TEST(FeedLine, ExplainsTwoFaults) {
    tavro::Run run = lineRun();
    startUp(run);
    run.step(flow("positive"));
    run.step(command("none", "close", "none"));
    Step const first = run.step(flow("positive"));
    ASSERT_EQ(first.explanations.size(), 1U);
    EXPECT_EQ(first.explanations[0].summary, "valve1 open -> stuck_open at 5");
    run.step(command("none", "none", "close"));
    Step const second = run.step(flow("positive"));
    ASSERT_EQ(second.candidates.size(), 1U);
    EXPECT_EQ(second.candidates[0].rank, 2.0);
    ASSERT_EQ(second.explanations.size(), 2U);
    EXPECT_EQ(second.explanations[0].summary, "valve1 open -> stuck_open at 5");
    EXPECT_EQ(second.explanations[1].summary, "valve2 open -> stuck_open at 7");
}

TEST(FeedLine, NothingExplainsAContradiction) {
    tavro::Run run = lineRun();
    startUp(run);
    for (int i = 0; i < 2; ++i) {  // the second time it is told again
        try {
            run.step({.observations = {"sensor.flow=zero", "sensor.flow=positive"}});
            FAIL();
        } catch (tavro::Error const& e) {
            EXPECT_EQ(e.kind(), tavro::ErrorKind::noDiagnosis);
        }
    }
    EXPECT_EQ(run.time(), 3.0);
}
