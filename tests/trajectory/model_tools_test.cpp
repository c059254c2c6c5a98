// The graphs of components and histories, byte for byte.
//
// The order within a state is that of a table of 193 places, h = 5 h + c over the characters of an
// id: p.mode=off 25, t.mode=low 65, p.mode=on 147, p.mode=dead 151; the names p and t are in 112
// and 116.
#include "trajectory/model_tools.h"
#include "fixtures/the_run.h"

#include "fixtures/graph_files.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::formulaOf;
using trajectory_fixture::printed;
using trajectory_fixture::PumpHistory;
using trajectory_fixture::Unit;

namespace {

std::string const componentHead =
    " {\n\trankdir=TB;\n\tsize=\"8,5\"\n\torientation=portrait;\n\tnode [shape = circle];\n\t";
std::string const historyHead =
    " {\n\trankdir=LR;\n\tranksep=1;\n\tsize=\"10,5\"\n\torientation=land;\n\t"
    "\n\t{\n\tnode [shape=plaintext];\n\t{rank=same; time; \"p\"; \"t\";}\n\t}\n\t"
    "{\n\t\tnode [shape=plaintext];\n\t";
std::string const endOfTimeLine = "}\n\tnode [ shape=ellipse, style=filled ];\n\t";

class GraphTest : public testing::Test, protected PumpHistory {
protected:
    // The modes of a component in the state of a step are as at the step before, but for the one
    // that ends and the one that begins.
    void change(Unit& unit, int step, char const* ends, char const* begins) {
        State* state = path.getState(step);
        printed([&] { path.addComp(&unit.comp, state, step, false, false); });
        state->getElt(unit.id(ends))->setLabel("false");
        state->getElt(unit.id(begins))->setLabel("true");
    }
    // What leaves an element of a step is *transition* alone.
    void leave(Unit& unit, int step, char const* mode, Transition* transition) {
        TrajEl* element = path.getState(step)->getElt(unit.id(mode));
        element->nextTrans.clear();
        element->addToNextTrans(transition);
    }
    std::string graph() {
        printed([&] { toDot(theRun().host, &path, "g"); });
        return GraphFiles::text("g.dot");
    }

