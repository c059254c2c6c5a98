// The discrete run: a scenario of commands and observations over the tracked trajectories.
//
// Every line of the scenario is one step. A command step moves each trajectory to its next nominal
// state. An observation step keeps the trajectories that agree with what was seen; when none does,
// the covering search looks for the histories of least failure that do.
#include <algorithm>
#include <cassert>
#include <ctime>

#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/Scheduler.h"
#include "support/run_stopped.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;
// How many failures more than the refuted history an explanation may hold.
constexpr double rankMargin = 10.0;

Observations allTrue(std::vector<Atom*> const& atoms) {
    Observations observations;
    for (Atom* atom : atoms)
        observations.insert({true, atom});
    return observations;
}

}  // namespace

// Processor time since a step began, told in the scheduler's words.
struct Scheduler::ElapsedTime {
    std::clock_t start = std::clock();

    double seconds() const { return static_cast<double>(std::clock() - start) / ticksPerSecond; }
    double report(std::ostream& err, char const* what) const {
        double const elapsed = seconds();
        err << "[Scheduler] --> elapsed time" << what << " : " << elapsed << "\n";
        return elapsed;
    }
};

int Scheduler::runSchD(std::string const& path) {
    scenarioPath = path;
    run2();
    return 1;
}

void Scheduler::lockFirstStates() {
    for (auto const& entry : tracked_traj) {
        State* first = entry.second->getState(0);
        if (first == nullptr)
            continue;
        for (auto const& element : first->elts)
            if (element.second != nullptr && element.second->evalTrajEl() &&
                element.second->getVarType() != typeCommand)
                lockTrajElsPerm(element.second, first);
    }
}

void Scheduler::announceStep(scenarEvent const& event) const {
    err << "Time : " << time + 1 << "\nFrom scenario:\n";
    for (Atom const* atom : event.atoms)
        err << atom->getId() << " ";
    err << "\n";
}

void Scheduler::beginSteps() {
    discretemdl = true;
    running.clear();
    if (time == 0)
        lockFirstStates();
}

bool Scheduler::step(scenarEvent& event) {
    announceStep(event);
    assert(discretemdl);  // beginSteps has made ready
    bool searched = false;
    if (event.isCommand)
        commandStep(event);
    else if (tracked_traj.empty())
        skipObservations();
    else
        searched = observationStep(event);
    scenario.erase(time);
    return searched;
}

void Scheduler::run2() {
    if (!openScenario(scenarioPath))
        return;
    if (tracked_traj.empty()) {
        err << "no history to run the scenario on\n";
        return;
    }
    scenario[1.0] = readFromScenario();
    if (scenario[1.0] == nullptr) {
        err << "exiting run2.\n";
        throw RunStopped(RunStopped::scenarioEnded, "the scenario has no first event");
    }
    beginSteps();
    // A null event, or none, ends the run; so does the host, between two steps.
    for (auto next = scenario.find(time + 1);
         next != scenario.end() && next->second != nullptr && !host.stopRequested();
         next = scenario.find(time + 1)) {
        step(*next->second);
        // The line stands for the step, also where a transition has scheduled a command for it.
        auto& following = scenario[time + 1];
        following = readFromScenario();
    }
}

void Scheduler::commandStep(scenarEvent& event) {
    ++time;
    ElapsedTime const elapsed;
    double sum = 0.0;
    for (auto const& entry : tracked_traj) {
        Trajectory* traj = entry.second.get();
        int const before = traj->getCurrentTime();
        // Required: one list for all histories, to which each adds the commands that still run, and
        // those that one of its transitions gives for this very step.
        constructNextNominalStateLarge(traj, event.atoms, false, running);
        if (traj->getCurrentTime() == before)
            syncPreviousState(traj);
        if (State const* state = traj->getState(time)) {
            traj->computeStateProb(time);
            sum += state->proba;
        }
    }
    if (rules.likelihood)
        weighAfterCommand();
    else
        normalizeAfterCommand(sum);
    addBmkEntry(time, elapsed.report(err, ""), false, static_cast<unsigned>(tracked_traj.size()));
}

void Scheduler::normalizeAfterCommand(double sum) {
    for (auto const& entry : tracked_traj) {
        State const* state = entry.second->getState(time);
        if (state == nullptr)
            continue;
        err << "state proba : " << state->proba << "\n";
        entry.second->proba = state->proba / sum;
        err << "normalized proba : " << entry.second->proba << "\n";
    }
}

