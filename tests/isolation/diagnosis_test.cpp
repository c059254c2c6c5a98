// Diagnoses at the three levels on causal graphs made by hand, and the memory of known
// misbehaviours between them.
//
// Most graphs are those of a tank: what fills it, and one sensor behind another that reads it. The
// suspects of a sensor are its own link and the filling, at the delay of the link.
#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

// A tank, filled from an input, and sensors that read it, each with a delay of its own.
class Tank {
public:
    explicit Tank(std::vector<int> const& delays) {
        for (std::size_t i = 0; i < delays.size(); ++i) {
            std::string const number = std::to_string(i + 1);
            graph.link("s" + number, level, graph.measure("y" + number), delays[i]);
        }
        graph.link("fill", graph.input("u"), level);
    }
    // The measures that misbehave, by number from 1.
    Tank& misbehaving(std::vector<int> const& numbers) {
        for (s_Variable* measure : graph.rt.measure)
            measure->mesmisb = 0;
        for (int const number : numbers)
            measure(number)->mesmisb = 1;
        return *this;
    }
    s_Variable* measure(int number) {
        return graph.rt.measure[static_cast<std::size_t>(number - 1)];
    }
    std::string at(int level) { return diagnosis(&graph.rt, level); }

    CausalGraph graph;

private:
    s_Variable* level = graph.variable("level");
};

// ---- The cases ----

TEST(Diagnosis, NoMisbehaviourLeavesTheTextAndTheSets) {
    Tank tank({0, 0, 0});
    tank.graph.rt.diagBuf = "[as it was]";
    tank.graph.rt.bridgeConflicts = {{nullptr}};
    tank.graph.rt.nbMisb = 7;
    for (int level : {1, 2, 3}) {
        hittingSetDiagnosis(&tank.graph.rt, level);
        EXPECT_EQ(tank.graph.rt.diagBuf, "[as it was]");
        EXPECT_EQ(tank.graph.rt.bridgeConflicts->size(), 1u);
        EXPECT_EQ(tank.graph.rt.nbMisb, 0);
        EXPECT_EQ(tank.graph.rt.nbNormal, 3);
    }
}

TEST(Diagnosis, WithoutMeasuresThereIsNone) {
    Tank tank({});
    EXPECT_EQ(tank.at(1), "");
    EXPECT_EQ(tank.graph.rt.bridgeConflicts, std::nullopt);
}

TEST(Diagnosis, CountsTheMeasures) {
    Tank tank({0, 0, 0});
    tank.misbehaving({1, 3}).at(1);
    EXPECT_EQ(tank.graph.rt.nbMisb, 2);
    EXPECT_EQ(tank.graph.rt.nbNormal, 1);
}

TEST(Diagnosis, OneMeasureGivesALeafPerSuspect) {
    CausalGraph graph;
    graph.measureOf("y", {"a", "b"}, 1);
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{a,0,()}][{b,0,()}]");
}

TEST(Diagnosis, TwoMeasuresShareASuspect) {
    CausalGraph graph;
    graph.measureOf("y", {"a", "b"}, 1);
    graph.measureOf("z", {"b", "c"}, 1);
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{b,0,()}][{a,0,()}{c,0,()}]");
}

// The set of z is empty: nothing could be wrong upstream of it.
TEST(Diagnosis, AMeasureWithoutSuspectsLeavesTheTree) {
    CausalGraph graph;
    graph.measureOf("x", {}, 1);
    graph.measureOf("y", {"a"}, 1);
    graph.link("off", graph.input("u"), graph.measure("z", 1))->condHisto[0] = 0;
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{a,0,()}]");
}

TEST(Diagnosis, WithoutAnySuspectTheTextIsEmpty) {
    CausalGraph graph;
    graph.measureOf("y", {}, 1);
    for (int level : {1, 2, 3}) {
        EXPECT_EQ(diagnosis(&graph.rt, level), "");
        ASSERT_NE(graph.rt.bridgeConflicts, std::nullopt);
        EXPECT_TRUE(graph.rt.bridgeConflicts->empty());
    }
}

// ---- The levels on the tank ----

// y1 and y2 misbehave. The common filling, or both sensors.
TEST(Levels, OneTakesTheMisbehavingMeasuresAlone) {
    Tank tank({0, 0, 0});
    EXPECT_EQ(tank.misbehaving({1, 2}).at(1), "[{fill,0,()}][{s1,0,()}{s2,0,()}]");
    EXPECT_EQ(Tank({0, 0}).misbehaving({1, 2}).at(1), "[{fill,0,()}][{s1,0,()}{s2,0,()}]")
        << "a behaving measure makes no difference";
}

// y3 behaves: were it the filling, it would show there, unless s3 makes up for it. Soft sets are
// {s1, s3} and {s2, s3}. The tree grows by {s1, fill}, {s1, s3}, {s2, fill}, {s2, s3}:
//   [s1] [fill]; [s1] [fill s3]; [fill s3] [s1 s2] [s1 fill];
//   [fill s3] [s1 s2], where both of [s1 fill s2] and [s1 fill s3] are closed.
// s3 is soft, so the two sensors come first.
TEST(Levels, TwoAddsWhatABehavingMeasureTells) {
    Tank tank({0, 0, 0});
    EXPECT_EQ(tank.misbehaving({1, 2}).at(2), "[{s1,0,()}{s2,0,()}][{fill,0,()}{s3,0,()}]");
}

