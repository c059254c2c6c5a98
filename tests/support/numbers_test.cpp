// Conversion of doubles to whole numbers.
#include "support/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr int largest = 2147483647;
constexpr int smallest = -2147483647 - 1;
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(TruncateToInt, GoesTowardsZero) {
    EXPECT_EQ(truncateToInt(0.0), 0);
    EXPECT_EQ(truncateToInt(-0.0), 0);
    EXPECT_EQ(truncateToInt(7.0), 7);
    EXPECT_EQ(truncateToInt(2.999999), 2);
    EXPECT_EQ(truncateToInt(-2.999999), -2);
    EXPECT_EQ(truncateToInt(0.5), 0);
    EXPECT_EQ(truncateToInt(-0.5), 0);
    EXPECT_EQ(truncateToInt(std::numeric_limits<double>::denorm_min()), 0);
}

TEST(TruncateToInt, KeepsTheEndsOfTheRange) {
    EXPECT_EQ(truncateToInt(2147483646.0), largest - 1);
    EXPECT_EQ(truncateToInt(2147483646.9), largest - 1);
    EXPECT_EQ(truncateToInt(2147483647.0), largest);
    EXPECT_EQ(truncateToInt(2147483647.9), largest);
    EXPECT_EQ(truncateToInt(-2147483647.0), smallest + 1);
    EXPECT_EQ(truncateToInt(-2147483647.9), smallest + 1);
    EXPECT_EQ(truncateToInt(-2147483648.0), smallest);
    EXPECT_EQ(truncateToInt(-2147483648.9), smallest);
}

TEST(TruncateToInt, BringsValuesBeyondTheRangeToItsEnds) {
    EXPECT_EQ(truncateToInt(2147483648.0), largest);
    EXPECT_EQ(truncateToInt(4294967296.0), largest);
    EXPECT_EQ(truncateToInt(1e300), largest);
    EXPECT_EQ(truncateToInt(infinity), largest);
    EXPECT_EQ(truncateToInt(-2147483649.0), smallest);
    EXPECT_EQ(truncateToInt(-1e300), smallest);
    EXPECT_EQ(truncateToInt(-infinity), smallest);
}

TEST(TruncateToInt, NotANumberIsZero) {
    EXPECT_EQ(truncateToInt(std::nan("")), 0);
    EXPECT_EQ(truncateToInt(-std::nan("")), 0);
}

}  // namespace
