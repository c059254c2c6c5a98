// The words after a command.
#include "console/parameters.h"

#include "console_fixture.h"

namespace {

TEST(Parameters, NoTextHasNone) {
    EXPECT_EQ(Parameters(nullptr).next(), std::nullopt);
    EXPECT_EQ(Parameters("").next(), std::nullopt);
    EXPECT_EQ(Parameters("   ").next(), std::nullopt);
}

TEST(Parameters, AreSeparatedByBlanks) {
    Parameters parameters("10 nofault   3");
    EXPECT_EQ(parameters.next(), "10");
    EXPECT_EQ(parameters.next(), "nofault");
    EXPECT_EQ(parameters.next(), "3");
    EXPECT_EQ(parameters.next(), std::nullopt);
    EXPECT_EQ(parameters.next(), std::nullopt) << "the end stays the end";
}

TEST(Parameters, BlanksAtBothEndsAreNone) {
    Parameters parameters("  one  ");
    EXPECT_EQ(parameters.next(), "one");
    EXPECT_EQ(parameters.next(), std::nullopt);
}

TEST(Parameters, ATabDoesNotSeparate) {
    Parameters parameters("one\ttwo three");
    EXPECT_EQ(parameters.next(), "one\ttwo");
    EXPECT_EQ(parameters.next(), "three");
}

TEST(Parameters, AreStripped) {
    Parameters parameters("\tone\t \t two");
    EXPECT_EQ(parameters.next(), "one");
    EXPECT_EQ(parameters.next(), "") << "a word of white space is a word";
    EXPECT_EQ(parameters.next(), "two");
}

TEST(IsNumeric, AsksForADigitInFront) {
    EXPECT_TRUE(isNumeric("0"));
    EXPECT_TRUE(isNumeric("10"));
    EXPECT_TRUE(isNumeric("2.9"));
    EXPECT_TRUE(isNumeric("3x"));
    EXPECT_FALSE(isNumeric("-1"));
    EXPECT_FALSE(isNumeric("+1"));
    EXPECT_FALSE(isNumeric(".5"));
    EXPECT_FALSE(isNumeric("x3"));
    EXPECT_FALSE(isNumeric(" 3"));
    EXPECT_FALSE(isNumeric(""));
    EXPECT_FALSE(isNumeric("\xb2")) << "a superscript two of Latin-1 is no digit";
}

double number = 0.0;  // what the last word was read as

std::string toldOf(char const* word) {
    return streamsOf([word] { number = numberOf(word); }).err;
}

TEST(NumberOf, ReadsDecimalNumbersInSilence) {
    for (auto const& [word, value] : {std::pair<char const*, double>{"0", 0.0},
                                      {"10", 10.0},
                                      {"2.9", 2.9},
                                      {"3.", 3.0},
                                      {"1e-3", 0.001},
                                      {"2E+1", 20.0}}) {
        EXPECT_EQ(toldOf(word), "");
        EXPECT_EQ(number, value) << word;
    }
}

TEST(NumberOf, TellsWhatOtherWordsAreReadAs) {
    EXPECT_EQ(toldOf("3abc"), "Parameter 3abc is read as 3\n");
    EXPECT_EQ(number, 3.0);
    EXPECT_EQ(toldOf("0x10"), "Parameter 0x10 is read as 16\n");
    EXPECT_EQ(number, 16.0);
    EXPECT_EQ(toldOf("0,5"), "Parameter 0,5 is read as 0\n");
    EXPECT_EQ(toldOf("1e"), "Parameter 1e is read as 1\n");
    EXPECT_EQ(toldOf("1-2"), "Parameter 1-2 is read as 1\n");
    EXPECT_EQ(toldOf("1.2.3"), "Parameter 1.2.3 is read as 1.2\n");
}

}  // namespace
