// Exhausted memory: the message, the 0 result, and lists that stay whole.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "support/listsorn_families.h"
#include "unlinked/listsorn.h"
#include "unlinked/new_memory.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
typedef std::vector<int> Items;

char const* const EXHAUSTED = "\nImpossible to allocate any more dynamic memory!!!\n\n";

int blocksLeft;  // allocations that still succeed

void* limitedMalloc(std::size_t size) {
    return blocksLeft-- > 0 ? std::malloc(size) : nullptr;
}

void* limitedCalloc(std::size_t count, std::size_t size) {
    return blocksLeft-- > 0 ? std::calloc(count, size) : nullptr;
}

// Between the two calls only a number of allocations succeed, and the error stream is captured.
void leaveBlocks(int blocks) {
    blocksLeft = blocks;
    newMemorySource = {limitedMalloc, limitedCalloc};
    CaptureStderr();
}

std::string messages() {
    newMemorySource = {std::malloc, std::calloc};
    return GetCapturedStderr();
}

TEST(NewMemory, GivesBlocksAndSaysNothing) {
    CaptureStderr();
    void* const block = new_malloc(100);
    auto* const zeroed = static_cast<int*>(new_calloc(3, sizeof(int)));
    ASSERT_NE(block, nullptr);
    ASSERT_NE(zeroed, nullptr);
    std::memset(block, 1, 100);
    EXPECT_EQ(zeroed[0] | zeroed[1] | zeroed[2], 0);
    new_free(block, 100);
    new_free(zeroed, 3 * sizeof(int));
    new_free(nullptr, 100);
    EXPECT_EQ(GetCapturedStderr(), "");
}

TEST(NewMemory, TellsWhenItIsExhausted) {
    leaveBlocks(0);
    EXPECT_EQ(new_malloc(8), nullptr);
    EXPECT_EQ(new_calloc(2, 8), nullptr);
    EXPECT_EQ(messages(), std::string(EXHAUSTED) + EXHAUSTED);
}

template <typename Family>
struct ListsornMemory : testing::Test {
    static int* number(int value) { return TestList<Family>::number(value); }
    // Allocations that one more item takes: its node, and the copy of its block.
    static constexpr int PER_ITEM = std::is_same_v<Family, Copies> ? 2 : 1;
};
TYPED_TEST_SUITE(ListsornMemory, Families);

TYPED_TEST(ListsornMemory, AFailedAddLeavesTheListAsItWas) {
    for (int blocks = 0; blocks < TestFixture::PER_ITEM; ++blocks) {
        TestList<TypeParam> list({1, 2});
        leaveBlocks(blocks);
        EXPECT_EQ(TypeParam::addRight(TestFixture::number(3), &list), 0);
        EXPECT_EQ(messages(), EXHAUSTED);
        leaveBlocks(blocks);
        EXPECT_EQ(TypeParam::addLeft(TestFixture::number(3), &list), 0);
        EXPECT_EQ(messages(), EXHAUSTED);
        leaveBlocks(blocks);
        EXPECT_EQ(TypeParam::insert(&list, 2, TestFixture::number(3)), 0);
        EXPECT_EQ(messages(), EXHAUSTED);
        leaveBlocks(blocks);
        EXPECT_EQ(TypeParam::createUnitary(&list, TestFixture::number(3)), 0);
        EXPECT_EQ(messages(), EXHAUSTED);
        EXPECT_EQ(itemsOf(list), (Items{1, 2}));
    }
}

TYPED_TEST(ListsornMemory, AnOperationOnManyItemsLeavesWhatWasDone) {
    TestList<TypeParam> a({1, 2}), b({3, 4}), result;
    leaveBlocks(3 * TestFixture::PER_ITEM);
    EXPECT_EQ(TypeParam::unite(a, b, &result, equalNumbers), 0);
    EXPECT_EQ(messages(), EXHAUSTED);
    EXPECT_EQ(itemsOf(result), (Items{1, 2, 3}));
}

TYPED_TEST(ListsornMemory, AssignStopsAtTheFirstFailure) {
    TestList<TypeParam> source({1, 2, 3}), result;
    leaveBlocks(TestFixture::PER_ITEM);
    EXPECT_EQ(TypeParam::assign(&result, source), 0);
    EXPECT_EQ(messages(), EXHAUSTED);
    EXPECT_EQ(itemsOf(result), Items{1});
}

TEST(ListsornCopiesMemory, AFailedUpdateKeepsTheItem) {
    TestList<Copies> list({1});
    int two = 2;
    leaveBlocks(0);
    EXPECT_EQ(updateC(&list, 1, &two, sizeof two), 0);
    EXPECT_EQ(messages(), EXHAUSTED);
    EXPECT_EQ(itemsOf(list), Items{1});
}

TEST(ListsornCopiesMemory, AFailedLookAnswersNull) {
    TestList<Copies> list({1, 2});
    list.current = list.first;
    leaveBlocks(0);
    EXPECT_EQ(lookLeftC(list, sizeof(int)), nullptr);
    EXPECT_EQ(lookAdvanceCurrentC(&list, sizeof(int)), nullptr);
    EXPECT_EQ(messages(), std::string(EXHAUSTED) + EXHAUSTED);
    EXPECT_EQ(list.current, list.last);
}

}  // namespace
