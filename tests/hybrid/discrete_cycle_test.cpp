// The discrete step of all candidates: who is stepped, who is checked, and where each one goes.
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

// Candidates of the reference room whose rate is [0, 1] and whose measure the test gives. All of
// them have the thermostat on, below 10.
class Walk : public testing::Test {
protected:
    Walk() : run(0.95) {
        run.cycle(detection(1), 1.0, 0.9);
        first = theRun().hybNT;
        set(*first, 0.5);
    }

    static void set(hybTrajectory const& candidate, double measure) {
        s_Variable* rate = variable(candidate.rt.get(), "room.xd");
        rate->old = rate->new_ = makeRange(0.0, 1.0, 1, 1);
        rate->mes = makeReal(measure);
    }
    // Adds a copy of the first candidate under a key.
    hybTrajectory* add(double key, double measure) {
        auto copy = std::make_unique<hybTrajectory>(first, first->traj->getCurrentTime() + 1);
        set(*copy, measure);
        hybTrajectory* added = copy.get();
        theRun().tracked_trajs.emplace(key, std::move(copy));
        return added;
    }
    // The candidate's temperature is above 17, has been so for long, and raises the event.
    static void heatUp(hybTrajectory const& candidate) {
        s_runtime* rt = candidate.rt.get();
        s_Variable* temperature = variable(rt, "room.x");
        temperature->old = temperature->new_ = makeRange(18.0, 18.5, 1, 1);
        sn_fillHisto(temperature);
        rt->valSpc = {0, 0, 0, 1};
        rt->bridgeEvents.insert({true, ReferenceModel::atom("room.c1=c12")});
    }
    // Puts the first candidate under another key.
    static void rekey(double key) {
        auto node = theRun().tracked_trajs.extract(theRun().tracked_trajs.begin());
        node.key() = key;
        theRun().tracked_trajs.insert(std::move(node));
    }
    std::string step(RunOptions const& options, double time = 2.0) {
        return complaint([&] { tavroDiscreteCycle(theRun(), options, time, nominal); });
    }
    static std::vector<int> identities() {
        std::vector<int> found;
        for (auto const& entry : theRun().tracked_trajs)
            found.push_back(entry.second->rt->num);
        return found;
    }
    static std::vector<double> keys() {
        std::vector<double> found;
        for (auto const& entry : theRun().tracked_trajs)
            found.push_back(entry.first);
        return found;
    }
    using Identities = std::vector<int>;
    using Keys = std::vector<double>;

    RoomRun run;
    hybTrajectory* first = nullptr;  // identity 0, under key 0, the probability of its history
    bool nominal = false;
};

// ---- Detection: where the candidates go ----

TEST_F(Walk, NominalCandidatesStandOldestRuntimeFirst) {
    add(3.0, 0.5);
    add(2.0, 0.5);
    EXPECT_EQ(step(detection(1, RUN_NOMERGE)), "");
    EXPECT_TRUE(nominal);
    EXPECT_EQ(identities(), (Identities{0, 1, 2}));
    EXPECT_EQ(keys(), (Keys{0.0, -1.0, -2.0}));
    EXPECT_TRUE(theRun().ntrajs.empty());
    EXPECT_TRUE(theRun().misbtrajs.empty());
}

TEST_F(Walk, MisbehavingCandidatesGoWhenOneIsNominal) {
    set(*first, 5.0);
    add(1.0, 0.5);
    add(1.0, -5.0);
    unsigned const destroyed = theRun().scheduler.book.traj_del;
    EXPECT_EQ(step(detection(1)), "");
    EXPECT_TRUE(nominal);
    EXPECT_EQ(identities(), Identities{1});
    EXPECT_EQ(theRun().scheduler.book.traj_del, destroyed + 2);
}

TEST_F(Walk, WhenAllMisbehaveTheyAreTrackedByRank) {
    set(*first, 5.0);
    first->traj->rank = 1.0;
    add(0.0, 5.0)->traj->rank = 3.0;
    add(0.0, -5.0)->traj->rank = 1.0;
    EXPECT_EQ(step(detection(1, RUN_NOMERGE)), "all trajs misbehave !\n");
    EXPECT_FALSE(nominal);
    EXPECT_EQ(keys(), (Keys{3.0, 1.0, 1.0}));
    EXPECT_EQ(identities(), (Identities{1, 0, 2}));  // equal ranks in the order of the walk
    EXPECT_TRUE(theRun().misbtrajs.empty());
}

TEST_F(Walk, EqualCandidatesAreMergedUnlessToldOtherwise) {
    add(1.0, 0.5);
    step(detection(1, RUN_NOMERGE));
    EXPECT_EQ(theRun().tracked_trajs.size(), 2u);
    step(detection(1, RUN_DETECT));
    EXPECT_EQ(identities(), Identities{0});
}

