// The rule `likelihood` in the reasoning: the chance of what was seen, the information measure
// without a mass, and the weights of histories beside each other.
#include <cmath>

#include "reasoning/reasoning_fixture.h"

#include "fixtures/the_run.h"

using reasoning_fixture::SmallModel;

namespace {

// Mode m: in a and b the output shows lo, in c it says nothing. A valve of two clauses lies between
// a and the output, so that what is seen follows in two steps.
class ObsLikelihood : public testing::Test {
protected:
    ObsLikelihood() : model(withRules("likelihood")) {
        model.variable("m", {"a", "b", "c"});
        model.variable<StateVar>("way", {"shut", "open"})->type = typeObservable;
        model.variable<StateVar>("out", {"lo", "mid", "hi"})->type = typeObservable;
        model.clause("!m=a way=shut");
        model.clause("!way=shut out=lo");
        model.clause("!m=b out=lo");
        model.start();
    }
    // Of the observation of these literals while m has that value.
    double seen(std::string const& mode, std::string const& literals) {
        for (char const* each : {"m=a", "m=b", "m=c"})
            model.elt(each)->setLabel(mode == each ? labelTrue : labelFalse);
        for (std::string const& word : SmallModel::words(literals)) {
            bool const denied = word[0] == '!';
            TrajEl* element = model.elt(denied ? word.substr(1) : word);
            element->lock = denied ? LOCK_FALSE_PERM : LOCK_TRUE_PERM;
            element->setLabel(denied ? labelFalse : labelTrue);
            if (denied)
                continue;
            for (Atom const* sibling : element->atom->getSiblings())
                if (sibling != element->atom)
                    model.state()->getElt(sibling->getId())->lock = LOCK_FALSE_PERM;
        }
        model.engine.computeObsLikelihood(model.site());
        return model.state()->obsProb;
    }

    SmallModel model;
};

TEST_F(ObsLikelihood, NothingSeenIsCertain) {
    EXPECT_EQ(seen("m=a", ""), 1.0);
}

TEST_F(ObsLikelihood, WhatTheModesEntailIsCertain) {
    EXPECT_EQ(seen("m=b", "out=lo"), 1.0);
}

TEST_F(ObsLikelihood, AlsoOverAValueBetween) {
    EXPECT_EQ(seen("m=a", "out=lo"), 1.0);
}

// c says nothing of the output, which has three values.
TEST_F(ObsLikelihood, WhatTheyLeaveOpenIsShared) {
    EXPECT_EQ(seen("m=c", "out=lo"), 1.0 / 3.0);
}

TEST_F(ObsLikelihood, ADenialLeavesTheOtherValues) {
    EXPECT_EQ(seen("m=c", "!out=hi"), 2.0 / 3.0);
}

TEST_F(ObsLikelihood, ADenialThatIsEntailedIsCertain) {
    EXPECT_EQ(seen("m=b", "!out=hi"), 1.0);
}

// 1/2 for the way, 1/3 for the output: the way that was seen does not count as given.
TEST_F(ObsLikelihood, SeveralVariablesMultiply) {
    EXPECT_DOUBLE_EQ(seen("m=c", "way=shut out=lo"), 1.0 / 6.0);
}

// What is held of a mode was not seen, it is given.
TEST_F(ObsLikelihood, AHeldModeIsNoObservation) {
    model.elt("m=a")->lock = LOCK_TRUE_PERM;
    EXPECT_EQ(seen("m=a", ""), 1.0);
}

// ---- The information measure ----

double entropyWithoutMass(SmallModel& model, State::PostProbs& table) {
    model.variable("m", {"a", "b"});
    model.variable("r", {"x", "y"});
    model.transition("m=a", "m=b", 0.25);
    model.transition("m=b", "m=a", 0.75);
    model.start();
    model.weigh({"c"});
    model.engine.initPb(model.state());
    double const total = model.engine.entropy(model.atom("r=x")->getStateVar(), model.state());
    table = *model.state()->atomPostProbs.at(model.atom("r=x")->getId());
    return total;
}

// No transition of the component says anything of r, which is one of its variables: the chance is 0
// for each value.
TEST(EntropyLikelihood, WithoutAMassNothingIsLearnt) {
    SmallModel model(withRules("likelihood"));
    State::PostProbs table;
    EXPECT_EQ(entropyWithoutMass(model, table), 0.0);
    EXPECT_EQ(table, model.state()->postProbs);
}

TEST(EntropyLikelihood, ClassicIsNotANumber) {
    SmallModel model;
    State::PostProbs table;
    EXPECT_TRUE(std::isnan(entropyWithoutMass(model, table)));
}

// ---- Histories beside each other ----

class Weights : public testing::Test {
protected:
    Weights() : model(withRules("likelihood")) {
        model.variable("m", {"a", "b"});
        model.start();
    }
    void add(double proba, double represented = 1.0) {
        auto history = std::make_unique<Trajectory>(model.history.get(), 1);
        history->getLastState()->proba = proba;
        history->represented = represented;
        histories.emplace(0.0, std::move(history));
    }
    std::vector<double> normalized() {
        Diagnoser::normalize(histories);
        std::vector<double> probas;
        for (auto const& entry : histories) {
            EXPECT_EQ(entry.first, entry.second->proba);
            EXPECT_EQ(entry.first, entry.second->weight());
            probas.push_back(entry.first);
        }
        return probas;
    }

    SmallModel model;
    TrajectoryMap histories;
};

TEST_F(Weights, TheirSumIsOneAndTheLikeliestIsFirst) {
    add(0.125);
    add(0.375);
    EXPECT_EQ(normalized(), (std::vector<double>{0.75, 0.25}));
}

// 0.125 * 4 beside 0.5.
TEST_F(Weights, AHistoryCountsWithThoseForWhichItStands) {
    add(0.125, 4.0);
    add(0.5);
    EXPECT_EQ(normalized(), (std::vector<double>{0.5, 0.5}));
}

TEST_F(Weights, WithoutAnyWeightAllAreEqual) {
    add(0.0, 3.0);
    add(0.0);
    EXPECT_EQ(normalized(), (std::vector<double>{0.5, 0.5}));
    EXPECT_EQ(normalized(), (std::vector<double>{0.5, 0.5}));
}

// 1 / 5e-324 is infinite.
TEST_F(Weights, WhatIsTooSmallToDivideByCountsAsNothing) {
    add(5e-324);
    EXPECT_EQ(normalized(), std::vector<double>{1.0});
}

TEST_F(Weights, ANumberThatIsNoneCountsAsNothing) {
    add(std::nan(""));
    add(0.5);
    EXPECT_EQ(normalized(), (std::vector<double>{0.5, 0.5}));
}

TEST_F(Weights, NothingStaysNothing) {
    EXPECT_TRUE(normalized().empty());
}

}  // namespace
