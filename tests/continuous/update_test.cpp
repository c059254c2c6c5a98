// What a cause is worth at a delay, conditions and their histories, and variables from their
// causes.
#include "engine_fixture.h"

namespace engine_test {
namespace {

// ---- The value of a cause ----

// One cause with told values everywhere: old 1, new 2, mes 3, histo 10.., mesHisto 20.. .
class CauseValue : public EngineTest {
protected:
    CauseValue() {
        c = plant.add("c", obj("1"), 5);
        link = plant.link(c, plant.add("e", obj("0")), INF_DYNAMIC);
        c->new_ = obj("2");
        c->mes = obj("3");
        c->histo = numbered(5, 10);
        c->mesHisto = numbered(5, 20);
    }

    void measured() { plant.rt.measure = {c}; }

    // The value loaded, and for the second order the one before.
    std::string load(influType type, int delayMin, int delayMax) {
        link->type = type;
        link->delayMin = delayMin;
        link->delayMax = delayMax;
        *TMP2 = *TMP5 = obj("-1");
        sn_loadCauseValue(&plant.rt, link);
        return text(*TMP2) + " / " + text(*TMP5);
    }

    Plant plant;
    s_Variable* c;
    s_Influence* link;
};

TEST_F(CauseValue, ADelayReadsThePast) {
    EXPECT_EQ(load(INF_DYNAMIC, 1, 1), "10 / -1");
    EXPECT_EQ(load(INF_INTEGRAL, 3, 3), "12 / -1");
    EXPECT_EQ(load(INF_COUPLING, 5, 5), "14 / -1");
    EXPECT_EQ(load(INF_DYNAMIC2, 2, 2), "11 / 12");
}

TEST_F(CauseValue, ADelayReadsThePastMeasuresOfATrustedMeasure) {
    measured();
    EXPECT_EQ(load(INF_DYNAMIC, 1, 1), "20 / -1");
    EXPECT_EQ(load(INF_DYNAMIC2, 3, 3), "22 / 23");
}

// Whether a past measure is trusted is told by the flags of its own entry, not by those of today.
TEST_F(CauseValue, AnAlarmOfThatTimeMakesThePredictionCount) {
    measured();
    c->lowHisto.set(1, 1);
    c->highHisto.set(2, 1);
    EXPECT_EQ(load(INF_DYNAMIC2, 1, 1), "20 / 21");
    EXPECT_EQ(load(INF_DYNAMIC2, 2, 2), "11 / 12");
    EXPECT_EQ(load(INF_DYNAMIC2, 3, 3), "12 / 13");
    EXPECT_EQ(load(INF_DYNAMIC2, 4, 4), "23 / 24");
    c->lowalarm = c->highalarm = 1;
    EXPECT_EQ(load(INF_DYNAMIC, 1, 1), "20 / -1");
}

TEST_F(CauseValue, ARangeOfDelaysIsCovered) {
    EXPECT_EQ(load(INF_DYNAMIC, 1, 3), "]10, 12[ / -1");
    EXPECT_EQ(load(INF_DYNAMIC, 2, 3), "]11, 12[ / -1");
    EXPECT_EQ(load(INF_DYNAMIC, 3, 3), "12 / -1");
}

// The last delay comes from the measures, every shorter one from the predictions.
TEST_F(CauseValue, TheRangeOfATrustedMeasureIsCoveredFromThePredictions) {
    measured();
    EXPECT_EQ(load(INF_DYNAMIC, 1, 3), "]10, 22[ / -1");
    EXPECT_EQ(load(INF_DYNAMIC2, 2, 3), "]11, 22[ / 23");
}

TEST_F(CauseValue, DelayZeroReadsTheLastCycle) {
    for (influType const type : {INF_DYNAMIC, INF_INTEGRAL, INF_COUPLING})
        EXPECT_EQ(load(type, 0, 0), "1 / -1");
    EXPECT_EQ(load(INF_DYNAMIC2, 0, 0), "1 / 10");
}

TEST_F(CauseValue, DelayZeroReadsATrustedMeasure) {
    measured();
    EXPECT_EQ(load(INF_DYNAMIC, 0, 0), "3 / -1");
    EXPECT_EQ(load(INF_DYNAMIC2, 0, 0), "3 / 20");
    c->lowHisto.fill(1);  // the past does not count here
    EXPECT_EQ(load(INF_DYNAMIC2, 0, 0), "3 / 20");
    c->highalarm = 1;
    EXPECT_EQ(load(INF_DYNAMIC2, 0, 0), "1 / 10");
    c->highalarm = 0;
    c->lowalarm = 1;
    EXPECT_EQ(load(INF_DYNAMIC2, 0, 0), "1 / 10");
}

TEST_F(CauseValue, AStaticLinkActsOneCycleEarlier) {
    EXPECT_EQ(load(INF_STATIC, 0, 0), "2 / -1");
    EXPECT_EQ(load(INF_STATIC, 1, 1), "1 / -1");
    EXPECT_EQ(load(INF_STATIC, 2, 2), "10 / -1");
    EXPECT_EQ(load(INF_STATIC, 2, 4), "]10, 12[ / -1");
}

TEST_F(CauseValue, AStaticLinkReadsATrustedMeasureAtOnce) {
    measured();
    EXPECT_EQ(load(INF_STATIC, 0, 0), "3 / -1");
    EXPECT_EQ(load(INF_STATIC, 1, 1), "3 / -1");
    EXPECT_EQ(load(INF_STATIC, 2, 2), "20 / -1");
    c->lowalarm = 2;
    EXPECT_EQ(load(INF_STATIC, 0, 0), "2 / -1");
    EXPECT_EQ(load(INF_STATIC, 1, 1), "1 / -1");
}

TEST_F(CauseValue, AParameterHasNoNewValue) {
    c->isParam = 1;
    EXPECT_EQ(load(INF_STATIC, 0, 0), "1 / -1");
}

TEST_F(CauseValue, AnyOtherDelayLoadsNothing) {
    EXPECT_EQ(load(INF_DYNAMIC, -1, -1), "-1 / -1");
    EXPECT_EQ(load(INF_DYNAMIC2, -2, -2), "-1 / -1");
    EXPECT_EQ(load(INF_STATIC, -1, -1), "-1 / -1");
}

// ---- Delays that the history does not hold ----

TEST_F(CauseValue, BehindTheHistoryTheOldestEntryStands) {
    EXPECT_EQ(load(INF_DYNAMIC2, 5, 5), "14 / 14");
    EXPECT_EQ(load(INF_DYNAMIC, 99, 99), "14 / -1");
    EXPECT_EQ(load(INF_DYNAMIC, 4, 99), "]13, 14[ / -1");
    measured();
    EXPECT_EQ(load(INF_DYNAMIC2, 5, 5), "24 / 24");
    c->highHisto.set(4, 1);
    EXPECT_EQ(load(INF_DYNAMIC2, 99, 99), "14 / 14");
}

TEST_F(CauseValue, ARangeThatStartsBeforeTheHistoryStartsWithIt) {
    EXPECT_EQ(load(INF_DYNAMIC, 0, 3), "]10, 12[ / -1");
    EXPECT_EQ(load(INF_STATIC, 0, 3), "]10, 11[ / -1");
    EXPECT_EQ(load(INF_DYNAMIC, -7, 1), "10 / -1");
}

TEST_F(CauseValue, WithoutAHistoryTheLastCycleStands) {
    c->histo = c->mesHisto = History<s_Objet>();
    c->lowHisto = c->highHisto = History<int>();
    EXPECT_EQ(load(INF_DYNAMIC2, 2, 2), "1 / 1");
    EXPECT_EQ(load(INF_DYNAMIC2, 0, 0), "1 / 1");
    EXPECT_EQ(load(INF_DYNAMIC, 1, 4), "1 / -1");
    measured();
    EXPECT_EQ(load(INF_DYNAMIC2, 2, 2), "3 / 3");
    EXPECT_EQ(load(INF_DYNAMIC2, 0, 0), "3 / 3");
    c->lowalarm = 1;  // no flag of that time: the one of today says whom to trust
    EXPECT_EQ(load(INF_DYNAMIC2, 2, 2), "1 / 1");
}

// ---- Trust ----

TEST_F(CauseValue, OnlyAMeasureWithoutAlarmsIsTrusted) {
    EXPECT_FALSE(sn_isTrusted(&plant.rt, c));
    measured();
    EXPECT_TRUE(sn_isTrusted(&plant.rt, c));
    c->meslowmisb = c->meshighmisb = c->mesmisb = 1;
    EXPECT_TRUE(sn_isTrusted(&plant.rt, c));
    c->lowalarm = 1;
    EXPECT_FALSE(sn_isTrusted(&plant.rt, c));
    c->lowalarm = 0;
    c->highalarm = 2;
    EXPECT_FALSE(sn_isTrusted(&plant.rt, c));
}

// ---- Conditions of influences ----

class PushCond : public EngineTest {
protected:
    PushCond() {
        link = plant.link(plant.add("c", obj("1")), plant.add("e", obj("0")), INF_STATIC);
        truth = plant.condition(link, 0);
        // Whether c is below 5, so that the value is a computed one.
        truth->kind = COND_REL;
        truth->var = link->cause;
        truth->op = REL_LT;
        truth->value = obj("5");
    }

