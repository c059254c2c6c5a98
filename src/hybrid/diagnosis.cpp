// Hybrid diagnosis: from the alarm to candidates that explain it.
//
// When every candidate misbehaves, each is isolated on its continuous side; the conditions of the
// suspects give sets of atoms; each set is taken to be false, and the covering search looks for
// discrete histories of least failure in which that holds; each of them is replayed from its fault
// time up to now. By the classic rules only the first loss of a run is diagnosed.
#include <algorithm>
#include <cassert>
#include <cmath>
#include <ctime>

#include "continuous/isolation.h"
#include "continuous/sorn-runt.h"
#include "hybrid/answer.h"
#include "hybrid/dates.h"
#include "hybrid/merging.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"
#include "support/run_stopped.h"

namespace {

constexpr double ticksPerSecond = 1000000.0;

double secondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / ticksPerSecond;
}

void isolate(RunState& run, s_runtime* rt, int isolation) {
    std::clock_t const start = std::clock();
    sn_detectAndIsolate(rt, isolation);
    if (rt->bridgeConflicts)
        run.scheduler.viewAtomVector2(&*rt->bridgeConflicts);
    run.err << "Diagnosis at continuous level in: " << secondsSince(start) << " seconds.\n";
}

// The accused atoms are taken to be not true. A condition of the continuous side alone has no atom.
Observations allFalse(std::vector<Atom*> const& atoms) {
    Observations observations;
    for (Atom* atom : atoms)
        if (atom != nullptr)
            observations.insert({false, atom});
    return observations;
}

// By the rule `likelihood` the answers of all searches of a diagnosis are weighed together: one
// that a first search found alone may be less probable than each of a second one's. Each gets back
// what it weighed in its search.
void weighBack(RunState& run, TrajectoryMap const& results) {
    if (!run.rules.likelihood)
        return;
    for (auto const& result : results) {
        result.second->scaleProbas(run.scheduler.answersWeight);
        result.second->proba = result.second->weight();
    }
}

// What is left of the answers, each by its share; equal ones where no weight tells them apart.
void shareOut(RunState& run) {
    if (!run.rules.likelihood || run.tracked_trajs.empty())
        return;
    double sum = 0.0;
    for (auto const& entry : run.tracked_trajs)
        sum += entry.second->traj->proba;
    bool const known = std::isnormal(sum);
    for (auto const& entry : run.tracked_trajs) {
        double& proba = entry.second->traj->proba;
        proba = known ? proba / sum : 1.0 / static_cast<double>(run.tracked_trajs.size());
    }
}

// By the rule `histories` a failure may also have come since the last step of the history.
TrajectoryMap explain(RunState& run, Trajectory& history, Observations const& observations) {
    TrajectoryMap found = run.scheduler.Diagnose(&history, observations);
    if (!found.empty() || !run.rules.histories)
        return found;
    if (run.scheduler.addQuietStep(&history))
        found = run.scheduler.Diagnose(&history, observations);
    return found;
}

}  // namespace

void insertDiagnosis(RunState& run, std::unique_ptr<hybTrajectory> candidate, HybMap& out) {
    assert(candidate->rt != nullptr && candidate->traj != nullptr);
    if (!candidate->rt->bridgeConflicts)
        return;
    for (auto const& set : *candidate->rt->bridgeConflicts) {
        hybTrajectory const copy(candidate.get(), candidate->traj->getCurrentTime() + 1);
        if (run.rules.again)
            settleMoves(*copy.traj);
        TrajectoryMap const results = explain(run, *copy.traj, allFalse(set));
        weighBack(run, results);
        for (auto const& result : results)
            out.emplace(result.first, std::make_unique<hybTrajectory>(
                                          result.second.get(), sn_copyRuntime(copy.rt.get())));
    }
}

