// Validity spaces: where the temperature lies on both sides of a threshold, one candidate becomes
// several.
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

// The room with a temperature given by the test, ready to be split.
class SplitRoom : public testing::Test {
protected:
    SplitRoom() { run.emplace(0.95); }

    // Gives the one candidate the temperature, in the space with that constraint alone, and splits.
    void split(double inf, double sup, int constraint, RunOptions const& options) {
        s_runtime* rt = theRun().hybNT->rt.get();
        variable(rt, "room.x")->old = makeRange(inf, sup, 1, 1);
        rt->valSpc = {0, 0, 0, 0};
        rt->valSpc[static_cast<std::size_t>(constraint)] = 1;
        splitTrajs(theRun(), options);
        at.clear();
        for (auto const& entry : theRun().tracked_trajs)
            at.push_back(entry.second->rt.get());
    }
    // The atoms of a runtime's events, each with its sign.
    static std::string events(s_runtime const* rt) {
        std::string text;
        for (auto const& [sign, atom] : rt->bridgeEvents)
            text += (sign ? "+" : "-") + atom->value;
        return text;
    }
    static void expectRange(s_runtime const* rt, double inf, double sup, int infClosed,
                            int supClosed) {
        for (s_Objet const* value : {&variable(rt, "room.x")->old, &variable(rt, "room.x")->new_}) {
            ASSERT_EQ(value->type, OBJ_RANGE);
            EXPECT_EQ(value->rng.inf, inf);
            EXPECT_EQ(value->rng.sup, sup);
            EXPECT_EQ(value->rng.infClosed, infClosed);
            EXPECT_EQ(value->rng.supClosed, supClosed);
        }
    }
    using Space = std::vector<int>;

    std::optional<RoomRun> run;
    std::vector<s_runtime*> at;  // the runtimes after the split, in the order of the map
};

