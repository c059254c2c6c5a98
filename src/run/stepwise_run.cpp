// Start and steps of a run, and the ways in which it stops.
#include "run/stepwise_run.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <iterator>

#include "continuous/isolation.h"
#include "continuous/sorn-runt.h"
#include "support/memory_watch.h"
#include "support/run_stopped.h"
#include "trajectory/model_tools.h"

using tavro::Error;
using tavro::ErrorKind;

namespace {

// A misbehaviour is remembered for at most this many cycles: the memory that it takes is set aside.
constexpr int longestAccumulation = 1000000;

void require(bool holds, ErrorKind kind, char const* text) {
    if (!holds)
        throw Error(kind, text);
}

void checkNoise(Plant const& plant, tavro::Options const& o) {
    for (auto const& [name, bound] : o.noise) {
        if (!std::isfinite(bound) || bound < 0.0)
            throw Error(ErrorKind::options, "the noise of a measure is not negative");
        auto const isIt = [&key = name](s_Variable const* v) { return v->nom == key; };
        bool const known = name.empty() || (plant.tavro_rt != nullptr &&
                                            std::any_of(plant.tavro_rt->measure.begin(),
                                                        plant.tavro_rt->measure.end(), isIt));
        if (!known)
            throw Error(ErrorKind::options, name + " is not measured in this plant");
    }
}

void checkOptions(Plant const& plant, tavro::Options const& o) {
    auto const option = [](bool holds, char const* text) {
        require(holds, ErrorKind::options, text);
    };
    option(o.mode == tavro::Mode::detect || o.mode == tavro::Mode::simulate, "unknown mode");
    option(o.isolation >= 0 && o.isolation <= LEVEL_EXONERATION,
           "the level of isolation is 0, 1, 2 or 3");
    option(o.threshold >= 1, "the alarm threshold is at least 1");
    option(std::isfinite(o.precision) && o.precision >= 0.0,
           "the precision is a number that is not negative");
    option(o.accumulation >= 0 && o.accumulation <= longestAccumulation,
           "the accumulation time lies from 0 to 1000000");
    std::string wrong;
    Rules rules;
    if (!Rules::read(o.rules, rules, wrong))
        throw Error(ErrorKind::options, "there is no rule \"" + wrong +
                                            "\"; there are classic, sharp, " + Rules::names());
    option(o.candidates >= 0, "the number of candidates is not negative");
    checkNoise(plant, o);
    option(std::isfinite(o.reset) && o.reset >= 0.0,
           "the time of the reset is a number that is not negative");
    if (plant.tavro_rt == nullptr)
        option(o.mode == tavro::Mode::detect, "a discrete plant has nothing to simulate");
    else if (o.mode == tavro::Mode::detect)
        option(!plant.tavro_rt->measure.empty(), "without a measure there is no detection");
}

// The options have been checked.
RunSettings settingsOf(tavro::Options const& o) {
    RunSettings settings;
    std::string wrong;
    Rules::read(o.rules, settings.rules, wrong);
    settings.candidates = o.candidates;
    settings.noise = o.noise;
    return settings;
}

RunOptions engineOptions(tavro::Options const& o) {
    RunOptions asked;
    if (o.mode == tavro::Mode::detect) {
        asked.mode = o.merge ? RUN_DETECT : RUN_NOMERGE;
        // A diagnosis is begun by diagnose(), once what led to it has been told.
        asked.isolation = CYCLE_DETECT;
        asked.threshold = o.threshold;
        return asked;
    }
    asked.mode = o.reset > 0.0 ? RUN_RESET : RUN_SIMULATE;
    asked.period = o.reset;
    asked.multi = o.multi ? 1 : 0;
    return asked;
}

ErrorKind kindOf(RunStopped::Reason reason) {
    switch (reason) {
        case RunStopped::noCover:
            return ErrorKind::noCover;
        case RunStopped::outsideWindow:
            return ErrorKind::outsideWindow;
        case RunStopped::eventImpossible:
            return ErrorKind::eventImpossible;
        case RunStopped::noDiagnosis:
            return ErrorKind::noDiagnosis;
        case RunStopped::overdue:
            return ErrorKind::givenUp;
        default:
            return ErrorKind::internal;
    }
}

}  // namespace

