// Every mistake in a statement that reads well by its grammar.
#include "language/slips.h"

using namespace language_fixture;

namespace {

class SlipsInTypesTest : public testing::TestWithParam<Slip> {};

TEST_P(SlipsInTypesTest, IsToldWhole) {
    expectTold(inType, GetParam());
}

class SlipsInFilesTest : public testing::TestWithParam<Slip> {};

TEST_P(SlipsInFilesTest, IsToldWhole) {
    expectTold(inFile, GetParam());
}

Slip const inTypes[] = {
    // Statements of a file
    {"~constant k = 1~", "this is told of the whole plant", "write it outside of types and loops"},
    {"~window 3~", "this is told of the whole plant", "write it outside of types"},
    // Numbers
    {"parameter a = ~x~", "x is not a number",
     "a variable changes from step to step: use a constant or a parameter here"},
    {"parameter a = 1 / ~0~", "this divides by 0", "divide by something else than 0"},
    {"parameter a = 1 / ~[-1, 1]~", "this divides by an interval that holds 0",
     "divide by something else than 0"},
    {"parameter a = ~[1, 2]~", "a parameter is one number",
     "use the interval in the equations, or a constant of that name"},
    {"parameter a = ~1e200 * 1e200~", "this number is too large to be held",
     "choose units in which it is smaller"},
    {"variable z = ~[2, 1]~; y = z", "this interval ends before it begins",
     "write the smaller number first"},
    {"parameter ~a~ = a", "the value of a is worked out from itself", "give it a number"},
    // Equations
    {"y = ~x * y~", "the product of two variables is not linear",
     "enclose one of them by an interval, or use a constraint"},
    {"y = 2 / ~x~", "a division by a variable is not linear",
     "enclose one of them by an interval, or use a constraint"},
    {"y = ~x ^ 2~", "a power of a variable is not linear",
     "enclose it by an interval times the variable, or use a constraint"},
    {"y = 2 * ~(x + 1)~", "this sum in parentheses holds a variable", "write its terms one by one"},
    {"y = x @ ~1.5~", "a delay in steps must be a whole number, of at least 0 and at most 1000000",
     "write such a number"},
    {"y = x @ ~1.5 s~", "this delay is no whole number of sample periods",
     "write it in steps, or choose another sample period"},
    {"y = ~x @ 3..2~", "this delay ends before it begins", "write the shorter delay first"},
    {"y = ~3 @ 1~", "only a variable can be delayed", "write x @ 1 for a variable x"},
    {"y = ~mode~", "mode is no number and no variable", "an equation is made of these"},
    {"~l~: y = x + 2 * x", "this label stands before several terms",
     "write a label before each term, as in y = i1: 2 * u + i2: 3 * v"},
    {"y = l: x + ~l~: 2 * x", "two terms are labelled a.l",
     "give them labels of their own, or none"},
    {"y responds to x by (1 + ~s^3~) / (1 + s^2)",
     "this transfer function is of higher than second order", "divide it into several variables"},
    // Conditions
    {"y = x when ~c = go~", "an influence cannot depend on c, which is a command",
     "let a move change a mode, and ask for the mode"},
    {"y = x when ~mode~", "this is no condition", "compare something, as in mode = mode"},
    {"y = x when ~mode < on~", "mode has values that have no order", "ask with = or !="},
    {"y = x when ~1 < 2~", "this compares numbers, and never changes", "compare a variable"},
    {"y = x when x < ~[1, 2]~", "a variable is compared with one number",
     "write in before an interval"},
    {"region r: lo when ~x < 1 or x > 2~, hi when x >= 1",
     "a region is an interval of one variable",
     "compare the variable with numbers: x < 10, or 10 <= x < 17"},
    {"region r: lo when ~2 < x < 1~, hi when x >= 1", "no value of x can be there",
     "put the lower threshold first"},
    // Moves
    {"move from on to ~on~ with 1", "this move stays where it is",
     "write idle, in place of move from and to"},
    {"move from on to off with ~2~", "a probability lies between 0 and 1", "write such a number"},
    {"move from on when ~x > 1~ to off with 1",
     "a guard asks for modes, regions, commands and observables, and x is a variable",
     "make a region with this threshold, and ask for its value"},
    {"move from on when ~c = go or c = none~ to off with 1", "a guard cannot say or",
     "write a move for each case"},
    {"move from ~c = go~ to off with 1", "a move leads from one mode of its component to another",
     "write the mode alone, or for one of several variables power = on"},
    {"clause ~x > 1~ implies c = go",
     "x is a variable, and a clause is over modes, regions, commands and observables",
     "make a region of the variable, and ask for its value"},
    // Lists
    {"display ~z~", "there is nothing of the name z", "declare it, or correct its spelling"},
    {"display x; display ~mode~", "mode is no variable, and here belongs a variable",
     "name a variable"},
    // Units
    {"parameter a [~furlong~] = 1", "there is no unit furlong",
     "units are m g s A K mol cd Hz N Pa bar J W C V ohm F H L with their prefixes, and min h d "
     "rad percent degC"},
    {"parameter a [m] = ~3 [cm]~", "this value is in 0.01 m, and m belongs here",
     "units are not converted: write it in m"},
    {"variable h [m], v [m/s] ; h = ~v~; v = 2 * h; display h, v",
     "this is in m*s^-1, and m belongs here", "correct the unit, or the equation"},
    {"y responds to x by ~(1 + s) / (1 + s)~",
     "a transfer function has a numerator of first order at most and a denominator of second "
     "order",
     "write by (n1 + n2 s) / (d0 + d1 s + d2 s^2)"},
    {"y lags x within ~3 [m]~", "this time is in m, and s belongs here",
     "correct the unit, or the equation"},
    {"variable h [m] in ~[0, 1] [s]~", "this interval is in s, and m belongs here",
     "correct the unit, or the equation"},
    {"variable h [m], v [m]; h integrates ~v~; display h, v",
     "what this integrates to is in m*s, and m belongs here", "correct the unit, or the equation"},
    {"variable h [m], v [m]; h integrates twice ~v~; display h, v",
     "what this integrates to is in m*s^2, and m belongs here",
     "correct the unit, or the equation"},
    {"parameter k = 1 [m] + ~1 [s]~", "this part is in s, and m belongs here",
     "correct the unit, or the equation"},
    {"y = x @ ~3 m~", "this is in m, and no time", "give it in s, min or h"},
    {"y = x @ ~0 s~", "a time must be one number above 0", "give it in seconds"},
    // Numbers that are none
    {"parameter k = ~x @ 1~", "only a term of an equation can be delayed",
     "let a variable follow from it, and use that"},
    {"constraint x = 2 * ~(y @ 1)~", "only a term of an equation can be delayed",
     "let a variable follow from it, and use that"},
    {"constraint x = ~mode~", "mode is not a number", "use a constant or a parameter here"},
    {"parameter k = ~[1, 2] ^ 2~", "this power is no number", "raise a number to a number"},
    {"parameter k = ~0 ^ -1~", "this power is no number", "raise a number to a number"},
    {"variable h in ~3~", "bounds are an interval", "write [lowest, highest]"},
    {"move from on to off with ~[0, 1]~", "a probability cannot be an interval",
     "write one number"},
    // Equations
    {"~mode~ = 3", "mode is no variable, and here belongs the variable that follows",
     "name a variable"},
    {"parameter k = 1; ~k~ = x", "k is a parameter, and stays as it is",
     "declare it as a variable"},
    {"y = x keeping ~0~", "what is kept must be a whole number, of at least 1 and at most 1000000",
     "write such a number"},
    {"y = 2 * ~(l: x)~", "a label stands before a whole term", "move it to the front"},
    {"y = 2 * (~l: 3~ + 1)", "a label stands before a whole term", "move it to the front"},
    {"variable un; y = ~3~",
     "numbers alone act through the parameter un, and that is something else",
     "rename what is called un here, or declare parameter un = 1"},
    {"parameter k = 1; y = ~k @ 1~", "a parameter stays as it is, and has no past",
     "take the delay out"},
    // Names
    {"y = x.~foo~", "what stands before .foo is no component, and has no members",
     "take the dot and what is behind it out"},
    {"y = ~a~[1].x", "a is no array", "take the brackets out"},
    {"y = a.~zzzzz~", "a component of type t has no zzzzz", "declare it there"},
    // Conditions
    {"y = x when ~mode = on implies mode = off~", "only a clause can say implies or iff",
     "write it with and, or and not"},
    {"y = x when mode = ~xyzzy~", "mode has no value xyzzy", "its values are off or on"},
    {"y = x when ~3~ in [1, 2]", "in asks where a variable is", "write its name before in"},
    {"y = x when ~x in (on, off)~", "x has no values to be among",
     "ask for an interval: in [1, 2]"},
    {"y = x when ~a in (on, off)~", "a has no values to be among",
     "name a mode, a region or a command"},
    {"observe o: p, q; y = x when ~o = p~", "an influence cannot depend on o, which is observed",
     "let a move change a mode, and ask for the mode"},
    {"region r: lo when x < 1, hi when ~y >= 1~",
     "the values of a region are intervals of one variable, and the first is of x",
     "make a region of its own for y"},
    {"~clause never~", "this clause can never hold", "take it out, or say what can hold"},
    {"~clause any(i in 1..0: mode = on)~", "this clause can never hold",
     "take it out, or say what can hold"},
    {"clause ~all(i in 1..200: mode = on) or all(i in 1..200: mode = off)~",
     "this makes too many clauses", "write it as several clauses over fewer alternatives"},
    // Values
    {"command h: none, go, ~go~", "go is a value a second time", "keep one of them"},
    {"mode m: lo, hi starts ~zzzzz~", "zzzzz is none of the values", "they are lo or hi"},
    {"mode m: lo, high starts ~hgih~", "hgih is none of the values", "did you mean high?"},
    {"mode ~m~: starts lo", "m has no values", "name them"},
    // Moves
    {"mode m: lo, hi; move from on to ~hi~ with 1; move from lo to hi with 1",
     "this move leaves a value of one variable for one of another",
     "let from and to name values of one variable"},
    {"move from on when ~never~ to off with 1", "this move can never be made", "take it out"},
    {"move from on to off with 1 setting ~mode~ = 3",
     "mode is no variable, and here belongs the variable that is set", "name a variable"},
    {"parameter k = 1; move from on to off with 1 setting ~k~ = 3", "a parameter stays as it is",
     "set a variable"},
    {"command d: none, go; move from on when c = go and d = go to off with 1; ~idle others~",
     "when to stay in on does not follow from a move that asks for several things at once",
     "write this idle move yourself"},
    // Lists and constraints
    {"import ~x~", "x is no command of a component", "a type imports commands of other components"},
    {"parameter k = 1; measure ~k~", "k is a parameter, and stays as it is",
     "declare it as a variable"},
    {"display x, ~x~", "x stands in this list already", "name it once"},
    {"constraint ~mode~ = 3",
     "mode is no variable, and here belongs the variable that the constraint is about",
     "name a variable"},
    {"parameter k = 1; constraint ~k~ = x", "a parameter stays as it is",
     "constrain a variable by it"},
};
INSTANTIATE_TEST_SUITE_P(Statements, SlipsInTypesTest, testing::ValuesIn(inTypes));

Slip const inFiles[] = {
    // What is told once
    {"~plant q~", "the name of the plant is told a second time", "keep one of them"},
    {"~sample 2 s~", "the sample period is told a second time", "keep one of them"},
    {"window 3; ~window 4~", "the window is told a second time", "keep one of them"},
    {"order a; ~order a~", "the order is told a second time", "keep one of them"},
    {"order a, ~a~", "a stands here a second time", "keep one of them"},
    {"order ~a.x~", "a.x is no component", "name an instance"},
    {"type ~t~ { mode off }", "the type t is declared a second time", "rename one of them"},
    // Numbers
    {"window ~0~", "the window must be a whole number, of at least 1 and at most 1000000",
     "write such a number"},
    {"constant ~n~ = n; window n", "the value of n is worked out from itself", "give it a number"},
    {"set ~n~ = 1", "there is no constant n", "the plant has none"},
    {"constant alpha = 1; set ~zzz~ = 1", "there is no constant zzz", "write alpha"},
    // Loops
    {"for i in ~0.5~..2 { clause always }",
     "the first number must be a whole number, of at least 0 and at most 1000000",
     "write such a number"},
    {"for i in 1..~2.5~ { clause always }",
     "the last number must be a whole number, of at least 0 and at most 1000000",
     "write such a number"},
    {"for i in ~3..1~ { clause always }", "this range ends before it begins",
     "write the first number, .. and the last one"},
    {"for i in ~1..200000~ { clause always }", "this range is longer than can be meant",
     "write the first number, .. and the last one"},
    // Instances
    {"type u { mode off }; b[1..2]: u(); ~b1~: u()", "two components are named b1", "rename one"},
    {"type u { mode off }; b: u() symbol S; c: u() symbol ~S~",
     "two components have the symbol S, b being the other", "give one of them another symbol"},
    {"type u { mode off }; b: u() symbol S; ~S~: u()",
     "two components have the symbol S, b being the other", "give one of them another symbol"},
    {"b: ~zzzzz~()", "there is no type zzzzz", "declare it: type zzzzz { ... }"},
    {"b: t(~zzz~ = 1)", "the type t does not ask for zzz", "it asks for k"},
    {"type u { mode off }; b: u(~zzz~ = 1)", "the type u does not ask for zzz", "take it out"},
    {"b: t(k = 1, ~k~ = 2)", "k is given a second time", "keep one of them"},
    {"b[1..2]: t(); display b.~x~", "what stands before .x is no component, and has no members",
     "say which of the array, as in valve[1]"},
    // What belongs to a type
    {"~move from off to on with 1~", "a move belongs to a component", "write it in a type"},
    {"~idle others~", "a move belongs to a component", "write it in a type"},
    {"~define d = a.x~", "a part of constraints is named in a type", "move this into a type"},
    {"import ~a.c~", "commands are imported by a component", "write it in a type"},
    {"~mode on, off~", "this is what a component has", "write it in a type"},
};
INSTANTIATE_TEST_SUITE_P(Statements, SlipsInFilesTest, testing::ValuesIn(inFiles));

// Twenty statements a hundred thousand times are as many as are read at most.
TEST(SlipsTest, MoreStatementsThanCanBeMeant) {
    std::string body;
    for (int i = 0; i < 21; ++i)
        body += "  clause always\n";
    EXPECT_EQ(
        told("plant p\ntype t {\n  mode off\n}\na: t()\nfor i in 1..100000 {\n" + body + "}\n"),
        "p.plant:6:5: error: this repeats more than can be meant\n"
        "  6 | for i in 1..100000 {\n"
        "    |     ^\n"
        "    repeat less often\n");
}

TEST(SlipsTest, ATypeWithoutModes) {
    EXPECT_EQ(told("plant p\ntype t {\n  idle on with 1\n}\na: t()\n"),
              "p.plant:3:8: error: there is no mode on\n"
              "  3 |   idle on with 1\n"
              "    |        ^^\n"
              "    declare the modes of this type: mode off, on\n");
}

}  // namespace
