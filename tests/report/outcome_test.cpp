// The verdict on a run, and what is said of it.
#include "report/outcome.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "report/made_up.h"

namespace {

class Ending : public testing::Test {
protected:
    Outcome outcome(EarlyEnd const& end = {}) { return outcomeOf(recorder.record(), room, end); }
    static bool says(Outcome const& outcome, std::string const& words) {
        return std::any_of(outcome.answer.begin(), outcome.answer.end(), [&](auto const& sentence) {
            return sentence.find(words) != std::string::npos;
        });
    }
    void disagree(double time) {
        tavro::Candidate c = candidate(1, 1, 2);
        c.agrees = false;
        tavro::Step s = step(time, {c});
        s.alarms = {{"room.xd", tavro::Side::low}};
        recorder.add(measured(0), s);
    }

    tavro::Plant const room = tavro::Plant::builtin("therm");
    Recorder recorder{room, false};
};

TEST_F(Ending, NothingNoticedIsHealthyAndSaysHowWideTheBoundsWere) {
    recorder.add(measured(0.5), step(0, {candidate(1, 1, 2)}));
    recorder.add(measured(0.75), step(1, {candidate(1, 1, 2)}));
    Outcome const o = outcome();
    EXPECT_EQ(o.verdict, Verdict::healthy);
    EXPECT_FALSE(o.noticed);
    EXPECT_EQ(o.answer.front().substr(0, 24), "Healthy: 1 step, up to 1");
    EXPECT_TRUE(says(o,
                     "bounds of room.xd were 3 wide on average; it was measured from 0.5 to "
                     "0.75"));
}

TEST_F(Ending, BoundsPastUseForbidTrust) {
    recorder.add(measured(0), step(0, {candidate(1, 1, 2)}));
    tavro::Step s = step(1, {candidate(1, 1, 2)});
    s.pastUse = "room.xd";
    recorder.add(measured(0), s);
    Outcome const o = outcome();
    EXPECT_EQ(o.verdict, Verdict::healthy);
    EXPECT_TRUE(says(o, "Do not trust a silence from 1 s on"));
    EXPECT_FALSE(says(o, "wide on average"));
}

TEST_F(Ending, AMeasureThatWasNeverThereIsTold) {
    recorder.add(measured(missing), step(0, {candidate(1, 1, 2)}));
    EXPECT_TRUE(says(outcome(), "room.xd was never measured"));
}

TEST_F(Ending, TheBestStoryExplains) {
    recorder.add(measured(0), step(0, {candidate(1, 1, 2)}));
    recorder.add(measured(9), diagnosis(1, {candidate(3, 1, 2, {move("unknown", 0, 6)}, 0.2),
                                            candidate(2, 1, 2, {move("stuck_on", 4, 6)}, 0.8)}));
    Outcome const o = outcome();
    EXPECT_EQ(o.verdict, Verdict::explained);
    EXPECT_EQ(o.noticed, 1U);
    EXPECT_EQ(o.answer[0],
              "A fault, explained: thermostat on -> stuck_on between 4 and 6 s (probability 0.8).");
    EXPECT_EQ(o.answer[1], "Noticed at 1 s: measured room.xd above all bounds.");
    // One influence at two delays is one suspect to a reader.
    EXPECT_EQ(o.answer[2],
              "Suspects: R1.i4 (room.xdq to room.xd); or T1.i1 (thermostat.h to room.xdq).");
    EXPECT_EQ(o.answer[3],
              "It may also be: thermostat on -> unknown between 0 and 6 s (probability 0.2), of "
              "which the plant tells nothing more.");
}

TEST_F(Ending, AnUnknownModeExplainsNothing) {
    recorder.add(measured(9), diagnosis(0, {candidate(3, 1, 2, {move("unknown", 0, 6)}, 1.0)}));
    EXPECT_EQ(outcome().verdict, Verdict::unexplained);
}

TEST_F(Ending, WhatIsNoticedAndNotExplainedIsSaid) {
    recorder.add(measured(0), step(0, {candidate(1, 1, 2)}));
    disagree(1);
    Outcome const o = outcome();
    EXPECT_EQ(o.verdict, Verdict::unexplained);
    EXPECT_TRUE(says(o, "room.xd below all bounds"));
    EXPECT_TRUE(says(o, "nothing failed, though it does not agree"));
}

// An alarm that went away by itself is not explained by that.
TEST_F(Ending, AgreeingAgainIsNoExplanation) {
    disagree(0);
    recorder.add(measured(0), step(1, {candidate(1, 1, 2)}));
    EXPECT_EQ(outcome().verdict, Verdict::unexplained);
}

TEST_F(Ending, WhatWasDroppedMayHaveExplained) {
    disagree(0);
    tavro::Step s = step(1, {candidate(1, 1, 2)});
    s.dropped = 2;
    recorder.add(measured(0), s);
    Outcome const o = outcome();
    EXPECT_EQ(o.verdict, Verdict::limited);
    EXPECT_TRUE(says(o, "2 candidates were dropped"));
}

TEST_F(Ending, ARunThatStoppedSaysWhy) {
    recorder.add(measured(0), step(0, {candidate(1, 1, 2)}));
    EXPECT_EQ(outcome({EarlyEnd::interrupted, "interrupted"}).verdict, Verdict::interrupted);
    EXPECT_EQ(outcome({EarlyEnd::memory, "memory ran short"}).verdict, Verdict::limited);
    EXPECT_EQ(outcome({EarlyEnd::plant, "no cover"}).verdict, Verdict::plantIsSilent);
    Outcome const o = outcome({EarlyEnd::noDiagnosis, "nothing explains the misbehaviour"});
    EXPECT_EQ(o.verdict, Verdict::unexplained);
    EXPECT_TRUE(says(o, "The run stopped after 0 s: nothing explains the misbehaviour."));
}

// 6180 s = 3600 + 43 * 60
TEST_F(Ending, LongTimesAreToldInHours) {
    recorder.add(measured(9), diagnosis(6180, {candidate(2, 1, 2, {move("stuck_on", 4, 6)}, 1.0)}));
    EXPECT_TRUE(says(outcome(), "Noticed at 6180 s (1:43:00): measured"));
}

TEST_F(Ending, WithoutAStepThereIsNothingToTell) {
    Outcome const o = outcome({EarlyEnd::memory, "memory ran short"});
    EXPECT_TRUE(says(o, "The run stopped: memory ran short."));
}

}  // namespace
