// The rule `unknown` on the continuous side: what a mode leaves open may act or not.
#include "narrow_fixture.h"

using namespace narrow_test;

namespace {

// A component with the modes on, off and unknown, of which the last one holds.
class Open : public NarrowTest {
protected:
    explicit Open(Rules const& given = {.unknown = true}) : NarrowTest(given) {
        for (int i = 0; i < 3; ++i)
            conditions.push_back(mkAtomCond(plant.rt, mode[i], 0));
        setMode(2);
    }

    void setMode(int value) {
        for (int i = 0; i < 3; ++i)
            conditions[static_cast<std::size_t>(i)]->val = i == value ? 1 : 0;
    }
    s_Condition* on() { return conditions[0]; }
    s_Condition* off() { return conditions[1]; }
    Truth truthOf(s_Condition* condition) {
        return sn_truthOf(condition, &plant.rt, sn_certainTruth);
    }
    s_Condition* both(conditionKind kind, s_Condition* left, s_Condition* right) {
        return mkBinaryCond(plant.rt, kind, left, right, 0);
    }
    s_Condition* constant(boolVal value) {
        auto condition = mkCond();
        condition->kind = COND_CONST;
        condition->val = value;
        return adoptCondition(plant.rt, std::move(condition));
    }
    // y of that kind, by one influence that acts in the mode on.
    s_Influence* byMode(s_Variable* cause, s_Variable* effect, influType type,
                        char const* gain = "2") {
        s_Influence* influence = link(cause, effect, type, gain);
        influence->cond = on();
        influence->condHistoLn = 2;
        influence->condHisto.assign(2, 0);
        return influence;
    }
    std::string updated(s_Variable* variable) {
        sn_updateVariable(&plant.rt, variable);
        return text(variable->new_);
    }

