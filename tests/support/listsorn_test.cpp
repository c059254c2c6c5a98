// The list operations one by one, on both families. The random comparison with a vector is in
// listsorn_random_test.cpp, exhausted memory in listsorn_memory_test.cpp.
#include "unlinked/listsorn.h"

#include <gtest/gtest.h>

#include "support/listsorn_families.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
typedef std::vector<int> Items;

template <typename Family>
struct Listsorn : testing::Test {
    typedef TestList<Family> List;
    static int* number(int value) { return List::number(value); }
};
TYPED_TEST_SUITE(Listsorn, Families);

#define LIST typename TestFixture::List
#define NUMBER(value) TestFixture::number(value)

TYPED_TEST(Listsorn, CreateEmptyZeroesAllFields) {
    ListsornNode node = {};
    LISTSORN list = {&node, &node, &node, 7};
    EXPECT_EQ(createEmpty(&list), 1);
    EXPECT_EQ(list.first, nullptr);
    EXPECT_EQ(list.last, nullptr);
    EXPECT_EQ(list.current, nullptr);
    EXPECT_EQ(list.size, 0);
}

TYPED_TEST(Listsorn, CreateUnitaryHoldsOneItemAndNoCursor) {
    ListsornNode node = {};
    LIST list;
    list.current = &node;
    EXPECT_EQ(TypeParam::createUnitary(&list, NUMBER(4)), 1);
    EXPECT_EQ(itemsOf(list), Items{4});
    EXPECT_EQ(list.current, nullptr);
}

TYPED_TEST(Listsorn, CreateUnitaryWithNullDataLeavesTheListAlone) {
    LIST list({1, 2});
    EXPECT_EQ(TypeParam::createUnitary(&list, nullptr), 0);
    EXPECT_EQ(itemsOf(list), (Items{1, 2}));
}

TYPED_TEST(Listsorn, AddsAtBothEndsWithoutMovingTheCursor) {
    LIST list({5});
    list.current = list.first;
    ListsornNode* const cursor = list.current;
    EXPECT_EQ(TypeParam::addLeft(NUMBER(4), &list), 1);
    EXPECT_EQ(TypeParam::addRight(NUMBER(6), &list), 1);
    EXPECT_EQ(itemsOf(list), (Items{4, 5, 6}));
    EXPECT_EQ(list.current, cursor);
}

TYPED_TEST(Listsorn, AddLeftOnAnEmptyListSetsTheTail) {
    LIST list;
    EXPECT_EQ(TypeParam::addLeft(NUMBER(3), &list), 1);
    EXPECT_EQ(itemsOf(list), Items{3});
}

TYPED_TEST(Listsorn, NullDataIsRefused) {
    LIST list({1});
    EXPECT_EQ(TypeParam::addLeft(nullptr, &list), 0);
    EXPECT_EQ(TypeParam::addRight(nullptr, &list), 0);
    EXPECT_EQ(TypeParam::insert(&list, 1, nullptr), 0);
    EXPECT_EQ(TypeParam::update(&list, 1, nullptr), 0);
    EXPECT_EQ(itemsOf(list), Items{1});
}

TYPED_TEST(Listsorn, NullListIsRefused) {
    LIST const one({1});
    EXPECT_EQ(createEmpty(nullptr), 0);
    EXPECT_EQ(concatenate(nullptr, one), 0);
    EXPECT_EQ(TypeParam::createUnitary(nullptr, NUMBER(1)), 0);
    EXPECT_EQ(TypeParam::assign(nullptr, one), 0);
    EXPECT_EQ(TypeParam::liberate(nullptr), 0);
    EXPECT_EQ(TypeParam::addLeft(NUMBER(1), nullptr), 0);
    EXPECT_EQ(TypeParam::addRight(NUMBER(1), nullptr), 0);
    EXPECT_EQ(TypeParam::deleteLeft(nullptr), 0);
    EXPECT_EQ(TypeParam::deleteRight(nullptr), 0);
    EXPECT_EQ(TypeParam::advance(nullptr), std::nullopt);
    EXPECT_EQ(TypeParam::nth(nullptr, 1), std::nullopt);
    EXPECT_EQ(TypeParam::insert(nullptr, 1, NUMBER(1)), 0);
    EXPECT_EQ(TypeParam::deleteNth(nullptr, 1), 0);
    EXPECT_EQ(TypeParam::append(nullptr, one), 0);
}

