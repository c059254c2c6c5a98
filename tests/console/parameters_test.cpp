// The words after a command.
#include "console/parameters.h"

#include <gtest/gtest.h>

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

}  // namespace
