// What fails, how it is told, and what a run answers afterwards.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "api/days.h"
#include "fixtures/failing_memory.h"

namespace {

using tavro::ErrorKind;
using tavro::Plant;

// The kind of what *work* throws.
template <typename Work>
ErrorKind kindOf(Work work) {
    try {
        work();
    } catch (tavro::Error const& error) {
        EXPECT_STRNE(error.what(), "");
        return error.kind();
    }
    ADD_FAILURE() << "nothing was thrown";
    return ErrorKind::internal;
}

Plant room() {
    static Plant const plant = Plant::builtin("therm");
    return plant;
}

}  // namespace

TEST(Errors, UnknownPlant) {
    EXPECT_EQ(Plant::builtins(), (std::vector<std::string>{"therm", "line"}));
    EXPECT_EQ(kindOf([] { Plant::builtin("house"); }), ErrorKind::plant);
    EXPECT_EQ(kindOf([] { Plant::builtin(""); }), ErrorKind::plant);
}

TEST(Errors, OptionsOutOfRange) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    for (tavro::Options const& options :
         std::vector<tavro::Options>{{.isolation = -1},
                                     {.isolation = 4},
                                     {.threshold = 0},
                                     {.precision = nan},
                                     {.precision = -0.1},
                                     {.accumulation = -1},
                                     {.accumulation = 1000001},
                                     {.reset = nan},
                                     {.reset = -1.0},
                                     {.rules = "none"},
                                     {.rules = "narrow,"},
                                     {.candidates = -1},
                                     {.noise = {{"", -0.1}}},
                                     {.noise = {{"", nan}}},
                                     {.noise = {{"room.x", 0.1}}},
                                     {.mode = static_cast<tavro::Mode>(7)}})
        EXPECT_EQ(kindOf([&] { tavro::Run(room(), options); }), ErrorKind::options);
    Plant const line = Plant::builtin("line");
    EXPECT_EQ(kindOf([&] { tavro::Run(line, {.mode = tavro::Mode::simulate}); }),
              ErrorKind::options);
}

// A wrong call changes nothing: the run goes on as one that was never called wrongly.
TEST(Errors, WrongCallsAreTakenBack) {
    double const infinity = std::numeric_limits<double>::infinity();
    std::vector<double> const measures = measuresOf("stuck_on");
    tavro::Run run(room()), twin(room());
    EXPECT_EQ(kindOf([&] { run.step({.measures = {1.0}}); }), ErrorKind::state);
    EXPECT_EQ(kindOf([&] { run.start(); }), ErrorKind::data);
    EXPECT_EQ(kindOf([&] { run.start({.measures = {infinity}}); }), ErrorKind::data);
    EXPECT_EQ(kindOf([&] { run.start({.measures = {1.0}, .commands = {"room.cmdin=open"}}); }),
              ErrorKind::data);
    run.start({.measures = {measures[0]}});
    EXPECT_EQ(kindOf([&] { run.start({.measures = {1.0}}); }), ErrorKind::state);
    twin.start({.measures = {measures[0]}});
    for (std::size_t time = 1; time <= 30; ++time) {
        for (tavro::Line const& wrong : std::vector<tavro::Line>{
                 {},
                 {.measures = {infinity}},
                 {.measures = {1.0, 2.0}},
                 {.inputs = {1.0}, .measures = {1.0}},
                 {.measures = {1.0}, .commands = {"room.cmdin=ajar"}},
                 {.measures = {1.0}, .commands = {"room.cmdin=open", "room.mode=open"}},
                 {.measures = {1.0}, .commands = {""}},
                 {.measures = {1.0}, .observations = {"room.mode=open"}}})
            EXPECT_EQ(kindOf([&] { run.step(wrong); }), ErrorKind::data);
        tavro::Step const a = run.step({.measures = {measures[time]}});
        tavro::Step const b = twin.step({.measures = {measures[time]}});
        EXPECT_EQ(a.time, b.time);
        ASSERT_EQ(a.candidates.size(), b.candidates.size());
        for (std::size_t i = 0; i < a.candidates.size(); ++i)
            EXPECT_EQ(a.candidates[i].bounds.at("room.x").upper,
                      b.candidates[i].bounds.at("room.x").upper);
        EXPECT_EQ(a.diagnosis, b.diagnosis);
    }
}