    std::string push(int length, std::vector<boolVal> const& history, char const* value) {
        link->condHistoLn = length;
        link->condHisto = history;
        link->cause->old = obj(value);
        truth->val = 7;
        int const result = sn_pushCond(link, &plant.rt);
        EXPECT_EQ(truth->val, result);
        return std::to_string(result) + ": " + entries(link->condHisto);
    }

    Plant plant;
    s_Influence* link;
    s_Condition* truth;
};

TEST_F(PushCond, TheValueBecomesTheNewestEntry) {
    EXPECT_EQ(push(3, {4, 5, 6}, "1"), "1: 1 4 5");
    EXPECT_EQ(push(3, {4, 5, 6}, "9"), "0: 0 4 5");
    EXPECT_EQ(push(2, {4, 5}, "1"), "1: 1 4");
    EXPECT_EQ(push(1, {4}, "1"), "1: 1");
}

TEST_F(PushCond, AHistoryOfNoLengthHoldsTheValueAllTheSame) {
    EXPECT_EQ(push(0, {4}, "1"), "1: 1");
    EXPECT_EQ(push(0, {}, "1"), "1: 1");
    EXPECT_EQ(push(0, {}, "9"), "0: 0");
}

TEST_F(PushCond, AHistoryThatIsTooShortGrows) {
    EXPECT_EQ(push(3, {}, "1"), "1: 1 1 1");
    EXPECT_EQ(push(3, {0}, "1"), "1: 1 0 1");
}

TEST_F(PushCond, EntriesBehindTheLengthStay) {
    EXPECT_EQ(push(2, {4, 5, 6}, "1"), "1: 1 4 6");
}

TEST_F(PushCond, AnExternalValueIsPushedUnseen) {
    link->condHistoLn = 2;
    link->condHisto = {4, 5};
    link->cause->old = obj("9");
    sn_pushExternCond(link, 1);
    EXPECT_EQ(entries(link->condHisto), "1 4");
    EXPECT_EQ(truth->val, 1);
    sn_pushExternCond(link, 0);
    EXPECT_EQ(entries(link->condHisto), "0 1");
    EXPECT_EQ(truth->val, 0);
}

TEST_F(PushCond, AnInfluenceIsActiveWithoutConditionOrWithATrueOne) {
    link->condHistoLn = 1;
    link->condHisto = {7};
    EXPECT_TRUE(sn_isActive(link, &plant.rt));
    EXPECT_EQ(entries(link->condHisto), "1");
    link->cause->old = obj("9");
    EXPECT_FALSE(sn_isActive(link, &plant.rt));
    EXPECT_EQ(entries(link->condHisto), "0");
    link->cond = nullptr;
    EXPECT_TRUE(sn_isActive(link, &plant.rt));
    EXPECT_EQ(entries(link->condHisto), "0");
}

// ---- Updating a variable ----

class Update : public EngineTest {
protected:
    Update() {
        e = plant.add("e", obj("100"));
        e->new_ = obj("-1");
        a = plant.add("a", obj("2"));
        b = plant.add("b", obj("3"));
    }

