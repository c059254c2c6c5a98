// Misbehaviour, and the merging of candidates that have become the same.
#include "continuous/model_parts.h"
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

// A runtime with two measured variables, one that is not, and a parameter; one display, the first.
std::unique_ptr<s_runtime> gauges() {
    auto rt = std::make_unique<s_runtime>();
    rt->engine = &theRun().engine;
    for (char const* name : {"a", "b", "c"})
        mkVariable(*rt, name, 3);
    mkParameter(*rt, "p", 4.0, 0);
    rt->measure = {rt->dico[0].get(), rt->dico[1].get()};
    rt->display = {rt->dico[0].get()};
    sizeArrays(*rt);
    return rt;
}

s_Objet range(double inf, double sup) {
    return makeRange(inf, sup, 1, 1);
}

void give(s_runtime& rt, s_Objet const& a, s_Objet const& b, s_Objet const& c) {
    rt.dico[0]->old = a;
    rt.dico[1]->old = b;
    rt.dico[2]->old = c;
}

TEST(Misbehaviour, OneMeasureOnOneSideIsEnough) {
    auto rt = gauges();
    EXPECT_FALSE(isMisb(rt.get()));
    rt->meslowmisb = {0, 1};
    EXPECT_TRUE(isMisb(rt.get()));
    rt->meslowmisb = {0, 0};
    rt->meshighmisb = {1, 0};
    EXPECT_TRUE(isMisb(rt.get()));
    rt->meshighmisb = {0, 0};
    rt->mesmisb = {1, 1};  // the arrays of the two sides alone count
    rt->lowalarm = {2, 2};
    EXPECT_FALSE(isMisb(rt.get()));
}

TEST(Overlap, OneMeasureThatOverlapsIsEnoughAndItsUnionStays) {
    auto one = gauges(), other = gauges();
    give(*one, range(0, 2), range(10, 11), range(0, 1));
    give(*other, range(1, 3), range(20, 21), range(5, 6));
    one->dico[0]->defined = one->dico[1]->defined = 0;
    EXPECT_TRUE(intersectObsRt(one.get(), other.get()));
    expectBounds(one->dico[0]->old, 0, 3);
    EXPECT_EQ(one->dico[0]->defined, 1);
    // The second lies apart: it is left alone, and takes nothing back.
    expectBounds(one->dico[1]->old, 10, 11);
    EXPECT_EQ(one->dico[1]->defined, 0);
    // What is not measured plays no part.
    expectBounds(one->dico[2]->old, 0, 1);
    expectBounds(other->dico[0]->old, 1, 3);
}

TEST(Overlap, WithoutAnOverlapNothingChanges) {
    auto one = gauges(), other = gauges();
    give(*one, range(0, 1), range(10, 11), range(0, 9));
    give(*other, range(2, 3), range(20, 21), range(0, 9));
    EXPECT_FALSE(intersectObsRt(one.get(), other.get()));
    expectBounds(one->dico[0]->old, 0, 1);
    expectBounds(one->dico[1]->old, 10, 11);
}

TEST(Overlap, EqualValuesOverlap) {
    auto one = gauges(), other = gauges();
    give(*one, makeReal(2.0), range(10, 11), range(0, 1));
    give(*other, makeReal(2.0), range(20, 21), range(0, 1));
    EXPECT_TRUE(intersectObsRt(one.get(), other.get()));
    // Open intervals of one point do not meet, but they are equal.
    give(*one, makeRange(2.0, 2.0, 0, 0), range(10, 11), range(0, 1));
    give(*other, makeRange(2.0, 2.0, 0, 0), range(20, 21), range(0, 1));
    EXPECT_TRUE(intersectObsRt(one.get(), other.get()));
}

