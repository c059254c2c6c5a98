// The flags that the places of the engine remember while they hold numbers, and where they show:
// in hulls of the dynamic update and of a range of delays, in what a copy keeps, and in whether a
// value of one point is clipped to a number.

#include <gtest/gtest.h>

#include "continuous/search.h"
#include "engine_fixture.h"
#include "flags_fixture.h"

namespace flags_test {
namespace {

class Flags : public engine_test::EngineTest {
protected:
    Flags() {
        y = plant.add("y", obj("8"));
        u = plant.add("u", obj("2"));
    }

    s_Influence* cause(influType type, char const* a1, char const* a2, char const* b1,
                       char const* b2) {
        s_Influence* influence = plant.link(u, y, type);
        influence->a1 = obj(a1);
        influence->a2 = obj(a2);
        influence->b1 = obj(b1);
        influence->b2 = obj(b2);
        return influence;
    }

    // The new value of y, when the sum remembers the flags of *before*.
    std::string update(char const* before) {
        becomeNumberAfter(TMP1, before, "0");
        sn_updateVariable(&plant.rt, y);
        return text(y->new_);
    }

    Plant plant;
    s_Variable *y, *u;
};

// U = 2, so from 0.5 U + 0.5 y = 5 to 0.25 U + 0.75 y = 6.5.
TEST_F(Flags, TheHullOfAFirstOrderSum) {
    cause(INF_DYNAMIC, "[0.5, 0.75]", "0", "1", "0");
    EXPECT_EQ(update("[1, 2]"), "[5, 6.5]");
    EXPECT_EQ(update("[1, 2["), "[5, 6.5[");
    EXPECT_EQ(update("]1, 2]"), "]5, 6.5]");
    EXPECT_EQ(update("]1, 2["), "]5, 6.5[");
}

// 0.5 y + 0.25 y(-1) = 6, and b1 u from 2 to 4.
TEST_F(Flags, TheHullOfASecondOrderInput) {
    cause(INF_DYNAMIC2, "0.5", "0.25", "[1, 2]", "0");
    EXPECT_EQ(update("[1, 2]"), "[8, 10]");
    EXPECT_EQ(update("]1, 2]"), "]8, 10]");
}

// y from 0.5 * 8 + 0.25 * 8 + 2 to 0.75 * 8 + 0.5 * 8 + 4.
TEST_F(Flags, TheHullOfAllCorners) {
    cause(INF_DYNAMIC2, "[0.5, 0.75]", "[0.25, 0.5]", "[1, 2]", "0");
    EXPECT_EQ(update("[1, 2]"), "[8, 14]");
    EXPECT_EQ(update("[1, 2["), "[8, 14[");
}

// The flags come from the interval that the sum was last, here that of the variable before it.
TEST_F(Flags, AVariableIsSeenInTheNextOne) {
    cause(INF_DYNAMIC, "[0.5, 0.75]", "0", "1", "0");
    s_Variable* z = plant.add("z", obj("0"));
    plant.link(u, z, INF_STATIC)->b1 = obj("[1, 2]");
    plant.rt.untemporal = {z, y};
    sn_doStepUntemp(&plant.rt);
    EXPECT_EQ(text(z->new_), "[2, 4]");
    EXPECT_EQ(text(y->new_), "[5, 6.5]");
}

// Past values of u: 2 two cycles back and 5 one cycle back.
TEST_F(Flags, TheHullOverARangeOfDelays) {
    s_Influence* influence = cause(INF_INTEGRAL, "1", "0", "1", "0");
    influence->delayMin = 1;
    influence->delayMax = 2;
    u->histo.set(0, obj("5"));
    for (char const* flags : {"[2, 5]", "[2, 5[", "]2, 5]", "]2, 5["}) {
        becomeNumberAfter(TMP2, flags, "0");
        sn_loadCauseValue(&plant.rt, influence);
        EXPECT_EQ(text(*TMP2), flags);
    }
}

// A search may narrow a value to one point. With its ends closed the domain makes it a number; with
// open ends it has no point in common with any condition, and the run would end.
TEST_F(Flags, AClosedPointInTheDomainIsANumber) {
    cause(INF_DYNAMIC, "[0.5, 0.75]", "0", "1", "0");
    y->domain = obj("[-MAX, MAX]");
    update("[1, 2]");
    setNelderResult(&y->new_, 6, 6);
    EXPECT_EQ(sn_new2OldValue(&plant.rt, y), 1);
    EXPECT_EQ(text(y->old), "6");
    update("]1, 2[");
    setNelderResult(&y->new_, 6, 6);
    EXPECT_EQ(sn_new2OldValue(&plant.rt, y), 0);
    EXPECT_EQ(text(y->old), "]6, 6[");
}

TEST_F(Flags, InputsAndMeasuresAreEnteredInPlace) {
    y->mes = obj("[1, 2]");
    plant.rt.measure = {y};
    u->new_ = obj("]1, 2]");
    plant.rt.input = {u};
    inps = {3};
    meas = {4};
    sn_enterInputs(&plant.rt);
    sn_enterMeasures(&plant.rt);
    EXPECT_EQ(grownTo(&u->new_, "5"), "]3, 5]");
    EXPECT_EQ(grownTo(&y->mes, "5"), "[4, 5]");
}

TEST_F(Flags, AMoveBackInTimeWritesInPlace) {
    y->new_ = y->old = obj("[1, 2]");
    plant.rt.twc = 4;
    moveHistory(&plant.rt, y, 0, 1);
    EXPECT_EQ(text(y->old), "8");
    EXPECT_EQ(grownTo(&y->old, "9"), "[8, 9]");
    EXPECT_EQ(grownTo(&y->new_, "9"), "[8, 9]");
}

// A copy of a runtime is made of fresh objects.
TEST_F(Flags, ACopyForgets) {
    becomeNumberAfter(&y->old, "[1, 2]", "3");
    becomeNumberAfter(&y->new_, "[1, 2]", "3");
    auto const copy = sn_copyRuntime(&plant.rt);
    s_Variable* copied = sn_getVarDico(copy.get(), "y");
    EXPECT_EQ(grownTo(&copied->old, "5"), "]3, 5[");
    EXPECT_EQ(grownTo(&copied->new_, "5"), "]3, 5[");
    EXPECT_EQ(grownTo(&y->old, "5"), "[3, 5]");
    EXPECT_EQ(grownTo(&y->new_, "5"), "[3, 5]");
}

}  // namespace
}  // namespace flags_test
