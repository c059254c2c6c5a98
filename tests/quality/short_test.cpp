// A short version of the measurement, with fixed seeds: what the engine may never do worse. What it
// is known not to see is not asserted.
#include <gtest/gtest.h>

#include "quality/command_line.h"
#include "quality/line_suite.h"
#include "quality/room_suite.h"

using namespace quality;

namespace {

// Shortened, so that the suite stays quick under the sanitizers too.
std::vector<RoomCase> shortened(std::vector<RoomCase> cases, int steps) {
    for (RoomCase& one : cases)
        one.day.steps = steps;
    return cases;
}

std::string nameOf(RoomCase const& c) {
    return std::string(quality::nameOf(c.day.fault)) + " onset " + std::to_string(c.day.onset) +
           " noise " + std::to_string(c.day.noise) + " threshold " + std::to_string(c.threshold) +
           " seed " + std::to_string(c.day.seed);
}

std::vector<RoomCase> soundOnes(std::vector<RoomCase> const& cases) {
    std::vector<RoomCase> sound;
    for (RoomCase const& one : cases)
        if (one.day.noise == 0.0)
            sound.push_back(one);
    return sound;
}

// The faults of the thermostat that strike in the first swing, and those that show at once.
RoomVerdict early(RoomFault fault, std::uint64_t seed) {
    RoomSetting const day{.fault = fault, .onset = 20, .seed = seed, .steps = 120};
    return watchRoom(tavro::Plant::builtin("therm"), day, {.isolation = 0});
}

}  // namespace

// Within the model nothing is ever reported, and some candidate always holds the truth.
TEST(Short, HealthyRoomsAreNeverReported) {
    for (RoomResult const& result :
         watchRooms(shortened(soundOnes(healthyRooms(4)), 150), "classic", 1)) {
        EXPECT_FALSE(result.verdict.alarm) << nameOf(result.asked);
        EXPECT_FALSE(result.verdict.stopped) << nameOf(result.asked);
        EXPECT_EQ(result.verdict.samples, 151) << nameOf(result.asked);
        EXPECT_EQ(result.verdict.holdTemperature, 151) << nameOf(result.asked);
        EXPECT_EQ(result.verdict.holdRate, 151) << nameOf(result.asked);
    }
}

TEST(Short, EarlyFaultsOfTheRoomAreNoticed) {
    for (RoomFault const fault : {RoomFault::stuckOn, RoomFault::sensorBias, RoomFault::draught})
        for (std::uint64_t seed = 1; seed <= 3; ++seed) {
            RoomVerdict const verdict = early(fault, seed);
            EXPECT_TRUE(verdict.noticed()) << quality::nameOf(fault) << " seed " << seed;
            EXPECT_FALSE(verdict.falseAlarm()) << quality::nameOf(fault) << " seed " << seed;
        }
}

// The engine never searches without need, and never answers what cannot have been.
TEST(Short, FeedLinesAreNeverReportedWithoutNeed) {
    for (LineResult const& result : watchLines(feedLines(4), "classic", 1)) {
        LineVerdict const& verdict = result.verdict;
        std::string const story = std::to_string(result.asked.failures) + " failures, " +
                                  std::to_string(result.asked.commands) + " commands, seed " +
                                  std::to_string(result.asked.seed);
        EXPECT_FALSE(verdict.falseAlarm()) << story;
        EXPECT_EQ(verdict.shows.has_value(), verdict.alarm.has_value()) << story;
        EXPECT_EQ(verdict.wrong, 0) << story;
        if (result.asked.failures == 0) {
            EXPECT_FALSE(verdict.stopped) << story;
            EXPECT_EQ(verdict.mostCandidates, 1U) << story;
        }
    }
}

// Which thread follows which case changes nothing that is told.
TEST(Short, JobsChangeNothing) {
    std::vector<RoomCase> const cases = shortened(healthyRooms(1), 60);
    std::vector<RoomResult> const one = watchRooms(cases, "classic", 1);
    std::vector<RoomResult> const two = watchRooms(cases, "classic", 2);
    ASSERT_EQ(one.size(), two.size());
    for (std::size_t i = 0; i < one.size(); ++i) {
        EXPECT_EQ(one[i].verdict.widths, two[i].verdict.widths) << i;
        EXPECT_EQ(one[i].verdict.holdRate, two[i].verdict.holdRate) << i;
        EXPECT_EQ(one[i].verdict.mostCandidates, two[i].verdict.mostCandidates) << i;
    }
}

TEST(Wishes, OfTheCommandLine) {
    Wishes wishes;
    EXPECT_EQ(wishes.read({"--rules=classic", "--short", "--jobs=3", "--no-costs"}), "");
    EXPECT_EQ(wishes.rules, "classic");
    EXPECT_TRUE(wishes.brief);
    EXPECT_EQ(wishes.jobs, 3U);
    EXPECT_FALSE(wishes.costs);
    EXPECT_EQ(wishes.read({"--rules=none at all"}), "the engine knows no rules \"none at all\"");
    EXPECT_EQ(wishes.read({"--jobs=0"}), "--jobs takes a number from 1 on, not \"0\"");
    EXPECT_EQ(wishes.read({"--job"}), "there is no option \"--job\"");
}
