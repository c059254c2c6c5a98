// Nodes, ends, positions and searches of LISTSORN; the operations on whole lists are in
// listsorn_sets.cpp.
//
// The plain family and the C family differ only in how an item is stored, looked at and dropped.
// That difference is the Items argument of the functions below; all walking and linking is
// written once.
#include "unlinked/listsorn.h"

#include <cstdio>
#include <cstring>

#include "unlinked/new_memory.h"

namespace {

// How the items of a list are kept: as the caller's pointers, or as copies of blockSize bytes.
struct Items {
    bool copied;
    unsigned blockSize;  // meaningless unless copied
};

constexpr Items POINTERS = {false, 0};
constexpr Items copiesOf(unsigned size) {
    return {true, size};
}

void* storedForm(void* data, Items items) {
    if (!items.copied)
        return data;
    void* const block = new_malloc(items.blockSize);
    return block ? std::memcpy(block, data, items.blockSize) : nullptr;
}

void* lookAt(ListsornNode const* node, Items items) {
    return node ? storedForm(node->data, items) : nullptr;
}

// Null when *data* is null or memory is exhausted; then nothing stays allocated.
ListsornNode* makeNode(void* data, Items items) {
    if (!data)
        return nullptr;
    auto* const node = static_cast<ListsornNode*>(new_malloc(sizeof(ListsornNode)));
    if (!node)
        return nullptr;
    *node = {storedForm(data, items), nullptr};
    if (node->data)
        return node;
    new_free(node, sizeof(ListsornNode));
    return nullptr;
}

void dropNode(ListsornNode* node, Items items) {
    if (items.copied)
        new_free(node->data, items.blockSize);
    new_free(node, sizeof(ListsornNode));
}

// *before* is null for the head of the list.
int insertAfter(LISTSORN* list, ListsornNode* before, void* data, Items items) {
    ListsornNode* const node = makeNode(data, items);
    if (!node)
        return 0;
    ListsornNode*& link = before ? before->next : list->first;
    node->next = link;
    link = node;
    if (!node->next)
        list->last = node;
    ++list->size;
    return 1;
}

// The node after *before*, or the head when before is null, must exist.
int deleteAfter(LISTSORN* list, ListsornNode* before, Items items) {
    ListsornNode*& link = before ? before->next : list->first;
    ListsornNode* const node = link;
    link = node->next;
    if (!link)
        list->last = before;
    --list->size;
    dropNode(node, items);
    return 1;
}

int noSuchPosition(int n, LISTSORN const* list) {
    std::fprintf(stderr, "listsorn: no position %d in a list of %d items\n", n, list->size);
    return 0;
}

// Null when the walk of n - 1 steps has no node to end on.
ListsornNode* nodeAt(LISTSORN const* list, int n) {
    ListsornNode* node = n < 1 ? nullptr : list->first;
    for (int at = 1; node && at < n; ++at)
        node = node->next;
    return node;
}

int addFirst(void* data, LISTSORN* list, Items items) {
    return list && insertAfter(list, nullptr, data, items);
}

int addLast(void* data, LISTSORN* list, Items items) {
    return list && insertAfter(list, list->last, data, items);
}

int createWith(LISTSORN* list, void* data, Items items) {
    LISTSORN unitary;
    createEmpty(&unitary);
    if (!list || !addLast(data, &unitary, items))
        return 0;
    *list = unitary;
    return 1;
}

int deleteFirst(LISTSORN* list, Items items) {
    if (!list)
        return 0;
    return list->first ? deleteAfter(list, nullptr, items) : 1;
}

int deleteLast(LISTSORN* list, Items items) {
    if (!list)
        return 0;
    if (!list->first)
        return 1;
    ListsornNode* before = nullptr;
    for (ListsornNode* node = list->first; node != list->last; node = node->next)
        before = node;
    return deleteAfter(list, before, items);
}

void* advance(LISTSORN* list, Items items) {
    if (!list || !list->current)
        return nullptr;
    ListsornNode const* const node = list->current;
    list->current = node->next;
    return lookAt(node, items);
}

void* lookPosition(LISTSORN* list, int n, Items items) {
    if (!list || !list->first)
        return nullptr;
    if (n == list->size)
        return lookAt(list->last, items);
    ListsornNode* const node = nodeAt(list, n);
    if (!node) {
        noSuchPosition(n, list);
        return nullptr;
    }
    list->current = node;
    return lookAt(node, items);
}

int insertPosition(LISTSORN* list, int n, void* data, Items items) {
    if (!list || !data)
        return 0;
    if (n == 1)
        return addFirst(data, list, items);
    if (n == list->size + 1)
        return addLast(data, list, items);
    ListsornNode* const before = nodeAt(list, n - 1);
    return before ? insertAfter(list, before, data, items) : noSuchPosition(n, list);
}

int deletePosition(LISTSORN* list, int n, Items items) {
    if (!list)
        return 0;
    if (n == 1)
        return deleteFirst(list, items);
    if (n == list->size)
        return deleteLast(list, items);
    ListsornNode* const before = nodeAt(list, n - 1);
    return before && before->next ? deleteAfter(list, before, items) : noSuchPosition(n, list);
}

int updatePosition(LISTSORN* list, int n, void* data, Items items) {
    if (!list || !data)
        return 0;
    ListsornNode* const node = nodeAt(list, n);
    if (!node)
        return noSuchPosition(n, list);
    void* const stored = storedForm(data, items);
    if (!stored)
        return 0;
    node->data = stored;
    return 1;
}

int liberateAll(LISTSORN* list, Items items) {
    if (!list)
        return 0;
    for (int count = list->size; count > 0; --count)
        deleteFirst(list, items);
    return createEmpty(list);
}

struct Found {
    void* item;    // null when not found
    int position;  // 0 when not found
};

Found find(void* data, LISTSORN list, ListsornCompare compare) {
    ListsornNode const* node = data ? list.first : nullptr;
    for (int at = 1; node && at <= list.size; ++at, node = node->next)
        if (compare ? compare(node->data, data) != 0 : node->data == data)
            return {node->data, at};
    return {nullptr, 0};
}

}  // namespace

