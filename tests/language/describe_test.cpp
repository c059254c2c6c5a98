// A plant in words, and as graphs: what a text says is told again in the same words, with every
// name and number that the text leaves to be worked out.
#include "language/describe.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "language/text_fixture.h"

using namespace language_fixture;

namespace {

class Shown {
public:
    explicit Shown(std::string const& text) : reader({{"p.plant", text}}), file("p.plant", reader) {
        EXPECT_TRUE(file.isSound()) << rendered(file.messages(), file.sources());
        words = described(file.flat());
        pictures = picturesOf(file.flat());
    }
    bool hasLine(std::string const& line) const {
        return ("\n" + words).find("\n" + line + "\n") != std::string::npos;
    }
    std::string dotOf(std::string const& name) const {
        auto const found = std::find_if(pictures.begin(), pictures.end(),
                                        [&](Picture const& p) { return p.name == name; });
        return found == pictures.end() ? "" : found->dot;
    }

private:
    TextReader reader;
    PlantFile file;

public:
    std::string words;
    std::vector<Picture> pictures;
};

std::string const lamp = R"(plant works
sample 2 s
type lamp {
  parameter gain = 3
  variable heat = 3 in [0, 40]
  variable glow, dim
  input power
  mode off, on
  mode cover: shut, open
  command switch: none, press
  heat integrates [0.1, 0.2] * power @ 1..2 when mode = on and (heat < 5 or heat >= 20)
  glow = 2 * heat when heat in [1, 2] or mode = on and cover = open
  glow = heat when not (heat > 1 and mode = on)
  dim = heat when heat <= glow or heat != gain
  dim = 5 when always
  dim = 0.5 * glow when never
  idle off when switch = none with 1
  move from off to on when switch = press with 1
  idle on with 0.99
  fail from mode = on to mode = off with 0.01
  move from cover = shut to cover = open when switch != press and mode = on with 0.5
  idle cover = shut with 0.5
  idle cover = open with 1
  measure heat
  display dim
}
)";

TEST(DescribeTest, QuantitiesAreToldWithWhatTheyAreFor) {
    Shown const plant(lamp + "l: lamp\n");
    EXPECT_TRUE(plant.hasLine("plant works: 1 component, a step is 2 s")) << plant.words;
    EXPECT_TRUE(plant.hasLine("l (lamp)"));
    EXPECT_TRUE(plant.hasLine("  parameter gain = 3"));
    EXPECT_TRUE(plant.hasLine("  variable heat = 3 in [0, 40], measured"));
    EXPECT_TRUE(plant.hasLine("  variable glow"));
    EXPECT_TRUE(plant.hasLine("  variable dim, displayed"));
    EXPECT_TRUE(plant.hasLine("  variable power, an input"));
    EXPECT_TRUE(plant.hasLine("  mode variable cover: shut, open; starts in shut"));
}

// Labels count, delays are told as they were asked for, a number acts through the unit input, and
// of mixed conditions the inner ones stand in parentheses.
TEST(DescribeTest, InfluencesAreToldWithTheirConditions) {
    Shown const plant(lamp + "l: lamp symbol L\n");
    EXPECT_TRUE(plant.hasLine("l (lamp, L)"));
    EXPECT_TRUE(
        plant.hasLine("  L.i1: heat integrates [0.1, 0.2] * power @ 1..2  when mode = on and "
                      "(heat < 5 or heat >= 20)"))
        << plant.words;
    EXPECT_TRUE(plant.hasLine(
        "  L.i2: glow = 2 * heat  when heat in [1, 2] or (mode = on and cover = open)"));
    EXPECT_TRUE(plant.hasLine("  L.i3: glow = heat  when not (heat > 1 and mode = on)"));
    EXPECT_TRUE(plant.hasLine("  L.i4: dim = heat  when heat <= glow or heat != 3"));
    EXPECT_TRUE(plant.hasLine("  L.i5: dim = 5 * un  when always"));
    EXPECT_TRUE(plant.hasLine("  L.i6: dim = 0.5 * glow  when never"));
}

