// The discrete run: a scenario, line by line, over the tracked histories.
//
// The valve of the fixture with a flow sensor behind it. Every transition has the probability 0.9,
// and state 0 is made by an idle one, so its probability is 0.9 and that of a step that moves 0.9
// times the one before.
#include <cstdio>
#include <sstream>

#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

using namespace scheduler_fixture;

namespace {

// A line of the log: step, seconds, whether there was a search, histories left.
bool isLogLine(std::string const& line) {
    int step = 0, searched = 0, left = 0;
    double seconds = 0.0;
    char more = 0;
    return std::sscanf(line.c_str(), "%d %lg %d %d%c", &step, &seconds, &searched, &left, &more) ==
           4;
}

// Replaces what stands from *start* to *end* of a line, the end not included.
std::string withTime(std::string const& line, std::size_t start, std::size_t end) {
    return line.substr(0, start).append("(time)").append(
        end == std::string::npos ? "" : line.substr(end));
}

std::string maskLine(std::string const& line) {
    std::size_t const elapsed = line.find("elapsed time");
    if (elapsed != std::string::npos)
        return withTime(line, line.find(": ", elapsed) + 2, std::string::npos);
    if (line.rfind("Rank : ", 0) == 0)
        return withTime(line, line.find(' ', 7) + 1, std::string::npos);
    if (isLogLine(line)) {
        std::size_t const start = line.find(' ') + 1;
        return withTime(line, start, line.find(' ', start));
    }
    return line;
}

// The text with every measured time replaced.
std::string masked(std::string const& text) {
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);)
        result.append(maskLine(line)).append(lines.eof() ? "" : "\n");
    return result;
}

// Catches the log of the runs while it lives.
class RunLog {
public:
    RunLog() : file(stream().rdbuf(text.rdbuf())) {}
    ~RunLog() { stream().rdbuf(file); }
    RunLog(RunLog const&) = delete;

    std::string lines() const { return masked(text.str()); }

private:
    static std::ios& stream() { return runHost().stepLog(); }

    std::ostringstream text;
    std::streambuf* file;
};

using Tracked = std::vector<std::pair<double, Trajectory*>>;

Tracked tracked() {
    Tracked found;
    for (auto const& [key, traj] : theRun().scheduler.tracked_traj)
        found.emplace_back(key, traj.get());
    return found;
}

// The heading of a step. A blank follows each atom.
std::string heading(int step, std::string const& atoms) {
    return "Time : " + std::to_string(step) + "\nFrom scenario:\n" + atoms + "\n";
}
// What is said when a step is done.
constexpr char const* stepDone = "[Scheduler] --> elapsed time : (time)\n";
constexpr char const* scenarioDone = "end of the scenario !\n";

// What an observation line says up to its outcome, for one history at its step *t*.
std::string inserting(int time, int t) {
    return "[Scheduler] --> updating tracked trajectories with observations (" +
           std::to_string(time) + ")\ninserting observations at time_step : " + std::to_string(t) +
           "\n";
}
std::string agreeing(int time, int t) {
    return inserting(time, t) +
           "results from observations computed : 1\n"
           "[getConflicts()] --> effects at time step " +
           std::to_string(t) +
           "\n******* Showing conflicts *******\n"
           "[Scheduler] --> elapsed time (observations insertion) : (time)\n";
}
std::string refuted(int time, int t) {
    return inserting(time, t) +
           "results from observations computed : 0\n"
           "[Scheduler] --> elapsed time (observations insertion) : (time)\n";
}

class DiscreteRun : public testing::Test {
protected:
    DiscreteRun() {
        Comp* sensor = model.comp("sensor");
        auto* flow = model.variable<StateVar>(sensor, "flow", {"zero", "positive"});
        flow->type = typeObservable;
        Atom* zero = flow->getAtomLinks()[0];
        Atom* positive = flow->getAtomLinks()[1];
        HandModel::exclude(sensor, zero, model.isOpen);
        HandModel::exclude(sensor, positive, model.isClosed);
        HandModel::exclude(sensor, positive, model.isBroken);
        addTransitions();
        addLamp(positive);
        model.start();
        first = model.traj.get();
        theRun().scheduler.tracked_traj.clear();
        theRun().scheduler.tracked_traj.emplace(1.0, std::move(model.traj));
    }

