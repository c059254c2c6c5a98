// A bounded history, newest entry first, that is pushed in constant time and shared between copies.
//
// A candidate's runtime is copied at every split, with histories of hundreds of entries that the
// copy does not change. So pushed entries stand in reference-counted blocks: a copy takes the block
// pointers, and a block is duplicated only when two histories want to write different things into
// it. What stands before the first pushed entry is kept as runs of one value, since histories begin
// filled with a single value.
//
// Invariants (checked by checkHistory in debug builds, but for what other histories see):
//   1. entries 0 to pushed-1 are in the blocks, the newest in blocks.back() at position head-1;
//   2. the runs cover the entries from `pushed` to length-1, newest run first, none of them empty;
//   3. a block's `used` is at least what any of its histories sees of it: entries below `used` are
//      written only by a history that holds the block alone.
// Single-threaded: the counts are plain integers.
#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <utility>
#include <vector>

// A reference-counted block: what several owners read, and the last one frees.
template <typename Block>
class SharedBlock {
public:
    SharedBlock() : node(new Node) {}
    SharedBlock(SharedBlock const& other) : node(other.node) { ++node->owners; }
    SharedBlock(SharedBlock&& other) noexcept : node(std::exchange(other.node, nullptr)) {}
    SharedBlock& operator=(SharedBlock other) noexcept {
        std::swap(node, other.node);
        return *this;
    }
    ~SharedBlock() {
        if (node != nullptr && --node->owners == 0)
            delete node;
    }

    Block const& read() const { return node->block; }
    bool isShared() const { return node->owners > 1; }
    bool isSameAs(SharedBlock const& other) const { return node == other.node; }
    // Write access that other owners see as well.
    Block& writeShared() { return node->block; }
    // Write access that is this owner's alone: duplicates a shared block first.
    Block& write() {
        if (isShared()) {
            SharedBlock own;
            own.node->block = node->block;
            std::swap(node, own.node);
        }
        return node->block;
    }

private:
    struct Node {
        int owners = 1;
        Block block{};
    };
    Node* node;
};

template <typename T>
class History {
public:
    History() = default;
    // *length* entries, each a T{}.
    explicit History(int length) : length(std::max(length, 0)) { fill(T{}); }

    int size() const { return length; }

    // Entry *i*, 0 the newest; 0 <= i < size().
    T const& operator[](int i) const {
        assert(i >= 0 && i < length);
        if (i >= pushed)
            return inRuns(i - pushed);
        auto const [block, position] = locate(i);
        return blocks[block].read().entries[position];
    }

    void set(int i, T const& value) {
        assert(i >= 0 && i < length);
        if (i >= pushed) {
            setInRuns(i - pushed, value);
        } else {
            auto const [block, position] = locate(i);
            blocks[block].write().entries[position] = value;
        }
        checkHistory();
    }

    // Makes *value* entry 0; every other entry becomes one older and the oldest is lost.
    // Values are taken by copy wherever they may be entries of this very history.
    void push(T value) {
        if (length == 0)
            return;
        if (pushed == length)
            --pushed;
        else
            dropOldestOfRuns();
        append(value);
        ++pushed;
        dropUnseenBlocks();
        checkHistory();
    }

    // Every entry becomes *value*.
    void fill(T value) {
        blocks.clear();
        runs.clear();
        head = 0;
        pushed = 0;
        if (length > 0)
            runs.push_back({length, value});
        checkHistory();
    }

    // Forgets the newest *count* entries: each older one becomes *count* newer, and the last
    // *count* entries become *value*.
    void forgetNewest(int count, T value) {
        count = std::clamp(count, 0, length);
        if (count == 0)
            return;
        int const fromBlocks = std::min(count, pushed);
        dropNewestOfBlocks(fromBlocks);
        for (int left = count - fromBlocks; left > 0; --left)
            dropNewestOfRuns();
        runs.push_back({count, value});
        checkHistory();
    }

