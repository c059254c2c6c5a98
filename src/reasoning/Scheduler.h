// The discrete run control, and the one object of the chain that holds the whole discrete side.
//
// It moves discrete trajectories step by step: a command step builds the next nominal state by
// firing the transitions whose guards hold. In a hybrid run doCycle is called for each candidate,
// with the events that its continuous side raised.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "reasoning/Diagnoser.h"
#include "reasoning/scenario.h"

struct s_runtime;

// A running transition whose effects come at delays.
struct transitionCM {
    Transition* trans;
    int start;      // the step at which it fired
    Atom* command;  // the command of its guard, asserted as long as it runs

    bool getEnd(int t) const { return trans->nbPosts + start == t; }
};

// Running transitions by id.
using PendingTransitions = hash_map<int, transitionCM>;

class Scheduler : public Diagnoser {
public:
    // Throws RunStopped when the initialisation fails.
    Scheduler(Plant const& plant, Host& host, Rules const& rules = classicRules);
    ~Scheduler();

    int initSchD();
    // Back to the start: time 0, no events of a scenario or of the continuous side, no tracked
    // trajectories.
    void raz();

    // ---- Scenarios (scheduler/scenarios.cpp) ----

    // Reads a dated file whole.
    void loadScenario(std::string const& path);
    // Opens an undated file; false when it cannot be opened.
    bool openScenario(std::string const& path);
    // The event of the next line of the open file; null at its end or on an unknown atom.
    std::unique_ptr<scenarEvent> readFromScenario();
    // Schedules a command at *time*, or at the first later step where it is independent of all
    // others.
    void addCommandEvent(Atom* atom, int time);
    // Moves the next event to the step after *now*; without one, reads the next line into the
    // current step, or with *late* into the one after. Tells whether there was one.
    bool organizeCommands(int now, bool late);
    // Per command, the value "none" of its variable.
    static std::vector<Atom*> getNoneCommands(std::vector<Atom*> const& commands);
    // Tells on the error stream which events up to a time no step of a hybrid run has met: a date
    // that falls between two steps would be lost without a word.
    void reportUnmetEvents(double until) const;

    // ---- The discrete run (scheduler/run.cpp) ----

    // Runs the undated scenario of *path* over the tracked trajectories; returns 1.
    int runSchD(std::string const& path);
    void run2();
    // Makes ready for steps over the tracked trajectories; run2 does so itself.
    void beginSteps();
    // One step: the commands or the observations of *event*, which takes up the commands that still
    // run. Returns whether histories had to be searched for.
    bool step(scenarEvent& event);
    // Writes traj0.dot, traj1.dot and so on, a file a trajectory, in the order of the map.
    void graphTraj(TrajectoryMap const& trajectories);

    // The discrete histories that explain the observations on one misbehaving candidate, best
    // first.
    TrajectoryMap Diagnose(Trajectory* traj, Observations const& observations);

    // ---- Steps (scheduler/steps.cpp) ----

    // The discrete half of a hybrid step.
    void doCycle(Trajectory* traj, s_runtime* rt, double time);
    // Builds the next nominal state of a trajectory under *commands*, if any transition fires. Adds
    // to them those of the transitions that still run; what grows the list later, while transitions
    // fire, was not given to this trajectory.
    void constructNextNominalStateLarge(Trajectory* traj, std::vector<Atom*>& commands,
                                        bool keepUnlocked, PendingTransitions& pending);
    // Fires a transition from *current* into *next*, which is replaced. An effect that no state can
    // hold is told, and then nothing has fired: nothing of the transition stays.
    void triggerTransition(Transition* transition, State* current, std::unique_ptr<State>& next,
                           Trajectory* traj, PendingTransitions& pending, int time);
    // The failure is taken at *when*, at the end of the history; *events* on the values come first,
    // and trigger nothing else. False, with the history as it was but for the events, when no state
    // can hold its effect. Throws RunStopped when the events are impossible.
    bool takeFailure(Trajectory* traj, s_runtime* rt, Transition* failure,
                     SignedAtoms const& events, double when);
    // Adds a step now at which every mode stays as it is, by the idle moves of the plant; a history
    // has steps only where something moved, and what fails between two of them, or before the
    // first, has none to stand at. False, with the history as it was, when no mode may stay.
    bool addQuietStep(Trajectory* traj);
    void addBridgeConditions(ElementTable const& table);
    // Fixes the events of the continuous side in the current state.
    void addContEvents(Trajectory* traj);
    // Adds an empty state when the last one is locked; returns 1 if it did.
    int syncPreviousState(Trajectory* traj);

    int time = 0;  // current discrete step
    Scenario scenario;
    SignedAtoms contEvents;  // from the continuous side: atoms to be fixed in the current state
    std::vector<Atom*> contCommands;  // from the continuous side: atoms that act as commands
    s_runtime* runtime = nullptr;     // of the candidate being cycled; borrowed
    double bound = 0.0;               // rank bound of the covering search
    double simTime = 0.0;             // continuous time of the running cycle
    // Not false once a discrete run has begun: nothing then goes over the bridge.
    bool discretemdl = false;

private:
    struct ElapsedTime;
    void lockFirstStates();
    void announceStep(scenarEvent const& event) const;
    void commandStep(scenarEvent& event);
    bool observationStep(scenarEvent const& event);
    void diagnose(std::unique_ptr<Trajectory> refuted, Observations const& observations);
    void diagnoseAll(std::vector<std::unique_ptr<Trajectory>> refuted,
                     Observations const& observations);
    void skipObservations();
    TrajectoryMap explainedBy(Observations const& observations, ElapsedTime const& elapsed,
                              double& sum);
    void keepSurvivors(TrajectoryMap survivors, double sum);
    void normalizeAfterCommand(double sum);
    // The forms of the rule `likelihood` (scheduler/likelihood.cpp).
    void weighAfterCommand();
    void weighSurvivors(TrajectoryMap survivors);
    void weighSteps(Trajectory* traj, int from) const;
    // Of the rule `histories`: copies of all tracked histories, from which a search may begin.
    std::vector<std::unique_ptr<Trajectory>> copiesOfTracked() const;

    struct NominalStep;
    void assertPendingCommands(NominalStep& step);
    bool settleCommands(NominalStep& step);
    void fireTransitionsOf(Atom const* atom, NominalStep& step);
    void endPendingTransitions(NominalStep& step);
    void closeStep(NominalStep& step);
    struct Firing;
    class Takeback;
    SignedElements effectsOf(Firing& firing, StateFormula const* formula, int delay);
    bool settleNext(SignedElements const& props, std::unique_ptr<State>& next, Trajectory* traj,
                    int time);
    bool fireEffect(Firing& firing, StateFormula const* formula, int delay);
    bool fireDelayedEffects(Firing& firing);
    static void linkGuard(Firing const& firing);
    static void takeBackEmptyState(Trajectory* traj);
    std::vector<Atom*> commandsAt(double time, Trajectory* traj);

    PendingTransitions running;  // transitions of a discrete run whose effects are still to come
    std::string scenarioPath;
    int scenarioLine = 0;
    std::unique_ptr<std::istream> scenarioFile;
};