    // A valve that is told to open may break; told nothing, it stays as it is.
    void addTransitions() {
        auto const add = [this](std::vector<Literal> const& guard, Atom* to, bool idle) {
            return HandModel::transition(model.valve, guard, {{true, to}}, transNominal, idle);
        };
        model.opens = add({{true, model.open}, {true, model.isClosed}}, model.isOpen, false);
        model.closes = add({{true, model.close}, {true, model.isOpen}}, model.isClosed, false);
        add({{false, model.open}, {true, model.isClosed}}, model.isClosed, true);
        add({{false, model.close}, {true, model.isOpen}}, model.isOpen, true);
        add({{true, model.isBroken}}, model.isBroken, true);
        model.breaks =
            HandModel::transition(model.valve, {{true, model.open}, {true, model.isClosed}},
                                  {{true, model.isBroken}}, transFail);
    }

    // Always dark, and by a clause beside the valve wherever something flows: without another
    // component nothing would weigh the mode of the valve, and so no observation.
    void addLamp(Atom* positive) {
        Comp* lamp = model.comp("lamp");
        auto* light = model.variable<ModeVar>(lamp, "mode", {"dark", "lit"});
        HandModel::idle(lamp, light->getAtomLinks()[0])->proba = 1.0;
        HandModel::exclude(lamp, light->getAtomLinks()[1], positive);
    }

    // A further history, which has gone through these commands.
    Trajectory* track(double key, std::vector<Atom*> const& commands) {
        auto traj = std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms);
        Trajectory* made = traj.get();
        PendingTransitions pending;
        theRun().scheduler.discretemdl = true;
        streamsOf([&] {
            for (Atom* command : commands) {
                std::vector<Atom*> step{command};
                theRun().sMM->constructNextNominalStateLarge(made, step, false, pending);
            }
        });
        theRun().scheduler.tracked_traj.emplace(key, std::move(traj));
        return made;
    }
    // Runs a scenario of these lines; answers what it says on the error stream.
    static std::string run(std::string const& lines) {
        TextFile const file(lines);
        return masked(complaint([&] { EXPECT_EQ(theRun().sMM->runSchD(file.path), 1); }));
    }
    // A run that ends the process. As in the program, the histories go before the model then.
    static std::string modeOf(Trajectory const* traj) {
        for (char const* id : {"valve.mode=closed", "valve.mode=open", "valve.mode=broken"})
            if (traj->getElt(id, traj->getCurrentTime(), 0)->evalTrajEl())
                return id;
        return "none";
    }

    Valve model;
    Trajectory* first = nullptr;
};

// ---- The way in ----

TEST_F(DiscreteRun, NothingGoesOverTheBridge) {
    run("Command valve.cmd=open\n");
    EXPECT_TRUE(theRun().scheduler.discretemdl);
    EXPECT_TRUE(model.rt.bridgeTrans.empty());
}

TEST_F(DiscreteRun, AMissingFileIsTold) {
    std::string const path = "/nonexistent-directory/file.scn";
    EXPECT_EQ(complaint([&] { EXPECT_EQ(theRun().sMM->runSchD(path), 1); }),
              "can't open scenario file: " + path + "\n");
    EXPECT_EQ(theRun().sMM->time, 0);
    EXPECT_EQ(tracked(), (Tracked{{1.0, first}}));
    EXPECT_TRUE(theRun().sMM->scenario.empty());
}

