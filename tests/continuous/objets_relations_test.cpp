// Relations of the value objects, with every combination of brackets.
//
// Answers over all combinations are written as one digit each, in the order ]·[ ]·] [·[ [·]. With
// two intervals there are four groups, one for each form of the first, and in a group the second
// runs through the four forms.

#include <gtest/gtest.h>

#include <string>

#include "continuous/objets.h"

namespace objets_test {

s_Objet obj(char const* notation);
std::string text(s_Objet const& o);

namespace {

using Relation = int (*)(s_Objet const*, s_Objet const*);

struct Bounds {
    double inf, sup;
};

s_Objet form(Bounds bounds, int index) {
    return makeRange(bounds.inf, bounds.sup, index >> 1, index & 1);
}

int holds(Relation relation, char const* left, char const* right) {
    s_Objet const a = obj(left), b = obj(right);
    return relation(&a, &b);
}

std::string answers(Relation relation, Bounds a, double b) {
    std::string digits;
    s_Objet const number = makeReal(b);
    for (int i = 0; i < 4; ++i) {
        s_Objet const interval = form(a, i);
        digits += std::to_string(relation(&interval, &number));
    }
    return digits;
}

std::string answers(Relation relation, double a, Bounds b) {
    std::string digits;
    s_Objet const number = makeReal(a);
    for (int i = 0; i < 4; ++i) {
        s_Objet const interval = form(b, i);
        digits += std::to_string(relation(&number, &interval));
    }
    return digits;
}

std::string answers(Relation relation, Bounds a, Bounds b) {
    std::string groups;
    for (int i = 0; i < 4; ++i) {
        groups += i ? " " : "";
        for (int j = 0; j < 4; ++j) {
            s_Objet const left = form(a, i), right = form(b, j);
            groups += std::to_string(relation(&left, &right));
        }
    }
    return groups;
}

constexpr char const* never = "0000 0000 0000 0000";
constexpr char const* always = "1111 1111 1111 1111";

TEST(ObjetsSgn, OfANumber) {
    auto const sign = [](char const* notation) {
        s_Objet const o = obj(notation);
        return sn_sgnObjet(&o);
    };
    EXPECT_EQ(sign("2"), 1);
    EXPECT_EQ(sign("-2"), -1);
    EXPECT_EQ(sign("0"), 0);
    EXPECT_EQ(sign("-0"), 0);
}

TEST(ObjetsSgn, OfAnIntervalWhateverItsFlags) {
    auto const signs = [](Bounds bounds) {
        std::string list;
        for (int i = 0; i < 4; ++i) {
            s_Objet const o = form(bounds, i);
            list += std::to_string(sn_sgnObjet(&o)) + " ";
        }
        return list;
    };
    EXPECT_EQ(signs({1, 2}), "1 1 1 1 ");
    EXPECT_EQ(signs({0, 2}), "1 1 1 1 ");
    EXPECT_EQ(signs({-1, 2}), "0 0 0 0 ");
    EXPECT_EQ(signs({0, 0}), "0 0 0 0 ");
    EXPECT_EQ(signs({-1, 0}), "-1 -1 -1 -1 ");
    EXPECT_EQ(signs({-2, -1}), "-1 -1 -1 -1 ");
}

TEST(ObjetsEq, Numbers) {
    EXPECT_EQ(holds(sn_eqObjet, "2", "2"), 1);
    EXPECT_EQ(holds(sn_eqObjet, "2", "3"), 0);
    EXPECT_EQ(holds(sn_eqObjet, "0", "-0"), 1);
}

TEST(ObjetsEq, ANumberNeverEqualsAnInterval) {
    EXPECT_EQ(answers(sn_eqObjet, 2, {2, 2}), "0000");
    EXPECT_EQ(answers(sn_eqObjet, {2, 2}, 2), "0000");
}

TEST(ObjetsEq, IntervalsEqualInBoundsAndFlags) {
    EXPECT_EQ(answers(sn_eqObjet, {1, 2}, {1, 2}), "1000 0100 0010 0001");
    EXPECT_EQ(answers(sn_eqObjet, {1, 2}, {1, 3}), never);
    EXPECT_EQ(answers(sn_eqObjet, {1, 3}, {1, 2}), never);
    EXPECT_EQ(answers(sn_eqObjet, {0, 2}, {1, 2}), never);
    EXPECT_EQ(answers(sn_eqObjet, {1, 2}, {0, 2}), never);
}

TEST(ObjetsDiff, Numbers) {
    EXPECT_EQ(holds(sn_diffObjet, "2", "2"), 0);
    EXPECT_EQ(holds(sn_diffObjet, "2", "3"), 1);
    EXPECT_EQ(holds(sn_diffObjet, "3", "2"), 1);
    EXPECT_EQ(holds(sn_diffObjet, "nan", "nan"), 1);
}

TEST(ObjetsDiff, ANumberOutsideTheBoundsDiffersWhateverTheFlags) {
    EXPECT_EQ(answers(sn_diffObjet, 0, {1, 2}), "1111");
    EXPECT_EQ(answers(sn_diffObjet, 1, {1, 2}), "0000");
    EXPECT_EQ(answers(sn_diffObjet, 1.5, {1, 2}), "0000");
    EXPECT_EQ(answers(sn_diffObjet, 2, {1, 2}), "0000");
    EXPECT_EQ(answers(sn_diffObjet, 3, {1, 2}), "1111");
    EXPECT_EQ(answers(sn_diffObjet, {1, 2}, 0), "1111");
    EXPECT_EQ(answers(sn_diffObjet, {1, 2}, 1), "0000");
    EXPECT_EQ(answers(sn_diffObjet, {1, 2}, 1.5), "0000");
    EXPECT_EQ(answers(sn_diffObjet, {1, 2}, 2), "0000");
    EXPECT_EQ(answers(sn_diffObjet, {1, 2}, 3), "1111");
}

TEST(ObjetsDiff, SeparateIntervalsDiffer) {
    EXPECT_EQ(answers(sn_diffObjet, {1, 2}, {3, 4}), always);
    EXPECT_EQ(answers(sn_diffObjet, {3, 4}, {1, 2}), always);
}

TEST(ObjetsDiff, OverlappingIntervalsDifferWhenAFlagDoes) {
    char const* const whenFlagsDiffer = "0111 1011 1101 1110";
    EXPECT_EQ(answers(sn_diffObjet, {1, 3}, {2, 4}), whenFlagsDiffer);
    EXPECT_EQ(answers(sn_diffObjet, {2, 4}, {1, 3}), whenFlagsDiffer);
    EXPECT_EQ(answers(sn_diffObjet, {1, 2}, {1, 2}), whenFlagsDiffer);
    EXPECT_EQ(answers(sn_diffObjet, {1, 2}, {2, 3}), whenFlagsDiffer);
    EXPECT_EQ(answers(sn_diffObjet, {2, 3}, {1, 2}), whenFlagsDiffer);
}

TEST(ObjetsLt, Numbers) {
    EXPECT_EQ(holds(sn_ltObjet, "2", "3"), 1);
    EXPECT_EQ(holds(sn_ltObjet, "2", "2"), 0);
    EXPECT_EQ(holds(sn_ltObjet, "3", "2"), 0);
}

TEST(ObjetsLt, ANumberAndAnIntervalIgnoreFlags) {
    EXPECT_EQ(answers(sn_ltObjet, 0, {1, 2}), "1111");
    EXPECT_EQ(answers(sn_ltObjet, 1, {1, 2}), "0000");
    EXPECT_EQ(answers(sn_ltObjet, 1.5, {1, 2}), "0000");
    EXPECT_EQ(answers(sn_ltObjet, {1, 2}, 3), "1111");
    EXPECT_EQ(answers(sn_ltObjet, {1, 2}, 2), "0000");
    EXPECT_EQ(answers(sn_ltObjet, {1, 2}, 1.5), "0000");
}

TEST(ObjetsLt, IntervalsIgnoreFlags) {
    EXPECT_EQ(answers(sn_ltObjet, {0, 1}, {2, 3}), always);
    EXPECT_EQ(answers(sn_ltObjet, {0, 1}, {1, 2}), never);
    EXPECT_EQ(answers(sn_ltObjet, {0, 2}, {1, 3}), never);
    EXPECT_EQ(answers(sn_ltObjet, {2, 3}, {0, 1}), never);
}

TEST(ObjetsGe, Numbers) {
    EXPECT_EQ(holds(sn_geObjet, "3", "2"), 1);
    EXPECT_EQ(holds(sn_geObjet, "2", "2"), 1);
    EXPECT_EQ(holds(sn_geObjet, "2", "3"), 0);
}

TEST(ObjetsGe, ANumberReachesAnIntervalAtItsClosedSup) {
    EXPECT_EQ(answers(sn_geObjet, 3, {1, 2}), "1111");
    EXPECT_EQ(answers(sn_geObjet, 2, {1, 2}), "0101");
    EXPECT_EQ(answers(sn_geObjet, 1.5, {1, 2}), "0000");
    EXPECT_EQ(answers(sn_geObjet, 1, {1, 2}), "0000");
}

TEST(ObjetsGe, AnIntervalReachesANumberWithItsClosedInf) {
    EXPECT_EQ(answers(sn_geObjet, {2, 3}, 1), "1111");
    EXPECT_EQ(answers(sn_geObjet, {2, 3}, 2), "0011");
    EXPECT_EQ(answers(sn_geObjet, {2, 3}, 2.5), "0000");
    EXPECT_EQ(holds(sn_geObjet, "[2, 3]", "2"), 1);
    EXPECT_EQ(holds(sn_geObjet, "]2, 3]", "2"), 0);
}

TEST(ObjetsGe, BetweenIntervalsOnlyTheFlagOfTheSecondCounts) {
    EXPECT_EQ(answers(sn_geObjet, {3, 4}, {1, 2}), always);
    EXPECT_EQ(answers(sn_geObjet, {2, 3}, {1, 2}), "0101 0101 0101 0101");
    EXPECT_EQ(answers(sn_geObjet, {1, 3}, {1, 2}), never);
    EXPECT_EQ(answers(sn_geObjet, {1, 2}, {2, 3}), never);
}

TEST(ObjetsIn, NothingIsInsideANumber) {
    EXPECT_EQ(holds(sn_inObjet, "2", "2"), 0);
    EXPECT_EQ(answers(sn_inObjet, {2, 2}, 2), "0000");
}

TEST(ObjetsIn, ANumberInsideOrOnAClosedEnd) {
    EXPECT_EQ(answers(sn_inObjet, 0, {1, 2}), "0000");
    EXPECT_EQ(answers(sn_inObjet, 1, {1, 2}), "0011");
    EXPECT_EQ(answers(sn_inObjet, 1.5, {1, 2}), "1111");
    EXPECT_EQ(answers(sn_inObjet, 2, {1, 2}), "0101");
    EXPECT_EQ(answers(sn_inObjet, 3, {1, 2}), "0000");
}

TEST(ObjetsIn, ANumberIsNotInsideItsOnePointInterval) {
    EXPECT_EQ(answers(sn_inObjet, 1, {1, 1}), "0000");
}

TEST(ObjetsIn, AnIntervalStrictlyInside) {
    EXPECT_EQ(answers(sn_inObjet, {2, 3}, {1, 4}), always);
    EXPECT_EQ(answers(sn_inObjet, {1, 4}, {2, 3}), never);
    EXPECT_EQ(holds(sn_inObjet, "]1, 2[", "[1, 3]"), 1);
}

TEST(ObjetsIn, AClosedEndIsNotInsideAnOpenOne) {
    EXPECT_EQ(answers(sn_inObjet, {1, 2}, {1, 3}), "1111 1111 0011 0011");
    EXPECT_EQ(answers(sn_inObjet, {2, 3}, {1, 3}), "1111 0101 1111 0101");
}

TEST(ObjetsIn, AnIntervalIsNotInsideItsEqual) {
    EXPECT_EQ(answers(sn_inObjet, {1, 2}, {1, 2}), never);
    EXPECT_EQ(holds(sn_inObjet, "]1, 2[", "[1, 2]"), 0);
}

TEST(ObjetsIn, AnIntervalThatReachesOutIsNotInside) {
    EXPECT_EQ(answers(sn_inObjet, {0, 2}, {1, 3}), never);
    EXPECT_EQ(answers(sn_inObjet, {2, 4}, {1, 3}), never);
    EXPECT_EQ(answers(sn_inObjet, {0, 3}, {1, 3}), never);
    EXPECT_EQ(answers(sn_inObjet, {1, 4}, {1, 3}), never);
}

TEST(ObjetsRelations, OfAnObjectWithItself) {
    s_Objet const closed = obj("[2, 2]"), number = obj("2"), open = obj("]2, 2[");
    EXPECT_EQ(sn_eqObjet(&closed, &closed), 1);
    EXPECT_EQ(sn_diffObjet(&closed, &closed), 0);
    EXPECT_EQ(sn_ltObjet(&closed, &closed), 0);
    EXPECT_EQ(sn_geObjet(&closed, &closed), 1);
    EXPECT_EQ(sn_geObjet(&open, &open), 0);
    EXPECT_EQ(sn_inObjet(&closed, &closed), 0);
    EXPECT_EQ(sn_eqObjet(&number, &number), 1);
    EXPECT_EQ(sn_geObjet(&number, &number), 1);
}

// Any flag byte but 1 means open; equality and difference compare the bytes as they are.
TEST(ObjetsRelations, AnOddFlagByteMeansOpen) {
    s_Objet const odd = makeRange(1, 2, 2, 255), open = obj("]1, 2["), one = obj("1"),
                  two = obj("2");
    EXPECT_EQ(sn_geObjet(&odd, &one), 0);
    EXPECT_EQ(sn_geObjet(&two, &odd), 0);
    EXPECT_EQ(sn_inObjet(&one, &odd), 0);
    EXPECT_EQ(sn_inObjet(&two, &odd), 0);
    EXPECT_EQ(sn_eqObjet(&odd, &open), 0);
    EXPECT_EQ(sn_diffObjet(&odd, &open), 1);
}

}  // namespace
}  // namespace objets_test
