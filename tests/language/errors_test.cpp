// Every error, as it is shown. Each text has one mistake, so whatever else is told is a failure
// too.
#include <gtest/gtest.h>

#include "language/text_fixture.h"

using language_fixture::told;

namespace {

struct Mistake {
    char const* name;
    char const* text;
    char const* shown;
};

void PrintTo(Mistake const& mistake, std::ostream* out) {
    *out << mistake.name;
}

class ErrorsTest : public testing::TestWithParam<Mistake> {};

TEST_P(ErrorsTest, IsToldWhole) {
    EXPECT_EQ(told(GetParam().text), GetParam().shown);
}

std::string nameOf(testing::TestParamInfo<Mistake> const& info) {
    return info.param.name;
}

Mistake const ofWords[] = {
    {"Meaningless",
     "plant p\ntype t {\n  mode off, on\n  move from off to on with 1 $$\n}\na: t()\n",
     "p.plant:4:30: error: these characters have no meaning here\n"
     "  4 |   move from off to on with 1 $$\n"
     "    |                              ^^\n"
     "    take them out; names are of letters, digits and _\n"},
    {"TextWithoutEnd", "plant p\ntype t {\n  mode off\n}\na: t()\ninclude \"x.plant\n",
     "p.plant:6:9: error: this text has no end\n"
     "  6 | include \"x.plant\n"
     "    |         ^^^^^^^^\n"
     "    close it with \" on its line\n"
     "\n"
     "p.plant:6:9: error: the file x.plant cannot be read\n"
     "  6 | include \"x.plant\n"
     "    |         ^^^^^^^^\n"
     "    see that it is there and may be read\n"},
    {"NumberTooLarge", "plant p\nconstant a = 1e999\ntype t {\n  mode off\n}\na: t()\n",
     "p.plant:2:14: error: this number cannot be held\n"
     "  2 | constant a = 1e999\n"
     "    |              ^^^^^\n"
     "    its size must be from 1e-307 to 1e308\n"
     "\n"
     "p.plant:6:1: error: the name a is given a second time\n"
     "  6 | a: t()\n"
     "    | ^\n"
     "    rename one of them; the other is in line 2\n"},
    {"ReservedName", "plant p\ntype t {\n  variable to\n  mode off\n}\nb: t()\n",
     "p.plant:3:12: error: to is a word of the language, and no name\n"
     "  3 |   variable to\n"
     "    |            ^^\n"
     "    write the name of a variable\n"},
    {"TwoStatementsOnALine", "plant p\ntype t {\n  mode off idle off with 1\n}\na: t()\n",
     "p.plant:3:12: error: idle does not belong to this statement\n"
     "  3 |   mode off idle off with 1\n"
     "    |            ^^^^\n"
     "    end the statement before it, by a new line or a semicolon\n"},
    {"BraceThatClosesNothing", "plant p\n}\ntype t { mode off }\na: t()\n",
     "p.plant:2:1: error: this } closes nothing\n"
     "  2 | }\n"
     "    | ^\n"
     "    take it out\n"},
    {"BraceThatIsNeverClosed", "plant p\na: t()\ntype t {\n  mode off\n",
     "p.plant:3:8: error: this { is never closed\n"
     "  3 | type t {\n"
     "    |        ^\n"
     "    write } behind the last statement of the type\n"},
    {"ParenthesisThatIsNeverClosed",
     "plant p\nsample 1 s\ntype t {\n  variable x = 0\n  x integrates 2 * (1 + 3\n  measure "
     "x\n}\na: "
     "t()\n",
     "p.plant:5:26: error: here stands the end of the line\n"
     "  5 |   x integrates 2 * (1 + 3\n"
     "    |                          ^\n"
     "    expected is )\n"},
    {"NoEquation", "plant p\ntype t {\n  mode off\n  mode1 off\n}\na: t()\n",
     "p.plant:4:9: error: here stands off\n"
     "  4 |   mode1 off\n"
     "    |         ^^^\n"
     "    expected is =, follows, integrates, lags or responds to\n"},
    {"MoveFromNowhere",
     "plant p\ntype t {\n  mode off, on\n  move to on with 1\n  fail from off to "
     "on with 1\n}\na: t()\n",
     "p.plant:4:3: error: this move leaves no mode\n"
     "  4 |   move to on with 1\n"
     "    |   ^^^^\n"
     "    write from and the mode that it leaves\n"},
    {"MoveToNowhere", "plant p\ntype t {\n  mode off\n  move from off with 1\n}\na: t()\n",
     "p.plant:4:3: error: this move leads nowhere\n"
     "  4 |   move from off with 1\n"
     "    |   ^^^^\n"
     "    write to and the mode that it leads to\n"},
    {"MoveWithoutProbability", "plant p\ntype t {\n  mode off\n  fail from off to on\n}\na: t()\n",
     "p.plant:4:3: error: this move has no probability\n"
     "  4 |   fail from off to on\n"
     "    |   ^^^^\n"
     "    write with and a number from 0 to 1\n"},
};
INSTANTIATE_TEST_SUITE_P(Words, ErrorsTest, testing::ValuesIn(ofWords), nameOf);

Mistake const ofNames[] = {
    {"NothingOfThatName",
     "plant p\nsample 1 s\ntype t {\n  variable xdq, xd\n  xd = 2 * xdp\n  measure xd, xdq\n}\na: "
     "t()\n",
     "p.plant:5:12: error: there is nothing of the name xdp\n"
     "  5 |   xd = 2 * xdp\n"
     "    |            ^^^\n"
     "    did you mean xdq?\n"},
    {"NoMember",
     "plant p\ntype t(o) {\n  mode off, on\n  fail from off when o.mood = on to on with 1\n}\n"
     "a: t(o = b)\nb: t(o = a)\n",
     "p.plant:4:24: error: a component of type t has no mood\n"
     "  4 |   fail from off when o.mood = on to on with 1\n"
     "    |                        ^^^^\n"
     "    did you mean mode?\n"},
    {"NoType", "plant p\ntype lamp {\n  mode off\n}\na: lamb()\nb: lamp()\n",
     "p.plant:5:4: error: there is no type lamb\n"
     "  5 | a: lamb()\n"
     "    |    ^^^^\n"
     "    did you mean lamp?\n"},
    {"NameTwice", "plant p\ntype t {\n  mode off\n  command mode: none\n}\na: t()\n",
     "p.plant:4:11: error: the name mode is given a second time\n"
     "  4 |   command mode: none\n"
     "    |           ^^^^\n"
     "    rename one of them; the other is in line 3\n"},
    {"NoValue",
     "plant p\ntype t {\n  mode off, on\n  command c: none, go\n  fail from off when c = "
     "goo to on with 1\n}\na: t()\n",
     "p.plant:5:26: error: c has no value goo\n"
     "  5 |   fail from off when c = goo to on with 1\n"
     "    |                          ^^^\n"
     "    did you mean go?\n"},
    {"NoMode",
     "plant p\ntype t {\n  mode dark, lit\n  fail from dark to burnt with 1\n  move from "
     "dark to lit with 1\n}\na: t()\n",
     "p.plant:4:21: error: there is no mode burnt\n"
     "  4 |   fail from dark to burnt with 1\n"
     "    |                     ^^^^^\n"
     "    the modes are dark or lit\n"},
    {"SeveralModes",
     "plant p\ntype t {\n  mode a: on, off\n  mode b: on, off\n  fail from on to a = off with 1\n"
     "  fail from b = on to b = off with 1\n}\nc: t()\n",
     "p.plant:5:13: error: several variables have a mode on\n"
     "  5 |   fail from on to a = off with 1\n"
     "    |             ^^\n"
     "    say of which, as in a = on\n"},
    {"ArgumentMissing", "plant p\ntype t(k) {\n  mode off\n}\na: t()\n",
     "p.plant:5:1: error: a does not say what its k is\n"
     "  5 | a: t()\n"
     "    | ^\n"
     "    write k = ... in the parentheses\n"},
    {"ArgumentUnknown", "plant p\ntype t(gain = 1) {\n  mode off\n}\na: t(gian = 2)\n",
     "p.plant:5:6: error: the type t does not ask for gian\n"
     "  5 | a: t(gian = 2)\n"
     "    |      ^^^^\n"
     "    did you mean gain?\n"},
    {"NoElement",
     "plant p\ntype t {\n  mode off, on\n  observe o: x, y\n}\na[1..3]: t()\n"
     "clause a[4].mode = on implies a[1].o = x\nclause a[1].mode in (off, on)\n",
     "p.plant:7:10: error: a has no element of this number\n"
     "  7 | clause a[4].mode = on implies a[1].o = x\n"
     "    |          ^\n"
     "    they go from 1 to 3\n"},
    {"NoName", "type t {\n  mode off\n}\na: t()\n",
     "error: the plant has no name\n"
     "  begin the file with plant and a name\n"},
    {"NoPeriod", "plant p\ntype t {\n  variable x\n  measure x\n}\na: t()\n",
     "p.plant:1:7: error: this plant has variables and no sample period\n"
     "  1 | plant p\n"
     "    |       ^\n"
     "    write, for example, sample 1 s\n"},
    {"NoComponents", "plant p\ntype t {\n  mode off\n}\n",
     "p.plant:1:7: error: this plant has no components\n"
     "  1 | plant p\n"
     "    |       ^\n"
     "    make one of a type, such as room: room()\n"},
};
INSTANTIATE_TEST_SUITE_P(Names, ErrorsTest, testing::ValuesIn(ofNames), nameOf);

// ---- All in one go, and none that only follows ----

TEST(ErrorsTest, AllAreToldInOneGo) {
    std::string const all = told(
        "plant p\n"
        "sample 1 parsec\n"
        "type t {\n"
        "  variable x = 0,\n"
        "  mode off, on\n"
        "  x integrates 2 * z\n"
        "  move from off to onn with 3\n"
        "}\n"
        "a: t()\n");
    std::size_t count = 0;
    for (std::size_t at = 0; (at = all.find("error: ", at)) != std::string::npos; ++at)
        ++count;
    // parsec; the comma that nothing follows; z; onn; 3.
    EXPECT_EQ(count, 5u) << all;
}

TEST(ErrorsTest, WhatFollowsFromAnotherIsNotTold) {
    EXPECT_EQ(told("plant p\nsample 1 s\ntype t {\n  variable x [ = 3\n  x integrates 2\n  measure "
                   "x\n}\na: t()\n"),
              "p.plant:4:16: error: here stands =\n"
              "  4 |   variable x [ = 3\n"
              "    |                ^\n"
              "    expected is a unit, such as m or kg/s\n");
}

TEST(ErrorsTest, ATypeWithAWrongHeaderIsStillRead) {
    EXPECT_EQ(told("plant p\ntype t( {\n  mode off, off\n}\na: t()\n"),
              "p.plant:2:9: error: here stands {\n"
              "  2 | type t( {\n"
              "    |         ^\n"
              "    expected is the name of something that each instance gives\n");
}

TEST(ErrorsTest, ManyInstancesTellAMistakeOfTheirTypeOnce) {
    EXPECT_EQ(told("plant p\ntype t {\n  mode off\n  idle on with 1\n}\na[1..50]: t()\n"),
              "p.plant:4:8: error: there is no mode on\n"
              "  4 |   idle on with 1\n"
              "    |        ^^\n"
              "    the modes are off\n");
}

TEST(ErrorsTest, DeepNestingIsAMistake) {
    std::string const open(5000, '('), close(5000, ')');
    std::string const shown = told("plant p\nsample 1 s\ntype t {\n  parameter a = " + open + "1" +
                                   close + "\n  mode off\n}\na: t()\n");
    EXPECT_NE(shown.find("error: this is nested too deeply"), std::string::npos) << shown;
    EXPECT_EQ(shown.find("error: ", shown.find("error: ") + 1), std::string::npos) << shown;
}

TEST(ErrorsTest, LongListsAreNotDeep) {
    std::string sum = "1";
    for (int i = 0; i < 100000; ++i)
        sum += " + 1";
    EXPECT_EQ(told("plant p\nsample 1 s\ntype t {\n  parameter a = " + sum +
                   "\n  variable x\n  x = a; measure x\n}\na: t()\n"),
              "");
}

// ---- Includes ----

TEST(ErrorsTest, AMistakeInAnIncludedFileIsToldThere) {
    language_fixture::TextReader reader(
        {{"d/p.plant", "plant p\ninclude \"lib/t.plant\"\na: t()\n"},
         {"d/lib/t.plant", "type t {\n  mode off,\n}\n"}});
    PlantFile const file("d/p.plant", reader);
    EXPECT_EQ(rendered(file.messages(), file.sources()),
              "d/lib/t.plant:2:12: error: here stands the end of the line\n"
              "  2 |   mode off,\n"
              "    |            ^\n"
              "    expected is a value\n");
}

namespace includes {

// One that knows a folder of shipped texts.
class WithLibrary : public language_fixture::TextReader {
public:
    using TextReader::TextReader;
    std::string shipped(std::string const& name) override { return "shipped/" + name; }
};

std::string const user = "plant p\ninclude \"t.plant\"\na: t()\n";
std::string const good = "type t {\n  mode off\n}\n";
std::string const bad = "type t {\n  mode off,\n}\n";

std::string told(std::map<std::string, std::string> texts) {
    WithLibrary reader(std::move(texts));
    PlantFile const file("d/p.plant", reader);
    return rendered(file.messages(), file.sources());
}

}  // namespace includes

TEST(ErrorsTest, WhatIsNotBesideIsLookedForInTheLibrary) {
    using namespace includes;
    EXPECT_EQ(told({{"d/p.plant", user}, {"shipped/t.plant", good}}), "");
    EXPECT_EQ(told({{"d/p.plant", user}, {"d/t.plant", good}, {"shipped/t.plant", bad}}), "");
    EXPECT_EQ(told({{"d/p.plant", user}, {"shipped/t.plant", bad}}),
              "shipped/t.plant:2:12: error: here stands the end of the line\n"
              "  2 |   mode off,\n"
              "    |            ^\n"
              "    expected is a value\n");
}

// Neither place has it: the one beside the plant is where it is missed.
TEST(ErrorsTest, WhatIsNowhereIsMissedBesideThePlant) {
    std::string const message = includes::told({{"d/p.plant", includes::user}});
    EXPECT_EQ(message.substr(0, message.find('\n')),
              "d/p.plant:2:9: error: the file d/t.plant cannot be read");
}

// Also when two files that stand apart include it, and from within the library.
TEST(ErrorsTest, AShippedTextIsReadOnce) {
    EXPECT_EQ(includes::told(
                  {{"d/p.plant", "plant p\ninclude \"e/q.plant\"\ninclude \"t.plant\"\na: t()\n"},
                   {"d/e/q.plant", "include \"t.plant\"\n"},
                   {"shipped/t.plant", "include \"u.plant\"\n" + includes::good},
                   {"shipped/u.plant", "include \"t.plant\"\n"}}),
              "");
}

TEST(ErrorsTest, FilesMayIncludeEachOther) {
    language_fixture::TextReader reader(
        {{"p.plant", "plant p\ninclude \"t.plant\"\na: t()\n"},
         {"t.plant", "include \"p.plant\"\ntype t {\n  mode off\n}\n"}});
    PlantFile const file("p.plant", reader);
    EXPECT_EQ(rendered(file.messages(), file.sources()), "");
    EXPECT_EQ(file.flat().components.size(), 1u);
}

// A hundred may stand in each other, so the one that the hundredth asks for is not read.
TEST(ErrorsTest, FilesIncludeEachOtherTooDeeply) {
    std::map<std::string, std::string> texts{{"p.plant", "plant p\ninclude \"1.plant\"\n"}};
    for (int i = 1; i <= 101; ++i)
        texts[std::to_string(i) + ".plant"] = "include \"" + std::to_string(i + 1) + ".plant\"\n";
    language_fixture::TextReader reader(texts);
    PlantFile const file("p.plant", reader);
    std::string const message = rendered(file.messages(), file.sources());
    EXPECT_EQ(message,
              "100.plant:1:9: error: files include each other too deeply\n"
              "  1 | include \"101.plant\"\n"
              "    |         ^^^^^^^^^^^\n"
              "    no more than 100 may stand in each other\n");
}

}  // namespace
