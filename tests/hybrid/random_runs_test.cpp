// Random runs. A room that obeys the model is never reported and always tracked; whatever the
// measures and the commands, the collections of candidates stay as the driver promises.
#include <random>

#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

// A room drawn at random within the bounds of the model.
class RandomRoom {
public:
    explicit RandomRoom(unsigned seed) : generator(seed) { rate = nextRate(); }

    double between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(generator);
    }
    // Moves the temperature, then the rate, then the thermostat.
    void step() {
        double const before = x;
        x += rate * between(0.951, 1.049);
        rate = 0.05 * ((heating ? 20.0 : 4.0) - before) + between(0.001, 0.299);
        if (heating && x >= 17.0)
            heating = false;
        else if (!heating && x < 10.0)
            heating = true;
    }

    double x = 4.0, rate = 0.0;
    bool heating = true;

private:
    double nextRate() { return 0.05 * (20.0 - x) + between(0.001, 0.299); }

    std::mt19937 generator;
};

bool covers(hybTrajectory const* candidate, RandomRoom const& room) {
    s_Objet const& x = valueOf(candidate->rt.get(), "room.x");
    return thermostatOf(candidate) == (room.heating ? "on" : "off") && sn_infOf(x) <= room.x &&
           room.x <= sn_supOf(x);
}

TEST(RandomRoomTest, ARoomThatObeysTheModelIsAlwaysTracked) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomRoom room(seed);
        RoomRun run(room.rate);
        for (int k = 1; k <= 120; ++k) {
            room.step();
            ASSERT_EQ(run.cycle(detection(2), k, room.rate).err.find("misbehave"),
                      std::string::npos)
                << "at " << k;
            bool tracked = false;
            for (auto const& entry : theRun().tracked_trajs)
                tracked = tracked || covers(entry.second.get(), room);
            ASSERT_TRUE(tracked) << "at " << k << " x " << room.x;
        }
    }
}

// What holds between two cycles, in any mode.
void expectOrder(RunOptions const& options, bool nominal) {
    EXPECT_TRUE(theRun().engine.nrt.empty());
    EXPECT_TRUE(theRun().ntrajs.empty());
    EXPECT_TRUE(theRun().misbtrajs.empty());
    EXPECT_EQ(theRun().hybNT, theRun().tracked_trajs.empty()
                                  ? nullptr
                                  : theRun().tracked_trajs.begin()->second.get());
    std::map<int, int> seen;
    for (auto const& [key, candidate] : theRun().tracked_trajs) {
        ASSERT_NE(candidate, nullptr);
        ASSERT_NE(candidate->traj, nullptr);
        ASSERT_NE(candidate->rt, nullptr);
        s_runtime const* rt = candidate->rt.get();
        EXPECT_EQ(seen[rt->num]++, 0) << "one identity for two";
        EXPECT_LT(rt->num, theRun().engine.rt_num);
        EXPECT_TRUE(rt->bridgeTrans.empty());
        EXPECT_LE(candidate->traj->states.size(),
                  static_cast<std::size_t>(theRun().scheduler.book.twd));
        EXPECT_NE(candidate->traj->getLastState(), nullptr);
        EXPECT_NE(thermostatOf(candidate.get()), "");
        EXPECT_NE(windowOf(candidate.get()), "");
        if (options.mode > RUN_RESET) {
            EXPECT_EQ(key, nominal ? -static_cast<double>(rt->num) : candidate->traj->rank);
        }
    }
}

// Commands that are legal, impossible, or of the wrong side.
std::vector<char const*> const anyCommand = {"room.cmdin=open",
                                             "room.cmdin=close",
                                             "room.cmdin=none",
                                             "room.mode=open",
                                             "thermostat.mode=stuck_on",
                                             "thermostat.mode=off",
                                             "thermostat.mode=on",
                                             "room.c1=c10",
                                             "room.c1=c12"};

void storm(RunOptions const& options, unsigned seed, int steps, std::size_t most) {
    SCOPED_TRACE("mode " + std::to_string(options.mode) + " seed " + std::to_string(seed));
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> measure(-1.0, 1.5), chance(0.0, 1.0);
    unsigned const alive = theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del;
    {
        RoomRun run(0.9);
        for (int k = 1; k <= steps && theRun().tracked_trajs.size() < most; ++k) {
            if (chance(generator) < 0.3)
                theRun().sMM->scenario[k] = std::make_unique<scenarEvent>(scenarEvent{
                    chance(generator) < 0.9,
                    {ReferenceModel::atom(anyCommand[generator() % anyCommand.size()])}});
            // Mostly near the prediction, so that runs go far.
            s_Objet const& rate = valueOf(theRun().hybNT->rt.get(), "room.xd");
            double const middle = 0.5 * (sn_infOf(rate) + sn_supOf(rate));
            run.cycle(options, k, chance(generator) < 0.8 ? middle : measure(generator));
            expectOrder(options, run.nominal);
            if (theRun().tracked_trajs.empty())
                break;
        }
    }
    EXPECT_EQ(theRun().scheduler.book.traj_created - theRun().scheduler.book.traj_del, alive);
}

TEST(RandomRuns, DetectionKeepsItsCollectionsInOrder) {
    for (unsigned seed = 1; seed <= 4; ++seed)
        storm(detection(1 + static_cast<int>(seed % 3)), seed, 60, 200);
}

TEST(RandomRuns, DetectionWithoutMergingKeepsItsCollectionsInOrder) {
    for (unsigned seed = 11; seed <= 13; ++seed)
        storm(detection(2, RUN_NOMERGE), seed, 60, 60);
}

TEST(RandomRuns, SimulationKeepsItsCollectionsInOrder) {
    for (unsigned seed = 21; seed <= 23; ++seed) {
        storm(simulation(1), seed, 40, 60);
        storm(simulation(0), seed, 60, 60);
    }
}

}  // namespace
