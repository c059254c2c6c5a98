// The waterworks of tests/sessions/models/works.cpp: a simulator of the truth, and runs of the
// engine on what it measures. Tests reach the engine through this header alone.
#pragma once

#include <array>
#include <map>
#include <random>
#include <sstream>

#include "console/exchange.h"
#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

namespace works_fixture {

using scheduler_fixture::Streams;
using scheduler_fixture::streamsOf;
using scheduler_fixture::TextFile;

// A waterworks that obeys the model: every gain, every flow and every delay is drawn anew at each
// step within its range, a little inside of it, so that rounding decides nothing.
class TrueWorks {
public:
    explicit TrueWorks(unsigned seed, bool steadyInputs, double level)
        : generator(seed), steady(steadyInputs), level(level) {}

    double between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(generator);
    }
    int delay(int least, int most) {
        return std::uniform_int_distribution<int>(least, most)(generator);
    }

    void step() {
        ++k;
        rain[k] = steady ? 2.0 : between(1.0, 3.0);
        river[k] = steady ? 1.0 : between(0.5, 1.5);
        pond[k] = between(0.901, 1.099) * at(rain, 1, 2.0);
        pool[k] = at(river, delay(2, 3), 1.0);
        mainPipe[k] = (gate1Failed() ? 0.0 : at(pond, 1, 2.0)) + at(pool, delay(2, 3), 1.0);
        poolGauge = between(0.901, 1.099) * pool[k];
        meter = open ? 3.0 : 0.0;
        level += between(0.1901, 0.2099) - (open ? between(0.361, 0.439) : 0.0);
        if (!open && level >= 6.0)
            open = true;
        else if (open && level < 2.0)
            open = false;
        if (noise > 0.0)
            for (double& error : errors)
                error = between(-noise, noise);
    }

    // What is measured, in the order of the model.
    std::vector<double> measures() const {
        std::vector<double> shown = {at(pond, 0, 2.0), poolGauge, at(mainPipe, 1, 3.0),
                                     at(mainPipe, 3, 3.0), meter};
        for (std::size_t i = 0; i < shown.size(); ++i)
            shown[i] += errors[i];
        return shown;
    }
    // What is not measured, by name.
    std::map<std::string, double> hidden() const {
        return {{"works.pond", at(pond, 0, 2.0)},
                {"works.pool", at(pool, 0, 1.0)},
                {"works.main", at(mainPipe, 0, 3.0)},
                {"tank.level", level}};
    }
    double rainNow() const { return at(rain, 0, 2.0); }
    double riverNow() const { return at(river, 0, 1.0); }

    int k = 0;
    bool open = false;       // the valve of the tank
    double noise = 0.0;      // how far a sensor may be off
    int failureOfGate1 = 0;  // the step at which it fails; 0 for never

private:
    using Course = std::map<int, double>;

    bool gate1Failed() const { return failureOfGate1 != 0 && k >= failureOfGate1; }
    // The value some steps ago; before the start everything has long been as it was then.
    double at(Course const& course, int ago, double before) const {
        auto const found = course.find(k - ago);
        return found != course.end() ? found->second : before;
    }

    std::mt19937 generator;
    bool steady;
    double level;
    Course rain, river, pond, pool, mainPipe;
    double poolGauge = 1.0, meter = 0.0;
    std::array<double, 5> errors{};
};

// A run of `detect` with threshold 1, fed step by step.
class WorksRun {
public:
    // *level* is where the tank starts.
    WorksRun(int isolationLevel, double level) {
        for (s_InitVar& first : theRun().tavro_rt->init)
            if (first.var->nom == "tank.level")
                first.value = makeReal(level);
        options.mode = RUN_DETECT;
        options.isolation = CYCLE_DETECT + isolationLevel;
        options.threshold = 1;
        TextFile const inputs("2 1\n"), measures("2 1 3 3 0\n");
        dataIn = std::fopen(inputs.path.c_str(), "r");
        measIn = std::fopen(measures.path.c_str(), "r");
        streamsOf([] { tavro_initialize(theRun(), 1, 0.01, "", 0); });
        std::fclose(dataIn);
        std::fclose(measIn);
        dataIn = measIn = nullptr;
        initDispAll(theRun().hybNT->rt.get(), 200.0);
    }

    // One cycle on what the truth measures; answers whether some candidate agrees.
    bool step(TrueWorks const& truth) {
        theRun().engine.inps = {truth.rainNow(), truth.riverNow()};
        theRun().engine.meas = truth.measures();
        bool nominal = false;
        told = streamsOf([&] { tavro_doCycle(theRun(), options, 0.0, truth.k, nominal); }).err;
        return nominal;
    }

    // The text of the diagnosis of the last cycle, or "".
    std::string diagnosis() const {
        std::string const mark = "Diagnostic Results:\n";
        std::size_t const found = told.find(mark);
        if (found == std::string::npos)
            return "";
        std::size_t const start = found + mark.size();
        return told.substr(start, told.find('\n', start) - start);
    }

    std::string told;  // the error stream of the last cycle

private:
    ReferenceModel model;
    RunOptions options;
};

// The newest label of an atom in the candidate's history is "true".
inline bool holds(hybTrajectory const& candidate, char const* id) {
    TrajEl const* element = candidate.traj->getElt(id, candidate.traj->getCurrentTime(), 0);
    return element != nullptr && element->isLabelled("true");
}

// The bounds of every hidden variable hold its true value, and the valve is as it truly is.
inline bool covers(hybTrajectory const& candidate, TrueWorks const& truth) {
    if (holds(candidate, "tank.valve=open") != truth.open)
        return false;
    for (auto const& [name, value] : truth.hidden()) {
        s_Objet const& bounds = sn_getVarDico(candidate.rt.get(), name.c_str())->old;
        if (value < sn_infOf(bounds) || value > sn_supOf(bounds))
            return false;
    }
    return true;
}

inline bool isTracked(TrueWorks const& truth) {
    for (auto const& entry : theRun().tracked_trajs)
        if (covers(*entry.second, truth))
            return true;
    return false;
}

}  // namespace works_fixture