TEST(Levels, ThreeDropsWhatABehavingMeasureExonerates) {
    Tank tank({0, 0, 0});
    EXPECT_EQ(tank.misbehaving({1, 2}).at(3), "[{s1,0,()}{s2,0,()}]");
}

// With two behaving sensors, s2 and s3 have to make up for the filling together. Soft sets are
// {s1, s2}, of both sensors {s1, s3, s2}, and {s1, s3}:
//   [s1] [fill]; [s1] [fill s2]; both stay; [fill s2] grows into [fill s2 s1], closed, and
//   [fill s2 s3].
TEST(Levels, TwoCompensatesInEveryBehavingMeasure) {
    Tank tank({0, 0, 0});
    EXPECT_EQ(tank.misbehaving({1}).at(2), "[{s1,0,()}][{fill,0,()}{s2,0,()}{s3,0,()}]");
}

TEST(Levels, WithEveryMeasureMisbehavingAllAreTheFirst) {
    Tank tank({1, 0});
    std::string const first = tank.misbehaving({1, 2}).at(1);
    EXPECT_EQ(first, "[{fill,1,()}][{s1,0,()}{s2,0,()}]");
    EXPECT_EQ(tank.at(2), first);
    EXPECT_EQ(tank.at(3), first);
}

// Two measures, {a, b} and {a, g}, and a behaving one, {a, c}.
// Level 1: [a] [b]; [a] [b g].
// Level 2: soft sets {b, c} and {g, c}. [a] [b]; [b] [a c]; by {a, g}: [a c] [b a] [b g]; by
// {g, c}: [a c] [b g], and both growths of [b a] are closed. c is soft.
// Level 3: a would show.
TEST(Levels, DifferOnOneCase) {
    CausalGraph graph;
    graph.measureOf("x", {"a", "b"}, 1);
    graph.measureOf("y", {"a", "g"}, 1);
    graph.measureOf("z", {"a", "c"});
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{a,0,()}][{b,0,()}{g,0,()}]");
    EXPECT_EQ(diagnosis(&graph.rt, 2), "[{b,0,()}{g,0,()}][{a,0,()}{c,0,()}]");
    EXPECT_EQ(diagnosis(&graph.rt, 3), "[{b,0,()}{g,0,()}]");
}

TEST(Levels, BehaveAlikeWithoutSharedSuspects) {
    CausalGraph graph;
    graph.measureOf("x", {"a", "b"}, 1);
    graph.measureOf("y", {"c"});
    for (int level : {1, 2, 3})
        EXPECT_EQ(diagnosis(&graph.rt, level), "[{a,0,()}][{b,0,()}]");
}

// Of three equal leaves the sort exchanges the first with the middle one. The second level alone
// sorts.
TEST(Levels, OnlyTheSecondSortsItsLeaves) {
    CausalGraph graph;
    graph.measureOf("x", {"a", "b", "c"}, 1);
    graph.measureOf("y", {"z"});
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{a,0,()}][{b,0,()}][{c,0,()}]");
    EXPECT_EQ(diagnosis(&graph.rt, 2), "[{b,0,()}][{a,0,()}][{c,0,()}]");
    EXPECT_EQ(diagnosis(&graph.rt, 3), "[{a,0,()}][{b,0,()}][{c,0,()}]");
}

// A measure with the same suspects: at level 2 its soft set is empty and leaves the tree.
TEST(Levels, ABehavingTwinExoneratesAllAtLevelThreeOnly) {
    CausalGraph graph;
    graph.measureOf("x", {"a", "b"}, 1);
    graph.measureOf("y", {"b", "a"});
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{a,0,()}][{b,0,()}]");
    EXPECT_EQ(diagnosis(&graph.rt, 2), "[{a,0,()}][{b,0,()}]");
    EXPECT_EQ(diagnosis(&graph.rt, 3), "");
}

// The order of the measures is that of the runtime, whether they misbehave or not.
TEST(Levels, MeasuresAreTakenInTheirOrder) {
    CausalGraph graph;
    graph.measureOf("w", {"b", "d"});
    graph.measureOf("x", {"b", "c"}, 1);
    graph.measureOf("y", {"z"});
    graph.measureOf("z", {"a", "b"}, 1);
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{b,0,()}][{c,0,()}{a,0,()}]");
    EXPECT_EQ(diagnosis(&graph.rt, 3), "[{c,0,()}{a,0,()}]");
}

// ---- Delays ----

// y1 sees the filling two cycles later, y2 three. A leaf keeps the delay of the first set.
TEST(Delays, ALeafShowsThatOfTheSetWhereItBegan) {
    EXPECT_EQ(Tank({2, 3}).misbehaving({1, 2}).at(1), "[{fill,2,()}][{s1,0,()}{s2,0,()}]");
    EXPECT_EQ(Tank({3, 2}).misbehaving({1, 2}).at(1), "[{fill,3,()}][{s1,0,()}{s2,0,()}]");
}