StepwiseRun::StepwiseRun(Plant const& plant, PlantNames const& names, tavro::Options const& options)
    : names(names),
      options((checkOptions(plant, options), options)),
      host(options),
      run(plant, host, settingsOf(options)),
      asked(engineOptions(options)),
      memoryShort(ErrorKind::memory, "memory ran short, the run stopped") {}

StepwiseRun::~StepwiseRun() = default;

// ---- What is asked ----

void StepwiseRun::mustBe(bool started) const {
    if (stopped)
        throw Error(*stopped);
    require(hasStarted == started, ErrorKind::state,
            started ? "the run has not been started" : "the run has been started already");
}

void StepwiseRun::checkValues(std::vector<double> const& values,
                              std::vector<std::string> const& expected, char const* what) const {
    if (values.size() != expected.size())
        throw Error(ErrorKind::data, std::to_string(values.size()) + " " + what +
                                         " given, the plant has " +
                                         std::to_string(expected.size()));
    bool const mayMiss = &expected == &names.measures;
    for (std::size_t i = 0; i < values.size(); ++i)
        if (!std::isfinite(values[i]) && !(mayMiss && std::isnan(values[i])))
            throw Error(ErrorKind::data, "the value of " + expected[i] + " is no finite number");
}

// Nothing could take the place of the first one.
void StepwiseRun::checkFirstMeasures(std::vector<double> const& measures) const {
    for (std::size_t i = 0; i < measures.size(); ++i)
        if (std::isnan(measures[i]) && !sn_isPredicted(run.tavro_rt->measure[i]))
            throw Error(ErrorKind::data, "the first measure of " + names.measures[i] +
                                             " is missing, and nothing predicts it");
}

void StepwiseRun::checkLine(tavro::Line const& line, bool starting) const {
    checkValues(line.inputs, names.inputs, "inputs");
    if (starting || detecting() || !line.measures.empty())
        checkValues(line.measures, names.measures, "measures");
    if (starting)
        checkFirstMeasures(line.measures);
    require(!starting || (line.commands.empty() && line.observations.empty()), ErrorKind::data,
            "a start takes no commands and no observations");
    require(line.commands.empty() || line.observations.empty(), ErrorKind::data,
            "a step takes commands or observations, not both");
}

std::vector<Atom*> StepwiseRun::atomsOf(std::vector<std::string> const& ids,
                                        std::vector<std::string> const& known,
                                        char const* what) const {
    std::vector<Atom*> atoms;
    for (std::string const& id : ids) {
        if (std::find(known.begin(), known.end(), id) == known.end())
            throw Error(ErrorKind::data, "the plant has no " + std::string(what) + " " + id);
        atoms.push_back(run.plant.active_atoms.find(id.c_str())->second);
    }
    return atoms;
}

// ---- How a run stops ----

// An Error thrown by *work* is a wrong call, which has changed nothing yet.
template <typename Work>
tavro::Step StepwiseRun::guarded(Work work) {
    LibraryHost::Stepping const stepping(host);
    try {
        return work();
    } catch (Error const&) {
        throw;
    } catch (RunStopped const& why) {
        stop(Error(kindOf(why.reason), why.what()));
    } catch (std::bad_alloc const&) {
        stop(memoryShort);
    } catch (std::exception const& why) {
        stop(Error(ErrorKind::internal, why.what()));
    }
}

void StepwiseRun::stop(Error const& error) {
    release();
    stopped = error;
    throw Error(error);
}

// What a step that did not come to its end has left. Parts of a split are left by a start alone,
// whose candidate is one of them.
void StepwiseRun::release() {
    if (!run.engine.nrt.empty())
        clearNrt(run, run.hybNT != nullptr ? run.hybNT->rt.get() : nullptr);
    clearMultiTrajs(run);
    run.ntrajs.clear();
    run.misbtrajs.clear();
    run.scheduler.tracked_traj.clear();
}