// The outcomes of the trajectories that agree with the observations; the others go.
TrajectoryMap Scheduler::explainedBy(Observations const& observations, ElapsedTime const& elapsed,
                                     double& sum) {
    TrajectoryMap survivors;
    while (!tracked_traj.empty()) {
        Trajectory* traj = tracked_traj.begin()->second.get();
        err << "[Scheduler] --> updating tracked trajectories with observations (" << time << ")\n";
        int const t = traj->getCurrentTime();
        TrajectoryMap outcomes = observationResults(observations, traj, t, 0.0, true);
        if (outcomes.size() == 1 && getConflicts(outcomes.begin()->second.get(), t, true).empty()) {
            double const key = outcomes.begin()->first;
            survivors.emplace(key, std::move(outcomes.begin()->second));
            sum += key;
        }
        elapsed.report(err, " (observations insertion)");
        tracked_traj.erase(tracked_traj.begin());
    }
    return survivors;
}

void Scheduler::keepSurvivors(TrajectoryMap survivors, double sum) {
    for (auto& entry : survivors) {
        assert(!(entry.first > sum));
        double const proba = entry.first / sum;
        entry.second->proba = proba;
        err << "normalized proba after inserting obs : " << proba << "\n";
        tracked_traj.emplace(proba, std::move(entry.second));
    }
}

// Returns whether histories had to be searched for.
bool Scheduler::observationStep(scenarEvent const& event) {
    ElapsedTime const elapsed;
    Observations const observations = allTrue(event.atoms);
    Trajectory const* first = tracked_traj.begin()->second.get();
    auto copy = std::make_unique<Trajectory>(first, first->getCurrentTime() + 1);
    auto all = copiesOfTracked();
    double sum = 0.0;
    TrajectoryMap survivors = explainedBy(observations, elapsed, sum);
    bool const diagnosing = survivors.empty();
    if (!diagnosing && rules.likelihood)
        weighSurvivors(std::move(survivors));
    else if (!diagnosing)
        keepSurvivors(std::move(survivors), sum);
    else if (rules.histories)
        diagnoseAll(std::move(all), observations);
    else
        diagnose(std::move(copy), observations);
    addBmkEntry(time, elapsed.report(err, ""), diagnosing,
                static_cast<unsigned>(tracked_traj.size()));
    ++time;
    if (tracked_traj.empty())
        host.loss() << "no history explains the observations of step " << time << "\n";
    return diagnosing;
}

// Required: the search gets the copy itself. A copy turns around the order of elements that share a
// bucket of their table, and the search meets them in that order; the further one is only counted.
void Scheduler::diagnose(std::unique_ptr<Trajectory> refuted, Observations const& observations) {
    err << "---------> Diagnosing...\n";
    Trajectory const further(refuted.get(), refuted->getCurrentTime() + 1);
    assert(tracked_traj.empty());  // what was refuted has gone
    double const highest = refuted->rank + rankMargin;
    tracked_traj = coverTrack3(std::move(refuted), bound + 1.0, highest, observations, bound);
}

std::vector<std::unique_ptr<Trajectory>> Scheduler::copiesOfTracked() const {
    std::vector<std::unique_ptr<Trajectory>> copies;
    if (rules.histories)
        for (auto const& entry : tracked_traj)
            copies.push_back(std::make_unique<Trajectory>(entry.second.get(),
                                                          entry.second->getCurrentTime() + 1));
    return copies;
}

// Under the rule `histories`: from all that were refuted, and from the least rank of theirs, since
// a bound that an earlier search came to may lie above it.
void Scheduler::diagnoseAll(std::vector<std::unique_ptr<Trajectory>> refuted,
                            Observations const& observations) {
    err << "---------> Diagnosing...\n";
    double lowest = refuted.front()->rank;
    for (auto const& history : refuted)
        lowest = std::min(lowest, history->rank);
    tracked_traj =
        coverHistories(std::move(refuted), lowest + 1.0, lowest + rankMargin, observations, bound);
}

// Once nothing is tracked, the steps go on without a candidate.
void Scheduler::skipObservations() {
    ++time;
    err << "no history is left to observe at step " << time << "\n";
}