    std::string update() {
        sn_updateVariable(&plant.rt, e);
        return text(e->new_);
    }

    Plant plant;
    s_Variable *e, *a, *b;
};

TEST_F(Update, WithoutCausesTheNewValueStays) {
    EXPECT_EQ(update(), "-1");
    mkGraph(plant.rt, e, INF_INTEGRAL, {}, {});
    EXPECT_EQ(update(), "-1");
}

TEST_F(Update, AnIntegralAddsItsCausesToItsValue) {
    plant.link(a, e, INF_INTEGRAL, "10");
    plant.link(b, e, INF_INTEGRAL, "[1, 2]");
    EXPECT_EQ(update(), "[123, 126]");
    EXPECT_EQ(text(e->old), "100");
}

TEST_F(Update, AnIntegralTakesB1AndNotTheGain) {
    plant.link(a, e, INF_INTEGRAL, "10")->gain = obj("77");
    EXPECT_EQ(update(), "120");
}

TEST_F(Update, AnIntegralStartsFromATrustedMeasure) {
    plant.link(a, e, INF_INTEGRAL, "10");
    plant.measure(e, 50);
    EXPECT_EQ(update(), "70");
    e->highalarm = 1;
    EXPECT_EQ(update(), "120");
    e->highalarm = 0;
    e->lowalarm = 1;
    EXPECT_EQ(update(), "120");
}

// The detection mode takes a cause's measure for its value, too.
TEST_F(Update, ACauseIsWorthItsTrustedMeasure) {
    plant.link(a, e, INF_INTEGRAL, "1");
    plant.measure(a, 7);
    EXPECT_EQ(update(), "107");
    a->lowalarm = 1;
    EXPECT_EQ(update(), "102");
}

// (1 - a1)(gain a + gain b) + a1 old = 0.5 (4 + 3) + 0.5 * 100.
TEST_F(Update, AFirstOrderTakesTheGains) {
    for (s_Influence* i : {plant.link(a, e, INF_DYNAMIC, "2"), plant.link(b, e, INF_DYNAMIC)}) {
        i->a1 = obj("0.5");
        i->b1 = obj("77");
    }
    EXPECT_EQ(update(), "53.5");
}

// 0.75 * 2 + 0.25 * 100 by the coefficients of the second influence, which is not even active.
TEST_F(Update, TheLastInfluenceLookedAtGivesTheRecursion) {
    plant.link(a, e, INF_DYNAMIC)->a1 = obj("0.5");
    s_Influence* last = plant.link(b, e, INF_DYNAMIC);
    last->a1 = obj("0.25");
    plant.condition(last, 0);
    EXPECT_EQ(update(), "26.5");
}

TEST_F(Update, AStaticSumOfThisCycle) {
    plant.link(a, e, INF_STATIC, "10");
    plant.link(b, e, INF_STATIC, "-1");
    a->new_ = obj("4");
    b->new_ = obj("5");
    EXPECT_EQ(update(), "35");
}

// b1 u(k-1) + b2 u(k-2) + a1 y(k-1) + a2 y(k-2) with y(k-2) the newest of the history.
TEST_F(Update, TheSecondOrderTakesTwoSamplesOfEach) {
    s_Influence* i = plant.link(a, e, INF_DYNAMIC2);
    i->b1 = obj("10");
    i->b2 = obj("1000");
    i->a1 = obj("2");
    i->a2 = obj("1");
    a->histo.set(0, obj("4"));
    e->histo.set(0, obj("50"));
    EXPECT_EQ(update(), "4270");  // 20 + 4000 + 200 + 50
}

TEST_F(Update, AnotherKindGivesZero) {
    s_Influence* i = plant.link(a, e, INF_COUPLING, "10");
    plant.condition(i, 1);
    EXPECT_EQ(update(), "0");
    EXPECT_EQ(dynamic_test::evaluations(*i), 0);
}

TEST_F(Update, InactiveCausesContributeNothing) {
    for (influType const kind : {INF_STATIC, INF_INTEGRAL, INF_DYNAMIC, INF_DYNAMIC2}) {
        Plant other;
        s_Variable* effect = other.add("e", obj("100"));
        s_Influence* i = other.link(other.add("a", obj("2")), effect, kind, "10");
        i->a1 = obj("0.5");
        i->a2 = i->b2 = obj("0");
        other.condition(i, 0);
        sn_updateVariable(&other.rt, effect);
        // Only the base term is left: nothing, y(k-1), or half of it.
        char const* base = kind == INF_STATIC ? "0" : kind == INF_INTEGRAL ? "100" : "50";
        EXPECT_EQ(text(effect->new_), base) << kind;
        EXPECT_EQ(dynamic_test::evaluations(*i), 1);
    }
}

TEST_F(Update, OnlyActiveCausesCount) {
    s_Influence* first = plant.link(a, e, INF_STATIC, "10");
    s_Influence* second = plant.link(b, e, INF_STATIC, "1");
    plant.condition(first, 0);
    plant.condition(second, 1);
    EXPECT_EQ(update(), "3");
    EXPECT_EQ(entries({first->condHisto[0], second->condHisto[0]}), "0 1");
}

TEST_F(Update, ASumOfTheLastVariableIsNotCarriedOn) {
    plant.link(a, e, INF_STATIC, "10");
    *TMP1 = obj("[5, 6]");
    EXPECT_EQ(update(), "20");
}

// ---- The bound search of a static effect; a search evaluates the conditions again ----

class UpdateSearch : public Update {
protected:
    UpdateSearch() {
        init_nelder();
        a->new_ = obj("[0, 4]");
        first = plant.link(a, e, INF_STATIC);
        last = plant.link(b, e, INF_STATIC);
        plant.condition(first, 1);
        plant.condition(last, 0);
        last->useOpti = 1;
        plant.measure(e, 2);
    }

