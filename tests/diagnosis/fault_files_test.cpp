// Every measure file of the room, at every level and threshold, with merging and without: the run
// stays in order, and a thermostat that sticks is found wherever the search can see it.
//
// The search takes a failure once, at the newest step that it fits. So it finds the stuck mode from
// a history whose newest step is the thermostat's own switch. An event of the room that came after
// the switch, such as the temperature falling below 17 again, makes a newer step; the failure is
// then spent there, where nothing leads on to it, and only the unknown mode is left as explanation.
// A run without isolation, which keeps its misbehaving candidates, tells which of the two it is.
#include <ostream>

#include "diagnosis/fault_run.h"
#include "fixtures/the_run.h"

using namespace diagnosis_fixture;

namespace diagnosis_fixture {

void PrintTo(Setting const& setting, std::ostream* os) {
    *os << setting.file << " fault" << setting.level << " " << setting.threshold << " mode "
        << setting.mode << " accumulation " << setting.accumulation;
}

}  // namespace diagnosis_fixture

namespace {

// The last of the faults is reported by then.
constexpr int lastStep = 80;
constexpr int stepsAfterAlarm = 20;
// Without merging the candidates of a run may double in every cycle; one that has become so large
// shows nothing more.
constexpr std::size_t manyCandidates = 25;

// Up to the alarm, and on for some steps.
void expectOrder(Setting const& setting) {
    SCOPED_TRACE(testing::PrintToString(setting));
    FaultRun run(setting);
    int end = lastStep;
    while (run.time < end && theRun().tracked_trajs.size() <= manyCandidates) {
        bool const nominal = run.step();
        expectValid();
        if (testing::Test::HasFatalFailure())
            return;
        if (!nominal && end == lastStep)
            end = run.time + stepsAfterAlarm;
    }
}

class EveryFile : public testing::TestWithParam<char const*> {};

TEST_P(EveryFile, TheRunStaysInOrderAtEveryThreshold) {
    for (int mode : {RUN_DETECT, RUN_NOMERGE})
        for (int threshold = 1; threshold <= 8; ++threshold)
            expectOrder({GetParam(), 1, threshold, mode});
}

TEST_P(EveryFile, TheRunStaysInOrderAtEveryLevel) {
    for (int level : {2, 3})
        for (int threshold : {3, 6})
            expectOrder({GetParam(), level, threshold});
}

TEST_P(EveryFile, TheRunStaysInOrderWithAMemoryOfMisbehaviour) {
    for (int accumulation : {1, 2, 7})
        expectOrder({GetParam(), 1, 3, RUN_DETECT, accumulation});
}

INSTANTIATE_TEST_SUITE_P(Files, EveryFile,
                         testing::Values("healthy", "sensor_bias", "sensor_dead", "sensor_noise",
                                         "stuck_off", "stuck_off_late", "stuck_on",
                                         "window_command", "window_open"),
                         [](auto const& tested) { return std::string(tested.param); });

// ---- A thermostat that sticks ----

// What the histories of the first alarm are like.
struct Alarm {
    int time = 0;
    bool switchedLast = false;
};

Alarm alarmOf(Setting setting) {
    setting.level = 0;
    FaultRun run(setting);
    if (!run.toAlarm(lastStep))
        return {};
    for (auto const& entry : theRun().tracked_trajs)
        if (switchedLast(*entry.second->traj))
            return {run.time, true};
    return {run.time, false};
}

void expectExplained(Setting const& setting, char const* mode) {
    Alarm const alarm = alarmOf(setting);
    ASSERT_NE(alarm.time, 0);
    FaultRun run(setting);
    ASSERT_TRUE(run.toAlarm(lastStep));
    EXPECT_EQ(run.time, alarm.time);
    EXPECT_TRUE(run.tells("Diagnosis completed\n"));
    EXPECT_GT(FaultRun::count("unknown"), 0);
    EXPECT_EQ(FaultRun::count(mode) > 0, alarm.switchedLast);
    EXPECT_EQ(FaultRun::count("on") + FaultRun::count("off"), 0);
    if (!alarm.switchedLast)
        return;
    // What was found goes on agreeing with every measure.
    for (int i = 0; i < stepsAfterAlarm; ++i)
        EXPECT_TRUE(run.step()) << "at " << run.time;
    EXPECT_GT(FaultRun::count(mode), 0);
}

struct Stuck {
    char const* file;
    char const* mode;
    int mostInARow;  // measures on one side of all bounds: a larger threshold has no alarm in time
};

void PrintTo(Stuck const& stuck, std::ostream* os) {
    *os << stuck.file;
}

class EveryStuckFile : public testing::TestWithParam<Stuck> {};

TEST_P(EveryStuckFile, IsExplainedByItsModeWhereTheSwitchCameLast) {
    for (int mode : {RUN_DETECT, RUN_NOMERGE})
        for (int threshold = 1; threshold <= GetParam().mostInARow; ++threshold) {
            // What is not merged grows to hundreds of candidates before a later alarm.
            if (mode == RUN_NOMERGE && threshold > 3)
                continue;
            Setting const setting{GetParam().file, 1, threshold, mode};
            SCOPED_TRACE(testing::PrintToString(setting));
            expectExplained(setting, GetParam().mode);
        }
}

INSTANTIATE_TEST_SUITE_P(Files, EveryStuckFile,
                         testing::Values(Stuck{"stuck_on", "stuck_on", 8},
                                         Stuck{"stuck_off", "stuck_off", 8},
                                         Stuck{"stuck_off_late", "stuck_off", 3}),
                         [](auto const& tested) { return std::string(tested.param.file); });

TEST(StuckOffLate, HasNoFourMeasuresInARowOutside) {
    EXPECT_EQ(alarmOf({"stuck_off_late", 0, 4}).time, 0);
}

// Both cases are there: with merging the bounds are wide enough for a room above 17, without it
// every candidate has cooled below by the time of the alarm.
TEST(StuckOn, IsFoundAsLongAsSomeCandidateIsStillAboveSeventeen) {
    EXPECT_TRUE(alarmOf({"stuck_on", 0, 1}).switchedLast);
    EXPECT_TRUE(alarmOf({"stuck_on", 0, 3}).switchedLast);
    EXPECT_FALSE(alarmOf({"stuck_on", 0, 3, RUN_NOMERGE}).switchedLast);
}

}  // namespace
