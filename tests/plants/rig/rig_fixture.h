// Runs of the rig, a step at a time. All that these tests touch of the engine is here.
#pragma once

#include <iomanip>
#include <random>
#include <sstream>

#include "console/exchange.h"
#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"
#include "plain_interval.h"
#include "reasoning/scheduler_fixture.h"

namespace plants_test {

using scheduler_fixture::streamsOf;
using scheduler_fixture::TextFile;

inline Num numOf(s_Objet const& o) {
    return {sn_infOf(o), sn_supOf(o), isRange(o)};
}

class RigRun {
public:
    RigRun(std::vector<double> const& inputs, std::vector<double> const& measures) {
        TextFile const inputLine(line(inputs)), measureLine(line(measures));
        dataIn = std::fopen(inputLine.path.c_str(), "r");
        measIn = std::fopen(measureLine.path.c_str(), "r");
        streamsOf([] { tavro_initialize(theRun(), 1, 0.01, "", 0); });
        std::fclose(dataIn);
        std::fclose(measIn);
        dataIn = measIn = nullptr;
        initDispAll(theRun().hybNT->rt.get(), 250.0);
    }

    // Commands by a scenario, as "2 Command rig.cmd=hold".
    void command(std::string const& text) {
        TextFile const scenario(text);
        streamsOf([&] { theRun().sMM->loadScenario(scenario.path); });
    }

    void simulate(std::vector<double> const& inputs, std::vector<double> const& measures) {
        cycle(RunOptions{}, inputs, measures);
    }
    void detect(std::vector<double> const& inputs, std::vector<double> const& measures,
                int threshold) {
        RunOptions options;
        options.mode = RUN_DETECT;
        options.isolation = CYCLE_DETECT;
        options.threshold = threshold;
        cycle(options, inputs, measures);
    }

    s_Variable const& variable(std::string const& name) const {
        return *sn_getVarDico(theRun().hybNT->rt.get(), ("rig." + name).c_str());
    }
    Num value(std::string const& name) const { return numOf(variable(name).old); }
    Num before(std::string const& name) const { return numOf(variable(name).histo[0]); }
    bool holds(char const* atom) const {
        Trajectory const* traj = theRun().hybNT->traj.get();
        TrajEl const* element = traj->getElt(atom, traj->getCurrentTime(), 0);
        return element != nullptr && std::string(element->getLabel()) == "true";
    }
    double time() const { return now; }
    bool nominal = false;  // the newest step agreed with the measures

private:
    static std::string line(std::vector<double> const& values) {
        std::ostringstream text;
        for (double const value : values)
            text << std::setprecision(17) << value << " ";
        return text.str() + "\n";
    }

    void cycle(RunOptions const& options, std::vector<double> const& inputs,
               std::vector<double> const& measures) {
        now += 0.5;
        theRun().engine.inps = inputs;
        theRun().engine.meas = measures;
        streamsOf([&] { tavro_doCycle(theRun(), options, 0.0, now, nominal); });
    }

    ReferenceModel model;
    double now = 0.0;
};

// A random signal that holds each value for a few steps.
class Signal {
public:
    explicit Signal(unsigned seed) : random(seed) {}
    double next() {
        if (left-- == 0) {
            left = static_cast<int>(random() % 4);
            level = static_cast<double>(random() % 2001) / 500.0 - 2.0;
        }
        return level;
    }
    // Between the two, evenly.
    double between(double lo, double hi) {
        return lo + (hi - lo) * static_cast<double>(random() % 10001) / 10000.0;
    }

private:
    std::mt19937 random;
    int left = 0;
    double level = 0.0;
};

}  // namespace plants_test