TYPED_TEST(Listsorn, NullListIsRefusedByUpdateAndTheSetOperations) {
    LIST const one({1});
    EXPECT_EQ(update(nullptr, 1, NUMBER(1)), 0);
    EXPECT_EQ(updateC(nullptr, 1, NUMBER(1), sizeof(int)), 0);
    EXPECT_EQ(TypeParam::join(one, one, nullptr), 0);
    EXPECT_EQ(TypeParam::intersect(one, one, nullptr, equalNumbers), 0);
    EXPECT_EQ(TypeParam::unite(one, one, nullptr, equalNumbers), 0);
    EXPECT_EQ(TypeParam::uniteOnFirst(nullptr, one, equalNumbers), 0);
    EXPECT_EQ(TypeParam::differ(one, one, nullptr, equalNumbers), 0);
    EXPECT_EQ(TypeParam::subtract(one, one, nullptr, equalNumbers), 0);
}

TYPED_TEST(Listsorn, DeletingFromAnEmptyListSucceeds) {
    LIST list;
    EXPECT_EQ(TypeParam::deleteLeft(&list), 1);
    EXPECT_EQ(TypeParam::deleteRight(&list), 1);
    EXPECT_EQ(TypeParam::deleteNth(&list, 1), 1);
    EXPECT_EQ(TypeParam::deleteNth(&list, 0), 1);  // position size, so deleteRight
    EXPECT_EQ(itemsOf(list), Items{});
}

TYPED_TEST(Listsorn, DeletesAtBothEndsWithoutMovingTheCursor) {
    LIST list({1, 2, 3, 4});
    list.current = list.first->next;
    ListsornNode* const cursor = list.current;
    EXPECT_EQ(TypeParam::deleteLeft(&list), 1);
    EXPECT_EQ(TypeParam::deleteRight(&list), 1);
    EXPECT_EQ(itemsOf(list), (Items{2, 3}));
    EXPECT_EQ(list.current, cursor);
}

TYPED_TEST(Listsorn, DeletingTheOnlyItemClearsBothEnds) {
    LIST left({1}), right({1});
    EXPECT_EQ(TypeParam::deleteLeft(&left), 1);
    EXPECT_EQ(TypeParam::deleteRight(&right), 1);
    EXPECT_EQ(itemsOf(left), Items{});
    EXPECT_EQ(itemsOf(right), Items{});
}

TYPED_TEST(Listsorn, AWalkByTheCursorEndsWithNull) {
    LIST list({1, 2});
    EXPECT_EQ(TypeParam::advance(&list), std::nullopt);
    list.current = list.first;
    EXPECT_EQ(TypeParam::advance(&list), 1);
    EXPECT_EQ(TypeParam::advance(&list), 2);
    EXPECT_EQ(list.current, nullptr);
    EXPECT_EQ(TypeParam::advance(&list), std::nullopt);
}

TYPED_TEST(Listsorn, LookNthSetsTheCursorExceptForTheTail) {
    LIST list({1, 2, 3});
    EXPECT_EQ(TypeParam::nth(&list, 2), 2);
    EXPECT_EQ(list.current, list.first->next);
    EXPECT_EQ(TypeParam::nth(&list, 3), 3);
    EXPECT_EQ(list.current, list.first->next);
    EXPECT_EQ(TypeParam::nth(&list, 1), 1);
    EXPECT_EQ(list.current, list.first);
}

TYPED_TEST(Listsorn, LookNthOfAnEmptyListIsNullAndSaysNothing) {
    LIST list;
    CaptureStderr();
    EXPECT_EQ(TypeParam::nth(&list, 1), std::nullopt);
    EXPECT_EQ(GetCapturedStderr(), "");
}

