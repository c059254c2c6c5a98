// What a number remembers: the flags of the interval that stood in its place before. An operation
// that makes a number writes the kind and the number alone, so that the flags are still there when
// the number turns into an interval without flags of its own, as the hull of two numbers does. A
// fresh object has nothing to remember, and is open.

#include <gtest/gtest.h>

#include "flags_fixture.h"

namespace flags_test {
namespace {

TEST(ObjetsMemory, TheHullOfTwoNumbersHasTheFlagsOfTheIntervalBefore) {
    for (char const* before : {"]7, 8[", "]7, 8]", "[7, 8[", "[7, 8]"}) {
        s_Objet a;
        becomeNumberAfter(&a, before, "2");
        // 2 and 5 take the place of 7 and 8 between the same brackets.
        std::string expected = before;
        expected.replace(1, 1, "2").replace(4, 1, "5");
        EXPECT_EQ(grownTo(&a, "5"), expected);
    }
}

TEST(ObjetsMemory, AHullToTheLeftToo) {
    s_Objet a;
    becomeNumberAfter(&a, "[7, 8[", "5");
    EXPECT_EQ(grownTo(&a, "2"), "[2, 5[");
}

TEST(ObjetsMemory, ItLastsOverNumbers) {
    s_Objet a;
    becomeNumberAfter(&a, "[7, 8]", "2");
    s_Objet const three = obj("3");
    sn_putObjet(&three, &a);   // 3
    sn_addObjet(&a, &three);   // 6
    sn_subObjet(&a, &three);   // 3
    sn_mulObjet(&a, &three);   // 9
    sn_divObjet(&a, &three);   // 3
    sn_minusObjet(&a);         // -3
    sn_uniObjet(&a, objZero);  // [-3, 0]
    EXPECT_EQ(text(a), "[-3, 0]");
}

TEST(ObjetsMemory, ANumberPutElsewhereTakesNoFlagsWithIt) {
    s_Objet source, destination;
    becomeNumberAfter(&source, "[7, 8]", "2");
    sn_putObjet(&source, &destination);
    EXPECT_EQ(grownTo(&destination, "5"), "]2, 5[");
    becomeNumberAfter(&destination, "[7, 8[", "0");
    becomeNumberAfter(&source, "]7, 8]", "2");
    sn_putObjet(&source, &destination);
    EXPECT_EQ(grownTo(&destination, "5"), "[2, 5[");
}

TEST(ObjetsMemory, AnIntervalPutInItsPlaceReplacesIt) {
    s_Objet a;
    becomeNumberAfter(&a, "[7, 8]", "2");
    becomeNumberAfter(&a, "]7, 8[", "2");
    EXPECT_EQ(grownTo(&a, "5"), "]2, 5[");
}

TEST(ObjetsMemory, TheFlagsOfTheOtherOperandComeFirst) {
    for (auto* operation : {sn_addObjet, sn_subObjet, sn_mulObjet}) {
        s_Objet a;
        becomeNumberAfter(&a, "[7, 8]", "2");
        s_Objet const b = obj("]3, 4[");
        operation(&a, &b);
        EXPECT_EQ(a.rng.infClosed, 0);
        EXPECT_EQ(a.rng.supClosed, 0);
    }
    s_Objet a;
    becomeNumberAfter(&a, "[7, 8]", "2");
    s_Objet const b = obj("]4, 8[");
    EXPECT_EQ(sn_divObjet(&a, &b), 1);
    EXPECT_EQ(text(a), "]0.25, 0.5[");
    becomeNumberAfter(&a, "[7, 8]", "6");
    sn_uniObjet(&a, &b);
    EXPECT_EQ(text(a), "]4, 8[");
}

TEST(ObjetsMemory, AProductWithZeroKeepsThem) {
    s_Objet a = obj("[1, 2]");
    sn_mulObjet(&a, objZero);
    EXPECT_EQ(text(a), "0");
    EXPECT_EQ(grownTo(&a, "5"), "[0, 5]");
}

TEST(ObjetsMemory, AnIntersectionOfOnePointKeepsThem) {
    s_Objet a = obj("[1, 2]");
    s_Objet const touching = obj("[2, 3]");
    EXPECT_EQ(sn_interObjet(&a, &touching), 1);
    EXPECT_EQ(text(a), "2");
    EXPECT_EQ(grownTo(&a, "5"), "[2, 5]");
    a = obj("]1, 2]");
    EXPECT_EQ(sn_interObjet(&a, &touching), 1);
    EXPECT_EQ(grownTo(&a, "5"), "]2, 5]");
}

TEST(ObjetsMemory, AnIntersectionWithANumberKeepsThem) {
    s_Objet a = obj("[1, 4[");
    s_Objet const two = obj("2");
    EXPECT_EQ(sn_interObjet(&a, &two), 1);
    EXPECT_EQ(text(a), "2");
    EXPECT_EQ(grownTo(&a, "5"), "[2, 5[");
}

TEST(ObjetsMemory, AFreshNumberIsOpen) {
    s_Objet made = mkObjReal(2);
    EXPECT_EQ(grownTo(&made, "5"), "]2, 5[");
    s_Objet source;
    becomeNumberAfter(&source, "[7, 8]", "2");
    s_Objet copy = copyObjet(&source).value();
    EXPECT_EQ(grownTo(&copy, "5"), "]2, 5[");
    s_Objet local = source;
    EXPECT_EQ(grownTo(&local, "5"), "]2, 5[");
    EXPECT_EQ(grownTo(&source, "5"), "[2, 5]");
}

TEST(ObjetsMemory, AnAssignmentIsAPut) {
    s_Objet a = obj("[7, 8]");
    a = makeReal(2);
    EXPECT_EQ(remembered(a), "[]");
    EXPECT_EQ(grownTo(&a, "5"), "[2, 5]");
}

// An object handed on whole is still the same one: whether a compiler spares the move of a returned
// local must not be seen.
TEST(ObjetsMemory, AMovedObjectIsTheSame) {
    s_Objet a = obj("[7, 8]");
    a = makeReal(2);
    s_Objet moved = std::move(a);
    EXPECT_EQ(grownTo(&moved, "5"), "[2, 5]");
}

// Both sentences apply: the number equals sup, and it equals inf.
TEST(ObjetsMemory, ANumberClosesBothEndsOfTheOpenPoint) {
    s_Objet point = obj("]1, 1[");
    EXPECT_EQ(grownTo(&point, "1"), "[1, 1]");
    point = obj("[1, 1[");
    EXPECT_EQ(grownTo(&point, "1"), "[1, 1[");
    point = obj("]1, 1]");
    EXPECT_EQ(grownTo(&point, "1"), "]1, 1]");
}

}  // namespace
}  // namespace flags_test
