// Every warning, as it is shown, and what looks like it and is meant.
#include <gtest/gtest.h>

#include "language/text_fixture.h"

using language_fixture::told;

namespace {

TEST(WarningsTest, AModeThatNothingEnters) {
    EXPECT_EQ(told("plant p\ntype t {\n  mode on, off, lost\n  observe o: x, y\n  move from on to "
                   "off with 1\n  clause mode = on iff o = x\n}\na: t()\n"),
              "p.plant:3:17: warning: nothing enters the mode lost\n"
              "  3 |   mode on, off, lost\n"
              "    |                 ^^^^\n"
              "    write a move or a fault that leads to it, or take it out\n");
}

// The mode it starts in, and the one that stands for all that has no name.
TEST(WarningsTest, TheFirstModeAndUnknownNeedNoEntrance) {
    EXPECT_EQ(told("plant p\ntype t {\n  mode on, unknown\n}\na: t()\n"), "");
}

// 0.6 and 0.7 are due at once.
TEST(WarningsTest, ProbabilitiesOverOne) {
    EXPECT_EQ(
        told("plant p\ntype t {\n  mode on, off\n  observe o: x, y\n  clause mode = on iff o = "
             "x\n  move from on to off with 0.6\n  idle on with 0.2\n  fail from on to off "
             "with 0.7\n}\na: t()\n"),
        "p.plant:6:3: warning: the moves that leave on while this one is due have "
        "probabilities that sum to 1.3\n"
        "  6 |   move from on to off with 0.6\n"
        "    |   ^^^^^^^^^^^^^^^^^^^^^^^^^^^^\n"
        "    let them sum to 1\n"
        "\n"
        "p.plant:7:3: warning: the moves that leave on while this one is due have "
        "probabilities that sum to 1.3\n"
        "  7 |   idle on with 0.2\n"
        "    |   ^^^^^^^^^^^^^^^^\n"
        "    let them sum to 1\n"
        "\n"
        "p.plant:8:3: warning: the moves that leave on while this one is due have "
        "probabilities that sum to 1.3\n"
        "  8 |   fail from on to off with 0.7\n"
        "    |   ^^^^^^^^^^^^^^^^^^^^^^^^^^^^\n"
        "    let them sum to 1\n");
}

// The guarded move takes what the idle one has otherwise: each situation sums to 1.
TEST(WarningsTest, SituationsAreSummedOneByOne) {
    EXPECT_EQ(
        told("plant p\ntype t {\n  command c: none, go\n  mode on, off\n  observe o: x, y\n  "
             "clause mode = on iff o = x\n  move from on when c = go to off with 0.99\n  idle "
             "on when c != go with 0.99\n  fail from on to off with 0.01\n  idle off with "
             "1\n}\na: t()\n"),
        "");
}

std::string lamp(std::string const& list) {
    return "plant p\nsample 1 s\ntype t {\n  variable x\n  mode on, off\n  x = 1 when mode = on\n "
           " " +
           list +
           " x\n  fail from on to off with 0.01\n  idle on with 0.99\n  idle off with 1\n}\na: "
           "t()\n";
}

TEST(WarningsTest, AFaultThatNoMeasureShows) {
    EXPECT_EQ(told(lamp("display")),
              "p.plant:8:3: warning: no measure can show this fault\n"
              "  8 |   fail from on to off with 0.01\n"
              "    |   ^^^^^^^^^^^^^^^^^^^^^^^^^^^^^\n"
              "    measure something that depends on a.mode\n");
    EXPECT_EQ(told(lamp("measure")), "");
}

std::string hiddenFault(std::string const& statements) {
    return "plant p\nsample 1 s\ntype t {\n  variable x = 1 in [0, 9]\n  variable y = 1 in [0, 9]\n"
           "  mode on, off\n  " +
           statements + "\n  measure x\n  idle on with 0.99\n  idle off with 1\n}\na: t()\n";
}

// A fault is seen in what its move sets, in what is worked out from that, and through a constraint;
// one that sets something else is not.
TEST(WarningsTest, AFaultIsSeenInWhatItSets) {
    std::string const fault = "fail from on to off with 0.01 setting ";
    EXPECT_EQ(told(hiddenFault("x follows x @ 1; y follows y @ 1; display y; " + fault + "x = 3")),
              "");
    EXPECT_EQ(told(hiddenFault("x = 2 * y @ 1; y follows y @ 1; " + fault + "y = 3")), "");
    EXPECT_NE(told(hiddenFault("x follows x @ 1; y follows y @ 1; display y; " + fault + "y = 3"))
                  .find("no measure can show this fault"),
              std::string::npos);
}

TEST(WarningsTest, AFaultIsSeenThroughAConstraint) {
    std::string const fault = "fail from on to off with 0.01; ";
    EXPECT_EQ(
        told(hiddenFault(fault + "y = 2 when mode = on; x follows x @ 1; constraint x = y + 1")),
        "");
    EXPECT_NE(told(hiddenFault(fault + "y = 2 when mode = on; x follows x @ 1; display y"))
                  .find("no measure can show this fault"),
              std::string::npos);
}

// What a move sets something to, and the condition that it asks for, are read.
TEST(WarningsTest, WhatAMoveNeedsIsRead) {
    std::string const moved =
        "x = 2 when mode = on; y follows y @ 1; fail from on to off with 0.01 setting x = ";
    EXPECT_EQ(told(hiddenFault(moved + "2 * y")), "");
    EXPECT_EQ(told(hiddenFault(moved + "3 if y > 2")), "");
    // Its own past is read by y itself.
    EXPECT_EQ(told(hiddenFault(
                       "x = 2 when mode = on; y = x; fail from on to off with 0.01 setting x = 3"))
                  .substr(0, 46),
              "p.plant:5:12: warning: nothing reads the varia");
}

TEST(WarningsTest, AVariableThatNothingReads) {
    EXPECT_EQ(
        told("plant p\nsample 1 s\ntype t {\n  variable x, y\n  x = 1\n  y = 2 * x\n  measure "
             "x\n}\na: t()\n"),
        "p.plant:4:15: warning: nothing reads the variable y\n"
        "  4 |   variable x, y\n"
        "    |               ^\n"
        "    display it, use it, or take it out\n");
}

std::string gauge(std::string const& statements) {
    return "plant p\nsample 1 s\ntype t {\n  variable x, y = 2\n  command c: none, go\n  mode on, "
           "off\n" +
           statements + "  measure x, y\n}\na: t()\n";
}

// Whatever follows from it, it is foretold to stay as it began.
TEST(WarningsTest, AMeasureThatNothingPredicts) {
    std::string const warned =
        "p.plant:4:15: warning: nothing predicts y, so that its measures are compared with its "
        "first value for good\n"
        "  4 |   variable x, y = 2\n"
        "    |               ^\n"
        "    write input y, in place of measure y, or an equation for it\n";
    std::string const moves = "  move from on to off when c = go with 1\n";
    EXPECT_EQ(told(gauge(moves + "  x = 3 * y\n")), warned);
    EXPECT_EQ(told(gauge(moves + "  x = 3\n  constraint x = y\n")), warned)
        << "a constraint narrows its left side alone";
}

// By an equation, if only at times, by a constraint, or by what a move sets. What comes from the
// input file needs no prediction.
TEST(WarningsTest, AMeasureThatSomethingPredicts) {
    std::string const move = "  x = 3 * y\n  move from on to off when c = go with 1";
    EXPECT_EQ(told(gauge(move + "\n  y = 2 * x @ 1 when mode = on\n")), "");
    EXPECT_EQ(told(gauge(move + "\n  constraint y = x\n")), "");
    EXPECT_EQ(told(gauge(move + " setting y = 3\n")), "");
    EXPECT_EQ(told(gauge(move + "\n  input y\n")), "");
}

// What the check of plants finds is told at the place that it is about. In a loop the order of the
// text is kept, so it is x that would have to wait for y.
TEST(WarningsTest, FindingsOfTheCheckStandInTheText) {
    EXPECT_EQ(
        told("plant p\nsample 1 s\ntype t {\n  variable x, y\n  x = y\n  y = 2 * x\n  measure "
             "x\n}\na: t()\n"),
        "p.plant:5:3: error: influence a.i1 closes a loop without delay from a.x to itself\n"
        "  5 |   x = y\n"
        "    |   ^^^^^\n"
        "    give one of its influences a delay\n");
}

}  // namespace