    Choice mode{"m", {"on", "off", "unknown"}};
    std::vector<s_Condition*> conditions;
};

TEST_F(Open, AnUnknownModeLeavesItsOtherValuesOpen) {
    EXPECT_EQ(truthOf(on()), Truth::OPEN);
    EXPECT_EQ(truthOf(off()), Truth::OPEN);
    EXPECT_EQ(truthOf(conditions[2]), Truth::TRUE);
    setMode(0);
    EXPECT_EQ(truthOf(on()), Truth::TRUE);
    EXPECT_EQ(truthOf(off()), Truth::FALSE);
    EXPECT_EQ(truthOf(conditions[2]), Truth::FALSE);
}

TEST_F(Open, OtherVariablesKeepTheirTruth) {
    Choice other{"o", {"on", "off", "unknown"}};
    EXPECT_EQ(truthOf(mkAtomCond(plant.rt, other[0], 0)), Truth::FALSE);
}

// Its condition alone tells that the mode is unknown.
TEST_F(Open, NothingIsOpenWithoutAConditionOnTheUnknownMode) {
    Choice other{"o", {"on", "off", "unknown"}};
    s_Condition* condition = mkAtomCond(plant.rt, other[0], 0);
    EXPECT_EQ(truthOf(condition), Truth::FALSE);
    mkAtomCond(plant.rt, other[2], 0)->val = 1;
    EXPECT_EQ(truthOf(condition), Truth::OPEN);
}

TEST_F(Open, AnOrIsDecidedByATrueOperandAndAnAndByAFalseOne) {
    s_Condition *yes = constant(1), *no = constant(0);
    for (bool const swapped : {false, true}) {
        auto const truth = [&](conditionKind kind, s_Condition* other) {
            return truthOf(swapped ? both(kind, other, on()) : both(kind, on(), other));
        };
        EXPECT_EQ(truth(COND_OR, yes), Truth::TRUE);
        EXPECT_EQ(truth(COND_OR, no), Truth::OPEN);
        EXPECT_EQ(truth(COND_OR, off()), Truth::OPEN);
        EXPECT_EQ(truth(COND_AND, yes), Truth::OPEN);
        EXPECT_EQ(truth(COND_AND, no), Truth::FALSE);
        EXPECT_EQ(truth(COND_AND, off()), Truth::OPEN);
    }
    EXPECT_EQ(truthOf(both(COND_NOT, on(), nullptr)), Truth::OPEN);
    EXPECT_EQ(truthOf(both(COND_NOT, yes, nullptr)), Truth::FALSE);
    EXPECT_EQ(truthOf(both(COND_NOT, no, nullptr)), Truth::TRUE);
    EXPECT_EQ(truthOf(both(COND_OR, yes, no)), Truth::TRUE);
    EXPECT_EQ(truthOf(both(COND_AND, yes, yes)), Truth::TRUE);
    EXPECT_EQ(truthOf(both(COND_OR, no, no)), Truth::FALSE);
}

// 2 x 3 or nothing, beside 5.
TEST_F(Open, AStaticEffectCoversBoth) {
    s_Variable* y = effect("y", makeReal(0));
    byMode(plant.add("u", makeReal(3)), y, INF_STATIC);
    link(plant.add("v", makeReal(5)), y, INF_STATIC);
    EXPECT_EQ(updated(y), text(closed(5, 11)));
    setMode(0);
    EXPECT_EQ(updated(y), text(makeReal(11)));
    setMode(1);
    EXPECT_EQ(updated(y), text(makeReal(5)));
}

// Of two that exclude each other both are counted: [0, 6] and [-2, 0].
TEST_F(Open, OfTwoThatExcludeEachOtherBothMayAct) {
    s_Variable* y = effect("y", makeReal(0));
    byMode(plant.add("u", makeReal(3)), y, INF_STATIC);
    byMode(plant.add("v", makeReal(1)), y, INF_STATIC, "-2")->cond = off();
    EXPECT_EQ(updated(y), text(closed(-2, 6)));
}

TEST_F(Open, AnIntegralMayStand) {
    s_Variable* x = temporal("x", makeReal(10), makeReal(0));
    byMode(plant.add("u", makeReal(3)), x, INF_INTEGRAL);
    EXPECT_EQ(updated(x), text(closed(10, 16)));
}

// 0.5 x 4 + 0.5 x (2 x 3 or nothing).
TEST_F(Open, AFirstOrderEffectMayFall) {
    s_Variable* y = temporal("y", makeReal(4), makeReal(0));
    byMode(plant.add("u", makeReal(3)), y, INF_DYNAMIC)->a1 = makeReal(0.5);
    EXPECT_EQ(updated(y), text(closed(2, 5)));
}

// 1 x 4 + 0.5 x 4 + (2 x 3 + 1 x 3 or nothing), with numbers and with corners: b1 in [2, 3].
TEST_F(Open, ASecondOrderEffectMayFall) {
    s_Variable* y = temporal("y", makeReal(4), makeReal(0));
    s_Influence* influence = byMode(plant.add("u", makeReal(3)), y, INF_DYNAMIC2);
    influence->a1 = makeReal(1);
    influence->a2 = makeReal(0.5);
    influence->b2 = makeReal(1);
    EXPECT_EQ(updated(y), text(closed(6, 15)));
    influence->b1 = closed(2, 3);
    updated(y);
    EXPECT_EQ(sn_infOf(y->new_), 6);
    EXPECT_EQ(sn_supOf(y->new_), 18);
}

TEST_F(Open, AFirstValueCoversBoth) {
    s_Variable* y = effect("y", makeReal(0));
    s_Variable* u = plant.add("u", makeReal(3));
    u->defined = 1;
    byMode(u, y, INF_STATIC);
    sn_compInitVar(&plant.rt, y);
    EXPECT_EQ(text(y->old), text(closed(0, 6)));
}

// For isolation it acted; the atom's truth is the discrete side's.
TEST_F(Open, TheHistorySaysThatItActedAndTheAtomStays) {
    s_Variable* y = effect("y", makeReal(0));
    s_Influence* influence = byMode(plant.add("u", makeReal(3)), y, INF_STATIC);
    updated(y);
    EXPECT_EQ(entries(influence->condHisto), "1 0");
    EXPECT_EQ(on()->val, 0);
    setMode(1);
    updated(y);
    EXPECT_EQ(entries(influence->condHisto), "0 1");
}

// A model whose every influence is open is not one that no condition fits.
TEST_F(Open, WhatMayActIsNoInvalidModel) {
    byMode(plant.add("u", makeReal(3)), effect("y", makeReal(0)), INF_STATIC);
    plant.rt.condout.assign(plant.rt.influ.size(), 0);
    EXPECT_EQ(sn_yieldConds(&plant.rt), 1);
    EXPECT_EQ(plant.rt.condout[0], 1);
    setMode(1);
    EXPECT_EQ(sn_yieldConds(&plant.rt), 2);
}

TEST_F(Open, TheSearchDoesNotRun) {
    init_nelder(engine);
    s_Variable* y = effect("y", makeReal(0));
    s_Influence* influence = byMode(plant.add("u", closed(0, 3)), y, INF_STATIC);
    influence->useOpti = 1;
    plant.measure(y, 3);
    EXPECT_EQ(updated(y), text(closed(0, 6)));
    EXPECT_EQ(entries(influence->condHisto), "1 0");  // evaluated once
}

class OpenClassic : public Open {
protected:
    OpenClassic() : Open(Rules{}) {}
};

TEST_F(OpenClassic, WithoutTheRuleNothingActs) {
    s_Variable* y = effect("y", makeReal(0));
    byMode(plant.add("u", makeReal(3)), y, INF_STATIC);
    EXPECT_EQ(truthOf(on()), Truth::FALSE);
    EXPECT_EQ(updated(y), text(makeReal(0)));
}

class OpenNarrow : public Open {
protected:
    OpenNarrow() : Open(Rules{.narrow = true, .unknown = true}) {}
};

// y = 2 u or nothing, and v: 9 = [0, 20] + v leaves v at most 9, though 2 u alone would leave 7;
// and u may be anything.
TEST_F(OpenNarrow, NothingIsNarrowedBehindWhatMayNotAct) {
    s_Variable* u = free("u", closed(1, 10));
    s_Variable* v = free("v", closed(0, 30));
    s_Variable* y = effect("y", closed(0, 50));
    byMode(u, y, INF_STATIC);
    link(v, y, INF_STATIC);
    plant.measure(y, 9);
    sn_narrowCycle(&plant.rt);
    expectNow(u, 1, 10);
    EXPECT_NEAR(sn_infOf(v->new_), 0, 1e-300);
    EXPECT_NEAR(sn_supOf(v->new_), 9, 1e-12);
}

}  // namespace
