// The central driver of a hybrid run.
//
// Several candidates are tracked at once. Each step advances all of them: the continuous step, the
// split of validity spaces, the discrete step, the check against the measures; then it is decided
// which candidates stay. The functions are grouped by the file that holds them.
//
// Whatever is changed is told by the first parameter: the whole run, or one runtime. The invariants
// that hold between two steps stand in run_state.h.
#pragma once

#include <climits>
#include <functional>
#include <map>
#include <memory>

#include "hybrid/run_state.h"

// Modes of a run.
enum runMode {
    RUN_SIMULATE = 0,
    RUN_RESET = 1,   // measures may reset the prediction
    RUN_DETECT = 3,  // equal candidates are merged
    RUN_NOMERGE = 4
};

// What a run asks of every cycle.
struct RunOptions {
    int mode = RUN_SIMULATE;
    double period = 0.0;  // of the reset, 0 for none
    int isolation = 0;    // code of the continuous step when detecting
    int threshold = 0;    // alarm threshold, in cycles
    int multi = 0;        // simulation follows every split
};

// ---- Driver (driver.cpp) ----

// Reads the first data lines and makes the first candidate; returns 1.
int tavro_initialize(RunState& run, int global, double precision, char const* diagBuf,
                     int accuTime);
// The same for a discrete model, whose trajectory goes to the registry; returns 0.
int tavro_initialize_discrete(RunState& run);
void initNominalTraj(RunState& run, string_map<Atom*> const* atoms, s_runtime const* rt);
void lockFirstTrajState(Trajectory* traj);
// One step of all candidates; returns 1. *countdown* to the reset is told by the caller; *nominal*
// answers whether a candidate agrees with the measures.
int tavro_doCycle(RunState& run, RunOptions const& options, double countdown, double time,
                  bool& nominal);
// The same; 0 when memory ran short, at whatever place of the step. Then no candidate is left,
// and hybNT is null; so it is when it throws RunStopped. None could be kept: some have been stepped
// and others not, one may lack the state that was being worked on, and explanations stand beside
// the candidates that they explain. What a run has to show of the steps before must have been taken
// before; but when a diagnosis did not come to its end, those that it was to explain are in
// run.refuted, whole.
int tavro_tryCycle(RunState& run, RunOptions const& options, double countdown, double time,
                   bool& nominal);
// The continuous step of every tracked candidate.
void stepContinuousSide(RunState& run, RunOptions const& options, double countdown);
// Forgets what the bridge carries.
void clearRunTime(s_runtime* rt);
// Ends a run: every candidate goes, and hybNT is null.
void clearMultiTrajs(RunState& run);

// ---- Splitting (splitting.cpp) ----

void splitTrajs(RunState& run, RunOptions const& options);
// Splits the runtime of a candidate, which is consumed; its successors go into *out*.
void splitRuntime(RunState& run, std::unique_ptr<hybTrajectory> candidate, HybMap& out, int multi,
                  int mode);
// A candidate for each runtime of nrt, with a copy of the history; empties nrt.
void createNewTrajs(RunState& run, Trajectory const* history, HybMap& out);
// Empties nrt, and destroys every runtime in it but *keep*.
void clearNrt(RunState& run, s_runtime const* keep);

// ---- The discrete step (discrete_cycle.cpp) ----

void tavroDiscreteCycle(RunState& run, RunOptions const& options, double time, bool& nominal);
// One whole step of the tracked candidates; those that agree with the measures are left in ntrajs,
// the others go. Nothing is diagnosed, merged or told.
void stepAndCheck(RunState& run, RunOptions const& options, double time);

// ---- The number of candidates (limit.cpp) ----

// Keeps at most as many candidates as the run's settings allow.
void limitCandidates(RunState& run, double time, bool nominal);

// ---- Weights (weights.cpp) ----

// Keeps the weights of the histories away from 0, each beside the others as it is.
void liftWeights(RunState& run);

// ---- Merging and misbehaviour (merging.cpp) ----