TEST_F(Walk, CandidatesOfOtherModesAreNotMerged) {
    hybTrajectory const* other = add(1.0, 0.5);
    other->traj->getLastState()->getElt("thermostat.mode=on")->setLabel("unknown");
    step(detection(1));
    EXPECT_EQ(theRun().tracked_trajs.size(), 2u);
}

TEST_F(Walk, TheThresholdIsThatOfTheRun) {
    set(*first, 5.0);
    EXPECT_EQ(step(detection(2)), "");
    EXPECT_EQ(step(detection(2)), "all trajs misbehave !\n");
}

TEST_F(Walk, MisbehavingCandidatesStayApartAndTheirNumberHasNoLimit) {
    set(*first, 5.0);
    for (int i = 1; i < 300; ++i)
        add(0.0, 5.0);
    // Once per run the user is told what would help.
    EXPECT_EQ(step(detection(1)),
              "all trajs misbehave !\nMore than 100 candidates are followed and none agrees: "
              "--candidates=N would follow the N likeliest.\n");
    EXPECT_EQ(theRun().tracked_trajs.size(), 300u);
    EXPECT_FALSE(nominal);
    EXPECT_EQ(step(detection(1, RUN_NOMERGE)), "all trajs misbehave !\n");
    EXPECT_EQ(theRun().tracked_trajs.size(), 300u);
}

// ---- Simulation ----

TEST_F(Walk, InASimulationEveryCandidateStaysWhereItIs) {
    hybTrajectory const* second = add(-0.5, 0.5);
    set(*first, 5.0);
    EXPECT_EQ(step(simulation(1)), "");
    EXPECT_TRUE(nominal);
    EXPECT_EQ(keys(), (Keys{0.0, -0.5}));
    EXPECT_EQ(theRun().tracked_trajs.begin()->second.get(), first);
    EXPECT_EQ(theRun().tracked_trajs.rbegin()->second.get(), second);
}

TEST_F(Walk, AMisbehavingSimulationGoesOn) {
    set(*first, 5.0);
    RunOptions options = simulation(0);
    options.threshold = 1;
    EXPECT_EQ(step(options), "");
    EXPECT_FALSE(nominal);
    EXPECT_TRUE(isMisb(first->rt.get()));
    EXPECT_EQ(identities(), Identities{0});
    EXPECT_TRUE(theRun().misbtrajs.empty());
    EXPECT_TRUE(theRun().ntrajs.empty());
}

// ---- The step of one candidate ----

TEST_F(Walk, EventsGoUpAndTruthComesDown) {
    s_runtime* rt = first->rt.get();
    rt->bridgeEvents.insert({true, ReferenceModel::atom("room.c1=c11")});
    int const before = first->traj->getCurrentTime();
    EXPECT_EQ(step(detection(1)), "room.c1=c11\n");
    hybTrajectory const* candidate = theRun().tracked_trajs.begin()->second.get();
    EXPECT_EQ(candidate, first);
    EXPECT_EQ(candidate->traj->getCurrentTime(), before + 1);
    EXPECT_EQ(spaceOf(candidate), "c11");
    EXPECT_EQ(rt->condi[9]->val, 1);
    EXPECT_EQ(rt->condi[10]->val, 0);
    EXPECT_EQ(rt->tStart, before + 1.0);
    EXPECT_TRUE(rt->bridgeEvents.empty());
    EXPECT_TRUE(rt->bridgeConds.empty());
}

TEST_F(Walk, ARuntimeOfThisStepSkipsTheDiscreteSideAndIsChecked) {
    s_runtime* rt = first->rt.get();
    set(*first, 5.0);
    rt->bridgeEvents.insert({true, ReferenceModel::atom("room.c1=c11")});
    rt->num = 9;
    theRun().engine.rt_num = 8;
    int const before = first->traj->getCurrentTime();
    EXPECT_EQ(step(detection(1)), "all trajs misbehave !\n");
    EXPECT_EQ(first->traj->getCurrentTime(), before);
    EXPECT_EQ(rt->meshighmisb[0], 1);
    EXPECT_TRUE(rt->bridgeEvents.empty());
    EXPECT_TRUE(theRun().sMM->contCommands.empty());
}

TEST_F(Walk, AnIdentityAtTheLimitTakesTheDiscreteSide) {
    first->rt->bridgeEvents.insert({true, ReferenceModel::atom("room.c1=c11")});
    first->rt->num = 8;
    theRun().engine.rt_num = 8;
    EXPECT_EQ(step(detection(1)), "room.c1=c11\n");
}

