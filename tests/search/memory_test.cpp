// The memory of long discrete runs: commands and observations in turn, on the feed line.
//
// A history keeps a window of states, so that what lives after some steps is what lives after
// thousands. The counters of records made and deleted tell it, read as the run announces each step.
#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <streambuf>
#include <string>
#include <vector>

#include "fixtures/line.h"
#include "fixtures/the_run.h"
#include "search/search_fixture.h"

namespace {

// A day of the line: each valve is opened and closed while the pump runs. The flow is positive when
// the pump is on and both are open.
struct Event {
    char const* command;
    char const* flow;  // seen after it
};
constexpr std::array<Event, 6> day{{
    {"pump.cmd=start valve1.cmd=none valve2.cmd=none", "zero"},
    {"pump.cmd=none valve1.cmd=open valve2.cmd=none", "zero"},
    {"pump.cmd=none valve1.cmd=none valve2.cmd=open", "positive"},
    {"pump.cmd=none valve1.cmd=close valve2.cmd=none", "zero"},
    {"pump.cmd=none valve1.cmd=none valve2.cmd=close", "zero"},
    {"pump.cmd=stop valve1.cmd=none valve2.cmd=none", "zero"},
}};
constexpr int period = 2 * static_cast<int>(day.size());  // in steps: each event is two lines

// A scenario of that many lines. From line *blocked* on nothing flows.
std::string scenario(int lines, int blocked) {
    std::string text;
    for (int line = 0; line < lines; line += 2) {
        Event const& event = day[static_cast<std::size_t>(line / 2) % day.size()];
        text += std::string("Command ") + event.command +
                "\nObservation sensor.flow=" + (line < blocked ? event.flow : "zero") + "\n";
    }
    return text;
}

// What lives.
struct Live {
    unsigned states, elements, trajectories;
    std::size_t links;  // from elements to those that they support, and to transitions

    bool operator==(Live const&) const = default;
};

std::ostream& operator<<(std::ostream& out, Live const& live) {
    return out << live.states << " states, " << live.elements << " elements, " << live.trajectories
               << " trajectories, " << live.links << " links";
}

std::size_t countLinks() {
    std::size_t links = 0;
    for (auto const& tracked : theRun().scheduler.tracked_traj)
        for (auto const& state : tracked.second->states)
            for (auto const& element : state.second->elts)
                links += element.second->consequences.size() + element.second->nextTrans.size() +
                         element.second->nextTransNeg.size();
    return links;
}

Live countLive() {
    return {theRun().scheduler.book.state_created - theRun().scheduler.book.state_del,
            theRun().scheduler.book.trajel_created - theRun().scheduler.book.trajel_del,
            theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del, countLinks()};
}

// The error stream of a run. Keeps of it the lines that tell of errors and searches, and what lives
// at the beginning of each step.
class StepSampler : public std::streambuf {
public:
    std::vector<Live> atStep;  // from step 1
    std::vector<std::string> troubles;

protected:
    int overflow(int c) override {
        if (c != '\n') {
            line += static_cast<char>(c);
            return c;
        }
        if (line == "Time : " + std::to_string(atStep.size() + 1))
            atStep.push_back(countLive());
        if (line.starts_with("Error") || line.starts_with("--------->"))
            troubles.push_back(line);
        line.clear();
        return c;
    }

private:
    std::string line;
};

class LongDiscreteRun : public testing::Test {
protected:
    // Runs a scenario, and leaves.
    void run(std::string const& lines) {
        search_fixture::Redirected const redirected(&sampler);
        search_fixture::Engine engine("line");
        buildLine(engine.scheduler, 2);
        engine.start();
        engine.run(lines);
        for (auto const& tracked : theRun().scheduler.tracked_traj)
            checkWindow(*tracked.second);
        waiting = engine.scheduler->scenario.size();
        engine.scheduler->raz();
        EXPECT_EQ(countLive(), before) << "something is not released";
    }
    // Every other line was a command, which made a step of the history.
    void checkWindow(Trajectory const& history) {
        EXPECT_EQ(history.currentTime, static_cast<int>(sampler.atStep.size()) / 2);
        EXPECT_EQ(history.states.size(), static_cast<std::size_t>(theRun().scheduler.book.twd));
        EXPECT_EQ(history.timeCorr.size(), static_cast<std::size_t>(theRun().scheduler.book.twd));
    }
    // From *settled* on, what lives is what lived a day before.
    void expectFlatFrom(std::size_t settled) {
        for (std::size_t step = settled + period; step <= sampler.atStep.size(); ++step)
            ASSERT_EQ(sampler.atStep[step - 1], sampler.atStep[step - 1 - period])
                << "step " << step;
    }

    Live before = countLive();
    StepSampler sampler;
    std::size_t waiting = 0;  // events in the table at the end
};

TEST_F(LongDiscreteRun, KeepsAsMuchAfterTenThousandStepsAsAfterAThousand) {
    run(scenario(10000, 10000));
    EXPECT_EQ(sampler.troubles, std::vector<std::string>{});
    EXPECT_LE(waiting, 2u);
    ASSERT_EQ(sampler.atStep.size(), 10000u);
    // One history of a full window, whose states hold an element of each of the 29 atoms: 7 of the
    // pump, 10 of each valve, 2 of the sensor.
    Live const& early = sampler.atStep[1000 - 1];
    EXPECT_EQ(early.states, 5u);
    EXPECT_EQ(early.elements, 5u * 29u);
    EXPECT_EQ(early.trajectories, 1u);
    expectFlatFrom(1000);
}

TEST_F(LongDiscreteRun, KeepsAsMuchLongAfterASearchAsSoonAfter) {
    run(scenario(300, 24));
    // The flow that does not come on the third day is explained once, by several histories.
    EXPECT_EQ(sampler.troubles, std::vector<std::string>{"---------> Diagnosing..."});
    ASSERT_EQ(sampler.atStep.size(), 300u);
    EXPECT_GT(sampler.atStep.back().trajectories, 1u);
    EXPECT_EQ(sampler.atStep.back().states, 5u * sampler.atStep.back().trajectories);
    expectFlatFrom(100);
}

}  // namespace
