// The discrete search for one misbehaving candidate: what its history explains by itself, and what
// is searched for otherwise.
#include "diagnosis/fault_run.h"
#include "fixtures/the_run.h"

using namespace diagnosis_fixture;

namespace {

using scheduler_fixture::HandModel;

// A pump that works and may die or leak, and a gauge beside it that may show anything: no
// transition moves it. The history has two steps; the pump worked in both.
class Pump : public testing::Test {
protected:
    Pump() {
        Comp* comp = model.comp("pump");
        auto* mode = model.variable<ModeVar>(comp, "mode", {"works", "dead", "leaks"});
        works = mode->getAtomLinks()[0];
        dead = mode->getAtomLinks()[1];
        leaks = mode->getAtomLinks()[2];
        for (Atom* atom : {works, dead, leaks})
            HandModel::idle(comp, atom);
        dies = HandModel::transition(comp, {{true, works}}, {{true, dead}}, transFail);
        springs = HandModel::transition(comp, {{true, works}}, {{true, leaks}}, transFail);
        auto* gauge = model.variable<ModeVar>(model.comp("gauge"), "gauge", {"low", "high"});
        low = gauge->getAtomLinks()[0];
        high = gauge->getAtomLinks()[1];
        model.start();
        Trajectory* history = model.traj.get();
        lockFirstTrajState(history);
        history->addState(1, std::make_unique<State>(theRun().scheduler.book));
        streamsOf([&] { history->addComp(comp, history->getLastState(), 1, true, false); });
        history->setTimeCorr(1.0);
        model.rt.num = 40;
        theRun().engine.rt_num = 41;
    }

    Streams diagnose(Observations const& observations) {
        return streamsOf([&] {
            TrajectoryMap const results = theRun().sMM->Diagnose(model.traj.get(), observations);
            for (auto const& result : results)
                found.emplace(result.first, std::make_unique<hybTrajectory>(
                                                result.second.get(), sn_copyRuntime(&model.rt)));
        });
    }
    // The pump's modes in the newest step of what was found, in order.
    std::vector<std::string> modes() const {
        std::vector<std::string> all;
        for (auto const& entry : found)
            all.push_back(
                lastValue(entry.second->traj.get(), "pump.mode", {"works", "dead", "leaks"}));
        return all;
    }

