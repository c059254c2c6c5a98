// The memory of known misbehaviours: when a diagnosis is made at all, when only new misbehaviours
// need a look, and what a diagnosis leaves behind.
#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

// Three measures with suspects a, b and c. In mode 0, with a place for each.
class Known : public testing::Test {
protected:
    Known() {
        for (char const* name : {"a", "b", "c"})
            graph.measureOf(std::string("y") + name, {name});
        faultIsolationSetup(rt, 0);
    }
    s_Variable* measure(std::size_t i) { return rt->measure[i]; }
    void misbehaving(std::vector<int> const& flags) {
        rt->nbMisb = 0;
        for (std::size_t i = 0; i < flags.size(); ++i) {
            measure(i)->mesmisb = flags[i];
            rt->nbMisb += flags[i];
        }
    }
    // As a diagnosis leaves them while it is under way.
    void known(std::vector<std::size_t> const& places) {
        rt->nbKnown = 0;
        for (std::size_t const i : places)
            rt->knownMisb[static_cast<std::size_t>(rt->nbKnown++)] = measure(i);
    }
    // The answer, and whether the look is incremental.
    std::string changed(int level) {
        bool incremental = false;
        bool const result = configurationHasChanged(rt, incremental, level);
        return std::string(result ? "changed" : "as before") + (incremental ? ", incremental" : "");
    }

    CausalGraph graph;
    s_runtime* rt = &graph.rt;
};

// ---- Setting up and ending ----

TEST_F(Known, ModeZeroHasAnEmptyPlaceForEachMeasure) {
    EXPECT_EQ(rt->isoMode, 0);
    EXPECT_EQ(rt->knownMisb, std::vector<s_Variable*>(3, nullptr));
    known({2});
    faultIsolationSetup(rt, 0);
    EXPECT_EQ(rt->knownMisb, std::vector<s_Variable*>(3, nullptr));
}

TEST_F(Known, ModeOneMakesNoPlaces) {
    rt->knownMisb.clear();
    faultIsolationSetup(rt, 1);
    EXPECT_EQ(rt->isoMode, 1);
    EXPECT_TRUE(rt->knownMisb.empty());
}

TEST_F(Known, TheEndReleasesThePlacesAndKeepsTheCount) {
    known({0, 1});
    faultIsolationEnd(rt);
    EXPECT_TRUE(rt->knownMisb.empty());
    EXPECT_EQ(rt->nbKnown, 2);
    EXPECT_EQ(rt->isoMode, 0);
}

TEST_F(Known, TheEndOfModeOneReleasesNothing) {
    rt->isoMode = 1;
    faultIsolationEnd(rt);
    EXPECT_EQ(rt->knownMisb.size(), 3u);
}

TEST_F(Known, ClosingIsTheEnd) {
    known({0});
    sorn_close(rt);
    EXPECT_TRUE(rt->knownMisb.empty());
    EXPECT_EQ(rt->nbKnown, 1);
    sorn_close(rt);
    EXPECT_TRUE(rt->knownMisb.empty()) << "closing twice does no harm";
}

// ---- Whether the configuration has changed ----

TEST_F(Known, MisbehavioursFromOutsideAreAlwaysNew) {
    rt->isoMode = 1;
    for (int level : {1, 2, 3}) {
        misbehaving({0, 0, 0});
        EXPECT_EQ(changed(level), "changed");
        misbehaving({1, 0, 0});
        EXPECT_EQ(changed(level), "changed");
    }
}

TEST_F(Known, TheSameMisbehavioursAreNoChange) {
    misbehaving({1, 0, 1});
    known({0, 2});
    EXPECT_EQ(changed(1), "as before, incremental");
    EXPECT_EQ(changed(2), "as before");
    EXPECT_EQ(changed(3), "as before");
    misbehaving({0, 0, 0});
    known({});
    EXPECT_EQ(changed(1), "as before, incremental");
}

TEST_F(Known, ANewMisbehaviourIsAnIncrementalChangeAtTheFirstLevel) {
    misbehaving({1, 1, 0});
    known({1});
    EXPECT_EQ(changed(1), "changed, incremental");
    EXPECT_EQ(changed(2), "changed");
    EXPECT_EQ(changed(3), "changed");
}

TEST_F(Known, AMisbehaviourThatIsGoneIsAChange) {
    misbehaving({0, 1, 0});
    known({0});
    EXPECT_EQ(rt->nbKnown, rt->nbMisb);
    EXPECT_EQ(changed(1), "changed") << "even when the numbers agree";
    misbehaving({0, 1, 0});
    known({1, 0});
    EXPECT_EQ(changed(1), "changed");
    EXPECT_EQ(changed(2), "changed");
}

TEST_F(Known, AnEmptyPlaceCountsAsGone) {
    misbehaving({1, 0, 0});
    rt->nbKnown = 1;
    EXPECT_EQ(changed(1), "changed");
    rt->knownMisb.clear();
    EXPECT_EQ(changed(1), "changed") << "and so does one that is not there";
}

