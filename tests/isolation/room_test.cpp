// The room's fault files, from alarm to explanation: what is found, and that what was found follows
// the measures from then on.

#include "diagnosis/fault_run.h"
#include "fixtures/the_run.h"

using namespace diagnosis_fixture;

namespace {

// A run of `detect steps faultN 3`, and what was seen on the way.
class WatchedRun {
public:
    WatchedRun(std::string const& file, int level, int mode = RUN_DETECT)
        : run({file, level, 3, mode}) {}

    void to(int last) {
        while (run.time < last) {
            bool const nominal = run.step();
            errors += run.told;
            if (theRun().diag_flag && detection == 0)
                detection = run.time;
            else if (!nominal && theRun().diag_flag)
                ++misbehavioursAfter;
        }
    }

    FaultRun run;
    std::string errors;
    int detection = 0;
    int misbehavioursAfter = 0;
};

class EveryLevel : public testing::TestWithParam<int> {};

// The thermostat sticks on at 22; three measures later than the first one outside, at 27, that is
// found, and the candidate that says so agrees with every measure up to 120.
TEST_P(EveryLevel, FindsTheThermostatStuckOn) {
    WatchedRun run("stuck_on", GetParam());
    run.to(120);
    EXPECT_EQ(run.detection, 27);
    EXPECT_GT(FaultRun::count("stuck_on"), 0);
    EXPECT_EQ(run.misbehavioursAfter, 0);
    EXPECT_EQ(run.errors.find("all trajs misbehave"), std::string::npos);
}

// It is stuck off from the start, and found at the third measure.
TEST_P(EveryLevel, FindsTheThermostatStuckOff) {
    WatchedRun run("stuck_off", GetParam());
    run.to(120);
    EXPECT_EQ(run.detection, 3);
    EXPECT_GT(FaultRun::count("stuck_off"), 0);
    EXPECT_EQ(run.misbehavioursAfter, 0);
}

// Nothing in the model says that a window opens by itself or that a sensor lies: the run goes on,
// with or without an explanation of its own, to its end.
TEST_P(EveryLevel, GoesOnWhereTheModelHasNoSuchFault) {
    for (char const* file : {"window_open", "sensor_bias", "sensor_dead"}) {
        SCOPED_TRACE(file);
        WatchedRun run(file, GetParam());
        run.to(120);
        EXPECT_NE(run.errors.find("Diagnosis completed"), std::string::npos);
        EXPECT_FALSE(theRun().tracked_trajs.empty());
        EXPECT_EQ(theRun().hybNT, theRun().tracked_trajs.begin()->second.get());
    }
}

// Without merging, the candidates of the alarm are diagnosed one by one, and the run goes on.
TEST_P(EveryLevel, DiagnosesEveryCandidateWithoutMerging) {
    WatchedRun run("stuck_on", GetParam(), RUN_NOMERGE);
    run.to(35);
    EXPECT_EQ(run.detection, 27);
    EXPECT_NE(run.errors.find("Diagnosis completed"), std::string::npos);
    EXPECT_FALSE(theRun().tracked_trajs.empty());
}

INSTANTIATE_TEST_SUITE_P(Levels, EveryLevel, testing::Values(1, 2, 3));

// The text names each influence that was active upstream of the rate: the exchange, the room's own
// temperature, its integral one cycle before, the outside (the heater is off in the nominal
// candidate), and the uncertain term; each is a diagnosis of its own, in the order of the causes.
TEST(DiagnosisText, NamesTheSuspectsUpstream) {
    WatchedRun run("stuck_on", 1);
    run.to(27);
    EXPECT_NE(
        run.errors.find("Diagnostic Results:\n"
                        "[{R1.i4,0,((room.mode=closed))}]"
                        "[{R1.i6,0,(((room.mode=closed)) | ((room.mode=open)))}]"
                        "[{R1.i2,1,(((room.mode=closed)) | ((room.mode=open)))}]"
                        "[{R1.i1,0,(((thermostat.mode=stuck_off)) | ((thermostat.mode=off)))}]"
                        "[{R1.i3,0,(((room.mode=closed)) | ((room.mode=open)))}]\n"),
        std::string::npos);
}

// With one measure, which misbehaves, every level is the first: nothing can exonerate.
TEST(DiagnosisText, IsTheSameAtEveryLevelWithOneMeasure) {
    std::vector<std::string> texts;
    for (int level : {1, 2, 3}) {
        WatchedRun run("stuck_off", level);
        run.to(3);
        std::size_t const start = run.errors.find("Diagnostic Results:");
        texts.push_back(run.errors.substr(start, run.errors.find('\n', start + 22) - start));
    }
    EXPECT_EQ(texts[0], texts[1]);
    EXPECT_EQ(texts[0], texts[2]);
}

}  // namespace
