// The C interface: codes, the text of the last error, null handles, and the same answers.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <thread>

#include "api/days.h"
#include "tavro/tavro.h"

namespace {

struct Free {
    void operator()(tavro_plant* plant) const { tavro_plant_free(plant); }
    void operator()(tavro_run* run) const { tavro_run_free(run); }
};
using PlantHandle = std::unique_ptr<tavro_plant, Free>;
using RunHandle = std::unique_ptr<tavro_run, Free>;

PlantHandle builtin(char const* name) {
    tavro_plant* plant = nullptr;
    EXPECT_EQ(tavro_plant_builtin(name, &plant), TAVRO_OK);
    return PlantHandle(plant);
}

RunHandle runOf(PlantHandle const& plant, tavro_options const* options = nullptr) {
    tavro_run* run = nullptr;
    EXPECT_EQ(tavro_run_new(plant.get(), options, &run), TAVRO_OK);
    return RunHandle(run);
}

tavro_line measured(double const& value) {
    tavro_line line{};
    line.measures = &value;
    line.measure_count = 1;
    return line;
}

// A plant as text is the plant that is built in; one that is wrong says where.
TEST(C, LoadsPlantsAsText) {
    tavro_plant* loaded = nullptr;
    ASSERT_EQ(tavro_plant_load(TAVRO_PLANTS "/room/room.plant", &loaded), TAVRO_OK);
    PlantHandle const plant(loaded);
    EXPECT_STREQ(tavro_plant_name(plant.get(), TAVRO_MEASURES, 0), "room.xd");
    RunHandle const run = runOf(plant);
    double const first = 0.93835, missing = NAN;
    tavro_line line = measured(first);
    ASSERT_EQ(tavro_run_start(run.get(), &line, nullptr), TAVRO_OK);
    line = measured(missing);
    EXPECT_EQ(tavro_run_step(run.get(), &line, nullptr), TAVRO_OK);
    tavro_plant* none = nullptr;
    EXPECT_EQ(tavro_plant_load("no/such.plant", &none), TAVRO_PLANT);
    EXPECT_EQ(none, nullptr);
    EXPECT_NE(std::string(tavro_last_error()).find("no/such.plant"), std::string::npos);
    EXPECT_EQ(tavro_plant_load(nullptr, &none), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_plant_load("no/such.plant", nullptr), TAVRO_ARGUMENT);
}

int yes(void*) {
    return 1;
}

TEST(C, GivesAStepUp) {
    PlantHandle const plant = builtin("therm");
    tavro_options options;
    tavro_options_init(&options);
    options.give_up = yes;
    tavro_run* made = nullptr;
    ASSERT_EQ(tavro_run_new(plant.get(), &options, &made), TAVRO_OK);
    RunHandle const run(made);
    double const first = 0.93835;
    tavro_line line = measured(first);
    tavro_code code = tavro_run_start(run.get(), &line, nullptr);
    if (code == TAVRO_OK)
        code = tavro_run_step(run.get(), &line, nullptr);
    EXPECT_EQ(code, TAVRO_GIVEN_UP);
}

}  // namespace

