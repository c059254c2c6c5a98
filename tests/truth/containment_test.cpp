// True runs of every test plant lie within the bounds that the engine keeps, and raise no alarm:
// two programs that know nothing of each other agree on what a plant is.
#include <gtest/gtest.h>

#include <algorithm>

#include "run/plant_names.h"
#include "run/stepwise_run.h"
#include "truth/simulator.h"
#include "truth_fixture.h"

using namespace truth_test;
using truth::Simulator;
using truth::Uncertainty;

namespace {

// What the sensors of a plant get to see besides: slow waves, each input its own.
std::vector<double> inputsAt(std::size_t count, int time) {
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(1.5 + 0.5 * std::sin(0.1 * time + static_cast<double>(i)));
    return values;
}

struct Case {
    char const* name;
    CompiledModel const* model;
    int steps;
    std::set<std::string> left =
        {};  // variables of which the engine is not bound to have the truth
};

// The variables whose true value no candidate has, with both; "" when one candidate has all.
std::string missed(PlantNames const& names, Plant const& plant, std::set<std::string> const& left,
                   Simulator const& truth, tavro::Step const& step) {
    std::string least = "all";
    for (tavro::Candidate const& candidate : step.candidates) {
        std::string outside;
        for (std::string const& name : names.variables) {
            auto const& dico = plant.tavro_rt->dico;
            auto const variable = std::find_if(dico.begin(), dico.end(),
                                               [&](auto const& v) { return v->nom == name; });
            double const value = truth.values()[static_cast<std::size_t>((*variable)->slot)];
            tavro::Bounds const& bounds = candidate.bounds.at(name);
            double const slack = 1e-9 * (1.0 + std::fabs(value));
            if (left.count(name) == 0 &&
                (value < bounds.lower - slack || value > bounds.upper + slack))
                outside += " " + name + std::to_string(value) + " in " +
                           std::to_string(bounds.lower) + ".." + std::to_string(bounds.upper);
        }
        if (outside.size() < least.size() || least == "all")
            least = outside;
    }
    return least;
}

class Containment : public testing::TestWithParam<Case> {};

TEST_P(Containment, HealthyRunsStayWithinTheBounds) {
    auto const plant = built(*GetParam().model);
    PlantNames const names(*plant);
    for (std::uint64_t seed = 1; seed <= 6; ++seed) {
        Simulator truth(
            *plant, {.seed = seed,
                     .uncertainty = seed % 2 == 0 ? Uncertainty::redrawn : Uncertainty::constant});
        tavro::Options options;
        options.isolation = 0;
        options.rules = "sharp";
        StepwiseRun run(*plant, names, options);
        truth.start(inputsAt(names.inputs.size(), 0));
        tavro::Step step =
            run.start({.inputs = inputsAt(names.inputs.size(), 0), .measures = truth.measures()});
        for (int k = 1; k <= GetParam().steps; ++k) {
            truth.step(inputsAt(names.inputs.size(), k));
            step = run.step(
                {.inputs = inputsAt(names.inputs.size(), k), .measures = truth.measures()});
            ASSERT_TRUE(step.alarms.empty()) << "seed " << seed << " step " << k;
            ASSERT_EQ(missed(names, *plant, GetParam().left, truth, step), "")
                << "seed " << seed << " step " << k;
        }
    }
}

// Of the rig, drift and ratio have no first value of their own and take one before the inputs are
// there; still has a number beside an interval in a place where the engine reads neither.
INSTANTIATE_TEST_SUITE_P(
    Plants, Containment,
    testing::Values(Case{"room", &therm_model, 150},
                    Case{"rig", &rig_model, 60, {"rig.drift", "rig.ratio", "rig.still"}},
                    Case{"works", &works_model, 60}),
    [](auto const& named) { return std::string(named.param.name); });

}  // namespace
