// The helpers of the optimiser. The random generator is compared with a second one that is written
// from its description alone, over the same draws of random().
#include "unlinked/optim_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

namespace {

double const INF = std::numeric_limits<double>::infinity();

// The first *count* results after a start from *seed*.
std::vector<double> expectedDraws(int seed, int count) {
    srandom(static_cast<unsigned>(seed));
    for (int i = 0; i < 97; ++i)
        random();
    std::vector<long> table;
    for (int i = 0; i < 97; ++i)
        table.push_back(random());
    long y = random();
    std::vector<double> results;
    for (int i = 0; i < count; ++i) {
        long& entry = table[97 * y >> 31];
        y = entry;
        entry = random();
        results.push_back(std::ldexp(static_cast<double>(y), -31));
    }
    return results;
}

std::vector<double> draws(int* seed, int count) {
    std::vector<double> results;
    for (int i = 0; i < count; ++i)
        results.push_back(Optim_ran0(seed));
    return results;
}

TEST(OptimRan0, ANegativeSeedRestartsAndBecomesOne) {
    int seed = -7;
    std::vector<double> const expected = expectedDraws(seed, 300);
    EXPECT_EQ(draws(&seed, 300), expected);
    EXPECT_EQ(seed, 1);
}

TEST(OptimRan0, TheTableSurvivesAcrossCallsAndSeeds) {
    int seed = -7;
    std::vector<double> const expected = expectedDraws(seed, 3);
    EXPECT_EQ(Optim_ran0(&seed), expected[0]);
    int other = 0;
    EXPECT_EQ(Optim_ran0(&other), expected[1]);
    EXPECT_EQ(other, 0);
    EXPECT_EQ(drandom_(&other), expected[2]);
}

// ---- The generator that an object owns ----

std::vector<double> draws(Optim_random& random, int* seed, int count) {
    std::vector<double> results;
    for (int i = 0; i < count; ++i)
        results.push_back(random.draw(seed));
    return results;
}

TEST(OptimRandom, AFreshOneDrawsWhatTheLibraryDrawsAtTheStartOfAProcess) {
    int seed = 0;
    Optim_random random;
    EXPECT_EQ(draws(random, &seed, 1000), expectedDraws(0, 1000));
    EXPECT_EQ(seed, 1);
}

TEST(OptimRandom, ANegativeSeedRestartsIt) {
    int seed = -7;
    Optim_random random;
    std::vector<double> const first = draws(random, &seed, 300);
    EXPECT_EQ(first, expectedDraws(-7, 300));
    seed = -7;
    EXPECT_EQ(draws(random, &seed, 300), first);
}

TEST(OptimRandom, NoOtherGeneratorTakesPart) {
    int seed = -7, other = -7;
    Optim_random a, b;
    std::vector<double> const expected = expectedDraws(-7, 20);
    srandom(4);
    long const next = random();
    srandom(4);
    for (double const draw : expected) {
        EXPECT_EQ(a.draw(&seed), draw);
        EXPECT_EQ(b.draw(&other), draw);
        int process = -3;
        Optim_ran0(&process);
    }
    EXPECT_EQ(random(), next) << "the library's generator was used";
}

// Exits with 0 when the first call of a fresh process starts from a seed that is not negative.
void firstCallOfTheProcess() {
    std::vector<double> const expected = expectedDraws(0, 5);
    int seed = 0;
    std::exit(draws(&seed, 5) == expected && seed == 1 ? 0 : 1);
}

TEST(OptimRan0DeathTest, TheFirstCallTakesAnySeed) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a fresh process, with no table yet
    EXPECT_EXIT(firstCallOfTheProcess(), testing::ExitedWithCode(0), "");
}

TEST(OptimRan0, StaysBelowOneAndFillsTheInterval) {
    int seed = -3;
    std::vector<double> const results = draws(&seed, 10000);
    EXPECT_GE(*std::min_element(results.begin(), results.end()), 0.0);
    EXPECT_LT(*std::max_element(results.begin(), results.end()), 1.0);
    double sum = 0.0;
    for (double const result : results)
        sum += result;
    EXPECT_NEAR(sum / 10000, 0.5, 0.02);  // seven standard deviations of the mean
}

