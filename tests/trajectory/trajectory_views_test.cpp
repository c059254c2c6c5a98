// The text of a history.
//
// The elements of the plant are walked in the order of the places of their ids: p.mode=off 25,
// t.mode=low 65, t.mode=high 85, p.mode=on 147, p.mode=dead 151.
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::printed;
using trajectory_fixture::PumpHistory;

namespace {

class ViewTest : public testing::Test, protected PumpHistory {};

std::string const initialElements =
    "p.mode=off --true (0)  -- 2\n"
    "t.mode=low --true (0)  -- 2\n"
    "t.mode=high --false (0)  -- 2\n"
    "p.mode=on --false (0)  -- 2\n"
    "p.mode=dead --false (0)  -- 2\n";

TEST_F(ViewTest, OneStep) {
    EXPECT_EQ(printed([&] { path.showTrajectory(std::cout, 0); }),
              "******** trajectory->timestep 0 *********\n"
              "proba : 0.375\n"
              "cover : 0\n" +
                  initialElements);
    addEmpty();
    EXPECT_EQ(printed([&] { path.showTrajectory(std::cout, 1); }),
              "******** trajectory->timestep 1 *********\n"
              "proba : 0\n"
              "cover : 0\n");
}

TEST_F(ViewTest, OneStepInFull) {
    EXPECT_EQ(printed([&] { path.showTrajectoryFull(std::cout, 0); }),
              "******** trajectory->timestep 0 *********\n" +
                  printed([&] { path.getState(0)->showFullState(std::cout); }));
    EXPECT_NE(printed([&] { path.showTrajectoryFull(std::cout, 0); }).find("prevTrans(0) :\n"),
              std::string::npos);
}

TEST_F(ViewTest, AStepOutsideTheWindowIsItsBannerAlone) {
    EXPECT_EQ(printed([&] { path.showTrajectory(std::cout, 7); }),
              "******** trajectory->timestep 7 *********\n");
    EXPECT_EQ(printed([&] { path.showTrajectoryFull(std::cout, 7); }),
              "******** trajectory->timestep 7 *********\n");
    EXPECT_EQ(path.states.size(), 1u);
}

TEST_F(ViewTest, AllStepsFromZeroToTheNumberOfStates) {
    addEmpty();
    EXPECT_EQ(printed([&] { path.showTrajectoryLight(std::cout); }),
              printed([&] { path.showTrajectory(std::cout, 0); }) +
                  printed([&] { path.showTrajectory(std::cout, 1); }));
    addEmpty(5);
    std::string expected;
    for (int t = 0; t <= 4; ++t)
        expected += printed([&] { path.showTrajectory(std::cout, t); });
    EXPECT_EQ(printed([&] { path.showTrajectoryLight(std::cout); }), expected)
        << "the window is 2 to 6, and five states are shown from 0 on";
}

TEST_F(ViewTest, TheTransitionsOfEveryStep) {
    addEmpty(2);
    path.rank = 2.0;
    path.proba = 0.0625;
    path.getState(0)->cover = 0.5;
    path.getState(2)->cover = 0.25;
    printed([&] { path.addComp(&pump.comp, path.getState(2), 2, false, false); });
    path.getState(2)->setPrevTrans(pump.id("mode=dead"), die);
    EXPECT_EQ(printed([&] { path.showTrajectoryTransitions(std::cout); }),
              ">>>>>>>>>>> viewing Trajectory (2)<<<<<<<<<<<\n"
              "current time: 2\n"
              "proba : 0.0625\n"
              "************** timestep 0 (cover : 0.5) **************\n"
              "Nominal (0.5) (idle) : (p.mode=off  ) =>O  and (p.mode=off  ) -- 0\n"
              "Nominal (0.75) (idle) : (t.mode=low  ) =>O  and (t.mode=low  ) -- 4\n"
              "************** timestep 1 (cover : 0) **************\n"
              "************** timestep 2 (cover : 0.25) **************\n"
              "Fail (0.125) : (p.mode=on  ) =>O  and (p.mode=dead  ) -- 3\n"
              "\n");
}

// A step is its own place in the table of 193 places, so that step 193 comes before step 191.
TEST_F(ViewTest, TheStepsOfTheTransitionsAreInTheOrderOfTheTable) {
    addEmpty(194);
    std::string const text = printed([&] { path.showTrajectoryTransitions(std::cout); });
    std::vector<int> steps;
    std::string const word = "timestep ";
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
        steps.push_back(std::stoi(text.substr(at + word.size())));
    EXPECT_EQ(steps, (std::vector<int>{193, 194, 190, 191, 192}));
}

TEST_F(ViewTest, AHistoryWithoutStates) {
    EXPECT_EQ(
        printed([] { Trajectory(theRun().scheduler.book).showTrajectoryTransitions(std::cout); }),
        ">>>>>>>>>>> viewing Trajectory (0)<<<<<<<<<<<\n"
        "current time: 0\n"
        "proba : 0\n"
        "\n");
    EXPECT_EQ(printed([] { Trajectory(theRun().scheduler.book).showTrajectoryLight(std::cout); }),
              "");
}

}  // namespace
