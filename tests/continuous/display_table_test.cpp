// The table of display bounds, and a plain array beside it.
#include "continuous/displayTable.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <limits>
#include <vector>

#include "engine_fixture.h"

namespace engine_test {
namespace {

TEST(DisplayTable, ANewOneIsEmpty) {
    DisplayTable table;
    EXPECT_EQ(table.size(), 0);
    table.set(0, 1.0);
    EXPECT_EQ(table[0], 0.0);
}

TEST(DisplayTable, WhatWasNeverWrittenIsZero) {
    DisplayTable table;
    table.resize(1000);
    EXPECT_EQ(table[0], 0.0);
    EXPECT_EQ(table[999], 0.0);
    table.set(500, 2.5);
    EXPECT_EQ(table[499], 0.0);
    EXPECT_EQ(table[500], 2.5);
    EXPECT_EQ(table[501], 0.0);
    EXPECT_EQ(table[10], 0.0);
    EXPECT_EQ(table[900], 0.0);
}

// 64 values make a block: -1 and 100 lie in memory that a careless reader would find.
TEST(DisplayTable, NothingIsWrittenOrReadOutside) {
    DisplayTable table;
    table.resize(100);
    for (int index = 0; index < 100; ++index)
        table.set(index, 7.0);
    for (int const index : {-1, -64, 100, 127, 128, 100000}) {
        table.set(index, 1.0);
        EXPECT_EQ(table[index], 0.0) << index;
    }
    EXPECT_EQ(table[0], 7.0);
    EXPECT_EQ(table[99], 7.0);
}

TEST(DisplayTable, ANewSizeEmptiesIt) {
    DisplayTable table;
    table.resize(4);
    table.set(1, 3.0);
    table.resize(6);
    EXPECT_EQ(table.size(), 6);
    EXPECT_EQ(table[1], 0.0);
    table.resize(-2);
    EXPECT_EQ(table.size(), 0);
}

TEST(DisplayTable, CopiesPart) {
    DisplayTable first;
    first.resize(10);
    first.set(3, 1.0);
    DisplayTable second = first;
    first.set(3, 2.0);
    second.set(4, 5.0);
    EXPECT_EQ(first[3], 2.0);
    EXPECT_EQ(first[4], 0.0);
    EXPECT_EQ(second[3], 1.0);
    EXPECT_EQ(second[4], 5.0);
}

TEST(DisplayTable, PairsAreWidened) {
    DisplayTable mine, other;
    mine.resize(6);
    other.resize(6);
    double const minePairs[] = {1, 2, 5, 6, 3, 4}, otherPairs[] = {0, 1.5, 5.5, 7, 9, 9};
    for (int i = 0; i < 6; ++i) {
        mine.set(i, minePairs[i]);
        other.set(i, otherPairs[i]);
    }
    mine.coverPairs(other, 4);
    double const expected[] = {0, 2, 5, 7, 3, 4};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(mine[i], expected[i]) << i;
    EXPECT_EQ(other[0], 0.0);
    EXPECT_EQ(other[1], 1.5);
}

TEST(DisplayTable, WideningStopsAtTheEndOfTheTable) {
    DisplayTable mine, other;
    mine.resize(2);
    other.resize(4);
    other.set(0, -1.0);
    other.set(1, 1.0);
    mine.coverPairs(other, 4);
    EXPECT_EQ(mine[0], -1.0);
    EXPECT_EQ(mine[1], 1.0);
    EXPECT_EQ(mine[2], 0.0);
}

struct Twin {
    DisplayTable table;
    std::vector<double> plain;

    explicit Twin(int length) : plain(static_cast<std::size_t>(length)) { table.resize(length); }

    void set(int index, double value) {
        table.set(index, value);
        plain[static_cast<std::size_t>(index)] = value;
    }
    void cover(Twin const& other, int count) {
        table.coverPairs(other.table, count);
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); i += 2) {
            plain[i] = std::min(plain[i], other.plain[i]);
            plain[i + 1] = std::max(plain[i + 1], other.plain[i + 1]);
        }
    }
    // To the bit: zeros of both signs differ, and a number that is none equals itself.
    bool agrees() const {
        for (std::size_t i = 0; i < plain.size(); ++i) {
            double const value = table[static_cast<int>(i)];
            if (std::memcmp(&value, &plain[i], sizeof value) != 0)
                return false;
        }
        return true;
    }
};

