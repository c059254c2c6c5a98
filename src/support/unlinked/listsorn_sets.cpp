// Copies, joins and set operations of LISTSORN.
//
// The operations of both families are the same walks; they differ in how an item is appended, by
// addRight or by addRightC, which the walks take as an argument. Walks count by size, so a list may
// be appended to itself.
#include "unlinked/listsorn.h"

#include <cassert>

namespace {

auto copying(unsigned size) {
    return [size](void* data, LISTSORN* list) { return addRightC(data, list, size); };
}

// Which items of one list to take: all, or those whose presence in another is as wanted.
enum class Take { all, present, absent };

bool wanted(void* item, Take take, LISTSORN other, ListsornCompare compare) {
    return take == Take::all || (isPresent(item, other, compare) != 0) == (take == Take::present);
}

template <typename Append>
int appendItems(LISTSORN* result, LISTSORN from, Append append, Take take = Take::all,
                LISTSORN other = {}, ListsornCompare compare = nullptr) {
    ListsornNode const* node = from.first;
    for (int i = 0; node && i < from.size; ++i, node = node->next)
        if (wanted(node->data, take, other, compare) && !append(node->data, result))
            return 0;
    return 1;
}

template <typename Append>
int assignItems(LISTSORN* result, LISTSORN source, Append append) {
    return createEmpty(result) && appendItems(result, source, append);
}

template <typename Append>
int joinOnFirst(LISTSORN* a, LISTSORN b, Append append) {
    if (!a)
        return 0;
    return a->first ? appendItems(a, b, append) : assignItems(a, b, append);
}

template <typename Append>
int join(LISTSORN a, LISTSORN b, LISTSORN* result, Append append) {
    return assignItems(result, a, append) && appendItems(result, b, append);
}

template <typename Append>
int intersect(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare, Append append) {
    return createEmpty(result) && appendItems(result, a, append, Take::present, b, compare);
}

template <typename Append>
int unite(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare, Append append) {
    return assignItems(result, a, append) &&
           appendItems(result, b, append, Take::absent, a, compare);
}

// The lookups see *a* as it was on entry, because the list is handed on by value.
template <typename Append>
int uniteOnFirst(LISTSORN* a, LISTSORN b, ListsornCompare compare, Append append) {
    return a && appendItems(a, b, append, Take::absent, *a, compare);
}

template <typename Append>
int subtract(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare, Append append) {
    return createEmpty(result) && appendItems(result, a, append, Take::absent, b, compare);
}

template <typename Append>
int differ(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare, Append append) {
    return subtract(a, b, result, compare, append) &&
           appendItems(result, b, append, Take::absent, a, compare);
}

}  // namespace

int assign(LISTSORN* result, LISTSORN source) {
    return assignItems(result, source, addRight);
}

int assignC(LISTSORN* result, LISTSORN source, unsigned size) {
    return assignItems(result, source, copying(size));
}

int concatenate(LISTSORN* a, LISTSORN b) {
    if (!a)
        return 0;
    if (!b.first)
        return 1;
    assert(a->first != b.first);  // a list joined to itself would close into a ring
    if (a->first) {
        a->last->next = b.first;
        a->size += b.size;
    } else {
        a->first = b.first;
    }
    a->last = b.last;
    return 1;
}

int concatenateOn1Copying2(LISTSORN* a, LISTSORN b) {
    return joinOnFirst(a, b, addRight);
}

int concatenateOn1Copying2C(LISTSORN* a, LISTSORN b, unsigned size) {
    return joinOnFirst(a, b, copying(size));
}

int listsornConcatenation(LISTSORN a, LISTSORN b, LISTSORN* result) {
    return join(a, b, result, addRight);
}

int listsornConcatenationC(LISTSORN a, LISTSORN b, LISTSORN* result, unsigned size) {
    return join(a, b, result, copying(size));
}

int listsornIntersection(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare) {
    return intersect(a, b, result, compare, addRight);
}

int listsornIntersectionC(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare,
                          unsigned size) {
    return intersect(a, b, result, compare, copying(size));
}

int listsornUnion(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare) {
    return unite(a, b, result, compare, addRight);
}

int listsornUnionC(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare,
                   unsigned size) {
    return unite(a, b, result, compare, copying(size));
}

int listsornUnionOnFirst(LISTSORN* a, LISTSORN b, ListsornCompare compare) {
    return uniteOnFirst(a, b, compare, addRight);
}

int listsornUnionOnFirstC(LISTSORN* a, LISTSORN b, ListsornCompare compare, unsigned size) {
    return uniteOnFirst(a, b, compare, copying(size));
}

int listsornSymmetricDifference(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare) {
    return differ(a, b, result, compare, addRight);
}

int listsornSymmetricDifferenceC(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare,
                                 unsigned size) {
    return differ(a, b, result, compare, copying(size));
}

int listsornExclusiveElements(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare) {
    return subtract(a, b, result, compare, addRight);
}

int listsornExclusiveElementsC(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare,
                               unsigned size) {
    return subtract(a, b, result, compare, copying(size));
}
