// The table of events: scheduled commands, the move of events, and the scheduler's reset.
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

using namespace scheduler_fixture;

namespace {

// Two valves without a clause in common, and a pump that shares one with the first valve.
class CommandEvents : public testing::Test {
protected:
    CommandEvents() {
        model.addMoves();
        Comp* other = model.comp("other");
        far = model.variable<CommandVar>(other, "cmd", {"none", "go"})->getAtomLinks()[1];
        Comp* pump = model.comp("pump");
        near = model.variable<CommandVar>(pump, "cmd", {"none", "go"})->getAtomLinks()[1];
        HandModel::exclude(pump, near, model.open);
        model.start();
    }

    static void observe(double date, std::vector<Atom*> const& atoms) {
        theRun().sMM->scenario[date] = std::make_unique<scenarEvent>(scenarEvent{false, atoms});
    }
    static std::vector<Atom*> atomsAt(double date) {
        auto const found = theRun().sMM->scenario.find(date);
        if (found == theRun().sMM->scenario.end() || found->second == nullptr)
            return {};
        return found->second->atoms;
    }
    using Atoms = std::vector<Atom*>;

    Valve model;
    Atom* far = nullptr;   // a command that shares no atom through a clause with the valve's
    Atom* near = nullptr;  // one that does
};

TEST_F(CommandEvents, ACommandOpensItsStep) {
    theRun().sMM->addCommandEvent(model.open, 3);
    ASSERT_EQ(theRun().sMM->scenario.size(), 1u);
    EXPECT_TRUE(theRun().sMM->scenario[3.0]->isCommand);
    EXPECT_EQ(atomsAt(3.0), Atoms{model.open});
}

TEST_F(CommandEvents, IndependentCommandsShareAStep) {
    theRun().sMM->addCommandEvent(model.open, 3);
    theRun().sMM->addCommandEvent(far, 3);
    EXPECT_EQ(atomsAt(3.0), (Atoms{model.open, far}));
}

TEST_F(CommandEvents, AClashingCommandSlidesToTheNextStep) {
    theRun().sMM->addCommandEvent(model.open, 3);
    theRun().sMM->addCommandEvent(near, 3);
    EXPECT_EQ(atomsAt(3.0), Atoms{model.open});
    EXPECT_EQ(atomsAt(4.0), Atoms{near});
    EXPECT_TRUE(theRun().sMM->scenario[4.0]->isCommand);
}

// Values of one variable always clash, since a clause says that not both hold.
TEST_F(CommandEvents, ASlidingCommandPassesEveryStepWhereItClashes) {
    theRun().sMM->addCommandEvent(model.open, 3);
    theRun().sMM->addCommandEvent(model.close, 4);
    theRun().sMM->addCommandEvent(far, 5);
    theRun().sMM->addCommandEvent(model.none, 3);
    EXPECT_EQ(atomsAt(3.0), Atoms{model.open});
    EXPECT_EQ(atomsAt(4.0), Atoms{model.close});
    EXPECT_EQ(atomsAt(5.0), (Atoms{far, model.none}));
    EXPECT_EQ(theRun().sMM->scenario.size(), 3u);
}

// One atom of the step is enough to clash with, not the last alone.
TEST_F(CommandEvents, EveryAtomOfAStepCounts) {
    theRun().sMM->addCommandEvent(model.open, 3);
    theRun().sMM->addCommandEvent(far, 3);
    theRun().sMM->addCommandEvent(near, 3);
    EXPECT_EQ(atomsAt(4.0), Atoms{near});
}

TEST_F(CommandEvents, AStepOfObservationsBecomesOneOfCommands) {
    observe(2.0, {model.isOpen});
    theRun().sMM->addCommandEvent(far, 2);
    EXPECT_TRUE(theRun().sMM->scenario[2.0]->isCommand);
    EXPECT_EQ(atomsAt(2.0), (Atoms{model.isOpen, far}));
}

TEST_F(CommandEvents, APlaceThatHoldsANullIsFree) {
    theRun().sMM->scenario[2.0] = nullptr;
    theRun().sMM->addCommandEvent(far, 2);
    EXPECT_EQ(atomsAt(2.0), Atoms{far});
}

TEST_F(CommandEvents, NoneCommandsAreThoseOfTheVariables) {
    Atom const* farNone = far->getSiblings()[0];
    std::vector<Atom*> const none = Scheduler::getNoneCommands({model.close, far, model.isOpen});
    // The mode has no value "none".
    ASSERT_EQ(none.size(), 2u);
    EXPECT_EQ(none[0], model.none);
    EXPECT_EQ(none[1], farNone);
    EXPECT_TRUE(Scheduler::getNoneCommands({}).empty());
    EXPECT_EQ(Scheduler::getNoneCommands({model.open, model.close}),
              (Atoms{model.none, model.none}))
        << "one for each command";
}

TEST_F(CommandEvents, ALaterEventComesToTheNextStep) {
    observe(7.0, {model.isOpen});
    EXPECT_TRUE(theRun().sMM->organizeCommands(2, false));
    EXPECT_EQ(atomsAt(3.0), Atoms{model.isOpen});
    EXPECT_EQ(theRun().sMM->scenario.count(7.0), 1u);
    EXPECT_EQ(theRun().sMM->scenario[7.0], nullptr);
}

TEST_F(CommandEvents, AnEventOfTheNextStepStaysThere) {
    // The step of 3.5 is 3, which is no later than the one after 2.
    observe(3.5, {model.isOpen});
    EXPECT_TRUE(theRun().sMM->organizeCommands(2, false));
    EXPECT_EQ(atomsAt(3.5), Atoms{model.isOpen});
    EXPECT_EQ(theRun().sMM->scenario.size(), 1u);
}

TEST_F(CommandEvents, EventsUpToNowAndNullsArePassed) {
    observe(2.0, {model.isClosed});
    theRun().sMM->scenario[4.0] = nullptr;
    observe(9.0, {model.isOpen});
    EXPECT_TRUE(theRun().sMM->organizeCommands(2, false));
    EXPECT_EQ(atomsAt(2.0), Atoms{model.isClosed});
    EXPECT_EQ(atomsAt(3.0), Atoms{model.isOpen});
}

TEST_F(CommandEvents, WithoutALaterEventTheNextLineIsRead) {
    TextFile const file("Command valve.cmd=open\nObs valve.mode=open\nObs\n");
    ASSERT_TRUE(theRun().sMM->openScenario(file.path));
    theRun().sMM->time = 5;
    observe(5.0, {model.isClosed});
    complaint([] { EXPECT_FALSE(theRun().sMM->organizeCommands(5, false)); });
    EXPECT_EQ(atomsAt(5.0), Atoms{model.open});
    complaint([] { EXPECT_FALSE(theRun().sMM->organizeCommands(5, true)); });
    EXPECT_EQ(atomsAt(6.0), Atoms{model.isOpen});
    // A line without atoms, and then the end, enter nothing.
    complaint([] {
        EXPECT_FALSE(theRun().sMM->organizeCommands(6, true));
        EXPECT_FALSE(theRun().sMM->organizeCommands(6, true));
    });
    EXPECT_EQ(theRun().sMM->scenario.size(), 2u);
}

TEST_F(CommandEvents, EventsThatNoStepMetAreTold) {
    theRun().sMM->addCommandEvent(model.open, 1);
    theRun().sMM->addCommandEvent(model.close, 2);
    theRun().sMM->scenario[3.0] = nullptr;
    observe(2.5, {model.isOpen});
    observe(7.0, {model.isOpen});  // later than the run
    complaint([&] { theRun().sMM->doCycle(model.traj.get(), &model.rt, 2.0); });
    EXPECT_EQ(complaint([] { theRun().sMM->reportUnmetEvents(6.0); }),
              "scenario event of date 1 met no time step\n"
              "scenario event of date 2.5 met no time step\n");
}

// What one run left must not act in the next.
TEST_F(CommandEvents, AResetForgetsTimeEventsAndTrajectories) {
    theRun().sMM->time = 4;
    theRun().sMM->bound = 2.0;  // a search of the earlier run came to two failures
    theRun().sMM->addCommandEvent(model.open, 3);
    theRun().sMM->contCommands.push_back(model.isOpen);
    theRun().sMM->contEvents.insert({true, model.isOpen});
    theRun().scheduler.tracked_traj.emplace(1.0,
                                            std::make_unique<Trajectory>(theRun().scheduler.book));
    theRun().sMM->raz();
    EXPECT_EQ(theRun().sMM->time, 0);
    EXPECT_EQ(theRun().sMM->bound, 0.0);
    EXPECT_TRUE(theRun().sMM->scenario.empty());
    EXPECT_TRUE(theRun().sMM->contCommands.empty());
    EXPECT_TRUE(theRun().sMM->contEvents.empty());
    EXPECT_TRUE(theRun().scheduler.tracked_traj.empty());
}

TEST(SchedulerStart, NamesTheModelAndStartsAtStepZero) {
    HandModel model;
    EXPECT_EQ(thePlant().name, "hand");
    EXPECT_EQ(theRun().sMM->time, 0);
    EXPECT_EQ(theRun().sMM->bound, 0.0);
    EXPECT_TRUE(theRun().sMM->scenario.empty());
    theRun().sMM->time = 4;
    theRun().sMM->scenario[3.0] = nullptr;
    EXPECT_EQ(theRun().sMM->initSchD(), 1);
    EXPECT_EQ(theRun().sMM->time, 0);
    EXPECT_TRUE(theRun().sMM->scenario.empty());
}

}  // namespace