// A misbehaviour that has only just begun or ended is not grown upon.
TEST_F(Known, ANewestPairThatDiffersIsNotIncremental) {
    misbehaving({1, 1, 0});
    known({1});
    for (std::vector<int> const& pair : {std::vector<int>{1, 0}, {0, 1}, {1, 0, 1}}) {
        measure(2)->misbHisto = pair;
        EXPECT_EQ(changed(1), "changed");
    }
    for (std::vector<int> const& pair : {std::vector<int>{1, 1}, {0, 0, 1}, {1}, {0}, {}}) {
        measure(2)->misbHisto = pair;
        EXPECT_EQ(changed(1), "changed, incremental");
    }
    known({0, 1});
    measure(0)->misbHisto = {1, 0};
    EXPECT_EQ(changed(1), "as before") << "it is no change by itself";
}

// ---- Diagnoses ----

TEST_F(Known, WithNothingNewTheTextStands) {
    misbehaving({1, 0, 0});
    known({0});
    rt->diagBuf = "[as it was]";
    for (int level : {1, 2, 3}) {
        hittingSetDiagnosis(rt, level);
        EXPECT_EQ(rt->diagBuf, "[as it was]");
        EXPECT_EQ(rt->knownMisb.size(), 3u) << "nor is anything released";
    }
    EXPECT_EQ(rt->bridgeConflicts, std::nullopt);
}

// Only the new one is looked at, and its text comes behind the one that stands.
TEST_F(Known, AnIncrementalDiagnosisIsThatOfTheNewMisbehaviours) {
    misbehaving({1, 0, 1});
    known({0});
    rt->diagBuf = "[{a,0,()}]";
    hittingSetDiagnosis(rt, 1);
    EXPECT_EQ(rt->diagBuf, "[{a,0,()}][{c,0,()}]");
    EXPECT_EQ(rt->nbMisb, 1) << "the new ones";
    EXPECT_EQ(rt->nbNormal, 2) << "all others";
    EXPECT_EQ(rt->nbKnown, 2);
}

TEST_F(Known, AnotherLevelLooksAtAllOfThem) {
    for (int level : {2, 3}) {
        faultIsolationSetup(rt, 0);
        misbehaving({1, 0, 1});
        known({0});
        sn_razDiagBuf(rt);
        hittingSetDiagnosis(rt, level);
        EXPECT_EQ(rt->diagBuf, "[{a,0,()}{c,0,()}]");
        EXPECT_EQ(rt->nbMisb, 2);
        EXPECT_EQ(rt->nbNormal, 1);
        EXPECT_EQ(rt->nbKnown, 2);
    }
}

TEST_F(Known, AMisbehaviourThatIsGoneLetsTheDiagnosisBeginAnew) {
    misbehaving({0, 1, 1});
    known({0});
    hittingSetDiagnosis(rt, 1);
    EXPECT_EQ(rt->diagBuf, "[{b,0,()}{c,0,()}]");
    EXPECT_EQ(rt->nbKnown, 2);
    EXPECT_EQ(rt->nbNormal, 1);
}

// The first diagnosis is incremental from nothing known, and gives all.
TEST_F(Known, TheFirstDiagnosisTakesAll) {
    misbehaving({1, 1, 0});
    hittingSetDiagnosis(rt, 1);
    EXPECT_EQ(rt->diagBuf, "[{a,0,()}{b,0,()}]");
    EXPECT_EQ(rt->nbKnown, 2);
    EXPECT_EQ(rt->nbMisb, 2);
    EXPECT_EQ(rt->nbNormal, 1);
    EXPECT_TRUE(rt->knownMisb.empty()) << "the diagnosis is at its end";
}

// The places are new and empty, which counts as a change: the second diagnosis is made in full, at
// every level, with everything misbehaving and not.
TEST_F(Known, EachDiagnosisWithASetupOfItsOwnIsMadeInFull) {
    for (int level : {1, 1, 2, 3, 1}) {
        faultIsolationSetup(rt, 0);
        misbehaving({1, 0, 1});
        sn_razDiagBuf(rt);
        hittingSetDiagnosis(rt, level);
        EXPECT_EQ(rt->diagBuf, "[{a,0,()}{c,0,()}]");
        EXPECT_EQ(rt->nbKnown, 2);
    }
    faultIsolationSetup(rt, 0);
    misbehaving({1, 1, 1});
    sn_razDiagBuf(rt);
    hittingSetDiagnosis(rt, 3);
    EXPECT_EQ(rt->diagBuf, "[{a,0,()}{b,0,()}{c,0,()}]");
    EXPECT_EQ(rt->nbKnown, 3);
}

TEST_F(Known, ModeOneRemembersNothing) {
    rt->knownMisb.clear();
    for (int round = 0; round < 2; ++round) {
        misbehaving({1, 0, 0});
        EXPECT_EQ(diagnosis(rt, 1), "[{a,0,()}]");
        EXPECT_EQ(rt->nbKnown, 0);
        EXPECT_TRUE(rt->knownMisb.empty());
    }
}

// A copy keeps the mode and no memory: it diagnoses in full.
TEST_F(Known, ACopyRemembersNothing) {
    misbehaving({1, 0, 0});
    known({0});
    auto const copy = sn_copyRuntime(rt);
    EXPECT_EQ(copy->isoMode, 0);
    EXPECT_EQ(copy->nbKnown, 0);
    faultIsolationSetup(copy.get(), 0);
    hittingSetDiagnosis(copy.get(), 1);
    EXPECT_EQ(copy->diagBuf, "[{a,0,()}]");
    EXPECT_EQ(rt->diagBuf, "");
}

}  // namespace
