// The discrete run over transitions whose effects come at delays.
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

using namespace scheduler_fixture;

namespace {

// A pump whose start takes effect at once, and starts a fan a step later. The command of its guard
// is asserted as long as the transition runs: two effects, so up to step 2.
class DelayedRun : public testing::Test {
protected:
    DelayedRun() {
        Comp* pump = model.comp("pump");
        auto* cmd = model.variable<CommandVar>(pump, "cmd", {"none", "go"});
        auto* mode = model.variable<ModeVar>(pump, "mode", {"off", "on"});
        Comp* fan = model.comp("fan");
        auto* fanCmd = model.variable<CommandVar>(fan, "cmd", {"none", "go"});
        starts = HandModel::delayed(
            pump, {{true, cmd->getAtomLinks()[1]}, {true, mode->getAtomLinks()[0]}},
            {{1, {{true, mode->getAtomLinks()[1]}}}, {2, {{true, fanCmd->getAtomLinks()[1]}}}});
        model.start();
        traj = model.traj.get();
        theRun().scheduler.tracked_traj.clear();
        theRun().scheduler.tracked_traj.emplace(1.0, std::move(model.traj));
    }

    static Streams run(std::string const& lines) {
        TextFile const file(lines);
        return streamsOf([&] { theRun().sMM->runSchD(file.path); });
    }
    // Whether the state of step *t* itself holds the atom as true.
    bool holds(char const* id, int t) const {
        TrajEl const* element = traj->getState(t)->getElt(id);
        return element != nullptr && element->evalTrajEl();
    }

    HandModel model;
    Transition* starts = nullptr;
    Trajectory* traj = nullptr;
};

TEST_F(DelayedRun, TheCommandIsAssertedUntilTheTransitionEnds) {
    Streams const told =
        run("Command pump.cmd=go\nCommand fan.cmd=none\nCommand fan.cmd=none\n"
            "Command fan.cmd=none\n");
    ASSERT_EQ(traj->getCurrentTime(), 4);
    for (int t : {0, 1, 2}) {
        EXPECT_TRUE(holds("pump.cmd=go", t)) << t;
        EXPECT_EQ(traj->getState(t)->getElt("pump.cmd=go")->lock, LOCK_TRUE_PERM) << t;
    }
    EXPECT_FALSE(holds("pump.cmd=go", 3));
    std::string const shown = streamsOf([this] { starts->showTransition(std::cout); }).out;
    std::size_t const at = told.out.find(shown);
    EXPECT_NE(at, std::string::npos);
    EXPECT_EQ(told.out.find(shown, at + 1), std::string::npos);
}

// The first history's last step forgets the transition. The commands of a step are one list for all
// histories, so the second one asserts its command there as well.
TEST_F(DelayedRun, HistoriesShareTheCommandsThatStillRun) {
    auto other = std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms);
    Trajectory const* second = other.get();
    theRun().scheduler.tracked_traj.emplace(0.5, std::move(other));
    run("Command pump.cmd=go\nCommand fan.cmd=none\nCommand fan.cmd=none\n");
    for (Trajectory const* each : {static_cast<Trajectory const*>(traj), second}) {
        TrajEl const* command = each->getState(2)->getElt("pump.cmd=go");
        ASSERT_NE(command, nullptr);
        EXPECT_TRUE(command->evalTrajEl());
        EXPECT_EQ(command->lock, LOCK_TRUE_PERM);
    }
}

// What runs is one table for all histories: the second one finds the transition running since this
// step, so nothing is recorded in its element, and without a record the effect is not of this step.
TEST_F(DelayedRun, HistoriesShareWhatRuns) {
    auto other = std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms);
    Trajectory const* second = other.get();
    theRun().scheduler.tracked_traj.emplace(0.5, std::move(other));
    run("Command pump.cmd=go\n");
    EXPECT_TRUE(holds("pump.mode=on", 1));
    TrajEl const* on = second->getState(1)->getElt("pump.mode=on");
    ASSERT_NE(on, nullptr);
    EXPECT_FALSE(on->evalTrajEl());
    EXPECT_EQ(on->prevTrans, nullptr);
}

