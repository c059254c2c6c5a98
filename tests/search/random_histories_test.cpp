// The rule `histories` on random models, beside an enumeration of all their histories.
//
// What twin_test.cpp finds left out, and why, is there: a failure may be expanded again, and has a
// place in every step. A search answers the ends of all histories of least failure, each once.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "search/engine_model_fixture.h"
#include "search/random_models_fixture.h"

namespace {

using namespace random_models;

using Ends = std::set<Modes>;
using Strings = std::vector<std::string>;

Ends endsOf(std::vector<ModeHistory> const& histories) {
    Ends ends;
    for (ModeHistory const& history : histories)
        ends.insert(history.modes.back());
    return ends;
}

// The answers are told as histories; each must be one of those that are wanted.
void checkAnswers(Case const& example, EngineModel const& model, int start,
                  std::vector<ModeHistory> const& wanted) {
    auto const kept = static_cast<std::size_t>(example.steps() - start);
    std::set<std::string> texts;
    for (ModeHistory const& history : wanted)
        texts.insert(history.text(kept));
    Strings errors;
    for (std::string const& text : model.histories(start, errors))
        EXPECT_EQ(texts.count(text), 1U) << text << "explains nothing, or has failures too many";
    Ends found;
    double sum = 0.0;
    for (auto const& entry : theRun().scheduler.tracked_traj) {
        found.insert(model.read(entry.second.get(), errors).modes.back());
        sum += entry.second->proba;
    }
    EXPECT_EQ(errors, Strings{});
    EXPECT_EQ(found, endsOf(wanted));
    EXPECT_EQ(theRun().scheduler.tracked_traj.size(), found.size()) << "an end is told twice";
    EXPECT_NEAR(sum, found.empty() ? 0.0 : 1.0, 1e-12);
}

// Whether it took a search that found something.
bool checkSearch(Case const& example) {
    EngineModel model(example, withRules("histories,likelihood"));
    model.command();
    int const start = model.windowStart();
    model.observe();
    std::vector<ModeHistory> const wanted = example.leastExplanations(start);
    bool const isNominal = !wanted.empty() && wanted.front().failures == 0;
    EXPECT_EQ(model.hasSearched(), !isNominal);
    checkAnswers(example, model, start, wanted);
    return !isNominal && !wanted.empty();
}

class RandomHistories : public testing::TestWithParam<unsigned> {};

TEST_P(RandomHistories, AreAllAnswered) {
    constexpr unsigned batch = 250;
    int searches = 0;
    for (unsigned seed = GetParam() * batch; seed < (GetParam() + 1) * batch; ++seed) {
        Case const example = randomCase(seed);
        searches += checkSearch(example) ? 1 : 0;
        ASSERT_FALSE(HasFailure()) << example.describe();
    }
    EXPECT_GT(searches, static_cast<int>(batch) / 2);
}

INSTANTIATE_TEST_SUITE_P(Batches, RandomHistories, testing::Range(0u, 4u));

// ---- One small model for each cause of twin_test.cpp ----

// Moves of a commanded component: 0 fails from m0, 1 goes to m1, 3 fails from m1, 5 stays in m1.
// All three histories end failed: one answer, which tells the steps of both failures.
TEST(CausesOfAnswers, AFailureIsFoundAtEveryStep) {
    Case example;
    example.components = {plainComponent(true)};
    example.commands = {{GO}, {NONE}, {NONE}};
    example.observed = {{0, LO}};
    EngineModel model(example, withRules("histories"));
    model.command();
    model.observe();
    auto const& tracked = theRun().scheduler.tracked_traj;
    ASSERT_EQ(tracked.size(), 1U);
    std::set<std::set<int>> steps;
    for (auto const& entry : tracked.begin()->second->failureSteps)
        steps.insert(entry.second);
    EXPECT_EQ(steps, (std::set<std::set<int>>{{1}, {2, 3}}));
}

// A command that the line does not name may have been given: one more answer, and not the end of
// the search.
TEST(CausesOfAnswers, AHistoryWithoutFailuresIsAnAnswer) {
    Case example;
    example.components = {plainComponent(true)};
    example.components[0].shows[BAD] = HI;
    example.commands = {{unsaid}};
    example.observed = {{0, HI}};
    EngineModel model(example, withRules("histories"));
    model.command();
    model.observe();
    EXPECT_EQ(model.trace.find("too high rank found"), std::string::npos);
    std::multiset<double> ranks;
    for (auto const& entry : theRun().scheduler.tracked_traj)
        ranks.insert(entry.second->rank);
    EXPECT_EQ(ranks, (std::multiset<double>{0.0, 1.0}));
}

// ---- Bounds ----

// Two components, either of which may have failed.
Case twoSuspects() {
    Case example;
    example.components = {plainComponent(true), plainComponent(true)};
    example.components[1].upstream = 0;
    example.components[0].shows = {HI, HI, LO};
    example.components[1].shows = {HI, HI, LO};
    example.commands = {{NONE, NONE}, {NONE, NONE}};
    example.observed = {{1, LO}};
    return example;
}

std::string searchBounded(std::size_t answers, unsigned expansions) {
    Case const example = twoSuspects();
    EngineModel model(example, withRules("histories,likelihood"));
    theRun().scheduler.mostAnswers = answers;
    theRun().scheduler.mostExpansions = expansions;
    model.command();
    model.observe();
    std::string told = std::to_string(theRun().scheduler.tracked_traj.size()) + "\n";
    std::istringstream lines(model.trace);
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("search:", 0) == 0)
            told += line + "\n";
    return told;
}

TEST(BoundedSearch, WithinItsBoundsSaysNothing) {
    EXPECT_EQ(searchBounded(2, 1000), "2\n");
}

TEST(BoundedSearch, KeepsTheLikeliestAnswers) {
    EXPECT_EQ(searchBounded(1, 1000), "1\nsearch: the likeliest 1 of 2 answers are kept\n");
}

TEST(BoundedSearch, StopsAfterItsExpansions) {
    EXPECT_EQ(searchBounded(2, 0),
              "0\nsearch: stopped after 0 expansions, more may explain this\n");
    std::string const one = searchBounded(2, 1);
    EXPECT_EQ(one.substr(1), "\nsearch: stopped after 1 expansions, more may explain this\n");
}

}  // namespace