TEST_F(DiscreteRun, AnEmptyScenarioStopsTheRun) {
    TextFile const file("");
    int status = -1;
    EXPECT_EQ(complaint([&] { status = statusOf([&] { theRun().sMM->runSchD(file.path); }); }),
              "end of the scenario !\nexiting run2.\n");
    EXPECT_EQ(status, 0);
}

TEST_F(DiscreteRun, AnUnknownAtomInTheFirstLineDoesToo) {
    TextFile const file("Command valve.cmd=burst\n");
    int status = -1;
    std::string const told =
        complaint([&] { status = statusOf([&] { theRun().sMM->runSchD(file.path); }); });
    EXPECT_TRUE(told.ends_with("received command is not valid : valve.cmd=burst\nexiting run2.\n"))
        << told;
    EXPECT_EQ(status, 0);
}

TEST_F(DiscreteRun, WithoutAHistoryThereIsNothingToRun) {
    theRun().scheduler.tracked_traj.clear();
    EXPECT_EQ(run("Command valve.cmd=open\n"), "no history to run the scenario on\n");
}

TEST_F(DiscreteRun, WhatHoldsAtTheStartIsHeldForGood) {
    run("Observation sensor.flow=zero\n");
    auto const lockOf = [](char const* id) {
        return tracked().front().second->getState(0)->getElt(id)->lock;
    };
    for (char const* held : {"valve.mode=closed", "sensor.flow=zero"})
        EXPECT_EQ(lockOf(held), LOCK_TRUE_PERM) << held;
    for (char const* denied : {"valve.mode=open", "valve.mode=broken", "sensor.flow=positive"})
        EXPECT_EQ(lockOf(denied), LOCK_FALSE_PERM) << denied;
    // A command is given by the scenario alone.
    for (char const* free : {"valve.cmd=none", "valve.cmd=open", "valve.cmd=close"})
        EXPECT_EQ(lockOf(free), LOCK_FREE) << free;
}

TEST_F(DiscreteRun, SoItIsInEveryHistory) {
    Trajectory const* second = track(0.5, {});
    run("Command valve.cmd=open\n");
    EXPECT_EQ(second->getState(0)->getElt("valve.mode=closed")->lock, LOCK_TRUE_PERM);
}

// The first line is stored for step 1, whatever the step.
TEST_F(DiscreteRun, ARunThatHasBegunFindsNoStepOfItsOwn) {
    theRun().sMM->time = 4;
    EXPECT_EQ(run("Command valve.cmd=open\n"), "Scheduler receives a command: valve.cmd=open\n");
    EXPECT_EQ(theRun().sMM->time, 4);
    EXPECT_EQ(first->getCurrentTime(), 0);
    EXPECT_EQ(first->getState(0)->getElt("valve.mode=closed")->lock, LOCK_FREE);
}

// ---- Lines and steps ----

TEST_F(DiscreteRun, TheFirstLineIsStepOne) {
    EXPECT_EQ(run("Command valve.cmd=open\n"),
              "Scheduler receives a command: valve.cmd=open\n" + heading(1, "valve.cmd=open ") +
                  "state proba : 0.81\nnormalized proba : 1\n" + stepDone + scenarioDone);
    EXPECT_EQ(theRun().sMM->time, 1);
    EXPECT_EQ(first->getCurrentTime(), 1);
    EXPECT_EQ(modeOf(first), "valve.mode=open");
}

TEST_F(DiscreteRun, EveryLineIsAStep) {
    std::string const told =
        run("Command valve.cmd=open\nObservation sensor.flow=positive\nCommand valve.cmd=close\n");
    EXPECT_EQ(theRun().sMM->time, 3);
    for (char const* heading : {"\nTime : 1\n", "\nTime : 2\n", "\nTime : 3\n"})
        EXPECT_NE(told.find(heading), std::string::npos) << heading;
    // Observations make no state.
    EXPECT_EQ(tracked().front().second->getCurrentTime(), 2);
}