TEST(Errors, DiscreteLines) {
    tavro::Run run(Plant::builtin("line"));
    EXPECT_EQ(kindOf([&] { run.start({.measures = {1.0}}); }), ErrorKind::data);
    run.start();
    EXPECT_EQ(kindOf([&] { run.step({.measures = {1.0}}); }), ErrorKind::data);
    EXPECT_EQ(kindOf([&] { run.step({.commands = {"sensor.flow=zero"}}); }), ErrorKind::data);
    EXPECT_EQ(kindOf([&] { run.step({.observations = {"pump.cmd=start"}}); }), ErrorKind::data);
    EXPECT_EQ(kindOf([&] {
                  run.step({.commands = {"pump.cmd=start"}, .observations = {"sensor.flow=zero"}});
              }),
              ErrorKind::data);
    EXPECT_EQ(run.step({.commands = {"pump.cmd=start"}}).time, 1.0);
}

// The session diagnosis_outside_window shows the same day in the console, and why it ends so: the
// fault must lie 319 steps back, and the histories reach back 300.
TEST(Errors, FaultOutsideTheWindowStopsTheRun) {
    tavro::Run run(room(), {.isolation = 1, .threshold = 1});
    run.start({.measures = {0.95}});
    run.step({.measures = {0.01}, .commands = {"room.cmdin=open"}});
    for (int time = 2; time < 320; ++time)
        run.step({.measures = {0.01}});
    for (int again = 0; again < 2; ++again)
        EXPECT_EQ(kindOf([&] { run.step({.measures = {5.0}}); }), ErrorKind::outsideWindow);
    EXPECT_EQ(kindOf([&] { run.start({.measures = {1.0}}); }), ErrorKind::outsideWindow);
    EXPECT_EQ(run.time(), 319.0);
    EXPECT_EQ(run.plant().name(), "therm");
}

// Whatever allocation of a diagnosing step fails, the run stops with that error, keeps it, and can
// be destroyed; another run of the plant is not touched.
TEST(Errors, MemoryThatFailsStopsTheRun) {
    std::vector<double> const measures = measuresOf("stuck_on");
    tavro::Run other(room());
    other.start({.measures = {measures[0]}});
    long const allocations = [&] {
        tavro::Run run(room());
        follow(run, measures, 26);
        long const before = failing_memory::counted;
        run.step({.measures = {measures[27]}});
        return failing_memory::counted - before;
    }();
    ASSERT_GT(allocations, 1000);
    for (long nth = 10; nth < allocations; nth += allocations / 40) {
        tavro::Run run(room());
        follow(run, measures, 26);
        tavro::Line const line{.measures = {measures[27]}};
        bool stopped = false;
        {
            failing_memory::Shortage const shortage(nth, true);
            try {
                run.step(line);
            } catch (tavro::Error const& error) {
                stopped = error.kind() == ErrorKind::memory;
            }
        }
        EXPECT_TRUE(stopped) << nth;
        EXPECT_EQ(kindOf([&] { run.step(line); }), ErrorKind::memory) << nth;
        EXPECT_EQ(run.time(), 26.0);
    }
    EXPECT_FALSE(other.step({.measures = {measures[1]}}).candidates.empty());
}

TEST(Errors, MemoryThatFailsAtTheStart) {
    for (long nth = 1; nth < 400; nth += 7) {
        tavro::Run run(room());
        tavro::Line const line{.measures = {1.0}};
        bool stopped = false;
        {
            failing_memory::Shortage const shortage(nth, true);
            try {
                run.start(line);
            } catch (tavro::Error const& error) {
                stopped = error.kind() == ErrorKind::memory;
            }
        }
        EXPECT_TRUE(stopped) << nth;
        EXPECT_EQ(kindOf([&] { run.start(line); }), ErrorKind::memory) << nth;
    }
}
