// The vat beside true runs of it, and its conditions, constraints and mapping functions beside
// values worked out by hand.
#include "generated/vat/vat.h"
#include "fixtures/the_run.h"

#include "plants/plant_run.h"
#include "plants/vat/vat_truth.h"

namespace plants {
namespace {

constexpr unsigned firstSeed = 20240917;
constexpr int runs = 12;
// A detection drops candidates that disagree and merges equal ones; a simulation doubles them at
// every threshold, and is followed until after the first dump.
constexpr int simulated = 17, detected = 60;

s_Condition* lampCondition(s_runtime* rt, int lamp) {
    return variable(rt, "vat.lamps")->graph->causes[static_cast<std::size_t>(lamp)]->cond;
}

bool isLit(s_runtime* rt, int lamp) {
    return sn_evalCond(lampCondition(rt, lamp), rt) == 1;
}

// The names of the variables whose bounds miss the truth; "" when the candidate has it all.
std::string misses(s_runtime* rt, VatTruth const& truth) {
    std::string missed;
    if (isLit(rt, vat::LAMP_FILLING) != truth.filling)
        missed += " mode";
    if (!holds(variable(rt, "vat.level")->old, truth.level))
        missed += " level";
    for (auto const& [name, value] : truth.samples())
        if (!holds(variable(rt, name)->old, value))
            missed += " " + name;
    return missed;
}

// Conditions are certain: what is lit is so for the truth, which is one of the points, and what
// holds by a margin for all points is lit.
void expectSound(s_runtime* rt, double x, double z) {
    auto const follows = [rt](int lamp, bool truth) { return !isLit(rt, lamp) || truth; };
    EXPECT_TRUE(follows(vat::LAMP_LT_12, x < 12));
    EXPECT_TRUE(follows(vat::LAMP_LE_12, x <= 12));
    EXPECT_TRUE(follows(vat::LAMP_GE_12, x >= 12));
    EXPECT_TRUE(follows(vat::LAMP_GT_12, x > 12));
    EXPECT_TRUE(follows(vat::LAMP_DIFF_15, x != 15));
    EXPECT_TRUE(follows(vat::LAMP_IN_8_16, 8 < x && x < 16));
    EXPECT_TRUE(follows(vat::LAMP_LT_LAG, x < z));
    EXPECT_TRUE(follows(vat::LAMP_GE_LAG, x >= z));
    EXPECT_TRUE(follows(vat::LAMP_HIGH, x >= vat::highStart));
    double const inf = sn_infOf(variable(rt, "vat.level")->old);
    double const sup = sn_supOf(variable(rt, "vat.level")->old);
    s_Objet const& lag = variable(rt, "vat.lag")->old;
    EXPECT_TRUE(sup >= 12 || (isLit(rt, vat::LAMP_LT_12) && isLit(rt, vat::LAMP_LE_12)));
    EXPECT_TRUE(inf <= 12 || (isLit(rt, vat::LAMP_GE_12) && isLit(rt, vat::LAMP_GT_12)));
    EXPECT_TRUE(inf <= 8 || sup >= 16 || isLit(rt, vat::LAMP_IN_8_16));
    EXPECT_TRUE(holds(lag, sup) || sup > sn_supOf(lag) || isLit(rt, vat::LAMP_LT_LAG));
    EXPECT_TRUE(inf <= sn_supOf(lag) ||
                (isLit(rt, vat::LAMP_GE_LAG) && isLit(rt, vat::LAMP_DIFF_LAG)));
    EXPECT_NE(isLit(rt, vat::LAMP_NOT_LT_12), isLit(rt, vat::LAMP_LT_12));
    EXPECT_EQ(isLit(rt, vat::LAMP_LT_OR_GE_12),
              isLit(rt, vat::LAMP_LT_12) || isLit(rt, vat::LAMP_GE_12));
    EXPECT_EQ(isLit(rt, vat::LAMP_GE_12_AND_FILLING),
              isLit(rt, vat::LAMP_GE_12) && isLit(rt, vat::LAMP_FILLING));
    EXPECT_TRUE(isLit(rt, vat::LAMP_CONST));
}

// Some candidate must have the truth; what it says of its conditions must agree with it.
void expectTruthIsFollowed(VatTruth const& truth, std::string const& when) {
    SCOPED_TRACE(when);
    bool followed = false;
    std::string why;
    for (s_runtime* rt : PlantRun::candidates()) {
        std::string const missed = misses(rt, truth);
        why += " [" + missed + "]";
        if (!missed.empty())
            continue;
        followed = true;
        expectSound(rt, truth.level, truth.lag);
    }
    EXPECT_TRUE(followed) << "level " << truth.level << " lag " << truth.lag << why;
}

std::string whenOf(unsigned seed, int time) {
    return "seed " + std::to_string(seed) + " time " + std::to_string(time);
}

TEST(VatRuns, ASimulationFollowsTheTruth) {
    int dumps = 0;
    for (unsigned seed = firstSeed; seed < firstSeed + runs; ++seed) {
        VatTruth truth(seed);
        PlantRun run;
        run.start(truth.inputs(), truth.measures());
        for (int time = 1; time <= simulated; ++time) {
            truth.step();
            run.cycle(simulation(), time, truth.inputs(), truth.measures());
            expectTruthIsFollowed(truth, whenOf(seed, time));
        }
        dumps += truth.dumps;
    }
    EXPECT_GE(dumps, runs);
}

// A detection of so many runs; answers how often the true vats dumped.
int detectTruths(int search, unsigned count = runs) {
    int dumps = 0;
    for (unsigned seed = firstSeed; seed < firstSeed + count; ++seed) {
        VatTruth truth(seed);
        PlantRun run(search);
        for (auto const& influence : theRun().tavro_rt->influ)
            influence->useOpti = search;
        run.start(truth.inputs(), truth.measures());
        for (int time = 1; time <= detected; ++time) {
            truth.step();
            if (search && truth.dumps > 0)
                break;
            EXPECT_TRUE(run.cycle(detection(2), time, truth.inputs(), truth.measures()))
                << whenOf(seed, time);
            expectTruthIsFollowed(truth, whenOf(seed, time));
        }
        dumps += truth.dumps;
    }
    return dumps;
}

TEST(VatRuns, ADetectionRaisesNoAlarmAndFollowsTheTruth) {
    EXPECT_GE(detectTruths(0), 3 * runs);
}

// The search draws the level towards what explains the measure. At a dump that is too much: the
// step from one cycle ago, already jumped, is drawn towards a measure from before the jump. So with
// the search the truth is promised up to the first dump.
TEST(VatRuns, ADetectionWithTheSearchFollowsTheTruthToItsFirstDump) {
    EXPECT_EQ(detectTruths(1), runs);
}

// By the rule `narrow` every value that is drawn towards a measure stays true, dumps or not.
TEST(VatRuns, ADetectionThatNarrowsFollowsTheTruth) {
    for (double const noise : {0.0, 0.02}) {
        RunSettings settings;
        settings.rules.narrow = true;
        settings.noise[""] = noise;
        WithSettings const given(settings);
        EXPECT_GE(detectTruths(0, 200), 3 * 200) << noise;
    }
}

// A float that hangs far above every bound: the first such measure counts, the second is an alarm
// for every candidate.
// A float that hangs far above every bound: the first such measure counts, the second is an alarm.
TEST(VatRuns, AHangingFloatIsNoticed) {
    for (unsigned seed = firstSeed; seed < firstSeed + runs; ++seed) {
        VatTruth truth(seed);
        PlantRun run;
        run.start(truth.inputs(), truth.measures());
        truth.step();
        run.cycle(detection(2), 1, truth.inputs(), truth.measures());
        truth.step();
        EXPECT_TRUE(run.cycle(detection(2), 2, truth.inputs(), {60.0})) << "seed " << seed;
        truth.step();
        EXPECT_FALSE(run.cycle(detection(2), 3, truth.inputs(), {60.0})) << "seed " << seed;
    }
}

// ---- By hand ----

// The vat at time 0: a level from 2 to 6, a lag of 2, filling.
class VatAtStart : public testing::Test {
protected:
    VatAtStart() {
        run.start({1.0, 5.0}, {4.0});
        rt = PlantRun::candidates().front();
        level = variable(rt, "vat.level");
        lag = variable(rt, "vat.lag");
    }

