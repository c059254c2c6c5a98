// Making and destroying candidates.
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

TEST(Candidate, StartsWithoutAHistoryAndWithoutARuntime) {
    hybTrajectory const candidate;
    EXPECT_EQ(candidate.traj, nullptr);
    EXPECT_EQ(candidate.rt, nullptr);
}

TEST(Candidate, OfTheAtomsCopiesTheTemplate) {
    ReferenceModel model;
    hybTrajectory const candidate(theRun().scheduler.book, &thePlant().active_atoms,
                                  theRun().tavro_rt);
    ASSERT_NE(candidate.rt, nullptr);
    EXPECT_NE(candidate.rt.get(), theRun().tavro_rt);
    EXPECT_EQ(candidate.rt->num, 0);  // the first copy of all
    EXPECT_EQ(candidate.traj->getCurrentTime(), 0);
    EXPECT_EQ(label(candidate.traj.get(), "thermostat.mode=off"), "true");
    hybTrajectory const discrete(theRun().scheduler.book, &thePlant().active_atoms, nullptr);
    EXPECT_EQ(discrete.rt, nullptr);
}

TEST(Candidate, OfAHistoryAndARuntimeTakesTheRuntime) {
    RoomRun run(0.95);
    // The initialisation has moved the history on to step 2.
    Trajectory const* history = theRun().hybNT->traj.get();
    ASSERT_EQ(history->getCurrentTime(), 2);
    auto runtime = sn_copyRuntime(theRun().hybNT->rt.get());
    s_runtime const* given = runtime.get();
    hybTrajectory const candidate(history, std::move(runtime));
    EXPECT_EQ(candidate.rt.get(), given);
    EXPECT_NE(candidate.traj.get(), history);
    EXPECT_EQ(candidate.traj->getCurrentTime(), 2);
    EXPECT_EQ(candidate.traj->states.size(), history->states.size());
    EXPECT_NE(candidate.traj->getState(2), history->getState(2));
    EXPECT_EQ(label(candidate.traj.get(), "thermostat.mode=on"), "true");
}

TEST(Candidate, OfACandidateCopiesBothSidesUpToAStep) {
    RoomRun run(0.95);
    hybTrajectory const copy(theRun().hybNT, 2);
    // Without step 2 the thermostat is still off.
    EXPECT_EQ(copy.traj->getCurrentTime(), 1);
    EXPECT_EQ(label(copy.traj.get(), "thermostat.mode=on"), "false");
    EXPECT_NE(copy.rt.get(), theRun().hybNT->rt.get());
    EXPECT_EQ(copy.rt->num, 1);
    EXPECT_EQ(valueOf(copy.rt.get(), "room.x").real, 4.0);
}

TEST(Candidate, OfADiscreteCandidateHasNoRuntime) {
    ReferenceModel model;
    hybTrajectory const discrete(theRun().scheduler.book, &thePlant().active_atoms, nullptr);
    hybTrajectory const copy(&discrete, 1);
    EXPECT_EQ(copy.rt, nullptr);
    EXPECT_NE(copy.traj, nullptr);
}

TEST(Candidate, TakesItsHistoryWithIt) {
    RoomRun run(0.95);
    unsigned const created = theRun().scheduler.book.traj_created,
                   destroyed = theRun().scheduler.book.traj_del;
    {
        hybTrajectory const copy(theRun().hybNT, 3);
        EXPECT_EQ(theRun().scheduler.book.traj_created, created + 1);
    }
    EXPECT_EQ(theRun().scheduler.book.traj_del, destroyed + 1);
}

}  // namespace