TEST(C, FollowsTheStuckThermostat) {
    PlantHandle const plant = builtin("therm");
    EXPECT_EQ(tavro_plant_is_discrete(plant.get()), 0);
    EXPECT_EQ(tavro_plant_period(plant.get()), 1.0);
    EXPECT_EQ(tavro_plant_count(plant.get(), TAVRO_MEASURES), 1U);
    EXPECT_STREQ(tavro_plant_name(plant.get(), TAVRO_MEASURES, 0), "room.xd");
    EXPECT_EQ(tavro_plant_name(plant.get(), TAVRO_MEASURES, 1), nullptr);

    std::vector<double> const measures = measuresOf("stuck_on");
    RunHandle const run = runOf(plant);
    tavro_step const* step = nullptr;
    tavro_line line = measured(measures[0]);
    ASSERT_EQ(tavro_run_start(run.get(), &line, &step), TAVRO_OK);
    for (std::size_t time = 1; time <= 27; ++time) {
        EXPECT_EQ(tavro_step_alarms(step), 0U);
        EXPECT_EQ(tavro_step_diagnosed(step), 0);
        line = measured(measures[time]);
        ASSERT_EQ(tavro_run_step(run.get(), &line, &step), TAVRO_OK);
    }
    EXPECT_EQ(tavro_step_time(step), 27.0);
    EXPECT_EQ(tavro_run_time(run.get()), 27.0);
    EXPECT_EQ(tavro_step_diagnosed(step), 1);
    tavro_alarm alarm{};
    ASSERT_EQ(tavro_step_alarm(step, 0, &alarm), TAVRO_OK);
    EXPECT_STREQ(alarm.measure, "room.xd");
    EXPECT_EQ(alarm.high, 1);

    bool cooling = false;
    for (std::size_t set = 0; set < tavro_step_suspect_sets(step); ++set) {
        tavro_suspect suspect{};
        ASSERT_EQ(tavro_step_suspects(step, set), 1U);
        ASSERT_EQ(tavro_step_suspect(step, set, 0, &suspect), TAVRO_OK);
        cooling = cooling || std::strcmp(suspect.influence, "R1.i1") == 0;
    }
    EXPECT_TRUE(cooling);
    EXPECT_NE(std::strstr(tavro_step_diagnosis(step), "{R1.i1,0,"), nullptr);

    bool stuck = false;
    for (std::size_t i = 0; i < tavro_step_explanations(step); ++i) {
        tavro_explanation e{};
        ASSERT_EQ(tavro_step_explanation(step, i, &e), TAVRO_OK);
        if (std::strcmp(e.summary, "thermostat on -> stuck_on at 24") != 0)
            continue;
        stuck = true;
        EXPECT_STREQ(e.component, "thermostat");
        EXPECT_STREQ(e.to, "stuck_on");
        EXPECT_EQ(e.time, 24.0);
        EXPECT_STREQ(tavro_step_mode(step, e.candidate, "thermostat.mode"), "stuck_on");
        tavro_candidate candidate{};
        ASSERT_EQ(tavro_step_candidate(step, e.candidate, &candidate), TAVRO_OK);
        EXPECT_EQ(candidate.rank, 1.0);
        EXPECT_EQ(candidate.agrees, 1);
    }
    EXPECT_TRUE(stuck);

    double lower = 0.0, upper = 0.0;
    EXPECT_EQ(tavro_step_bounds(step, 0, "room.x", &lower, &upper), TAVRO_OK);
    EXPECT_LT(lower, upper);
    EXPECT_EQ(tavro_step_bounds(step, 0, "room.y", &lower, &upper), TAVRO_DATA);
    EXPECT_EQ(tavro_step_mode(step, 0, "room.x"), nullptr);
}

TEST(C, NamesThePlantsThatItHolds) {
    ASSERT_EQ(tavro_builtin_count(), 2U);
    EXPECT_STREQ(tavro_builtin_name(0), "therm");
    EXPECT_STREQ(tavro_builtin_name(1), "line");
    EXPECT_EQ(tavro_builtin_name(2), nullptr);
    for (std::size_t i = 0; i < tavro_builtin_count(); ++i)
        EXPECT_STREQ(tavro_plant_own_name(builtin(tavro_builtin_name(i)).get()),
                     tavro_builtin_name(i));
}

// Each list of names is that of the interface in C++, and ends where that one ends.
TEST(C, NamesAllThatAPlantHas) {
    for (char const* name : {"therm", "line"}) {
        tavro::Plant const other = tavro::Plant::builtin(name);
        PlantHandle const plant = builtin(name);
        std::pair<tavro_names, std::vector<std::string>> const lists[] = {
            {TAVRO_INPUTS, other.inputs()},
            {TAVRO_MEASURES, other.measures()},
            {TAVRO_VARIABLES, other.variables()},
            {TAVRO_COMPONENTS, other.components()},
            {TAVRO_MODES, other.modes()},
            {TAVRO_COMMANDS, other.commands()},
            {TAVRO_OBSERVATIONS, other.observations()}};
        for (auto const& [kind, names] : lists) {
            for (std::size_t i = 0; i < names.size(); ++i)
                EXPECT_EQ(tavro_plant_name(plant.get(), kind, i), names[i]);
            EXPECT_EQ(tavro_plant_name(plant.get(), kind, names.size()), nullptr);
        }
        EXPECT_FALSE(other.components().empty());
    }
}