// What is done is erased; the end of the file stands as a null under the step after the last.
TEST_F(DiscreteRun, TheTableHoldsTheLastStepAndTheEnd) {
    run("Command valve.cmd=open\nCommand valve.cmd=close\nCommand valve.cmd=none\n");
    ASSERT_EQ(theRun().sMM->scenario.size(), 1u);
    EXPECT_EQ(theRun().sMM->scenario.begin()->first, 4.0);
    EXPECT_EQ(theRun().sMM->scenario.begin()->second, nullptr);
}

TEST_F(DiscreteRun, AllAtomsOfALineAreShown) {
    std::string const told = run("Observation sensor.flow=zero valve.mode=closed\n");
    EXPECT_NE(told.find(heading(1, "sensor.flow=zero valve.mode=closed ")), std::string::npos);
}

TEST_F(DiscreteRun, ALineWithoutAtomsIsAStep) {
    EXPECT_EQ(run("Observation\n"), heading(1, "") + agreeing(0, 0) +
                                        "normalized proba after inserting obs : 1\n" + stepDone +
                                        scenarioDone);
    EXPECT_EQ(theRun().sMM->time, 1);
}

TEST_F(DiscreteRun, AnUnknownAtomEndsTheRun) {
    std::string const told = run("Command valve.cmd=open\nCommand valve.cmd=burst\nCommand\n");
    std::string const end =
        std::string(stepDone) +
        "Scheduler::readFromScenario --> received command is not valid : valve.cmd=burst\n";
    EXPECT_EQ(told.substr(told.find(stepDone)), end);
    EXPECT_EQ(theRun().sMM->time, 1);
    EXPECT_EQ(tracked(), (Tracked{{1.0, first}}));
}

// ---- Command steps ----

TEST_F(DiscreteRun, ProbabilitiesOfACommandStepSumToOne) {
    Trajectory* second = track(0.5, {});
    second->getState(0)->proba = 0.3;
    // 0.9 x 0.9 and 0.3 x 0.9, of 1.08.
    std::string const told = run("Command valve.cmd=open\n");
    EXPECT_NE(told.find("state proba : 0.81\nnormalized proba : 0.75\n"
                        "state proba : 0.27\nnormalized proba : 0.25\n" +
                        std::string(stepDone)),
              std::string::npos);
    EXPECT_DOUBLE_EQ(first->proba, 0.75);
    EXPECT_DOUBLE_EQ(second->proba, 0.25);
    // The places in the table stay.
    EXPECT_EQ(tracked(), (Tracked{{1.0, first}, {0.5, second}}));
}

// The state added is empty: nothing led into it, and its probability is that of the one before.
TEST_F(DiscreteRun, AStepWithoutATransitionAddsAnEmptyState) {
    theRun().sMM->simTime = 2.5;
    EXPECT_NE(run("Command valve.cmd=none\n").find("state proba : 0.9\n"), std::string::npos);
    EXPECT_EQ(first->getCurrentTime(), 1);
    EXPECT_TRUE(first->getState(1)->elts.empty());
    EXPECT_EQ(first->getTimeCorr(1), 2.5);
}

TEST_F(DiscreteRun, NothingIsAddedBehindAnEmptyState) {
    std::string const told = run("Command valve.cmd=none\nCommand\n");
    EXPECT_EQ(theRun().sMM->time, 2);
    EXPECT_EQ(first->getCurrentTime(), 1);
    EXPECT_EQ(told.find("state proba", told.find("Time : 2")), std::string::npos);
}

TEST_F(DiscreteRun, CommandsOfOneStepAreNotThoseOfTheNext) {
    run("Command valve.cmd=open\nCommand valve.cmd=close\n");
    EXPECT_EQ(modeOf(first), "valve.mode=closed");
    EXPECT_EQ(first->getCurrentTime(), 2);
    EXPECT_TRUE(first->getState(0)->getElt("valve.cmd=open")->evalTrajEl());
    EXPECT_TRUE(first->getState(1)->getElt("valve.cmd=close")->evalTrajEl());
    EXPECT_FALSE(first->getState(1)->getElt("valve.cmd=open")->evalTrajEl());
}