TEST(Merge, EveryValueCoversBoth) {
    auto one = gauges(), other = gauges();
    give(*one, range(0, 2), range(10, 11), makeReal(1.0));
    give(*other, range(1, 3), range(8, 9), makeReal(4.0));
    mergeRuntimes(one.get(), other.get(), 1.0);
    expectBounds(one->dico[0]->old, 0, 3);
    expectBounds(one->dico[1]->old, 8, 11);
    expectBounds(one->dico[2]->old, 1, 4);
    EXPECT_EQ(one->dico[3]->old.real, 4.0);  // the parameter is the same in both
    // The current displays are those of the merged values.
    EXPECT_EQ(one->dinfval[0], 0.0);
    EXPECT_EQ(one->dsupval[0], 3.0);
}

// One display: a row is two values, and the time counts rows.
TEST(Merge, TheRowsUpToTheTimeCoverBoth) {
    auto one = gauges(), other = gauges();
    one->extra.resize(8);
    other->extra.resize(8);
    for (int row = 0; row < 4; ++row) {
        one->extra.set(2 * row, 10.0 + row);
        one->extra.set(2 * row + 1, 20.0 + row);
        other->extra.set(2 * row, row % 2 == 0 ? 5.0 : 15.0);
        other->extra.set(2 * row + 1, row % 2 == 0 ? 15.0 : 25.0);
    }
    mergeRuntimes(one.get(), other.get(), 3.0);
    double const expected[] = {5.0, 20.0, 11.0, 25.0, 5.0, 22.0, 13.0, 23.0};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(one->extra[i], expected[i]) << i;
    EXPECT_EQ(other->extra[0], 5.0);
    EXPECT_EQ(other->extra[1], 15.0);
}

// Half a row begun is a row: the pair starts below 2 * time.
TEST(Merge, ATimeBetweenRowsCountsTheRowBegun) {
    auto one = gauges(), other = gauges();
    for (auto* rt : {one.get(), other.get()})
        rt->extra.resize(8);
    for (int i = 1; i < 8; i += 2)
        other->extra.set(i, 1.0);
    mergeRuntimes(one.get(), other.get(), 1.2);
    EXPECT_EQ(one->extra[1], 1.0);
    EXPECT_EQ(one->extra[3], 1.0);  // 2 is below 2.4
    EXPECT_EQ(one->extra[5], 0.0);
}

TEST(Merge, ATimeBeyondTheTableDoesNoHarm) {
    auto one = gauges(), other = gauges();
    one->extra.resize(4);
    other->extra.resize(4);
    other->extra.set(3, 7.0);
    mergeRuntimes(one.get(), other.get(), 1000.0);
    EXPECT_EQ(one->extra[3], 7.0);
    mergeRuntimes(one.get(), other.get(), -1.0);
    EXPECT_EQ(one->extra.size(), 4);
}

// ---- Of the tracked candidates ----

class Redux : public testing::Test {
protected:
    explicit Redux(char const* rules = "classic") : settings(withRules(rules)), run(0.95) {}

    // Adds a copy of the first candidate with those bounds of the rate and of the temperature.
    hybTrajectory& add(double rateInf, double rateSup, double tempInf, double tempSup) {
        auto copy = std::make_unique<hybTrajectory>(theRun().hybNT,
                                                    theRun().hybNT->traj->getCurrentTime() + 1);
        variable(copy->rt.get(), "room.xd")->old = range(rateInf, rateSup);
        variable(copy->rt.get(), "room.x")->old = range(tempInf, tempSup);
        hybTrajectory& added = *copy;
        candidates.emplace(-static_cast<double>(copy->rt->num), std::move(copy));
        return added;
    }
    std::vector<int> identities() const {
        std::vector<int> found;
        for (auto const& entry : candidates)
            found.push_back(entry.second->rt->num);
        return found;
    }

    WithSettings settings;
    RoomRun run;
    HybMap candidates;
};

TEST_F(Redux, EqualCandidatesBecomeOne) {
    hybTrajectory const& kept = add(0.0, 1.0, 4.0, 5.0);
    add(0.5, 2.0, 7.0, 8.0);
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(identities(), std::vector<int>{1});
    expectBounds(valueOf(kept.rt.get(), "room.xd"), 0.0, 2.0);
    // The temperatures lie apart; the hull covers both.
    expectBounds(valueOf(kept.rt.get(), "room.x"), 4.0, 8.0);
}

