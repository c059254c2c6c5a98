// The reference room through the C++ interface: what is told of its days.
//
// The days and what happens in them are told in examples/room/README.md; the numbers here are those
// of the true room, or of the console on the same file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "api/days.h"

namespace {

using tavro::Plant;
using tavro::Step;

Plant room() {
    return Plant::builtin("therm");
}

bool sticksOn(tavro::Explanation const& e) {
    return e.component == "thermostat" && e.from == "on" && e.to == "stuck_on";
}

bool holdsInfluence(tavro::SuspectSet const& set, std::string const& name) {
    return std::any_of(set.begin(), set.end(),
                       [&](tavro::Suspect const& s) { return s.influence == name; });
}

// The bounds of the two displays, as the console writes them.
std::string rowOf(tavro::Candidate const& candidate) {
    std::string row;
    for (char const* name : {"room.xd", "room.x"}) {
        char text[64];
        tavro::Bounds const& bounds = candidate.bounds.at(name);
        std::snprintf(text, sizeof text, "%g %g ", bounds.lower, bounds.upper);
        row += text;
    }
    return row;
}

// The last row that the console writes of a day, cut into a sorted list of candidates.
std::vector<std::string> consoleRow(std::string const& day, int until,
                                    std::string const& isolation) {
    namespace fs = std::filesystem;
    fs::path const place = fs::temp_directory_path() / ("tavro_api_" + day + std::to_string(until));
    fs::remove_all(place);
    fs::create_directories(place / "disp");
    fs::create_directories(place / "inp");
    fs::create_directory_symlink(TAVRO_EXAMPLES "/room/obs", place / "obs");
    std::string const command = "cd " + place.string() + " && printf 'init\\ndetect " +
                                std::to_string(until) + " " + isolation + " 3\\nquit\\n' | " +
                                TAVRO_EXEC " " + day + ".obs rows >out 2>err";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::ifstream file(place / "disp" / "rows");
    std::string last;
    for (std::string line; std::getline(file, line);)
        last = line;
    std::istringstream words(last);
    std::vector<std::string> candidates;
    for (std::string a, b, c, d; words >> a >> b >> c >> d;)
        candidates.push_back(a + " " + b + " " + c + " " + d + " ");
    std::sort(candidates.begin(), candidates.end());
    fs::remove_all(place);
    return candidates;
}

std::vector<std::string> rowsOf(Step const& step) {
    std::vector<std::string> rows;
    for (tavro::Candidate const& candidate : step.candidates)
        rows.push_back(rowOf(candidate));
    std::sort(rows.begin(), rows.end());
    return rows;
}

}  // namespace