    GraphFiles files;
};

TEST_F(GraphTest, NamesOfNodes) {
    EXPECT_EQ(makeNodeName(pump["mode=on"], "12"), "p_on12");
    EXPECT_EQ(makeNodeNameWithLabel(pump["mode=on"], "12"), "p_on12 [label=\"on\"];");
}

// ---- Components ----

// 0.125 is a tie, which rounds to the even digit.
TEST_F(GraphTest, AnEdgeForEachTransition) {
    EXPECT_EQ(printed([&] { toDot(theRun().host, &pump.comp); }),
              "[model_tools] --> graphing component p\n");
    EXPECT_EQ(GraphFiles::text("p.dot"), "digraph p" + componentHead +
                                             "off -> off [  label = \" (0.50)\" ];\n\t"
                                             "on -> on [  label = \" (0.25)\" ];\n\t"
                                             "off -> on [  label = \" (0.50)\" ];\n\t"
                                             "on -> dead [ style=dotted, label = \" (0.12)\" ];\n\t"
                                             "}");
}

TEST_F(GraphTest, AComponentWithoutTransitions) {
    Unit empty("e");
    printed([&] { toDot(theRun().host, &empty.comp); });
    EXPECT_EQ(GraphFiles::text("e.dot"), "digraph e" + componentHead + "}");
}

// A command that must not hold and a condition are no label; a second literal of the mode is text.
TEST_F(GraphTest, TheTriggeringCommandIsTheLabel) {
    Unit valve("v");
    valve.variable("mode", {"off", "on"});
    valve.variable<CommandVar>("cmd", {"none", "go"});
    valve.variable<CondVar>("c", {"low"});
    valve.move(0, "mode=off", "mode=on", 1, transNominal, false, {{valve["cmd=go"], true}});
    valve.move(1, "mode=on", "mode=off", 1, transNominal, false, {{valve["cmd=go"], false}});
    valve.move(2, "mode=on", "mode=off", 1, transNominal, false, {{valve["c=low"], true}});
    valve.move(3, "mode=on", "mode=off", 1, transNominal, false, {{valve["mode=off"], false}});
    printed([&] { toDot(theRun().host, &valve.comp); });
    EXPECT_EQ(GraphFiles::text("v.dot"), "digraph v" + componentHead +
                                             "off -> on [  label = \"go (1.00)\" ];\n\t"
                                             "on -> off [  label = \" (1.00)\" ];\n\t"
                                             "on -> off [  label = \" (1.00)\" ];\n\t"
                                             "on -> off -> off [  label = \" (1.00)\" ];\n\t"
                                             "}");
}

// ---- Histories ----

TEST_F(GraphTest, OneStateHasOneRankAndNoMove) {
    leave(pump, 0, "mode=off", start);
    leave(tank, 0, "mode=low", stayLow);
    EXPECT_EQ(graph(), "digraph g" + historyHead + "0 [label = \"0 (0)\"];\n\t\ttime -> 0" +
                           endOfTimeLine +
                           "{rank = same; 0; p_off0 [label=\"off\"]; t_low0 [label=\"low\"];}\n\t"
                           "p -> p_off0 [ style = invis ];\n\t"
                           "t -> t_low0 [ style = invis ];\n\t"
                           "}\n");
}

// The pump goes on and dies; the tank stays as it is over step 1, at which it has no element. What
// leaves the last states leads nowhere.
TEST_F(GraphTest, MovesOfEveryKind) {
    addEmpty(2);
    change(pump, 1, "mode=off", "mode=on");
    change(pump, 2, "mode=on", "mode=dead");
    change(tank, 2, "mode=high", "mode=low");
    leave(pump, 0, "mode=off", start);
    leave(pump, 1, "mode=on", die);
    leave(pump, 2, "mode=dead", start);
    leave(tank, 0, "mode=low", stayLow);
    leave(tank, 2, "mode=low", fill);
    EXPECT_EQ(graph(),
              "digraph g" + historyHead +
                  "0 [label = \"0 (0)\"];\n\t1 [label = \"1 (10)\"];\n\t2 [label = \"2 (20)\"];"
                  "\n\t\ttime -> 0 -> 1 -> 2" +
                  endOfTimeLine +
                  "{rank = same; 0; p_off0 [label=\"off\"]; t_low0 [label=\"low\"];}\n\t"
                  "{rank = same; 1; p_on1 [label=\"on\"];}\n\t"
                  "{rank = same; 2; t_low2 [label=\"low\"]; p_dead2 [label=\"dead\"];}\n\t"
                  "p -> p_off0 [ style = invis ];\n\t"
                  "p_off0 -> p_on1;\n\t"
                  "t -> t_low0 [ style = invis ];\n\t"
                  "t_low0 -> t_low2 [style = dotted ];\n\t"
                  "p_on1 -> p_dead2 [ color = coral ];\n\t"
                  "}\n");
}

TEST_F(GraphTest, AFailureThatIsIdleIsAFailure) {
    addEmpty(1);
    change(pump, 1, "mode=on", "mode=off");
    stayOff->type = transFail;
    leave(pump, 0, "mode=off", stayOff);
    EXPECT_NE(graph().find("\tp_off0 -> p_off1 [ color = coral ];\n"), std::string::npos);
}

TEST_F(GraphTest, AMoveWithoutAModeAfterItIsSkipped) {
    Transition* blind = pump.comp.addTransitionToC(std::make_unique<Transition>(
        formulaOf({{pump["mode=off"], true}}, ""), formulaOf({{tank["mode=high"], true}}, ""),
        transNominal, 0.5));
    ASSERT_EQ(blind->postMode, nullptr);
    blind->setID(7);
    addEmpty(1);
    change(pump, 1, "mode=on", "mode=off");
    leave(pump, 0, "mode=off", blind);
    path.getState(0)->getElt(pump.id("mode=off"))->nextTrans[8] = nullptr;
    EXPECT_EQ(graph().find("p_off0 -> "), std::string::npos);
    leave(pump, 0, "mode=off", stayOff);
    EXPECT_NE(graph().find("p_off0 -> p_off1"), std::string::npos);
}

// The place of a step is its number modulo 193: 193 comes first.
TEST_F(GraphTest, AWindowThatHasMoved) {
    addEmpty(194);
    std::string const text = graph();
    EXPECT_NE(text.find("\t190 [label = \"190 (1900)\"];\n\t191 [label = \"191 (1910)\"];\n\t"),
              std::string::npos);
    EXPECT_NE(text.find("time -> 190 -> 191 -> 192 -> 193 -> 194}"), std::string::npos);
    EXPECT_NE(text.find("{rank = same; 193;}\n\t{rank = same; 194;}\n\t"
                        "{rank = same; 190; p_off190 [label=\"off\"]; t_low190 [label=\"low\"];}"
                        "\n\t{rank = same; 191;}\n\t{rank = same; 192;}\n\t"
                        "p -> p_off190 [ style = invis ];\n\t"),
              std::string::npos);
}

TEST_F(GraphTest, TheMovesAreShownFirst) {
    EXPECT_EQ(printed([&] { toDot(theRun().host, &path, "g"); }),
              printed([&] { path.showTrajectoryTransitions(std::cout); }));
}

TEST_F(GraphTest, AnEarlierFileIsReplaced) {
    std::ofstream("g.dot") << std::string(5000, 'x');
    std::string const text = graph();
    EXPECT_EQ(text.find('x'), text.find("xt];")) << "of plaintext, the first x of the graph";
}

TEST_F(GraphTest, AFileThatCannotBeMadeIsTold) {
    testing::internal::CaptureStderr();
    printed([&] { toDot(theRun().host, &path, "missing/g"); });
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Can't write file missing/g.dot: No such file or directory\n");
    EXPECT_FALSE(std::filesystem::exists("missing"));
}

// ---- The drawing program understands them ----

TEST_F(GraphTest, TheyCanBeDrawn) {
    if (!GraphFiles::canDraw())
        GTEST_SKIP() << "dot is missing";
    addEmpty(1);
    change(pump, 1, "mode=off", "mode=on");
    leave(pump, 0, "mode=off", start);
    graph();
    EXPECT_NE(GraphFiles::drawing("g.dot").find("<title>p_off0&#45;&gt;p_on1</title>"),
              std::string::npos);
    printed([&] { toDot(theRun().host, &pump.comp); });
    EXPECT_NE(GraphFiles::drawing("p.dot").find("<title>on&#45;&gt;dead</title>"),
              std::string::npos);
}

}  // namespace