bool isMisb(s_runtime const* rt);
// Merges candidates that have become the same.
void sn_reduxTrajs(HybMap& trajectories, double time);
// True when some measured variable overlaps; then a's value covers b's.
bool intersectObsRt(s_runtime* a, s_runtime const* b);
void mergeRuntimes(s_runtime* a, s_runtime const* b, double time);

// ---- Hybrid diagnosis (diagnosis.cpp, replay.cpp) ----

// Whether a loss of all candidates is diagnosed now.
bool mayDiagnose(RunState const& run);
// Every candidate misbehaves: isolates, searches for discrete explanations,
// replays them, and tracks what they give. The process ends with status 255 without any.
void diagnoseMisbTrajs(RunState& run, RunOptions const& options, double time);
// The sequence up to the replay; true when every explanation holds an unknown mode. Without any
// explanation the run stops, or, when each loss is diagnosed, tracked_trajs is left empty.
bool handleMisbTrajs(RunState& run, int isolation, int threshold, double time);
// Discrete candidates for each atom set of a misbehaving one, which is consumed.
void insertDiagnosis(RunState& run, std::unique_ptr<hybTrajectory> candidate, HybMap& out);
// Replays an explanation with a new fault from its fault time on, and keeps one without.
void replayExplanation(RunState& run, std::unique_ptr<hybTrajectory> explanation, double time,
                       int threshold, HybMap& result);
// The same for every candidate.
bool verifyAndUpdateTrajs(RunState& run, double time, int threshold);
HybMap copyHybTrajectories(HybMap const& trajectories);
// Blind state tracking. Consumes *copies*.
void switchToBST(RunState& run, HybMap& target, HybMap copies, double time, double lastDetection,
                 int threshold);
// One replay step of all candidates, without files and without a discrete step; returns 1.
int tavro_checkCycle(RunState& run, HybMap& trajectories, double time, int threshold);
void tavroDiagDiscreteCycle(double time, HybMap& trajectories);
// Past values, from a candidate's own histories.
void tavro_diagGetInputs(s_runtime const* rt, double from, double now, double* out);
void tavro_diagGetMeasures(s_runtime const* rt, double from, double now, double* out);

// ---- Graphs (graphs.cpp) ----

// Writes htraj0.dot, htraj1.dot and so on, a file a candidate, in the order of the map, for the
// first *most* of them.
void graphTrajs(Host& host, HybMap const& trajectories, int most = INT_MAX);

// ---- Bridge (bridge.cpp); see also continuous/bridge.h ----

// Hands the events of the continuous side to the scheduler.
void bridgeIncEvents(Scheduler& scheduler, s_runtime* rt);
// Applies what the discrete step settled to the conditions.
void bridgeConditions(s_runtime* rt);
// The transitions that a diagnosed history took at its first fault step go over the bridge.
void addDiagBridgeTrans(Trajectory const* traj, s_runtime* rt, int time);
// Brings a runtime moved back to *contTime* in line with the discrete state of step *time*.
void updateDiagConds(RunState& run, Trajectory const* traj, s_runtime* rt, int time,
                     double contTime, int threshold);
// Forgets the alarms of every variable.
void clearAlarms(s_runtime* rt);
// First values of the conditions from the model's atoms.
void bridgeActiveAtoms(Plant const& plant, s_runtime* rt);

// ---- Mapping functions (mapping.cpp) ----

// Returns the result of placing the runtime in its validity space.
int tavro_initMappingFuncs(s_runtime* rt);
void applyMFBounds(s_runtime* rt, s_Variable* variable, s_Objet const* value);
// True when at least one assignment was made. Guards are tested.
bool tavro_applyMappingFuncs(s_runtime* rt);
// The form of detection, which also predicts the step before again. Guards are not tested.
bool tavro_applyMappingFuncs2(RunState& run, s_runtime* rt, double time);
// The continuous state after a change of mode. Returns isMisb.
bool tavro_reinitialize(RunState& run, s_runtime* rt, double time, int mode, int threshold);
