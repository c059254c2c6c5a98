// LISTSORN, the list type of the continuous engine: a singly linked list of untyped items with a
// head, a tail and a cursor.
//
// Every operation comes in two forms on the same record. The plain form stores the caller's
// pointer and never frees it. The C form, whose name ends in C and whose last argument is a block
// size, stores a private copy of a block of that many bytes, and frees the copy when the item is
// deleted. A list must be kept to one form; nodes and copies come from new_malloc.
//
// A list that changes is passed by address, one that is only read by value. Positions count from 1.
// Operations answer 1 on success and 0 on failure unless told otherwise. A null list, null data
// where an item is wanted, and exhausted memory (told by new_malloc) are failures; what was done
// before a failure stays. Only addLeft, addRight and deleteLeft are constant time.
#pragma once

struct ListsornNode {
    void* data;          // never null; in the C form a block that the list owns
    ListsornNode* next;  // null in the tail
};

// Invariants between operations:
//  1. first and last are both null or both set.
//  2. last is the one node without a next, and it is reached from first.
//  3. size is the number of nodes, except after concatenate onto an empty list (see there): then
//     walks, which count by size, see fewer items than there are.
struct LISTSORN {
    ListsornNode* first;
    ListsornNode* last;
    // Cursor. A caller sets it to first before a walk by lookAdvanceCurrent; lookNth sets it too.
    // Adding and deleting leave it alone, so it has no meaning once its node is deleted.
    ListsornNode* current;
    int size;
};

// Equality of an item of the list (first argument) and a searched value (second): non-zero for
// equal. It may update what it compares. A null comparison compares the pointers themselves.
typedef int (*ListsornCompare)(void* item, void* searched);

// Making and ending. The create functions and assign overwrite the record without releasing what
// it held before.

int createEmpty(LISTSORN* list);
int createUnitary(LISTSORN* list, void* data);
int createUnitaryC(LISTSORN* list, void* data, unsigned size);

// *result* becomes a list of new nodes with the items of *source*, in order.
int assign(LISTSORN* result, LISTSORN source);
int assignC(LISTSORN* result, LISTSORN source, unsigned size);

// Deletes as many items as size counts; the record ends empty.
int liberate(LISTSORN* list);
int liberateC(LISTSORN* list, unsigned size);

// The ends. Deleting from an empty list is a success.

int addLeft(void* data, LISTSORN* list);
int addLeftC(void* data, LISTSORN* list, unsigned size);
int addRight(void* data, LISTSORN* list);
int addRightC(void* data, LISTSORN* list, unsigned size);
int deleteLeft(LISTSORN* list);
int deleteLeftC(LISTSORN* list, unsigned size);
int deleteRight(LISTSORN* list);
int deleteRightC(LISTSORN* list, unsigned size);

// Looking. The plain forms answer the stored pointer, the C forms a new block with a copy of the
// item, which the caller frees. Null stands for an absent item.

void* lookLeftC(LISTSORN list, unsigned size);
void* lookRightC(LISTSORN list, unsigned size);
void* lookCurrentC(LISTSORN list, unsigned size);

// The item under the cursor; the cursor moves on to the next one, and past the tail to null.
void* lookAdvanceCurrent(LISTSORN* list);
void* lookAdvanceCurrentC(LISTSORN* list, unsigned size);

// Item *n*; null for an empty list. Required: with n equal to size the tail is taken at once and
// the cursor stays; every other position leaves the cursor on its node, for a walk from there.
// A position that does not exist is told on the error stream and answers null.
void* lookNth(LISTSORN* list, int n);
void* lookNthC(LISTSORN* list, int n, unsigned size);

// Positions. One that does not exist is told on the error stream and is a failure.

// The new item takes position *n*, from 1 to size + 1.
int insert(LISTSORN* list, int n, void* data);
int insertC(LISTSORN* list, int n, void* data, unsigned size);

// Removes item *n*. Position 1 is deleteLeft, and position size deleteRight: on an empty list
// both are successes.
int sn_delete(LISTSORN* list, int n);
int deleteC(LISTSORN* list, int n, unsigned size);

// Replaces item *n*. Required: the C form does not free the block it replaces; whoever looked at
// the stored block before may still use it, and frees it.
int update(LISTSORN* list, int n, void* data);
int updateC(LISTSORN* list, int n, void* data, unsigned size);

// Searching, by *compare* as above. Null data is never found.

int isPresent(void* data, LISTSORN list, ListsornCompare compare);
void* search(void* data, LISTSORN list, ListsornCompare compare);  // the item found, or null
int position(void* data, LISTSORN list, ListsornCompare compare);  // its position, or 0

// Joining.

// Hands the nodes of *b* over to *a*: b's record must not be used or freed afterwards.
// Required: when a is empty, its size stays 0 although it takes b's nodes; such a list counts no
// items until the caller sets the size.
int concatenate(LISTSORN* a, LISTSORN b);

// Appends the items of *b* to *a* as new nodes.
int concatenateOn1Copying2(LISTSORN* a, LISTSORN b);
int concatenateOn1Copying2C(LISTSORN* a, LISTSORN b, unsigned size);

// The items of *a*, then those of *b*, in new nodes of *result*, which is overwritten as by assign.
int listsornConcatenation(LISTSORN a, LISTSORN b, LISTSORN* result);
int listsornConcatenationC(LISTSORN a, LISTSORN b, LISTSORN* result, unsigned size);

// Set operations. The result is overwritten as by assign, and made of new nodes in the order told.
// Items are looked up by isPresent in the arguments, never in the growing result, so an item that
// is repeated inside one argument stays repeated.

// Items of a that are in b.
int listsornIntersection(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare);
int listsornIntersectionC(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare,
                          unsigned size);
// Items of a, then the items of b that are not in a.
int listsornUnion(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare);
int listsornUnionC(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare,
                   unsigned size);
// The same, appended to a itself.
int listsornUnionOnFirst(LISTSORN* a, LISTSORN b, ListsornCompare compare);
int listsornUnionOnFirstC(LISTSORN* a, LISTSORN b, ListsornCompare compare, unsigned size);
// Items of a that are not in b, then items of b that are not in a.
int listsornSymmetricDifference(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare);
int listsornSymmetricDifferenceC(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare,
                                 unsigned size);
// Items of a that are not in b.
int listsornExclusiveElements(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare);
int listsornExclusiveElementsC(LISTSORN a, LISTSORN b, LISTSORN* result, ListsornCompare compare,
                               unsigned size);
