// The bounds of every display variable at every step of a run, shared between candidates.
//
// Candidates inherit the rows before they parted, so the table is kept in shared blocks; a block
// that was never written reads as zeros and takes no memory.
#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <optional>
#include <vector>

#include "continuous/history.h"

class DisplayTable {
public:
    // Empties the table and gives it *count* values, all zero.
    void resize(int count) {
        length = std::max(count, 0);
        blocks.clear();
    }

    int size() const { return length; }

    // The value at *index*; zero for what was never written, and outside the table.
    double operator[](int index) const {
        if (index < 0 || index >= length)
            return 0.0;
        std::size_t const block = static_cast<std::size_t>(index / blockSize);
        if (block >= blocks.size() || !blocks[block])
            return 0.0;
        return blocks[block]->read()[static_cast<std::size_t>(index % blockSize)];
    }

    // Values outside the table are dropped.
    void set(int index, double value) {
        if (index < 0 || index >= length)
            return;
        std::size_t const block = static_cast<std::size_t>(index / blockSize);
        assert(blocks.size() <= static_cast<std::size_t>((length - 1) / blockSize) + 1);
        if (block >= blocks.size())
            blocks.resize(block + 1);
        if (!blocks[block])
            blocks[block].emplace();
        blocks[block]->write()[static_cast<std::size_t>(index % blockSize)] = value;
    }

    // Widens the first *count* values, pairs of a lower and an upper bound, to cover those of
    // *other*.
    void coverPairs(DisplayTable const& other, int count) {
        for (int index = 0; index < std::min(count, length); index += 2) {
            if (sharesBlock(other, index)) {
                index += blockSize - 2 - index % blockSize;  // nothing differs in the whole block
                continue;
            }
            set(index, std::min((*this)[index], other[index]));
            set(index + 1, std::max((*this)[index + 1], other[index + 1]));
        }
    }

private:
    static constexpr int blockSize = 64;  // even, so that no pair lies across two blocks
    using Block = std::array<double, blockSize>;

    bool sharesBlock(DisplayTable const& other, int index) const {
        std::size_t const block = static_cast<std::size_t>(index / blockSize);
        bool const mine = block < blocks.size() && blocks[block];
        bool const theirs = block < other.blocks.size() && other.blocks[block];
        if (!mine || !theirs)
            return mine == theirs;
        return blocks[block]->isSameAs(*other.blocks[block]);
    }

    int length = 0;
    std::vector<std::optional<SharedBlock<Block>>> blocks;
};