// Values may be negative, so that the zeros of blocks never written take part in the covering.
TEST(DisplayTableTwin, RandomWritesCopiesAndCovers) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        Dice dice(seed);
        int const length = 2 * dice(1, 200);
        std::vector<Twin> twins(3, Twin(length));
        for (int step = 0; step < 400; ++step) {
            Twin& one = twins[static_cast<std::size_t>(dice(0, 2))];
            Twin const& other = twins[static_cast<std::size_t>(dice(0, 2))];
            int const what = dice(0, 9);
            if (what == 0)
                one = other;
            else if (what == 1)
                one.cover(other, 2 * dice(0, length / 2));
            else
                one.set(dice(0, length - 1), dice(-9, 9));
            for (Twin const& twin : twins)
                ASSERT_TRUE(twin.agrees()) << "seed " << seed << ", step " << step;
        }
    }
}

// Candidates of a run, each with a table: every step writes a row of two pairs, some part and some
// are merged, the older taking what the younger had up to now.
class Candidates {
public:
    Candidates(unsigned seed, int rows) : dice(seed), tables(1, Twin(valuesPerRow * rows)) {}

    void step(int row) {
        for (Twin& twin : tables)
            for (int i = 0; i < valuesPerRow; ++i)
                twin.set(valuesPerRow * row + i, value());
        for (std::size_t i = tables.size(); i-- > 0 && tables.size() < 6;)
            if (dice(0, 2) == 0)
                tables.push_back(tables[i]);
        while (tables.size() > 2 && dice(0, 1) == 0)
            merge(valuesPerRow * (row + 1));
    }
    bool agree() const {
        return std::all_of(tables.begin(), tables.end(),
                           [](Twin const& twin) { return twin.agrees(); });
    }

private:
    static constexpr int valuesPerRow = 4;

    // Few different ones, so that they are often the same; some are no usual bounds.
    double value() {
        double const odd[] = {0.0, -0.0, std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()};
        return dice(0, 9) == 0 ? odd[dice(0, 4)] : dice(-3, 3);
    }
    void merge(int count) {
        int const younger = dice(1, static_cast<int>(tables.size()) - 1);
        int const older = dice(0, younger - 1);
        tables[static_cast<std::size_t>(older)].cover(tables[static_cast<std::size_t>(younger)],
                                                      count);
        tables.erase(tables.begin() + younger);
    }

    Dice dice;
    std::vector<Twin> tables;
};

TEST(DisplayTableTwin, TheRowsOfManyStepsAreThoseOfPlainArrays) {
    int const rows = 700;  // 2,800 values are three levels of nodes
    for (unsigned seed = 1; seed <= 10; ++seed) {
        Candidates candidates(seed, rows);
        for (int row = 0; row < rows; ++row) {
            candidates.step(row);
            if (row % 50 == 49) {
                ASSERT_TRUE(candidates.agree()) << "seed " << seed << ", row " << row;
            }
        }
    }
}

// Two candidates that never are merged, and at each step a child of the one that is merged into the
// other: they differ in all rows.
class TwoForGood {
public:
    explicit TwoForGood(int rows) {
        first.resize(2 * rows);
        second = first;
    }
    // The seconds of the processor that the steps before *end* take.
    double secondsUntil(int end) {
        std::clock_t const start = std::clock();
        for (; row < end; ++row) {
            write(first, 1.0);
            write(second, 2.0);
            DisplayTable child = first;
            DisplayTable const kept = second;
            second.coverPairs(child, 2 * (row + 1));
        }
        return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }

private:
    void write(DisplayTable& table, double value) const {
        table.set(2 * row, -value);
        table.set(2 * row + 1, value);
    }

    DisplayTable first, second;
    int row = 0;
};

// Without the notes of what covers what, the last steps take a hundred times as long as the first.
TEST(DisplayTable, AStepOfALongRunTakesNoLongerThanTheFirstOnes) {
    int const rows = 100000, some = 500;
    double least = std::numeric_limits<double>::infinity();
    TwoForGood run(rows);
    double const early = std::max(run.secondsUntil(some), 1e-4);
    run.secondsUntil(rows - 4 * some);
    for (int part = 3; part >= 0; --part)
        least = std::min(least, run.secondsUntil(rows - part * some));
    EXPECT_LT(least, 10.0 * early);
}

}  // namespace
}  // namespace engine_test