    // Changes each entry with *widen*, which takes the entry and the other history's and tells
    // whether it changed; entries that both hold in a shared block are the same and are passed
    // over. Both have the same length.
    template <typename Widen>
    void cover(History const& other, Widen widen) {
        assert(length == other.length);
        for (int i = 0; i < length; ++i) {
            if (int const shared = sharedWith(other, i); shared > 0) {
                i += shared - 1;
                continue;
            }
            T value = (*this)[i];
            bool const changed = widen(value, other[i]);
            if (changed)
                set(i, value);
            else
                i += alikeFrom(other, i) - 1;
        }
    }

private:
    static constexpr int blockSize = 32;
    struct Block {
        int used = 0;
        std::array<T, blockSize> entries{};
    };
    struct Run {
        int count;
        T value;
    };

    std::pair<std::size_t, int> locate(int i) const {
        if (i < head)
            return {blocks.size() - 1, head - 1 - i};
        int const behind = i - head;
        return {blocks.size() - 2 - static_cast<std::size_t>(behind / blockSize),
                blockSize - 1 - behind % blockSize};
    }

    // How many entries from *i* on are the very same storage in both.
    int sharedWith(History const& other, int i) const {
        if (i >= pushed || i >= other.pushed)
            return 0;
        auto const [block, position] = locate(i);
        auto const [otherBlock, otherPosition] = other.locate(i);
        if (position != otherPosition || !blocks[block].isSameAs(other.blocks[otherBlock]))
            return 0;
        return std::min(position + 1, std::min(pushed, other.pushed) - i);
    }

    // How many entries from *i* on are all the same in this history, and all the same in the other.
    int alikeFrom(History const& other, int i) const {
        if (i < pushed || i < other.pushed)
            return 1;
        return std::min(leftOfRun(i - pushed), other.leftOfRun(i - other.pushed));
    }

    int leftOfRun(int i) const {
        std::size_t run = 0;
        while (i >= runs[run].count)
            i -= runs[run++].count;
        return runs[run].count - i;
    }

    T const& inRuns(int i) const {
        std::size_t run = 0;
        while (i >= runs[run].count)
            i -= runs[run++].count;
        return runs[run].value;
    }

    // Splits the run that holds the entry in up to three.
    void setInRuns(int i, T const& value) {
        auto run = runs.begin();
        while (i >= run->count)
            i -= (run++)->count;
        Run const before{i, run->value};
        Run const after{run->count - i - 1, run->value};
        *run = {1, value};
        if (after.count > 0)
            run = std::prev(runs.insert(std::next(run), after));
        if (before.count > 0)
            runs.insert(run, before);
    }

    void dropOldestOfRuns() {
        if (--runs.back().count == 0)
            runs.pop_back();
    }

    void dropNewestOfRuns() {
        if (--runs.front().count == 0)
            runs.erase(runs.begin());
    }

    // A shared block takes the entry too, as long as no other history has written that place.
    void append(T const& value) {
        if (blocks.empty() || head == blockSize) {
            blocks.emplace_back();
            head = 0;
        }
        bool const placeIsFree = blocks.back().read().used == head;
        Block& block = placeIsFree ? blocks.back().writeShared() : blocks.back().write();
        block.entries[static_cast<std::size_t>(head)] = value;
        block.used = ++head;
    }

    void dropUnseenBlocks() {
        int const seenWithoutOldest = head + blockSize * (static_cast<int>(blocks.size()) - 2);
        if (blocks.size() > 1 && seenWithoutOldest >= pushed)
            blocks.erase(blocks.begin());
    }

    void dropNewestOfBlocks(int count) {
        pushed -= count;
        while (count >= head && count > 0) {
            count -= head;
            blocks.pop_back();
            head = blocks.empty() ? 0 : blockSize;
        }
        head -= count;
    }

    void checkHistory() const {
#ifndef NDEBUG
        int covered = 0;
        for (Run const& run : runs) {
            assert(run.count > 0);
            covered += run.count;
        }
        assert(pushed >= 0 && covered == length - pushed);
        int held = 0;
        for (auto const& block : blocks) {
            int const seen = &block == &blocks.back() ? head : blockSize;
            assert(seen > 0 && block.read().used >= seen);
            held += seen;
        }
        assert(pushed <= held);
#endif
    }

    int length = 0;
    int pushed = 0;
    int head = 0;  // entries of blocks.back() that belong to this history
    std::vector<SharedBlock<Block>> blocks;
    std::vector<Run> runs;
};
