// Histories: what they hold, that copies part, and a plain shifted array beside them.
#include "continuous/history.h"

#include <algorithm>

#include "engine_fixture.h"

namespace engine_test {
namespace {

// A block holds 32 entries; lengths around one and two blocks reach every border.
constexpr int block = 32;

History<int> counted(int length, int pushes) {
    History<int> history(length);
    for (int i = 1; i <= pushes; ++i)
        history.push(i);
    return history;
}

TEST(History, ANewOneHoldsDefaultValues) {
    EXPECT_EQ(entries(History<int>(3)), "0 0 0");
    EXPECT_EQ(History<s_Objet>(1)[0].type, OBJ_UNSET);
}

TEST(History, OneOfNoLengthHoldsNothingAndTakesNothing) {
    for (History<int> history : {History<int>(), History<int>(0), History<int>(-4)}) {
        EXPECT_EQ(history.size(), 0);
        history.push(1);
        history.fill(2);
        history.forgetNewest(3, 4);
        EXPECT_EQ(history.size(), 0);
    }
}

TEST(History, APushMakesEveryEntryOlderAndLosesTheOldest) {
    History<int> history = historyOf<int>({1, 2, 3});
    history.push(9);
    EXPECT_EQ(entries(history), "9 1 2");
    history.push(8);
    history.push(7);
    EXPECT_EQ(entries(history), "7 8 9");
}

TEST(History, OneOfLengthOneHoldsTheLastPush) {
    History<int> history = counted(1, 3 * block);
    EXPECT_EQ(entries(history), std::to_string(3 * block));
}

TEST(History, PushesBeyondOneBlockStayInOrder) {
    for (int const length : {block - 1, block, block + 1, 2 * block, 2 * block + 1}) {
        History<int> const history = counted(length, 5 * block);
        for (int i = 0; i < length; ++i)
            ASSERT_EQ(history[i], 5 * block - i) << length;
    }
}

TEST(History, EntriesBehindThePushedOnesStay) {
    History<int> history(5);
    history.fill(4);
    history.push(1);
    EXPECT_EQ(entries(history), "1 4 4 4 4");
}

TEST(History, AFillReplacesEverything) {
    History<int> history = counted(4, 9);
    history.fill(6);
    EXPECT_EQ(entries(history), "6 6 6 6");
    history.push(1);
    EXPECT_EQ(entries(history), "1 6 6 6");
}

TEST(History, SettingOneEntryLeavesItsNeighbours) {
    History<int> history(3);
    history.set(1, 5);
    EXPECT_EQ(entries(history), "0 5 0");
    history.set(0, 4);
    history.set(2, 6);
    history.set(1, 7);
    EXPECT_EQ(entries(history), "4 7 6");
    history.push(1);
    history.set(0, 2);
    EXPECT_EQ(entries(history), "2 4 7");
}

TEST(History, ForgettingTheNewestMovesTheOlderOnesUp) {
    History<int> history = historyOf<int>({1, 2, 3, 4});
    history.forgetNewest(0, 9);
    history.forgetNewest(-1, 9);
    EXPECT_EQ(entries(history), "1 2 3 4");
    history.forgetNewest(1, 9);
    EXPECT_EQ(entries(history), "2 3 4 9");
    history.forgetNewest(99, 7);
    EXPECT_EQ(entries(history), "7 7 7 7");
}

TEST(History, ForgettingReachesOverBlocks) {
    History<int> history = counted(3 * block, 3 * block);
    history.forgetNewest(block + 1, 0);
    EXPECT_EQ(history[0], 2 * block - 1);
    EXPECT_EQ(history[2 * block - 2], 1);
    EXPECT_EQ(history[2 * block - 1], 0);
    history.push(77);
    EXPECT_EQ(history[0], 77);
    EXPECT_EQ(history[1], 2 * block - 1);
}

// With one block cut in the middle by the length, a history may forget exactly what it sees.
TEST(History, ForgettingAllThatWasPushedLeavesTheFill) {
    int const length = block - 2;
    History<int> history = counted(length, block + 10);
    history.forgetNewest(length, 5);
    EXPECT_EQ(history[0], 5);
    EXPECT_EQ(history[length - 1], 5);
    history.push(6);
    EXPECT_EQ(history[0], 6);
    EXPECT_EQ(history[1], 5);
}

// Values are kept by blocks and runs that the same call changes.
TEST(History, AnOwnEntryMayBeGivenBack) {
    History<int> history = counted(3, 7);
    history.push(history[2]);
    EXPECT_EQ(entries(history), "5 7 6");
    history.fill(history[1]);
    EXPECT_EQ(entries(history), "7 7 7");
    history.set(1, 2);
    history.push(history[2]);
    EXPECT_EQ(entries(history), "7 7 2");
    history.forgetNewest(1, history[2]);
    EXPECT_EQ(entries(history), "7 2 2");
    history.fill(history[0]);
    EXPECT_EQ(entries(history), "7 7 7");
}

// The value given stands in the run that the push uses up.
TEST(History, TheOldestEntryMayBePushed) {
    History<int> history(2);
    history.set(1, 8);
    history.push(history[1]);
    EXPECT_EQ(entries(history), "8 0");
}

TEST(History, CopiesPartWhenTheyArePushed) {
    History<int> first = counted(3, 1);
    History<int> second = first;
    first.push(10);
    second.push(20);
    second.push(21);
    first.push(11);
    EXPECT_EQ(entries(first), "11 10 1");
    EXPECT_EQ(entries(second), "21 20 1");
}

TEST(History, CopiesPartWhenTheyAreSet) {
    History<int> first = counted(3, 2);
    History<int> const second = first;
    first.set(0, 9);
    first.set(2, 8);
    EXPECT_EQ(entries(first), "9 1 8");
    EXPECT_EQ(entries(second), "2 1 0");
}

// The place behind what one history forgot is still seen by its copy.
TEST(History, APushAfterForgettingLeavesTheCopyAlone) {
    History<int> first = counted(4, 3);
    History<int> const second = first;
    first.forgetNewest(2, 0);
    first.push(50);
    EXPECT_EQ(entries(first), "50 1 0 0");
    EXPECT_EQ(entries(second), "3 2 1 0");
}

TEST(History, ACopyOutlivesItsSource) {
    History<int> second;
    {
        History<int> const first = counted(4, 2);
        second = first;
    }
    second.push(3);
    EXPECT_EQ(entries(second), "3 2 1 0");
}

// A history and the plain array that it stands for.
struct Pair {
    History<int> history;
    std::vector<int> twin;

