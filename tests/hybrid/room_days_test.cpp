// Whole days of the example room: healthy ones are tracked, faulty ones are reported soon after the
// fault. The true modes are those behind each measure in the files.
#include <fstream>
#include <sstream>

#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

std::string const room = TAVRO_EXAMPLES "/room/";

struct TrueStep {
    double measure = 0.0;
    double x = 0.0;
    std::string thermostat, window;
};

// The text after *name* and "=" in a word of the line, up to a blank.
std::string wordOf(std::string const& line, std::string const& name) {
    auto const at = line.find(" " + name + "=");
    if (at == std::string::npos)
        return "";
    auto const start = at + name.size() + 2;
    return line.substr(start, line.find(' ', start) - start);
}

std::vector<TrueStep> readDay(std::string const& name) {
    std::ifstream file(room + "obs/" + name + ".obs");
    std::vector<TrueStep> day;
    for (std::string line; std::getline(file, line);) {
        TrueStep step;
        std::istringstream(line) >> step.measure;
        std::istringstream(wordOf(line, "x")) >> step.x;
        step.thermostat = wordOf(line, "thermostat");
        step.window = wordOf(line, "window");
        day.push_back(step);
    }
    EXPECT_EQ(day.size(), 241u) << name;
    return day;
}

bool isTrackedIn(TrueStep const& truth) {
    for (auto const& entry : theRun().tracked_trajs) {
        hybTrajectory const* candidate = entry.second.get();
        s_Objet const& x = valueOf(candidate->rt.get(), "room.x");
        if (thermostatOf(candidate) == truth.thermostat && windowOf(candidate) == truth.window &&
            sn_infOf(x) <= truth.x + 1e-4 && truth.x - 1e-4 <= sn_supOf(x))
            return true;
    }
    return false;
}

// A day without a fault: nothing is reported, and at every step a candidate has the true modes and
// a temperature that covers the true one.
void expectTracked(std::string const& name, std::string const& scenario, int threshold) {
    std::vector<TrueStep> const day = readDay(name);
    RoomRun run(day[0].measure, 1);
    if (!scenario.empty())
        complaint([&] { theRun().sMM->loadScenario(room + "inp/" + scenario); });
    for (std::size_t k = 1; k < day.size(); ++k) {
        std::string const told =
            run.cycle(detection(threshold), static_cast<double>(k), day[k].measure).err;
        EXPECT_EQ(told.find("misbehave"), std::string::npos) << name << " at " << k;
        EXPECT_TRUE(run.nominal) << name << " at " << k;
        EXPECT_TRUE(isTrackedIn(day[k])) << name << " at " << k;
    }
    EXPECT_EQ(complaint([] { theRun().sMM->reportUnmetEvents(1000.0); }), "");
}

TEST(HealthyDay, IsTracked) {
    expectTracked("healthy", "", 1);
    expectTracked("healthy", "", 3);
}

TEST(HealthyDay, WithWindowCommandsIsTracked) {
    expectTracked("window_command", "window_command.scn", 1);
    expectTracked("window_command", "window_command.scn", 3);
}

TEST(HealthyDay, WithANoisySensorIsNotReported) {
    std::vector<TrueStep> const day = readDay("sensor_noise");
    RoomRun run(day[0].measure, 1);
    for (std::size_t k = 1; k < day.size(); ++k)
        EXPECT_EQ(
            run.cycle(detection(3), static_cast<double>(k), day[k].measure).err.find("misbehave"),
            std::string::npos)
            << k;
}

// The step of the first report, or the number of steps when there is none.
std::size_t firstReport(std::string const& name, int threshold) {
    std::vector<TrueStep> const day = readDay(name);
    RoomRun run(day[0].measure, 1);
    for (std::size_t k = 1; k < day.size(); ++k)
        if (run.cycle(detection(threshold), static_cast<double>(k), day[k].measure)
                .err.find("all trajs misbehave !\n") != std::string::npos)
            return k;
    return day.size();
}

// *inRate* is the first step at which the measure can show the fault. A thermostat that sticks is
// doubted only when no temperature that the measures allow explains it, hence the steps of grace.
void expectReported(std::string const& name, std::size_t inRate, std::size_t grace) {
    for (int threshold : {1, 3}) {
        std::size_t const earliest =
            std::max<std::size_t>(inRate, 1) + static_cast<std::size_t>(threshold) - 1;
        std::size_t const reported = firstReport(name, threshold);
        EXPECT_GE(reported, earliest) << name << ", threshold " << threshold;
        EXPECT_LE(reported, earliest + grace) << name << ", threshold " << threshold;
    }
}

TEST(FaultyDay, AWindowOpenedUnseenIsReported) {
    expectReported("window_open", 71, 1);
}

// The heater should be on from the start.
TEST(FaultyDay, AThermostatStuckOffFromTheStartIsReported) {
    expectReported("stuck_off", 0, 1);
}

TEST(FaultyDay, AThermostatStuckOffLaterIsReported) {
    expectReported("stuck_off_late", 47, 10);
}

TEST(FaultyDay, AThermostatStuckOnIsReported) {
    expectReported("stuck_on", 23, 5);
}

TEST(FaultyDay, ABiasedSensorIsReported) {
    expectReported("sensor_bias", 50, 1);
}

TEST(FaultyDay, ADeadSensorIsReported) {
    expectReported("sensor_dead", 50, 3);
}

}  // namespace
