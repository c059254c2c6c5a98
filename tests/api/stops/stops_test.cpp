// Runs that stop because of what their plant says, through both interfaces.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tavro/tavro.h"
#include "tavro/tavro.hpp"

namespace {

// Of a C++ call, as the code of C; the text of the error goes to *text*.
tavro_code codeOf(std::function<void()> const& work, std::string& text) {
    try {
        work();
        return TAVRO_OK;
    } catch (tavro::Error const& error) {
        text = error.what();
        return static_cast<tavro_code>(static_cast<int>(error.kind()) + TAVRO_PLANT);
    }
}

// How a run ends into which *flow* goes all the time, so that the level rises by it at each step:
// the code that stops it, its text, and the time that it stopped at.
struct End {
    tavro_code code = TAVRO_OK;
    std::string text;
    double time = 0.0;
    bool operator==(End const&) const = default;
};

std::ostream& operator<<(std::ostream& to, End const& end) {
    return to << "code " << end.code << " at " << end.time << ": " << end.text;
}

constexpr double firstLevel = 5.0;
constexpr int steps = 10;

tavro::Line lineAt(double flow, int time) {
    return {.inputs = {flow}, .measures = {firstLevel + flow * time}};
}

// A run that has stopped answers with the same error again.
End endOf(char const* plant, double flow, char const* rules = "classic") {
    tavro::Run run(tavro::Plant::builtin(plant), {.rules = rules});
    End end, again;
    end.code = codeOf([&] { run.start(lineAt(flow, 0)); }, end.text);
    for (int time = 1; time <= steps && end.code == TAVRO_OK; ++time)
        end.code = codeOf([&] { run.step(lineAt(flow, time)); }, end.text);
    if (end.code != TAVRO_OK) {
        again.code = codeOf([&] { run.step(lineAt(flow, 1)); }, again.text);
        EXPECT_EQ(again, end);
    }
    end.time = run.time();
    return end;
}

// The same through C.
End endInC(char const* name, double flow) {
    tavro_plant* plant = nullptr;
    tavro_run* run = nullptr;
    tavro_step const* step = nullptr;
    EXPECT_EQ(tavro_plant_builtin(name, &plant), TAVRO_OK);
    EXPECT_EQ(tavro_run_new(plant, nullptr, &run), TAVRO_OK);
    double level = firstLevel;
    tavro_line line{};
    line.inputs = &flow;
    line.measures = &level;
    line.input_count = line.measure_count = 1;
    End end{tavro_run_start(run, &line, &step), "", 0.0};
    for (int time = 1; time <= steps && end.code == TAVRO_OK; ++time) {
        level = firstLevel + flow * time;
        end.time = tavro_step_time(step);
        end.code = tavro_run_step(run, &line, &step);
    }
    if (end.code != TAVRO_OK) {
        end.text = tavro_last_error();
        EXPECT_EQ(step, nullptr);
        EXPECT_EQ(tavro_run_step(run, &line, nullptr), end.code);
    } else {
        end.time = tavro_step_time(step);
    }
    tavro_run_free(run);
    tavro_plant_free(plant);
    return end;
}

}  // namespace

// From 5 by 1 a step the level is at 15 after ten steps, which the basin tells to be high.
TEST(Stops, ARunGoesOnWhileThePlantTellsWhatHolds) {
    EXPECT_EQ(endOf("basin", 1.0), (End{TAVRO_OK, "", 10.0}));
    EXPECT_EQ(endInC("basin", 1.0), (End{TAVRO_OK, "", 10.0}));
}

// By 13 a step it is at 18, and then at 31: outside its bounds, where nothing is cut off any more,
// and past the 30 up to which the basin tells what holds.
TEST(Stops, AValueThatNoConditionCovers) {
    End const end{TAVRO_NO_COVER, "no condition covers a value of basin.x", 1.0};
    EXPECT_EQ(endOf("basin", 13.0), end);
    EXPECT_EQ(endInC("basin", 13.0), end);
}

// The candidate goes, and no other is there.
TEST(Stops, AValueThatNoConditionCoversEndsTheLastCandidate) {
    EXPECT_EQ(endOf("basin", 13.0, "cover"), (End{TAVRO_NO_COVER, "no candidate is left", 1.0}));
}

// By 4 a step it is at 9, and at 13 it must be high, which the rule forbids while the pump is on.
TEST(Stops, AnEventThatContradictsTheModes) {
    End const end{TAVRO_EVENT_IMPOSSIBLE, "an event of the continuous side fits no state", 1.0};
    EXPECT_EQ(endOf("sluice", 4.0), end);
    EXPECT_EQ(endInC("sluice", 4.0), end);
}

// A level that is bounded to [0, 20] may lie from 10 to 12: that is known before any run.
TEST(Stops, AGapThatIsKnownBeforeARunRefusesThePlant) {
    std::string text;
    EXPECT_EQ(codeOf([] { tavro::Plant::builtin("gap"); }, text), TAVRO_PLANT);
    EXPECT_EQ(
        text,
        "Variable basin.level has no value while basin.x lies in [10, 12[: let the thresholds "
        "meet.");
    tavro_plant* plant = nullptr;
    EXPECT_EQ(tavro_plant_builtin("gap", &plant), TAVRO_PLANT);
    EXPECT_EQ(tavro_last_error(), text);
}

TEST(Stops, APlantThatFailsWhileItIsBuilt) {
    std::string text;
    EXPECT_EQ(codeOf([] { tavro::Plant::builtin("unbuilt"); }, text), TAVRO_INTERNAL);
    EXPECT_EQ(text, "left unbuilt");
    tavro_plant* plant = nullptr;
    EXPECT_EQ(tavro_plant_builtin("unbuilt", &plant), TAVRO_INTERNAL);
    EXPECT_STREQ(tavro_last_error(), "left unbuilt");
}

// The suspects are what was isolated, and no text read again: a name may hold commas and brackets.
// The level should rise by 1 a step and stays at 5, so each measure from 1 on is too low; what
// fills the basin may not be acting, or one of both influences of the measure. It has not risen at
// 1 either, so that the pump broke at 0.
TEST(Stops, SuspectsKeepTheirNamesWhateverSignsTheyHold) {
    tavro::Run run(tavro::Plant::builtin("basin"), {.isolation = 1, .threshold = 2});
    tavro::Line const still{.inputs = {1.0}, .measures = {firstLevel}};
    run.start(still);
    run.step(still);
    tavro::Step const found = run.step(still);
    ASSERT_TRUE(found.diagnosed);
    std::vector<tavro::SuspectSet> suspects = found.suspects;
    std::sort(suspects.begin(), suspects.end(), [](auto const& a, auto const& b) {
        return a.front().influence < b.front().influence;
    });
    EXPECT_EQ(suspects,
              (std::vector<tavro::SuspectSet>{{{"error", 0, "()"}},
                                              {{"fill, {by pump}[1]", 0, "((basin.pump=on))"}},
                                              {{"float", 0, "()"}}}));
    ASSERT_EQ(found.explanations.size(), 1U);
    EXPECT_EQ(found.explanations.front().summary, "basin on -> broken at 0");
}