// ---- The start ----

tavro::Step StepwiseRun::start(tavro::Line const& line) {
    mustBe(false);
    return guarded([&] {
        checkLine(line, true);
        hasStarted = true;
        discrete() ? discreteStart() : hybridStart(line);
        tavro::Step told;
        describeCandidates(told);
        return told;
    });
}

void StepwiseRun::discreteStart() {
    tavro_initialize_discrete(run);
    run.scheduler.beginSteps();
    timesOfHistory[0] = 0.0;
}

void StepwiseRun::hybridStart(tavro::Line const& line) {
    host.firstInputs = line.inputs;
    host.firstMeasures = line.measures;
    tavro_initialize(run, options.globalConstraints ? 1 : 0, options.precision, "",
                     options.accumulation);
    countdown = asked.period;
}

// ---- The steps ----

tavro::Step StepwiseRun::step(tavro::Line const& line) {
    mustBe(true);
    return guarded([&] {
        checkLine(line, false);
        return discrete() ? discreteStep(line) : hybridStep(line);
    });
}

// A command that a transition has scheduled for this time stays beside those that are given.
void StepwiseRun::giveCommands(std::vector<Atom*> const& commands, double when) {
    if (commands.empty())
        return;
    auto& event = run.scheduler.scenario[when];
    if (event == nullptr)
        event = std::make_unique<scenarEvent>();
    event->isCommand = true;
    event->atoms.insert(event->atoms.end(), commands.begin(), commands.end());
}

// A diagnosis that goes back in time gives the commands of the window again.
void StepwiseRun::forgetCommands(double when) {
    Scenario& scenario = run.scheduler.scenario;
    if (!run.rules.dates)
        scenario.erase(when);
    else
        scenario.erase(scenario.begin(),
                       scenario.lower_bound(when - run.tavro_rt->twc * run.tavro_rt->Ts));
}

tavro::Step StepwiseRun::hybridStep(tavro::Line const& line) {
    std::vector<Atom*> const commands = atomsOf(line.commands, names.commands, "command");
    require(line.observations.empty(), ErrorKind::data,
            "a run with measures takes no observations");
    assert(run.hybNT != nullptr);  // a step leaves a candidate, or stops the run
    watchMemory(host);
    double const when = now + run.tavro_rt->Ts;
    giveCommands(commands, when);
    host.diagnoses.clear();
    host.suspects.clear();
    run.remarks = {};
    std::copy(line.inputs.begin(), line.inputs.end(), run.engine.inps.begin());
    std::copy(line.measures.begin(), line.measures.end(), run.engine.meas.begin());
    countdown -= run.tavro_rt->Ts;
    bool nominal = false;
    tavro_doCycle(run, asked, countdown, when, nominal);
    // By the rule `cover` the last candidate may go.
    if (run.tracked_trajs.empty())
        throw RunStopped(RunStopped::noCover, "no candidate is left");
    forgetCommands(when);
    tavro::Step told;
    told.time = when;
    if (detecting() && !nominal) {
        told.alarms = alarmsOf(candidatesOf(run));
        if (options.isolation > 0 && mayDiagnose(run))
            diagnose(told);
    }
    describeCandidates(told);
    describeRemarks(told);
    now = when;
    return told;
}

// The candidates of the cycle, none of which agrees, are isolated, explained and replayed. It is
// the second half of a detection, taken apart from the first so that the alarms can be told: they
// are gone afterwards.
void StepwiseRun::diagnose(tavro::Step& told) {
    RunOptions isolating = asked;
    isolating.isolation = CYCLE_DETECT + options.isolation;
    run.hybNT = nullptr;
    run.misbtrajs = std::move(run.tracked_trajs);
    run.tracked_trajs.clear();
    diagnoseMisbTrajs(run, isolating, told.time);
    limitCandidates(run, told.time, false);
    run.ntrajs.clear();
    run.misbtrajs.clear();
    run.hybNT = run.tracked_trajs.empty() ? nullptr : run.tracked_trajs.begin()->second.get();
    told.diagnosed = true;
    for (std::string const& text : host.diagnoses)
        told.diagnosis += (told.diagnosis.empty() ? "" : "\n") + text;
    told.suspects = std::move(host.suspects);
    told.explanations = explanationsOf(candidatesOf(run), timeOfStep());
}