TYPED_TEST(Listsorn, PositionsThatDoNotExistAreToldAndChangeNothing) {
    LIST list({1, 2});
    list.current = list.first;
    CaptureStderr();
    EXPECT_EQ(TypeParam::nth(&list, 3), std::nullopt);
    EXPECT_EQ(TypeParam::nth(&list, 0), std::nullopt);
    EXPECT_EQ(TypeParam::insert(&list, 4, NUMBER(9)), 0);
    EXPECT_EQ(TypeParam::insert(&list, 0, NUMBER(9)), 0);
    EXPECT_EQ(TypeParam::deleteNth(&list, 3), 0);
    EXPECT_EQ(TypeParam::deleteNth(&list, -1), 0);
    EXPECT_EQ(TypeParam::update(&list, 3, NUMBER(9)), 0);
    EXPECT_EQ(GetCapturedStderr(),
              "listsorn: no position 3 in a list of 2 items\n"
              "listsorn: no position 0 in a list of 2 items\n"
              "listsorn: no position 4 in a list of 2 items\n"
              "listsorn: no position 0 in a list of 2 items\n"
              "listsorn: no position 3 in a list of 2 items\n"
              "listsorn: no position -1 in a list of 2 items\n"
              "listsorn: no position 3 in a list of 2 items\n");
    EXPECT_EQ(itemsOf(list), (Items{1, 2}));
    EXPECT_EQ(list.current, list.first);
}

TYPED_TEST(Listsorn, InsertsAtEveryPosition) {
    LIST list({1, 3});
    EXPECT_EQ(TypeParam::insert(&list, 2, NUMBER(2)), 1);
    EXPECT_EQ(TypeParam::insert(&list, 1, NUMBER(0)), 1);
    EXPECT_EQ(TypeParam::insert(&list, 5, NUMBER(4)), 1);
    EXPECT_EQ(itemsOf(list), (Items{0, 1, 2, 3, 4}));
}

TYPED_TEST(Listsorn, InsertAtOneIntoAnEmptyListIsBothEnds) {
    LIST list;
    EXPECT_EQ(TypeParam::insert(&list, 1, NUMBER(7)), 1);
    EXPECT_EQ(itemsOf(list), Items{7});
}

TYPED_TEST(Listsorn, DeletesAtEveryPosition) {
    LIST list({0, 1, 2, 3, 4});
    EXPECT_EQ(TypeParam::deleteNth(&list, 5), 1);
    EXPECT_EQ(TypeParam::deleteNth(&list, 2), 1);
    EXPECT_EQ(TypeParam::deleteNth(&list, 1), 1);
    EXPECT_EQ(itemsOf(list), (Items{2, 3}));
}

TYPED_TEST(Listsorn, UpdatesAnItemInItsPlace) {
    LIST list({1, 2, 3});
    EXPECT_EQ(TypeParam::update(&list, 2, NUMBER(8)), 1);
    EXPECT_EQ(TypeParam::update(&list, 3, NUMBER(9)), 1);
    EXPECT_EQ(itemsOf(list), (Items{1, 8, 9}));
    EXPECT_EQ(list.current, nullptr);
}

TYPED_TEST(Listsorn, SearchesByComparison) {
    LIST list({4, 5, 5});
    int five = 5, six = 6;
    EXPECT_EQ(isPresent(&five, list, equalNumbers), 1);
    EXPECT_EQ(search(&five, list, equalNumbers), list.first->next->data);
    EXPECT_EQ(position(&five, list, equalNumbers), 2);
    EXPECT_EQ(isPresent(&six, list, equalNumbers), 0);
    EXPECT_EQ(search(&six, list, equalNumbers), nullptr);
    EXPECT_EQ(position(&six, list, equalNumbers), 0);
}

TYPED_TEST(Listsorn, WithoutAComparisonPointersAreCompared) {
    LIST list({4, 5});
    int equalButElsewhere = 5;
    EXPECT_EQ(position(list.last->data, list, nullptr), 2);
    EXPECT_EQ(isPresent(&equalButElsewhere, list, nullptr), 0);
}

TYPED_TEST(Listsorn, NothingIsFoundForNullDataOrInAnEmptyList) {
    LIST list({4}), empty;
    auto const everything = [](void*, void*) { return 1; };
    EXPECT_EQ(isPresent(nullptr, list, everything), 0);
    EXPECT_EQ(search(nullptr, list, everything), nullptr);
    EXPECT_EQ(position(nullptr, list, everything), 0);
    EXPECT_EQ(isPresent(NUMBER(4), empty, everything), 0);
}

// 7 is the item of the list and 3 the searched value: the other order would find nothing.
TYPED_TEST(Listsorn, TheComparisonGetsTheItemFirst) {
    LIST list({7});
    auto const itemIsSeven = [](void* item, void* searched) {
        return int{*static_cast<int*>(item) == 7 && *static_cast<int*>(searched) == 3};
    };
    EXPECT_EQ(isPresent(NUMBER(3), list, itemIsSeven), 1);
}

