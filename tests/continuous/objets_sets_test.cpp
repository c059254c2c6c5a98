// Intersection, union and remainder of the value objects, with every combination of brackets.
//
// Results over all combinations of brackets are written one by one in the order ]·[ ]·] [·[ [·];
// with two intervals as four groups of digits, one for each form of the first.

#include <gtest/gtest.h>

#include <string>

#include "continuous/objets.h"

namespace objets_test {

s_Objet obj(char const* notation);
std::string text(s_Objet const& o);

namespace {

struct Bounds {
    double inf, sup;
};

s_Objet form(Bounds bounds, int index) {
    return makeRange(bounds.inf, bounds.sup, index >> 1, index & 1);
}

// The result of the intersection, or "none"; fails when a refused one changed its first argument.
std::string inter(s_Objet a, s_Objet const& b) {
    std::string const before = text(a), second = text(b);
    int const answer = sn_interObjet(&a, &b);
    EXPECT_EQ(text(b), second);
    if (answer == 1)
        return text(a);
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(text(a), before);
    return "none";
}

std::string inter(char const* a, char const* b) {
    return inter(obj(a), obj(b));
}

// One digit per combination, 1 for a non-empty intersection, which must then be *expected*.
std::string meetings(Bounds a, Bounds b, char const* expected) {
    std::string groups;
    for (int i = 0; i < 4; ++i) {
        groups += i ? " " : "";
        for (int j = 0; j < 4; ++j) {
            std::string const result = inter(form(a, i), form(b, j));
            groups += result == "none" ? "0" : "1";
            if (result != "none") {
                EXPECT_EQ(result, expected);
            }
        }
    }
    return groups;
}

std::string meetings(double number, Bounds bounds) {
    std::string digits;
    for (int i = 0; i < 4; ++i) {
        s_Objet const x = makeReal(number);
        std::string const result = inter(form(bounds, i), x);
        EXPECT_EQ(inter(x, form(bounds, i)), result);
        digits += result == "none" ? "0" : "1";
        if (result != "none") {
            EXPECT_EQ(result, text(x));
        }
    }
    return digits;
}

TEST(ObjetsInter, Numbers) {
    EXPECT_EQ(inter("2", "2"), "2");
    EXPECT_EQ(inter("2", "3"), "none");
}

TEST(ObjetsInter, ANumberAndAnInterval) {
    EXPECT_EQ(meetings(0, {1, 2}), "0000");
    EXPECT_EQ(meetings(1, {1, 2}), "0011");
    EXPECT_EQ(meetings(1.5, {1, 2}), "1111");
    EXPECT_EQ(meetings(2, {1, 2}), "0101");
    EXPECT_EQ(meetings(3, {1, 2}), "0000");
    EXPECT_EQ(meetings(1, {1, 1}), "0111");
}

TEST(ObjetsInter, OverlappingIntervalsKeepTheFlagsOfTheFirst) {
    struct {
        Bounds a, b, result;
    } const rows[] = {{{1, 3}, {2, 4}, {2, 3}}, {{2, 4}, {1, 3}, {2, 3}}, {{1, 4}, {2, 3}, {2, 3}},
                      {{2, 3}, {1, 4}, {2, 3}}, {{1, 2}, {1, 2}, {1, 2}}, {{1, 3}, {1, 2}, {1, 2}},
                      {{1, 3}, {2, 3}, {2, 3}}};
    for (auto const& row : rows) {
        for (int i = 0; i < 16; ++i)
            EXPECT_EQ(inter(form(row.a, i / 4), form(row.b, i % 4)), text(form(row.result, i / 4)));
    }
}

TEST(ObjetsInter, SeparateIntervals) {
    EXPECT_EQ(meetings({1, 2}, {3, 4}, ""), "0000 0000 0000 0000");
    EXPECT_EQ(meetings({3, 4}, {1, 2}, ""), "0000 0000 0000 0000");
}

TEST(ObjetsInter, TouchingIntervalsMeetWhenBothAreClosedThere) {
    EXPECT_EQ(meetings({1, 2}, {2, 3}, "2"), "0000 0011 0000 0011");
    EXPECT_EQ(meetings({2, 3}, {1, 2}, "2"), "0000 0000 0101 0101");
    EXPECT_EQ(inter("[1, 2[", "[2, 3]"), "none");
    EXPECT_EQ(inter("[1, 2]", "[2, 3]"), "2");
}

// Each bound of the single point may be closed by either interval that gives it.
TEST(ObjetsInter, OnePointIntervals) {
    EXPECT_EQ(meetings({1, 1}, {1, 1}, "1"), "0001 0011 0101 1111");
    EXPECT_EQ(meetings({2, 2}, {1, 3}, "2"), "0000 0000 0000 1111");
    EXPECT_EQ(meetings({1, 3}, {2, 2}, "2"), "0001 0001 0001 0001");
    EXPECT_EQ(meetings({1, 1}, {1, 3}, "1"), "0000 0011 0000 1111");
    EXPECT_EQ(meetings({3, 3}, {1, 3}, "3"), "0000 0000 0101 1111");
}

std::string uni(s_Objet a, s_Objet const& b) {
    std::string const second = text(b);
    sn_uniObjet(&a, &b);
    EXPECT_EQ(text(b), second);
    return text(a);
}

std::string uni(char const* a, char const* b) {
    return uni(obj(a), obj(b));
}

std::string growthsByReal(Bounds bounds, double x) {
    std::string list;
    for (int i = 0; i < 4; ++i)
        list += uni(form(bounds, i), makeReal(x)) + " ";
    return list;
}

std::string growthsOfReal(double x, Bounds bounds) {
    std::string list;
    for (int i = 0; i < 4; ++i)
        list += uni(makeReal(x), form(bounds, i)) + " ";
    return list;
}

TEST(ObjetsUni, IntervalsKeepTheFlagsOfTheFirst) {
    struct {
        Bounds a, b, result;
    } const rows[] = {{{1, 2}, {3, 4}, {1, 4}},
                      {{3, 4}, {1, 2}, {1, 4}},
                      {{1, 4}, {2, 3}, {1, 4}},
                      {{2, 3}, {1, 4}, {1, 4}},
                      {{1, 2}, {1, 2}, {1, 2}}};
    for (auto const& row : rows) {
        for (int i = 0; i < 16; ++i)
            EXPECT_EQ(uni(form(row.a, i / 4), form(row.b, i % 4)), text(form(row.result, i / 4)));
    }
}

TEST(ObjetsUni, AnIntervalIsClosedByANumberOnItsOpenEnd) {
    EXPECT_EQ(growthsByReal({1, 3}, 0), "]0, 3[ ]0, 3] [0, 3[ [0, 3] ");
    EXPECT_EQ(growthsByReal({1, 3}, 1), "[1, 3[ [1, 3] [1, 3[ [1, 3] ");
    EXPECT_EQ(growthsByReal({1, 3}, 2), "]1, 3[ ]1, 3] [1, 3[ [1, 3] ");
    EXPECT_EQ(growthsByReal({1, 3}, 3), "]1, 3] ]1, 3] [1, 3] [1, 3] ");
    EXPECT_EQ(growthsByReal({1, 3}, 4), "]1, 4[ ]1, 4] [1, 4[ [1, 4] ");
}

// The number equals both ends of an empty point, and closes both; a point with a closed end holds
// it.
TEST(ObjetsUni, AnEmptyPointIsClosedAtBothEnds) {
    EXPECT_EQ(growthsByReal({1, 1}, 1), "[1, 1] ]1, 1] [1, 1[ [1, 1] ");
}

TEST(ObjetsUni, ANumberNeverClosesTheIntervalItBecomes) {
    EXPECT_EQ(growthsOfReal(0, {1, 3}), "]0, 3[ ]0, 3] [0, 3[ [0, 3] ");
    EXPECT_EQ(growthsOfReal(1, {1, 3}), "]1, 3[ ]1, 3] [1, 3[ [1, 3] ");
    EXPECT_EQ(growthsOfReal(2, {1, 3}), "]1, 3[ ]1, 3] [1, 3[ [1, 3] ");
    EXPECT_EQ(growthsOfReal(4, {1, 3}), "]1, 4[ ]1, 4] [1, 4[ [1, 4] ");
}

TEST(ObjetsUni, ANumberOnAnOpenSupCollapsesTheInterval) {
    EXPECT_EQ(growthsOfReal(3, {1, 3}), "]3, 3[ ]1, 3] [3, 3[ [1, 3] ");
}

// A number minus an interval leaves inverted bounds. Between them lies what is below inf and above
// sup at once.
TEST(ObjetsUni, BetweenInvertedBoundsBothMove) {
    EXPECT_EQ(uni("[4, 3[", "3.5"), "[3.5, 3.5[");
    EXPECT_EQ(uni("3.5", "[4, 3["), "[3.5, 3.5[");
}

TEST(ObjetsUni, EqualNumbersStayANumber) {
    EXPECT_EQ(uni("2", "2"), "2");
}

TEST(ObjetsUni, DifferentNumbersSpanAnOpenInterval) {
    EXPECT_EQ(uni("2", "5"), "]2, 5[");
    EXPECT_EQ(uni("5", "2"), "]2, 5[");
}

TEST(ObjetsSets, OfAnObjectWithItself) {
    s_Objet interval = obj("[1, 2["), number = obj("2");
    for (s_Objet* o : {&interval, &number}) {
        std::string const before = text(*o);
        EXPECT_EQ(sn_interObjet(o, o), 1);
        EXPECT_EQ(text(*o), before);
        sn_uniObjet(o, o);
        EXPECT_EQ(text(*o), before);
    }
    EXPECT_FALSE(sn_inSpObjet(&interval, &interval).any);
}

// The pieces in their order, or "none". Without pieces both places must be empty.
std::string outside(s_Objet const& a, s_Objet const& b) {
    SpacePieces const pieces = sn_inSpObjet(&a, &b);
    if (!pieces.any) {
        EXPECT_FALSE(pieces.first || pieces.second);
        return "none";
    }
    std::string const first = text(pieces.first.value());
    return pieces.second ? first + " " + text(*pieces.second) : first;
}

std::string outside(char const* a, char const* b) {
    return outside(obj(a), obj(b));
}

// One digit per combination, 1 for pieces, which must then be *expected*.
std::string remainders(Bounds a, Bounds b, char const* expected) {
    std::string groups;
    for (int i = 0; i < 4; ++i) {
        groups += i ? " " : "";
        for (int j = 0; j < 4; ++j) {
            std::string const pieces = outside(form(a, i), form(b, j));
            groups += pieces == "none" ? "0" : "1";
            if (pieces != "none") {
                EXPECT_EQ(pieces, expected);
            }
        }
    }
    return groups;
}

std::string remainders(double a, Bounds b, char const* expected) {
    std::string digits;
    for (int i = 0; i < 4; ++i) {
        std::string const pieces = outside(makeReal(a), form(b, i));
        digits += pieces == "none" ? "0" : "1";
        if (pieces != "none") {
            EXPECT_EQ(pieces, expected);
        }
    }
    return digits;
}

constexpr char const* never = "0000 0000 0000 0000";

TEST(ObjetsInSp, ANumberHasNoOutside) {
    EXPECT_EQ(outside("2", "2"), "none");
    EXPECT_EQ(outside("3", "2"), "none");
    EXPECT_EQ(outside("[1, 3]", "2"), "none");
}

TEST(ObjetsInSp, ANumberOnAClosedEndLeavesTheRest) {
    EXPECT_EQ(remainders(2, {1, 2}, "]1, 2["), "0101");
    EXPECT_EQ(remainders(1, {1, 2}, "]1, 2["), "0011");
}

TEST(ObjetsInSp, ANumberStrictlyInsideOrOutsideLeavesNothing) {
    EXPECT_EQ(remainders(1.5, {1, 2}, ""), "0000");
    EXPECT_EQ(remainders(0, {1, 2}, ""), "0000");
    EXPECT_EQ(remainders(3, {1, 2}, ""), "0000");
    EXPECT_EQ(remainders(1, {1, 1}, ""), "0000");
}

TEST(ObjetsInSp, AnIntervalStrictlyInsideLeavesBothSides) {
    EXPECT_EQ(remainders({2, 3}, {1, 4}, "]1, 2[ ]3, 4["), "1111 1111 1111 1111");
}

TEST(ObjetsInSp, AtASharedBoundTheFlagsMustAgree) {
    EXPECT_EQ(remainders({2, 3}, {1, 3}, "]1, 2["), "1010 0101 1010 0101");
    EXPECT_EQ(remainders({1, 2}, {1, 3}, "]2, 3["), "1100 1100 0011 0011");
}

TEST(ObjetsInSp, AnIntervalThatCoversOrReachesOutLeavesNothing) {
    EXPECT_EQ(remainders({1, 3}, {1, 3}, ""), never);
    EXPECT_EQ(remainders({0, 2}, {1, 3}, ""), never);
    EXPECT_EQ(remainders({2, 4}, {1, 3}, ""), never);
    EXPECT_EQ(remainders({0, 4}, {1, 3}, ""), never);
    EXPECT_EQ(remainders({0, 3}, {1, 3}, ""), never);
    EXPECT_EQ(remainders({1, 4}, {1, 3}, ""), never);
}

TEST(ObjetsInSp, AnOddFlagByteAgreesWithOpen) {
    s_Objet const odd = makeRange(2, 3, 0, 9);
    EXPECT_EQ(outside(odd, obj("[1, 3[")), "]1, 2[");
    EXPECT_EQ(outside(odd, obj("[1, 3]")), "none");
}

}  // namespace
}  // namespace objets_test
