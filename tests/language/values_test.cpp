// What numbers, units, conditions and clauses come to: each beside what it means, worked out by
// hand.
#include <gtest/gtest.h>

#include "language/describe.h"
#include "language/describe_parts.h"
#include "language/text_fixture.h"

using namespace language_fixture;

namespace {

std::string plantWith(std::string const& statements) {
    return "plant p\nsample 1 s\ntype t {\n  mode on, off\n  observe o: p, q\n  input u\n"
           "  variable x, y\n  measure x, y\n  idle others\n  fail from on to off with 0.1\n  " +
           statements + "\n}\na: t\n";
}

bool holds(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

// ---- Units ----

void expectUnit(std::string const& value, std::string const& unit) {
    std::string const messages =
        told(plantWith("parameter k [kg] = " + value + "; x = k * u; y = x when mode = on"));
    EXPECT_TRUE(holds(messages, "error: this value is in " + unit + ", and kg belongs here\n"))
        << value << "\n"
        << messages;
}

TEST(ValuesTest, UnitsAreMultipliedAndDivided) {
    expectUnit("2 [m] * 3 [m]", "m^2");
    expectUnit("6 [m^2] / 2 [s]", "m^2*s^-1");
    expectUnit("6 [m] / 2 [m] * 1 [m]", "m");
    expectUnit("3 [m] + 2", "m");
    expectUnit("3 + 2 [m]", "m");
}

// A number without a unit is a factor of none, on either side.
TEST(ValuesTest, ANumberBesideAUnitHasNoDimension) {
    expectUnit("6 / 2 [m]", "m^-1");
    expectUnit("6 [m] / 2", "m");
    expectUnit("6 * 2 [m]", "m");
    expectUnit("6 [m] / 3 [m]", "1");
}

TEST(ValuesTest, APrefixIsAFactor) {
    expectUnit("6 [ms]", "0.001 s");
    expectUnit("6 [m/s] / 2 [s^2]", "m*s^-3");
    expectUnit("6 [1/s]", "Hz");
}

TEST(ValuesTest, UnitsThatAgreeAreSilent) {
    EXPECT_EQ(told(plantWith("parameter k [m^2] = 2 [m] * 3 [m]; x = k * u; y = x when mode = on")),
              "");
}

// ---- Numbers ----

std::string descriptionOf(std::string const& statements) {
    TextReader reader({{"p.plant", plantWith(statements)}});
    PlantFile const file("p.plant", reader);
    EXPECT_TRUE(file.isSound()) << rendered(file.messages(), file.sources());
    return described(file.flat());
}

// [1, 2] * [-3, 4] lies between 2 * -3 and 2 * 4, [1, 2] / [-4, -2] between 2 / -2 and 1 / -4.
TEST(ValuesTest, IntervalsAreWorkedOut) {
    std::string const text = descriptionOf(
        "x = [1, 2] * [-3, 4] * u; y = [1, 2] / [-4, -2] * x when mode = on\n"
        "  y = (-[1, 2] + 2 ^ 3) * x @ 1");
    EXPECT_TRUE(holds(text, "  a.i1: x = [-6, 8] * u\n")) << text;
    EXPECT_TRUE(holds(text, "  a.i2: y = [-1, -0.25] * x  when mode = on\n"));
    EXPECT_TRUE(holds(text, "  a.i3: y = [6, 7] * x @ 1\n"));
}

// A transfer function takes its numbers with their signs: (1 - 2 s) / (4 + 3 s + 2 s^2).
TEST(ValuesTest, PolynomialsTakeSigns) {
    EXPECT_EQ(told(plantWith(
                  "y = x when mode = on\n  x responds to 2 * u by (1 - 2 s) / (-4 + 3 s + 2 s^2)")),
              "");
    std::string const twice =
        told(plantWith("y = x when mode = on\n  x responds to u by (1 - 2 s) / (4 - s - 3 s)"));
    EXPECT_TRUE(holds(twice, "error: this power of s stands here a second time\n")) << twice;
    std::string const broken =
        told(plantWith("y = x when mode = on\n  x responds to u by (1 + 2 s^1.5) / (4 - s)"));
    EXPECT_TRUE(holds(broken, "error: here stands 1.5\n")) << broken;
    EXPECT_TRUE(holds(broken, "    expected is 1 or 2\n"));
}

// ---- Conditions ----

TEST(ValuesTest, ANumberOnTheLeftTurnsTheRelation) {
    std::string const text = descriptionOf(
        "x = u when mode = on\n  y = x when 3 > x\n  y = x when 3 >= x\n  y = x when 3 < x\n"
        "  y = x when 3 <= x\n  y = x when 3 = x\n  y = x when 3 != x");
    for (char const* condition : {"x < 3", "x <= 3", "x > 3", "x >= 3", "x = 3", "x != 3"})
        EXPECT_TRUE(holds(text, "y = x  when " + std::string(condition) + "\n"))
            << condition << "\n"
            << text;
}

// ---- Clauses ----

// Each clause as its literals, the conclusion first.
std::string clausesOf(std::string const& clause) {
    TextReader reader({{"p.plant", plantWith("x = u when mode = on; y = x; clause " + clause)}});
    PlantFile const file("p.plant", reader);
    FlatPlant const& plant = file.flat();
    std::string text;
    for (FlatClause const& one : plant.clauses) {
        for (FlatLiteral const& literal : one.literals)
            text += std::string(literal.holds ? " " : " not ") + valueName(plant, literal.atom);
        text += ";";
    }
    return text;
}

TEST(ValuesTest, ClausesAreWrittenOut) {
    EXPECT_EQ(clausesOf("mode = on implies o = p"), " p not on;");
    EXPECT_EQ(clausesOf("mode = on iff o = p"), " p not on; on not p;");
    EXPECT_EQ(clausesOf("mode = off"), " off;");
}

// not (a and b) is one clause, not (a or b) two, and not not a is a.
TEST(ValuesTest, ADenialIsMovedInwards) {
    EXPECT_EQ(clausesOf("not (mode = on and o = p)"), " not on not p;");
    EXPECT_EQ(clausesOf("not (mode = on or o = p)"), " not on; not p;");
    EXPECT_EQ(clausesOf("not (not (o = p)) implies mode = on"), " on not p;");
    EXPECT_EQ(clausesOf("mode = on implies not (o = q)"), " not q not on;");
}

// What always holds asks for nothing, and what never holds frees.
TEST(ValuesTest, ConstantsInClauses) {
    EXPECT_EQ(clausesOf("always implies o = p"), " p;");
    EXPECT_EQ(clausesOf("never implies o = p"), "");
    EXPECT_EQ(clausesOf("mode = on implies never"), " not on;");
    EXPECT_EQ(clausesOf("mode = on implies always"), "");
}

TEST(ValuesTest, AVariableIsNoPartOfAClause) {
    for (char const* clause : {"x > 1", "o = p or x > 1", "x > 1 implies o = p",
                               "o = p implies x > 1", "x > 1 iff o = p", "not (x > 1)"}) {
        std::string const text =
            told(plantWith("x = u when mode = on; y = x; clause " + std::string(clause)));
        EXPECT_TRUE(holds(text, "x is a variable, and a clause is over modes")) << clause << "\n"
                                                                                << text;
    }
}

// What is wrong within a clause or a constraint is told once, and nothing that follows from it.
TEST(ValuesTest, ABrokenPartIsToldAlone) {
    for (char const* statement : {"clause not (mode = on and nope = 3) implies o = p",
                                  "clause o = p iff nope = 3",
                                  "clause nope = 3",
                                  "constraint x = -(nope + y)",
                                  "constraint x = y ^ nope",
                                  "constraint x = nope",
                                  "define d = y ^ nope",
                                  "import nope",
                                  "y = nope ^ 2 * x",
                                  "y = 2 ^ nope * x",
                                  "y = [nope, 2] * x",
                                  "y = x @ nope",
                                  "y lags x within nope",
                                  "y responds to x damping nope frequency 2",
                                  "y responds to x damping 1 frequency nope",
                                  "y responds to x by (nope + s) / (1 + s + s^2)",
                                  "y = x when nope in (on, off)",
                                  "y = x when x in [nope, 2]",
                                  "y = nope / 2 * x",
                                  "y = 2 / nope * x",
                                  "y = x when any(i in 1..nope: mode = on)",
                                  "y = x when x = nope ^ 2",
                                  "y = x when all(i in 1..2: nope = on)",
                                  "y = (1 + nope) * x"}) {
        std::string const text = told(plantWith("x = u when mode = on; " + std::string(statement)));
        EXPECT_TRUE(holds(text, "error: there is nothing of the name nope\n")) << statement << "\n"
                                                                               << text;
        EXPECT_EQ(text.find("error:"), text.rfind("error:")) << statement << "\n" << text;
    }
}

}  // namespace
