// The room's isolation at every threshold and accumulation time: when its text comes, and that
// these settings change nothing in it.
#include "diagnosis/fault_run.h"

using namespace diagnosis_fixture;

namespace {

class EverySetting : public testing::TestWithParam<int> {};

// With the thermostat stuck off, the room is too cold from the first measure on, so the alarm comes
// with the measure that the threshold asks for. What is suspected is the same at any time: upstream
// of the temperature's rate are, in the order of the causes, the exchange of a closed room with
// what heats it (the heater, which is on as far as is known), the room's own temperature and, one
// cycle before, its integral; and the uncertain term.
TEST_P(EverySetting, TheTextComesWithTheMeasureOfTheThreshold) {
    std::string const text =
        "Diagnostic Results:\n"
        "[{R1.i4,0,((room.mode=closed))}]"
        "[{T1.i1,0,(((thermostat.mode=stuck_on)) | ((thermostat.mode=on)))}]"
        "[{R1.i6,0,(((room.mode=closed)) | ((room.mode=open)))}]"
        "[{R1.i2,1,(((room.mode=closed)) | ((room.mode=open)))}]"
        "[{R1.i3,0,(((room.mode=closed)) | ((room.mode=open)))}]\n";
    for (int const accumulation : {GetParam(), 9 - GetParam()})
        for (int const level : {1, 2, 3}) {
            Setting setting;
            setting.file = "stuck_off";
            setting.level = level;
            setting.threshold = GetParam();
            setting.accumulation = accumulation;
            FaultRun run(setting);
            ASSERT_TRUE(run.toAlarm(20));
            EXPECT_EQ(run.time, GetParam());
            EXPECT_TRUE(run.tells(text.c_str())) << run.told;
        }
}

INSTANTIATE_TEST_SUITE_P(Thresholds, EverySetting, testing::Range(1, 9));

}  // namespace