    HandModel model;
    HybMap found;
    Atom *works, *dead, *leaks, *low, *high;
    Transition *dies, *springs;
};

std::size_t position(Streams const& streams, char const* text) {
    return streams.err.find(text);
}
constexpr std::size_t absent = std::string::npos;

// ---- What the history explains ----

TEST_F(Pump, WhatDoesNotHoldAnywayIsExplainedWithoutASearch) {
    Streams const told = diagnose({{false, dead}, {false, leaks}});
    EXPECT_EQ(position(told, "---------> Diagnosing...\n"), absent);
    EXPECT_EQ(modes(), std::vector<std::string>{"works"});
    EXPECT_FALSE(found.begin()->second->traj->transByTime.has_value());
    EXPECT_EQ(found.begin()->second->traj->getCurrentTime(), 1);
}

// The gauge is no one's effect, so that it shows another value is no conflict with any transition.
// Of its two values the other one is the only outcome.
TEST_F(Pump, AnObservationThatContradictsNoTransitionIsExplained) {
    diagnose({{false, low}});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(label(found.begin()->second->traj.get(), "gauge.gauge=high"), "true");
}

TEST_F(Pump, TheLinesTellTheStepAndTheTime) {
    Streams const told = diagnose({{false, dead}});
    std::size_t const updating =
        position(told, "[Scheduler] --> updating tracked trajectories with observations (1)\n");
    std::size_t const inserting = position(told, "inserting observations at time_step : 1\n");
    std::size_t const elapsed =
        position(told, "[Scheduler] --> elapsed time (observations insertion) : ");
    ASSERT_EQ(updating, 0u);
    ASSERT_LT(updating, inserting);
    ASSERT_LT(inserting, elapsed);
    ASSERT_LT(elapsed, absent);
    EXPECT_EQ(position(told, "[Scheduler] --> elapsed time : "), absent);
}

// ---- The search ----

// The pump does not work: it died or it leaks, each by one failure at the newest step.
TEST_F(Pump, WhatRefutesTheHistoryIsSearchedFor) {
    Streams const told = diagnose({{false, works}});
    std::size_t const elapsed =
        position(told, "[Scheduler] --> elapsed time (observations insertion) : ");
    std::size_t const searching = position(told, "---------> Diagnosing...\n");
    ASSERT_LT(elapsed, searching);
    EXPECT_LT(searching, position(told, "[Scheduler] --> elapsed time : "));
    std::vector<std::string> result = modes();
    std::sort(result.begin(), result.end());
    EXPECT_EQ(result, (std::vector<std::string>{"dead", "leaks"}));
    for (auto const& entry : found) {
        Trajectory const& history = *entry.second->traj;
        bool const isDead = label(&history, "pump.mode=dead") == "true";
        ASSERT_TRUE(history.transByTime.has_value());
        EXPECT_EQ(*history.transByTime, (Trajectory::TransByTime{{1, isDead ? dies : springs}}));
        EXPECT_EQ(history.rank, 1.0);
        EXPECT_EQ(entry.first, history.getLastState()->proba);
    }
}

// It is dead, which holds off the other one.
TEST_F(Pump, OneExplanationIsLeftWhenTheOthersAreDenied) {
    diagnose({{false, works}, {false, leaks}});
    EXPECT_EQ(modes(), std::vector<std::string>{"dead"});
}

TEST_F(Pump, EveryExplanationHasARuntimeOfItsOwn) {
    diagnose({{false, works}});
    std::vector<int> identities;
    for (auto const& entry : found) {
        EXPECT_NE(entry.second->rt.get(), &model.rt);
        identities.push_back(entry.second->rt->num);
    }
    EXPECT_EQ(identities, (std::vector<int>{41, 42}));
}

TEST_F(Pump, TheHistoryItselfStays) {
    diagnose({{false, works}});
    EXPECT_EQ(model.label("pump.mode=works"), "true");
    EXPECT_FALSE(model.traj->transByTime.has_value());
    EXPECT_EQ(model.traj->rank, 0.0);
}

// The search begins with one failure more than the history has, and ends with three more.
TEST_F(Pump, TheRanksAreThoseAboveTheHistory) {
    model.traj->rank = 2.0;
    Streams const told = diagnose({{false, works}});
    EXPECT_LT(position(told, "Rank : 3/5 "), absent);
    EXPECT_EQ(found.size(), 2u);
    EXPECT_EQ(theRun().sMM->bound, 3.0);  // the rank that had results
}

// Nothing of the model leads away from here: all three ranks are tried.
TEST_F(Pump, WithoutAnExplanationNothingIsFound) {
    Streams const told = diagnose({{false, works}, {false, dead}, {false, leaks}});
    EXPECT_TRUE(found.empty());
    EXPECT_LT(position(told, "Rank : 1/3 "), absent);
    EXPECT_LT(position(told, "Rank : 3/3 "), absent);
    EXPECT_EQ(position(told, "Rank : 4"), absent);
    EXPECT_EQ(theRun().sMM->bound, 3.0);
}

TEST_F(Pump, WhatIsFoundComesBesideWhatIsThere) {
    diagnose({{false, dead}});
    diagnose({{false, works}});
    EXPECT_EQ(found.size(), 3u);
}

// Two outcomes are no explanation, although neither is in conflict: the search then gives none,
// because it goes back from the newest step to the second and this history has only one.
TEST(TwoOutcomes, AreSearchedFor) {
    HandModel model;
    auto* gauge = model.variable<ModeVar>(model.comp("gauge"), "gauge", {"low", "mid", "high"});
    model.start();
    TrajectoryMap found;
    Streams const told = streamsOf([&] {
        found = theRun().sMM->Diagnose(model.traj.get(), {{false, gauge->getAtomLinks()[0]}});
    });
    EXPECT_LT(told.err.find("results from observations computed : 2\n"), absent);
    EXPECT_LT(told.err.find("---------> Diagnosing...\n"), absent);
    EXPECT_TRUE(found.empty());
}

// ---- What the search cannot see ----

// A failure without a command is taken once in a search, at the newest step that it fits: that the
// pump died a step earlier, and was dead in the newest, is not found beside it.
class LatePump : public Pump {
protected:
    // A third step, in which the pump goes on.
    LatePump() {
        Trajectory* history = model.traj.get();
        history->addState(2, std::make_unique<State>(theRun().scheduler.book));
        streamsOf([&] {
            history->addComp(works->getVarComp(), history->getLastState(), 2, true, false);
        });
        history->setTimeCorr(2.0);
    }
};

TEST_F(LatePump, AFailureIsTakenAtTheNewestStepAlone) {
    diagnose({{false, works}, {false, leaks}});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(*found.begin()->second->traj->transByTime, (Trajectory::TransByTime{{2, dies}}));
}

}  // namespace