TEST(Room, NamesWhatItTakesAndGives) {
    Plant const plant = room();
    EXPECT_EQ(plant.name(), "therm");
    EXPECT_FALSE(plant.discrete());
    EXPECT_EQ(plant.period(), 1.0);
    EXPECT_TRUE(plant.inputs().empty());
    EXPECT_EQ(plant.measures(), std::vector<std::string>{"room.xd"});
    EXPECT_EQ(plant.components(), (std::vector<std::string>{"room", "thermostat"}));
    EXPECT_TRUE(plant.observations().empty());
    auto const holds = [](std::vector<std::string> const& names, char const* name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    EXPECT_TRUE(holds(plant.modes(), "thermostat.mode"));
    EXPECT_TRUE(holds(plant.commands(), "room.cmdin=open"));
    EXPECT_TRUE(holds(plant.variables(), "room.x"));
}

// The room starts at 4 degrees with its thermostat off, which switches on at once; the temperature
// is given, its rate is the measure.
TEST(Room, StartsAsTheModelTells) {
    tavro::Run run(room());
    Step const start = run.start({.measures = {0.93835}});
    ASSERT_EQ(start.candidates.size(), 1U);
    tavro::Candidate const& first = start.candidates.front();
    EXPECT_EQ(start.time, 0.0);
    EXPECT_EQ(first.modes.at("thermostat.mode"), "on");
    EXPECT_EQ(first.modes.at("room.mode"), "closed");
    EXPECT_EQ(first.bounds.at("room.x").lower, 4.0);
    EXPECT_EQ(first.bounds.at("room.x").upper, 4.0);
    EXPECT_EQ(first.bounds.at("room.xd").lower, 0.93835);
    EXPECT_EQ(first.rank, 0.0);
    EXPECT_TRUE(first.agrees);
    EXPECT_TRUE(start.alarms.empty());
    EXPECT_FALSE(start.diagnosed);
}

TEST(Room, HealthyDayRaisesNoAlarm) {
    tavro::Run run(room());
    for (Step const& step : follow(run, measuresOf("healthy"), 240)) {
        EXPECT_TRUE(step.alarms.empty()) << step.time;
        EXPECT_FALSE(step.diagnosed) << step.time;
        EXPECT_FALSE(step.candidates.empty()) << step.time;
        for (tavro::Candidate const& candidate : step.candidates)
            EXPECT_EQ(candidate.rank, 0.0);
    }
    EXPECT_EQ(run.time(), 240.0);
}

// The thermostat sticks on at 22, and the rate is too high from 23 on. That shows once the
// predicted temperature is above 17 for certain, at 25, and in three measures in a row at 27. One
// influence that may not be acting is the cooling, R1.i1, which a thermostat that is on leaves out.
TEST(Room, StuckThermostatIsNoticedIsolatedAndExplained) {
    tavro::Run run(room(), {.isolation = 1, .threshold = 3});
    std::vector<Step> const steps = follow(run, measuresOf("stuck_on"), 60);
    for (Step const& step : steps)
        EXPECT_EQ(step.diagnosed, step.time == 27.0) << step.time;

    Step const& found = steps.at(27);
    ASSERT_EQ(found.alarms.size(), 1U);
    EXPECT_EQ(found.alarms.front().measure, "room.xd");
    EXPECT_EQ(found.alarms.front().side, tavro::Side::high);
    EXPECT_NE(found.diagnosis.find("[{R1.i1,0,"), std::string::npos);
    // One measure misbehaves: each suspect alone explains it.
    for (tavro::SuspectSet const& set : found.suspects)
        EXPECT_EQ(set.size(), 1U);
    auto const cooling = std::find_if(found.suspects.begin(), found.suspects.end(),
                                      [](auto const& set) { return holdsInfluence(set, "R1.i1"); });
    ASSERT_NE(cooling, found.suspects.end());
    EXPECT_EQ(cooling->front().delay, 0);
    EXPECT_EQ(cooling->front().condition,
              "(((thermostat.mode=stuck_off)) | ((thermostat.mode=off)))");

    auto const& explanations = found.explanations;
    auto const stuck = std::find_if(explanations.begin(), explanations.end(), sticksOn);
    ASSERT_NE(stuck, explanations.end());
    EXPECT_EQ(stuck->time, 24.0);
    EXPECT_EQ(stuck->rank, 1.0);
    EXPECT_TRUE(stuck->failure);
    EXPECT_FALSE(stuck->unknown);
    EXPECT_EQ(stuck->summary, "thermostat on -> stuck_on at 24");
    EXPECT_EQ(found.candidates.at(stuck->candidate).modes.at("thermostat.mode"), "stuck_on");

    // The explanation is right, so it stays, and nothing disagrees any more.
    for (std::size_t time = 28; time < steps.size(); ++time)
        EXPECT_TRUE(steps[time].alarms.empty()) << time;
    ASSERT_EQ(steps.back().candidates.size(), 1U);
    EXPECT_EQ(steps.back().candidates.front().modes.at("thermostat.mode"), "stuck_on");
    EXPECT_EQ(steps.back().candidates.front().rank, 1.0);
}

TEST(Room, WithoutIsolationAlarmsGoOn) {
    tavro::Run run(room(), {.isolation = 0});
    std::vector<Step> const steps = follow(run, measuresOf("stuck_on"), 29);
    EXPECT_TRUE(steps.at(26).alarms.empty());
    for (std::size_t time : {27U, 28U}) {
        EXPECT_EQ(steps.at(time).alarms.size(), 1U) << time;
        EXPECT_FALSE(steps.at(time).diagnosed);
        EXPECT_TRUE(steps.at(time).explanations.empty());
        for (tavro::Candidate const& candidate : steps.at(time).candidates)
            EXPECT_FALSE(candidate.agrees);
    }
}

TEST(Room, BoundsAreThoseOfTheConsole) {
    for (auto const& [day, until] : std::vector<std::pair<std::string, int>>{{"stuck_on", 5},
                                                                             {"stuck_on", 24},
                                                                             {"stuck_on", 26},
                                                                             {"stuck_on", 27},
                                                                             {"stuck_on", 40},
                                                                             {"healthy", 65},
                                                                             {"sensor_bias", 60}}) {
        tavro::Run run(room());
        EXPECT_EQ(rowsOf(follow(run, measuresOf(day), until).back()),
                  consoleRow(day, until, "fault1"))
            << day << " " << until;
    }
}

// The window is commanded open at 30. Told so, the run follows it; not told, it sees a fault at 36.
TEST(Room, FollowsACommand) {
    std::vector<double> const measures = measuresOf("window_command");
    for (bool const told : {true, false}) {
        tavro::Run run(room(), {.isolation = 0});
        run.start({.measures = {measures[0]}});
        double firstAlarm = 0.0;
        for (std::size_t time = 1; time < 60; ++time) {
            std::vector<std::string> commands;
            if (told && time == 30)
                commands = {"room.cmdin=open"};
            Step const step = run.step({.measures = {measures[time]}, .commands = commands});
            if (!step.alarms.empty() && firstAlarm == 0.0)
                firstAlarm = step.time;
            if (told && time == 32) {
                for (tavro::Candidate const& candidate : step.candidates)
                    EXPECT_EQ(candidate.modes.at("room.mode"), "open");
            }
        }
        EXPECT_EQ(firstAlarm, told ? 0.0 : 36.0);
    }
}

// A simulation does not look at the measures: with those of a stuck thermostat it predicts what it
// predicts without any.
TEST(Room, SimulationDoesNotLook) {
    std::vector<double> const measures = measuresOf("stuck_on");
    tavro::Run blind(room(), {.mode = tavro::Mode::simulate});
    tavro::Run fed(room(), {.mode = tavro::Mode::simulate});
    blind.start({.measures = {measures[0]}});
    fed.start({.measures = {measures[0]}});
    for (std::size_t time = 1; time <= 30; ++time) {
        Step const a = blind.step();
        Step const b = fed.step({.measures = {measures[time]}});
        EXPECT_EQ(rowsOf(a), rowsOf(b)) << time;
        EXPECT_TRUE(b.alarms.empty());
        for (tavro::Candidate const& candidate : b.candidates)
            EXPECT_TRUE(candidate.agrees);
    }
}

// Every way that the room can go is followed: once it may have reached 17, each step adds some.
TEST(Room, ASimulationKeepsToItsNumberOfCandidates) {
    auto const mostOf = [](int allowed, std::string* told) {
        tavro::Options options{.mode = tavro::Mode::simulate, .candidates = allowed};
        if (told != nullptr)
            options.messages = [told](std::string_view line) { *told += line; };
        tavro::Run run(Plant::builtin("therm"), options);
        run.start({.measures = {0.93835}});
        std::size_t most = 0;
        for (int time = 1; time <= 26; ++time)
            most = std::max(most, run.step({}).candidates.size());
        return most;
    };
    EXPECT_GT(mostOf(0, nullptr), 3U);
    std::string told;
    EXPECT_EQ(mostOf(3, &told), 3U);
    EXPECT_NE(told.find("The limit of 3 candidates is met"), std::string::npos);
}

TEST(Room, InterleavedRunsEqualRunsAlone) {
    std::vector<double> const sick = measuresOf("stuck_on"), well = measuresOf("healthy");
    Plant const plant = room();
    tavro::Run aloneSick(plant), aloneWell(plant), sickRun(plant), wellRun(plant);
    std::vector<Step> const expectedSick = follow(aloneSick, sick, 40);
    std::vector<Step> const expectedWell = follow(aloneWell, well, 40);
    sickRun.start({.measures = {sick[0]}});
    wellRun.start({.measures = {well[0]}});
    for (std::size_t time = 1; time <= 40; ++time) {
        Step const a = sickRun.step({.measures = {sick[time]}});
        Step const b = wellRun.step({.measures = {well[time]}});
        EXPECT_EQ(rowsOf(a), rowsOf(expectedSick[time])) << time;
        EXPECT_EQ(rowsOf(b), rowsOf(expectedWell[time])) << time;
        EXPECT_EQ(a.diagnosis, expectedSick[time].diagnosis);
    }
}

// The run keeps its plant, and each may go at any time.
TEST(Room, AnythingMayGoAtAnyTime) {
    std::vector<double> const measures = measuresOf("stuck_on");
    for (std::size_t last : {0U, 1U, 25U, 27U, 28U}) {
        std::unique_ptr<tavro::Run> run;
        {
            Plant const plant = room();
            run = std::make_unique<tavro::Run>(plant);
        }
        run->start({.measures = {measures[0]}});
        for (std::size_t time = 1; time <= last; ++time)
            run->step({.measures = {measures[time]}});
    }
    tavro::Run made(room());
    tavro::Run moved(std::move(made));
    tavro::Run other(room());
    other.start({.measures = {1.0}});
    other = std::move(moved);
    EXPECT_EQ(other.start({.measures = {1.0}}).time, 0.0);
}

TEST(Room, TellsNothingUnlessAsked) {
    std::vector<double> const measures = measuresOf("stuck_on");
    std::string trace, messages;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        tavro::Run silent(room());
        follow(silent, measures, 30);
        tavro::Run telling(room(),
                           {.trace = [&](std::string_view line) { trace.append(line) += '\n'; },
                            .messages = [&](std::string_view l) { messages.append(l) += '\n'; }});
        follow(telling, measures, 30);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_NE(messages.find("\nall trajs misbehave !\n"), std::string::npos);
    EXPECT_NE(messages.find("\nDiagnosis completed\n"), std::string::npos);
    EXPECT_FALSE(trace.empty());
}