TEST_F(DiscreteRun, CommandsThatExcludeEachOtherLeaveTheHistoryWhereItIs) {
    std::string const told = run("Command valve.cmd=open valve.cmd=close\n");
    EXPECT_NE(told.find("Error update the current state: no valid state found.\n"),
              std::string::npos);
    EXPECT_EQ(modeOf(first), "valve.mode=closed");
    EXPECT_EQ(theRun().sMM->time, 1);
}

// The line of an observation moves the step, not the history: there is no state to weigh.
TEST_F(DiscreteRun, AHistoryBehindTheStepKeepsItsProbability) {
    track(0.5, {});
    std::string const told = run("Observation sensor.flow=zero\nCommand valve.cmd=open\n");
    EXPECT_EQ(told.find("state proba"), std::string::npos);
    for (auto const& entry : tracked()) {
        EXPECT_EQ(entry.second->proba, 0.5);
        EXPECT_EQ(modeOf(entry.second), "valve.mode=open");
    }
}

TEST_F(DiscreteRun, ACommandStepIsLogged) {
    track(0.5, {});
    RunLog const log;
    run("Command valve.cmd=open\nCommand valve.cmd=close\n");
    EXPECT_EQ(log.lines(), "1 (time) 0 2\n2 (time) 0 2\n");
}

// ---- Observation steps ----

TEST_F(DiscreteRun, AnObservationThatAllAgreeWithKeepsThemAll) {
    // Keys are likelihoods of one outcome each: all equal, whatever they were before.
    track(0.25, {});
    track(0.125, {model.open, model.close});
    RunLog const log;
    std::string const told = run("Observation sensor.flow=zero\n");
    std::string const third = "normalized proba after inserting obs : 0.333333\n";
    EXPECT_EQ(told, "Scheduler receives an observation: sensor.flow=zero\n" +
                        heading(1, "sensor.flow=zero ") + agreeing(0, 0) + agreeing(0, 0) +
                        agreeing(0, 2) + third + third + third + stepDone + scenarioDone);
    Tracked const left = tracked();
    ASSERT_EQ(left.size(), 3u);
    for (auto const& [key, traj] : left) {
        EXPECT_DOUBLE_EQ(key, 1.0 / 3.0);
        EXPECT_DOUBLE_EQ(traj->proba, 1.0 / 3.0);
    }
    // Equal ones stay in their order.
    EXPECT_EQ(left[0].second->getCurrentTime(), 0);
    EXPECT_EQ(left[2].second->getCurrentTime(), 2);
    EXPECT_EQ(log.lines(), "0 (time) 0 3\n");
    EXPECT_EQ(theRun().sMM->time, 1);
}

TEST_F(DiscreteRun, TheHistoriesThatDisagreeGo) {
    track(0.5, {model.open});
    track(0.25, {});
    RunLog const log;
    std::string const told = run("Observation sensor.flow=zero\n");
    EXPECT_NE(told.find(agreeing(0, 0) + refuted(0, 1) + agreeing(0, 0) +
                        "normalized proba after inserting obs : 0.5\n"
                        "normalized proba after inserting obs : 0.5\n"),
              std::string::npos);
    Tracked const left = tracked();
    ASSERT_EQ(left.size(), 2u);
    for (auto const& [key, traj] : left) {
        EXPECT_EQ(key, 0.5);
        EXPECT_EQ(modeOf(traj), "valve.mode=closed");
    }
    EXPECT_EQ(log.lines(), "0 (time) 0 2\n");
}

