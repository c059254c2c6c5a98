// Each oracle finds what it is for, and the generator repeats itself.
#include "fuzz/oracles.h"

#include <gtest/gtest.h>

#include "fuzz/shrink.h"

namespace {

using namespace fuzz;

// A run of one step of the room that ended well.
SessionCase oneStep() {
    SessionCase session;
    session.model = "therm";
    session.args = {"m", "d"};
    return session;
}

Outcome wellDone() {
    Outcome outcome;
    outcome.out = "writing 1 trajectories\n";
    outcome.err = "  Initializations done.\n-- time = 1 ---\nLeaving tavro-exec.\n";
    outcome.files["disp/d"] = "1 2 3 4 \n1 2 3 4 \n";
    return outcome;
}

std::string kindOf(SessionCase const& session, Outcome const& outcome) {
    Findings const found = judge(session, outcome);
    return found ? found->kind : "";
}

TEST(Judgement, HasNothingAgainstARunThatEndedWell) {
    EXPECT_EQ(kindOf(oneStep(), wellDone()), "");
}

TEST(Judgement, FindsSignalsAndSanitizers) {
    Outcome outcome = wellDone();
    outcome.signal = 11;
    EXPECT_EQ(kindOf(oneStep(), outcome), "crash");
    outcome.signal = 24;  // the time of the processor is over
    EXPECT_EQ(kindOf(oneStep(), outcome), "time");
    outcome = wellDone();
    outcome.status = 99;
    outcome.err += "==ERROR: a leak\n";
    EXPECT_EQ(kindOf(oneStep(), outcome), "sanitizer");
}

TEST(Judgement, WantsAReasonForEachStatus) {
    for (int const status : {0, 1, 2, 3, 4, 130, 143, 255}) {
        Outcome outcome = wellDone();
        outcome.err = "";
        outcome.status = status;
        EXPECT_EQ(kindOf(oneStep(), outcome), "status") << status;
    }
    Outcome outcome = wellDone();
    outcome.status = 255;
    outcome.err += "run stopped at time 1: nothing explains the misbehaviour\n";
    EXPECT_EQ(kindOf(oneStep(), outcome), "");
}

TEST(Judgement, WantsAStrictSessionToTellALossByItsStatus) {
    SessionCase session = oneStep();
    session.args.insert(session.args.begin(), "--strict");
    Outcome outcome = wellDone();
    outcome.err += "Can't write file bench1.bmk: No space left on device\n";
    EXPECT_EQ(kindOf(session, outcome), "strict");
    outcome.status = 3;
    EXPECT_EQ(kindOf(session, outcome), "");
}

TEST(Judgement, CountsRowsAndTheirValues) {
    Outcome outcome = wellDone();
    outcome.files["disp/d"] = "1 2 3 4 \n";
    EXPECT_EQ(kindOf(oneStep(), outcome), "rows") << "one is missing";
    outcome.files["disp/d"] = "1 2 3 4 \n1 2 3 4 \n1 2 3 4 \n";
    EXPECT_EQ(kindOf(oneStep(), outcome), "rows") << "one too many";
    outcome.files["disp/d"] = "1 2 3 4 \n1 2 3 \n";
    EXPECT_EQ(kindOf(oneStep(), outcome), "rows") << "a value is missing";
}

TEST(Judgement, CountsCandidatesOfADetection) {
    SessionCase session = oneStep();
    session.args.insert(session.args.begin(), "--candidates=1");
    Outcome outcome = wellDone();
    outcome.out = "entering detect\nwriting 2 trajectories\n";
    outcome.files["disp/d"] = "1 2 3 4 \n1 2 3 4 5 6 7 8 \n";
    EXPECT_EQ(kindOf(session, outcome), "candidates");
}

TEST(Difference, TellsTextsAndFiles) {
    Outcome other = wellDone();
    EXPECT_EQ(difference(wellDone(), other), "");
    other.files["htraj0.dot"] = "";
    EXPECT_EQ(difference(wellDone(), other), "htraj0.dot is there too");
    EXPECT_EQ(difference(other, wellDone()), "htraj0.dot is missing");
    other = wellDone();
    other.err = "  Initializations done.\n-- time = 2 ---\nLeaving tavro-exec.\n";
    EXPECT_EQ(difference(wellDone(), other),
              "error stream: expected \"-- time = 1 ---\", found \"-- time = 2 ---\"");
}

TEST(Mask, HidesTimingsAlone) {
    Outcome outcome;
    outcome.out = "cycle: 0.01 seconds\nTime : 1e-06\nTime : 3\nmeasures: -nan 1\n";
    outcome.files["cycbench.bmk"] = "2\t0.5\n";
    outcome.files["itmsbench.bmk"] = "0 0.5 3 4\n";
    mask(outcome);
    EXPECT_EQ(outcome.out, "cycle: (time)\nTime : (time)\nTime : 3\nmeasures: nan 1\n");
    EXPECT_EQ(outcome.files["cycbench.bmk"], "2\n");
    EXPECT_EQ(outcome.files["itmsbench.bmk"], "0 3 4\n");
}

TEST(Generator, GivesTheSameSessionForTheSameSeed) {
    for (std::uint64_t seed : {1, 7, 99}) {
        SessionCase const one = caseOf(seed), other = caseOf(seed);
        EXPECT_EQ(one.script, other.script);
        EXPECT_EQ(one.args, other.args);
        EXPECT_EQ(one.files, other.files);
    }
}

TEST(Shrunk, LeavesNothingOutThatTheFindingNeeds) {
    SessionCase session = oneStep();
    session.files["obs/m"] = "0.8\n0.9\n";
    session.script = "help\nquit\n";
    SessionCase const same = shrunk(session, "no such kind");
    EXPECT_EQ(same.script, session.script) << "nothing may go when nothing shows the finding";
    EXPECT_EQ(same.files, session.files);
}

}  // namespace