// A line without anything is one of commands, too. The event stands in its place of the scenario:
// what a transition commands for this very step joins it there.
tavro::Step StepwiseRun::discreteStep(tavro::Line const& line) {
    auto event = std::make_unique<scenarEvent>();
    bool const commanding = event->isCommand = line.observations.empty();
    event->atoms = commanding ? atomsOf(line.commands, names.commands, "command")
                              : atomsOf(line.observations, names.observations, "observation");
    watchMemory(host);
    Scheduler& scheduler = run.scheduler;
    auto& place = scheduler.scenario[scheduler.time + 1];
    place = std::move(event);
    tavro::Step told;
    told.diagnosed = scheduler.step(*place);
    told.time = scheduler.time;
    if (scheduler.tracked_traj.empty())
        throw RunStopped(RunStopped::noDiagnosis, "no history explains the observations");
    if (commanding) {
        int const reached = scheduler.tracked_traj.begin()->second->getCurrentTime();
        timesOfHistory[reached] = told.time;
        firstTimesOfHistory.try_emplace(reached, told.time);
    }
    if (told.diagnosed && run.rules.dates)
        for (auto const& answer : scheduler.tracked_traj)
            dateFailures(*answer.second);
    if (told.diagnosed)
        told.explanations = explanationsOf(candidatesOf(run), timeOfStep());
    describeCandidates(told);
    now = told.time;
    return told;
}

// A failure may have come at any step at which a history of the answer has it: nothing that is seen
// later tells them apart, since they end in the same modes.
void StepwiseRun::dateFailures(Trajectory& answer) const {
    for (auto const& [failure, steps] : answer.failureSteps) {
        auto const begun = firstTimesOfHistory.find(*steps.begin());
        double const first = begun != firstTimesOfHistory.end()
                                 ? begun->second
                                 : timeOfStep()(answer, *steps.begin());
        answer.dated[failure] = {first, timeOfStep()(answer, *steps.rbegin())};
    }
}

TimeOfStep StepwiseRun::timeOfStep() const {
    if (discrete())
        return [this](Trajectory const&, int step) {
            // A step that a search has put in is dated by the line before it.
            auto const next = timesOfHistory.upper_bound(step);
            return next == timesOfHistory.begin() ? 0.0 : std::prev(next)->second;
        };
    return [](Trajectory const& history, int step) { return history.getTimeCorr(step); };
}

void StepwiseRun::describeCandidates(tavro::Step& told) const {
    for (CandidateView const& candidate : candidatesOf(run))
        told.candidates.push_back(describe(run.plant, candidate, detecting(), timeOfStep()));
}

void StepwiseRun::describeRemarks(tavro::Step& told) {
    told.dropped = run.remarks.dropped;
    told.datesCut = run.remarks.datesCut;
    told.pastUse = std::move(run.remarks.pastUse);
}

// ---- Histories ----

Trajectory const& StepwiseRun::historyOf(std::size_t candidate) const {
    mustBe(true);
    std::vector<CandidateView> const candidates = candidatesOf(run);
    require(candidate < candidates.size(), ErrorKind::state, "there is no such candidate");
    return *candidates[candidate].history;
}

std::vector<tavro::HistoryStep> StepwiseRun::history(std::size_t candidate) const {
    return stepsOf(historyOf(candidate), timeOfStep());
}

std::string StepwiseRun::graph(std::size_t candidate, std::string const& name) const {
    return graphOf(historyOf(candidate), name);
}