TEST_F(Walk, TheDisplayRowIsThatOfTheTime) {
    first->rt->dinfval = {0.25, 3.0};
    first->rt->dsupval = {0.75, 4.0};
    first->rt->Ts = 0.5;
    step(detection(1), 2.0);  // row 4: twelve values stand before it
    s_runtime const* rt = theRun().tracked_trajs.begin()->second->rt.get();
    EXPECT_EQ(rt->extra[11], 0.0);
    EXPECT_EQ(rt->extra[12], 0.25);
    EXPECT_EQ(rt->extra[13], 0.75);
    EXPECT_EQ(rt->extra[14], 3.0);
    EXPECT_EQ(rt->extra[15], 4.0);
}

// ---- A change of mode ----

TEST_F(Walk, AModeChangeRebuildsTheCandidateBehindItsEquals) {
    heatUp(*first);
    hybTrajectory const* second = add(0.0, 0.5);
    second->rt->bridgeEvents.clear();
    variable(second->rt.get(), "room.x")->old = makeRange(5.0, 6.0, 1, 1);
    EXPECT_EQ(step(simulation(1)), "room.c1=c12\n");
    EXPECT_EQ(identities(), (Identities{1, 0}));
    EXPECT_EQ(thermostatOf(theRun().tracked_trajs.begin()->second.get()), "on");
    hybTrajectory const* rebuilt = theRun().tracked_trajs.rbegin()->second.get();
    EXPECT_EQ(thermostatOf(rebuilt), "off");
    EXPECT_NE(rebuilt, first);
    // Its runtime knows the new mode.
    EXPECT_EQ(rebuilt->rt->condi[0]->val, 1);
    EXPECT_EQ(rebuilt->rt->condi[1]->val, 0);
    EXPECT_TRUE(rebuilt->rt->bridgeTrans.empty());
}

// x = [18, 18.5] + [0, 1] * [0.95, 1.05]; xdq is computed from the temperature one cycle ago.
TEST_F(Walk, InASimulationTheNewModeAdvancesWhatIsNotAssigned) {
    heatUp(*first);
    step(simulation(1));
    s_runtime const* rt = theRun().tracked_trajs.begin()->second->rt.get();
    expectBounds(valueOf(rt, "room.x"), 18.0, 19.55);
    // Not heating: 4 less the new temperature.
    expectBounds(valueOf(rt, "room.xdq"), 4.0 - 19.55, 4.0 - 18.0);
}

TEST_F(Walk, ARebuiltCandidateIsCheckedInTheSameWalk) {
    heatUp(*first);
    EXPECT_EQ(step(detection(1)), "room.c1=c12\n");
    EXPECT_TRUE(nominal);
    ASSERT_EQ(identities(), Identities{0});
    EXPECT_EQ(thermostatOf(theRun().tracked_trajs.begin()->second.get()), "off");
    // The display row of the cycle is that of the rebuilt candidate: its temperature covers
    // [18, 18.5] and one measured step of 0.95 from it.
    s_runtime const* rt = theRun().tracked_trajs.begin()->second->rt.get();
    EXPECT_NEAR(rt->extra[6], 18.0, 1e-9);
    EXPECT_NEAR(rt->extra[7], 18.5 + 0.95 * 1.05, 1e-9);
}

TEST_F(Walk, ARebuiltCandidateMayMisbehave) {
    heatUp(*first);
    set(*first, 5.0);
    EXPECT_EQ(step(detection(1)), "room.c1=c12\nall trajs misbehave !\n");
    EXPECT_EQ(identities(), Identities{0});
}

// The rebuilt candidate stands under the probability of its history, 0, before the key -1: the walk
// has passed that place.
TEST_F(Walk, ACandidateRebuiltBeforeThePlaceOfTheWalkIsLostToDetection) {
    heatUp(*first);
    rekey(-1.0);
    add(-1.0, 0.5)->rt->bridgeEvents.clear();
    EXPECT_EQ(step(detection(1)), "room.c1=c12\n");
    EXPECT_TRUE(nominal);
    EXPECT_EQ(identities(), Identities{1});
}

TEST_F(Walk, AModeChangeOfTheLastCandidateEndsTheWalk) {
    heatUp(*first);
    rekey(-1.0);
    EXPECT_EQ(step(simulation(1)), "room.c1=c12\n");
    // It is tracked, but it was not visited again: nothing is nominal, no row was kept.
    EXPECT_FALSE(nominal);
    EXPECT_EQ(keys(), Keys{0.0});
    EXPECT_EQ(theRun().tracked_trajs.begin()->second->rt->extra[7], 0.0);
}

TEST_F(Walk, ARunWithoutCandidatesIsNotInitialised) {
    heatUp(*first);
    rekey(-1.0);
    EXPECT_EQ(step(detection(1)), "room.c1=c12\nall trajs misbehave !\n");
    EXPECT_TRUE(theRun().tracked_trajs.empty());
    run.cycle(detection(1), 3.0, 0.5);
    EXPECT_EQ(theRun().hybNT, nullptr);
}

