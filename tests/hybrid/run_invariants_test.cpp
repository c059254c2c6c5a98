// What is told of a run whose invariants do not hold between two steps.
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

class RunInvariants : public testing::Test {
protected:
    RunInvariants() : room(0.95) {}
    char const* broken() const { return theRun().brokenInvariant(); }
    hybTrajectory& candidate() const { return *theRun().hybNT; }

    RoomRun room;
};

TEST_F(RunInvariants, HoldFromTheStartOn) {
    EXPECT_STREQ(broken(), nullptr);
    room.cycle(detection(3), 1.0, 0.95);
    EXPECT_STREQ(broken(), nullptr);
    clearMultiTrajs(theRun());
    EXPECT_STREQ(broken(), nullptr) << "a run that has ended";
}

TEST_F(RunInvariants, TheNominalCandidateIsTheFirst) {
    hybTrajectory other(&candidate(), candidate().traj->getCurrentTime() + 1);
    hybTrajectory* const first = std::exchange(theRun().hybNT, &other);
    EXPECT_STREQ(broken(), "the nominal candidate is not the first");
    theRun().hybNT = nullptr;
    EXPECT_STREQ(broken(), nullptr) << "there need not be one";
    theRun().hybNT = first;
}

TEST_F(RunInvariants, TheTablesOfAStepAreEmpty) {
    theRun().engine.nrt.insert({0, candidate().rt.get()});
    EXPECT_STREQ(broken(), "a table of a step is not empty");
    theRun().engine.nrt.clear();
    theRun().misbtrajs.emplace(1.0, nullptr);
    EXPECT_STREQ(broken(), "a table of a step is not empty");
    theRun().misbtrajs.clear();
}

TEST_F(RunInvariants, ACandidateHasAHistoryAndARuntime) {
    std::unique_ptr<s_runtime> const rt = std::move(candidate().rt);
    EXPECT_STREQ(broken(), "a candidate has no runtime");
    std::unique_ptr<Trajectory> const traj = std::move(candidate().traj);
    EXPECT_STREQ(broken(), "a candidate has no history");
}

TEST_F(RunInvariants, ARuntimeIsOfTheRunAndSound) {
    s_engine other(theRun().host);
    candidate().rt->engine = &other;
    EXPECT_STREQ(broken(), "a runtime belongs to another run");
    candidate().rt->engine = &theRun().engine;
    candidate().rt->condin.clear();
    EXPECT_STREQ(broken(), "the values of conditions have not one entry per influence");
}

TEST_F(RunInvariants, AHistoryIsSoundAndHoldsEveryComponent) {
    Trajectory& traj = *candidate().traj;
    ++traj.currentTime;
    EXPECT_STREQ(broken(), "a step of the window has no state");
    --traj.currentTime;
    for (auto const& entry : traj.states)
        entry.second->comps.erase("room");
    EXPECT_STREQ(broken(), "a component has left the window of a history");
}

}  // namespace
