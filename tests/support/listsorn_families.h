// The two families of the list library under one set of names, so that every test of the lists runs
// on both. Items are whole numbers; a list is read back into a vector by its nodes.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <vector>

#include "unlinked/listsorn.h"

inline int equalNumbers(void* item, void* searched) {
    return *static_cast<int*>(item) == *static_cast<int*>(searched);
}

// The number behind an answer of the plain family, which the caller of the list owns.
inline std::optional<int> borrowed(void* answer) {
    return answer ? std::optional<int>(*static_cast<int*>(answer)) : std::nullopt;
}

// The number behind an answer of the C family, which is a new block.
inline std::optional<int> taken(void* answer) {
    std::optional<int> const number = borrowed(answer);
    std::free(answer);
    return number;
}

struct Plain {
    static constexpr auto createUnitary = ::createUnitary;
    static constexpr auto assign = ::assign;
    static constexpr auto liberate = ::liberate;
    static constexpr auto addLeft = ::addLeft;
    static constexpr auto addRight = ::addRight;
    static constexpr auto deleteLeft = ::deleteLeft;
    static constexpr auto deleteRight = ::deleteRight;
    static constexpr auto insert = ::insert;
    static constexpr auto deleteNth = ::sn_delete;
    static constexpr auto append = ::concatenateOn1Copying2;
    static constexpr auto join = ::listsornConcatenation;
    static constexpr auto intersect = ::listsornIntersection;
    static constexpr auto unite = ::listsornUnion;
    static constexpr auto uniteOnFirst = ::listsornUnionOnFirst;
    static constexpr auto differ = ::listsornSymmetricDifference;
    static constexpr auto subtract = ::listsornExclusiveElements;
    static std::optional<int> advance(LISTSORN* l) { return borrowed(lookAdvanceCurrent(l)); }
    static std::optional<int> nth(LISTSORN* l, int n) { return borrowed(lookNth(l, n)); }
    static int update(LISTSORN* l, int n, void* data) { return ::update(l, n, data); }
};

struct Copies {
    static constexpr unsigned SIZE = sizeof(int);
    static int createUnitary(LISTSORN* l, void* data) { return createUnitaryC(l, data, SIZE); }
    static int assign(LISTSORN* l, LISTSORN from) { return assignC(l, from, SIZE); }
    static int liberate(LISTSORN* l) { return liberateC(l, SIZE); }
    static int addLeft(void* data, LISTSORN* l) { return addLeftC(data, l, SIZE); }
    static int addRight(void* data, LISTSORN* l) { return addRightC(data, l, SIZE); }
    static int deleteLeft(LISTSORN* l) { return deleteLeftC(l, SIZE); }
    static int deleteRight(LISTSORN* l) { return deleteRightC(l, SIZE); }
    static int insert(LISTSORN* l, int n, void* data) { return insertC(l, n, data, SIZE); }
    static int deleteNth(LISTSORN* l, int n) { return deleteC(l, n, SIZE); }
    static int append(LISTSORN* a, LISTSORN b) { return concatenateOn1Copying2C(a, b, SIZE); }
    static int join(LISTSORN a, LISTSORN b, LISTSORN* r) {
        return listsornConcatenationC(a, b, r, SIZE);
    }
    static int intersect(LISTSORN a, LISTSORN b, LISTSORN* r, ListsornCompare compare) {
        return listsornIntersectionC(a, b, r, compare, SIZE);
    }
    static int unite(LISTSORN a, LISTSORN b, LISTSORN* r, ListsornCompare compare) {
        return listsornUnionC(a, b, r, compare, SIZE);
    }
    static int uniteOnFirst(LISTSORN* a, LISTSORN b, ListsornCompare compare) {
        return listsornUnionOnFirstC(a, b, compare, SIZE);
    }
    static int differ(LISTSORN a, LISTSORN b, LISTSORN* r, ListsornCompare compare) {
        return listsornSymmetricDifferenceC(a, b, r, compare, SIZE);
    }
    static int subtract(LISTSORN a, LISTSORN b, LISTSORN* r, ListsornCompare compare) {
        return listsornExclusiveElementsC(a, b, r, compare, SIZE);
    }
    static std::optional<int> advance(LISTSORN* l) { return taken(lookAdvanceCurrentC(l, SIZE)); }
    static std::optional<int> nth(LISTSORN* l, int n) { return taken(lookNthC(l, n, SIZE)); }
    // The block that is replaced stays with whoever knew it: here, the test.
    static int update(LISTSORN* l, int n, void* data) {
        ListsornNode* node = l->first;
        for (int at = 1; at < n && node; ++at)
            node = node->next;
        void* const replaced = node ? node->data : nullptr;
        int const done = updateC(l, n, data, SIZE);
        if (done)
            std::free(replaced);
        return done;
    }
};

typedef testing::Types<Plain, Copies> Families;

// The items by their nodes, with the invariants of the record checked on the way.
inline std::vector<int> itemsOf(LISTSORN const& list) {
    std::vector<int> items;
    ListsornNode* last = nullptr;
    for (ListsornNode* node = list.first; node; node = node->next) {
        items.push_back(*static_cast<int*>(node->data));
        last = node;
    }
    EXPECT_EQ(list.last, last);
    EXPECT_EQ(list.size, static_cast<int>(items.size()));
    return items;
}

// A list of one family that frees itself. Its plain items are the entries of NUMBERS.
template <typename Family>
struct TestList : LISTSORN {
    static int* number(int value) {
        static int numbers[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
        return &numbers[value];
    }
    TestList() { createEmpty(this); }
    explicit TestList(std::vector<int> const& values) : TestList() {
        for (int const value : values)
            Family::addRight(number(value), this);
    }
    TestList(TestList const&) = delete;
    ~TestList() { Family::liberate(this); }
};
