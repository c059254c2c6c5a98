// Constants that are given other values: by a file that includes theirs, and from outside of all
// files.
#include <gtest/gtest.h>

#include "text_fixture.h"

using namespace language_fixture;

namespace {

std::string const lamps =
    "constant count = 2, half = count / 2\n"
    "type t {\n  mode off\n}\n"
    "a[1..count]: t\nb[1..half]: t\n";

struct Outcome {
    std::string told;
    std::size_t components = 0;
};

Outcome outcomeOf(std::string const& text, std::vector<std::string> const& settings = {}) {
    TextReader reader({{"p.plant", text}, {"lamps.plant", lamps}});
    PlantFile const file("p.plant", reader, settings);
    Outcome outcome{rendered(file.messages(), file.sources())};
    if (file.isSound())
        outcome.components = file.flat().components.size();
    return outcome;
}

void expectComponents(std::size_t expected, std::string const& text,
                      std::vector<std::string> const& settings = {}) {
    Outcome const found = outcomeOf(text, settings);
    EXPECT_EQ(found.told, "");
    EXPECT_EQ(found.components, expected);
}

// Two and one; what is worked out from the constant follows it.
TEST(SettingsTest, AnIncludingFileSetsAConstant) {
    expectComponents(2 + 1, "plant p\ninclude \"lamps.plant\"\n");
    expectComponents(8 + 4, "plant p\nset count = 8\ninclude \"lamps.plant\"\n");
    expectComponents(8 + 4, "plant p\ninclude \"lamps.plant\"\nset count = 2 * 4\n");
    expectComponents(6 + 1, "plant p\ninclude \"lamps.plant\"\nset count = 6, half = 1\n");
}

TEST(SettingsTest, OneFromOutsideStandsAboveThoseOfFiles) {
    expectComponents(4 + 2, "plant p\n" + lamps, {"count=4"});
    expectComponents(4 + 2, "plant p\nset count = 8\n" + lamps, {"count=4"});
    expectComponents(4 + 3, "plant p\nset count = 8\n" + lamps, {"count=4", "half=3"});
}

TEST(SettingsTest, AConstantThatIsNotThere) {
    EXPECT_EQ(outcomeOf("plant p\nset cuont = 8\n" + lamps).told,
              "p.plant:2:5: error: there is no constant cuont\n"
              "  2 | set cuont = 8\n"
              "    |     ^^^^^\n"
              "    did you mean count?\n");
    EXPECT_EQ(outcomeOf("plant p\n" + lamps, {"cuont=8"}).told,
              "--set:1:5: error: there is no constant cuont\n"
              "  1 | set cuont=8\n"
              "    |     ^^^^^\n"
              "    did you mean count?\n");
}

TEST(SettingsTest, AConstantIsSetOnce) {
    EXPECT_EQ(outcomeOf("plant p\nset count = 8\nset count = 4\n" + lamps).told,
              "p.plant:3:5: error: count is set a second time\n"
              "  3 | set count = 4\n"
              "    |     ^^^^^\n"
              "    keep one of them\n");
}

// It would be unclear for which component, or how often.
TEST(SettingsTest, NotWithinATypeOrALoop) {
    EXPECT_EQ(
        outcomeOf("plant p\n" + lamps + "type u {\n  mode off\n  set count = 4\n}\nc: u\n").told,
        "p.plant:10:3: error: a constant is set for the whole plant\n"
        "  10 |   set count = 4\n"
        "     |   ^^^^^^^^^^^^^\n"
        "     write this outside of types and loops\n");
}

TEST(SettingsTest, WhatFromOutsideIsNoSetting) {
    EXPECT_EQ(outcomeOf("plant p\n" + lamps, {"count"}).told,
              "--set:1:10: error: here stands the end of the line\n"
              "  1 | set count\n"
              "    |          ^\n"
              "    expected is = and a number\n");
    EXPECT_EQ(outcomeOf("plant p\n" + lamps, {"count=4; window 3"}).told,
              "--set:1:14: error: this is no setting\n"
              "  1 | set count=4; window 3\n"
              "    |              ^^^^^^^^\n"
              "    write NAME=NUMBER\n");
}

TEST(SettingsTest, FromItself) {
    EXPECT_NE(outcomeOf("plant p\nset count = count\n" + lamps).told.find("worked out from itself"),
              std::string::npos);
}

// A name of the language's own words stays a name where one belongs.
TEST(SettingsTest, AComponentMayBeCalledSet) {
    expectComponents(1, "plant p\ntype t {\n  mode off\n}\nset: t\n");
}

}  // namespace
