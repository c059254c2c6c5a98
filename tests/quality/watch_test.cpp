// What the verdicts say of runs whose outcome is known by hand, and what the meter counts.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <vector>

#include "quality/grouping.h"
#include "quality/line_watch.h"
#include "quality/meters.h"
#include "quality/room_watch.h"

using namespace quality;

TEST(Meter, CountsWhatIsHeldAtOnce) {
    Meter const meter(1 << 20);
    { std::vector<char> const first(1000); }
    { std::vector<char> const second(3000); }
    EXPECT_GE(meter.read().bytes, 3000U);
    EXPECT_LT(meter.read().bytes, 4000U);
}

TEST(Meter, RefusesWhatIsBeyondItsLimit) {
    {
        Meter const meter(10000);
        EXPECT_NO_THROW(std::vector<char>(9000));
        EXPECT_THROW(std::vector<char>(11000), std::bad_alloc);
    }
    EXPECT_NO_THROW(std::vector<char>(11000));
}

TEST(RoomVerdict, TellsFalseAlarmsFromNoticedFaults) {
    RoomVerdict verdict;
    EXPECT_FALSE(verdict.falseAlarm() || verdict.noticed());
    verdict.alarm = 10;
    EXPECT_TRUE(verdict.falseAlarm());
    verdict.struck = 11;
    EXPECT_TRUE(verdict.falseAlarm());
    EXPECT_FALSE(verdict.noticed());
    verdict.struck = 10;
    EXPECT_FALSE(verdict.falseAlarm());
    EXPECT_TRUE(verdict.noticed());
}

// A sensor that shows 0.5 too much, where the bounds are narrower than that: the third false
// measure is the alarm of a threshold of 3. Nothing in the model explains it, the thermostat works.
TEST(RoomWatch, NoticesABiasedSensorAtOnce) {
    RoomSetting const day{.fault = RoomFault::sensorBias,
                          .onset = 10,
                          .uncertainty = Uncertainty::midpoint,
                          .steps = 15};
    RoomVerdict const verdict = watchRoom(tavro::Plant::builtin("therm"), day, {.isolation = 0});
    EXPECT_EQ(verdict.struck, 10);
    EXPECT_EQ(verdict.alarm, 12);
    EXPECT_FALSE(verdict.diagnosed);
    EXPECT_EQ(verdict.samples, 16);
    EXPECT_TRUE(verdict.atEnd.first);
}

// Story by story, what the enumeration finds and what is answered belong together.
TEST(LineWatch, NeverFindsMoreThanThereIs) {
    tavro::Plant const plant = tavro::Plant::builtin("line");
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        LineVerdict const v = watchLine(plant, {1, 6, 1, seed}, {});
        EXPECT_LE(v.found, v.minimal) << seed;
        EXPECT_LE(v.foundKinds, v.minimalKinds) << seed;
        EXPECT_LE(v.found + v.wrong, v.answers) << seed;
        EXPECT_LE(v.wellOrdered, v.diagnoses) << seed;
        EXPECT_LE(v.first, v.among) << seed;
    }
}

TEST(Quantile, IsOneOfTheValues) {
    EXPECT_EQ(quantile({3, 1, 2, 4}, 0.5), 2);
    EXPECT_EQ(quantile({3, 1, 2}, 0.5), 2);
    EXPECT_EQ(quantile({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 0.9), 9);
    EXPECT_EQ(quantile({5}, 1.0), 5);
}

TEST(Markdown, SharesTellTheirWhole) {
    EXPECT_EQ(share(3, 24), "3/24 (12 %)");
    EXPECT_EQ(share(0, 0), "-");
    EXPECT_EQ(percent(1, 3), "33.33 %");
}