TEST(C, RefusesACountWithoutTexts) {
    PlantHandle const plant = builtin("therm");
    RunHandle const run = runOf(plant);
    double const value = 0.93835;
    tavro_line line = measured(value);
    ASSERT_EQ(tavro_run_start(run.get(), &line, nullptr), TAVRO_OK);
    line.command_count = 1;
    EXPECT_EQ(tavro_run_step(run.get(), &line, nullptr), TAVRO_DATA);
    EXPECT_STREQ(tavro_last_error(), "a count of texts without a text");
    char const* const none = nullptr;
    line.commands = &none;
    EXPECT_EQ(tavro_run_step(run.get(), &line, nullptr), TAVRO_DATA);
}

// A step that is refused leaves the time of the last one that ended well.
TEST(C, TellsTheTimeOfARun) {
    PlantHandle const plant = builtin("therm");
    RunHandle const run = runOf(plant);
    double const first = 0.93835, none = INFINITY;
    tavro_line line = measured(first);
    ASSERT_EQ(tavro_run_start(run.get(), &line, nullptr), TAVRO_OK);
    EXPECT_EQ(tavro_run_time(run.get()), 0.0);
    ASSERT_EQ(tavro_run_step(run.get(), &line, nullptr), TAVRO_OK);
    EXPECT_EQ(tavro_run_time(run.get()), 1.0);
    line = measured(none);
    ASSERT_EQ(tavro_run_step(run.get(), &line, nullptr), TAVRO_DATA);
    EXPECT_EQ(tavro_run_time(run.get()), 1.0);
}

TEST(C, FollowsTheFeedLine) {
    PlantHandle const plant = builtin("line");
    EXPECT_EQ(tavro_plant_is_discrete(plant.get()), 1);
    RunHandle const run = runOf(plant);
    tavro_step const* step = nullptr;
    ASSERT_EQ(tavro_run_start(run.get(), nullptr, &step), TAVRO_OK);
    char const* const start[] = {"pump.cmd=start", "valve1.cmd=none", "valve2.cmd=none"};
    tavro_line line{};
    line.commands = start;
    line.command_count = 3;
    ASSERT_EQ(tavro_run_step(run.get(), &line, &step), TAVRO_OK);
    EXPECT_STREQ(tavro_step_mode(step, 0, "pump.mode"), "on");
}

TEST(C, TellsWhatFailed) {
    tavro_plant* none = nullptr;
    EXPECT_EQ(tavro_plant_builtin("house", &none), TAVRO_PLANT);
    EXPECT_EQ(none, nullptr);
    EXPECT_STREQ(tavro_last_error(), "no plant is named house");

    PlantHandle const plant = builtin("therm");
    // A success leaves the text of the last failure.
    EXPECT_STREQ(tavro_last_error(), "no plant is named house");
    tavro_options options;
    tavro_options_init(&options);
    options.isolation = 9;
    tavro_run* noRun = nullptr;
    EXPECT_EQ(tavro_run_new(plant.get(), &options, &noRun), TAVRO_OPTIONS);
    EXPECT_EQ(noRun, nullptr);
    EXPECT_STREQ(tavro_last_error(), "the level of isolation is 0, 1, 2 or 3");
    options = {};  // never initialised
    EXPECT_EQ(tavro_run_new(plant.get(), &options, &noRun), TAVRO_OPTIONS);

    RunHandle const run = runOf(plant);
    double const notANumber = INFINITY;
    tavro_line line = measured(notANumber);
    EXPECT_EQ(tavro_run_step(run.get(), &line, nullptr), TAVRO_STATE);
    EXPECT_EQ(tavro_run_start(run.get(), &line, nullptr), TAVRO_DATA);
    EXPECT_STREQ(tavro_last_error(), "the value of room.xd is no finite number");
    line.measures = nullptr;  // with a count of 1
    EXPECT_EQ(tavro_run_start(run.get(), &line, nullptr), TAVRO_DATA);

    // Each thread has its own.
    std::thread([] { EXPECT_STREQ(tavro_last_error(), ""); }).join();
}