TYPED_TEST(Listsorn, AssignMakesNewNodes) {
    LIST source({1, 2}), result;
    EXPECT_EQ(TypeParam::assign(&result, source), 1);
    EXPECT_EQ(itemsOf(result), (Items{1, 2}));
    EXPECT_NE(result.first, source.first);
    EXPECT_EQ(itemsOf(source), (Items{1, 2}));
}

TYPED_TEST(Listsorn, LiberateEmptiesTheFields) {
    LIST list({1, 2});
    list.current = list.first;
    EXPECT_EQ(TypeParam::liberate(&list), 1);
    EXPECT_EQ(itemsOf(list), Items{});
    EXPECT_EQ(list.current, nullptr);
}

TYPED_TEST(Listsorn, ConcatenateHandsOverTheNodes) {
    LIST a({1}), b({2, 3});
    ListsornNode* const handedOver = b.first;
    EXPECT_EQ(concatenate(&a, b), 1);
    createEmpty(&b);
    EXPECT_EQ(itemsOf(a), (Items{1, 2, 3}));
    EXPECT_EQ(a.first->next, handedOver);
}

TYPED_TEST(Listsorn, ConcatenateOfAnEmptyListChangesNothing) {
    LIST a({1}), empty;
    EXPECT_EQ(concatenate(&a, empty), 1);
    EXPECT_EQ(itemsOf(a), Items{1});
}

TYPED_TEST(Listsorn, ConcatenateOnAnEmptyListCountsNoItems) {
    LIST a, b({1, 2});
    EXPECT_EQ(concatenate(&a, b), 1);
    EXPECT_EQ(a.first, b.first);
    EXPECT_EQ(a.last, b.last);
    EXPECT_EQ(a.size, 0);
    EXPECT_EQ(isPresent(NUMBER(1), a, equalNumbers), 0);
    EXPECT_EQ(TypeParam::liberate(&a), 1);
    EXPECT_EQ(itemsOf(a), Items{});
    EXPECT_EQ(itemsOf(b), (Items{1, 2}));  // nothing was freed, so b can still free it
}

// Such a list, with one more item: position 2 is size + 1 and so the end, although the walk would
// find a second node.
TYPED_TEST(Listsorn, TheEndIsToldBySize) {
    LIST a, b({1, 2});
    concatenate(&a, b);
    createEmpty(&b);
    EXPECT_EQ(TypeParam::addLeft(NUMBER(0), &a), 1);
    EXPECT_EQ(a.size, 1);
    EXPECT_EQ(TypeParam::insert(&a, 2, NUMBER(3)), 1);
    a.size = 4;
    EXPECT_EQ(itemsOf(a), (Items{0, 1, 2, 3}));
}

TYPED_TEST(Listsorn, AppendsCopiesAlsoOfItself) {
    LIST a, b({1, 2});
    EXPECT_EQ(TypeParam::append(&a, b), 1);
    EXPECT_EQ(TypeParam::append(&a, b), 1);
    EXPECT_EQ(itemsOf(a), (Items{1, 2, 1, 2}));
    EXPECT_EQ(TypeParam::append(&b, b), 1);
    EXPECT_EQ(itemsOf(b), (Items{1, 2, 1, 2}));
}

TYPED_TEST(Listsorn, JoinsIntoANewList) {
    LIST a({1, 2}), b({2, 3}), result, nothing;
    EXPECT_EQ(TypeParam::join(a, b, &result), 1);
    EXPECT_EQ(itemsOf(result), (Items{1, 2, 2, 3}));
    LIST const empty;
    nothing.size = 5;  // overwritten, so whatever the record held does not matter
    EXPECT_EQ(TypeParam::join(empty, empty, &nothing), 1);
    EXPECT_EQ(itemsOf(nothing), Items{});
}

TYPED_TEST(Listsorn, IntersectionKeepsTheOrderAndTheRepeatsOfTheFirst) {
    LIST a({3, 1, 3, 2}), b({2, 3}), result;
    EXPECT_EQ(TypeParam::intersect(a, b, &result, equalNumbers), 1);
    EXPECT_EQ(itemsOf(result), (Items{3, 3, 2}));
}

TYPED_TEST(Listsorn, UnionKeepsTheRepeatsOfTheSecond) {
    LIST a({1, 2}), b({3, 2, 3}), result;
    EXPECT_EQ(TypeParam::unite(a, b, &result, equalNumbers), 1);
    EXPECT_EQ(itemsOf(result), (Items{1, 2, 3, 3}));
}

