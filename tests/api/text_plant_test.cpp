// Plants as text through the C++ interface; measures that are missing; histories and graphs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include "api/days.h"

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
std::string const roomFile = TAVRO_PLANTS "/room/room.plant";

class Written {
public:
    explicit Written(std::string const& text)
        : path(std::filesystem::temp_directory_path() /
               ("tavro_api_" + std::to_string(std::hash<std::string>()(text)) + ".plant")) {
        std::ofstream(path) << text;
    }
    ~Written() { std::filesystem::remove(path); }
    std::filesystem::path const path;
};

TEST(TextPlant, IsThePlantThatIsBuiltIn) {
    tavro::Plant const text = tavro::Plant::load(roomFile), built = tavro::Plant::builtin("therm");
    EXPECT_EQ(text.measures(), built.measures());
    EXPECT_EQ(text.variables(), built.variables());
    EXPECT_EQ(text.modes(), built.modes());
    EXPECT_EQ(text.values("room.mode"), (std::vector<std::string>{"closed", "open", "unknown"}));
    EXPECT_EQ(text.values("room.x"), std::vector<std::string>());
    std::vector<double> const day = measuresOf("stuck_on");
    tavro::Run a(text, {.rules = "sharp"}), b(built, {.rules = "sharp"});
    std::vector<tavro::Step> const one = follow(a, day, 40), other = follow(b, day, 40);
    for (std::size_t k = 0; k < one.size(); ++k) {
        ASSERT_EQ(one[k].candidates.size(), other[k].candidates.size());
        EXPECT_EQ(one[k].diagnosis, other[k].diagnosis);
        for (std::size_t i = 0; i < one[k].candidates.size(); ++i)
            EXPECT_EQ(one[k].candidates[i].bounds.at("room.x").upper,
                      other[k].candidates[i].bounds.at("room.x").upper);
    }
}

TEST(TextPlant, TellsWhatIsWrongWithItsPlace) {
    Written const plant("plant p\nsample 1 s\ntype t {\n  variable x = 1\n  y = x\n}\na: t\n");
    try {
        tavro::Plant::load(plant.path);
        FAIL() << "the plant was taken";
    } catch (tavro::Error const& error) {
        EXPECT_EQ(error.kind(), tavro::ErrorKind::plant);
        EXPECT_NE(std::string(error.what()).find(".plant:5:3: error: "), std::string::npos);
    }
    EXPECT_THROW(tavro::Plant::load("no/such.plant"), tavro::Error);
}

// x is 1 for ever, or what the constant says.
TEST(TextPlant, ConstantsMayBeSet) {
    Written const plant(
        "plant p\nsample 1 s\nconstant start = 1\ntype t {\n  variable x = start\n  x integrates 0 "
        "* "
        "x\n  measure x\n}\na: t\n");
    tavro::Run run(tavro::Plant::load(plant.path, {"start=7"}));
    EXPECT_EQ(run.start({.measures = {7}}).candidates[0].bounds.at("a.x").upper, 7.0);
}

// ---- Measures that are missing ----

// Every third measure of a healthy day is missing: nothing is noticed, and candidates go on.
TEST(Missing, AHealthyDayStaysHealthy) {
    std::vector<double> day = measuresOf("healthy");
    for (std::size_t k = 1; k < day.size(); k += 3)
        day[k] = missing;
    for (char const* rules : {"classic", "sharp"}) {
        tavro::Run run(tavro::Plant::builtin("therm"), {.isolation = 0, .rules = rules});
        for (tavro::Step const& step : follow(run, day, 240)) {
            EXPECT_TRUE(step.alarms.empty()) << rules << " at " << step.time;
            EXPECT_FALSE(step.candidates.empty());
        }
    }
}

double hull(tavro::Step const& step, std::string const& name, bool upper) {
    double bound = upper ? -INFINITY : INFINITY;
    for (tavro::Candidate const& candidate : step.candidates)
        bound = upper ? std::max(bound, candidate.bounds.at(name).upper)
                      : std::min(bound, candidate.bounds.at(name).lower);
    return bound;
}

