// What the registry does with histories and states: comparing, printing, and its end.
#include <sstream>

#include "fixtures/the_run.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::printed;
using trajectory_fixture::PumpAndTank;
using trajectory_fixture::PumpHistory;
using trajectory_fixture::stateOf;
using trajectory_fixture::Unit;

namespace {

// ---- Comparing states ----

class CompareStatesTest : public testing::Test, protected PumpAndTank {};

TEST_F(CompareStatesTest, StatesAreEqualByIdsAndLabels) {
    State const a(theRun().scheduler.book, &atoms);
    State const b(&a, false);
    EXPECT_TRUE(DataManager::compareTrajsStates(&a, &b)) << "locks and transitions play no part";
    EXPECT_TRUE(DataManager::compareTrajsStates(&a, &a));
    State const none{theRun().scheduler.book};
    EXPECT_TRUE(DataManager::compareTrajsStates(&none, &none));
}

TEST_F(CompareStatesTest, ADifferentLabelIsADifference) {
    State const a(theRun().scheduler.book, &atoms);
    State const b(&a, true);
    b.getElt(pump.id("mode=on"))->setLabel(labelUnknown);
    EXPECT_FALSE(DataManager::compareTrajsStates(&a, &b));
    EXPECT_FALSE(DataManager::compareTrajsStates(&b, &a));
}

TEST_F(CompareStatesTest, AnElementMoreOnEitherSideIsADifference) {
    State const a(theRun().scheduler.book, &atoms);
    auto const part = stateOf({&tank});
    EXPECT_FALSE(DataManager::compareTrajsStates(&a, part.get()));
    EXPECT_FALSE(DataManager::compareTrajsStates(part.get(), &a));
}

// ---- Comparing and viewing histories ----

class CompareHistoriesTest : public testing::Test, protected PumpAndTank {
protected:
    // A history in the map whose step 1 is a copy of step 0, with the pump switched on if told.
    Trajectory* enter(double probability, bool switchedOn) {
        auto path = std::make_unique<Trajectory>(theRun().scheduler.book, &atoms);
        path->addCopyState(1, path->getState(0), true);
        if (switchedOn)
            path->getState(1)->getElt(pump.id("mode=on"))->setLabel(labelTrue);
        return paths.emplace(probability, std::move(path))->second.get();
    }
    static std::string transitionsOf(Trajectory const* path) {
        return printed([path] { path->showTrajectoryTransitions(std::cout); });
    }
    std::string comparison() const {
        return printed([this] { theRun().scheduler.compareTrajs(&paths); });
    }