// 97 * 2^30 / 2^31 is 48.5.
TEST(OptimRan0, TheEntryIsOneAndTheWholePartOfTheShare) {
    EXPECT_EQ(Optim_ran0_entry(0), 1);
    EXPECT_EQ(Optim_ran0_entry(1L << 30), 49);
    EXPECT_EQ(Optim_ran0_entry((1L << 31) - 1), 97);
}

TEST(OptimRan0, AnImpossibleValueIsToldAndSelectsTheNearestEntry) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(Optim_ran0_entry(1L << 31), 97);
    EXPECT_EQ(Optim_ran0_entry(-1), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\n!!! erreur dans Optim_ran0 !!!\n!!! erreur dans Optim_ran0 !!!");
}

std::vector<int> sortedIndex(std::vector<double> const& values) {
    std::vector<int> index(values.size());
    Optim_tri_index(static_cast<int>(values.size()), values.data(), index.data());
    return index;
}

TEST(OptimTriIndex, OrdersTheIndicesAndLeavesTheValues) {
    EXPECT_EQ(sortedIndex({3.0, -1.0, 2.0, 0.5}), (std::vector<int>{1, 3, 2, 0}));
    EXPECT_EQ(sortedIndex({4.0}), std::vector<int>{0});
}

TEST(OptimTriIndex, NothingIsTouchedWithoutValues) {
    int index = 77;
    double value = 1.0;
    Optim_tri_index(0, &value, &index);
    Optim_tri_index(-1, &value, &index);
    EXPECT_EQ(index, 77);
}

TEST(OptimTriIndex, RandomValuesAscendAndEveryIndexComesOnce) {
    std::mt19937 generator(5);
    for (int size = 1; size <= 60; ++size) {
        std::vector<double> values(size);
        for (double& value : values)
            value = static_cast<double>(generator() % 20);
        std::vector<int> index = sortedIndex(values);
        for (int i = 1; i < size; ++i)
            EXPECT_LE(values[index[i - 1]], values[index[i]]) << "size " << size;
        std::sort(index.begin(), index.end());
        for (int i = 0; i < size; ++i)
            EXPECT_EQ(index[i], i);
    }
}

// Steps of 3/1 and 8/2: the root of 9 + 16.
TEST(OptimLongvecNorm, ScalesEachCoordinate) {
    double const a[] = {1.0, 2.0}, b[] = {4.0, -6.0}, scale[] = {1.0, 2.0};
    EXPECT_DOUBLE_EQ(Optim_longvec_norm(2, a, b, scale), 5.0);
    EXPECT_DOUBLE_EQ(Optim_longvec_norm(2, b, a, scale), 5.0);
}

TEST(OptimLongvecNorm, IgnoresCoordinatesWithoutARange) {
    double const a[] = {0.0, 0.0, 0.0}, b[] = {100.0, 6.0, 100.0}, scale[] = {0.0, 3.0, -1.0};
    EXPECT_DOUBLE_EQ(Optim_longvec_norm(3, a, b, scale), 2.0);
    EXPECT_EQ(Optim_longvec_norm(0, a, b, scale), 0.0);
}

int inBox(double x, double y) {
    int const n = 2;
    double const point[] = {x, y}, lower[] = {-1.0, 0.0}, upper[] = {1.0, 5.0};
    EXPECT_EQ(iveridom_(&n, point, lower, upper), iveridom(&n, point, lower, upper));
    return iveridom(&n, point, lower, upper);
}

TEST(Iveridom, TheBoundsBelongToTheBox) {
    EXPECT_EQ(inBox(0.0, 2.0), 1);
    EXPECT_EQ(inBox(-1.0, 0.0), 1);
    EXPECT_EQ(inBox(1.0, 5.0), 1);
}

TEST(Iveridom, OneCoordinateOutsideIsEnough) {
    EXPECT_EQ(inBox(-1.1, 2.0), 0);
    EXPECT_EQ(inBox(0.0, 5.1), 0);
    EXPECT_EQ(inBox(INF, 2.0), 0);
    EXPECT_EQ(inBox(std::nan(""), 2.0), 0);
}

TEST(Iveridom, NoCoordinatesAreAlwaysInside) {
    int const none = 0, negative = -1;
    EXPECT_EQ(iveridom(&none, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(iveridom_(&negative, nullptr, nullptr, nullptr), 1);
}

}  // namespace
