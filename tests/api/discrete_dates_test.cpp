// When a failure of a discrete plant can have come: the range of lines that all histories of an
// answer give, by the rule `dates`.
#include <gtest/gtest.h>

#include "tavro/tavro.hpp"

namespace {

using tavro::Line;

// The line runs from line 3 on, both valves open; lines 4 and 5 command nothing. Line 6 closes the
// second valve, and behind it the flow is still seen.
tavro::Step valveThatDoesNotClose(std::string const& rules) {
    tavro::Run run(tavro::Plant::builtin("line"), {.rules = rules});
    run.start();
    for (std::string const command :
         {"pump.cmd=start", "valve1.cmd=open", "valve2.cmd=open", "", "", "valve2.cmd=close"})
        run.step(command.empty() ? Line{} : Line{.commands = {command}});
    return run.step({.observations = {"sensor.flow=positive"}});
}

tavro::Explanation stuckValve(tavro::Step const& step) {
    EXPECT_TRUE(step.diagnosed);
    for (tavro::Explanation const& explanation : step.explanations)
        if (explanation.component == "valve2" && explanation.to == "stuck_open")
            return explanation;
    ADD_FAILURE() << "valve2 is not said to be stuck open";
    return {};
}

// It can have stuck open in any line behind the one that opened it, that of the command included:
// nothing was seen in between.
TEST(DatesOfADiscretePlant, AreTheLinesInWhichTheFailureFits) {
    tavro::Explanation const stuck = stuckValve(valveThatDoesNotClose("sharp"));
    EXPECT_EQ(stuck.from, "open");
    EXPECT_EQ(stuck.earliest, 4.0);
    EXPECT_EQ(stuck.latest, 6.0);
    EXPECT_GE(stuck.time, stuck.earliest);
    EXPECT_LE(stuck.time, stuck.latest);
}

TEST(DatesOfADiscretePlant, AreOneLineWithoutTheRule) {
    tavro::Explanation const stuck = stuckValve(valveThatDoesNotClose("histories,likelihood"));
    EXPECT_EQ(stuck.earliest, stuck.time);
    EXPECT_EQ(stuck.latest, stuck.time);
}

}  // namespace
