// Rule `dates`: the steps at which a failure may have come, worked out by hand.
//
// A level that rises by 0.5 to 1.5 is [0.5 k, 1.5 k] at step k. Its true rate is 1, and its pump
// stops at 5: the gauge stays at 5, which is below from step 11 on. With a threshold of 2 that is
// the alarm at 12. Had the pump stopped at step d, the level would have stayed at [0.5 d, 1.5 d].
// That must hold the 5 and what was measured between d and 5, or miss it in one step alone: d = 4
// gives [2, 6]; d = 3 gives [1.5, 4.5] and misses 5 at 5 and at 6. The last step at which the gauge
// was inside is 10.
#include <gtest/gtest.h>

#include <algorithm>

#include "hybrid/dates.h"
#include "model/Comprt.h"
#include "model/Transitionrt.h"
#include "pumps_fixture.h"

using namespace pumps;

namespace {

constexpr int alarm = 12;

// The lamp makes steps, which by the rule `continuity` leave the levels alone, for the search to
// place a failure at.
class Dates : public testing::Test {
protected:
    void begin(char const* rules, Stops truth, CompiledModel const& model = pumps_model) {
        day.emplace(rules, std::move(truth), model);
        day->command(theRun().tavro_rt->Ts, "lamp.cmd=on");
    }
    std::optional<Day> day;
};

TEST_F(Dates, EveryDateThatAgreesIsTold) {
    begin("continuity,dates", {{{"wide", 5}}});
    EXPECT_EQ(day->to(alarm), (std::vector<int>{alarm}));
    EXPECT_EQ(day->answers(),
              (Lines{"wide on -> failed between 4 and 10 (rank 1, probability 0.5)"}));
    // The bounds cover every date, and the day goes on.
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    expectBounds(Day::bounds("wide.level"), 2.0, 15.0);
    EXPECT_EQ(day->to(40), (std::vector<int>{}));
    expectBounds(Day::bounds("wide.level"), 2.0, 15.0);
}

// The lamp was lit at 1; that is where the classic way lets the pump stop, and bursts it, too,
// which leads where no condition covers the level: the run ends.
TEST_F(Dates, TheClassicWayTakesTheLastStepOfTheHistory) {
    begin("continuity", {{{"wide", 5}}});
    EXPECT_THROW(day->to(alarm), RunStopped);
}

TEST_F(Dates, TheDatesAreThoseOfTheSamplePeriod) {
    begin("continuity,dates", {{{"wide", 5}}}, fast_pumps_model);
    EXPECT_EQ(day->to(alarm), (std::vector<int>{alarm}));
    EXPECT_EQ(day->answers(),
              (Lines{"wide on -> failed between 0.4 and 1 (rank 1, probability 0.5)"}));
    expectBounds(Day::bounds("wide.level"), 2.0, 15.0);
}

// The search places both at 1. They come together at every date that is tried.
TEST_F(Dates, FailuresThatOnlyTogetherExplainComeTogether) {
    begin("continuity,dates,histories", {{{"pair", 5}}});
    EXPECT_EQ(day->to(alarm), (std::vector<int>{alarm}));
    Lines const answers = day->answers();
    ASSERT_EQ(answers.size(), 1u) << day->told;
    for (char const* part :
         {"left on -> failed between 4 and 10", "right on -> failed between 4 and 10", "(rank 2"})
        EXPECT_NE(answers[0].find(part), std::string::npos) << answers[0];
    EXPECT_EQ(day->to(40), (std::vector<int>{}));
}

// It is light from 1 to 8, and dark before and after. The pump fails by one transition in the light
// and by another in the dark, to the same mode, so that the search has one answer with the name of
// one of them. The dates 4 to 7 are those of the one; of the other, 9 and 10, and 8 is of both. The
// candidates stay apart, since the last thing that happened is another one.
TEST_F(Dates, EveryFailureThatLeadsToTheModeIsDated) {
    begin("continuity,dates,histories", {{{"wide", 5}}}, lamp_pumps_model);
    day->command(8.0, "lamp.cmd=off");
    EXPECT_EQ(day->to(alarm), (std::vector<int>{alarm}));
    EXPECT_EQ(day->answers(), (Lines{"wide on -> failed between 8 and 10 (rank 1)",
                                     "wide on -> failed between 4 and 7 (rank 1)"}));
    ASSERT_EQ(theRun().tracked_trajs.size(), 2u);
    expectBounds(Day::bounds("wide.level", 0), 4.0, 15.0);
    expectBounds(Day::bounds("wide.level", 1), 2.0, 10.5);
    EXPECT_EQ(day->to(40), (std::vector<int>{}));
}

// The valve is commanded at 5 and sticks: the pipe stays empty, and should be [0.9, 1.1] at 6. A
// failure that a command guards has the date of the command. What was commanded since is done, too.
TEST_F(Dates, AFailureAtACommandHasItsDate) {
    begin("continuity,dates,histories", {});
    day->command(5.0, "valve.cmd=open");
    day->command(7.0, "lamp.cmd=off");
    EXPECT_EQ(day->to(7), (std::vector<int>{7}));
    EXPECT_EQ(day->answers(), (Lines{"valve closed -> stuck at 5 (rank 1)"}));
    EXPECT_TRUE(Day::holds("valve.mode=stuck"));
    EXPECT_TRUE(Day::holds("lamp.mode=dark"));
    EXPECT_EQ(day->to(20), (std::vector<int>{}));
}

// An event whose date is that of no step was not given, and is not given later.
TEST_F(Dates, AnEventThatNoStepHasMetIsNotReplayed) {
    begin("continuity,dates", {{{"wide", 5}}});
    day->command(11.2, "lamp.cmd=off");
    day->to(alarm);
    EXPECT_EQ(day->answers(),
              (Lines{"wide on -> failed between 4 and 10 (rank 1, probability 0.5)"}));
    EXPECT_TRUE(Day::holds("lamp.mode=lit"));
}

// The lamp commands the valve when it is lit, at the next free step: once, however often that is
// replayed.
TEST_F(Dates, WhatReplaysCommandIsForgotten) {
    begin("continuity,dates", {{{"wide", 5}}});
    for (auto const& transition : theComp("lamp")->getCompTransitions())
        if (!transition->idle && transition->postMode == theAtom("lamp.mode=lit"))
            transition->post->addAtom(theAtom("valve.cmd=none"), true);
    day->to(alarm - 1);
    std::size_t const events = theRun().scheduler.scenario.size();
    EXPECT_EQ(events, 2u);
    day->step();
    EXPECT_EQ(day->answers().size(), 1u);
    EXPECT_EQ(theRun().scheduler.scenario.size(), events);
}

// In an unknown mode anything from nothing to 1.5 may flow in, so every date up to 10 agrees; that
// of 0 lies before the lamp is lit, and its history is another one. The history says that it is
// unknown, and so does the run.
TEST_F(Dates, AFailureIntoAnUnknownModeSaysSo) {
    begin("continuity,dates,unknown", {{{"odd", 5}}});
    EXPECT_EQ(day->to(alarm), (std::vector<int>{alarm}));
    EXPECT_EQ(day->answers(), (Lines{"explained only by an unknown mode",
                                     "odd on -> unknown between 1 and 10 (rank 1, probability 1)",
                                     "odd on -> unknown at 0 (rank 1, probability 1)"}));
    EXPECT_TRUE(Day::candidate().traj->isUnknown());
    EXPECT_EQ(day->lines("switching to blind state tracking").size(), 1u);
}

// A step that a failure makes has a weight like every other.
TEST_F(Dates, TheStepOfAFailureIsWeighed) {
    begin("continuity,dates,likelihood", {{{"wide", 5}}});
    day->to(alarm);
    ASSERT_TRUE(Day::holds("wide.mode=failed"));
    double const proba = Day::candidate().traj->getLastState()->proba;
    EXPECT_GT(proba, 0.0);
    EXPECT_LE(proba, 0.01);  // of the failure
}

// ---- Two failures, one after the other ----

// `tight` rises by 0.9 to 1.1 and stops at 20: below 0.9 k from 23 on, so found at 24. 1.1 d must
// reach 20, or miss it once: d = 19 gives 20.9, d = 18 only 19.8. Dates 19 to 22. `late` rises by
// 0.0625 to 1.5 and stops at 3: below 0.0625 k from 49 on, found at 50. 1.5 d must reach 3: dates 2
// to 48. Those up to 18 lie before the failure that is known already, which then comes at its first
// date.
TEST_F(Dates, AStartBeforeAKnownFailureTakesItAgain) {
    begin("continuity,dates,again", {{{"tight", 20}, {"late", 3}}});
    EXPECT_EQ(day->to(24), (std::vector<int>{24}));
    EXPECT_EQ(day->answers(),
              (Lines{"tight on -> failed between 19 and 22 (rank 1, probability 1)"}));
    EXPECT_EQ(day->to(50), (std::vector<int>{50}));
    EXPECT_EQ(day->answers(),
              (Lines{"tight on -> failed between 19 and 22, late on -> failed between 19 and 48 "
                     "(rank 2, probability 1)",
                     "late on -> failed between 2 and 18, tight on -> failed at 19 (rank 2, "
                     "probability 1)"}));
    for (int const place : {0, 1}) {
        EXPECT_EQ(Day::candidate(place).traj->rank, 2.0);
        EXPECT_TRUE(Day::holds("tight.mode=failed", place));
        EXPECT_TRUE(Day::holds("late.mode=failed", place));
    }
    EXPECT_EQ(day->to(60), (std::vector<int>{}));
}

// ---- The budget ----

// A start of c cycles back takes c cycles. In 15 cycles 2 + 3 + 4 + 5 have room, that is the dates
// 10 to 7; the next one is broken off. That the level bursts takes one cycle for each of its dates.
TEST_F(Dates, WhenTheBudgetIsSpentTheEarliestDatesAreLeftOut) {
    for (int const budget : {30, 1000}) {
        begin("continuity,dates", {{{"wide", 5}}});
        day->options.isolation = CYCLE_DETECT;
        day->to(alarm);
        RunState& run = theRun();
        ASSERT_EQ(run.tracked_trajs.size(), 1u);
        std::unique_ptr<hybTrajectory> candidate = std::move(run.tracked_trajs.begin()->second);
        run.hybNT = nullptr;
        run.tracked_trajs.clear();
        HybMap found, dated;
        bool whole = false;
        streamsOf([&] {
            sn_detectAndIsolate(candidate->rt.get(), CYCLE_DETECT + 1);
            insertDiagnosis(run,
                            std::make_unique<hybTrajectory>(candidate.get(),
                                                            candidate->traj->getCurrentTime() + 1),
                            found);
            whole = dateExplanations(run, *candidate, found, 2, day->time, budget, dated);
        });
        ASSERT_EQ(dated.size(), 1u);
        EXPECT_EQ(whole, budget == 1000);
        expectBounds(sn_getVarDico(dated.begin()->second->rt.get(), "wide.level")->old,
                     budget == 1000 ? 2.0 : 3.5, 15.0);
    }
}

}  // namespace
