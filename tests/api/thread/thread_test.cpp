// Runs in threads: what one does is not seen by another. Under ThreadSanitizer this also proves
// that they share nothing that is written.
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <thread>

#include "api/days.h"

namespace {

// A day that is shaken by *seed*: within the noise that the room allows, or beyond it.
std::vector<double> shaken(std::string const& day, unsigned seed) {
    std::vector<double> measures = measuresOf(day);
    std::mt19937 random(seed);
    double const amount = seed % 2 == 0 ? 0.01 : 0.2;
    std::uniform_real_distribution<double> noise(-amount, amount);
    for (double& measure : measures)
        measure += noise(random);
    return measures;
}

// Everything that a run tells of itself, as text; an error ends it.
std::string tellOf(tavro::Plant const& plant, std::vector<double> const& measures) {
    std::ostringstream text;
    text.precision(17);
    tavro::Run run(plant);
    try {
        for (tavro::Step const& step : follow(run, measures, 80)) {
            text << step.time << ' ' << step.alarms.size() << ' ' << step.diagnosis << '\n';
            for (tavro::Candidate const& candidate : step.candidates) {
                for (auto const& [name, mode] : candidate.modes)
                    text << name << '=' << mode << ' ';
                for (auto const& [name, bounds] : candidate.bounds)
                    text << name << ' ' << bounds.lower << ' ' << bounds.upper << ' ';
            }
            for (tavro::Explanation const& explanation : step.explanations)
                text << explanation.summary << '\n';
        }
    } catch (tavro::Error const& error) {
        text << "error " << static_cast<int>(error.kind()) << '\n';
    }
    return text.str();
}

std::string tellOfLine(tavro::Plant const& plant) {
    std::ostringstream text;
    tavro::Run run(plant);
    run.start();
    for (tavro::Line const& line : std::vector<tavro::Line>{
             {.commands = {"pump.cmd=start", "valve1.cmd=none", "valve2.cmd=none"}},
             {.commands = {"pump.cmd=none", "valve1.cmd=open", "valve2.cmd=none"}},
             {.commands = {"pump.cmd=none", "valve1.cmd=none", "valve2.cmd=open"}},
             {.observations = {"sensor.flow=zero"}}})
        for (tavro::Explanation const& explanation : run.step(line).explanations)
            text << explanation.summary << '\n';
    return text.str();
}

}  // namespace

TEST(Thread, TwoRunsOfOnePlant) {
    tavro::Plant const plant = tavro::Plant::builtin("therm");
    for (unsigned seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::vector<double> const sick = shaken("stuck_on", seed), well = shaken("healthy", seed);
        std::string sickTold, wellTold;
        std::thread a([&] { sickTold = tellOf(plant, sick); });
        std::thread b([&] { wellTold = tellOf(plant, well); });
        a.join();
        b.join();
        EXPECT_EQ(sickTold, tellOf(plant, sick));
        EXPECT_EQ(wellTold, tellOf(plant, well));
    }
}

TEST(Thread, TwoRunsOfOneDiscretePlant) {
    tavro::Plant const plant = tavro::Plant::builtin("line");
    std::string first, second;
    std::thread a([&] { first = tellOfLine(plant); });
    std::thread b([&] { second = tellOfLine(plant); });
    a.join();
    b.join();
    EXPECT_FALSE(first.empty());
    EXPECT_EQ(first, second);
}

// Plants are built, copied and let go in several threads at once.
TEST(Thread, PlantsComeAndGo) {
    tavro::Plant const shared = tavro::Plant::builtin("therm");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([copy = shared, i] {
            tavro::Plant const own = tavro::Plant::builtin(i % 2 == 0 ? "therm" : "line");
            EXPECT_EQ(own.discrete(), i % 2 == 1);
            tavro::Run run(copy);
            run.start({.measures = {0.93835}});
        });
    for (std::thread& thread : threads)
        thread.join();
}
