// The bounds of every display variable at every step of a run, shared between candidates.
//
// Candidates are copied, written to and merged at every step, and inherit the rows from before they
// parted. So the table is a tree whose nodes are shared until one side writes: a copy costs one
// link, a write the nodes above one value, and a merge only what differs. Nodes that were never
// written read as zeros and take no memory.
//
// Candidates that live side by side differ in old rows for good, and their offspring are merged at
// every step, so passing over shared nodes is not enough. Each content of a node has a stamp, and a
// node notes the stamps of contents that are known to lie within it: covering them again changes
// nothing. So a merge looks at a difference once, and its cost does not grow with the run.
//
// Invariants:
//   1. a stamp stands for one content: it is new whenever a value below it changes;
//   2. a content whose stamp is noted in a node lies within it both ways: either covered with the
//      other is the node's content, to the bit;
//   3. values at and behind the length are zero.
// Single-threaded, as the run that owns the tables.
#pragma once

#include <cstdint>
#include <memory>

class DisplayTable {
public:
    // Empties the table and gives it *count* values, all zero.
    void resize(int count);
    int size() const { return length; }
    // The value at *index*; zero for what was never written, and outside the table.
    double operator[](int index) const;
    // Values outside the table are dropped.
    void set(int index, double value);
    // Widens the first *count* values, pairs of a lower and an upper bound, to cover those of
    // *other*. Fast for a table that was copied from the same one.
    void coverPairs(DisplayTable const& other, int count);

private:
    using Stamp = std::uint64_t;
    struct Node;
    struct Leaf;
    struct Branch;
    using Link = std::shared_ptr<Node>;  // null: all zeros
    // A part of the table: the node at a level above the leaves, the index of its first value, and
    // the index behind the last value that is of concern.
    struct Part;

    template <typename Kind>
    Kind& ownNode(Link& link);
    void coverPlainly(DisplayTable const& other, int end);
    Link covered(Link const& mine, Link const& theirs, Part const& part);
    Link coveredLeaf(Link const& mine, Link const& theirs, Part const& part);
    Link coveredBranch(Link const& mine, Link const& theirs, Part const& part);

    int length = 0;
    int height = 0;                 // branches above a leaf
    std::shared_ptr<Stamp> stamps;  // the last one given, for all copies of a table
    Link root;
};