int createEmpty(LISTSORN* list) {
    if (!list)
        return 0;
    *list = {nullptr, nullptr, nullptr, 0};
    return 1;
}

int createUnitary(LISTSORN* list, void* data) {
    return createWith(list, data, POINTERS);
}

int createUnitaryC(LISTSORN* list, void* data, unsigned size) {
    return createWith(list, data, copiesOf(size));
}

int liberate(LISTSORN* list) {
    return liberateAll(list, POINTERS);
}

int liberateC(LISTSORN* list, unsigned size) {
    return liberateAll(list, copiesOf(size));
}

int addLeft(void* data, LISTSORN* list) {
    return addFirst(data, list, POINTERS);
}

int addLeftC(void* data, LISTSORN* list, unsigned size) {
    return addFirst(data, list, copiesOf(size));
}

int addRight(void* data, LISTSORN* list) {
    return addLast(data, list, POINTERS);
}

int addRightC(void* data, LISTSORN* list, unsigned size) {
    return addLast(data, list, copiesOf(size));
}

int deleteLeft(LISTSORN* list) {
    return deleteFirst(list, POINTERS);
}

int deleteLeftC(LISTSORN* list, unsigned size) {
    return deleteFirst(list, copiesOf(size));
}

int deleteRight(LISTSORN* list) {
    return deleteLast(list, POINTERS);
}

int deleteRightC(LISTSORN* list, unsigned size) {
    return deleteLast(list, copiesOf(size));
}

void* lookLeftC(LISTSORN list, unsigned size) {
    return lookAt(list.first, copiesOf(size));
}

void* lookRightC(LISTSORN list, unsigned size) {
    return lookAt(list.last, copiesOf(size));
}

void* lookCurrentC(LISTSORN list, unsigned size) {
    return lookAt(list.current, copiesOf(size));
}

void* lookAdvanceCurrent(LISTSORN* list) {
    return advance(list, POINTERS);
}

void* lookAdvanceCurrentC(LISTSORN* list, unsigned size) {
    return advance(list, copiesOf(size));
}

void* lookNth(LISTSORN* list, int n) {
    return lookPosition(list, n, POINTERS);
}

void* lookNthC(LISTSORN* list, int n, unsigned size) {
    return lookPosition(list, n, copiesOf(size));
}

int insert(LISTSORN* list, int n, void* data) {
    return insertPosition(list, n, data, POINTERS);
}

int insertC(LISTSORN* list, int n, void* data, unsigned size) {
    return insertPosition(list, n, data, copiesOf(size));
}

int sn_delete(LISTSORN* list, int n) {
    return deletePosition(list, n, POINTERS);
}

int deleteC(LISTSORN* list, int n, unsigned size) {
    return deletePosition(list, n, copiesOf(size));
}

int update(LISTSORN* list, int n, void* data) {
    return updatePosition(list, n, data, POINTERS);
}

int updateC(LISTSORN* list, int n, void* data, unsigned size) {
    return updatePosition(list, n, data, copiesOf(size));
}

int isPresent(void* data, LISTSORN list, ListsornCompare compare) {
    return find(data, list, compare).position != 0;
}

void* search(void* data, LISTSORN list, ListsornCompare compare) {
    return find(data, list, compare).item;
}

int position(void* data, LISTSORN list, ListsornCompare compare) {
    return find(data, list, compare).position;
}
