// The start of a run: the first candidate, and its cycle at time 0.
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

TEST(Initialize, TellsTheTimeAndTheCommandOfTheColdRoom) {
    RoomRun run(0.95);
    // Below 10 the condition c10 holds, and its transition makes it act as a command.
    EXPECT_EQ(run.start.err,
              "-- time = 0 --------------------------\n"
              "global: 1\n"
              "room.c1=c10\n");
    EXPECT_NE(run.start.out.find("measures: 0.95 \n"), std::string::npos);
}

TEST(Initialize, MakesOneCandidateUnderKeyOne) {
    RoomRun run(0.95);
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    EXPECT_EQ(theRun().tracked_trajs.begin()->first, 1.0);
    EXPECT_EQ(theRun().tracked_trajs.begin()->second.get(), theRun().hybNT);
    EXPECT_EQ(theRun().hybNT->rt->num, 0);
    EXPECT_EQ(theRun().engine.rt_num, 1);
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

TEST(Initialize, LeavesTheTemplateAsItWas) {
    RoomRun run(0.95);
    EXPECT_NE(theRun().hybNT->rt.get(), theRun().tavro_rt);
    EXPECT_EQ(valueOf(theRun().tavro_rt, "room.x").type, OBJ_UNSET);
    EXPECT_EQ(theRun().tavro_rt->valSpc, std::vector<int>(4, 0));
    EXPECT_EQ(theRun().tavro_rt->condi[1]->val, 0);  // the thermostat of the template is not on
    EXPECT_EQ(theRun().tavro_rt->condi[0]->val, 1);
    EXPECT_EQ(theRun().tavro_rt->varsInitialised, 0);
}

TEST(Initialize, GivesTheFirstValues) {
    RoomRun run(0.95);
    s_runtime const* rt = theRun().hybNT->rt.get();
    EXPECT_EQ(valueOf(rt, "room.x").real, 4.0);    // from the model
    EXPECT_EQ(valueOf(rt, "room.xd").real, 0.95);  // the measure
    EXPECT_EQ(valueOf(rt, "room.xdq").real, 0.0);  // 4 outside - 4 inside: the heater was off
    EXPECT_EQ(rt->varsInitialised, 1);
    EXPECT_EQ(rt->globalOn, 1);
    EXPECT_EQ(rt->precision, 0.01);
    // Of the four constraints on x only x < 10 holds.
    EXPECT_EQ(rt->valSpc, (std::vector<int>{1, 0, 0, 0}));
    EXPECT_EQ(theRun().engine.meas, std::vector<double>{0.95});
    EXPECT_TRUE(theRun().engine.inps.empty());
}

// The first state is locked: the event is given in step 1, and the thermostat moves in step 2.
TEST(Initialize, SwitchesTheThermostatOnAtTimeZero) {
    RoomRun run(0.95);
    Trajectory const* traj = theRun().hybNT->traj.get();
    ASSERT_EQ(traj->getCurrentTime(), 2);
    EXPECT_EQ(traj->getState(0)->getElt("thermostat.mode=off")->getLabel(), "true");
    EXPECT_EQ(traj->getState(1)->getElt("room.c1=c10")->lock, LOCK_TRUE_PERM);
    EXPECT_EQ(traj->getState(2)->getElt("thermostat.mode=on")->getLabel(), "true");
    EXPECT_EQ(traj->getState(2)->getElt("thermostat.mode=off")->getLabel(), "false");
    for (int step : {0, 1, 2})
        EXPECT_EQ(traj->getTimeCorr(step), 0.0) << step;
    EXPECT_EQ(theRun().hybNT->rt->tStart, 2.0);
    EXPECT_EQ(thermostatOf(theRun().hybNT), "on");
}

TEST(Initialize, TellsTheConditionsOfTheNewMode) {
    RoomRun run(0.95);
    s_runtime* rt = theRun().hybNT->rt.get();
    EXPECT_EQ(rt->condi[0]->val, 0);               // off
    EXPECT_EQ(rt->condi[1]->val, 1);               // on
    EXPECT_EQ(rt->condi[11]->val, 1);              // closed
    EXPECT_EQ(rt->condi[10]->val, 1);              // c10
    EXPECT_EQ(sn_evalCond(rt->condi[5], rt), 1);   // heating, through operands of its own
    EXPECT_EQ(sn_evalCond(rt->condi[14], rt), 0);  // not heating
    EXPECT_TRUE(rt->bridgeEvents.empty());
    EXPECT_TRUE(rt->bridgeConds.empty());
    EXPECT_TRUE(rt->bridgeTrans.empty());
}

TEST(Initialize, LocksTheFirstState) {
    RoomRun run(0.95);
    State const* first = theRun().hybNT->traj->getState(0);
    EXPECT_EQ(first->comps.count("room"), 1u);
    EXPECT_EQ(first->comps.count("thermostat"), 1u);
    TrajEl const* off = first->getElt("thermostat.mode=off");
    EXPECT_EQ(off->lock, LOCK_TRUE_PERM);
    EXPECT_EQ(first->getElt("thermostat.mode=on")->lock, LOCK_FALSE_PERM);
    EXPECT_EQ(first->getElt("room.c1=c10")->lock, LOCK_TRUE_PERM);
    EXPECT_EQ(first->getElt("room.cmdin=none")->lock, LOCK_TRUE_PERM);
    // Modes came there by their idle transitions, also off, whose guard does not hold.
    EXPECT_EQ(off->prevTrans, off->atom->idleTrans);
    ASSERT_NE(off->prevTrans, nullptr);
    TrajEl const* closed = first->getElt("room.mode=closed");
    EXPECT_EQ(closed->prevTrans, closed->atom->idleTrans);
    EXPECT_EQ(first->getElt("room.cmdin=none")->prevTrans, nullptr);
    // Closed was counted when the state was made and again here; off here alone.
    EXPECT_EQ(first->prevTransCount, 3);
}

TEST(Initialize, StartsTheDiscreteSideAgain) {
    RoomRun run(0.95);
    theRun().sMM->time = 7;
    theRun().sMM->addCommandEvent(ReferenceModel::atom("room.cmdin=open"), 3);
    hybTrajectory const* earlier = theRun().hybNT;
    streamsOf([] { EXPECT_EQ(tavro_initialize(theRun(), 0, 0.5, "text", 4), 1); });
    EXPECT_EQ(theRun().sMM->time, 0);
    EXPECT_TRUE(theRun().sMM->scenario.empty());
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    EXPECT_NE(theRun().tracked_trajs.begin()->second.get(), earlier);
    EXPECT_EQ(theRun().hybNT->rt->globalOn, 0);
    EXPECT_EQ(theRun().hybNT->rt->precision, 0.5);
    EXPECT_EQ(theRun().hybNT->rt->diagBuf, "text");
    EXPECT_EQ(variable(theRun().hybNT->rt.get(), "room.xd")->misbHisto, std::vector<int>(4, 0));
}

// What the run before left unobeyed is not obeyed at the start of the next.
TEST(Initialize, ObeysNothingOfTheRunBefore) {
    RoomRun run(0.95);
    theRun().sMM->contCommands = {ReferenceModel::atom("room.c1=c12")};
    theRun().sMM->contEvents.insert({true, ReferenceModel::atom("room.mode=open")});
    EXPECT_EQ(complaint([] { tavro_initialize(theRun(), 1, 0.01, "", 0); }),
              "-- time = 0 --------------------------\nglobal: 1\nroom.c1=c10\n");
}

TEST(Initialize, EndsARun) {
    RoomRun run(0.95);
    clearMultiTrajs(theRun());
    EXPECT_EQ(theRun().hybNT, nullptr);
    EXPECT_TRUE(theRun().tracked_trajs.empty());
}

// First values on both sides of a threshold: the part inside the first space is followed.
TEST(Initialize, FollowsOnePieceOfSplitFirstValues) {
    ReferenceModel model;
    theRun().tavro_rt->init[0].value = makeRange(9.0, 11.0, 1, 1);
    streamsOf([] { tavro_initialize(theRun(), 1, 0.01, "", 0); });
    EXPECT_EQ(theRun().tracked_trajs.size(), 1u);
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

TEST(InitializeDiscrete, HandsTheTrajectoryToTheRegistry) {
    ReferenceModel model;
    theRun().scheduler.tracked_traj.emplace(2.0,
                                            std::make_unique<Trajectory>(theRun().scheduler.book));
    EXPECT_EQ(tavro_initialize_discrete(theRun()), 0);
    ASSERT_EQ(theRun().scheduler.tracked_traj.size(), 1u);
    EXPECT_EQ(theRun().scheduler.tracked_traj.begin()->first, 1.0);
    Trajectory const* traj = theRun().scheduler.tracked_traj.begin()->second.get();
    EXPECT_EQ(traj->getCurrentTime(), 0);
    EXPECT_EQ(traj->getState(0)->comps.size(), 2u);
    EXPECT_NE(theRun().hybNT, nullptr);
    EXPECT_EQ(theRun().hybNT->rt, nullptr);
    EXPECT_EQ(theRun().sMM->time, 0);
}

}  // namespace
