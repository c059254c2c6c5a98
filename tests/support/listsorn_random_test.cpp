// The lists against their slow twin: a vector of numbers that goes through the same operations.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/listsorn_families.h"
#include "unlinked/listsorn.h"

namespace {

typedef std::vector<int> Items;

bool has(Items const& items, int value) {
    return std::find(items.begin(), items.end(), value) != items.end();
}

Items filtered(Items const& from, Items const& other, bool present) {
    Items result;
    for (int const value : from)
        if (has(other, value) == present)
            result.push_back(value);
    return result;
}

Items joined(Items a, Items const& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

template <typename Family>
struct Twins {
    TestList<Family> list;
    Items twin;
};

// A game of random operations on two pairs of twins, and on results made of both.
template <typename Family>
struct Game {
    explicit Game(unsigned seed) : generator(seed) {}

    int draw(int below) { return std::uniform_int_distribution<int>(0, below - 1)(generator); }
    int* number(int value) { return TestList<Family>::number(value); }

    void changeEnds(Twins<Family>& a, int value) {
        switch (draw(4)) {
            case 0:
                EXPECT_EQ(Family::addLeft(number(value), &a.list), 1);
                a.twin.insert(a.twin.begin(), value);
                break;
            case 1:
                EXPECT_EQ(Family::addRight(number(value), &a.list), 1);
                a.twin.push_back(value);
                break;
            case 2:
                EXPECT_EQ(Family::deleteLeft(&a.list), 1);
                if (!a.twin.empty())
                    a.twin.erase(a.twin.begin());
                break;
            default:
                EXPECT_EQ(Family::deleteRight(&a.list), 1);
                if (!a.twin.empty())
                    a.twin.pop_back();
        }
    }

    void changeInside(Twins<Family>& a, int value) {
        int const size = static_cast<int>(a.twin.size());
        int const n = draw(size + 1) + 1;
        if (draw(2)) {
            EXPECT_EQ(Family::insert(&a.list, n, number(value)), 1);
            a.twin.insert(a.twin.begin() + n - 1, value);
        } else if (n <= size && draw(2)) {
            EXPECT_EQ(Family::update(&a.list, n, number(value)), 1);
            a.twin[n - 1] = value;
        } else if (n <= size) {
            EXPECT_EQ(Family::deleteNth(&a.list, n), 1);
            a.twin.erase(a.twin.begin() + n - 1);
        }
    }

    void changeByOther(Twins<Family>& a, Twins<Family>& b) {
        if (a.twin.size() + b.twin.size() > 40) {
            EXPECT_EQ(Family::liberate(&a.list), 1);
            a.twin.clear();
        } else if (draw(2)) {
            EXPECT_EQ(Family::append(&a.list, b.list), 1);
            a.twin = joined(a.twin, b.twin);
        } else {
            EXPECT_EQ(Family::uniteOnFirst(&a.list, b.list, equalNumbers), 1);
            a.twin = joined(a.twin, filtered(b.twin, a.twin, false));
        }
    }

    void look(Twins<Family>& a, int value) {
        auto const found = std::find(a.twin.begin(), a.twin.end(), value);
        bool const present = found != a.twin.end();
        int const at = present ? static_cast<int>(found - a.twin.begin()) + 1 : 0;
        EXPECT_EQ(isPresent(number(value), a.list, equalNumbers), int{present});
        EXPECT_EQ(position(number(value), a.list, equalNumbers), at);
        EXPECT_EQ(borrowed(search(number(value), a.list, equalNumbers)).has_value(), present);
        if (present) {
            EXPECT_EQ(Family::nth(&a.list, at), value);
        }
    }

    void walk(Twins<Family>& a) {
        a.list.current = a.list.first;
        Items walked;
        while (auto const item = Family::advance(&a.list))
            walked.push_back(*item);
        EXPECT_EQ(walked, a.twin);
    }

    typedef int (*SetOperation)(LISTSORN, LISTSORN, LISTSORN*, ListsornCompare);

    void expectSet(SetOperation operation, Twins<Family>& a, Twins<Family>& b,
                   Items const& expected) {
        TestList<Family> result;
        EXPECT_EQ(operation(a.list, b.list, &result, equalNumbers), 1);
        EXPECT_EQ(itemsOf(result), expected);
    }

    void combine(Twins<Family>& a, Twins<Family>& b) {
        Items const onlyA = filtered(a.twin, b.twin, false);
        Items const onlyB = filtered(b.twin, a.twin, false);
        expectSet(Family::intersect, a, b, filtered(a.twin, b.twin, true));
        expectSet(Family::unite, a, b, joined(a.twin, onlyB));
        expectSet(Family::differ, a, b, joined(onlyA, onlyB));
        expectSet(Family::subtract, a, b, onlyA);
        TestList<Family> both;
        EXPECT_EQ(Family::join(a.list, b.list, &both), 1);
        EXPECT_EQ(itemsOf(both), joined(a.twin, b.twin));
    }

    void turn() {
        Twins<Family>& a = pair[draw(2)];
        Twins<Family>& b = pair[draw(2)];
        int const value = draw(10);
        switch (draw(8)) {
            case 0:
                changeByOther(a, b);
                break;
            case 1:
                combine(a, b);
                break;
            case 2:
                walk(a);
                break;
            case 3:
                look(a, value);
                break;
            case 4:
            case 5:
                changeInside(a, value);
                break;
            default:
                changeEnds(a, value);
        }
        EXPECT_EQ(itemsOf(a.list), a.twin);
    }

    std::mt19937 generator;
    Twins<Family> pair[2];
};

template <typename Family>
struct ListsornRandom : testing::Test {};
TYPED_TEST_SUITE(ListsornRandom, Families);

TYPED_TEST(ListsornRandom, BehavesLikeItsTwin) {
    for (unsigned seed = 1; seed <= 50; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Game<TypeParam> game(seed);
        for (int turn = 0; turn < 400 && !testing::Test::HasFailure(); ++turn)
            game.turn();
    }
}

}  // namespace