TYPED_TEST(Listsorn, UnionWithItselfOrWithNothingIsACopy) {
    LIST a({1, 2, 2}), empty, withItself, withNothing;
    EXPECT_EQ(TypeParam::unite(a, a, &withItself, equalNumbers), 1);
    EXPECT_EQ(TypeParam::unite(a, empty, &withNothing, equalNumbers), 1);
    EXPECT_EQ(itemsOf(withItself), (Items{1, 2, 2}));
    EXPECT_EQ(itemsOf(withNothing), (Items{1, 2, 2}));
    EXPECT_NE(withItself.first, a.first);
}

TYPED_TEST(Listsorn, UnionOnFirstLooksOnlyAtWhatTheFirstHeld) {
    LIST a({1, 2}), b({3, 2, 3}), empty;
    EXPECT_EQ(TypeParam::uniteOnFirst(&a, b, equalNumbers), 1);
    EXPECT_EQ(itemsOf(a), (Items{1, 2, 3, 3}));
    EXPECT_EQ(TypeParam::uniteOnFirst(&empty, b, equalNumbers), 1);
    EXPECT_EQ(itemsOf(empty), (Items{3, 2, 3}));
}

TYPED_TEST(Listsorn, SymmetricDifferenceIsBothOneSidedOnes) {
    LIST a({1, 2, 1}), b({4, 2, 3}), result, none;
    EXPECT_EQ(TypeParam::differ(a, b, &result, equalNumbers), 1);
    EXPECT_EQ(itemsOf(result), (Items{1, 1, 4, 3}));
    EXPECT_EQ(TypeParam::differ(a, a, &none, equalNumbers), 1);
    EXPECT_EQ(itemsOf(none), Items{});
}

TYPED_TEST(Listsorn, ExclusiveElementsAreOneSided) {
    LIST a({1, 2, 1}), b({4, 2}), result;
    EXPECT_EQ(TypeParam::subtract(a, b, &result, equalNumbers), 1);
    EXPECT_EQ(itemsOf(result), (Items{1, 1}));
}

TEST(ListsornPlain, StoresThePointerOfTheCaller) {
    int data = 1;
    LISTSORN list;
    ASSERT_EQ(createUnitary(&list, &data), 1);
    EXPECT_EQ(lookNth(&list, 1), &data);
    liberate(&list);
    EXPECT_EQ(data, 1);
}

TEST(ListsornCopies, StoresAPrivateCopy) {
    int data = 1;
    LISTSORN list;
    ASSERT_EQ(createUnitaryC(&list, &data, sizeof data), 1);
    data = 2;
    EXPECT_NE(list.first->data, &data);
    EXPECT_EQ(taken(lookNthC(&list, 1, sizeof data)), 1);
    liberateC(&list, sizeof data);
}

TEST(ListsornCopies, LooksGiveNewBlocks) {
    TestList<Copies> list({1, 2, 3});
    list.current = list.first->next;
    void* const block = lookLeftC(list, sizeof(int));
    EXPECT_NE(block, list.first->data);
    EXPECT_EQ(taken(block), 1);
    EXPECT_EQ(taken(lookRightC(list, sizeof(int))), 3);
    EXPECT_EQ(taken(lookCurrentC(list, sizeof(int))), 2);
}

TEST(ListsornCopies, LooksAtAbsentItemsAreNull) {
    TestList<Copies> const empty;
    EXPECT_EQ(lookLeftC(empty, sizeof(int)), nullptr);
    EXPECT_EQ(lookRightC(empty, sizeof(int)), nullptr);
    EXPECT_EQ(lookCurrentC(empty, sizeof(int)), nullptr);
}

TEST(ListsornCopies, UpdateDoesNotFreeTheBlockItReplaces) {
    TestList<Copies> list({1});
    auto* const replaced = static_cast<int*>(list.first->data);
    int two = 2;
    EXPECT_EQ(updateC(&list, 1, &two, sizeof two), 1);
    EXPECT_NE(list.first->data, replaced);
    EXPECT_EQ(taken(replaced), 1);  // still there, and the caller's to free
}

#ifndef NDEBUG
TEST(ListsornDeathTest, JoiningAListToItselfByItsNodesIsABug) {
    TestList<Plain> list({1});
    EXPECT_DEATH(concatenate(&list, list), "first");
}
#endif

}  // namespace
