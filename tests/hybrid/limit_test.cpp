// Rule `limit`, and a number of candidates that is asked for.
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

constexpr char const* advice =
    "More than 100 candidates are followed and none agrees: --candidates=N would follow the N "
    "likeliest.\n";

RunSettings limitedTo(int candidates) {
    RunSettings settings;
    settings.candidates = candidates;
    return settings;
}

class Limit : public testing::Test {
protected:
    void begin(RunSettings const& with) {
        settings.emplace(with);
        run.emplace(0.95);
        theRun().tracked_trajs.clear();
    }
    void TearDown() override {
        theRun().hybNT = nullptr;
        run.reset();
        settings.reset();
    }

    // A candidate whose thermostat is last in that mode. Its rate lies apart from all others, so
    // that nothing is merged.
    void add(char const* mode, double rank, double proba) {
        auto copy = std::make_unique<hybTrajectory>();
        copy->traj =
            std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms);
        copy->rt = sn_copyRuntime(theRun().tavro_rt);
        for (char const* value : {"off", "on", "stuck_on", "stuck_off", "unknown"})
            copy->traj->getState(0)
                ->getElt((std::string("thermostat.mode=") + value).c_str())
                ->setLabel(value == std::string(mode) ? labelTrue : labelFalse);
        copy->traj->rank = rank;
        copy->traj->proba = proba;
        double const rate = 10.0 * static_cast<double>(theRun().tracked_trajs.size());
        variable(copy->rt.get(), "room.xd")->old = makeRange(rate, rate + 1.0, 1, 1);
        double const key = -static_cast<double>(copy->rt->num);
        theRun().tracked_trajs.emplace(key, std::move(copy));
    }
    std::string limit(bool nominal = true) {
        return complaint([&] { limitCandidates(theRun(), 1.0, nominal); });
    }
    // Those that are left, in the order of the map: mode and rank.
    static std::string left() {
        std::string text;
        for (auto const& entry : theRun().tracked_trajs)
            text += thermostatOf(entry.second.get()) +
                    std::to_string(static_cast<int>(entry.second->traj->rank)) + " ";
        return text;
    }

    std::optional<WithSettings> settings;
    std::optional<RoomRun> run;
};

TEST_F(Limit, AsManyAsAllowedStay) {
    begin(limitedTo(3));
    for (int i = 0; i < 3; ++i)
        add("off", i, 0.0);
    EXPECT_EQ(limit(), "");
    EXPECT_EQ(left(), "off0 off1 off2 ");
}

// The modes in the order of their likeliest: off, on, stuck_on; with room for two the third goes.
TEST_F(Limit, OneOfEachCombinationOfModesComesFirst) {
    begin(limitedTo(2));
    add("stuck_on", 2, 0.9);
    add("off", 0, 0.1);
    add("off", 0, 0.2);
    add("on", 1, 0.3);
    EXPECT_EQ(limit(), "The limit of 2 candidates is met: 2 of the least likely are dropped.\n");
    EXPECT_EQ(left(), "off0 on1 ");
    EXPECT_EQ(theRun().tracked_trajs.begin()->second->traj->proba, 0.2);
}

TEST_F(Limit, TheRestOfTheRoomIsForTheLikeliest) {
    begin(limitedTo(3));
    add("stuck_on", 2, 0.9);
    add("off", 0, 0.1);
    add("off", 1, 0.2);
    add("off", 0, 0.3);
    EXPECT_EQ(limit(), "The limit of 3 candidates is met: 1 of the least likely are dropped.\n");
    EXPECT_EQ(left(), "stuck_on2 off0 off0 ");
}

// Of equal rank one in an unknown mode comes last, however likely.
TEST_F(Limit, AnUnknownModeComesLast) {
    begin(limitedTo(1));
    add("unknown", 1, 0.9);
    add("stuck_on", 1, 0.1);
    limit();
    EXPECT_EQ(left(), "stuck_on1 ");
}

TEST_F(Limit, EqualCandidatesAreMergedBeforeAnyIsDropped) {
    begin(limitedTo(1));
    add("off", 0, 0.0);
    add("off", 0, 0.0);
    for (auto const& entry : theRun().tracked_trajs)
        variable(entry.second->rt.get(), "room.xd")->old = makeRange(0.0, 1.0, 1, 1);
    EXPECT_EQ(limit(), "");
    EXPECT_EQ(theRun().tracked_trajs.size(), 1u);
}

TEST_F(Limit, TheRuleAllowsAHundred) {
    begin(withRules("limit"));
    for (int i = 0; i < 100; ++i)
        add("off", i, 0.0);
    EXPECT_EQ(limit(false), "");
    add("off", 5, 0.0);
    EXPECT_EQ(limit(false),
              "The limit of 100 candidates is met: 1 of the least likely are dropped.\n");
    EXPECT_EQ(theRun().tracked_trajs.size(), 100u);
}

// A classic run keeps all, and is advised once, when more than a hundred do not agree.
TEST_F(Limit, AClassicRunIsAdvisedOnce) {
    begin({});
    for (int i = 0; i < 100; ++i)
        add("off", i, 0.0);
    EXPECT_EQ(limit(false), "");
    add("off", 100, 0.0);
    EXPECT_EQ(limit(true), "");
    EXPECT_EQ(limit(false), advice);
    EXPECT_EQ(limit(false), "");
    EXPECT_EQ(theRun().tracked_trajs.size(), 101u);
}

}  // namespace
