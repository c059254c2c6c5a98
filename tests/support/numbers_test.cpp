// Conversion of doubles to whole numbers.
#include "support/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

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

// The library's own text of six significant digits.
std::string formatted(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

TEST(ShortText, IsThatOfTheLibrary) {
    double const inf = std::numeric_limits<double>::infinity();
    for (double const value :
         {0.0,      -0.0,    1.0,       1.5,  -2.25,         0.1,          1e5,          123456.0,
          999999.5, 1e6,     1234567.0, 1e-4, 0.00012345678, 1e-5,         1e100,        DBL_MAX,
          -DBL_MAX, DBL_MIN, 5e-324,    inf,  -inf,          std::nan(""), -std::nan("")})
        EXPECT_EQ(shortText(value), formatted(value));
    std::mt19937_64 generator(11);
    for (int i = 0; i < 20000; ++i) {
        double const value = std::bit_cast<double>(generator());
        EXPECT_EQ(shortText(value), formatted(value));
        double const common = static_cast<double>(static_cast<int>(generator())) / 1024.0;
        EXPECT_EQ(shortText(common), formatted(common));
    }
}

TEST(Columns, BlanksFillThem) {
    EXPECT_EQ(flushRight("12", 4), "  12");
    EXPECT_EQ(flushLeft("12", 4), "12  ");
    EXPECT_EQ(flushRight("12345", 4), "12345");
    EXPECT_EQ(flushLeft("12345", 4), "12345");
    EXPECT_EQ(flushLeft("", 2), "  ");
}

}  // namespace