namespace {

// What was found for one misbehaving candidate.
struct Explained {
    std::unique_ptr<hybTrajectory> candidate;
    HybMap explanations;
};

// The explanations of each, which are searched for on a copy.
std::vector<Explained> explainEach(RunState& run, HybMap misbehaving, int isolation) {
    std::vector<Explained> all;
    for (auto& entry : misbehaving) {
        isolate(run, entry.second->rt.get(), isolation);
        int const steps = entry.second->traj->getCurrentTime() + 1;
        auto copy = std::make_unique<hybTrajectory>(entry.second.get(), steps);
        all.push_back({std::move(entry.second), {}});
        insertDiagnosis(run, std::move(copy), all.back().explanations);
    }
    return all;
}

// What one diagnosis may spend on dates, in cycles of one candidate, and how much of it for one of
// those that it explains: some seconds. The dates that are left out when it is spent are the
// earliest, since a failure is mostly noticed soon.
constexpr int cyclesOfOneDiagnosis = 60000;
constexpr int cyclesOfOneCandidate = 20000;

// What the explanations come to from every date that agrees with the measures.
HybMap dateEach(RunState& run, std::vector<Explained> const& all, int threshold, double time) {
    HybMap dated;
    int const each = cyclesOfOneDiagnosis / static_cast<int>(std::max<std::size_t>(all.size(), 1));
    int const share = std::min(each, cyclesOfOneCandidate);
    bool whole = true;
    for (Explained const& one : all)
        if (!dateExplanations(run, *one.candidate, one.explanations, threshold, time, share, dated))
            whole = false;
    run.remarks.datesCut = run.remarks.datesCut || !whole;
    if (!whole)
        run.err << "answer: the dates were searched for " << share
                << " cycles of each candidate and no further: failures may have begun earlier\n";
    return dated;
}

// Follows the explanations from every date that agrees with the measures, or, when none does, from
// where the search placed them.
HybMap followDated(RunState& run, std::vector<Explained> all, int threshold, double time) {
    HybMap followed = dateEach(run, all, threshold, time);
    // What was dated agrees with the measures: whatever follows is a new loss.
    run.lost = followed.empty();
    if (!run.lost) {
        run.dropped.clear();
        return followed;
    }
    for (Explained& one : all)
        for (auto& entry : one.explanations)
            replayExplanation(run, std::move(entry.second), time, threshold, followed);
    return followed;
}

bool areAllUnknown(HybMap const& candidates) {
    return std::all_of(candidates.begin(), candidates.end(),
                       [](auto const& entry) { return entry.second->traj->isUnknown(); });
}

void tellNothingFound(RunState& run) {
    run.err << "[Error]: Can't find any diagnose for this fault.\n";
    if (!run.rules.again)
        throw RunStopped(RunStopped::noDiagnosis, "nothing explains the misbehaviour");
}

bool handleDated(RunState& run, int isolation, int threshold, double time) {
    std::vector<Explained> all = explainEach(run, std::move(run.misbtrajs), isolation);
    run.misbtrajs.clear();
    run.err << "Diagnosis completed\n";
    if (std::all_of(all.begin(), all.end(),
                    [](Explained const& one) { return one.explanations.empty(); })) {
        tellNothingFound(run);
        return false;
    }
    run.tracked_trajs = followDated(run, std::move(all), threshold, time);
    if (run.tracked_trajs.size() > 1)
        mergeAnswers(run.tracked_trajs, time);
    shareOut(run);
    tellAnswers(run, run.tracked_trajs);
    return areAllUnknown(run.tracked_trajs);
}

}  // namespace

bool handleMisbTrajs(RunState& run, int isolation, int threshold, double time) {
    run.ntrajs.clear();
    run.tracked_trajs.clear();
    if (run.rules.dates)
        return handleDated(run, isolation, threshold, time);
    for (auto& entry : run.misbtrajs) {
        isolate(run, entry.second->rt.get(), isolation);
        insertDiagnosis(run, std::move(entry.second), run.tracked_trajs);
    }
    run.misbtrajs.clear();
    run.err << "Diagnosis completed\n";
    if (run.tracked_trajs.empty()) {
        tellNothingFound(run);
        return false;
    }
    shareOut(run);
    tellAnswers(run, run.tracked_trajs);
    return verifyAndUpdateTrajs(run, time, threshold);
}

HybMap copyHybTrajectories(HybMap const& trajectories) {
    HybMap copies;
    for (auto const& entry : trajectories)
        copies.emplace(entry.first,
                       std::make_unique<hybTrajectory>(entry.second.get(),
                                                       entry.second->traj->getCurrentTime() + 1));
    return copies;
}

// Rule `again`. The classic run diagnoses once: whatever is lost after an explanation has been
// accepted is called misbehaviour for ever, so that of two faults the second is never named. Here
// every new loss of all candidates is diagnosed, a loss being new when some candidate has agreed
// since the last one. It is sound as the first diagnosis is: the candidates that are explained are
// those that were followed. When nothing explains a loss, the run does not end, as the classic one
// does: its candidates are followed on, as misbehaving ones, until they agree again. What an
// earlier diagnosis has put into a history is settled then: the replay begins at what the new one
// adds.
bool mayDiagnose(RunState const& run) {
    return run.rules.again ? !run.lost : !run.diag_flag;
}

void diagnoseMisbTrajs(RunState& run, RunOptions const& options, double time) {
    assert(!run.misbtrajs.empty() && mayDiagnose(run));
    run.last_detection_time = time;
    run.lost = true;
    run.refuted = copyHybTrajectories(run.misbtrajs);
    bool const blind = handleMisbTrajs(run, options.isolation, options.threshold, time);
    HybMap copies = std::move(run.refuted);
    run.refuted.clear();
    if (run.tracked_trajs.empty()) {
        run.tracked_trajs = std::move(copies);
        return;
    }
    if (blind) {
        switchToBST(run, run.tracked_trajs, std::move(copies), time, run.last_detection_time,
                    options.threshold);
        return;
    }
    if (options.mode == RUN_DETECT && run.tracked_trajs.size() > 1)
        sn_reduxTrajs(run.tracked_trajs, time);
    run.diag_flag = true;
}
