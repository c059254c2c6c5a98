// The rule `unknown`: a history that enters an unknown mode says so. A valve that a command opens,
// or, in this model, loses.
#include "reasoning/scheduler_fixture.h"

using namespace scheduler_fixture;

namespace {

class UnknownMode : public testing::Test {
protected:
    explicit UnknownMode(char const* rules = "unknown", bool slipping = false)
        : model(withRules(rules)) {
        valve = model.comp("valve");
        auto* cmd = model.variable<CommandVar>(valve, "cmd", {"none", "open", "kick", "mend"});
        auto* mode = model.variable<ModeVar>(valve, "mode", {"closed", "open", "unknown"});
        open = cmd->getAtomLinks()[1], kick = cmd->getAtomLinks()[2], mend = cmd->getAtomLinks()[3];
        closed = mode->getAtomLinks()[0], isOpen = mode->getAtomLinks()[1];
        lost = mode->getAtomLinks()[2];
        opens = HandModel::transition(valve, {{true, open}, {true, closed}}, {{true, isOpen}});
        loses = HandModel::transition(valve, {{true, kick}, {true, closed}}, {{true, lost}});
        HandModel::transition(valve, {{true, mend}, {true, lost}}, {{true, closed}});
        // What a failure leads to counts as one, and no nominal step takes it.
        if (slipping)
            slips = HandModel::transition(valve, {{true, closed}}, {{true, lost}}, transFail);
        for (Atom* each : {closed, isOpen, lost})
            HandModel::idle(valve, each);
        model.start();
    }
    void step(Atom* command) {
        std::vector<Atom*> commands{command};
        PendingTransitions pending;
        model.scheduler->discretemdl = true;
        complaint([&] {
            model.scheduler->constructNextNominalStateLarge(model.traj.get(), commands, false,
                                                            pending);
        });
    }
    // What a search makes of the step 1 in which the valve opened: it slipped instead.
    std::unique_ptr<Trajectory> slipped(Transition* instead) {
        TrajectoryMap successors;
        streamsOf([&] {
            model.scheduler->constructSuccessors({isOpen, lost, 1.0, instead, 0}, model.traj.get(),
                                                 1, successors, 9.0);
        });
        EXPECT_EQ(successors.size(), 1U);
        return successors.empty() ? nullptr : std::move(successors.begin()->second);
    }

    HandModel model;
    Comp* valve;
    Atom *open, *kick, *mend, *closed, *isOpen, *lost;
    Transition *opens, *loses, *slips = nullptr;
};

class ClassicUnknownMode : public UnknownMode {
protected:
    ClassicUnknownMode() : UnknownMode("classic") {}
};

class SlippingMode : public UnknownMode {
protected:
    explicit SlippingMode(char const* rules = "unknown") : UnknownMode(rules, true) {}
};

class ClassicSlippingMode : public SlippingMode {
protected:
    ClassicSlippingMode() : SlippingMode("classic") {}
};

TEST_F(UnknownMode, AKnownModeIsNotMarked) {
    step(open);
    EXPECT_EQ(model.label("valve.mode=open"), "true");
    EXPECT_FALSE(model.traj->getLastState()->unknown);
    EXPECT_FALSE(model.traj->isUnknown());
}

TEST_F(UnknownMode, ANominalStepIntoItIsMarked) {
    step(kick);
    ASSERT_EQ(model.label("valve.mode=unknown"), "true");
    EXPECT_TRUE(model.traj->getLastState()->unknown);
    EXPECT_TRUE(model.traj->isUnknown());
}

TEST_F(ClassicUnknownMode, ANominalStepIntoItIsNot) {
    step(kick);
    ASSERT_EQ(model.label("valve.mode=unknown"), "true");
    EXPECT_FALSE(model.traj->getLastState()->unknown);
    EXPECT_FALSE(model.traj->isUnknown());
}

TEST_F(UnknownMode, CopiesCarryTheMark) {
    step(kick);
    int const t = model.traj->getCurrentTime();
    Trajectory const copy(model.traj.get(), t + 1);
    EXPECT_TRUE(copy.isUnknown());
    EXPECT_TRUE(copy.getLastState()->unknown);
    complaint([&] { model.traj->addCopyState(t + 1, model.traj->getState(t), false); });
    EXPECT_TRUE(model.traj->getLastState()->unknown);
}

// A history that has been in an unknown mode stays one when the valve is mended: nothing is known
// of what happened meanwhile. The state itself is known again.
TEST_F(UnknownMode, TheHistoryStaysMarkedAndTheStateDoesNot) {
    step(kick);
    step(mend);
    ASSERT_EQ(model.label("valve.mode=closed"), "true");
    EXPECT_FALSE(model.traj->getLastState()->unknown);
    EXPECT_TRUE(model.traj->isUnknown());
}

TEST_F(SlippingMode, ASuccessorThatLosesTheModeIsMarked) {
    step(open);
    for (auto const& entry : model.traj->getState(1)->elts)
        entry.second->lock = LOCK_FREE;
    auto const found = slipped(slips);
    ASSERT_NE(found, nullptr);
    EXPECT_TRUE(found->getState(1)->unknown);
    EXPECT_TRUE(found->isUnknown());
    EXPECT_FALSE(found->getState(0)->unknown);
}

TEST_F(ClassicSlippingMode, ASuccessorThatLosesTheModeIsNot) {
    step(open);
    for (auto const& entry : model.traj->getState(1)->elts)
        entry.second->lock = LOCK_FREE;
    auto const found = slipped(slips);
    ASSERT_NE(found, nullptr);
    EXPECT_FALSE(found->isUnknown());
}

// The other way round: the mode was lost, and the search finds that it opened.
TEST_F(UnknownMode, AReplacedTransitionTakesTheMarkAway) {
    step(kick);
    for (int t : {0, 1})
        for (auto const& entry : model.traj->getState(t)->elts)
            entry.second->lock = LOCK_FREE;
    ASSERT_TRUE(model.traj->isUnknown());
    auto const found = slipped(opens);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->getElt("valve.mode=open", 1, 0)->getLabel(), "true");
    EXPECT_FALSE(found->getState(1)->unknown);
    EXPECT_FALSE(found->isUnknown());
}

}  // namespace
