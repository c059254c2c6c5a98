// A run that is taken forward one step at a time, by whoever holds it.
//
// It does what the console's `init`, `simul`, `detect` and `disc` do in their loops, and answers
// each step with what there is to tell. It is the one place that turns the ways in which a run can
// stop into errors: after one, all candidates are gone and only that error is answered.
#pragma once

#include <map>
#include <optional>

#include "hybrid/run_state.h"
#include "hybrid/tavro-runt.h"
#include "run/library_host.h"
#include "run/plant_names.h"
#include "run/step_report.h"
#include "tavro/tavro.hpp"

class StepwiseRun {
public:
    // The plant and its names outlive the run. Throws tavro::Error of kind `options`.
    StepwiseRun(Plant const& plant, PlantNames const& names, tavro::Options const& options);
    ~StepwiseRun();

    // Each throws tavro::Error.
    tavro::Step start(tavro::Line const& line);
    tavro::Step step(tavro::Line const& line);

    // Of a candidate of the last step.
    std::vector<tavro::HistoryStep> history(std::size_t candidate) const;
    std::string graph(std::size_t candidate, std::string const& name) const;

    double time() const { return now; }

private:
    bool discrete() const { return run.tavro_rt == nullptr; }
    bool detecting() const { return asked.mode > RUN_RESET; }

    void mustBe(bool started) const;
    void checkLine(tavro::Line const& line, bool starting) const;
    void checkValues(std::vector<double> const& values, std::vector<std::string> const& names,
                     char const* what) const;
    void checkFirstMeasures(std::vector<double> const& measures) const;
    std::vector<Atom*> atomsOf(std::vector<std::string> const& ids,
                               std::vector<std::string> const& known, char const* what) const;

    template <typename Work>
    tavro::Step guarded(Work work);
    [[noreturn]] void stop(tavro::Error const& error);
    void release();

    void hybridStart(tavro::Line const& line);
    void discreteStart();
    tavro::Step hybridStep(tavro::Line const& line);
    tavro::Step discreteStep(tavro::Line const& line);
    void giveCommands(std::vector<Atom*> const& commands, double when);
    void forgetCommands(double when);
    void diagnose(tavro::Step& told);
    void describeCandidates(tavro::Step& told) const;
    void describeRemarks(tavro::Step& told);
    void dateFailures(Trajectory& answer) const;
    TimeOfStep timeOfStep() const;
    Trajectory const& historyOf(std::size_t candidate) const;

    PlantNames const& names;
    tavro::Options const options;
    LibraryHost host;
    RunState run;
    RunOptions asked;
    double countdown = 0.0;  // to the reset of a simulation
    // Of a discrete run, by a history's step: the last line that was about it, as a line by which
    // nothing moves makes no step, and the line that made it.
    std::map<int, double> timesOfHistory, firstTimesOfHistory;
    std::vector<double> lastMeasures;  // of each measure the last one that was not missing
    double now = 0.0;
    bool hasStarted = false;
    std::optional<tavro::Error> stopped;
    tavro::Error const memoryShort;  // made in time
};
