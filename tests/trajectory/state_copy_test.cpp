// Copies of states: what a full one takes over, what the other one starts anew.
#include "fixtures/the_run.h"
#include "model/Clause.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::PumpAndTank;
using trajectory_fixture::Unit;

namespace {

class StateCopyTest : public testing::Test, protected PumpAndTank {
protected:
    StateCopyTest() : clause(&pump.comp), source(theRun().scheduler.book, &atoms) {
        source.failCount = 2.0;
        source.cover = 0.5;
        source.proba = 0.25;
        source.prevTransProb = 0.75;
        source.obsProb = 0.625;
        source.prevTransCount = 7;
        source.postProbs = {{2, 0.5}, {6, 0.25}};
        source.sortedPostProbs.insert({0.5, 2});
        source.sortedPostProbs.insert({0.5, 6});
        source.atomPostProbs["p.mode=on"] = std::make_shared<State::PostProbs>();
        source.observed = true;
        source.observations = {tank["mode=low"]};
        elt(source, "mode=on")->support = &clause;
        elt(source, "mode=off")->lock = LOCK_TRUE_PERM;
        elt(source, "mode=off")->nextTrans = {{0, nullptr}, {2, start}};
    }
    TrajEl* elt(State const& state, char const* atom) const { return state.getElt(pump.id(atom)); }

    Clause clause;
    State source{theRun().scheduler.book};
};

TEST_F(StateCopyTest, AFullCopyTakesTheFieldsOver) {
    State const copy(&source, true);
    EXPECT_EQ(copy.failCount, 2.0);
    EXPECT_EQ(copy.cover, 0.5);
    EXPECT_EQ(copy.proba, 0.25);
    EXPECT_EQ(copy.prevTransProb, 0.75);
    EXPECT_EQ(copy.obsProb, 0.625);
    EXPECT_EQ(copy.prevTransCount, 7);
    EXPECT_TRUE(copy.observed);
    EXPECT_EQ(copy.comps.size(), 2u);
    EXPECT_EQ(copy.comps.find("p")->second, &pump.comp);
}

TEST_F(StateCopyTest, AFullCopyIsLockedWhateverTheSourceIs) {
    source.locked = false;
    EXPECT_TRUE(State(&source, true).locked);
    source.locked = true;
    EXPECT_TRUE(State(&source, true).locked);
}

TEST_F(StateCopyTest, AFullCopyKeepsLocksAndTransitionsOfTheElements) {
    State const copy(&source, true);
    ASSERT_EQ(copy.elts.size(), 5u);
    EXPECT_NE(elt(copy, "mode=off"), elt(source, "mode=off"));
    EXPECT_EQ(elt(copy, "mode=off")->lock, 3);
    EXPECT_EQ(elt(copy, "mode=off")->prevTrans, stayOff);
    EXPECT_EQ(elt(copy, "mode=off")->label, "true");
    EXPECT_EQ(elt(copy, "mode=off")->nextTrans, (TrajEl::Transitions{{2, start}}));
    EXPECT_EQ(elt(copy, "mode=on")->support, &clause);
}

TEST_F(StateCopyTest, TheOtherCopyStartsItsFieldsAnew) {
    State const copy(&source, false);
    EXPECT_EQ(copy.failCount, 0.0);
    EXPECT_EQ(copy.cover, 0.0);
    EXPECT_EQ(copy.proba, 0.0);
    EXPECT_EQ(copy.prevTransProb, 0.0);
    EXPECT_EQ(copy.obsProb, 1.0);
    EXPECT_EQ(copy.prevTransCount, 0);
    EXPECT_FALSE(copy.observed);
    EXPECT_FALSE(copy.locked) << "although the source is locked";
    EXPECT_TRUE(copy.comps.empty());
}

TEST_F(StateCopyTest, TheOtherCopyFreesTheElementsAndKeepsLabelsAndSupports) {
    State const copy(&source, false);
    ASSERT_EQ(copy.elts.size(), 5u);
    EXPECT_EQ(elt(copy, "mode=off")->lock, 2);
    EXPECT_EQ(elt(copy, "mode=off")->prevTrans, nullptr);
    EXPECT_EQ(elt(copy, "mode=off")->label, "true");
    EXPECT_EQ(elt(copy, "mode=on")->label, "false");
    EXPECT_EQ(elt(copy, "mode=on")->support, &clause);
    EXPECT_EQ(elt(copy, "mode=off")->nextTrans, (TrajEl::Transitions{{2, start}}));
}

TEST_F(StateCopyTest, BothCopiesTakeProbabilitiesObservationsAndTheUnknownMark) {
    for (bool const full : {true, false}) {
        source.unknown = full;
        State const copy(&source, full);
        EXPECT_EQ(copy.postProbs, source.postProbs);
        EXPECT_EQ(copy.observations, source.observations);
        EXPECT_EQ(copy.unknown, full);
        ASSERT_EQ(copy.sortedPostProbs.size(), 2u);
        EXPECT_EQ(copy.sortedPostProbs.begin()->second, 6) << "the order of equal keys stays";
    }
    source.unknown = true;
    EXPECT_TRUE(State(&source, false).unknown);
}

TEST_F(StateCopyTest, TheTablesOfTheAtomsAreShared) {
    State const copy(&source, true);
    ASSERT_EQ(copy.atomPostProbs.size(), 1u);
    (*source.atomPostProbs["p.mode=on"])[2] = 0.5;
    EXPECT_EQ(copy.atomPostProbs.at("p.mode=on")->at(2), 0.5);
    source.atomPostProbs["p.mode=off"] = nullptr;
    EXPECT_EQ(copy.atomPostProbs.size(), 1u) << "the outer table is not";
}

TEST_F(StateCopyTest, ConsequencesAreRebuiltInTheOrderOfTheSource) {
    TrajEl* off = elt(source, "mode=off");
    off->consequences = {elt(source, "mode=on"), source.getElt(tank.id("mode=low")),
                         elt(source, "mode=dead"), elt(source, "mode=on")};
    for (bool const full : {true, false}) {
        State const copy(&source, full);
        EXPECT_EQ(elt(copy, "mode=off")->consequences,
                  (std::vector<TrajEl*>{elt(copy, "mode=on"), copy.getElt(tank.id("mode=low")),
                                        elt(copy, "mode=dead"), elt(copy, "mode=on")}));
        EXPECT_TRUE(elt(copy, "mode=on")->consequences.empty());
    }
}

// The consequence was replaced in the source: the copy has one element of that id, and means it.
TEST_F(StateCopyTest, AReplacedConsequenceBecomesTheElementThatStandsForIt) {
    TrajEl* off = elt(source, "mode=off");
    TrajEl* on = elt(source, "mode=on");
    off->consequences = {on};
    source.addElt(on, false);
    State const copy(&source, true);
    EXPECT_EQ(elt(copy, "mode=off")->consequences, (std::vector<TrajEl*>{elt(copy, "mode=on")}));
}

TEST_F(StateCopyTest, ACopyIsIndependentOfItsSource) {
    State const copy(&source, true);
    elt(source, "mode=off")->setLabel(labelFalse);
    source.postProbs[2] = 0.0;
    source.observations.clear();
    source.clear();
    EXPECT_EQ(elt(copy, "mode=off")->label, "true");
    EXPECT_EQ(copy.postProbs.at(2), 0.5);
    EXPECT_EQ(copy.observations.size(), 1u);
}

}  // namespace