    TrajectoryMap paths;
};

TEST_F(CompareHistoriesTest, FewerThanTwoHaveNothingToCompare) {
    EXPECT_EQ(comparison(), "Trajectories comparison :\n\n");
    enter(0.5, false);
    EXPECT_EQ(comparison(), "Trajectories comparison :\n\n");
}

TEST_F(CompareHistoriesTest, EveryPairIsComparedOnceAndEqualOnesAreShown) {
    enter(0.25, false);
    enter(0.5, true);
    Trajectory const* best = enter(0.75, false);
    EXPECT_EQ(comparison(),
              "Trajectories comparison :\n"
              "comparing traj 1 and 2\n"
              "comparing traj 1 and 3\n"
              "Traj 1 is the same as Traj 3 !!!\n" +
                  transitionsOf(best) +
                  "\n"
                  "comparing traj 2 and 3\n"
                  "\n");
}

TEST_F(CompareHistoriesTest, EqualKeysAreNumberedInTheOrderOfEntry) {
    Trajectory* first = enter(0.5, false);
    Trajectory* second = enter(0.5, false);
    first->proba = 0.125;
    second->proba = 0.25;
    EXPECT_EQ(comparison(),
              "Trajectories comparison :\n"
              "comparing traj 1 and 2\n"
              "Traj 1 is the same as Traj 2 !!!\n" +
                  transitionsOf(first) + "\n\n");
}

// As many states are compared as the first of a pair has.
TEST_F(CompareHistoriesTest, AShorterHistoryEqualsALongerOneThatBeginsLikeIt) {
    Trajectory* shorter = enter(0.75, false);
    enter(0.5, false);
    shorter->removeLastState();
    EXPECT_NE(comparison().find("Traj 1 is the same as Traj 2 !!!\n"), std::string::npos);
}

TEST_F(CompareHistoriesTest, ALongerHistoryIsNotTheSameAsAShorterOne) {
    enter(0.75, false);
    enter(0.5, false)->removeLastState();
    EXPECT_EQ(comparison(), "Trajectories comparison :\ncomparing traj 1 and 2\n\n");
}

TEST_F(CompareHistoriesTest, ViewsEveryHistoryInTheOrderOfTheMap) {
    Trajectory* second = enter(0.25, false);
    Trajectory* first = enter(0.5, false);
    second->proba = 0.25;
    first->proba = 0.5;
    EXPECT_EQ(printed([&] { theRun().scheduler.viewTrajectoriesTransitionsMultimap(&paths); }),
              transitionsOf(first) + transitionsOf(second));
}

// ---- Modes ----

class PrintModesTest : public testing::Test, protected PumpAndTank {
protected:
    static std::string modes(State const& state) {
        std::ostringstream stream;
        DataManager::printModes(&stream, &state);
        return stream.str();
    }
};

// Places of the ids: t.mode=high 85, p.mode=on 147, p.mode=dead 151. The numbers are the positions
// of the values in their variables.
TEST_F(PrintModesTest, TheNumbersOfTheModesThatHoldInTheOrderOfTheElements) {
    State const state(theRun().scheduler.book, &atoms);
    EXPECT_EQ(modes(state), "0 0 \n");
    state.getElt(pump.id("mode=off"))->setLabel(labelFalse);
    state.getElt(pump.id("mode=dead"))->setLabel(labelTrue);
    EXPECT_EQ(modes(state), "0 2 \n") << "the tank stands before the pump's last mode";
    state.getElt(pump.id("mode=on"))->setLabel(labelTrue);
    EXPECT_EQ(modes(state), "0 1 2 \n");
    state.getElt(tank.id("mode=low"))->setLabel(labelUnknown);
    state.getElt(tank.id("mode=high"))->setLabel(labelTrue);
    EXPECT_EQ(modes(state), "1 1 2 \n");
    EXPECT_EQ(modes(State(theRun().scheduler.book)), "\n");
}

TEST_F(PrintModesTest, OnlyModesAreNumbered) {
    Unit unit("u");
    unit.variable<CommandVar>("cmd", {"none", "go"});
    unit.variable<CondVar>("level", {"a", "b"});
    unit.variable("mode", {"x", "y"});
    unit["mode=y"]->set();
    EXPECT_EQ(modes(*stateOf({&unit})), "1 \n");
}

TEST_F(PrintModesTest, NoStreamNoText) {
    State const state(theRun().scheduler.book, &atoms);
    EXPECT_EQ(printed([&] { DataManager::printModes(nullptr, &state); }), "");
}

// ---- The end of the registry ----

TEST(RegistryEnd, DestroysTheTrackedHistoriesAndTellsSo) {
    Plant const plant("ending");
    auto registry = std::make_unique<DataManager>(plant, runHost());
    string_map<Atom*> const none;
    TrajectoryBook book(std::cout, std::cerr);
    registry->tracked_traj.emplace(0.5, std::make_unique<Trajectory>(book, &none));
    EXPECT_EQ(printed([&] { registry.reset(); }),
              "calling destructor of DataManager\n"
              "tracked_traj deleted\n");
    EXPECT_EQ(book.traj_del, 1u);
    EXPECT_EQ(book.state_del, 1u);
}

// The keys of the tables live in what the plant destroys.
TEST(RegistryEnd, APlantGoesWithItsModel) {
    Plant plant("ending");
    auto unit = std::make_unique<Comp>("u");
    auto const values = std::set<std::string>{"x"};
    ModeVar* mode = unit->addStateVar(std::make_unique<ModeVar>("u.mode", values, "x", nullptr));
    Atom* atom = unit->newAtom("u_mode_x", mode, "x");
    plant.addComp(std::move(unit));
    plant.active_atoms[atom->getId()] = atom;
    plant.addClause(std::make_unique<Clause>(atom, false, nullptr));
    plant.clear();
    EXPECT_TRUE(plant.active_comps.empty());
    EXPECT_TRUE(plant.active_atoms.empty());
    EXPECT_TRUE(plant.active_trans.empty());
    EXPECT_TRUE(plant.cls.empty());
}

TEST(RegistryEnd, TrackedHistoriesAreBestFirstAndEqualOnesInTheOrderOfEntry) {
    TrajectoryMap paths;
    int number = 0;
    for (double const probability : {0.25, 0.5, 0.25, 0.75, 0.5})
        paths.emplace(probability, std::make_unique<Trajectory>(theRun().scheduler.book))
            ->second->stepCount = number++;
    std::vector<int> order;
    for (auto const& entry : paths)
        order.push_back(entry.second->stepCount);
    EXPECT_EQ(order, (std::vector<int>{3, 1, 4, 0, 2}));
}

}  // namespace
