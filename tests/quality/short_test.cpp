// A short version of the measurement, with fixed seeds: what the engine may never do worse. What it
// is known not to see is not asserted.
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "quality/aims.h"
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

// ---- The sharp rules ----

// With the noise that they were told, too; and the bounds stay narrow.
TEST(ShortSharp, HealthyRoomsAreNeverReportedAndStayNarrow) {
    std::vector<double> widths;
    for (RoomResult const& result : watchRooms(shortened(healthyRooms(1), 150), "sharp", 1)) {
        EXPECT_FALSE(result.verdict.alarm) << nameOf(result.asked);
        EXPECT_FALSE(result.verdict.stopped) << nameOf(result.asked);
        EXPECT_EQ(result.verdict.holdTemperature, 151) << nameOf(result.asked);
        EXPECT_EQ(result.verdict.holdRate, 151) << nameOf(result.asked);
        EXPECT_LE(result.verdict.mostCandidates, 100U) << nameOf(result.asked);
        widths.push_back(result.verdict.widths[2].value());
    }
    std::sort(widths.begin(), widths.end());
    EXPECT_LT(widths[widths.size() / 2], 3.0);  // at step 150; classic ones are 30 wide by then
}

// Late, when the classic bounds are too wide to notice it: the true mode comes first, the date is
// among those that are told, and from then on the true temperature is inside. Days whose dates are
// soon searched for, and no longer than three swings of the room.
TEST(ShortSharp, AThermostatThatSticksLateIsExplained) {
    constexpr std::pair<RoomFault, std::uint64_t> days[] = {{RoomFault::stuckOn, 6},
                                                            {RoomFault::stuckOff, 4}};
    for (auto const& [fault, seed] : days) {
        RoomCase one;
        one.day.uncertainty = Uncertainty::redrawn;
        one.day.fault = fault;
        one.day.onset = 100;
        one.day.noise = 0.02;
        one.day.seed = seed;
        one.day.steps = 160;
        RoomVerdict const verdict = watchRooms({one}, "sharp", 1).front().verdict;
        std::string const story = nameOf(one);
        ASSERT_TRUE(verdict.noticed()) << story;
        EXPECT_FALSE(verdict.falseAlarm()) << story;
        EXPECT_TRUE(verdict.atDiagnosis.first) << story;
        EXPECT_TRUE(verdict.atEnd.first) << story;
        EXPECT_TRUE(verdict.stepNamed) << story;
        EXPECT_GT(verdict.explained, 15) << story;
        EXPECT_EQ(verdict.explainedHold, verdict.explained) << story;
    }
}

// The days of the aims, few of them: nothing false, and never more than a hundred candidates.
TEST(ShortSharp, WildDaysStayWithinTheLimit) {
    for (RoomResult const& result : watchWild(wildRooms(15), "sharp", 1)) {
        EXPECT_LE(result.verdict.mostCandidates, 100U) << nameOf(result.asked);
        EXPECT_FALSE(result.verdict.stopped) << nameOf(result.asked);
    }
}

// Every history with the fewest failures comes out, in the order of probability, and none that
// cannot have been. A story may be explained again later: what the answers before have left out is
// not taken up again, so that is asked of the first diagnosis of each.
TEST(ShortSharp, AllExplanationsOfTheFeedLineComeOut) {
    for (LineResult const& result : watchLines(feedLines(2), "sharp", 1)) {
        LineVerdict const& verdict = result.verdict;
        std::string const story = std::to_string(result.asked.failures) + " failures, " +
                                  std::to_string(result.asked.commands) + " commands, seed " +
                                  std::to_string(result.asked.seed);
        EXPECT_FALSE(verdict.falseAlarm()) << story;
        EXPECT_EQ(verdict.wrong, 0) << story;
        EXPECT_EQ(verdict.nans, 0) << story;
        if (verdict.diagnoses == 1) {
            EXPECT_EQ(verdict.foundKinds, verdict.minimalKinds) << story;
            EXPECT_EQ(verdict.wellOrdered, 1) << story;
        }
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
    EXPECT_EQ(wishes.faultySeeds(), 1);
    Wishes some;
    EXPECT_EQ(some.read({"--seeds=2", "--aims"}), "");
    EXPECT_EQ(some.faultySeeds(), 2);
    EXPECT_EQ(some.healthySeeds(), 10);
    EXPECT_EQ(some.lineSeeds(), 40);
    EXPECT_TRUE(some.aims);
    EXPECT_EQ(wishes.read({"--seeds=no"}), "--seeds takes a number from 1 on, not \"no\"");
    EXPECT_EQ(wishes.read({"--jobs=0"}), "--jobs takes a number from 1 on, not \"0\"");
    EXPECT_EQ(wishes.read({"--job"}), "there is no option \"--job\"");
}