// The first rates lie in [0.8, 1.1]: one that is 0.5 too high is noticed at once, unless the sensor
// is known to be that bad.
TEST(C, NoiseIsOfAllMeasuresOrOfOne) {
    PlantHandle const plant = builtin("therm");
    char const* const measures[] = {"room.xd"};
    double const bounds[] = {0.6};
    auto const alarms = [&](double ofAll, std::size_t named) {
        tavro_options options;
        tavro_options_init(&options);
        options.rules = "narrow";
        options.threshold = 1;
        options.isolation = 0;
        options.noise = ofAll;
        options.noise_measures = measures;
        options.noise_bounds = bounds;
        options.noise_count = named;
        RunHandle const run = runOf(plant, &options);
        tavro_step const* step = nullptr;
        double const start = 0.93835;
        tavro_line const first = measured(start);
        EXPECT_EQ(tavro_run_start(run.get(), &first, nullptr), TAVRO_OK);
        double const rate = 1.45;
        tavro_line const second = measured(rate);
        EXPECT_EQ(tavro_run_step(run.get(), &second, &step), TAVRO_OK);
        return tavro_step_alarms(step);
    };
    EXPECT_EQ(alarms(0.0, 0), 1U);
    EXPECT_EQ(alarms(0.6, 0), 0U);
    EXPECT_EQ(alarms(0.0, 1), 0U);
    EXPECT_EQ(alarms(0.1, 1), 0U);
}

TEST(C, NoiseIsOfMeasuresThatThereAre) {
    PlantHandle const plant = builtin("therm");
    char const* measures[] = {"room.x"};
    double const bounds[] = {0.6};
    tavro_options options;
    tavro_options_init(&options);
    EXPECT_EQ(options.noise_count, 0U);
    options.noise_measures = measures;
    options.noise_bounds = bounds;
    options.noise_count = 1;
    tavro_run* run = nullptr;
    EXPECT_EQ(tavro_run_new(plant.get(), &options, &run), TAVRO_OPTIONS);
    EXPECT_STREQ(tavro_last_error(), "room.x is not measured in this plant");
    measures[0] = nullptr;
    EXPECT_EQ(tavro_run_new(plant.get(), &options, &run), TAVRO_OPTIONS);
    measures[0] = "room.xd";
    options.noise_bounds = nullptr;
    EXPECT_EQ(tavro_run_new(plant.get(), &options, &run), TAVRO_OPTIONS);
    EXPECT_EQ(run, nullptr);
}

TEST(C, TakesNullHandles) {
    tavro_plant_free(nullptr);
    tavro_run_free(nullptr);
    tavro_options_init(nullptr);
    tavro_run* run = nullptr;
    tavro_step const* step = nullptr;
    EXPECT_EQ(tavro_plant_builtin("therm", nullptr), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_plant_builtin(nullptr, nullptr), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_run_new(nullptr, nullptr, &run), TAVRO_ARGUMENT);
    EXPECT_STREQ(tavro_last_error(), "no plant");
    EXPECT_EQ(tavro_run_start(nullptr, nullptr, &step), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_run_step(nullptr, nullptr, &step), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_plant_count(nullptr, TAVRO_MODES), 0U);
    EXPECT_EQ(tavro_plant_name(nullptr, TAVRO_MODES, 0), nullptr);
    EXPECT_EQ(tavro_plant_is_discrete(nullptr), 0);
    EXPECT_TRUE(std::isnan(tavro_plant_period(nullptr)));
    EXPECT_EQ(tavro_plant_own_name(nullptr), nullptr);
    EXPECT_TRUE(std::isnan(tavro_run_time(nullptr)));
    EXPECT_TRUE(std::isnan(tavro_step_time(nullptr)));
    EXPECT_EQ(tavro_step_diagnosis(nullptr), nullptr);
    EXPECT_EQ(tavro_step_mode(nullptr, 0, "m"), nullptr);
    EXPECT_EQ(tavro_step_diagnosed(nullptr), 0);
    EXPECT_EQ(tavro_step_candidates(nullptr) + tavro_step_alarms(nullptr) +
                  tavro_step_suspect_sets(nullptr) + tavro_step_suspects(nullptr, 0) +
                  tavro_step_explanations(nullptr),
              0U);
    tavro_candidate candidate{};
    tavro_alarm alarm{};
    tavro_suspect suspect{};
    tavro_explanation explanation{};
    double bound = 0.0;
    EXPECT_EQ(tavro_step_candidate(nullptr, 0, &candidate), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_alarm(nullptr, 0, &alarm), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_suspect(nullptr, 0, 0, &suspect), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_explanation(nullptr, 0, &explanation), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_bounds(nullptr, 0, "v", &bound, &bound), TAVRO_ARGUMENT);
}