// The rebuilt candidates of a split mode change: x covers 16 to 18, in three pieces of identities
// 0, which takes the discrete step again, and what the split added.
TEST_F(Walk, AModeChangeMaySplit) {
    heatUp(*first);
    s_Variable* temperature = variable(first->rt.get(), "room.x");
    temperature->old = temperature->new_ = makeRange(16.0, 18.5, 1, 1);
    EXPECT_EQ(step(detection(1, RUN_NOMERGE)), "room.c1=c12\n");
    // 0 keeps the part above 17, the copy made after the one for the cycle before, 2, the other.
    EXPECT_EQ(identities(), (Identities{0, 2}));
    hybTrajectory const* above = theRun().tracked_trajs.begin()->second.get();
    hybTrajectory const* below = theRun().tracked_trajs.rbegin()->second.get();
    EXPECT_EQ(sn_infOf(valueOf(above->rt.get(), "room.x")), 17.0);
    EXPECT_EQ(sn_supOf(valueOf(below->rt.get(), "room.x")), 17.0);
    EXPECT_EQ(thermostatOf(above), "off");
    EXPECT_EQ(thermostatOf(below), "off");
    // The copy is one of this step: its new space waits for no discrete step of its own.
    EXPECT_EQ(spaceOf(below), "c12");
    EXPECT_EQ(below->rt->condi[9]->val, 1);
    EXPECT_TRUE(below->rt->bridgeEvents.empty());
}

// ---- Dated commands ----

int occurrences(std::string const& text, std::string const& line) {
    int found = 0;
    for (auto at = text.find(line); at != std::string::npos; at = text.find(line, at + 1))
        ++found;
    return found;
}

// The command changes the mode, so each candidate is rebuilt and passes the discrete step again.
TEST_F(Walk, ADatedCommandReachesEveryCandidateOnce) {
    add(0.0, 0.5);
    add(0.0, 0.5);
    theRun().sMM->scenario[2.0] =
        std::make_unique<scenarEvent>(scenarEvent{true, {ReferenceModel::atom("room.cmdin=open")}});
    std::string const told = step(detection(1, RUN_NOMERGE));
    EXPECT_EQ(occurrences(told, "room.cmdin=open\n"), 3);
    EXPECT_EQ(told.find("Error"), std::string::npos);
    ASSERT_EQ(theRun().tracked_trajs.size(), 3u);
    for (auto const& entry : theRun().tracked_trajs) {
        EXPECT_EQ(windowOf(entry.second.get()), "open");
        EXPECT_EQ(entry.second->rt->condi[12]->val, 1);
        EXPECT_EQ(entry.second->rt->condi[11]->val, 0);
    }
    EXPECT_EQ(complaint([] { theRun().sMM->reportUnmetEvents(1000.0); }), "");
    // And not again at another time.
    EXPECT_EQ(step(detection(1, RUN_NOMERGE), 3.0), "");
}

TEST_F(Walk, AnImpossibleDatedCommandIsToldForEveryCandidate) {
    add(0.0, 0.5);
    theRun().sMM->scenario[2.0] = std::make_unique<scenarEvent>(
        scenarEvent{true, {ReferenceModel::atom("thermostat.mode=stuck_on")}});
    std::string const told = step(detection(1, RUN_NOMERGE));
    EXPECT_EQ(occurrences(told, "thermostat.mode=stuck_on\n"), 2);
    EXPECT_EQ(occurrences(told, "no valid state found."), 2);
    ASSERT_EQ(theRun().tracked_trajs.size(), 2u);
    for (auto const& entry : theRun().tracked_trajs)
        EXPECT_EQ(thermostatOf(entry.second.get()), "on");
}

// The empty state that a command step begins with goes when the step fails: last states without
// elements would be equal, and one of the candidates lost.
TEST_F(Walk, CandidatesThatDifferStayApartAfterAnImpossibleCommand) {
    hybTrajectory const* other = add(1.0, 0.5);
    other->traj->getLastState()->getElt("thermostat.mode=on")->setLabel("unknown");
    int const before = first->traj->getCurrentTime();
    theRun().sMM->scenario[2.0] = std::make_unique<scenarEvent>(scenarEvent{
        true, {ReferenceModel::atom("room.cmdin=close"), ReferenceModel::atom("room.cmdin=none")}});
    std::string const told = step(detection(1));
    EXPECT_EQ(occurrences(told, "no valid state found."), 2);
    ASSERT_EQ(theRun().tracked_trajs.size(), 2u);
    for (auto const& entry : theRun().tracked_trajs) {
        EXPECT_EQ(entry.second->traj->getCurrentTime(), before);
        EXPECT_EQ(entry.second->rt->tStart, before);
    }
}

}  // namespace