// The bounds without measures hold those with: nothing is narrowed by what is not there, and
// nothing else is made of it.
TEST(Missing, BoundsAreThoseOfThePlantAlone) {
    std::vector<double> const day = measuresOf("healthy");
    std::vector<double> first(day.size(), missing);
    first[0] = day[0];
    tavro::Run with(tavro::Plant::builtin("therm"), {.rules = "sharp"});
    tavro::Run without(tavro::Plant::builtin("therm"), {.rules = "sharp"});
    std::vector<tavro::Step> const a = follow(with, day, 15), b = follow(without, first, 15);
    for (std::size_t k = 0; k <= 15; ++k)
        for (char const* name : {"room.x", "room.xd"}) {
            EXPECT_GE(hull(a[k], name, false), hull(b[k], name, false) - 1e-9);
            EXPECT_LE(hull(a[k], name, true), hull(b[k], name, true) + 1e-9);
        }
    EXPECT_LT(hull(a[15], "room.x", true), hull(b[15], "room.x", true));
}

// x(k) = x(k-1) + 2: while its measure is missing it goes on, from the last one that was there.
TEST(Missing, ThePredictionGoesOnAlone) {
    Written const plant(
        "plant p\nsample 1 s\ntype t {\n  variable x = 0\n  parameter rate = 2\n  x integrates 1 * "
        "rate\n  measure x\n}\na: t\n");
    tavro::Run run(tavro::Plant::load(plant.path), {.isolation = 0, .rules = "sharp"});
    run.start({.measures = {missing}});
    EXPECT_EQ(hull(run.step({.measures = {2}}), "a.x", true), 2.0);
    EXPECT_EQ(hull(run.step({.measures = {missing}}), "a.x", true), 4.0);
    EXPECT_EQ(hull(run.step({.measures = {9}}), "a.x", true), 6.0);
}

// What no equation predicts has nothing else to begin with.
TEST(Missing, TheFirstOfWhatNothingPredictsIsNeeded) {
    Written const plant(
        "plant p\nsample 1 s\ntype t {\n  variable outside\n  variable x = 0\n  x integrates 1 * "
        "outside\n  measure x, outside\n}\na: t\n");
    tavro::Run run(tavro::Plant::load(plant.path), {.isolation = 0, .rules = "sharp"});
    EXPECT_THROW(run.start({.measures = {0, missing}}), tavro::Error);
    EXPECT_NO_THROW(run.start({.measures = {missing, 2}}));
}

// ---- What is foretold ----

// At the second step the room is at 4 degrees and heated: 0.05 (20 - 4) + [0, 0.3], whatever is
// measured then; 0.951942 is what the day has.
TEST(Foretold, IsWhatTheMeasureIsComparedWith) {
    tavro::Run run(tavro::Plant::builtin("therm"), {.rules = "sharp"});
    std::vector<tavro::Step> const steps = follow(run, measuresOf("healthy"), 1);
    ASSERT_EQ(steps[1].candidates.size(), 1U);
    tavro::Bounds const bounds = steps[1].candidates[0].foretold.at("room.xd");
    EXPECT_NEAR(bounds.lower, 0.8, 1e-9);
    EXPECT_NEAR(bounds.upper, 1.1, 1e-9);
    EXPECT_EQ(steps[1].candidates[0].foretold.count("room.x"), 0U);
}

// ---- Histories ----

TEST(History, TellsTheMovesOfACandidate) {
    tavro::Run run(tavro::Plant::builtin("therm"), {.rules = "sharp"});
    EXPECT_THROW(run.history(0), tavro::Error);
    follow(run, measuresOf("stuck_on"), 40);
    std::vector<tavro::HistoryStep> const steps = run.history(0);
    ASSERT_FALSE(steps.empty());
    EXPECT_EQ(steps.back().modes.at("thermostat.mode"), "stuck_on");
    ASSERT_EQ(steps.back().moves.size(), 1U);
    EXPECT_EQ(steps.back().moves[0].from, "on");
    EXPECT_TRUE(steps.back().moves[0].failure);
    EXPECT_EQ(run.graph(0, "best").substr(0, 13), "digraph best ");
    EXPECT_THROW(run.history(1000), tavro::Error);
    EXPECT_THROW(run.graph(1000, "none"), tavro::Error);
}

// ---- Giving up ----

TEST(GivingUp, StopsTheRun) {
    bool enough = false;
    tavro::Run run(tavro::Plant::builtin("therm"), {.giveUp = [&] { return enough; }});
    run.start({.measures = {0.93835}});
    run.step({.measures = {0.951942}});
    enough = true;
    for (int k = 0; k < 2; ++k)
        try {
            run.step({.measures = {0.9}});
            FAIL() << "the step was not given up";
        } catch (tavro::Error const& error) {
            EXPECT_EQ(error.kind(), tavro::ErrorKind::givenUp);
        }
}

}  // namespace
