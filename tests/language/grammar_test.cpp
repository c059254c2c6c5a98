// What the parser expects at every place where something else can stand.
#include "language/slips.h"

using namespace language_fixture;

namespace {

class GrammarOfTypesTest : public testing::TestWithParam<Slip> {};

TEST_P(GrammarOfTypesTest, IsToldWhole) {
    expectTold(inType, GetParam());
}

class GrammarOfFilesTest : public testing::TestWithParam<Slip> {};

TEST_P(GrammarOfFilesTest, IsToldWhole) {
    expectTold(inFile, GetParam());
}

Slip const inTypes[] = {
    // Statements
    {"~3~ = x", "here stands 3",
     "expected is a statement, such as variable, mode, move or an equation"},
    {"parameter ~3~ = 4", "here stands 3", "expected is the name of a parameter"},
    {"parameter k~~", "here stands the end of the line",
     "expected is = and the value of the parameter"},
    {"variable ~3~", "here stands 3", "expected is the name of a variable"},
    {"measure ~3~", "here stands 3", "expected is a name"},
    {"command ~3~: none", "here stands 3", "expected is the name of what is chosen"},
    {"command none~,~ go", "here stands ,", "expected is : and the values"},
    {"observe o: p, ~+~", "here stands +", "expected is a value"},
    {"region r: lo~,~ hi", "here stands ,", "expected is when"},
    {"constraint x ~follows~ y", "here stands follows", "expected is = and what it is equal to"},
    {"define ~3~ = x", "here stands 3", "expected is a name for a part of constraints"},
    {"define d ~x~", "here stands x", "expected is = and what it stands for"},
    // Moves
    {"move from on ~from~ off to on with 1", "from stands here a second time", "keep one of them"},
    {"move from on to off ~to~ on with 1", "to stands here a second time", "keep one of them"},
    {"move from on to off with 1 ~with~ 1", "with stands here a second time", "keep one of them"},
    {"move from on to off with 1 setting x = 1 ~setting~ x = 2",
     "setting stands here a second time", "keep one of them"},
    {"move from on to off with 1 setting x~~", "here stands the end of the line",
     "expected is = and the value that it is set to"},
    {"~idle~ on", "this idle move has no probability", "write with and a number from 0 to 1"},
    // Equations
    {"y lags x~~", "here stands the end of the line", "expected is within"},
    {"y responds ~x~", "here stands x", "expected is to"},
    {"y responds to x~~", "here stands the end of the line",
     "expected is damping, or by and a transfer function"},
    {"y responds to x damping 0.5~~", "here stands the end of the line", "expected is frequency"},
    {"y responds to x by ~1~ / (1 + s)", "here stands 1", "expected is ( and a polynomial in s"},
    {"y responds to x by (1)~~", "here stands the end of the line",
     "expected is / and the denominator in parentheses"},
    {"y responds to x by (1) / (1 + s^~x~)", "here stands x", "expected is 1 or 2"},
    {"y responds to x by (1 + s~,~ 2) / (1 + s^2)", "here stands ,", "expected is + or )"},
    {"y responds to x by (s + ~2 s~) / (1 + s^2)", "this power of s stands here a second time",
     "add both numbers"},
    // Numbers and names
    {"y = ~)~", "here stands )", "expected is a number, an interval or a name"},
    {"y = ~\"l\"~", "here stands a text in quotes", "expected is a number, an interval or a name"},
    {"y = [1 ~2~] * x", "here stands 2", "expected is a comma and the upper end of the interval"},
    {"y = [1, 2~,~ 3] * x", "here stands ,", "expected is ]"},
    {"y = ~to~", "to is a word of the language, and no name", "write a name"},
    {"y = ~to~: x", "to is a word of the language, and no name", "write a label"},
    {"y = a.~3~", "here stands 3", "expected is a name behind the dot"},
    {"y = a[1~,~ 2]", "here stands ,", "expected is ]"},
    {"y = 2 * (x~,~ 3)", "here stands ,", "expected is )"},
    // Units
    {"parameter k [m ~=~ 1]", "here stands =", "expected is ]"},
    {"parameter k [~3~] = 1", "here stands 3", "expected is a unit, such as m or kg/s"},
    {"parameter k [m/~3~] = 1", "here stands 3", "expected is a unit"},
    {"parameter k [m^~x~] = 1", "here stands x", "expected is the power, a whole number"},
    {"parameter k [m/s^~-~1] = 1", "here stands -", "expected is the power, a whole number"},
    // Conditions
    {"y = x when mode in ~on~", "here stands on", "expected is ( and values, or an interval"},
    {"y = x when mode in (on ~off~)", "here stands off", "expected is a comma or )"},
    {"y = x when (mode = on~,~ x)", "here stands ,", "expected is )"},
    {"clause all ~i~ in 1..2: mode = on", "here stands i", "expected is ( and an index"},
    {"clause all(~1~..2: mode = on)", "here stands 1", "expected is the name of the index"},
    {"clause all(i ~=~ 1..2: mode = on)", "here stands =", "expected is in"},
    {"clause all(i in 1~:~ mode = on)", "here stands :", "expected is .. and the last value"},
    {"clause all(i in 1..2~,~ mode = on)", "here stands ,", "expected is : and a condition"},
    {"clause all(i in 1..2: mode = on~,~ x)", "here stands ,", "expected is )"},
};
INSTANTIATE_TEST_SUITE_P(Statements, GrammarOfTypesTest, testing::ValuesIn(inTypes));

Slip const inFiles[] = {
    {"~3~ = x", "here stands 3",
     "expected is a statement, such as plant, type, an instance or an equation"},
    {"plant ~3~", "here stands 3", "expected is the name of the plant"},
    {"include ~t~.plant", "here stands t", "expected is the path of a file, in quotes"},
    {"constant ~3~ = 4", "here stands 3", "expected is the name of the constant"},
    {"constant n~~", "here stands the end of the line", "expected is = and a number"},
    {"set ~3~ = 4", "here stands 3", "expected is the name of a constant"},
    // Types
    {"type ~{~ mode off }", "here stands {", "expected is the name of the type"},
    {"type u ~mode~ off", "here stands mode",
     "expected is { and what the components of this type have"},
    {"type u(~3~) { mode off }", "here stands 3",
     "expected is the name of something that each instance gives"},
    {"type u(g ~h~) { mode off }", "here stands h", "expected is a comma or )"},
    // Loops
    {"for ~3~ in 1..2 { measure a.y }", "here stands 3", "expected is the name of the index"},
    {"for i ~=~ 1..2 { measure a.y }", "here stands =", "expected is in"},
    {"for i in 1 ~to~ 2 { measure a.y }", "here stands to", "expected is .. and the last value"},
    {"for i in 1..2~:~ measure a.y", "here stands :", "expected is { and what is to be repeated"},
    // Instances
    {"~all~: t()", "all is a word of the language, and no name", "write the name of a component"},
    {"b[1~]~: t()", "here stands ]", "expected is .. and the last value"},
    {"b[1..2~,~ 3]: t()", "here stands ,", "expected is ]"},
    {"b[1..2]: ~3~", "here stands 3", "expected is a type"},
    {"b: t() symbol ~3~", "here stands 3", "expected is the symbol"},
    {"b: t(~3~)", "here stands 3", "expected is the name of something that the type asks for"},
    {"b: t(k~)~", "here stands )", "expected is = and what it is"},
    {"b: t(k = 1 ~2~)", "here stands 2", "expected is a comma or )"},
};
INSTANTIATE_TEST_SUITE_P(Statements, GrammarOfFilesTest, testing::ValuesIn(inFiles));

TEST(GrammarTest, ALoopThatIsNeverClosed) {
    EXPECT_EQ(told("plant p\ntype t {\n  mode off\n}\na: t()\nfor i in 1..2 {\n  clause a.mode = "
                   "off\n"),
              "p.plant:6:15: error: this { is never closed\n"
              "  6 | for i in 1..2 {\n"
              "    |               ^\n"
              "    write } behind the last statement that is repeated\n");
}

TEST(GrammarTest, TheEndOfTheFileIsCalledSo) {
    EXPECT_EQ(told("plant p\ntype t {\n  mode off\n}\na: t()\nfor i in 1..2"),
              "p.plant:6:14: error: here stands the end of the file\n"
              "  6 | for i in 1..2\n"
              "    |              ^\n"
              "    expected is { and what is to be repeated\n");
    EXPECT_EQ(told("plant p\ntype t {\n  mode off\n}\na: t();"), "");
}

TEST(GrammarTest, ASemicolonIsCalledSo) {
    expectTold(inFile, {"window~;~ order a", "here stands a semicolon",
                        "expected is a number, an interval or a name"});
}

// A parenthesis holds a sum, and that a product: two levels each. The statement and its type are
// two more, so that of 200 levels the hundredth parenthesis is the first that is too deep.
TEST(GrammarTest, NestingEndsSomewhere) {
    std::string const line = "  parameter a = " + std::string(100, '(') + "1";
    EXPECT_EQ(told("plant p\nsample 1 s\ntype t {\n" + line + "\n  mode off\n}\na: t()\n"),
              "p.plant:4:116: error: this is nested too deeply\n"
              "  4 | " +
                  line +
                  "\n"
                  "    | " +
                  std::string(115, ' ') +
                  "^\n"
                  "    name parts of it, so that less stands inside each other\n");
}

}  // namespace