    // The lamps that burn with this level and this lag, filling, as "0 2 3".
    std::string lit(s_Objet const& levelNow, s_Objet const& lagNow) {
        level->old = levelNow;
        lag->old = lagNow;
        std::string list;
        for (int lamp = 0; lamp < vat::LAMPS; ++lamp)
            if (isLit(rt, lamp))
                list += (list.empty() ? "" : " ") + std::to_string(lamp);
        return list;
    }

    // The transition's effects with a level from *inf* to *sup*, which its constraint has too.
    void jump(int transition, double inf, double sup, int mode) {
        level->old = level->new_ = makeRange(inf, sup, 1, 1);
        rt->gV[0]->value = level->old;
        rt->bridgeTrans = {
            theComp("vat")->getCompTransitions()[static_cast<std::size_t>(transition)].get()};
        streamsOf([&] { tavro_reinitialize(theRun(), rt, 1.0, mode, 2); });
    }
    static constexpr int byItself = 2, byCommand = 4;  // transitions from filling to draining

    PlantRun run;
    s_runtime* rt;
    s_Variable *level, *lag;
};

// Bits 13 (filling) and 14 (constant) burn always. A level that is wholly on one side of 12 and of
// 15 lights the lamps of that side; one that covers 12 neither "below" nor "from", so that not even
// their disjunction holds, but the negation of "below" does.
TEST_F(VatAtStart, EveryRelationByHand) {
    s_Objet const lagOf2 = makeReal(2.0);
    EXPECT_EQ(lit(makeReal(4), lagOf2), "0 1 2 3 8 9 11 13 14");
    EXPECT_EQ(lit(makeReal(12), lagOf2), "1 2 4 6 8 9 10 11 12 13 14");
    EXPECT_EQ(lit(makeReal(15), lagOf2), "4 5 6 8 9 10 11 12 13 14");
    EXPECT_EQ(lit(makeReal(2), lagOf2), "1 2 3 8 11 13 14");
    EXPECT_EQ(lit(makeReal(1), lagOf2), "1 2 3 7 9 11 13 14");
    EXPECT_EQ(lit(makeReal(20.5), lagOf2), "1 4 5 8 9 10 11 12 13 14 15");
    EXPECT_EQ(lit(makeRange(9, 13, 1, 1), lagOf2), "1 6 8 9 10 13 14");
    // The closed end at 16 lies outside ]8, 16[; the open one does not.
    EXPECT_EQ(lit(makeRange(11, 16, 1, 1), lagOf2), "8 9 10 13 14");
    EXPECT_EQ(lit(makeRange(11, 16, 1, 0), lagOf2), "6 8 9 10 13 14");
    EXPECT_EQ(lit(makeRange(12, 14, 1, 1), lagOf2), "1 4 5 6 8 9 10 11 12 13 14");
    // An open end at 12 is not certainly "from 12" for this relation, nor "below".
    EXPECT_EQ(lit(makeRange(12, 14, 0, 1), lagOf2), "1 6 8 9 10 13 14");
    // Up to 12, open there: "below" looks at no flags, so it is not certain either.
    EXPECT_EQ(lit(makeRange(3, 12, 1, 0), lagOf2), "1 8 9 10 13 14");
    EXPECT_EQ(lit(makeRange(21, 22, 1, 1), lagOf2), "1 4 5 8 9 10 11 12 13 14 15");
}

// Both sides are variables: 7 below the lag, 8 from the lag, 9 different from it.
TEST_F(VatAtStart, RelationsBetweenVariablesByHand) {
    s_Objet const lagOf = makeRange(2.0, 4.0, 1, 1);
    EXPECT_EQ(lit(makeRange(0, 1, 1, 1), lagOf), "1 2 3 7 9 11 13 14");
    EXPECT_EQ(lit(makeRange(1, 3, 1, 1), lagOf), "1 2 3 11 13 14");
    EXPECT_EQ(lit(makeRange(4, 5, 1, 1), lagOf), "1 2 3 8 11 13 14");
    EXPECT_EQ(lit(makeRange(4, 5, 1, 1), makeRange(2, 4, 1, 0)), "1 2 3 9 11 13 14");
    EXPECT_EQ(lit(makeRange(5, 6, 1, 1), lagOf), "1 2 3 8 9 11 13 14");
    // The same interval: neither certainly below nor from, and not different.
    EXPECT_EQ(lit(lagOf, lagOf), "1 2 3 11 13 14");
}

// The sum of the lamps that burned one cycle before: 2^1 + 2^2 + 2^3 + 2^8 + 2^11 + 2^13 + 2^14.
TEST_F(VatAtStart, AnExternalValueOfAConditionCounts) {
    s_Variable* lamps = variable(rt, "vat.lamps");
    sn_updateVariable(rt, lamps);
    EXPECT_EQ(lamps->new_.real, 2 + 4 + 8 + 256 + 2048 + 8192 + 16384);
    s_Influence* constant = lamps->graph->causes[vat::LAMP_CONST];
    sn_pushExternCond(constant, 0);
    EXPECT_EQ(constant->condHisto[0], 0);
    sn_updateVariable(rt, lamps);
    EXPECT_EQ(lamps->new_.real, 2 + 4 + 8 + 256 + 2048 + 8192);
}

// x = [2, 6] and z = 2. The coarse reading counts from the first cycle on.
TEST_F(VatAtStart, EveryConstraintByHand) {
    expectBounds(level->old, 2, 6);
    expectBounds(variable(rt, "vat.sum")->old, 4, 8);
    expectBounds(variable(rt, "vat.difference")->old, 0, 4);
    expectBounds(variable(rt, "vat.product")->old, 4, 12);
    expectBounds(variable(rt, "vat.quotient")->old, 1, 3);
    expectBounds(variable(rt, "vat.square")->old, 4, 36);
    expectBounds(variable(rt, "vat.opposite")->old, -8, -4);
    expectBounds(variable(rt, "vat.rest")->old, 4 - 3, 8 - 3);
}

// x = [2, 6] + [0.9, 1.1] meets 7 + [-2.5, 2.5] in [4.5, 7.1]; with a from e^-1 to e^-0.5, z lies
// between a 2 + (1 - a) and a 2 + (1 - a) 3, both at their extremes for the least a.
TEST_F(VatAtStart, TheLevelIsNarrowedByTheCoarseReading) {
    run.cycle(simulation(), 1, {1.0, 7.0}, {5.0});
    rt = PlantRun::candidates().front();
    double const a = std::exp(-1.0), low = 2 * a + (1 - a), high = 2 * a + 3 * (1 - a);
    expectBounds(variable(rt, "vat.level")->old, 4.5, 7.1);
    expectBounds(variable(rt, "vat.lag")->old, low, high);
    expectBounds(variable(rt, "vat.sum")->old, 4.5 + low, 7.1 + high);
    expectBounds(variable(rt, "vat.difference")->old, 4.5 - high, 7.1 - low);
    expectBounds(variable(rt, "vat.product")->old, 4.5 * low, 7.1 * high);
    expectBounds(variable(rt, "vat.quotient")->old, 4.5 / high, 7.1 / low);
    expectBounds(variable(rt, "vat.square")->old, 4.5 * 4.5, 7.1 * 7.1);
    expectBounds(variable(rt, "vat.opposite")->old, -7.1 - high, -4.5 - low);
    // The sum less z + 1, as if they were independent.
    expectBounds(variable(rt, "vat.rest")->old, 4.5 + low - high - 1, 7.1 + high - low - 1);
}

// A reading that the level cannot have takes its place: [2.9, 7.1] and 20 + [-2.5, 2.5] are apart.
TEST_F(VatAtStart, AContradictoryReadingTakesThePlaceOfTheLevel) {
    run.cycle(simulation(), 1, {1.0, 20.0}, {5.0});
    double inf = 100, sup = 0;
    for (s_runtime const* candidate : PlantRun::candidates()) {
        inf = std::min(inf, sn_infOf(variable(candidate, "vat.level")->old));
        sup = std::max(sup, sn_supOf(variable(candidate, "vat.level")->old));
    }
    EXPECT_EQ(inf, 17.5);
    EXPECT_EQ(sup, 22.5);
}

// A level of [20, 22] becomes 0.5 [20, 22] + 5 = [15, 16]; an interval stays covered: ]15, 22[.
// The guard on the mark, a level below 0, does not hold, so that the mark is left at 0.
TEST_F(VatAtStart, ADumpMapsTheLevelInASimulation) {
    jump(byItself, 20, 22, RUN_SIMULATE);
    expectBounds(level->old, 15, 22);
    EXPECT_EQ(level->old.rng.infClosed, 0);
    EXPECT_EQ(level->old.rng.supClosed, 0);
    expectBounds(variable(rt, "vat.mark")->old, 0, 0);
}

// A detection tests no guards. The mark is a number, and takes 7 now and one cycle ago.
TEST_F(VatAtStart, ADumpMapsTheMarkInADetection) {
    jump(byItself, 20, 22, RUN_DETECT);
    expectBounds(variable(rt, "vat.mark")->old, 7, 7);
    // The level of now, or one of a cycle ago, [2, 6], with its jump, [6, 8], gone on filling:
    // [2, 8] + [0.9, 1.1].
    expectBounds(level->old, 2.9, 22);
}

// From 14 on the guard "from 15" is not certain: the level is computed anew, one cycle's filling
// on.
TEST_F(VatAtStart, AnUncertainGuardLeavesTheLevel) {
    jump(byItself, 14, 22, RUN_SIMULATE);
    expectBounds(level->old, 14.9, 23.1);
}

// The command's mapping has no guard: 0.5 [4, 6] + 5 = [7, 8], covered with [4, 6].
TEST_F(VatAtStart, ADumpByCommandNeedsNoGuard) {
    jump(byCommand, 4, 6, RUN_SIMULATE);
    expectBounds(level->old, 4, 8);
}

}  // namespace
}  // namespace plants
