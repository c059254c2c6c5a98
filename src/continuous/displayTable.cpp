// The tree of display rows.
//
// Every operation leaves the nodes of other tables as they are, but for their notes, which are true
// of the content whoever holds it.
#include "continuous/displayTable.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr int leafBits = 6;  // 64 values; even, so that no pair lies across two leaves
constexpr int fanBits = 4;
constexpr std::size_t leafSize = std::size_t{1} << leafBits;
constexpr std::size_t fanOut = std::size_t{1} << fanBits;
// Contents that a node remembers to cover, the newest ones: as many as there are versions of the
// past among candidates in the same modes. More versions are merged right, but slower.
constexpr std::size_t notes = 8;

using Values = std::array<double, leafSize>;

int bitsBelow(int level) {
    return leafBits + fanBits * level;
}

// Which child of a node holds a value; *level* is that of the child.
std::size_t childAt(int index, int level) {
    return static_cast<std::size_t>(index >> bitsBelow(level)) % fanOut;
}

// Exact: zeros of either sign differ, and a number that is none is the same as itself.
bool sameBits(Values const& a, Values const& b) {
    return std::memcmp(a.data(), b.data(), sizeof(Values)) == 0;
}

Values coverFirst(Values a, Values const& b, std::size_t count) {
    for (std::size_t i = 0; i < count; i += 2) {
        a[i] = std::min(a[i], b[i]);
        a[i + 1] = std::max(a[i + 1], b[i + 1]);
    }
    return a;
}

}  // namespace

struct DisplayTable::Node {
    static constexpr Stamp none = 0;
    static constexpr Stamp zeros = 1;  // of what was never written

    static Stamp stampOf(Link const& link) { return link ? link->stamp : zeros; }
    static bool isWithin(Link const& inner, Link const& outer) {
        if (inner == outer)
            return true;
        return outer && std::find(outer->within.begin(), outer->within.end(), stampOf(inner)) !=
                            outer->within.end();
    }
    void note(Link const& inner) {
        within[next] = stampOf(inner);
        next = (next + 1) % notes;
    }
    void forgetNotes() { within.fill(none); }

    Stamp stamp = none;
    std::array<Stamp, notes> within{};
    std::size_t next = 0;  // the oldest note, to be overwritten
};

struct DisplayTable::Leaf : Node {
    static Values const& valuesOf(Link const& link) {
        static constexpr Values never{};
        return link ? static_cast<Leaf const&>(*link).values : never;
    }

    Values values{};
};

struct DisplayTable::Branch : Node {
    using Children = std::array<Link, fanOut>;

    static Children const& childrenOf(Link const& link) {
        return static_cast<Branch const&>(*link).children;
    }

    Children children;
};

struct DisplayTable::Part {
    Part child(std::size_t i) const {
        return {level - 1, first + (static_cast<std::int64_t>(i) << bitsBelow(level - 1)), end};
    }
    bool isEmpty() const { return first >= end; }
    bool isWhole() const { return first + (std::int64_t{1} << bitsBelow(level)) <= end; }

    int level;
    std::int64_t first, end;
};

void DisplayTable::resize(int count) {
    length = std::max(count, 0);
    height = 0;
    while ((std::int64_t{1} << bitsBelow(height)) < length)
        ++height;
    stamps = std::make_shared<Stamp>(Node::zeros);
    root = nullptr;
}

double DisplayTable::operator[](int index) const {
    if (index < 0 || index >= length)
        return 0.0;
    Link const* link = &root;
    for (int level = height - 1; level >= 0 && *link; --level)
        link = &Branch::childrenOf(*link)[childAt(index, level)];
    return Leaf::valuesOf(*link)[static_cast<std::size_t>(index) % leafSize];
}

// The node of the link, this table's alone and with a stamp for the content that it will have. Its
// notes stay.
template <typename Kind>
Kind& DisplayTable::ownNode(Link& link) {
    if (!link)
        link = std::make_shared<Kind>();
    else if (link.use_count() > 1)
        link = std::make_shared<Kind>(static_cast<Kind const&>(*link));
    link->stamp = ++*stamps;
    return static_cast<Kind&>(*link);
}

void DisplayTable::set(int index, double value) {
    if (index < 0 || index >= length)
        return;
    Link* link = &root;
    for (int level = height - 1; level >= 0; --level) {
        Branch& branch = ownNode<Branch>(*link);
        branch.forgetNotes();
        link = &branch.children[childAt(index, level)];
    }
    Leaf& leaf = ownNode<Leaf>(*link);
    leaf.forgetNotes();
    leaf.values[static_cast<std::size_t>(index) % leafSize] = value;
}

void DisplayTable::coverPairs(DisplayTable const& other, int count) {
    int const end = std::min(count, length);
    if (stamps == other.stamps)
        root = covered(root, other.root, {height, 0, end});
    else
        coverPlainly(other, end);
}

// Stamps of different tables say nothing about each other.
void DisplayTable::coverPlainly(DisplayTable const& other, int end) {
    for (int index = 0; index < end; index += 2) {
        set(index, std::min((*this)[index], other[index]));
        set(index + 1, std::max((*this)[index + 1], other[index + 1]));
    }
}

// What *mine* becomes when it covers *theirs*: one of the two wherever that is enough, so that
// tables that have become equal share again.
DisplayTable::Link DisplayTable::covered(Link const& mine, Link const& theirs, Part const& part) {
    if (part.isEmpty())
        return mine;
    if (theirs == mine || (part.isWhole() && Node::isWithin(theirs, mine)))
        return mine;
    if (part.isWhole() && Node::isWithin(mine, theirs))
        return theirs;
    return part.level == 0 ? coveredLeaf(mine, theirs, part) : coveredBranch(mine, theirs, part);
}

DisplayTable::Link DisplayTable::coveredLeaf(Link const& mine, Link const& theirs,
                                             Part const& part) {
    Values const& other = Leaf::valuesOf(theirs);
    std::size_t const count = std::min(leafSize, static_cast<std::size_t>(part.end - part.first));
    Values const values = coverFirst(Leaf::valuesOf(mine), other, count);
    if (sameBits(values, other))
        return theirs;
    Link result = mine;
    if (!mine || !sameBits(values, Leaf::valuesOf(mine)))
        ownNode<Leaf>(result).values = values;
    if (part.isWhole() && sameBits(coverFirst(other, values, count), values))
        result->note(theirs);
    return result;
}

DisplayTable::Link DisplayTable::coveredBranch(Link const& mine, Link const& theirs,
                                               Part const& part) {
    Branch::Children const never;
    Branch::Children const& own = mine ? Branch::childrenOf(mine) : never;
    Branch::Children const& other = theirs ? Branch::childrenOf(theirs) : never;
    Branch::Children children;
    bool changed = false, equal = true, within = true;
    for (std::size_t i = 0; i < fanOut; ++i) {
        children[i] = covered(own[i], other[i], part.child(i));
        changed = changed || children[i] != own[i];
        equal = equal && children[i] == other[i];
        within = within && Node::isWithin(other[i], children[i]);
    }
    if (equal)
        return theirs;
    Link result = mine;
    if (changed)
        ownNode<Branch>(result).children = std::move(children);
    if (part.isWhole() && within)
        result->note(theirs);
    return result;
}
