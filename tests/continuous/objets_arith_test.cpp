// Arithmetic of the value objects: every pair of kinds, every corner, and what happens to the
// flags. All expectations are worked out by hand on values that doubles hold exactly.

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <string>

#include "continuous/objets.h"

namespace objets_test {

s_Objet obj(char const* notation);
std::string text(s_Objet const& o);

namespace {

struct Row {
    char const* a;
    char const* b;
    char const* result;
};

template <typename Operation>
void expectRows(Operation operation, std::initializer_list<Row> rows) {
    for (Row const& row : rows) {
        s_Objet a = obj(row.a);
        s_Objet const b = obj(row.b);
        operation(&a, &b);
        EXPECT_EQ(text(a), row.result) << row.a << " with " << row.b;
        EXPECT_EQ(text(b), row.b);
    }
}

template <typename Operation>
std::string withItself(Operation operation, char const* notation) {
    s_Objet a = obj(notation);
    operation(&a, &a);
    return text(a);
}

template <typename Function>
std::string applied(Function function, char const* notation) {
    s_Objet a = obj(notation);
    function(&a);
    return text(a);
}

TEST(ObjetsAdd, TwoNumbers) {
    expectRows(sn_addObjet, {{"2", "3", "5"}, {"2", "-3", "-1"}});
}

TEST(ObjetsAdd, ANumberAndAnIntervalTakeTheFlagsOfTheInterval) {
    expectRows(sn_addObjet, {{"5", "[1, 2[", "[6, 7["},
                             {"5", "]1, 2]", "]6, 7]"},
                             {"-5", "]1, 2[", "]-4, -3["},
                             {"5", "[1, 2]", "[6, 7]"}});
    expectRows(sn_addObjet, {{"[1, 2[", "5", "[6, 7["},
                             {"]1, 2]", "5", "]6, 7]"},
                             {"]1, 2[", "-5", "]-4, -3["},
                             {"[1, 2]", "5", "[6, 7]"}});
}

TEST(ObjetsAdd, TwoIntervalsKeepTheFlagsOfTheFirst) {
    expectRows(sn_addObjet, {{"[1, 2[", "]3, 5]", "[4, 7["},
                             {"]3, 5]", "[1, 2[", "]4, 7]"},
                             {"[1, 2]", "]3, 5[", "[4, 7]"},
                             {"]3, 5[", "[1, 2]", "]4, 7["}});
}

TEST(ObjetsAdd, InfiniteBoundsAreOrdinaryDoubles) {
    // One is far below the last digit of DBL_MAX; twice DBL_MAX is the floating infinity.
    expectRows(sn_addObjet, {{"MAX", "1", "MAX"},
                             {"MAX", "MAX", "inf"},
                             {"]-MAX, MAX[", "1", "]-MAX, MAX["},
                             {"]-MAX, MAX[", "]-MAX, MAX[", "]-inf, inf["}});
}

TEST(ObjetsSub, TwoNumbers) {
    expectRows(sn_subObjet, {{"2", "3", "-1"}, {"3", "2", "1"}});
}

TEST(ObjetsSub, ANumberMinusAnIntervalIsInverted) {
    expectRows(sn_subObjet, {{"5", "[1, 2]", "[4, 3]"},
                             {"5", "[1, 2[", "[4, 3["},
                             {"5", "]1, 2]", "]4, 3]"},
                             {"0", "]-1, 2[", "]1, -2["}});
}

TEST(ObjetsSub, AnIntervalMinusANumber) {
    expectRows(
        sn_subObjet,
        {{"[1, 2]", "5", "[-4, -3]"}, {"[1, 2[", "5", "[-4, -3["}, {"]1, 2]", "-5", "]6, 7]"}});
}

TEST(ObjetsSub, TwoIntervals) {
    expectRows(sn_subObjet, {{"[1, 2[", "]3, 5]", "[-4, -1["},
                             {"]3, 5]", "[1, 2[", "]1, 4]"},
                             {"]-MAX, MAX[", "]-MAX, MAX[", "]-inf, inf["}});
}

TEST(ObjetsMul, TwoNumbers) {
    expectRows(sn_mulObjet, {{"2", "3", "6"}, {"-2", "3", "-6"}, {"2", "0", "0"}});
}

TEST(ObjetsMul, TheNumberZeroStaysWhateverTheFactor) {
    expectRows(
        sn_mulObjet,
        {{"0", "-5", "0"}, {"0", "[1, 2]", "0"}, {"0", "]-MAX, MAX[", "0"}, {"0", "inf", "0"}});
}

TEST(ObjetsMul, AnIntervalTimesTheNumberZeroIsTheNumberZero) {
    expectRows(sn_mulObjet,
               {{"[1, 2]", "0", "0"}, {"]-MAX, MAX[", "0", "0"}, {"[1, 2]", "-0", "0"}});
}

TEST(ObjetsMul, ANumberAndAnInterval) {
    expectRows(sn_mulObjet, {{"2", "[1, 3[", "[2, 6["},
                             {"-2", "[1, 3[", "[-6, -2["},
                             {"-2", "]-1, 3]", "]-6, 2]"},
                             {"[1, 3[", "2", "[2, 6["},
                             {"[1, 3[", "-2", "[-6, -2["},
                             {"]-1, 3]", "-2", "]-6, 2]"}});
}

TEST(ObjetsMul, TwoIntervalsTakeEveryCorner) {
    expectRows(sn_mulObjet, {{"[1, 2[", "]3, 4]", "[3, 8["},         // 3 4 6 8
                             {"]-2, -1]", "[-4, -3[", "]3, 8]"},     // 8 6 4 3
                             {"[1, 3]", "]-4, -2[", "[-12, -2]"},    // -4 -2 -12 -6
                             {"]-3, -1[", "[2, 4]", "]-12, -2["},    // -6 -12 -2 -4
                             {"[-3, 1[", "]-2, 1]", "[-3, 6["},      // 6 -3 -2 1
                             {"]-1, 3]", "[-2, 1[", "]-6, 3]"},      // 2 -1 -6 3
                             {"[-2, 3[", "]-5, 4]", "[-15, 12["}});  // 10 -8 -15 12
}

TEST(ObjetsMul, OverflowIsSilent) {
    expectRows(sn_mulObjet, {{"MAX", "2", "inf"}, {"]-MAX, MAX[", "2", "]-inf, inf["}});
}

struct DivRow {
    char const* a;
    char const* b;
    int done;
    char const* result;
};

void expectDivisions(std::initializer_list<DivRow> rows) {
    for (DivRow const& row : rows) {
        s_Objet a = obj(row.a);
        s_Objet const b = obj(row.b);
        EXPECT_EQ(sn_divObjet(&a, &b), row.done) << row.a << " / " << row.b;
        EXPECT_EQ(text(a), row.result) << row.a << " / " << row.b;
        EXPECT_EQ(text(b), row.b);
    }
}

TEST(ObjetsDiv, TwoNumbers) {
    expectDivisions({{"6", "4", 1, "1.5"}, {"0", "4", 1, "0"}, {"6", "0", 0, "6"}});
}

TEST(ObjetsDiv, ANumberByAnInterval) {
    expectDivisions({{"12", "[2, 4[", 1, "[3, 6["},
                     {"12", "]2, 4]", 1, "]3, 6]"},
                     {"-12", "[2, 4[", 1, "[-6, -3["},
                     {"12", "]-4, -2]", 1, "]-6, -3]"},
                     {"-12", "]-4, -2]", 1, "]3, 6]"},
                     {"0", "[2, 4[", 1, "[0, 0["}});
}

TEST(ObjetsDiv, AnIntervalByANumber) {
    expectDivisions({{"[1, 2[", "2", 1, "[0.5, 1["},
                     {"]1, 2]", "-2", 1, "]-1, -0.5]"},
                     {"[1, 2[", "0", 0, "[1, 2["},
                     {"[1, 2[", "-0", 0, "[1, 2["}});
}

TEST(ObjetsDiv, TwoIntervalsTakeEveryCorner) {
    expectDivisions({{"[2, 6[", "]1, 2]", 1, "[1, 6["},        // 2 1 6 3
                     {"]-6, -2]", "[-2, -1[", 1, "]1, 6]"},    // 3 6 1 2
                     {"[2, 6[", "]-2, -1]", 1, "[-6, -1["},    // -1 -2 -3 -6
                     {"]-6, -2]", "[1, 2[", 1, "]-6, -1]"},    // -6 -3 -2 -1
                     {"[-2, 6[", "]1, 2]", 1, "[-2, 6["},      // -2 -1 6 3
                     {"]-2, 6]", "[-2, -1[", 1, "]-6, 2]"}});  // 1 2 -3 -6
}

TEST(ObjetsDiv, AnIntervalThatHoldsOrTouchesZeroIsRefused) {
    for (char const* dividend : {"12", "0", "[1, 2]", "]1, 2["}) {
        for (char const* divisor : {"[-1, 1]", "]-1, 1[", "[0, 1]", "]0, 1]", "[-1, 0]", "[-1, 0[",
                                    "[0, 0]", "]-MAX, MAX["})
            expectDivisions({{dividend, divisor, 0, dividend}});
    }
}

// The test on the divisor is the sign of a product of doubles: it underflows for tiny bounds.
TEST(ObjetsDiv, BoundsWhoseProductUnderflowsAreRefused) {
    expectDivisions(
        {{"1", "[1e-200, 1e-200]", 0, "1"}, {"[1, 2]", "[1e-200, 1]", 1, "[1, 2e+200]"}});
}

TEST(ObjetsMinus, ANumberIsNegated) {
    EXPECT_EQ(applied(sn_minusObjet, "2"), "-2");
    EXPECT_EQ(applied(sn_minusObjet, "-2"), "2");
}

TEST(ObjetsMinus, BothFlagsEndAsTheOldFlagOfInf) {
    EXPECT_EQ(applied(sn_minusObjet, "[1, 2["), "[-2, -1]");
    EXPECT_EQ(applied(sn_minusObjet, "]1, 2]"), "]-2, -1[");
    EXPECT_EQ(applied(sn_minusObjet, "[1, 2]"), "[-2, -1]");
    EXPECT_EQ(applied(sn_minusObjet, "]1, 2["), "]-2, -1[");
    EXPECT_EQ(applied(sn_minusObjet, "[-MAX, 3["), "[-3, MAX]");
}

TEST(ObjetsFunctions, OfANumber) {
    EXPECT_EQ(applied(sn_expObjet, "0"), "1");
    EXPECT_EQ(applied(sn_logObjet, "1"), "0");
    EXPECT_EQ(applied(sn_sqrtObjet, "9"), "3");
}

TEST(ObjetsFunctions, OfEachBoundWithTheFlagsKept) {
    EXPECT_EQ(applied(sn_sqrtObjet, "[4, 9["), "[2, 3[");
    EXPECT_EQ(applied(sn_sqrtObjet, "]4, 9]"), "]2, 3]");
    EXPECT_EQ(applied(sn_expObjet, "[-inf, 0["), "[0, 1[");
    EXPECT_EQ(applied(sn_expObjet, "]0, inf]"), "]1, inf]");
    EXPECT_EQ(applied(sn_logObjet, "]0, 1]"), "]-inf, 0]");
    EXPECT_EQ(applied(sn_logObjet, "[1, inf["), "[0, inf[");
}

TEST(ObjetsFunctions, InvertedBoundsAreNotReordered) {
    EXPECT_EQ(applied(sn_sqrtObjet, "[9, 4["), "[3, 2[");
    EXPECT_EQ(applied(sn_expObjet, "[0, -inf["), "[1, 0[");
    EXPECT_EQ(applied(sn_logObjet, "[1, 0["), "[0, -inf[");
}

TEST(ObjetsFunctions, OutsideTheDomainIsNaN) {
    for (auto* function : {sn_logObjet, sn_sqrtObjet}) {
        s_Objet number = obj("-1"), interval = obj("[-1, 1[");
        function(&number);
        EXPECT_TRUE(std::isnan(number.real));
        function(&interval);
        EXPECT_TRUE(std::isnan(interval.rng.inf));
        EXPECT_EQ(interval.rng.sup, function == sn_logObjet ? 0.0 : 1.0);
    }
}

TEST(ObjetsAliasing, AnObjectWithItself) {
    EXPECT_EQ(withItself(sn_addObjet, "[1, 2["), "[2, 4[");
    EXPECT_EQ(withItself(sn_subObjet, "[1, 2["), "[-1, 1[");
    EXPECT_EQ(withItself(sn_mulObjet, "]-1, 2]"), "]-2, 4]");
    EXPECT_EQ(withItself(sn_divObjet, "]1, 2]"), "]0.5, 2]");
    EXPECT_EQ(withItself(sn_addObjet, "3"), "6");
    EXPECT_EQ(withItself(sn_subObjet, "3"), "0");
    EXPECT_EQ(withItself(sn_mulObjet, "3"), "9");
    EXPECT_EQ(withItself(sn_divObjet, "3"), "1");
}

// The flags that a number remembers give way to those of an interval that it is added to.
TEST(ObjetsFlags, ANumberTakesTheFlagsOfTheIntervalItIsAddedTo) {
    s_Objet a = obj("[1, 2]");
    s_Objet const zero = obj("0"), open = obj("]3, 4[");
    sn_mulObjet(&a, &zero);
    sn_addObjet(&a, &open);
    EXPECT_EQ(text(a), "]3, 4[");
}

TEST(ObjetsFlags, AnOddFlagByteIsCarriedAsItIs) {
    s_Objet const odd = makeRange(1, 2, 7, 1);
    s_Objet sum = obj("5");
    sn_addObjet(&sum, &odd);
    EXPECT_EQ(sum.rng.infClosed, 7);
    sn_minusObjet(&sum);
    EXPECT_EQ(sum.rng.infClosed, 7);
    EXPECT_EQ(sum.rng.supClosed, 7);
}

}  // namespace
}  // namespace objets_test