    bool searched() {
        first->condHisto.assign(8, -1);
        update();
        return dynamic_test::evaluations(*first) > 1;
    }

    s_Influence *first, *last;
};

TEST_F(UpdateSearch, IsDoneWhenTheLastInfluenceAsksForIt) {
    EXPECT_TRUE(searched());
    last->useOpti = 0;
    first->useOpti = 1;
    EXPECT_FALSE(searched());
}

TEST_F(UpdateSearch, IsNotDoneWithTheSearchOff) {
    env_opti = 0;
    EXPECT_FALSE(searched());
    EXPECT_EQ(text(e->new_), "[0, 4]");
}

TEST_F(UpdateSearch, IsNotDoneForAMeasureInAlarm) {
    e->lowalarm = 1;
    EXPECT_FALSE(searched());
    e->lowalarm = 0;
    e->highalarm = 1;
    EXPECT_FALSE(searched());
}

TEST_F(UpdateSearch, IsNotDoneForWhatIsNotMeasured) {
    plant.rt.measure.clear();
    EXPECT_FALSE(searched());
}

// The cause is narrowed towards what explains the measure 2, and the result with it.
TEST_F(UpdateSearch, NarrowsTheResult) {
    ASSERT_TRUE(searched());
    ASSERT_EQ(e->new_.type, OBJ_RANGE);
    EXPECT_GT(e->new_.rng.inf, 0.5);
    EXPECT_LT(e->new_.rng.sup, 3.5);
    EXPECT_LE(e->new_.rng.inf, 2.0);
    EXPECT_GE(e->new_.rng.sup, 2.0);
}

}  // namespace
}  // namespace engine_test
