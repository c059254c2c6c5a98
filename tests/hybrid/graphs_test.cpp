// The graphs that a run leaves, one for each candidate.
//
// Candidates are told apart by the mode of the window. Of the initial state the room alone is a
// component: the thermostat's idle transition asks that it is not cold, and the model starts cold.
// In the tables of 193 places, h = 5 h + c over the characters: thermostat 98, room 126;
// thermostat.mode=off 129, room.mode=open 153, closed 159, unknown 178.
#include "fixtures/graph_files.h"
#include "fixtures/the_run.h"
#include "hybrid/hybrid_fixture.h"
#include "trajectory/model_tools.h"

namespace {

using hybrid_fixture::streamsOf;

// The graph of the model's initial state alone, with that mode of the window.
std::string initialGraph(std::string const& name, std::string const& mode) {
    return "digraph " + name +
           " {\n\trankdir=LR;\n\tranksep=1;\n\tsize=\"10,5\"\n\torientation=land;\n\t"
           "\n\t{\n\tnode [shape=plaintext];\n\t"
           "{rank=same; time; \"room\";}\n\t}\n\t"
           "{\n\t\tnode [shape=plaintext];\n\t0 [label = \"0 (0)\"];\n\t\ttime -> 0}\n\tnode [ "
           "shape=ellipse, style=filled ];\n\t"
           "{rank = same; 0; thermostat_off0 [label=\"off\"]; "
           "room_" +
           mode + "0 [label=\"" + mode +
           "\"];}\n\t"
           "thermostat -> thermostat_off0 [ style = invis ];\n\t"
           "room -> room_" +
           mode +
           "0 [ style = invis ];\n\t"
           "}\n";
}

class CandidateGraphs : public testing::Test {
protected:
    std::unique_ptr<Trajectory> history(std::string const& mode) {
        auto made = std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms);
        State* state = made->getState(0);
        state->getElt("room.mode=closed")->setLabel("false");
        state->getElt(("room.mode=" + mode).c_str())->setLabel("true");
        return made;
    }
    void add(HybMap& map, double probability, std::string const& mode) {
        auto candidate = std::make_unique<hybTrajectory>();
        candidate->traj = history(mode);
        map.emplace(probability, std::move(candidate));
    }
    // The number of files in the working directory.
    static long count() {
        return std::distance(std::filesystem::directory_iterator("."),
                             std::filesystem::directory_iterator());
    }

    ReferenceModel model;
    GraphFiles files;
};

TEST_F(CandidateGraphs, BestFirstAndEqualOnesInTheOrderOfInsertion) {
    HybMap map;
    add(map, 0.25, "closed");
    add(map, 0.5, "open");
    add(map, 0.5, "unknown");
    std::ofstream("htraj0.dot") << std::string(5000, 'x');
    streamsOf([&] { graphTrajs(theRun().host, map); });
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(GraphFiles::text("htraj0.dot"), initialGraph("htraj0", "open"));
    EXPECT_EQ(GraphFiles::text("htraj1.dot"), initialGraph("htraj1", "unknown"));
    EXPECT_EQ(GraphFiles::text("htraj2.dot"), initialGraph("htraj2", "closed"));
}

TEST_F(CandidateGraphs, NoneForNoCandidate) {
    HybMap const map;
    EXPECT_EQ(streamsOf([&] { graphTrajs(theRun().host, map); }).out, "");
    EXPECT_EQ(count(), 0);
}

TEST_F(CandidateGraphs, OfDiscreteHistories) {
    TrajectoryMap map;
    map.emplace(0.25, history("closed"));
    map.emplace(0.5, history("open"));
    streamsOf([&] { theRun().scheduler.graphTraj(map); });
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(GraphFiles::text("traj0.dot"), initialGraph("traj0", "open"));
    EXPECT_EQ(GraphFiles::text("traj1.dot"), initialGraph("traj1", "closed"));
}

TEST_F(CandidateGraphs, TheyCanBeDrawn) {
    if (!GraphFiles::canDraw())
        GTEST_SKIP() << "dot is missing";
    HybMap map;
    add(map, 1, "closed");
    streamsOf([&] { graphTrajs(theRun().host, map); });
    EXPECT_NE(GraphFiles::drawing("htraj0.dot").find("<title>room_closed0</title>"),
              std::string::npos);
}

// The moves of a component, by the names that scenarios and messages use.
TEST_F(CandidateGraphs, TheComponentsOfTheRoomCanBeDrawn) {
    if (!GraphFiles::canDraw())
        GTEST_SKIP() << "dot is missing";
    struct Drawn {
        char const* component;
        char const* move;
        char const* label;
    };
    Drawn const all[] = {
        {"thermostat", "on&#45;&gt;stuck_on", "(0.01)"},
        {"room", "closed&#45;&gt;open", "open (0.99)"},
    };
    for (Drawn const& drawn : all) {
        streamsOf([&] { toDot(theRun().host, theComp(drawn.component)); });
        std::string const picture = GraphFiles::drawing(std::string(drawn.component) + ".dot");
        EXPECT_NE(picture.find("<title>" + std::string(drawn.move) + "</title>"),
                  std::string::npos);
        EXPECT_NE(picture.find(drawn.label), std::string::npos) << picture;
    }
}

}  // namespace