    explicit Pair(int length) : history(length), twin(static_cast<std::size_t>(length)) {}

    void push(int value) {
        history.push(value);
        twin.insert(twin.begin(), value);
        twin.pop_back();
    }
    void set(int i, int value) {
        history.set(i, value);
        twin[static_cast<std::size_t>(i)] = value;
    }
    void fill(int value) {
        history.fill(value);
        twin.assign(twin.size(), value);
    }
    void forget(int count, int value) {
        history.forgetNewest(count, value);
        std::size_t const gone = std::min(static_cast<std::size_t>(count), twin.size());
        twin.erase(twin.begin(), twin.begin() + static_cast<std::ptrdiff_t>(gone));
        twin.insert(twin.end(), gone, value);
    }
    std::string problem() const {
        for (std::size_t i = 0; i < twin.size(); ++i)
            if (history[static_cast<int>(i)] != twin[i])
                return entries(history) + " != " + entries(twin);
        return history.size() == static_cast<int>(twin.size()) ? "" : "another length";
    }
};

void playOn(Pair& pair, Dice& dice) {
    int const length = pair.history.size();
    int const what = dice(0, 19);
    if (what == 0)
        pair.fill(dice(1, 99));
    else if (what <= 2)
        pair.forget(dice(0, length + 2), dice(1, 99));
    else if (what <= 5)
        pair.set(dice(0, length - 1), dice(1, 99));
    else
        for (int pushes = dice(1, 12); pushes > 0; --pushes)
            pair.push(dice(1, 99));
}

class HistoryTwin : public testing::TestWithParam<int> {};

// Several histories that came from each other by copying; whatever is done to one, every one must
// hold what its plain array holds.
TEST_P(HistoryTwin, RandomOperationsOnCopiesThatDiverge) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        Dice dice(seed);
        std::vector<Pair> pairs(1, Pair(GetParam()));
        for (int step = 0; step < 400; ++step) {
            std::size_t const one = static_cast<std::size_t>(dice(0, int(pairs.size()) - 1));
            if (dice(0, 9) == 0 && pairs.size() < 5)
                pairs.push_back(pairs[one]);
            else if (dice(0, 19) == 0 && pairs.size() > 1)
                pairs.erase(pairs.begin() + static_cast<std::ptrdiff_t>(one));
            else if (dice(0, 19) == 0)
                pairs[one] = pairs.back();
            else
                playOn(pairs[one], dice);
            for (Pair const& pair : pairs)
                ASSERT_EQ(pair.problem(), "") << "seed " << seed << ", step " << step;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Lengths, HistoryTwin,
                         testing::Values(1, 2, 3, 31, 32, 33, 63, 64, 65, 100));

// One of the four operations on a short history, told by a number.
void doOperation(Pair& pair, int which, int value) {
    if (which == 0)
        pair.push(value);
    else if (which == 1)
        pair.forget(1, value);
    else if (which == 2)
        pair.forget(2, value);
    else
        pair.set(which - 3, value);
}

// Every sequence of six operations on a history of three entries.
TEST(HistoryTwin, AllShortSequences) {
    constexpr int kinds = 6, length = 6;
    for (int code = 0; code < kinds * kinds * kinds * kinds * kinds * kinds; ++code) {
        Pair pair(3);
        int rest = code;
        for (int i = 1; i <= length; ++i, rest /= kinds)
            doOperation(pair, rest % kinds, i);
        ASSERT_EQ(pair.problem(), "") << "sequence " << code;
    }
}

// ---- Covering another history ----

// The greater of both.
void takeGreater(History<int>& history, History<int> const& other) {
    history.cover(other, [](int& value, int const& theirs) {
        bool const changes = theirs > value;
        value = std::max(value, theirs);
        return changes;
    });
}

TEST(HistoryCover, EveryEntryMeetsThatOfTheOther) {
    History<int> one = historyOf<int>({1, 5, 3}), other = historyOf<int>({2, 4, 3});
    takeGreater(one, other);
    EXPECT_EQ(entries(one), "2 5 3");
    EXPECT_EQ(entries(other), "2 4 3");
}

TEST(HistoryCover, NoEntriesAreCovered) {
    History<int> none, other;
    takeGreater(none, other);
    EXPECT_EQ(none.size(), 0);
}

// What is widened is the same as in plain arrays, whatever the two share: a past in common, pushes
// of their own, and other numbers of pushes and of entries that were forgotten.
TEST(HistoryCover, TwoThatPartedBesidePlainArrays) {
    for (int const length : {1, 5, block, block + 3, 3 * block})
        for (int const common : {0, 1, block - 1, block, 2 * block + 5})
            for (int const own : {0, 1, block / 2, block + 1})
                for (int const forgotten : {0, 1, block}) {
                    History<int> one = counted(length, common);
                    History<int> other = one;
                    for (int i = 0; i < own; ++i) {
                        one.push(i % 3 == 0 ? 1000 + i : i);
                        other.push(i % 2 == 0 ? 2000 + i : i);
                    }
                    other.forgetNewest(forgotten, 7);
                    std::vector<int> expected;
                    for (int i = 0; i < length; ++i)
                        expected.push_back(std::max(one[i], other[i]));
                    std::string const untouched = entries(other);
                    takeGreater(one, other);
                    for (int i = 0; i < length; ++i)
                        ASSERT_EQ(one[i], expected[static_cast<std::size_t>(i)])
                            << length << " " << common << " " << own << " " << forgotten;
                    ASSERT_EQ(entries(other), untouched);
                }
}

// Entries of shared storage are not even looked at.
TEST(HistoryCover, WhatIsSharedIsPassedOver) {
    History<int> one = counted(2 * block, 2 * block);
    History<int> other = one;
    one.push(1);
    other.push(2);
    int looked = 0;
    one.cover(other, [&looked](int&, int const&) {
        ++looked;
        return false;
    });
    // Each push went into a block of its own; all others are the same.
    EXPECT_EQ(looked, 1);
}

}  // namespace
}  // namespace engine_test