// The next line is stored for its step, and what a transition had scheduled for that step is lost.
TEST_F(DelayedRun, ALineTakesTheStepOfAScheduledCommand) {
    Streams const told = run("Command pump.cmd=go\nCommand fan.cmd=none\n");
    EXPECT_TRUE(holds("fan.cmd=none", 1));
    EXPECT_FALSE(holds("fan.cmd=go", 1));
    EXPECT_NE(told.err.find("Time : 2\nFrom scenario:\nfan.cmd=none \n"), std::string::npos);
}

TEST_F(DelayedRun, SoDoesTheEndOfTheScenario) {
    Streams const told = run("Command pump.cmd=go\n");
    EXPECT_EQ(told.err.find("Time : 2"), std::string::npos);
    EXPECT_EQ(theRun().sMM->time, 1);
}

// Two components with a command each: b takes its command at the next step, and gives that of c two
// steps after the one that its history stands at. An observation is a step in which no history
// moves, so the command that follows one is given at step 2 to histories that stand at 0, and two
// steps after 0 is the step that runs.
class CommandOfTheRunningStep : public testing::Test {
protected:
    CommandOfTheRunningStep() {
        Comp* b = model.comp("b");
        auto* cmd = model.variable<CommandVar>(b, "cmd", {"none", "go"});
        auto* mode = model.variable<ModeVar>(b, "mode", {"off", "on"});
        Comp* c = model.comp("c");
        auto* given = model.variable<CommandVar>(c, "cmd", {"none", "go", "stop"});
        auto* moved = model.variable<ModeVar>(c, "mode", {"off", "on"});
        HandModel::delayed(
            b, {{true, cmd->getAtomLinks()[1]}, {true, mode->getAtomLinks()[0]}},
            {{1, {{true, mode->getAtomLinks()[1]}}}, {2, {{true, given->getAtomLinks()[1]}}}});
        HandModel::transition(c,
                              {{true, given->getAtomLinks()[1]}, {true, moved->getAtomLinks()[0]}},
                              {{true, moved->getAtomLinks()[1]}});
        // Reached from the commands of c, and none of them need hold.
        Comp* d = model.comp("d");
        auto* follows = model.variable<ModeVar>(d, "mode", {"off", "on"});
        HandModel::transition(
            d, {{false, given->getAtomLinks()[2]}, {true, follows->getAtomLinks()[0]}},
            {{true, follows->getAtomLinks()[1]}});
        model.start();
        theRun().scheduler.tracked_traj.clear();
        theRun().scheduler.tracked_traj.emplace(1.0, std::move(model.traj));
        theRun().scheduler.tracked_traj.emplace(
            0.5, std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms));
    }

    HandModel model;
};

TEST_F(CommandOfTheRunningStep, ItReachesTheLaterHistoriesOfThatStep) {
    TextFile const file("Observation b.mode=off\nCommand b.cmd=go\n");
    streamsOf([&] { theRun().sMM->runSchD(file.path); });
    ASSERT_EQ(theRun().scheduler.tracked_traj.size(), 2u);
    Trajectory const* first = theRun().scheduler.tracked_traj.begin()->second.get();
    Trajectory const* second = std::next(theRun().scheduler.tracked_traj.begin())->second.get();
    auto const labelAt = [](Trajectory const* traj, char const* id, int t) {
        return traj->getElt(id, t, 0)->getLabel();
    };
    for (Trajectory const* each : {first, second})
        ASSERT_EQ(each->getCurrentTime(), 1);
    EXPECT_EQ(labelAt(first, "b.mode=on", 1), "true");
    // Appended while the first history moved: it was not asserted there, and fires nothing.
    EXPECT_EQ(labelAt(first, "c.cmd=go", 0), "false");
    EXPECT_EQ(labelAt(first, "c.mode=off", 1), "true");
    EXPECT_EQ(labelAt(first, "d.mode=off", 1), "true");
    EXPECT_EQ(labelAt(second, "c.cmd=go", 0), "true");
    EXPECT_EQ(labelAt(second, "c.mode=off", 0), "true");
    EXPECT_EQ(labelAt(second, "c.mode=on", 1), "true");
    EXPECT_EQ(labelAt(second, "d.mode=on", 1), "true");
}

}  // namespace