// What is seen follows from one of two causes, and either may be: two outcomes are not an
// agreement.
TEST(DiscreteRunOutcomes, AHistoryThatCouldAgreeInTwoWaysIsRefuted) {
    HandModel model;
    Comp* comp = model.comp("c");
    Clause* follows = thePlant().addClause(std::make_unique<Clause>(comp));
    for (char const* cause : {"a", "b"})
        follows->addAtomRef(model.variable<StateVar>(comp, cause, {"no", "yes"})->getAtomLinks()[1],
                            false);
    auto* seen = model.variable<StateVar>(comp, "seen", {"no", "yes"});
    follows->addAtomRef(seen->getAtomLinks()[1], true);
    model.start();
    // Free, as the causes are: the start of a run would hold them.
    theRun().sMM->time = 0;
    theRun().scheduler.tracked_traj.clear();
    theRun().scheduler.tracked_traj.emplace(1.0, std::move(model.traj));
    TextFile const file("Command\nObservation c.seen=yes\n");
    std::string const told = complaint([&] { theRun().sMM->runSchD(file.path); });
    EXPECT_NE(told.find("results from observations computed : 2\n[Scheduler]"), std::string::npos);
    EXPECT_NE(told.find("---------> Diagnosing...\n"), std::string::npos);
}

// The light is no mode, so while observing it may give way: there is one outcome, in which the
// effect of the move is denied.
TEST(DiscreteRunOutcomes, AnOnlyOutcomeThatDeniesAnEffectIsRefuted) {
    HandModel model;
    Comp* comp = model.comp("c");
    auto* cmd = model.variable<CommandVar>(comp, "cmd", {"none", "go"});
    auto* mode = model.variable<ModeVar>(comp, "mode", {"off", "on"});
    auto* light = model.variable<StateVar>(comp, "light", {"dark", "lit"});
    HandModel::transition(comp, {{true, cmd->getAtomLinks()[1]}, {true, mode->getAtomLinks()[0]}},
                          {{true, mode->getAtomLinks()[1]}, {true, light->getAtomLinks()[1]}});
    model.start();
    theRun().scheduler.tracked_traj.clear();
    theRun().scheduler.tracked_traj.emplace(1.0, std::move(model.traj));
    TextFile const file("Command c.cmd=go\nObservation c.light=dark\n");
    std::string const told = complaint([&] { theRun().sMM->runSchD(file.path); });
    EXPECT_NE(told.find("results from observations computed : 1\n[getConflicts()]"),
              std::string::npos);
    EXPECT_NE(told.find("---------> Diagnosing...\n"), std::string::npos);
}

// The mode of the second history is free: it may give way to closed, and to broken only as a
// failure, which is more than an observation may assume. One outcome, so it agrees too.
TEST_F(DiscreteRun, NoFailureIsAssumedWhileObserving) {
    State* reached = track(2.0, {model.open})->getState(1);
    reached->setPrevTrans(reached->getElt("valve.mode=open"), nullptr);
    run("Observation sensor.flow=zero\n");
    ASSERT_EQ(tracked().size(), 2u);
    for (auto const& entry : tracked())
        EXPECT_EQ(modeOf(entry.second), "valve.mode=closed");
}

TEST_F(DiscreteRun, OneHistoryThatAgreesIsEnough) {
    track(2.0, {model.open});
    std::string const told = run("Observation sensor.flow=zero\n");
    ASSERT_EQ(tracked().size(), 1u);
    EXPECT_EQ(modeOf(tracked().front().second), "valve.mode=closed");
    EXPECT_EQ(told.find("Diagnosing"), std::string::npos);
    EXPECT_EQ(theRun().sMM->bound, 0.0);
}

// ---- The search ----

