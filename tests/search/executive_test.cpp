// Whole discrete runs of random models: shared guards, imported commands, one-way neighbours, and
// transitions whose effects come at delays.
//
//   steps         As long as every observation agrees, all that is told of every history, after
//   each
//                 line of its scenario, is what a naive twin tells: modes and commands by step.
//   obedience     Whatever a search assumes, every history holds the commands that were given and
//                 shows what was observed, each at its step.
//   possibility   With every command named, every move of every history is one of the model: its
//                 guard held and its effect is what came. What a delayed effect has touched is
//                 excepted: a late effect names no transition in its state, and a component that an
//                 effect brings into a state is free there, so that an observation may change it.
//   completeness  Where failures may be expanded any number of times and every state holds every
//                 component, what a search answers are the histories of least failure, all of them.
//   repetition    The same seed gives the same bytes on both streams twice.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "search/executive_fixture.h"

namespace {

using namespace executives;
using Strings = std::vector<std::string>;

constexpr char const* searching = "---------> Diagnosing...\n";

// How often a batch came to what it is about.
struct Tally {
    int compared = 0;  // scenarios and their beginnings, beside the twin
    int late = 0;      // effects that came at a delay
    int reached = 0;   // commands given for the step that runs
    int failed = 0;    // steps that no state could hold
    int searched = 0, found = 0;
    int unled = 0;  // modes that changed without a transition
};

// The engine follows the histories that the twin has, as far as it remembers them.
void compare(Model const& model, std::size_t lines, Twin const& twin, Tally& tally) {
    Executive executive(model);
    executive.run(lines);
    Strings errors;
    std::vector<Told> const told = executive.histories(errors);
    EXPECT_EQ(errors, Strings{});
    EXPECT_FALSE(executive.said(searching));
    std::vector<std::vector<Labels>> const expected = twin.histories();
    ASSERT_EQ(told.size(), expected.size());
    for (std::size_t i = 0; i < told.size(); ++i) {
        auto const first = expected[i].begin() + told[i].first;
        ASSERT_LE(told[i].first, static_cast<int>(expected[i].size()));
        EXPECT_TRUE(told[i].steps == std::vector<Labels>(first, expected[i].end()))
            << "history " << i << " after line " << lines;
    }
    ++tally.compared;
}

void follow(Model const& model, Tally& tally) {
    Twin twin(model);
    for (std::size_t i = 0; i < model.lines.size() && twin.step(model.lines[i]); ++i)
        compare(model, i + 1, twin, tally);
    tally.late += twin.lateEffects;
    tally.reached += twin.reached;
    tally.failed += twin.failed;
}

void runWhole(Model const& model, bool checksMoves, Tally& tally) {
    Executive executive(model);
    executive.run(model.lines.size());
    Strings errors;
    executive.checkScenario(errors);
    if (checksMoves)
        tally.unled += executive.checkMoves(errors);
    EXPECT_EQ(errors, Strings{});
    tally.searched += executive.said(searching) ? 1 : 0;
    tally.found += executive.said(searching) && !DataManager::tracked_traj.empty() ? 1 : 0;
}

class Executives : public testing::TestWithParam<unsigned> {
protected:
    static constexpr unsigned batch = 250;
    template <typename Test>
    void forAll(Style const& style, Test test) {
        for (unsigned seed = GetParam() * batch; seed < (GetParam() + 1) * batch; ++seed) {
            Model const model = randomModel(seed, style);
            test(model);
            ASSERT_FALSE(HasFailure()) << model.describe();
        }
    }
    Tally tally;
};

TEST_P(Executives, StepsAreThoseOfTheTwin) {
    forAll({}, [this](Model const& model) { follow(model, tally); });
    EXPECT_GT(tally.compared, 3 * static_cast<int>(batch));
    EXPECT_GT(tally.late, 0);
    EXPECT_GT(tally.reached, 0);
    EXPECT_GT(tally.failed, 0);
}

TEST_P(Executives, EveryHistoryObeysItsScenario) {
    forAll({.linked = true}, [this](Model const& model) { runWhole(model, false, tally); });
    EXPECT_GT(tally.searched, static_cast<int>(batch) / 5);
    EXPECT_GT(tally.found, 0);
}

TEST_P(Executives, EveryHistoryIsPossible) {
    forAll({.linked = true, .named = true},
           [this](Model const& model) { runWhole(model, true, tally); });
    EXPECT_GT(tally.searched, static_cast<int>(batch) / 5);
    EXPECT_GT(tally.found, 0);
    EXPECT_GT(tally.unled, 0);
}

// Expanded any number of times, and with a place in every state, no failure is left out.
void searchAll(Model const& model, Tally& tally) {
    Executive executive(model);
    executive.allowRepeatedFailures();
    executive.run(model.lines.size());
    Strings errors;
    executive.checkScenario(errors);
    executive.checkMoves(errors);
    std::set<std::vector<Modes>> found;
    std::vector<Told> const told = executive.histories(errors);
    for (Told const& history : told) {
        std::vector<Modes> modes;
        for (Labels const& labels : history.steps)
            modes.push_back(labels.modes);
        found.insert(modes);
    }
    EXPECT_EQ(errors, Strings{});
    std::set<std::vector<Modes>> const wanted = leastHistories(model);
    EXPECT_EQ(found, wanted);
    EXPECT_EQ(told.size(), found.size()) << "a history was found twice";
    tally.found += found.empty() ? 0 : 1;
}

TEST_P(Executives, TheHistoriesOfLeastFailureAreThere) {
    forAll({.linked = true, .named = true, .plain = true},
           [this](Model const& model) { searchAll(model, tally); });
    EXPECT_GT(tally.found, static_cast<int>(batch) / 5);
}

std::string bytes(Model const& model) {
    Executive executive(model);
    executive.run(model.lines.size());
    return executive.told();
}

TEST_P(Executives, TheSameSeedGivesTheSameBytes) {
    forAll({.linked = true}, [](Model const& model) { EXPECT_EQ(bytes(model), bytes(model)); });
}

INSTANTIATE_TEST_SUITE_P(Batches, Executives, testing::Range(0u, 2u));

}  // namespace