// Nothing that is missing is written to, and the text says what is.
TEST(C, TellsWhatIsMissing) {
    PlantHandle const plant = builtin("therm");
    tavro_plant* none = nullptr;
    EXPECT_EQ(tavro_plant_builtin(nullptr, &none), TAVRO_ARGUMENT);
    EXPECT_STREQ(tavro_last_error(), "no name");
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(tavro_run_new(plant.get(), nullptr, nullptr), TAVRO_ARGUMENT);
    EXPECT_STREQ(tavro_last_error(), "no place for the run");
    tavro_options options{};
    options.isolation = 7;
    tavro_options_init_sized(&options, sizeof options - 1);  // of another version
    EXPECT_EQ(options.isolation, 7);

    RunHandle const run = runOf(plant);
    double const first = 0.93835;
    tavro_line const line = measured(first);
    tavro_step const* step = nullptr;
    ASSERT_EQ(tavro_run_start(run.get(), &line, &step), TAVRO_OK);
    EXPECT_EQ(tavro_step_candidate(step, 0, nullptr), TAVRO_ARGUMENT);
    EXPECT_STREQ(tavro_last_error(), "no place for the answer");
    tavro_candidate candidate{};
    EXPECT_EQ(tavro_step_candidate(step, 99, &candidate), TAVRO_ARGUMENT);
    EXPECT_STREQ(tavro_last_error(), "no such entry in the step");
    EXPECT_EQ(tavro_step_alarm(step, 0, nullptr), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_suspect(step, 0, 0, nullptr), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_explanation(step, 0, nullptr), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_suspects(step, 99), 0U);
    EXPECT_EQ(tavro_step_mode(step, 0, nullptr), nullptr);
    EXPECT_EQ(tavro_step_mode(step, 99, "thermostat.mode"), nullptr);
    double bound = 0.0;
    EXPECT_EQ(tavro_step_bounds(step, 0, nullptr, &bound, &bound), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_bounds(step, 0, "room.x", nullptr, &bound), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_bounds(step, 0, "room.x", &bound, nullptr), TAVRO_ARGUMENT);
    EXPECT_EQ(tavro_step_bounds(step, 99, "room.x", &bound, &bound), TAVRO_DATA);
}

TEST(C, HandsLinesToTheCallback) {
    PlantHandle const plant = builtin("therm");
    tavro_options options;
    tavro_options_init(&options);
    std::string told;
    options.messages = [](void* context, char const* line) {
        static_cast<std::string*>(context)->append(line).append("\n");
    };
    options.context = &told;
    RunHandle const run = runOf(plant, &options);
    double const first = 0.93835;
    tavro_line const line = measured(first);
    ASSERT_EQ(tavro_run_start(run.get(), &line, nullptr), TAVRO_OK);
    EXPECT_EQ(told.rfind("-- time = 0 --------------------------\n", 0), 0U);
    EXPECT_STREQ(tavro_version(), tavro::version());
}