TEST(DescribeTest, MovesAreToldWithTheirGuards) {
    Shown const plant(lamp + "l: lamp\n");
    EXPECT_TRUE(plant.hasLine("  stays off when switch = none with 1")) << plant.words;
    EXPECT_TRUE(plant.hasLine("  off -> on when switch = press with 1"));
    EXPECT_TRUE(plant.hasLine("  failure on -> off with 0.01"));
    EXPECT_TRUE(plant.hasLine("  shut -> open when switch != press and mode = on with 0.5"));
}

// What belongs to no component stands behind all of them, and names of others are whole.
TEST(DescribeTest, SeveralComponentsAndWhatIsBetweenThem) {
    std::string const two = lamp + "l: lamp\nm: lamp\nm.glow = l.glow @ 1\n";
    EXPECT_TRUE(Shown(two).hasLine("  m.i7: glow = l.glow @ 1"));
    Shown const both(
        two + "constraint l.heat = m.heat + 2 * l.glow\nclause l.mode = on implies m.mode = on\n");
    EXPECT_TRUE(both.words.ends_with("\n\n1 constraint\n1 clause\n")) << both.words;
    Shown const clauses(two + "clause l.mode = on iff m.mode = on\n");
    EXPECT_TRUE(clauses.words.ends_with("\n\n2 clauses\n")) << clauses.words;
}

// A plant without quantities has no step, and no causal graph.
TEST(DescribeTest, ADiscretePlant) {
    Shown const plant(
        "plant d\ntype t {\n  mode on, off\n  observe o: x, y\n  idle others\n"
        "  move from on to off with 0.25\n  clause mode = on iff o = x\n}\na: t\n");
    EXPECT_TRUE(plant.words.starts_with("plant d: 1 component\n")) << plant.words;
    EXPECT_TRUE(plant.hasLine("  observed o: x, y; starts in x"));
    ASSERT_EQ(plant.pictures.size(), 1U);
    EXPECT_NE(plant.dotOf("a.mode").find("\"on\" -> \"off\" [label=\" 0.25\"];"),
              std::string::npos);
}

// What is measured has two circles, an input a box; an influence with a condition is dashed, and
// the unit input is no part of the graph.
TEST(DescribeTest, TheCausalGraph) {
    Shown const plant(lamp + "l: lamp\nm: lamp\nm.glow = l.glow @ 1\n");
    ASSERT_EQ(plant.pictures.size(), 1U + 2U * 2U);
    std::string const dot = plant.dotOf("causal");
    auto const holds = [&](char const* text) { return dot.find(text) != std::string::npos; };
    EXPECT_TRUE(holds("  \"l.heat\" [peripheries=2];\n")) << dot;
    EXPECT_TRUE(holds("  \"l.power\" [shape=box];\n"));
    EXPECT_TRUE(holds("  \"l.glow\";\n"));
    EXPECT_TRUE(holds("  \"l.power\" -> \"l.heat\" [label=\"l.i1\", style=dashed];\n"));
    EXPECT_TRUE(holds("  \"l.glow\" -> \"m.glow\" [label=\"m.i7\"];\n"));
    EXPECT_FALSE(holds("un\""));
}

TEST(DescribeTest, ThePictureOfModes) {
    std::string const dot = Shown(lamp + "l: lamp\n").dotOf("l.mode");
    EXPECT_NE(dot.find("  \"off\" [style=bold];\n  \"on\";\n"), std::string::npos) << dot;
    EXPECT_NE(dot.find("\"on\" -> \"off\" [label=\" 0.01\", color=red, style=dashed];"),
              std::string::npos);
    EXPECT_EQ(dot.find("\"off\" -> \"off\""), std::string::npos);
}

}  // namespace