// y2 behaves, and sees the filling sooner than y1, or later.
TEST(Delays, DecideWhetherABehavingMeasureWouldHaveShown) {
    EXPECT_EQ(Tank({2, 1}).misbehaving({1}).at(3), "[{s1,0,()}]");
    EXPECT_EQ(Tank({2, 2}).misbehaving({1}).at(3), "[{s1,0,()}]");
    EXPECT_EQ(Tank({2, 3}).misbehaving({1}).at(3), "[{s1,0,()}][{fill,2,()}]");
}

TEST(Delays, PlayNoPartAtTheOtherLevels) {
    for (int other : {1, 2, 3}) {
        Tank tank({2, other});
        EXPECT_EQ(tank.misbehaving({1}).at(1), "[{s1,0,()}][{fill,2,()}]");
        EXPECT_EQ(tank.at(2), "[{s1,0,()}][{fill,2,()}{s2,0,()}]");
    }
}

// A pump is upstream of two behaving measures, at delays 1 and 3, and not of y1, which shares a
// with both: y1 {a}; yb {a, b, pump@1}; yc {a, c, pump@3}.
//   Soft sets: {b, pump@1}, of both {c, pump@3, b}, {c, pump@3}.
//   [a]; [a b] [a pump@1]; both stay; [a pump@1] stays, [a b] grows into [a b c] and, closed,
//   [a b pump@3]. Soft are b, c and pump: one against two.
TEST(Delays, ASoftSuspectShowsThatOfItsOwnSet) {
    CausalGraph graph;
    graph.measureOf("y1", {"a"}, 1);
    s_Variable* flow = graph.variable("flow");
    int delay = 1;
    for (char const* link : {"b", "c"}) {
        s_Variable* measure = graph.measureOf(std::string("y") + link, {"a"});
        graph.link(link, flow, measure, delay);
        delay += 2;
    }
    graph.link("pump", graph.input("u"), flow);
    EXPECT_EQ(diagnosis(&graph.rt, 2), "[{a,0,()}{pump,1,()}][{a,0,()}{b,0,()}{c,0,()}]");
}

// ---- Activity and paths ----

// The heater is a cause of the level only while it is on.
TEST(Paths, AnInactiveInfluenceIsNoSuspectAtAnyLevel) {
    Tank tank({0, 0});
    s_Variable* level = tank.graph.rt.dico[0].get();
    s_Influence* heater = tank.graph.link("heater", tank.graph.input("v"), level);
    EXPECT_EQ(tank.misbehaving({1}).at(1), "[{s1,0,()}][{fill,0,()}][{heater,0,()}]");
    heater->condHisto[0] = 0;
    EXPECT_EQ(tank.at(1), "[{s1,0,()}][{fill,0,()}]");
    EXPECT_EQ(tank.at(2), "[{s1,0,()}][{fill,0,()}{s2,0,()}]");
    EXPECT_EQ(tank.at(3), "[{s1,0,()}]");
}

// y1 misbehaves, and reads the level two cycles late; y2 reads it at once. The valve was open then
// and is shut now, so that y2 does not know of it.
TEST(Paths, ActivityIsThatOfTheDelayOfEachMeasure) {
    Tank tank({2, 0});
    s_Variable* level = tank.graph.rt.dico[0].get();
    s_Influence* valve = tank.graph.link("valve", tank.graph.input("v"), level);
    valve->condHisto = {0, 0, 1, 1, 1, 1, 1, 1};
    EXPECT_EQ(tank.misbehaving({1}).at(3), "[{s1,0,()}][{valve,2,()}]");
}

// One valve feeds both chambers that the measure reads, one at once and one three cycles late.
TEST(Paths, AnInfluenceOfTwoPathsIsOneSuspectAtTheHigherDelay) {
    CausalGraph graph;
    s_Variable* y = graph.measure("y", 1);
    s_Variable *near = graph.variable("near"), *far = graph.variable("far");
    graph.link("n", near, y);
    graph.link("f", far, y, 3);
    graph.link("valve", graph.input("u"), near);
    graph.link("valve", graph.rt.input[0], far);
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{n,0,()}][{valve,3,()}][{f,0,()}]");
    // A behaving measure on the near chamber exonerates it as well.
    graph.link("m", near, graph.measure("z"));
    EXPECT_EQ(diagnosis(&graph.rt, 3), "[{n,0,()}][{f,0,()}]");
}

// The walk ends at a measure, so a second sensor in a row accuses only what lies between.
TEST(Paths, AMeasureUpstreamIsTrusted) {
    CausalGraph graph;
    s_Variable *y = graph.measure("y", 1), *z = graph.measure("z");
    graph.link("y<z", z, y);
    graph.link("z<u", graph.input("u"), z);
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{y<z,0,()}]");
    z->mesmisb = 1;
    EXPECT_EQ(diagnosis(&graph.rt, 1), "[{y<z,0,()}{z<u,0,()}]") << "also when it misbehaves";
}

}  // namespace