TEST_F(Redux, WithoutAnOverlappingMeasureTheyStayApart) {
    add(0.0, 1.0, 4.0, 5.0);
    add(2.0, 3.0, 4.0, 5.0);
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(identities(), (std::vector<int>{1, 2}));
}

TEST_F(Redux, OtherLastStatesStayApart) {
    add(0.0, 1.0, 4.0, 5.0);
    hybTrajectory const& other = add(0.0, 1.0, 4.0, 5.0);
    other.traj->getLastState()->getElt("thermostat.mode=on")->setLabel("false");
    other.traj->getLastState()->getElt("thermostat.mode=stuck_on")->setLabel("true");
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(candidates.size(), 2u);
}

// The first meets the third only after it has taken in the second.
TEST_F(Redux, AMergedCandidateGoesOnMerging) {
    hybTrajectory const& kept = add(0.0, 1.0, 4.0, 5.0);
    add(0.5, 2.0, 4.0, 5.0);
    add(1.5, 3.0, 4.0, 5.0);
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(identities(), std::vector<int>{1});
    expectBounds(valueOf(kept.rt.get(), "room.xd"), 0.0, 3.0);
}

// The first and the second do not meet, so each keeps its own partner.
TEST_F(Redux, EveryCandidateIsComparedWithAllThatFollow) {
    add(0.0, 1.0, 4.0, 5.0);
    add(10.0, 11.0, 4.0, 5.0);
    add(0.5, 2.0, 4.0, 5.0);
    add(10.5, 12.0, 4.0, 5.0);
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(identities(), (std::vector<int>{1, 2}));
    auto at = candidates.begin();
    expectBounds(valueOf(at->second->rt.get(), "room.xd"), 0.0, 2.0);
    expectBounds(valueOf((++at)->second->rt.get(), "room.xd"), 10.0, 12.0);
}

TEST_F(Redux, OneCandidateOrNoneIsLeftAlone) {
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_TRUE(candidates.empty());
    add(0.0, 1.0, 4.0, 5.0);
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(candidates.size(), 1u);
}

// ---- Rule `regions` ----

// Every candidate has a last step in which nothing but the room is told, as after a threshold.
class Apart : public Redux {
protected:
    explicit Apart(char const* rules = "regions") : Redux(rules) {}

    hybTrajectory& addAtThreshold() {
        hybTrajectory& added = add(0.0, 1.0, 4.0, 5.0);
        Trajectory& history = *added.traj;
        int const next = history.getCurrentTime() + 1;
        streamsOf([&] {
            history.addState(next, std::make_unique<State>(theRun().scheduler.book));
            history.addComp(theComp("room"), history.getLastState(), next, true, false);
        });
        history.setTimeCorr(1.0);
        return added;
    }
    // The thermostat has been stuck since the step before.
    static void stick(hybTrajectory const& candidate) {
        Trajectory const& history = *candidate.traj;
        int const t = history.getCurrentTime();
        history.getElt("thermostat.mode=on", t, 0)->setLabel("false");
        history.getElt("thermostat.mode=stuck_on", t, 0)->setLabel("true");
    }
};
class ApartClassic : public Apart {
protected:
    ApartClassic() : Apart("classic") {}
};

TEST_F(Apart, EqualCandidatesBecomeOne) {
    addAtThreshold();
    addAtThreshold();
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(candidates.size(), 1u);
}

TEST_F(Apart, OtherSpacesStayApart) {
    addAtThreshold();
    addAtThreshold().rt->valSpc = {0, 1, 1, 0};
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(candidates.size(), 2u);
}

TEST_F(Apart, OtherModesOfAnEarlierStepStayApart) {
    addAtThreshold();
    stick(addAtThreshold());
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(candidates.size(), 2u);
}

TEST_F(ApartClassic, TheLastStateAloneCounts) {
    addAtThreshold();
    stick(addAtThreshold());
    addAtThreshold().rt->valSpc = {0, 1, 1, 0};
    sn_reduxTrajs(candidates, 1.0);
    EXPECT_EQ(candidates.size(), 1u);
}

}  // namespace