TEST_F(SplitRoom, AtTenIntoTwo) {
    split(9.0, 11.0, 0, detection(1));
    ASSERT_EQ(at.size(), 2u);
    // The part inside keeps the runtime, its flags and its space, and raises no event.
    EXPECT_EQ(at[0]->num, 0);
    expectRange(at[0], 9.0, 10.0, 1, 1);
    EXPECT_EQ(at[0]->valSpc, (Space{1, 0, 0, 0}));
    EXPECT_EQ(events(at[0]), "");
    EXPECT_EQ(at[0]->condi[10]->val, 1);
    // The rest is a copy between 10 and 17.
    EXPECT_EQ(at[1]->num, 1);
    expectRange(at[1], 10.0, 11.0, 0, 0);
    EXPECT_EQ(at[1]->valSpc, (Space{0, 1, 1, 0}));
    EXPECT_EQ(events(at[1]), "+c11");
    EXPECT_EQ(at[1]->condi[9]->val, 1);
    EXPECT_EQ(theRun().engine.rt_num, 2);
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

TEST_F(SplitRoom, AtSeventeenIntoTwo) {
    s_runtime* rt = theRun().hybNT->rt.get();
    variable(rt, "room.x")->old = makeRange(16.0, 18.0, 1, 1);
    rt->valSpc = {0, 1, 1, 0};
    splitTrajs(theRun(), detection(1));
    ASSERT_EQ(theRun().tracked_trajs.size(), 2u);
    s_runtime const* inside = theRun().tracked_trajs.begin()->second->rt.get();
    s_runtime const* above = std::next(theRun().tracked_trajs.begin())->second->rt.get();
    expectRange(inside, 16.0, 17.0, 1, 1);
    EXPECT_EQ(inside->valSpc, (Space{0, 1, 1, 0}));
    EXPECT_EQ(events(inside), "");
    expectRange(above, 17.0, 18.0, 0, 0);
    EXPECT_EQ(above->valSpc, (Space{0, 0, 0, 1}));
    EXPECT_EQ(events(above), "+c12");
    EXPECT_EQ(above->num, 1);
}

// From below 10 to above 17. What is left above 10 is first placed above 17, the first condition
// of the temperature that covers it, and split again there.
TEST_F(SplitRoom, AcrossBothThresholdsIntoThree) {
    split(9.0, 18.0, 0, detection(1));
    ASSERT_EQ(at.size(), 3u);
    EXPECT_EQ(at[0]->num, 0);
    expectRange(at[0], 9.0, 10.0, 1, 1);
    EXPECT_EQ(at[1]->num, 1);
    expectRange(at[1], 17.0, 18.0, 0, 0);
    EXPECT_EQ(at[1]->valSpc, (Space{0, 0, 0, 1}));
    EXPECT_EQ(events(at[1]), "+c12");
    EXPECT_EQ(at[2]->num, 2);
    expectRange(at[2], 10.0, 17.0, 0, 0);
    EXPECT_EQ(at[2]->valSpc, (Space{0, 1, 1, 0}));
    EXPECT_EQ(events(at[2]), "+c11");
}

TEST_F(SplitRoom, WhollyInsideNothingHappens) {
    split(8.0, 9.0, 0, detection(1));
    ASSERT_EQ(at.size(), 1u);
    expectRange(at[0], 8.0, 9.0, 1, 1);
    EXPECT_EQ(events(at[0]), "");
}

TEST_F(SplitRoom, AValueThatLeftItsSpaceChangesItWithoutACopy) {
    split(11.0, 12.0, 0, detection(1));
    ASSERT_EQ(at.size(), 1u);
    EXPECT_EQ(at[0]->num, 0);
    EXPECT_EQ(at[0]->valSpc, (Space{0, 1, 1, 0}));
    EXPECT_EQ(events(at[0]), "+c11");
    EXPECT_EQ(theRun().engine.rt_num, 1);
}

TEST_F(SplitRoom, TheDisplaysAreThoseOfThePieces) {
    split(9.0, 11.0, 0, detection(1));
    ASSERT_EQ(at.size(), 2u);
    EXPECT_EQ(at[0]->dsupval[1], 10.0);
    EXPECT_EQ(at[1]->dinfval[1], 10.0);
    EXPECT_EQ(at[1]->dsupval[1], 11.0);
}

// ---- What becomes of the candidate ----

TEST_F(SplitRoom, EachPieceHasItsOwnCopyOfTheHistory) {
    theRun().hybNT->traj->proba = 0.25;
    theRun().hybNT->traj->rank = 3.0;
    Trajectory const* history = theRun().hybNT->traj.get();
    int const step = history->getCurrentTime();
    std::size_t const states = history->states.size();
    split(9.0, 11.0, 0, detection(1));
    ASSERT_EQ(theRun().tracked_trajs.size(), 2u);
    std::vector<Trajectory const*> copies;
    for (auto const& [key, candidate] : theRun().tracked_trajs) {
        EXPECT_EQ(key, 0.25);
        EXPECT_EQ(candidate->traj->proba, 0.25);
        EXPECT_EQ(candidate->traj->rank, 3.0);
        EXPECT_EQ(candidate->traj->getCurrentTime(), step);
        EXPECT_EQ(candidate->traj->states.size(), states);
        copies.push_back(candidate->traj.get());
    }
    EXPECT_NE(copies[0], copies[1]);
    EXPECT_NE(copies[0]->getLastState(), copies[1]->getLastState());
}

TEST_F(SplitRoom, ASimulationOfOneCandidateKeepsItAndDropsWhatWasAdded) {
    hybTrajectory const* before = theRun().hybNT;
    Trajectory const* history = theRun().hybNT->traj.get();
    s_runtime const* runtime = theRun().hybNT->rt.get();
    split(9.0, 18.0, 0, simulation(0));
    ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
    EXPECT_EQ(theRun().tracked_trajs.begin()->second.get(), before);
    EXPECT_EQ(before->traj.get(), history);
    EXPECT_EQ(at[0], runtime);
    expectRange(at[0], 9.0, 10.0, 1, 1);
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

TEST_F(SplitRoom, ASimulationOfSeveralFollowsEveryPiece) {
    split(9.0, 18.0, 0, simulation(1));
    EXPECT_EQ(theRun().tracked_trajs.size(), 3u);
    EXPECT_TRUE(theRun().engine.nrt.empty());
}

TEST_F(SplitRoom, DetectionFollowsEveryPieceWhateverMultiSays) {
    RunOptions options = detection(1, RUN_NOMERGE);
    options.multi = 0;
    split(9.0, 18.0, 0, options);
    EXPECT_EQ(theRun().tracked_trajs.size(), 3u);
}

// Candidates of one key keep their order, each followed by its own pieces.
TEST_F(SplitRoom, ThePiecesStandWithTheirParents) {
    s_runtime* first = theRun().hybNT->rt.get();
    auto second = std::make_unique<hybTrajectory>(theRun().hybNT, 3);  // identity 1
    variable(first, "room.x")->old = makeRange(9.0, 11.0, 1, 1);
    variable(second->rt.get(), "room.x")->old = makeRange(9.5, 10.5, 1, 1);
    theRun().tracked_trajs.emplace(1.0, std::move(second));
    splitTrajs(theRun(), detection(1));
    std::vector<int> identities;
    for (auto const& entry : theRun().tracked_trajs)
        identities.push_back(entry.second->rt->num);
    EXPECT_EQ(identities, (std::vector<int>{0, 2, 1, 3}));
}

TEST_F(SplitRoom, CandidatesAreOrderedByProbability) {
    auto second = std::make_unique<hybTrajectory>(theRun().hybNT, 3);
    second->traj->proba = 0.75;
    theRun().tracked_trajs.emplace(1.0, std::move(second));
    splitTrajs(theRun(), detection(1));
    EXPECT_EQ(theRun().tracked_trajs.begin()->first, 0.75);
    EXPECT_EQ(theRun().tracked_trajs.begin()->second->rt->num, 1);
}

// A model without constraints is never split.
TEST_F(SplitRoom, WithoutConstraintsACandidateStaysOne) {
    theRun().hybNT->rt->gV.clear();
    variable(theRun().hybNT->rt.get(), "room.x")->old = makeRange(9.0, 18.0, 1, 1);
    theRun().hybNT->rt->valSpc = {0, 0, 0, 0};
    for (RunOptions const& options : {detection(1), simulation(1), simulation(0)}) {
        splitTrajs(theRun(), options);
        ASSERT_EQ(theRun().tracked_trajs.size(), 1u);
        EXPECT_EQ(theRun().tracked_trajs.begin()->second->rt->num, 0);
    }
}

TEST_F(SplitRoom, TheSplitRuntimesCanBeDropped) {
    s_runtime* rt = theRun().hybNT->rt.get();
    variable(rt, "room.x")->old = makeRange(9.0, 18.0, 1, 1);
    sn_splitValiditySpc(rt);
    ASSERT_EQ(theRun().engine.nrt.size(), 3u);
    // A runtime that was placed twice is destroyed once.
    theRun().engine.nrt.insert(
        {theRun().engine.nrt.rbegin()->first, theRun().engine.nrt.rbegin()->second});
    clearNrt(theRun(), rt);
    EXPECT_TRUE(theRun().engine.nrt.empty());
    EXPECT_EQ(rt->num, 0);  // still there
}

// ---- In a run ----

// Measures of 0.75 are inside as long as x is below 11; the sixth brings x over 10 in parts.
TEST_F(SplitRoom, ARunSplitsAtTenAndMergesAgain) {
    std::vector<double> const measures = {0.95, 0.9, 0.85, 0.8, 0.75, 0.75, 0.75, 0.7, 0.6};
    double sum = 0.0;
    for (std::size_t k = 1; k < measures.size(); ++k) {
        sum += measures[k - 1];
        double const inf = 4.0 + 0.95 * sum, sup = 4.0 + 1.05 * sum;
        std::string const told = run->cycle(detection(1), static_cast<double>(k), measures[k]).err;
        bool const enters = inf < 10.0 && sup > 10.0;
        EXPECT_EQ(told, sup > 10.0 && inf - 0.95 * measures[k - 1] < 10.0 ? "room.c1=c11\n" : "")
            << k;
        ASSERT_EQ(theRun().tracked_trajs.size(), enters ? 2u : 1u) << k;
        s_runtime const* first = theRun().tracked_trajs.begin()->second->rt.get();
        s_runtime const* last = theRun().tracked_trajs.rbegin()->second->rt.get();
        // Together they cover what the measures allow, however often it was split and merged.
        EXPECT_NEAR(sn_infOf(valueOf(first, "room.x")), inf, 1e-9) << k;
        EXPECT_NEAR(sn_supOf(valueOf(last, "room.x")), sup, 1e-9) << k;
        EXPECT_EQ(spaceOf(theRun().tracked_trajs.begin()->second.get()), inf < 10.0 ? "c10" : "c11")
            << k;
        EXPECT_EQ(spaceOf(theRun().tracked_trajs.rbegin()->second.get()),
                  sup > 10.0 ? "c11" : "c10")
            << k;
    }
}

}  // namespace