// The first history opened at step 1, the second one at step 3. Each could have broken there
// instead.
TEST_F(DiscreteRun, WhenAllDisagreeTheFirstHistoryAloneIsSearched) {
    track(0.5, {model.open, model.close});
    RunLog const log;
    std::string const told = run("Command valve.cmd=open\nObservation sensor.flow=zero\n");
    EXPECT_NE(told.find(refuted(1, 1) + refuted(1, 3) +
                        "---------> Diagnosing...\n"
                        "Rank : 1/10 (time)\n" +
                        "inserting observations at time_step : 1\n"),
              std::string::npos);
    Tracked const left = tracked();
    ASSERT_EQ(left.size(), 1u);
    Trajectory const* found = left.front().second;
    EXPECT_EQ(found->getCurrentTime(), 1);
    EXPECT_EQ(modeOf(found), "valve.mode=broken");
    EXPECT_EQ(found->getState(1)->getElt("valve.mode=broken")->prevTrans, model.breaks);
    EXPECT_EQ(found->rank, 1.0);
    EXPECT_EQ(found->proba, 1.0);
    EXPECT_EQ(theRun().sMM->bound, 1.0);
    EXPECT_EQ(theRun().sMM->time, 2);
    // The mark of a search, and what is left behind it.
    EXPECT_EQ(log.lines(), "1 (time) 0 2\n1 (time) 1 1\n");
}

// This one was told to open at step 1 too, and could have broken there as well.
TEST_F(DiscreteRun, TheFirstHistoryIsTheOneOfTheGreatestKey) {
    track(2.0, {model.open, model.close});
    run("Command valve.cmd=open\nObservation sensor.flow=zero\n");
    Tracked const left = tracked();
    ASSERT_EQ(left.size(), 2u);
    for (auto const& entry : left)
        EXPECT_EQ(entry.second->getCurrentTime(), 3);
    EXPECT_DOUBLE_EQ(left[0].second->proba + left[1].second->proba, 1.0);
}

// From one above the rank that the search before came to, to ten above that of the history.
TEST_F(DiscreteRun, TheRanksOfASearchFollowTheBoundAndTheHistory) {
    theRun().sMM->bound = 12.0;
    first->rank = 3.0;
    std::string const told = run("Command valve.cmd=open\nObservation sensor.flow=zero\n");
    EXPECT_NE(told.find("---------> Diagnosing...\nRank : 13/13 (time)\n"), std::string::npos);
}

// The steps go on, without a history.
TEST_F(DiscreteRun, ASearchThatFindsNothingLeavesNothing) {
    RunLog const log;
    std::string const told =
        run("Observation sensor.flow=zero sensor.flow=positive\nCommand valve.cmd=open\n"
            "Observation sensor.flow=zero\n");
    EXPECT_NE(told.find("no history explains the observations of step 1\n"), std::string::npos);
    EXPECT_NE(told.find("no history is left to observe at step 3\n"), std::string::npos);
    EXPECT_TRUE(tracked().empty());
    EXPECT_EQ(theRun().sMM->time, 3);
    EXPECT_EQ(log.lines(), "0 (time) 1 0\n2 (time) 0 0\n");
}

// The first history's, that of the copy, and one in each round of the ranks 1 to 10.
TEST_F(DiscreteRun, ASearchMakesAFurtherCopyBesideTheOneItWorksOn) {
    unsigned const before = theRun().scheduler.book.traj_created;
    run("Observation sensor.flow=zero sensor.flow=positive\n");
    EXPECT_EQ(theRun().scheduler.book.traj_created - before, 12u);
}

TEST_F(DiscreteRun, TheRunGoesOnWithWhatWasFound) {
    RunLog const log;
    std::string const told =
        run("Command valve.cmd=open\nObservation sensor.flow=zero\nCommand valve.cmd=close\n"
            "Observation sensor.flow=zero\n");
    ASSERT_EQ(tracked().size(), 1u);
    Trajectory const* found = tracked().front().second;
    EXPECT_EQ(modeOf(found), "valve.mode=broken");
    EXPECT_EQ(found->getCurrentTime(), 2);
    EXPECT_EQ(log.lines(), "1 (time) 0 1\n1 (time) 1 1\n3 (time) 0 1\n3 (time) 0 1\n");
    EXPECT_EQ(told.substr(told.size() - std::string(scenarioDone).size()), scenarioDone);
}

}  // namespace
