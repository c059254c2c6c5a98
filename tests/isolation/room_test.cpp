// The room's fault files, from alarm to explanation: what is found, and that what was found follows
// the measures from then on.

#include "console/exchange.h"
#include "continuous/isolation.h"
#include "fixtures/reference_model.h"

namespace {

// A run of `detect steps faultN 3` on a measure file of the examples.
class FaultRun {
public:
    FaultRun(std::string const& file, int level, int mode = RUN_DETECT) {
        std::string const path = std::string(TAVRO_ROOM) + "/obs/" + file + ".obs";
        options.mode = mode;
        options.isolation = CYCLE_DETECT + level;
        options.threshold = 3;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        measIn = std::fopen(path.c_str(), "r");
        tavro_initialize(1, 0.01, "", 0);
        initDispAll(hybNT->rt.get(), 250.0);
        collect();
    }
    ~FaultRun() {
        std::fclose(measIn);
        measIn = nullptr;
    }

    void to(int last) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        for (; step <= last; ++step) {
            tavro_getMeasures("", 1, meas.data());
            bool nominal = false;
            tavro_doCycle(options, 0.0, step, nominal);
            if (diag_flag && detection == 0)
                detection = step;
            if (nominal == false && diag_flag && step > detection)
                ++misbehavioursAfter;
        }
        collect();
    }

    // Some candidate's newest mode of the thermostat is *mode*.
    static bool holds(char const* atom) {
        for (auto const& entry : tracked_trajs) {
            Trajectory const* traj = entry.second->traj.get();
            TrajEl const* element = traj->getElt(atom, traj->getCurrentTime(), 0);
            if (element != nullptr && element->evalTrajEl())
                return true;
        }
        return false;
    }

    ReferenceModel model;
    std::string errors;
    int detection = 0;
    int misbehavioursAfter = 0;

private:
    void collect() {
        testing::internal::GetCapturedStdout();
        errors += testing::internal::GetCapturedStderr();
    }

    RunOptions options;
    int step = 1;
};

class EveryLevel : public testing::TestWithParam<int> {};

// The thermostat sticks on at 22; three measures later than the first one outside, at 27, that is
// found, and the candidate that says so agrees with every measure up to 120.
TEST_P(EveryLevel, FindsTheThermostatStuckOn) {
    FaultRun run("stuck_on", GetParam());
    run.to(120);
    EXPECT_EQ(run.detection, 27);
    EXPECT_TRUE(FaultRun::holds("thermostat.mode=stuck_on"));
    EXPECT_EQ(run.misbehavioursAfter, 0);
    EXPECT_EQ(run.errors.find("all trajs misbehave"), std::string::npos);
}

// It is stuck off from the start, and found at the third measure.
TEST_P(EveryLevel, FindsTheThermostatStuckOff) {
    FaultRun run("stuck_off", GetParam());
    run.to(120);
    EXPECT_EQ(run.detection, 3);
    EXPECT_TRUE(FaultRun::holds("thermostat.mode=stuck_off"));
    EXPECT_EQ(run.misbehavioursAfter, 0);
}

// Nothing in the model says that a window opens by itself or that a sensor lies: the run goes on,
// with or without an explanation of its own, to its end.
TEST_P(EveryLevel, GoesOnWhereTheModelHasNoSuchFault) {
    for (char const* file : {"window_open", "sensor_bias", "sensor_dead"}) {
        SCOPED_TRACE(file);
        FaultRun run(file, GetParam());
        run.to(120);
        EXPECT_NE(run.errors.find("Diagnosis completed"), std::string::npos);
        EXPECT_FALSE(tracked_trajs.empty());
        EXPECT_EQ(hybNT, tracked_trajs.begin()->second.get());
    }
}

// Without merging, the candidates of the alarm are diagnosed one by one, and the run goes on.
TEST_P(EveryLevel, DiagnosesEveryCandidateWithoutMerging) {
    FaultRun run("stuck_on", GetParam(), RUN_NOMERGE);
    run.to(35);
    EXPECT_EQ(run.detection, 27);
    EXPECT_NE(run.errors.find("Diagnosis completed"), std::string::npos);
    EXPECT_FALSE(tracked_trajs.empty());
}

INSTANTIATE_TEST_SUITE_P(Levels, EveryLevel, testing::Values(1, 2, 3));

// The text names each influence that was active upstream of the rate: the exchange, the room's own
// temperature, its integral one cycle before, the outside (the heater is off in the nominal
// candidate), and the uncertain term; each is a diagnosis of its own, in the order of the causes.
TEST(DiagnosisText, NamesTheSuspectsUpstream) {
    FaultRun run("stuck_on", 1);
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
        FaultRun run("stuck_off", level);
        run.to(3);
        std::size_t const start = run.errors.find("Diagnostic Results:");
        texts.push_back(run.errors.substr(start, run.errors.find('\n', start + 22) - start));
    }
    EXPECT_EQ(texts[0], texts[1]);
    EXPECT_EQ(texts[0], texts[2]);
}

}  // namespace
