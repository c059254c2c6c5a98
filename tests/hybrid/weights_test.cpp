// The weights of a long run, which are lifted before they come down to zeros.
#include <cmath>

#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

class Weights : public testing::Test {
protected:
    void beginRoom(char const* rules) {
        RunSettings with;
        std::string wrong;
        ASSERT_TRUE(Rules::read(rules, with.rules, wrong)) << wrong;
        settings.emplace(with);
        run.emplace(0.95);
    }
    // Without a candidate.
    void begin(char const* rules) {
        beginRoom(rules);
        theRun().tracked_trajs.clear();
    }
    void TearDown() override {
        theRun().hybNT = nullptr;
        run.reset();
        settings.reset();
    }
    static std::unique_ptr<hybTrajectory> candidate(double weight) {
        auto made = std::make_unique<hybTrajectory>();
        made->traj =
            std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms);
        made->traj->getLastState()->proba = weight;
        return made;
    }
    static void track(double weight) { theRun().tracked_trajs.emplace(-weight, candidate(weight)); }
    // What the candidates weigh, in the order in which they were added.
    static std::vector<double> weights() {
        std::vector<double> found;
        for (auto const& entry : theRun().tracked_trajs)
            found.push_back(entry.second->traj->getLastState()->proba);
        std::sort(found.begin(), found.end(), std::greater<>());
        return found;
    }

    std::optional<WithSettings> settings;
    std::optional<RoomRun> run;
};

// 3 * 2^-500 lies between 2^-499 and 2^-498, so that the heaviest comes to 1.5.
TEST_F(Weights, SmallOnesAreLiftedTogether) {
    begin("likelihood");
    track(std::ldexp(3.0, -500));
    track(std::ldexp(5.0, -510));
    theRun().dropped.push_back({3.0, candidate(std::ldexp(1.0, -499))});
    liftWeights(theRun());
    EXPECT_EQ(weights(), (std::vector<double>{1.5, std::ldexp(5.0, -11)}));
    EXPECT_EQ(theRun().dropped.front().candidate->traj->getLastState()->proba, 1.0);
    theRun().dropped.clear();
}

// 2^1070 is no number.
TEST_F(Weights, TheSmallestStayFinite) {
    begin("likelihood");
    track(std::ldexp(1.0, -1070));
    liftWeights(theRun());
    EXPECT_EQ(weights(), (std::vector<double>{std::ldexp(1.0, -70)}));
}

TEST_F(Weights, EachCycleLooksAfterThem) {
    beginRoom("likelihood");
    for (auto const& entry : theRun().tracked_trajs)
        entry.second->traj->scaleProbas(0x1p-900);
    run->cycle(simulation(1), 1.0, 0.95);
    ASSERT_FALSE(weights().empty());
    EXPECT_GT(weights().front(), 0x1p-10);
}

TEST_F(Weights, OneThatIsLargeEnoughKeepsAllAsTheyAre) {
    begin("likelihood");
    track(std::ldexp(1.0, -390));
    track(std::ldexp(1.0, -500));
    liftWeights(theRun());
    EXPECT_EQ(weights(), (std::vector<double>{std::ldexp(1.0, -390), std::ldexp(1.0, -500)}));
}

TEST_F(Weights, ClassicOnesAndZerosAreLeftAlone) {
    begin("classic");
    track(std::ldexp(1.0, -500));
    liftWeights(theRun());
    EXPECT_EQ(weights(), (std::vector<double>{std::ldexp(1.0, -500)}));
    TearDown();
    begin("likelihood");
    track(0.0);
    liftWeights(theRun());
    EXPECT_EQ(weights(), (std::vector<double>{0.0}));
}

}  // namespace
