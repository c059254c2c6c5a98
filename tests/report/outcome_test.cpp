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

// The best story stands first, whatever its probability, if it agrees and the other does not.
TEST_F(Ending, WhatDoesNotAgreeComesBehind) {
    std::vector<tavro::Candidate> both = {candidate(2, 1, 2, {move("stuck_on", 4, 4)}, 0.9),
                                          candidate(3, 1, 2, {move("stuck_off", 5, 5)}, 0.1)};
    recorder.add(measured(9), diagnosis(6, both));
    both.front().agrees = false;
    recorder.add(measured(9), step(7, both));
    Outcome const o = outcome();
    EXPECT_EQ(o.answer[0],
              "A fault, explained: thermostat on -> stuck_off at 5 s (probability 0.1).");
    EXPECT_TRUE(says(o,
                     "It may also be: thermostat on -> stuck_on at 4 s (probability 0.9), though "
                     "it does not agree."));
}

TEST_F(Ending, WithoutAStoryNothingIsExplained) {
    recorder.add(measured(9), diagnosis(1, {}));
    Outcome const o = outcome();
    EXPECT_EQ(o.verdict, Verdict::unexplained);
    EXPECT_FALSE(says(o, "Still followed"));
}

// A story of two failures is told whole, and a healthy move beside a failure is left out.
TEST_F(Ending, AllFailuresOfAStoryAreTold) {
    recorder.add(measured(9),
                 diagnosis(7, {candidate(2, 1, 2,
                                         {move("stuck_on", -1, 5), move("off", 5, 5, false),
                                          move("stuck_off", 6, 6)},
                                         1.0)}));
    EXPECT_EQ(outcome().answer[0],
              "A fault, explained: thermostat on -> stuck_on before the steps that are kept, and "
              "thermostat on -> stuck_off at 6 s (probability 1).");
}

TEST_F(Ending, MovesMayExplainWithoutAFailure) {
    recorder.add(measured(9), diagnosis(7, {candidate(2, 1, 2, {move("off", 5, 6, false)}, 1.0)}));
    EXPECT_EQ(outcome().answer[0],
              "A fault, explained: thermostat on -> off between 5 and 6 s without a failure "
              "(probability 1).");
}

TEST_F(Ending, WhatWasNoticedBeforeAnInterruptIsTold) {
    disagree(1);
    Outcome const o = outcome({EarlyEnd::interrupted, "interrupted"});
    EXPECT_EQ(o.answer[0], "Interrupted: 0 steps, up to 1 s.");
    EXPECT_EQ(o.answer[2], "Noticed at 1 s: measured room.xd below all bounds.");
}

// Of eight stories one explains, five are told, and two are left.
TEST_F(Ending, ManyStoriesAreCounted) {
    std::vector<tavro::Candidate> all;
    for (int i = 0; i < 8; ++i)
        all.push_back(candidate(i, 1, 2, {move("m" + std::to_string(i), 3, 3)}, 0.125));
    recorder.add(measured(9), diagnosis(7, all));
    Outcome const o = outcome();
    EXPECT_TRUE(says(o, "on -> m5 at 3 s (probability 0.125); and 2 more."));
    EXPECT_FALSE(says(o, "m6"));
}

// Influences that act together, one without a name, and one that the plant does not know.
TEST_F(Ending, SuspectsAreNamedAsWellAsTheyCanBe) {
    tavro::Step s = diagnosis(1, {candidate(2, 1, 2, {move("stuck_on", 0, 0)}, 1.0)});
    s.suspects = {{{"R1.i4", 1, "()"}, {"T1.i1", 1, "()"}}, {{"", 1, "()"}}, {{"R9.i9", 1, "()"}}};
    recorder.add(measured(9), s);
    EXPECT_TRUE(says(outcome(),
                     "Suspects: R1.i4 (room.xdq to room.xd) with T1.i1 (thermostat.h to room.xdq); "
                     "or an influence without a name; or R9.i9."));
}

TEST_F(Ending, ManySuspectsAreCounted) {
    tavro::Step s = diagnosis(1, {candidate(2, 1, 2, {move("stuck_on", 0, 0)}, 1.0)});
    s.suspects.clear();
    for (char const name : {'a', 'b', 'c', 'd', 'e', 'f'})
        s.suspects.push_back({{std::string(1, name), 1, "()"}});
    recorder.add(measured(9), s);
    EXPECT_TRUE(says(outcome(), "Suspects: a; or b; or c; or d; or e; and 1 further set."));
}

TEST_F(Ending, WithoutBoundsAMeasureWasNotWatched) {
    double const infinite = std::numeric_limits<double>::infinity();
    recorder.add(measured(0.5), step(0, {candidate(1, -infinite, 2)}));
    EXPECT_TRUE(says(outcome(), "Nothing bounds room.xd: it was not watched."));
}

TEST(Verdicts, HaveAWordForPrograms) {
    EXPECT_STREQ(wordOf(Verdict::healthy), "healthy");
    EXPECT_STREQ(wordOf(Verdict::explained), "explained");
    EXPECT_STREQ(wordOf(Verdict::unexplained), "unexplained");
    EXPECT_STREQ(wordOf(Verdict::interrupted), "interrupted");
    EXPECT_STREQ(wordOf(Verdict::limited), "stopped");
    EXPECT_STREQ(wordOf(Verdict::plantIsSilent), "stopped");
}

}  // namespace
